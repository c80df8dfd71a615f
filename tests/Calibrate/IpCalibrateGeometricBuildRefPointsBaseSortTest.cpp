// SortXY(): columns from the left, each from the top.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

#include <gtest/gtest.h>

#include "Calibrate/OpenDotBuilder.h"
#include "support/SpecialNumbers.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using TestSupport::cdNaN;
using TestSupport::ClOpenDotBuilder;
using TestSupport::ClTestGrid;
using TestSupport::DotGrid;
using TestSupport::Indices;

namespace {

using Order = std::vector<int>;
using Dots = std::vector<TestSupport::DotBuilder::ClDot*>;

/// Half a pitch is 20 pixels.
void PrepareScale(ClOpenDotBuilder& rBuilder) {
    rBuilder.m_dSourceDpiX = 508.0;
    rBuilder.m_dPitch = 2.0;
}

Order Sorted(ClTestGrid& rGrid) {
    ClOpenDotBuilder Builder;
    PrepareScale(Builder);
    Builder.SortXY(rGrid);
    return Indices(rGrid);
}

// A second way to the order: by picking the smallest again and again, and by walking the columns
// as the rules are told.

void PickSort(Dots& rDots, std::size_t nFrom, std::size_t nTo, double ClVector::*pAxis) {
    for (std::size_t i = nFrom; i < nTo; ++i)
        for (std::size_t j = i + 1; j < nTo; ++j) {
            const double a = rDots[i]->m_vPos.*pAxis;
            const double b = rDots[j]->m_vPos.*pAxis;
            if (b < a || (b == a && rDots[j]->m_nIndex < rDots[i]->m_nIndex))
                std::swap(rDots[i], rDots[j]);
        }
}

std::size_t NaiveColumnEnd(const Dots& aDots, std::size_t s, double h) {
    double dReference = aDots[s]->m_vPos.x;
    std::vector<double> adClean;
    for (std::size_t i = s; i < aDots.size(); ++i) {
        const double x = aDots[i]->m_vPos.x;
        if (std::abs(x - dReference) >= h)
            break;
        if (aDots[i]->m_nStatus == 0) {
            adClean.push_back(x);
            dReference = adClean.front();
        }
    }
    if (!adClean.empty()) {
        double dSum = 0.0;
        for (const double x : adClean)
            dSum += x;
        dReference = dSum / static_cast<double>(adClean.size());
    }
    std::size_t e = s;
    while (e < aDots.size() && aDots[e]->m_vPos.x - dReference < h)
        ++e;
    return std::max(e, s + 1);
}

Order NaiveOrder(const DotGrid& Grid, double h) {
    Dots aDots(Grid.Data(), Grid.Data() + Grid.Entries());
    PickSort(aDots, 0, aDots.size(), &ClVector::x);
    for (std::size_t s = 0; s < aDots.size();) {
        const std::size_t e = NaiveColumnEnd(aDots, s, h);
        PickSort(aDots, s, e, &ClVector::y);
        s = e;
    }
    Order anOrder;
    for (const auto* pDot : aDots)
        anOrder.push_back(pDot->m_nIndex);
    return anOrder;
}

} // namespace

TEST(DotOrder, TakesColumnsFromTheLeftAndEachFromTheTop) {
    ClTestGrid Grid({{81, 10}, {40, 90}, {1, 50}, {79, 90}, {0, 10}, {41, 10}, {80, 50}});
    EXPECT_EQ(Sorted(Grid), (Order{4, 2, 5, 1, 0, 6, 3}));
}

TEST(DotOrder, FollowsSlantedColumns) {
    // Each column drifts by 15 pixels from top to bottom, so that neighbours overlap in x by none.
    ClTestGrid Grid({{15, 240}, {0, 0}, {10, 160}, {5, 80}, {40, 0}, {55, 240}, {45, 80}});
    EXPECT_EQ(Sorted(Grid), (Order{1, 3, 2, 0, 4, 6, 5}));
}

TEST(DotOrder, KeepsTheOrderOfTheComponentsAtOnePlace) {
    ClTestGrid Grid({{7, 5}, {3, 5}, {3, 5}, {0, 5}, {3, 1}, {7, 5}});
    EXPECT_EQ(Sorted(Grid), (Order{4, 0, 1, 2, 3, 5}));
}

TEST(DotOrder, CentresAColumnOnItsCleanDots) {
    // From the left: dirt at 0, then dots at 15 and 30, whose mean is 22.5. The last column begins
    // at 43, which is 20.5 away from it, although 36 is 21 away from the first clean dot.
    ClTestGrid Grid;
    Grid.Add(0, 4).m_nStatus = 1;
    Grid.Add(15, 3);
    Grid.Add(30, 2);
    Grid.Add(36, 1);
    Grid.Add(43, 0);
    EXPECT_EQ(Sorted(Grid), (Order{3, 2, 1, 0, 4}));
}

TEST(DotOrder, MeasuresFromTheFirstDotWithoutACleanOne) {
    ClTestGrid Grid({{0, 4}, {15, 3}, {30, 2}, {36, 1}, {43, 0}});
    for (unsigned long i = 0; i < Grid.Entries(); ++i)
        Grid(i).m_nStatus = 3;
    EXPECT_EQ(Sorted(Grid), (Order{1, 0, 4, 3, 2}));
}

TEST(DotOrder, EndsAColumnAtExactlyHalfAPitch) {
    const double h = 0.01968503937007874 * 508.0 * 2.0;
    ClTestGrid Near({{0, 1}, {std::nextafter(h, 0.0), 0}});
    Near(1).m_nStatus = 1; // does not count for the centre
    EXPECT_EQ(Sorted(Near), (Order{1, 0}));
    ClTestGrid Far({{0, 1}, {h, 0}});
    EXPECT_EQ(Sorted(Far), (Order{0, 1}));
}

TEST(DotOrder, TakesAtLeastOneDotIntoAColumn) {
    for (const double dPitch : {0.0, -2.0, cdNaN}) {
        ClTestGrid Grid({{3, 0}, {1, 9}, {2, 5}, {1, 3}});
        ClOpenDotBuilder Builder;
        Builder.m_dPitch = dPitch;
        Builder.SortXY(Grid);
        EXPECT_EQ(Indices(Grid), (Order{1, 3, 2, 0})) << dPitch;
    }
}

TEST(DotOrder, LeavesAnEmptyGridAlone) {
    ClTestGrid Grid;
    EXPECT_EQ(Sorted(Grid), Order());
}

TEST(DotOrder, PutsPlacesThatAreNoNumberLast) {
    ClTestGrid Grid({{cdNaN, 1}, {50, 2}, {cdNaN, cdNaN}, {0, 3}, {0, cdNaN}});
    EXPECT_EQ(Sorted(Grid), (Order{3, 4, 1, 0, 2}));
}

TEST(DotOrder, AgreesWithAPlainWalkOnRandomGrids) {
    std::mt19937 Random(20);
    std::uniform_int_distribution<int> Place(0, 160);
    std::uniform_int_distribution<int> Status(0, 2);
    for (int nRun = 0; nRun < 200; ++nRun) {
        ClTestGrid Grid;
        for (int i = 0; i < nRun / 3; ++i)
            Grid.Add(Place(Random) * 0.5, Place(Random) * 0.5).m_nStatus =
                static_cast<std::uint32_t>(Status(Random) / 2);
        const Order anExpected = NaiveOrder(Grid, 0.01968503937007874 * 508.0 * 2.0);
        ASSERT_EQ(Sorted(Grid), anExpected) << "run " << nRun;
    }
}
