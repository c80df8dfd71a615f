// The places are sorted beside the dots and not through them: dots lie far apart in memory, and a
// look at each for every comparison takes most of the time where there are many. All places differ,
// so that a sort that needs no memory of its own keeps the order of equals as well.

#include "Calibrate/DotSorting.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>

namespace {

using ClDot = ClIpCalibrateGeometricBuildRefPointsBase::ClDot;
using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;

struct StPlace {
    double m_dAlong; ///< the coordinate that is sorted by
    std::int32_t m_nIndex;
    unsigned long m_nBefore; ///< the place in the grid, so that no two are equal
    ClDot* m_pDot;

    /// Equal places keep the order of the components, and what is not a number stands last, so
    /// that every input has an order.
    bool operator<(const StPlace& Other) const {
        if (m_dAlong < Other.m_dAlong || m_dAlong > Other.m_dAlong)
            return m_dAlong < Other.m_dAlong;
        if (std::isnan(m_dAlong) != std::isnan(Other.m_dAlong))
            return std::isnan(Other.m_dAlong);
        return m_nIndex != Other.m_nIndex ? m_nIndex < Other.m_nIndex : m_nBefore < Other.m_nBefore;
    }
};

template <double ClVector::*pAxis>
void Sort(ClDot** pDots, unsigned long nDots, StPlace* pPlaces) {
    for (unsigned long i = 0; i < nDots; ++i)
        pPlaces[i] = {pDots[i]->m_vPos.*pAxis, pDots[i]->m_nIndex, i, pDots[i]};
    std::sort(pPlaces, pPlaces + nDots);
    for (unsigned long i = 0; i < nDots; ++i)
        pDots[i] = pPlaces[i].m_pDot;
}

/// The x about which the column that starts at `nStart` stands: the mean of its clean dots, or
/// its first dot's without any.
double ColumnCentre(const DotGrid& rGrid, unsigned long nStart, double dHalfPitch) {
    double dReference = rGrid[nStart]->m_vPos.x;
    double dSum = 0.0;
    unsigned long nClean = 0;
    for (unsigned long i = nStart; i < rGrid.Entries(); ++i) {
        const ClDot& rDot = *rGrid[i];
        if (!(std::fabs(rDot.m_vPos.x - dReference) < dHalfPitch))
            break;
        if (rDot.m_nStatus != ClDot::eClean)
            continue;
        if (nClean == 0)
            dReference = rDot.m_vPos.x;
        dSum += rDot.m_vPos.x;
        ++nClean;
    }
    return nClean > 0 ? dSum / static_cast<double>(nClean) : dReference;
}

/// One behind the last dot of a column, which has one dot at least.
unsigned long ColumnEnd(const DotGrid& rGrid, unsigned long nStart, double dHalfPitch) {
    const double dCentre = ColumnCentre(rGrid, nStart, dHalfPitch);
    unsigned long nEnd = nStart;
    while (nEnd < rGrid.Entries() && rGrid[nEnd]->m_vPos.x - dCentre < dHalfPitch)
        ++nEnd;
    return std::max(nEnd, nStart + 1);
}

} // namespace

void DotSorting::IntoColumns(DotGrid& rGrid, double dHalfPitch) {
    const auto pPlaces = Vek::NewArrayPtr<StPlace>(rGrid.Entries());
    ClDot** const pDots = rGrid.Data();
    Sort<&ClVector::x>(pDots, rGrid.Entries(), pPlaces.get());
    for (unsigned long nStart = 0; nStart < rGrid.Entries();) {
        const unsigned long nEnd = ColumnEnd(rGrid, nStart, dHalfPitch);
        Sort<&ClVector::y>(pDots + nStart, nEnd - nStart, pPlaces.get());
        nStart = nEnd;
    }
}
