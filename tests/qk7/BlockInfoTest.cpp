#include "apps/qk7/BlockInfo.h"

#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <limits>

using namespace qk7;
using namespace TestSupport;

namespace {

constexpr std::size_t cnPlanesAt = 44; // in layout 6
constexpr std::size_t cnCountAt = 49;
constexpr std::size_t cnFirstPointAt = 53;
constexpr std::size_t cnLayout6Bytes = 1261; // 12 + 9 * 4 + 1 + 2 * (4 + 75 * 8) + 4

Bytes Layout(int nLayout) {
    return Get(DataPath("records/scanner900_layout" + std::to_string(nLayout) + ".cal"));
}

void ReplaceText(Bytes& rBlock, std::size_t nAt, const std::string& Text) {
    std::copy(Text.begin(), Text.end(), rBlock.begin() + static_cast<std::ptrdiff_t>(nAt));
}

void Replace32(Bytes& rBlock, std::size_t nAt, std::uint32_t nValue) {
    Bytes number;
    AppendBig32(number, nValue);
    ReplaceText(rBlock, nAt, ToText(number));
}

std::string RecordWords(const Bytes& Block) {
    try {
        ReadCalibrationInfo(Block);
    } catch (const ClFailure& failure) {
        return failure.what();
    }
    return "read";
}

// The numbers of the scanner whose record the files hold, in every layout.
void ExpectScanner900(const StCalibrationInfo& Info) {
    EXPECT_EQ(Info.m_Source.m_nWidth, 384U);
    EXPECT_EQ(Info.m_Source.m_nHeight, 1057U);
    EXPECT_EQ(Info.m_Target.m_nWidth, 320U);
    EXPECT_EQ(Info.m_Target.m_nHeight, 480U);
    EXPECT_EQ(Info.m_Target.m_nPelsX, 19685U);
    EXPECT_EQ(Info.m_Target.m_nPelsY, 19685U);
    EXPECT_EQ(Info.m_nPlanes, 1U);
    EXPECT_EQ(Info.m_TargetPoints.m_nCount, 75U);
    EXPECT_EQ(Info.m_TargetPoints.m_afMin,
              (std::array<float, 2>{41.7547607421875F, 51.73363494873047F}));
    EXPECT_EQ(Info.m_TargetPoints.m_afMax,
              (std::array<float, 2>{277.9752197265625F, 445.4344177246094F}));
    ASSERT_EQ(Info.m_aActualPoints.size(), 1U);
    EXPECT_EQ(Info.m_aActualPoints[0].m_nCount, 75U);
    EXPECT_EQ(Info.m_aActualPoints[0].m_afMin,
              (std::array<float, 2>{70.28663635253906F, 132.10971069335938F}));
    EXPECT_EQ(Info.m_aActualPoints[0].m_afMax,
              (std::array<float, 2>{310.90582275390625F, 947.204833984375F}));
    EXPECT_EQ(Info.m_aActualPoints[0].m_nNotFinite, 0U);
    EXPECT_EQ(Info.m_nBytesBehind, 0U);
}

} // namespace

TEST(Qk7Checksum, IsTheOneOfBzip2) {
    const Bytes digits = ToBytes("123456789");

    EXPECT_EQ(Checksum(digits.data(), digits.size()), 0xFC891918U);
    EXPECT_EQ(Checksum(digits.data(), 0), 0U);
}

TEST(Qk7KindOf, LooksAtTheFirstBytesOnly) {
    EXPECT_EQ(KindOf(ToBytes("BM")), EFileKind::eBitmap);
    EXPECT_EQ(KindOf(GreyBlock(1, 1)), EFileKind::eBitmap);
    EXPECT_EQ(KindOf(Layout(6)), EFileKind::eCalibration);
    EXPECT_EQ(KindOf(Get(DataPath("records/scanner900_old_tags.cal"))), EFileKind::eCalibration);
    EXPECT_EQ(KindOf(ToBytes(std::string("CAL\0PRE\0", 8))), EFileKind::ePrecalculated);
    EXPECT_EQ(KindOf(ToBytes("CALIBRATION")), EFileKind::eUnknown);
    EXPECT_EQ(KindOf({}), EFileKind::eUnknown);
}

class Qk7CalibrationLayout : public testing::TestWithParam<int> {};

TEST_P(Qk7CalibrationLayout, ReadsTheFieldsThatItHas) {
    const StCalibrationInfo info = ReadCalibrationInfo(Layout(GetParam()));

    ExpectScanner900(info);
    EXPECT_EQ(info.m_Tag, "CAL");
    EXPECT_EQ(info.m_SubTag, "GEO");
    EXPECT_EQ(info.m_Version, "00" + std::to_string(GetParam()));
    EXPECT_EQ(info.m_nLayout, GetParam());
    EXPECT_EQ(info.m_nBackground.has_value(), GetParam() >= 4);
    EXPECT_EQ(info.m_nBackground.value_or(0), GetParam() >= 4 ? 255 : 0);
    EXPECT_EQ(info.m_Source.m_nPelsX, GetParam() >= 5 ? 19397U : 0U);
    EXPECT_EQ(info.m_Source.m_nPelsY, GetParam() >= 5 ? 39735U : 0U);
    EXPECT_EQ(info.m_Checksum.has_value(), GetParam() == 6);
}

TEST_P(Qk7CalibrationLayout, IsRefusedAtEveryShorterLength) {
    const Bytes block = Layout(GetParam());

    for (std::size_t nSize = 0; nSize < block.size(); ++nSize)
        EXPECT_NE(RecordWords(Bytes(block.data(), block.data() + nSize)), "read") << nSize;
}

INSTANTIATE_TEST_SUITE_P(All, Qk7CalibrationLayout, testing::Range(0, 7));

TEST(Qk7CalibrationInfo, ReadsTheOldTagsAsLayout0) {
    const StCalibrationInfo info =
        ReadCalibrationInfo(Get(DataPath("records/scanner900_old_tags.cal")));

    ExpectScanner900(info);
    EXPECT_EQ(info.m_Tag, "Cal");
    EXPECT_EQ(info.m_SubTag, "Lmv");
    EXPECT_EQ(info.m_Version, "002");
    EXPECT_EQ(info.m_nLayout, 0);
}

TEST(Qk7CalibrationInfo, RefusesTheOldestVersionOfTheOldTags) {
    Bytes block = Get(DataPath("records/scanner900_old_tags.cal"));
    ReplaceText(block, 8, "001");

    EXPECT_EQ(RecordWords(block), "version 001 with the tag Lmv cannot be read");
}

TEST(Qk7CalibrationInfo, ReadsOtherVersionsOfTheOldTagsByTheirNumber) {
    Bytes block = Layout(4);
    ReplaceText(block, 0, "Cal");
    ReplaceText(block, 4, "Lmv");

    EXPECT_EQ(ReadCalibrationInfo(block).m_nLayout, 4);
}

TEST(Qk7CalibrationInfo, ReadsANewerVersionAsTheNewestLayout) {
    Bytes block = Layout(6);
    ReplaceText(block, 8, "0099"); // no terminating zero either

    const StCalibrationInfo info = ReadCalibrationInfo(block);

    EXPECT_EQ(info.m_Version, "0099");
    EXPECT_EQ(info.m_nLayout, 6);
    EXPECT_FALSE(info.m_Checksum->Ok()); // the version is under the checksum
}

TEST(Qk7CalibrationInfo, NamesATagThatIsNone) {
    Bytes first = Layout(6);
    Bytes second = Layout(6);
    ReplaceText(first, 3, "X");
    ReplaceText(second, 4, "geo");

    EXPECT_EQ(RecordWords(first), "does not begin with the tag CAL or Cal of a calibration block");
    EXPECT_EQ(RecordWords(second),
              "does not have the tag GEO or Lmv of a calibration block at byte 4");
}

TEST(Qk7CalibrationInfo, FindsTheStoredChecksumRight) {
    const StCalibrationInfo info = ReadCalibrationInfo(Layout(6));

    ASSERT_TRUE(info.m_Checksum);
    EXPECT_TRUE(info.m_Checksum->Ok());
    EXPECT_EQ(info.m_Checksum->m_nStored, 0xF7337669U); // the last four bytes of the file
}

TEST(Qk7CalibrationInfo, ReportsAFlippedBitByTheChecksum) {
    Bytes block = Layout(6);
    block[cnFirstPointAt + 3] ^= 1;

    const StCalibrationInfo info = ReadCalibrationInfo(block);

    EXPECT_FALSE(info.m_Checksum->Ok());
    EXPECT_EQ(info.m_Checksum->m_nStored, 0xF7337669U);
}

TEST(Qk7CalibrationInfo, CountsTheBytesBehindTheRecord) {
    const Bytes block = Layout(6) + ToBytes("more");

    EXPECT_EQ(ReadCalibrationInfo(block).m_nBytesBehind, 4U);
}

TEST(Qk7CalibrationInfo, RefusesACountThatTheBlockCannotHold) {
    Bytes block = Layout(6);
    Replace32(block, cnCountAt, 0xFFFFFFFFU);

    EXPECT_EQ(RecordWords(block),
              "the list of target points claims 4294967295 points, but only 1208 "
              "bytes follow");
}

TEST(Qk7CalibrationInfo, RefusesMoreThanThreePlanes) {
    Bytes block = Layout(6);
    Replace32(block, cnPlanesAt, 4);

    EXPECT_EQ(RecordWords(block), "claims 4 planes, at most 3 are possible");
}

TEST(Qk7CalibrationInfo, ReadsARecordWithoutPlanes) {
    Bytes block = Layout(5);
    Replace32(block, cnPlanesAt, 0);

    const StCalibrationInfo info = ReadCalibrationInfo(block);

    EXPECT_EQ(info.m_nPlanes, 0U);
    EXPECT_TRUE(info.m_aActualPoints.empty());
    EXPECT_EQ(info.m_nBytesBehind, 604U); // the list that no plane claims
}

TEST(Qk7CalibrationInfo, ReadsAListPerPlane) {
    Bytes block = Layout(5);
    const Bytes list(block.end() - 604, block.end());
    Replace32(block, cnPlanesAt, 3);

    const StCalibrationInfo info = ReadCalibrationInfo(block + list + list);

    ASSERT_EQ(info.m_aActualPoints.size(), 3U);
    EXPECT_EQ(info.m_aActualPoints[2].m_nCount, 75U);
    EXPECT_EQ(info.m_nBytesBehind, 0U);
}

TEST(Qk7CalibrationInfo, CountsPointsThatAreNoNumbersAndKeepsThemOutOfTheExtent) {
    Bytes block = Layout(6);
    Replace32(block, cnFirstPointAt, 0x7FC00000U);      // not a number, x of point 0
    Replace32(block, cnFirstPointAt + 12, 0xFF800000U); // minus infinity, y of point 1

    const StPoints points = ReadCalibrationInfo(block).m_TargetPoints;

    EXPECT_EQ(points.m_nCount, 75U);
    EXPECT_EQ(points.m_nNotFinite, 2U);
    // Points 0 and 1 were the two uppermost of the outer column; eight others have its x.
    EXPECT_EQ(points.m_afMin[0], 41.7547607421875F);
    EXPECT_EQ(points.m_afMax[1], 445.4344177246094F);
}

TEST(Qk7CalibrationInfo, HasNoExtentWithoutFinitePoints) {
    Bytes block(cnCountAt);
    ReplaceText(block, 0, ToText(Layout(5)).substr(0, cnCountAt));
    AppendBig32(block, 1); // one target point
    AppendBig32(block, 0x7F800000U);
    AppendBig32(block, 0);
    AppendBig32(block, 0); // no actual point

    const StCalibrationInfo info = ReadCalibrationInfo(block);

    EXPECT_EQ(info.m_TargetPoints.m_nNotFinite, 1U);
    EXPECT_EQ(info.m_TargetPoints.m_afMax, (std::array<float, 2>{0.0F, 0.0F}));
    EXPECT_EQ(info.m_aActualPoints[0].m_nCount, 0U);
}

TEST(Qk7CalibrationInfo, SurvivesEveryChangedByte) {
    const Bytes block = Layout(6);
    ASSERT_EQ(block.size(), cnLayout6Bytes);

    for (std::size_t i = 0; i < block.size(); ++i)
        for (const int nValue : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes changed = block;
            changed[i] = static_cast<unsigned char>(nValue);
            RecordWords(changed); // reads or throws a ClFailure; anything else ends the test
        }
}
