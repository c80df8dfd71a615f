// ContaminationDetection(): what it measures, and what it does not need.

#include "api/Api.h"
#include "support/Records.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

#include <algorithm>

using nlohmann::json;
using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;

namespace {

struct StAnswer {
    long m_nStatus;
    double m_dLevel;
};

StAnswer Measured(void* pHandle, const Bytes& aBlock) {
    StAnswer Answer{1, -1.0};
    Answer.m_nStatus = ContaminationDetection(pHandle, ClApiHandle::Writable(aBlock), aBlock.size(),
                                              &Answer.m_dLevel);
    return Answer;
}

void ExpectAnswer(void* pHandle, const Bytes& aBlock, long nStatus, double dLevel) {
    const StAnswer Answer = Measured(pHandle, aBlock);
    EXPECT_EQ(Answer.m_nStatus, nStatus);
    EXPECT_EQ(Answer.m_dLevel, dLevel);
}

/// A capture of one grey value, 320 by 480 pixels.
Bytes FlatCapture(unsigned char nGrey) {
    Bytes aBlock = Capture(320, 480);
    std::fill(aBlock.begin() + 40 + 1024, aBlock.end(), nGrey);
    return aBlock;
}

void PaintSpeck(Bytes& rBlock, int nX, int nY, int nSide) {
    for (int y = nY; y < nY + nSide; ++y)
        std::fill_n(rBlock.begin() + 40 + 1024 + y * 320 + nX, nSide, 0);
}

/// A block of 8 bits or more without a palette whose header tells a compression.
Bytes Compressed(int nBits, std::uint32_t nCompression, int nWidth = 8) {
    TestSupport::StHead Head;
    Head.m_nWidth = nWidth;
    Head.m_nHeight = 8;
    Head.m_nBits = nBits;
    Head.m_nCompression = nCompression;
    const bool bMasks = nBits > 8 && nCompression == 3;
    return Block(Head,
                 nBits <= 8 ? TestSupport::GreyPalette()
                 : bMasks   ? std::vector<std::uint32_t>{0xFF0000, 0xFF00, 0xFF}
                            : std::vector<std::uint32_t>(),
                 NoisePixels(Head));
}

} // namespace

TEST(Contamination, OfRawCapturesIsThatOfAnIndependentModel) {
    const Bytes aText = DataFile("dynamic/dynamic.json");
    const json Captures = json::parse(aText.begin(), aText.end());
    ASSERT_EQ(Captures.size(), 8u);
    const ClApiHandle Handle;
    int nBelowTheLimit = 0;
    for (const json& Entry : Captures) {
        const std::string Name = Entry["capture"];
        SCOPED_TRACE(Name);
        const double dLevel = Entry["contamination"];
        ExpectAnswer(Handle, DataBlock(Name), 0, dLevel);
        nBelowTheLimit += dLevel < 100.0 ? 1 : 0;
    }
    EXPECT_EQ(nBelowTheLimit, 1);
}

TEST(Contamination, OfAFlatCaptureIsNone) {
    const ClApiHandle Handle;
    for (const int nGrey : {0, 1, 100, 200, 254, 255})
        ExpectAnswer(Handle, FlatCapture(static_cast<unsigned char>(nGrey)), 0, 0.0);
}

TEST(Contamination, GrowsWithTheSpecksUpToItsLimit) {
    const ClApiHandle Handle;
    Bytes aBlock = FlatCapture(230);
    double dLast = 0.0;
    for (int i = 0; i < 3; ++i) {
        PaintSpeck(aBlock, 80 + 60 * i, 200, 5);
        const StAnswer Answer = Measured(Handle, aBlock);
        EXPECT_EQ(Answer.m_nStatus, 0);
        EXPECT_GE(Answer.m_dLevel, dLast + 9 * 0.5); // 9 pixels at least are white, 0.5 each
        dLast = Answer.m_dLevel;
    }
    EXPECT_LT(dLast, 100.0);
    PaintSpeck(aBlock, 100, 280, 40);
    ExpectAnswer(Handle, aBlock, 0, 100.0);
}

TEST(Contamination, IsBlindForTheSensorsFrame) {
    const ClApiHandle Handle;
    Bytes aBlock = FlatCapture(230);
    PaintSpeck(aBlock, 2, 200, 3);
    PaintSpeck(aBlock, 160, 4, 5);
    PaintSpeck(aBlock, 20, 472, 5);
    ExpectAnswer(Handle, aBlock, 0, 0.0);
}

TEST(Contamination, NeedsNoDataAndLooksAtNoOption) {
    const Bytes aBlock = DataBlock("dynamic/empty_raw.bmp");
    const double dLevel = 0.26103896103896107;
    ClApiHandle Handle;
    for (const char* szOption :
         {"DynamicFingerMask=true", "DynamicFingerMask=false", "SensitiveMode=true",
          "MaskIsOutput=true", "GeometricCalibrate=off", "GeometricCalibrate=oddLines"}) {
        Handle.Set(szOption);
        ExpectAnswer(Handle, aBlock, 0, dLevel);
    }
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    ExpectAnswer(Handle, aBlock, 0, dLevel);
    EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
}

TEST(Contamination, LeavesBlockAndWarningLevelsAlone) {
    const ClApiHandle Handle;
    Bytes aBlock = DataBlock("dynamic/dirty_raw.bmp");
    const Bytes aBefore = aBlock;
    double dDirt = -1.0;
    double dDry = -1.0;
    ExpectAnswer(Handle, aBlock, 0, 100.0);
    EXPECT_EQ(aBlock, aBefore);
    EXPECT_EQ(GetCalibrationWarningLevels(Handle, &dDirt, &dDry), 0);
    EXPECT_EQ(dDirt, 0.0);
    EXPECT_EQ(dDry, 0.0);
}

TEST(Contamination, OfTheSmallestCapturesIsMeasuredToo) {
    const ClApiHandle Handle;
    for (const int nSide : {1, 2, 24, 25, 26, 99, 100, 101}) {
        SCOPED_TRACE(nSide);
        ExpectAnswer(Handle, Capture(nSide, 1), 0, 0.0);
        ExpectAnswer(Handle, Capture(1, nSide), 0, 0.0);
        // Of up to 30 columns the frame of the sensor leaves none.
        const StAnswer Square = Measured(Handle, Capture(nSide, nSide));
        EXPECT_EQ(Square.m_nStatus, 0);
        EXPECT_EQ(Square.m_dLevel > 0.0, nSide > 30);
        EXPECT_LE(Square.m_dLevel, 100.0);
    }
}

// Blocks that are no raw captures

TEST(Contamination, OfACompressedBlockIsNone) {
    const ClApiHandle Handle;
    for (const std::uint32_t nCompression : {1u, 2u, 3u})
        for (const int nBits : {8, 24, 32})
            for (const int nWidth : {8, 0}) {
                SCOPED_TRACE(std::to_string(nBits) + " bits, compression " +
                             std::to_string(nCompression));
                ExpectAnswer(Handle, Compressed(nBits, nCompression, nWidth), 0, 0.0);
            }
}

TEST(Contamination, OfAColouredBlockIsNotMeasured) {
    const ClApiHandle Handle;
    for (const int nBits : {24, 32})
        for (const Bytes& aBlock :
             {Capture(8, 8, nBits), Capture(0, 8, nBits), Capture(8, 0, nBits)})
            ExpectAnswer(Handle, aBlock, QMT_ERROR_INTERNAL, 101.0);
}

TEST(Contamination, OfABlockOfAnotherSizeIsNotMeasured) {
    const ClApiHandle Handle;
    Bytes aBlock = Capture(8, 8);
    aBlock.push_back(0);
    ExpectAnswer(Handle, aBlock, QMT_ERROR_TEMPLATE_SIZE, 101.0);
    aBlock.resize(aBlock.size() - 2);
    ExpectAnswer(Handle, aBlock, QMT_ERROR_TEMPLATE_SIZE, 101.0);
}

TEST(Contamination, OfABlockThatIsMissingIsNotMeasured) {
    const ClApiHandle Handle;
    double dLevel = 5.0;
    EXPECT_EQ(ContaminationDetection(Handle, nullptr, 100, &dLevel), QMT_ERROR_BITMAP_PTR);
    EXPECT_EQ(dLevel, 101.0);
    dLevel = 5.0;
    EXPECT_EQ(ContaminationDetection(nullptr, nullptr, 100, &dLevel), QMT_ERROR_NO_HANDLE);
    EXPECT_EQ(dLevel, 101.0);
}
