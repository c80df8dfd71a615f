// Steps with handles, options, levels and words.

#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <cstring>

namespace Calls {

void ClCallSequence::Create(StSlot& rSlot) {
    Note("CalibrateCreate");
    const long nAfter = ChooseFault();
    m_rFaults.Arm(nAfter);
    try {
        rSlot.m_pHandle = CalibrateCreate();
    } catch (...) { // of an allocator that throws, the one exception that gets out
        rSlot.m_pHandle = nullptr;
    }
    const bool bFault = m_rFaults.Disarm();
    Expect(bFault || rSlot.m_pHandle != nullptr, "gives a handle");
    rSlot.m_Model = ClHandleModel();
}

void ClCallSequence::Delete(StSlot& rSlot) {
    Note("CalibrateDelete");
    ExpectStatus(Try([&] { return CalibrateDelete(&rSlot.m_pHandle); }), {QMT_SUCCESS});
    Expect(rSlot.m_pHandle == nullptr, "sets the handle to null");
    ExpectStatus(Try([&] { return CalibrateDelete(&rSlot.m_pHandle); }), {QMT_ERROR_NO_HANDLE});
    ExpectStatus(Try([] { return CalibrateDelete(nullptr); }), {QMT_ERROR_TEMPLATE_PTRPTR});
}

/// Every function with a handle that is none.
void ClCallSequence::Misuse(StSlot& /*rSlot*/) {
    const Bytes aForeign(64, 0x43);
    unsigned char* const pForeign = m_In.Hold(aForeign);
    void* pHandle = m_rChoices.OneIn(2) ? pForeign : nullptr;
    const Statuses anExpected = {pHandle != nullptr ? QMT_ERROR_INVALID_HANDLE
                                                    : QMT_ERROR_NO_HANDLE};
    unsigned char acBlock[8] = {};
    unsigned char acOut[8] = {};
    unsigned long nSize = sizeof acOut;
    double dResult = 7.0;
    Note("a call without a handle");
    const auto Refused = [&](long nStatus) { ExpectStatus({nStatus, false}, anExpected); };
    void* const pBefore = pHandle;
    Refused(CalibrateDelete(&pHandle));
    Expect(pHandle == pBefore, "keeps what is no handle");
    Refused(CalibrateSetOption(pHandle, "SensitiveMode=true"));
    Refused(CalibrateGetOption(pHandle, "SensitiveMode", reinterpret_cast<char*>(acOut), &nSize));
    Refused(GetCalibrationWarningLevels(pHandle, &dResult, &dResult));
    Refused(Calibrate(pHandle, acBlock, sizeof acBlock, acOut, &nSize));
    Refused(CalibrateCheckEfts(pHandle, acBlock, sizeof acBlock, &dResult));
    Refused(CalibrateSetData(pHandle, acBlock, sizeof acBlock));
    Refused(CalibrateGetData(pHandle, acOut, &nSize));
    Refused(CalibrateSetPrecalculatedData(pHandle, acBlock, sizeof acBlock));
    Refused(CalibrateGetPrecalculatedData(pHandle, acOut, &nSize));
    Refused(CalibrateSetReferenceData(pHandle, acBlock, sizeof acBlock));
    Refused(CalibrateGenerateData(pHandle, acBlock, sizeof acBlock));
    Expect(nSize == sizeof acOut && !(dResult < 7.0) && !(dResult > 7.0), "leaves its results");
    Refused(ContaminationDetection(pHandle, acBlock, sizeof acBlock, &dResult));
    Expect(dResult > 100.5, "tells that nothing was measured");
    ExpectInput(aForeign);
}

namespace {

struct StText {
    const char* m_szText;
    void (*m_pSet)(StOptions&); ///< null for a text that is refused
};

const StText caTexts[] = {
    {"DynamicFingerMask=true", [](StOptions& r) { r.m_bDynamicFingerMask = true; }},
    {"dynamicfingermask =  disable", [](StOptions& r) { r.m_bDynamicFingerMask = false; }},
    {"SensitiveMode=enable", [](StOptions& r) { r.m_bSensitiveMode = true; }},
    {"SENSITIVEMODEX=falsely", [](StOptions& r) { r.m_bSensitiveMode = false; }},
    {"MaskIsOutput=true", [](StOptions& r) { r.m_bMaskIsOutput = true; }},
    {"MaskIsOutput=false", [](StOptions& r) { r.m_bMaskIsOutput = false; }},
    {"PrecalculatedData=Enable", [](StOptions& r) { r.m_bPrecalculatedData = true; }},
    {"GeometricCalibrate=off", [](StOptions& r) { r.m_eGeometry = EGeometry::eOff; }},
    {"GeometricCalibrate=false", [](StOptions& r) { r.m_eGeometry = EGeometry::eOddLines; }},
    {"GeometricCalibrate=oddLines", [](StOptions& r) { r.m_eGeometry = EGeometry::eOddLines; }},
    {"geometricCalibrate = TRUE", [](StOptions& r) { r.m_eGeometry = EGeometry::eSpline; }},
    {"GeometricCalibrate=ThinPlateSpline",
     [](StOptions& r) { r.m_eGeometry = EGeometry::eSpline; }},
    {nullptr, nullptr},
    {"", nullptr},
    {"SensitiveMode", nullptr},
    {"SensitiveMode=", nullptr},
    {"SensitiveMode=yes", nullptr},
    {"GeometricCalibrate=on", nullptr},
    {"NoSuchKey=true", nullptr},
    {" SensitiveMode=true", nullptr},
};

/// Where most of a sequence is spent: no dynamic step, and no table prepared at each load.
const StText caUsual[] = {
    {"DynamicFingerMask=false", [](StOptions& r) { r.m_bDynamicFingerMask = false; }},
    {"PrecalculatedData=true", [](StOptions& r) { r.m_bPrecalculatedData = true; }},
    {"GeometricCalibrate=ThinPlateSpline",
     [](StOptions& r) { r.m_eGeometry = EGeometry::eSpline; }},
};

struct StKey {
    const char* m_szKey;
    const char* (*m_pText)(const StOptions&);
};

template <bool StOptions::*pOption>
const char* SwitchText(const StOptions& Options) {
    return Options.*pOption ? "Enabled" : "Disabled";
}

const char* GeometryText(const StOptions& Options) {
    static const char* const caszTexts[] = {"off", "oddLines", "ThinPlateSpline"};
    return caszTexts[static_cast<int>(Options.m_eGeometry)];
}

const StKey caKeys[] = {
    {"DynamicFingerMask", SwitchText<&StOptions::m_bDynamicFingerMask>},
    {"sensitivemode", SwitchText<&StOptions::m_bSensitiveMode>},
    {"MaskIsOutput", SwitchText<&StOptions::m_bMaskIsOutput>},
    {"PRECALCULATEDDATA", SwitchText<&StOptions::m_bPrecalculatedData>},
    {"GeometricCalibrate", GeometryText},
    {"SensitiveModeX", nullptr},
    {"", nullptr},
    {nullptr, nullptr},
};

} // namespace

void ClCallSequence::SetOption(StSlot& rSlot) {
    Note("CalibrateSetOption");
    const StText& Text = m_rChoices.Of(caTexts);
    ExpectStatus(Try([&] { return CalibrateSetOption(rSlot.m_pHandle, Text.m_szText); }),
                 {Text.m_pSet != nullptr ? QMT_SUCCESS : QMT_ERROR_PARAM_IS_MISSING});
    if (Text.m_pSet != nullptr)
        Text.m_pSet(rSlot.m_Model.m_Options);
}

void ClCallSequence::Configure(StSlot& rSlot) {
    Note("CalibrateSetOption");
    const StText& Text = m_rChoices.Of(caUsual);
    ExpectStatus(Try([&] { return CalibrateSetOption(rSlot.m_pHandle, Text.m_szText); }),
                 {QMT_SUCCESS});
    Text.m_pSet(rSlot.m_Model.m_Options);
}

void ClCallSequence::GetOption(StSlot& rSlot) {
    static const unsigned long canSizes[] = {0, 1, 4, 8, 9, 15, 16, 40};
    const StKey& Key = m_rChoices.Of(caKeys);
    const unsigned long nGiven = m_rChoices.Of(canSizes);
    const bool bValue = !m_rChoices.OneIn(4);
    unsigned long nSize = nGiven;
    unsigned char* const pValue = m_Out.Offer(nGiven);
    Note("CalibrateGetOption", nGiven);
    const StAnswer Answer = Try([&] {
        return CalibrateGetOption(rSlot.m_pHandle, Key.m_szKey,
                                  bValue ? reinterpret_cast<char*>(pValue) : nullptr, &nSize);
    });
    if (Key.m_pText == nullptr) {
        ExpectStatus(Answer, {QMT_ERROR_PARAM_IS_MISSING});
        Expect(nSize == nGiven && m_Out.IsUntouchedBehind(0), "leaves size and value");
        return;
    }
    const std::string Text = Key.m_pText(rSlot.m_Model.m_Options);
    const bool bFits = Text.size() + 1 <= nGiven;
    ExpectStatus(Answer, {bFits ? QMT_SUCCESS : QMT_ERROR_TEMPLATE_SIZE});
    Expect(nSize == Text.size() + 1, "tells the size of the value");
    const std::size_t nWritten = bFits && bValue ? Text.size() + 1 : 0;
    Expect(m_Out.IsUntouchedBehind(nWritten), "writes the value and no more");
    Expect(nWritten == 0 || std::memcmp(m_Out.Data(), Text.c_str(), nWritten) == 0,
           "gives the value that was set");
    ExpectStatus(
        Try([&] { return CalibrateGetOption(rSlot.m_pHandle, Key.m_szKey, nullptr, nullptr); }),
        {QMT_ERROR_TEMPLATE_SIZE_PTR});
}

void ClCallSequence::GetLevels(StSlot& rSlot) {
    Note("GetCalibrationWarningLevels");
    double dDirt = -1.0;
    double dDryFinger = -1.0;
    ExpectStatus(
        Try([&] { return GetCalibrationWarningLevels(rSlot.m_pHandle, &dDirt, &dDryFinger); }),
        {QMT_SUCCESS});
    if (rSlot.m_Model.m_Levels)
        Expect(*rSlot.m_Model.m_Levels == std::make_pair(dDirt, dDryFinger),
               "gives the levels of the last capture");
    ExpectStatus(
        Try([&] { return GetCalibrationWarningLevels(rSlot.m_pHandle, nullptr, nullptr); }),
        {QMT_SUCCESS});
}

void ClCallSequence::Describe(StSlot& /*rSlot*/) {
    Note("CalibrateGetErrorDescription");
    const long nCode = -static_cast<long>(m_rChoices.Below(1024));
    const char* szText = CalibrateGetErrorDescription(nCode);
    Expect(szText != nullptr && szText[0] != 0 && szText == GetErrorDescriptionIntern(nCode),
           "has words for every number");
    const std::wstring Wide = GetErrorDescriptionInternW(nCode);
    Expect(std::wstring(szText, szText + std::strlen(szText)) == Wide, "has them as wide text");
}

} // namespace Calls
