#include "Calibrate/DotGrids.h"
#include "support/AllocationFailures.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using TestSupport::cdPi;
using TestSupport::ClDot;
using TestSupport::ClTestGrid;
using TestSupport::FailEachAllocation;
using TestSupport::Neighbours;
using TestSupport::Region;

namespace {

constexpr double cdHalfSector = 0.39269908169872414;

/// A dot at (10, 20) with one neighbour at this offset.
struct StPair {
    StPair(double dX, double dY) : m_Dot(ClVector(10, 20)), m_Other(ClVector(10 + dX, 20 + dY)) {
        m_Dot.AddDot(&m_Other, false);
    }

    ClDot m_Dot;
    ClDot m_Other;
};

long Direction(double dX, double dY) {
    return StPair(dX, dY).m_Dot.GetNeighbourDirection(0);
}

} // namespace

TEST(CalibrationDot, TakesItsShapeFromARegion) {
    auto Component = Region(30.5, 41.25, 321.0, 0.375);
    Component.m_vMin = {20, 30};
    Component.m_vMax = {43, 51};
    Component.m_dMeanGrey = 77.5;
    const ClDot Dot(Component);
    EXPECT_EQ(Dot.m_vPos.x, 30.5);
    EXPECT_EQ(Dot.m_vPos.y, 41.25);
    EXPECT_EQ(Dot.m_vBoxCentre.x, 31.5);
    EXPECT_EQ(Dot.m_vBoxCentre.y, 40.5);
    EXPECT_EQ(Dot.m_dArea, 321.0);
    EXPECT_EQ(Dot.m_dEccentricity, 0.375);
    EXPECT_EQ(Dot.m_dGrey, 77.5);
}

TEST(CalibrationDot, HasNoShapeFromAPlaceAlone) {
    const ClDot Dot(ClVector(3, 4));
    EXPECT_EQ(Dot.m_vPos.x, 3.0);
    EXPECT_EQ(Dot.m_vPos.y, 4.0);
    EXPECT_EQ(Dot.m_dEccentricity, -1.0);
    EXPECT_EQ(Dot.m_dArea, -1.0);
    EXPECT_EQ(Dot.m_dGrey, -1.0);
}

TEST(CalibrationDot, StartsCleanAndWithoutAPlaceInThePattern) {
    for (const ClDot& rDot : {ClDot(ClVector(3, 4)), ClDot(Region(3, 4))}) {
        EXPECT_EQ(rDot.m_vGrid.x, -1.0);
        EXPECT_EQ(rDot.m_vGrid.y, -1.0);
        EXPECT_EQ(rDot.m_vTarget.x, -1.0);
        EXPECT_EQ(rDot.m_vTarget.y, -1.0);
        EXPECT_EQ(rDot.m_dWeight, 1.0);
        EXPECT_EQ(rDot.m_nStatus, 0u);
        EXPECT_TRUE(rDot.m_bValid);
        EXPECT_EQ(rDot.m_aNeighbours.Entries(), 0u);
    }
}

TEST(CalibrationDot, CopiesAllFieldsAndTheLinks) {
    ClTestGrid Grid({{1, 1}, {2, 2}});
    ClDot Dot(Region(30, 40, 500, 0.25));
    Dot.m_vGrid = {2, 3};
    Dot.m_vTarget = {7, 8};
    Dot.m_dWeight = 0.5;
    Dot.m_nStatus = ClDot::eOutsideColumn;
    Dot.m_bValid = false;
    Dot.m_dGrey = 9;
    Dot.m_nIndex = 12;
    Dot.AddDot(&Grid(0), false);
    Dot.AddDot(&Grid(1), false);
    const ClDot Copy(Dot);
    ClDot Assigned(ClVector(0, 0));
    Assigned = Dot;
    for (const ClDot* pDot : {&Copy, static_cast<const ClDot*>(&Assigned)}) {
        EXPECT_EQ(pDot->m_vPos.x, 30);
        EXPECT_EQ(pDot->m_vGrid.y, 3);
        EXPECT_EQ(pDot->m_vTarget.x, 7);
        EXPECT_EQ(pDot->m_vBoxCentre.y, 40);
        EXPECT_EQ(pDot->m_dWeight, 0.5);
        EXPECT_EQ(pDot->m_nStatus, 7u);
        EXPECT_FALSE(pDot->m_bValid);
        EXPECT_EQ(pDot->m_dEccentricity, 0.25);
        EXPECT_EQ(pDot->m_dArea, 500);
        EXPECT_EQ(pDot->m_dGrey, 9);
        EXPECT_EQ(pDot->m_nIndex, 12);
        EXPECT_EQ(Neighbours(*pDot), (std::vector<int>{0, 1}));
    }
}

// Links

TEST(CalibrationDot, LinksADotOnce) {
    ClTestGrid Grid({{0, 0}, {1, 0}, {2, 0}});
    Grid(0).AddDot(&Grid(2), false);
    Grid(0).AddDot(&Grid(1), false);
    Grid(0).AddDot(&Grid(2), false);
    EXPECT_EQ(Neighbours(Grid(0)), (std::vector<int>{2, 1}));
    EXPECT_EQ(Neighbours(Grid(2)), std::vector<int>());
}

TEST(CalibrationDot, LinksBothWaysOnRequest) {
    ClTestGrid Grid({{0, 0}, {1, 0}});
    Grid(0).AddDot(&Grid(1), false);
    Grid(0).AddDot(&Grid(1), true);
    EXPECT_EQ(Neighbours(Grid(0)), std::vector<int>{1});
    EXPECT_EQ(Neighbours(Grid(1)), std::vector<int>{0});
}

TEST(CalibrationDot, RemovesEveryOccurrenceAndKeepsTheOrder) {
    ClTestGrid Grid({{0, 0}, {1, 0}, {2, 0}, {3, 0}});
    for (const unsigned long n : {3ul, 1ul, 3ul, 2ul, 3ul})
        Grid(0).m_aNeighbours.Append(&Grid(n));
    Grid(3).AddDot(&Grid(0), false);
    Grid(0).Remove(&Grid(3));
    EXPECT_EQ(Neighbours(Grid(0)), (std::vector<int>{1, 2}));
    EXPECT_EQ(Neighbours(Grid(3)), std::vector<int>{0});
    Grid(0).Remove(&Grid(3));
    EXPECT_EQ(Neighbours(Grid(0)), (std::vector<int>{1, 2}));
}

TEST(CalibrationDot, AnswersFailedAllocations) {
    FailEachAllocation([] {
        ClTestGrid Grid;
        ClDot A(ClVector(0, 0));
        ClDot B(ClVector(1, 1));
        A.AddDot(&B, true);
        const ClDot Copy(A);
        EXPECT_EQ(Copy.m_aNeighbours.Entries(), 1u);
    });
}

// Directions

TEST(CalibrationDot, CountsSectorsFromTheRightClockwise) {
    EXPECT_EQ(Direction(5, 0), 0);
    EXPECT_EQ(Direction(5, 5), 1);
    EXPECT_EQ(Direction(0, 5), 2); // below
    EXPECT_EQ(Direction(-5, 5), 3);
    EXPECT_EQ(Direction(-5, 0), 4);
    EXPECT_EQ(Direction(-5, -5), 5);
    EXPECT_EQ(Direction(0, -5), 6);
    EXPECT_EQ(Direction(5, -5), 7);
}

TEST(CalibrationDot, GivesEverySectorAnEighthOfTheTurn) {
    for (int nTenths = 1; nTenths < 3600; nTenths += 3) { // never on a boundary
        const double dAngle = nTenths * cdPi / 1800;
        const long nExpected = ((nTenths + 225) / 450) % 8;
        EXPECT_EQ(Direction(100 * std::cos(dAngle), 100 * std::sin(dAngle)), nExpected) << nTenths;
    }
}

TEST(CalibrationDot, HasANinthDirectionExactlyBetweenTwoSectors) {
    ClDot Dot(ClVector(0, 0));
    ClDot Other(ClVector(1, 0.41421356237309503)); // the tangent of 22.5 degrees
    ASSERT_EQ(std::atan2(Other.m_vPos.y, Other.m_vPos.x), cdHalfSector);
    Dot.AddDot(&Other, false);
    EXPECT_EQ(Dot.GetNeighbourDirection(0), 8);
    Other.m_vPos.y = std::nextafter(Other.m_vPos.y, 0.0);
    EXPECT_EQ(Dot.GetNeighbourDirection(0), 0);
    Other.m_vPos.y = 0.4142135623730952;
    EXPECT_EQ(Dot.GetNeighbourDirection(0), 1);
}

TEST(CalibrationDot, HasNoSectorForAPlaceThatIsNotANumber) {
    EXPECT_EQ(Direction(std::numeric_limits<double>::quiet_NaN(), 1), 8);
}

TEST(CalibrationDot, FindsTheNeighbourNearestToADirection) {
    ClTestGrid Grid({{0, 0}, {10, 3}, {10, 1}, {10, -2}, {-10, 1}});
    for (unsigned long n = 1; n < 5; ++n)
        Grid(0).AddDot(&Grid(n), false);
    EXPECT_EQ(Grid(0).GetNeighbourInDirection(0, cdHalfSector), &Grid(2));
    EXPECT_EQ(Grid(0).GetNeighbourInDirection(4, cdHalfSector), &Grid(4));
    EXPECT_EQ(Grid(0).GetNeighbourInDirection(2, cdHalfSector), nullptr);
    EXPECT_EQ(Grid(0).GetNeighbourInDirection(2, 2.0), &Grid(1));
}

TEST(CalibrationDot, FindsNoneWithoutNeighbours) {
    EXPECT_EQ(ClDot(ClVector(0, 0)).GetNeighbourInDirection(0, 10.0), nullptr);
}

TEST(CalibrationDot, WantsANeighbourNearerThanTheTolerance) {
    const StPair Below(0, 5);
    EXPECT_EQ(Below.m_Dot.GetNeighbourInDirection(0, 1.5707963267948966), nullptr);
    EXPECT_EQ(Below.m_Dot.GetNeighbourInDirection(0, 1.5707963267948968), &Below.m_Other);
    EXPECT_EQ(Below.m_Dot.GetNeighbourInDirection(2, 0.0), nullptr);
}

TEST(CalibrationDot, TakesTheFirstOfNeighboursInOneDirection) {
    ClTestGrid Grid({{0, 0}, {20, 0}, {10, 0}});
    Grid(0).AddDot(&Grid(1), false);
    Grid(0).AddDot(&Grid(2), false);
    EXPECT_EQ(Grid(0).GetNeighbourInDirection(0, cdHalfSector), &Grid(1));
}

TEST(CalibrationDot, MeasuresDirectionsAroundTheTurn) {
    const StPair JustAbove(10, -1); // nearly a full turn, which is nearly none
    EXPECT_EQ(JustAbove.m_Dot.GetNeighbourInDirection(0, cdHalfSector), &JustAbove.m_Other);
    EXPECT_EQ(JustAbove.m_Dot.GetNeighbourInDirection(8, cdHalfSector), &JustAbove.m_Other);
    EXPECT_EQ(JustAbove.m_Dot.GetNeighbourInDirection(-8, cdHalfSector), &JustAbove.m_Other);
    EXPECT_EQ(JustAbove.m_Dot.GetNeighbourInDirection(4, cdHalfSector), nullptr);
}
