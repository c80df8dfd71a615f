// The lines of located points: how far rows and columns may lean and bend, and what is told first.

#include "Calibrate/DotGrids.h"
#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace TestSupport;

namespace {

constexpr const char* cszAngleX = "The Angle(x) of the Dot Grid is too big.";
constexpr const char* cszDistX = "There are Dots are too far a way from a Grid(x) line.";
constexpr const char* cszAngleY = "The Angle(y) of the Dot Grid is too big.";
constexpr const char* cszDistY = "There are Dots are too far a way from a Grid(y) line.";
constexpr double cdDegree = 3.141592653589793 / 180;

using Places = std::vector<ClVector>;

/// Both models see the same lines.
void ExpectAccepted(const Places& aPlaces) {
    EXPECT_NO_THROW(ClQK7().CheckGridLines(ListOf(aPlaces)));
    EXPECT_NO_THROW(ClIpCalibrateGeometricBuildRefPointsQK7Half().CheckGridLines(ListOf(aPlaces)));
}

void ExpectRefused(const Places& aPlaces, const char* szText) {
    EXPECT_THROWS(ClQK7().CheckGridLines(ListOf(aPlaces)), ClException, -600, szText);
    EXPECT_THROWS(ClIpCalibrateGeometricBuildRefPointsQK7Half().CheckGridLines(ListOf(aPlaces)),
                  ClException, -600, szText);
}

Places Bent(const Bend_t& Bend) {
    return PatternPlaces(100, 150, cdPitchX, cdPitchY, Bend);
}

Places Rotated(double dDegrees) {
    const double c = std::cos(dDegrees * cdDegree);
    const double s = std::sin(dDegrees * cdDegree);
    return Bent([=](const ClVector& v) { return ClVector(c * v.x - s * v.y, s * v.x + c * v.y); });
}

/// Rows lean, columns stand upright.
Places SlantedRows(double dDegrees) {
    const double m = std::tan(dDegrees * cdDegree);
    return Bent([=](const ClVector& v) { return ClVector(v.x, v.y + m * v.x); });
}

/// Columns lean, rows lie flat.
Places SlantedColumns(double dDegrees) {
    const double m = std::tan(dDegrees * cdDegree);
    return Bent([=](const ClVector& v) { return ClVector(v.x + m * v.y, v.y); });
}

Places Moved(int nColumn, int nRow, double dX, double dY) {
    Places aPlaces = PatternPlaces();
    aPlaces[PointAt(nColumn, nRow)].x += dX;
    aPlaces[PointAt(nColumn, nRow)].y += dY;
    return aPlaces;
}

} // namespace

TEST(CheckGridLines, AcceptsThePattern) {
    ExpectAccepted(PatternPlaces());
}

TEST(CheckGridLines, RefusesRotationsAboveFifteenDegreesAtTheRows) {
    ExpectAccepted(Rotated(14));
    ExpectAccepted(Rotated(-14));
    ExpectRefused(Rotated(16), cszAngleX);
    ExpectRefused(Rotated(-16), cszAngleX);
}

TEST(CheckGridLines, RefusesRowsThatLeanMoreThanFifteenDegrees) {
    ExpectAccepted(SlantedRows(14.9));
    ExpectAccepted(SlantedRows(-14.9));
    ExpectRefused(SlantedRows(15.1), cszAngleX);
    ExpectRefused(SlantedRows(-15.1), cszAngleX);
}

TEST(CheckGridLines, RefusesColumnsThatLeanMoreThanFifteenDegrees) {
    ExpectAccepted(SlantedColumns(14.9));
    ExpectAccepted(SlantedColumns(-14.9));
    ExpectRefused(SlantedColumns(15.1), cszAngleY);
    ExpectRefused(SlantedColumns(-15.1), cszAngleY);
}

// One of n points moved by d off a line whose middle it is leaves the line flat and raised by
// d / n: the point is d (n - 1) / n away.
TEST(CheckGridLines, RefusesADotMoreThanFiftyPixelsOffItsRow) {
    ExpectAccepted(Moved(3, 4, 0, 58.3)); // 49.97
    ExpectRefused(Moved(3, 4, 0, 58.4), cszDistX);
    ExpectAccepted(Moved(3, 4, 0, -58.3));
    ExpectRefused(Moved(3, 4, 0, -58.4), cszDistX);
}

TEST(CheckGridLines, RefusesADotMoreThanFiftyPixelsOffItsColumn) {
    ExpectAccepted(Moved(3, 5, 54.9, 0)); // 49.91
    ExpectRefused(Moved(3, 5, 55.1, 0), cszDistY);
    ExpectAccepted(Moved(3, 5, -54.9, 0));
    ExpectRefused(Moved(3, 5, -55.1, 0), cszDistY);
}

TEST(CheckGridLines, LooksAtEveryRowAndColumn) {
    const int anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    for (int c = 0; c < 7; ++c)
        for (int r = 0; r < anLengths[c]; ++r) {
            // At a border the line follows its dot, so that it takes more.
            EXPECT_THROW(ClQK7().CheckGridLines(ListOf(Moved(c, r, 0, 300))), ClException);
            EXPECT_THROW(ClQK7().CheckGridLines(ListOf(Moved(c, r, 300, 0))), ClException);
        }
}

TEST(CheckGridLines, TakesFiveDotsIntoTheLastRow) {
    // The middle one of five: 4 / 5 of 62.4 are 49.92; of seven it would be 6 / 7, 53.5.
    ExpectAccepted(Moved(3, 10, 0, 62.4));
    ExpectRefused(Moved(3, 10, 0, 62.6), cszDistX);
}

// A point of another row in it would be some hundred pixels off.
TEST(CheckGridLines, NeverTakesTheFirstOrLastColumnIntoTheLastRow) {
    ClQK7 Builder;
    Builder.m_dMaxAngleX = Builder.m_dMaxAngleY = 1e-6;
    Builder.m_dMaxDistX = Builder.m_dMaxDistY = 1e-3;
    EXPECT_NO_THROW(Builder.CheckGridLines(ListOf(PatternPlaces())));
}

TEST(CheckGridLines, TellsTheAngleOfRowsThenTheirDistanceThenColumns) {
    Places aPlaces = Rotated(20);
    aPlaces[PointAt(3, 5)].y += 200; // across its row, and enough of it across its column
    ClQK7 Builder;
    const auto aPoints = ListOf(aPlaces);
    EXPECT_THROWS(Builder.CheckGridLines(aPoints), ClException, -600, cszAngleX);
    Builder.m_dMaxAngleX = 90;
    EXPECT_THROWS(Builder.CheckGridLines(aPoints), ClException, -600, cszDistX);
    Builder.m_dMaxDistX = 1000;
    EXPECT_THROWS(Builder.CheckGridLines(aPoints), ClException, -600, cszAngleY);
    Builder.m_dMaxAngleY = 90;
    EXPECT_THROWS(Builder.CheckGridLines(aPoints), ClException, -600, cszDistY);
    Builder.m_dMaxDistY = 1000;
    EXPECT_NO_THROW(Builder.CheckGridLines(aPoints));
}

TEST(CheckGridLines, WantsThePatternsCount) {
    Places aPlaces = PatternPlaces();
    aPlaces.pop_back();
    EXPECT_THROWS(ClQK7().CheckGridLines(ListOf(aPlaces)), ClExTessarin, -35,
                  "One of the parameters is out of range.");
    EXPECT_THROWS(ClQK7().CheckGridLines(ListOf({})), ClExTessarin, -35,
                  "One of the parameters is out of range.");
}

TEST(CheckGridLines, RefusesAPlaceFarOutByTheAngleOfItsRow) {
    for (const double d : {1e5, -1e5, 1e20, 1e150, -1e150}) { // what is left of the row is a point
        Places aPlaces = PatternPlaces();
        aPlaces[40] = {d, d};
        ExpectRefused(aPlaces, cszAngleX);
    }
}

// Sums beyond all numbers have no line, and nothing is above a limit that is no number.
TEST(CheckGridLines, JudgesNoLineThatNumbersCannotDescribe) {
    for (const double d : {1e308, -1e308, std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()}) {
        Places aPlaces = PatternPlaces();
        aPlaces[40] = {d, d};
        ExpectAccepted(aPlaces);
        aPlaces[PointAt(3, 5)].y += 500; // in the same column, which has no line: its row tells
        ExpectRefused(aPlaces, cszDistX);
    }
}

TEST(CheckGridLines, AnswersFailedAllocations) {
    const auto aPoints = ListOf(PatternPlaces());
    FailEachAllocation([&] { ClQK7().CheckGridLines(aPoints); });
}
