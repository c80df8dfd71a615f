#include "ImageProcessing/IpSubsample.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/RescaleCases.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <algorithm>
#include <climits>

namespace {

using TestSupport::At;
using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Height;
using TestSupport::Img;
using TestSupport::MakeRows;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::Width;

Rows Subsampled(ClImage& rIn, long nFactor, bool bMid) {
    ClImage Out;
    ClIpSubsample Subsample;
    EXPECT_EQ(Subsample.ApplyParam(rIn, nFactor, Out, bMid), 0);
    EXPECT_EQ(Out.DataType(), rIn.DataType());
    return Pixels(Out);
}

/// The mean toward zero of one block of the grid; those at the edges are cut.
int BlockMean(const Rows& aIn, int nFactor, int nX, int nY) {
    int nSum = 0;
    int nCount = 0;
    for (int y = nY * nFactor; y < std::min((nY + 1) * nFactor, Height(aIn)); ++y)
        for (int x = nX * nFactor; x < std::min((nX + 1) * nFactor, Width(aIn)); ++x, ++nCount)
            nSum += At(aIn, x, y);
    return nSum / nCount;
}

TEST(IpSubsample, RoundsTheSizeUp) {
    ClTestImage in = Img({{1, 2, 3, 4, 5}});
    EXPECT_EQ(Subsampled(in, 2, false), Rows({{1, 3, 5}}));
    EXPECT_EQ(Subsampled(in, 2, true), Rows({{1, 3, 5}}));
    EXPECT_EQ(Subsampled(in, 4, false), Rows({{1, 5}}));
    EXPECT_EQ(Subsampled(in, 1, true), Pixels(in));
}

TEST(IpSubsample, PicksOrMeansBlocksAtManySizes) {
    for (int nWidth : {1, 2, 7, 16, 33})
        for (int nHeight : {1, 3, 8, 21})
            for (int nFactor : {1, 2, 3, 4, 16, 40}) {
                ClTestImage in = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, 1);
                const Rows aIn = Pixels(in);
                const int nOutWidth = (nWidth + nFactor - 1) / nFactor;
                const int nOutHeight = (nHeight + nFactor - 1) / nFactor;
                EXPECT_EQ(Subsampled(in, nFactor, false),
                          MakeRows(nOutWidth, nOutHeight, [&](int x, int y) {
                              return At(aIn, x * nFactor, y * nFactor);
                          }));
                EXPECT_EQ(Subsampled(in, nFactor, true),
                          MakeRows(nOutWidth, nOutHeight,
                                   [&](int x, int y) { return BlockMean(aIn, nFactor, x, y); }));
            }
}

TEST(IpSubsample, MeansLinesOfManyBlocks) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 1700, 5, 1, 2);
    const Rows aIn = Pixels(in);
    EXPECT_EQ(Subsampled(in, 3, true),
              MakeRows(567, 2, [&](int x, int y) { return BlockMean(aIn, 3, x, y); }));
}

TEST(IpSubsample, MeansSignedSamplesTowardZero) {
    ClTestImage in = Img(ClImage::eInt8, {{-1, -2, 5, -128}, {-3, -1, 6, -128}});
    EXPECT_EQ(Subsampled(in, 2, true), Rows({{-1, -61}})); // -7 / 4 and -245 / 4
    in = RandomImage(ClImage::eInt8, 19, 11, 1, 3);
    const Rows aIn = Pixels(in);
    EXPECT_EQ(Subsampled(in, 4, true),
              MakeRows(5, 3, [&](int x, int y) { return BlockMean(aIn, 4, x, y); }));
}

TEST(IpSubsample, KeepsConstants) {
    for (long nFactor : {2, 3, 5})
        for (int nValue : {0, 1, 199, 255}) {
            ClTestImage in = FlatImage(ClImage::eUInt8, 13, 7, 1, nValue);
            for (const std::vector<int>& aLine : Subsampled(in, nFactor, true))
                EXPECT_EQ(aLine, std::vector<int>(aLine.size(), nValue));
        }
}

TEST(IpSubsample, DividesTheResolutions) {
    ClTestImage in = Img({{1, 2}});
    in.SetPelsX(100);
    in.SetPelsY(-7);
    in.SetBlack(9.0);
    for (bool bMid : {false, true}) {
        ClImage out;
        ClIpSubsample subsample;
        EXPECT_EQ(subsample.ApplyParam(in, 3, out, bMid), 0);
        EXPECT_EQ(out.PelsX(), 33);
        EXPECT_EQ(out.PelsY(), -2);
        EXPECT_EQ(out.Black(), 0.0);
    }
}

TEST(IpSubsample, TakesTheLargestFactor) {
    ClTestImage in = Img({{1, 2}, {3, 10}});
    EXPECT_EQ(Subsampled(in, LONG_MAX, false), Rows({{1}}));
    EXPECT_EQ(Subsampled(in, LONG_MAX, true), Rows({{4}}));
}

TEST(IpSubsample, ThrowsWithoutImages) {
    for (bool bMid : {false, true}) {
        ClTestImage image = Img({{1}});
        ClIpSubsample subsample;
        subsample.m_bMid = bMid;
        EXPECT_THROWS(subsample.Apply(), ClException, -701, "m_pInImage is not set");
        subsample.m_pInImage = &image;
        EXPECT_THROWS(subsample.Apply(), ClException, -701, "m_pOutImage is not set");
    }
}

TEST(IpSubsample, RefusesFactorsBelowOneAndInputsWithoutPixels) {
    for (bool bMid : {false, true}) {
        ClTestImage in = Img({{1}});
        ClTestImage out = Img({{9}});
        ClIpSubsample subsample;
        for (long nFactor : {0L, -1L, LONG_MIN})
            EXPECT_EQ(subsample.ApplyParam(in, nFactor, out, bMid), -35);
        ClImage empty;
        EXPECT_EQ(subsample.ApplyParam(empty, 2, out, bMid), -35);
        empty.Attach(nullptr, in);
        EXPECT_EQ(subsample.ApplyParam(empty, 2, out, bMid), -35);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TEST(IpSubsample, RefusesOtherTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (bool bMid : {false, true}) {
            if (nType == ClImage::eUInt8 || (nType == ClImage::eInt8 && bMid))
                continue;
            ClTestImage in = BlankImage(nType, 2, 2);
            ClTestImage out = Img({{9}});
            ClIpSubsample subsample;
            EXPECT_THROWS(subsample.ApplyParam(in, 2, out, bMid), ClException, -101,
                          "Image Type is not the assigned type");
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
}

TEST(IpSubsample, TakesPlanesOneByOne) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 10, 3, 20, 5, 30}}, 2);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(5);
    for (bool bMid : {false, true}) {
        ClImage out;
        ClIpSubsample subsample;
        EXPECT_EQ(subsample.ApplyParam(in, 2, out, bMid), 0);
        EXPECT_EQ(Pixels(out), bMid ? Rows({{2, 15, 5, 30}}) : Rows({{1, 10, 5, 30}}));
        EXPECT_EQ(out.Content(), ClImage::eHSV);
        EXPECT_EQ(out.Attribute(), 5);
        ClTestImage many = BlankImage(ClImage::eUInt8, 2, 2, 5);
        EXPECT_THROWS(subsample.ApplyParam(many, 2, out, bMid), ClException, -35,
                      "Image has more than 4 planes.");
    }
}

TEST(IpSubsample, WorksInPlace) {
    for (int nPlanes : {1, 3})
        for (bool bMid : {false, true}) {
            ClTestImage in = RandomImage(ClImage::eUInt8, 7, 5, nPlanes, 4);
            ClImage out;
            ClIpSubsample subsample;
            EXPECT_EQ(subsample.ApplyParam(in, 3, out, bMid), 0);
            EXPECT_EQ(subsample.ApplyParam(in, 3, in, bMid), 0);
            ExpectSameImage(in, out);
        }
}

TEST(IpSubsample, SubsamplesOrLeavesItsImagesWhereMemoryIsMissing) {
    for (int nPlanes : {1, 3})
        for (bool bMid : {false, true})
            TestSupport::ExpectImagesOrNothing(
                RandomImage(bMid ? ClImage::eInt8 : ClImage::eUInt8, 7, 5, nPlanes, 5),
                [=](ClImage& In, ClImage& Out) {
                    return ClIpSubsample().ApplyParam(In, 2, Out, bMid);
                });
}

TEST(IpSubsample, KeepsTheAttributeOfTheOutputInPlaceToo) {
    for (bool bMid : {false, true}) {
        ClTestImage in = Img({{1, 2, 3}});
        in.SetAttribute(5);
        ClTestImage out = Img({{9}});
        out.SetAttribute(6);
        ClIpSubsample subsample;
        EXPECT_EQ(subsample.ApplyParam(in, 2, out, bMid), 0);
        EXPECT_EQ(out.Attribute(), 6);
        EXPECT_EQ(subsample.ApplyParam(in, 2, in, bMid), 0);
        EXPECT_EQ(in.Attribute(), 5);
    }
}

} // namespace
