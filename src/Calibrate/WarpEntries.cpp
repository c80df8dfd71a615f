#include "Calibrate/WarpEntries.h"

// Many entries are written in two loops without branches: the first takes positions apart and
// evaluates the kernel, for a vector of pixels at once; the second multiplies 4 columns and 4 rows
// to 16 weights, for one pixel. Every product and sum is that of the definition; a pixel without
// source is one whose columns weigh nothing. Products are from -1024 to 1024, so that narrowing
// them to 16 bits never saturates.

#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cstring>

#include <emmintrin.h>

namespace Warp {

namespace {

/// One axis of a source position: the first of its 4 samples and their kernel values.
struct StAxis {
    std::int64_t m_nFirst = 0;
    double m_adKernel[4] = {};
};

/// Splits a position that has a source. The fraction is taken from the position rounded to a
/// 32-bit float, as tables in use have it.
StAxis SplitPosition(double dPosition, float fLimit) {
    const float f = std::min(std::max(static_cast<float>(dPosition), 1.0F), fLimit);
    StAxis Axis;
    const std::int64_t nWhole = static_cast<std::int64_t>(f);
    const double dFraction = static_cast<double>(f) - static_cast<double>(nWhole);
    Axis.m_nFirst = nWhole - 1;
    Axis.m_adKernel[0] = OuterCubic(1.0 + dFraction);
    Axis.m_adKernel[1] = InnerCubic(dFraction);
    Axis.m_adKernel[2] = InnerCubic(1.0 - dFraction);
    Axis.m_adKernel[3] = OuterCubic(2.0 - dFraction);
    return Axis;
}

/// False for a position that is not a number.
bool IsInside(double dPosition, std::uint32_t nSide) {
    return dPosition >= 1.0 && dPosition <= LargestPosition(nSide);
}

void WriteOffset(std::int32_t nOffset, unsigned char* pEntry) {
    std::memcpy(pEntry, &nOffset, sizeof nOffset);
}

} // namespace

void FillEntry(const StCaptureSize& Size, double sx, double sy, unsigned char* pEntry) {
    std::memset(pEntry, 0, cnEntrySize);
    WriteOffset(cnNoSource, pEntry);
    if (!IsInside(sx, Size.m_nWidth) || !IsInside(sy, Size.m_nHeight))
        return;
    const StAxis X = SplitPosition(sx, static_cast<float>(Size.m_nWidth) - 3.0F);
    const StAxis Y = SplitPosition(sy, static_cast<float>(Size.m_nHeight) - 3.0F);
    const std::int64_t nStride = static_cast<std::int64_t>(LineStride(Size.m_nWidth));
    // Sides beyond what a float holds exactly, or what an offset reaches, have no source.
    if (X.m_nFirst + 4 > std::int64_t{Size.m_nWidth} ||
        Y.m_nFirst + 4 > std::int64_t{Size.m_nHeight} ||
        Y.m_nFirst > (INT32_MAX - X.m_nFirst) / nStride)
        return;

    WriteOffset(static_cast<std::int32_t>(Y.m_nFirst * nStride + X.m_nFirst), pEntry);
    std::int16_t anWeights[16];
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            anWeights[4 * r + c] =
                static_cast<std::int16_t>(X.m_adKernel[c] * cdWeightOne * Y.m_adKernel[r]);
    std::memcpy(pEntry + sizeof(std::int32_t), anWeights, sizeof anWeights);
}

namespace {

/// Whether offsets of all positions inside fit, and sides are exact floats.
bool IsOrdinary(const StCaptureSize& Size) {
    constexpr std::uint32_t cnExactFloats = 1U << 24;
    return std::max(Size.m_nWidth, Size.m_nHeight) <= cnExactFloats &&
           LineStride(Size.m_nWidth) * Size.m_nHeight <= INT32_MAX;
}

inline void KernelValues(double dFraction, double dFactor, double* pValues) {
    pValues[0] = OuterCubic(1.0 + dFraction) * dFactor;
    pValues[1] = InnerCubic(dFraction) * dFactor;
    pValues[2] = InnerCubic(1.0 - dFraction) * dFactor;
    pValues[3] = OuterCubic(2.0 - dFraction) * dFactor;
}

/// Positions taken apart. One without source becomes one at the limits whose columns weigh
/// nothing: the loops have no branch, and each is one that becomes vectors.
class ClSplit {
public:
    void Split(const StCaptureSize& Size, const double* pX, const double* pY, int nEntries) {
        ReplaceOutside(LargestPosition(Size.m_nWidth), LargestPosition(Size.m_nHeight), pX, pY,
                       nEntries);
        TakeApart(static_cast<int>(LineStride(Size.m_nWidth)), nEntries);
    }

    std::int32_t Offset(int i) const { return m_anOffset[i]; }
    const double* Columns(int i) const { return m_aadColumns[i]; } ///< 1024 standing for 1
    const double* Rows(int i) const { return m_aadRows[i]; }

private:
    void ReplaceOutside(double dLimitX, double dLimitY, const double* pX, const double* pY,
                        int nEntries) {
        for (int i = 0; i < nEntries; ++i) {
            const bool bInside =
                (pX[i] >= 1.0) & (pX[i] <= dLimitX) & (pY[i] >= 1.0) & (pY[i] <= dLimitY);
            m_adX[i] = bInside ? pX[i] : dLimitX;
            m_adY[i] = bInside ? pY[i] : dLimitY;
            m_adInside[i] = bInside ? 1.0 : 0.0;
        }
    }

    void TakeApart(int nStride, int nEntries) {
        for (int i = 0; i < nEntries; ++i) {
            const float fX = static_cast<float>(m_adX[i]);
            const float fY = static_cast<float>(m_adY[i]);
            const int nX = static_cast<int>(fX);
            const int nY = static_cast<int>(fY);
            m_anOffset[i] = ((nY - 1) * nStride + nX) * static_cast<int>(m_adInside[i]) - 1;
            KernelValues(static_cast<double>(fX) - nX, cdWeightOne * m_adInside[i],
                         m_aadColumns[i]);
            KernelValues(static_cast<double>(fY) - nY, 1.0, m_aadRows[i]);
        }
    }

    double m_adX[cnMostEntries];
    double m_adY[cnMostEntries];
    double m_adInside[cnMostEntries]; ///< 1 or 0
    std::int32_t m_anOffset[cnMostEntries];
    double m_aadColumns[cnMostEntries][4];
    double m_aadRows[cnMostEntries][4];
};

/// 4 weights of one row as 32-bit numbers, truncated.
__m128i RowOfWeights(const double* pColumns, double dRow) {
    const __m128d row = _mm_set1_pd(dRow);
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_mul_pd(_mm_loadu_pd(pColumns), row)),
                              _mm_cvttpd_epi32(_mm_mul_pd(_mm_loadu_pd(pColumns + 2), row)));
}

void WriteEntry(std::int32_t nOffset, const double* pColumns, const double* pRows,
                unsigned char* pEntry) {
    WriteOffset(nOffset, pEntry);
    __m128i* pWeights = reinterpret_cast<__m128i*>(pEntry + sizeof nOffset);
    for (int r = 0; r < 4; r += 2)
        _mm_storeu_si128(pWeights++, _mm_packs_epi32(RowOfWeights(pColumns, pRows[r]),
                                                     RowOfWeights(pColumns, pRows[r + 1])));
}

struct StFill {
    static void Run(const StCaptureSize* pSize, const double* pX, const double* pY, int nEntries,
                    std::size_t nStep, unsigned char* pEntries) {
        ClSplit split;
        split.Split(*pSize, pX, pY, nEntries);
        for (int i = 0; i < nEntries; ++i, pEntries += nStep)
            WriteEntry(split.Offset(i), split.Columns(i), split.Rows(i), pEntries);
    }
};

} // namespace

void FillEntries(const StCaptureSize& Size, const double* pX, const double* pY, int nEntries,
                 std::size_t nStep, unsigned char* pEntries) {
    if (IsOrdinary(Size))
        RunAtLevel<StFill>(&Size, pX, pY, nEntries, nStep, pEntries);
    else
        for (int i = 0; i < nEntries; ++i)
            FillEntry(Size, pX[i], pY[i], pEntries + static_cast<std::size_t>(i) * nStep);
}

} // namespace Warp
