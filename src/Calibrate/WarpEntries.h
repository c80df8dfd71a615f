#pragma once

/// Entries of a warp table, written from positions in the capture.

#include "Calibrate/WarpTable.h"

#include <cstddef>
#include <cstdint>

namespace Warp {

/// The size of the captures that a table is for.
struct StCaptureSize {
    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
};

/// Positions on one axis with a source reach from 1.0 to this: behind it there are 3 more pixels.
/// A side is a 32-bit float here.
inline double LargestPosition(std::uint32_t nSide) {
    return static_cast<double>(static_cast<float>(nSide)) - 3.0;
}

/// Writes the entry of one corrected pixel whose source is (sx, sy): the definition.
void FillEntry(const StCaptureSize& Size, double sx, double sy, unsigned char* pEntry);

/// Writes `nEntries` of them, at most cnMostEntries, each `nStep` bytes behind the one before.
void FillEntries(const StCaptureSize& Size, const double* pX, const double* pY, int nEntries,
                 std::size_t nStep, unsigned char* pEntries);

inline constexpr int cnMostEntries = 320;

/// The kernel of the cubic convolution with the parameter -0.75, at distances up to 1, and from 1
/// to 2. At 1 both are 0, at 2 the outer one is.
inline double InnerCubic(double u) {
    return (1.25 * u - 2.25) * u * u + 1.0;
}
inline double OuterCubic(double u) {
    return -0.75 * u * u * u + 3.75 * u * u - 6.0 * u + 3.0;
}

} // namespace Warp
