// Bits written to a memory stream and read from it, in any order with seeks between, against a list
// of bits.

#include "Harness.h"

#include "Tools/Exception.h"
#include "Tools/MemStream.h"

#include <vector>

namespace {

Fuzz::ClMilestone s_Read("bits are read back");

/// The bits as they ought to stand in the stream.
class ClBitList {
public:
    std::size_t Size() const { return m_aBits.size(); }
    std::size_t Pos() const { return m_nPos; }
    void Seek(std::size_t nPos) { m_nPos = nPos; }
    /// The last byte is filled up with zeros.
    void FillByte() { m_aBits.resize((m_aBits.size() + 7) & ~std::size_t{7}, false); }

    void Write(std::uint32_t nValue, std::size_t nBits) {
        m_aBits.resize(std::max(m_aBits.size(), m_nPos + nBits), false);
        for (std::size_t i = 0; i < nBits; ++i)
            m_aBits[m_nPos++] = (nValue >> (nBits - 1 - i) & 1) != 0;
    }
    std::uint32_t Read(std::size_t nBits) {
        std::uint32_t nValue = 0;
        for (std::size_t i = 0; i < nBits; ++i)
            nValue = nValue << 1 | (m_aBits[m_nPos++] ? 1U : 0U);
        return nValue;
    }

private:
    std::vector<bool> m_aBits;
    std::size_t m_nPos = 0;
};

void Write(Fuzz::ClBytes& rBytes, ClMemStream& rStream, ClBitList& rList) {
    const std::size_t nBits = static_cast<std::size_t>(rBytes.Below(33));
    const std::uint32_t nValue = rBytes.Next32();
    rStream.WriteBits(nValue, nBits);
    rList.Write(nValue, nBits);
}

/// Only what has been written and flushed is read.
void Read(Fuzz::ClBytes& rBytes, ClMemStream& rStream, ClBitList& rList) {
    const std::size_t nBits = static_cast<std::size_t>(rBytes.Below(33));
    if (rList.Pos() + nBits > rList.Size())
        return;
    unsigned int nValue = 1;
    rStream.ReadBits(nValue, nBits);
    Fuzz::Require(nValue == (nBits == 0 ? 0 : rList.Read(nBits)), "bits are read as written");
    s_Read.Reach();
}

/// Flushes, and goes to a bit that is there.
void Seek(Fuzz::ClBytes& rBytes, ClMemStream& rStream, ClBitList& rList) {
    rList.FillByte();
    const std::size_t nPos = rBytes.Next32() % (rList.Size() + 1);
    rStream.BitPosSet(nPos);
    rList.Seek(nPos);
    Fuzz::Require(rStream.Size() * 8 == rList.Size(), "a flush completes the last byte");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    ClMemStream Stream;
    ClBitList List;
    bool bReading = false;
    while (!Bytes.IsEmpty()) {
        const int nWhat = Bytes.Below(3);
        if (nWhat == 2 || bReading != (nWhat == 1)) // between writing and reading stands a seek
            Seek(Bytes, Stream, List);
        bReading = nWhat == 1;
        if (nWhat == 0)
            Write(Bytes, Stream, List);
        else if (nWhat == 1)
            Read(Bytes, Stream, List);
        Fuzz::Require(Stream.BitPos() == List.Pos(), "the position is told in bits");
    }
    return 0;
}
