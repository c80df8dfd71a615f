#include "ImageProcessing/Kernels/Warp.h"

// The 16 products of a sample are two multiply-add instructions of the x86-64 baseline: 8 signed
// 16-bit products each, summed in pairs to 32 bits, where they cannot overflow (16 * 2^15 * 2^8 <
// 2^31). The sums are integers, so the order of adding does not matter and the result is that of
// the plain loop. Four samples are made at a time, so that their 16 partial sums are added, rounded
// and limited together.
//
// Half of the time is the table passing through: 36 bytes for each sample, more than caches near
// the processor hold. Asking for it ahead hides the other half, save for the multiplying itself.
// Wider vectors gain next to nothing: the samples of neighbouring pixels come from unrelated places
// and have to be gathered one by one.

#include <cstdint>
#include <cstring>

#include <emmintrin.h>

namespace Kernels {

namespace {

constexpr int cnRounding = 1023;
constexpr int cnShift = 10;
constexpr std::size_t cnGroup = 4;

/// Bytes of the table between what is worked on and what is asked for; what lies behind the table
/// may be asked for, too.
constexpr std::uintptr_t cnAhead = 2048;
constexpr std::uintptr_t cnCacheLine = 64;

std::int32_t Load32(const unsigned char* pBytes) {
    std::int32_t nValue = 0;
    std::memcpy(&nValue, pBytes, sizeof nValue);
    return nValue;
}

unsigned char Finish(int nSum) {
    const int nValue = (nSum + cnRounding) >> cnShift;
    return static_cast<unsigned char>(nValue < 0 ? 0 : nValue > 255 ? 255 : nValue);
}

/// Two rows of 4 samples as 8 numbers of 16 bits.
__m128i LoadRows(const unsigned char* pFirst, const unsigned char* pSecond) {
    const __m128i both =
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(Load32(pFirst)), _mm_cvtsi32_si128(Load32(pSecond)));
    return _mm_unpacklo_epi8(both, _mm_setzero_si128());
}

/// Four partial sums of the sample of an entry.
__m128i SumInFour(const unsigned char* pEntry, const unsigned char* pSource,
                  std::ptrdiff_t nStride) {
    const __m128i* pWeights = reinterpret_cast<const __m128i*>(pEntry + sizeof(std::int32_t));
    const unsigned char* pRow = pSource + Load32(pEntry);
    const __m128i upper = _mm_madd_epi16(LoadRows(pRow, pRow + nStride), _mm_loadu_si128(pWeights));
    const __m128i lower = _mm_madd_epi16(LoadRows(pRow + 2 * nStride, pRow + 3 * nStride),
                                         _mm_loadu_si128(pWeights + 1));
    return _mm_add_epi32(upper, lower);
}

/// Of two samples with four partial sums each: two partial sums, by turns.
__m128i SumInTwo(__m128i first, __m128i second) {
    return _mm_add_epi32(_mm_unpacklo_epi32(first, second), _mm_unpackhi_epi32(first, second));
}

/// Finish() of four sums, as the bytes of a number.
std::int32_t FinishGroup(__m128i sums) {
    const __m128i values = _mm_srai_epi32(_mm_add_epi32(sums, _mm_set1_epi32(cnRounding)), cnShift);
    const __m128i words = _mm_packs_epi32(values, values);
    return _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
}

void WarpGroup(const unsigned char* pEntries, const unsigned char* pSource, std::ptrdiff_t nStride,
               unsigned char* pOut) {
    __m128i aSums[cnGroup];
    for (std::size_t i = 0; i < cnGroup; ++i)
        aSums[i] = SumInFour(pEntries + i * cnWarpEntrySize, pSource, nStride);
    const __m128i left = SumInTwo(aSums[0], aSums[1]);
    const __m128i right = SumInTwo(aSums[2], aSums[3]);
    const __m128i sums =
        _mm_add_epi32(_mm_unpacklo_epi64(left, right), _mm_unpackhi_epi64(left, right));
    const std::int32_t nBytes = FinishGroup(sums);
    std::memcpy(pOut, &nBytes, sizeof nBytes);
}

int SumOf(const unsigned char* pWeights, const unsigned char* pSource, std::ptrdiff_t nStride,
          int nStep) {
    int nSum = 0;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c, pWeights += 2) {
            std::int16_t nWeight = 0;
            std::memcpy(&nWeight, pWeights, sizeof nWeight);
            nSum += nWeight * pSource[r * nStride + c * nStep];
        }
    return nSum;
}

void WarpSingly(const unsigned char* pEntries, std::size_t nEntries, const unsigned char* pSource,
                std::ptrdiff_t nStride, int nStep, unsigned char nBackground, unsigned char* pOut) {
    for (std::size_t i = 0; i < nEntries; ++i, pEntries += cnWarpEntrySize) {
        const std::int32_t nOffset = Load32(pEntries);
        const unsigned char* pWeights = pEntries + sizeof nOffset;
        pOut[i] =
            nOffset < 0 ? nBackground : Finish(SumOf(pWeights, pSource + nOffset, nStride, nStep));
    }
}

bool AllHaveSources(const unsigned char* pEntries) {
    std::int32_t nSigns = 0;
    for (std::size_t i = 0; i < cnGroup; ++i)
        nSigns |= Load32(pEntries + i * cnWarpEntrySize);
    return nSigns >= 0;
}

void AskFor(const unsigned char* pEntries) {
    static_assert(cnGroup * cnWarpEntrySize <= 3 * cnCacheLine, "three lines hold a group");
    const std::uintptr_t nAddress = reinterpret_cast<std::uintptr_t>(pEntries) + cnAhead;
    for (std::uintptr_t nLine = 0; nLine < 3; ++nLine)
        _mm_prefetch(reinterpret_cast<const char*>(nAddress + nLine * cnCacheLine), _MM_HINT_T0);
}

} // namespace

void WarpLine(const unsigned char* pEntries, std::size_t nEntries, const unsigned char* pSource,
              std::ptrdiff_t nStride, int nStep, unsigned char nBackground, unsigned char* pOut) {
    while (nStep == 1 && nEntries >= cnGroup) {
        AskFor(pEntries);
        if (AllHaveSources(pEntries))
            WarpGroup(pEntries, pSource, nStride, pOut);
        else
            WarpSingly(pEntries, cnGroup, pSource, nStride, nStep, nBackground, pOut);
        pEntries += cnGroup * cnWarpEntrySize;
        nEntries -= cnGroup;
        pOut += cnGroup;
    }
    WarpSingly(pEntries, nEntries, pSource, nStride, nStep, nBackground, pOut);
}

} // namespace Kernels
