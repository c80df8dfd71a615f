#include "ImageProcessing/MaskArithmetic.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

TEST(MaskArithmetic, ScalesByTheResolutionsWhereBothAreThere) {
    EXPECT_EQ(Mask::ScaleOf(6, 4), 1.5);
    EXPECT_EQ(Mask::ScaleOf(1, 4), 0.25);
    EXPECT_EQ(Mask::ScaleOf(4, 1), 4.0);
    EXPECT_EQ(Mask::ScaleOf(0, 4), 1.0);
    EXPECT_EQ(Mask::ScaleOf(4, 0), 1.0);
    EXPECT_EQ(Mask::ScaleOf(-6, 4), 1.0);
    EXPECT_EQ(Mask::ScaleOf(6, -4), 1.0);
}

TEST(MaskArithmetic, StopsAtTheEndsOfItsNumbers) {
    constexpr auto cnMost = std::numeric_limits<std::int64_t>::max();
    constexpr auto cnLeast = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(Mask::Sum(cnMost, 1), cnMost);
    EXPECT_EQ(Mask::Sum(cnLeast, -1), cnLeast);
    EXPECT_EQ(Mask::Sum(cnMost, cnLeast), -1);
    EXPECT_EQ(Mask::Difference(cnMost, -1), cnMost);
    EXPECT_EQ(Mask::Difference(cnLeast, 1), cnLeast);
    EXPECT_EQ(Mask::Difference(0, cnLeast), cnMost);
    EXPECT_EQ(Mask::Extent(3, 5), 3);
    EXPECT_EQ(Mask::Extent(cnLeast, cnMost), cnMost);
}

} // namespace
