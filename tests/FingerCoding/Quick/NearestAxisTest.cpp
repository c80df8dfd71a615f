#include "FingerCoding/Quick/NearestAxis.h"

#include <gtest/gtest.h>

#include <vector>

using Quick::StNearestAxis;

namespace {

std::vector<int> AllSourcesOf(const StNearestAxis& Axis) {
    std::vector<int> aSources(static_cast<std::size_t>(Axis.m_nOut));
    aSources.resize(static_cast<std::size_t>(Axis.WriteSources(aSources.data())));
    return aSources;
}

} // namespace

TEST(QuickNearestAxis, KeepsItsPixels) {
    EXPECT_EQ(AllSourcesOf(StNearestAxis(4)), (std::vector<int>{0, 1, 2, 3}));
}

TEST(QuickNearestAxis, StepsByItsResolutions) {
    EXPECT_EQ(AllSourcesOf(StNearestAxis(6, 3, 1000, 500)), (std::vector<int>{0, 2, 4}));
    EXPECT_EQ(AllSourcesOf(StNearestAxis(3, 6, 500, 1000)), (std::vector<int>{0, 0, 1, 1, 2, 2}));
}

TEST(QuickNearestAxis, StepsByItsSizesWithoutAResolution) {
    EXPECT_EQ(AllSourcesOf(StNearestAxis(6, 2, 0, 500)), (std::vector<int>{0, 3}));
    EXPECT_EQ(AllSourcesOf(StNearestAxis(6, 2, 500, 0)), (std::vector<int>{0, 3}));
}

TEST(QuickNearestAxis, TakesNothingFromBehindItsEnd) {
    const StNearestAxis Axis(3, 5, 500, 500);
    EXPECT_EQ(Axis.SourceOf(2), 2);
    EXPECT_EQ(Axis.SourceOf(3), StNearestAxis::cnOutside);
    EXPECT_EQ(AllSourcesOf(Axis), (std::vector<int>{0, 1, 2}));
}
