#pragma once

/// The valid dots of a grid in rows, each sorted by x, so that what stands near a dot is found
/// without a look at all others. A capture has some hundred blobs and would need none of this; one
/// of a printed raster has tens of thousands, whose pairs nobody can wait for.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include <cstdint>
#include <memory>

class ClDotCells {
public:
    using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;
    using Indices = TpArrayDynamic<unsigned long, 256>;

    /// For neighbours at most this far away along either axis. Pixels.
    ClDotCells(const DotGrid& rGrid, double dReachX, double dReachY);

    /// The dots behind this one in the grid that stand within the reach of it, in the grid's
    /// order, and some that stand a little farther. Dots whose place is not finite are near none.
    void FindBehind(unsigned long nIndex, Indices& rFound) const;

private:
    struct StPlace {
        std::int64_t m_nRow;
        double m_dX;
        unsigned long m_nIndex;

        bool operator<(const StPlace& Other) const;
    };

    std::int64_t RowOf(double dY) const;
    const StPlace* FirstFrom(std::int64_t nRow, double dX) const;

    const DotGrid& m_rGrid;
    double m_dReachX;
    double m_dRowHeight;
    std::unique_ptr<StPlace[]> m_pPlaces;
    unsigned long m_nPlaces = 0;
};
