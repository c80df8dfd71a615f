// Linking and pruning of many dots against plain walks over all pairs, dot by dot: order, links,
// targets and statuses.

#include "Calibrate/NaiveDotGrid.h"
#include "support/LogCapture.h"
#include "support/SpecialNumbers.h"

#include <gtest/gtest.h>

#include <ctime>
#include <limits>
#include <random>

using namespace TestSupport;

namespace {

using TestSupport::cdInfinity;
using TestSupport::cdNaN;

using Random_t = std::mt19937;

/// Dots in the spacing of the pattern, each off by up to `dOff` of it, some of them missing and
/// some of a shape that is none of a dot's.
std::vector<ClIpConnectedComponent2::ClComponent> Lattice(Random_t& rRandom, int nColumns,
                                                          int nRows, double dSpacing, double dOff) {
    std::uniform_real_distribution<double> Off(-dOff, dOff);
    std::uniform_int_distribution<int> Percent(0, 99);
    std::vector<ClIpConnectedComponent2::ClComponent> aRegions;
    for (int y = 0; y < nRows; ++y)
        for (int x = 0; x < nColumns; ++x) {
            if (Percent(rRandom) < 10)
                continue;
            const double dArea = Percent(rRandom) < 10 ? 900.0 : 300.0;
            aRegions.push_back(Region((x + 1 + Off(rRandom)) * cdPitchX * dSpacing,
                                      (y + 1 + Off(rRandom)) * cdPitchY * dSpacing, dArea));
        }
    std::shuffle(aRegions.begin(), aRegions.end(), rRandom);
    return aRegions;
}

int RemovalsIn(const ClLogCapture& Log) {
    const auto aTexts = Log.Texts(7);
    return static_cast<int>(
        std::count(aTexts.begin(), aTexts.end(),
                   "ClIpCalibrateGeometricBuildRefPointsBase::RemoveGridPoint() Enter"));
}

/// Runs a step and its plain twin, which returns how many dots it removed.
template <class Step, class Twin>
int ExpectSameStep(ClTestGrid& rGrid, const char* szStep, Step step, Twin twin) {
    PlainGrid aExpected = Plain(rGrid);
    const int nRemoved = twin(aExpected);
    {
        const ClLogCapture Log;
        step(rGrid);
        EXPECT_EQ(RemovalsIn(Log), nRemoved) << szStep;
    }
    const PlainGrid aDots = Plain(rGrid);
    EXPECT_EQ(aDots.size(), aExpected.size());
    for (std::size_t i = 0; i < std::min(aDots.size(), aExpected.size()); ++i)
        EXPECT_EQ(aDots[i], aExpected[i]) << szStep;
    return nRemoved;
}

void ExpectSameLinks(ClTestGrid& rGrid, const ClBuilder& Builder) {
    PlainGrid aExpected = Plain(rGrid);
    LinkPlainly(aExpected, Builder);
    EXPECT_EQ(Plain(rGrid), aExpected);
}

struct StRemoved {
    int m_nLonely = 0;
    int m_nLonelyAfterReduction = 0;
    int m_nUnmatched = 0;
};

StRemoved ExpectSameSteps(ClBuilder& rBuilder, ClTestGrid& rGrid) {
    StRemoved Removed;
    const auto removeLess = [&](ClTestGrid& rDots) { rBuilder.RemoveLessNeighbours(rDots); };
    Removed.m_nLonely = ExpectSameStep(rGrid, "lonely", removeLess, RemoveLonelyPlainly);
    rBuilder.ReduceToFittingNeighbours(rGrid);
    Removed.m_nLonelyAfterReduction =
        ExpectSameStep(rGrid, "lonely after the reduction", removeLess, RemoveLonelyPlainly);
    Removed.m_nUnmatched = ExpectSameStep(
        rGrid, "unmatched", [&](ClTestGrid& rDots) { rBuilder.GridRemoveBadPoints(rDots); },
        [&](PlainGrid& rDots) {
            if (rDots.empty())
                return 0;
            ClBuilder::PointList aIdeal;
            rBuilder.BuildTarget(aIdeal, rBuilder.m_dSourceDpiX, rBuilder.m_dSourceDpiY, 0.0, 0.0);
            return RemoveUnmatchedPlainly(
                rDots, std::vector<ClVector>(aIdeal.Data(), aIdeal.Data() + aIdeal.Entries()));
        });
    return Removed;
}

} // namespace

TEST(CrowdedGrid, StepsAgreeWithWalksOverAllPairs) {
    Random_t Random(1);
    StRemoved Total;
    for (const double dSpacing : {1.0, 0.61, 0.37, 1.29})
        for (const double dOff : {0.02, 0.2, 0.5}) {
            ClQK7 Builder;
            ClTestGrid Grid;
            Builder.BuildGrid(Grid, Regions(Lattice(Random, 24, 14, dSpacing, dOff)));
            ExpectSameLinks(Grid, Builder);
            const StRemoved Removed = ExpectSameSteps(Builder, Grid);
            Total.m_nLonely += Removed.m_nLonely;
            Total.m_nLonelyAfterReduction += Removed.m_nLonelyAfterReduction;
            Total.m_nUnmatched += Removed.m_nUnmatched;
        }
    EXPECT_GT(Total.m_nLonely, 100); // each step has had something to do
    EXPECT_GT(Total.m_nLonelyAfterReduction, 20);
    EXPECT_GT(Total.m_nUnmatched, 100);
}

TEST(CrowdedGrid, TailsAreEatenFromWhicheverEndIsFree) {
    // Tails hang on a body of four dots, in all eight directions of the grid's order.
    for (const double x : {-1.0, 0.0, 1.0})
        for (const double y : {-1.0, 0.0, 1.0}) {
            std::vector<ClVector> aPlaces = {{2000, 4000},
                                             {2000 + cdPitchX, 4000},
                                             {2000, 4000 + cdPitchY},
                                             {2000 + cdPitchX, 4000 + cdPitchY}};
            for (int i = 2; i < 30; ++i)
                aPlaces.push_back({2000 + i * x * cdPitchX, 4000 + i * y * cdPitchY});
            ClQK7 Builder;
            ClTestGrid Grid;
            Builder.BuildGrid(Grid, RegionsAt(aPlaces));
            ExpectSameLinks(Grid, Builder);
            ExpectSameSteps(Builder, Grid);
        }
}

TEST(CrowdedGrid, LinksAgreeWhateverThePitchAndItsTolerance) {
    struct StScale {
        double m_dDpiX;
        double m_dDpiY;
        double m_dPitch;
        double m_dTolerance;
    };
    Random_t Random(2);
    for (const StScale& Scale :
         {StScale{127, 254, 2, 0.31}, StScale{127, 254, 2, 0.9}, StScale{127, 254, 2, 3.0},
          StScale{127, 254, 2, 1e-3}, StScale{127, 254, 2, 0.0}, StScale{127, 254, 2, -0.31},
          StScale{127, 254, 0, 0.31}, StScale{-127, -254, 2, -0.31}, StScale{127, -254, 2, -0.31},
          StScale{127, 254, 2, 1e300}, StScale{127, 254, 2, cdInfinity},
          StScale{127, 254, 2, cdNaN}, StScale{1e-300, 254, 2, 0.31},
          StScale{1e308, 1e308, 2, 0.31}, StScale{cdInfinity, 254, 2, 0.31},
          StScale{cdNaN, 254, 2, 0.31}, StScale{1e17, 1e17, 2, 0.31}}) {
        ClQK7 Builder;
        Builder.m_dSourceDpiX = Scale.m_dDpiX;
        Builder.m_dSourceDpiY = Scale.m_dDpiY;
        Builder.m_dPitch = Scale.m_dPitch;
        Builder.m_dPitchTolerance = Scale.m_dTolerance;
        ClTestGrid Grid;
        Builder.BuildGrid(Grid, Regions(Lattice(Random, 12, 10, 0.27, 0.4)));
        ExpectSameLinks(Grid, Builder);
    }
}

TEST(CrowdedGrid, LinksAgreeAtTheVeryToleranceAndFarFromTheOrigin) {
    for (const double dOrigin : {0.0, -123456.75, 1e9, 1e15, -1e15, 4.5e15}) {
        ClQK7 Builder; // a pitch of 1000 pixels and a tolerance of 250
        Builder.m_dSourceDpiX = Builder.m_dSourceDpiY = 12700.0;
        Builder.m_dPitchTolerance = 0.25;
        std::vector<ClVector> aPlaces;
        for (const double y :
             {0.0, 249.0, 250.0, 251.0, 750.0, 751.0, 1000.0, 1249.0, 1250.0, 2500.0})
            for (const double x : {0.0, 249.0, 250.0, 750.0, 751.0, 1249.0, 1250.0, 2500.0})
                aPlaces.push_back({dOrigin + x, dOrigin + y});
        ClTestGrid Grid;
        Builder.BuildGrid(Grid, RegionsAt(aPlaces));
        ExpectSameLinks(Grid, Builder);
        EXPECT_GT(Grid(0).m_aNeighbours.Entries(), 0u) << dOrigin;
    }
}

TEST(CrowdedGrid, LinksAgreeWhereAPlaceIsNoPlace) {
    Random_t Random(3);
    auto aRegions = Lattice(Random, 6, 6, 1.0, 0.1);
    for (const double d : {cdNaN, cdInfinity, -cdInfinity, 1e308, -1e308}) {
        aRegions[3].m_vCentre = {d, 200.0};
        aRegions[7].m_vCentre = {200.0, d};
        aRegions[9].m_vCentre = {d, d};
        ClQK7 Builder;
        ClTestGrid Grid;
        Builder.BuildGrid(Grid, Regions(aRegions));
        ExpectSameLinks(Grid, Builder);
    }
}

TEST(CrowdedGrid, TakesOutAgreeOnLinksOfAnyKind) {
    // One-sided links, links to invalid dots and to itself, none of which linking makes.
    Random_t Random(4);
    std::uniform_int_distribution<unsigned long> Dot(0, 39);
    std::uniform_int_distribution<int> Percent(0, 99);
    int nRemoved = 0;
    for (int nRun = 0; nRun < 100; ++nRun) {
        ClTestGrid Grid;
        for (int i = 0; i < 40; ++i)
            Grid.Add(10.0 * i, 10.0 * i);
        for (int i = 0; i < 50 + nRun; ++i)
            Grid(Dot(Random)).AddDot(&Grid(Dot(Random)), Percent(Random) < 50);
        for (int i = 0; i < 5; ++i)
            Grid(Dot(Random)).m_bValid = false;
        ClQK7 Builder;
        nRemoved += ExpectSameStep(
            Grid, "lonely", [&](ClTestGrid& rDots) { Builder.RemoveLessNeighbours(rDots); },
            RemoveLonelyPlainly);
    }
    EXPECT_GT(nRemoved, 500);
    EXPECT_LT(nRemoved, 3000);
}

// Four times the dots cost about four times as much; all pairs of them would cost sixteen times.
TEST(CrowdedGrid, CostsGrowWithTheDotsAndNotWithTheirPairs) {
    const auto seconds = [](int nSide) {
        Random_t Random(5);
        const auto aRegions = Regions(Lattice(Random, nSide, nSide, 0.61, 0.1));
        double dBest = cdInfinity;
        for (int nRun = 0; nRun < 3; ++nRun) {
            ClQK7 Builder;
            ClTestGrid Grid;
            const std::clock_t nStart = std::clock();
            Builder.BuildGrid(Grid, aRegions);
            Builder.RemoveLessNeighbours(Grid);
            Builder.ReduceToFittingNeighbours(Grid);
            Builder.RemoveLessNeighbours(Grid);
            Builder.GridRemoveBadPoints(Grid);
            dBest = std::min(dBest, static_cast<double>(std::clock() - nStart) / CLOCKS_PER_SEC);
        }
        return dBest;
    };
    EXPECT_LT(seconds(160), 10 * seconds(80));
}
