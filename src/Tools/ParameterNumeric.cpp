#include "Tools/ParameterNumeric.h"

#include "Tools/PlainLocale.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

ClParameterNumericInterface::~ClParameterNumericInterface() = default;

void ClParameterNumericInterface::SetFormat(const char* pFormat) {
    TpArrayStatic<char> aCopy;
    if (pFormat != nullptr) {
        const std::size_t nBytes = std::strlen(pFormat) + 1;
        aCopy.New(nBytes);
        std::copy_n(pFormat, nBytes, aCopy.Data());
    }
    m_aFormat = aCopy;
}

void ClParameterNumericInterface::CopyNumericTo(ClParameterNumericInterface& Target) const {
    Target.m_aFormat = m_aFormat;
    Target.m_dScale = m_dScale;
    Target.m_nPrecision = m_nPrecision;
}

namespace Vek {

template <>
bool IsEqual<double>(const double& a, const double& b) {
    if (std::isnan(a) || std::isnan(b))
        return std::isnan(a) && std::isnan(b);
    // The difference of equal infinities is NaN, and that is not greater.
    return !(std::fabs(a - b) > std::numeric_limits<double>::epsilon());
}

namespace {

/// Value of a hexadecimal digit, or -1.
int DigitValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const char cLower = static_cast<char>(c | 0x20);
    return cLower >= 'a' && cLower <= 'f' ? cLower - 'a' + 10 : -1;
}

bool ParseHexadecimal(const char* pText, long double& dValue) {
    std::uint64_t nValue = 0;
    for (; *pText != '\0'; ++pText) {
        const int nDigit = DigitValue(*pText);
        if (nDigit < 0 || nValue >> 60 != 0)
            return false;
        nValue = nValue << 4 | static_cast<std::uint64_t>(nDigit);
    }
    dValue = static_cast<long double>(nValue);
    return true;
}

bool ParseDecimal(const char* pText, long double& dValue) {
    const ClPlainLocale plain;
    char* pEnd = nullptr;
    errno = 0;
    const double dParsed = std::strtod(pText, &pEnd);
    const bool bOverflow = errno == ERANGE && std::isinf(dParsed);
    dValue = dParsed;
    return *pEnd == '\0' && !bOverflow;
}

} // namespace

bool ParseNumber(const char* pText, long double& dValue) {
    const char* pLast = nullptr;
    for (const char* p = pText; *p != '\0'; ++p)
        if (*p == 'x' || *p == 'X')
            pLast = p;
    return pLast != nullptr ? ParseHexadecimal(pLast + 1, dValue) : ParseDecimal(pText, dValue);
}

} // namespace Vek
