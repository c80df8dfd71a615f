#include "measures/RidgeDirections.h"

#include "measures/Pictures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace pictures;
using measures::ClBoxSums;
using measures::ClGradient;
using measures::ClRidgeDirections;
using measures::ClStep;
using measures::GradientAt;

TEST(MeasuresBoxSums, AreThoseOfALoopAndEndAtTheBorders) {
    const auto Value = [](int x, int y) { return 100 * y * y - 7 * x; };
    const ClBoxSums Sums(5, 4, Value);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 5; ++x)
            for (int nReach = 0; nReach < 6; ++nReach) {
                int nSum = 0;
                for (int v = std::max(y - nReach, 0); v <= std::min(y + nReach, 3); ++v)
                    for (int u = std::max(x - nReach, 0); u <= std::min(x + nReach, 4); ++u)
                        nSum += Value(u, v);
                EXPECT_EQ(Sums.Around(x, y, nReach), nSum) << x << ' ' << y << ' ' << nReach;
            }
}

TEST(MeasuresGradient, IsEightTimesTheSlope) {
    const ClPicture Ramp = Painted(5, 5, [](int x, int y) { return 10.0 + 3.0 * x + 20.0 * y; });
    const ClPicture Mask = WholeMask(Ramp);
    const ClGradient Gradient = GradientAt(Ramp.View(), Mask.View(), 2, 2);
    EXPECT_EQ(Gradient.x, 8 * 3);
    EXPECT_EQ(Gradient.y, 8 * 20);
}

TEST(MeasuresGradient, WeighsTheMiddleTwice) {
    ClPicture Picture(3, 3, 0);
    Picture.At(2, 1) = 10;
    Picture.At(2, 2) = 1;
    const ClPicture Mask = WholeMask(Picture);
    const ClGradient Gradient = GradientAt(Picture.View(), Mask.View(), 1, 1);
    EXPECT_EQ(Gradient.x, 21);
    EXPECT_EQ(Gradient.y, 1);
}

TEST(MeasuresGradient, IsZeroBesideTheBackgroundAndAtTheBorders) {
    const ClPicture Ramp = Painted(7, 7, [](int x, int y) { return 5.0 * x + y; });
    ClPicture Mask = WholeMask(Ramp);
    Mask.At(4, 4) = 128;
    EXPECT_EQ(GradientAt(Ramp.View(), Mask.View(), 3, 3).x, 0);
    EXPECT_EQ(GradientAt(Ramp.View(), Mask.View(), 0, 3).x, 0);
    EXPECT_EQ(GradientAt(Ramp.View(), Mask.View(), 3, 6).x, 0);
    EXPECT_NE(GradientAt(Ramp.View(), Mask.View(), 2, 2).x, 0);
    Mask.At(4, 4) = 127;
    EXPECT_NE(GradientAt(Ramp.View(), Mask.View(), 3, 3).x, 0);
}

TEST(MeasuresRidgeDirections, AreThoseOfTheRidges) {
    for (int nDegrees = -85; nDegrees <= 90; nDegrees += 5) {
        const ClPicture Picture = RidgePicture(9.0, 4.0, nDegrees);
        const ClPicture Mask = WholeMask(Picture);
        const ClStep Across = ClRidgeDirections(Picture.View(), Mask.View(), 10).Across(60, 70);
        const double dAngle = nDegrees * M_PI / 180.0;
        const double dSine = Across.x * std::sin(dAngle) - Across.y * std::cos(dAngle);
        EXPECT_LT(std::fabs(dSine), 0.02) << nDegrees;
        EXPECT_NEAR(Across.x * Across.x + Across.y * Across.y, 1.0, 1e-12);
        EXPECT_GE(Across.x, 0.0);
    }
}

TEST(MeasuresRidgeDirections, PointToTheRightWhereNothingChanges) {
    const ClPicture Even(30, 30, 90);
    const ClPicture Mask = WholeMask(Even);
    const ClStep Across = ClRidgeDirections(Even.View(), Mask.View(), 10).Across(15, 15);
    EXPECT_EQ(Across.x, 1.0);
    EXPECT_EQ(Across.y, 0.0);
}

TEST(MeasuresRidgeDirections, LookNoFurtherThanTheirReach) {
    const ClPicture Picture = Painted(
        60, 20, [](int x, int y) { return x < 30 ? Ridges(x, 8.0, 4.0) : Ridges(y, 8.0, 4.0); });
    const ClPicture Mask = WholeMask(Picture);
    const ClRidgeDirections Directions(Picture.View(), Mask.View(), 8);
    EXPECT_GT(Directions.Across(20, 10).x, 0.999);
    EXPECT_GT(std::fabs(Directions.Across(40, 10).y), 0.999);
}
