#pragma once

/// Means of means of 8-bit samples in one pass over a plane.
///
/// Planes have `nWidth` by `nHeight` samples; lines are `nInStride` and `nOutStride` samples apart.
/// A window spans 2 nHalf + 1 columns and lines and is cut at the edges, as that of MeanOfWindow();
/// `nHalf` is not negative. Input and output do not overlap. Throw `ClExBadAlloc` (-102).

#include "ImageProcessing/Kernels/Scratch.h"

#include <cstddef>

namespace Kernels {

/// out = MeanOfWindow(MeanOfWindow(in))
void BlurTwice(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
               long nHalf, unsigned char* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch);

/// out = MeanOfWindow(MeanOfWindow(in)) >= nThreshold ? nAbove : nBelow
void BlurTwiceAndBinarize(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth,
                          long nHeight, long nHalf, long nThreshold, unsigned char nBelow,
                          unsigned char nAbove, unsigned char* pOut, std::ptrdiff_t nOutStride,
                          ClScratch& rScratch);

} // namespace Kernels
