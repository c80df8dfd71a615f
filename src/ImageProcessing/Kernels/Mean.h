#pragma once

/// Means of 8-bit samples over a sliding window, on a plane of `nWidth` by `nHeight` samples whose
/// lines are `nInStride` and `nOutStride` samples apart.
///
/// The templates exist for `unsigned char` and `signed char`. Throw `ClExBadAlloc` (-102).

#include "ImageProcessing/Kernels/Scratch.h"

#include <cstddef>

namespace Kernels {

/// out = (sum of the window) / (samples in it), toward zero. The window spans 2 nHalfX + 1 columns
/// and 2 nHalfY + 1 lines and is cut at the edges, its divisor with it; neither half is negative.
/// Input and output do not overlap.
template <class T>
void MeanOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                  long nHalfY, T* pOut, std::ptrdiff_t nOutStride);

/// The same in memory that the caller keeps.
template <class T>
void MeanOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                  long nHalfY, T* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch);

/// The window of 3 by 3 in fixed point, cut at the edges. Four samples in a corner give
/// (sum + 2) >> 2, six along an edge ((sum + 3) * 682) >> 12, nine inside
/// ((sum + 4) * 455) >> 12. The plane has at least two lines and columns.
template <class T>
void Mean3x3(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, T* pOut,
             std::ptrdiff_t nOutStride);

} // namespace Kernels
