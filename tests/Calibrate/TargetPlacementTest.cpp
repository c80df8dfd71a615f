// Where the pattern comes to stand in the corrected image, worked out by hand from affine
// mappings: a spline through the points of one is that mapping.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include "Calibrate/OpenDotBuilder.h"
#include "Tools/FpImage.h"
#include "support/Throws.h"

#include <algorithm>
#include <cstdint>

using TestSupport::ClOpenDotBuilder;
using TestSupport::ExpectPoints;
using TestSupport::ListOf;
using TestSupport::PointList;
using TestSupport::Points;

namespace {

using Spline = TestSupport::DotBuilder::Spline;

const Points caTarget = {{3, 4},   {103, 4},  {53, 54},   {3, 104},  {103, 104},
                         {3, 204}, {53, 154}, {103, 204}, {70, 130}, {30, 80}};

/// x' = 1.5 x + 0.25 y + 10, y' = -0.5 x + 2 y + 20.
Points Mapped(const Points& aPoints) {
    Points aMapped;
    for (const ClVector& v : aPoints)
        aMapped.emplace_back(1.5 * v.x + 0.25 * v.y + 10.0, -0.5 * v.x + 2.0 * v.y + 20.0);
    return aMapped;
}

Points Moved(const Points& aPoints, double dX, double dY) {
    Points aMoved;
    for (const ClVector& v : aPoints)
        aMoved.emplace_back(v.x + dX, v.y + dY);
    return aMoved;
}

void Prepare(Spline& rSpline, const Points& aFrom, const Points& aTo) {
    rSpline.Setup(static_cast<long>(aFrom.size()), aFrom.data(), aTo.data());
}

struct StPlacement {
    StPlacement() : m_In(51, 131, 1, 0, 0) {
        m_aTarget = ListOf(caTarget);
        m_aActual[0] = ListOf(Mapped(caTarget));
        m_Builder.m_pInImage = &m_In;
        m_Builder.m_nTargetWidth = 40;
        m_Builder.m_nTargetHeight = 60;
        m_Builder.m_dSourceDpiX = 250.0;
        m_Builder.m_dSourceDpiY = 1000.0;
    }
    void Center() { m_Builder.CenterTarget(m_aTarget, m_aActual, 1); }

    ClImage m_In;
    ClOpenDotBuilder m_Builder;
    PointList m_aTarget;
    PointList m_aActual[3];
};

} // namespace

// By borders

TEST(TargetPlacement, CentresTheBordersOfTheTargetInTheCapture) {
    // Left border: x' at x = 0, mean over y = 0 to 59, is 0.25 * 29.5 + 10 = 17.375; right one, at
    // x = 40, 77.375. Top border: y' at y = 0, mean over x = 0 to 39, is -0.5 * 19.5 + 20 = 10.25;
    // bottom one, at y = 60, 130.25. The capture's middle is (25.5, 65.5).
    StPlacement Placement;
    Placement.Center();
    ExpectPoints(Placement.m_aTarget,
                 Moved(caTarget, 500.0 / 250.0 * (47.375 - 25.5), 500.0 / 1000.0 * (70.25 - 65.5)),
                 0.002);
}

TEST(TargetPlacement, UsesTheFirstListOnly) {
    StPlacement Placement;
    Placement.m_aActual[1] = ListOf({{1, 2}, {3, 4}});
    Placement.m_Builder.CenterTarget(Placement.m_aTarget, Placement.m_aActual, 3);
    ExpectPoints(Placement.m_aTarget, Moved(caTarget, 43.75, 2.375), 0.002);
    ExpectPoints(Placement.m_aActual[0], Mapped(caTarget));
}

TEST(TargetPlacement, NeedsTheCaptureForItsBorders) {
    StPlacement Placement;
    Placement.m_Builder.m_pInImage = nullptr;
    EXPECT_THROWS(Placement.Center(), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    ExpectPoints(Placement.m_aTarget, caTarget, 0.0);
}

// By the pattern's extent

TEST(TargetPlacement, CentresThePatternWithHalfAPitchAroundIt) {
    // 10 and 20 pixels a millimetre: x from 3 - 10 to 103 + 10, y from 4 - 20 to 204 + 20.
    StPlacement Placement;
    Placement.m_Builder.m_bCenterByBorders = false;
    Placement.m_Builder.m_dTargetDpiX = 254.0;
    Placement.m_Builder.m_dTargetDpiY = 508.0;
    Placement.m_Builder.m_nTargetWidth = 320;
    Placement.m_Builder.m_nTargetHeight = 480;
    Placement.Center();
    ExpectPoints(Placement.m_aTarget, Moved(caTarget, 160.0 - 53.0, 240.0 - 104.0));
}

TEST(TargetPlacement, CentresThePatternWhateverPointIsFirst) {
    Points aTarget = caTarget;
    for (std::size_t i = 0; i < caTarget.size(); ++i) {
        std::rotate(aTarget.begin(), aTarget.begin() + 1, aTarget.end());
        StPlacement Placement;
        Placement.m_aTarget = ListOf(aTarget);
        Placement.m_aActual[0] = ListOf(Mapped(aTarget));
        Placement.m_Builder.m_bCenterByBorders = false;
        Placement.m_Builder.m_dTargetDpiX = 254.0;
        Placement.m_Builder.m_dTargetDpiY = 508.0;
        Placement.m_Builder.m_nTargetWidth = 320;
        Placement.m_Builder.m_nTargetHeight = 480;
        Placement.Center();
        ExpectPoints(Placement.m_aTarget, Moved(aTarget, 160.0 - 53.0, 240.0 - 104.0));
    }
}

TEST(TargetPlacement, AddsTheBottomMarginAndHalvesWholePixels) {
    // The bottom is 204 + (1 + 0.5) * 20; 321 / 2 and 481 / 2 are whole pixels.
    StPlacement Placement;
    Placement.m_Builder.m_bCenterByBorders = false;
    Placement.m_Builder.m_pInImage = nullptr;
    Placement.m_Builder.m_dTargetDpiX = 254.0;
    Placement.m_Builder.m_dTargetDpiY = 508.0;
    Placement.m_Builder.m_dBottomMargin = 0.5;
    Placement.m_Builder.m_nTargetWidth = 321;
    Placement.m_Builder.m_nTargetHeight = 481;
    Placement.Center();
    ExpectPoints(Placement.m_aTarget, Moved(caTarget, 160.0 - 53.0, 240.0 - 109.0));
}

// Failures

TEST(TargetPlacement, PassesTheSplinesFailureInBothPlacements) {
    for (const bool bByBorders : {true, false}) {
        StPlacement Placement;
        Placement.m_Builder.m_bCenterByBorders = bByBorders;
        Placement.m_aTarget[1] = Placement.m_aTarget[0]; // one place, two sources
        EXPECT_THROWS(Placement.Center(), ClException, -600,
                      "Generation of Geometric Calibration data not possible, simgularity "
                      "detected, contact Tessarin");
        EXPECT_EQ(Placement.m_aTarget[0].x, 3.0);
        EXPECT_EQ(Placement.m_aTarget[9].y, 80.0);
    }
}

TEST(TargetPlacement, RefusesListsOfDifferentLength) {
    StPlacement Placement;
    Placement.m_aActual[0].SetEntries(9);
    EXPECT_THROWS(Placement.Center(), ClException, -39,
                  "Target and Source arrays must have same size!");
    Placement.m_aActual[0].SetEntries(11);
    EXPECT_THROWS(Placement.Center(), ClException, -39,
                  "Target and Source arrays must have same size!");
    ExpectPoints(Placement.m_aTarget, caTarget, 0.0);
}

TEST(TargetPlacement, RefusesMissingLists) {
    StPlacement Placement;
    EXPECT_THROWS(Placement.m_Builder.CenterTarget(Placement.m_aTarget, nullptr, 1), ClException,
                  -44, "pvTarget is NULL.");
    PointList aEmpty;
    EXPECT_THROWS(Placement.m_Builder.CenterTarget(aEmpty, &aEmpty, 1), ClException, -44,
                  "pvOrigin is NULL.");
}

// One border

TEST(TargetPlacement, ABorderWithoutLengthHasTheMeanZero) {
    const ClOpenDotBuilder Builder;
    Spline spline;
    Prepare(spline, caTarget, Mapped(caTarget));
    for (const int nLength : {0, -1, INT32_MIN}) {
        EXPECT_EQ(Builder.GetBorderDelta(spline, 5, 6, nLength, true), 0.0);
        EXPECT_EQ(Builder.GetBorderDelta(spline, 5, 6, nLength, false), 0.0);
    }
}

TEST(TargetPlacement, ABorderRunsFromItsFirstPixelOn) {
    const ClOpenDotBuilder Builder;
    Spline spline;
    Prepare(spline, caTarget, Mapped(caTarget));
    // At (8, 20) to (8, 23): 12 + 0.25 * 21.5 + 10. At (8, 20) to (11, 20): -0.5 * 9.5 + 40 + 20.
    EXPECT_NEAR(Builder.GetBorderDelta(spline, 8, 20, 4, true), 27.375, 0.001);
    EXPECT_NEAR(Builder.GetBorderDelta(spline, 8, 20, 4, false), 55.25, 0.001);
    EXPECT_NEAR(Builder.GetBorderDelta(spline, -8, -20, 1, true), -7.0, 0.001);
}

TEST(TargetPlacement, AddsUpABorderInFloats) {
    const ClOpenDotBuilder Builder;
    Spline spline;
    Prepare(spline, caTarget, Mapped(caTarget));
    float sum = 0.0F;
    double dSum = 0.0;
    for (int i = 0; i < 6000; ++i) {
        float x = 0.0F;
        float y = 0.0F;
        spline.Transform(static_cast<float>(i), 7.0F, &x, &y);
        sum += y;
        dSum += static_cast<double>(y);
    }
    const double dMean = Builder.GetBorderDelta(spline, 0, 7, 6000, false);
    EXPECT_EQ(dMean, static_cast<double>(sum / 6000.0F));
    EXPECT_NE(dMean, dSum / 6000.0);
}

TEST(TargetPlacement, ABorderNeedsASpline) {
    const ClOpenDotBuilder Builder;
    Spline spline;
    EXPECT_THROWS(Builder.GetBorderDelta(spline, 0, 0, 1, true), ClExTessarin, -1,
                  "Multiple initialization.");
}
