#pragma once

/// Resampling of one line by a warp table.

#include <cstddef>

namespace Kernels {

/// Bytes of a table entry.
inline constexpr std::size_t cnWarpEntrySize = 36;

/// Makes `nEntries` samples of a corrected line. An entry of `pEntries` has 36 bytes: a 32-bit
/// offset into `pSource`, negative for a sample without source, and 16 weights of 16 bits, row by
/// row; 1024 stands for 1.0. A sample is
///
///     clamp((sum over r, c of weight(r, c) * source[offset + r * nStride + c * nStep] + 1023)
///           >> 10, 0, 255)
///
/// and `nBackground` without source. 1023, not 512: the sum is rounded up.
///
/// The entries are trusted: every offset leaves 4 rows and 4 columns inside the source.
void WarpLine(const unsigned char* pEntries, std::size_t nEntries, const unsigned char* pSource,
              std::ptrdiff_t nStride, int nStep, unsigned char nBackground, unsigned char* pOut);

} // namespace Kernels
