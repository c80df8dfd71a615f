#include "ImageProcessing/IpFilterMedian.h"

#include "ImageProcessing/NaiveRankFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace {

using TestSupport::caRankSizes;
using TestSupport::ClTestImage;
using TestSupport::ExpectEmptyImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::NaiveMedian;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::Rows;

long MedianFilter(ClImage& rIn, ClImage& rOut, long nWidth, long nMode) {
    ClIpFilterMedian filter;
    filter.m_pInImage = &rIn;
    filter.m_pOutImage = &rOut;
    filter.m_nFilterWidth = nWidth;
    filter.m_nMode = nMode;
    return filter.Apply();
}

ClTestImage MedianFiltered(const ClTestImage& In, long nWidth, long nMode) {
    ClTestImage in = In;
    ClTestImage out;
    EXPECT_EQ(MedianFilter(in, out, nWidth, nMode), 0);
    ExpectSameImage(in, In);
    return out;
}

TEST(IpFilterMedian, EqualsItsDefinition) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (const auto& Size : caRankSizes)
            for (long nMode : {1L, 2L, 3L})
                for (long nWidth : {3L, 5L, 9L}) {
                    const ClTestImage in = RandomImage(nType, Size.m_nWidth, Size.m_nHeight, 1, 7);
                    EXPECT_EQ(RealPixels(MedianFiltered(in, nWidth, nMode)),
                              NaiveMedian(RealPixels(in), nMode, nWidth))
                        << ClImage::TypeText(nType) << ", " << Size.m_nWidth << " by "
                        << Size.m_nHeight << ", mode " << nMode << ", width " << nWidth;
                }
}

TEST(IpFilterMedian, EqualsItsDefinitionAtEveryWidth) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 13, 7, 1, 8);
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth = 3; nWidth <= 99; nWidth += 12)
            EXPECT_EQ(RealPixels(MedianFiltered(in, nWidth, nMode)),
                      NaiveMedian(RealPixels(in), nMode, nWidth))
                << "mode " << nMode << ", width " << nWidth;
}

TEST(IpFilterMedian, RemovesSingleOutliersAndKeepsEdges) {
    EXPECT_EQ(
        Pixels(MedianFiltered(Img({{5, 5, 90, 5, 5}, {5, 5, 5, 5, 5}, {5, 5, 5, 5, 5}}), 3, 3)),
        Rows(3, std::vector<int>(5, 5)));
    const ClTestImage edge = Img({{0, 0, 0, 9, 9}, {0, 0, 0, 9, 9}, {0, 0, 0, 9, 9}});
    EXPECT_EQ(Pixels(MedianFiltered(edge, 3, 3)), Pixels(edge));
}

TEST(IpFilterMedian, RepeatsTheEdge) {
    // The first window holds 9, 9, 9, 1, 0. Cut at the edge it would hold 9, 1, 0.
    for (long nMode : {1L, 3L})
        EXPECT_EQ(Pixels(MedianFiltered(Img({{9, 1, 0, 0, 0}}), 5, nMode)),
                  Rows({{9, 1, 0, 0, 0}}));
    EXPECT_EQ(Pixels(MedianFiltered(Img({{9}, {1}, {0}, {0}}), 5, 2)), Rows({{9}, {1}, {0}, {0}}));
}

TEST(IpFilterMedian, CopiesTheEndsOfALineAtWidthThree) {
    EXPECT_EQ(Pixels(MedianFiltered(Img({{9, 1, 5, 2, 7}}), 3, 1)), Rows({{9, 5, 2, 5, 7}}));
    EXPECT_EQ(Pixels(MedianFiltered(Img({{9}, {1}, {5}, {2}, {7}}), 3, 2)),
              Rows({{9}, {5}, {2}, {5}, {7}}));
}

TEST(IpFilterMedian, CountsAnEvenWidthAsTheNextAndKeepsIt) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 12, 9, 1, 8);
    for (long nMode : {1L, 2L, 3L})
        for (long nWidth : {4L, 8L, 100L})
            ExpectSameImage(MedianFiltered(in, nWidth, nMode),
                            nWidth < 100
                                ? MedianFiltered(in, nWidth + 1, nMode)
                                : Img(ClImage::eUInt8, NaiveMedian(RealPixels(in), nMode, 101)));
    ClTestImage image = in;
    ClImage out;
    ClIpFilterMedian filter;
    EXPECT_EQ(filter.ApplyParam(image, out, 100), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 100);
    EXPECT_EQ(filter.Apply(), 0);
}

TEST(IpFilterMedian, KeepsRangeContentAttributeAndResolution) {
    ClTestImage in = FlatImage(ClImage::eInt8, 5, 4, 1, -3);
    in.SetBlack(-7.0);
    in.SetWhite(99.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(4);
    in.SetPelsX(100);
    for (long nMode : {1L, 2L, 3L})
        ExpectSameImage(MedianFiltered(in, 3, nMode), in);
}

TEST(IpFilterMedian, FiltersPlanesOneByOne) {
    const ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, 4, 2);
    const ClTestImage out = MedianFiltered(in, 5, 3);
    for (int p = 0; p < 4; ++p) {
        ClImage plane;
        ClImage filtered;
        in.GetPlane(p, plane);
        out.GetPlane(p, filtered);
        EXPECT_EQ(RealPixels(filtered), NaiveMedian(RealPixels(plane), 3, 5));
    }
}

TEST(IpFilterMedian, AddsBothDirectionsToTheMode) {
    const struct { long m_nBefore, m_nAfter; } aCases[] = {{0, 3}, {1, 3}, {2, 3}, {3, 3}};
    for (const auto& c : aCases) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, 1, 2);
        ClImage out;
        ClIpFilterMedian filter;
        filter.m_nMode = c.m_nBefore;
        EXPECT_EQ(filter.ApplyParam(in, out, 3), 0);
        EXPECT_EQ(filter.m_nMode, c.m_nAfter);
        EXPECT_EQ(RealPixels(out), NaiveMedian(RealPixels(in), 3, 3));
    }
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    ClIpFilterMedian filter;
    filter.m_nMode = 8;
    EXPECT_THROWS(filter.ApplyParam(in, out, 3), ClExTessarin, -6,
                  "Unknown error code."); // 11 is no mode
}

// Sorting

TEST(IpFilterMedian, SortsAndAnswersTheMiddle) {
    std::mt19937 random(1);
    for (long nCount : {1L, 2L, 3L, 9L, 10L, 10201L}) {
        std::vector<unsigned char> aBytes(static_cast<std::size_t>(nCount));
        std::generate(aBytes.begin(), aBytes.end(),
                      [&] { return static_cast<unsigned char>(random()); });
        std::vector<unsigned char> aSorted = aBytes;
        std::sort(aSorted.begin(), aSorted.end());
        EXPECT_EQ(ClIpFilterMedian::Bubblesort(aBytes.data(), nCount),
                  aSorted[static_cast<std::size_t>(nCount / 2)]);
        EXPECT_EQ(aBytes, aSorted);
    }
}

TEST(IpFilterMedian, SortsSignedSamplesByTheirSign) {
    signed char aSamples[] = {5, -128, 127, 0, -1, 5};
    EXPECT_EQ(ClIpFilterMedian::BubblesortSigned(aSamples, 6), 5);
    EXPECT_THAT(aSamples, testing::ElementsAre(-128, -1, 0, 5, 5, 127));
}

TEST(IpFilterMedian, SortsNothing) {
    EXPECT_EQ(ClIpFilterMedian::Bubblesort(nullptr, 0), 0);
    EXPECT_EQ(ClIpFilterMedian::BubblesortSigned(nullptr, -1), 0);
}

// Failures

TEST(IpFilterMedian, AnswersMissingImages) {
    ClTestImage image = Img({{1, 2, 3}});
    ClIpFilterMedian filter;
    for (auto process : {&ClIpFilterMedian::ProcessX, &ClIpFilterMedian::ProcessY,
                         &ClIpFilterMedian::ProcessXY, &ClIpFilterMedian::ProcessSignedX,
                         &ClIpFilterMedian::ProcessSignedY, &ClIpFilterMedian::ProcessSignedXY}) {
        filter.m_pInImage = filter.m_pOutImage = nullptr;
        EXPECT_EQ((filter.*process)(), -35);
        filter.m_pInImage = &image;
        EXPECT_EQ((filter.*process)(), -35);
        filter.m_pInImage = nullptr;
        filter.m_pOutImage = &image;
        EXPECT_EQ((filter.*process)(), -35);
    }
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.DoProcess(), -35);
}

TEST(IpFilterMedian, RefusesWidthsOutsideThreeToAHundred) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (long nMode : {1L, 2L, 3L})
            for (long nWidth : {2L, 101L, 1000L}) {
                ClTestImage in = FlatImage(nType, 3, 2, 1, 1);
                ClImage out;
                EXPECT_EQ(MedianFilter(in, out, nWidth, nMode), -35);
                ExpectEmptyImage(out);
            }
    for (long nWidth : {3L, 100L})
        MedianFiltered(Img({{1, 2, 3}}), nWidth, 3);
}

TEST(IpFilterMedian, CopiesAnyTypeForAWidthOfOneOrLess) {
    const ClTestImage in = RandomImage(ClImage::eDouble64, 5, 4, 2, 1);
    for (long nWidth : {1L, 0L, -2L})
        ExpectSameImage(MedianFiltered(in, nWidth, 99), in);
}

TEST(IpFilterMedian, RefusesAnEmptyImage) {
    for (long nMode : {1L, 2L, 3L}) {
        ClImage in;
        ClTestImage out = Img({{9}});
        EXPECT_EQ(MedianFilter(in, out, 3, nMode), -14);
        EXPECT_EQ(MedianFilter(in, out, 2, nMode), -35); // the width first
        in.Attach(nullptr, ClImage::eInt8, 0, 5, 1, 0, 0);
        EXPECT_EQ(MedianFilter(in, out, 3, nMode), -14);
        in.Attach(nullptr, ClImage::eUInt16, 5, 0, 1, 0, 0); // before the type
        EXPECT_EQ(MedianFilter(in, out, 3, nMode), -14);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TEST(IpFilterMedian, RefusesSamplesThatAreNotBytes) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes : {1, 3})
            for (long nMode : {1L, 2L, 3L}) {
                if (nType == ClImage::eUInt8 || nType == ClImage::eInt8)
                    continue;
                ClTestImage in = FlatImage(nType, 4, 3, nPlanes, 1);
                ClTestImage out = Img({{9}});
                EXPECT_THROWS(MedianFilter(in, out, 3, nMode), ClException, -101,
                              "Image Type is not the assigned type");
                EXPECT_EQ(Pixels(out), Rows({{9}}));
            }
}

TEST(IpFilterMedian, RefusesToWorkInPlace) {
    ClTestImage image = Img({{1, 5, 3}});
    EXPECT_EQ(MedianFilter(image, image, 3, 3), -10);
    EXPECT_EQ(Pixels(image), Rows({{1, 5, 3}}));
}

TEST(IpFilterMedian, WorksInPlaceBehindTheFrame) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 9, 8, 1, 4);
    const TestSupport::RealRows aExpected = NaiveMedian(RealPixels(image), 3, 5);
    ClIpFilterMedian filter;
    filter.m_pInImage = filter.m_pOutImage = &image;
    filter.m_nFilterWidth = 5;
    EXPECT_EQ(filter.DoProcess(), 0);
    EXPECT_EQ(RealPixels(image), aExpected);
}

TEST(IpFilterMedian, DoesNothingAlongADirection) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (long nMode : {8L, 16L}) {
            ClTestImage in = FlatImage(nType, 4, 3, 1, 1);
            ClTestImage out = Img({{9}});
            EXPECT_EQ(MedianFilter(in, out, 3, nMode), 0);
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
}

TEST(IpFilterMedian, RefusesUnknownModes) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    for (long nMode : {0L, 4L, 24L})
        EXPECT_THROWS(MedianFilter(in, out, 3, nMode), ClExTessarin, -6, "Unknown error code.");
}

TEST(IpFilterMedian, TakesAnImageWithoutSamples) {
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 5, 4, 0, 0, 0); // five columns of no planes
    ClImage out;
    EXPECT_EQ(MedianFilter(in, out, 3, 3), 0);
    EXPECT_EQ(out.SizeBytes(), 0u);
}

TEST(IpFilterMedian, AnswersEveryMissingAllocation) {
    for (long nWidth : {3L, 5L})
        for (long nMode : {1L, 2L, 3L}) {
            ClTestImage in = RandomImage(ClImage::eUInt8, 9, 8, 1, 5);
            const ClTestImage copy = in;
            TestSupport::FailEachAllocation([&] {
                ClImage out;
                MedianFilter(in, out, nWidth, nMode);
            });
            ExpectSameImage(in, copy);
        }
}

} // namespace
