// Blocks that another process may write to: how often their header is read, and what counts.

#include "TessarinCalibrateSDK/BitmapBlock.h"

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/WatchedHeader.h"
#include "support/BitmapBlocks.h"
#include "support/Records.h"

#include <TessarinCalibrateSDK.h>

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

using TestSupport::Bytes;
using TestSupport::ClWatchedHeader;
using TestSupport::PlausibleRecord;
using TestSupport::StHead;
using TestSupport::StOwnHandle;

namespace {

StHead Head(int nWidth, int nHeight, int nBits = 8) {
    StHead Result;
    Result.m_nWidth = nWidth;
    Result.m_nHeight = nHeight;
    Result.m_nBits = nBits;
    return Result;
}

/// 0 to 39.
std::vector<std::size_t> EachByteOnce() {
    std::vector<std::size_t> anBytes(ClWatchedHeader::cnHeader);
    std::iota(anBytes.begin(), anBytes.end(), std::size_t{0});
    return anBytes;
}

/// Headers of blocks that are larger, smaller or none at all.
std::vector<Bytes> OtherHeaders() {
    StHead Palette = Head(13, 5);
    Palette.m_nClrUsed = 0x3FFFFFFF;
    return {HeaderBytes(Head(13, 500000)), HeaderBytes(Head(13, -5)), HeaderBytes(Head(1, 1, 1)),
            HeaderBytes(Palette),          Bytes(40, 0xFF),           Bytes(40, 0)};
}

Bytes Kept(const ClBitmap& Bitmap) {
    Bytes aBlock(ClBitmap::BlockBytes(*Bitmap.Header()));
    Bitmap.CopyTo(aBlock.data());
    return aBlock;
}

} // namespace

TEST(BitmapBlockReads, CopyTakesEachByteOfTheHeaderOnce) {
    for (const int nBits : {1, 4, 8, 16, 24, 32}) {
        const ClWatchedHeader Watched(UsualBlock(Head(13, 5, nBits)));
        ClBitmap Bitmap;
        EXPECT_EQ(BitmapBlock::Copy(Watched.Data(), Watched.Size(), Bitmap), 0);
        EXPECT_EQ(Watched.Reads(), EachByteOnce());
    }
}

TEST(BitmapBlockReads, CopyRefusesByTheSameReads) {
    const ClWatchedHeader Watched(UsualBlock(Head(13, 5)));
    ClBitmap Bitmap;
    EXPECT_EQ(BitmapBlock::Copy(Watched.Data(), Watched.Size() - 1, Bitmap), -21);
    EXPECT_EQ(Watched.Reads(), EachByteOnce());
}

TEST(BitmapBlockReads, CopyKeepsTheHeaderThatItHasTested) {
    for (const int nBits : {8, 24})
        for (const Bytes& aLater : OtherHeaders()) {
            const Bytes aBlock = UsualBlock(Head(13, 5, nBits));
            const ClWatchedHeader Watched(aBlock, aLater);
            ClBitmap Bitmap;
            ASSERT_EQ(BitmapBlock::Copy(Watched.Data(), Watched.Size(), Bitmap), 0);
            EXPECT_EQ(Kept(Bitmap), aBlock);
        }
}

namespace {

using Call = std::function<long(void* pHandle, unsigned char* pBlock, unsigned long nSize)>;

std::vector<std::pair<const char*, Call>> CallsWithABitmap() {
    return {{"Calibrate",
             [](void* pHandle, unsigned char* pBlock, unsigned long nSize) {
                 Bytes aOut(200000);
                 unsigned long nOut = aOut.size();
                 return Calibrate(pHandle, pBlock, nSize, aOut.data(), &nOut);
             }},
            {"ContaminationDetection",
             [](void* pHandle, unsigned char* pBlock, unsigned long nSize) {
                 double dLevel = 0.0;
                 return ContaminationDetection(pHandle, pBlock, nSize, &dLevel);
             }},
            {"CalibrateCheckEfts",
             [](void* pHandle, unsigned char* pBlock, unsigned long nSize) {
                 double dPercent = 0.0;
                 return CalibrateCheckEfts(pHandle, pBlock, nSize, &dPercent);
             }},
            {"CalibrateGenerateData", CalibrateGenerateData}};
}

/// What a call answers for a capture of 48 x 132 pixels, whose header changes once it was read.
long Answer(const Call& call, const Bytes& aLater) {
    StOwnHandle<> Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    Own.m_Processor.m_bDynamicFingerMask = false;
    Own.m_Processor.m_eGeometricMode = ClIpCalibrateLumivane2::eOddLines;
    const ClWatchedHeader Watched(UsualBlock(Head(48, 132)), aLater);
    const long nCode = call(Own.Handle(), Watched.Data(), Watched.Size());
    EXPECT_EQ(Watched.Reads(), EachByteOnce());
    return nCode;
}

} // namespace

TEST(BitmapBlockReads, EveryCallTakesEachByteOfTheHeaderOnce) {
    for (const auto& [szName, call] : CallsWithABitmap()) {
        SCOPED_TRACE(szName);
        const long nUndisturbed = Answer(call, {});
        for (const Bytes& aLater : OtherHeaders())
            EXPECT_EQ(Answer(call, aLater), nUndisturbed);
    }
}
