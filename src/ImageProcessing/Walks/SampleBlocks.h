#pragma once

/// Samples of any pixel type as doubles, in which all of them are exact, and back. A loop over
/// images of several types goes through them block by block, and is compiled once instead of once
/// per combination of types.

#include "Tools/FpImage.h"

/// Samples of a block: few enough for the first cache, and a multiple of 1, 2, 3 and 4 planes.
inline constexpr long cnSampleBlock = 384;

using LoadSamples = void (*)(const unsigned char* pFrom, long nCount, double* pTo);
using StoreSamples = void (*)(const double* pFrom, long nCount, unsigned char* pTo);

/// Whether it is one of the eight pixel types.
bool IsPixelType(unsigned char nType);

/// Null for a value that is no pixel type.
LoadSamples LoadSamplesOf(unsigned char nType);
/// The same; converts as SampleFromDouble().
StoreSamples StoreSamplesOf(unsigned char nType);

/// Turns `nCount` samples of one plane into as many pixels of `nPlanes` equal samples, in place.
void SpreadSamples(double* pSamples, long nCount, long nPlanes);
