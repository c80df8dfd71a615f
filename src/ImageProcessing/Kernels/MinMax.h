#pragma once

/// The largest or smallest 8-bit sample of a sliding window, along lines or along columns of a
/// plane of `nWidth` by `nHeight` samples.
///
/// The window of sample i runs from i - nHalf to i + nHalf and is cut at the ends. Lines are
/// `nInStride` and `nOutStride` samples apart; `nHalf` is not negative. Input and output do not
/// overlap. Throws `ClExBadAlloc` (-102).
///
/// The templates exist for `unsigned char` and `signed char`.

#include "ImageProcessing/Kernels/Scratch.h"

#include <cstddef>

namespace Kernels {

enum class EExtreme { eMin, eMax };

template <EExtreme eKind, class T>
void ExtremeAlongLines(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                       long nHalf, T* pOut, std::ptrdiff_t nOutStride);

template <EExtreme eKind, class T>
void ExtremeAlongColumns(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                         long nHalf, T* pOut, std::ptrdiff_t nOutStride);

/// Along both: over the square of 2 nHalf + 1 lines and columns.
template <EExtreme eKind, class T>
void ExtremeOverSquares(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                        long nHalf, T* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch);

} // namespace Kernels
