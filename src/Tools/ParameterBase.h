#pragma once

/// The two lower classes of the parameter tree: `ClParameterBase`, which says what every node
/// answers, and `ClParameter`, a node with a name, a description and a place in the tree.

#include "Tools/TextAnswer.h"

#include <typeinfo>

class ClParameterContainer;
class ClParameter;
class ClParameterNumericInterface;
class ClParameterEnumInterface;

/// What a parameter is for, and what its setters do about its range; bits of `m_nFlags`.
enum EParameterFlags : unsigned char {
    ePfIn = 1,
    ePfOut = 2,
    ePfClamp = 32,      ///< a number is cut to the range
    ePfCheckRange = 64, ///< a number outside the range is refused, after cutting if both are set
};

/// A node of the tree. Operations that take another node do nothing when it is null or of
/// another class.
class ClParameterBase {
public:
    ClParameterBase() = default;
    ClParameterBase(const ClParameterBase&) = delete;
    ClParameterBase& operator=(const ClParameterBase&) = delete;
    virtual ~ClParameterBase();

    /// The name, or null; valid until it changes.
    virtual const char* GetName() const = 0;
    /// Stores a copy; null removes the name. Throws `ClExBadAlloc`, as all setters of texts do.
    virtual void SetName(const char* pName) = 0;
    virtual const char* GetDescription() const = 0;
    virtual void SetDescription(const char* pDescription) = 0;

    /// A new node of the same class with the same content and binding, outside any tree, for the
    /// caller to delete.
    virtual ClParameterBase* Clone() = 0;
    /// Makes `pTarget` like this node, its place in the tree excepted.
    virtual void CopyTo(ClParameterBase* pTarget) = 0;
    /// Takes the other's default as default.
    virtual void CopyDefaultFrom(ClParameterBase* pOther) = 0;
    /// Takes the other's current value as default.
    virtual void CopyDefaultFromValue(ClParameterBase* pOther) = 0;
    /// Takes the other's current value; a pointer only with `bIncludePointers`.
    virtual void CopyValuesFrom(ClParameterBase* pOther, bool bIncludePointers) = 0;
    /// Takes the own default, or the other's default, as value.
    virtual void SetToDefault() = 0;
    virtual void SetToDefaultFrom(ClParameterBase* pOther) = 0;

    /// This node as one of the classes, or null.
    virtual ClParameterContainer* GetContainerInterface();
    virtual ClParameter* GetParameterInterface();
    virtual ClParameterNumericInterface* GetNumericInterface();
    virtual ClParameterEnumInterface* GetEnumInterface();

    virtual bool IsParameter() const;
    virtual bool IsNumeric() const;
    virtual bool IsEnum() const;
    virtual bool IsPointer() const;
    virtual bool IsString() const;

    /// Exchanges value and default.
    virtual void SwapDefaultAndValue();

    /// The topmost node of the tree, this node itself if it stands alone.
    ClParameterBase* GetRoot();

    /// The names from the root down, joined by '.'; nodes without a name are left out. Sizes as
    /// in `ClParameter::GetValue`.
    bool GetPathName(char* pBuffer, unsigned long& nSize) const;

    /// Replaces the owned text `*ppTarget` by a copy of `pText`, or by null for null. On failure
    /// nothing changes.
    static void SetString(char** ppTarget, const char* pText);
};

class ClParameter : public ClParameterBase {
public:
    ~ClParameter() override;

    const char* GetName() const override { return m_szName; }
    void SetName(const char* pName) override { SetString(&m_szName, pName); }
    const char* GetDescription() const override { return m_szDescription; }
    void SetDescription(const char* pDescription) override {
        SetString(&m_szDescription, pDescription);
    }
    ClParameter* GetParameterInterface() override { return this; }
    bool IsParameter() const override { return true; }

    virtual bool IsDefault() const = 0;
    virtual bool IsContainer() const { return false; }
    /// Sets the value from its text form; null counts as an empty text.
    virtual void SetValue(const char* pText) = 0;
    /// The value as text. `nSize` is the size of the buffer on entry and the size needed on
    /// return, terminator included. A null buffer only asks for the size. Answers whether the
    /// size was enough; if not, nothing is written.
    virtual bool GetValue(char* pBuffer, unsigned long& nSize) = 0;
    virtual bool GetDefaultValue(char* pBuffer, unsigned long& nSize) = 0;
    /// For containers: sets the place in the tree, without telling either container.
    virtual void SetContainer(ClParameterContainer* pContainer) { m_pContainer = pContainer; }
    virtual ClParameter* GetParameterPtr() { return this; }

    ClParameterContainer* GetContainer() const { return m_pContainer; }
    /// The type of the value.
    const std::type_info* GetType() const { return m_pType; }
    /// Bits of `EParameterFlags`, at first `ePfIn | ePfOut`.
    unsigned char GetFlags() const { return m_nFlags; }
    void SetFlags(unsigned char nFlags) { m_nFlags = nFlags; }

protected:
    explicit ClParameter(const std::type_info& type) : m_pType(&type) {}

    /// Type, flags, name and description; on failure `Target` is unchanged.
    void CopyHeadTo(ClParameter& Target) const;

    bool HasFlag(EParameterFlags eFlag) const { return (m_nFlags & eFlag) != 0; }

    ClParameterContainer* m_pContainer = nullptr;
    void* m_pReserved = nullptr;
    const std::type_info* m_pType;
    unsigned char m_nFlags = ePfIn | ePfOut;
    char* m_szName = nullptr;
    char* m_szDescription = nullptr;
};
