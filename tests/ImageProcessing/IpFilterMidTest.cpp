// The mean of 8-bit samples; for the other types see IpFilterMidTypesTest.cpp, for the directed
// modes IpFilterMidDirectedTest.cpp.

#include "ImageProcessing/IpFilterMid.h"

#include "ImageProcessing/MeanFilterRuns.h"
#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <limits>

namespace {

using TestSupport::At;
using TestSupport::caRankSizes;
using TestSupport::ClTestImage;
using TestSupport::CutWindow;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::ForEachPlace;
using TestSupport::Img;
using TestSupport::IsWider;
using TestSupport::MeanFilter;
using TestSupport::MeanFiltered;
using TestSupport::NaiveMean;
using TestSupport::NaiveMean3x3;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealMean;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using TestSupport::StReach;

/// The filter of 8-bit samples from its definition.
RealRows Expected(const ClTestImage& In, long nWidth, long nMode) {
    const RealRows aIn = RealPixels(In);
    if (IsWider(nWidth, nMode, In))
        return aIn;
    return nMode == 3 && nWidth == 3 ? NaiveMean3x3(aIn) : NaiveMean(aIn, nMode, nWidth);
}

TEST(IpFilterMid, EqualsItsDefinition) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (const auto& Size : caRankSizes)
            for (long nMode : {1L, 2L, 3L})
                for (long nWidth : {3L, 5L, 7L, 9L, 15L}) {
                    const ClTestImage in = RandomImage(nType, Size.m_nWidth, Size.m_nHeight, 1, 7);
                    EXPECT_EQ(RealPixels(MeanFiltered(in, nWidth, nMode)),
                              Expected(in, nWidth, nMode))
                        << ClImage::TypeText(nType) << ", " << Size.m_nWidth << " by "
                        << Size.m_nHeight << ", mode " << nMode << ", width " << nWidth;
                }
}

TEST(IpFilterMid, EqualsItsDefinitionAtEveryWidth) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (long nMode : {1L, 2L, 3L})
            for (long nWidth = 3; nWidth <= 37; nWidth += 2) {
                const ClTestImage in = RandomImage(nType, 33, 29, 1, 8);
                EXPECT_EQ(RealPixels(MeanFiltered(in, nWidth, nMode)), Expected(in, nWidth, nMode))
                    << ClImage::TypeText(nType) << ", mode " << nMode << ", width " << nWidth;
            }
}

TEST(IpFilterMid, MakesTheWidthOdd) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 13, 11, 1, 1);
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth : {2L, 4L, 8L})
            ExpectSameImage(MeanFiltered(in, nWidth, nMode), MeanFiltered(in, nWidth + 1, nMode));
    ClTestImage image = in;
    ClImage out;
    ClIpFilterMid filter;
    EXPECT_EQ(filter.ApplyParam(image, out, 2), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 3);
}

TEST(IpFilterMid, CopiesForAWidthOfOneOrLess) {
    for (long nWidth : {1L, 0L, -2L, -3L}) {
        const ClTestImage in = RandomImage(ClImage::eUInt16, 5, 4, 3, 1);
        ExpectSameImage(MeanFiltered(in, nWidth, 99), in);
    }
}

TEST(IpFilterMid, CopiesAnImageThatIsSmallerThanTheWindow) {
    for (const auto& Size : {TestSupport::StRankSize{40, 60}, TestSupport::StRankSize{60, 40}}) {
        const ClTestImage in = RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, 1, 2);
        ExpectSameImage(MeanFiltered(in, 53), in);
    }
    const ClTestImage fits = RandomImage(ClImage::eUInt8, 53, 53, 1, 2);
    EXPECT_EQ(RealPixels(MeanFiltered(fits, 53)), NaiveMean(RealPixels(fits), 3, 53));
}

TEST(IpFilterMid, ComparesTheWindowWithTheFilteredAxesAlone) {
    const ClTestImage wide = RandomImage(ClImage::eUInt8, 20, 4, 1, 3);
    EXPECT_EQ(RealPixels(MeanFiltered(wide, 9, 1)), NaiveMean(RealPixels(wide), 1, 9));
    ExpectSameImage(MeanFiltered(wide, 9, 2), wide);
    const ClTestImage high = RandomImage(ClImage::eUInt8, 4, 20, 1, 3);
    EXPECT_EQ(RealPixels(MeanFiltered(high, 9, 2)), NaiveMean(RealPixels(high), 2, 9));
    ExpectSameImage(MeanFiltered(high, 9, 1), high);
    ExpectSameImage(MeanFiltered(high, std::numeric_limits<long>::max(), 2), high);
}

TEST(IpFilterMid, KeepsAFlatImageFlatUpToItsCorners) {
    for (long nWidth : {3L, 5L, 11L, 53L})
        for (long nMode : {1L, 2L, 3L}) {
            const ClTestImage white = FlatImage(ClImage::eUInt8, 61, 57, 1, 255);
            ExpectSameImage(MeanFiltered(white, nWidth, nMode), white);
        }
}

TEST(IpFilterMid, ScalesTheSquareOfThreeInFixedPoint) {
    // (12 + 2) >> 2, (21 + 3) * 682 >> 12 = 3.996, ..., (136 + 4) * 455 >> 12 = 15.55, ...
    EXPECT_EQ(Pixels(MeanFiltered(Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 100}}), 3)),
              Rows({{3, 3, 4}, {4, 15, 21}, {6, 22, 30}}));
}

TEST(IpFilterMid, DividesByTheSamplesInTheImage) {
    EXPECT_EQ(Pixels(MeanFiltered(Img({{1, 2, 9, 0, 7}}), 3, 1)), Rows({{1, 4, 3, 5, 3}}));
    EXPECT_EQ(Pixels(MeanFiltered(Img({{1}, {2}, {9}, {0}, {7}}), 5, 2)),
              Rows({{4}, {3}, {3}, {4}, {5}}));
}

TEST(IpFilterMid, DividesSignedSumsTowardZero) {
    EXPECT_EQ(Pixels(MeanFiltered(Img(ClImage::eInt8, {{-1, -2, 0, 0, 1, 1, -1}}), 3, 1)),
              Rows({{-1, -1, 0, 0, 0, 0, 0}}));
}

TEST(IpFilterMid, KeepsRangeContentAttributeAndResolution) {
    ClTestImage in = FlatImage(ClImage::eInt8, 9, 8, 1, -3);
    in.SetBlack(-7.0);
    in.SetWhite(99.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(4);
    in.SetPelsX(100);
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth : {3L, 5L, 11L})
            ExpectSameImage(MeanFiltered(in, nWidth, nMode), in);
}

TEST(IpFilterMid, FiltersPlanesOneByOne) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 7, 6, 4, 2);
    const ClTestImage out = MeanFiltered(in, 5);
    for (int p = 0; p < 4; ++p) {
        ClImage plane;
        ClImage filtered;
        in.GetPlane(p, plane);
        out.GetPlane(p, filtered);
        EXPECT_EQ(RealPixels(filtered), NaiveMean(RealPixels(plane), 3, 5));
    }
}

TEST(IpFilterMid, KeepsTheModeOfTheCaller) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, 1, 2);
    ClImage out;
    ClIpFilterMid filter;
    EXPECT_EQ(filter.m_nMode, 3);
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyParam(in, out, 5), 0);
    EXPECT_EQ(filter.m_nMode, 1);
    EXPECT_EQ(RealPixels(out), NaiveMean(RealPixels(in), 1, 5));
}

// Remainders

void ExpectRemainder(const ClTestImage& In, long nWidth) {
    ClTestImage in = In;
    ClTestImage out;
    ClTestImage remainder = Img({{9}});
    ClIpFilterMid filter;
    filter.m_pRemainder = &remainder;
    EXPECT_EQ(filter.ApplyParam(in, out, nWidth), 0);
    ExpectSameImage(in, In);

    const RealRows aIn = RealPixels(In);
    const RealRows aMeans = NaiveMean(aIn, 3, nWidth); // truncated, at width 3 too
    EXPECT_EQ(RealPixels(out), aMeans);
    EXPECT_EQ(remainder.DataType(), ClImage::eDouble64);
    EXPECT_EQ(remainder.Planes(), 1);
    EXPECT_EQ(remainder.PelsX(), In.PelsX());
    EXPECT_EQ(RealPixels(remainder), ForEachPlace(aIn, [&](long x, long y) {
                  return RealMean(CutWindow(aIn, x, y, StReach(3, nWidth))) - At(aMeans, x, y);
              }));
}

TEST(IpFilterMid, KeepsWhatTruncationCutsOff) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (long nWidth : {3L, 5L, 11L})
            ExpectRemainder(RandomImage(nType, 15, 12, 1, 4), nWidth);
}

TEST(IpFilterMid, KeepsRemaindersOfTheSquareOfBytesAlone) {
    ClTestImage remainder = Img({{9}});
    ClIpFilterMid filter;
    filter.m_pRemainder = &remainder;
    const auto run = [&](unsigned char nType, long nWidth, long nMode) {
        ClTestImage in = RandomImage(nType, 8, 8, 1, 4);
        ClImage out;
        filter.m_nMode = nMode;
        EXPECT_EQ(filter.ApplyParam(in, out, nWidth), 0);
    };
    run(ClImage::eUInt8, 5, 1);
    run(ClImage::eUInt8, 5, 2);
    run(ClImage::eUInt16, 5, 3);
    run(ClImage::eUInt8, 9, 3); // a copy
    EXPECT_EQ(Pixels(remainder), Rows({{9}}));
}

TEST(IpFilterMid, MayPutTheRemaindersInPlaceOfTheInput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 8, 8, 1, 4);
    const RealRows aIn = RealPixels(in);
    ClImage out;
    ClIpFilterMid filter;
    filter.m_pRemainder = &in;
    EXPECT_EQ(filter.ApplyParam(in, out, 5), 0);
    EXPECT_EQ(RealPixels(out), NaiveMean(aIn, 3, 5));
    EXPECT_EQ(in.DataType(), ClImage::eDouble64);
}

// Failures

TEST(IpFilterMid, AnswersMissingImages) {
    ClTestImage image = Img({{1, 2, 3}});
    ClImage claim;
    claim.Attach(nullptr, image);
    ClIpFilterMid filter;
    const auto expectMissing = [&] {
        EXPECT_EQ(filter.Apply(), -35);
        EXPECT_EQ(filter.DoProcess(), -35);
        EXPECT_EQ(filter.ProcessX(), -35);
        EXPECT_EQ(filter.ProcessY(), -35);
        EXPECT_EQ(filter.ProcessXY(), -35);
        EXPECT_EQ(filter.ProcessSignedX(), -35);
        EXPECT_EQ(filter.ProcessSignedY(), -35);
        EXPECT_EQ(filter.ProcessSignedXY(), -35);
    };
    expectMissing();
    filter.m_pInImage = &image;
    expectMissing();
    filter.m_pInImage = nullptr;
    filter.m_pOutImage = &image;
    expectMissing();
    filter.m_pInImage = &claim;
    expectMissing();
}

TEST(IpFilterMid, ComparesItsWidthAsItIsWithTheImageAndWithThree) {
    // An even width, which no Initialize() has made odd: the window is that of the next one.
    const struct {
        int m_nWidth, m_nHeight;
        long m_nFilterWidth, m_nMode;
        bool m_bCopies;
    } aCases[] = {{4, 9, 4, 1, false}, {4, 9, 6, 1, true},  {9, 4, 4, 2, false},
                  {9, 4, 6, 2, true},  {4, 4, 4, 3, false}, {3, 4, 4, 3, true},
                  {4, 3, 4, 3, true},  {2, 2, 2, 3, false}, {9, 9, 2, 3, false}};
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8, ClImage::eUInt16})
        for (const auto& c : aCases) {
            ClTestImage in = RandomImage(nType, c.m_nWidth, c.m_nHeight, 1, 5);
            ClTestImage out;
            ClIpFilterMid filter;
            filter.m_pInImage = &in;
            filter.m_pOutImage = &out;
            filter.m_nFilterWidth = c.m_nFilterWidth;
            filter.m_nMode = c.m_nMode;
            EXPECT_EQ(filter.DoProcess(), 0);
            EXPECT_EQ(filter.m_nFilterWidth, c.m_nFilterWidth);
            const RealRows aIn = RealPixels(in);
            EXPECT_EQ(RealPixels(out),
                      c.m_bCopies ? aIn : NaiveMean(aIn, c.m_nMode, c.m_nFilterWidth))
                << ClImage::TypeText(nType) << ", " << c.m_nWidth << " by " << c.m_nHeight
                << ", width " << c.m_nFilterWidth << ", mode " << c.m_nMode;
        }
}

TEST(IpFilterMid, RefusesToWorkInPlace) {
    ClTestImage image = Img({{1, 5, 3}});
    EXPECT_EQ(MeanFilter(image, image, 3, 1), -10);
    EXPECT_EQ(Pixels(image), Rows({{1, 5, 3}}));
}

TEST(IpFilterMid, WorksInPlaceBehindTheFrame) {
    for (long nWidth : {3L, 5L, 99L}) {
        ClTestImage image = RandomImage(ClImage::eUInt8, 9, 8, 1, 4);
        const RealRows aExpected = Expected(image, nWidth, 3);
        ClIpFilterMid filter;
        filter.m_pInImage = filter.m_pOutImage = &image;
        filter.m_nFilterWidth = nWidth;
        EXPECT_EQ(filter.DoProcess(), 0);
        EXPECT_EQ(RealPixels(image), aExpected);
    }
}

TEST(IpFilterMid, RefusesUnknownModes) {
    ClTestImage out = Img({{9}});
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (long nMode : {0L, 4L, 24L, -1L}) {
            ClTestImage in = FlatImage(nType, 5, 5, 1, 1);
            try {
                MeanFilter(in, out, 3, nMode);
                ADD_FAILURE() << "mode " << nMode;
            } catch (const ClExTessarin& e) {
                EXPECT_EQ(e.Number(), -6);
                if (ClImage::BytesPerSample(nType) == 1) { // told by the frame
                    EXPECT_STREQ(e.File(), "ImageProcessing/IpFilterBase");
                    EXPECT_EQ(e.Line(), 178);
                }
            }
        }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpFilterMid, TakesAnImageWithoutSamples) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8, ClImage::eFloat32}) {
        ClImage in;
        in.Attach(nullptr, nType, 5, 4, 0, 0, 0); // five columns of no planes
        for (long nMode : {1L, 2L, 3L}) {
            ClImage out;
            EXPECT_EQ(MeanFilter(in, out, 3, nMode), 0);
            EXPECT_EQ(out.SizeBytes(), 0u);
        }
    }
}

TEST(IpFilterMid, AnswersEveryMissingAllocation) {
    ClTestImage remainder;
    for (ClImage* pRemainder : {static_cast<ClImage*>(nullptr), &static_cast<ClImage&>(remainder)})
        for (unsigned char nType : {ClImage::eUInt8, ClImage::eUInt32})
            for (long nWidth : {3L, 5L, 99L})
                for (long nMode : {1L, 2L, 3L}) {
                    ClTestImage in = RandomImage(nType, 9, 8, 1, 5);
                    const ClTestImage copy = in;
                    TestSupport::FailEachAllocation([&] {
                        ClImage out;
                        ClIpFilterMid filter;
                        filter.m_nMode = nMode;
                        filter.m_pRemainder = pRemainder;
                        filter.ApplyParam(in, out, nWidth);
                    });
                    ExpectSameImage(in, copy);
                }
}

} // namespace
