#include "ImageProcessing/Kernels/BlurTwice.h"

#include "ImageProcessing/Kernels/Mean.h"
#include "ImageProcessing/Kernels/PlaneCase.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Kernels::ClScratch;
using TestSupport::AtEveryLevel;
using TestSupport::caRankSizes;
using TestSupport::ClPlaneCase;
using TestSupport::CutWindow;
using TestSupport::ForEachPlace;
using TestSupport::RealRows;
using TestSupport::StReach;
using TestSupport::TruncatedMean;
using Plane = ClPlaneCase<unsigned char>;

RealRows NaiveMean(const RealRows& aIn, long nHalf) {
    return ForEachPlace(aIn, [&](long x, long y) {
        return TruncatedMean(CutWindow(aIn, x, y, StReach(3, 2 * nHalf + 1)));
    });
}

RealRows Compared(RealRows aIn, double dThreshold, double dBelow, double dAbove) {
    for (auto& aRow : aIn)
        for (double& d : aRow)
            d = d >= dThreshold ? dAbove : dBelow;
    return aIn;
}

RealRows BlurTwice(Plane& rPlane, long nHalf, ClScratch& rScratch) {
    return rPlane.Run([&](const unsigned char* pIn, long nInStride, long nWidth, long nHeight,
                          unsigned char* pOut, long nOutStride) {
        Kernels::BlurTwice(pIn, nInStride, nWidth, nHeight, nHalf, pOut, nOutStride, rScratch);
    });
}

RealRows Binarize(Plane& rPlane, long nHalf, long nThreshold, int nBelow, int nAbove) {
    ClScratch Scratch;
    return rPlane.Run([&](const unsigned char* pIn, long nInStride, long nWidth, long nHeight,
                          unsigned char* pOut, long nOutStride) {
        Kernels::BlurTwiceAndBinarize(
            pIn, nInStride, nWidth, nHeight, nHalf, nThreshold, static_cast<unsigned char>(nBelow),
            static_cast<unsigned char>(nAbove), pOut, nOutStride, Scratch);
    });
}

TEST(BlurTwiceKernel, IsTheMeanOfTheMeans) {
    ClScratch Scratch;
    for (const auto& Size : caRankSizes)
        for (const long nHalf : {0L, 1L, 2L, 3L, 5L, 11L, 40L}) {
            SCOPED_TRACE(testing::Message()
                         << Size.m_nWidth << " by " << Size.m_nHeight << ", half " << nHalf);
            Plane plane(Size.m_nWidth, Size.m_nHeight, 1);
            const RealRows aExpected = NaiveMean(NaiveMean(plane.In(), nHalf), nHalf);
            AtEveryLevel([&] { EXPECT_EQ(BlurTwice(plane, nHalf, Scratch), aExpected); });
        }
}

TEST(BlurTwiceKernel, ComparesTheMeanOfTheMeans) {
    for (const auto& Size : caRankSizes)
        for (const long nHalf : {0L, 2L, 7L}) {
            SCOPED_TRACE(testing::Message()
                         << Size.m_nWidth << " by " << Size.m_nHeight << ", half " << nHalf);
            Plane plane(Size.m_nWidth, Size.m_nHeight, 2);
            const RealRows aMeans = NaiveMean(NaiveMean(plane.In(), nHalf), nHalf);
            for (const long nThreshold : {1L, 120L, 128L, 255L})
                AtEveryLevel([&] {
                    EXPECT_EQ(Binarize(plane, nHalf, nThreshold, 255, 0),
                              Compared(aMeans, static_cast<double>(nThreshold), 255, 0));
                });
        }
}

/// Means of two values meet every threshold, on both sides of equality.
TEST(BlurTwiceKernel, ComparesAtEveryThreshold) {
    Plane plane(60, 40, 3);
    for (long y = 0; y < 40; ++y)
        for (long x = 0; x < 60; ++x)
            plane.Set(x, y, x + y / 2 > 35 ? 255 : 0);
    const RealRows aMeans = NaiveMean(NaiveMean(plane.In(), 11), 11);
    for (long nThreshold = -2; nThreshold <= 258; ++nThreshold)
        AtEveryLevel([&] {
            EXPECT_EQ(Binarize(plane, 11, nThreshold, 7, 200),
                      Compared(aMeans, static_cast<double>(nThreshold), 7, 200))
                << nThreshold;
        });
}

/// Two passes of the kernel for one.
std::vector<unsigned char> MeanOfMeans(const std::vector<unsigned char>& aIn, long nWidth,
                                       long nHeight, long nHalf) {
    std::vector<unsigned char> aMeans(aIn.size());
    std::vector<unsigned char> aOut(aIn.size());
    Kernels::MeanOfWindow(aIn.data(), nWidth, nWidth, nHeight, nHalf, nHalf, aMeans.data(), nWidth);
    Kernels::MeanOfWindow(aMeans.data(), nWidth, nWidth, nHeight, nHalf, nHalf, aOut.data(),
                          nWidth);
    return aOut;
}

TEST(BlurTwiceKernel, TakesWindowsOfEverySize) {
    constexpr long cnWidth = 201;
    constexpr long cnHeight = 150;
    std::vector<unsigned char> aIn(cnWidth * cnHeight);
    std::mt19937 random(5);
    std::generate(aIn.begin(), aIn.end(), [&] { return static_cast<unsigned char>(random()); });
    for (const long nHalf : {26L, 44L, 45L, 46L, 64L, 200L}) { // 89 by 89 is the last narrow one
        SCOPED_TRACE(nHalf);
        std::vector<unsigned char> aExpected = MeanOfMeans(aIn, cnWidth, cnHeight, nHalf);
        std::vector<unsigned char> aOut(aIn.size());
        ClScratch Scratch;
        Kernels::BlurTwice(aIn.data(), cnWidth, cnWidth, cnHeight, nHalf, aOut.data(), cnWidth,
                           Scratch);
        EXPECT_EQ(aOut, aExpected);
        Kernels::BlurTwiceAndBinarize(aIn.data(), cnWidth, cnWidth, cnHeight, nHalf, 127, 1, 2,
                                      aOut.data(), cnWidth, Scratch);
        for (unsigned char& rSample : aExpected)
            rSample = rSample >= 127 ? 2 : 1;
        EXPECT_EQ(aOut, aExpected);
    }
}

TEST(BlurTwiceKernel, DoesNothingWithoutSamples) {
    ClScratch Scratch;
    Kernels::BlurTwice(nullptr, 4, 0, 3, 1, nullptr, 4, Scratch);
    Kernels::BlurTwice(nullptr, 4, 3, 0, 1, nullptr, 4, Scratch);
    Kernels::BlurTwiceAndBinarize(nullptr, 4, 3, 0, 1, 5, 0, 255, nullptr, 4, Scratch);
}

TEST(BlurTwiceKernel, AnswersEveryMissingAllocation) {
    const std::vector<unsigned char> aIn(200 * 3);
    std::vector<unsigned char> aOut(aIn.size());
    for (const long nHalf : {1L, 100L})
        TestSupport::FailEachAllocation([&] {
            ClScratch Scratch;
            Kernels::BlurTwice(aIn.data(), 200, 200, 3, nHalf, aOut.data(), 200, Scratch);
        });
}

} // namespace
