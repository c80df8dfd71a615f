#pragma once

/// Bounded reading of foreign bytes: whatever a block claims, nothing outside it is read.

#include "apps/qk7/File.h"

#include <cstdint>
#include <cstring>
#include <string>

namespace qk7 {

/// Walks through a block. A read that the block does not hold throws `ClFailure`, which names the
/// field and the place.
class ClByteReader {
public:
    explicit ClByteReader(const Bytes& Block) : m_Block(Block) {}

    std::size_t Pos() const { return m_nPos; }
    std::size_t Left() const { return m_Block.size() - m_nPos; }

    /// `nSize` bytes; the pointer lives as long as the block.
    const unsigned char* Take(std::size_t nSize, const char* szField) {
        if (nSize > Left())
            throw ClFailure("ends at byte " + std::to_string(m_Block.size()) + ", but " + szField +
                            " at byte " + std::to_string(m_nPos) + " needs " +
                            std::to_string(nSize) + " bytes");
        const unsigned char* p = m_Block.data() + m_nPos;
        m_nPos += nSize;
        return p;
    }

    std::uint8_t Byte(const char* szField) { return *Take(1, szField); }

    std::uint32_t Big32(const char* szField) {
        const unsigned char* p = Take(4, szField);
        return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
               std::uint32_t{p[3]};
    }

    std::uint16_t Little16(const char* szField) {
        const unsigned char* p = Take(2, szField);
        return static_cast<std::uint16_t>(p[0] | p[1] << 8);
    }

    std::uint32_t Little32(const char* szField) {
        const unsigned char* p = Take(4, szField);
        return std::uint32_t{p[3]} << 24 | std::uint32_t{p[2]} << 16 | std::uint32_t{p[1]} << 8 |
               std::uint32_t{p[0]};
    }

    float BigFloat(const char* szField) {
        const std::uint32_t nBits = Big32(szField);
        float fValue = 0;
        std::memcpy(&fValue, &nBits, sizeof fValue);
        return fValue;
    }

    /// A tag: four bytes, text up to its terminating zero or to the fourth byte.
    std::string Tag(const char* szField) {
        const char* p = reinterpret_cast<const char*>(Take(4, szField));
        return std::string(p, strnlen(p, 4));
    }

private:
    const Bytes& m_Block;
    std::size_t m_nPos = 0;
};

} // namespace qk7
