// Handle, options and levels: the exported functions that never reach into the engine's work.

#include "TessarinCalibrateSDK/CallFrame.h"
#include "Tools/Text.h"

#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr char cacHead[4] = {'C', 'A', 'L', 0};
constexpr char cacTail[4] = {'L', 'A', 'C', 0};

/// Releases memory of the ordinary allocator in which no object was built.
struct StRelease {
    void operator()(void* p) const noexcept { ::operator delete(p); }
};

/// `new T` that works with an allocator that answers with null as well as with one that throws;
/// null where it answered so.
template <class T>
T* Construct() {
    std::unique_ptr<void, StRelease> pMemory(::operator new(sizeof(T)));
    if (pMemory == nullptr)
        return nullptr;
    T* pObject = ::new (pMemory.get()) T();
    static_cast<void>(pMemory.release()); // the object has it now
    return pObject;
}

/// A boolean option of the processor.
struct StBoolOption {
    const char* m_szKey;
    bool ClIpCalibrateLumivane2::*m_pValue;
};

constexpr StBoolOption cDynamicFingerMask = {"DynamicFingerMask",
                                             &ClIpCalibrateLumivane2::m_bDynamicFingerMask};
constexpr StBoolOption cSensitiveMode = {"SensitiveMode",
                                         &ClIpCalibrateLumivane2::m_bSensitiveMode};
constexpr StBoolOption cMaskIsOutput = {"MaskIsOutput", &ClIpCalibrateLumivane2::m_bMaskIsOutput};
constexpr StBoolOption cPrecalculatedData = {"PrecalculatedData",
                                             &ClIpCalibrateLumivane2::m_bPrecalculatedData};
constexpr StBoolOption caBoolOptions[] = {cDynamicFingerMask, cSensitiveMode, cMaskIsOutput,
                                          cPrecalculatedData};
constexpr const char* cszGeometricCalibrate = "GeometricCalibrate";

/// What stands behind the first equals sign and the blanks behind it. Throws -37 without one.
const char* ValueOf(const char* option) {
    const char* szValue = std::strchr(option, '=');
    if (szValue == nullptr)
        throw static_cast<long>(QMT_ERROR_PARAM_IS_MISSING);
    do
        ++szValue;
    while (*szValue == ' ');
    return szValue;
}

bool TryBoolOption(const char* option, const StBoolOption& Option, ClIpCalibrateLumivane2& rTo) {
    return CheckBoolOption(option, Option.m_szKey, rTo.*Option.m_pValue);
}

/// Sets the one option that the text names. All are tried, in this order.
bool TryOptions(ClIpCalibrateLumivane2& rProcessor, const char* option) {
    bool bFound = TryBoolOption(option, cDynamicFingerMask, rProcessor);
    bFound |= TryBoolOption(option, cSensitiveMode, rProcessor);
    bFound |= CheckGeometricOption(option, rProcessor.m_eGeometricMode);
    bFound |= TryBoolOption(option, cMaskIsOutput, rProcessor);
    bFound |= TryBoolOption(option, cPrecalculatedData, rProcessor);
    return bFound;
}

long SetOption(ClIpCalibrateLumivane2& rProcessor, const char* option) {
    if (option == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    try {
        return TryOptions(rProcessor, option) ? QMT_SUCCESS : QMT_ERROR_PARAM_IS_MISSING;
    } catch (long nThrown) {
        return nThrown;
    }
}

const char* GeometricText(ClIpCalibrateLumivane2::EGeometricMode eMode) {
    switch (eMode) {
    case ClIpCalibrateLumivane2::eGeometricOff:
        return "off";
    case ClIpCalibrateLumivane2::eOddLines:
        return "oddLines";
    default:
        return "ThinPlateSpline";
    }
}

/// The value of an option as text, null for an unknown key.
const char* OptionText(const ClIpCalibrateLumivane2& rProcessor, const char* key) {
    for (const StBoolOption& Option : caBoolOptions)
        if (Vek::IsSameName(key, Option.m_szKey))
            return rProcessor.*Option.m_pValue ? "Enabled" : "Disabled";
    if (Vek::IsSameName(key, cszGeometricCalibrate))
        return GeometricText(rProcessor.m_eGeometricMode);
    return nullptr;
}

/// Copies a text by the size protocol.
long AnswerText(const char* szText, char* value, unsigned long* valueSize) {
    const unsigned long nNeeded = std::strlen(szText) + 1;
    const bool bFits = nNeeded <= *valueSize;
    *valueSize = nNeeded;
    if (!bFits)
        return QMT_ERROR_TEMPLATE_SIZE;
    if (value != nullptr)
        std::memcpy(value, szText, nNeeded);
    return QMT_SUCCESS;
}

long GetOption(const ClIpCalibrateLumivane2& rProcessor, const char* key, char* value,
               unsigned long* valueSize) {
    if (key == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    if (valueSize == nullptr)
        return QMT_ERROR_TEMPLATE_SIZE_PTR;
    const char* szText = OptionText(rProcessor, key);
    return szText != nullptr ? AnswerText(szText, value, valueSize) : QMT_ERROR_PARAM_IS_MISSING;
}

long NoChecks(const ClIpCalibrateLumivane2&) {
    return QMT_SUCCESS;
}

} // namespace

extern "C" {

long CheckHandle(void* handle, ClIpCalibrateLumivane2** processor) {
    if (handle == nullptr)
        return QMT_ERROR_NO_HANDLE;
    if (processor == nullptr)
        return QMT_ERROR_INVALID_HANDLE;
    *processor = nullptr;
    const auto* pRecord = static_cast<const CalibrateHandle_t*>(handle);
    if (std::memcmp(pRecord->m_acHead, cacHead, sizeof cacHead) != 0 ||
        std::memcmp(pRecord->m_acTail, cacTail, sizeof cacTail) != 0 ||
        pRecord->m_pProcessor == nullptr)
        return QMT_ERROR_INVALID_HANDLE;
    *processor = pRecord->m_pProcessor;
    return QMT_SUCCESS;
}

bool CheckBoolOption(const char* option, const char* key, bool& value) {
    if (!Vek::BeginsWithName(option, key))
        return false;
    const char* szValue = ValueOf(option);
    if (Vek::BeginsWithName(szValue, "true") || Vek::BeginsWithName(szValue, "enable"))
        value = true;
    else if (Vek::BeginsWithName(szValue, "false") || Vek::BeginsWithName(szValue, "disable"))
        value = false;
    else
        throw static_cast<long>(QMT_ERROR_PARAM_IS_MISSING);
    return true;
}

bool CheckGeometricOption(const char* option, ClIpCalibrateLumivane2::EGeometricMode& mode) {
    struct StWord {
        const char* m_szWord;
        ClIpCalibrateLumivane2::EGeometricMode m_eMode;
    };
    // "false" asks for no splines, not for no correction: only "off" turns the step out.
    static constexpr StWord caWords[] = {
        {"true", ClIpCalibrateLumivane2::eThinPlateSpline},
        {"enable", ClIpCalibrateLumivane2::eThinPlateSpline},
        {"false", ClIpCalibrateLumivane2::eOddLines},
        {"disable", ClIpCalibrateLumivane2::eOddLines},
        {"off", ClIpCalibrateLumivane2::eGeometricOff},
        {"oddLines", ClIpCalibrateLumivane2::eOddLines},
        {"ThinPlateSpline", ClIpCalibrateLumivane2::eThinPlateSpline},
    };
    if (!Vek::BeginsWithName(option, cszGeometricCalibrate))
        return false;
    const char* szValue = ValueOf(option);
    for (const StWord& Word : caWords)
        if (Vek::BeginsWithName(szValue, Word.m_szWord)) {
            mode = Word.m_eMode;
            return true;
        }
    throw static_cast<long>(QMT_ERROR_PARAM_IS_MISSING);
}

void* CalibrateCreate(void) {
    VekLFLog(Vek::eLogTrace, "CalibrateCreate() Enter");
    std::unique_ptr<CalibrateHandle_t> pRecord(Construct<CalibrateHandle_t>());
    if (pRecord == nullptr) {
        VekLFLog(Vek::eLogError,
                 "CalibrateCreate() leaving: Couldn't create calibration CalibrateHandle_t!");
        return nullptr;
    }
    std::unique_ptr<ClIpCalibrateLumivane2> pProcessor(Construct<ClIpCalibrateLumivane2>());
    if (pProcessor == nullptr) {
        VekLFLog(Vek::eLogError, "CalibrateCreate() leaving: Couldn't create calibration object!");
        return nullptr;
    }
    std::memcpy(pRecord->m_acHead, cacHead, sizeof cacHead);
    std::memcpy(pRecord->m_acTail, cacTail, sizeof cacTail);
    VekLFLog(Vek::eLogTrace, "CalibrateCreate() Leaving"); // may end the thread
    pRecord->m_pProcessor = pProcessor.release();
    return pRecord.release();
}

long CalibrateDelete(void** handle) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateDelete", "0x%p");
    CallFrame::Enter(Texts, handle);
    if (handle == nullptr)
        return CallFrame::Leave(Texts, QMT_ERROR_TEMPLATE_PTRPTR);
    return CallFrame::OnHandle(Texts, *handle, NoChecks, [&](ClIpCalibrateLumivane2& rProcessor) {
        delete &rProcessor;
        delete static_cast<CalibrateHandle_t*>(*handle);
        *handle = nullptr;
        return QMT_SUCCESS;
    });
}

long CalibrateSetOption(void* handle, const char* option) {
    static constexpr auto Texts = TESSARIN_CALL_TEXTS("CalibrateSetOption", "0x%p, 0x%p");
    return CallFrame::AnswerWithHandle(
        Texts, std::tuple(handle, option),
        [&](ClIpCalibrateLumivane2& rProcessor) { return SetOption(rProcessor, option); });
}

long CalibrateGetOption(void* handle, const char* key, char* value, unsigned long* valueSize) {
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("CalibrateGetOption", "0x%p, 0x%p, 0x%p, 0x%p");
    return CallFrame::AnswerWithHandle(Texts, std::tuple(handle, key, value, valueSize),
                                       [&](const ClIpCalibrateLumivane2& rProcessor) {
                                           return GetOption(rProcessor, key, value, valueSize);
                                       });
}

long GetCalibrationWarningLevels(void* handle, double* dirtLevel, double* dryFingerLevel) {
    static constexpr auto Texts =
        TESSARIN_CALL_TEXTS("GetCalibrationWarningLevels", "0x%p, 0x%p, 0x%p");
    return CallFrame::AnswerWithHandle(
        Texts, std::tuple(handle, dirtLevel, dryFingerLevel),
        [&](const ClIpCalibrateLumivane2& rProcessor) {
            if (dirtLevel != nullptr)
                *dirtLevel = rProcessor.m_DynamicCalibration.m_dDirtWarningLevel;
            if (dryFingerLevel != nullptr)
                *dryFingerLevel = rProcessor.m_DynamicCalibration.m_dDryFingerWarningLevel;
            return QMT_SUCCESS;
        });
}

const char* CalibrateGetErrorDescription(long code) {
    const char* szText = GetErrorDescriptionIntern(code);
    VekLFLog(Vek::eLogTrace, "CalibrateGetErrorDescription(%d): %s", static_cast<int>(code),
             szText);
    return szText;
}

} // extern "C"
