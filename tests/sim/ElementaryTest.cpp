#include "sim/Elementary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

TEST(SimElementary, SineAndCosineFollowTheMathematicsLibrary) {
    for (int n = -1000; n <= 1000; ++n) {
        const double x = 0.01 * n;
        EXPECT_NEAR(sim::Sine(x), std::sin(x), 1e-14);
        EXPECT_NEAR(sim::Cosine(x), std::cos(x), 1e-14);
    }
}

TEST(SimElementary, AngleFollowsTheMathematicsLibraryInAllQuadrants) {
    for (int n = 0; n < 720; ++n) {
        const double dAngle = 0.0087 * n - 3.13;
        const double x = 3.0 * std::cos(dAngle);
        const double y = 3.0 * std::sin(dAngle);
        EXPECT_NEAR(sim::Angle(x, y), std::atan2(y, x), 2e-5);
    }
}

TEST(SimElementary, AngleIsExactOnTheAxes) {
    EXPECT_EQ(sim::Angle(1.0, 0.0), 0.0);
    EXPECT_EQ(sim::Angle(0.0, 2.0), 0.5 * sim::g_dPi);
    EXPECT_EQ(sim::Angle(-1.0, 0.0), sim::g_dPi);
    EXPECT_EQ(sim::Angle(0.0, -2.0), -0.5 * sim::g_dPi);
    EXPECT_EQ(sim::Angle(0.0, 0.0), 0.0);
}

TEST(SimElementary, DecayFollowsTheMathematicsLibrary) {
    for (int n = 0; n <= 200; ++n) {
        const double t = 0.1 * n;
        EXPECT_NEAR(sim::Decay(t) / std::exp(-t), 1.0, 1e-10);
    }
    EXPECT_EQ(sim::Decay(0.0), 1.0);
    EXPECT_EQ(sim::Decay(701.0), 0.0);
}

TEST(SimElementary, SmoothStepRunsFromZeroToOne) {
    EXPECT_EQ(sim::SmoothStep(2.0, 4.0, 1.0), 0.0);
    EXPECT_EQ(sim::SmoothStep(2.0, 4.0, 2.0), 0.0);
    EXPECT_EQ(sim::SmoothStep(2.0, 4.0, 3.0), 0.5);
    EXPECT_EQ(sim::SmoothStep(2.0, 4.0, 2.5), 0.15625); // 1/16 (3 - 1/2)
    EXPECT_EQ(sim::SmoothStep(2.0, 4.0, 5.0), 1.0);
}

TEST(SimElementary, LimitTakesWhatIsNotANumberToTheLowerEnd) {
    EXPECT_EQ(sim::Limit(5.0, 1.0, 3.0), 3.0);
    EXPECT_EQ(sim::Limit(-5.0, 1.0, 3.0), 1.0);
    EXPECT_EQ(sim::Limit(2.0, 1.0, 3.0), 2.0);
    EXPECT_EQ(sim::Limit(std::numeric_limits<double>::quiet_NaN(), 1.0, 3.0), 1.0);
}
