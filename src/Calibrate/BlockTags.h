#pragma once

/// The head of every calibration block: tags of 4 bytes and a version in digits, as they stand in
/// the stream and never swapped.

#include "Tools/Stream.h"

#include <cstdlib>
#include <cstring>

namespace BlockTags {

inline constexpr unsigned long cnSize = 4;

/// Four bytes of a stream; those that it no longer holds are 0.
struct StTag {
    explicit StTag(ClStream& rStream) : m_bWhole(rStream.Read(m_acText, cnSize) == cnSize) {}

    bool Is(const char (&acTag)[cnSize]) const {
        return m_bWhole && std::memcmp(m_acText, acTag, cnSize) == 0;
    }
    /// The number that a text begins with; 0 for what is no number.
    int Number() const { return std::atoi(m_acText); } // NOLINT(cert-err34-c)

    char m_acText[cnSize + 1] = {}; ///< terminated here: a stream need not hold a terminator
    bool m_bWhole;
};

} // namespace BlockTags
