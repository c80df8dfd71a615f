#pragma once

/// An 8-bit grey image that somebody else owns.

#include <cstddef>

namespace measures {

/// Line 0 is on top. An image without samples is allowed; nothing can be measured on it.
struct ClGreyView {
    const unsigned char* m_pSamples = nullptr;
    int m_nWidth = 0;
    int m_nHeight = 0;
    std::ptrdiff_t m_nStride = 0; ///< bytes from a line to the next one below

    unsigned char At(int x, int y) const { return m_pSamples[y * m_nStride + x]; }
    bool Contains(int x, int y) const { return x >= 0 && y >= 0 && x < m_nWidth && y < m_nHeight; }
    bool IsEmpty() const { return m_pSamples == nullptr || m_nWidth < 1 || m_nHeight < 1; }
};

/// A sample of the finger mask below this is finger: half way through the soft rim.
constexpr int cnMaskThreshold = 128;

inline bool IsFinger(const ClGreyView& Mask, int x, int y) {
    return Mask.Contains(x, y) && Mask.At(x, y) < cnMaskThreshold;
}

/// Runs `Visit(x, y)` over the finger, line by line.
template <class TpVisit>
void ForFinger(const ClGreyView& Mask, TpVisit Visit) {
    for (int y = 0; y < Mask.m_nHeight; ++y)
        for (int x = 0; x < Mask.m_nWidth; ++x)
            if (IsFinger(Mask, x, y))
                Visit(x, y);
}

} // namespace measures
