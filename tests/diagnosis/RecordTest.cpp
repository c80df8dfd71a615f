/// What is read from blocks, and what is refused.

#include "diagnosis/Record.h"

#include "diagnosis/Calibrations.h"
#include "sim/BitmapBlock.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace diagnosis;

TEST(DiagnosisRecord, ReadsPointsAndResolutions) {
    const sim::ClScanner Scanner(4000);
    const StRecord Record = ReadRecord(sim::RecordBlock(Scanner));
    ASSERT_EQ(Record.m_aFound.size(), cnDots);
    for (std::size_t i = 0; i < cnDots; ++i) {
        const StPoint& Target = Record.m_aTarget[i];
        const sim::ClPoint Raw = Scanner.RawFromFrame({Target.m_dX, Target.m_dY});
        EXPECT_NEAR(Record.m_aFound[i].m_dX, Raw.x, 2e-4) << i; // 32-bit floats
        EXPECT_NEAR(Record.m_aFound[i].m_dY, Raw.y, 2e-4) << i;
    }
    EXPECT_NEAR(Record.m_aTarget[65].m_dX - Record.m_aTarget[0].m_dX, 6 * 2.0 * 19.685, 0.01);
    EXPECT_EQ(Record.m_Source.m_dX, 19.397);
    EXPECT_EQ(Record.m_Source.m_dY, 39.735);
    EXPECT_EQ(Record.m_Target.m_dX, 19.685);
    EXPECT_EQ(Record.m_Target.m_dY, 19.685);
    EXPECT_EQ(Record.m_nTargetWidth, 320);
    EXPECT_EQ(Record.m_nTargetHeight, 480);
}

TEST(DiagnosisRecord, RefusesEveryBeginningOfABlock) {
    const Bytes aBlock = sim::RecordBlock(sim::ClScanner(4000));
    for (std::size_t n = 0; n < aBlock.size(); n += 7)
        EXPECT_THROW(ReadRecord(Bytes(aBlock.begin(), aBlock.begin() + static_cast<long>(n))),
                     std::invalid_argument)
            << n;
}

TEST(DiagnosisRecord, RefusesEveryDamagedByte) {
    const Bytes aBlock = sim::RecordBlock(sim::ClScanner(4000));
    for (std::size_t n = 0; n < aBlock.size(); n += 11) {
        Bytes aDamaged = aBlock;
        aDamaged[n] = static_cast<unsigned char>(aDamaged[n] ^ 0x40);
        EXPECT_THROW(ReadRecord(aDamaged), std::invalid_argument) << n;
    }
}

TEST(DiagnosisRecord, ReadsGreySamplesWithLineZeroAsStored) {
    sim::ClRaster Raster(5, 3, 0); // a width with padding
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            Raster.At(x, y) = static_cast<unsigned char>(10 * y + x);
    Raster.m_nPelsX = Raster.m_nPelsY = 19685;
    const StGrey Image = ReadGrey(sim::BitmapBlock(Raster));

    ASSERT_EQ(Image.m_nWidth, 5);
    ASSERT_EQ(Image.m_nHeight, 3);
    EXPECT_EQ(Image.m_aSamples.size(), 15U);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(Image.At(x, y), 10 * y + x);
}

TEST(DiagnosisRecord, RefusesWhatIsNoBitmap) {
    Bytes aCut = sim::BitmapBlock(sim::ClRaster(5, 3, 0));
    aCut.pop_back();

    EXPECT_THROW(ReadGrey({}), std::invalid_argument);
    EXPECT_THROW(ReadGrey(Bytes(40, 0)), std::invalid_argument);
    EXPECT_THROW(ReadGrey(aCut), std::invalid_argument);
}

// Columns of 10, 11, 11, 11, 11, 11 and 10.
TEST(DiagnosisRecord, KnowsThePlacesOfThePattern) {
    const auto is = [](std::size_t nDot, int nColumn, int nRow) {
        const StPatternPlace Place = PatternPlace(nDot);
        return Place.m_nColumn == nColumn && Place.m_nRow == nRow;
    };

    EXPECT_TRUE(is(0, 1, 1));
    EXPECT_TRUE(is(9, 1, 10));
    EXPECT_TRUE(is(10, 2, 1));
    EXPECT_TRUE(is(64, 6, 11));
    EXPECT_TRUE(is(65, 7, 1));
    EXPECT_TRUE(is(74, 7, 10));
}
