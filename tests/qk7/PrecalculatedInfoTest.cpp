#include "apps/qk7/BlockInfo.h"

#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

using namespace qk7;
using namespace TestSupport;

namespace {

constexpr std::size_t cnTableAt = 28 + 94;
constexpr std::uint32_t cnMagic = 0x4B504600;

Bytes Tags(const std::string& First, const std::string& Second, const std::string& Third) {
    Bytes tags;
    for (const std::string& tag : {First, Second, Third})
        tags = tags + ToBytes(tag + std::string(4 - tag.size(), '\0'));
    return tags;
}

/// A block for a frame of 5 x 2 pixels and one plane, field by field. The entries 0, 3 and 9 have
/// no source.
Bytes Block() {
    Bytes block = Tags("CAL", "PRE", "001");
    for (unsigned char i = 0; i < 16; ++i)
        block.push_back(static_cast<unsigned char>(i * 17));
    block = block + Tags("PRE", "GEO", "001");
    for (const std::uint32_t nNumber : {384U, 1057U, 5U, 2U, 19685U, 19684U, 1U})
        AppendBig32(block, nNumber);
    block.push_back(255);
    AppendBig32(block, cnMagic);
    AppendBig32(block, 1);
    block.push_back(1);
    for (const std::uint32_t nNumber : {5U, 2U, 36U, 19685U, 19684U, 0U})
        AppendBig32(block, nNumber);
    block.resize(cnTableAt); // the value range, which nothing reads
    for (std::uint32_t i = 0; i < 10; ++i) {
        AppendLittle(block, i == 0 || i == 3 || i == 9 ? 0xFFFFFFFFU : 1000 * i, 4);
        AppendLittle(block, 0xFFFFFFFFFFFFFFFFU, 8); // weights, negative ones too
        block.resize(cnTableAt + (i + 1) * 36);
    }
    AppendBig32(block, cnMagic);
    return block;
}

std::string TableWords(const Bytes& Content) {
    try {
        ReadPrecalculatedInfo(Content);
    } catch (const ClFailure& failure) {
        return failure.what();
    }
    return "read";
}

Bytes With(std::size_t nAt, unsigned char nValue) {
    Bytes block = Block();
    block[nAt] = nValue;
    return block;
}

} // namespace

TEST(Qk7PrecalculatedInfo, ReadsFrameHashAndTable) {
    const StPrecalculatedInfo info = ReadPrecalculatedInfo(Block());

    EXPECT_EQ(info.m_Version, "001");
    EXPECT_EQ(info.m_Hash, "00112233445566778899aabbccddeeff");
    EXPECT_EQ(info.m_Source.m_nWidth, 384U);
    EXPECT_EQ(info.m_Source.m_nHeight, 1057U);
    EXPECT_EQ(info.m_Target.m_nWidth, 5U);
    EXPECT_EQ(info.m_Target.m_nHeight, 2U);
    EXPECT_EQ(info.m_Target.m_nPelsX, 19685U);
    EXPECT_EQ(info.m_Target.m_nPelsY, 19684U);
    EXPECT_EQ(info.m_nPlanes, 1U);
    EXPECT_EQ(info.m_nBackground, 255);
    EXPECT_EQ(info.m_nEntries, 10U);
    EXPECT_EQ(info.m_nWithoutSource, 3U);
    EXPECT_EQ(info.m_nBytesBehind, 0U);
}

TEST(Qk7PrecalculatedInfo, CountsTheBytesBehind) {
    EXPECT_EQ(ReadPrecalculatedInfo(Block() + ToBytes("xy")).m_nBytesBehind, 2U);
}

TEST(Qk7PrecalculatedInfo, NamesTheFieldThatIsNotTheExpected) {
    const struct {
        std::size_t m_nAt;
        const char* m_szField;
    } aFields[] = {
        {0, "the first tag"},
        {7, "the second tag"},
        {10, "the version"},
        {28, "the first tag of the warp"},
        {32, "the second tag of the warp"},
        {38, "the version of the warp"},
        {28 + 36, "the number of planes"},
        {28 + 41, "the magic of the table"},
        {28 + 45, "the version of the table"},
        {28 + 49, "the data type of the table"},
        {28 + 53, "the width of the table"},
        {28 + 57, "the height of the table"},
        {28 + 61, "the entry size of the table"},
        {28 + 65, "the resolution of the table"},
        {28 + 69, "the resolution of the table"},
        {28 + 73, "the content of the table"},
        {cnTableAt + 360, "the end magic of the table"},
    };
    for (const auto& field : aFields)
        EXPECT_EQ(TableWords(With(field.m_nAt, '7')),
                  field.m_szField + std::string(" of the precalculated block is not the expected"));
}

TEST(Qk7PrecalculatedInfo, IsRefusedAtEveryShorterLength) {
    const Bytes block = Block();

    for (std::size_t nSize = 0; nSize < block.size(); ++nSize)
        EXPECT_NE(TableWords(Bytes(block.data(), block.data() + nSize)), "read") << nSize;
}

TEST(Qk7PrecalculatedInfo, SaysThatABlockHoldsNoTable) {
    EXPECT_EQ(TableWords(With(28 + 39, 0)),
              "holds no table: it was stored before the table was prepared");
}

TEST(Qk7PrecalculatedInfo, RefusesATableThatNoBlockHolds) {
    Bytes block = Block();
    for (const std::size_t nAt :
         {28 + 20, 28 + 24, 28 + 50, 28 + 54}) // both sizes, 32 bits of ones
        std::fill_n(block.begin() + static_cast<std::ptrdiff_t>(nAt), 4, 0xFF);
    block[28 + 39] = 3;
    block[28 + 61] = 3 * 36;

    EXPECT_NE(TableWords(block).find("but the table at byte 122 needs"), std::string::npos)
        << TableWords(block);
}

TEST(Qk7PrecalculatedBytes, IsHeaderTableAndEndMagic) {
    EXPECT_EQ(PrecalculatedBytes({320, 480, 19685, 19685}, 1), 28U + 94U + 5529600U + 4U);
    EXPECT_EQ(PrecalculatedBytes({5, 2, 0, 0}, 1), Block().size());
}
