// Bilinear: interpolation where an axis grows, box integration where it shrinks.

#include "ImageProcessing/NaiveRescale.h"

#include <algorithm>

namespace {

using TestSupport::caByteTypes;
using TestSupport::caRescaleSizes;
using TestSupport::ClTestImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::NaiveBiLinear;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RescaledToSize;
using TestSupport::Rows;
using TestSupport::StSizes;

constexpr auto ceBiLinear = ClIpRescale::ModeBiLinear;

TEST(IpRescaleLinear, EqualsTheDefinitionAtManySizes) {
    for (unsigned char nType : caByteTypes)
        for (const StSizes& s : caRescaleSizes) {
            ClTestImage in = RandomImage(nType, s.m_nInWidth, s.m_nInHeight, 1, 1);
            EXPECT_EQ(
                RescaledToSize(in, s.m_nOutWidth, s.m_nOutHeight, ceBiLinear),
                NaiveBiLinear(Pixels(in), s.m_nOutWidth, s.m_nOutHeight, nType == ClImage::eInt8))
                << s.m_nInWidth << " x " << s.m_nInHeight << " to " << s.m_nOutWidth << " x "
                << s.m_nOutHeight;
        }
}

TEST(IpRescaleLinear, EqualsTheDefinitionOnLinesLongerThanABlock) {
    ClTestImage in = RandomImage(ClImage::eInt8, 1100, 5, 1, 2);
    for (int nWidth : {1100, 1099, 600, 3})
        for (int nHeight : {2, 5})
            EXPECT_EQ(RescaledToSize(in, nWidth, nHeight, ceBiLinear),
                      NaiveBiLinear(Pixels(in), nWidth, nHeight, true));
}

TEST(IpRescaleLinear, AlignsPixelCentres) {
    // Step 2048: positions -0.25 (held at 0), 0.25, 0.75, 1.25 (no neighbour behind the last).
    ClTestImage in = Img({{0, 100}});
    EXPECT_EQ(RescaledToSize(in, 4, 1, ceBiLinear), Rows({{0, 25, 75, 100}}));
    ClTestImage column = Img({{0}, {100}});
    EXPECT_EQ(RescaledToSize(column, 1, 4, ceBiLinear), Rows({{0}, {25}, {75}, {100}}));
}

TEST(IpRescaleLinear, TruncatesEachTermOfAGrowingAxis) {
    // Half way between two samples of 3: twice (2048 * 3) >> 12 = 1.
    ClTestImage in = Img({{3, 3}});
    const Rows aOut = RescaledToSize(in, 8, 1, ceBiLinear);
    EXPECT_EQ(aOut, Rows({{3, 3, 2, 2, 2, 2, 2, 2}}));
}

TEST(IpRescaleLinear, MeansOverFractionsOfSamples) {
    // Cells of 1.5 samples: (0 + 50) / 1.5 and (50 + 200) / 1.5.
    ClTestImage in = Img({{0, 100, 200}});
    EXPECT_EQ(RescaledToSize(in, 2, 1, ceBiLinear), Rows({{33, 166}}));
    ClTestImage column = Img({{0}, {100}, {200}});
    EXPECT_EQ(RescaledToSize(column, 1, 2, ceBiLinear), Rows({{33}, {166}}));
    ClTestImage negative = Img(ClImage::eInt8, {{0, -10, -20}});
    EXPECT_EQ(RescaledToSize(negative, 2, 1, ceBiLinear), Rows({{-3, -16}})); // toward zero
}

TEST(IpRescaleLinear, KeepsConstantsWhenItShrinks) {
    for (int nSize = 1; nSize <= 40; ++nSize)
        for (int nValue : {1, 99, 255}) {
            ClTestImage in = FlatImage(ClImage::eUInt8, 41, 43, 1, nValue);
            EXPECT_EQ(RescaledToSize(in, nSize, 41 - nSize, ceBiLinear),
                      Pixels(FlatImage(ClImage::eUInt8, nSize, 41 - nSize, 1, nValue)));
        }
}

TEST(IpRescaleLinear, SkipsNoSampleWhenItShrinks) {
    for (int nWidth : {1, 2, 5, 9, 16})
        for (int nBright = 0; nBright < 17; ++nBright) {
            ClTestImage in = FlatImage(ClImage::eUInt8, 17, 1, 1, 0);
            in.LineData(0)[nBright] = 255;
            const Rows aOut = RescaledToSize(in, nWidth, 1, ceBiLinear);
            EXPECT_GT(*std::max_element(aOut[0].begin(), aOut[0].end()), 0);
        }
}

TEST(IpRescaleLinear, MeansTheWholeImageIntoOnePixel) {
    ClTestImage in = Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 10}});
    // Lines first: 2, 5, 25 / 3 = 8; then 15 / 3.
    EXPECT_EQ(RescaledToSize(in, 1, 1, ceBiLinear), Rows({{5}}));
}

TEST(IpRescaleLinear, ReachesTheLargestDestination) {
    ClTestImage in = Img({{7, 7}, {7, 7}});
    ClImage out;
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 16384, 1, ceBiLinear), 0);
    EXPECT_EQ(out.LineData(0)[0], 7);
    EXPECT_EQ(out.LineData(0)[16383], 7);
}

} // namespace
