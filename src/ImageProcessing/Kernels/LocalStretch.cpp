#include "ImageProcessing/Kernels/LocalStretch.h"

// With a threshold of 0 or more for the contrast, and a range that is one, everything is a distance
// x from the bottom of a range and the number of its values n, from 1 to 256. With p = 0xFF0000,
//
//     (p / n) * x >> 16        limited to 255
//
// is right in single precision. p has 24 bits and is exact. A quotient p / n that is no integer is
// at least 1 / n away from the next one; rounding moves it by less, for it is below 2^24 / n and
// its unit in the last place below 2 / n: its integer part is right. The product is exact below
// 2^24, that is where the result is below 256.
//
// All others: a difference of two samples has 511 values, so that the division and the choice of
// the range are made once for each and looked up for a sample. The products need 33 bits.

#include "ImageProcessing/Kernels/SampleBySample.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>

namespace Kernels {

namespace {

constexpr std::int32_t cnFull = 0xFF0000; ///< 255 in 16.16

/// max(0, a - b)
unsigned char Distance(unsigned char a, unsigned char b) {
    return static_cast<unsigned char>((a > b ? a : b) - b);
}

struct StStretchInFloats {
    static void Run(const unsigned char* pIn, const unsigned char* pMin, const unsigned char* pMax,
                    long nSamples, unsigned char nMinContrast, unsigned char nLow,
                    unsigned char nSpan, unsigned char* pOut) {
        TESSARIN_SAMPLE_BY_SAMPLE
        for (long i = 0; i < nSamples; ++i) {
            const unsigned char nContrast = Distance(pMax[i], pMin[i]);
            const bool bLocal = nContrast > nMinContrast;
            const unsigned char nBottom = bLocal ? pMin[i] : nLow;
            const unsigned char nLast = bLocal ? nContrast : nSpan;
            const auto values = static_cast<float>(nLast + 1);
            const auto factor = static_cast<float>(static_cast<int>(cnFull / values));
            const auto distance = static_cast<float>(Distance(pIn[i], nBottom));
            const float value = distance * factor * (1.0F / 65536.0F);
            pOut[i] = static_cast<unsigned char>(static_cast<int>(value < 255.0F ? value : 255.0F));
        }
    }
};

struct StIsAnyFlat {
    static bool Run(const unsigned char* pMin, const unsigned char* pMax, long nSamples,
                    unsigned char nMinContrast) {
        unsigned char nFlat = 0;
        for (long i = 0; i < nSamples; ++i)
            nFlat = static_cast<unsigned char>(
                nFlat | (Distance(pMax[i], pMin[i]) <= nMinContrast ? 1 : 0));
        return nFlat != 0;
    }
};

} // namespace

bool IsAnyFlat(const unsigned char* pMin, const unsigned char* pMax, long nSamples,
               long nMinContrast) {
    return RunAtLevel<StIsAnyFlat>(pMin, pMax, nSamples,
                                   static_cast<unsigned char>(std::clamp(nMinContrast, 0L, 255L)));
}

ClLocalStretch::ClLocalStretch(long nMinContrast, unsigned char nLow, unsigned char nHigh)
    : m_bPlain(nMinContrast >= 0 && nLow <= nHigh),
      m_nMinContrast(static_cast<unsigned char>(std::clamp(nMinContrast, 0L, 255L))), m_nLow(nLow),
      m_nSpan(static_cast<unsigned char>(nHigh - nLow)) {
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
    if (m_bPlain)
        return RunAtLevel<StStretchInFloats>(pIn, pMin, pMax, nSamples, m_nMinContrast, m_nLow,
                                             m_nSpan, pOut);
    for (long i = 0; i < nSamples; ++i) {
        const StRange& Range = m_aRanges[pMax[i] - pMin[i] + cnLargest];
        const int nBottom = (pMin[i] & Range.m_nMinMask) + Range.m_nLow;
        const std::int64_t nValue = (std::int64_t{Range.m_nFactor} * (pIn[i] - nBottom)) >> 16;
        pOut[i] = static_cast<unsigned char>(std::clamp<std::int64_t>(nValue, 0, 255));
    }
}

} // namespace Kernels
