// Exported calls whose work fails in every way there is.

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/Tables.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using TestSupport::Bytes;
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

Bytes Capture() {
    StHead Head;
    Head.m_nWidth = 48;
    Head.m_nHeight = 132;
    return TestSupport::UsualBlock(Head);
}

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

/// Runs a call with its first, second, third ... allocation failing until none fails; every failed
/// one answers that memory is missing.
void FailEachAllocationOf(const std::function<long()>& call) {
    for (long nAfter = 0; nAfter < 10000; ++nAfter) {
        long nCode = 0;
        bool bHappened = false;
        {
            const ClFailAllocation Fail(nAfter);
            nCode = call();
            bHappened = ClFailAllocation::Happened();
        }
        if (!bHappened) {
            EXPECT_EQ(nCode, 0);
            return;
        }
        EXPECT_TRUE(nCode == -102 || nCode == 0) << nCode << " at allocation " << nAfter;
    }
    FAIL() << "the call never got by without a failing allocation";
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
        FailEachAllocationOf([&] {
            unsigned long nSize = aOut.size();
            return Calibrate(Own.Handle(), aIn.data(), aIn.size(), aOut.data(), &nSize);
        });
        EXPECT_TRUE(Own.m_Processor.IsInitialized());
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
        return nCode;
    });
    FailEachAllocationOf(
        [&] { return CalibrateSetReferenceData(Own.Handle(), aBlock.data(), aBlock.size()); });
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
    FailEachAllocationOf([&] {
        unsigned long nSize = aOut.size();
        const long nCode = CalibrateGetData(Own.Handle(), aOut.data(), &nSize);
        EXPECT_TRUE(nCode == 0 || nSize == aOut.size());
        return nCode;
    });
    FailEachAllocationOf([&] {
        unsigned long nSize = aOut.size();
        return CalibrateGetPrecalculatedData(Own.Handle(), aOut.data(), &nSize);
    });
    EXPECT_TRUE(Own.m_Processor.IsInitialized());
}
