#include "Tools/Stream.h"

#include "Tools/Exception.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

std::uint16_t Swapped(std::uint16_t n) {
    return __builtin_bswap16(n);
}
std::uint32_t Swapped(std::uint32_t n) {
    return __builtin_bswap32(n);
}
std::uint64_t Swapped(std::uint64_t n) {
    return __builtin_bswap64(n);
}

/// Reverses the bytes of `nCount` numbers of type `Word` at any address.
template <class Word>
void SwapWords(unsigned char* pData, unsigned long nCount) {
    for (unsigned long i = 0; i < nCount; ++i, pData += sizeof(Word)) {
        Word nWord;
        std::memcpy(&nWord, pData, sizeof nWord);
        nWord = Swapped(nWord);
        std::memcpy(pData, &nWord, sizeof nWord);
    }
}

void SwapArray(void* pData, unsigned long nCount, unsigned long nElementSize) {
    auto* pBytes = static_cast<unsigned char*>(pData);
    if (nElementSize == 2)
        SwapWords<std::uint16_t>(pBytes, nCount);
    else if (nElementSize == 4)
        SwapWords<std::uint32_t>(pBytes, nCount);
    else
        SwapWords<std::uint64_t>(pBytes, nCount);
}

bool IsElementSize(unsigned long nElementSize) {
    return nElementSize == 1 || nElementSize == 2 || nElementSize == 4 || nElementSize == 8;
}

/// Bytes of an array; false where they cannot be counted.
bool ArrayBytes(unsigned long nCount, unsigned long nElementSize, unsigned long& nBytes) {
    return !__builtin_mul_overflow(nCount, nElementSize, &nBytes);
}

} // namespace

void Vek::ThrowUnexpectedEnd() {
    throw ClExStreamUnexpectedEnd("Unexpected end of stream", QMT_ERROR_UNEXPECTED_EOF, false,
                                  VEK_NOWHERE);
}

ClStream::~ClStream() = default;

void ClStream::Close() {
    if (m_eBits == EBits::eWritten)
        BitFlush();
}

unsigned long ClStream::Pos() const {
    return 0;
}

unsigned long ClStream::Size() const {
    return 0;
}

void ClStream::Flush() {
    BitFlush();
}

unsigned int ClStream::Seek(long, int) {
    return 0;
}

const char* ClStream::Name() const {
    return "Unknown Stream";
}

std::optional<unsigned long> ClStream::Rest() const {
    if (!IsSeekable())
        return std::nullopt;
    const unsigned long nPos = Pos();
    const unsigned long nSize = Size();
    if (nSize == 0 || nSize < nPos)
        return std::nullopt;
    return nSize - nPos;
}

// Bytes

unsigned long ClStream::Read(void* pData, unsigned long nSize) {
    CheckBitPosByteAlignment();
    const unsigned long nDone = ReadRaw(pData, nSize);
    ThrowIfShort(nDone, nSize);
    return nDone;
}

unsigned long ClStream::Write(const void* pData, unsigned long nSize) {
    CheckBitPosByteAlignment();
    const unsigned long nDone = WriteRaw(pData, nSize);
    ThrowIfShort(nDone, nSize);
    return nDone;
}

void ClStream::ThrowIfShort(unsigned long nDone, unsigned long nWanted) const {
    if (m_bThrowOnShort && nDone < nWanted)
        Vek::ThrowUnexpectedEnd();
}

void ClStream::CheckBitPosByteAlignment() const {
    if (m_nBitPos != 0)
        throw ClException("the last bit I/O was finish with out bitflush.", QMT_ERROR_CURRUPT_DATA,
                          true, VEK_HERE);
}

// Numbers

unsigned long ClStream::WriteNumber(const void* pBytes, unsigned long nSize) {
    CheckBitPosByteAlignment();
    unsigned char aBytes[8];
    std::memcpy(aBytes, pBytes, nSize);
    if (m_bSwapWrite)
        std::reverse(aBytes, aBytes + nSize);
    const unsigned long nDone = WriteRaw(aBytes, nSize);
    ThrowIfShort(nDone, nSize);
    return nDone;
}

unsigned long ClStream::ReadNumber(void* pBytes, unsigned long nSize) {
    CheckBitPosByteAlignment();
    unsigned char aBytes[8] = {};
    const unsigned long nDone = ReadRaw(aBytes, nSize);
    ThrowIfShort(nDone, nSize);
    if (m_bSwapRead)
        std::reverse(aBytes, aBytes + nSize);
    std::memcpy(pBytes, aBytes, nSize);
    return nDone;
}

unsigned long ClStream::ReadNumericArray(void* pData, unsigned long nCount,
                                         unsigned long nElementSize) {
    CheckBitPosByteAlignment();
    if (!IsElementSize(nElementSize))
        return 0;
    unsigned long nBytes = 0;
    if (!ArrayBytes(nCount, nElementSize, nBytes)) {
        ThrowIfShort(0, nCount);
        return 0;
    }
    const unsigned long nDone = ReadRaw(pData, nBytes);
    if (nElementSize == 1)
        return nDone;
    if (m_bSwapWrite && nDone > nElementSize)
        SwapArray(pData, nDone / nElementSize, nElementSize);
    ThrowIfShort(nDone, nBytes);
    return nDone;
}

unsigned long ClStream::WriteNumericArray(const void* pData, unsigned long nCount,
                                          unsigned long nElementSize) {
    CheckBitPosByteAlignment();
    if (!IsElementSize(nElementSize))
        return 0;
    unsigned long nBytes = 0;
    if (!ArrayBytes(nCount, nElementSize, nBytes)) {
        ThrowIfShort(0, nCount);
        return 0;
    }
    if (nElementSize == 1)
        return WriteRaw(pData, nBytes);
    const auto* pBytes = static_cast<const unsigned char*>(pData);
    unsigned long nDone = 0;
    for (unsigned long i = 0; i < nCount; ++i)
        nDone += WriteNumber(pBytes + i * nElementSize, nElementSize);
    return nDone;
}

// Byte order

bool ClStream::IsNotNetorder() {
    return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__;
}

bool ClStream::SetBigEndian4Read(bool bBigEndian) {
    const bool bFormer = GetBigEndian4Read();
    m_bSwapRead = bBigEndian == IsNotNetorder();
    return bFormer;
}

bool ClStream::SetBigEndian4Write(bool bBigEndian) {
    const bool bFormer = GetBigEndian4Write();
    m_bSwapWrite = bBigEndian == IsNotNetorder();
    return bFormer;
}

bool ClStream::SetBigEndian(bool bBigEndian) {
    SetBigEndian4Read(bBigEndian);
    return SetBigEndian4Write(bBigEndian);
}

bool ClStream::GetBigEndian4Read() const {
    return m_bSwapRead == IsNotNetorder();
}

bool ClStream::GetBigEndian4Write() const {
    return m_bSwapWrite == IsNotNetorder();
}

bool ClStream::GetBigEndian() const {
    return GetBigEndian4Read();
}

bool ClStream::SetThrowOnShort(bool bThrow) {
    const bool bFormer = m_bThrowOnShort;
    m_bThrowOnShort = bThrow;
    return bFormer;
}
