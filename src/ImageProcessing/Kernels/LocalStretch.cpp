#include "ImageProcessing/Kernels/LocalStretch.h"

// A difference of two samples has 511 values, so that the division and the choice of the range are
// made once for each and looked up for a sample. What is left is one multiplication. The products
// need 33 bits.

#include <algorithm>

namespace Kernels {

namespace {

constexpr std::int32_t cnFull = 0xFF0000; ///< 255 in 16.16

} // namespace

ClLocalStretch::ClLocalStretch(long nMinContrast, unsigned char nLow, unsigned char nHigh) {
    const int nSpan = nHigh - nLow + 1;
    const StRange Global = {nSpan != 0 ? cnFull / nSpan : 0, 0, nLow};
    for (int d = -cnLargest; d <= cnLargest; ++d) {
        const bool bLocal = d > nMinContrast && d != -1;
        m_aRanges[d + cnLargest] = bLocal ? StRange{cnFull / (d + 1), 0xFF, 0} : Global;
    }
}

void ClLocalStretch::StretchLine(const unsigned char* pIn, const unsigned char* pMin,
                                 const unsigned char* pMax, long nSamples,
                                 unsigned char* pOut) const {
    for (long i = 0; i < nSamples; ++i) {
        const StRange& Range = m_aRanges[pMax[i] - pMin[i] + cnLargest];
        const int nBottom = (pMin[i] & Range.m_nMinMask) + Range.m_nLow;
        const std::int64_t nValue = (std::int64_t{Range.m_nFactor} * (pIn[i] - nBottom)) >> 16;
        pOut[i] = static_cast<unsigned char>(std::clamp<std::int64_t>(nValue, 0, 255));
    }
}

} // namespace Kernels
