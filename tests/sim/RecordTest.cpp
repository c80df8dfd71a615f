#include "sim/Record.h"

#include "Calibrate/CalibrateGeometricData.h"
#include "Tools/MemStream.h"

#include <gtest/gtest.h>

#include <array>

using sim::ClScanner;
using sim::ClScannerSettings;

namespace {

bool IsFloatExact(double d) {
    return static_cast<double>(static_cast<float>(d)) == d;
}

std::array<unsigned char, 16> Hash(const ClCalibrateGeometricData& Data) {
    std::array<unsigned char, 16> aHash{};
    Data.GenerateHash(aHash.data());
    return aHash;
}

} // namespace

TEST(SimRecord, HoldsSizesAndResolutionsOfScannerAndFrame) {
    const ClScanner Scanner(900);
    ClCalibrateGeometricData Data;

    sim::FillRecord(Scanner, Data);

    EXPECT_EQ(Data.m_nSourceWidth, static_cast<unsigned>(Scanner.Settings().m_nRawWidth));
    EXPECT_EQ(Data.m_nSourceHeight, static_cast<unsigned>(Scanner.Settings().m_nRawHeight));
    EXPECT_EQ(Data.m_nSourcePelsX, 19397U);
    EXPECT_EQ(Data.m_nSourcePelsY, 39735U);
    EXPECT_EQ(Data.m_nTargetWidth, 320U);
    EXPECT_EQ(Data.m_nTargetHeight, 480U);
    EXPECT_EQ(Data.m_nTargetPelsX, 19685U);
    EXPECT_EQ(Data.m_nTargetPelsY, 19685U);
    EXPECT_EQ(Data.m_nPlanes, 1U);
    EXPECT_EQ(Data.m_nBackground, 255);
    EXPECT_EQ(Data.m_aTarget.Entries(), 75U);
    EXPECT_EQ(Data.m_aActual[0].Entries(), 75U);
    EXPECT_EQ(Data.m_aActual[1].Entries(), 0U);
}

TEST(SimRecord, TargetPointsAreThePatternColumnByColumnInTheMiddleOfTheFrame) {
    ClCalibrateGeometricData Data;
    sim::FillRecord(ClScanner(3), Data);
    const double dPitch = 2.0 * 500.0 / 25.4;
    const int aLengths[] = {10, 11, 11, 11, 11, 11, 10};

    unsigned long n = 0;
    for (int nColumn = 0; nColumn < 7; ++nColumn) {
        for (int nRow = 0; nRow < aLengths[nColumn]; ++nRow, ++n) {
            EXPECT_NEAR(Data.m_aTarget[n].x, 160.0 + (nColumn - 3) * dPitch, 2e-5);
            EXPECT_NEAR(Data.m_aTarget[n].y, 240.0 + (nRow - 5) * dPitch, 2e-5);
        }
    }
    EXPECT_EQ(n, 75U);
}

TEST(SimRecord, ActualPointsAreWhereTheDistortionPutsTheTargetPoints) {
    const ClScanner Scanner(8);
    ClCalibrateGeometricData Data;
    sim::FillRecord(Scanner, Data);

    for (unsigned long n = 0; n < 75; ++n) {
        const sim::ClPoint Raw = Scanner.RawFromFrame({Data.m_aTarget[n].x, Data.m_aTarget[n].y});
        EXPECT_NEAR(Data.m_aActual[0][n].x, Raw.x, 1.6e-5); // half a float step
        EXPECT_NEAR(Data.m_aActual[0][n].y, Raw.y, 3.1e-5);
    }
}

// Without distortion the dot in column 4, row 0 lies one pitch right of the middle, five above.
TEST(SimRecord, OfAnIdealScannerIsAScale) {
    ClCalibrateGeometricData Data;
    sim::FillRecord(ClScanner(1, ClScannerSettings()), Data);
    const unsigned long nIndex = 10 + 11 + 11 + 11;

    EXPECT_NEAR(Data.m_aActual[0][nIndex].x, 195.0 + 2.0 * 492.706 / 25.4, 1e-4);
    EXPECT_NEAR(Data.m_aActual[0][nIndex].y, 526.0 - 10.0 * 1009.287 / 25.4, 1e-4);
}

TEST(SimRecord, PointsAreFloatExactSoThatAStreamKeepsThem) {
    ClCalibrateGeometricData Data;
    sim::FillRecord(ClScanner(77), Data);

    for (unsigned long n = 0; n < 75; ++n) {
        EXPECT_TRUE(IsFloatExact(Data.m_aTarget[n].x) && IsFloatExact(Data.m_aTarget[n].y));
        EXPECT_TRUE(IsFloatExact(Data.m_aActual[0][n].x) && IsFloatExact(Data.m_aActual[0][n].y));
    }
}

TEST(SimRecord, BlockReadsBackAsTheSameRecord) {
    const ClScanner Scanner(12);
    ClCalibrateGeometricData Data;
    sim::FillRecord(Scanner, Data);
    const std::vector<unsigned char> aBlock = sim::RecordBlock(Scanner);

    ClMemStream Stream(aBlock.data(), aBlock.size());
    ClCalibrateGeometricData Back;
    Back.Read(Stream);

    // Tags, nine numbers, background, two counted lists of 75 points, checksum.
    EXPECT_EQ(aBlock.size(), 12U + 36U + 1U + 2U * (4U + 75U * 8U) + 4U);
    EXPECT_EQ(Hash(Back), Hash(Data));
    EXPECT_EQ(Back.m_aActual[0][74].x, Data.m_aActual[0][74].x);
    EXPECT_EQ(Back.m_aActual[0][74].y, Data.m_aActual[0][74].y);
}

TEST(SimRecord, FillingReplacesWhatWasThere) {
    ClCalibrateGeometricData Data;
    sim::FillRecord(ClScanner(1), Data);
    sim::FillRecord(ClScanner(2), Data);
    ClCalibrateGeometricData Fresh;
    sim::FillRecord(ClScanner(2), Fresh);

    EXPECT_EQ(Data.m_aTarget.Entries(), 75U);
    EXPECT_EQ(Hash(Data), Hash(Fresh));
}
