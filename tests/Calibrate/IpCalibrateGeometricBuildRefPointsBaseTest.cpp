// The run of a builder: its steps and their order, the record, the threshold, the target points.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include <gmock/gmock.h>

#include "Calibrate/OpenDotBuilder.h"
#include "support/Images.h"
#include "support/LogCapture.h"
#include "support/PublishedParameters.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using testing::ElementsAre;
using TestSupport::cdInfinity;
using TestSupport::cdNaN;
using TestSupport::ClLogCapture;
using TestSupport::ClOpenDotBuilder;
using TestSupport::ClTestGrid;
using TestSupport::ClTestImage;
using TestSupport::DotGrid;
using TestSupport::ExpectPoints;
using TestSupport::ListOf;
using TestSupport::PointList;
using TestSupport::Points;

namespace {

const Points caPattern = {{0.1, 0.1}, {0.5, 0.1}, {0.1, 0.9}, {0.5, 0.9}, {0.3, 0.4}};

/// Five points of a capture at 1000 dots per inch in x and 2000 in y.
Points Captured() {
    Points aPoints;
    for (const ClVector& v : caPattern)
        aPoints.emplace_back(v.x * 1000.0 + 40.0, v.y * 2000.0 + 30.0);
    return aPoints;
}

/// A builder whose dots are given, and which notes what it is asked for.
struct StRun {
    explicit StRun(int nPlanes = 1)
        : m_In(TestSupport::BlankImage(ClImage::eUInt8, 6, 4, nPlanes)) {
        for (int p = 0; p < nPlanes; ++p)
            TestSupport::SetSample(m_In, 0, 0, p, 10.0 * (p + 1));
        m_Builder.m_aPattern = caPattern;
        m_Builder.m_dSourceDpiX = 1000.0;
        m_Builder.m_dSourceDpiY = 2000.0;
        m_Builder.m_pInImage = &m_In;
        m_Builder.m_pOutData = &m_Data;
        m_Builder.m_Locate = [this](ClImage& rImage, DotGrid& rGrid) {
            m_aSteps.push_back("locate " + std::to_string(rImage.Data()[0]) + " after " +
                               std::to_string(rGrid.Entries()));
            m_pLastImage = &rImage;
            rGrid.Append(Vek::NewObject<TestSupport::ClDot>(ClVector()));
        };
        m_Builder.m_Associate = [this](DotGrid& rGrid, PointList& rActual) {
            m_aSteps.push_back("associate " + std::to_string(rGrid.Entries()));
            rActual = ListOf(Captured());
        };
    }

    ClTestImage m_In;
    ClCalibrateGeometricData m_Data;
    ClOpenDotBuilder m_Builder;
    std::vector<std::string> m_aSteps;
    const ClImage* m_pLastImage = nullptr;
};

ClCalibrateGeometricData Reference(std::uint32_t nPelsX = 3937, std::uint32_t nPelsY = 3937) {
    ClCalibrateGeometricData Data;
    Data.m_aTarget = ListOf(TestSupport::PatternPlaces(3.0, 4.0, 5.0, 6.0));
    Data.m_nTargetPelsX = nPelsX;
    Data.m_nTargetPelsY = nPelsY;
    return Data;
}

} // namespace

// What it starts with

TEST(DotBuilderBase, StartsWithTheScannersNumbers) {
    const ClOpenDotBuilder b;
    EXPECT_EQ(b.m_pInImage, nullptr);
    EXPECT_EQ(b.m_pRefData, nullptr);
    EXPECT_EQ(b.m_pOutDebugImage, nullptr);
    EXPECT_EQ(b.m_pOutLabelImage, nullptr);
    EXPECT_EQ(b.m_pOutData, nullptr);
    EXPECT_EQ(b.m_dBinarizeOffset, 10.0);
    EXPECT_TRUE(b.m_bCenterByBorders);
    EXPECT_EQ(b.m_dBottomMargin, 0.0);
    EXPECT_EQ(b.m_dDotDiameter, 0.8);
    EXPECT_EQ(b.m_dDotTolerance, 0.1);
    EXPECT_EQ(b.m_dPitch, 2.0);
    EXPECT_EQ(b.m_dPitchTolerance, 0.31);
    EXPECT_EQ(b.m_dAngleTolerance, 0.08726646259971647);
    EXPECT_EQ(b.m_nReserved, 0);
    EXPECT_EQ(b.m_dMinEccentricity, 0.25);
    EXPECT_EQ(b.m_dMaxEccentricity, 0.5);
    EXPECT_EQ(b.m_dMinArea, 200.0);
    EXPECT_EQ(b.m_dMaxArea, 700.0);
    EXPECT_TRUE(b.m_bBrightDots);
    EXPECT_EQ(b.m_dSourceDpiX, 492.706);
    EXPECT_EQ(b.m_dSourceDpiY, 1009.287);
    EXPECT_EQ(b.m_dTargetDpiX, 500.0);
    EXPECT_EQ(b.m_dTargetDpiY, 500.0);
    EXPECT_EQ(b.m_nTargetWidth, 320);
    EXPECT_EQ(b.m_nTargetHeight, 480);
    EXPECT_EQ(b.m_dMaxAngleX, 15.0);
    EXPECT_EQ(b.m_dMaxAngleY, 15.0);
    EXPECT_EQ(b.m_dMaxDistX, 50.0);
    EXPECT_EQ(b.m_dMaxDistY, 50.0);
}

TEST(DotBuilderBase, PublishesItsImages) {
    ClOpenDotBuilder Builder;
    ExpectTree(Builder,
               {TestSupport::TreePointer("pInImage", Builder.m_pInImage, ePfIn),
                TestSupport::TreePointer("pOutDebugImage", Builder.m_pOutDebugImage, ePfOut)});
    TestSupport::ExpectFlat(Builder, {});
}

// The run

TEST(DotBuilderBase, NeedsACaptureAndThenARecord) {
    StRun Run;
    Run.m_Data.m_nPlanes = 2;
    Run.m_Builder.m_pInImage = nullptr;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -37,
                  "ClIpCalibrateGeometricBuildRefPointsBase m_pInImage is NULL");
    EXPECT_EQ(Run.m_Data.m_nPlanes, 2u);
    Run.m_Builder.m_pOutData = nullptr;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -37,
                  "ClIpCalibrateGeometricBuildRefPointsBase m_pInImage is NULL");
    Run.m_Builder.m_pInImage = &Run.m_In;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -37,
                  "ClIpCalibrateGeometricBuildRefPointsBase m_pOutData is NULL");
    EXPECT_THAT(Run.m_aSteps, ElementsAre());
}

TEST(DotBuilderBase, WorksOnTheCaptureItselfWhereItHasOnePlane) {
    StRun Run;
    EXPECT_EQ(Run.m_Builder.Apply(), 0);
    EXPECT_EQ(Run.m_pLastImage, &Run.m_In);
    EXPECT_THAT(Run.m_aSteps, ElementsAre("locate 10 after 0", "associate 1"));
    EXPECT_EQ(Run.m_Data.m_nPlanes, 1u);
}

TEST(DotBuilderBase, RunsOncePerPlaneOnOneGrid) {
    StRun Run(2);
    EXPECT_EQ(Run.m_Builder.Apply(), 0);
    EXPECT_THAT(Run.m_aSteps, ElementsAre("locate 10 after 0", "associate 1", "locate 20 after 1",
                                          "associate 2"));
    EXPECT_EQ(Run.m_Data.m_nPlanes, 2u);
    ExpectPoints(Run.m_Data.m_aActual[1], Captured(), 0.0);
    EXPECT_EQ(Run.m_Data.m_aActual[2].Entries(), 0u);
}

TEST(DotBuilderBase, TakesThreePlanesOfFour) {
    StRun Run(4);
    EXPECT_EQ(Run.m_Builder.Apply(), 0);
    EXPECT_THAT(Run.m_aSteps, ElementsAre("locate 10 after 0", "associate 1", "locate 20 after 1",
                                          "associate 2", "locate 30 after 2", "associate 3"));
    EXPECT_EQ(Run.m_Data.m_nPlanes, 3u);
}

TEST(DotBuilderBase, RefusesMorePlanesThanAnImageIsSplitInto) {
    StRun Run(5);
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -35, "Image has more than 4 planes.");
    EXPECT_THAT(Run.m_aSteps, ElementsAre());
}

TEST(DotBuilderBase, RefusesACaptureWithoutPixels) {
    ClImage Empty;
    StRun Run;
    Run.m_Builder.m_Locate = nullptr;
    Run.m_Builder.m_pInImage = &Empty;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClExTessarin, -10, "The input image is not valid.");
    Run.m_Builder.m_pOutDebugImage = &Run.m_In;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -101, "Image area must be positive");
}

TEST(DotBuilderBase, MakesTheDebugImageLikeTheCapture) {
    for (const int nPlanes : {1, 3}) {
        StRun Run(nPlanes);
        ClImage Debug;
        Run.m_Builder.m_pOutDebugImage = &Debug;
        Run.m_Builder.Apply();
        EXPECT_EQ(Debug.Width(), 6);
        EXPECT_EQ(Debug.Height(), 4);
        EXPECT_EQ(Debug.Planes(), nPlanes);
        EXPECT_EQ(Debug.DataType(), ClImage::eUInt8);
        EXPECT_EQ(Debug.PelsX(), TestSupport::cnTestPels);
    }
}

TEST(DotBuilderBase, LogsTheReferenceRecordFirst) {
    StRun Run;
    ClCalibrateGeometricData Empty;
    ClCalibrateGeometricData Data = Reference();
    Data.m_aActual[0] = Data.m_aTarget;
    ClLogCapture Alone;
    Data.Log();
    const std::vector<std::string> aRecord = Alone.Texts();
    ASSERT_FALSE(aRecord.empty());

    ClLogCapture Whole;
    Run.m_Builder.m_pRefData = &Data;
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -39,
                  "Target and Source arrays must have same size!");
    std::vector<std::string> aTexts = Whole.Texts();
    ASSERT_GT(aTexts.size(), aRecord.size());
    EXPECT_EQ(aTexts[0], "ClIpCalibrateGeometricBuildRefPointsBase::Process() Enter");
    EXPECT_EQ(std::vector<std::string>(aTexts.begin() + 1,
                                       aTexts.begin() + 1 + static_cast<long>(aRecord.size())),
              aRecord);
}

TEST(DotBuilderBase, TracesItsSteps) {
    const std::string Class = "ClIpCalibrateGeometricBuildRefPointsBase::";
    StRun Run;
    ClLogCapture Log;
    Run.m_Builder.Apply();
    std::vector<std::string> aExpected = {Class + "Process() Enter", Class + "BuildTarget() Enter",
                                          Class + "BuildTarget() Leaving",
                                          Class + "CenterTarget() Enter"};
    for (int i = 0; i < 4; ++i) {
        aExpected.push_back(Class + "GetBorderDelta() Enter");
        aExpected.push_back(Class + "GetBorderDelta() Leaving");
    }
    aExpected.push_back(Class + "MoveArray() Enter");
    aExpected.push_back(Class + "MoveArray() Leaving");
    aExpected.push_back(Class + "CenterTarget() Leaving");
    aExpected.push_back(Class + "Process() Leaving");
    EXPECT_EQ(Log.Texts(7), aExpected);
    EXPECT_EQ(Log.Texts(), aExpected);
}

// The record

TEST(DotBuilderBase, FillsTheRecord) {
    StRun Run;
    Run.m_Builder.m_dSourceDpiX = 492.706;  // 19397.87 pixels per metre
    Run.m_Builder.m_dSourceDpiY = 1009.287; // 39735.71
    Run.m_Builder.m_dTargetDpiX = 500.0;    // 19685.04
    Run.m_Builder.m_dTargetDpiY = 250.0;    // 9842.52
    Run.m_Builder.m_nTargetWidth = 32;
    Run.m_Builder.m_nTargetHeight = 48;
    Run.m_Builder.Apply();
    EXPECT_EQ(Run.m_Data.m_nSourceWidth, 6u);
    EXPECT_EQ(Run.m_Data.m_nSourceHeight, 4u);
    EXPECT_EQ(Run.m_Data.m_nSourcePelsX, 19397u);
    EXPECT_EQ(Run.m_Data.m_nSourcePelsY, 39735u);
    EXPECT_EQ(Run.m_Data.m_nTargetWidth, 32u);
    EXPECT_EQ(Run.m_Data.m_nTargetHeight, 48u);
    EXPECT_EQ(Run.m_Data.m_nTargetPelsX, 19685u);
    EXPECT_EQ(Run.m_Data.m_nTargetPelsY, 9842u);
    EXPECT_EQ(Run.m_Data.m_nPlanes, 1u);
    ExpectPoints(Run.m_Data.m_aActual[0], Captured(), 0.0);
    ASSERT_EQ(Run.m_Data.m_aTarget.Entries(), caPattern.size());
}

TEST(DotBuilderBase, CentresTheTargetPoints) {
    // The corrected image's left border lies at x = 40 of the capture and its right one, 320 pixels
    // at 500 dots per inch further, at 680; top and bottom at 30 and 480 * 4 + 30. The capture's
    // middle is (3, 2).
    StRun Run;
    Run.m_Builder.Apply();
    Points aExpected;
    for (const ClVector& v : caPattern)
        aExpected.emplace_back(v.x * 500.0 + 0.5 * (360.0 - 3.0),
                               v.y * 500.0 + 0.25 * (990.0 - 2.0));
    ExpectPoints(Run.m_Data.m_aTarget, aExpected, 0.005);
}

TEST(DotBuilderBase, BackgroundIsTheGroundOfTheDots) {
    StRun Run;
    Run.m_Builder.m_bBrightDots = true;
    Run.m_Builder.Apply();
    EXPECT_EQ(Run.m_Data.m_nBackground, 0);
    Run.m_Builder.m_bBrightDots = false;
    Run.m_Builder.Apply();
    EXPECT_EQ(Run.m_Data.m_nBackground, 255);
}

TEST(DotBuilderBase, ResolutionsThatAreNoNumbersAreStoredAs0) {
    for (const double dDpi : {cdNaN, cdInfinity, -cdInfinity, 1e300}) {
        StRun Run;
        Run.m_Builder.m_bCenterByBorders = false;
        Run.m_Builder.m_dSourceDpiX = dDpi;
        Run.m_Builder.Apply();
        EXPECT_EQ(Run.m_Data.m_nSourcePelsX, 0u) << dDpi;
        EXPECT_EQ(Run.m_Data.m_nSourcePelsY, 78740u);
    }
}

TEST(DotBuilderBase, ClearsTheRecordFirst) {
    StRun Run;
    Run.m_Data = Reference();
    Run.m_Data.m_nPlanes = 1;
    Run.m_Data.m_aActual[2] = Run.m_Data.m_aTarget;
    Run.m_Builder.m_Locate = [&](ClImage&, DotGrid&) {
        EXPECT_EQ(Run.m_Data.m_aTarget.Entries(), 0u);
        throw ClException("stopped", -99, true, VEK_HERE);
    };
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -99, "stopped");
    EXPECT_FALSE(Run.m_Data.IsValid());
    EXPECT_EQ(Run.m_Data.m_nTargetPelsX, 0u);
    EXPECT_EQ(Run.m_Data.m_aActual[2].Entries(), 0u);
}

TEST(DotBuilderBase, AFailureLeavesTheRecordPartlyFilled) {
    StRun Run(2);
    const auto Associate = Run.m_Builder.m_Associate;
    Run.m_Builder.m_Associate = [&](DotGrid& rGrid, PointList& rActual) {
        if (rGrid.Entries() == 2)
            throw ClException("no dots", -600, true, VEK_HERE);
        Associate(rGrid, rActual);
    };
    EXPECT_THROWS(Run.m_Builder.Apply(), ClException, -600, "no dots");
    ExpectPoints(Run.m_Data.m_aActual[0], Captured(), 0.0);
    EXPECT_EQ(Run.m_Data.m_aActual[1].Entries(), 0u);
    EXPECT_EQ(Run.m_Data.m_aTarget.Entries(), 0u);
    EXPECT_EQ(Run.m_Data.m_nPlanes, 0u);
}

// Target points

TEST(DotBuilderBase, BuildsThePatternWithoutAReference) {
    ClOpenDotBuilder Builder;
    Builder.m_aPattern = {{1, 2}, {3, 5}};
    PointList aTarget = ListOf({{9, 9}, {9, 9}, {9, 9}});
    Builder.BuildTarget(aTarget, 10.0, 100.0, 0.5, 0.25);
    ExpectPoints(aTarget, {{15, 225}, {35, 525}});
}

TEST(DotBuilderBase, ScalesTheReferenceAndMovesItByPixels) {
    // 3937 pixels per metre are 100 dots per inch of this reckoning.
    ClCalibrateGeometricData Data = Reference(3937, 7874);
    ClOpenDotBuilder Builder;
    Builder.m_pRefData = &Data;
    PointList aTarget;
    Builder.BuildTarget(aTarget, 200.0, 100.0, 10.0, 20.0);
    ExpectPoints(aTarget, TestSupport::PatternPlaces(16.0, 22.0, 10.0, 3.0));
    ExpectPoints(Data.m_aTarget, TestSupport::PatternPlaces(3.0, 4.0, 5.0, 6.0), 0.0);
}

TEST(DotBuilderBase, RefusesAReferenceThatIsNone) {
    const auto expectRefused = [](ClCalibrateGeometricData& rData) {
        ClOpenDotBuilder Builder;
        Builder.m_pRefData = &rData;
        PointList aTarget = ListOf({{7, 8}});
        ClLogCapture Log;
        EXPECT_THROWS(Builder.BuildTarget(aTarget, 500.0, 500.0, 0.0, 0.0), ClException, -39,
                      "Target data is corrupt");
        EXPECT_THAT(Log.Texts(3), ElementsAre("calibration data (target) corrupt"));
        ExpectPoints(aTarget, {{7, 8}}, 0.0);
    };
    for (const unsigned long nPoints : {0ul, 74ul, 76ul}) {
        ClCalibrateGeometricData Data = Reference();
        Data.m_aTarget.SetEntries(nPoints);
        expectRefused(Data);
    }
    for (const double d : {cdNaN, cdInfinity, -cdInfinity}) {
        ClCalibrateGeometricData Data = Reference();
        Data.m_aTarget[74].x = d;
        expectRefused(Data);
        Data = Reference();
        Data.m_aTarget[0].y = d;
        expectRefused(Data);
    }
    ClCalibrateGeometricData NoColumns = Reference(0, 3937);
    expectRefused(NoColumns);
    ClCalibrateGeometricData NoLines = Reference(3937, 0);
    expectRefused(NoLines);
}

// Lists and grids

TEST(DotBuilderBase, TheCentreOfAGridIsThatOfItsCleanValidDots) {
    ClTestGrid Grid({{1, 10}, {2, 30}, {100, 100}, {200, 200}, {6, 50}});
    Grid(2).m_nStatus = 1;
    Grid(3).m_bValid = false;
    const ClVector vCentre = ClOpenDotBuilder().GetCentreOfGrid(Grid);
    EXPECT_EQ(vCentre.x, 3.0);
    EXPECT_EQ(vCentre.y, 30.0);
}

TEST(DotBuilderBase, AGridWithoutCleanDotsHasNoCentre) {
    ClTestGrid Grid({{1, 10}, {2, 30}});
    Grid(0).m_nStatus = 6;
    Grid(1).m_bValid = false;
    for (const ClVector& v : {ClOpenDotBuilder().GetCentreOfGrid(Grid),
                              ClOpenDotBuilder().GetCentreOfGrid(ClTestGrid())}) {
        EXPECT_TRUE(std::isnan(v.x));
        EXPECT_TRUE(std::isnan(v.y));
    }
}

TEST(DotBuilderBase, TheCentreOfAListIsItsMean) {
    const ClOpenDotBuilder Builder;
    const ClVector vCentre = Builder.GetCentreOfVectorArray(ListOf({{1, 2}, {3, 8}, {5, -4}}));
    EXPECT_EQ(vCentre.x, 3.0);
    EXPECT_EQ(vCentre.y, 2.0);
    EXPECT_TRUE(std::isnan(Builder.GetCentreOfVectorArray(PointList()).x));
    EXPECT_TRUE(std::isnan(Builder.GetCentreOfVectorArray(PointList()).y));
}

TEST(DotBuilderBase, MovesEveryPoint) {
    PointList aPoints = ListOf({{1, 2}, {-3, 8}});
    ClOpenDotBuilder().MoveArray(aPoints, {0.5, -2.0});
    ExpectPoints(aPoints, {{1.5, 0}, {-2.5, 6}}, 0.0);
}

TEST(DotBuilderBase, ReleasesDotsOnce) {
    DotGrid Grid;
    Grid.Append(Vek::NewObject<TestSupport::ClDot>(ClVector(1, 2)));
    Grid.Append(nullptr);
    TestSupport::DotBuilder::ReleaseDots(Grid);
    EXPECT_EQ(Grid.Entries(), 0u);
    TestSupport::DotBuilder::ReleaseDots(Grid);
    EXPECT_EQ(Grid.Entries(), 0u);
}
