// The exact lines of every exported call.

#include "TessarinCalibrateSDK/Captures.h"
#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "support/BitmapBlocks.h"
#include "support/Tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::MatchesRegex;
using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClLogCapture;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::PlausibleRecord;
using TestSupport::Printed;
using TestSupport::RecordBlock;
using TestSupport::StHead;
using TestSupport::Trace;
using TestSupport::UsualBlock;
using TestSupport::WithoutEngine;

namespace {

struct StOwnScanner : TestSupport::StOwnHandle<> {
    StOwnScanner() { m_Processor.m_bDynamicFingerMask = false; }

    void Load() { Fill(PlausibleRecord(), m_Processor.m_CalibrationData); }
};

void* Null() {
    return nullptr;
}

/// The lines that a call writes itself.
template <class Call>
Lines LinesOf(Call call) {
    const ClLogCapture Log;
    call();
    return WithoutEngine(Log.Lines());
}

std::string Enter(const char* szFunction, void* pHandle, const void* pData, int nSize) {
    return Printed("%s(0x%p, 0x%p, %d) Enter", szFunction, pHandle, const_cast<void*>(pData),
                   nSize);
}

/// The four lines of a call that ended by an exception of the record.
void ExpectCaught(const Lines& aLines, const std::string& EnterLine, const std::string& Function,
                  long nCode, const std::string& File) {
    ASSERT_EQ(aLines.size(), 4u);
    EXPECT_EQ(aLines[0], Trace(EnterLine));
    EXPECT_EQ(aLines[1].m_nLevel, 3);
    EXPECT_EQ(aLines[1].m_Text.find(Function + "() Error: " + GetErrorDescriptionIntern(nCode)),
              0u);
    EXPECT_EQ(aLines[2].m_nLevel, 3);
    EXPECT_THAT(aLines[2].m_Text,
                MatchesRegex(Function + "\\(\\) File: " + File + "\\(-?[0-9]+\\)"));
    EXPECT_EQ(aLines[3], Leaving(Function, nCode, 3));
}

} // namespace

// Options and levels

TEST(CallTrace, SetOption) {
    StOwnScanner Own;
    for (const auto& [szOption, nCode] :
         {std::pair("SensitiveMode=true", 0L), {"SensitiveMode", -37L}, {"NoSuchKey=1", -37L}})
        EXPECT_EQ(LinesOf([&, szText = szOption] { CalibrateSetOption(Own.Handle(), szText); }),
                  (Lines{Trace(Printed("CalibrateSetOption(0x%p, 0x%p) Enter", Own.Handle(),
                                       const_cast<char*>(szOption))),
                         Leaving("CalibrateSetOption", nCode)}));
    EXPECT_EQ(LinesOf([] { CalibrateSetOption(nullptr, nullptr); }),
              (Lines{Trace(Printed("CalibrateSetOption(0x%p, 0x%p) Enter", Null(), Null())),
                     Leaving("CalibrateSetOption", -42)}));
}

TEST(CallTrace, GetOption) {
    StOwnScanner Own;
    char szValue[32];
    unsigned long nSize = sizeof szValue;
    const char* szKey = "SensitiveMode";
    const auto Entered = [&](void* pValue, void* pSize) {
        return Trace(Printed("CalibrateGetOption(0x%p, 0x%p, 0x%p, 0x%p) Enter", Own.Handle(),
                             const_cast<char*>(szKey), pValue, pSize));
    };
    EXPECT_EQ(LinesOf([&] { CalibrateGetOption(Own.Handle(), szKey, szValue, &nSize); }),
              (Lines{Entered(szValue, &nSize), Leaving("CalibrateGetOption", 0)}));
    nSize = 1;
    EXPECT_EQ(LinesOf([&] { CalibrateGetOption(Own.Handle(), szKey, szValue, &nSize); }),
              (Lines{Entered(szValue, &nSize), Leaving("CalibrateGetOption", -21)}));
    EXPECT_EQ(LinesOf([&] { CalibrateGetOption(Own.Handle(), szKey, szValue, nullptr); }),
              (Lines{Entered(szValue, nullptr), Leaving("CalibrateGetOption", -24)}));
    szKey = "Unknown";
    EXPECT_EQ(LinesOf([&] { CalibrateGetOption(Own.Handle(), szKey, szValue, &nSize); }),
              (Lines{Entered(szValue, &nSize), Leaving("CalibrateGetOption", -37)}));
    szKey = nullptr;
    EXPECT_EQ(LinesOf([&] { CalibrateGetOption(Own.Handle(), szKey, szValue, &nSize); }),
              (Lines{Entered(szValue, &nSize), Leaving("CalibrateGetOption", -37)}));
}

TEST(CallTrace, GetCalibrationWarningLevels) {
    StOwnScanner Own;
    double dDirt = 0;
    double dDry = 0;
    EXPECT_EQ(
        LinesOf([&] { GetCalibrationWarningLevels(Own.Handle(), &dDirt, &dDry); }),
        (Lines{Trace(Printed("GetCalibrationWarningLevels(0x%p, 0x%p, 0x%p) Enter", Own.Handle(),
                             static_cast<void*>(&dDirt), static_cast<void*>(&dDry))),
               Leaving("GetCalibrationWarningLevels", 0)}));
    Own.m_Record.m_acHead[0] = 'x';
    EXPECT_EQ(LinesOf([&] { GetCalibrationWarningLevels(Own.Handle(), &dDirt, &dDry); }).back(),
              Leaving("GetCalibrationWarningLevels", -43));
}

TEST(CallTrace, GetErrorDescription) {
    EXPECT_EQ(LinesOf([] { CalibrateGetErrorDescription(-43); }),
              (Lines{Trace("CalibrateGetErrorDescription(-43): The handle parameter is not a "
                           "valid handle for that function.")}));
    EXPECT_EQ(LinesOf([] { CalibrateGetErrorDescription(1); }),
              (Lines{Trace("CalibrateGetErrorDescription(1): Unknown error code.")}));
    EXPECT_TRUE(LinesOf([] { GetErrorDescriptionIntern(1); }).empty());
}

// Image calls

TEST(CallTrace, Calibrate) {
    StOwnScanner Own;
    Bytes aIn = Capture();
    Bytes aOut(100000);
    unsigned long nSize = 0;
    const auto Entered = [&](const Bytes& aBlock) {
        return Printed("Calibrate(0x%p, 0x%p, %d, 0x%p, 0x%p) Enter", Own.Handle(),
                       const_cast<void*>(static_cast<const void*>(aBlock.data())),
                       static_cast<int>(aBlock.size()), static_cast<void*>(aOut.data()),
                       static_cast<void*>(&nSize));
    };
    const auto Run = [&](Bytes& aBlock) {
        return LinesOf(
            [&] { Calibrate(Own.Handle(), aBlock.data(), aBlock.size(), aOut.data(), &nSize); });
    };
    EXPECT_EQ(Run(aIn), (Lines{Trace(Entered(aIn)), Leaving("Calibrate", -2)}));
    Own.Load();
    Own.m_Processor.m_GeometricBicubic.m_pData = &Own.m_Processor.m_CalibrationData;
    EXPECT_EQ(Run(aIn), (Lines{Trace(Entered(aIn)), Leaving("Calibrate", -21)}));
    EXPECT_EQ(Run(aIn), (Lines{Trace(Entered(aIn)), Leaving("Calibrate", 0)}));

    Bytes aLong = aIn;
    aLong.push_back(0);
    EXPECT_EQ(Run(aLong), (Lines{Trace(Entered(aLong)), Leaving("Calibrate", -21)}));
    Bytes aFile = aIn;
    aFile[0] = 'B';
    aFile[1] = 'M';
    ExpectCaught(Run(aFile), Entered(aFile), "Calibrate", -36, "Tools/Bitmap");
    Bytes aColour = Capture(8, 8, 24);
    ExpectCaught(Run(aColour), Entered(aColour), "Calibrate", -11,
                 "TessarinCalibrateSDK/IpCalibrateLumivane2");
    Bytes aSmall = Capture(47, 132);
    ExpectCaught(Run(aSmall), Entered(aSmall), "Calibrate", -14,
                 "Calibrate/IpCalibrateGeometricBase");
}

TEST(CallTrace, CalibrateLeavesTwoLinesForArgumentsThatItRefuses) {
    StOwnScanner Own;
    Own.Load();
    Bytes aIn = Capture();
    Bytes aOut(100000);
    unsigned long nSize = aOut.size();
    const auto Expect = [&](long nCode, Bytes* pIn, Bytes* pOut, unsigned long* pSize) {
        unsigned char* pInData = pIn != nullptr ? pIn->data() : nullptr;
        unsigned char* pOutData = pOut != nullptr ? pOut->data() : nullptr;
        EXPECT_EQ(LinesOf([&] { Calibrate(Own.Handle(), pInData, aIn.size(), pOutData, pSize); }),
                  (Lines{Trace(Printed("Calibrate(0x%p, 0x%p, %d, 0x%p, 0x%p) Enter", Own.Handle(),
                                       static_cast<void*>(pInData), static_cast<int>(aIn.size()),
                                       static_cast<void*>(pOutData), static_cast<void*>(pSize))),
                         Leaving("Calibrate", nCode)}));
    };
    Expect(-10, nullptr, &aOut, &nSize);
    Expect(-10, &aIn, &aIn, &nSize);
    Expect(-24, &aIn, &aOut, nullptr);
    Expect(-10, &aIn, nullptr, &nSize);
    Own.m_Processor.m_bDynamicFingerMask = true;
    Own.m_Processor.m_eGeometricMode = ClIpCalibrateLumivane2::eGeometricOff;
    Expect(-45, &aIn, &aOut, &nSize);
}

TEST(CallTrace, CalibrateShowsTheEngineAtWork) {
    StOwnScanner Own;
    Own.Load();
    Own.m_Processor.m_eGeometricMode = ClIpCalibrateLumivane2::eGeometricOff;
    Bytes aIn = Capture();
    Bytes aOut(100000);
    unsigned long nSize = aOut.size();
    const ClLogCapture Log;
    Calibrate(Own.Handle(), aIn.data(), aIn.size(), aOut.data(), &nSize);
    const Lines aInner(Log.Lines().begin() + 1, Log.Lines().end() - 1);
    EXPECT_EQ(aInner,
              (Lines{Trace("ClIpCalibrateQK7::IsInitialized() Enter"),
                     Trace("ClIpCalibrateQK7::IsInitialized() Leaving"),
                     Trace("ClIpCalibrateQK7::Process() Enter"),
                     Trace("ClIpCalibrateQK7::Process() Leaving(0), No errors occurred.")}));
}

TEST(CallTrace, ContaminationDetection) {
    StOwnScanner Own;
    Bytes aIn = Capture();
    aIn.push_back(0);
    double dResult = 0;
    const auto Entered = [&](void* pHandle, const void* pBitmap, void* pResult) {
        return Trace(Printed("ContaminationDetection(0x%p, 0x%p, %d, 0x%p) Enter", pHandle,
                             const_cast<void*>(pBitmap), static_cast<int>(aIn.size()), pResult));
    };
    EXPECT_EQ(
        LinesOf([&] { ContaminationDetection(nullptr, aIn.data(), aIn.size(), nullptr); }),
        (Lines{Entered(nullptr, aIn.data(), nullptr), Leaving("ContaminationDetection", -24)}));
    EXPECT_EQ(
        LinesOf([&] { ContaminationDetection(nullptr, aIn.data(), aIn.size(), &dResult); }),
        (Lines{Entered(nullptr, aIn.data(), &dResult), Leaving("ContaminationDetection", -42)}));
    EXPECT_EQ(
        LinesOf([&] { ContaminationDetection(Own.Handle(), nullptr, aIn.size(), &dResult); }),
        (Lines{Entered(Own.Handle(), nullptr, &dResult), Leaving("ContaminationDetection", -10)}));
    EXPECT_EQ(
        LinesOf([&] { ContaminationDetection(Own.Handle(), aIn.data(), aIn.size(), &dResult); }),
        (Lines{Entered(Own.Handle(), aIn.data(), &dResult),
               Leaving("ContaminationDetection", -21)}));
}

TEST(CallTrace, CalibrateCheckEfts) {
    StOwnScanner Own;
    Bytes aIn = Capture();
    double dResult = 0;
    const auto Entered = [&](void* pResult) {
        return Printed("CalibrateCheckEfts(0x%p, 0x%p, %d, 0x%p) Enter", Own.Handle(),
                       static_cast<void*>(aIn.data()), static_cast<int>(aIn.size()), pResult);
    };
    const auto Run = [&](double* pResult) {
        return LinesOf([&] { CalibrateCheckEfts(Own.Handle(), aIn.data(), aIn.size(), pResult); });
    };
    EXPECT_EQ(LinesOf([&] { CalibrateCheckEfts(Own.Handle(), nullptr, 5, nullptr); }),
              (Lines{Trace(Printed("CalibrateCheckEfts(0x%p, 0x%p, %d, 0x%p) Enter", Own.Handle(),
                                   Null(), 5, Null())),
                     Leaving("CalibrateCheckEfts", -10)}));
    EXPECT_EQ(Run(nullptr), (Lines{Trace(Entered(nullptr)), Leaving("CalibrateCheckEfts", -23)}));
    EXPECT_EQ(Run(&dResult), (Lines{Trace(Entered(&dResult)), Leaving("CalibrateCheckEfts", -2)}));
    aIn.push_back(0);
    EXPECT_EQ(Run(&dResult), (Lines{Trace(Entered(&dResult)), Leaving("CalibrateCheckEfts", -21)}));
    aIn[0] = 41;
    ExpectCaught(Run(&dResult), Entered(&dResult), "CalibrateCheckEfts", -32, "Tools/Bitmap");
}

// Data calls

TEST(CallTrace, SetReferenceDataSpellsItsNameWithADoubleF) {
    StOwnScanner Own;
    Bytes aBlock = RecordBlock(PlausibleRecord());
    const std::string Name = "CalibrateSetRefferenceData";
    const auto Run = [&](unsigned char* pData) {
        return LinesOf([&] { CalibrateSetReferenceData(Own.Handle(), pData, aBlock.size()); });
    };
    EXPECT_EQ(
        Run(aBlock.data()),
        (Lines{Trace(Enter(Name.c_str(), Own.Handle(), aBlock.data(), 1261)), Leaving(Name, 0)}));
    EXPECT_EQ(Run(nullptr),
              (Lines{Trace(Enter(Name.c_str(), Own.Handle(), nullptr, 1261)), Leaving(Name, -20)}));
    aBlock.back() ^= 1;
    ExpectCaught(Run(aBlock.data()), Enter(Name.c_str(), Own.Handle(), aBlock.data(), 1261), Name,
                 -39, "Calibrate/CalibrateGeometricData");
}

TEST(CallTrace, SetData) {
    StOwnScanner Own;
    Own.m_Processor.m_bPrecalculatedData = true;
    const char* szName = "CalibrateSetData";
    Bytes aBlock = RecordBlock(PlausibleRecord());
    const auto Run = [&](unsigned char* pData, unsigned long nSize) {
        return LinesOf([&] { CalibrateSetData(Own.Handle(), pData, nSize); });
    };
    EXPECT_EQ(Run(aBlock.data(), aBlock.size()),
              (Lines{Trace(Enter(szName, Own.Handle(), aBlock.data(), 1261)),
                     Trace("CalibrateSetData() Version of calibration data is 006"),
                     Leaving(szName, 0)}));
    EXPECT_EQ(Run(nullptr, 5),
              (Lines{Trace(Enter(szName, Own.Handle(), nullptr, 5)), Leaving(szName, -20)}));
    ExpectCaught(Run(aBlock.data(), 1260), Enter(szName, Own.Handle(), aBlock.data(), 1260), szName,
                 -201, "Unknown");
    ExpectCaught(Run(aBlock.data(), 0), Enter(szName, Own.Handle(), aBlock.data(), 0), szName, -201,
                 "Unknown");
}

TEST(CallTrace, SetDataShowsTheVersionOfAnyLayout) {
    StOwnScanner Own;
    Own.m_Processor.m_bPrecalculatedData = true;
    const auto VersionLine = [&](Bytes aBlock) {
        return LinesOf([&] { CalibrateSetData(Own.Handle(), aBlock.data(), aBlock.size()); })[1];
    };
    EXPECT_EQ(VersionLine(RecordBlock(PlausibleRecord(), 3)),
              Trace("CalibrateSetData() Version of calibration data is 003"));
    const TestSupport::StRecord Old = PlausibleRecord(390, 1052, 320, 480, 19685);
    EXPECT_EQ(VersionLine(RecordBlock(Old, 0, "002", "Cal", "Lmv")),
              Trace("CalibrateSetData() Version of calibration data is 002"));
    EXPECT_EQ(VersionLine(RecordBlock(PlausibleRecord(), 5, "5")),
              Trace("CalibrateSetData() Version of calibration data is 5"));
    EXPECT_EQ(VersionLine(RecordBlock(PlausibleRecord(), 6, "9876")), // no terminating zero
              Trace("CalibrateSetData() Version of calibration data is 9876"));
}

TEST(CallTrace, GetData) {
    StOwnScanner Own;
    const auto Run = [&](unsigned char* pData, unsigned long* pSize) {
        return LinesOf([&] { CalibrateGetData(Own.Handle(), pData, pSize); });
    };
    unsigned long nSize = 7;
    Bytes aOut(2000);
    const auto Entered = [&](void* pData, void* pSize) {
        return Trace(
            Printed("CalibrateGetData(0x%p, 0x%p, 0x%p) Enter", Own.Handle(), pData, pSize));
    };
    EXPECT_EQ(Run(nullptr, nullptr),
              (Lines{Entered(nullptr, nullptr), Leaving("CalibrateGetData", -24)}));
    EXPECT_EQ(Run(nullptr, &nSize),
              (Lines{Entered(nullptr, &nSize), Leaving("CalibrateGetData", -2)}));
    Own.Load();
    EXPECT_EQ(Run(nullptr, &nSize),
              (Lines{Entered(nullptr, &nSize), Trace("CalibrateGetData OldSize=7 NewSize=1261"),
                     Leaving("CalibrateGetData", -21)}));
    EXPECT_EQ(Run(nullptr, &nSize),
              (Lines{Entered(nullptr, &nSize), Trace("CalibrateGetData OldSize=1261 NewSize=1261"),
                     Leaving("CalibrateGetData", -20)}));
    nSize = aOut.size();
    EXPECT_EQ(Run(aOut.data(), &nSize), (Lines{Entered(aOut.data(), &nSize),
                                               Trace("CalibrateGetData OldSize=2000 NewSize=1261"),
                                               Leaving("CalibrateGetData", 0)}));
}

TEST(CallTrace, SetAndGetPrecalculatedData) {
    StOwnScanner Own;
    Bytes aRecord = RecordBlock(PlausibleRecord());
    const char* szSet = "CalibrateSetPrecalculatedData";
    Bytes aBlock = PrecalculatedBlock(TestSupport::TableOf(), HashOf(PlausibleRecord()));
    const int nBlock = static_cast<int>(aBlock.size());
    const auto Set = [&](unsigned char* pData) {
        return LinesOf([&] { CalibrateSetPrecalculatedData(Own.Handle(), pData, aBlock.size()); });
    };
    EXPECT_EQ(Set(nullptr),
              (Lines{Trace(Enter(szSet, Own.Handle(), nullptr, nBlock)), Leaving(szSet, -20)}));
    ExpectCaught(Set(aBlock.data()), Enter(szSet, Own.Handle(), aBlock.data(), nBlock), szSet, -37,
                 "TessarinCalibrateSDK/CalibrationBlocks");
    CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size());
    EXPECT_EQ(Set(aBlock.data()),
              (Lines{Trace(Enter(szSet, Own.Handle(), aBlock.data(), nBlock)),
                     Trace("CalibrateSetPrecalculatedData() Version of calibration data is 001"),
                     Leaving(szSet, 0)}));

    unsigned long nSize = 0;
    EXPECT_EQ(LinesOf([&] { CalibrateGetPrecalculatedData(Own.Handle(), nullptr, &nSize); }),
              (Lines{Trace(Printed("CalibrateGetPrecalculatedData(0x%p, 0x%p, 0x%p) Enter",
                                   Own.Handle(), Null(), static_cast<void*>(&nSize))),
                     Trace(Printed("CalibrateGetPrecalculatedData OldSize=0 NewSize=%d", nBlock)),
                     Leaving("CalibrateGetPrecalculatedData", -21)}));
}

TEST(CallTrace, GetPrecalculatedData) {
    StOwnScanner Own;
    const std::string Name = "CalibrateGetPrecalculatedData";
    unsigned long nSize = 100000;
    const auto Run = [&](unsigned long* pSize) {
        return LinesOf([&] { CalibrateGetPrecalculatedData(Own.Handle(), nullptr, pSize); });
    };
    const auto Entered = [&](unsigned long* pSize) {
        return Trace(Printed("CalibrateGetPrecalculatedData(0x%p, 0x%p, 0x%p) Enter", Own.Handle(),
                             Null(), static_cast<void*>(pSize)));
    };
    EXPECT_EQ(Run(nullptr), (Lines{Entered(nullptr), Leaving(Name, -24)}));
    EXPECT_EQ(Run(&nSize), (Lines{Entered(&nSize), Leaving(Name, -2)}));
    Bytes aRecord = RecordBlock(PlausibleRecord());
    CalibrateSetData(Own.Handle(), aRecord.data(), aRecord.size());
    EXPECT_EQ(
        Run(&nSize), // 40 x 60 entries behind header, hash and record, an end magic
        (Lines{Entered(&nSize), Trace("CalibrateGetPrecalculatedData OldSize=100000 NewSize=86526"),
               Leaving(Name, -20)}));
}

TEST(CallTrace, GenerateData) {
    StOwnScanner Own;
    const char* szName = "CalibrateGenerateData";
    Bytes aIn = Capture(8, 8, 24);
    const auto Run = [&](unsigned char* pData, unsigned long nSize) {
        return LinesOf([&] { CalibrateGenerateData(Own.Handle(), pData, nSize); });
    };
    const int nSize = static_cast<int>(aIn.size());
    EXPECT_EQ(Run(nullptr, 9),
              (Lines{Trace(Enter(szName, Own.Handle(), nullptr, 9)), Leaving(szName, -10)}));
    EXPECT_EQ(Run(aIn.data(), 39),
              (Lines{Trace(Enter(szName, Own.Handle(), aIn.data(), 39)), Leaving(szName, -21)}));
    ExpectCaught(Run(aIn.data(), aIn.size()), Enter(szName, Own.Handle(), aIn.data(), nSize),
                 szName, -11, "TessarinCalibrateSDK/IpCalibrateLumivane2");
}

TEST(CallTrace, SizesArePrintedAsInt) {
    StOwnScanner Own;
    EXPECT_EQ(LinesOf([&] { CalibrateSetData(Own.Handle(), nullptr, 0x100000005UL); })[0],
              Trace(Enter("CalibrateSetData", Own.Handle(), nullptr, 5)));
    EXPECT_EQ(LinesOf([&] { CalibrateSetData(Own.Handle(), nullptr, ~0UL); })[0],
              Trace(Enter("CalibrateSetData", Own.Handle(), nullptr, -1)));
}
