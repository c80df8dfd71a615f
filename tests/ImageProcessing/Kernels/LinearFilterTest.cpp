#include "ImageProcessing/Kernels/LinearFilter.h"

#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <algorithm>
#include <cstdint>
#include <random>
#include <type_traits>
#include <vector>

// Each loop is compared with the definition in numbers of 128 bits, which no sum overflows.

namespace {

using Kernels::ClLinearFilter;
__extension__ typedef __int128 Wide;

constexpr long cnGuard = 16;
constexpr unsigned char cnGuardByte = 0xA5;

template <class T>
std::vector<T> RandomLine(std::mt19937& rRandom, long nWidth) {
    std::vector<T> aLine(static_cast<std::size_t>(nWidth));
    std::generate(aLine.begin(), aLine.end(), [&] { return static_cast<T>(rRandom()); });
    return aLine;
}

/// Taps whose absolute values sum to at most `nTotal`, of either sign.
std::vector<long> RandomTaps(std::mt19937& rRandom, long nTaps, long nTotal) {
    std::vector<long> aTaps(static_cast<std::size_t>(nTaps));
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

long PlaceOf(long x, long i, const std::vector<long>& aTaps, long nWidth) {
    return std::clamp(x + i - static_cast<long>(aTaps.size()) / 2, 0L, nWidth - 1);
}

template <class Values>
Wide SumAlong(const Values& aValues, const std::vector<long>& aTaps, long x) {
    Wide nSum = 0;
    for (std::size_t i = 0; i < aTaps.size(); ++i)
        nSum += Wide{aTaps[i]} *
                Wide{aValues[static_cast<std::size_t>(
                    PlaceOf(x, static_cast<long>(i), aTaps, static_cast<long>(aValues.size())))]};
    return nSum;
}

template <class T>
std::vector<std::int64_t> ColumnSums(const std::vector<std::vector<T>>& aLines,
                                     const std::vector<long>& aTaps, long nWidth) {
    std::vector<std::int64_t> aSums(static_cast<std::size_t>(nWidth));
    for (std::size_t x = 0; x < aSums.size(); ++x) {
        Wide nSum = 0;
        for (std::size_t i = 0; i < aTaps.size(); ++i)
            nSum += Wide{aTaps[i]} * Wide{aLines[i][x]};
        aSums[x] = static_cast<std::int64_t>(nSum);
    }
    return aSums;
}

/// Runs a loop into a guarded line and compares.
template <class T, class Run>
void ExpectLine(const std::vector<T>& aExpected, Run run) {
    const std::size_t nWidth = aExpected.size();
    std::vector<T> aOut(nWidth + 2 * cnGuard, static_cast<T>(cnGuardByte));
    run(aOut.data() + cnGuard);
    EXPECT_EQ(std::vector<T>(aOut.begin() + cnGuard, aOut.end() - cnGuard), aExpected);
    for (std::size_t i = 0; i < cnGuard; ++i) {
        EXPECT_EQ(static_cast<unsigned char>(aOut[i]), cnGuardByte);
        EXPECT_EQ(static_cast<unsigned char>(aOut[nWidth + cnGuard + i]), cnGuardByte);
    }
}

std::vector<unsigned char> Sharpened(const std::vector<unsigned char>& aIn,
                                     const std::vector<unsigned char>& aLowPass) {
    std::vector<unsigned char> aOut;
    for (std::size_t x = 0; x < aIn.size(); ++x)
        aOut.push_back(static_cast<unsigned char>(std::clamp(2 * aIn[x] - aLowPass[x], 0, 255)));
    return aOut;
}

/// All loops on random lines.
template <class T>
void ExpectDefinition(std::mt19937& rRandom, long nWidth, const std::vector<long>& aTaps) {
    SCOPED_TRACE(testing::Message() << "width " << nWidth << ", taps " << aTaps.size());
    const auto nTaps = static_cast<long>(aTaps.size());
    ClLinearFilter filter(aTaps.data(), nTaps, nWidth);
    const std::vector<T> aLine = RandomLine<T>(rRandom, nWidth);
    std::vector<std::vector<T>> aLines;
    std::vector<const T*> aPointers;
    for (long i = 0; i < nTaps; ++i)
        aLines.push_back(RandomLine<T>(rRandom, nWidth));
    for (const auto& aOne : aLines)
        aPointers.push_back(aOne.data());
    const std::vector<std::int64_t> aSums = ColumnSums(aLines, aTaps, nWidth);

    std::vector<T> aAlong, aAcross, aBoth;
    for (long x = 0; x < nWidth; ++x) {
        aAlong.push_back(Quotient<T>(SumAlong(aLine, aTaps, x), 4096));
        aAcross.push_back(Quotient<T>(aSums[static_cast<std::size_t>(x)], 4096));
        aBoth.push_back(Quotient<T>(SumAlong(aSums, aTaps, x), 4096L * 4096L));
    }
    TestSupport::AtEveryLevel([&] {
        ExpectLine(aAlong, [&](T* pOut) { filter.FilterLine(aLine.data(), pOut); });
        ExpectLine(aAcross, [&](T* pOut) { filter.FilterColumns(aPointers.data(), pOut); });
        ExpectLine(aBoth, [&](T* pOut) { filter.FilterBoth(aPointers.data(), pOut); });
        if constexpr (std::is_same_v<T, unsigned char>)
            ExpectLine(Sharpened(aLines[aLines.size() / 2], aAcross),
                       [&](T* pOut) { filter.SharpenColumns(aPointers.data(), pOut); });
    });
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

/// Symmetric taps from the sum of a Gaussian's on both sides of 4096, which is the last that 16
/// bits hold, and of as many taps as they hold and more.
TYPED_TEST(LinearFilter, EqualsItsDefinitionOnSymmetricTaps) {
    for (long nHalf = 0; nHalf <= 8; ++nHalf)
        for (long nWidth : {1L, 5L, 63L, 64L, 65L, 130L})
            for (long nTotal : {4095L, 4096L, 4097L}) {
                std::vector<long> aTaps(static_cast<std::size_t>(2 * nHalf + 1), 0);
                long nRest = nTotal;
                for (std::size_t k = 0; k < static_cast<std::size_t>(nHalf); ++k) {
                    aTaps[k] = static_cast<long>(this->m_Random() % 300) | 15;
                    aTaps[aTaps.size() - 1 - k] = aTaps[k];
                    nRest -= 2 * aTaps[k];
                }
                aTaps[static_cast<std::size_t>(nHalf)] = std::max(nRest, 0L);
                ExpectDefinition<TypeParam>(this->m_Random, nWidth, aTaps);
            }
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTapsThatAreNearlySymmetric) {
    for (const auto& aTaps : std::vector<std::vector<long>>{
             {100, 3000, 101}, {-5, 3000, -5}, {5000, 0, 5000}, {1000, 1000}, {2000, 4000, 2000}})
        ExpectDefinition<TypeParam>(this->m_Random, 70, aTaps);
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTheLargestSymmetricSums) {
    using T = TypeParam;
    constexpr long cnWidth = 70;
    for (const auto& aTaps : std::vector<std::vector<long>>{
             {4096}, {2048, 0, 2048}, {15, 15, 15, 15, 15, 15, 3916, 15, 15, 15, 15, 15, 15}}) {
        const std::vector<T> aLine(cnWidth, std::numeric_limits<T>::max());
        const std::vector<const T*> aLines(aTaps.size(), aLine.data());
        ClLinearFilter filter(aTaps.data(), static_cast<long>(aTaps.size()), cnWidth);
        TestSupport::AtEveryLevel([&] { // the taps sum to one
            ExpectLine(aLine, [&](T* pOut) { filter.FilterLine(aLine.data(), pOut); });
            ExpectLine(aLine, [&](T* pOut) { filter.FilterColumns(aLines.data(), pOut); });
            ExpectLine(aLine, [&](T* pOut) { filter.FilterBoth(aLines.data(), pOut); });
        });
    }
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionWhereTapsSumToMoreThanOne) {
    using T = TypeParam;
    constexpr long cnWidth = 70;
    for (const long nTap : {2049L, 2150L}) {
        const long aTaps[] = {nTap, 0, nTap};
        const std::vector<T> aLine(cnWidth, std::numeric_limits<T>::max());
        const T* apLines[] = {aLine.data(), aLine.data(), aLine.data()};
        ClLinearFilter filter(aTaps, 3, cnWidth);
        const Wide nSum = Wide{2 * nTap} * std::numeric_limits<T>::max();
        const std::vector<T> aOnce(cnWidth, Quotient<T>(nSum, 4096));
        const std::vector<T> aTwice(cnWidth, Quotient<T>(nSum * 2 * nTap, 4096L * 4096L));
        TestSupport::AtEveryLevel([&] {
            ExpectLine(aOnce, [&](T* pOut) { filter.FilterColumns(apLines, pOut); });
            ExpectLine(aTwice, [&](T* pOut) { filter.FilterBoth(apLines, pOut); });
        });
    }
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionWithMoreTapsThanSamples) {
    for (long nTaps : {20L, 45L, 101L})
        ExpectDefinition<TypeParam>(this->m_Random, 19, RandomTaps(this->m_Random, nTaps, 4095));
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionUpToTheLargestTapsOfVectors) {
    for (const auto& aTaps : std::vector<std::vector<long>>{
             {32767}, {-32767}, {16383, -16384}, {10000, 12767, 10000}, {-1, 32766}})
        for (long nWidth : {15L, 16L, 17L, 40L})
            ExpectDefinition<TypeParam>(this->m_Random, nWidth, aTaps);
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionBeyondTheLargestTapsOfVectors) {
    for (const auto& aTaps : std::vector<std::vector<long>>{
             {32768}, {-32768, 1}, {20000, -20000, 20000}, {70000, 1, -99999}, {1L << 25, 3, 7}})
        for (long nWidth : {5L, 16L, 33L})
            ExpectDefinition<TypeParam>(this->m_Random, nWidth, aTaps);
}

TYPED_TEST(LinearFilter, EqualsItsDefinitionOnTheLargestSamples) {
    using T = TypeParam;
    const std::vector<long> aTaps(3, 1365);
    ClLinearFilter filter(aTaps.data(), 3, 20);
    for (int nValue : {int{std::numeric_limits<T>::min()}, int{std::numeric_limits<T>::max()}}) {
        const std::vector<T> aLine(20, static_cast<T>(nValue));
        const T* aLines[] = {aLine.data(), aLine.data(), aLine.data()};
        const auto nOnce = static_cast<T>(nValue * 4095 / 4096);
        const auto nTwice = static_cast<T>(static_cast<long>(nValue) * 4095 * 4095 / (1L << 24));
        const std::vector<T> aOnce(20, nOnce);
        const std::vector<T> aTwice(20, nTwice);
        ExpectLine(aOnce, [&](T* pOut) { filter.FilterLine(aLine.data(), pOut); });
        ExpectLine(aOnce, [&](T* pOut) { filter.FilterColumns(aLines, pOut); });
        ExpectLine(aTwice, [&](T* pOut) { filter.FilterBoth(aLines, pOut); });
    }
}

TYPED_TEST(LinearFilter, WrapsSumsThatNoNumberHolds) {
    using T = TypeParam;
    const long nTap = std::numeric_limits<long>::max();
    ClLinearFilter filter(&nTap, 1, 3);
    const T aLine[] = {1, 2, 3};
    const T* aLines[] = {aLine};
    // (2^63 - 1) n modulo 2^64 as a signed number: 2^63 - 1, -2, 2^63 - 3.
    const auto cut = [](long n) { return static_cast<T>(n / 4096); };
    ExpectLine(std::vector<T>{cut(nTap), 0, cut(nTap - 2)},
               [&](T* pOut) { filter.FilterLine(aLine, pOut); });
    ExpectLine(std::vector<T>{cut(nTap), 0, cut(nTap - 2)},
               [&](T* pOut) { filter.FilterColumns(aLines, pOut); });
    // Times 2^63 - 1 again: 1, 2 and 3 modulo 2^64.
    ExpectLine(std::vector<T>{0, 0, 0}, [&](T* pOut) { filter.FilterBoth(aLines, pOut); });
}

TYPED_TEST(LinearFilter, RoundsTowardZero) {
    using T = TypeParam;
    const long aTaps[] = {-1};
    ClLinearFilter filter(aTaps, 1, 18);
    const std::vector<T> aLine(18, static_cast<T>(100));
    ExpectLine(std::vector<T>(18, 0), [&](T* pOut) { filter.FilterLine(aLine.data(), pOut); });
}

TYPED_TEST(LinearFilter, FiltersALineInPlace) {
    using T = TypeParam;
    const long aTaps[] = {4096, 0, 0}; // moves by one sample
    ClLinearFilter filter(aTaps, 3, 20);
    std::vector<T> aLine = RandomLine<T>(this->m_Random, 20);
    std::vector<T> aMoved = aLine;
    std::copy(aLine.begin(), aLine.end() - 1, aMoved.begin() + 1);
    filter.FilterLine(aLine.data(), aLine.data());
    EXPECT_EQ(aLine, aMoved);
}

TYPED_TEST(LinearFilter, GivesZerosWithoutTaps) {
    using T = TypeParam;
    ClLinearFilter filter(nullptr, 0, 20);
    const std::vector<T> aLine = RandomLine<T>(this->m_Random, 20);
    const T* aLines[] = {aLine.data()};
    const std::vector<T> aZeros(20, 0);
    ExpectLine(aZeros, [&](T* pOut) { filter.FilterLine(aLine.data(), pOut); });
    ExpectLine(aZeros, [&](T* pOut) { filter.FilterColumns(aLines, pOut); });
    ExpectLine(aZeros, [&](T* pOut) { filter.FilterBoth(aLines, pOut); });
}

TYPED_TEST(LinearFilter, DoesNothingWithoutSamples) {
    using T = TypeParam;
    const long aTaps[] = {1, 2, 1};
    ClLinearFilter filter(aTaps, 3, 0);
    const T* aLines[] = {nullptr, nullptr, nullptr};
    const std::vector<T> aNone;
    ExpectLine(aNone, [&](T* pOut) { filter.FilterLine(static_cast<const T*>(nullptr), pOut); });
    ExpectLine(aNone, [&](T* pOut) { filter.FilterColumns(aLines, pOut); });
    ExpectLine(aNone, [&](T* pOut) { filter.FilterBoth(aLines, pOut); });
}

TEST(LinearFilterTaps, AnswerEveryMissingAllocation) {
    const long aTaps[] = {1, 2, 1};
    TestSupport::FailEachAllocation([&] { ClLinearFilter filter(aTaps, 3, 100); });
}

TEST(LinearFilterTaps, AnswerAMissingAllocationOfLargeTaps) {
    const long aTaps[] = {1L << 40, 2, 1};
    const unsigned char aLine[20] = {};
    const unsigned char* aLines[] = {aLine, aLine, aLine};
    unsigned char aOut[20];
    ClLinearFilter filter(aTaps, 3, 20);
    TestSupport::FailEachAllocation([&] { filter.FilterBoth(aLines, aOut); });
}

} // namespace
