#pragma once

/// The filters of Kernels/ on planes of equal size. Windows are 2 nHalf + 1 pixels wide and cut at
/// the edges. Inputs and outputs do not overlap. Throw `ClExBadAlloc` (-102).

#include "FingerCoding/Quick/Plane.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/Kernels/MinMax.h"

namespace Quick {

void Mean(const StPlane& In, long nHalf, const StPlane& Out);

/// `Between` is as large as the others.
void Extreme(Kernels::EExtreme eKind, const StPlane& In, long nHalf, const StPlane& Between,
             const StPlane& Out);

/// Each pixel through a table of 256 entries. `Out` may be `In`.
void LookUp(const StPlane& In, const unsigned char* pTable, const StPlane& Out);

ClHistogram HistogramOf(const StPlane& Plane);

} // namespace Quick
