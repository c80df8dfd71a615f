// Both models of the dot target: what they have in common, and where they differ.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"

#include "Calibrate/DotGrids.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "support/AllocationFailures.h"
#include "support/LogCapture.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

using namespace TestSupport;

namespace {

using ClHalf = ClIpCalibrateGeometricBuildRefPointsQK7Half;
using Places = std::vector<ClVector>;

template <class Model>
struct StExpected;

template <>
struct StExpected<ClQK7> {
    static constexpr const char* m_szName = "ClIpCalibrateGeometricBuildRefPointsQK7";
    static constexpr const char* m_szCount = "Not the expected dot count found.";
    static constexpr double m_dPitchY = 1009.287 / 25.4 * 2;
    static constexpr double m_dTolX = 2.0 * 0.31 * 492.706 / 25.4;
    static constexpr unsigned m_nRejectedStatus = 7;
    static constexpr double m_dRejectedWeight = 1.0;
};

template <>
struct StExpected<ClHalf> {
    static constexpr const char* m_szName = "ClIpCalibrateGeometricBuildRefPointsQK7Half";
    static constexpr const char* m_szCount = "Not the expected Dot count found.";
    static constexpr double m_dPitchY = 504.743 / 25.4 * 2;
    static constexpr double m_dTolX = 2.0 * 0.21 * 492.706 / 25.4;
    static constexpr unsigned m_nRejectedStatus = 0;
    static constexpr double m_dRejectedWeight = 0.0;
};

template <class Model>
class TargetModel : public testing::Test {
protected:
    static Places Pattern(double x = 100, double y = 150) {
        return PatternPlaces(x, y, cdPitchX, StExpected<Model>::m_dPitchY);
    }

    /// The points of a grid of dots at these places.
    ClBuilder::PointList Points(const Places& aPlaces) {
        ClTestGrid Grid(aPlaces);
        ClBuilder::PointList aPoints;
        m_Model.GridToArray(Grid, aPoints);
        return aPoints;
    }

    void ExpectPoints(const ClBuilder::PointList& aPoints, const Places& aPlaces) {
        ASSERT_EQ(aPoints.Entries(), aPlaces.size());
        for (unsigned long i = 0; i < aPoints.Entries(); ++i) {
            EXPECT_EQ(aPoints[i].x, aPlaces[i].x) << i;
            EXPECT_EQ(aPoints[i].y, aPlaces[i].y) << i;
        }
    }

    Model m_Model;
};

using Models = testing::Types<ClQK7, ClHalf>;
TYPED_TEST_SUITE(TargetModel, Models);

} // namespace

// Class

TYPED_TEST(TargetModel, CreatesItsOwnKindWithItsName) {
    const std::unique_ptr<ClProcessorBase> pCreated(this->m_Model.Create());
    EXPECT_NE(dynamic_cast<TypeParam*>(pCreated.get()), nullptr);
    EXPECT_STREQ(pCreated->Name(), StExpected<TypeParam>::m_szName);
    EXPECT_STREQ(this->m_Model.Name(), StExpected<TypeParam>::m_szName);
}

TYPED_TEST(TargetModel, HasTheDefaultsOfEveryModel) {
    const TypeParam& rModel = this->m_Model;
    EXPECT_EQ(rModel.m_pInImage, nullptr);
    EXPECT_EQ(rModel.m_pRefData, nullptr);
    EXPECT_EQ(rModel.m_pOutDebugImage, nullptr);
    EXPECT_EQ(rModel.m_pOutLabelImage, nullptr);
    EXPECT_EQ(rModel.m_pOutData, nullptr);
    EXPECT_EQ(rModel.m_dBinarizeOffset, 10.0);
    EXPECT_TRUE(rModel.m_bCenterByBorders);
    EXPECT_EQ(rModel.m_dBottomMargin, 0.0);
    EXPECT_EQ(rModel.m_dDotDiameter, 0.8);
    EXPECT_EQ(rModel.m_dDotTolerance, 0.1);
    EXPECT_EQ(rModel.m_dPitch, 2.0);
    EXPECT_EQ(rModel.m_dAngleTolerance, 0.08726646259971647);
    EXPECT_EQ(rModel.m_nReserved, 0);
    EXPECT_TRUE(rModel.m_bBrightDots);
    EXPECT_EQ(rModel.m_dSourceDpiX, 492.706);
    EXPECT_EQ(rModel.m_dTargetDpiX, 500.0);
    EXPECT_EQ(rModel.m_dTargetDpiY, 500.0);
    EXPECT_EQ(rModel.m_nTargetWidth, 320);
    EXPECT_EQ(rModel.m_nTargetHeight, 480);
    EXPECT_EQ(rModel.m_dMaxAngleY, 15.0);
    EXPECT_EQ(rModel.m_dMaxDistY, 50.0);
    EXPECT_EQ(rModel.m_dMaxAngleX, 15.0);
    EXPECT_EQ(rModel.m_dMaxDistX, 50.0);
}

TEST(TargetModelQK7, HasTheDefaultsOfTheRawCapture) {
    const ClQK7 Model;
    EXPECT_EQ(Model.m_dPitchTolerance, 0.31);
    EXPECT_EQ(Model.m_dMinEccentricity, 0.25);
    EXPECT_EQ(Model.m_dMaxEccentricity, 0.5);
    EXPECT_EQ(Model.m_dMinArea, 200.0);
    EXPECT_EQ(Model.m_dMaxArea, 700.0);
    EXPECT_EQ(Model.m_dSourceDpiY, 1009.287);
}

TEST(TargetModelQK7Half, HasTheDefaultsOfEqualResolutions) {
    const ClHalf Model;
    EXPECT_EQ(Model.m_dPitchTolerance, 0.21);
    EXPECT_EQ(Model.m_dMinEccentricity, 0.0);
    EXPECT_EQ(Model.m_dMaxEccentricity, 0.35);
    EXPECT_EQ(Model.m_dMinArea, 100.0);
    EXPECT_EQ(Model.m_dMaxArea, 350.0);
    EXPECT_EQ(Model.m_dSourceDpiY, 504.743);
}

// The pattern

TYPED_TEST(TargetModel, HasSevenColumnsWithoutTheLowerCorners) {
    TpArrayStatic<int> aLengths;
    aLengths.New(3);
    this->m_Model.GetGridColumnLengths(aLengths);
    const std::vector<int> anLengths(aLengths.Data(), aLengths.Data() + aLengths.Entries());
    EXPECT_EQ(anLengths, (std::vector<int>{10, 11, 11, 11, 11, 11, 10}));
}

TYPED_TEST(TargetModel, BuildsThePatternColumnByColumn) {
    ClBuilder::PointList aPoints = ListOf({{1, 1}});
    this->m_Model.BuildTargetPoints(aPoints, 25.4, 254, 0, 0); // 2 and 20 pixels a pitch
    ASSERT_EQ(aPoints.Entries(), 75u);
    const Places aPlaces = PatternPlaces(0, 0, 2, 20);
    for (unsigned long i = 0; i < 75; ++i) {
        EXPECT_NEAR(aPoints[i].x, aPlaces[i].x, 1e-12);
        EXPECT_NEAR(aPoints[i].y, aPlaces[i].y, 1e-12);
    }
}

TYPED_TEST(TargetModel, StepsBy39PixelsAt500DotsPerInch) {
    ClBuilder::PointList aPoints;
    this->m_Model.BuildTargetPoints(aPoints, 500, 500, 0, 0);
    EXPECT_EQ(aPoints[0].x, 0.0);
    EXPECT_EQ(aPoints[0].y, 0.0);
    EXPECT_EQ(aPoints[1].y, 39.37007874015748);
    EXPECT_EQ(aPoints[10].x, 39.37007874015748);
    EXPECT_EQ(aPoints[PointAt(6, 9)].x, 236.22047244094489); // 6000 / 25.4
    EXPECT_EQ(aPoints[PointAt(5, 10)].y, 393.70078740157481);
}

TYPED_TEST(TargetModel, TakesOffsetsInMillimetres) {
    ClBuilder::PointList aPoints;
    this->m_Model.BuildTargetPoints(aPoints, 254, 508, 3.5, -1.25);
    EXPECT_NEAR(aPoints[0].x, 35, 1e-12);
    EXPECT_NEAR(aPoints[0].y, -25, 1e-12);
    EXPECT_NEAR(aPoints[PointAt(2, 3)].x, 75, 1e-12);
    EXPECT_NEAR(aPoints[PointAt(2, 3)].y, 95, 1e-12);
}

TYPED_TEST(TargetModel, MovesATargetByOnePitchOfTheTarget) {
    ClBuilder::PointList aTarget = ListOf({{1, 2}, {-3, 4}});
    ClBuilder::PointList aOther = ListOf({{7, 8}});
    this->m_Model.m_dTargetDpiX = 254;
    this->m_Model.m_dTargetDpiY = 127;
    this->m_Model.MoveTarget(aTarget, aOther);
    EXPECT_NEAR(aTarget[0].x, 21, 1e-12);
    EXPECT_NEAR(aTarget[0].y, 12, 1e-12);
    EXPECT_NEAR(aTarget[1].x, 17, 1e-12);
    EXPECT_NEAR(aTarget[1].y, 14, 1e-12);
    EXPECT_EQ(aOther[0].x, 7);
    EXPECT_EQ(aOther[0].y, 8);
}

// From grid to list

TYPED_TEST(TargetModel, WritesTheDotsInPatternOrder) {
    Places aPlaces = this->Pattern();
    Places aShuffled;
    for (unsigned long i = 0; i < 75; ++i)
        aShuffled.push_back(aPlaces[(i * 29 + 13) % 75]);
    this->ExpectPoints(this->Points(aShuffled), aPlaces);
}

TYPED_TEST(TargetModel, AcceptsAPatternMovedInEitherDirection) {
    for (const ClVector& rMove : {ClVector(1000, 0), ClVector(-100, 0), ClVector(0, 2000)}) {
        const Places aPlaces = this->Pattern(100 + rMove.x, 150 + rMove.y);
        this->ExpectPoints(this->Points(aPlaces), aPlaces);
    }
}

TYPED_TEST(TargetModel, RefusesAMissingDot) {
    for (const unsigned long nMissing : {0ul, 37ul, 74ul}) {
        Places aPlaces = this->Pattern();
        aPlaces.erase(aPlaces.begin() + static_cast<long>(nMissing));
        EXPECT_THROWS(this->Points(aPlaces), ClException, -600, StExpected<TypeParam>::m_szCount);
    }
    EXPECT_THROWS(this->Points({}), ClException, -600, StExpected<TypeParam>::m_szCount);
}

TYPED_TEST(TargetModel, RefusesADotTooMany) {
    Places aPlaces = this->Pattern();
    aPlaces.push_back({aPlaces[74].x, aPlaces[74].y + 50}); // below the last column
    EXPECT_THROWS(this->Points(aPlaces), ClException, -600, StExpected<TypeParam>::m_szCount);
}

// Behind the last ideal point there is nothing to compare with.
TYPED_TEST(TargetModel, CountsEveryDotBehindTheLast) {
    for (const int nMore : {1, 2, 25, 300}) {
        Places aPlaces = this->Pattern();
        for (int i = 0; i < nMore; ++i)
            aPlaces.push_back({aPlaces[74].x + 0.001 * i, aPlaces[74].y + 60 + i});
        ClTestGrid Grid(aPlaces);
        for (unsigned long i = 75; i < Grid.Entries(); ++i)
            Grid(i).m_nStatus = ClDot::eNoIdealPoint; // so that they do not pull the centre
        ClBuilder::PointList aPoints;
        EXPECT_THROWS(this->m_Model.GridToArray(Grid, aPoints), ClException, -600,
                      StExpected<TypeParam>::m_szCount);
        EXPECT_EQ(aPoints.Entries(), aPlaces.size()) << "as far as it was filled";
        for (unsigned long i = 0; i < Grid.Entries(); ++i) {
            EXPECT_EQ(Grid(i).m_nStatus, Grid(i).m_nIndex < 75 ? 0u : 6u);
            EXPECT_EQ(Grid(i).m_dWeight, 1.0);
        }
    }
}

TYPED_TEST(TargetModel, MarksADotOutsideItsColumnAndGoesOn) {
    Places aPlaces = this->Pattern();
    // Dirt within the column's half pitch and beyond the tolerance. It does not pull the centre.
    aPlaces.push_back({aPlaces[PointAt(3, 0)].x + 15, aPlaces[PointAt(3, 0)].y + 20});
    ClTestGrid Grid(aPlaces);
    Grid(75).m_nStatus = ClDot::eNoIdealPoint;
    ClBuilder::PointList aPoints;
    this->m_Model.GridToArray(Grid, aPoints);
    EXPECT_EQ(Grid.OfIndex(75).m_dWeight, StExpected<TypeParam>::m_dRejectedWeight);
    const unsigned nKept = ClDot::eNoIdealPoint;
    EXPECT_EQ(Grid.OfIndex(75).m_nStatus, StExpected<TypeParam>::m_nRejectedStatus != 0
                                              ? StExpected<TypeParam>::m_nRejectedStatus
                                              : nKept);
    EXPECT_TRUE(Grid.OfIndex(75).m_bValid);
    aPlaces.pop_back();
    this->ExpectPoints(aPoints, aPlaces);
}

TYPED_TEST(TargetModel, PassesInvalidDotsOver) {
    Places aPlaces = this->Pattern();
    aPlaces.push_back({aPlaces[20].x, aPlaces[20].y + 5});
    ClTestGrid Grid(aPlaces);
    Grid(75).m_bValid = false;
    ClBuilder::PointList aPoints;
    this->m_Model.GridToArray(Grid, aPoints);
    aPlaces.pop_back();
    this->ExpectPoints(aPoints, aPlaces);
    EXPECT_EQ(Grid.OfIndex(75).m_nStatus, 0u);
}

// 75 dots, one moved by d, which moves the centre by d / 75: the dot is d (74 / 75) off.
TYPED_TEST(TargetModel, AcceptsADotNearerToItsColumnThanTheTolerance) {
    const double dEdge = StExpected<TypeParam>::m_dTolX * 75 / 74;
    for (const double dSign : {1.0, -1.0}) {
        Places aPlaces = this->Pattern();
        aPlaces[PointAt(3, 5)].x += dSign * (dEdge - 0.01);
        this->ExpectPoints(this->Points(aPlaces), aPlaces);
        aPlaces[PointAt(3, 5)].x += dSign * 0.02;
        EXPECT_THROWS(this->Points(aPlaces), ClException, -600, StExpected<TypeParam>::m_szCount);
    }
}

TYPED_TEST(TargetModel, TestsBothTolerancesAgainstX) {
    this->m_Model.m_dSourceDpiY = 100; // the smaller tolerance is that of y now
    const double dTolY = 2.0 * this->m_Model.m_dPitchTolerance * 100 / 25.4;
    Places aPlaces = this->Pattern();
    aPlaces[PointAt(3, 5)].x += dTolY * 75 / 74 - 0.01;
    this->ExpectPoints(this->Points(aPlaces), aPlaces);
    aPlaces[PointAt(3, 5)].x += 0.02;
    EXPECT_THROWS(this->Points(aPlaces), ClException, -600, StExpected<TypeParam>::m_szCount);
}

TYPED_TEST(TargetModel, RefusesAGridWithoutACleanDot) {
    ClTestGrid Grid(this->Pattern());
    for (unsigned long i = 0; i < 75; ++i)
        Grid(i).m_nStatus = ClDot::eNoIdealPoint;
    ClBuilder::PointList aPoints;
    EXPECT_THROWS(this->m_Model.GridToArray(Grid, aPoints), ClException, -600,
                  StExpected<TypeParam>::m_szCount);
    EXPECT_EQ(aPoints.Entries(), 0u);
}

TYPED_TEST(TargetModel, RefusesRowsThatLean) {
    for (const double dDegrees : {14.0, 16.0, -16.0}) {
        const double m = std::tan(dDegrees * 3.141592653589793 / 180);
        Places aPlaces = this->Pattern(100, 500);
        for (ClVector& rPlace : aPlaces)
            rPlace.y += m * rPlace.x;
        if (std::fabs(dDegrees) < 15)
            this->ExpectPoints(this->Points(aPlaces), aPlaces);
        else
            EXPECT_THROWS(this->Points(aPlaces), ClException, -600,
                          "The Angle(x) of the Dot Grid is too big.");
    }
}

TYPED_TEST(TargetModel, RefusesAPatternFarFromItsLines) {
    Places aPlaces = this->Pattern();
    for (int r = 0; r < 11; ++r) // a column too low by 70 pixels: 60 off every row's line
        aPlaces[PointAt(3, r)].y += 70;
    EXPECT_THROWS(this->Points(aPlaces), ClException, -600,
                  "There are Dots are too far a way from a Grid(x) line.");
}

TYPED_TEST(TargetModel, AnswersFailedAllocations) {
    const Places aPlaces = this->Pattern();
    FailEachAllocation([&] {
        TypeParam Model;
        ClTestGrid Grid(aPlaces);
        ClBuilder::PointList aPoints;
        Model.GridToArray(Grid, aPoints);
        std::unique_ptr<ClProcessorBase> pCreated(Model.Create());
    });
}

TYPED_TEST(TargetModel, LogsEnterFirstAndLeavingLast) {
    ClTestGrid Grid(this->Pattern());
    ClBuilder::PointList aPoints;
    const ClLogCapture Log;
    this->m_Model.GridToArray(Grid, aPoints);
    const std::string Member = std::string(StExpected<TypeParam>::m_szName) + "::GridToArray()";
    EXPECT_EQ(Log.Texts(7).front(), Member + " Enter");
    EXPECT_EQ(Log.Texts(7).back(), Member + " Leaving");
}

// Column lengths of a derived class

namespace {

/// A pattern of one long column, of which every dot is a row of its own.
template <class Model>
class ClOneColumn : public Model {
public:
    void GetGridColumnLengths(TpArrayStatic<int>& rLengths) override {
        rLengths.New(1);
        rLengths[0] = 75;
    }
};

/// Dots one below the other, tens of them to the left and to the right by turns. Rows of the seven
/// columns would have dots of both.
template <class Model>
void TakeOneColumn() {
    ClOneColumn<Model> Builder;
    Builder.m_dMaxDistX = 1.0;
    ClTestGrid Grid;
    for (int i = 0; i < 75; ++i)
        Grid.Add(i / 10 % 2 == 0 ? 96 : 104, 100.0 + 10 * i);
    ClBuilder::PointList aPoints;
    Builder.GridToArray(Grid, aPoints);
}

} // namespace

TEST(TargetModelQK7, AsksForTheColumnLengths) {
    EXPECT_NO_THROW(TakeOneColumn<ClQK7>());
}

TEST(TargetModelQK7Half, ChecksTheLinesByItsOwnTable) {
    EXPECT_THROWS(TakeOneColumn<ClHalf>(), ClException, -600,
                  "There are Dots are too far a way from a Grid(x) line.");
}
