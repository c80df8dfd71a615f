// The precalculated block: the fast start, and what ties it to one calibration block.

#include "api/Api.h"
#include "api/LoadedHandle.h"
#include "api/WaitingHandle.h"
#include "support/Tables.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::HashOf;
using TestSupport::PlausibleRecord;
using TestSupport::PrecalculatedBlock;
using TestSupport::RecordBlock;
using TestSupport::StLoaded;
using TestSupport::StRecord;
using TestSupport::StWaiting;
using TestSupport::TableOf;

namespace {

constexpr unsigned long cnBlock = 28 + 94 + 40 * 60 * 36 + 4;

/// The block of a handle with this record whose warp has no table: all its numbers are 0.
Bytes BlockWithoutTable(const StRecord& Record) {
    TestSupport::StTable None;
    None.m_nSourceWidth = None.m_nSourceHeight = 0;
    None.m_nTargetWidth = None.m_nTargetHeight = 0;
    None.m_nTargetPelsX = None.m_nTargetPelsY = 0;
    None.m_nPlanes = None.m_nBackground = 0;
    None.m_nImageWidth = None.m_nImageHeight = None.m_nPixelBytes = 0;
    None.m_nImagePelsX = None.m_nImagePelsY = 0;
    return PrecalculatedBlock(None, HashOf(Record));
}

} // namespace

TEST(CalibratePrecalculatedData, GivesTheSameCorrectionOnAnotherHandle) {
    StLoaded First;
    const Bytes aBlock = First.PrecalculatedData();
    EXPECT_EQ(aBlock.size(), cnBlock);
    StWaiting Second;
    ASSERT_EQ(Second.SetPrecalculatedData(aBlock), 0);
    EXPECT_EQ(Second.Corrected(Capture(48, 132)), First.Corrected(Capture(48, 132)));
    EXPECT_EQ(Second.PrecalculatedData(), aBlock);
}

TEST(CalibratePrecalculatedData, ReplacesAPreparedTableWhateverTheOption) {
    StLoaded Handle;
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    ASSERT_EQ(Handle.SetPrecalculatedData(aBlock), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), aBlock);
    // One entry takes its sample one line and one column behind its offset.
    const Bytes aIn = Capture(10, 9);
    const Bytes aOut = Handle.Corrected(aIn);
    ASSERT_EQ(TestSupport::Width(aOut), 3);
    EXPECT_EQ(TestSupport::HeaderField(aOut, 24), 100);
    EXPECT_EQ(Bytes(aOut.end() - 8 + 2, aOut.end() - 8 + 4),
              (Bytes{77, 0})); // background, line end
}

TEST(CalibratePrecalculatedData, IsPreparedByTheFirstRunWhereItIsMissing) {
    StWaiting Handle;
    unsigned long nSize = 0;
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 28u + 98); // no table yet
    EXPECT_EQ(Handle.Corrected(Capture(48, 132)), StLoaded().Corrected(Capture(48, 132)));
    EXPECT_EQ(Handle.PrecalculatedData(), StLoaded().PrecalculatedData());
}

TEST(CalibratePrecalculatedData, ThatIsMissingFailsTheRunsOfPointsWithoutAMapping) {
    StRecord Record = PlausibleRecord();
    Record.m_aTarget[1] = Record.m_aTarget[0];
    StWaiting Handle(Record);
    const Bytes aWithout = Handle.PrecalculatedData();
    EXPECT_EQ(aWithout, BlockWithoutTable(Record));
    for (int i = 0; i < 2; ++i) {
        long nStatus = 0;
        Handle.Corrected(Capture(i == 0 ? 48 : 5, 132), &nStatus); // before the size is looked at
        EXPECT_EQ(nStatus, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
        EXPECT_TRUE(Handle.IsReady());
        EXPECT_EQ(Handle.PrecalculatedData(), aWithout);
    }
    EXPECT_EQ(Handle.SetPrecalculatedData(aWithout), QMT_ERROR_UNEXPECTED_SIGNATURE);
}

TEST(CalibratePrecalculatedData, WithoutATableIsRefused) {
    StWaiting Handle;
    const Bytes aBlock = Handle.PrecalculatedData();
    EXPECT_EQ(Handle.SetPrecalculatedData(aBlock), QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_FALSE(Handle.IsReady());
}

TEST(CalibratePrecalculatedData, BeginsWithHeaderAndHash) {
    StLoaded Handle;
    const Bytes aBlock = Handle.PrecalculatedData();
    const Bytes aHeader = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    EXPECT_TRUE(std::equal(aBlock.begin(), aBlock.begin() + 40, aHeader.begin()));
}

// Size protocol

TEST(CalibratePrecalculatedData, TellsTheNeededSizeBeforeItWantsABlock) {
    ClApiHandle Empty;
    unsigned long nSize = 7;
    EXPECT_EQ(CalibrateGetPrecalculatedData(Empty, nullptr, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
    EXPECT_EQ(CalibrateGetPrecalculatedData(Empty, nullptr, &nSize), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(nSize, 7u);

    StLoaded Handle;
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, cnBlock);
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_PTR);
    Bytes aOut(cnBlock + 10, 0xEE);
    nSize = cnBlock - 1;
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, aOut.data(), &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(aOut, Bytes(cnBlock + 10, 0xEE));
    nSize = aOut.size();
    EXPECT_EQ(CalibrateGetPrecalculatedData(Handle, aOut.data(), &nSize), QMT_SUCCESS);
    EXPECT_EQ(nSize, cnBlock);
    EXPECT_EQ(Bytes(aOut.begin() + cnBlock, aOut.end()), Bytes(10, 0xEE));
}

// Refusals

TEST(CalibratePrecalculatedData, OfNullKeepsTheData) {
    StWaiting Handle;
    EXPECT_EQ(CalibrateSetPrecalculatedData(Handle, nullptr, 0), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_TRUE(Handle.IsReady());
}

TEST(CalibratePrecalculatedData, NeedsACalibrationBlockFirst) {
    ClApiHandle Handle;
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    EXPECT_EQ(Handle.SetPrecalculatedData(aBlock), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_EQ(Handle.SetPrecalculatedData(Bytes(1)), QMT_ERROR_PARAM_IS_MISSING);
    // After data that were loaded and dropped the pointer is there, but no hash agrees.
    Handle.SetData(RecordBlock(PlausibleRecord()));
    Handle.SetReferenceData(RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Handle.SetPrecalculatedData(aBlock), QMT_ERROR_UNEXPECTED_SIGNATURE);
}

TEST(CalibratePrecalculatedData, OfAnEmptyRecordIsRefusedByAHandleWithoutData) {
    StRecord Empty;
    Empty.m_nPlanes = 0;
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(Empty));
    ClApiHandle Fresh;
    EXPECT_EQ(Fresh.SetPrecalculatedData(aBlock), QMT_ERROR_PARAM_IS_MISSING);
    StLoaded Handle;
    const Bytes aTable = Handle.PrecalculatedData();
    Handle.SetReferenceData(RecordBlock(PlausibleRecord())); // drops the data
    EXPECT_EQ(Handle.SetPrecalculatedData(aBlock), QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_FALSE(Handle.IsReady());
    EXPECT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), aTable);
}

TEST(CalibratePrecalculatedData, OfAnotherScannerThrowsTheDataAway) {
    StRecord Other = PlausibleRecord();
    Other.m_aActual[0][0].x += 0.125f;
    ClApiHandle Another;
    Another.SetData(RecordBlock(Other));
    StWaiting Handle;
    EXPECT_EQ(Handle.SetPrecalculatedData(Another.PrecalculatedData()),
              QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_FALSE(Handle.IsReady());
    long nStatus = 0;
    Handle.Corrected(Capture(48, 132), &nStatus);
    EXPECT_EQ(nStatus, QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_EQ(Handle.Corrected(Capture(48, 132)), StLoaded().Corrected(Capture(48, 132)));
}

TEST(CalibratePrecalculatedData, BelongsToEveryPointAndNumberOfItsRecord) {
    StLoaded First;
    const Bytes aBlock = First.PrecalculatedData();
    const auto Status = [&](const StRecord& Record) {
        StWaiting Handle(Record);
        return Handle.SetPrecalculatedData(aBlock);
    };
    EXPECT_EQ(Status(PlausibleRecord()), QMT_SUCCESS);
    StRecord Changed = PlausibleRecord();
    Changed.m_aActual[0][74].y = std::nextafter(Changed.m_aActual[0][74].y, 0.0f);
    EXPECT_EQ(Status(Changed), QMT_ERROR_UNEXPECTED_SIGNATURE);
    Changed = PlausibleRecord();
    Changed.m_nBackground ^= 1;
    EXPECT_EQ(Status(Changed), QMT_ERROR_UNEXPECTED_SIGNATURE);
    Changed = PlausibleRecord();
    ++Changed.m_nSourcePelsY;
    EXPECT_EQ(Status(Changed), QMT_ERROR_UNEXPECTED_SIGNATURE);
}

TEST(CalibratePrecalculatedData, OfAnotherVersionIsRefused) {
    for (const auto& [szVersion, nExpected] : {std::pair("001", QMT_SUCCESS),
                                               {"1", QMT_SUCCESS},
                                               {"002", QMT_ERROR_UNEXPECTED_SIGNATURE},
                                               {"", QMT_ERROR_UNEXPECTED_SIGNATURE}}) {
        StWaiting Handle;
        EXPECT_EQ(Handle.SetPrecalculatedData(
                      PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()), szVersion)),
                  nExpected)
            << szVersion;
        EXPECT_EQ(Handle.IsReady(), nExpected == QMT_SUCCESS);
    }
}

TEST(CalibratePrecalculatedData, OfInconsistentContentThrowsTheDataAway) {
    TestSupport::StTable Table = TableOf();
    ++Table.m_nImageWidth;
    StLoaded Handle;
    EXPECT_EQ(Handle.SetPrecalculatedData(PrecalculatedBlock(Table, HashOf(PlausibleRecord()))),
              QMT_ERROR_CURRUPT_DATA);
    EXPECT_FALSE(Handle.IsReady());
}
