#include "ImageProcessing/IpBinarizeLocal2.h"

#include "ImageProcessing/NaiveLocalThreshold.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <limits>
#include <vector>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::NaiveThresholded;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::StLocalThreshold;

Rows Binarized(const ClTestImage& In, const StLocalThreshold& Settings) {
    ClTestImage in(In);
    ClImage out;
    ClIpBinarizeLocal2 ip;
    ip.m_nBelowValue = static_cast<unsigned char>(Settings.m_nBelow);
    ip.m_nAboveValue = static_cast<unsigned char>(Settings.m_nAbove);
    EXPECT_EQ(ip.ApplyParam(in, out, Settings.m_nSizeX, Settings.m_nSizeY, Settings.m_nOffset), 0);
    ExpectSameImage(in, In);
    return Pixels(out);
}

TEST(IpBinarizeLocal2, BeginsWithItsDefaults) {
    const ClIpBinarizeLocal2 ip;
    EXPECT_EQ(ip.m_nSizeX, 11);
    EXPECT_EQ(ip.m_nSizeY, 11);
    EXPECT_EQ(ip.m_nOffset, 0);
    EXPECT_EQ(ip.m_nBelowValue, 0);
    EXPECT_EQ(ip.m_nAboveValue, 255);
    EXPECT_FALSE(ip.m_bInPlace);
    EXPECT_FALSE(ip.m_bUseLUT);
}

TEST(IpBinarizeLocal2, EqualsItsDefinitionForEveryWindow) {
    const ClTestImage image = RandomImage(ClImage::eUInt8, 12, 9, 1, 1);
    const Rows aIn = Pixels(image);
    for (long nSizeX = 1; nSizeX <= 13; ++nSizeX)
        for (long nSizeY = 1; nSizeY <= 10; ++nSizeY) {
            const StLocalThreshold Settings = {nSizeX, nSizeY, 0};
            EXPECT_EQ(Binarized(image, Settings), NaiveThresholded(aIn, Settings))
                << nSizeX << " x " << nSizeY;
        }
}

TEST(IpBinarizeLocal2, EqualsItsDefinitionForImagesOfEverySize) {
    const int aSizes[][2] = {{1, 1}, {1, 13}, {13, 1},  {2, 2},  {3, 7},
                             {7, 3}, {16, 5}, {17, 33}, {33, 8}, {50, 21}};
    for (const auto& s : aSizes) {
        const ClTestImage image = RandomImage(ClImage::eUInt8, s[0], s[1], 1, 2);
        const Rows aIn = Pixels(image);
        for (long nSizeX : {1L, 2L, 3L, 5L, 6L, 11L, 16L})
            for (long nSizeY : {1L, 2L, 3L, 8L, 21L})
                for (long nOffset : {0L, 17L, -40L}) {
                    const StLocalThreshold Settings = {nSizeX, nSizeY, nOffset, 30, 40};
                    EXPECT_EQ(Binarized(image, Settings), NaiveThresholded(aIn, Settings))
                        << s[0] << " x " << s[1] << ", window " << nSizeX << " x " << nSizeY
                        << ", offset " << nOffset;
                }
    }
}

TEST(IpBinarizeLocal2, IsNowhereAboveTheMeanOfAConstantImage) {
    for (int nValue : {0, 1, 100, 255})
        for (long nSize : {1L, 3L, 11L}) {
            const ClTestImage image = FlatImage(ClImage::eUInt8, 15, 13, 1, nValue);
            const StLocalThreshold Equal = {nSize, nSize, 0, 7, 9};
            EXPECT_EQ(Binarized(image, Equal), Rows(13, std::vector<int>(15, 7)));
            const StLocalThreshold Above = {nSize, nSize, 1, 7, 9};
            EXPECT_EQ(Binarized(image, Above), Rows(13, std::vector<int>(15, 9)));
        }
}

TEST(IpBinarizeLocal2, SumsAColumnMoreThanAnEvenWidthCounts) {
    // 7 columns of 100 against 6: a constant image is above its mean from an offset of
    // 100 * 7 / 6 - 100 = 16.7 on where the window is whole, and from 1 on elsewhere
    const ClTestImage image = FlatImage(ClImage::eUInt8, 10, 1, 1, 100);
    EXPECT_EQ(Binarized(image, {6, 1, 16}), Rows({{255, 255, 255, 0, 0, 0, 0, 255, 255, 255}}));
    EXPECT_EQ(Binarized(image, {6, 1, 17}), Rows({std::vector<int>(10, 255)}));
    // an even height is summed and counted alike
    const ClTestImage column = FlatImage(ClImage::eUInt8, 1, 10, 1, 100);
    EXPECT_EQ(Binarized(column, {1, 6, 1}), Rows(10, {255}));
}

TEST(IpBinarizeLocal2, ComparesACornerWithTheWindowThatIsInside) {
    // 3 by 2 pixels around the corner, hx = 2 and hy = 1: 60 + 5 * n is the sum
    for (int n : {59, 60, 61}) {
        ClTestImage image = FlatImage(ClImage::eUInt8, 9, 9, 1, 255);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                TestSupport::SetSample(image, x, y, 0, n);
        TestSupport::SetSample(image, 0, 0, 0, 60);
        EXPECT_EQ(Binarized(image, {5, 3, 0})[0][0], n < 60 ? 255 : 0) << n;
    }
}

TEST(IpBinarizeLocal2, ComparesAPixelWithItselfInAWindowOfOne) {
    const ClTestImage image = RandomImage(ClImage::eUInt8, 8, 6, 1, 3);
    EXPECT_EQ(Binarized(image, {1, 1, 0}), Rows(6, std::vector<int>(8, 0)));
    EXPECT_EQ(Binarized(image, {1, 1, 1}), Rows(6, std::vector<int>(8, 255)));
}

TEST(IpBinarizeLocal2, FindsDarkDotsUnderUnevenLight) {
    Rows aRows(21, std::vector<int>(41));
    for (std::size_t y = 0; y < 21; ++y)
        for (std::size_t x = 0; x < 41; ++x)
            aRows[y][x] = static_cast<int>(40 + 5 * x) - (x % 10 == 5 && y % 10 == 5 ? 30 : 0);
    const Rows aOut = Binarized(Img(aRows), {11, 11, 15});
    for (std::size_t y = 0; y < 21; ++y)
        for (std::size_t x = 10; x < 31; ++x)
            EXPECT_EQ(aOut[y][x], x % 10 == 5 && y % 10 == 5 ? 0 : 255) << x << ' ' << y;
}

TEST(IpBinarizeLocal2, CopiesAnImageThatIsSmallerThanTheWindow) {
    const ClTestImage image = RandomImage(ClImage::eUInt8, 8, 6, 1, 3);
    EXPECT_EQ(Binarized(image, {9, 1, 0}), Pixels(image));
    EXPECT_EQ(Binarized(image, {1, 7, 0}), Pixels(image));
    EXPECT_EQ(Binarized(image, {std::numeric_limits<long>::max(), 1, 0}), Pixels(image));
    EXPECT_NE(Binarized(image, {8, 6, 0}), Pixels(image));
}

TEST(IpBinarizeLocal2, WorksOntoItself) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 17, 9, 1, 4);
    const Rows aExpected = NaiveThresholded(Pixels(image), {5, 3, 2});
    ClIpBinarizeLocal2 ip;
    EXPECT_EQ(ip.ApplyParam(image, image, 5, 3, 2), 0);
    EXPECT_EQ(Pixels(image), aExpected);
}

TEST(IpBinarizeLocal2, DecidesForOffsetsOfEverySize) {
    const ClTestImage image = RandomImage(ClImage::eUInt8, 7, 5, 1, 5);
    constexpr long nMax = std::numeric_limits<long>::max();
    for (long nOffset : {255L, 256L, 1000L, nMax}) {
        EXPECT_EQ(Binarized(image, {3, 3, nOffset, 1, 2})[2], std::vector<int>(7, 2)) << nOffset;
        EXPECT_EQ(Binarized(image, {3, 3, -nOffset, 1, 2})[2], std::vector<int>(7, 1)) << nOffset;
    }
}

TEST(IpBinarizeLocal2, DecidesForOffsetsBeyondAllPixelsWhereAColumnIsNotCounted) {
    // A black pixel in white: 3 columns of 3 lines sum to 8 * 255 = 2040, of which 2 columns are
    // counted: it is above from an offset beyond 2040 / 6 = 340 on.
    ClTestImage image = FlatImage(ClImage::eUInt8, 7, 5, 1, 255);
    TestSupport::SetSample(image, 3, 2, 0, 0);
    EXPECT_EQ(Binarized(image, {2, 3, 340})[2][3], 0);
    EXPECT_EQ(Binarized(image, {2, 3, 341})[2][3], 255);
    for (long nSizeX : {2L, 4L, 6L})
        for (long nOffset = 250; nOffset < 400; ++nOffset)
            EXPECT_EQ(Binarized(image, {nSizeX, 3, nOffset}),
                      NaiveThresholded(Pixels(image), {nSizeX, 3, nOffset}))
                << nSizeX << ' ' << nOffset;
}

TEST(IpBinarizeLocal2, ComparesTheFirstBytesOfEachLineOfSeveralPlanes) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 10, 6, 3, 6);
    Rows aFirst = Pixels(in); // 30 samples a line
    for (std::vector<int>& aRow : aFirst)
        aRow.resize(10);
    Rows aExpected = NaiveThresholded(aFirst, {3, 3, 5});
    for (std::vector<int>& aRow : aExpected)
        aRow.resize(30, 0);
    EXPECT_EQ(Binarized(in, {3, 3, 5}), aExpected);
}

TEST(IpBinarizeLocal2, ComparesBytesWhateverThePixelType) {
    ClTestImage in = Img(ClImage::eInt8, {{-1, 1, -128, 5}}); // bytes 255, 1, 128, 5
    ClImage out;
    ClIpBinarizeLocal2 ip;
    ip.m_nAboveValue = 100;
    EXPECT_EQ(ip.ApplyParam(in, out, 3, 1, 0), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8);
    EXPECT_EQ(Pixels(out), Rows({{100, 0, 100, 0}}));
    for (unsigned char nType : TestSupport::caPixelTypes) {
        ClTestImage wide = RandomImage(nType, 9, 5, 2, 7);
        EXPECT_EQ(ip.ApplyParam(wide, out, 3, 3, 0), 0);
        EXPECT_EQ(out.DataType(), nType);
        EXPECT_EQ(out.Width(), 9);
    }
}

TEST(IpBinarizeLocal2, ClearsWhatIsNotComparedInAUsedOutput) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 4, 2, 2, 9);
    ClTestImage out = FlatImage(ClImage::eUInt8, 4, 2, 2, 77);
    ClIpBinarizeLocal2 ip;
    EXPECT_EQ(ip.ApplyParam(in, out, 1, 1, 1), 0);
    EXPECT_EQ(Pixels(out), Rows(2, {255, 255, 255, 255, 0, 0, 0, 0}));
}

// Failures

TEST(IpBinarizeLocal2, RefusesAWindowWithoutPixels) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 7, 5, 1, 5);
    const ClTestImage before(image);
    ClIpBinarizeLocal2 ip;
    for (long n : {0L, -1L, std::numeric_limits<long>::min()}) {
        EXPECT_EQ(ip.ApplyParam(image, image, n, 3, 0), -35);
        EXPECT_EQ(ip.ApplyParam(image, image, 3, n, 0), -35);
        EXPECT_EQ(ip.ApplyParam(image, image, 99, n, 0), -35); // before the copy
    }
    ExpectSameImage(image, before);
}

TEST(IpBinarizeLocal2, FindsNothingToCompareInLinesWithoutBytes) {
    unsigned char aBytes[32] = {};
    ClImage noPlanes;
    noPlanes.Attach(aBytes, ClImage::eUInt8, 5, 5, 0, 0, 0);
    ClImage noType;
    noType.Attach(aBytes, ClImage::eUInt8, 5, 5, 1, 0, 0);
    noType.SetDataType(ClImage::eTypeUnknown);
    for (ClImage* pIn : {&noPlanes, &noType}) {
        ClImage out;
        ClIpBinarizeLocal2 ip;
        EXPECT_EQ(ip.ApplyParam(*pIn, out, 3, 3, 0), 0);
        EXPECT_EQ(out.Data(), nullptr);
    }
}

TEST(IpBinarizeLocal2, ReportsAMissingImage) {
    ClIpBinarizeLocal2 ip;
    EXPECT_EQ(ip.Apply(), -10);
    ClImage empty;
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(empty, out, 3, 3, 0), -10);
}

TEST(IpBinarizeLocal2, ReportsMissingMemoryAndKeepsTheInput) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 7, 5, 1, 5);
    const ClTestImage before(image);
    TestSupport::FailEachAllocation([&] {
        ClIpBinarizeLocal2 ip;
        ip.ApplyParam(image, image, 3, 3, 0);
        image = before;
    });
    ExpectSameImage(image, before);
}

} // namespace
