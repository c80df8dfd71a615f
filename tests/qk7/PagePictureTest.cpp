#include "apps/qk7/PagePicture.h"

#include "apps/qk7/BitmapInfo.h"
#include "apps/qk7/Png.h"

#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

using namespace TestSupport;
using qk7::Base64;
using qk7::Bytes;
using qk7::PagePicture;
using qk7::WithLinesPaired;

namespace {

constexpr std::size_t cnPixelsAt = 40 + 1024;

/// A block with a resolution.
Bytes BlockOf(int nWidth, int nHeight, std::uint32_t nPelsX, std::uint32_t nPelsY) {
    Bytes block = GreyBlock(nWidth, nHeight);
    for (std::size_t i = 0; i < 4; ++i) {
        block[24 + i] = static_cast<unsigned char>(nPelsX >> (8 * i));
        block[28 + i] = static_cast<unsigned char>(nPelsY >> (8 * i));
    }
    return block;
}

} // namespace

TEST(Qk7PagePicture, EncodesInBase64) {
    EXPECT_EQ(Base64({}), "");
    EXPECT_EQ(Base64(ToBytes("f")), "Zg==");
    EXPECT_EQ(Base64(ToBytes("fo")), "Zm8=");
    EXPECT_EQ(Base64(ToBytes("foo")), "Zm9v");
    EXPECT_EQ(Base64(ToBytes("foob")), "Zm9vYg==");
    EXPECT_EQ(Base64({0xFB, 0xFF, 0xFE}), "+//+");
}

TEST(Qk7PagePicture, AveragesPairsOfLines) {
    // Lines of x * 7 + y * 13; 3 columns padded to 4.
    const Bytes paired = WithLinesPaired(BlockOf(3, 5, 100, 200));
    const qk7::StBitmapInfo info = qk7::ReadBitmapInfo(paired);
    EXPECT_EQ(info.m_nWidth, 3);
    EXPECT_EQ(info.m_nHeight, 2);
    EXPECT_EQ(info.m_nPelsX, 100);
    EXPECT_EQ(info.m_nPelsY, 100);
    ASSERT_EQ(paired.size(), cnPixelsAt + 8);
    EXPECT_EQ(paired[cnPixelsAt], (0 + 13 + 1) / 2);
    EXPECT_EQ(paired[cnPixelsAt + 2], (14 + 27 + 1) / 2);
    EXPECT_EQ(paired[cnPixelsAt + 4], (26 + 39 + 1) / 2);
}

TEST(Qk7PagePicture, IsShownInTheSizeOfACorrectedImage) {
    // 97 columns and 199 lines of 19397 and 39735 to the metre are 5.0008 and 5.0082 mm: 98.4 and
    // 98.6 pixels of 19685 to the metre.
    const report::StPicture picture = PagePicture(BlockOf(97, 199, 19397, 39735));
    EXPECT_EQ(picture.m_nWidth, 98);
    EXPECT_EQ(picture.m_nHeight, 99);
}

TEST(Qk7PagePicture, IsThePngOfItsBlock) {
    const Bytes even = BlockOf(20, 30, 19685, 19685);
    EXPECT_EQ(PagePicture(even).m_sSource,
              "data:image/png;base64," + Base64(qk7::PngOfBlock(even)));
    const Bytes dense = BlockOf(20, 30, 19397, 39735);
    EXPECT_EQ(PagePicture(dense).m_sSource,
              "data:image/png;base64," + Base64(qk7::PngOfBlock(WithLinesPaired(dense))));
}

TEST(Qk7PagePicture, IsNoneOfABlockThatIsNotPlainGrey) {
    Bytes block = GreyBlock(20, 30);
    block[14] = 24;
    EXPECT_EQ(PagePicture(block).m_sSource, "");
    EXPECT_EQ(WithLinesPaired(block), block);
}
