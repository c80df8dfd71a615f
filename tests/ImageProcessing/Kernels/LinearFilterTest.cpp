#include "ImageProcessing/Kernels/LinearFilter.h"

#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

// Each loop is compared with the definition in numbers of 128 bits, which no sum overflows.

namespace {

using Kernels::ClLinearFilter;
using Kernels::StInAndOut;
using FilterTaps = std::vector<long>;
__extension__ typedef __int128 Wide;

template <class T>
using SampleLines = std::vector<std::vector<T>>; ///< of equal length

/// Behind each line, and of whole lines before and behind a plane.
constexpr long cnGuard = 16;
constexpr unsigned char cnGuardByte = 0xA5;

template <class T>
SampleLines<T> RandomSamples(std::mt19937& rRandom, long nWidth, long nHeight) {
    SampleLines<T> aLines(static_cast<std::size_t>(nHeight),
                          std::vector<T>(static_cast<std::size_t>(nWidth)));
    for (auto& aLine : aLines)
        std::generate(aLine.begin(), aLine.end(), [&] { return static_cast<T>(rRandom()); });
    return aLines;
}

template <class T>
SampleLines<T> FlatSamples(long nWidth, long nHeight, int nValue) {
    return SampleLines<T>(static_cast<std::size_t>(nHeight),
                          std::vector<T>(static_cast<std::size_t>(nWidth), static_cast<T>(nValue)));
}

/// FilterTaps whose absolute values sum to at most `nTotal`, of either sign.
FilterTaps RandomTaps(std::mt19937& rRandom, long nTaps, long nTotal) {
    FilterTaps aTaps(static_cast<std::size_t>(nTaps));
    const long nEach = nTotal / std::max(nTaps, 1L);
    for (long& nTap : aTaps)
        nTap = static_cast<long>(rRandom() % static_cast<unsigned long>(2 * nEach + 1)) - nEach;
    return aTaps;
}

/// A quotient toward zero, of which the sample keeps the low bits.
template <class T>
T Quotient(Wide nSum, long nDivisor) {
    return static_cast<T>(static_cast<std::int64_t>(static_cast<std::int64_t>(nSum) / nDivisor));
}

/// The sum of products around place `n` of `nCount`, of which `at(i)` is one.
template <class At>
std::int64_t SumAround(const FilterTaps& aTaps, long n, long nCount, At at) {
    const auto nTaps = static_cast<long>(aTaps.size());
    Wide nSum = 0;
    for (long i = 0; i < nTaps; ++i) {
        const long nPlace = std::clamp(n + i - nTaps / 2, 0L, nCount - 1);
        nSum +=
            Wide{aTaps[static_cast<std::size_t>(i)]} * Wide{at(static_cast<std::size_t>(nPlace))};
    }
    return static_cast<std::int64_t>(nSum);
}

/// `value(x, y)` for each place.
template <class Value, class T, class ValueAt>
SampleLines<Value> Each(const SampleLines<T>& aIn, ValueAt valueAt) {
    SampleLines<Value> aOut(aIn.size(), std::vector<Value>(aIn.front().size()));
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x)
            aOut[y][x] = valueAt(x, y);
    return aOut;
}

template <class T>
SampleLines<std::int64_t> SumsAlong(const SampleLines<T>& aIn, const FilterTaps& aTaps) {
    return Each<std::int64_t>(aIn, [&](std::size_t x, std::size_t y) {
        return SumAround(aTaps, static_cast<long>(x), static_cast<long>(aIn[y].size()),
                         [&](std::size_t i) { return aIn[y][i]; });
    });
}

template <class T>
SampleLines<std::int64_t> SumsAcross(const SampleLines<T>& aIn, const FilterTaps& aTaps) {
    return Each<std::int64_t>(aIn, [&](std::size_t x, std::size_t y) {
        return SumAround(aTaps, static_cast<long>(y), static_cast<long>(aIn.size()),
                         [&](std::size_t i) { return aIn[i][x]; });
    });
}

template <class T>
SampleLines<T> Quotients(const SampleLines<std::int64_t>& aSums, long nDivisor) {
    return Each<T>(
        aSums, [&](std::size_t x, std::size_t y) { return Quotient<T>(aSums[y][x], nDivisor); });
}

SampleLines<unsigned char> Sharpened(const SampleLines<unsigned char>& aIn,
                                     const SampleLines<unsigned char>& aLowPass) {
    return Each<unsigned char>(aIn, [&](std::size_t x, std::size_t y) {
        return static_cast<unsigned char>(std::clamp(2 * aIn[y][x] - aLowPass[y][x], 0, 255));
    });
}

/// Lines one behind the other, each with its guard, and guards before and behind.
template <class T>
class ClGuarded {
public:
    explicit ClGuarded(const SampleLines<T>& aLines)
        : m_nWidth(aLines.front().size()), m_nHeight(aLines.size()),
          m_aSamples((m_nHeight + 2) * Stride(), static_cast<T>(cnGuardByte)) {
        for (std::size_t y = 0; y < m_nHeight; ++y)
            std::copy(aLines[y].begin(), aLines[y].end(), Line(y));
    }

    std::size_t Stride() const { return m_nWidth + cnGuard; }
    T* Line(std::size_t y) { return m_aSamples.data() + (y + 1) * Stride(); }

    SampleLines<T> TakeLines() {
        SampleLines<T> aLines;
        for (std::size_t y = 0; y < m_nHeight; ++y) {
            aLines.emplace_back(Line(y), Line(y) + m_nWidth);
            std::fill_n(Line(y), m_nWidth, static_cast<T>(cnGuardByte));
        }
        return aLines;
    }

    /// Behind TakeLines().
    bool AreGuardsUntouched() const {
        return std::count(m_aSamples.begin(), m_aSamples.end(), static_cast<T>(cnGuardByte)) ==
               static_cast<long>(m_aSamples.size());
    }

private:
    std::size_t m_nWidth;
    std::size_t m_nHeight;
    std::vector<T> m_aSamples;
};

/// Runs a filter into guarded lines and compares.
template <class T, class Run>
void ExpectLines(const SampleLines<T>& aIn, const SampleLines<T>& aExpected, Run run) {
    ClGuarded<T> In(aIn);
    ClGuarded<T> Out(aIn);
    const auto nStride = static_cast<std::ptrdiff_t>(In.Stride());
    run(StInAndOut<T>{In.Line(0), nStride, static_cast<long>(aIn.size()), Out.Line(0), nStride});
    EXPECT_EQ(Out.TakeLines(), aExpected);
    EXPECT_TRUE(Out.AreGuardsUntouched());
}

/// The filter in all directions, at every level.
template <class T>
void ExpectDefinition(const SampleLines<T>& aIn, const FilterTaps& aTaps) {
    const auto nWidth = static_cast<long>(aIn.front().size());
    SCOPED_TRACE(testing::Message() << nWidth << " by " << aIn.size() << ", taps " << aTaps.size());
    const auto aAlong = Quotients<T>(SumsAlong(aIn, aTaps), 4096);
    const auto aAcross = Quotients<T>(SumsAcross(aIn, aTaps), 4096);
    const auto aBoth = Quotients<T>(SumsAlong(SumsAcross(aIn, aTaps), aTaps), 4096L * 4096L);
    TestSupport::AtEveryLevel([&] {
        ClLinearFilter filter(aTaps.data(), static_cast<long>(aTaps.size()), nWidth);
        ExpectLines(aIn, aAlong, [&](const auto& Planes) { filter.FilterAlong(Planes); });
        ExpectLines(aIn, aAcross, [&](const auto& Planes) { filter.FilterAcross(Planes); });
        ExpectLines(aIn, aBoth, [&](const auto& Planes) { filter.FilterBoth(Planes); });
        if constexpr (std::is_same_v<T, unsigned char>)
            ExpectLines(aIn, Sharpened(aIn, aAcross),
                        [&](const auto& Planes) { filter.SharpenAcross(Planes); });
    });
}

/// On random lines, of which there are fewer than taps, or more.
template <class T>
void ExpectDefinition(std::mt19937& rRandom, long nWidth, const FilterTaps& aTaps) {
    const long nHeight = 1 + static_cast<long>(rRandom() % (aTaps.size() + 4));
    ExpectDefinition(RandomSamples<T>(rRandom, nWidth, nHeight), aTaps);
}

/// FilterTaps t(k) and nSign * t(k), of 1/16 and more, beside one in the middle that makes a sum of
/// `nTotal` or is 0.
FilterTaps PairedTaps(std::mt19937& rRandom, long nHalf, long nTotal, long nSign) {
    FilterTaps aTaps(static_cast<std::size_t>(2 * nHalf + 1), 0);
    long nRest = nTotal;
    for (std::size_t k = 0; k < static_cast<std::size_t>(nHalf); ++k) {
        const long nMost = std::max(nRest / 2, 1L);
        const long nTap = static_cast<long>(rRandom() % static_cast<unsigned long>(nMost)) | 15;
        if (2 * nTap > nRest)
            break;
        aTaps[k] = nTap;
        aTaps[aTaps.size() - 1 - k] = nSign * nTap;
        nRest -= 2 * nTap;
    }
    std::shuffle(aTaps.begin(), aTaps.begin() + nHalf, rRandom);
    for (std::size_t k = 0; k < static_cast<std::size_t>(nHalf); ++k)
        aTaps[aTaps.size() - 1 - k] = nSign * aTaps[k];
    if (nSign > 0)
        aTaps[static_cast<std::size_t>(nHalf)] = nRest;
    return aTaps;
}

template <class T>
class LinearFilter : public testing::Test {
protected:
    std::mt19937 m_Random{20250131};
};

using SampleTypes = testing::Types<unsigned char, signed char>;
TYPED_TEST_SUITE(LinearFilter, SampleTypes, );

TYPED_TEST(LinearFilter, EqualsItsDefinitionAtEveryWidth) {
    for (long nWidth = 1; nWidth <= 70; ++nWidth)
        for (long nTaps : {1L, 2L, 3L, 6L, 7L, 9L, 17L})
            ExpectDefinition<TypeParam>(this->m_Random, nWidth,
                                        RandomTaps(this->m_Random, nTaps, 4095));
}

/// The sum of a Gaussian's taps on both sides of 4096, which is the last that 16 bits hold, and
/// as many taps as they hold and more.
TYPED_TEST(LinearFilter, EqualsItsDefinitionOnEvenTaps) {
    for (long nHalf = 0; nHalf <= 10; ++nHalf)
        for (long nWidth : {1L, 5L, 31L, 32L, 33L, 130L})
            for (long nTotal : {4095L, 4096L, 4097L})
                ExpectDefinition<TypeParam>(this->m_Random, nWidth,
                                            PairedTaps(this->m_Random, nHalf, nTotal, 1));
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnOddTaps) {
    for (long nHalf = 1; nHalf <= 10; ++nHalf)
        for (long nWidth : {1L, 5L, 31L, 32L, 33L, 130L})
            for (long nTotal : {4095L, 4096L, 4100L})
                ExpectDefinition<TypeParam>(this->m_Random, nWidth,
                                            PairedTaps(this->m_Random, nHalf, nTotal, -1));
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTheTapsOfTheScanner) {
    for (const FilterTaps& aTaps :
         {FilterTaps{7, 153, 979, 1815, 979, 153, 7},
          FilterTaps{0, 4, 31, 147, 447, 872, 1089, 872, 447, 147, 31, 4, 0},
          FilterTaps{3, 74, 607, 1361, 0, -1361, -607, -74, -3}})
        for (long nWidth : {3L, 64L, 77L})
            ExpectDefinition(RandomSamples<TypeParam>(this->m_Random, nWidth, 29), aTaps);
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTapsThatNearlyPairUp) {
    for (const FilterTaps& aTaps :
         {FilterTaps{100, 3000, 101}, FilterTaps{-5, 3000, -5}, FilterTaps{5000, 0, 5000},
          FilterTaps{1000, 1000}, FilterTaps{2000, 4000, 2000}, FilterTaps{500, 1, -500},
          FilterTaps{500, 0, -501}, FilterTaps{500, 0, 0, 0, 0}, FilterTaps{-700, 0, 700},
          FilterTaps{0, 9, 0, 0}, FilterTaps{0, -9, 0}})
        ExpectDefinition<TypeParam>(this->m_Random, 70, aTaps);
}

/// Parts of 1/16 that add up to the most that they may, and to one tap more.
TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTheLargestParts) {
    for (const FilterTaps& aTaps :
         {FilterTaps{120, 0, 120}, FilterTaps{112, 16, 16, 16, 112}, FilterTaps{128, 0, 128},
          FilterTaps{129, 0, 129}, FilterTaps{127, 1, 127}, FilterTaps{127, 2, 127},
          FilterTaps{127, 3, 127}, FilterTaps{256}, FilterTaps{257}, FilterTaps{128, 0, -128},
          FilterTaps{129, 0, -129}, FilterTaps{2048, 0, -2048}, FilterTaps{2150, 0, -2150},
          FilterTaps{64, 64, 0, -64, -64},
          FilterTaps{15, 15, 15, 15, 15, 15, 15, 15, 3856, 15, 15, 15, 15, 15, 15, 15, 15},
          FilterTaps{15, 15, 15, 15, 15, 15, 15, 1933, 0, -1933, -15, -15, -15, -15, -15, -15,
                     -15}})
        for (const bool bSteps : {false, true}) {
            constexpr int cnLow = std::numeric_limits<TypeParam>::min();
            constexpr int cnHigh = std::numeric_limits<TypeParam>::max();
            SampleLines<TypeParam> aIn = FlatSamples<TypeParam>(70, 40, cnHigh);
            for (std::size_t y = 0; bSteps && y < 40; ++y)
                for (std::size_t x = 0; x < 70; ++x)
                    if ((x / 13 + y / 11) % 2 == 0)
                        aIn[y][x] = static_cast<TypeParam>(cnLow);
            ExpectDefinition(aIn, aTaps);
        }
}

TYPED_TEST(LinearFilter, LeavesFlatSamplesWhereTapsSumToOne) {
    using T = TypeParam;
    for (const FilterTaps& aTaps :
         {FilterTaps{4096}, FilterTaps{2048, 0, 2048},
          FilterTaps{15, 15, 15, 15, 15, 15, 3916, 15, 15, 15, 15, 15, 15}}) {
        const auto aFlat = FlatSamples<T>(70, 3, std::numeric_limits<T>::max());
        ClLinearFilter filter(aTaps.data(), static_cast<long>(aTaps.size()), 70);
        TestSupport::AtEveryLevel([&] {
            ExpectLines(aFlat, aFlat, [&](const auto& Planes) { filter.FilterAlong(Planes); });
            ExpectLines(aFlat, aFlat, [&](const auto& Planes) { filter.FilterAcross(Planes); });
            ExpectLines(aFlat, aFlat, [&](const auto& Planes) { filter.FilterBoth(Planes); });
        });
    }
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionWhereTapsSumToMoreThanOne) {
    for (const long nTap : {2049L, 2150L})
        ExpectDefinition(FlatSamples<TypeParam>(70, 2, std::numeric_limits<TypeParam>::max()),
                         {nTap, 0, nTap});
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionWithMoreTapsThanSamples) {
    for (long nTaps : {20L, 45L, 101L})
        ExpectDefinition<TypeParam>(this->m_Random, 19, RandomTaps(this->m_Random, nTaps, 4095));
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionUpToTheLargestTapsOfVectors) {
    for (const FilterTaps& aTaps :
         {FilterTaps{32767}, FilterTaps{-32767}, FilterTaps{16383, -16384},
          FilterTaps{10000, 12767, 10000}, FilterTaps{-1, 32766}})
        for (long nWidth : {15L, 16L, 17L, 40L})
            ExpectDefinition<TypeParam>(this->m_Random, nWidth, aTaps);
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionBeyondTheLargestTapsOfVectors) {
    for (const FilterTaps& aTaps :
         {FilterTaps{32768}, FilterTaps{-32768, 1}, FilterTaps{20000, -20000, 20000},
          FilterTaps{70000, 1, -99999}, FilterTaps{1L << 25, 3, 7}})
        for (long nWidth : {5L, 16L, 33L})
            ExpectDefinition<TypeParam>(this->m_Random, nWidth, aTaps);
}

TYPED_TEST(LinearFilter, RoundsTwiceAsFarAsOnceForBoth) {
    using T = TypeParam;
    const FilterTaps aTaps(3, 1365);
    for (int nValue : {int{std::numeric_limits<T>::min()}, int{std::numeric_limits<T>::max()}}) {
        const auto aIn = FlatSamples<T>(20, 4, nValue);
        const auto aOnce = FlatSamples<T>(20, 4, nValue * 4095 / 4096);
        const auto aTwice = FlatSamples<T>(
            20, 4, static_cast<int>(static_cast<long>(nValue) * 4095 * 4095 / (1L << 24)));
        ClLinearFilter filter(aTaps.data(), 3, 20);
        ExpectLines(aIn, aOnce, [&](const auto& Planes) { filter.FilterAlong(Planes); });
        ExpectLines(aIn, aOnce, [&](const auto& Planes) { filter.FilterAcross(Planes); });
        ExpectLines(aIn, aTwice, [&](const auto& Planes) { filter.FilterBoth(Planes); });
    }
}

TYPED_TEST(LinearFilter, WrapsSumsThatNoNumberHolds) {
    using T = TypeParam;
    const long nTap = std::numeric_limits<long>::max();
    ClLinearFilter filter(&nTap, 1, 3);
    const SampleLines<T> aIn = {{1, 2, 3}};
    // (2^63 - 1) n modulo 2^64 as a signed number: 2^63 - 1, -2, 2^63 - 3.
    const auto cut = [](long n) { return static_cast<T>(n / 4096); };
    const SampleLines<T> aOnce = {{cut(nTap), 0, cut(nTap - 2)}};
    ExpectLines(aIn, aOnce, [&](const auto& Planes) { filter.FilterAlong(Planes); });
    ExpectLines(aIn, aOnce, [&](const auto& Planes) { filter.FilterAcross(Planes); });
    // Times 2^63 - 1 again: 1, 2 and 3 modulo 2^64.
    ExpectLines(aIn, {{0, 0, 0}}, [&](const auto& Planes) { filter.FilterBoth(Planes); });
}

TYPED_TEST(LinearFilter, RoundsTowardZero) {
    using T = TypeParam;
    const long aTaps[] = {-1};
    ClLinearFilter filter(aTaps, 1, 18);
    ExpectLines(FlatSamples<T>(18, 1, 100), FlatSamples<T>(18, 1, 0),
                [&](const auto& Planes) { filter.FilterAlong(Planes); });
}

TYPED_TEST(LinearFilter, FiltersLinesInPlace) {
    using T = TypeParam;
    for (const FilterTaps& aTaps :
         {FilterTaps{4096, 0, 0}, FilterTaps{1024, 2048, 1024}}) { // moves, blurs
        const SampleLines<T> aLines = RandomSamples<T>(this->m_Random, 40, 3);
        ClGuarded<T> Kept(aLines);
        const auto nStride = static_cast<std::ptrdiff_t>(Kept.Stride());
        ClLinearFilter(aTaps.data(), 3, 40)
            .FilterAlong(StInAndOut<T>{Kept.Line(0), nStride, 3, Kept.Line(0), nStride});
        EXPECT_EQ(Kept.TakeLines(), Quotients<T>(SumsAlong(aLines, aTaps), 4096));
    }
}

TYPED_TEST(LinearFilter, GivesZerosWithoutTaps) {
    using T = TypeParam;
    ClLinearFilter filter(nullptr, 0, 20);
    const auto aIn = RandomSamples<T>(this->m_Random, 20, 2);
    const auto aZeros = FlatSamples<T>(20, 2, 0);
    ExpectLines(aIn, aZeros, [&](const auto& Planes) { filter.FilterAlong(Planes); });
    ExpectLines(aIn, aZeros, [&](const auto& Planes) { filter.FilterAcross(Planes); });
    ExpectLines(aIn, aZeros, [&](const auto& Planes) { filter.FilterBoth(Planes); });
}

TYPED_TEST(LinearFilter, DoesNothingWithoutSamples) {
    using T = TypeParam;
    for (const FilterTaps& aTaps : {FilterTaps{1, 2, 1}, FilterTaps{1, 2, 3}})
        for (const long nWidth : {0L, 4L}) {
            ClLinearFilter filter(aTaps.data(), 3, nWidth);
            const StInAndOut<T> None{nullptr, 4, nWidth == 0 ? 2L : 0L, nullptr, 4};
            filter.FilterAlong(None);
            filter.FilterAcross(None);
            filter.FilterBoth(None);
        }
}

TEST(LinearFilterTaps, AnswerEveryMissingAllocation) {
    const long aTaps[] = {1, 2, 1};
    TestSupport::FailEachAllocation([&] { ClLinearFilter filter(aTaps, 3, 100); });
}

TEST(LinearFilterTaps, AnswerEveryMissingAllocationOfARun) {
    const unsigned char aIn[60] = {};
    unsigned char aOut[60];
    const StInAndOut<unsigned char> Planes{aIn, 20, 3, aOut, 20};
    for (const FilterTaps& aTaps : {FilterTaps{1, 2, 1}, FilterTaps{1L << 40, 2, 1}})
        TestSupport::FailEachAllocation([&] {
            ClLinearFilter filter(aTaps.data(), 3, 20);
            filter.FilterBoth(Planes);
            filter.FilterAcross(Planes);
            filter.FilterAlong(Planes);
        });
}

} // namespace
