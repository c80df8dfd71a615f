#include "ImageProcessing/Kernels/Warp.h"

// The 16 products of a sample are two multiply-add instructions of the x86-64 baseline: 8 signed
// 16-bit products each, summed in pairs to 32 bits, where they cannot overflow (16 * 2^15 * 2^8 <
// 2^31). The sums are integers, so the order of adding does not matter and the result is that of
// the plain loop. Wider vectors gain nothing: the samples of neighbouring pixels come from
// unrelated places.

#include <cstdint>
#include <cstring>

#include <emmintrin.h>

namespace Kernels {

namespace {

constexpr int cnRounding = 1023;
constexpr int cnShift = 10;

unsigned char Finish(int nSum) {
    const int nValue = (nSum + cnRounding) >> cnShift;
    return static_cast<unsigned char>(nValue < 0 ? 0 : nValue > 255 ? 255 : nValue);
}

/// Two rows of 4 samples as 8 numbers of 16 bits.
__m128i LoadRows(const unsigned char* pFirst, const unsigned char* pSecond) {
    std::int32_t nFirst = 0;
    std::int32_t nSecond = 0;
    std::memcpy(&nFirst, pFirst, sizeof nFirst);
    std::memcpy(&nSecond, pSecond, sizeof nSecond);
    const __m128i both = _mm_unpacklo_epi32(_mm_cvtsi32_si128(nFirst), _mm_cvtsi32_si128(nSecond));
    return _mm_unpacklo_epi8(both, _mm_setzero_si128());
}

int SumDense(const unsigned char* pWeights, const unsigned char* pSource, std::ptrdiff_t nStride) {
    const __m128i* pVector = reinterpret_cast<const __m128i*>(pWeights);
    const __m128i upper =
        _mm_madd_epi16(LoadRows(pSource, pSource + nStride), _mm_loadu_si128(pVector));
    const __m128i lower = _mm_madd_epi16(LoadRows(pSource + 2 * nStride, pSource + 3 * nStride),
                                         _mm_loadu_si128(pVector + 1));
    __m128i sum = _mm_add_epi32(upper, lower);
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(1, 0, 3, 2)));
    sum = _mm_add_epi32(sum, _mm_shuffle_epi32(sum, _MM_SHUFFLE(2, 3, 0, 1)));
    return _mm_cvtsi128_si32(sum);
}

int SumInterleaved(const unsigned char* pWeights, const unsigned char* pSource,
                   std::ptrdiff_t nStride, int nStep) {
    int nSum = 0;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c, pWeights += 2) {
            std::int16_t nWeight = 0;
            std::memcpy(&nWeight, pWeights, sizeof nWeight);
            nSum += nWeight * pSource[r * nStride + c * nStep];
        }
    return nSum;
}

} // namespace

void WarpLine(const unsigned char* pEntries, std::size_t nEntries, const unsigned char* pSource,
              std::ptrdiff_t nStride, int nStep, unsigned char nBackground, unsigned char* pOut) {
    for (std::size_t i = 0; i < nEntries; ++i, pEntries += cnWarpEntrySize) {
        std::int32_t nOffset = 0;
        std::memcpy(&nOffset, pEntries, sizeof nOffset);
        const unsigned char* pWeights = pEntries + sizeof nOffset;
        if (nOffset < 0)
            pOut[i] = nBackground;
        else if (nStep == 1)
            pOut[i] = Finish(SumDense(pWeights, pSource + nOffset, nStride));
        else
            pOut[i] = Finish(SumInterleaved(pWeights, pSource + nOffset, nStride, nStep));
    }
}

} // namespace Kernels
