#include "ImageProcessing/Kernels/LocalThreshold.h"

#include "Tools/Allocate.h"

#include <algorithm>
#include <numeric>

namespace Kernels {

namespace {

/// A pixel moved by so much lies above, or below, every sum by area: further offsets decide the
/// same, and the products stay far from the ends of 64 bits. That quotient is 255 * 3 / 2 at most:
/// an even size sums one column more than its area counts, 3 for 2 where it is smallest.
constexpr long cnLargestOffset = 255 * 3 / 2 + 1;

} // namespace

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
