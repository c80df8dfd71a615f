// Run-length encoded bitmaps against a decoder that is written down as the code is told: the first
// two bytes are the sides, the others the codes.

#include "Harness.h"

#include "Tools/Bitmap.h"
#include "Tools/Exception.h"
#include "Tools/MemStream.h"

#include <optional>
#include <vector>

namespace {

Fuzz::ClMilestone s_Decoded("codes are decoded");
Fuzz::ClMilestone s_Refused("codes are refused");

using Lines = std::vector<std::string>;

/// Nothing where the codes are refused.
class ClPlainDecoder {
public:
    ClPlainDecoder(std::size_t nWidth, std::size_t nHeight, const std::string& Codes)
        : m_Codes(Codes), m_aLines(nHeight, std::string(nWidth, '\0')) {}

    std::optional<Lines> Decode() {
        while (m_y < m_aLines.size() && !m_bEnd && !m_bBad)
            Step();
        return m_bBad ? std::nullopt : std::optional<Lines>(m_aLines);
    }

private:
    std::size_t Byte() {
        m_bBad = m_bBad || m_nNext >= m_Codes.size();
        return m_bBad ? 0 : static_cast<unsigned char>(m_Codes[m_nNext++]);
    }
    void Down() {
        ++m_y;
        m_x = 0;
    }
    void Put(std::size_t nValue) {
        if (m_x == m_aLines[0].size())
            Down();
        m_bBad = m_bBad || m_y >= m_aLines.size();
        if (!m_bBad)
            m_aLines[m_y][m_x++] = static_cast<char>(nValue);
    }
    void Step() {
        const std::size_t nCount = Byte();
        const std::size_t nValue = Byte();
        for (std::size_t i = 0; i < nCount && !m_bBad; ++i)
            Put(nValue);
        if (nCount > 0 || m_bBad)
            return;
        if (nValue == 0)
            return Down();
        if (nValue == 1)
            m_bEnd = true;
        else if (nValue == 2)
            Move();
        else
            Literal(nValue);
    }
    void Move() {
        m_x += Byte();
        m_y += Byte();
        m_bBad = m_bBad || m_x > m_aLines[0].size() || m_y >= m_aLines.size();
    }
    void Literal(std::size_t nCount) {
        for (std::size_t i = 0; i < nCount && !m_bBad; ++i) {
            m_bBad = m_y >= m_aLines.size();
            Put(Byte());
            if (m_x == m_aLines[0].size())
                Down();
        }
    }

    const std::string& m_Codes;
    Lines m_aLines;
    std::size_t m_nNext = 0;
    std::size_t m_x = 0;
    std::size_t m_y = 0;
    bool m_bEnd = false;
    bool m_bBad = false;
};

std::string File(unsigned int nWidth, unsigned int nHeight, const std::string& Codes) {
    std::string Block = Fuzz::GreyBlock(nWidth, nHeight, Codes);
    Block[16] = 1; // the compression
    return std::string("BM\0\0\0\0\0\0\0\0\x36\x04\0\0", 14) + Block;
}

std::optional<Lines> Loaded(const std::string& Bytes) {
    const Fuzz::ClBlock block(Bytes);
    ClMemStream In(static_cast<const unsigned char*>(block.Data()), block.Size());
    ClBitmap Bitmap;
    try {
        Bitmap.Load(In);
    } catch (const ClException& e) {
        Fuzz::Require(e.Number() == -38 || e.Number() == -201, "corrupt, or ended too early");
        return std::nullopt;
    }
    Lines aLines;
    for (long y = 0; y < Bitmap.Header()->biHeight; ++y)
        aLines.emplace_back(reinterpret_cast<const char*>(Bitmap.Line(y)),
                            static_cast<std::size_t>(Bitmap.Header()->biWidth));
    return aLines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const auto nWidth = static_cast<unsigned int>(1 + Bytes.Next());
    const auto nHeight = static_cast<unsigned int>(1 + Bytes.Next());
    const std::string Codes = Bytes.Rest();
    const std::optional<Lines> aPlain = ClPlainDecoder(nWidth, nHeight, Codes).Decode();
    Fuzz::Require(Loaded(File(nWidth, nHeight, Codes)) == aPlain,
                  "what is loaded is what the codes tell");
    (aPlain ? s_Decoded : s_Refused).Reach();
    return 0;
}
