#include "ImageProcessing/Kernels/LocalStretch.h"

#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

/// One sample, from the definition: the quotient truncated, the product rounded down.
int Stretched(int nFrom, int nSpan, int n) {
    const double dFactor = std::trunc(16711680.0 / nSpan);
    return static_cast<int>(std::clamp(std::floor(dFactor * (n - nFrom) / 65536.0), 0.0, 255.0));
}

int Defined(int n, int nMin, int nMax, long nMinContrast, int nLow, int nHigh) {
    const int d = nMax - nMin;
    return d > nMinContrast && d + 1 != 0 ? Stretched(nMin, d + 1, n)
                                          : Stretched(nLow, nHigh - nLow + 1, n);
}

/// Values of a byte from 0 on, and 255. Steps of 3 and of 5 meet in every difference.
std::vector<int> Values(int nStep) {
    std::vector<int> aValues;
    for (int i = 0; i < 255; i += nStep)
        aValues.push_back(i);
    aValues.push_back(255);
    return aValues;
}

void ExpectDefinition(long nMinContrast, int nLow, int nHigh) {
    SCOPED_TRACE(testing::Message() << nMinContrast << ' ' << nLow << ' ' << nHigh);
    Bytes aIn;
    Bytes aMin;
    Bytes aMax;
    Bytes aExpected;
    for (int nMin : Values(3))
        for (int nMax : Values(5))
            for (int n : {0, 1, 60, 128, 254, 255}) {
                aIn.push_back(static_cast<unsigned char>(n));
                aMin.push_back(static_cast<unsigned char>(nMin));
                aMax.push_back(static_cast<unsigned char>(nMax));
                aExpected.push_back(
                    static_cast<unsigned char>(Defined(n, nMin, nMax, nMinContrast, nLow, nHigh)));
            }
    const Kernels::ClLocalStretch Stretch(nMinContrast, static_cast<unsigned char>(nLow),
                                          static_cast<unsigned char>(nHigh));
    const long nSamples = static_cast<long>(aIn.size());
    TestSupport::AtEveryLevel([&] {
        Bytes aOut(aIn.size() + 1, 77);
        Stretch.StretchLine(aIn.data(), aMin.data(), aMax.data(), nSamples, aOut.data());
        EXPECT_EQ(aOut.back(), 77);
        aOut.pop_back();
        EXPECT_EQ(aOut, aExpected);
        Bytes aInPlace = aIn;
        Stretch.StretchLine(aInPlace.data(), aMin.data(), aMax.data(), nSamples, aInPlace.data());
        EXPECT_EQ(aInPlace, aExpected) << "in place";
    });
}

/// Every number of values with every distance: where a quotient or a product is next to an
/// integer.
TEST(LocalStretchKernel, EqualsItsDefinitionForEveryDistanceInEveryRange) {
    Bytes aIn;
    Bytes aMax;
    Bytes aExpected;
    for (int nMax = 0; nMax < 256; ++nMax)
        for (int n = 0; n < 256; ++n) {
            aIn.push_back(static_cast<unsigned char>(n));
            aMax.push_back(static_cast<unsigned char>(nMax));
            aExpected.push_back(static_cast<unsigned char>(Defined(n, 0, nMax, 0, 7, 7)));
        }
    const Bytes aMin(aIn.size(), 0);
    const Kernels::ClLocalStretch Stretch(0, 7, 7);
    TestSupport::AtEveryLevel([&] {
        Bytes aOut(aIn.size());
        Stretch.StretchLine(aIn.data(), aMin.data(), aMax.data(), static_cast<long>(aIn.size()),
                            aOut.data());
        EXPECT_EQ(aOut, aExpected);
    });
}

TEST(LocalStretchKernel, EqualsItsDefinitionForEveryContrast) {
    for (long n : {5L, 0L, 1L, 100L, 254L, 255L, 1000L, std::numeric_limits<long>::max()})
        ExpectDefinition(n, 30, 200);
}

TEST(LocalStretchKernel, EqualsItsDefinitionForNegativeContrasts) {
    for (long n : {-1L, -2L, -3L, -100L, -255L, -256L, std::numeric_limits<long>::min()})
        ExpectDefinition(n, 30, 200);
}

TEST(LocalStretchKernel, EqualsItsDefinitionForEveryGlobalRange) {
    for (int nLow : {0, 1, 128, 255})
        for (int nHigh : {nLow, 255, 100, 50})
            ExpectDefinition(5, nLow, nHigh);
}

TEST(LocalStretchKernel, CanBeComputedByHand) {
    const Bytes aIn = {60, 50, 71, 40, 110};
    const Bytes aMin(5, 50);
    const Bytes aMax(5, 70);
    Bytes aOut(5);
    Kernels::ClLocalStretch(5, 0, 255).StretchLine(aIn.data(), aMin.data(), aMax.data(), 5,
                                                   aOut.data());
    // 16711680 / 21 = 795794; 10 of it are 7957940, and 65536 goes 121 times into that
    EXPECT_EQ(aOut, Bytes({121, 0, 254, 0, 255}));
}

/// One flat sample at every place of lines of every length, next to samples that are not.
TEST(LocalStretchKernel, FindsAFlatSampleWhereverItIs) {
    for (const long nContrast : {0L, 5L, 254L}) {
        const auto nFlat = static_cast<unsigned char>(nContrast);
        for (std::size_t nSamples = 0; nSamples < 140; ++nSamples) {
            const Bytes aMin(nSamples, 0);
            Bytes aMax(nSamples, static_cast<unsigned char>(nContrast + 1));
            const auto isAnyFlat = [&] {
                return Kernels::IsAnyFlat(aMin.data(), aMax.data(), static_cast<long>(nSamples),
                                          nContrast);
            };
            TestSupport::AtEveryLevel([&] {
                EXPECT_FALSE(isAnyFlat()) << nSamples;
                for (unsigned char& rMax : aMax) {
                    const unsigned char nBefore = rMax;
                    rMax = nFlat;
                    EXPECT_TRUE(isAnyFlat()) << nSamples;
                    rMax = nBefore;
                }
            });
        }
    }
}

TEST(LocalStretchKernel, FindsFlatWhatHasItsMinimumAboveItsMaximum) {
    const Bytes aMin = {0, 9};
    const Bytes aMax = {200, 8};
    EXPECT_TRUE(Kernels::IsAnyFlat(aMin.data(), aMax.data(), 2, 0));
    EXPECT_FALSE(Kernels::IsAnyFlat(aMin.data(), aMax.data(), 1, 199));
    EXPECT_TRUE(Kernels::IsAnyFlat(aMin.data(), aMax.data(), 1, 256));
    EXPECT_TRUE(Kernels::IsAnyFlat(aMin.data(), aMax.data(), 2, -1));
    EXPECT_FALSE(Kernels::IsAnyFlat(aMin.data(), aMax.data(), 1, -1));
}

} // namespace
