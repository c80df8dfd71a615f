#include "Tools/Stream.h"

#include "Tools/Exception.h"

#include <algorithm>

// Bit access has one cursor, BitPos(), for both directions. At a byte boundary it is the byte
// position and nothing is pending. Within a byte, that byte's bits are in m_nBitBuffer, the first
// m_nBitPos of them are behind the cursor, and `EBits` says where the byte itself stands. The low
// bits of the buffer are 0 while it is written.
//
// A change of direction within a byte goes through GoToBit(), which leads from any of them to
// "peeked", where both directions can start.

namespace {

/// The bits of a byte behind the first `nUsed`, which are below 8.
unsigned int LowBits(unsigned long nUsed) {
    return 0xFFu >> nUsed;
}

void CheckBitCount(unsigned long nBits) {
    if (nBits > 32)
        throw ClExTessarin(QMT_ERROR_INVALID_PARAMETER, VEK_HERE);
}

} // namespace

void ClStream::WriteBits(unsigned int nValue, unsigned long nBits) {
    CheckBitCount(nBits);
    if (nBits == 0)
        return;
    if (m_eBits == EBits::eRead)
        GoToBit(BitPos());
    while (nBits > 0) {
        const unsigned long nTake = std::min(8 - m_nBitPos, nBits);
        const unsigned long nRight = 8 - m_nBitPos - nTake; // bits of the byte that stay free
        nBits -= nTake;
        const unsigned int nPart = (nValue >> nBits) & LowBits(8 - nTake);
        const auto nByte =
            static_cast<unsigned char>((m_nBitBuffer & ~LowBits(m_nBitPos)) | (nPart << nRight));
        if (nRight == 0)
            PutBitByte(nByte);
        m_nBitBuffer = nByte;
        SetBits(EBits::eWritten, (m_nBitPos + nTake) & 7);
    }
}

void ClStream::ReadBits(unsigned int& nValue, unsigned long nBits) {
    CheckBitCount(nBits);
    if (nBits == 0) {
        nValue = 0;
        return;
    }
    if (m_eBits == EBits::eWritten)
        GoToBit(BitPos());
    if (m_eBits == EBits::ePeeked)
        PassPeekedByte();
    unsigned int nResult = 0;
    while (nBits > 0) {
        if (m_eBits == EBits::eNone)
            GetBitByte();
        const unsigned long nTake = std::min(8 - m_nBitPos, nBits);
        const unsigned int nPart = (m_nBitBuffer & LowBits(m_nBitPos)) >> (8 - m_nBitPos - nTake);
        nResult = (nResult << nTake) | nPart;
        nBits -= nTake;
        SetBits(m_eBits, (m_nBitPos + nTake) & 7);
    }
    nValue = nResult;
}

void ClStream::PutBitByte(unsigned char nByte) {
    if (WriteRaw(&nByte, 1) != 1)
        throw ClExStreamFailToWrite("Fail to write BitBuffer into stream", QMT_ERROR_WRITE_FAIL,
                                    false, VEK_NOWHERE);
}

/// The next byte into the buffer.
void ClStream::GetBitByte() {
    unsigned char nByte = 0;
    if (ReadRaw(&nByte, 1) != 1)
        Vek::ThrowUnexpectedEnd();
    m_nBitBuffer = nByte;
    m_eBits = EBits::eRead;
}

/// Moves behind a byte that was peeked at. One that does not exist stays ahead.
void ClStream::PassPeekedByte() {
    unsigned char nByte = 0;
    if (ReadRaw(&nByte, 1) == 1)
        m_eBits = EBits::eRead;
}

/// The byte at the position of a seekable stream, 0 where there is none.
unsigned char ClStream::PeekByte() {
    unsigned char nByte = 0;
    if (ReadRaw(&nByte, 1) != 1)
        return 0;
    Seek(-1, 1);
    return nByte;
}

void ClStream::BitFlush() {
    if (m_eBits == EBits::eWritten) {
        const unsigned int nStanding = IsSeekable() ? PeekByte() & LowBits(m_nBitPos) : 0;
        PutBitByte(static_cast<unsigned char>(m_nBitBuffer | nStanding));
    }
    SetBits(EBits::eNone, 0);
}

void ClStream::ReadBitFlush() {
    if (m_eBits != EBits::eWritten)
        SetBits(EBits::eNone, 0);
}

void ClStream::ResetBits() noexcept {
    SetBits(EBits::eNone, 0);
    m_nBitBuffer = 0;
}

/// At the end of a byte nothing is pending.
void ClStream::SetBits(EBits ePending, unsigned long nBitPos) noexcept {
    m_eBits = nBitPos > 0 ? ePending : EBits::eNone;
    m_nBitPos = nBitPos;
}

unsigned long ClStream::BitPos() const {
    return Pos() * 8 + m_nBitPos - (m_eBits == EBits::eRead ? 8 : 0);
}

void ClStream::BitPosSet(unsigned long nPos) {
    GoToBit(nPos);
}

/// Whether the stream went there.
bool ClStream::GoToBit(unsigned long nPos) {
    BitFlush();
    if (!IsSeekable() || Seek(static_cast<long>(nPos / 8), 0) != 0)
        return false;
    if (nPos % 8 != 0) {
        m_nBitBuffer = PeekByte();
        SetBits(EBits::ePeeked, nPos % 8);
    }
    return true;
}

int ClStream::BitSeek(long nOffset, int nWhence) {
    constexpr int nNotSeekable = 6;
    constexpr int nBadTarget = 22;
    if (!IsSeekable())
        return nNotSeekable;
    if (nWhence < 0 || nWhence > 2)
        return nBadTarget;
    const unsigned long anOrigin[] = {0, Pos() * 8 + m_nBitPos, Size() * 8};
    long nTarget = 0;
    if (__builtin_add_overflow(anOrigin[nWhence], nOffset, &nTarget) || nTarget < 0)
        return nBadTarget;
    return GoToBit(static_cast<unsigned long>(nTarget)) ? 0 : nBadTarget;
}

unsigned long ClStream::BitsNeedForWrite(long nValue) {
    unsigned long nBits = 0;
    for (auto nRest = static_cast<unsigned long>(nValue); nRest != 0 && nBits < 32; nRest >>= 1)
        ++nBits;
    return nBits;
}
