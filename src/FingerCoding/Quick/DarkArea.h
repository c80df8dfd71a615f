#pragma once

/// The dark area of a capture: the steps of `ClIpBrightnessMask` up to its threshold, on planes.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/Quick/Plane.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/Kernels/Scratch.h"

namespace Quick {

/// Three planes of one size.
struct StDarkPlanes {
    StPlane m_A;
    StPlane m_B;
    StPlane m_Smooth; ///< the result
};

/// Makes the smoothed image, which is dark where the finger is, and returns the threshold below
/// which it is. `rTable` is a table to be filled.
long SmoothDarkArea(const StPlane& In, int nPelsX, const ClIpBrightnessMask& Settings,
                    ClIpStretchRangeGlobal& rTable, const StDarkPlanes& Planes,
                    Kernels::ClScratch& rScratch);

} // namespace Quick
