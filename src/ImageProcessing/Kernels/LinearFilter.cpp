#include "ImageProcessing/Kernels/LinearFilter.h"

// Bytes and the taps of a Gaussian or its derivative, which pair up and are few, take the loops of
// PairedFilter.h. What follows serves the others.
//
// Across lines, two lines at a time are interleaved and multiplied by a pair of taps in one
// multiply-add of the x86-64 baseline: 16 columns a round. Along a line the same loop runs over
// one padded copy, which stands for nTaps lines, each moved by one sample: no border test is left
// inside. Along sums of columns, which are too long for that instruction, the products are those
// of real numbers, two at a time.
//
// All of it is exact, and so the order of adding does not matter: with absolute taps that sum to
// 2^15 at most, a sum of products has 23 bits, and one of sums of columns 38, which a double
// holds. A Gaussian's taps sum to 2^12. Kernels beyond take plain loops in 64 bits.
//
// The last round of a line begins where it ends with the line, and repeats some samples of the
// round before.

#include "ImageProcessing/Kernels/Sharpen.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include <emmintrin.h>

namespace Kernels {

namespace {

constexpr int cnDivisor = 4096;
constexpr long cnDivisorBoth = static_cast<long>(cnDivisor) * cnDivisor;
constexpr unsigned long cnNarrowLimit = 32767;

/// Columns of a round: of samples, and of sums.
constexpr long cnRound = 16;
constexpr long cnRoundOfSums = 8;

// Plain

/// Products and sums modulo 2^64: taps may be of any size.
long MultiplyAdd(long nSum, long nTap, long nValue) {
    return static_cast<long>(static_cast<unsigned long>(nSum) +
                             static_cast<unsigned long>(nTap) * static_cast<unsigned long>(nValue));
}

template <class LineAt>
long SumOfOne(const LineAt& lineAt, const long* pTaps, long nTaps, long x) {
    long nSum = 0;
    for (long i = 0; i < nTaps; ++i)
        nSum = MultiplyAdd(nSum, pTaps[i], lineAt(i)[x]);
    return nSum;
}

bool IsNarrow(const long* pTaps, long nTaps) {
    unsigned long nTotal = 0;
    for (long i = 0; i < nTaps && nTotal <= cnNarrowLimit; ++i) {
        const auto nTap = static_cast<unsigned long>(pTaps[i]);
        nTotal += std::min(pTaps[i] < 0 ? 0 - nTap : nTap, cnNarrowLimit + 1);
    }
    return nTotal <= cnNarrowLimit;
}

// Vectors

template <class T>
__m128i Load16(const T* p) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}

/// 8 samples, the lower or the upper half of a vector, widened to 16 bits.
template <class T, bool bUpper>
__m128i Widen(__m128i samples) {
    const __m128i zero = _mm_setzero_si128();
    if constexpr (std::is_signed_v<T>) {
        const __m128i doubled =
            bUpper ? _mm_unpackhi_epi8(zero, samples) : _mm_unpacklo_epi8(zero, samples);
        return _mm_srai_epi16(doubled, 8);
    } else {
        return bUpper ? _mm_unpackhi_epi8(samples, zero) : _mm_unpacklo_epi8(samples, zero);
    }
}

/// Divides by 4096 toward zero and keeps the low 8 bits.
__m128i DivideAndCut(__m128i sum) {
    const __m128i bias = _mm_and_si128(_mm_srai_epi32(sum, 31), _mm_set1_epi32(cnDivisor - 1));
    return _mm_and_si128(_mm_srai_epi32(_mm_add_epi32(sum, bias), 12), _mm_set1_epi32(0xFF));
}

/// The sums of the 16 columns of a round, four by four.
struct StSums {
    __m128i m_a[4] = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(),
                      _mm_setzero_si128()};

    /// Adds the products of two lines and a pair of taps.
    template <class T>
    void Add(__m128i first, __m128i second, __m128i taps) {
        const __m128i lower = _mm_unpacklo_epi8(first, second);
        const __m128i upper = _mm_unpackhi_epi8(first, second);
        m_a[0] = _mm_add_epi32(m_a[0], _mm_madd_epi16(Widen<T, false>(lower), taps));
        m_a[1] = _mm_add_epi32(m_a[1], _mm_madd_epi16(Widen<T, true>(lower), taps));
        m_a[2] = _mm_add_epi32(m_a[2], _mm_madd_epi16(Widen<T, false>(upper), taps));
        m_a[3] = _mm_add_epi32(m_a[3], _mm_madd_epi16(Widen<T, true>(upper), taps));
    }

    __m128i Bytes() const {
        const __m128i lower = _mm_packs_epi32(DivideAndCut(m_a[0]), DivideAndCut(m_a[1]));
        const __m128i upper = _mm_packs_epi32(DivideAndCut(m_a[2]), DivideAndCut(m_a[3]));
        return _mm_packus_epi16(lower, upper);
    }
};

template <class T, class LineAt>
StSums SumOfRound(const LineAt& lineAt, const int* pPairs, long nTaps, long x) {
    StSums Sums;
    for (long i = 0; i < nTaps; i += 2) {
        const long nSecond = std::min(i + 1, nTaps - 1); // an odd last tap is paired with 0
        Sums.Add<T>(Load16<T>(lineAt(i) + x), Load16<T>(lineAt(nSecond) + x),
                    _mm_set1_epi32(pPairs[i / 2]));
    }
    return Sums;
}

/// Four sums divided by 2^24 toward zero, the low 8 bits of each.
__m128i DivideAndCut(__m128d first, __m128d second) {
    const __m128d factor = _mm_set1_pd(1.0 / static_cast<double>(cnDivisorBoth));
    const __m128i quotients = _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_mul_pd(first, factor)),
                                                 _mm_cvttpd_epi32(_mm_mul_pd(second, factor)));
    return _mm_and_si128(quotients, _mm_set1_epi32(0xFF));
}

template <class T>
void FilterRoundOfSums(const double* pSums, const double* pTaps, long nTaps, T* pOut) {
    __m128d a[4] = {_mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd(), _mm_setzero_pd()};
    for (long i = 0; i < nTaps; ++i) {
        const __m128d tap = _mm_set1_pd(pTaps[i]);
        for (int n = 0; n < 4; ++n)
            a[n] = _mm_add_pd(a[n], _mm_mul_pd(_mm_loadu_pd(pSums + i + 2 * n), tap));
    }
    const __m128i words = _mm_packs_epi32(DivideAndCut(a[0], a[1]), DivideAndCut(a[2], a[3]));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(pOut), _mm_packus_epi16(words, words));
}

template <class T>
T FilterOneOfSums(const double* pSums, const double* pTaps, long nTaps) {
    double dSum = 0.0;
    for (long i = 0; i < nTaps; ++i)
        dSum += pTaps[i] * pSums[i];
    return static_cast<T>(static_cast<long>(dSum) / cnDivisorBoth);
}

/// Repeats the first and the last of `nWidth` values that begin at `pPadded + nTaps / 2`, so that
/// nTaps - 1 are added.
template <class Value>
void RepeatEnds(Value* pPadded, long nWidth, long nTaps) {
    Value* pFirst = pPadded + nTaps / 2;
    Value* pEnd = pFirst + nWidth;
    std::fill(pPadded, pFirst, *pFirst);
    std::fill(pEnd, pPadded + nWidth + nTaps - 1, pEnd[-1]);
}

} // namespace

ClLinearFilter::ClLinearFilter(const long* pTaps, long nTaps, long nWidth)
    : m_nTaps(std::max(nTaps, 1L)), m_nWidth(std::max(nWidth, 0L)) {
    CopyTaps(pTaps, nTaps);
    m_bNarrow = IsNarrow(m_pTaps.get(), m_nTaps);
    m_Paired = ClPairedTaps(m_pTaps.get(), m_nTaps);
    const auto nPadded = static_cast<std::size_t>(m_nWidth + m_nTaps - 1);
    m_pPadded = Vek::NewArrayPtr<unsigned char>(nPadded);
    m_pSums = Vek::NewArrayPtr<double>(nPadded);
}

void ClLinearFilter::CopyTaps(const long* pTaps, long nTaps) {
    const auto nCount = static_cast<std::size_t>(m_nTaps);
    m_pTaps = Vek::NewArrayPtr<long>(nCount + 1);
    m_pReals = Vek::NewArrayPtr<double>(nCount);
    m_pPairs = Vek::NewArrayPtr<int>((nCount + 1) / 2);
    std::fill(m_pTaps.get(), m_pTaps.get() + nCount + 1, 0L);
    std::copy(pTaps, pTaps + std::max(nTaps, 0L), m_pTaps.get());
    std::transform(m_pTaps.get(), m_pTaps.get() + nCount, m_pReals.get(),
                   [](long nTap) { return static_cast<double>(nTap); });
    for (std::size_t i = 0; i < nCount; i += 2)
        m_pPairs[i / 2] = static_cast<int>((static_cast<std::uint32_t>(m_pTaps[i + 1]) << 16) |
                                           (static_cast<std::uint32_t>(m_pTaps[i]) & 0xFFFFU));
}

// Planes

template <class Pass>
void ClLinearFilter::RunPass(const StInAndOut<unsigned char>& Planes) {
    if (m_nWidth > 0 && Planes.m_nHeight > 0)
        RunAtLevel<Pass>(&m_Paired, m_Scratch.Reserve(Pass::Bytes(m_nWidth)), m_nWidth, &Planes);
}

void ClLinearFilter::AlongPaired(const StInAndOut<unsigned char>& Planes) {
    if (m_Paired.Kind() == ClPairedTaps::EKind::eOdd)
        return InOddRoom(m_Paired, [&](auto room) {
            RunPass<StFilterAlong<decltype(room), StSignedQuotient>>(Planes);
        });
    InEvenRoom(m_Paired,
               [&](auto room) { RunPass<StFilterAlong<decltype(room), StQuotientOfSum>>(Planes); });
}

void ClLinearFilter::AcrossPaired(const StInAndOut<unsigned char>& Planes) {
    if (m_Paired.Kind() == ClPairedTaps::EKind::eOdd)
        return InOddRoom(m_Paired, [&](auto room) {
            RunPass<StFilterAcross<decltype(room), StSignedQuotient>>(Planes);
        });
    InEvenRoom(m_Paired, [&](auto room) {
        RunPass<StFilterAcross<decltype(room), StQuotientOfSum>>(Planes);
    });
}

/// Calls `filter(lines, out)` for each line of the output with the lines that its taps meet.
template <class T, class FilterLines>
void ClLinearFilter::ForEachLine(const StInAndOut<T>& Planes, FilterLines filter) const {
    const auto pLines = Vek::NewArrayPtr<const T*>(static_cast<std::size_t>(m_nTaps));
    for (long y = 0; y < Planes.m_nHeight; ++y) {
        for (long i = 0; i < m_nTaps; ++i)
            pLines[static_cast<std::size_t>(i)] =
                Planes.In(std::clamp(y + i - m_nTaps / 2, 0L, Planes.m_nHeight - 1));
        filter(pLines.get(), Planes.Out(y));
    }
}

template <class T>
void ClLinearFilter::FilterAlong(const StInAndOut<T>& Planes) {
    if constexpr (std::is_same_v<T, unsigned char>)
        if (m_Paired.Kind() != ClPairedTaps::EKind::eNone)
            return AlongPaired(Planes);
    for (long y = 0; y < Planes.m_nHeight; ++y)
        FilterLine(Planes.In(y), Planes.Out(y));
}

template <class T>
void ClLinearFilter::FilterAcross(const StInAndOut<T>& Planes) {
    if constexpr (std::is_same_v<T, unsigned char>)
        if (m_Paired.Kind() != ClPairedTaps::EKind::eNone)
            return AcrossPaired(Planes);
    ForEachLine(Planes, [&](const T* const* ppLines, T* pOut) { FilterColumns(ppLines, pOut); });
}

template <class T>
void ClLinearFilter::FilterBoth(const StInAndOut<T>& Planes) {
    if constexpr (std::is_same_v<T, unsigned char>)
        if (m_Paired.Kind() == ClPairedTaps::EKind::eEven)
            return InEvenRoom(m_Paired,
                              [&](auto room) { RunPass<StFilterBoth<decltype(room)>>(Planes); });
    ForEachLine(Planes, [&](const T* const* ppLines, T* pOut) { FilterLineOfBoth(ppLines, pOut); });
}

void ClLinearFilter::SharpenAcross(const StInAndOut<unsigned char>& Planes) {
    if (m_Paired.Kind() == ClPairedTaps::EKind::eEven)
        return InEvenRoom(m_Paired, [&](auto room) {
            RunPass<StFilterAcross<decltype(room), StSharpened>>(Planes);
        });
    FilterAcross(Planes);
    for (long y = 0; y < Planes.m_nHeight; ++y)
        SharpenLine(Planes.In(y), Planes.Out(y), m_nWidth, 1.0, 0, Planes.Out(y));
}

// Lines, of any taps

template <class T, class LineAt>
void ClLinearFilter::Filter(const LineAt& lineAt, T* pOut) const {
    if (m_bNarrow && m_nWidth >= cnRound) {
        for (long x = 0; x < m_nWidth; x += cnRound) {
            const long nFrom = std::min(x, m_nWidth - cnRound);
            const StSums Sums = SumOfRound<T>(lineAt, m_pPairs.get(), m_nTaps, nFrom);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(pOut + nFrom), Sums.Bytes());
        }
        return;
    }
    for (long x = 0; x < m_nWidth; ++x)
        pOut[x] = static_cast<T>(SumOfOne(lineAt, m_pTaps.get(), m_nTaps, x) / cnDivisor);
}

template <class T>
void ClLinearFilter::FilterColumns(const T* const* ppLines, T* pOut) const {
    Filter<T>([ppLines](long i) { return ppLines[i]; }, pOut);
}

template <class T>
void ClLinearFilter::FilterLine(const T* pIn, T* pOut) {
    if (m_nWidth < 1)
        return;
    T* pPadded = reinterpret_cast<T*>(m_pPadded.get());
    std::memcpy(pPadded + m_nTaps / 2, pIn, static_cast<std::size_t>(m_nWidth));
    RepeatEnds(pPadded, m_nWidth, m_nTaps);
    Filter<T>([pPadded](long i) { return pPadded + i; }, pOut);
}

template <class T>
void ClLinearFilter::FilterLineOfBoth(const T* const* ppLines, T* pOut) {
    if (m_nWidth < 1)
        return;
    if (!m_bNarrow)
        return FilterBothWide(ppLines, pOut);
    SumColumns(ppLines, m_pSums.get() + m_nTaps / 2);
    RepeatEnds(m_pSums.get(), m_nWidth, m_nTaps);
    ProcessLine(m_pSums.get(), pOut, m_nWidth);
}

template <class T>
void ClLinearFilter::SumColumns(const T* const* ppLines, double* pSums) const {
    const auto lineAt = [ppLines](long i) { return ppLines[i]; };
    if (m_nWidth < cnRound) {
        for (long x = 0; x < m_nWidth; ++x)
            pSums[x] = static_cast<double>(SumOfOne(lineAt, m_pTaps.get(), m_nTaps, x));
        return;
    }
    for (long x = 0; x < m_nWidth; x += cnRound) {
        const long nFrom = std::min(x, m_nWidth - cnRound);
        const StSums Sums = SumOfRound<T>(lineAt, m_pPairs.get(), m_nTaps, nFrom);
        for (int n = 0; n < 4; ++n) {
            _mm_storeu_pd(pSums + nFrom + 4 * n, _mm_cvtepi32_pd(Sums.m_a[n]));
            _mm_storeu_pd(pSums + nFrom + 4 * n + 2,
                          _mm_cvtepi32_pd(_mm_unpackhi_epi64(Sums.m_a[n], Sums.m_a[n])));
        }
    }
}

/// `pSums` holds the sums of the columns with their ends repeated.
template <class T>
void ClLinearFilter::ProcessLine(const double* pSums, T* pOut, long nWidth) const {
    if (nWidth < cnRoundOfSums) {
        for (long x = 0; x < nWidth; ++x)
            pOut[x] = FilterOneOfSums<T>(pSums + x, m_pReals.get(), m_nTaps);
        return;
    }
    for (long x = 0; x < nWidth; x += cnRoundOfSums) {
        const long nFrom = std::min(x, nWidth - cnRoundOfSums);
        FilterRoundOfSums(pSums + nFrom, m_pReals.get(), m_nTaps, pOut + nFrom);
    }
}

template <class T>
void ClLinearFilter::FilterBothWide(const T* const* ppLines, T* pOut) const {
    auto pPadded = Vek::NewArrayPtr<long>(static_cast<std::size_t>(m_nWidth + m_nTaps - 1));
    const auto lineAt = [ppLines](long i) { return ppLines[i]; };
    for (long x = 0; x < m_nWidth; ++x)
        pPadded[static_cast<std::size_t>(x + m_nTaps / 2)] =
            SumOfOne(lineAt, m_pTaps.get(), m_nTaps, x);
    RepeatEnds(pPadded.get(), m_nWidth, m_nTaps);
    const auto sumsAt = [&](long i) { return pPadded.get() + i; };
    for (long x = 0; x < m_nWidth; ++x)
        pOut[x] = static_cast<T>(SumOfOne(sumsAt, m_pTaps.get(), m_nTaps, x) / cnDivisorBoth);
}

template void ClLinearFilter::FilterAlong(const StInAndOut<unsigned char>&);
template void ClLinearFilter::FilterAlong(const StInAndOut<signed char>&);
template void ClLinearFilter::FilterAcross(const StInAndOut<unsigned char>&);
template void ClLinearFilter::FilterAcross(const StInAndOut<signed char>&);
template void ClLinearFilter::FilterBoth(const StInAndOut<unsigned char>&);
template void ClLinearFilter::FilterBoth(const StInAndOut<signed char>&);

} // namespace Kernels
