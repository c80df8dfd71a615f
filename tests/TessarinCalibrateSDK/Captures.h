#pragma once

#include "support/BitmapBlocks.h"

#include <cstdint>

namespace TestSupport {

/// A capture of the small scanner, or one of another size or layout.
inline Bytes Capture(int nWidth = 48, int nHeight = 132, int nBits = 8,
                     std::uint32_t nCompression = 0) {
    StHead Head;
    Head.m_nWidth = nWidth;
    Head.m_nHeight = nHeight;
    Head.m_nBits = nBits;
    Head.m_nCompression = nCompression;
    return UsualBlock(Head);
}

} // namespace TestSupport
