#pragma once

/// The warp by its definition: an entry of the table, and what a sample becomes by it.

#include "Calibrate/OpenWarp.h"

#include <algorithm>

namespace TestSupport {

/// The cubic convolution with the parameter -0.75.
inline double WarpKernel(double t) {
    const double u = t < 0 ? -t : t;
    return u >= 2   ? 0
           : u >= 1 ? -0.75 * u * u * u + 3.75 * u * u - 6 * u + 3
                    : (1.25 * u - 2.25) * u * u + 1;
}

/// The entry of a pixel whose source is (sx, sy), for captures of an ordinary size.
inline StWarpEntry NaiveEntry(double sx, double sy, int nWidth, int nHeight) {
    StWarpEntry Entry;
    if (!(sx >= 1 && sx <= nWidth - 3 && sy >= 1 && sy <= nHeight - 3))
        return Entry;
    const float fx =
        std::min(std::max(static_cast<float>(sx), 1.f), static_cast<float>(nWidth - 3));
    const float fy =
        std::min(std::max(static_cast<float>(sy), 1.f), static_cast<float>(nHeight - 3));
    const int ix = static_cast<int>(fx);
    const int iy = static_cast<int>(fy);
    const double dx = static_cast<double>(fx) - ix;
    const double dy = static_cast<double>(fy) - iy;
    const double adColumn[] = {-1 - dx, -dx, 1 - dx, 2 - dx};
    const double adRow[] = {dy + 1, dy, dy - 1, dy - 2};
    Entry.m_nOffset = (iy - 1) * ((nWidth + 3) & ~3) + ix - 1;
    for (std::size_t r = 0; r < 4; ++r)
        for (std::size_t c = 0; c < 4; ++c)
            Entry.m_anWeights[4 * r + c] =
                static_cast<std::int16_t>(WarpKernel(adColumn[c]) * 1024.0 * WarpKernel(adRow[r]));
    return Entry;
}

/// The sample of an entry; samples of a line lie `nStep` apart, lines `nStride`.
inline int NaiveWarped(const StWarpEntry& Entry, const unsigned char* pSource, int nStride,
                       int nStep, int nBackground) {
    if (Entry.m_nOffset < 0)
        return nBackground;
    int nSum = 0;
    for (int n = 0; n < 16; ++n)
        nSum += Entry.m_anWeights[static_cast<std::size_t>(n)] *
                pSource[Entry.m_nOffset + n / 4 * nStride + n % 4 * nStep];
    return std::min(std::max((nSum + 1023) >> 10, 0), 255);
}

} // namespace TestSupport
