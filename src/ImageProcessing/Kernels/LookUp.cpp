#include "ImageProcessing/Kernels/LookUp.h"

// A load from the table per sample is all there is to do, and no vector instruction that every
// processor has looks up 256 bytes. The table stays in the first cache.

namespace Kernels {

void LookUpLine(const unsigned char* pIn, long nSamples, const unsigned char* pTable,
                unsigned char* pOut) {
    for (long i = 0; i < nSamples; ++i)
        pOut[i] = pTable[pIn[i]];
}

} // namespace Kernels
