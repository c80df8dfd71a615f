#pragma once

/// The median of 8-bit samples over a sliding window, on a plane of `nWidth` by `nHeight` samples
/// whose lines are `nInStride` and `nOutStride` samples apart.
///
/// The window spans 2 nHalfX + 1 columns and 2 nHalfY + 1 lines, of which one is 1 or both are
/// equal, and at most 65535 samples. Beyond the edges the edge samples repeat. Input and output do
/// not overlap. Throws `ClExBadAlloc` (-102). The template exists for `unsigned char` and
/// `signed char`.

#include <cstddef>

namespace Kernels {

template <class T>
void MedianOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                    long nHalfY, T* pOut, std::ptrdiff_t nOutStride);

} // namespace Kernels
