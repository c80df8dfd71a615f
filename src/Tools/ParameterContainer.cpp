#include "Tools/ParameterContainer.h"

#include <TessarinCalibrateSDK.h>

ClParameterContainer::ClParameterContainer(const char* pName) : ClParameterContainer() {
    SetName(pName);
}

ClParameterContainer::~ClParameterContainer() {
    Clear();
}

// Entries

void ClParameterContainer::AddParameter(const char* pName, ClParameter* pParameter) {
    const bool bOwned = pParameter == nullptr || pParameter->GetContainer() != nullptr;
    if (bOwned || pParameter == GetRoot())
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
    pParameter->SetName(pName); // pName may be the old name, which is gone from here on
    if (FindLocal(pParameter->GetName()) != nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_VALUE_DUPLICATE, VEK_HERE);
    m_aParameters.Append(pParameter);
    pParameter->SetContainer(this);
}

ClParameterContainer* ClParameterContainer::AddContainer(const char* pName) {
    return AddParam<ClParameterContainer>(pName);
}

TpParameterEnumPointer<bool, ClParameter>*
ClParameterContainer::AddBool(const char* pName, bool* pValue, const char* pDescription) {
    return AddEnum(pName, pValue, {{false, "False"}, {true, "True"}}, pDescription);
}

void ClParameterContainer::Clear() {
    DeleteFrom(0);
}

void ClParameterContainer::DeleteFrom(unsigned long nFirst) {
    while (m_aParameters.Entries() > nFirst) {
        const unsigned long nLast = m_aParameters.Entries() - 1;
        ClParameter* pLast = m_aParameters[nLast];
        m_aParameters.Remove(nLast);
        delete pLast;
    }
}

// Members that are no parameters

void ClParameterContainer::RestoreKept() {
    m_Kept.Restore();
    for (unsigned long i = 0; i < Entries(); ++i)
        if (ClParameterContainer* pContainer = m_aParameters[i]->GetContainerInterface())
            pContainer->RestoreKept();
}

void ClParameterContainer::ForgetKept() {
    m_Kept.Forget();
    for (unsigned long i = 0; i < Entries(); ++i)
        if (ClParameterContainer* pContainer = m_aParameters[i]->GetContainerInterface())
            pContainer->ForgetKept();
}

// The walk

ClParameter* ClParameterContainer::GetFirstParameter() const {
    return Entries() > 0 ? m_aParameters[0] : nullptr;
}

ClParameter* ClParameterContainer::GetNextParameter(unsigned long nIndex) const {
    return nIndex < Entries() && nIndex + 1 < Entries() ? m_aParameters[nIndex + 1] : nullptr;
}

ClParameter* ClParameterContainer::GetNextParameter(ClParameter* pParameter) const {
    if (!IsBelow(pParameter))
        return nullptr;
    ClParameterContainer* pInner = pParameter->GetContainerInterface();
    if (pInner != nullptr && pInner->Entries() > 0)
        return pInner->GetFirstParameter();
    for (const ClParameter* p = pParameter; p != this; p = p->GetContainer()) {
        const ClParameterContainer* pOuter = p->GetContainer();
        if (ClParameter* pNext = pOuter->GetNextParameter(pOuter->IndexOf(p)))
            return pNext;
    }
    return nullptr;
}

bool ClParameterContainer::IsBelow(const ClParameter* pParameter) const {
    while (pParameter != nullptr && pParameter->GetContainer() != this)
        pParameter = pParameter->GetContainer();
    return pParameter != nullptr;
}

unsigned long ClParameterContainer::IndexOf(const ClParameter* pParameter) const {
    unsigned long i = 0;
    while (i < Entries() && m_aParameters[i] != pParameter)
        ++i;
    return i;
}

// The tree forms of the operations

template <class Operation>
void ClParameterContainer::ForEachPair(ClParameterBase* pOther, Operation operation) {
    ClParameterContainer* pContainer =
        pOther != nullptr ? pOther->GetContainerInterface() : nullptr;
    if (pContainer == nullptr)
        return;
    for (unsigned long i = 0; i < Entries() && i < pContainer->Entries(); ++i)
        operation(m_aParameters[i], pContainer->m_aParameters[i]);
}

void ClParameterContainer::CloneDataTo(ClParameterBase* pTarget) {
    ClParameterContainer* pContainer =
        pTarget != nullptr ? pTarget->GetContainerInterface() : nullptr;
    if (pContainer == nullptr || pContainer == this)
        return;
    ClParameterContainer copies;
    for (unsigned long i = 0; i < Entries(); ++i) {
        std::unique_ptr<ClParameterBase> pCopy(m_aParameters[i]->Clone());
        copies.m_aParameters.Append(pCopy->GetParameterInterface());
        static_cast<void>(pCopy.release());
    }
    pContainer->m_aParameters.Reserve(Entries());
    CopyHeadTo(*pContainer);
    pContainer->TakeOver(copies);
}

/// Replaces the entries by those of `Other`, for which there is room already.
void ClParameterContainer::TakeOver(ClParameterContainer& Other) {
    Clear();
    for (unsigned long i = 0; i < Other.Entries(); ++i) {
        m_aParameters.Append(Other.m_aParameters[i]);
        m_aParameters[i]->SetContainer(this);
    }
    Other.m_aParameters.Clear();
}

ClParameterBase* ClParameterContainer::Clone() {
    std::unique_ptr<ClParameterContainer> pClone(Vek::NewObject<ClParameterContainer>());
    CloneDataTo(pClone.get());
    return pClone.release();
}

void ClParameterContainer::CopyTo(ClParameterBase* pTarget) {
    ClParameterContainer* pContainer =
        pTarget != nullptr ? pTarget->GetContainerInterface() : nullptr;
    if (pContainer == nullptr || pContainer == this)
        return;
    CopyHeadTo(*pContainer);
    ForEachPair(pTarget, [](ClParameter* pOwn, ClParameter* pOther) { pOwn->CopyTo(pOther); });
}

void ClParameterContainer::CopyDefaultFrom(ClParameterBase* pOther) {
    ForEachPair(pOther, [](ClParameter* pOwn, ClParameter* p) { pOwn->CopyDefaultFrom(p); });
}

void ClParameterContainer::CopyDefaultFromValue(ClParameterBase* pOther) {
    ForEachPair(pOther, [](ClParameter* pOwn, ClParameter* p) { pOwn->CopyDefaultFromValue(p); });
}

void ClParameterContainer::CopyValuesFrom(ClParameterBase* pOther, bool bIncludePointers) {
    ForEachPair(pOther, [bIncludePointers](ClParameter* pOwn, ClParameter* p) {
        pOwn->CopyValuesFrom(p, bIncludePointers);
    });
}

void ClParameterContainer::SetToDefault() {
    for (unsigned long i = 0; i < Entries(); ++i)
        m_aParameters[i]->SetToDefault();
}

void ClParameterContainer::SetToDefaultFrom(ClParameterBase* pOther) {
    ForEachPair(pOther, [](ClParameter* pOwn, ClParameter* p) { pOwn->SetToDefaultFrom(p); });
}

void ClParameterContainer::SwapDefaultAndValue() {
    unsigned long nSwapped = 0;
    try {
        for (; nSwapped < Entries(); ++nSwapped)
            m_aParameters[nSwapped]->SwapDefaultAndValue();
    } catch (...) {
        while (nSwapped > 0)
            m_aParameters[--nSwapped]->SwapDefaultAndValue();
        throw;
    }
}

bool ClParameterContainer::IsDefault() const {
    for (unsigned long i = 0; i < Entries(); ++i)
        if (!m_aParameters[i]->IsDefault())
            return false;
    return true;
}

void ClParameterContainer::SetValue(const char*) {}

bool ClParameterContainer::GetValue(char* pBuffer, unsigned long& nSize) {
    return Vek::AnswerText("", pBuffer, nSize);
}

bool ClParameterContainer::GetDefaultValue(char*, unsigned long&) {
    return false;
}
