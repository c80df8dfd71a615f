#pragma once

/// The walk along a line through each pixel, whose direction two further images give for it: what
/// the directed modes of the filters share.

#include "Tools/FpImage.h"

/// Both axes of a step or of a place.
struct StPlanePoint {
    long m_nX, m_nY;
};

/// A step in 1/256 pixel: (2 dx, -2 dy) along the direction, (2 dy, 2 dx) across it. It is one
/// pixel at most on either axis.
inline StPlanePoint DirectedStep(long nDx, long nDy, bool bOrtho) {
    return bOrtho ? StPlanePoint{2 * nDy, 2 * nDx} : StPlanePoint{2 * nDx, -2 * nDy};
}

/// The pixel that `nSteps` steps from the middle of pixel (`x`, `y`) lead to.
inline StPlanePoint PixelAt(long x, long y, StPlanePoint Step, long nSteps) {
    return {(x * 256 + 128 + nSteps * Step.m_nX) >> 8, (y * 256 + 128 + nSteps * Step.m_nY) >> 8};
}

/// `Out = function(x, y, step)` for every pixel of one plane. `Dx` and `Dy` are planes of bytes of
/// the size of `Out`, which are read as signed numbers.
template <class T, class Function>
void WalkDirected(const ClImage& Dx, const ClImage& Dy, bool bOrtho, ClImage& Out,
                  Function function) {
    for (int y = 0; y < Out.Height(); ++y) {
        const signed char* pDx = Dx.Line<signed char>(y);
        const signed char* pDy = Dy.Line<signed char>(y);
        T* pOut = Out.Line<T>(y);
        for (int x = 0; x < Out.Width(); ++x)
            pOut[x] = function(x, y, DirectedStep(pDx[x], pDy[x], bOrtho));
    }
}
