#include "Tools/ParameterNumeric.h"

#include "Tools/TextAnswer.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

ClParameterNumericInterface::~ClParameterNumericInterface() = default;

void ClParameterNumericInterface::SetFormat(const char* pFormat) {
    TpArrayStatic<char> aCopy;
    if (pFormat != nullptr) {
        const std::size_t nBytes = std::strlen(pFormat) + 1;
        aCopy.New(nBytes);
        std::memcpy(aCopy.Data(), pFormat, nBytes);
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
    char* pEnd = nullptr;
    errno = 0;
    const double dParsed = std::strtod(pText, &pEnd);
    const bool bOverflow = errno == ERANGE && std::isinf(dParsed);
    dValue = dParsed;
    return *pEnd == '\0' && !bOverflow;
}

/// What a `printf` format takes besides its text: one conversion, to be complete and safe.
struct StConversion {
    int m_nCount = 0;   ///< conversions found
    int m_nStars = 0;   ///< '*' in them
    int m_nLongs = 0;   ///< 'l' in the length
    char m_cType = 0;   ///< the conversion character
    bool m_bFit = true; ///< no length other than 'h' and 'l'
};

/// Reads the conversion behind a '%' and returns what follows it.
const char* ReadConversion(const char* p, StConversion& found) {
    ++found.m_nCount;
    for (; *p != '\0' && std::strchr("-+ #0123456789.*", *p) != nullptr; ++p)
        found.m_nStars += *p == '*';
    for (; *p != '\0' && std::strchr("hlLqjzt", *p) != nullptr; ++p) {
        found.m_nLongs += *p == 'l';
        found.m_bFit = found.m_bFit && (*p == 'h' || *p == 'l');
    }
    found.m_cType = *p;
    return *p != '\0' ? p + 1 : p;
}

StConversion FindConversion(const char* pFormat) {
    StConversion found;
    while ((pFormat = std::strchr(pFormat, '%')) != nullptr) {
        ++pFormat;
        if (*pFormat == '%')
            ++pFormat;
        else
            pFormat = ReadConversion(pFormat, found);
    }
    return found;
}

/// Whether the format is text alone or takes one value of a conversion among `pTypes`, of a length
/// that a value of 64-bit integer (`bLong`) or of another type has, and a precision before it if
/// `bStar`.
bool Takes(const char* pFormat, const char* pTypes, bool bLong, bool bStar) {
    const StConversion found = FindConversion(pFormat);
    if (found.m_nCount == 0)
        return true;
    return found.m_nCount == 1 && found.m_bFit && found.m_cType != '\0' &&
           std::strchr(pTypes, found.m_cType) != nullptr && (found.m_nLongs > 0) == bLong &&
           found.m_nStars == (bStar ? 1 : 0);
}

template <class Value>
bool Print(const char* pFormat, bool bStar, int nPrecision, Value value, char* pBuffer,
           unsigned long& nSize) {
    const auto print = [&](char* pTarget, std::size_t nBytes) {
        return bStar ? std::snprintf(pTarget, nBytes, pFormat, nPrecision, value)
                     : std::snprintf(pTarget, nBytes, pFormat, value);
    };
    const int nLength = print(nullptr, 0);
    if (nLength < 0)
        return false;
    const bool bEnough = nSize > static_cast<unsigned long>(nLength);
    nSize = static_cast<unsigned long>(nLength) + 1;
    if (bEnough && pBuffer != nullptr)
        print(pBuffer, nSize);
    return bEnough;
}

bool HoldsStar(const char* pFormat) {
    return std::strchr(pFormat, '*') != nullptr;
}

} // namespace

bool ParseNumber(const char* pText, long double& dValue) {
    const char* pLast = nullptr;
    for (const char* p = pText; *p != '\0'; ++p)
        if (*p == 'x' || *p == 'X')
            pLast = p;
    return pLast != nullptr ? ParseHexadecimal(pLast + 1, dValue) : ParseDecimal(pText, dValue);
}

bool PrintNumber(const char* pFormat, int nPrecision, double dValue, char* pBuffer,
                 unsigned long& nSize) {
    const bool bStar = HoldsStar(pFormat);
    return Takes(pFormat, "aAeEfFgG", false, bStar) &&
           Print(pFormat, bStar, nPrecision, dValue, pBuffer, nSize);
}

bool PrintNumber(const char* pFormat, int nPrecision, int nValue, char* pBuffer,
                 unsigned long& nSize) {
    const bool bStar = HoldsStar(pFormat);
    return Takes(pFormat, "diouxXc", false, bStar) &&
           Print(pFormat, bStar, nPrecision, nValue, pBuffer, nSize);
}

bool PrintNumber(const char* pFormat, int nPrecision, long long nValue, char* pBuffer,
                 unsigned long& nSize) {
    const bool bStar = HoldsStar(pFormat);
    return Takes(pFormat, "diouxX", true, bStar) &&
           Print(pFormat, bStar, nPrecision, nValue, pBuffer, nSize);
}

} // namespace Vek
