#include "Tools/Stream.h"

#include "Tools/Exception.h"

#include <algorithm>

// Bit access has one cursor, BitPos(), for both directions. At a byte boundary it is the byte
// position and nothing is pending. Within a byte, that byte's bits are in m_nBitBuffer, the first
// m_nBitPos of them are behind the cursor, and the byte itself is in one of three places:
//
//   written  (m_bBitWrite)   it stands at Pos() and waits for its other bits; the low bits of the
//                            buffer are 0
//   peeked   (m_bBitPeeked)  it stands at Pos(), BitPosSet() has looked at it, nothing is written
//   read     (neither)       it has been read and stands before Pos()
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
    if (m_nBitPos > 0 && !m_bBitWrite && !m_bBitPeeked)
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
        m_nBitPos = (m_nBitPos + nTake) & 7;
        m_bBitWrite = true;
        m_bBitPeeked = false;
    }
}

void ClStream::ReadBits(unsigned int& nValue, unsigned long nBits) {
    CheckBitCount(nBits);
    if (nBits == 0) {
        nValue = 0;
        return;
    }
    if (m_nBitPos > 0 && m_bBitWrite)
        GoToBit(BitPos());
    m_bBitWrite = false;
    PassPeekedByte();
    unsigned int nResult = 0;
    while (nBits > 0) {
        if (m_nBitPos == 0)
            GetBitByte();
        const unsigned long nTake = std::min(8 - m_nBitPos, nBits);
        const unsigned int nPart = (m_nBitBuffer & LowBits(m_nBitPos)) >> (8 - m_nBitPos - nTake);
        nResult = (nResult << nTake) | nPart;
        nBits -= nTake;
        m_nBitPos = (m_nBitPos + nTake) & 7;
        m_bBitPeeked = m_bBitPeeked && m_nBitPos > 0;
    }
    nValue = nResult;
}

void ClStream::PutBitByte(unsigned char nByte) {
    if (WriteRaw(&nByte, 1) != 1)
        throw ClExStreamFailToWrite("Fail to write BitBuffer into stream", QMT_ERROR_WRITE_FAIL,
                                    false, "Unknown", -1);
}

/// The next byte into the buffer.
void ClStream::GetBitByte() {
    unsigned char nByte = 0;
    if (ReadRaw(&nByte, 1) != 1)
        throw ClExStreamUnexpectedEnd("Unexpected end of stream", QMT_ERROR_UNEXPECTED_EOF, false,
                                      "Unknown", -1);
    m_nBitBuffer = nByte;
}

/// Moves behind a byte that was peeked at. One that does not exist stays ahead.
void ClStream::PassPeekedByte() {
    unsigned char nByte = 0;
    if (m_bBitPeeked)
        m_bBitPeeked = ReadRaw(&nByte, 1) != 1;
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
    if (m_nBitPos == 0)
        return;
    if (m_bBitWrite) {
        const unsigned int nStanding = IsSeekable() ? PeekByte() & LowBits(m_nBitPos) : 0;
        PutBitByte(static_cast<unsigned char>(m_nBitBuffer | nStanding));
    }
    m_nBitPos = 0;
    m_bBitPeeked = false;
}

void ClStream::ReadBitFlush() {
    if (m_bBitWrite)
        return;
    m_nBitPos = 0;
    m_bBitPeeked = false;
}

void ClStream::ResetBits() noexcept {
    m_bBitWrite = false;
    m_bBitPeeked = false;
    m_nBitPos = 0;
    m_nBitBuffer = 0;
}

unsigned long ClStream::BitPos() const {
    const bool bBehind = m_nBitPos > 0 && !m_bBitWrite && !m_bBitPeeked;
    return Pos() * 8 + m_nBitPos - (bBehind ? 8 : 0);
}

void ClStream::BitPosSet(unsigned long nPos) {
    GoToBit(nPos);
}

/// Whether the stream went there.
bool ClStream::GoToBit(unsigned long nPos) {
    BitFlush();
    if (!IsSeekable() || Seek(static_cast<long>(nPos / 8), 0) != 0)
        return false;
    m_bBitWrite = false;
    if (nPos % 8 == 0)
        return true;
    m_nBitBuffer = PeekByte();
    m_nBitPos = nPos % 8;
    m_bBitPeeked = true;
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
