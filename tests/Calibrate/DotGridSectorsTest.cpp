// One neighbour for each direction, and neighbours that stand askew.

#include "Calibrate/DotGrids.h"
#include "support/AllocationFailures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace TestSupport;

namespace {

using Numbers = std::vector<int>;

/// A dot at the origin, number 0, that lists dots at these offsets, numbers 1, 2, 3 ...
class ClStar : public ClTestGrid {
public:
    explicit ClStar(const std::vector<ClVector>& aOffsets) {
        Add(0, 0);
        for (const ClVector& rOffset : aOffsets) {
            ClDot& rNeighbour = Add(rOffset.x, rOffset.y);
            (*this)(0).AddDot(&rNeighbour, true);
        }
    }
};

Numbers Reduced(const std::vector<ClVector>& aOffsets) {
    ClQK7 Builder;
    ClStar Star(aOffsets);
    Builder.ReduceToFittingNeighbours(Star);
    return Neighbours(Star(0));
}

Numbers Straight(const std::vector<ClVector>& aOffsets) {
    ClQK7 Builder;
    ClStar Star(aOffsets);
    Builder.RemoveWrongAngleNeighbours(Star);
    return Neighbours(Star(0));
}

ClVector Polar(double dDegrees, double dLength = 50.0) {
    const double dAngle = dDegrees * 3.141592653589793 / 180.0;
    return {dLength * std::cos(dAngle), dLength * std::sin(dAngle)};
}

const ClVector cvBoundary(100.0, 41.421356237309503); // between the sectors 0 and 1

} // namespace

// Fitting neighbours

TEST(ReduceToFittingNeighbours, KeepsOneNeighbourOfEverySector) {
    std::vector<ClVector> aOffsets;
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x)
            if (x != 0 || y != 0)
                aOffsets.push_back({x * cdPitchX, y * cdPitchX});
    EXPECT_EQ(Reduced(aOffsets), (Numbers{1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(ReduceToFittingNeighbours, KeepsTheNearerToTheExpectedOffset) {
    EXPECT_EQ(Reduced({{40, 1}, {39, 1}}), Numbers{2});
    EXPECT_EQ(Reduced({{39, 1}, {40, 1}}), Numbers{1});
    EXPECT_EQ(Reduced({{35, 1}, {38, 1}, {45, 1}, {39, 0}}), Numbers{4});
    EXPECT_EQ(Reduced({{0, -70}, {1, -79}, {1, 75}, {0, 80}}), (Numbers{2, 4}));
}

TEST(ReduceToFittingNeighbours, KnowsTheOffsetsOfAllSectors) {
    const double x = cdPitchX;
    const double y = cdPitchX; // sectors are those of the angle, with 45 degrees in their middle
    ClQK7 Builder;
    Builder.m_dSourceDpiY = Builder.m_dSourceDpiX;
    const ClVector avOffsets[] = {{x, 0},  {x, y},   {0, y},  {-x, y},
                                  {-x, 0}, {-x, -y}, {0, -y}, {x, -y}};
    for (const ClVector& rOffset : avOffsets) {
        const ClVector vFar(rOffset.x * 1.2, rOffset.y * 1.2);
        const ClVector vNear(rOffset.x * 0.85, rOffset.y * 0.85);
        ClStar Star({vFar, vNear, rOffset});
        Builder.ReduceToFittingNeighbours(Star);
        EXPECT_EQ(Neighbours(Star(0)), Numbers{3});
        ClStar NearFirst({vNear, vFar});
        Builder.ReduceToFittingNeighbours(NearFirst);
        EXPECT_EQ(Neighbours(NearFirst(0)), Numbers{1});
    }
}

TEST(ReduceToFittingNeighbours, KeepsTheEarlierOfATie) {
    EXPECT_EQ(Reduced({{39, 5}, {39, -5}}), Numbers{1});
    EXPECT_EQ(Reduced({{39, -5}, {39, 5}, {39, 5}}), Numbers{1});
    EXPECT_EQ(Reduced({{45, 0}, {39, 5}, {39, -5}}), Numbers{2});
}

TEST(ReduceToFittingNeighbours, VisitsWhatStandsBehindARemovedNeighbour) {
    // Removing shortens the list under the walk; the last of four still competes.
    EXPECT_EQ(Reduced({{45, 0}, {44, 0}, {43, 0}, {39, 0}}), Numbers{4});
    EXPECT_EQ(Reduced({{39, 0}, {45, 0}, {44, 0}, {0, 80}, {0, 90}, {0, 95}}), (Numbers{1, 4}));
}

TEST(ReduceToFittingNeighbours, KeepsNeighboursBetweenTwoSectors) {
    const ClVector vSecond(200.0, 82.842712474619006);
    ASSERT_EQ(ClStar({vSecond})(0).GetNeighbourDirection(0), 8);
    EXPECT_EQ(Reduced({cvBoundary, {39, 0}, vSecond, {40, 40}}), (Numbers{1, 2, 3, 4}));
}

TEST(ReduceToFittingNeighbours, RemovesFromOneSideOnly) {
    ClQK7 Builder;
    ClStar Star({{45, 0}, {39, 0}});
    Builder.ReduceToFittingNeighbours(Star);
    EXPECT_EQ(Neighbours(Star(0)), Numbers{2});
    EXPECT_EQ(Neighbours(Star(1)), Numbers{0});
    EXPECT_EQ(Neighbours(Star(2)), Numbers{0});
}

TEST(ReduceToFittingNeighbours, KeepsTheDotRatherThanDirtInTheToleranceOfAnother) {
    ClQK7 Builder;
    ClTestGrid Grid;
    auto aPlaces = PatternPlaces();
    const int nDot = static_cast<int>(PointAt(3, 5));
    const ClVector vDot = aPlaces[static_cast<unsigned long>(nDot)];
    aPlaces.push_back({vDot.x + 6.0, vDot.y + 14.0}); // a speck of a dot's size
    Builder.BuildGrid(Grid, RegionsAt(aPlaces));
    ClDot& rLeft = Grid.OfIndex(static_cast<int>(PointAt(2, 5)));
    ASSERT_EQ(rLeft.m_aNeighbours.Entries(), 9u);
    Builder.ReduceToFittingNeighbours(Grid);
    EXPECT_EQ(rLeft.m_aNeighbours.Entries(), 8u);
    EXPECT_EQ(rLeft.GetNeighbourInDirection(0, 0.39269908169872414)->m_nIndex, nDot);
}

TEST(ReduceToFittingNeighbours, AnswersFailedAllocations) {
    const std::vector<ClVector> aOffsets = {{45, 0}, {39, 0}, {0, 80}, {0, 85}};
    FailEachAllocation([&] {
        ClQK7 Builder;
        ClStar Star(aOffsets);
        Builder.ReduceToFittingNeighbours(Star);
        EXPECT_EQ(Star(0).m_aNeighbours.Entries(), 2u);
    });
}

// The rule by sectors and minima, without a walk that removes.
TEST(ReduceToFittingNeighbours, KeepsTheFirstMinimumOfEverySectorOfRandomStars) {
    std::mt19937 Random(99);
    std::uniform_int_distribution<int> Coordinate(-60, 60); // whole pixels make ties
    for (int nRun = 0; nRun < 200; ++nRun) {
        std::vector<ClVector> aOffsets;
        for (int i = 0; i < 30; ++i)
            aOffsets.push_back({Coordinate(Random) + 0.25, Coordinate(Random) + 0.125});
        Numbers anExpected;
        for (unsigned long i = 0; i < aOffsets.size(); ++i) {
            const auto sectorOf = [](const ClVector& v) {
                double dTurns = std::atan2(v.y, v.x) / (2 * 3.141592653589793);
                return static_cast<int>(std::floor(dTurns * 8 + 0.5) + 8) % 8;
            };
            const auto missOf = [](const ClVector& v, int k) {
                const int anX[] = {1, 1, 0, -1, -1, -1, 0, 1};
                const int anY[] = {0, 1, 1, 1, 0, -1, -1, -1};
                return std::hypot(v.x - anX[k] * 492.706 / 25.4 * 2,
                                  v.y - anY[k] * 1009.287 / 25.4 * 2);
            };
            bool bBest = true;
            const int k = sectorOf(aOffsets[i]);
            for (unsigned long j = 0; j < aOffsets.size(); ++j)
                if (j != i && sectorOf(aOffsets[j]) == k) {
                    const double dOwn = missOf(aOffsets[i], k);
                    const double dOther = missOf(aOffsets[j], k);
                    bBest = bBest && (dOwn < dOther - 1e-9 || (j > i && dOwn < dOther + 1e-9));
                }
            if (bBest)
                anExpected.push_back(static_cast<int>(i) + 1);
        }
        EXPECT_EQ(Reduced(aOffsets), anExpected) << nRun;
    }
}

// Straight neighbours

TEST(RemoveWrongAngleNeighbours, KeepsNeighboursAlongTheAxesAndDiagonals) {
    EXPECT_EQ(Straight({Polar(0), Polar(45), Polar(90), Polar(180), Polar(270), Polar(315)}),
              (Numbers{1, 2, 3, 4, 5, 6}));
}

TEST(RemoveWrongAngleNeighbours, AllowsFiveDegrees) {
    EXPECT_EQ(Straight({Polar(0), Polar(90), Polar(180), Polar(4.9), Polar(264.9), Polar(130.1)}),
              (Numbers{1, 2, 3, 4, 6}));
}

TEST(RemoveWrongAngleNeighbours, MeasuresAgainstTheGridsOwnRotation) {
    EXPECT_EQ(Straight({Polar(12), Polar(102), Polar(192), Polar(282), Polar(0)}),
              (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(Straight({Polar(-12), Polar(78), Polar(168)}), (Numbers{1, 2, 3}));
}

TEST(RemoveWrongAngleNeighbours, TakesTheUpperMiddleOfAnEvenCount) {
    // Rotations 0 and 8 degrees: index 1 of the two is 8, which the first misses by 8.
    EXPECT_EQ(Straight({Polar(0), Polar(98)}), Numbers{2});
}

TEST(RemoveWrongAngleNeighbours, RemovesFromOneSideOnlyAndLeavesLonelyDots) {
    ClQK7 Builder;
    ClStar Star({Polar(0), Polar(90), Polar(180), Polar(20)});
    Star.Add(500, 500);
    Builder.RemoveWrongAngleNeighbours(Star);
    EXPECT_EQ(Neighbours(Star(0)), (Numbers{1, 2, 3}));
    EXPECT_EQ(Neighbours(Star(4)), Numbers{0});
    EXPECT_EQ(Neighbours(Star(5)), Numbers());
}

TEST(RemoveWrongAngleNeighbours, AnswersFailedAllocations) {
    const std::vector<ClVector> aOffsets = {Polar(0), Polar(90)};
    FailEachAllocation([&] {
        ClQK7 Builder;
        ClStar Star(aOffsets);
        Builder.RemoveWrongAngleNeighbours(Star);
        EXPECT_EQ(Star(0).m_aNeighbours.Entries(), 2u);
    });
}

TEST(GetMedian, IsTheElementAtHalfTheCount) {
    const ClQK7 Builder;
    double adOdd[] = {3, -1, 2};
    double adEven[] = {4, 1, 3, 2};
    double adOne[] = {7};
    EXPECT_EQ(Builder.GetMedian(adOdd, 3), 2.0);
    EXPECT_EQ(Builder.GetMedian(adEven, 4), 3.0);
    EXPECT_EQ(Builder.GetMedian(adOne, 1), 7.0);
    EXPECT_EQ(Builder.GetMedian(nullptr, 0), 0.0);
    EXPECT_EQ(adEven[0], 1.0); // sorted in place
    EXPECT_EQ(adEven[3], 4.0);
}

TEST(GetMedian, SortsWhatIsNotANumberToTheEnd) {
    const ClQK7 Builder;
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    double adValues[] = {dNaN, 5, dNaN, 1, 3};
    EXPECT_EQ(Builder.GetMedian(adValues, 5), 5.0);
    EXPECT_EQ(adValues[0], 1.0);
}
