#include "Tools/Parameter.h"

#include "Tools/FormatText.h"
#include "Tools/ParameterEnum.h"
#include "Tools/ParameterNumeric.h"
#include "Tools/Text.h"

#include <TessarinCalibrateSDK.h>

#include <cstdio>

// Every failure that tells a parameter's name is raised here, so that the templates stay small.
// Missing texts show as empty ones.

namespace Vek {

void ThrowAbstractFunction() {
    throw ClException("Abstract function", QMT_ERROR_INTERNAL, true, VEK_HERE);
}

void ThrowUnbound(const char* pName) {
    const auto pWords = FormatText("Parameter \"%s\" is not bound", TextOrEmpty(pName));
    throw ClException(pWords.get(), QMT_ERROR_BAD_POINTER, true, VEK_HERE);
}

void ThrowNotANumber(const char* pName, const char* pText) {
    const auto pWords = FormatText("Failed to set parameter \"%s\" to value \"%s\"",
                                   TextOrEmpty(pName), TextOrEmpty(pText));
    throw ClException(pWords.get(), QMT_ERROR_INVALID_PARAMETER, true, VEK_HERE);
}

void ThrowOutOfRange(const char* pName) {
    const auto pWords = FormatText("Value out of range for parameter \"%s\"", TextOrEmpty(pName));
    throw ClExRange(pWords.get(), QMT_ERROR_PARAM_OUT_OF_RANGE, true, VEK_HERE);
}

void ThrowUnknownValueName(const char* pName, const char* pText) {
    const auto pWords = FormatText("Value \"%s\" out of range for parameter \"%s\"",
                                   TextOrEmpty(pText), TextOrEmpty(pName));
    throw ClException(pWords.get(), QMT_ERROR_PARAM_OUT_OF_RANGE, true, VEK_HERE);
}

void ThrowUnprintableValue(const char* pName, const char* pText) {
    const auto pWords = FormatText("Parameter \"%s\" out of range using value \"%s\"",
                                   TextOrEmpty(pName), TextOrEmpty(pText));
    throw ClException(pWords.get(), QMT_ERROR_PARAM_OUT_OF_RANGE, true, VEK_HERE);
}

void ThrowMissingName() {
    throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
}

void ThrowDuplicate() {
    throw ClExTessarin(QMT_ERROR_PARAM_VALUE_DUPLICATE, VEK_HERE);
}

namespace {

bool AnswerPrinted(int nLength, const char* pText, const char* pName, char* pBuffer,
                   unsigned long& nSize) {
    if (nLength < 0)
        ThrowUnprintableValue(pName, pText);
    return AnswerText(pText, static_cast<std::size_t>(nLength), pBuffer, nSize);
}

} // namespace

bool AnswerPointer(const void* pValue, const char* pName, char* pBuffer, unsigned long& nSize) {
    if (pValue == nullptr)
        return AnswerText("NULL", pBuffer, nSize);
    char szText[32] = "";
    const int nLength = std::snprintf(szText, sizeof szText, "%p", pValue);
    return AnswerPrinted(nLength, szText, pName, pBuffer, nSize);
}

bool AnswerInteger(int nValue, const char* pName, char* pBuffer, unsigned long& nSize) {
    char szText[32] = "";
    const int nLength = std::snprintf(szText, sizeof szText, "%d", nValue);
    return AnswerPrinted(nLength, szText, pName, pBuffer, nSize);
}

} // namespace Vek

ClParameterEnumInterface::~ClParameterEnumInterface() = default;
