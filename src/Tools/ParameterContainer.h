#pragma once

/// `ClParameterContainer`: a node of the parameter tree that owns parameters, other containers
/// among them. Names are unique among its direct entries, compared in upper and lower case.
/// Look-up is linear on purpose: a container holds a few entries.
///
/// A processor publishes its settings like this:
///
///     void ClIpCut::PublishParameters(ClParameterContainer& Container) {
///         Container.AddPointer("pInImage", &m_pInImage, ePfIn);
///         Container.AddPointer("pOutImage", &m_pOutImage, ePfOut);
///         Container.AddNumeric("NewWidth", &m_nWidth);
///         Container.AddEnum("Mode", &m_eMode, {{eFast, "Fast"}, {eExact, "Exact"}});
///         Container.Keep(&m_bInPlace);
///     }

#include "Tools/Array.h"
#include "Tools/KeptMembers.h"
#include "Tools/ParameterEnum.h"
#include "Tools/ParameterNumeric.h"

#include <initializer_list>
#include <memory>

namespace Vek {

/// A named value of AddEnum().
template <class T>
struct TpValueName {
    T m_Value;
    const char* m_szName;
};

/// Keeps `T` out of the deduction of template arguments.
template <class T>
struct TpIdentity {
    using Type = T;
};

} // namespace Vek

class ClParameterContainer : public ClParameter {
public:
    ClParameterContainer() : ClParameter(typeid(ClParameterContainer)) {}
    explicit ClParameterContainer(const char* pName);
    ~ClParameterContainer() override;

    /// Gives the parameter the name and takes it over. Throws -46 for a name that is there
    /// already, -44 for null, for a parameter of another container and for one that holds this
    /// container, -102; a refused object stays the caller's. Entries without a name never collide.
    void AddParameter(const char* pName, ClParameter* pParameter);

    /// Each creates a parameter, adds it and returns it for further configuration; it belongs to
    /// this container. A refused one is destroyed.
    ClParameterContainer* AddContainer(const char* pName);
    template <class P>
    P* AddParam(const char* pName) {
        return Take(pName, std::unique_ptr<P>(Vek::NewObject<P>()));
    }
    template <class T>
    TpParameterNumeric<T, ClParameter>* AddNumeric(const char* pName, T* pValue,
                                                   const char* pDescription = nullptr);
    template <class T>
    TpParameterEnumPointer<T*, ClParameter>* AddPointer(const char* pName, T** pValue,
                                                        unsigned char nFlags = ePfIn | ePfOut,
                                                        const char* pDescription = nullptr);
    /// The values "False" and "True".
    TpParameterEnumPointer<bool, ClParameter>* AddBool(const char* pName, bool* pValue,
                                                       const char* pDescription = nullptr);
    /// A choice among the values listed.
    template <class T>
    TpParameterEnumPointer<T, ClParameter>*
    AddEnum(const char* pName, T* pValue,
            std::initializer_list<Vek::TpValueName<typename Vek::TpIdentity<T>::Type>> aValues,
            const char* pDescription = nullptr);

    /// Saves members that are no parameters: `ClParameterProvider::QueryParameters` gives them
    /// their present values back when it has captured the defaults.
    template <class... T>
    void Keep(T*... pMembers) {
        (m_Kept.Keep(pMembers), ...);
    }

    /// The first direct entry with the name, in upper or lower case, or null.
    ClParameter* FindLocal(const char* pName) const;

    /// Follows a path of names joined by '.'. "." is the root; a path that begins with '.' starts
    /// at the root, any other here. The root's own name, exactly written, may stand first. A path
    /// that goes on behind a parameter that is no container ends there. Null where nothing is
    /// found, for a null and an empty path. Throws -101 for a name of 255 characters or more.
    ClParameter* Find(const char* pPath);

    /// The rest of a path behind `pFound`: goes on in a container if it begins with '.', else
    /// answers `pFound`.
    static ClParameter* FindNamePart(ClParameter* pFound, const char* pRest);

    /// Walks the tree below this container depth first, a container before its entries. Null at
    /// the end.
    ClParameter* GetFirstParameter() const;
    /// The direct entry behind entry `nIndex`, or null.
    ClParameter* GetNextParameter(unsigned long nIndex) const;
    /// What follows `pParameter`, a node below this container.
    ClParameter* GetNextParameter(ClParameter* pParameter) const;

    /// Deletes all entries.
    void Clear();
    unsigned long Entries() const { return m_aParameters.Entries(); }

    /// Replaces the content of the container `pTarget`, name included, by a copy of this one's.
    /// On failure `pTarget` is as before.
    void CloneDataTo(ClParameterBase* pTarget);

    // The operations of the tree apply to the entries in order, paired with those of the other
    // container by index. Pairs of different classes, and entries without a partner, are skipped.

    ClParameterBase* Clone() override;
    void CopyTo(ClParameterBase* pTarget) override;
    void CopyDefaultFrom(ClParameterBase* pOther) override;
    void CopyDefaultFromValue(ClParameterBase* pOther) override;
    void CopyValuesFrom(ClParameterBase* pOther, bool bIncludePointers) override;
    void SetToDefault() override;
    void SetToDefaultFrom(ClParameterBase* pOther) override;
    ClParameterContainer* GetContainerInterface() override { return this; }
    /// Where an entry fails, those before it get their values back.
    void SwapDefaultAndValue() override;

    /// Whether all entries hold their defaults.
    bool IsDefault() const override;
    bool IsContainer() const override { return true; }
    /// A container has no value: this does nothing, ...
    void SetValue(const char* pText) override;
    /// ... this gives an empty text, ...
    bool GetValue(char* pBuffer, unsigned long& nSize) override;
    /// ... and this answers false.
    bool GetDefaultValue(char* pBuffer, unsigned long& nSize) override;

private:
    friend class ClParameterProvider;

    /// Adds a new object, or destroys it with the exception that refuses it.
    template <class P>
    P* Take(const char* pName, std::unique_ptr<P> pParameter) {
        AddParameter(pName, pParameter.get());
        return pParameter.release();
    }

    template <class Operation>
    void ForEachPair(ClParameterBase* pOther, Operation operation);
    bool IsBelow(const ClParameter* pParameter) const;
    unsigned long IndexOf(const ClParameter* pParameter) const;
    ClParameter* FindStep(const char*& pPath);
    void TakeOver(ClParameterContainer& Other);
    void DeleteFrom(unsigned long nFirst);
    void RestoreKept();
    void ForgetKept();

    TpArrayDynamic<ClParameter*, 10> m_aParameters;
    Vek::ClKeptMembers m_Kept;
};

template <class T>
TpParameterNumeric<T, ClParameter>* ClParameterContainer::AddNumeric(const char* pName, T* pValue,
                                                                     const char* pDescription) {
    std::unique_ptr<TpParameterNumeric<T, ClParameter>> pParameter(
        Vek::NewObject<TpParameterNumeric<T, ClParameter>>());
    pParameter->Bind(pValue);
    pParameter->SetDescription(pDescription);
    return Take(pName, std::move(pParameter));
}

template <class T>
TpParameterEnumPointer<T*, ClParameter>*
ClParameterContainer::AddPointer(const char* pName, T** pValue, unsigned char nFlags,
                                 const char* pDescription) {
    auto* pParameter = AddEnum<T*>(pName, pValue, {}, pDescription);
    pParameter->SetFlags(nFlags);
    return pParameter;
}

template <class T>
TpParameterEnumPointer<T, ClParameter>* ClParameterContainer::AddEnum(
    const char* pName, T* pValue,
    std::initializer_list<Vek::TpValueName<typename Vek::TpIdentity<T>::Type>> aValues,
    const char* pDescription) {
    std::unique_ptr<TpParameterEnumPointer<T, ClParameter>> pParameter(
        Vek::NewObject<TpParameterEnumPointer<T, ClParameter>>());
    pParameter->Bind(pValue);
    pParameter->SetDescription(pDescription);
    for (const auto& value : aValues)
        pParameter->AddValue(value.m_Value, value.m_szName);
    return Take(pName, std::move(pParameter));
}
