#include "ImageProcessing/Kernels/Median.h"

#include "ImageProcessing/Kernels/PlaneCase.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <limits>

namespace {

using TestSupport::caRankSizes;
using TestSupport::ClPlaneCase;
using TestSupport::NaiveMedian;
using TestSupport::RealRows;

template <class T>
RealRows Median(ClPlaneCase<T>& rCase, long nMode, long nHalf) {
    return rCase.Run(
        [&](const T* pIn, long nInStride, long nWidth, long nHeight, T* pOut, long nOutStride) {
            Kernels::MedianOfWindow(pIn, nInStride, nWidth, nHeight, (nMode & 1) != 0 ? nHalf : 0,
                                    (nMode & 2) != 0 ? nHalf : 0, pOut, nOutStride);
        });
}

template <class T>
class MedianKernel : public testing::Test {};

using SampleTypes = testing::Types<unsigned char, signed char>;
TYPED_TEST_SUITE(MedianKernel, SampleTypes, );

TYPED_TEST(MedianKernel, EqualsItsDefinition) {
    for (const auto& Size : caRankSizes) {
        ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 1);
        for (long nMode : {1L, 2L, 3L})
            for (long nHalf : {1L, 2L, 3L, 6L})
                EXPECT_EQ(Median(plane, nMode, nHalf),
                          NaiveMedian(plane.In(), nMode, 2 * nHalf + 1))
                    << Size.m_nWidth << " by " << Size.m_nHeight << ", mode " << nMode << ", half "
                    << nHalf;
    }
}

TYPED_TEST(MedianKernel, EqualsItsDefinitionOn3By3AtEveryLevel) {
    for (const long nWidth : {1L, 2L, 3L, 31L, 63L, 64L, 65L, 66L, 130L})
        for (const long nHeight : {1L, 2L, 9L}) {
            SCOPED_TRACE(testing::Message() << nWidth << " by " << nHeight);
            ClPlaneCase<TypeParam> plane(nWidth, nHeight, 5);
            const RealRows aExpected = NaiveMedian(plane.In(), 3, 3);
            TestSupport::AtEveryLevel([&] { EXPECT_EQ(Median(plane, 3, 1), aExpected); });
        }
}

TYPED_TEST(MedianKernel, EqualsItsDefinitionOnTheWidestWindow) {
    for (const auto& Size : {TestSupport::StRankSize{11, 5}, TestSupport::StRankSize{3, 12}}) {
        ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 2);
        for (long nMode : {1L, 2L, 3L})
            EXPECT_EQ(Median(plane, nMode, 50), NaiveMedian(plane.In(), nMode, 101));
    }
}

TYPED_TEST(MedianKernel, KeepsTheEndsOfTheRange) {
    using T = TypeParam;
    for (int nValue : {int{std::numeric_limits<T>::min()}, int{std::numeric_limits<T>::max()}}) {
        ClPlaneCase<T> plane(21, 6, 3);
        plane.Fill(nValue);
        for (long nMode : {1L, 2L, 3L})
            for (long nHalf : {1L, 2L})
                EXPECT_EQ(Median(plane, nMode, nHalf), plane.In());
    }
}

TYPED_TEST(MedianKernel, FollowsJumpsThroughTheWholeRange) {
    using T = TypeParam;
    ClPlaneCase<T> plane(40, 9, 4);
    for (long y = 0; y < 9; ++y)
        for (long x = 0; x < 40; ++x)
            plane.Set(x, y,
                      x / 8 % 2 == 0 ? std::numeric_limits<T>::min()
                                     : std::numeric_limits<T>::max());
    for (long nMode : {1L, 2L, 3L})
        EXPECT_EQ(Median(plane, nMode, 2), NaiveMedian(plane.In(), nMode, 5));
}

TYPED_TEST(MedianKernel, DoesNothingWithoutSamples) {
    const auto* pNone = static_cast<const TypeParam*>(nullptr);
    auto* pOut = static_cast<TypeParam*>(nullptr);
    Kernels::MedianOfWindow(pNone, 4, 0L, 3L, 1L, 1L, pOut, 4);
    Kernels::MedianOfWindow(pNone, 4, 3L, 0L, 2L, 2L, pOut, 4);
}

TYPED_TEST(MedianKernel, AnswersEveryMissingAllocation) {
    const TypeParam aIn[12] = {};
    TypeParam aOut[12];
    const auto FailEach = [&](long nHalfX, long nHalfY) { // columns of 3 need no memory
        TestSupport::FailEachAllocation(
            [&] { Kernels::MedianOfWindow(aIn, 4, 4L, 3L, nHalfX, nHalfY, aOut, 4); });
    };
    FailEach(1, 1);
    FailEach(0, 2);
    FailEach(2, 2);
}

} // namespace
