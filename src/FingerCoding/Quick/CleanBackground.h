#pragma once

/// Where dirt can be measured: on background that is well away from the finger, from saturated
/// pixels and from the frame of the sensor; and the two levels that are measured by it.

#include "FingerCoding/Quick/BrightProb.h"
#include "FingerCoding/Quick/Plane.h"

#include <cstdint>

namespace Quick {

/// Width of the window whose mean tells what is far away.
constexpr long cnFarWidth = 53;

/// Bytes of memory that KeepFarBackground() needs for lines of `nWidth` pixels.
std::size_t FarBackgroundBytes(long nWidth);

/// Loss = 255 - max(0, mask - (255 where the capture is 255)): what each pixel lacks to clean
/// background. `Mask` is 255 outside of a box.
void WriteLoss(const StPlane& Capture, const StPlane& Mask, const StPlane& Loss);

/// out = fade where the mean of 255 - loss over windows 53 wide, cut at the edges, is at least 250;
/// else 0. Planes are of one size, and at least as large as the window; `pMemory` has
/// FarBackgroundBytes().
void KeepFarBackground(const StPlane& Loss, const StPlane& Fade, unsigned char* pMemory,
                       const StPlane& Out);

/// Whether a plane, which is not empty, is one value all over.
bool IsUniform(const StPlane& Plane);

/// Sum of mask times the weight of dirt, min(255, max(205 - capture, 0)^2 / 255), over all pixels.
std::uint64_t DirtSum(const StPlane& Capture, const StPlane& Mask);

/// Sums over pixels of 255 - mask, and of that times the excess of a probability above 128.
struct StDrySums {
    std::uint64_t m_nWeights = 0;
    std::uint64_t m_nExcess = 0;
};

/// Adds those of a part of a line, where the probability is min(255, bright + ridges).
void AddDrySums(const StBrightProb& Bright, const unsigned char* pSmooth,
                const unsigned char* pRidges, const unsigned char* pMask, long nPixels,
                StDrySums& rSums);
/// The same where ridges are not looked for: the probability is 255.
void AddDrySums(const unsigned char* pMask, long nPixels, StDrySums& rSums);

} // namespace Quick
