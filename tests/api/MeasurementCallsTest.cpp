// ContaminationDetection() and CalibrateCheckEfts(): their tests and what they leave alone.

#include "api/Api.h"
#include "support/DotTargets.h"
#include "support/Records.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;

namespace {

/// A block of a header alone, whose size is not what it implies.
Bytes Mismatched() {
    Bytes aBlock = Capture(8, 8);
    aBlock.push_back(0);
    return aBlock;
}

Bytes WithFileHeader() {
    Bytes aBlock = Capture(8, 8);
    aBlock[0] = 'B';
    aBlock[1] = 'M';
    return aBlock;
}

} // namespace

// Contamination

TEST(ContaminationDetection, TestsTheResultBeforeTheHandle) {
    EXPECT_EQ(ContaminationDetection(nullptr, nullptr, 0, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
    const ClApiHandle Handle;
    EXPECT_EQ(ContaminationDetection(Handle, nullptr, 0, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
}

TEST(ContaminationDetection, LeavesTheResultOf101OnEveryFailure) {
    const ClApiHandle Handle;
    const auto ExpectNotMeasured = [](void* pHandle, const Bytes& aBlock, long nExpected) {
        double dResult = 5.0;
        unsigned char* pBitmap = aBlock.empty() ? nullptr : ClApiHandle::Writable(aBlock);
        EXPECT_EQ(ContaminationDetection(pHandle, pBitmap, aBlock.size(), &dResult), nExpected);
        EXPECT_EQ(dResult, 101.0);
    };
    ExpectNotMeasured(nullptr, Capture(8, 8), QMT_ERROR_NO_HANDLE);
    ExpectNotMeasured(nullptr, Bytes(), QMT_ERROR_NO_HANDLE);
    ExpectNotMeasured(Handle, Bytes(), QMT_ERROR_BITMAP_PTR);
    ExpectNotMeasured(Handle, Bytes(39), QMT_ERROR_TEMPLATE_SIZE);
    ExpectNotMeasured(Handle, Mismatched(), QMT_ERROR_TEMPLATE_SIZE);
    ExpectNotMeasured(Handle, WithFileHeader(), QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER);
    ExpectNotMeasured(Handle, Capture(8, 8, 4), QMT_ERROR_BITMAP_BITCOUNT);
    ExpectNotMeasured(Handle, Capture(0, 8), QMT_ERROR_INTERNAL);
    ExpectNotMeasured(Handle, Capture(8, 8, 24), QMT_ERROR_INTERNAL);
}

// Accuracy

TEST(CalibrateCheckEfts, TestsHandleBitmapResultBlockAndReadinessInOrder) {
    ClApiHandle Handle;
    Bytes aMismatched = Mismatched();
    Bytes aDepth = Capture(8, 8, 4);
    double dResult = 5.0;
    EXPECT_EQ(CalibrateCheckEfts(nullptr, nullptr, 0, nullptr), QMT_ERROR_NO_HANDLE);
    EXPECT_EQ(CalibrateCheckEfts(Handle, nullptr, 0, nullptr), QMT_ERROR_BITMAP_PTR);
    EXPECT_EQ(CalibrateCheckEfts(Handle, aMismatched.data(), aMismatched.size(), nullptr),
              QMT_ERROR_TEMPLATE_PTR_NULL);
    EXPECT_EQ(CalibrateCheckEfts(Handle, aMismatched.data(), aMismatched.size(), &dResult),
              QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(CalibrateCheckEfts(Handle, aDepth.data(), aDepth.size(), &dResult),
              QMT_ERROR_NOT_INITIALIZED);
    Handle.SetData(RecordBlock(PlausibleRecord()));
    EXPECT_EQ(CalibrateCheckEfts(Handle, aDepth.data(), aDepth.size(), &dResult),
              QMT_ERROR_BITMAP_BITCOUNT);
    EXPECT_EQ(dResult, 5.0);
}

TEST(CalibrateCheckEfts, TestsReadinessBeforeWhatOnlyImagesRefuse) {
    ClApiHandle Handle;
    double dResult = 5.0;
    const auto Status = [&](Bytes aBlock) {
        return CalibrateCheckEfts(Handle, aBlock.data(), aBlock.size(), &dResult);
    };
    for (const Bytes& aBlock : {Capture(8, 8, 4), Capture(8, 8, 24), Capture(0, 8)})
        EXPECT_EQ(Status(aBlock), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(Status(WithFileHeader()), QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER);
    Handle.SetData(RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Status(Capture(8, 8, 24)), QMT_ERROR_BITMAP_PLANE);
    EXPECT_EQ(Status(Capture(0, 8)), QMT_ERROR_INTERNAL);
    EXPECT_EQ(dResult, 5.0);
}

TEST(CalibrateCheckEfts, KeepsTheData) {
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    const Bytes aTable = Handle.PrecalculatedData();
    const Bytes aCorrected = Handle.Corrected(Capture(48, 132));
    for (const auto& [aBlock, nExpected] :
         {std::pair(Capture(8, 8, 24), QMT_ERROR_BITMAP_PLANE),       // refused before the work,
          {Capture(48, 132), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE}, // within it,
          {TargetBlock(TestSupport::CorrectedTarget()), QMT_SUCCESS}}) {
        double dResult = 0.0;
        Bytes aIn = aBlock;
        EXPECT_EQ(CalibrateCheckEfts(Handle, aIn.data(), aIn.size(), &dResult), nExpected);
        EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
        EXPECT_EQ(Handle.PrecalculatedData(), aTable);
        EXPECT_EQ(Handle.Corrected(Capture(48, 132)), aCorrected);
    }
}
