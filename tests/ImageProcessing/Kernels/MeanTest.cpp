#include "ImageProcessing/Kernels/Mean.h"
#include "ImageProcessing/Kernels/MeanQuotient.h"

#include "ImageProcessing/Kernels/PlaneCase.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <cstring>
#include <limits>
#include <utility>
#include <vector>

namespace {

using TestSupport::AtEveryLevel;
using TestSupport::caRankSizes;
using TestSupport::ClPlaneCase;
using TestSupport::CutWindow;
using TestSupport::ForEachPlace;
using TestSupport::RealRows;
using TestSupport::StReach;
using TestSupport::TruncatedMean;

template <class T>
RealRows Mean(ClPlaneCase<T>& rCase, long nHalfX, long nHalfY) {
    return rCase.Run([&](const T* pIn, long nInStride, long nWidth, long nHeight, T* pOut,
                         long nOutStride) {
        Kernels::MeanOfWindow(pIn, nInStride, nWidth, nHeight, nHalfX, nHalfY, pOut, nOutStride);
    });
}

template <class T>
RealRows Mean3x3(ClPlaneCase<T>& rCase) {
    return rCase.Run(Kernels::Mean3x3<T>);
}

RealRows TruncatedMeans(const RealRows& aIn, long nHalfX, long nHalfY) {
    StReach Reach(0, 0);
    Reach.m_nX = nHalfX;
    Reach.m_nY = nHalfY;
    return ForEachPlace(aIn,
                        [&](long x, long y) { return TruncatedMean(CutWindow(aIn, x, y, Reach)); });
}

template <class T>
class MeanKernel : public testing::Test {};

using SampleTypes = testing::Types<unsigned char, signed char>;
TYPED_TEST_SUITE(MeanKernel, SampleTypes, );

TYPED_TEST(MeanKernel, EqualsItsDefinitionOnEveryWindow) {
    for (const auto& Size : caRankSizes) {
        SCOPED_TRACE(testing::Message() << Size.m_nWidth << " by " << Size.m_nHeight);
        ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 1);
        for (long nHalfX : {0, 1, 2, 3, 7, Size.m_nWidth / 2, Size.m_nWidth})
            for (long nHalfY : {0, 1, 2, 5, Size.m_nHeight / 2, Size.m_nHeight - 1, 40}) {
                SCOPED_TRACE(testing::Message() << "halves " << nHalfX << ", " << nHalfY);
                const RealRows aExpected = TruncatedMeans(plane.In(), nHalfX, nHalfY);
                AtEveryLevel([&] { EXPECT_EQ(Mean(plane, nHalfX, nHalfY), aExpected); });
            }
    }
}

TYPED_TEST(MeanKernel, EqualsItsDefinitionOnWindowsOfEveryWidth) {
    ClPlaneCase<TypeParam> plane(150, 3, 3);
    for (long nHalf = 0; nHalf <= 75; ++nHalf) { // sums of 16 bits go to 63
        SCOPED_TRACE(nHalf);
        const RealRows aExpected = TruncatedMeans(plane.In(), nHalf, 1);
        AtEveryLevel([&] { EXPECT_EQ(Mean(plane, nHalf, 1), aExpected); });
    }
}

TYPED_TEST(MeanKernel, EqualsItsDefinitionOnTheLargestSums) {
    using T = TypeParam;
    ClPlaneCase<T> plane(140, 70, 0);
    for (long y = 0; y < 70; ++y) // the largest samples leave as the smallest ones enter
        for (long x = 0; x < 140; ++x)
            plane.Set(x, y, y < 33 ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min());
    for (const auto& Halves : {std::pair{63L, 16L}, {63L, 31L}, {64L, 16L}}) {
        const long nHalfX = Halves.first; // lambdas take no parts of a pair
        const long nHalfY = Halves.second;
        SCOPED_TRACE(nHalfX);
        const RealRows aExpected = TruncatedMeans(plane.In(), nHalfX, nHalfY);
        AtEveryLevel([&] { EXPECT_EQ(Mean(plane, nHalfX, nHalfY), aExpected); });
    }
}

/// Before there is a result, several lines enter at once: the more, the narrower the window.
TYPED_TEST(MeanKernel, EqualsItsDefinitionWhereTheFirstLinesHaveTheLargestSamples) {
    using T = TypeParam;
    for (const int nValue :
         {int{std::numeric_limits<T>::min()}, int{std::numeric_limits<T>::max()}})
        for (const long nHalfX : {0L, 2L, 7L, 15L})
            for (const long nHalfY : {3L, 31L}) {
                SCOPED_TRACE(testing::Message() << "halves " << nHalfX << ", " << nHalfY);
                ClPlaneCase<T> plane(20, 40, 5);
                for (long y = 0; y < 35; ++y)
                    for (long x = 0; x < 20; ++x)
                        plane.Set(x, y, nValue);
                const RealRows aExpected = TruncatedMeans(plane.In(), nHalfX, nHalfY);
                AtEveryLevel([&] { EXPECT_EQ(Mean(plane, nHalfX, nHalfY), aExpected); });
            }
}

TYPED_TEST(MeanKernel, TakesWhatIsLeftInTheMemoryOfItsCaller) {
    Kernels::ClScratch Scratch;
    std::memset(Scratch.Reserve(1 << 17), 0xA5, 1 << 17);
    for (const long nWidth : {37L, 5L, 64L}) {
        ClPlaneCase<TypeParam> plane(nWidth, 9, 4);
        EXPECT_EQ(plane.Run([&](const TypeParam* pIn, long nInStride, long nW, long nH,
                                TypeParam* pOut, long nOutStride) {
            Kernels::MeanOfWindow(pIn, nInStride, nW, nH, 3L, 2L, pOut, nOutStride, Scratch);
        }),
                  TruncatedMeans(plane.In(), 3, 2));
    }
}

TYPED_TEST(MeanKernel, EqualsItsDefinitionOnEitherSideOfTheLargestAreaOfSinglePrecision) {
    ClPlaneCase<TypeParam> plane(95, 92, 2);
    for (long nHalf : {44L, 45L, 46L, 60L}) { // 89 by 89 samples are the last below 2^13
        const RealRows aIn = plane.In();
        AtEveryLevel([&] {
            const RealRows aMeans = Mean(plane, nHalf, nHalf);
            for (long x : {0L, 30L, 47L, 94L})
                for (long y : {0L, 45L, 91L})
                    EXPECT_EQ(TestSupport::At(aMeans, x, y),
                              TruncatedMean(CutWindow(aIn, x, y, StReach(3, 2 * nHalf + 1))))
                        << "half " << nHalf << " at " << x << ", " << y;
        });
    }
}

/// Lines of `nCount` samples whose sums are `nSum`, as even as can be.
template <class T>
void SetLine(ClPlaneCase<T>& rCase, long y, long nCount, long nSum) {
    const long nEach = nSum / nCount;
    const long nMore = std::abs(nSum % nCount);
    for (long x = 0; x < nCount; ++x)
        rCase.Set(x, y, static_cast<int>(nEach + (x < nMore ? (nSum < 0 ? -1 : 1) : 0)));
}

/// The quotients that are next to an integer, or one: sums of k n - 1, k n and k n + 1.
template <class T>
void ExpectExactQuotients(long nCount) {
    const long nLow = std::numeric_limits<T>::min();
    const long nHigh = std::numeric_limits<T>::max();
    std::vector<long> aSums;
    for (long k : {nLow, nLow + 1, -1L, 0L, 1L, 2L, 100L, nHigh - 1, nHigh})
        for (long nSum : {k * nCount - 1, k * nCount, k * nCount + 1})
            if (nSum >= nLow * nCount && nSum <= nHigh * nCount)
                aSums.push_back(nSum);
    ClPlaneCase<T> plane(nCount, static_cast<long>(aSums.size()), 0);
    for (std::size_t y = 0; y < aSums.size(); ++y)
        SetLine(plane, static_cast<long>(y), nCount, aSums[y]);
    const RealRows aMeans = Mean(plane, nCount, 0);
    for (std::size_t y = 0; y < aSums.size(); ++y)
        EXPECT_EQ(aMeans[y][0], static_cast<double>(aSums[y] / nCount))
            << aSums[y] << " / " << nCount;
}

TYPED_TEST(MeanKernel, DividesExactlyByEveryCount) {
    for (long nCount = 1; nCount <= 300; ++nCount)
        ExpectExactQuotients<TypeParam>(nCount);
    for (long nCount = 301; nCount < 8192; nCount += 101)
        ExpectExactQuotients<TypeParam>(nCount);
    for (long nCount : {8190L, 8191L, 8192L, 8193L, 8194L, 10007L, 65537L})
        ExpectExactQuotients<TypeParam>(nCount);
}

/// Every sum that is next to a multiple of a count, for every count of the numbers: where rounding
/// matters at all it matters there.
template <class Numbers, class T>
void ExpectEveryQuotient(long nFirstCount, long nLastCount, long nStep) {
    using Sum = typename Numbers::Sum;
    using Real = typename Numbers::Real;
    const long nLow = std::numeric_limits<T>::min();
    const long nHigh = std::numeric_limits<T>::max();
    long nWrong = 0;
    long nTried = 0;
    for (long n = nFirstCount; n <= nLastCount; n += nStep) {
        const Real reciprocal = Kernels::MeanReciprocal(static_cast<Real>(n));
        for (long k = nLow; k <= nHigh; ++k)
            for (long nSum : {k * n - 1, k * n, k * n + 1})
                if (nSum >= nLow * n && nSum <= nHigh * n) {
                    ++nTried;
                    if (Kernels::MeanQuotient<T, Numbers>(static_cast<Sum>(nSum), reciprocal) !=
                            nSum / n &&
                        nWrong++ == 0)
                        ADD_FAILURE() << "the first wrong quotient: " << nSum << " / " << n;
                }
    }
    EXPECT_EQ(nWrong, 0) << "of " << nTried;
    EXPECT_GT(nTried, 3 * 250 * ((nLastCount - nFirstCount) / nStep));
}

TYPED_TEST(MeanKernel, DividesExactlyNextToEveryMultipleOfEveryCountOfSinglePrecision) {
    ExpectEveryQuotient<Kernels::StNarrowMean, TypeParam>(1, Kernels::StNarrowMean::cnLargestArea,
                                                          1);
}

TYPED_TEST(MeanKernel, DividesExactlyNextToEveryMultipleInDoublePrecision) {
    ExpectEveryQuotient<Kernels::StWideMean, TypeParam>(1, 40000, 17);
    ExpectEveryQuotient<Kernels::StWideMean, TypeParam>(40001, 2147483647, 1073741);
    ExpectEveryQuotient<Kernels::StWideMean, TypeParam>((1L << 42) - 1000, 1L << 42, 1);
}

/// Single precision fails first at 25796 samples without a sign and at 51299 with one: through the
/// whole kernel.
TYPED_TEST(MeanKernel, DividesExactlyWhereSinglePrecisionWouldFail) {
    for (long nCount : {25796L, 25801L, 25966L, 32768L, 51299L, 51381L, 51602L, 65536L})
        ExpectExactQuotients<TypeParam>(nCount);
}

TYPED_TEST(MeanKernel, SumsWhatNoNumberOf32BitsHolds) {
    using T = TypeParam;
    constexpr long cnCount = 17'000'000; // times 127 is 2159000000
    const std::vector<T> aIn(cnCount, T{127});
    std::vector<T> aOut(cnCount);
    Kernels::MeanOfWindow(aIn.data(), cnCount, cnCount, 1L, cnCount, 0L, aOut.data(), cnCount);
    EXPECT_EQ(aOut, aIn);
}

TYPED_TEST(MeanKernel, KeepsAFlatPlaneFlat) {
    using T = TypeParam;
    for (int nValue = std::numeric_limits<T>::min(); nValue <= std::numeric_limits<T>::max();
         ++nValue) {
        ClPlaneCase<T> plane(11, 6, 0);
        plane.Fill(nValue);
        EXPECT_EQ(Mean(plane, 2, 2), plane.In()) << nValue;
        EXPECT_EQ(Mean(plane, 20, 3), plane.In()) << nValue;
    }
}

TYPED_TEST(MeanKernel, DoesNothingWithoutSamples) {
    const auto* pNone = static_cast<const TypeParam*>(nullptr);
    auto* pOut = static_cast<TypeParam*>(nullptr);
    Kernels::MeanOfWindow(pNone, 4, 0L, 3L, 1L, 1L, pOut, 4);
    Kernels::MeanOfWindow(pNone, 4, 3L, 0L, 1L, 1L, pOut, 4);
}

TYPED_TEST(MeanKernel, AnswersEveryMissingAllocation) {
    const TypeParam aIn[12] = {};
    TypeParam aOut[12];
    TestSupport::FailEachAllocation(
        [&] { Kernels::MeanOfWindow(aIn, 4, 4L, 3L, 1L, 1L, aOut, 4); });
    TestSupport::FailEachAllocation([&] { Kernels::Mean3x3(aIn, 4, 4L, 3L, aOut, 4); });
}

// 3 by 3

TYPED_TEST(MeanKernel, EqualsTheFixedPointOf3By3) {
    for (const auto& Size : caRankSizes)
        if (Size.m_nWidth >= 2 && Size.m_nHeight >= 2) {
            ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 1);
            EXPECT_EQ(Mean3x3(plane), TestSupport::NaiveMean3x3(plane.In()))
                << Size.m_nWidth << " by " << Size.m_nHeight;
        }
}

TYPED_TEST(MeanKernel, KeepsAFlatPlaneFlatIn3By3) {
    using T = TypeParam;
    for (int nValue = std::numeric_limits<T>::min(); nValue <= std::numeric_limits<T>::max();
         ++nValue) {
        ClPlaneCase<T> plane(20, 4, 0);
        plane.Fill(nValue);
        EXPECT_EQ(Mean3x3(plane), plane.In()) << nValue;
    }
}

TEST(MeanKernelBytes, AreScaledAsByHand) {
    ClPlaneCase<unsigned char> plane(3, 3, 0);
    const int aValues[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 100}};
    for (long y = 0; y < 3; ++y)
        for (long x = 0; x < 3; ++x)
            plane.Set(x, y, aValues[y][x]);
    // First line: (12 + 2) >> 2, (21 + 3) * 682 >> 12 = 3.996, (16 + 2) >> 2; second: (27 + 3) *
    // 682 >> 12 = 4.995, (136 + 4) * 455 >> 12 = 15.55, (124 + 3) * 682 >> 12 = 21.15; third:
    // (24 + 2) >> 2, (130 + 3) * 682 >> 12 = 22.15, (119 + 2) >> 2.
    const RealRows aExpected = {{3, 3, 4}, {4, 15, 21}, {6, 22, 30}};
    EXPECT_EQ(Mean3x3(plane), aExpected);
}

} // namespace
