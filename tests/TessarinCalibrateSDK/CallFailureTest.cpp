// Exported calls whose work fails in every way there is.

#include "TessarinCalibrateSDK/Captures.h"
#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/Tables.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClFailAllocation;
using TestSupport::ClLogCapture;
using TestSupport::Leaving;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StHead;
using TestSupport::StLogLine;
using TestSupport::StOwnHandle;

namespace {

/// An engine whose run is the test's.
class ClScriptedEngine : public ClIpCalibrateLumivane2 {
public:
    long Process() override { return m_Process(*this); }

    std::function<long(ClScriptedEngine&)> m_Process;
};

struct StScripted : StOwnHandle<ClScriptedEngine> {
    StScripted() {
        Fill(PlausibleRecord(), m_Processor.m_CalibrationData);
        m_Processor.m_bDynamicFingerMask = false;
    }

    long Run(std::function<long(ClScriptedEngine&)> process) {
        m_Processor.m_Process = std::move(process);
        Bytes aIn = Capture();
        Bytes aOut(100000);
        unsigned long nSize = aOut.size();
        return Calibrate(Handle(), aIn.data(), aIn.size(), aOut.data(), &nSize);
    }
};

/// What a call gives: its status, and the bytes that it has to write in the same way each time.
struct StAnswer {
    long m_nCode = 0;
    Bytes m_aGiven;
};

/// Runs a call with its first, second, third ... allocation failing, every `nStep`-th one, until
/// none fails. Each failed one answers that memory is missing and gives nothing; or it did without
/// the memory, and then gives what an undisturbed call gives.
void FailEachAllocationOf(const std::function<StAnswer()>& call, long nStep = 1) {
    const StAnswer Undisturbed = call();
    EXPECT_EQ(Undisturbed.m_nCode, 0);
    for (long nAfter = 0; nAfter < 10000 * nStep; nAfter += nStep) {
        StAnswer Answer;
        bool bHappened = false;
        {
            const ClFailAllocation Fail(nAfter);
            Answer = call();
            bHappened = ClFailAllocation::Happened();
        }
        if (Answer.m_nCode == 0)
            EXPECT_EQ(Answer.m_aGiven, Undisturbed.m_aGiven) << "at allocation " << nAfter;
        else
            EXPECT_EQ(Answer.m_nCode, -102) << "at allocation " << nAfter;
        if (!bHappened) {
            EXPECT_EQ(Answer.m_nCode, 0);
            return;
        }
    }
    FAIL() << "the call never got by without a failing allocation";
}

/// The status of a call that gives nothing.
StAnswer Status(long nCode) {
    return {nCode, {}};
}

/// Gives what stands in a buffer behind a success; without one the buffer has to be as it was.
/// Makes no use of memory that is not there yet.
StAnswer Given(long nCode, const Bytes& aBuffer) {
    const long nPaused = TestSupport::PauseFailures();
    StAnswer Answer{nCode, {}};
    if (nCode == 0)
        Answer.m_aGiven = aBuffer;
    else
        EXPECT_EQ(aBuffer, Bytes(aBuffer.size(), 0xEE));
    TestSupport::ResumeFailures(nPaused);
    return Answer;
}

} // namespace

// Processing

TEST(CallFailure, ResultsOfTheEngineAreAnswered) {
    StScripted Scripted;
    const ClLogCapture Log;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) { return -77L; }), -77);
    ASSERT_GE(Log.Lines().size(), 3u);
    const StLogLine* pLast = &Log.Lines().back();
    EXPECT_EQ(*pLast, Leaving("Calibrate", -77, 3));
    EXPECT_EQ(pLast[-1].m_Text.find("Calibrate() File: TessarinCalibrateSDK/ImageCalls("), 0u);
    EXPECT_EQ(pLast[-2].m_Text, "Calibrate() Error: Unknown error code.\nUnknown error code.");
}

TEST(CallFailure, ExceptionsOfTheEngineAreAnsweredByTheirNumber) {
    StScripted Scripted;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) -> long { throw ClExTessarin(-35, "F", 1); }),
              -35);
    const ClLogCapture Log;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) -> long { throw ClExTessarin(-600, "F", 1); }),
              -600);
    EXPECT_EQ(Log.Lines().back(), Leaving("Calibrate", -600, 7));
}

TEST(CallFailure, OtherExceptionsOfTheEngineAreInternalErrors) {
    StScripted Scripted;
    const ClLogCapture Log;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) -> long { throw std::logic_error("odd"); }), -101);
    EXPECT_EQ(Log.Lines()[Log.Lines().size() - 2], (StLogLine{3, "Calibrate() Error: odd"}));
    EXPECT_EQ(Log.Lines().back(), Leaving("Calibrate", -101, 3));
}

TEST(CallFailure, AnythingElseIsAFatalError) {
    StScripted Scripted;
    const ClLogCapture Log;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) -> long { throw "text"; }), -104);
    EXPECT_EQ(Log.Lines().back(), Leaving("Calibrate", -104, 3));
}

TEST(CallFailure, ProcessingKeepsTheCalibrationData) {
    StScripted Scripted;
    Scripted.Run([](ClScriptedEngine&) -> long { throw ClExTessarin(-35, "F", 1); });
    Scripted.Run([](ClScriptedEngine&) -> long { throw std::logic_error("odd"); });
    Scripted.Run([](ClScriptedEngine&) -> long { throw 1; });
    EXPECT_TRUE(Scripted.m_Processor.IsInitialized());
}

TEST(CallFailure, ImagesThatNoBitmapShowsAreRefused) {
    StScripted Scripted;
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine& rEngine) {
        rEngine.m_pOutImage->NewWithType(ClImage::eInt16, 4, 4, 1, 0, 0);
        return 0L;
    }),
              -33);
    EXPECT_EQ(Scripted.Run([](ClScriptedEngine&) { return 0L; }), -10); // no image at all
}

// Missing memory

namespace {

/// Calibrates into a fresh buffer.
StAnswer Corrected(void* pHandle, Bytes& rIn, Bytes& rOut) {
    std::fill(rOut.begin(), rOut.end(), static_cast<unsigned char>(0xEE));
    unsigned long nSize = rOut.size();
    return Given(Calibrate(pHandle, rIn.data(), rIn.size(), rOut.data(), &nSize), rOut);
}

} // namespace

TEST(CallFailure, CalibrateSurvivesMissingMemory) {
    for (const auto eMode :
         {ClIpCalibrateLumivane2::eGeometricOff, ClIpCalibrateLumivane2::eOddLines,
          ClIpCalibrateLumivane2::eThinPlateSpline}) {
        StOwnHandle<> Own;
        Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
        Own.m_Processor.m_GeometricBicubic.m_pData = &Own.m_Processor.m_CalibrationData;
        Own.m_Processor.m_bDynamicFingerMask = false;
        Own.m_Processor.m_eGeometricMode = eMode;
        Bytes aIn = Capture();
        Bytes aOut(100000);
        FailEachAllocationOf([&] { // the table is made within the call
            Own.m_Processor.m_GeometricBicubic.Reset();
            return Corrected(Own.Handle(), aIn, aOut);
        });
        EXPECT_TRUE(Own.m_Processor.IsInitialized());
    }
}

// It allocates some thousand times: the failures are spread over its course.
TEST(CallFailure, TheDynamicStepSurvivesMissingMemory) {
    Bytes aRecord = TestSupport::DataFile("dynamic/loop.cal");
    Bytes aIn = TestSupport::DataBlock("dynamic/loop_raw.bmp");
    Bytes aOut(400000);
    for (const bool bMask : {false, true}) {
        StOwnHandle<> Own;
        Own.m_Processor.m_bMaskIsOutput = bMask;
        ASSERT_EQ(CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size()), 0);
        FailEachAllocationOf([&] { return Corrected(Own.Handle(), aIn, aOut); }, 37);
    }
}

TEST(CallFailure, SettingDataWithoutMemoryDropsTheData) {
    StOwnHandle<> Own;
    TestSupport::StRecord Record = PlausibleRecord();
    Record.m_nTargetHeight = 3;
    Bytes aBlock = RecordBlock(Record);
    FailEachAllocationOf([&] {
        const long nCode = CalibrateSetData(Own.Handle(), aBlock.data(), aBlock.size());
        EXPECT_EQ(Own.m_Processor.IsInitialized(), nCode == 0);
        return Status(nCode);
    });
    FailEachAllocationOf([&] {
        return Status(CalibrateSetReferenceData(Own.Handle(), aBlock.data(), aBlock.size()));
    });
    EXPECT_FALSE(Own.m_Processor.IsInitialized());
}

TEST(CallFailure, SettingPrecalculatedDataWithoutMemoryDropsTheData) {
    StOwnHandle<> Own;
    Own.m_Processor.m_bPrecalculatedData = true;
    Bytes aRecord = RecordBlock(PlausibleRecord());
    Bytes aBlock = PrecalculatedBlock(TestSupport::TableOf(), HashOf(PlausibleRecord()));
    CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size());
    long nCode = -1;
    {
        const ClFailAllocation Fail(0);
        nCode = CalibrateSetPrecalculatedData(Own.Handle(), aBlock.data(), aBlock.size());
    }
    EXPECT_EQ(nCode, -102);
    EXPECT_FALSE(Own.m_Processor.IsInitialized());
}

TEST(CallFailure, GettingDataWithoutMemoryKeepsTheData) {
    StOwnHandle<> Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    Bytes aOut(10000);
    const auto ExpectKept = [&](long (*get)(void*, unsigned char*, unsigned long*)) {
        FailEachAllocationOf([&] {
            std::fill(aOut.begin(), aOut.end(), static_cast<unsigned char>(0xEE));
            unsigned long nSize = aOut.size();
            const long nCode = get(Own.Handle(), aOut.data(), &nSize);
            EXPECT_TRUE(nCode == 0 || nSize == aOut.size());
            return Given(nCode, aOut);
        });
    };
    ExpectKept(CalibrateGetData);
    ExpectKept(CalibrateGetPrecalculatedData);
    EXPECT_TRUE(Own.m_Processor.IsInitialized());
}

// A preparation that fails

TEST(CallFailure, APreparationWithoutMemoryLeavesAWarpWithoutTable) {
    StOwnHandle<> Own;
    Own.m_Processor.m_bDynamicFingerMask = false;
    Own.m_Processor.m_bPrecalculatedData = true;
    const auto Block = [&] {
        Bytes aBlock(100000);
        unsigned long nSize = aBlock.size();
        EXPECT_EQ(CalibrateGetPrecalculatedData(Own.Handle(), aBlock.data(), &nSize), 0);
        aBlock.resize(nSize);
        return aBlock;
    };
    Bytes aRecord = RecordBlock(PlausibleRecord());
    ASSERT_EQ(CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size()), 0);
    const Bytes aWithout = Block();
    EXPECT_EQ(aWithout.size(), 28u + 98);
    Bytes aIn = Capture();
    Bytes aOut(100000);
    int nWithout = 0;
    bool bHappened = true;
    for (long nAfter = 0; bHappened && nAfter < 10000; ++nAfter) {
        ASSERT_EQ(CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size()), 0);
        {
            const ClFailAllocation Fail(nAfter);
            Corrected(Own.Handle(), aIn, aOut);
            bHappened = ClFailAllocation::Happened();
        }
        const Bytes aBlock = Block();
        nWithout += aBlock == aWithout;
        if (aBlock != aWithout) { // then all of it is there
            EXPECT_EQ(aBlock.size(), 28u + 94 + 40 * 60 * 36 + 4) << nAfter;
        }
    }
    EXPECT_FALSE(bHappened);
    EXPECT_GE(nWithout, 10);
}
