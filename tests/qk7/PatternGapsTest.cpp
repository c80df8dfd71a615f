/// The missing dots of a pattern, on grids whose gaps are known.

#include "apps/qk7/PatternGaps.h"

#include <gtest/gtest.h>

using namespace qk7;

namespace {

constexpr StPlace g_Reach = {0.35, 0.35};

/// `nColumns` x `nRows` places at whole coordinates, column by column.
std::vector<StPlace> Grid(int nColumns, int nRows) {
    std::vector<StPlace> places;
    for (int x = 0; x < nColumns; ++x)
        for (int y = 0; y < nRows; ++y)
            places.push_back({double(x), double(y)});
    return places;
}

std::vector<StPlace> Shifted(std::vector<StPlace> places, double dX, double dY) {
    for (StPlace& place : places)
        place = {place.m_dX + dX, place.m_dY + dY};
    return places;
}

std::vector<StPlace> Without(std::vector<StPlace> places, std::size_t nIndex) {
    places.erase(places.begin() + static_cast<std::ptrdiff_t>(nIndex));
    return places;
}

} // namespace

TEST(Qk7PatternGaps, TellsWhichPlaceHasNoDotAndWhereItWouldBe) {
    const std::vector<StPlace> places = Grid(3, 4);
    for (std::size_t i = 0; i < places.size(); ++i) {
        const auto gaps = UnfilledPlaces(places, Without(Shifted(places, 100.5, -7.0), i), g_Reach);

        ASSERT_EQ(gaps.size(), 1U) << i;
        EXPECT_EQ(gaps[0].m_nIndex, i);
        EXPECT_DOUBLE_EQ(gaps[0].m_Place.m_dX, places[i].m_dX + 100.5);
        EXPECT_DOUBLE_EQ(gaps[0].m_Place.m_dY, places[i].m_dY - 7.0);
    }
}

TEST(Qk7PatternGaps, ToleratesDotsBesideTheirPlaces) {
    std::vector<StPlace> dots = Without(Grid(3, 4), 5);
    dots[0].m_dX += 0.3;
    dots[7].m_dY -= 0.3;

    const auto gaps = UnfilledPlaces(Grid(3, 4), dots, g_Reach);

    ASSERT_EQ(gaps.size(), 1U);
    EXPECT_EQ(gaps[0].m_nIndex, 5U);
    // The mean of the eleven dots' deviations.
    EXPECT_NEAR(gaps[0].m_Place.m_dX, 1.0 + 0.3 / 11.0, 1e-12);
    EXPECT_NEAR(gaps[0].m_Place.m_dY, 1.0 - 0.3 / 11.0, 1e-12);
}

TEST(Qk7PatternGaps, TellsNothingWhereTheMissingRowMayBeTheFirstOrTheLast) {
    EXPECT_TRUE(UnfilledPlaces(Grid(3, 4), Grid(3, 3), g_Reach).empty());
}

TEST(Qk7PatternGaps, TellsNothingWhereDotsDoNotFitTheirPlaces) {
    std::vector<StPlace> turned;
    for (const StPlace& place : Without(Grid(3, 4), 5)) // by 30 degrees
        turned.push_back(
            {0.866 * place.m_dX - 0.5 * place.m_dY, 0.5 * place.m_dX + 0.866 * place.m_dY});

    EXPECT_TRUE(UnfilledPlaces(Grid(3, 4), turned, g_Reach).empty());
}

TEST(Qk7PatternGaps, TellsNothingWithoutDotsOrWithoutGaps) {
    EXPECT_TRUE(UnfilledPlaces(Grid(3, 4), {}, g_Reach).empty());
    EXPECT_TRUE(UnfilledPlaces(Grid(3, 4), Grid(3, 4), g_Reach).empty());
    EXPECT_TRUE(UnfilledPlaces(Grid(3, 4), Grid(4, 4), g_Reach).empty());
    EXPECT_TRUE(UnfilledPlaces({}, Grid(3, 4), g_Reach).empty());
}
