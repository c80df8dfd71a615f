// ContaminationDetection() from within: its lines, missing memory, and the engine that it leaves
// alone.

#include "FingerCoding/TimerMarks.h"
#include "TessarinCalibrateSDK/Captures.h"
#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"

#include <gtest/gtest.h>

#include <algorithm>

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClFailAllocation;
using TestSupport::ClLogCapture;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::Printed;
using TestSupport::StHead;
using TestSupport::StOwnHandle;
using TestSupport::Trace;

namespace {

/// All lines of a call, and its status.
Lines LinesOf(void* pHandle, Bytes& rBlock, double& rLevel, long nExpected) {
    const ClLogCapture Log;
    EXPECT_EQ(ContaminationDetection(pHandle, rBlock.data(), rBlock.size(), &rLevel), nExpected);
    return Log.Lines();
}

std::string Entered(void* pHandle, const Bytes& aBlock, double& rLevel) {
    return Printed("ContaminationDetection(0x%p, 0x%p, %d, 0x%p) Enter", pHandle,
                   const_cast<unsigned char*>(aBlock.data()), static_cast<int>(aBlock.size()),
                   static_cast<void*>(&rLevel));
}

} // namespace

TEST(ContaminationCall, TracesItsResult) {
    StOwnHandle<> Own;
    double dLevel = 0.0;
    Bytes aFlat = Capture(60, 60);
    std::fill(aFlat.begin() + 40 + 1024, aFlat.end(), 200);
    EXPECT_EQ(LinesOf(Own.Handle(), aFlat, dLevel, 0),
              (Lines{Trace(Entered(Own.Handle(), aFlat, dLevel)),
                     Trace("Result of contamination detection is   0.00"),
                     Leaving("ContaminationDetection", 0)}));
    Bytes aSpecks = Capture(200, 250);
    EXPECT_EQ(LinesOf(Own.Handle(), aSpecks, dLevel, 0)[1],
              Trace("Result of contamination detection is 100.00"));
    EXPECT_EQ(dLevel, 100.0);
}

TEST(ContaminationCall, TracesNoResultThatItDoesNotHave) {
    StOwnHandle<> Own;
    double dLevel = 0.0;
    Bytes aColour = Capture(8, 8, 24);
    const Lines aLines = LinesOf(Own.Handle(), aColour, dLevel, QMT_ERROR_INTERNAL);
    ASSERT_EQ(aLines.size(), 4u);
    EXPECT_EQ(aLines[0], Trace(Entered(Own.Handle(), aColour, dLevel)));
    EXPECT_EQ(aLines[1].m_Text, "ContaminationDetection() Error: Internal error.\n"
                                "Color-image not supported in ClHistogram::Create.");
    EXPECT_EQ(aLines[2].m_Text, "ContaminationDetection() File: Unknown(-1)");
    EXPECT_EQ(aLines[3], Leaving("ContaminationDetection", QMT_ERROR_INTERNAL, 3));
}

TEST(ContaminationCall, LooksAtNoStatusOfTheRun) {
    StOwnHandle<> Own;
    double dLevel = 5.0;
    Bytes aCompressed = Capture(8, 8, 8, 1);
    EXPECT_EQ(LinesOf(Own.Handle(), aCompressed, dLevel, 0)[1],
              Trace("Result of contamination detection is   0.00"));
    EXPECT_EQ(dLevel, 0.0);
}

TEST(ContaminationCall, LeavesTheEngineAlone) {
    StOwnHandle<> Own;
    ClImage image;
    Own.m_Processor.m_pInImage = &image;
    Own.m_Processor.m_pOutImage = &image;
    double dLevel = 0.0;
    Bytes aBlock = Capture(60, 60);
    LinesOf(Own.Handle(), aBlock, dLevel, 0);
    EXPECT_EQ(Own.m_Processor.m_pInImage, &image);
    EXPECT_EQ(Own.m_Processor.m_pOutImage, &image);
    EXPECT_FALSE(Own.m_Processor.IsInitialized());
}

TEST(ContaminationCall, IsTimed) {
    StOwnHandle<> Own;
    Bytes aBlock = Capture(60, 60);
    double dLevel = 0.0;
    const TestSupport::ClTimerMarks Marks;
    LinesOf(Own.Handle(), aBlock, dLevel, 0);
    ASSERT_FALSE(Marks.m_aRuns.empty());
    EXPECT_EQ(Marks.m_aRuns.back(), "ClIpQK7FunctionalityCheck");
}

TEST(ContaminationCall, SurvivesMissingMemory) {
    StOwnHandle<> Own;
    Bytes aBlock = Capture(60, 110);
    double dExpected = 0.0;
    ASSERT_EQ(ContaminationDetection(Own.Handle(), aBlock.data(), aBlock.size(), &dExpected), 0);
    for (long nAfter = 0; nAfter < 1000; ++nAfter) {
        double dLevel = 5.0;
        long nCode = 1;
        bool bHappened = false;
        {
            const ClFailAllocation Fail(nAfter);
            nCode = ContaminationDetection(Own.Handle(), aBlock.data(), aBlock.size(), &dLevel);
            bHappened = ClFailAllocation::Happened();
        }
        EXPECT_TRUE(nCode == 0 || (nCode == QMT_ERROR_OUT_OF_MEMORY && bHappened)) << nCode;
        EXPECT_EQ(dLevel, nCode == 0 ? dExpected : 101.0) << nAfter;
        if (!bHappened)
            return;
    }
    FAIL() << "the call never got by without a failing allocation";
}

TEST(ContaminationCall, FindsNothingWithoutPixelsWhateverWasFoundBefore) {
    StOwnHandle<> Own;
    double dLevel = 0.0;
    Bytes aSpecks = Capture(200, 250);
    LinesOf(Own.Handle(), aSpecks, dLevel, 0);
    EXPECT_EQ(dLevel, 100.0);
    Bytes aCompressed = Capture(200, 250, 8, 1);
    LinesOf(Own.Handle(), aCompressed, dLevel, 0);
    EXPECT_EQ(dLevel, 0.0);
}
