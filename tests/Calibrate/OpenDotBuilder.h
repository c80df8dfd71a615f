#pragma once

/// The builder's base with a pattern of the test's own, and steps that a test may replace.

#include "Calibrate/DotGrids.h"
#include "Tools/Allocate.h"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace TestSupport {

using DotBuilder = ClIpCalibrateGeometricBuildRefPointsBase;
using DotGrid = DotBuilder::DotGrid;
using PointList = DotBuilder::PointList;
using Points = std::vector<ClVector>;

class ClOpenDotBuilder : public DotBuilder {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClOpenDotBuilder>(); }
    const char* Name() const override { return "ClOpenDotBuilder"; }

    /// A point (x, y) of the pattern becomes ((x + offset) * dpi, (y + offset) * dpi).
    void BuildTargetPoints(PointList& rTarget, double dDpiX, double dDpiY, double dOffsetX,
                           double dOffsetY) override {
        rTarget.Clear();
        for (const ClVector& v : m_aPattern)
            rTarget.Append({(v.x + dOffsetX) * dDpiX, (v.y + dOffsetY) * dDpiY});
    }
    void LocatePoints(ClImage& rImage, DotGrid& rGrid) override {
        m_Locate ? m_Locate(rImage, rGrid) : DotBuilder::LocatePoints(rImage, rGrid);
    }
    void AssociatePoints(DotGrid& rGrid, PointList& rActual) override {
        m_Associate ? m_Associate(rGrid, rActual) : DotBuilder::AssociatePoints(rGrid, rActual);
    }
    void GridToArray(DotGrid&, PointList&) override {}
    void GetGridColumnLengths(TpArrayStatic<int>& rLengths) override { rLengths.Clear(); }
    void MoveTarget(PointList&, PointList&) override {}

    Points m_aPattern;
    std::function<void(ClImage&, DotGrid&)> m_Locate;
    std::function<void(DotGrid&, PointList&)> m_Associate;
};

/// The components' indices in the grid's order.
inline std::vector<int> Indices(const DotGrid& Grid) {
    std::vector<int> anIndices;
    for (unsigned long i = 0; i < Grid.Entries(); ++i)
        anIndices.push_back(Grid[i]->m_nIndex);
    return anIndices;
}

inline Points ToPoints(const PointList& List) {
    return Points(List.Data(), List.Data() + List.Entries());
}

inline void ExpectPoints(const PointList& Actual, const Points& aExpected,
                         double dTolerance = 1e-9) {
    ASSERT_EQ(Actual.Entries(), aExpected.size());
    for (unsigned long i = 0; i < Actual.Entries(); ++i) {
        EXPECT_NEAR(Actual[i].x, aExpected[i].x, dTolerance) << "point " << i;
        EXPECT_NEAR(Actual[i].y, aExpected[i].y, dTolerance) << "point " << i;
    }
}

} // namespace TestSupport
