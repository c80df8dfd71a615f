#pragma once

/// `TpParameter`: a parameter of value type `T`, bound to the variable that holds the value or
/// to a pair of accessors. It has no text form of its own; the numeric and the enum class add one.

#include "Tools/Allocate.h"
#include "Tools/ParameterBase.h"

#include <memory>
#include <type_traits>

namespace Vek {

/// Getter and setter of one object.
template <class T>
class TpAccessors {
public:
    TpAccessors() = default;
    TpAccessors(const TpAccessors&) = delete;
    TpAccessors& operator=(const TpAccessors&) = delete;
    virtual ~TpAccessors() = default;

    virtual const T& Get() const = 0;
    virtual void Set(const T& value) const = 0;
    virtual std::unique_ptr<TpAccessors> Clone() const = 0;
};

template <class T, class Object, class Setter, class Getter>
class TpMemberAccessors final : public TpAccessors<T> {
public:
    TpMemberAccessors(Object* pObject, Setter pfnSet, Getter pfnGet)
        : m_pObject(pObject), m_pfnSet(pfnSet), m_pfnGet(pfnGet) {}

    const T& Get() const override { return (m_pObject->*m_pfnGet)(); }
    void Set(const T& value) const override { (m_pObject->*m_pfnSet)(value); }
    std::unique_ptr<TpAccessors<T>> Clone() const override {
        return std::unique_ptr<TpAccessors<T>>(
            NewObject<TpMemberAccessors>(m_pObject, m_pfnSet, m_pfnGet));
    }

private:
    Object* m_pObject;
    Setter m_pfnSet;
    Getter m_pfnGet;
};

[[noreturn]] void ThrowAbstractFunction();
[[noreturn]] void ThrowUnbound(const char* pName);

} // namespace Vek

/// `Base` is `ClParameter`. A copying operation applies to parameters of one type and kind.
template <class T, class Base = ClParameter>
class TpParameter : public Base {
public:
    TpParameter() : Base(typeid(T)) {}

    /// Binds to a variable, which outlives the binding.
    void Bind(T* pValue) {
        m_pAccessors.reset();
        m_pValue = pValue;
        m_ppValue = &m_pValue;
    }
    /// Binds to whatever variable `*ppValue` points at when the value is used.
    void Bind(T** ppValue) {
        m_pAccessors.reset();
        m_pValue = nullptr;
        m_ppValue = ppValue;
    }
    /// Binds to member functions `void (const T&)` and `const T& ()`, virtual or not, of an
    /// object that outlives the binding. Throws `ClExBadAlloc`.
    template <class Object, class SetClass, class GetClass>
    void Bind(Object* pObject, void (SetClass::*pfnSet)(const T&), const T& (GetClass::*pfnGet)()) {
        BindAccessors(pObject, pfnSet, pfnGet);
    }
    template <class Object, class SetClass, class GetClass>
    void Bind(Object* pObject, void (SetClass::*pfnSet)(const T&),
              const T& (GetClass::*pfnGet)() const) {
        BindAccessors(pObject, pfnSet, pfnGet);
    }

    /// Value and default. Using the value of an unbound parameter throws -701.
    const T& GetValueT() const { return m_pAccessors ? m_pAccessors->Get() : Variable(); }
    void SetValueT(const T& value) {
        if (m_pAccessors)
            m_pAccessors->Set(value);
        else
            Variable() = value;
    }
    const T& GetDefaultT() const { return m_Default; }
    void SetDefaultT(const T& value) { m_Default = value; }

    ClParameterBase* Clone() override { return CloneAs<TpParameter>(); }

    void CopyTo(ClParameterBase* pTarget) override {
        TpParameter* pSame = SameKind(pTarget);
        if (pSame == nullptr || pSame == this)
            return;
        auto pAccessors = m_pAccessors ? m_pAccessors->Clone() : nullptr;
        this->CopyHeadTo(*pSame);
        pSame->m_pAccessors = std::move(pAccessors);
        pSame->m_pValue = m_pValue;
        // A pointer held by this object has its twin in the target.
        pSame->m_ppValue = m_ppValue == &m_pValue ? &pSame->m_pValue : m_ppValue;
        pSame->m_Default = m_Default;
    }

    void CopyDefaultFrom(ClParameterBase* pOther) override {
        if (const TpParameter* pSame = SameKind(pOther))
            m_Default = pSame->m_Default;
    }
    void CopyDefaultFromValue(ClParameterBase* pOther) override {
        if (const TpParameter* pSame = SameKind(pOther))
            m_Default = pSame->GetValueT();
    }
    void CopyValuesFrom(ClParameterBase* pOther, bool bIncludePointers) override {
        if (IsPointer() && !bIncludePointers)
            return;
        if (const TpParameter* pSame = SameKind(pOther))
            SetValueT(pSame->GetValueT());
    }
    void SetToDefault() override { SetValueT(m_Default); }
    void SetToDefaultFrom(ClParameterBase* pOther) override {
        if (const TpParameter* pSame = SameKind(pOther))
            SetValueT(pSame->m_Default);
    }
    bool IsPointer() const override { return std::is_pointer_v<T>; }
    void SwapDefaultAndValue() override {
        const T value = GetValueT();
        SetValueT(m_Default);
        m_Default = value;
    }

    bool IsDefault() const override { return GetValueT() == m_Default; }
    /// The text forms throw "Abstract function" (-101) here.
    void SetValue(const char*) override { Vek::ThrowAbstractFunction(); }
    bool GetValue(char*, unsigned long&) override { Vek::ThrowAbstractFunction(); }
    bool GetDefaultValue(char*, unsigned long&) override { Vek::ThrowAbstractFunction(); }

protected:
    template <class Class>
    Class* CloneAs() {
        std::unique_ptr<Class> pClone(Vek::NewObject<Class>());
        this->CopyTo(pClone.get());
        return pClone.release();
    }

    TpParameter* SameKind(ClParameterBase* pOther) const {
        if (pOther == nullptr || pOther->IsNumeric() != this->IsNumeric() ||
            pOther->IsEnum() != this->IsEnum())
            return nullptr;
        return dynamic_cast<TpParameter*>(pOther);
    }

private:
    template <class Object, class Setter, class Getter>
    void BindAccessors(Object* pObject, Setter pfnSet, Getter pfnGet) {
        m_pAccessors.reset(Vek::NewObject<Vek::TpMemberAccessors<T, Object, Setter, Getter>>(
            pObject, pfnSet, pfnGet));
        m_pValue = nullptr;
        m_ppValue = nullptr;
    }

    T& Variable() const {
        if (m_ppValue == nullptr || *m_ppValue == nullptr)
            Vek::ThrowUnbound(this->GetName());
        return **m_ppValue;
    }

    std::unique_ptr<Vek::TpAccessors<T>> m_pAccessors;
    T** m_ppValue = nullptr;
    T* m_pValue = nullptr;

protected:
    T m_Default = T();
};
