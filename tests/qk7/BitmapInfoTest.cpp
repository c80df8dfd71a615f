#include "apps/qk7/BitmapInfo.h"

#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

using namespace qk7;
using namespace TestSupport;

namespace {

struct StHeader {
    std::uint32_t m_nWidth = 321;
    std::uint32_t m_nHeight = 2;
    std::uint16_t m_nBits = 8;
    std::uint32_t m_nCompression = 0;
    std::uint32_t m_nColours = 0;
};

Bytes HeaderOf(const StHeader& Header) {
    Bytes block;
    AppendLittle(block, 40, 4);
    AppendLittle(block, Header.m_nWidth, 4);
    AppendLittle(block, Header.m_nHeight, 4);
    AppendLittle(block, 1, 2);
    AppendLittle(block, Header.m_nBits, 2);
    AppendLittle(block, Header.m_nCompression, 4);
    AppendLittle(block, 77, 4);
    AppendLittle(block, 19685, 4);
    AppendLittle(block, 0xFFFFFFFFU, 4);
    AppendLittle(block, Header.m_nColours, 4);
    AppendLittle(block, 5, 4);
    return block;
}

std::optional<std::uint64_t> Implied(const StHeader& Header) {
    return ReadBitmapInfo(HeaderOf(Header)).m_nImpliedBytes;
}

std::string BitmapWords(const Bytes& Content) {
    try {
        ReadBitmapInfo(Content);
    } catch (const ClFailure& failure) {
        return failure.what();
    }
    return "read";
}

} // namespace

TEST(Qk7BitmapInfo, ReadsTheHeaderOfABlock) {
    const StBitmapInfo info = ReadBitmapInfo(HeaderOf({}));

    EXPECT_FALSE(info.m_bFileHeader);
    EXPECT_EQ(info.m_nWidth, 321);
    EXPECT_EQ(info.m_nHeight, 2);
    EXPECT_EQ(info.m_nPlanes, 1);
    EXPECT_EQ(info.m_nBits, 8);
    EXPECT_EQ(info.m_nCompression, 0U);
    EXPECT_EQ(info.m_nImageSize, 77U);
    EXPECT_EQ(info.m_nPelsX, 19685);
    EXPECT_EQ(info.m_nPelsY, -1);
    EXPECT_EQ(info.m_nColours, 0U);
    EXPECT_EQ(info.m_nImportant, 5U);
    EXPECT_EQ(info.m_nBlockBytes, 40U);
}

TEST(Qk7BitmapInfo, ReadsTheFileHeaderInFront) {
    const StBitmapInfo info = ReadBitmapInfo(GreyFileHeader(7, 3) + GreyBlock(7, 3));

    EXPECT_TRUE(info.m_bFileHeader);
    EXPECT_EQ(info.m_nFileSize, 14U + 40U + 1024U + 24U);
    EXPECT_EQ(info.m_nPixelOffset, 1078U);
    EXPECT_EQ(info.m_nWidth, 7);
    EXPECT_EQ(info.m_nBlockBytes, 40U + 1024U + 24U);
    EXPECT_EQ(info.m_nImpliedBytes, 40U + 1024U + 24U);
}

TEST(Qk7BitmapInfo, ImpliesThePaddedLinesAndThePalette) {
    EXPECT_EQ(Implied({321, 2, 8, 0, 0}), 40U + 1024U + 2U * 324U);
    EXPECT_EQ(Implied({321, 2, 8, 0, 256}), 40U + 1024U + 2U * 324U);
    EXPECT_EQ(Implied({321, 2, 8, 0, 16}), 40U + 64U + 2U * 324U);
    EXPECT_EQ(Implied({33, 3, 1, 0, 0}), 40U + 8U + 3U * 8U);
    EXPECT_EQ(Implied({3, 1, 4, 0, 0}), 40U + 64U + 4U);
    EXPECT_EQ(Implied({3, 2, 24, 0, 0}), 40U + 2U * 12U);
    EXPECT_EQ(Implied({3, 2, 16, 3, 9}), 40U + 12U + 2U * 8U);
    EXPECT_EQ(Implied({3, 2, 32, 0, 2}), 40U + 8U + 2U * 12U);
}

TEST(Qk7BitmapInfo, ImpliesNothingForNumbersThatAreNotThoseOfAnImage) {
    EXPECT_FALSE(Implied({0, 2}));
    EXPECT_FALSE(Implied({2, 0}));
    EXPECT_FALSE(Implied({0xFFFFFFFFU, 2}));
    EXPECT_FALSE(Implied({2, 0x80000000U})) << "lines from the top";
    EXPECT_FALSE(Implied({0x7FFFFFFFU, 0x7FFFFFFFU, 32}));
    EXPECT_FALSE(Implied({1, 1, 8, 0, 0x40000000U}));
    EXPECT_FALSE(Implied({1, 1, 0}));
    EXPECT_FALSE(Implied({1, 1, 33}));
}

TEST(Qk7BitmapInfo, NamesAHeaderOfAnotherSize) {
    Bytes block = HeaderOf({});
    block[0] = 124;

    EXPECT_EQ(BitmapWords(block), "has an info header of 124 bytes, one of 40 bytes is expected. "
                                  "Save it as a Windows 3 bitmap.");
}

TEST(Qk7BitmapInfo, IsRefusedWithACutHeader) {
    const Bytes file = GreyFileHeader(7, 3) + HeaderOf({});

    for (std::size_t nSize = 2; nSize < file.size(); ++nSize)
        EXPECT_NE(BitmapWords(Bytes(file.data(), file.data() + nSize)), "read") << nSize;
    EXPECT_EQ(BitmapWords(Bytes(file.data(), file.data() + 20)),
              "ends at byte 20, but the info header at byte 18 needs 4 bytes");
    EXPECT_EQ(BitmapWords(file), "read");
}

TEST(Qk7BitmapBytes, IsTheBlockOfAGreyImage) {
    EXPECT_EQ(BitmapBytes(7, 3, 1), GreyBlock(7, 3).size());
    EXPECT_EQ(BitmapBytes(320, 480, 1), 154664U);
    EXPECT_EQ(BitmapBytes(7, 3, 3), 40U + 1024U + 3U * 24U);
}

TEST(Qk7FileHeader, IsRemovedWhereThereIsOne) {
    Bytes with = GreyFileHeader(7, 3) + GreyBlock(7, 3);
    Bytes without = GreyBlock(7, 3);
    Bytes cut = ToBytes("BM12345");

    RemoveFileHeader(with);
    RemoveFileHeader(without);
    RemoveFileHeader(cut);

    EXPECT_EQ(with, GreyBlock(7, 3));
    EXPECT_EQ(without, GreyBlock(7, 3));
    EXPECT_EQ(cut, ToBytes("BM12345"));
}

TEST(Qk7FileHeader, TellsSizeAndPixelOffset) {
    EXPECT_EQ(FileHeaderFor(GreyBlock(7, 3)), GreyFileHeader(7, 3));
}
