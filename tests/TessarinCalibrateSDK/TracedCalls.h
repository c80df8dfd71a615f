#pragma once

/// Every exported call that takes a handle, with arguments that it accepts.

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "support/BitmapBlocks.h"
#include "support/Tables.h"

#include <ostream>
#include <string>
#include <vector>

namespace TestSupport {

/// A handle with calibration data, and what the calls work on.
struct StBench : StOwnHandle<> {
    StBench() {
        Fill(PlausibleRecord(), m_Processor.m_CalibrationData);
        m_Processor.m_GeometricBicubic.m_pData = &m_Processor.m_CalibrationData;
        m_Processor.m_bDynamicFingerMask = false;
        StHead Head;
        Head.m_nWidth = 48;
        Head.m_nHeight = 132;
        m_aCapture = UsualBlock(Head);
    }

    Bytes m_aCapture;
    Bytes m_aRecord = RecordBlock(PlausibleRecord());
    Bytes m_aTable = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    Bytes m_aOut = Bytes(200000);
    unsigned long m_nOut = 200000;
    double m_dFirst = 0.0;
    double m_dSecond = 0.0;
};

/// The Enter line of a call that takes a block of this size.
inline std::string EnterWithBlock(const char* szFunction, void* pHandle, Bytes& rBlock) {
    return Printed("%s(0x%p, 0x%p, %d) Enter", szFunction, pHandle,
                   static_cast<void*>(rBlock.data()), static_cast<int>(rBlock.size()));
}

struct StTracedCall {
    const char* m_szName;      ///< as its lines spell it
    const char* m_szInnerLine; ///< beginning of a line from within its work; null without a frame
    bool m_bDropsData;         ///< whether a known exception drops the calibration data
    std::string (*m_pEnter)(StBench& rBench, void* pHandle);
    long (*m_pCall)(StBench& rBench, void* pHandle);
};

inline std::ostream& operator<<(std::ostream& rOut, const StTracedCall& Call) {
    return rOut << Call.m_szName;
}

namespace Calls {

inline const StTracedCall cCalibrate = {
    "Calibrate", "ClIpCalibrateQK7::Process() Enter", false,
    [](StBench& r, void* pHandle) {
        return Printed("Calibrate(0x%p, 0x%p, %d, 0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(r.m_aCapture.data()),
                       static_cast<int>(r.m_aCapture.size()), static_cast<void*>(r.m_aOut.data()),
                       static_cast<void*>(&r.m_nOut));
    },
    [](StBench& r, void* pHandle) {
        return Calibrate(pHandle, r.m_aCapture.data(), r.m_aCapture.size(), r.m_aOut.data(),
                         &r.m_nOut);
    }};

inline const StTracedCall cContamination = {
    "ContaminationDetection", "Result of contamination detection", false,
    [](StBench& r, void* pHandle) {
        return Printed("ContaminationDetection(0x%p, 0x%p, %d, 0x%p) Enter", pHandle,
                       static_cast<void*>(r.m_aCapture.data()),
                       static_cast<int>(r.m_aCapture.size()), static_cast<void*>(&r.m_dFirst));
    },
    [](StBench& r, void* pHandle) {
        return ContaminationDetection(pHandle, r.m_aCapture.data(), r.m_aCapture.size(),
                                      &r.m_dFirst);
    }};

inline const StTracedCall cCheckEfts = {
    "CalibrateCheckEfts", "ClIpCalibrateQK7::Compare() Enter", false,
    [](StBench& r, void* pHandle) {
        return Printed("CalibrateCheckEfts(0x%p, 0x%p, %d, 0x%p) Enter", pHandle,
                       static_cast<void*>(r.m_aCapture.data()),
                       static_cast<int>(r.m_aCapture.size()), static_cast<void*>(&r.m_dFirst));
    },
    [](StBench& r, void* pHandle) {
        return CalibrateCheckEfts(pHandle, r.m_aCapture.data(), r.m_aCapture.size(), &r.m_dFirst);
    }};

inline const StTracedCall cGenerate = {
    "CalibrateGenerateData", "ClIpCalibrateQK7::Setup() Enter", true,
    [](StBench& r, void* pHandle) {
        return EnterWithBlock("CalibrateGenerateData", pHandle, r.m_aCapture);
    },
    [](StBench& r, void* pHandle) {
        return CalibrateGenerateData(pHandle, r.m_aCapture.data(), r.m_aCapture.size());
    }};

// The double f is the name that logs are searched for.
inline const StTracedCall cSetReference = {
    "CalibrateSetRefferenceData", "ClIpCalibrateQK7::ReadTarget() Enter", true,
    [](StBench& r, void* pHandle) {
        return EnterWithBlock("CalibrateSetRefferenceData", pHandle, r.m_aRecord);
    },
    [](StBench& r, void* pHandle) {
        return CalibrateSetReferenceData(pHandle, r.m_aRecord.data(), r.m_aRecord.size());
    }};

inline const StTracedCall cSetData = {
    "CalibrateSetData", "ClIpCalibrateQK7::Read() Enter", true,
    [](StBench& r, void* pHandle) {
        return EnterWithBlock("CalibrateSetData", pHandle, r.m_aRecord);
    },
    [](StBench& r, void* pHandle) {
        return CalibrateSetData(pHandle, r.m_aRecord.data(), r.m_aRecord.size());
    }};

inline const StTracedCall cSetPrecalculated = {
    "CalibrateSetPrecalculatedData", "ClIpCalibrateQK7::ReadPrecalculatedData() Enter", true,
    [](StBench& r, void* pHandle) {
        return EnterWithBlock("CalibrateSetPrecalculatedData", pHandle, r.m_aTable);
    },
    [](StBench& r, void* pHandle) {
        return CalibrateSetPrecalculatedData(pHandle, r.m_aTable.data(), r.m_aTable.size());
    }};

inline const StTracedCall cGetData = {
    "CalibrateGetData", "ClIpCalibrateQK7::Write() Enter", false,
    [](StBench& r, void* pHandle) {
        return Printed("CalibrateGetData(0x%p, 0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(r.m_aOut.data()), static_cast<void*>(&r.m_nOut));
    },
    [](StBench& r, void* pHandle) {
        return CalibrateGetData(pHandle, r.m_aOut.data(), &r.m_nOut);
    }};

inline const StTracedCall cGetPrecalculated = {
    "CalibrateGetPrecalculatedData", "ClIpCalibrateQK7::WritePrecalculatedData() Enter", false,
    [](StBench& r, void* pHandle) {
        return Printed("CalibrateGetPrecalculatedData(0x%p, 0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(r.m_aOut.data()), static_cast<void*>(&r.m_nOut));
    },
    [](StBench& r, void* pHandle) {
        return CalibrateGetPrecalculatedData(pHandle, r.m_aOut.data(), &r.m_nOut);
    }};

inline char szSensitive[] = "SensitiveMode";

inline const StTracedCall cSetOption = {
    "CalibrateSetOption", nullptr, false,
    [](StBench&, void* pHandle) {
        return Printed("CalibrateSetOption(0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(szSensitive));
    },
    [](StBench&, void* pHandle) { return CalibrateSetOption(pHandle, szSensitive); }};

inline const StTracedCall cGetOption = {
    "CalibrateGetOption", nullptr, false,
    [](StBench& r, void* pHandle) {
        return Printed("CalibrateGetOption(0x%p, 0x%p, 0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(szSensitive), static_cast<void*>(r.m_aOut.data()),
                       static_cast<void*>(&r.m_nOut));
    },
    [](StBench& r, void* pHandle) {
        return CalibrateGetOption(pHandle, szSensitive, reinterpret_cast<char*>(r.m_aOut.data()),
                                  &r.m_nOut);
    }};

inline const StTracedCall cWarningLevels = {
    "GetCalibrationWarningLevels", nullptr, false,
    [](StBench& r, void* pHandle) {
        return Printed("GetCalibrationWarningLevels(0x%p, 0x%p, 0x%p) Enter", pHandle,
                       static_cast<void*>(&r.m_dFirst), static_cast<void*>(&r.m_dSecond));
    },
    [](StBench& r, void* pHandle) {
        return GetCalibrationWarningLevels(pHandle, &r.m_dFirst, &r.m_dSecond);
    }};

} // namespace Calls

/// Those with a frame that catches what their work throws.
inline std::vector<StTracedCall> FramedCalls() {
    using namespace Calls;
    return {cCalibrate, cContamination,    cCheckEfts, cGenerate,        cSetReference,
            cSetData,   cSetPrecalculated, cGetData,   cGetPrecalculated};
}

inline std::vector<StTracedCall> AllCalls() {
    std::vector<StTracedCall> aCalls = FramedCalls();
    aCalls.insert(aCalls.end(), {Calls::cSetOption, Calls::cGetOption, Calls::cWarningLevels});
    return aCalls;
}

} // namespace TestSupport
