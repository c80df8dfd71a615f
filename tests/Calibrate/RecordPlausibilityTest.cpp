// Stored records: the pattern as target, and steps between dots that are all alike.

#include "Calibrate/RecordPlausibility.h"

#include "Calibrate/DotGrids.h"
#include "support/AllocationFailures.h"
#include "support/LogCapture.h"
#include "support/Records.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using namespace TestSupport;

namespace {

using TestSupport::cdNaN;

constexpr const char* cszTarget = "Target data is corrupt";
constexpr const char* cszSource = "Source data is corrupt";
constexpr const char* cszSize = "Target and Source arrays must have same size!";

/// A record with steps of exactly 40 and 80 pixels in the capture.
ClCalibrateGeometricData Plain() {
    ClCalibrateGeometricData Data;
    Data.m_nTargetWidth = 320;
    Data.m_nTargetHeight = 480;
    Data.m_nTargetPelsX = Data.m_nTargetPelsY = 19685;
    Data.m_nPlanes = 1;
    // 500 dots per inch, 39.37 pixels a pitch
    Data.m_aTarget = ListOf(PatternPlaces(42, 43, 39.37, 39.37));
    Data.m_aActual[0] = ListOf(PatternPlaces(100, 200, 40, 80));
    return Data;
}

void Validate(const ClCalibrateGeometricData& rData) {
    ClQK7().ValidateCalibrationData(rData);
}

void ExpectTargetRefused(const ClCalibrateGeometricData& rData) {
    const ClLogCapture Log;
    EXPECT_THROWS(Validate(rData), ClException, -39, cszTarget);
    EXPECT_EQ(Log.Texts(3), std::vector<std::string>{"calibration data (target) corrupt"});
    EXPECT_THROWS(ClQK7().ValidateTargetPoints(rData), ClException, -39, cszTarget);
}

void ExpectSourceRefused(const ClCalibrateGeometricData& rData) {
    const ClLogCapture Log;
    EXPECT_THROWS(Validate(rData), ClException, -39, cszSource);
    EXPECT_EQ(Log.Texts(3), std::vector<std::string>{"calibration data (source) corrupt"});
    EXPECT_NO_THROW(ClQK7().ValidateTargetPoints(rData));
}

/// Makes the steps of a list alternate between long ones and short ones.
void Alternate(ClBuilder::PointList& rPoints, double dShareX, double dShareY) {
    const double dX = 40 * dShareX / 2;
    const double dY = 80 * dShareY / 2;
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < (c == 0 || c == 6 ? 10 : 11); ++r) {
            rPoints[PointAt(c, r)].x += c % 2 != 0 ? dX : -dX;
            rPoints[PointAt(c, r)].y += r % 2 != 0 ? dY : -dY;
        }
}

} // namespace

// Records as they are

TEST(ValidateCalibrationData, AcceptsRecordsOfThePattern) {
    const ClLogCapture Log;
    EXPECT_NO_THROW(Validate(Plain()));
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    EXPECT_NO_THROW(Validate(Data));
    EXPECT_TRUE(Log.Texts(3).empty());
}

TEST(ValidateCalibrationData, LogsEnterFirstAndLeavingLast) {
    const ClLogCapture Log;
    Validate(Plain());
    const std::string Member =
        "ClIpCalibrateGeometricBuildRefPointsBase::ValidateCalibrationData()";
    EXPECT_EQ(Log.Texts(7).front(), Member + " Enter");
    EXPECT_EQ(Log.Texts(7).back(), Member + " Leaving");
}

TEST(ValidateCalibrationData, LeavesTheRecordAsItIs) {
    const auto Data = Plain();
    Validate(Data);
    EXPECT_EQ(Data.m_aTarget[0].x, 42);
    EXPECT_EQ(Data.m_aActual[0][0].y, 200);
}

TEST(ValidateCalibrationData, AnswersFailedAllocations) {
    const auto Data = Plain();
    FailEachAllocation([&] { Validate(Data); });
}

// Target points

TEST(ValidateTargetPoints, AcceptsATargetMovedAsAWhole) {
    for (const double d : {100.0, -100.0, 30000.0}) {
        auto Data = Plain();
        for (unsigned long i = 0; i < 75; ++i) {
            Data.m_aTarget[i].x += d;
            Data.m_aTarget[i].y -= d;
        }
        EXPECT_NO_THROW(Validate(Data));
    }
}

TEST(ValidateTargetPoints, RefusesOnePointMovedByMoreThanTenPixels) {
    for (const unsigned long nPoint : {1ul, 40ul, 74ul})
        for (const double dSign : {1.0, -1.0}) {
            auto Data = Plain();
            Data.m_aTarget[nPoint].x += dSign * 9.9;
            EXPECT_NO_THROW(Validate(Data));
            Data.m_aTarget[nPoint].x += dSign * 1.1;
            ExpectTargetRefused(Data);
            Data = Plain();
            Data.m_aTarget[nPoint].y += dSign * 9.9;
            EXPECT_NO_THROW(Validate(Data));
            Data.m_aTarget[nPoint].y += dSign * 1.1;
            ExpectTargetRefused(Data);
        }
}

TEST(ValidateTargetPoints, MeasuresAgainstTheFirstPoint) {
    auto Data = Plain();
    Data.m_aTarget[0].x += 11;
    ExpectTargetRefused(Data);
}

TEST(ValidateTargetPoints, WantsThePitchOfTheTargetsResolution) {
    auto Data = Plain();
    Data.m_nTargetPelsX = 20685; // the last column 12 pixels off
    ExpectTargetRefused(Data);
    Data = Plain();
    Data.m_nTargetPelsY = 20685;
    ExpectTargetRefused(Data);
    Data.m_nTargetPelsY = 20085; // the last row 8 pixels off
    EXPECT_NO_THROW(Validate(Data));
}

TEST(ValidateTargetPoints, SurvivesHugeCoordinates) {
    for (const double d : {1e30, 3.4e38, 1.7e308})
        for (const unsigned long nPoint : {0ul, 1ul, 74ul}) {
            auto Data = Plain();
            Data.m_aTarget[nPoint].x = d;
            ExpectTargetRefused(Data);
            Data.m_aTarget[nPoint].x = -d;
            Data.m_aTarget[74 - nPoint].x = d;
            ExpectTargetRefused(Data);
        }
}

TEST(ValidateTargetPoints, RefusesWhatTheLimitsRefuse) {
    auto Data = Plain();
    Data.m_aTarget[5].x = cdNaN;
    ExpectTargetRefused(Data);
    Data = Plain();
    Data.m_aTarget.SetEntries(74);
    ExpectTargetRefused(Data);
    Data = Plain();
    Data.m_aTarget.Append({1, 1});
    ExpectTargetRefused(Data);
    Data = Plain();
    Data.m_nTargetHeight = 16385;
    ExpectTargetRefused(Data);
    Data = ClCalibrateGeometricData();
    ExpectTargetRefused(Data);
}

// Steps

TEST(ValidateCalibrationData, AcceptsStepsWithin29PercentOfTheMean) {
    auto Data = Plain();
    Alternate(Data.m_aActual[0], 0.29, 0.29);
    EXPECT_NO_THROW(Validate(Data));
    Data = Plain();
    Alternate(Data.m_aActual[0], -0.29, 0.29);
    EXPECT_NO_THROW(Validate(Data));
}

TEST(ValidateCalibrationData, RefusesStepsOf31Percent) {
    auto Data = Plain();
    Alternate(Data.m_aActual[0], 0.31, 0.0);
    ExpectSourceRefused(Data);
    Data = Plain();
    Alternate(Data.m_aActual[0], 0.0, 0.31);
    ExpectSourceRefused(Data);
}

// A single step changes the mean by a 68th of its change at most.
TEST(ValidateCalibrationData, RefusesOneStepOffBy31PercentOfTheMean) {
    for (const double dSign : {1.0, -1.0}) {
        auto Data = Plain();
        Data.m_aActual[0][PointAt(3, 10)].y += dSign * 80 * 0.29;
        EXPECT_NO_THROW(Validate(Data));
        Data.m_aActual[0][PointAt(3, 10)].y += dSign * 80 * 0.02;
        ExpectSourceRefused(Data);
        Data = Plain();
        Data.m_aActual[0][PointAt(0, 4)].x += dSign * 40 * 0.29;
        EXPECT_NO_THROW(Validate(Data));
        Data.m_aActual[0][PointAt(0, 4)].x += dSign * 40 * 0.02;
        ExpectSourceRefused(Data);
    }
}

TEST(ValidateCalibrationData, LooksAtEveryStep) {
    for (unsigned long nPoint = 0; nPoint < 75; ++nPoint) {
        auto Data = Plain();
        Data.m_aActual[0][nPoint].y += 30;
        ExpectSourceRefused(Data);
        Data = Plain();
        Data.m_aActual[0][nPoint].x += 15;
        ExpectSourceRefused(Data);
    }
}

TEST(ValidateCalibrationData, WantsStepsToTheRightAndDown) {
    auto Data = Plain();
    for (unsigned long i = 0; i < 75; ++i)
        Data.m_aActual[0][i].x = -Data.m_aActual[0][i].x;
    ExpectSourceRefused(Data);
    Data = Plain();
    for (unsigned long i = 0; i < 75; ++i)
        Data.m_aActual[0][i].y = -Data.m_aActual[0][i].y;
    ExpectSourceRefused(Data);
}

TEST(ValidateCalibrationData, MeasuresStepsAlongTheirAxisOnly) {
    auto Data = Plain();
    for (unsigned long i = 0; i < 75; ++i) // a shear by a whole pitch
        Data.m_aActual[0][i].x += Data.m_aActual[0][i].y / 2;
    EXPECT_NO_THROW(Validate(Data));
}

TEST(ValidateCalibrationData, AcceptsDotsThatAllLieAtOnePlace) {
    auto Data = Plain(); // no step deviates from a mean of 0; the splines refuse such a record
    for (unsigned long i = 0; i < 75; ++i)
        Data.m_aActual[0][i] = {5, 5};
    EXPECT_NO_THROW(Validate(Data));
}

TEST(ValidateCalibrationData, LooksAtTheStepsOfPlane0Only) {
    auto Data = Plain();
    Data.m_nPlanes = 2;
    Data.m_aActual[1] = ListOf(std::vector<ClVector>(75, ClVector(3, 3)));
    EXPECT_NO_THROW(Validate(Data));
}

TEST(ValidateCalibrationData, SurvivesStepsWhoseSumOverflows) {
    auto Data = Plain();
    for (unsigned long i = 0; i < 75; ++i)
        Data.m_aActual[0][i].y = i % 2 == 0 ? 1.7e308 : -1.7e308;
    ExpectSourceRefused(Data);
    Data = Plain();
    Data.m_aActual[0][0].x = 1e308;
    ExpectSourceRefused(Data);
}

// Order

TEST(ValidateCalibrationData, TestsTargetThenCountsThenFiniteCoordinatesThenSteps) {
    auto Data = Plain();
    Data.m_nPlanes = 3;
    Data.m_aActual[0][20].y += 30; // a step
    Data.m_aActual[1] = Data.m_aActual[0];
    Data.m_aActual[2] = Data.m_aActual[0];
    ExpectSourceRefused(Data);
    Data.m_aActual[1][0].x = cdNaN;
    ExpectSourceRefused(Data);
    Data.m_aActual[2].SetEntries(74);
    EXPECT_THROWS(Validate(Data), ClException, -39, cszSize);
    Data.m_aTarget[3].y += 11;
    ExpectTargetRefused(Data);
}

// Grids from lists

TEST(ArrayToGrid, MakesADotOfEveryPointAtItsPlace) {
    ClQK7 Builder;
    ClTestGrid Grid({{1, 1}});
    const auto Data = Plain();
    Builder.ArrayToGrid(Data.m_aActual[0], Data.m_aTarget, Grid);
    ASSERT_EQ(Grid.Entries(), 75u);
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < (c == 0 || c == 6 ? 10 : 11); ++r) {
            const ClDot& rDot = Grid(PointAt(c, r));
            EXPECT_EQ(rDot.m_vGrid.x, c);
            EXPECT_EQ(rDot.m_vGrid.y, r);
            EXPECT_EQ(rDot.m_vPos.x, 100 + 40 * c);
            EXPECT_EQ(rDot.m_vPos.y, 200 + 80 * r);
            EXPECT_EQ(rDot.m_vTarget.x, Data.m_aTarget[PointAt(c, r)].x);
            EXPECT_EQ(rDot.m_vTarget.y, Data.m_aTarget[PointAt(c, r)].y);
            EXPECT_EQ(Builder.RetrieveDot(Grid, c, r), &rDot);
        }
    EXPECT_EQ(Builder.RetrieveDot(Grid, 0, 10), nullptr);
    EXPECT_EQ(Builder.RetrieveDot(Grid, 6, 10), nullptr);
}

TEST(ArrayToGrid, WantsListsOfOneSize) {
    ClQK7 Builder;
    ClTestGrid Grid({{1, 1}});
    const auto aPoints = ListOf({{1, 1}, {2, 2}});
    EXPECT_THROWS(Builder.ArrayToGrid(aPoints, ListOf({{1, 1}}), Grid), ClException, -39, cszSize);
    EXPECT_THROWS(Builder.ArrayToGrid(ListOf({}), aPoints, Grid), ClException, -39, cszSize);
    EXPECT_EQ(Grid.Entries(), 1u) << "the grid is as before";
    Builder.ArrayToGrid(ListOf({}), ListOf({}), Grid);
    EXPECT_EQ(Grid.Entries(), 0u);
}

TEST(ArrayToGrid, GivesPointsBehindThePatternNoPlace) {
    ClQK7 Builder;
    ClTestGrid Grid;
    auto aPlaces = PatternPlaces();
    aPlaces.push_back({7, 8});
    Builder.ArrayToGrid(ListOf(aPlaces), ListOf(aPlaces), Grid);
    ASSERT_EQ(Grid.Entries(), 76u);
    EXPECT_EQ(Grid(75).m_vPos.x, 7);
    EXPECT_EQ(Grid(75).m_vGrid.x, -1);
    EXPECT_EQ(Grid(75).m_vGrid.y, -1);
}

TEST(ArrayToGrid, AnswersFailedAllocations) {
    const auto Data = Plain();
    FailEachAllocation([&] {
        ClQK7 Builder;
        ClTestGrid Grid;
        Builder.ArrayToGrid(Data.m_aActual[0], Data.m_aTarget, Grid);
    });
}

TEST(RecordPlausibility, RefusesATargetOfAnotherNumberOfPointsOrOfNone) {
    const auto aIdeal = ListOf(PatternPlaces());
    auto aPlaces = PatternPlaces();
    aPlaces.push_back(aPlaces.back());
    const ClBuilder::PointList aNone;
    EXPECT_NO_THROW(RecordPlausibility::CheckTarget(aIdeal, aIdeal));
    EXPECT_THROWS(RecordPlausibility::CheckTarget(aIdeal, ListOf(aPlaces)), ClException, -39,
                  cszTarget);
    EXPECT_THROWS(RecordPlausibility::CheckTarget(aNone, aNone), ClException, -39, cszTarget);
}
