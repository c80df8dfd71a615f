#include "ImageProcessing/SettingsText.h"

#include "Tools/Exception.h"
#include "Tools/PlainLocale.h"

#include <cstdarg>
#include <cstdio>

long WriteSettings(char* pBuffer, unsigned long nSize, const char* pFormat, ...) {
    if (pBuffer == nullptr)
        nSize = 0;
    va_list arguments;
    va_start(arguments, pFormat);
    const Vek::ClPlainLocale plain;
    const int nLength = std::vsnprintf(pBuffer, nSize, pFormat, arguments);
    va_end(arguments);
    if (nLength < 0 || static_cast<unsigned long>(nLength) >= nSize)
        throw ClException("String-Length exceeded available size", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    return nLength;
}
