#pragma once

/// The filters of Kernels/ on planes of equal size. Windows are 2 nHalf + 1 pixels wide and cut at
/// the edges. Inputs and outputs do not overlap. They work in scratch memory that the caller keeps,
/// and throw `ClExBadAlloc` (-102).

#include "FingerCoding/Quick/Plane.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/Kernels/MinMax.h"
#include "ImageProcessing/Kernels/Scratch.h"

namespace Quick {

void Mean(const StPlane& In, long nHalf, const StPlane& Out, Kernels::ClScratch& rScratch);

/// The largest or the smallest.
void Extreme(Kernels::EExtreme eKind, const StPlane& In, long nHalf, const StPlane& Out,
             Kernels::ClScratch& rScratch);

/// Each pixel through a table of 256 entries. `Out` may be `In`.
void LookUp(const StPlane& In, const unsigned char* pTable, const StPlane& Out);

/// Two planes for a kernel of pairs. `Out` may be `A` or `B`.
Kernels::StPairOfPlanes PairOf(const StPlane& A, const StPlane& B, const StPlane& Out);

ClHistogram HistogramOf(const StPlane& Plane);

} // namespace Quick
