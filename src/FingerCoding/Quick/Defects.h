#pragma once

/// The image of defects of `ClIpQK7FunctionalityCheck`, in one pass behind its mean.

#include "FingerCoding/Quick/Plane.h"
#include "ImageProcessing/Kernels/Scratch.h"

#include <cstdint>

namespace Quick {

struct StDefectSums {
    std::int32_t m_nWhite = 0; ///< pixels of 255
    std::uint64_t m_nSum = 0;  ///< of all pixels
};

/// With S = min(255, 3 * (255 - in)), F its Gaussian of sigma 1.5, C its mean over 51 by 51 pixels
/// and d = |F - C|, where F - C is limited to -128 to 127, writes
///
///     max(0, (the stretch of d from `nNoise`..64 to 0..255) - (255 - fade))
///
/// `nNoise` is below 64, and planes have at least 51 lines and columns; `Out` is none of the
/// others. Throws `ClExBadAlloc` (-102).
StDefectSums WriteDefects(const StPlane& In, int nNoise, const StPlane& Fade,
                          Kernels::ClScratch& rMemory, Kernels::ClScratch& rScratch,
                          const StPlane& Out);

} // namespace Quick
