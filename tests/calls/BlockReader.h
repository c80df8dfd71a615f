#pragma once

/// Reads a block of big endian numbers from its beginning to its end.

#include "support/Records.h"

#include <cstdlib>

namespace Calls {

using TestSupport::Bytes;

class ClBlockReader {
public:
    explicit ClBlockReader(const Bytes& aBlock) : m_aBlock(aBlock) {}

    std::size_t Pos() const { return m_nPos; }
    std::size_t Rest() const { return m_aBlock.size() - m_nPos; }
    /// Whether the block ended inside what was read.
    bool HasEnded() const { return m_bEnded; }

    std::uint32_t Number(int nBytes = 4) {
        std::uint32_t nValue = 0;
        for (int i = 0; i < nBytes; ++i)
            nValue = nValue << 8 | Byte();
        return nValue;
    }
    /// Four bytes as a text without its zeros.
    std::string Tag() {
        char acTag[5] = {};
        for (int i = 0; i < 4; ++i)
            acTag[i] = static_cast<char>(Byte());
        return acTag;
    }
    /// Whether four bytes are this text of three letters and its zero.
    bool IsTag(const char* szTag) { return Tag() == szTag; }
    /// The number that four bytes begin with as a text.
    int Version() { return std::atoi(Tag().c_str()); }
    float Coordinate() {
        const std::uint32_t nBits = Number();
        float f = 0;
        std::memcpy(&f, &nBits, sizeof f);
        return f;
    }
    Bytes Part(std::size_t nSize) {
        m_bEnded |= nSize > Rest();
        const std::size_t nTaken = nSize > Rest() ? Rest() : nSize;
        const auto First = m_aBlock.begin() + static_cast<std::ptrdiff_t>(m_nPos);
        m_nPos += nTaken;
        return Bytes(First, First + static_cast<std::ptrdiff_t>(nTaken));
    }

private:
    std::uint32_t Byte() {
        if (m_nPos < m_aBlock.size())
            return m_aBlock[m_nPos++];
        m_bEnded = true;
        return 0;
    }

    const Bytes& m_aBlock;
    std::size_t m_nPos = 0;
    bool m_bEnded = false;
};

} // namespace Calls
