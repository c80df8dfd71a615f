#pragma once

/// The shape of the finger mask, from the region that the detectors have found: closed, counted,
/// made convex and given a soft border. What the plain sequence does on whole images, one after the
/// other, is done here in the box of the region.

#include "FingerCoding/Quick/DoubleBlur.h"
#include "FingerCoding/Quick/Plane.h"
#include "FingerCoding/Quick/Spans.h"
#include "ImageProcessing/ConvexHull.h"
#include "ImageProcessing/Kernels/Scratch.h"

#include <optional>

namespace Quick {

/// First and last column of a region in a line.
struct StEnds {
    int m_nFirst;
    int m_nLast;
};

/// The frame with ground around it, twice, and what the work on it needs.
struct StCanvas {
    /// On each side: two widths of the blur.
    static constexpr long cnMargin = 2 * ClDoubleBlur::cnWidth;

    StPlane m_A;
    StPlane m_B;
    StEnds* m_pEnds = nullptr; ///< one per line
    unsigned char* m_pBlurMemory = nullptr;
    Kernels::ClScratch m_Scratch;

    ConvexHull::Points_t m_aPoints;
    ConvexHull::Points_t m_aHull;

    StBox FrameBox() const { return m_A.Frame().Grown(-cnMargin); }
};

/// Closes the region of bytes of 1 in a box of canvas A, and makes it convex. `rSpans` is for use.
/// The result stands in canvas B, in the box returned, as far as it lies in the frame. Nothing
/// where the region is not one piece.
std::optional<StBox> Embrace(StCanvas& rCanvas, const StBox& Box, ClSpans& rSpans);

/// Makes `Mask`, of the size of the frame, from the region in a box of canvas B: 0 in the region,
/// 255 on the ground, and a ramp in between. Without a region all is ground. Returns the box in the
/// frame outside of which all is 255.
StBox Soften(StCanvas& rCanvas, const StBox& Box, const StPlane& Mask);

} // namespace Quick
