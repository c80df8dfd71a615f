// The mean of samples that are not bytes.

#include "ImageProcessing/IpFilterMid.h"

#include "ImageProcessing/MeanFilterRuns.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <cmath>

namespace {

using TestSupport::caRankSizes;
using TestSupport::ClTestImage;
using TestSupport::CutWindow;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::ForEachPlace;
using TestSupport::Img;
using TestSupport::IsWider;
using TestSupport::MeanFiltered;
using TestSupport::NaiveMean;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealMean;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using TestSupport::StReach;

constexpr unsigned char caIntegers[] = {ClImage::eUInt16, ClImage::eInt16, ClImage::eUInt32,
                                        ClImage::eInt32};

/// Calls `expect(image, width, mode)` for sizes, widths and modes.
template <class Expect>
void ForEachCase(unsigned char nType, Expect expect) {
    for (const auto& Size : caRankSizes)
        for (long nMode : {1L, 2L, 3L})
            for (long nWidth : {3L, 5L, 9L}) {
                SCOPED_TRACE(testing::Message()
                             << ClImage::TypeText(nType) << ", " << Size.m_nWidth << " by "
                             << Size.m_nHeight << ", mode " << nMode << ", width " << nWidth);
                expect(RandomImage(nType, Size.m_nWidth, Size.m_nHeight, 1, 7), nWidth, nMode);
            }
}

TEST(IpFilterMidTypes, TruncateMeansOfIntegersAtWidthThreeToo) {
    for (unsigned char nType : caIntegers)
        ForEachCase(nType, [](const ClTestImage& In, long nWidth, long nMode) {
            const RealRows aIn = RealPixels(In);
            EXPECT_EQ(RealPixels(MeanFiltered(In, nWidth, nMode)),
                      IsWider(nWidth, nMode, In) ? aIn : NaiveMean(aIn, nMode, nWidth));
        });
}

/// Random samples are multiples of 2^-31 within -1 to 1: their sums are exact in any order.
TEST(IpFilterMidTypes, DivideSumsOfRealNumbers) {
    for (unsigned char nType : {ClImage::eFloat32, ClImage::eDouble64})
        ForEachCase(nType, [nType](const ClTestImage& In, long nWidth, long nMode) {
            const RealRows aIn = RealPixels(In);
            const RealRows aMeans = ForEachPlace(aIn, [&](long x, long y) {
                const double dMean = RealMean(CutWindow(aIn, x, y, StReach(nMode, nWidth)));
                return nType == ClImage::eFloat32 ? static_cast<float>(dMean) : dMean;
            });
            EXPECT_EQ(RealPixels(MeanFiltered(In, nWidth, nMode)),
                      IsWider(nWidth, nMode, In) ? aIn : aMeans);
        });
}

TEST(IpFilterMidTypes, SumLargeIntegersIn64Bits) {
    const ClTestImage high = FlatImage(ClImage::eUInt32, 9, 9, 1, 4294967295.0);
    const ClTestImage low = FlatImage(ClImage::eInt32, 9, 9, 1, -2147483648.0);
    for (long nMode : {1L, 2L, 3L}) {
        ExpectSameImage(MeanFiltered(high, 9, nMode), high);
        ExpectSameImage(MeanFiltered(low, 9, nMode), low);
    }
}

TEST(IpFilterMidTypes, TruncateTowardZero) {
    EXPECT_EQ(Pixels(MeanFiltered(Img(ClImage::eInt16, {{-1, -2, 0, 0, 1, 1, -1}}), 3, 1)),
              Rows({{-1, -1, 0, 0, 0, 0, 0}}));
}

// With a sample whose unit in the last place is 2, the sums show their order: 10^16 + 1 is 10^16.

TEST(IpFilterMidTypes, SumRealNumbersAlongALineAsTheyEnterAndLeave) {
    for (long nMode : {1L, 2L}) {
        const ClTestImage in = nMode == 1
                                   ? Img(ClImage::eDouble64, {{1e16, 1.0, 1.0, 1.0, 1.0}})
                                   : Img(ClImage::eDouble64, {{1e16}, {1.0}, {1.0}, {1.0}, {1.0}});
        // The second, third and fourth sample are lost in the first one, before that leaves; what
        // leaves after it is subtracted all the same: 10^16, 10^16, 0, 0 + 1 - 1, -1.
        const double aExpected[] = {5e15, 1e16 / 3.0, 0.0, 0.0, -0.5};
        const ClTestImage out = MeanFiltered(in, 3, nMode);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(TestSupport::Sample(out, nMode == 1 ? i : 0, nMode == 1 ? 0 : i),
                      aExpected[i])
                << "mode " << nMode << " at " << i;
    }
}

TEST(IpFilterMidTypes, SumRealNumbersOverASquareByColumns) {
    const ClTestImage in =
        Img(ClImage::eDouble64, {{1e16, 1.0, 1.0}, {1.0, 1.0, 1.0}, {1.0, 1.0, 1.0}});
    // Columns: 10^16, 2, 2 for the first line; 10^16, 3, 3; then 0, 2, 2, the first sample having
    // taken the two below it along.
    const double dFirst = 1e16 + 2.0;
    const double dSecond = 1e16 + 4.0; // 10^16 + 3, rounded to even
    EXPECT_EQ(RealPixels(MeanFiltered(in, 3, 3)),
              RealRows({{dFirst / 4.0, (1e16 + 4.0) / 6.0, 4.0 / 4.0},
                        {dSecond / 6.0, (1e16 + 8.0) / 9.0, 8.0 / 6.0},
                        {2.0 / 4.0, 4.0 / 6.0, 4.0 / 4.0}}));
}

TEST(IpFilterMidTypes, KeepAValueThatIsNotANumberInTheRunningSum) {
    const ClTestImage line = Img(ClImage::eDouble64, {{1, 1, 1, 1, std::nan(""), 1, 1, 1}});
    ClTestImage in = line;
    ClTestImage out;
    ClIpFilterMid filter;
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyParam(in, out, 3), 0);
    for (int x = 0; x < 8; ++x) // it is in from the fourth window on, and never out again
        EXPECT_EQ(std::isnan(TestSupport::Sample(out, x, 0)), x >= 3) << x;

    ClTestImage square = FlatImage(ClImage::eFloat32, 7, 7, 1, 1);
    TestSupport::SetSample(square, 2, 3, 0, std::nan(""));
    filter.m_nMode = 3;
    EXPECT_EQ(filter.ApplyParam(square, out, 3), 0);
    for (int y = 0; y < 7; ++y) // so it is in the sum of its column
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(std::isnan(TestSupport::Sample(out, x, y)), y >= 2 && x >= 1)
                << x << ", " << y;
}

TEST(IpFilterMidTypes, FilterPlanesOneByOne) {
    const ClTestImage in = RandomImage(ClImage::eInt16, 7, 6, 3, 2);
    const ClTestImage out = MeanFiltered(in, 5, 3);
    for (int p = 0; p < 3; ++p) {
        ClImage plane;
        ClImage filtered;
        in.GetPlane(p, plane);
        out.GetPlane(p, filtered);
        EXPECT_EQ(RealPixels(filtered), NaiveMean(RealPixels(plane), 3, 5));
    }
}

TEST(IpFilterMidTypes, KeepRangeContentAttributeAndResolution) {
    ClTestImage in = FlatImage(ClImage::eFloat32, 9, 8, 1, 0.5);
    in.SetBlack(-7.0);
    in.SetWhite(99.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(4);
    in.SetPelsX(100);
    for (long nMode : {1L, 2L, 3L})
        ExpectSameImage(MeanFiltered(in, 5, nMode), in);
}

TEST(IpFilterMidTypes, RefuseDirectedModes) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8 || nType == ClImage::eInt8)
            continue;
        ClTestImage in = FlatImage(nType, 4, 3, 1, 1);
        ClTestImage out = Img({{9}});
        ClIpFilterMid filter;
        for (long nMode : {8L, 16L}) {
            filter.m_nMode = nMode;
            EXPECT_EQ(filter.ApplyParam(in, out, 3), -33);
        }
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TEST(IpFilterMidTypes, RefuseUnknownOnes) {
    for (int nType : {0, 3, 8, 65, 193, 255}) {
        unsigned char aPixels[64] = {};
        ClImage odd;
        odd.Attach(aPixels, static_cast<unsigned char>(nType), 1, 1, 1, 0, 0);
        ClTestImage out = Img({{9}});
        ClIpFilterMid filter;
        EXPECT_EQ(filter.ApplyParam(odd, out, 3), -101) << nType;
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

} // namespace
