#pragma once

/// The comparison with the mean of a window, defined pixel by pixel.

#include "support/Images.h"

#include <algorithm>

namespace TestSupport {

/// The settings of `ClIpBinarizeLocal2`.
struct StLocalThreshold {
    long m_nSizeX, m_nSizeY, m_nOffset;
    int m_nBelow = 0, m_nAbove = 255;
};

/// One pixel, with the window written out: it is clipped, and where no side of it is clipped, an
/// even number of columns counts one less than it sums.
inline int NaiveThresholded(const Rows& aIn, const StLocalThreshold& s, long x, long y) {
    const long nWidth = static_cast<long>(aIn[0].size());
    const long nHeight = static_cast<long>(aIn.size());
    const long hx = s.m_nSizeX / 2;
    const long hy = s.m_nSizeY / 2;
    long nSum = 0;
    long nLines = 0;
    long nColumns = 0;
    for (long v = std::max(0L, y - hy); v <= std::min(nHeight - 1, y + hy); ++v) {
        ++nLines;
        nColumns = 0;
        for (long u = std::max(0L, x - hx); u <= std::min(nWidth - 1, x + hx); ++u) {
            nSum += aIn[static_cast<std::size_t>(v)][static_cast<std::size_t>(u)];
            ++nColumns;
        }
    }
    if (x >= hx && x < nWidth - hx)
        nColumns = s.m_nSizeX;
    const long nPixel = aIn[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
    return (nPixel + s.m_nOffset) * nLines * nColumns > nSum ? s.m_nAbove : s.m_nBelow;
}

/// An image that is smaller than the window stays.
inline Rows NaiveThresholded(const Rows& aIn, const StLocalThreshold& Settings) {
    const auto nWidth = static_cast<long>(aIn[0].size());
    const auto nHeight = static_cast<long>(aIn.size());
    if (nWidth < Settings.m_nSizeX || nHeight < Settings.m_nSizeY)
        return aIn;
    Rows aOut = aIn;
    for (long y = 0; y < nHeight; ++y)
        for (long x = 0; x < nWidth; ++x)
            aOut[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] =
                NaiveThresholded(aIn, Settings, x, y);
    return aOut;
}

} // namespace TestSupport
