// The calibration block: loading, saving, and what survives a failure.

#include "api/Api.h"
#include "api/LoadedHandle.h"
#include "support/Records.h"
#include "support/TestData.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StLoaded;
using TestSupport::StRecord;

namespace {

Bytes Broken() {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.back() ^= 1;
    return aBlock;
}

} // namespace

// Saving

TEST(CalibrateGetData, WantsASizeBeforeData) {
    const ClApiHandle Handle;
    unsigned long nSize = 7;
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, nullptr), QMT_ERROR_TEMPLATE_SIZE_PTR);
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(nSize, 7u);
}

TEST(CalibrateGetData, TellsTheNeededSizeBeforeItWantsABlock) {
    StLoaded Handle;
    unsigned long nSize = 0;
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 1261u);
    nSize = 1260;
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(nSize, 1261u);
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_EQ(nSize, 1261u);
    nSize = 99999;
    EXPECT_EQ(CalibrateGetData(Handle, nullptr, &nSize), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_EQ(nSize, 1261u);
}

TEST(CalibrateGetData, WritesItsBytesAndNoMore) {
    StLoaded Handle;
    Bytes aOut(1300, 0xEE);
    unsigned long nSize = 1260;
    EXPECT_EQ(CalibrateGetData(Handle, aOut.data(), &nSize), QMT_ERROR_TEMPLATE_SIZE);
    EXPECT_EQ(aOut, Bytes(1300, 0xEE));
    nSize = aOut.size();
    EXPECT_EQ(CalibrateGetData(Handle, aOut.data(), &nSize), QMT_SUCCESS);
    EXPECT_EQ(nSize, 1261u);
    EXPECT_EQ(Bytes(aOut.begin() + 1261, aOut.end()), Bytes(39, 0xEE));
    aOut.resize(1261);
    EXPECT_EQ(aOut, RecordBlock(PlausibleRecord()));
}

TEST(CalibrateGetData, GivesABlockThatAnotherHandleTakesAndGives) {
    for (const char* szScanner : {"900", "901", "902"}) {
        ClApiHandle First;
        First.Set("PrecalculatedData=true");
        const Bytes aFile =
            TestSupport::DataFile("records/scanner" + std::string(szScanner) + "_layout6.cal");
        ASSERT_EQ(First.SetData(aFile), 0);
        EXPECT_EQ(First.Data(), aFile);
        ClApiHandle Second;
        Second.Set("PrecalculatedData=true");
        ASSERT_EQ(Second.SetData(First.Data()), 0);
        EXPECT_EQ(Second.Data(), aFile);
    }
}

TEST(CalibrateGetData, GivesTheNewestLayoutOfEveryOlderOne) {
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        // A layout without a resolution of the target has the pattern at 500 dots per inch.
        const StRecord Stored =
            nLayout < 2 ? PlausibleRecord(390, 1052, 320, 480, 19685) : PlausibleRecord();
        StRecord Expected = Stored;
        if (nLayout < 5)
            Expected.m_nSourcePelsX = Expected.m_nSourcePelsY = 0;
        if (nLayout < 4)
            Expected.m_nBackground = 0;
        ClApiHandle Handle;
        Handle.Set("PrecalculatedData=true");
        ASSERT_EQ(Handle.SetData(RecordBlock(Stored, nLayout)), 0);
        EXPECT_EQ(Handle.Data(), RecordBlock(Expected)) << nLayout;
    }
}

// Loading

TEST(CalibrateSetData, OfNullKeepsTheOldData) {
    StLoaded Handle;
    EXPECT_EQ(CalibrateSetData(Handle, nullptr, 0), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_EQ(CalibrateSetData(Handle, nullptr, 1261), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
}

TEST(CalibrateSetData, OfATruncatedBlockLeavesNothing) {
    const Bytes aBlock = RecordBlock(PlausibleRecord());
    for (const std::size_t nSize : {0, 1, 11, 12, 48, 52, 53, 653, 657, 1256, 1257, 1260}) {
        StLoaded Handle;
        EXPECT_EQ(CalibrateSetData(Handle, ClApiHandle::Writable(aBlock), nSize),
                  QMT_ERROR_UNEXPECTED_EOF)
            << nSize;
        EXPECT_FALSE(Handle.IsReady());
    }
}

TEST(CalibrateSetData, OfADamagedBlockLeavesNothing) {
    StLoaded Handle;
    EXPECT_EQ(Handle.SetData(Broken()), QMT_ERROR_CURRUPT_DATA);
    EXPECT_FALSE(Handle.IsReady());
    StLoaded Other;
    EXPECT_EQ(Other.SetData(Bytes(100)), QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_FALSE(Other.IsReady());
    EXPECT_EQ(Other.SetData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_TRUE(Other.IsReady());
}

TEST(CalibrateSetData, OfPointsWithoutAMappingLeavesNothing) {
    StRecord Record = PlausibleRecord();
    Record.m_aTarget[1] = Record.m_aTarget[0];
    StLoaded Handle;
    EXPECT_EQ(Handle.SetData(RecordBlock(Record)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_FALSE(Handle.IsReady());
}

TEST(CalibrateSetData, OfImplausiblePointsLeavesNothing) {
    StRecord TargetOff = PlausibleRecord(390, 1052, 320, 480, 19685);
    TargetOff.m_aTarget[30].y += 11.0f; // pixels
    StRecord ActualOff = PlausibleRecord();
    ActualOff.m_aActual[0][30].y += 4.0f; // of a step of 10.8
    StRecord Mirrored = PlausibleRecord();
    for (TestSupport::StPoint& Point : Mirrored.m_aActual[0])
        Point.x = 48.0f - Point.x;
    for (const StRecord& Record : {TargetOff, ActualOff, Mirrored}) {
        StLoaded Handle;
        EXPECT_EQ(Handle.SetData(RecordBlock(Record)), QMT_ERROR_CURRUPT_DATA);
        EXPECT_FALSE(Handle.IsReady());
    }
}

TEST(CalibrateSetData, TakesATargetThatIsShiftedAsAWhole) {
    StRecord Record = PlausibleRecord();
    for (TestSupport::StPoint& Point : Record.m_aTarget)
        Point = {Point.x + 100.0f, Point.y - 100.0f};
    ClApiHandle Handle;
    EXPECT_EQ(Handle.SetData(RecordBlock(Record)), 0);
}

TEST(CalibrateSetData, TakesBytesBehindTheBlock) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    for (int i = 0; i < 9; ++i) {
        aBlock.push_back(static_cast<unsigned char>(i * 77));
        ClApiHandle Handle;
        Handle.Set("PrecalculatedData=true");
        EXPECT_EQ(Handle.SetData(aBlock), 0);
        EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
    }
}

TEST(CalibrateSetData, OfACaptureWithASideOf0LoadsAndIsNoData) {
    for (const bool bWidth : {true, false}) {
        StRecord Record = PlausibleRecord();
        (bWidth ? Record.m_nSourceWidth : Record.m_nSourceHeight) = 0;
        StLoaded Handle;
        EXPECT_EQ(Handle.SetData(RecordBlock(Record)), 0);
        EXPECT_FALSE(Handle.IsReady());
        long nStatus = 0;
        Handle.Corrected(Capture(48, 132), &nStatus);
        EXPECT_EQ(nStatus, QMT_ERROR_NOT_INITIALIZED);
    }
}

TEST(CalibrateSetData, OfATargetWithASideOf0ServesTheOtherModes) {
    for (const bool bWidth : {true, false}) {
        StRecord Record = PlausibleRecord();
        (bWidth ? Record.m_nTargetWidth : Record.m_nTargetHeight) = 0;
        StLoaded Handle;
        EXPECT_EQ(Handle.SetData(RecordBlock(Record)), 0);
        EXPECT_EQ(Handle.Data(), RecordBlock(Record));
        long nStatus = 0;
        Handle.Corrected(Capture(5, 5), &nStatus); // before the size is looked at
        EXPECT_EQ(nStatus, QMT_ERROR_NOT_INITIALIZED);
        Handle.Set("GeometricCalibrate=oddLines");
        EXPECT_EQ(TestSupport::Height(Handle.Corrected(Capture(48, 132))), 66);
        const Bytes aTable = Handle.PrecalculatedData();
        EXPECT_EQ(Handle.SetPrecalculatedData(aTable), QMT_ERROR_CURRUPT_DATA);
    }
}

TEST(CalibrateSetData, RefusesTheOldTagsOfVersion001) {
    const StRecord Record = PlausibleRecord(390, 1052, 320, 480, 19685);
    ClApiHandle Handle;
    Handle.Set("PrecalculatedData=true");
    EXPECT_EQ(Handle.SetData(RecordBlock(Record, 0, "002", "Cal", "Lmv")), 0);
    EXPECT_EQ(Handle.SetData(RecordBlock(Record, 0, "001", "Cal", "Lmv")),
              QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_FALSE(Handle.IsReady());
}

TEST(CalibrateSetData, ReplacesDataAndTable) {
    StLoaded Handle;
    const Bytes aIn = Capture(48, 132);
    const Bytes aFirst = Handle.Corrected(aIn);
    StRecord Shifted = PlausibleRecord();
    for (TestSupport::StPoint& Point : Shifted.m_aActual[0])
        Point.y += 1.5f;
    ASSERT_EQ(Handle.SetData(RecordBlock(Shifted)), 0);
    EXPECT_NE(Handle.Corrected(aIn), aFirst);
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_EQ(Handle.Corrected(aIn), aFirst);
}

// Reference target

TEST(CalibrateSetReferenceData, AlwaysDropsTheCalibrationData) {
    StLoaded Handle;
    EXPECT_EQ(CalibrateSetReferenceData(Handle, nullptr, 5), QMT_ERROR_TEMPLATE_PTR);
    EXPECT_TRUE(Handle.IsReady());
    EXPECT_EQ(Handle.SetReferenceData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_FALSE(Handle.IsReady());

    StLoaded Other;
    EXPECT_EQ(Other.SetReferenceData(Broken()), QMT_ERROR_CURRUPT_DATA);
    EXPECT_FALSE(Other.IsReady());
}

TEST(CalibrateSetReferenceData, FailsAsLoadingDoes) {
    ClApiHandle Handle;
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.pop_back();
    EXPECT_EQ(Handle.SetReferenceData(aBlock), QMT_ERROR_UNEXPECTED_EOF);
    aBlock[0] = 'c';
    EXPECT_EQ(Handle.SetReferenceData(aBlock), QMT_ERROR_UNEXPECTED_SIGNATURE);
    EXPECT_EQ(CalibrateSetReferenceData(Handle, ClApiHandle::Writable(aBlock), 0),
              QMT_ERROR_UNEXPECTED_EOF);
}

TEST(CalibrateSetReferenceData, LeavesTheWayForLoadingData) {
    ClApiHandle Handle;
    ASSERT_EQ(Handle.SetReferenceData(RecordBlock(PlausibleRecord())), 0);
    ASSERT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    EXPECT_EQ(Handle.Corrected(Capture(48, 132)), StLoaded().Corrected(Capture(48, 132)));
}

// Generation

TEST(CalibrateGenerateData, OfNullKeepsTheOldData) {
    StLoaded Handle;
    EXPECT_EQ(CalibrateGenerateData(Handle, nullptr, 0), QMT_ERROR_BITMAP_PTR);
    EXPECT_TRUE(Handle.IsReady());
}

TEST(CalibrateGenerateData, DropsTheDataBeforeItLooksAtTheBlock) {
    Bytes aLong = Capture(48, 132);
    aLong.push_back(0);
    Bytes aFile = Capture(48, 132);
    aFile[0] = 'B';
    aFile[1] = 'M';
    for (const auto& [aBlock, nExpected] : {std::pair(aLong, QMT_ERROR_TEMPLATE_SIZE),
                                            {Bytes(39), QMT_ERROR_TEMPLATE_SIZE},
                                            {aFile, QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER},
                                            {Capture(8, 8, 16), QMT_ERROR_BITMAP_BITCOUNT},
                                            {Capture(8, 8, 24), QMT_ERROR_BITMAP_PLANE},
                                            {Capture(0, 8), QMT_ERROR_INTERNAL}}) {
        StLoaded Handle;
        EXPECT_EQ(Handle.GenerateData(aBlock), nExpected);
        EXPECT_FALSE(Handle.IsReady());
    }
}

TEST(CalibrateGenerateData, FindsNoTargetInNoise) {
    StLoaded Handle;
    EXPECT_EQ(Handle.GenerateData(Capture(48, 132)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_FALSE(Handle.IsReady());
}
