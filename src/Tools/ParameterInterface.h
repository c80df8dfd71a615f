#pragma once

/// `ClParameterInterface`: the flat channel of parameter publication, a list of entries, each of
/// which holds the address of a member variable with a type, a direction and a range. Tools that
/// inspect a processor create a list, let the processor fill it and show or store the values:
///
///     ClParameterInterface List;
///     Processor.QueryParameters(List);
///     for (auto* p = List.FirstParam(); p != nullptr; p = List.NextParam())
///         std::printf("%s = %s\n", p->GetName(), p->szValue());
///
/// Entries point into the processor, which outlives the list. Lists are singly linked and walked:
/// they hold a few entries. A list belongs to one thread at a time.

#include <cstddef>

class ClGraph; ///< declared for its users alone: entries hold its address and nothing else
class ClImage;
class ClStream;

class ClParameterInterface {
public:
    /// What an entry is bound to.
    enum EParameterType : int {
        eByte = 0,   ///< 8 bits, unsigned
        eShort = 1,  ///< 16 bits, signed
        eAngle = 2,  ///< 16 bits, unsigned; a full turn is 65535
        eLong = 3,   ///< signed
        eDouble = 4, ///< double
        eFloat = 5,  ///< float
        eVoid = 6,   ///< nothing
        eImage = 7,  ///< a pointer to an image
        eBool = 8,   ///< 8 bits, named "False" and "True"
        eEnum = 9,   ///< an integer with named values
        eString = 11,
        eGraph = 12,   ///< a pointer to a graph
        eComment = 13, ///< nothing; the name is a remark
    };

    enum EDirection : int { eIn = 0, eOut = 1, eInOut = 2, eOptional = 3 };

    enum EKind : int { eOrdinary = 0, eNoRange = 1 };

    class ClParameter;

    ClParameterInterface() = default;
    ClParameterInterface(const ClParameterInterface&) = delete;
    ClParameterInterface& operator=(const ClParameterInterface&) = delete;
    virtual ~ClParameterInterface();

    /// Writes all entries in order; their number is not stored.
    virtual void WriteToStream(ClStream& Stream);
    /// Reads what a list with the same entries wrote. Throws `ClExTessarin` with the result of the
    /// first entry that fails, see `ClParameter::ReadFromStream`; the entries before it are read.
    virtual void ReadFromStream(ClStream& Stream);

    // Adding, at the end of the list. The entry returned belongs to the list. Names and
    // descriptions are copied; null leaves them unset. Throws `ClExBadAlloc` (-102), and the list
    // is then as before.

    ClParameter* AddParameter();
    /// `eType` decides what `ppValue` points at.
    ClParameter* AddParameter(void** ppValue, const char* pName, const char* pDescription,
                              EDirection eDirection, EParameterType eType, EKind eKind);
    ClParameter* AddParameter(ClImage** ppImage, const char* pName, const char* pDescription,
                              EDirection eDirection, double dLower, double dUpper);
    ClParameter* AddParameter(ClGraph** ppGraph, const char* pName, const char* pDescription,
                              EDirection eDirection);
    /// Numbers. These two forms take the present value as default, and as centre of the range that
    /// ProcessRanges() makes of the limits.
    ClParameter* AddParameter(double* pValue, const char* pName, const char* pDescription,
                              EDirection eDirection, double dLower, double dUpper);
    ClParameter* AddParameter(long* pValue, const char* pName, const char* pDescription,
                              EDirection eDirection, double dLower, double dUpper);
    /// `int` and `unsigned char`, with the limits as told and a default of 0.
    template <class T>
    ClParameter* AddParameter(T* pValue, const char* pName, const char* pDescription,
                              EDirection eDirection, double dLower, double dUpper);
    /// An integer of `nWidth` bytes (1, 2, 4 or 8, else -44) with the names of
    /// `ClParameter::SetEnumList`, without values or with them.
    ClParameter* AddEnum(void* pValue, const char* pName, const char* pDescription,
                         const char* pList, EDirection eDirection, std::size_t nWidth = 8);
    ClParameter* AddEnum(void* pValue, const char* pName, const char* pDescription,
                         const char* pList, const long* pValues, EDirection eDirection,
                         std::size_t nWidth);
    ClParameter* AddBool(bool* pValue, const char* pName, const char* pDescription,
                         EDirection eDirection);
    /// A text in a buffer of `nSize` bytes, which stand as its range.
    ClParameter* AddParameterString(char* pBuffer, long nSize, const char* pName,
                                    const char* pDescription, EDirection eDirection);
    ClParameter* AddComment(const char* pText);

    long Count() const { return m_nCount; }
    /// A walk: the first entry, then the one behind the last one given; null at the end. Throws
    /// "m_pActEntry is not set" (-701) where no walk is under way.
    ClParameter* FirstParam();
    ClParameter* NextParam();
    /// By position, or null.
    ClParameter* GetParameter(long nIndex) const;
    ClParameter* GetParam(long nIndex) const { return GetParameter(nIndex); }
    /// The first entry with exactly this name, or null; entries without a name are never found.
    ClParameter* GetParam(const char* pName) const;
    /// Deletes all entries.
    void Clear();

    /// The limits 1.0 and -1.0 ask for a range around the value: from the smaller to the larger of
    /// two thirds and four thirds of it. Other limits stay.
    static void ProcessRanges(double dValue, double& dLower, double& dUpper);

private:
    /// The type that stands for `T`.
    template <class T>
    struct TpType;

    /// Creates an entry, fills it by `fill` and appends it.
    template <class Fill>
    ClParameter* Append(const char* pName, const char* pDescription, EDirection eDirection,
                        Fill fill);
    ClParameter* AppendBound(void* pValue, EParameterType eType, std::size_t nWidth,
                             const char* pName, const char* pDescription, EDirection eDirection,
                             double dLower, double dUpper, double dDefault);

    ClParameter* m_pHead = nullptr;
    ClParameter* m_pActEntry = nullptr;
    long m_nCount = 0;
};

/// An entry of the list. Values are read and written in the width of the bound variable; an entry
/// without a variable has the value 0 and keeps none.
class ClParameterInterface::ClParameter {
public:
    ClParameter() = default;
    ClParameter(const ClParameter&) = delete;
    ClParameter& operator=(const ClParameter&) = delete;
    ~ClParameter();

    /// "Noname" and "NoDescription" when unset.
    const char* GetName() const;
    const char* GetDescription() const;
    /// Store a copy; null unsets. Throw `ClExBadAlloc`.
    void SetName(const char* pName);
    void SetDescription(const char* pDescription);

    /// The enumerators' names, "Unknown" for the types 11 and 13 and all other values.
    const char* szType() const;
    const char* szDir() const;

    /// A value of this entry's type as text: the entry's own, or that at `pValue`. Numbers go
    /// into one buffer of 256 bytes that all entries share: the text holds until the next call of
    /// any thread. Objects are "Image" and "Graph"; null gives "Unknown" for any other type. Throws
    /// "The buffer size is too small." (-101) for a text that does not fit.
    const char* szValue() const { return GetszValue(m_pValue); }
    const char* GetszValue(void* pValue) const;

    /// The value as a number; 0.0 for the types 6, 7 and above 9.
    double GetValue() const;
    /// Sets a number, `eBool` to whether it is not 0. Integers are truncated to 64 bits, of which
    /// the low ones are kept; NaN and numbers beyond them give 0. Other types are not written.
    /// The first form has no effect while `m_bLocked` is set.
    void SetValue(double dValue);
    void SetValue(void* pTarget, double dValue) const;

    /// Borrowed objects, of entries of their type alone; null from any other.
    void SetValue(ClImage* pImage);
    void SetValue(ClImage& Image) { SetValue(&Image); }
    void SetValue(ClGraph* pGraph);
    ClImage* GetImage() const;
    ClGraph* GetGraph() const;

    /// Sets a value, listed or not, or the one that is named; an unknown name changes nothing.
    /// Neither has an effect while `m_bLocked` is set. The second throws "m_szEnumList is not set"
    /// (-701).
    void SetEnum(long nValue);
    void SetEnum(const char* pName);

    const char* GetEnumList() const { return m_szEnumList; }
    /// Names one after the other, each with its terminator, closed by an empty name, and as many
    /// values, or null for 0, 1, 2, ... Copies both; a null list removes both. Throws
    /// `ClExBadAlloc`, and nothing has changed then.
    void SetEnumList(const char* pList, const long* pValues);

    /// Equal limits stand for no range.
    void SetRange(double dLower, double dUpper);
    bool RangeDefined() const;

    bool IsFloat() const { return m_eType == eDouble || m_eType == eFloat; }

    /// Writes the name of a value into `nSize` bytes and returns them: by the position in
    /// `m_aEnumValues`, or without these by the value itself, where one below 1 takes the first
    /// name. "No Enum Val" for a value without a name and for a null list. Throws
    /// "The buffer size is too small." (-101).
    char* EnumToStr(long nValue, const char* pList, char* pBuffer, long nSize) const;
    /// The same, or, with a null list, the value in decimal.
    char* FmtInt(char* pBuffer, long nSize, const char* pList, long nValue) const;

    /// Name, direction, kind, limits, default, flags and type, and the value for the types 0 to 5,
    /// which has the natural width of its type whatever that of the variable.
    void WriteToStream(ClStream& Stream) const;
    /// Reads the same. Returns 0; -39 for another name or type than the entry's own; -201 for a
    /// stream that ends behind the name, unless it is strict and throws. The entry changes only
    /// with 0. A lock does not hold against reading.
    long ReadFromStream(ClStream& Stream);

    EParameterType m_eType = eVoid;
    EDirection m_eDirection = eInOut;
    EKind m_eKind = eOrdinary;
    double m_dLower = 0.0;
    double m_dUpper = 0.0;
    double m_dDefault = 0.0;
    void* m_pValue = nullptr;      ///< borrowed: the bound variable
    char* m_szEnumList = nullptr;  ///< owned, see SetEnumList()
    long* m_aEnumValues = nullptr; ///< owned, as many as names, or null
    bool m_bFlag = false;          ///< for the application: stored and streamed
    bool m_bLocked = false;
    char* m_szName = nullptr;        ///< owned
    char* m_szDescription = nullptr; ///< owned
    ClParameter* m_pNext = nullptr;  ///< belongs to the list, as this entry does
    std::size_t m_nWidth = 0;        ///< bytes of a bound integer; 0: as its type says

private:
    struct StStored;

    bool IsInteger() const;
    std::size_t Width() const;
    long ReadInteger(const void* pFrom) const;
    void WriteInteger(void* pTo, long nValue) const;
    double ReadNumber(const void* pFrom) const;
    long EnumIndex(long nValue) const;
    void WriteValue(ClStream& Stream) const;
    void Take(const StStored& Stored);
};

template <>
struct ClParameterInterface::TpType<int> {
    static constexpr EParameterType ceType = eLong;
};

template <>
struct ClParameterInterface::TpType<unsigned char> {
    static constexpr EParameterType ceType = eByte;
};

template <class T>
ClParameterInterface::ClParameter*
ClParameterInterface::AddParameter(T* pValue, const char* pName, const char* pDescription,
                                   EDirection eDirection, double dLower, double dUpper) {
    return AppendBound(pValue, TpType<T>::ceType, sizeof(T), pName, pDescription, eDirection,
                       dLower, dUpper, 0.0);
}
