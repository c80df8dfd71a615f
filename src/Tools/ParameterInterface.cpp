#include "Tools/ParameterInterface.h"

#include "Tools/Allocate.h"

#include <cstring>
#include <memory>

ClParameterInterface::~ClParameterInterface() {
    Clear();
}

void ClParameterInterface::Clear() {
    while (m_pHead != nullptr) {
        ClParameter* pNext = m_pHead->m_pNext;
        delete m_pHead;
        m_pHead = pNext;
    }
    m_pActEntry = nullptr;
    m_nCount = 0;
}

// Adding

template <class Fill>
ClParameterInterface::ClParameter* ClParameterInterface::Append(const char* pName,
                                                                const char* pDescription,
                                                                EDirection eDirection, Fill fill) {
    std::unique_ptr<ClParameter> pEntry(Vek::NewObject<ClParameter>());
    pEntry->SetName(pName);
    pEntry->SetDescription(pDescription);
    pEntry->m_eDirection = eDirection;
    fill(*pEntry);
    ClParameter** ppEnd = &m_pHead;
    while (*ppEnd != nullptr)
        ppEnd = &(*ppEnd)->m_pNext;
    *ppEnd = pEntry.release();
    ++m_nCount;
    return *ppEnd;
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameter() {
    return Append(nullptr, nullptr, eInOut, [](ClParameter&) {});
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddParameter(void** ppValue, const char* pName, const char* pDescription,
                                   EDirection eDirection, EParameterType eType, EKind eKind) {
    return Append(pName, pDescription, eDirection, [&](ClParameter& Entry) {
        Entry.m_eType = eType;
        Entry.m_eKind = eKind;
        Entry.m_pValue = ppValue;
    });
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddParameter(ClImage** ppImage, const char* pName, const char* pDescription,
                                   EDirection eDirection, double dLower, double dUpper) {
    return AppendBound(ppImage, eImage, 0, pName, pDescription, eDirection, dLower, dUpper, 0.0);
}

ClParameterInterface::ClParameter* ClParameterInterface::AddParameter(ClGraph** ppGraph,
                                                                      const char* pName,
                                                                      const char* pDescription,
                                                                      EDirection eDirection) {
    return Append(pName, pDescription, eDirection, [&](ClParameter& Entry) {
        Entry.m_eType = eGraph;
        Entry.m_pValue = ppGraph;
    });
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddParameter(double* pValue, const char* pName, const char* pDescription,
                                   EDirection eDirection, double dLower, double dUpper) {
    const double dValue = pValue != nullptr ? *pValue : 0.0;
    ProcessRanges(dValue, dLower, dUpper);
    return AppendBound(pValue, eDouble, sizeof *pValue, pName, pDescription, eDirection, dLower,
                       dUpper, dValue);
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddParameter(long* pValue, const char* pName, const char* pDescription,
                                   EDirection eDirection, double dLower, double dUpper) {
    const double dValue = pValue != nullptr ? static_cast<double>(*pValue) : 0.0;
    ProcessRanges(dValue, dLower, dUpper);
    return AppendBound(pValue, eLong, sizeof *pValue, pName, pDescription, eDirection, dLower,
                       dUpper, dValue);
}

ClParameterInterface::ClParameter*
ClParameterInterface::AppendBound(void* pValue, EParameterType eType, std::size_t nWidth,
                                  const char* pName, const char* pDescription,
                                  EDirection eDirection, double dLower, double dUpper,
                                  double dDefault) {
    return Append(pName, pDescription, eDirection, [&](ClParameter& Entry) {
        Entry.m_eType = eType;
        Entry.m_nWidth = nWidth;
        Entry.m_pValue = pValue;
        Entry.m_dDefault = dDefault;
        Entry.SetRange(dLower, dUpper);
    });
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddEnum(void* pValue, const char* pName, const char* pDescription,
                              const char* pList, EDirection eDirection, std::size_t nWidth) {
    return AddEnum(pValue, pName, pDescription, pList, nullptr, eDirection, nWidth);
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddEnum(void* pValue, const char* pName, const char* pDescription,
                              const char* pList, const long* pValues, EDirection eDirection,
                              std::size_t nWidth) {
    if (nWidth != 1 && nWidth != 2 && nWidth != 4 && nWidth != 8)
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
    return Append(pName, pDescription, eDirection, [&](ClParameter& Entry) {
        Entry.m_eType = eEnum;
        Entry.m_nWidth = nWidth;
        Entry.m_pValue = pValue;
        Entry.SetEnumList(pList, pValues);
    });
}

ClParameterInterface::ClParameter* ClParameterInterface::AddBool(bool* pValue, const char* pName,
                                                                 const char* pDescription,
                                                                 EDirection eDirection) {
    ClParameter* pEntry =
        AddEnum(pValue, pName, pDescription, "False\0True\0", eDirection, sizeof *pValue);
    pEntry->m_eType = eBool;
    return pEntry;
}

ClParameterInterface::ClParameter*
ClParameterInterface::AddParameterString(char* pBuffer, long nSize, const char* pName,
                                         const char* pDescription, EDirection eDirection) {
    return AppendBound(pBuffer, eString, 0, pName, pDescription, eDirection, 0.0,
                       static_cast<double>(nSize), 0.0);
}

ClParameterInterface::ClParameter* ClParameterInterface::AddComment(const char* pText) {
    return Append(pText, nullptr, eOut, [](ClParameter& Entry) {
        Entry.m_eType = eComment;
        Entry.m_eKind = eNoRange;
    });
}

void ClParameterInterface::ProcessRanges(double dValue, double& dLower, double& dUpper) {
    if (dLower != 1.0 || dUpper != -1.0)
        return;
    const double dMore = dValue * 4.0 / 3.0;
    const double dLess = dValue * 2.0 / 3.0;
    dLower = dMore < dLess ? dMore : dLess;
    dUpper = dMore < dLess ? dLess : dMore;
}

// Reading

ClParameterInterface::ClParameter* ClParameterInterface::FirstParam() {
    m_pActEntry = m_pHead;
    return m_pActEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::NextParam() {
    if (m_pActEntry == nullptr)
        throw ClException("m_pActEntry is not set", QMT_ERROR_BAD_POINTER, true, VEK_HERE);
    m_pActEntry = m_pActEntry->m_pNext;
    return m_pActEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::GetParameter(long nIndex) const {
    if (nIndex < 0)
        return nullptr;
    ClParameter* pEntry = m_pHead;
    for (; pEntry != nullptr && nIndex > 0; --nIndex)
        pEntry = pEntry->m_pNext;
    return pEntry;
}

ClParameterInterface::ClParameter* ClParameterInterface::GetParam(const char* pName) const {
    ClParameter* pEntry = pName != nullptr ? m_pHead : nullptr;
    while (pEntry != nullptr &&
           (pEntry->m_szName == nullptr || std::strcmp(pEntry->m_szName, pName) != 0))
        pEntry = pEntry->m_pNext;
    return pEntry;
}
