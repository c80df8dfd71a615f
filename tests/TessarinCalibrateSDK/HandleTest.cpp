// The handle's guards, its making under missing memory, and the options' comparisons.

#include "TessarinCalibrateSDK/Handle.h"

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "support/AllocationFailures.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

using TestSupport::ClFailAllocation;
using TestSupport::ClLogCapture;
using TestSupport::EFailure;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::Printed;
using TestSupport::StOwnHandle;
using TestSupport::Trace;

using EMode = ClIpCalibrateLumivane2::EGeometricMode;

namespace {

/// What a check of an option throws, or 0.
template <class Check>
long Thrown(Check check) {
    try {
        check();
    } catch (long nThrown) {
        return nThrown;
    }
    return 0;
}

constexpr EMode ceUntouched = static_cast<EMode>(9);

} // namespace

// Guards

TEST(Handle, IsARecordOfTwoGuardsAroundThePointer) {
    void* pHandle = CalibrateCreate();
    ASSERT_NE(pHandle, nullptr);
    EXPECT_EQ(std::memcmp(pHandle, "CAL", 4), 0);
    EXPECT_EQ(std::memcmp(static_cast<char*>(pHandle) + 16, "LAC", 4), 0);
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    EXPECT_EQ(CheckHandle(pHandle, &pProcessor), 0);
    EXPECT_EQ(std::memcmp(static_cast<char*>(pHandle) + 8, &pProcessor, sizeof pProcessor), 0);
    EXPECT_EQ(CalibrateDelete(&pHandle), 0);
}

TEST(Handle, CheckGivesTheProcessor) {
    StOwnHandle<> Own;
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    EXPECT_EQ(CheckHandle(&Own.m_Record, &pProcessor), 0);
    EXPECT_EQ(pProcessor, &Own.m_Processor);
}

TEST(Handle, CheckOfNullLeavesTheProcessor) {
    StOwnHandle<> Own;
    ClIpCalibrateLumivane2* pProcessor = &Own.m_Processor;
    EXPECT_EQ(CheckHandle(nullptr, &pProcessor), -42);
    EXPECT_EQ(pProcessor, &Own.m_Processor);
}

TEST(Handle, CheckWantsAPlaceForTheProcessor) {
    StOwnHandle<> Own;
    EXPECT_EQ(CheckHandle(&Own.m_Record, nullptr), -43);
    EXPECT_EQ(CheckHandle(nullptr, nullptr), -42);
}

TEST(Handle, CheckComparesAllBytesOfBothGuards) {
    for (std::size_t nBit = 0; nBit < 64; ++nBit) {
        StOwnHandle<> Own;
        char* pGuard = nBit < 32 ? Own.m_Record.m_acHead : Own.m_Record.m_acTail;
        char& rByte = pGuard[nBit % 32 / 8];
        rByte = static_cast<char>(rByte ^ (1 << (nBit % 8)));
        ClIpCalibrateLumivane2* pProcessor = &Own.m_Processor;
        EXPECT_EQ(CheckHandle(&Own.m_Record, &pProcessor), -43) << "bit " << nBit;
        EXPECT_EQ(pProcessor, nullptr);
    }
}

TEST(Handle, CheckLooksAtNoByteBesideTheGuards) {
    StOwnHandle<> Own;
    CalibrateHandle_t Record;
    std::memset(&Record, 0xEE, sizeof Record);
    std::memcpy(Record.m_acHead, "CAL", 4);
    std::memcpy(Record.m_acTail, "LAC", 4);
    Record.m_pProcessor = &Own.m_Processor;
    ClIpCalibrateLumivane2* pProcessor = nullptr;
    EXPECT_EQ(CheckHandle(&Record, &pProcessor), 0);
    EXPECT_EQ(pProcessor, &Own.m_Processor);
}

TEST(Handle, CheckWantsAProcessor) {
    StOwnHandle<> Own;
    Own.m_Record.m_pProcessor = nullptr;
    ClIpCalibrateLumivane2* pProcessor = &Own.m_Processor;
    EXPECT_EQ(CheckHandle(&Own.m_Record, &pProcessor), -43);
    EXPECT_EQ(pProcessor, nullptr);
}

// Making and releasing

TEST(Handle, CreateLogsTwoLines) {
    const ClLogCapture Log;
    void* pHandle = CalibrateCreate();
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace("CalibrateCreate() Enter"), Trace("CalibrateCreate() Leaving")}));
    CalibrateDelete(&pHandle);
}

// A leak of what was built so far is for the sanitizer to see.
TEST(Handle, CreatePassesTheAllocatorsException) {
    for (const long nAfter : {0L, 1L}) { // the record's, the processor's
        const ClFailAllocation Fail(nAfter);
        EXPECT_THROW(CalibrateCreate(), std::bad_alloc);
    }
}

TEST(Handle, CreatePassesTheExceptionsOfTheProcessorsMembers) {
    void* pHandle = nullptr;
    for (long nAfter = 2; pHandle == nullptr; ++nAfter) {
        const ClFailAllocation Fail(nAfter);
        try {
            pHandle = CalibrateCreate();
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(e.Number(), -102);
        }
    }
    EXPECT_EQ(CalibrateDelete(&pHandle), 0);
}

TEST(Handle, CreateAnswersNullWhereTheAllocatorDoes) {
    const char* caszLeaving[] = {
        "CalibrateCreate() leaving: Couldn't create calibration CalibrateHandle_t!",
        "CalibrateCreate() leaving: Couldn't create calibration object!"};
    for (const long nAfter : {0L, 1L}) { // the record, the processor
        const ClLogCapture Log;
        void* pHandle = &pHandle;
        {
            const ClFailAllocation Fail(nAfter, EFailure::eNull);
            pHandle = CalibrateCreate();
        }
        EXPECT_EQ(pHandle, nullptr);
        EXPECT_EQ(Log.Lines(), (Lines{Trace("CalibrateCreate() Enter"), {3, caszLeaving[nAfter]}}));
    }
}

TEST(Handle, DeleteReleasesAndClearsTheVariable) {
    void* pHandle = CalibrateCreate();
    const ClLogCapture Log;
    EXPECT_EQ(CalibrateDelete(&pHandle), 0);
    EXPECT_EQ(pHandle, nullptr);
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace(Printed("CalibrateDelete(0x%p) Enter", static_cast<void*>(&pHandle))),
                     Leaving("CalibrateDelete", 0)}));
}

TEST(Handle, DeleteTwiceFindsNoHandle) {
    void* pHandle = CalibrateCreate();
    CalibrateDelete(&pHandle);
    const ClLogCapture Log;
    EXPECT_EQ(CalibrateDelete(&pHandle), -42);
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace(Printed("CalibrateDelete(0x%p) Enter", static_cast<void*>(&pHandle))),
                     Leaving("CalibrateDelete", -42)}));
}

TEST(Handle, DeleteWantsAVariable) {
    const ClLogCapture Log;
    EXPECT_EQ(CalibrateDelete(nullptr), -22);
    EXPECT_EQ(Log.Lines(), (Lines{Trace(Printed("CalibrateDelete(0x%p) Enter", nullptr)),
                                  Leaving("CalibrateDelete", -22)}));
}

TEST(Handle, DeleteLeavesWhatIsNoHandle) {
    StOwnHandle<> Own;
    Own.m_Record.m_acTail[3] = 'x';
    void* pHandle = &Own.m_Record;
    EXPECT_EQ(CalibrateDelete(&pHandle), -43);
    EXPECT_EQ(pHandle, &Own.m_Record);
}

// Boolean options

TEST(Handle, BoolOptionsWithAnotherKeyAreNotTaken) {
    for (const char* szOption :
         {"", "=", "Key", "SensitiveMod=true", " SensitiveMode=true", "xSensitiveMode=true"}) {
        bool bValue = true;
        EXPECT_FALSE(CheckBoolOption(szOption, "SensitiveMode", bValue)) << szOption;
        EXPECT_TRUE(bValue);
    }
}

TEST(Handle, BoolOptionsCompareBeginningsWithoutCase) {
    const struct {
        const char* m_szOption;
        bool m_bValue;
    } caOptions[] = {{"SensitiveMode=true", true},      {"sensitivemodeXYZ=true", true},
                     {"SENSITIVEMODE=TRUE", true},      {"SensitiveMode=Truely", true},
                     {"SensitiveMode=enable", true},    {"SensitiveMode=Enabled", true},
                     {"SensitiveMode=    true", true},  {"SensitiveMode \t=true", true},
                     {"SensitiveMode=false", false},    {"SensitiveMode=FALSEhood", false},
                     {"SensitiveMode=disable", false},  {"SensitiveMode=Disabled", false},
                     {"SensitiveModetrue=false", false}};
    for (const auto& Option : caOptions) {
        bool bValue = !Option.m_bValue;
        EXPECT_TRUE(CheckBoolOption(Option.m_szOption, "SensitiveMode", bValue));
        EXPECT_EQ(bValue, Option.m_bValue) << Option.m_szOption;
    }
}

TEST(Handle, BoolOptionsWithoutAValueThrowAndChangeNothing) {
    for (const char* szOption : {"SensitiveMode", "SensitiveModetrue",
                                 "SensitiveMode=", "SensitiveMode=   ", "SensitiveMode=1",
                                 "SensitiveMode=tru", "SensitiveMode=\ttrue", "SensitiveMode==true",
                                 "SensitiveMode=off", "SensitiveMode=x=true"})
        for (const bool bBefore : {false, true}) {
            bool bValue = bBefore;
            EXPECT_EQ(Thrown([&] { CheckBoolOption(szOption, "SensitiveMode", bValue); }), -37)
                << szOption;
            EXPECT_EQ(bValue, bBefore);
        }
}

// The geometric option

TEST(Handle, GeometricOptionHasItsOwnWords) {
    const struct {
        const char* m_szValue;
        EMode m_eMode;
    } caValues[] = {{"true", EMode::eThinPlateSpline},
                    {"enable", EMode::eThinPlateSpline},
                    {"false", EMode::eOddLines},
                    {"disable", EMode::eOddLines},
                    {"off", EMode::eGeometricOff},
                    {"oddLines", EMode::eOddLines},
                    {"ThinPlateSpline", EMode::eThinPlateSpline},
                    {"TRUE", EMode::eThinPlateSpline},
                    {"   OFFline", EMode::eGeometricOff},
                    {"oddlinesandmore", EMode::eOddLines},
                    {"thinplatespline", EMode::eThinPlateSpline}};
    for (const auto& Value : caValues) {
        for (const char* szKey : {"GeometricCalibrate=", "geometriccalibrateX ="}) {
            EMode eMode = ceUntouched;
            EXPECT_TRUE(
                CheckGeometricOption((std::string(szKey) + Value.m_szValue).c_str(), eMode));
            EXPECT_EQ(eMode, Value.m_eMode) << Value.m_szValue;
        }
    }
}

TEST(Handle, GeometricOptionRefusesOtherValues) {
    for (const char* szOption :
         {"GeometricCalibrate", "GeometricCalibrate=", "GeometricCalibrate=of",
          "GeometricCalibrate=odd", "GeometricCalibrate=ThinPlate", "GeometricCalibrate=0"}) {
        EMode eMode = ceUntouched;
        EXPECT_EQ(Thrown([&] { CheckGeometricOption(szOption, eMode); }), -37) << szOption;
        EXPECT_EQ(eMode, ceUntouched);
    }
}

TEST(Handle, GeometricOptionLeavesOtherKeys) {
    EMode eMode = ceUntouched;
    EXPECT_FALSE(CheckGeometricOption("GeometricCalibrat=off", eMode));
    EXPECT_FALSE(CheckGeometricOption("", eMode));
    EXPECT_EQ(eMode, ceUntouched);
}

// Levels

TEST(Handle, WarningLevelsAreThoseOfTheProcessor) {
    StOwnHandle<> Own;
    double dDirt = -1;
    double dDry = -1;
    EXPECT_EQ(GetCalibrationWarningLevels(&Own.m_Record, &dDirt, &dDry), 0);
    EXPECT_EQ(dDirt, 0.0);
    EXPECT_EQ(dDry, 0.0);
    Own.m_Processor.m_DynamicCalibration.m_dDirtWarningLevel = 1234.5;
    Own.m_Processor.m_DynamicCalibration.m_dDryFingerWarningLevel = 6.75;
    EXPECT_EQ(GetCalibrationWarningLevels(&Own.m_Record, &dDirt, &dDry), 0);
    EXPECT_EQ(dDirt, 1234.5);
    EXPECT_EQ(dDry, 6.75);
}

TEST(Handle, WarningLevelsMayBeAskedForOneByOne) {
    StOwnHandle<> Own;
    Own.m_Processor.m_DynamicCalibration.m_dDirtWarningLevel = 1234.5;
    Own.m_Processor.m_DynamicCalibration.m_dDryFingerWarningLevel = 6.75;
    double dDirt = -1;
    double dDry = -1;
    EXPECT_EQ(GetCalibrationWarningLevels(&Own.m_Record, &dDirt, nullptr), 0);
    EXPECT_EQ(dDirt, 1234.5);
    EXPECT_EQ(GetCalibrationWarningLevels(&Own.m_Record, nullptr, &dDry), 0);
    EXPECT_EQ(dDry, 6.75);
    EXPECT_EQ(GetCalibrationWarningLevels(&Own.m_Record, nullptr, nullptr), 0);
}

TEST(Handle, WarningLevelsWithoutAHandleAreLeft) {
    double dDirt = -1;
    double dDry = -2;
    EXPECT_EQ(GetCalibrationWarningLevels(nullptr, &dDirt, &dDry), -42);
    EXPECT_EQ(dDirt, -1);
    EXPECT_EQ(dDry, -2);
}
