#pragma once

/// `TpParameterNumeric`: a parameter whose value is a number, with an optional range.
///
/// Numbers travel through the setters as `long double`, whose 64 bits of mantissa hold every
/// double and every 64-bit integer exactly, so that one set of rules serves all types.

#include "Tools/Array.h"
#include "Tools/NumericFormat.h"
#include "Tools/Parameter.h"
#include "Tools/PrintNumber.h"

#include <cmath>
#include <limits>

/// A numeric parameter whatever its type.
class ClParameterNumericInterface {
public:
    ClParameterNumericInterface() = default;
    ClParameterNumericInterface(const ClParameterNumericInterface&) = delete;
    ClParameterNumericInterface& operator=(const ClParameterNumericInterface&) = delete;
    virtual ~ClParameterNumericInterface();

    virtual bool IsInteger() const = 0;
    virtual bool IsFloat() const = 0;
    virtual bool IsSigned() const = 0;
    /// Numbers as doubles. A setter truncates toward zero for an integer type, and throws
    /// `ClExRange` (-35) for NaN and numbers that the type does not hold. Setting the value
    /// obeys the range as the flags say.
    virtual double GetDefault() const = 0;
    virtual void SetDefault(double dDefault) = 0;
    virtual double GetNumber() const = 0;
    virtual void SetNumber(double dValue) = 0;
    virtual double GetLowerBoundary() const = 0;
    virtual void SetLowerBoundary(double dLower) = 0;
    virtual double GetUpperBoundary() const = 0;
    virtual void SetUpperBoundary(double dUpper) = 0;
    /// Whether the value, or a value, lies within the boundaries, both included; without a range
    /// every value does.
    virtual bool IsValueInRange() const = 0;
    virtual bool IsValueInRange(double dValue) const = 0;
    /// Whether the boundaries differ.
    virtual bool HasRange() const = 0;

    /// For a format with a '*': the precision to print with.
    int GetPrecision() const { return m_nPrecision; }
    void SetPrecision(int nPrecision) { m_nPrecision = nPrecision; }
    /// Unit of display per unit of the value.
    double GetScale() const { return m_dScale; }
    void SetScale(double dScale) { m_dScale = dScale; }
    double GetNumberScaled() const { return GetNumber() * m_dScale; }
    void SetNumberSecaled(double dValue) { SetNumber(dValue / m_dScale); }

    /// The `printf` format of the value, see `Vek::PrintNumber`. Null stands for the format of the
    /// type. Stores a copy.
    const char* GetFormat() const { return m_aFormat.Data(); }
    void SetFormat(const char* pFormat);

protected:
    void CopyNumericTo(ClParameterNumericInterface& Target) const;

    double m_dScale = 1.0;
    int m_nPrecision = 6;
    TpArrayStatic<char> m_aFormat;
};

namespace Vek {

/// Equality of values and defaults: doubles may differ by 2^-52, and NaN equals NaN.
template <class T>
bool IsEqual(const T& a, const T& b) {
    return a == b;
}
template <>
bool IsEqual<double>(const double& a, const double& b);

/// A number read from text: what stands behind the last 'x' or 'X' as hexadecimal digits of at
/// most 64 bits, else the whole text by `strtod` of the C locale; nothing is 0. False where
/// characters are left over or the number is too large.
bool ParseNumber(const char* pText, long double& dValue);

[[noreturn]] void ThrowNotANumber(const char* pName, const char* pText);
[[noreturn]] void ThrowOutOfRange(const char* pName);

} // namespace Vek

template <class T, class Base = ClParameter>
class TpParameterNumeric : public TpParameter<T, Base>, public ClParameterNumericInterface {
    static_assert(std::numeric_limits<long double>::digits >= 64,
                  "numbers travel as long double without loss");

public:
    TpParameterNumeric() { SetFormat(Vek::ClNumericFormat<T>::Format); }

    ClParameterBase* Clone() override { return this->template CloneAs<TpParameterNumeric>(); }
    void CopyTo(ClParameterBase* pTarget) override {
        auto* pSame = dynamic_cast<TpParameterNumeric*>(pTarget);
        if (pSame == nullptr || pSame == this)
            return;
        TpParameter<T, Base>::CopyTo(pTarget);
        CopyNumericTo(*pSame);
        pSame->m_LowerBoundary = m_LowerBoundary;
        pSame->m_UpperBoundary = m_UpperBoundary;
    }
    ClParameterNumericInterface* GetNumericInterface() override { return this; }
    bool IsNumeric() const override { return true; }

    bool IsDefault() const override { return Vek::IsEqual<T>(this->GetValueT(), this->m_Default); }
    /// Numbers as in `Vek::ParseNumber`. Throws "Failed to set parameter ..." (-44) for other
    /// texts, and as SetNumber(); the value is then as before.
    void SetValue(const char* pText) override {
        long double dValue = 0;
        if (!Vek::ParseNumber(pText != nullptr ? pText : "", dValue))
            Vek::ThrowNotANumber(this->GetName(), pText);
        SetWide(dValue);
    }
    bool GetValue(char* pBuffer, unsigned long& nSize) override {
        return Print(this->GetValueT(), pBuffer, nSize);
    }
    bool GetDefaultValue(char* pBuffer, unsigned long& nSize) override {
        return Print(this->m_Default, pBuffer, nSize);
    }

    bool IsInteger() const override { return !m_bIsFloat; }
    bool IsFloat() const override { return m_bIsFloat; }
    bool IsSigned() const override { return m_bIsSigned; }
    double GetDefault() const override { return static_cast<double>(this->m_Default); }
    void SetDefault(double dDefault) override { this->m_Default = ToType(dDefault); }
    double GetNumber() const override { return static_cast<double>(this->GetValueT()); }
    void SetNumber(double dValue) override { SetWide(dValue); }
    double GetLowerBoundary() const override { return static_cast<double>(m_LowerBoundary); }
    void SetLowerBoundary(double dLower) override { m_LowerBoundary = ToType(dLower); }
    double GetUpperBoundary() const override { return static_cast<double>(m_UpperBoundary); }
    void SetUpperBoundary(double dUpper) override { m_UpperBoundary = ToType(dUpper); }
    bool IsValueInRange() const override { return IsValueInRangeT(this->GetValueT()); }
    bool IsValueInRange(double dValue) const override { return IsInRange(dValue); }
    virtual bool IsValueInRangeT(T value) const {
        return IsInRange(static_cast<long double>(value));
    }
    bool HasRange() const override {
        return m_LowerBoundary < m_UpperBoundary || m_LowerBoundary > m_UpperBoundary;
    }

private:
    bool IsInRange(long double dValue) const {
        return !HasRange() || (dValue >= static_cast<long double>(m_LowerBoundary) &&
                               dValue <= static_cast<long double>(m_UpperBoundary));
    }

    void SetWide(long double dValue) {
        if (HasRange())
            dValue = Admit(dValue);
        this->SetValueT(ToType(dValue));
    }

    /// What the flags make of a value: cut first, then judged. NaN cannot be cut into a range.
    long double Admit(long double dValue) const {
        const bool bClamp = this->HasFlag(ePfClamp);
        if (bClamp && dValue < static_cast<long double>(m_LowerBoundary))
            dValue = static_cast<long double>(m_LowerBoundary);
        if (bClamp && dValue > static_cast<long double>(m_UpperBoundary))
            dValue = static_cast<long double>(m_UpperBoundary);
        const bool bLost = bClamp && std::isnan(dValue);
        if (bLost || (this->HasFlag(ePfCheckRange) && !IsInRange(dValue)))
            Vek::ThrowOutOfRange(this->GetName());
        return dValue;
    }

    T ToType(long double dValue) const {
        if constexpr (std::is_integral_v<T>) {
            dValue = std::trunc(dValue);
            if (!(dValue >= static_cast<long double>(std::numeric_limits<T>::min()) &&
                  dValue <= static_cast<long double>(std::numeric_limits<T>::max())))
                Vek::ThrowOutOfRange(this->GetName());
        }
        return static_cast<T>(dValue);
    }

    bool Print(T value, char* pBuffer, unsigned long& nSize) const {
        const char* pFormat =
            GetFormat() != nullptr ? GetFormat() : Vek::ClNumericFormat<T>::Format;
        if constexpr (std::is_floating_point_v<T>)
            return Vek::PrintNumber(pFormat, m_nPrecision, static_cast<double>(value), pBuffer,
                                    nSize);
        else
            return Vek::PrintNumber(pFormat, m_nPrecision, static_cast<long long>(value), pBuffer,
                                    nSize);
    }

    T m_LowerBoundary = T();
    T m_UpperBoundary = T();
    bool m_bIsFloat = std::is_floating_point_v<T>;
    bool m_bIsSigned = std::is_signed_v<T>;
};
