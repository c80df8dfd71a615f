#include "Tools/ParameterBase.h"
#include "Tools/ParameterInterface.h"

#include <cstring>

using ClEntry = ClParameterInterface::ClParameter;

namespace {

template <class T>
T Load(const void* pFrom) {
    T value;
    std::memcpy(&value, pFrom, sizeof value);
    return value;
}

template <class T>
void Store(void* pTo, T value) {
    std::memcpy(pTo, &value, sizeof value);
}

long Truncated(double dValue) {
    constexpr double cdTwoTo63 = 9223372036854775808.0;
    return dValue >= -cdTwoTo63 && dValue < cdTwoTo63 ? static_cast<long>(dValue) : 0;
}

} // namespace

ClEntry::~ClParameter() {
    delete[] m_szEnumList;
    delete[] m_aEnumValues;
    delete[] m_szName;
    delete[] m_szDescription;
}

// Names

const char* ClEntry::GetName() const {
    return m_szName != nullptr ? m_szName : "Noname";
}

const char* ClEntry::GetDescription() const {
    return m_szDescription != nullptr ? m_szDescription : "NoDescription";
}

void ClEntry::SetName(const char* pName) {
    ClParameterBase::SetString(&m_szName, pName);
}

void ClEntry::SetDescription(const char* pDescription) {
    ClParameterBase::SetString(&m_szDescription, pDescription);
}

// Range

void ClEntry::SetRange(double dLower, double dUpper) {
    m_dLower = dLower;
    m_dUpper = dUpper;
    m_eKind = dLower == dUpper ? eNoRange : eOrdinary;
}

bool ClEntry::RangeDefined() const {
    return m_eKind != eNoRange && (m_dLower < m_dUpper || m_dLower > m_dUpper);
}

// The bound variable

bool ClEntry::IsInteger() const {
    return m_eType == eByte || m_eType == eShort || m_eType == eAngle || m_eType == eLong ||
           m_eType == eBool || m_eType == eEnum;
}

std::size_t ClEntry::Width() const {
    if (m_nWidth != 0)
        return m_nWidth;
    switch (m_eType) {
    case eByte:
    case eBool:
        return 1;
    case eShort:
    case eAngle:
        return 2;
    default:
        return 8;
    }
}

long ClEntry::ReadInteger(const void* pFrom) const {
    switch (Width()) {
    case 1:
        return Load<unsigned char>(pFrom);
    case 2:
        return m_eType == eAngle ? Load<unsigned short>(pFrom) : Load<short>(pFrom);
    case 4:
        return Load<int>(pFrom);
    default:
        return Load<long>(pFrom);
    }
}

void ClEntry::WriteInteger(void* pTo, long nValue) const {
    if (m_eType == eBool)
        nValue = nValue != 0 ? 1 : 0;
    switch (Width()) {
    case 1:
        return Store(pTo, static_cast<unsigned char>(nValue));
    case 2:
        return Store(pTo, static_cast<unsigned short>(nValue));
    case 4:
        return Store(pTo, static_cast<unsigned int>(nValue));
    default:
        return Store(pTo, nValue);
    }
}

double ClEntry::ReadNumber(const void* pFrom) const {
    if (m_eType == eDouble)
        return Load<double>(pFrom);
    if (m_eType == eFloat)
        return Load<float>(pFrom);
    return IsInteger() ? static_cast<double>(ReadInteger(pFrom)) : 0.0;
}

double ClEntry::GetValue() const {
    return m_pValue != nullptr ? ReadNumber(m_pValue) : 0.0;
}

void ClEntry::SetValue(double dValue) {
    if (!m_bLocked)
        SetValue(m_pValue, dValue);
}

void ClEntry::SetValue(void* pTarget, double dValue) const {
    if (pTarget == nullptr)
        return;
    if (m_eType == eDouble)
        Store(pTarget, dValue);
    else if (m_eType == eFloat)
        Store(pTarget, static_cast<float>(dValue));
    else if (m_eType == eBool)
        WriteInteger(pTarget, dValue != 0.0 ? 1 : 0);
    else if (IsInteger())
        WriteInteger(pTarget, Truncated(dValue));
}

void ClEntry::SetValue(ClImage* pImage) {
    if (m_eType == eImage && m_pValue != nullptr)
        *static_cast<ClImage**>(m_pValue) = pImage;
}

void ClEntry::SetValue(ClGraph* pGraph) {
    if (m_eType == eGraph && m_pValue != nullptr)
        *static_cast<ClGraph**>(m_pValue) = pGraph;
}

ClImage* ClEntry::GetImage() const {
    return m_eType == eImage && m_pValue != nullptr ? *static_cast<ClImage**>(m_pValue) : nullptr;
}

ClGraph* ClEntry::GetGraph() const {
    return m_eType == eGraph && m_pValue != nullptr ? *static_cast<ClGraph**>(m_pValue) : nullptr;
}
