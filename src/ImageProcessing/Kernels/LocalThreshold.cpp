#include "ImageProcessing/Kernels/LocalThreshold.h"

// Windows of the usual sizes take the lines of MeanLines.h, which compare sums in vectors. For
// others the sum of a window runs from pixel to pixel, in 64 bits.

#include "ImageProcessing/Kernels/MeanLines.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <numeric>

namespace Kernels {

namespace {

/// A pixel moved by so much lies above, or below, every sum by area: further offsets decide the
/// same, and the products stay far from the ends of 64 bits. That quotient is 255 * 3 / 2 at most:
/// an even size sums one column more than its area counts, 3 for 2 where it is smallest.
constexpr long cnLargestOffset = 255 * 3 / 2 + 1;

/// (in + offset) * A > S, where A is within 2^13 and so the product within 2^23.
struct StAboveSum {
    using Sample = unsigned char;
    using Factor = std::int32_t;

    Factor FactorOf(std::int32_t nLines, std::int32_t nColumns) const {
        return nLines * (nColumns == m_nWindow ? m_nSize : nColumns);
    }
    unsigned char Result(Sample nPixel, std::int32_t nSum, Factor nArea) const {
        const int nMask = -static_cast<int>((nPixel + m_nOffset) * nArea > nSum);
        return static_cast<unsigned char>(m_nBelow ^ (m_nChange & nMask));
    }

    std::int32_t m_nWindow; ///< columns that are summed
    std::int32_t m_nSize;   ///< columns of the area
    std::int32_t m_nOffset;
    unsigned char m_nBelow;
    unsigned char m_nChange; ///< the bits that differ above
};

struct StThresholdOfPlane {
    using Lines = ClMeanLines<StAboveSum>;

    static std::size_t Bytes(long nWidth, long nHalfX) {
        return Lines::KeptBytes(nWidth) + Lines::BatchBytes(nWidth, nHalfX);
    }

    static void Run(unsigned char* pMemory, const unsigned char* pIn, std::ptrdiff_t nInStride,
                    long nWidth, long nHeight, long nHalfX, long nHalfY, StAboveSum Compare,
                    unsigned char* pOut, std::ptrdiff_t nOutStride) {
        Lines Sums(pMemory, pMemory + Lines::KeptBytes(nWidth), nWidth, nHalfX, Compare);
        const auto in = [=](long y) { return pIn + y * nInStride; };
        const auto out = [=](long y) { return pOut + y * nOutStride; };
        Sums.Enter(std::min(nHalfY, nHeight), in);
        for (long y = 0; y < nHeight; y += Lines::cnBatch)
            Sums.RunLines(y, nHeight, nHalfY, nHeight, in, out);
    }
};

void ThresholdAnyWindow(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth,
                        long nHeight, const StLocalThreshold& Settings, unsigned char* pOut,
                        std::ptrdiff_t nOutStride) {
    ClLocalThreshold Threshold(nWidth, Settings.m_nSizeX, Settings.m_nOffset, Settings.m_nBelow,
                               Settings.m_nAbove);
    const long nHalf = Settings.m_nSizeY / 2;
    for (long y = 0; y < nHalf; ++y)
        Threshold.AddLine(pIn + y * nInStride);
    for (long y = 0; y < nHeight; ++y) {
        if (y + nHalf < nHeight)
            Threshold.AddLine(pIn + (y + nHalf) * nInStride);
        Threshold.ThresholdLine(pIn + y * nInStride, pOut + y * nOutStride);
        if (y >= nHalf)
            Threshold.RemoveLine(pIn + (y - nHalf) * nInStride);
    }
}

} // namespace

void LocalThreshold(const unsigned char* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                    const StLocalThreshold& Settings, unsigned char* pOut,
                    std::ptrdiff_t nOutStride, ClScratch& rScratch) {
    const long nHalfX = Settings.m_nSizeX / 2;
    const long nHalfY = Settings.m_nSizeY / 2;
    if (!IsNarrowWindow(nWidth, nHeight, nHalfX, nHalfY))
        return ThresholdAnyWindow(pIn, nInStride, nWidth, nHeight, Settings, pOut, nOutStride);
    const long nOffset = std::clamp(Settings.m_nOffset, -cnLargestOffset, cnLargestOffset);
    const StAboveSum Compare = {static_cast<std::int32_t>(2 * nHalfX + 1),
                                static_cast<std::int32_t>(Settings.m_nSizeX),
                                static_cast<std::int32_t>(nOffset), Settings.m_nBelow,
                                static_cast<unsigned char>(Settings.m_nBelow ^ Settings.m_nAbove)};
    RunAtLevel<StThresholdOfPlane>(rScratch.Reserve(StThresholdOfPlane::Bytes(nWidth, nHalfX)), pIn,
                                   nInStride, nWidth, nHeight, nHalfX, nHalfY, Compare, pOut,
                                   nOutStride);
}

ClLocalThreshold::ClLocalThreshold(long nWidth, long nSize, long nOffset, unsigned char nBelow,
                                   unsigned char nAbove)
    : m_nWidth(nWidth), m_nSize(nSize),
      m_nOffset(std::clamp(nOffset, -cnLargestOffset, cnLargestOffset)), m_nBelow(nBelow),
      m_nAbove(nAbove), m_pSums(Vek::NewArrayPtr<std::int64_t>(static_cast<std::size_t>(nWidth))) {
    std::fill_n(m_pSums.get(), nWidth, 0);
}

void ClLocalThreshold::AddLine(const unsigned char* pLine) {
    for (long x = 0; x < m_nWidth; ++x)
        m_pSums[static_cast<std::size_t>(x)] += pLine[x];
    ++m_nLines;
}

void ClLocalThreshold::RemoveLine(const unsigned char* pLine) {
    for (long x = 0; x < m_nWidth; ++x)
        m_pSums[static_cast<std::size_t>(x)] -= pLine[x];
    --m_nLines;
}

void ClLocalThreshold::ThresholdLine(const unsigned char* pIn, unsigned char* pOut) const {
    const std::int64_t* pSums = m_pSums.get();
    const long nHalf = m_nSize / 2;
    const long nLines = m_nLines;
    // A choice by arithmetic: noise decides, which no processor predicts.
    const auto compare = [nOffset = m_nOffset, nBelow = m_nBelow,
                          nChange = m_nBelow ^ m_nAbove](int nPixel, long nArea, long nSum) {
        const int nMask = -static_cast<int>((nPixel + nOffset) * nArea > nSum);
        return static_cast<unsigned char>(nBelow ^ (nChange & nMask));
    };

    std::int64_t nSum = std::accumulate(pSums, pSums + nHalf, std::int64_t{0});
    long x = 0;
    for (; x < nHalf; ++x) { // the window ends at the left border
        nSum += pSums[x + nHalf];
        pOut[x] = compare(pIn[x], (x + nHalf + 1) * nLines, nSum);
    }
    const long nArea = nLines * m_nSize;
    const long nMiddleEnd = m_nWidth - nHalf;
    for (; x < nMiddleEnd; ++x) {
        nSum += pSums[x + nHalf];
        pOut[x] = compare(pIn[x], nArea, nSum);
        nSum -= pSums[x - nHalf];
    }
    const long nWidth = m_nWidth;
    for (; x < nWidth; ++x) { // at the right border
        pOut[x] = compare(pIn[x], (nWidth + nHalf - x) * nLines, nSum);
        nSum -= pSums[x - nHalf];
    }
}

} // namespace Kernels
