// Candidates from regions, their shapes, and which of them are neighbours.

#include "Calibrate/DotGrids.h"
#include "support/AllocationFailures.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace TestSupport;

namespace {

using Numbers = std::vector<int>;

/// Tolerances of a pitch of 1000 pixels in both directions, 250: steps can be exact.
struct StEven : ClQK7 {
    StEven() {
        m_dSourceDpiX = m_dSourceDpiY = 12700.0;
        m_dPitchTolerance = 0.25;
    }
};

bool AreLinked(double dX, double dY, double dTolerance = 0.25) {
    StEven Builder;
    Builder.m_dPitchTolerance = dTolerance;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt({{5000, 5000}, {5000 + dX, 5000 + dY}}));
    const bool bForth = Neighbours(Grid.OfIndex(0)) == Numbers{1};
    EXPECT_EQ(bForth, Neighbours(Grid.OfIndex(1)) == Numbers{0});
    return bForth;
}

std::uint32_t StatusOf(double dArea, double dEccentricity) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, Regions({Region(10, 10, dArea, dEccentricity)}));
    EXPECT_EQ(Grid(0).m_bValid, Grid(0).m_nStatus == 0);
    return Grid(0).m_nStatus;
}

} // namespace

// Making dots

TEST(BuildGrid, MakesADotOfEveryRegionInColumns) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt({{140, 90}, {101, 10}, {139, 10}, {100, 90}}));
    ASSERT_EQ(Grid.Entries(), 4u);
    const int anOrder[] = {1, 3, 2, 0};
    for (unsigned long i = 0; i < 4; ++i)
        EXPECT_EQ(Grid(i).m_nIndex, anOrder[i]);
}

TEST(BuildGrid, ReplacesTheDotsOfTheGrid) {
    ClQK7 Builder;
    ClTestGrid Grid({{1, 1}, {2, 2}});
    Builder.BuildGrid(Grid, RegionsAt({{30, 30}}));
    ASSERT_EQ(Grid.Entries(), 1u);
    EXPECT_EQ(Grid(0).m_vPos.x, 30.0);
    Builder.BuildGrid(Grid, RegionsAt({}));
    EXPECT_EQ(Grid.Entries(), 0u);
}

TEST(BuildGrid, AnswersFailedAllocations) {
    const auto aRegions = RegionsAt({{100, 100}, {139, 100}, {100, 180}, {139, 180}});
    FailEachAllocation([&] {
        ClQK7 Builder;
        ClTestGrid Grid;
        Builder.BuildGrid(Grid, aRegions);
        EXPECT_EQ(Grid(0).m_aNeighbours.Entries(), 3u);
    });
}

// Shapes

TEST(BuildGrid, KeepsShapesWithinTheLimits) {
    EXPECT_EQ(StatusOf(200, 0.25), 0u);
    EXPECT_EQ(StatusOf(700, 0.5), 0u);
}

TEST(BuildGrid, TellsWhichLimitAShapeExceeds) {
    EXPECT_EQ(StatusOf(300, std::nextafter(0.25, 0.0)), 1u);
    EXPECT_EQ(StatusOf(300, std::nextafter(0.5, 1.0)), 2u);
    EXPECT_EQ(StatusOf(199, 0.3), 3u);
    EXPECT_EQ(StatusOf(701, 0.3), 4u);
}

TEST(BuildGrid, TellsTheLastLimitThatAShapeExceeds) {
    EXPECT_EQ(StatusOf(199, 0.1), 3u);
    EXPECT_EQ(StatusOf(701, 0.9), 4u);
    EXPECT_EQ(StatusOf(199, 0.9), 3u);
    EXPECT_EQ(StatusOf(701, 0.1), 4u);
}

TEST(BuildGrid, RefusesAShapeThatIsNotANumber) {
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(StatusOf(300, dNaN), 1u);
    EXPECT_EQ(StatusOf(dNaN, 0.3), 3u);
}

TEST(BuildGrid, TellsBothLimitsThatCross) {
    ClQK7 Builder;
    Builder.m_dMinEccentricity = 0.4;
    Builder.m_dMaxEccentricity = 0.2;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, Regions({Region(10, 10, 300, 0.3)}));
    EXPECT_EQ(Grid(0).m_nStatus, 2u);
}

TEST(BuildGrid, SortsABlobOfAWrongSizeAndLinksItToNone) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, Regions({Region(100, 200), Region(101, 120, 900), Region(102, 40)}));
    EXPECT_EQ(Grid(1).m_nIndex, 1);
    EXPECT_EQ(Grid(1).m_nStatus, 4u);
    EXPECT_FALSE(Grid(1).m_bValid);
    for (unsigned long i = 0; i < 3; ++i)
        EXPECT_EQ(Grid(i).m_aNeighbours.Entries(), 0u);
}

// Linking

TEST(BuildGrid, LinksTheEightPlacesAroundADot) {
    for (const double x : {-1000.0, 0.0, 1000.0})
        for (const double y : {-1000.0, 0.0, 1000.0})
            EXPECT_EQ(AreLinked(x, y), x != 0.0 || y != 0.0) << x << ", " << y;
}

TEST(BuildGrid, LinksNothingTwoPitchesAway) {
    EXPECT_FALSE(AreLinked(2000, 0));
    EXPECT_FALSE(AreLinked(0, -2000));
    EXPECT_FALSE(AreLinked(2000, 1000));
}

TEST(BuildGrid, LinksStepsThatMissThePitchByLessThanTheTolerance) {
    EXPECT_TRUE(AreLinked(1249, 0));
    EXPECT_TRUE(AreLinked(751, 0));
    EXPECT_TRUE(AreLinked(0, 1249));
    EXPECT_TRUE(AreLinked(1249, 751));
    EXPECT_FALSE(AreLinked(1250, 0));
    EXPECT_FALSE(AreLinked(750, 0));
    EXPECT_FALSE(AreLinked(0, -1250));
    EXPECT_FALSE(AreLinked(1000, 750));
}

TEST(BuildGrid, LinksStepsThatMissTheAxisByLessThanTheTolerance) {
    EXPECT_TRUE(AreLinked(1000, 249));
    EXPECT_TRUE(AreLinked(-249, 1000));
    EXPECT_FALSE(AreLinked(1000, 250)); // at the tolerance it is a small step, and too large a one
    EXPECT_FALSE(AreLinked(250, 1000));
    EXPECT_FALSE(AreLinked(1000, 500));
}

// A tolerance above half a pitch: small steps and pitches overlap.
TEST(BuildGrid, TakesAStepOfExactlyTheToleranceForASmallOne) {
    EXPECT_FALSE(AreLinked(625, 1000, 0.625));
    EXPECT_TRUE(AreLinked(624, 1000, 0.625));
    EXPECT_TRUE(AreLinked(626, 1000, 0.625));
}

TEST(BuildGrid, LinksNoBlobsAtOnePlace) {
    EXPECT_FALSE(AreLinked(0, 0));
    EXPECT_FALSE(AreLinked(249, 249));
    EXPECT_FALSE(AreLinked(-3, 200));
}

TEST(BuildGrid, TakesToleranceAsAShareOfThePitchOfEachAxis) {
    ClQK7 Builder; // 12.03 and 24.64 pixels
    ClTestGrid Grid;
    Builder.BuildGrid(
        Grid,
        RegionsAt(
            {{100, 100}, {150.8, 100}, {100, 204.1}, {200, 500}, {250.9, 500}, {200, 604.2}}));
    EXPECT_EQ(Neighbours(Grid.OfIndex(0)), (Numbers{2, 1}));
    EXPECT_EQ(Neighbours(Grid.OfIndex(3)), Numbers());
}

TEST(BuildGrid, ListsNeighboursInTheOrderOfTheGrid) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt(PatternPlaces()));
    // A dot amid others: the column to its left, its own and the one to its right, from the top.
    const int nDot = static_cast<int>(PointAt(3, 5));
    EXPECT_EQ(Neighbours(Grid.OfIndex(nDot)), (Numbers{nDot - 12, nDot - 11, nDot - 10, nDot - 1,
                                                       nDot + 1, nDot + 10, nDot + 11, nDot + 12}));
    EXPECT_EQ(Neighbours(Grid.OfIndex(0)), (Numbers{1, 10, 11}));
}

// An independent statement of the rule, over whole matrices of pairs.
TEST(BuildGrid, LinksWhatTheRuleLinksOnRandomBlobs) {
    std::mt19937 Random(4711);
    std::uniform_real_distribution<double> Place(0.0, 300.0);
    std::uniform_real_distribution<double> Area(150.0, 750.0);
    std::uniform_real_distribution<double> Eccentricity(0.2, 0.55);
    for (int nRun = 0; nRun < 20; ++nRun) {
        std::vector<ClIpConnectedComponent2::ClComponent> aRegions;
        for (int i = 0; i < 60; ++i)
            aRegions.push_back(
                Region(Place(Random), Place(Random), Area(Random), Eccentricity(Random)));
        ClQK7 Builder;
        ClTestGrid Grid;
        Builder.BuildGrid(Grid, Regions(aRegions));
        const auto isGood = [](const ClDot& d) {
            return d.m_dArea >= 200 && d.m_dArea <= 700 && d.m_dEccentricity >= 0.25 &&
                   d.m_dEccentricity <= 0.5;
        };
        for (unsigned long i = 0; i < Grid.Entries(); ++i) {
            Numbers anExpected;
            for (unsigned long j = 0; j < Grid.Entries(); ++j) {
                if (i == j || !isGood(Grid(i)) || !isGood(Grid(j)))
                    continue;
                const double x = std::fabs(Grid(i).m_vPos.x - Grid(j).m_vPos.x);
                const double y = std::fabs(Grid(i).m_vPos.y - Grid(j).m_vPos.y);
                const double dTolX = cdPitchX * 0.31;
                const double dTolY = cdPitchY * 0.31;
                const bool bNearX = x < dTolX;
                const bool bNearY = y < dTolY;
                const bool bStepX = x > cdPitchX - dTolX && x < cdPitchX + dTolX;
                const bool bStepY = y > cdPitchY - dTolY && y < cdPitchY + dTolY;
                if ((bStepX && (bStepY || bNearY)) || (bNearX && bStepY))
                    anExpected.push_back(Grid(j).m_nIndex);
            }
            EXPECT_EQ(Neighbours(Grid(i)), anExpected) << nRun << ", " << i;
        }
    }
}

// Too few neighbours

TEST(RemoveLessNeighbours, KeepsThePatternWithItsCorners) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt(PatternPlaces()));
    EXPECT_EQ(Grid.OfIndex(0).m_aNeighbours.Entries(), 3u);
    Builder.RemoveLessNeighbours(Grid);
    for (unsigned long i = 0; i < Grid.Entries(); ++i) {
        EXPECT_TRUE(Grid(i).m_bValid);
        EXPECT_EQ(Grid(i).m_nStatus, 0u);
    }
}

TEST(RemoveLessNeighbours, RemovesABlobBesideOneDotOnly) {
    ClQK7 Builder;
    ClTestGrid Grid;
    auto aPlaces = PatternPlaces();
    // Below the lower left dot: its neighbour to the right would be the second column's last dot.
    aPlaces.push_back({aPlaces[9].x - cdPitchX, aPlaces[9].y + cdPitchY});
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    ASSERT_EQ(Neighbours(Grid.OfIndex(75)), Numbers{9});
    Builder.RemoveLessNeighbours(Grid);
    EXPECT_FALSE(Grid.OfIndex(75).m_bValid);
    EXPECT_EQ(Grid.OfIndex(75).m_nStatus, 5u);
    EXPECT_EQ(Neighbours(Grid.OfIndex(75)), Numbers{9}); // its own list stays
    const Numbers anLeft = Neighbours(Grid.OfIndex(9));
    EXPECT_EQ(std::count(anLeft.begin(), anLeft.end(), 75), 0);
    EXPECT_TRUE(Grid.OfIndex(9).m_bValid);
}

TEST(RemoveLessNeighbours, GoesOnWhereARemovalLeavesOneNeighbour) {
    ClQK7 Builder;
    ClTestGrid Grid;
    // A chain: each pass finds a new end, whichever end the passes begin at.
    std::vector<ClVector> aChain;
    for (int i = 0; i < 7; ++i)
        aChain.push_back({100.0 + i * cdPitchX, 100.0});
    Builder.BuildGrid(Grid, RegionsAt(aChain));
    Builder.RemoveLessNeighbours(Grid);
    for (unsigned long i = 0; i < 7; ++i) {
        EXPECT_FALSE(Grid(i).m_bValid);
        EXPECT_EQ(Grid(i).m_nStatus, 5u);
    }
}

TEST(RemoveLessNeighbours, EatsAChainUpToTheBodyItHangsOn) {
    ClQK7 Builder;
    ClTestGrid Grid;
    std::vector<ClVector> aPlaces = {{200, 200}, {200 + cdPitchX, 200}, {200, 200 + cdPitchY}};
    for (int i = 1; i <= 4; ++i)
        aPlaces.push_back({200.0 - i * cdPitchX, 200.0 - i * cdPitchY});
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    Builder.RemoveLessNeighbours(Grid);
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(Grid.OfIndex(i).m_bValid, i < 3) << i;
    EXPECT_EQ(Neighbours(Grid.OfIndex(0)), (Numbers{2, 1}));
}

TEST(RemoveLessNeighbours, LeavesTheStatusOfInvalidDots) {
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, Regions({Region(10, 10, 900)}));
    Builder.RemoveLessNeighbours(Grid);
    EXPECT_EQ(Grid(0).m_nStatus, 4u);
}

TEST(RemoveGridPoint, UnlinksADotEverywhereAndKeepsItsList) {
    ClQK7 Builder;
    ClTestGrid Grid({{0, 0}, {1, 0}, {2, 0}});
    Grid(0).AddDot(&Grid(1), true);
    Grid(1).AddDot(&Grid(2), true);
    Builder.RemoveGridPoint(Grid, 1);
    EXPECT_FALSE(Grid(1).m_bValid);
    EXPECT_EQ(Grid(1).m_nStatus, 0u);
    EXPECT_EQ(Neighbours(Grid(0)), Numbers());
    EXPECT_EQ(Neighbours(Grid(2)), Numbers());
    EXPECT_EQ(Neighbours(Grid(1)), (Numbers{0, 2}));
}

// Trace

TEST(BuildGrid, LogsEnterFirstAndLeavingLast) {
    const ClLogCapture Log;
    ClQK7 Builder;
    ClTestGrid Grid;
    Builder.BuildGrid(Grid, RegionsAt({{10, 10}}));
    EXPECT_EQ(Log.Texts(7).front(), "ClIpCalibrateGeometricBuildRefPointsBase::BuildGrid() Enter");
    EXPECT_EQ(Log.Texts(7).back(), "ClIpCalibrateGeometricBuildRefPointsBase::BuildGrid() Leaving");
}
