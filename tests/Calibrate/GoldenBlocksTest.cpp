// Blocks that every version has to read alike, made once from the description of the formats. What
// they hold is stated here anew, by the same formulas.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/OpenWarp.h"
#include "Tools/FpImage.h"
#include "support/TestData.h"
#include "support/TestStreams.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using TestSupport::Bytes;
using TestSupport::ClOpenWarp;
using TestSupport::Content;
using TestSupport::DataFile;

namespace {

/// A linear pattern: where its first dot lies, and the steps from column to column and row to row.
struct StPattern {
    ClVector m_First;
    ClVector m_Column;
    ClVector m_Row;
};

void ExpectPattern(const ClCalibrateGeometricData::PointList& List, const StPattern& Pattern) {
    const unsigned long anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    ASSERT_EQ(List.Entries(), 75u);
    unsigned long i = 0;
    for (int c = 0; c < 7; ++c)
        for (unsigned long r = 0; r < anLengths[c]; ++r, ++i) {
            const double dRow = static_cast<double>(r);
            EXPECT_EQ(List[i].x,
                      Pattern.m_First.x + c * Pattern.m_Column.x + dRow * Pattern.m_Row.x)
                << i;
            EXPECT_EQ(List[i].y,
                      Pattern.m_First.y + c * Pattern.m_Column.y + dRow * Pattern.m_Row.y)
                << i;
        }
}

/// What a golden record holds.
struct StGolden {
    const char* m_szFile;
    std::vector<std::uint32_t> m_anNumbers; ///< in the order of the newest layout
    unsigned int m_nBackground;
    StPattern m_Target;
    StPattern m_Actual; ///< of plane 0; each further plane lies half a pixel lower
};

const StPattern cTarget = {{3, 3}, {3, 0}, {0, 3}};
const StPattern cActual = {{2, 6}, {4, 0.25}, {0.25, 6.5}};
const StPattern cTarget500 = {{43, 45}, {39, 0}, {0, 39}};
const StPattern cActual500 = {{30, 40}, {50, 0.25}, {0.5, 95}};

const StGolden caGolden[] = {
    {"old_tags", {390, 1052, 0, 0, 320, 480, 19685, 19685, 1}, 0, cTarget500, cActual500},
    {"layout0", {390, 1052, 0, 0, 320, 480, 19685, 19685, 1}, 0, cTarget500, cActual500},
    {"layout1", {390, 1052, 0, 0, 320, 480, 19685, 19685, 1}, 0, cTarget500, cActual500},
    {"layout2", {30, 80, 0, 0, 24, 36, 1500, 1500, 1}, 0, cTarget, cActual},
    {"layout3", {30, 80, 0, 0, 24, 36, 1500, 1500, 2}, 0, cTarget, cActual},
    {"layout4", {30, 80, 0, 0, 24, 36, 1500, 1500, 1}, 17, cTarget, cActual},
    {"layout5", {30, 80, 2425, 4967, 24, 36, 1500, 1500, 1}, 17, cTarget, cActual},
    {"layout6", {30, 80, 2425, 4967, 24, 36, 1500, 1500, 3}, 17, cTarget, cActual},
};

void Read(const char* szName, ClCalibrateGeometricData& rData) {
    const Bytes aBlock = DataFile("golden/" + std::string(szName) + ".cal");
    ClMemStream Stream(aBlock.data(), aBlock.size());
    static_cast<ClCalibrateDataBase&>(rData).Read(Stream);
}

std::vector<std::uint32_t> NumbersOf(const ClCalibrateGeometricData& Data) {
    return {Data.m_nSourceWidth, Data.m_nSourceHeight, Data.m_nSourcePelsX,
            Data.m_nSourcePelsY, Data.m_nTargetWidth,  Data.m_nTargetHeight,
            Data.m_nTargetPelsX, Data.m_nTargetPelsY,  Data.m_nPlanes};
}

StPattern OfPlane(StPattern pattern, std::uint32_t nPlane) {
    pattern.m_First.y += 0.5 * nPlane;
    return pattern;
}

// The table

/// Behind tags and digest of the golden table.
constexpr std::size_t cnRecordStart = 28;

void LoadGoldenTable(const Bytes& aBlock, ClOpenWarp& rWarp) {
    ClMemStream Stream(aBlock.data() + cnRecordStart, aBlock.size() - cnRecordStart);
    rWarp.Load(Stream);
}

/// The pixel `nIndex` of a correction by the golden table.
int CorrectedPixel(const ClImage& Capture, int nIndex) {
    if (nIndex % 5 == 4)
        return 17;
    int nSum = 0;
    for (int i = 0; i < 16; ++i) {
        const int nWeight = 64 + (i == nIndex % 16 ? 512 * (nIndex % 7 - 3) : 0);
        nSum += nWeight * Capture.LineData(2 * (nIndex / 24) + i / 4)[nIndex % 24 + i % 4];
    }
    return std::clamp((nSum + 1023) >> 10, 0, 255);
}

} // namespace

TEST(GoldenBlocks, OfEveryLayoutHoldTheirNumbersAndPoints) {
    for (const StGolden& Golden : caGolden) {
        SCOPED_TRACE(Golden.m_szFile);
        ClCalibrateGeometricData Data;
        Read(Golden.m_szFile, Data);
        EXPECT_EQ(NumbersOf(Data), Golden.m_anNumbers);
        EXPECT_EQ(Data.m_nBackground, Golden.m_nBackground);
        ExpectPattern(Data.m_aTarget, Golden.m_Target);
        for (std::uint32_t p = 0; p < 3; ++p)
            if (p < Data.m_nPlanes)
                ExpectPattern(Data.m_aActual[p], OfPlane(Golden.m_Actual, p));
            else
                EXPECT_EQ(Data.m_aActual[p].Entries(), 0u);
    }
}

TEST(GoldenBlocks, TheTableBelongsToItsRecord) {
    ClCalibrateGeometricData Data;
    Read("table", Data);
    unsigned char acHash[16];
    Data.GenerateHash(acHash);
    const Bytes aBlock = DataFile("golden/table.pre");
    EXPECT_EQ(Bytes(acHash, acHash + 16), Bytes(aBlock.begin() + 12, aBlock.begin() + 28));
}

TEST(GoldenBlocks, TheTableIsStoredAsItWasLoaded) {
    const Bytes aBlock = DataFile("golden/table.pre");
    ClOpenWarp Warp;
    LoadGoldenTable(aBlock, Warp);
    ClMemStream Stream;
    Warp.Store(Stream);
    EXPECT_EQ(Content(Stream), Bytes(aBlock.begin() + cnRecordStart, aBlock.end()));
}

TEST(GoldenBlocks, TheTableCorrectsACapture) {
    ClOpenWarp Warp;
    LoadGoldenTable(DataFile("golden/table.pre"), Warp);
    ClImage Capture(30, 80, 1, 0, 0);
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 30; ++x)
            Capture.LineData(y)[x] = static_cast<unsigned char>(x * x * 31 + y * 57);
    ClImage Corrected;
    Warp.m_pInImage = &Capture;
    Warp.m_pOutImage = &Corrected;
    Warp.Calibrate();

    ASSERT_EQ(Corrected.Width(), 24);
    ASSERT_EQ(Corrected.Height(), 36);
    for (int i = 0; i < 24 * 36; ++i)
        ASSERT_EQ(Corrected.LineData(i / 24)[i % 24], CorrectedPixel(Capture, i)) << i;
}
