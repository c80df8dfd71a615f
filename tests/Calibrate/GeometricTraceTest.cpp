// The two lines of those members of the dot builders that no exported call reaches, or that it
// reaches with more than two lines.

#include "Calibrate/DotGrids.h"
#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/WorkingFolder.h"

#include <gtest/gtest.h>

using TestSupport::ClLogCapture;
using TestSupport::StLogLine;

namespace {

using Builder = ClIpCalibrateGeometricBuildRefPointsBase;

const std::string cBase = "ClIpCalibrateGeometricBuildRefPointsBase::";

std::vector<StLogLine> Lines(const std::vector<std::string>& aTexts) {
    std::vector<StLogLine> aLines;
    for (const std::string& Text : aTexts)
        aLines.push_back({7, Text});
    return aLines;
}

/// Expects Enter and Leaving, and nothing else.
template <class Call>
void ExpectTwoLines(const std::string& Member, Call call) {
    const ClLogCapture Log;
    call();
    EXPECT_EQ(Log.Lines(), Lines({Member + "() Enter", Member + "() Leaving"}));
}

/// Expects Enter and Leaving with those of another member between.
template <class Call>
void ExpectFourLines(const std::string& Member, const std::string& Inner, Call call) {
    const ClLogCapture Log;
    call();
    EXPECT_EQ(Log.Lines(), Lines({Member + "() Enter", Inner + "() Enter", Inner + "() Leaving",
                                  Member + "() Leaving"}));
}

} // namespace

TEST(GeometricTrace, StepsOnAnEmptyGridLeaveTwoLines) {
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    Builder::DotGrid Grid;
    ExpectTwoLines(cBase + "SortXY", [&] { Model.SortXY(Grid); });
    ExpectTwoLines(cBase + "RemoveLessNeighbours", [&] { Model.RemoveLessNeighbours(Grid); });
    ExpectTwoLines(cBase + "ReduceToFittingNeighbours",
                   [&] { Model.ReduceToFittingNeighbours(Grid); });
    ExpectTwoLines(cBase + "GridRemoveBadPoints", [&] { Model.GridRemoveBadPoints(Grid); });
    ExpectTwoLines(cBase + "RemoveWrongAngleNeighbours",
                   [&] { Model.RemoveWrongAngleNeighbours(Grid); });
    ExpectTwoLines(cBase + "TraceGrid", [&] { Model.TraceGrid(Grid); });
    ExpectTwoLines(cBase + "LogGrid", [&] { Model.LogGrid(Grid); });
}

TEST(GeometricTrace, HelpersOfARunLeaveTwoLines) {
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    TestSupport::ClTestGrid Grid({{1.0, 2.0}, {3.0, 4.0}});
    Builder::PointList aPoints = TestSupport::ListOf({{1.0, 2.0}});
    double adValues[] = {2.0, 1.0};
    ExpectTwoLines(cBase + "GetCentreOfGrid", [&] { Model.GetCentreOfGrid(Grid); });
    ExpectTwoLines(cBase + "GetCentreOfVectorArray",
                   [&] { Model.GetCentreOfVectorArray(aPoints); });
    ExpectTwoLines(cBase + "MoveArray", [&] { Model.MoveArray(aPoints, {1.0, 1.0}); });
    ExpectTwoLines(cBase + "RemoveGridPoint", [&] { Model.RemoveGridPoint(Grid, 0); });
    ExpectTwoLines(cBase + "GetBottumLeftDot", [&] { Model.GetBottumLeftDot(Grid); });
    ExpectTwoLines(cBase + "GetMedian", [&] { Model.GetMedian(adValues, 2); });
    ExpectTwoLines(cBase + "GetMedian", [&] { Model.GetMedian(nullptr, 0); });
}

TEST(GeometricTrace, LookingUpADotLeavesNoLine) {
    const ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    const TestSupport::ClTestGrid Grid({{1.0, 2.0}});
    const ClLogCapture Log;
    Model.RetrieveDot(Grid, 0, 0);
    EXPECT_TRUE(Log.Lines().empty());
}

// They run hundreds or thousands of times in a call.
TEST(GeometricTrace, DotsRecordsSplinesAndTheKernelLeaveNoLine) {
    ClCalibrateGeometricData Data;
    Fill(TestSupport::PlausibleRecord(), Data);
    const ClLogCapture Log;
    TestSupport::ClTestGrid Grid({{1.0, 2.0}, {40.0, 2.0}});
    Grid(0).AddDot(&Grid(1), true);
    Grid(0).GetNeighbourDirection(0);
    Grid(0).GetNeighbourInDirection(0, 1.0);
    Grid(0).Remove(&Grid(1));
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
    Stream.Seek(0, 0);
    ClCalibrateGeometricData Back;
    static_cast<ClCalibrateDataBase&>(Back).Read(Stream);
    unsigned char acHash[ClCalibrateGeometricData::cnHashSize];
    Back.GenerateHash(acHash);
    TpThinPlateSplines<double> Splines;
    Splines.Setup(75, Data.m_aTarget.Data(), Data.m_aActual[0].Data());
    double x = 0.0;
    double y = 0.0;
    Splines.Transform(1.0, 2.0, &x, &y);
    ClIpCalibrateGeometricBicubic::CubicConvolution(0.5);
    EXPECT_TRUE(Log.Lines().empty());
}

TEST(GeometricTrace, StepsAskTheModelForItsColumnLengths) {
    const std::string Lengths = "ClIpCalibrateGeometricBuildRefPointsQK7::GetGridColumnLengths";
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    Builder::DotGrid Grid;
    Builder::PointList aNone;
    ExpectFourLines(cBase + "ArrayToGrid", Lengths, [&] { Model.ArrayToGrid(aNone, aNone, Grid); });
    const Builder::PointList aPoints = TestSupport::ListOf(TestSupport::PatternPlaces());
    ExpectFourLines(cBase + "CheckGridLines", Lengths, [&] { Model.CheckGridLines(aPoints); });
}

TEST(GeometricTrace, RemovedDotsLeaveTheirLinesWithinTheStep) {
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    TestSupport::ClTestGrid Grid({{1.0, 2.0}}); // without neighbours
    ExpectFourLines(cBase + "RemoveLessNeighbours", cBase + "RemoveGridPoint",
                    [&] { Model.RemoveLessNeighbours(Grid); });
}

TEST(GeometricTrace, StepsForDevelopersLeaveTwoLines) {
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    const Builder::DotGrid Grid;
    ClImage Image(40, 40, 1, 0, 0);
    ClVector vCentre;
    Builder::PointList aPoints;
    Builder::PointList aClusters;
    ExpectTwoLines(cBase + "GridToDebugImage", [&] { Model.GridToDebugImage(Grid, Image); });
    ExpectTwoLines(cBase + "CheckDot", [&] { Model.CheckDot(Image, 20, 20, 100, vCentre); });
    ExpectTwoLines(cBase + "RemoveSmallPoints",
                   [&] { Model.RemoveSmallPoints(aPoints, aClusters); });
}

TEST(GeometricTrace, StoringAPictureLeavesTwoLines) {
    const TestSupport::ClWorkingFolder Folder;
    ClIpCalibrateGeometricBuildRefPointsQK7 Model;
    ClImage Image(4, 4, 1, 0, 0);
    ExpectTwoLines(cBase + "StoreDebug", [&] { Model.StoreDebug(&Image, "grid", ""); });
}

TEST(GeometricTrace, ModelsLogUnderTheirOwnNames) {
    const auto ExpectModel = [](const std::string& Class, Builder& rModel) {
        Builder::PointList aTarget;
        Builder::PointList aOther;
        TpArrayStatic<int> aLengths;
        const std::string Lengths = Class + "::GetGridColumnLengths";
        ExpectTwoLines(Lengths, [&] { rModel.GetGridColumnLengths(aLengths); });
        ExpectFourLines(Class + "::BuildTargetPoints", Lengths,
                        [&] { rModel.BuildTargetPoints(aTarget, 500.0, 500.0, 0.0, 0.0); });
        ExpectFourLines(Class + "::MoveTarget", cBase + "MoveArray",
                        [&] { rModel.MoveTarget(aTarget, aOther); });
    };
    ClIpCalibrateGeometricBuildRefPointsQK7 Raw;
    ClIpCalibrateGeometricBuildRefPointsQK7Half Half;
    ExpectModel("ClIpCalibrateGeometricBuildRefPointsQK7", Raw);
    ExpectModel("ClIpCalibrateGeometricBuildRefPointsQK7Half", Half);
}
