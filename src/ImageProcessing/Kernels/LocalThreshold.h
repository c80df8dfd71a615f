#pragma once

/// Comparison of 8-bit pixels with the mean of a sliding window.

#include "ImageProcessing/Kernels/Scratch.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Kernels {

struct StLocalThreshold {
    long m_nSizeX; ///< of the window, 1 to the width of the plane
    long m_nSizeY; ///< 1 to its height
    long m_nOffset;
    unsigned char m_nBelow;
    unsigned char m_nAbove;
};

/// A plane of `nWidth` by `nHeight` pixels, the comparisons of ClLocalThreshold with the lines
/// y - nSizeY / 2 to y + nSizeY / 2 that there are. Input and output do not overlap. Throws
/// `ClExBadAlloc` (-102).
void LocalThreshold(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                    const StLocalThreshold& Settings, unsigned char* pOut,
                    std::ptrdiff_t nOutStride, ClScratch& rScratch);

/// The lines of a window, summed by column. Lines are added in front of the window and removed
/// behind it.
class ClLocalThreshold {
public:
    /// For lines of `nWidth` pixels and windows of `nSize` columns, 1 to `nWidth`. Throws
    /// `ClExBadAlloc` (-102).
    ClLocalThreshold(long nWidth, long nSize, long nOffset, unsigned char nBelow,
                     unsigned char nAbove);

    void AddLine(const unsigned char* pLine);
    void RemoveLine(const unsigned char* pLine);

    /// out[x] = above where (in[x] + offset) * A > S, else below. S is the sum over the columns
    /// x - nSize / 2 to x + nSize / 2 that the line has. A is the number of lines, times the number
    /// of these columns where the line ends within the window, and times `nSize` elsewhere.
    void ThresholdLine(const unsigned char* pIn, unsigned char* pOut) const;

private:
    long m_nWidth;
    long m_nSize;
    long m_nOffset;
    unsigned char m_nBelow;
    unsigned char m_nAbove;
    long m_nLines = 0;
    std::unique_ptr<std::int64_t[]> m_pSums; ///< per column
};

} // namespace Kernels
