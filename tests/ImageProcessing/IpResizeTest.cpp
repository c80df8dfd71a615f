#include "ImageProcessing/IpResize.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/RescaleCases.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <climits>

namespace {

using TestSupport::At;
using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::MakeRows;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

Rows Resized(ClImage& rIn, int nFactor, int nWidth, int nHeight) {
    ClImage Out;
    ClIpResize Resize;
    EXPECT_EQ(Resize.ApplyParam(rIn, nFactor, Out, nWidth, nHeight), 0);
    return Pixels(Out);
}

TEST(IpResize, MakesABlockOfEveryPixel) {
    ClTestImage in = Img({{1, 2}, {3, 4}});
    EXPECT_EQ(Resized(in, 2, 0, 0), Rows({{1, 1, 2, 2}, {1, 1, 2, 2}, {3, 3, 4, 4}, {3, 3, 4, 4}}));
    EXPECT_EQ(Resized(in, 1, 0, 0), Pixels(in));
}

TEST(IpResize, EqualsTheDefinitionAtManySizes) {
    for (int nWidth : {1, 2, 5, 13})
        for (int nHeight : {1, 4, 9})
            for (int nFactor : {1, 2, 3, 7})
                for (int nOutWidth : {1, 6, 13, 40})
                    for (int nOutHeight : {1, 5, 28}) {
                        ClTestImage in = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, 1);
                        const Rows aIn = Pixels(in);
                        EXPECT_EQ(Resized(in, nFactor, nOutWidth, nOutHeight),
                                  MakeRows(nOutWidth, nOutHeight, [&](int x, int y) {
                                      const int nX = x / nFactor;
                                      const int nY = y / nFactor;
                                      return nX < nWidth && nY < nHeight ? At(aIn, nX, nY) : 0;
                                  }));
                    }
}

TEST(IpResize, LeavesPixelsBehindTheBlocksAtZeroInAUsedBuffer) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = FlatImage(ClImage::eUInt8, 5, 3, 1, 99);
    ClIpResize resize;
    EXPECT_EQ(resize.ApplyParam(in, 2, out, 5, 3), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 1, 2, 2, 0}, {1, 1, 2, 2, 0}, {0, 0, 0, 0, 0}}));
}

TEST(IpResize, MultipliesTheResolutions) {
    ClTestImage in = Img({{1, 2}});
    in.SetPelsX(100);
    in.SetPelsY(-7);
    in.SetBlack(9.0);
    ClImage out;
    ClIpResize resize;
    EXPECT_EQ(resize.ApplyParam(in, 3, out, 1, 1), 0);
    EXPECT_EQ(out.PelsX(), 300);
    EXPECT_EQ(out.PelsY(), -21);
    EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(out.Black(), 0.0);
    in.SetPelsX(INT_MAX); // the low bits of 2 * INT_MAX
    EXPECT_EQ(resize.ApplyParam(in, 2, out, 1, 1), 0);
    EXPECT_EQ(out.PelsX(), -2);
}

TEST(IpResize, KeepsItsSettingsInARun) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    ClIpResize resize;
    EXPECT_EQ(resize.ApplyParam(in, 4, out, 0, 0), 0);
    EXPECT_EQ(out.Width(), 8);
    EXPECT_EQ(out.Height(), 4);
    EXPECT_EQ(resize.m_nDestWidth, 0);
    EXPECT_EQ(resize.m_nDestHeight, 0);
    ClTestImage other = Img({{1, 2, 3}});
    resize.m_pInImage = &other;
    EXPECT_EQ(resize.Apply(), 0);
    EXPECT_EQ(out.Width(), 12);
}

TEST(IpResize, ThrowsWithoutImages) {
    ClTestImage image = Img({{1}});
    ClIpResize resize;
    EXPECT_THROWS(resize.Apply(), ClException, -701, "m_pInImage is not set");
    resize.m_pInImage = &image;
    EXPECT_THROWS(resize.Apply(), ClException, -701, "m_pOutImage is not set");
}

TEST(IpResize, RefusesFactorsBelowOneAndInputsWithoutPixels) {
    ClTestImage in = Img({{1}});
    ClTestImage out = Img({{9}});
    ClIpResize resize;
    for (int nFactor : {0, -1, INT_MIN})
        EXPECT_EQ(resize.ApplyParam(in, nFactor, out, 2, 2), -35);
    ClImage empty;
    EXPECT_EQ(resize.ApplyParam(empty, 2, out, 2, 2), -35);
    empty.Attach(nullptr, in);
    EXPECT_EQ(resize.ApplyParam(empty, 2, out, 2, 2), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpResize, RefusesOtherTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = BlankImage(nType, 2, 2);
        ClTestImage out = Img({{9}});
        ClIpResize resize;
        EXPECT_THROWS(resize.ApplyParam(in, 2, out, 0, 0), ClException, -101,
                      "Image Type is not the assigned type");
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TEST(IpResize, RefusesSizesThatNoImageHas) {
    const int aanSizes[][2] = {{0, 4}, {4, 0}, {-1, -1}, {INT_MIN, 5}};
    for (int nPlanes : {1, 3})
        for (const auto& anSize : aanSizes) {
            ClTestImage in = BlankImage(ClImage::eUInt8, 2, 2, nPlanes);
            ClTestImage out = Img({{9}});
            ClIpResize resize;
            EXPECT_THROWS(resize.ApplyParam(in, 2, out, anSize[0], anSize[1]), ClException, -101,
                          "Image area must be positive");
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
    ClTestImage in = Img({{1, 2}, {3, 4}});
    ClImage out;
    ClIpResize resize;
    EXPECT_THROWS(resize.ApplyParam(in, INT_MAX, out, 0, 0), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_THROWS(resize.ApplyParam(in, 2, out, INT_MAX, INT_MAX), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_THROWS(resize.ApplyParam(in, INT_MAX, in, 0, 0), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_EQ(Pixels(in), Rows({{1, 2}, {3, 4}}));
}

TEST(IpResize, TakesTheLargestFactorWithASize) {
    ClTestImage in = Img({{1, 2}, {3, 4}});
    EXPECT_EQ(Resized(in, INT_MAX, 3, 2), Rows({{1, 1, 1}, {1, 1, 1}}));
}

TEST(IpResize, EnlargesPlanesOneByOne) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    in.SetContent(ClImage::eCIELab);
    in.SetAttribute(5);
    ClImage out;
    ClIpResize resize;
    EXPECT_EQ(resize.ApplyParam(in, 2, out, 0, 0), 0);
    const std::vector<int> aLine = {1, 2, 3, 1, 2, 3, 4, 5, 6, 4, 5, 6};
    EXPECT_EQ(Pixels(out), Rows({aLine, aLine}));
    EXPECT_EQ(out.Content(), ClImage::eCIELab);
    EXPECT_EQ(out.Attribute(), 5);
    ClTestImage many = BlankImage(ClImage::eUInt8, 2, 2, 5);
    EXPECT_THROWS(resize.ApplyParam(many, 2, out, 0, 0), ClException, -35,
                  "Image has more than 4 planes.");
}

TEST(IpResize, WorksInPlace) {
    for (int nPlanes : {1, 3}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 3, 2, nPlanes, 2);
        ClImage out;
        ClIpResize resize;
        EXPECT_EQ(resize.ApplyParam(in, 3, out, 0, 0), 0);
        EXPECT_EQ(resize.ApplyParam(in, 3, in, 0, 0), 0);
        ExpectSameImage(in, out);
    }
}

TEST(IpResize, ResizesOrLeavesItsImagesWhereMemoryIsMissing) {
    for (int nPlanes : {1, 3})
        TestSupport::ExpectImagesOrNothing(
            RandomImage(ClImage::eUInt8, 3, 2, nPlanes, 3),
            [](ClImage& In, ClImage& Out) { return ClIpResize().ApplyParam(In, 2, Out, 0, 0); });
}

TEST(IpResize, KeepsTheAttributeOfTheOutputInPlaceToo) {
    ClTestImage in = Img({{1, 2}});
    in.SetAttribute(5);
    ClTestImage out = Img({{9}});
    out.SetAttribute(6);
    ClIpResize resize;
    EXPECT_EQ(resize.ApplyParam(in, 2, out, 0, 0), 0);
    EXPECT_EQ(out.Attribute(), 6);
    EXPECT_EQ(resize.ApplyParam(in, 2, in, 0, 0), 0);
    EXPECT_EQ(in.Attribute(), 5);
}

} // namespace
