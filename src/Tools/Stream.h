#pragma once

/// `ClStream`, the byte stream under every persistent format: raw transfers, numbers in a
/// selectable byte order (big endian by default), length-prefixed strings and single bits.
///
/// Bit and byte access do not mix: every byte operation throws -39 while bits are pending, until
/// BitFlush() or ReadBitFlush().
///
/// A stream is used by one thread at a time and has no error state: a transfer answers how far it
/// came. What happens on a short one is told by the strict flag, which is clear at construction.

#include <optional>
#include <type_traits>

namespace Vek {

/// "Unexpected end of stream" (-201).
[[noreturn]] void ThrowUnexpectedEnd();

} // namespace Vek

class ClStream {
public:
    ClStream() = default;
    ClStream(const ClStream&) = delete;
    ClStream& operator=(const ClStream&) = delete;
    virtual ~ClStream();

    /// Writes pending bits if the last bit access was a write. Destructors of derived classes
    /// close and swallow what that throws; who wants to know calls Close().
    virtual void Close();
    virtual unsigned long Pos() const;
    virtual unsigned long Size() const;
    virtual void Flush();
    /// `nWhence` is 0 from the start, 1 from the position, 2 from the end. Returns 0, or
    /// 0xFFFFFFFF where the target is refused.
    virtual unsigned int Seek(long nOffset, int nWhence);
    virtual const char* Name() const;
    virtual bool IsSeekable() const = 0;
    /// Transfers up to `nSize` bytes and returns how many.
    virtual unsigned long WriteRaw(const void* pData, unsigned long nSize) = 0;
    virtual unsigned long ReadRaw(void* pData, unsigned long nSize) = 0;

    /// The bytes from the position to the end. Nobody knows for a stream that cannot seek, nor for
    /// a pipe that was opened by name: it calls itself seekable and stands at byte 0 of 0.
    std::optional<unsigned long> Rest() const;

    /// Bytes as they are: checks alignment, honours the strict flag, returns the bytes
    /// transferred.
    unsigned long Read(void* pData, unsigned long nSize);
    unsigned long Write(const void* pData, unsigned long nSize);

    /// One number, of any integer or floating point type of up to 8 bytes but `bool`, in the
    /// stream's byte order; returns the bytes transferred. Bytes that are missing on reading count
    /// as 0 before swapping. A short transfer throws "Unexpected end of stream" (-201) if the
    /// stream is strict, and then leaves `value`.
    template <class T>
    unsigned long WriteAutoSwap(T value);
    template <class T>
    unsigned long ReadAutoSwap(T& value);

    /// Arrays of `nCount` numbers of 1, 2, 4 or 8 bytes; any other size transfers nothing. Both
    /// return the bytes transferred. Reading takes one transfer and swaps by the write flag, and
    /// only where more than one element's worth was read: files in use rely on both. Writing goes
    /// element by element. A short transfer throws -201 if the stream is strict, except with
    /// elements of 1 byte, which are one transfer without that test.
    unsigned long ReadNumericArray(void* pData, unsigned long nCount, unsigned long nElementSize);
    unsigned long WriteNumericArray(const void* pData, unsigned long nCount,
                                    unsigned long nElementSize);

    /// A 32-bit length that counts the terminator, then the bytes with it. Null is written like
    /// the empty text.
    void WriteString(const char* pText);
    /// Replaces the text at `ppText` (freed by array delete) by the one read, which the caller
    /// owns; null for length 0 and after every failure. The last byte is always 0. A length beyond
    /// Rest() is a short read before anything is allocated: -201 if the stream is strict, else
    /// null.
    void ReadString(char** ppText);
    /// Reads into the caller's buffer of `nSize` bytes, which is always terminated and zero behind
    /// the text, and drops what does not fit. With size 0 the whole text is dropped.
    void ReadString(char* pBuffer, unsigned long nSize);

    /// Up to 32 bits, the most significant first, into bytes from their most significant bit on;
    /// more than 32 throw -44, and 0 do nothing. Reading and writing go on at BitPos(); where the
    /// one takes over from the other within a byte of a stream that is not seekable, at the next
    /// byte. A byte that is missing throws -201, strict or not, and leaves `nValue`; one that
    /// cannot be written throws "Fail to write BitBuffer into stream" (-202).
    void WriteBits(unsigned int nValue, unsigned long nBits);
    void ReadBits(unsigned int& nValue, unsigned long nBits);
    /// Ends bit access at the next byte, or at the byte that BitPosSet() went to if no bit was
    /// transferred since. Written bits go out, completed by the low bits of the byte that stands at
    /// the position of a seekable stream, else by zeros; throws as WriteBits().
    void BitFlush();
    /// Drops pending read bits.
    void ReadBitFlush();
    /// The bit position, counted from the start of the stream.
    unsigned long BitPos() const;
    /// BitFlush(), then go to a bit; of a byte that does not exist all bits count as 0. A target
    /// that Seek() refuses leaves the position, and so does a stream that is not seekable.
    void BitPosSet(unsigned long nPos);
    /// BitPosSet() with an offset from the start (0), from `Pos() * 8` plus the pending bits, which
    /// is a byte behind BitPos() while read bits are pending (1), or from the end (2). Returns 0, 6
    /// on a stream that is not seekable, 22 for a bad `nWhence` or target.
    int BitSeek(long nOffset, int nWhence);
    /// 32 when any bit from 31 up is set, else the index of the highest set bit plus 1.
    static unsigned long BitsNeedForWrite(long nValue);

    /// Each setter returns the former setting.
    bool SetBigEndian4Read(bool bBigEndian);
    bool SetBigEndian4Write(bool bBigEndian);
    bool SetBigEndian(bool bBigEndian);
    bool GetBigEndian4Read() const;
    bool GetBigEndian4Write() const;
    bool GetBigEndian() const;
    static bool IsNotNetorder();

    /// A strict stream throws on a short transfer. Returns the former setting.
    bool SetThrowOnShort(bool bThrow);
    bool GetThrowOnShort() const { return m_bThrowOnShort; }

    /// Throws "the last bit I/O was finish with out bitflush." (-39) while bits are pending.
    void CheckBitPosByteAlignment() const;

protected:
    /// Throws "Unexpected end of stream" (-201) if less was done than wanted and the stream is
    /// strict.
    void ThrowIfShort(unsigned long nDone, unsigned long nWanted) const;
    /// Forgets all bit access, pending bits included.
    void ResetBits() noexcept;

    /// Where the byte stands whose bits are in m_nBitBuffer.
    enum class EBits : unsigned char {
        eNone,   ///< no bits are pending
        eRead,   ///< it has been read and stands before the position
        ePeeked, ///< it stands at the position, BitPosSet() has looked at it
        eWritten ///< it belongs to the position and waits for its other bits
    };

    EBits m_eBits = EBits::eNone;
    bool m_bThrowOnShort = false;
    unsigned long m_nBitPos = 0; ///< bits of m_nBitBuffer in use, 0 to 7, 0 with eNone alone
    unsigned char m_nBitBuffer = 0;
    bool m_bSwapRead = IsNotNetorder();
    bool m_bSwapWrite = IsNotNetorder();

private:
    unsigned long WriteNumber(const void* pBytes, unsigned long nSize);
    unsigned long ReadNumber(void* pBytes, unsigned long nSize);
    char* ReadText(unsigned long nLength);
    void DropBytes(unsigned long nBytes);

    void PutBitByte(unsigned char nByte);
    void GetBitByte();
    void PassPeekedByte();
    unsigned char PeekByte();
    bool GoToBit(unsigned long nPos);
    void SetBits(EBits ePending, unsigned long nBitPos) noexcept;
};

template <class T>
unsigned long ClStream::WriteAutoSwap(T value) {
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && sizeof(T) <= 8,
                  "a stream holds numbers of 1 to 8 bytes");
    return WriteNumber(&value, sizeof value);
}

template <class T>
unsigned long ClStream::ReadAutoSwap(T& value) {
    static_assert(std::is_arithmetic_v<T> && !std::is_same_v<T, bool> && sizeof(T) <= 8,
                  "a stream holds numbers of 1 to 8 bytes");
    T nRead;
    const unsigned long nDone = ReadNumber(&nRead, sizeof nRead);
    value = nRead;
    return nDone;
}
