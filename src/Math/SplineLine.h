#pragma once

/// A spline in floats at many positions at once.

#include "Math/ThinPlateSplines.h"

/// Maps `nCount` positions as Transform() maps each of them, to the same bits. Throws -1 before a
/// Setup() has succeeded.
void TransformLine(const TpThinPlateSplines<float>& rSpline, const float* pX, const float* pY,
                   long nCount, float* pMappedX, float* pMappedY);
