// Steps with handles, options, levels and words.

#include "calls/CallSequence.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cctype>
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
    ExpectStatus({ContaminationDetection(pHandle, acBlock, sizeof acBlock, nullptr), false},
                 {QMT_ERROR_TEMPLATE_SIZE_PTR});
    Refused(ContaminationDetection(pHandle, nullptr, 0, &dResult));
    dResult = 7.0;
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

// Any text that the header allows

struct StValue {
    const char* m_szValue;
    bool m_bOn; ///< of a boolean option
    EGeometry m_eGeometry;
};

const StValue caValues[] = {
    {"true", true, EGeometry::eSpline},
    {"enable", true, EGeometry::eSpline},
    {"false", false, EGeometry::eOddLines},
    {"disable", false, EGeometry::eOddLines},
    {"ThinPlateSpline", false, EGeometry::eSpline}, // these three of the geometry alone
    {"oddLines", false, EGeometry::eOddLines},
    {"off", false, EGeometry::eOff},
};
constexpr std::uint32_t cnBooleanValues = 4;

struct StBoolean {
    const char* m_szKey;
    bool StOptions::*m_pOption;
};

const StBoolean caBooleans[] = {
    {"DynamicFingerMask", &StOptions::m_bDynamicFingerMask},
    {"SensitiveMode", &StOptions::m_bSensitiveMode},
    {"MaskIsOutput", &StOptions::m_bMaskIsOutput},
    {"PrecalculatedData", &StOptions::m_bPrecalculatedData},
};

std::string InAnyCase(ClChoices& rChoices, std::string Word) {
    for (char& rLetter : Word)
        if (rChoices.OneIn(3))
            rLetter = static_cast<char>(std::isupper(rLetter) != 0 ? std::tolower(rLetter)
                                                                   : std::toupper(rLetter));
    return Word;
}

/// A key or a value as it may be written: by its beginning, in any case.
std::string AnyForm(ClChoices& rChoices, const char* szWord) {
    static const char* const caszBehind[] = {"", "", " ", "X", "_2", " and more"};
    return InAnyCase(rChoices, szWord) + rChoices.Of(caszBehind);
}

std::string AnyOptionText(ClChoices& rChoices, StOptions& rOptions) {
    const std::uint32_t nKey = rChoices.Below(5);
    const bool bGeometry = nKey == 4;
    const StValue& Value = caValues[rChoices.Below(bGeometry ? 7 : cnBooleanValues)];
    if (bGeometry)
        rOptions.m_eGeometry = Value.m_eGeometry;
    else
        rOptions.*caBooleans[nKey].m_pOption = Value.m_bOn;
    const char* const szKey = bGeometry ? "GeometricCalibrate" : caBooleans[nKey].m_szKey;
    return AnyForm(rChoices, szKey) + "=" + std::string(rChoices.Below(3), ' ') +
           AnyForm(rChoices, Value.m_szValue);
}

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
    if (m_rChoices.OneIn(2)) {
        StOptions Options = rSlot.m_Model.m_Options;
        const std::string Form = AnyOptionText(m_rChoices, Options);
        Note("CalibrateSetOption", Form.size(), Form.c_str());
        ExpectStatus(Try([&] { return CalibrateSetOption(rSlot.m_pHandle, Form.c_str()); }),
                     {QMT_SUCCESS});
        rSlot.m_Model.m_Options = Options;
        return;
    }
    const StText& Text = m_rChoices.Of(caTexts);
    const char* const szShown = Text.m_szText != nullptr ? Text.m_szText : "(null)";
    Note("CalibrateSetOption", std::strlen(szShown), szShown);
    ExpectStatus(Try([&] { return CalibrateSetOption(rSlot.m_pHandle, Text.m_szText); }),
                 {Text.m_pSet != nullptr ? QMT_SUCCESS : QMT_ERROR_PARAM_IS_MISSING});
    if (Text.m_pSet != nullptr)
        Text.m_pSet(rSlot.m_Model.m_Options);
}

void ClCallSequence::Configure(StSlot& rSlot) {
    const StText& Text = m_rChoices.Of(caUsual);
    Note("CalibrateSetOption", std::strlen(Text.m_szText), Text.m_szText);
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
    Note("CalibrateGetOption", nGiven, Key.m_szKey != nullptr ? Key.m_szKey : "(null)");
    const StAnswer Answer = Try([&] {
        return CalibrateGetOption(rSlot.m_pHandle, Key.m_szKey,
                                  bValue ? reinterpret_cast<char*>(pValue) : nullptr, &nSize);
    });
    if (Key.m_pText == nullptr) {
        ExpectStatus(Answer, {QMT_ERROR_PARAM_IS_MISSING});
        Expect(nSize == nGiven && m_Out.IsUntouchedBehind(0), "leaves size and value");
        ExpectStatus(
            Try([&] { return CalibrateGetOption(rSlot.m_pHandle, Key.m_szKey, nullptr, nullptr); }),
            {Key.m_szKey != nullptr ? QMT_ERROR_TEMPLATE_SIZE_PTR : QMT_ERROR_PARAM_IS_MISSING});
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
    const StLevels Levels = {dDirt, dDryFinger};
    std::vector<StLevels>& rKnown = rSlot.m_Model.m_aLevels;
    Expect(rKnown.empty() || std::find(rKnown.begin(), rKnown.end(), Levels) != rKnown.end(),
           "gives both levels of the last capture");
    rKnown = {Levels}; // which stay until the next one
    double dOne = -1.0;
    const bool bDirt = m_rChoices.OneIn(2);
    ExpectStatus(Try([&] {
                     return GetCalibrationWarningLevels(rSlot.m_pHandle, bDirt ? &dOne : nullptr,
                                                        bDirt ? nullptr : &dOne);
                 }),
                 {QMT_SUCCESS});
    Expect(!(dOne < (bDirt ? dDirt : dDryFinger)) && !(dOne > (bDirt ? dDirt : dDryFinger)),
           "gives one level alone");
    ExpectStatus(
        Try([&] { return GetCalibrationWarningLevels(rSlot.m_pHandle, nullptr, nullptr); }),
        {QMT_SUCCESS});
}

namespace {

/// The numbers that the header names.
const long canNumbers[] = {
    QMT_SUCCESS,
    QMT_ERROR_INITIALIZED,
    QMT_ERROR_NOT_INITIALIZED,
    QMT_ERROR_BITMAP_PTR,
    QMT_ERROR_BITMAP_PLANE,
    QMT_ERROR_BITMAP_BITCOUNT,
    QMT_ERROR_BITMAP_PELS,
    QMT_ERROR_BITMAP_DIMENSION,
    QMT_ERROR_BITMAP_NO_FINGER,
    QMT_ERROR_BITMAP_COMPRESSION,
    QMT_ERROR_BITMAP_HEADERSIZE,
    QMT_ERROR_TEMPLATE_PTR,
    QMT_ERROR_TEMPLATE_SIZE,
    QMT_ERROR_TEMPLATE_PTRPTR,
    QMT_ERROR_TEMPLATE_PTR_NULL,
    QMT_ERROR_TEMPLATE_SIZE_PTR,
    QMT_ERROR_FORMAT_NOTSUPPORTED,
    QMT_ERROR_PARAM_OUT_OF_RANGE,
    QMT_ERROR_BITMAP_UNEXPECTED_FILEHEADER,
    QMT_ERROR_PARAM_IS_MISSING,
    QMT_ERROR_CURRUPT_BYTECODE,
    QMT_ERROR_CURRUPT_DATA,
    QMT_ERROR_UNEXPECTED_SIGNATURE,
    QMT_ERROR_NO_HANDLE,
    QMT_ERROR_INVALID_HANDLE,
    QMT_ERROR_INVALID_PARAMETER,
    QMT_ERROR_INVALID_OPTIONS_SETTING,
    QMT_ERROR_PARAM_VALUE_DUPLICATE,
    QMT_ERROR_INTERNAL,
    QMT_ERROR_OUT_OF_MEMORY,
    QMT_FATAL_ERROR_TERMINATION_NECESSARY,
    QMT_ERROR_FROM_SYSTEM_FUNCTION,
    QMT_ERROR_FILE_OPEN_FAIL,
    QMT_ERROR_UNEXPECTED_EOF,
    QMT_ERROR_WRITE_FAIL,
    QMT_ERROR_IO,
    QMT_ERROR_BMP_NO_SIGNATURE,
    QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE,
    QMT_ERROR_BAD_POINTER,
};

bool IsNumber(long nCode) {
    return std::find(std::begin(canNumbers), std::end(canNumbers), nCode) != std::end(canNumbers);
}

} // namespace

void ClCallSequence::Describe(StSlot& /*rSlot*/) {
    const long nCode = m_rChoices.OneIn(2) ? m_rChoices.Of(canNumbers)
                                           : 100 - static_cast<long>(m_rChoices.Below(1024));
    Note("CalibrateGetErrorDescription", static_cast<std::size_t>(std::labs(nCode)));
    const char* szText = CalibrateGetErrorDescription(nCode);
    Expect(szText != nullptr && szText[0] != 0 && szText == GetErrorDescriptionIntern(nCode),
           "has words for every number");
    const std::wstring Wide = GetErrorDescriptionInternW(nCode);
    Expect(std::wstring(szText, szText + std::strlen(szText)) == Wide, "has them as wide text");
    Expect((std::strcmp(szText, "Unknown error code.") != 0) == IsNumber(nCode),
           "has words of their own for the numbers that there are");
}

} // namespace Calls
