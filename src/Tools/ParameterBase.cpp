#include "Tools/ParameterBase.h"

#include "Tools/ParameterContainer.h"
#include "Tools/Text.h"

#include <cstring>

ClParameterBase::~ClParameterBase() = default;

ClParameterContainer* ClParameterBase::GetContainerInterface() {
    return nullptr;
}

ClParameter* ClParameterBase::GetParameterInterface() {
    return nullptr;
}

ClParameterNumericInterface* ClParameterBase::GetNumericInterface() {
    return nullptr;
}

ClParameterEnumInterface* ClParameterBase::GetEnumInterface() {
    return nullptr;
}

bool ClParameterBase::IsParameter() const {
    return false;
}

bool ClParameterBase::IsNumeric() const {
    return false;
}

bool ClParameterBase::IsEnum() const {
    return false;
}

bool ClParameterBase::IsPointer() const {
    return false;
}

bool ClParameterBase::IsString() const {
    return false;
}

void ClParameterBase::SwapDefaultAndValue() {}

namespace {

/// The node above, or null.
const ClParameterBase* Above(const ClParameterBase* pNode) {
    const auto* pParameter = dynamic_cast<const ClParameter*>(pNode);
    return pParameter != nullptr ? pParameter->GetContainer() : nullptr;
}

std::size_t NameLength(const ClParameterBase* pNode) {
    return pNode->GetName() != nullptr ? std::strlen(pNode->GetName()) : 0;
}

/// Length of the path, each name with the '.' or terminator behind it.
std::size_t PathSize(const ClParameterBase* pNode) {
    std::size_t nSize = 0;
    for (; pNode != nullptr; pNode = Above(pNode))
        if (NameLength(pNode) > 0)
            nSize += NameLength(pNode) + 1;
    return nSize > 0 ? nSize : 1;
}

/// Writes the path backwards, so that its last byte, the terminator, is that before `pEnd`.
void WritePath(const ClParameterBase* pNode, char* pEnd) {
    char cBehind = '\0';
    *--pEnd = cBehind;
    for (; pNode != nullptr; pNode = Above(pNode)) {
        const std::size_t nLength = NameLength(pNode);
        if (nLength == 0)
            continue;
        if (cBehind != '\0')
            *--pEnd = cBehind;
        pEnd -= nLength;
        std::memcpy(pEnd, pNode->GetName(), nLength);
        cBehind = '.';
    }
}

} // namespace

ClParameterBase* ClParameterBase::GetRoot() {
    ClParameterBase* pRoot = this;
    for (ClParameter* p = GetParameterInterface(); p != nullptr; p = p->GetContainer())
        pRoot = p;
    return pRoot;
}

bool ClParameterBase::GetPathName(char* pBuffer, unsigned long& nSize) const {
    const std::size_t nNeeded = PathSize(this);
    const bool bEnough = nSize >= nNeeded;
    nSize = nNeeded;
    if (bEnough && pBuffer != nullptr)
        WritePath(this, pBuffer + nNeeded);
    return bEnough;
}

void ClParameterBase::SetString(char** ppTarget, const char* pText) {
    std::unique_ptr<char[]> pCopy = Vek::CopyOf(pText);
    delete[] * ppTarget;
    *ppTarget = pCopy.release();
}

ClParameter::~ClParameter() {
    delete[] m_szName;
    delete[] m_szDescription;
}

void ClParameter::CopyHeadTo(ClParameter& Target) const {
    std::unique_ptr<char[]> pName = Vek::CopyOf(m_szName);
    SetString(&Target.m_szDescription, m_szDescription);
    delete[] Target.m_szName;
    Target.m_szName = pName.release();
    Target.m_pType = m_pType;
    Target.m_nFlags = m_nFlags;
}
