#include "sim/BitmapBlock.h"

#include <gtest/gtest.h>

#include <cstdint>

using sim::ClRaster;

namespace {

std::uint32_t Number(const std::vector<unsigned char>& aBytes, std::size_t nOffset, int nCount) {
    std::uint32_t nValue = 0;
    for (int n = nCount - 1; n >= 0; --n)
        nValue = nValue << 8 | aBytes[nOffset + static_cast<std::size_t>(n)];
    return nValue;
}

ClRaster FiveByTwo() {
    ClRaster Raster(5, 2, 0);
    Raster.m_nPelsX = 19397;
    Raster.m_nPelsY = 39735;
    for (int n = 0; n < 10; ++n)
        Raster.m_aPixels[static_cast<std::size_t>(n)] = static_cast<unsigned char>(10 + n);
    return Raster;
}

} // namespace

TEST(SimBitmapBlock, BeginsWithAHeaderOf40Bytes) {
    const std::vector<unsigned char> aBlock = sim::BitmapBlock(FiveByTwo());

    EXPECT_EQ(Number(aBlock, 0, 4), 40U);
    EXPECT_EQ(Number(aBlock, 4, 4), 5U);
    EXPECT_EQ(Number(aBlock, 8, 4), 2U);
    EXPECT_EQ(Number(aBlock, 12, 2), 1U);
    EXPECT_EQ(Number(aBlock, 14, 2), 8U);
    EXPECT_EQ(Number(aBlock, 16, 4), 0U);
    EXPECT_EQ(Number(aBlock, 20, 4), 0U);
    EXPECT_EQ(Number(aBlock, 24, 4), 19397U);
    EXPECT_EQ(Number(aBlock, 28, 4), 39735U);
    EXPECT_EQ(Number(aBlock, 32, 4), 0U);
    EXPECT_EQ(Number(aBlock, 36, 4), 0U);
}

TEST(SimBitmapBlock, HasAGreyPalette) {
    const std::vector<unsigned char> aBlock = sim::BitmapBlock(FiveByTwo());

    EXPECT_EQ(Number(aBlock, 40, 4), 0x00000000U);
    EXPECT_EQ(Number(aBlock, 40 + 4 * 127, 4), 0x007F7F7FU);
    EXPECT_EQ(Number(aBlock, 40 + 4 * 255, 4), 0x00FFFFFFU);
}

TEST(SimBitmapBlock, PadsLinesWithZerosAndStoresTheFirstLineFirst) {
    const std::vector<unsigned char> aBlock = sim::BitmapBlock(FiveByTwo());

    ASSERT_EQ(aBlock.size(), 40U + 1024U + 2U * 8U);
    const std::vector<unsigned char> aPixels(aBlock.begin() + 1064, aBlock.end());
    EXPECT_EQ(aPixels, (std::vector<unsigned char>{10, 11, 12, 13, 14, 0, 0, 0, //
                                                   15, 16, 17, 18, 19, 0, 0, 0}));
}

TEST(SimBitmapBlock, AddsNoPaddingToWidthsOfMultiplesOfFour) {
    EXPECT_EQ(sim::BitmapBlock(ClRaster(8, 3, 1)).size(), 1064U + 24U);
}

TEST(SimBitmapBlock, PutsAFileHeaderInFrontOfTheBlock) {
    const std::vector<unsigned char> aBlock = sim::BitmapBlock(FiveByTwo());
    const std::vector<unsigned char> aFile = sim::BitmapFile(FiveByTwo());

    ASSERT_EQ(aFile.size(), 14U + aBlock.size());
    EXPECT_EQ(aFile[0], 'B');
    EXPECT_EQ(aFile[1], 'M');
    EXPECT_EQ(Number(aFile, 2, 4), aFile.size());
    EXPECT_EQ(Number(aFile, 6, 4), 0U);
    EXPECT_EQ(Number(aFile, 10, 4), 14U + 40U + 1024U);
    EXPECT_EQ(std::vector<unsigned char>(aFile.begin() + 14, aFile.end()), aBlock);
}
