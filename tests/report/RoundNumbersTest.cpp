#include "report/RoundNumbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace report;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Pointwise;

namespace {

void ExpectTicks(double dLow, double dHigh, int nMost, const std::vector<double>& aTicks) {
    EXPECT_THAT(RoundTicks(dLow, dHigh, nMost), Pointwise(testing::DoubleNear(1e-12), aTicks));
}

} // namespace

TEST(ReportRoundNumbers, RoundDownAndUpToOneTwoAndFive) {
    EXPECT_DOUBLE_EQ(RoundDown(1.0), 1.0);
    EXPECT_DOUBLE_EQ(RoundDown(1.99), 1.0);
    EXPECT_DOUBLE_EQ(RoundDown(4.9), 2.0);
    EXPECT_DOUBLE_EQ(RoundDown(99.0), 50.0);
    EXPECT_DOUBLE_EQ(RoundDown(0.007), 0.005);
    EXPECT_DOUBLE_EQ(RoundUp(1.0), 1.0);
    EXPECT_DOUBLE_EQ(RoundUp(1.01), 2.0);
    EXPECT_DOUBLE_EQ(RoundUp(51.0), 100.0);
    EXPECT_DOUBLE_EQ(RoundUp(0.003), 0.005);
}

TEST(ReportRoundNumbers, AreOneForWhatHasNoSize) {
    for (const double d : {0.0, -3.0, std::nan(""), static_cast<double>(INFINITY), 1e-310}) {
        EXPECT_EQ(RoundDown(d), 1.0) << d;
        EXPECT_EQ(RoundUp(d), 1.0) << d;
    }
}

TEST(ReportRoundNumbers, TickARange) {
    ExpectTicks(0.0, 10.0, 6, {0.0, 2.0, 4.0, 6.0, 8.0, 10.0});
    ExpectTicks(0.0, 389.0, 4, {0.0, 100.0, 200.0, 300.0});
    ExpectTicks(0.0, 400.0, 4, {0.0, 200.0, 400.0});
    ExpectTicks(-0.3, 0.31, 4, {-0.2, 0.0, 0.2});
    ExpectTicks(7.0, 7.0, 5, {7.0});
    ExpectTicks(7.0, 9.0, 1, {7.0});
}

TEST(ReportRoundNumbers, TickNoRangeThatIsNone) {
    EXPECT_TRUE(RoundTicks(std::nan(""), 1.0, 5).empty());
    EXPECT_TRUE(RoundTicks(0.0, INFINITY, 5).empty());
    EXPECT_TRUE(RoundTicks(1.0, 0.0, 5).empty());
    const double dMost = std::numeric_limits<double>::max();
    EXPECT_LE(RoundTicks(-dMost, dMost, 5).size(), 5U);
}

TEST(ReportRoundNumbers, TellTheDecimalsOfAStep) {
    EXPECT_EQ(DecimalsOf(20.0), 0);
    EXPECT_EQ(DecimalsOf(1.0), 0);
    EXPECT_EQ(DecimalsOf(0.5), 1);
    EXPECT_EQ(DecimalsOf(0.1), 1);
    EXPECT_EQ(DecimalsOf(0.02), 2);
    EXPECT_EQ(DecimalsOf(1e-20), 9);
    EXPECT_EQ(DecimalsOf(std::nan("")), 0);
}
