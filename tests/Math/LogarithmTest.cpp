// The logarithm against one of 200 bits: every result is the nearest double.

#include "Math/Logarithm.h"

#include "support/SpecialNumbers.h"

#include <boost/multiprecision/cpp_bin_float.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

using TestSupport::cdInfinity;

namespace {

using Long = boost::multiprecision::number<
    boost::multiprecision::cpp_bin_float<200, boost::multiprecision::digit_base_2>>;

double FromBits(std::uint64_t nBits) {
    double x = 0;
    std::memcpy(&x, &nBits, sizeof x);
    return x;
}

double NearestOf200Bits(double x) {
    return Long(boost::multiprecision::log(Long(x))).convert_to<double>();
}

/// The nearest double, by the 64 bits of a long double where they decide it: two units of them
/// more and less round alike.
double Nearest(double x, long& rClose) {
    const long double l = std::log(static_cast<long double>(x));
    const long double dMargin = std::fabs(l) * 0x1p-62L;
    const double dNearest = static_cast<double>(l - dMargin);
    if (dNearest == static_cast<double>(l + dMargin))
        return dNearest;
    ++rClose;
    return NearestOf200Bits(x);
}

template <class Draw>
void ExpectNearest(unsigned int nSeed, long nLeastClose, Draw draw) {
    std::mt19937_64 Random(nSeed);
    long nClose = 0;
    for (int i = 0; i < 500000; ++i) {
        const double x = draw(Random);
        ASSERT_EQ(CorrectLog(x), Nearest(x, nClose)) << std::hexfloat << x;
    }
    EXPECT_GE(nClose, nLeastClose); // some were near the middle of two doubles
}

} // namespace

TEST(Logarithm, OfOneAndOfTheEndsOfTheRange) {
    EXPECT_EQ(CorrectLog(1.0), 0.0);
    EXPECT_FALSE(std::signbit(CorrectLog(1.0)));
    EXPECT_EQ(CorrectLog(0.0), -cdInfinity);
    EXPECT_EQ(CorrectLog(-0.0), -cdInfinity);
    EXPECT_EQ(CorrectLog(cdInfinity), cdInfinity);
    EXPECT_TRUE(std::isnan(CorrectLog(-1.0)));
    EXPECT_TRUE(std::isnan(CorrectLog(-cdInfinity)));
    EXPECT_TRUE(std::isnan(CorrectLog(std::numeric_limits<double>::quiet_NaN())));
    for (const double x : {0x1p-1074, 0x1p-1022, 0x1.fffffffffffffp-1023, 0x1.fffffffffffffp1023})
        EXPECT_EQ(CorrectLog(x), NearestOf200Bits(x)) << x;
}

TEST(Logarithm, OfPowersOfTwoAndTheirNeighbours) {
    for (int n = -1074; n <= 1023; ++n) {
        const double x = std::ldexp(1.0, n);
        for (const double d : {x, std::nextafter(x, 0.0), std::nextafter(x, cdInfinity)})
            ASSERT_EQ(CorrectLog(d), d > 0.0 ? NearestOf200Bits(d) : -cdInfinity)
                << std::hexfloat << d;
    }
}

TEST(Logarithm, OfTheEndsOfTheTablesIntervals) {
    for (int i = 0; i <= 256; ++i)
        for (const double d : {0.5, 1.0, 1024.0}) {
            const double x = d * (1.0 + i / 256.0);
            for (const double y : {x, std::nextafter(x, 0.0), std::nextafter(x, cdInfinity)})
                ASSERT_EQ(CorrectLog(y), NearestOf200Bits(y)) << std::hexfloat << y;
        }
}

// Known from the literature: of all doubles it has the logarithm nearest to the middle of two.
TEST(Logarithm, OfTheHardestNumber) {
    const double x = 0x1.62a88613629b6p+678;
    EXPECT_EQ(CorrectLog(x), NearestOf200Bits(x));
}

// Met by searching: for these the sum of two doubles is just not exact enough.
TEST(Logarithm, OfNumbersThatOnlyTheSlowWayDecides) {
    for (const double x : {0x1.018df9d61ed88p+0, 0x1.0057bdf3a92cbp+0, 0x1.00f4d5219a1fbp+0,
                           0x1.fcd126ed6c87ep-1, 0x1.ff5c88288fab8p-1, 0x1.01c100914a45p+0,
                           0x1.0044e1e3eb021p+0, 0x1.01c958cfa31a8p+0, 0x1.01f7a039b3feep+0})
        EXPECT_EQ(CorrectLog(x), NearestOf200Bits(x)) << std::hexfloat << x;
}

TEST(Logarithm, IsTheNearestDoubleForRandomBits) {
    ExpectNearest(
        1, 500, [](std::mt19937_64& rRandom) { return FromBits(rRandom() % 0x7FF0000000000000); });
}

TEST(Logarithm, IsTheNearestDoubleNextToOne) {
    ExpectNearest(2, 500, [](std::mt19937_64& rRandom) {
        const double d = static_cast<double>(static_cast<std::int64_t>(rRandom()));
        return 1.0 + std::ldexp(d, -64 - static_cast<int>(rRandom() % 50));
    });
}

TEST(Logarithm, IsTheNearestDoubleForSquaresOfDistances) {
    std::uniform_real_distribution<double> Distance(-600.0, 600.0);
    ExpectNearest(3, 500, [&](std::mt19937_64& rRandom) {
        const double x = Distance(rRandom);
        const double y = Distance(rRandom);
        return x * x + y * y;
    });
}

TEST(Logarithm, OfFloatsIsThatOfDoublesRounded) {
    std::mt19937 Random(4);
    for (int i = 0; i < 200000; ++i) {
        const std::uint32_t nBits = static_cast<std::uint32_t>(Random() % 0x7F800000);
        float x = 0;
        std::memcpy(&x, &nBits, sizeof x);
        // The middle of two floats has 25 bits; that of no logarithm met here is so near to it
        // that the 64 bits of a long double do not tell.
        const float fNearest = static_cast<float>(std::log(static_cast<long double>(x)));
        ASSERT_EQ(CorrectLog(x), x == 0.0F ? -std::numeric_limits<float>::infinity() : fNearest)
            << std::hexfloat << x;
    }
    EXPECT_EQ(CorrectLog(1.0F), 0.0F);
    EXPECT_TRUE(std::isnan(CorrectLog(-1.0F)));
}
