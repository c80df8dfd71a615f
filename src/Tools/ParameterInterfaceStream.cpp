#include "Tools/Exception.h"
#include "Tools/ParameterInterface.h"
#include "Tools/Stream.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using ClEntry = ClParameterInterface::ClParameter;

namespace {

/// Reads numbers and remembers whether one of them was cut off.
class ClNumberReader {
public:
    explicit ClNumberReader(ClStream& Stream) : m_rStream(Stream) {}

    template <class T>
    T Read() {
        T value = T();
        if (m_rStream.ReadAutoSwap(value) != sizeof value)
            m_bShort = true;
        return value;
    }
    bool IsShort() const { return m_bShort; }

private:
    ClStream& m_rStream;
    bool m_bShort = false;
};

/// Reads a name block by block and compares all of it: bytes behind a zero count. A text without
/// any bytes is a name that is not set.
bool ReadsName(ClStream& Stream, const char* pOwn) {
    std::uint32_t nLength = 0;
    Stream.ReadAutoSwap(nLength);
    const std::size_t nOwn = std::strlen(pOwn) + 1;
    bool bSame = nLength == nOwn || (nLength == 0 && nOwn == 1);
    for (unsigned long nDone = 0; nLength > 0; nLength -= static_cast<std::uint32_t>(nDone)) {
        char acBlock[256];
        nDone = Stream.Read(acBlock, std::min<unsigned long>(nLength, sizeof acBlock));
        bSame = bSame && nDone > 0 && std::memcmp(acBlock, pOwn, nDone) == 0;
        if (nDone == 0)
            break;
        pOwn += bSame ? nDone : 0;
    }
    return bSame;
}

} // namespace

/// What stands behind the name, in this order.
struct ClEntry::StStored {
    StStored(ClNumberReader& Reader, EParameterType eType)
        : m_nDirection(Reader.Read<unsigned char>()), m_nKind(Reader.Read<unsigned char>()),
          m_dLower(Reader.Read<double>()), m_dUpper(Reader.Read<double>()),
          m_dDefault(Reader.Read<double>()), m_bFlag(Reader.Read<unsigned char>() != 0),
          m_bLocked(Reader.Read<unsigned char>() != 0), m_nType(Reader.Read<unsigned char>()) {
        if (m_nType == static_cast<unsigned char>(eType))
            ReadValue(Reader, eType);
    }

    void ReadValue(ClNumberReader& Reader, EParameterType eType) {
        switch (eType) {
        case eByte:
            m_nValue = Reader.Read<unsigned char>();
            break;
        case eShort:
            m_nValue = Reader.Read<short>();
            break;
        case eAngle:
            m_nValue = Reader.Read<unsigned short>();
            break;
        case eLong:
            m_nValue = Reader.Read<long>();
            break;
        case eDouble:
            m_dValue = Reader.Read<double>();
            break;
        case eFloat:
            m_dValue = Reader.Read<float>();
            break;
        default: // the other types keep their values to themselves
            break;
        }
    }

    unsigned char m_nDirection;
    unsigned char m_nKind;
    double m_dLower;
    double m_dUpper;
    double m_dDefault;
    bool m_bFlag;
    bool m_bLocked;
    unsigned char m_nType;
    long m_nValue = 0;
    double m_dValue = 0.0;
};

void ClEntry::WriteToStream(ClStream& Stream) const {
    Stream.WriteString(m_szName);
    Stream.WriteAutoSwap(static_cast<unsigned char>(m_eDirection));
    Stream.WriteAutoSwap(static_cast<unsigned char>(m_eKind));
    Stream.WriteAutoSwap(m_dLower);
    Stream.WriteAutoSwap(m_dUpper);
    Stream.WriteAutoSwap(m_dDefault);
    Stream.WriteAutoSwap(static_cast<unsigned char>(m_bFlag ? 1 : 0));
    Stream.WriteAutoSwap(static_cast<unsigned char>(m_bLocked ? 1 : 0));
    Stream.WriteAutoSwap(static_cast<unsigned char>(m_eType));
    WriteValue(Stream);
}

void ClEntry::WriteValue(ClStream& Stream) const {
    const long nValue = IsInteger() && m_pValue != nullptr ? ReadInteger(m_pValue) : 0;
    switch (m_eType) {
    case eByte:
        Stream.WriteAutoSwap(static_cast<unsigned char>(nValue));
        break;
    case eShort:
        Stream.WriteAutoSwap(static_cast<short>(nValue));
        break;
    case eAngle:
        Stream.WriteAutoSwap(static_cast<unsigned short>(nValue));
        break;
    case eLong:
        Stream.WriteAutoSwap(nValue);
        break;
    case eDouble:
        Stream.WriteAutoSwap(GetValue());
        break;
    case eFloat:
        Stream.WriteAutoSwap(static_cast<float>(GetValue()));
        break;
    default:
        break;
    }
}

long ClEntry::ReadFromStream(ClStream& Stream) {
    if (!ReadsName(Stream, m_szName != nullptr ? m_szName : ""))
        return QMT_ERROR_CURRUPT_DATA;
    ClNumberReader Reader(Stream);
    const StStored Stored(Reader, m_eType);
    if (Reader.IsShort())
        return QMT_ERROR_UNEXPECTED_EOF;
    if (Stored.m_nType != static_cast<unsigned char>(m_eType))
        return QMT_ERROR_CURRUPT_DATA;
    Take(Stored);
    return 0;
}

void ClEntry::Take(const StStored& Stored) {
    m_eDirection = static_cast<EDirection>(Stored.m_nDirection);
    m_eKind = static_cast<EKind>(Stored.m_nKind);
    m_dLower = Stored.m_dLower;
    m_dUpper = Stored.m_dUpper;
    m_dDefault = Stored.m_dDefault;
    m_bFlag = Stored.m_bFlag;
    m_bLocked = Stored.m_bLocked;
    if (m_pValue == nullptr || m_eType > eFloat)
        return;
    if (IsFloat())
        SetValue(m_pValue, Stored.m_dValue);
    else
        WriteInteger(m_pValue, Stored.m_nValue);
}

// The list

void ClParameterInterface::WriteToStream(ClStream& Stream) {
    for (const ClParameter* p = m_pHead; p != nullptr; p = p->m_pNext)
        p->WriteToStream(Stream);
}

void ClParameterInterface::ReadFromStream(ClStream& Stream) {
    for (ClParameter* p = m_pHead; p != nullptr; p = p->m_pNext) {
        const long nResult = p->ReadFromStream(Stream);
        if (nResult != 0)
            throw ClExTessarin(nResult, VEK_HERE);
    }
}
