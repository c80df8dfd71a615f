#pragma once

/// `TpParameterEnumPointer`: a parameter whose value is one of a list of named values. It serves
/// enumerations, flags, choices stored in a number, and pointers to images and other objects,
/// which have no names.

#include "Tools/Array.h"
#include "Tools/Parameter.h"
#include "Tools/Text.h"
#include "Tools/TextAnswer.h"

#include <utility>

/// A parameter of named values whatever their type.
class ClParameterEnumInterface {
public:
    ClParameterEnumInterface() = default;
    ClParameterEnumInterface(const ClParameterEnumInterface&) = delete;
    ClParameterEnumInterface& operator=(const ClParameterEnumInterface&) = delete;
    virtual ~ClParameterEnumInterface();

    /// Removes the first entry with the name; false if there is none.
    virtual bool RemoveValue(const char* pName) = 0;
    virtual unsigned long GetValueNameCount() = 0;
    /// Copies the name of entry `nIndex` with its terminator. False, and nothing is written, for
    /// an index past the end, a null buffer and one that is too small.
    virtual bool GetValueName(unsigned long nIndex, char* pBuffer, unsigned long nSize) = 0;
};

namespace Vek {

/// Texts of values without a name: "NULL" or "%p", and "%d", as AnswerText(). Where `snprintf`
/// refuses, "Parameter ... out of range using value ..." (-35) with the name of the parameter.
bool AnswerPointer(const void* pValue, const char* pName, char* pBuffer, unsigned long& nSize);
bool AnswerInteger(int nValue, const char* pName, char* pBuffer, unsigned long& nSize);

[[noreturn]] void ThrowUnknownValueName(const char* pName, const char* pText);
[[noreturn]] void ThrowUnprintableValue(const char* pName, const char* pText);
[[noreturn]] void ThrowDuplicate();
[[noreturn]] void ThrowMissingName();

} // namespace Vek

template <class T, class Base = ClParameter>
class TpParameterEnumPointer : public TpParameter<T, Base>, public ClParameterEnumInterface {
public:
    ClParameterBase* Clone() override { return this->template CloneAs<TpParameterEnumPointer>(); }
    void CopyTo(ClParameterBase* pTarget) override {
        auto* pSame = dynamic_cast<TpParameterEnumPointer*>(pTarget);
        if (pSame == nullptr || pSame == this)
            return;
        TpParameter<T, Base>::CopyTo(pTarget);
        pSame->m_aEntries = m_aEntries;
    }
    ClParameterEnumInterface* GetEnumInterface() override { return this; }
    bool IsEnum() const override { return true; }

    /// Sets the value named by the text, in upper or lower case. Throws "Value ... out of range
    /// for parameter ..." (-35) for a name that is not listed.
    void SetValue(const char* pText) override {
        const ClMapEntry* pEntry = FindName(pText != nullptr ? pText : "");
        if (pEntry == nullptr)
            Vek::ThrowUnknownValueName(this->GetName(), pText);
        this->SetValueT(pEntry->m_Value);
    }
    bool GetValue(char* pBuffer, unsigned long& nSize) override {
        return GetValueT2String(this->GetValueT(), pBuffer, nSize);
    }
    bool GetDefaultValue(char* pBuffer, unsigned long& nSize) override {
        return GetValueT2String(this->m_Default, pBuffer, nSize);
    }

    /// Adds a named value. A repeat adds nothing; a name listed with another value throws -46, a
    /// null name -44.
    virtual void AddValue(T value, const char* pName) {
        if (pName == nullptr)
            Vek::ThrowMissingName();
        const ClMapEntry* pEntry = FindName(pName);
        if (pEntry != nullptr && !(pEntry->m_Value == value))
            Vek::ThrowDuplicate();
        if (pEntry == nullptr)
            m_aEntries.Append(ClMapEntry(value, pName));
    }
    bool RemoveValue(const char* pName) override { return Remove(FindName(pName)); }
    /// Removes the first entry with the value; false if there is none.
    virtual bool RemoveValue(T value) { return Remove(FindValue(value)); }
    unsigned long GetValueNameCount() override { return m_aEntries.Entries(); }
    bool GetValueName(unsigned long nIndex, char* pBuffer, unsigned long nSize) override {
        return nIndex < m_aEntries.Entries() && pBuffer != nullptr &&
               Vek::AnswerText(m_aEntries[nIndex].m_szName, pBuffer, nSize);
    }

    /// The name of the first entry with the value; else "NULL" or the address of a pointer, the
    /// number of another value. Sizes as in GetValue().
    bool GetValueT2String(T value, char* pBuffer, unsigned long& nSize) const {
        if (const ClMapEntry* pEntry = FindValue(value))
            return Vek::AnswerText(pEntry->m_szName, pBuffer, nSize);
        if constexpr (std::is_pointer_v<T>)
            return Vek::AnswerPointer(value, this->GetName(), pBuffer, nSize);
        else
            return Vek::AnswerInteger(static_cast<int>(value), this->GetName(), pBuffer, nSize);
    }

private:
    /// A value and its name, which it owns.
    struct ClMapEntry {
        ClMapEntry() = default;
        ClMapEntry(const T& value, const char* pName) : m_Value(value) {
            ClParameterBase::SetString(&m_szName, pName);
        }
        ClMapEntry(const ClMapEntry&) = delete;
        ClMapEntry& operator=(const ClMapEntry& other) {
            if (this != &other) {
                ClParameterBase::SetString(&m_szName, other.m_szName);
                m_Value = other.m_Value;
            }
            return *this;
        }
        ~ClMapEntry() { delete[] m_szName; }

        void Swap(ClMapEntry& other) noexcept {
            std::swap(m_Value, other.m_Value);
            std::swap(m_szName, other.m_szName);
        }

        T m_Value = T();
        char* m_szName = nullptr;
    };

    const ClMapEntry* FindName(const char* pName) const {
        for (unsigned long i = 0; pName != nullptr && i < m_aEntries.Entries(); ++i)
            if (Vek::IsSameName(m_aEntries[i].m_szName, pName))
                return &m_aEntries[i];
        return nullptr;
    }
    const ClMapEntry* FindValue(const T& value) const {
        for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
            if (m_aEntries[i].m_Value == value)
                return &m_aEntries[i];
        return nullptr;
    }
    /// Moves the entry to the end by exchanges, which need no memory, and drops it there.
    bool Remove(const ClMapEntry* pEntry) {
        if (pEntry == nullptr)
            return false;
        unsigned long i = static_cast<unsigned long>(pEntry - m_aEntries.Data());
        for (; i + 1 < m_aEntries.Entries(); ++i)
            m_aEntries[i].Swap(m_aEntries[i + 1]);
        m_aEntries.Remove(i);
        return true;
    }

    TpArrayDynamic<ClMapEntry, 10> m_aEntries;
};
