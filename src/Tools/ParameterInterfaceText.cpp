#include "Tools/Allocate.h"
#include "Tools/ParameterInterface.h"
#include "Tools/PlainLocale.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>

using ClEntry = ClParameterInterface::ClParameter;

namespace {

const char* NextName(const char* pName) {
    return pName + std::strlen(pName) + 1;
}

/// The bytes of a list of names, with the empty name at its end.
std::size_t ListBytes(const char* pList) {
    const char* pName = pList;
    while (*pName != '\0')
        pName = NextName(pName);
    return static_cast<std::size_t>(pName - pList) + 1;
}

long CountNames(const char* pList) {
    long nCount = 0;
    for (; *pList != '\0'; pList = NextName(pList))
        ++nCount;
    return nCount;
}

/// The name at a position, or null.
const char* NameAt(const char* pList, long nIndex) {
    for (; *pList != '\0'; pList = NextName(pList))
        if (nIndex-- == 0)
            return pList;
    return nullptr;
}

[[noreturn]] void ThrowTooSmall() {
    throw ClException("The buffer size is too small.", QMT_ERROR_INTERNAL, true, VEK_HERE);
}

/// `nLength` is what `snprintf` returned.
char* CheckFits(int nLength, char* pBuffer, long nSize) {
    if (nLength < 0 || nLength >= nSize)
        ThrowTooSmall();
    return pBuffer;
}

char* CopyText(const char* pText, char* pBuffer, long nSize) {
    const std::size_t nBytes = std::strlen(pText) + 1;
    if (pBuffer == nullptr || nSize < 0 || nBytes > static_cast<std::size_t>(nSize))
        ThrowTooSmall();
    std::memcpy(pBuffer, pText, nBytes);
    return pBuffer;
}

char* FmtReal(char* pBuffer, long nSize, double dValue) {
    const Vek::ClPlainLocale plain;
    return CheckFits(std::snprintf(pBuffer, static_cast<std::size_t>(nSize), "%.5f", dValue),
                     pBuffer, nSize);
}

/// A 16-bit angle, itself and in degrees.
char* FmtAngle(char* pBuffer, long nSize, unsigned short nAngle) {
    const Vek::ClPlainLocale plain;
    constexpr double cdBy65535 = 1.5259021896696422e-5;
    const double dDegrees = (nAngle * 360 + 0.5) * cdBy65535;
    return CheckFits(
        std::snprintf(pBuffer, static_cast<std::size_t>(nSize), "%hu=%.3f\xB0", nAngle, dDegrees),
        pBuffer, nSize);
}

} // namespace

const char* ClEntry::szType() const {
    switch (m_eType) {
    case eByte:
        return "eByte";
    case eShort:
        return "eShort";
    case eAngle:
        return "eAngle";
    case eLong:
        return "eLong";
    case eDouble:
        return "eDouble";
    case eFloat:
        return "eFloat";
    case eVoid:
        return "eVoid";
    case eImage:
        return "eImage";
    case eBool:
        return "eBool";
    case eEnum:
        return "eEnum";
    case eGraph:
        return "eGraph";
    default:
        return "Unknown";
    }
}

const char* ClEntry::szDir() const {
    switch (m_eDirection) {
    case eIn:
        return "eIn";
    case eOut:
        return "eOut";
    case eInOut:
        return "eInOut";
    case eOptional:
        return "eOptional";
    default:
        return "Unknown";
    }
}

// Named values

void ClEntry::SetEnumList(const char* pList, const long* pValues) {
    std::unique_ptr<char[]> List;
    std::unique_ptr<long[]> Values;
    if (pList != nullptr) {
        const std::size_t nBytes = ListBytes(pList);
        List = Vek::NewArrayPtr<char>(nBytes);
        std::copy_n(pList, nBytes, List.get());
    }
    if (pList != nullptr && pValues != nullptr) {
        const auto nNames = static_cast<std::size_t>(CountNames(pList));
        Values = Vek::NewArrayPtr<long>(nNames);
        std::copy_n(pValues, nNames, Values.get());
    }
    delete[] m_szEnumList;
    delete[] m_aEnumValues;
    m_szEnumList = List.release();
    m_aEnumValues = Values.release();
}

void ClEntry::SetEnum(long nValue) {
    if (m_bLocked || m_pValue == nullptr)
        return;
    if (IsInteger())
        WriteInteger(m_pValue, nValue);
    else
        SetValue(static_cast<double>(nValue));
}

void ClEntry::SetEnum(const char* pName) {
    if (m_szEnumList == nullptr)
        throw ClException("m_szEnumList is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    if (pName == nullptr)
        return;
    long nIndex = 0;
    for (const char* p = m_szEnumList; *p != '\0'; p = NextName(p), ++nIndex)
        if (std::strcmp(p, pName) == 0)
            return SetEnum(m_aEnumValues != nullptr ? m_aEnumValues[nIndex] : nIndex);
}

/// The position of a value's name, or -1.
long ClEntry::EnumIndex(long nValue) const {
    if (m_aEnumValues == nullptr || m_szEnumList == nullptr)
        return nValue < 1 ? 0 : nValue;
    const long* pEnd = m_aEnumValues + CountNames(m_szEnumList);
    const long* pFound = std::find<const long*>(m_aEnumValues, pEnd, nValue);
    return pFound != pEnd ? pFound - m_aEnumValues : -1;
}

char* ClEntry::EnumToStr(long nValue, const char* pList, char* pBuffer, long nSize) const {
    const char* pName = pList != nullptr ? NameAt(pList, EnumIndex(nValue)) : nullptr;
    return CopyText(pName != nullptr ? pName : "No Enum Val", pBuffer, nSize);
}

// Texts

char* ClEntry::FmtInt(char* pBuffer, long nSize, const char* pList, long nValue) const {
    if (pList != nullptr)
        return EnumToStr(nValue, pList, pBuffer, nSize);
    char szNumber[24]; // 20 characters are the most
    *std::to_chars(szNumber, std::end(szNumber) - 1, nValue).ptr = '\0';
    return CopyText(szNumber, pBuffer, nSize);
}

const char* ClEntry::GetszValue(void* pValue) const {
    static char acText[256];
    constexpr long cnSize = sizeof acText;
    if (pValue == nullptr && m_eType != eImage && m_eType != eGraph)
        return "Unknown";
    switch (m_eType) {
    case eByte:
    case eShort:
    case eLong:
        return FmtInt(acText, cnSize, m_szEnumList, ReadInteger(pValue));
    case eAngle:
        return FmtAngle(acText, cnSize, static_cast<unsigned short>(ReadInteger(pValue)));
    case eDouble:
    case eFloat:
        return FmtReal(acText, cnSize, ReadNumber(pValue));
    case eImage:
        return "Image";
    case eBool:
    case eEnum:
        return EnumToStr(ReadInteger(pValue), m_szEnumList, acText, cnSize);
    case eString:
        return static_cast<const char*>(pValue);
    case eGraph:
        return "Graph";
    default:
        return "Unknown";
    }
}
