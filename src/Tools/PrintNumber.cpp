#include "Tools/PrintNumber.h"

#include "Tools/PlainLocale.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace Vek {

namespace {

static_assert(sizeof(long) == sizeof(long long) && sizeof(std::intmax_t) == sizeof(long long) &&
                  sizeof(std::size_t) == sizeof(long long) &&
                  sizeof(std::ptrdiff_t) == sizeof(long long),
              "all long lengths take the same argument");

/// What `snprintf` has to be handed.
enum class EArgument { eNone, eInt, eLong, eDouble, eLongDouble, eUnknown };

/// The conversions of a format.
struct StConversions {
    int m_nCount = 0;
    int m_nStars = 0;
    EArgument m_eArgument = EArgument::eNone; ///< of the last one
};

/// Whether `c` is one of a set; the terminator is none.
bool IsOneOf(char c, const char* pSet) {
    return c != '\0' && std::strchr(pSet, c) != nullptr;
}

bool IsLength(const char* pLength, std::size_t nLength, const char* pOther) {
    return nLength == std::strlen(pOther) && std::strncmp(pLength, pOther, nLength) == 0;
}

template <std::size_t N>
bool IsAmong(const char* pLength, std::size_t nLength, const char* const (&aszOthers)[N]) {
    for (const char* pOther : aszOthers)
        if (IsLength(pLength, nLength, pOther))
            return true;
    return false;
}

/// The argument of a conversion of type `cType`, whose length has `nLength` letters.
EArgument ArgumentOf(const char* pLength, std::size_t nLength, char cType) {
    static const char* const caszShort[] = {"", "h", "hh"};
    static const char* const caszLong[] = {"l", "ll", "q", "j", "z", "t"};
    static const char* const caszReal[] = {"", "l"};
    if (IsOneOf(cType, "diouxX") && IsAmong(pLength, nLength, caszShort))
        return EArgument::eInt;
    if (IsOneOf(cType, "diouxX") && IsAmong(pLength, nLength, caszLong))
        return EArgument::eLong;
    if (cType == 'c' && IsAmong(pLength, nLength, caszReal))
        return EArgument::eInt;
    if (IsOneOf(cType, "aAeEfFgG") && IsAmong(pLength, nLength, caszReal))
        return EArgument::eDouble;
    if (IsOneOf(cType, "aAeEfFgG") && IsLength(pLength, nLength, "L"))
        return EArgument::eLongDouble;
    return EArgument::eUnknown;
}

/// Notes the conversion behind a '%' and returns what follows it.
const char* ReadConversion(const char* p, StConversions& found) {
    ++found.m_nCount;
    for (; IsOneOf(*p, "-+ #0'123456789.*"); ++p)
        found.m_nStars += *p == '*';
    const char* pLength = p;
    while (IsOneOf(*p, "hlqjztL"))
        ++p;
    found.m_eArgument = ArgumentOf(pLength, static_cast<std::size_t>(p - pLength), *p);
    return *p != '\0' ? p + 1 : p;
}

StConversions FindConversions(const char* pFormat) {
    StConversions found;
    while ((pFormat = std::strchr(pFormat, '%')) != nullptr) {
        ++pFormat;
        pFormat = *pFormat == '%' ? pFormat + 1 : ReadConversion(pFormat, found);
    }
    return found;
}

/// Where the text goes.
struct StAnswer {
    char* m_pBuffer;
    unsigned long& m_rSize;
};

template <class... Arguments>
bool Print(const char* pFormat, const StAnswer& answer, Arguments... arguments) {
    const ClPlainLocale plain;
    const int nLength = std::snprintf(nullptr, 0, pFormat, arguments...);
    if (nLength < 0)
        return false;
    const bool bEnough = answer.m_rSize > static_cast<unsigned long>(nLength);
    answer.m_rSize = static_cast<unsigned long>(nLength) + 1;
    if (bEnough && answer.m_pBuffer != nullptr)
        std::snprintf(answer.m_pBuffer, answer.m_rSize, pFormat, arguments...);
    return bEnough;
}

long long ToInteger(long long nValue) {
    return nValue;
}
long long ToInteger(double dValue) {
    constexpr double cdTwoTo63 = 9223372036854775808.0;
    return dValue >= -cdTwoTo63 && dValue < cdTwoTo63 ? static_cast<long long>(dValue) : 0;
}

template <class Value>
bool PrintAs(const char* pFormat, int nPrecision, Value value, const StAnswer& answer) {
    const StConversions found = FindConversions(pFormat);
    const auto print = [&](auto argument) {
        return found.m_nStars > 0 ? Print(pFormat, answer, nPrecision, argument)
                                  : Print(pFormat, answer, argument);
    };
    if (found.m_nCount > 1 || found.m_nStars > 1)
        return false;
    switch (found.m_eArgument) {
    case EArgument::eNone:
    case EArgument::eInt:
        return print(static_cast<int>(ToInteger(value)));
    case EArgument::eLong:
        return print(ToInteger(value));
    case EArgument::eDouble:
        return print(static_cast<double>(value));
    case EArgument::eLongDouble:
        return print(static_cast<long double>(value));
    default:
        return false;
    }
}

} // namespace

bool PrintNumber(const char* pFormat, int nPrecision, double dValue, char* pBuffer,
                 unsigned long& nSize) {
    return PrintAs(pFormat, nPrecision, dValue, {pBuffer, nSize});
}

bool PrintNumber(const char* pFormat, int nPrecision, long long nValue, char* pBuffer,
                 unsigned long& nSize) {
    return PrintAs(pFormat, nPrecision, nValue, {pBuffer, nSize});
}

} // namespace Vek
