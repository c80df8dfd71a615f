#include "ImageProcessing/Kernels/MinMax.h"

#include "ImageProcessing/Kernels/PlaneCase.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <limits>

namespace {

using Kernels::EExtreme;
using TestSupport::caRankSizes;
using TestSupport::ClPlaneCase;
using TestSupport::NaiveMax;
using TestSupport::NaiveMin;
using TestSupport::RealRows;

template <class T>
class MinMax : public testing::Test {
protected:
    RealRows Along(ClPlaneCase<T>& rCase, EExtreme eKind, long nMode, long nHalf) {
        return rCase.Run(
            [&](const T* pIn, long nInStride, long nWidth, long nHeight, T* pOut, long nOutStride) {
                const auto run = [&](auto kernel) {
                    kernel(pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride);
                };
                if (nMode == 3)
                    OverSquares(eKind, pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride);
                else if (eKind == EExtreme::eMax)
                    run(nMode == 1 ? Kernels::ExtremeAlongLines<EExtreme::eMax, T>
                                   : Kernels::ExtremeAlongColumns<EExtreme::eMax, T>);
                else
                    run(nMode == 1 ? Kernels::ExtremeAlongLines<EExtreme::eMin, T>
                                   : Kernels::ExtremeAlongColumns<EExtreme::eMin, T>);
            });
    }

    void OverSquares(EExtreme eKind, const T* pIn, long nInStride, long nWidth, long nHeight,
                     long nHalf, T* pOut, long nOutStride) {
        const auto kernel = eKind == EExtreme::eMax
                                ? Kernels::ExtremeOverSquares<EExtreme::eMax, T>
                                : Kernels::ExtremeOverSquares<EExtreme::eMin, T>;
        kernel(pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride, m_Scratch);
    }

    void ExpectDefinition(ClPlaneCase<T>& rCase, long nMode, long nHalf) {
        SCOPED_TRACE(testing::Message() << "mode " << nMode << ", half " << nHalf);
        const RealRows aMax = NaiveMax(rCase.In(), nMode, 2 * nHalf + 1);
        const RealRows aMin = NaiveMin(rCase.In(), nMode, 2 * nHalf + 1);
        TestSupport::AtEveryLevel([&] {
            EXPECT_EQ(Along(rCase, EExtreme::eMax, nMode, nHalf), aMax);
            EXPECT_EQ(Along(rCase, EExtreme::eMin, nMode, nHalf), aMin);
        });
    }

    Kernels::ClScratch m_Scratch;
};

using SampleTypes = testing::Types<unsigned char, signed char>;
TYPED_TEST_SUITE(MinMax, SampleTypes, );

TYPED_TEST(MinMax, EqualTheirDefinitionAtEveryWidth) {
    for (const auto& Size : caRankSizes) {
        SCOPED_TRACE(testing::Message() << Size.m_nWidth << " by " << Size.m_nHeight);
        ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 1);
        for (long nHalf = 0; nHalf <= Size.m_nWidth + 1; ++nHalf)
            this->ExpectDefinition(plane, 1, nHalf);
        for (long nHalf = 0; nHalf <= Size.m_nHeight + 1; ++nHalf)
            this->ExpectDefinition(plane, 2, nHalf);
    }
}

TYPED_TEST(MinMax, EqualTheirDefinitionOnSquares) {
    for (const auto& Size : caRankSizes) {
        SCOPED_TRACE(testing::Message() << Size.m_nWidth << " by " << Size.m_nHeight);
        ClPlaneCase<TypeParam> plane(Size.m_nWidth, Size.m_nHeight, 5);
        for (long nHalf : {0, 1, 2, 3, 5, 11, Size.m_nWidth, Size.m_nHeight})
            this->ExpectDefinition(plane, 3, nHalf);
    }
}

TYPED_TEST(MinMax, EqualTheirDefinitionOnLinesBeyondARound) {
    for (const long nWidth : {63L, 64L, 65L, 100L, 130L}) {
        ClPlaneCase<TypeParam> plane(nWidth, 40, 6);
        for (long nMode : {1L, 2L, 3L})
            for (long nHalf : {1L, 3L, 11L})
                this->ExpectDefinition(plane, nMode, nHalf);
    }
}

TYPED_TEST(MinMax, TakeWindowsBeyondAllNumbers) {
    ClPlaneCase<TypeParam> plane(19, 7, 2);
    for (long nMode : {1L, 2L}) {
        const RealRows aIn = plane.In();
        EXPECT_EQ(this->Along(plane, EExtreme::eMax, nMode, std::numeric_limits<long>::max() / 2),
                  NaiveMax(aIn, nMode, 101));
    }
}

TYPED_TEST(MinMax, KeepTheEndsOfTheRange) {
    using T = TypeParam;
    for (int nValue : {int{std::numeric_limits<T>::min()}, int{std::numeric_limits<T>::max()}}) {
        ClPlaneCase<T> plane(21, 9, 3);
        plane.Fill(nValue);
        for (long nMode : {1L, 2L})
            this->ExpectDefinition(plane, nMode, 3);
    }
}

TYPED_TEST(MinMax, DoNothingWithoutSamples) {
    const auto* pNone = static_cast<const TypeParam*>(nullptr);
    auto* pOut = static_cast<TypeParam*>(nullptr);
    Kernels::ExtremeAlongLines<EExtreme::eMax>(pNone, 4, 0L, 3L, 1L, pOut, 4);
    Kernels::ExtremeAlongColumns<EExtreme::eMin>(pNone, 4, 3L, 0L, 1L, pOut, 4);
}

TYPED_TEST(MinMax, AnswerEveryMissingAllocation) {
    ClPlaneCase<TypeParam> plane(21, 9, 3);
    for (long nMode : {1L, 2L})
        TestSupport::FailEachAllocation([&] {
            const TypeParam aIn[12] = {};
            TypeParam aOut[12];
            if (nMode == 1)
                Kernels::ExtremeAlongLines<EExtreme::eMax>(aIn, 4, 4L, 3L, 1L, aOut, 4);
            else
                Kernels::ExtremeAlongColumns<EExtreme::eMax>(aIn, 4, 4L, 3L, 1L, aOut, 4);
        });
}

} // namespace
