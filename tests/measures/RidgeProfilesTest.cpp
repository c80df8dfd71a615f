#include "measures/RidgeProfiles.h"

#include "measures/Pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace pictures;
using measures::AddWidths;
using measures::ClStep;
using measures::ClWidths;
using measures::ContrastOf;
using measures::Profile;
using measures::ProfileAcross;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr ClStep cToTheRight{1.0, 0.0};

ClWidths WidthsOf(const Profile& Values) {
    ClWidths Widths;
    AddWidths(Values, Widths);
    return Widths;
}

} // namespace

TEST(MeasuresWidths, ReachFromEdgeToEdgeInterpolated) {
    // Half way is 5. Down at 1.5 of the steps, up at 3.25, down at 6.5.
    const ClWidths Widths = WidthsOf({10, 10, 0, 4, 8, 10, 10, 0});
    EXPECT_THAT(Widths.m_aRidges, ElementsAre(DoubleNear(0.5 * (3.25 - 1.5), 1e-12)));
    EXPECT_THAT(Widths.m_aValleys, ElementsAre(DoubleNear(0.5 * (6.5 - 3.25), 1e-12)));
}

TEST(MeasuresWidths, AreNotReadWhereAnEndIsMissing) {
    const ClWidths Widths = WidthsOf({0, 0, 10, 10, 10});
    EXPECT_THAT(Widths.m_aRidges, IsEmpty());
    EXPECT_THAT(Widths.m_aValleys, IsEmpty());
}

TEST(MeasuresWidths, AreNoneOfAnEvenProfile) {
    const ClWidths Widths = WidthsOf(Profile(20, 77.0));
    EXPECT_THAT(Widths.m_aRidges, IsEmpty());
    EXPECT_THAT(Widths.m_aValleys, IsEmpty());
}

TEST(MeasuresWidths, AreAddedToTheOnesBefore) {
    ClWidths Widths;
    AddWidths({10, 0, 10}, Widths);
    AddWidths({10, 0, 0, 10}, Widths);
    EXPECT_THAT(Widths.m_aRidges, ElementsAre(DoubleNear(0.5, 1e-12), DoubleNear(1.0, 1e-12)));
}

TEST(MeasuresProfile, HasItsContrastFromTheExtremes) {
    EXPECT_EQ(ContrastOf({30, 200, 12, 90}), 188.0);
}

TEST(MeasuresProfile, HasAValueAtEveryHalfSample) {
    const ClPicture Ramp = Painted(40, 20, [](int x, int) { return 5.0 * x; });
    const ClPicture Mask = WholeMask(Ramp);
    const auto Values = ProfileAcross(Ramp.View(), Mask.View(), 20, 10, cToTheRight, 3);
    ASSERT_TRUE(Values);
    ASSERT_EQ(Values->size(), 13U);
    for (int n = 0; n < 13; ++n)
        EXPECT_NEAR((*Values)[static_cast<std::size_t>(n)], 5.0 * (17.0 + 0.5 * n), 1e-9);
}

TEST(MeasuresProfile, AveragesFiveValuesAlongTheRidge) {
    ClPicture Picture(40, 20, 0);
    Picture.At(20, 12) = 50;
    Picture.At(20, 13) = 250;
    const ClPicture Mask = WholeMask(Picture);
    const auto Values = ProfileAcross(Picture.View(), Mask.View(), 20, 10, cToTheRight, 3);
    ASSERT_TRUE(Values);
    EXPECT_NEAR((*Values)[6], 10.0, 1e-9);
}

TEST(MeasuresProfile, FollowsTheDirection) {
    const ClPicture Ramp = Painted(60, 60, [](int x, int y) { return 2.0 * x + y; });
    const ClPicture Mask = WholeMask(Ramp);
    const auto Values = ProfileAcross(Ramp.View(), Mask.View(), 30, 30, {0.6, 0.8}, 10);
    ASSERT_TRUE(Values);
    for (int n = 0; n < 41; ++n) {
        const double dAcross = 0.5 * n - 10.0;
        EXPECT_NEAR((*Values)[static_cast<std::size_t>(n)],
                    2.0 * (30.0 + 0.6 * dAcross) + 30.0 + 0.8 * dAcross, 1e-9);
    }
}

TEST(MeasuresProfile, AveragesAtRightAnglesToItself) {
    // A trough whose bottom runs along the ridge: each value is that of its own distance from it.
    // Grey values are whole, and interpolation lifts a trough by up to half a grey value.
    const ClPicture Trough = Painted(60, 60, [](int x, int y) {
        const double d = 0.6 * (x - 30) + 0.8 * (y - 30);
        return 2.0 * d * d;
    });
    const ClPicture Mask = WholeMask(Trough);
    const auto Values = ProfileAcross(Trough.View(), Mask.View(), 30, 30, {0.6, 0.8}, 10);
    ASSERT_TRUE(Values);
    for (int n = 0; n < 41; ++n) {
        const double dAcross = 0.5 * n - 10.0;
        EXPECT_NEAR((*Values)[static_cast<std::size_t>(n)], 2.0 * dAcross * dAcross, 1.0);
    }
}

TEST(MeasuresProfile, IsNoneWhereACornerOfTheStripIsNotFinger) {
    const ClPicture Even(40, 40, 9);
    for (const int x : {10, 30})
        for (const int y : {18, 22}) {
            ClPicture Mask = WholeMask(Even);
            EXPECT_TRUE(ProfileAcross(Even.View(), Mask.View(), 20, 20, cToTheRight, 10));
            Mask.At(x, y) = 128;
            EXPECT_FALSE(ProfileAcross(Even.View(), Mask.View(), 20, 20, cToTheRight, 10));
            Mask.At(x, y) = 127;
            EXPECT_TRUE(ProfileAcross(Even.View(), Mask.View(), 20, 20, cToTheRight, 10));
        }
}

TEST(MeasuresProfile, StaysInsideTheFrame) {
    const ClPicture Even(40, 40, 9);
    const ClPicture Mask = WholeMask(Even);
    for (int y = -3; y < 43; ++y)
        for (int x = -3; x < 43; ++x) {
            // Interpolation takes the next sample too, and one is kept to spare.
            const bool bInside = x >= 5 && x + 5 <= 37 && y >= 2 && y + 2 <= 37;
            EXPECT_EQ(ProfileAcross(Even.View(), Mask.View(), x, y, cToTheRight, 5).has_value(),
                      bInside)
                << x << ' ' << y;
        }
}
