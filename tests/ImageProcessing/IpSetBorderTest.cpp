#include "ImageProcessing/IpSetBorder.h"

#include "ImageProcessing/MissingMemory.h"

#include "support/Images.h"
#include "support/Throws.h"

#include <climits>
#include <vector>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

/// The bytes of a framed image: byte i of line y is painted where i is below the width, and i or
/// y nearer to an edge than the border is wide. Line ends stay.
std::vector<unsigned char> Framed(const ClImage& Image, long nBorder, unsigned char nGrey) {
    std::vector<unsigned char> aBytes(Image.Data(), Image.Data() + Image.SizeBytes());
    const long w = Image.Width();
    const long h = Image.Height();
    for (long y = 0; y < h; ++y)
        for (long x = 0; x < w; ++x)
            if (x < nBorder || w - 1 - x < nBorder || y < nBorder || h - 1 - y < nBorder)
                aBytes[static_cast<std::size_t>(y * Image.LineStrideBytes() + x)] = nGrey;
    return aBytes;
}

std::vector<unsigned char> BytesOf(const ClImage& Image) {
    return {Image.Data(), Image.Data() + Image.SizeBytes()};
}

TEST(IpSetBorder, PaintsAFrame) {
    ClTestImage in = Img({{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}});
    ClImage out;
    ClIpSetBorder border;
    EXPECT_EQ(border.ApplyParam(in, out, 1, 99), 0);
    EXPECT_EQ(Pixels(out), Rows({{99, 99, 99, 99}, {99, 6, 7, 99}, {99, 99, 99, 99}}));
    EXPECT_EQ(Pixels(in), Rows({{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}}));
}

TEST(IpSetBorder, PaintsWhatItsDefinitionSaysInEverySize) {
    for (int w = 1; w <= 6; ++w)
        for (int h = 1; h <= 6; ++h)
            for (long nBorder : {LONG_MIN, -3L, 0L, 1L, 2L, 3L, 5L, 6L, 7L, 1L << 33, LONG_MAX}) {
                ClTestImage in = RandomImage(ClImage::eUInt8, w, h, 1, 4);
                ClImage out;
                ClIpSetBorder border;
                EXPECT_EQ(border.ApplyParam(in, out, nBorder, 200), 0);
                EXPECT_EQ(BytesOf(out), Framed(in, nBorder, 200)) << w << h << nBorder;
            }
}

TEST(IpSetBorder, CountsBytesOfOtherImages) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes : {1, 3}) {
            ClTestImage in = RandomImage(nType, 7, 5, nPlanes, 4);
            ClImage out;
            ClIpSetBorder border;
            EXPECT_EQ(border.ApplyParam(in, out, 2, 200), 0);
            EXPECT_EQ(BytesOf(out), Framed(in, 2, 200));
        }
}

TEST(IpSetBorder, WorksInPlace) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 9, 7, 1, 4);
    const unsigned char* pBuffer = image.Data();
    const std::vector<unsigned char> aExpected = Framed(image, 2, 17);
    ClIpSetBorder border;
    EXPECT_EQ(border.ApplyParam(image, 2, 17), 0);
    EXPECT_EQ(BytesOf(image), aExpected);
    EXPECT_EQ(image.Data(), pBuffer);
}

TEST(IpSetBorder, PaintsOneBlackPixelByDefault) {
    ClTestImage image = Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    ClIpSetBorder border;
    border.m_pInImage = border.m_pOutImage = &image;
    EXPECT_EQ(border.Apply(), 0);
    EXPECT_EQ(Pixels(image), Rows({{0, 0, 0}, {0, 5, 0}, {0, 0, 0}}));
}

TEST(IpSetBorder, KeepsWhatTheInputSaysOfItsPixels) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 4, 1, 3);
    in.SetPelsY(200);
    in.SetWhite(1000.0);
    in.SetContent(ClImage::eUnknown);
    in.SetAttribute(8);
    ClTestImage out;
    ClIpSetBorder border;
    EXPECT_EQ(border.ApplyParam(in, out, 0, 9), 0);
    ExpectSameImage(out, in);
}

TEST(IpSetBorder, RefusesMissingImages) {
    ClTestImage image = Img({{1}});
    ClIpSetBorder border;
    EXPECT_EQ(border.Apply(), -37);
    border.m_pInImage = &image;
    EXPECT_EQ(border.Apply(), -37);
    border.m_pInImage = nullptr;
    border.m_pOutImage = &image;
    EXPECT_EQ(border.Apply(), -37);
    EXPECT_EQ(Pixels(image), Rows({{1}}));
    ClImage empty;
    EXPECT_EQ(border.ApplyParam(empty, image, 1, 0), -37);
    EXPECT_EQ(border.ApplyParam(empty, 1, 0), -37);
    EXPECT_EQ(Pixels(image), Rows({{1}}));
}

TEST(IpSetBorder, PaintsNothingOfAnImageWithoutArea) {
    unsigned char aBytes[16] = {};
    ClIpSetBorder border;
    const struct {
        unsigned char m_nType;
        int m_nWidth, m_nHeight, m_nPlanes;
    } aCases[] = {{ClImage::eUInt8, 0, 4, 1},   {ClImage::eUInt8, 4, 0, 1},
                  {ClImage::eUInt8, 4, 4, 0},   {ClImage::eTypeUnknown, 4, 4, 1},
                  {ClImage::eUInt8, -4, 1, -1}, {ClImage::eUInt8, 4, -4, 1}};
    for (const auto& Case : aCases) {
        ClImage image;
        image.Attach(aBytes, Case.m_nType, Case.m_nWidth, Case.m_nHeight, Case.m_nPlanes, 0, 0);
        EXPECT_EQ(border.ApplyParam(image, 1, 255), 0);
        for (unsigned char nByte : aBytes)
            EXPECT_EQ(nByte, 0);
    }
}

TEST(IpSetBorder, PaintsOrLeavesItsInputWhereMemoryIsMissing) {
    const ClTestImage before = Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
    ClTestImage in = before;
    ClTestImage out;
    TestSupport::ExpectAllOrNothing(
        [&] {
            out.Delete();
            EXPECT_EQ(ClIpSetBorder().ApplyParam(in, out, 1, 0), 0);
        },
        [&] { ExpectSameImage(in, before); },
        [&] {
            ExpectSameImage(in, before);
            EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}, {0, 5, 0}, {0, 0, 0}}));
        });
}

} // namespace
