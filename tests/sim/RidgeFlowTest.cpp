#include "sim/RidgeFlow.h"

#include <gtest/gtest.h>

#include <cmath>

using sim::ClFingerSettings;
using sim::ClPoint;
using sim::ClRidgeFlow;
using sim::EPattern;

namespace {

ClRidgeFlow Flow(EPattern ePattern, std::uint64_t nSeed) {
    ClFingerSettings Settings;
    Settings.m_ePattern = ePattern;
    return ClRidgeFlow(Settings, nSeed);
}

/// How often the doubled direction turns along an ellipse about the middle of the finger, the
/// closed curve taken clockwise as it is seen.
double Turns(const ClRidgeFlow& Ridges, double dHalfWidth, double dHalfHeight) {
    constexpr int nSteps = 4000;
    double dSum = 0.0;
    ClPoint Before = Ridges.DoubledDirection({dHalfWidth, 0.0});
    for (int n = 1; n <= nSteps; ++n) {
        const double t = 2.0 * M_PI * n / nSteps;
        const ClPoint Now =
            Ridges.DoubledDirection({dHalfWidth * std::cos(t), dHalfHeight * std::sin(t)});
        dSum +=
            std::atan2(Before.x * Now.y - Before.y * Now.x, Before.x * Now.x + Before.y * Now.y);
        Before = Now;
    }
    return dSum / (2.0 * M_PI);
}

} // namespace

TEST(SimRidgeFlow, DirectionsAreUnitVectors) {
    for (const EPattern ePattern :
         {EPattern::eArch, EPattern::eLeftLoop, EPattern::eRightLoop, EPattern::eWhorl}) {
        const ClRidgeFlow Ridges = Flow(ePattern, 4);
        for (double y = -9.0; y <= 9.0; y += 0.7) {
            for (double x = -6.0; x <= 6.0; x += 0.7) {
                const ClPoint d = Ridges.DoubledDirection({x, y});
                EXPECT_NEAR(d.x * d.x + d.y * d.y, 1.0, 1e-12);
            }
        }
    }
}

// Each core turns the doubled direction once forward: none in an arch, one in a loop, two in a
// whorl. Inside this ellipse there are no deltas.
TEST(SimRidgeFlow, HasTheCoresOfItsPattern) {
    for (std::uint64_t nSeed = 0; nSeed < 20; ++nSeed) {
        EXPECT_NEAR(Turns(Flow(EPattern::eArch, nSeed), 2.0, 3.0), 0.0, 1e-6) << nSeed;
        EXPECT_NEAR(Turns(Flow(EPattern::eLeftLoop, nSeed), 2.0, 3.0), 1.0, 1e-6) << nSeed;
        EXPECT_NEAR(Turns(Flow(EPattern::eRightLoop, nSeed), 2.0, 3.0), 1.0, 1e-6) << nSeed;
        EXPECT_NEAR(Turns(Flow(EPattern::eWhorl, nSeed), 2.0, 3.0), 2.0, 1e-6) << nSeed;
    }
}

// Taken together with its deltas every pattern turns back: far outside all ridges run level.
TEST(SimRidgeFlow, HasAsManyDeltasAsCores) {
    for (std::uint64_t nSeed = 0; nSeed < 20; ++nSeed) {
        EXPECT_NEAR(Turns(Flow(EPattern::eRightLoop, nSeed), 60.0, 60.0), 0.0, 1e-6) << nSeed;
        EXPECT_NEAR(Turns(Flow(EPattern::eWhorl, nSeed), 60.0, 60.0), 0.0, 1e-6) << nSeed;
    }
}

// Below the core of a right loop ridges run down to the right: the doubled angle is below pi.
TEST(SimRidgeFlow, LoopsOpenToTheirSide) {
    int nRight = 0;
    int nLeft = 0;
    for (std::uint64_t nSeed = 0; nSeed < 20; ++nSeed) {
        nRight += Flow(EPattern::eRightLoop, nSeed).DoubledDirection({0.2, 3.0}).y > 0.0;
        nLeft += Flow(EPattern::eLeftLoop, nSeed).DoubledDirection({-0.2, 3.0}).y < 0.0;
    }
    EXPECT_EQ(nRight, 20);
    EXPECT_EQ(nLeft, 20);
}

TEST(SimRidgeFlow, PeriodStaysWithinSevenPercent) {
    const ClRidgeFlow Ridges = Flow(EPattern::eWhorl, 2);
    double dLeast = 1.0;
    double dMost = 0.0;
    for (double y = -9.0; y <= 9.0; y += 0.3) {
        for (double x = -6.0; x <= 6.0; x += 0.3) {
            dLeast = std::fmin(dLeast, Ridges.Period({x, y}));
            dMost = std::fmax(dMost, Ridges.Period({x, y}));
        }
    }
    EXPECT_GE(dLeast, 0.47 * 0.93);
    EXPECT_LE(dMost, 0.47 * 1.07);
    EXPECT_LT(dLeast, dMost - 0.01);
}
