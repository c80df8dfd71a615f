// Lines of entries against single ones, bit by bit and at every level.

#include "Calibrate/WarpEntries.h"

#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

using TestSupport::AtEveryLevel;
using Warp::StCaptureSize;

namespace {

/// Positions around an axis of this length: anywhere, next to whole ones, at and next to the
/// limits, far outside, and no numbers.
class ClPositions {
public:
    ClPositions(unsigned int nSeed, std::uint32_t nSide) : m_Random(nSeed), m_dSide(nSide) {}

    double Next() {
        constexpr double cdInfinity = std::numeric_limits<double>::infinity();
        const double adLimits[] = {1.0, m_dSide - 3.0, m_dSide - 1.0, 2.0, 0.0, m_dSide};
        const double adFar[] = {1e300,
                                -1e300,
                                3e9,
                                -3e9,
                                cdInfinity,
                                -cdInfinity,
                                std::numeric_limits<double>::quiet_NaN()};
        const double dLimit = adLimits[m_Random() % 6];
        switch (m_Random() % 8) {
        case 0:
            return dLimit;
        case 1:
            return std::nextafter(dLimit, m_Random() % 2 == 0 ? -cdInfinity : cdInfinity);
        case 2:
            return adFar[m_Random() % 7];
        case 3:
            return std::floor(Anywhere()) + 1e-9 * (static_cast<double>(m_Random() % 3) - 1.0);
        default:
            return Anywhere();
        }
    }

private:
    double Anywhere() {
        return std::uniform_real_distribution<double>(-1.0, m_dSide + 1.0)(m_Random);
    }

    std::mt19937 m_Random;
    double m_dSide;
};

void ExpectSingleOnes(const StCaptureSize& Size, int nEntries, std::size_t nStep,
                      unsigned int nSeed) {
    ClPositions Columns(nSeed, Size.m_nWidth);
    ClPositions Lines(nSeed + 1, Size.m_nHeight);
    std::vector<double> aX;
    std::vector<double> aY;
    std::vector<unsigned char> aExpected(nStep * static_cast<std::size_t>(nEntries), 0xEE);
    for (int i = 0; i < nEntries; ++i) {
        aX.push_back(Columns.Next());
        aY.push_back(Lines.Next());
        Warp::FillEntry(Size, aX.back(), aY.back(),
                        aExpected.data() + nStep * static_cast<std::size_t>(i));
    }
    AtEveryLevel([&] {
        std::vector<unsigned char> aEntries(aExpected.size(), 0xEE);
        Warp::FillEntries(Size, aX.data(), aY.data(), nEntries, nStep, aEntries.data());
        EXPECT_EQ(aEntries, aExpected) << Size.m_nWidth << " x " << Size.m_nHeight;
    });
}

} // namespace

TEST(WarpEntries, OfALineAreThoseOfItsPixels) {
    for (unsigned int nSeed = 0; nSeed < 30; ++nSeed) {
        ExpectSingleOnes({390, 1052}, Warp::cnMostEntries, 36, nSeed);
        ExpectSingleOnes({37, 35}, 1 + static_cast<int>(nSeed), 36, nSeed);
    }
}

TEST(WarpEntries, OfAPlaneLeaveThoseOfOthersAlone) {
    for (const std::size_t nPlanes : {2u, 3u})
        ExpectSingleOnes({389, 1047}, 101, 36 * nPlanes, 7);
}

// Among them two whose last position a float rounds up, beyond the last 4 samples.
TEST(WarpEntries, OfCapturesOfAnySize) {
    const std::uint32_t anSides[] = {
        0, 1, 3, 4, 5, 1000, 65535, 1 << 24, (1 << 24) + 6, (1 << 25) + 6, 0x7FFFFFFF, 0xFFFFFFFF};
    for (const std::uint32_t nWidth : anSides)
        for (const std::uint32_t nHeight : anSides)
            ExpectSingleOnes({nWidth, nHeight}, 50, 36, nWidth + nHeight);
}

TEST(WarpEntries, HaveEveryFractionOfAFloat) {
    const StCaptureSize Size = {700, 700};
    for (int nPart = 0; nPart < 16384; nPart += Warp::cnMostEntries) {
        std::vector<double> aX;
        std::vector<double> aY;
        std::vector<unsigned char> aExpected(36u * Warp::cnMostEntries);
        for (int i = 0; i < Warp::cnMostEntries; ++i) {
            aX.push_back(600.0 + (nPart + i) / 16384.0);
            aY.push_back(690.0 - (nPart + i) / 16384.0);
            Warp::FillEntry(Size, aX.back(), aY.back(),
                            aExpected.data() + 36u * static_cast<unsigned int>(i));
        }
        AtEveryLevel([&] {
            std::vector<unsigned char> aEntries(aExpected.size());
            Warp::FillEntries(Size, aX.data(), aY.data(), Warp::cnMostEntries, 36, aEntries.data());
            ASSERT_EQ(aEntries, aExpected);
        });
    }
}
