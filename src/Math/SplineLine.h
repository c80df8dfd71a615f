#pragma once

/// A spline at many positions at once.

#include "Math/ThinPlateSplines.h"

/// Maps `nCount` positions as Transform() maps each of them, to the same bits. Positions and
/// results may be the same arrays. Throws -1 before a Setup() has succeeded.
template <class T>
void TransformLine(const TpThinPlateSplines<T>& rSpline, const T* pX, const T* pY, long nCount,
                   T* pMappedX, T* pMappedY);

extern template void TransformLine(const TpThinPlateSplines<double>&, const double*, const double*,
                                   long, double*, double*);
extern template void TransformLine(const TpThinPlateSplines<float>&, const float*, const float*,
                                   long, float*, float*);
