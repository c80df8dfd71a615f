#include "FingerCoding/Quick/DoubleBlur.h"

// The first mean is that of two values, and so a count. With k of 529 pixels in the region it is
//
//     trunc(255 * (529 - k) / 529) = 255 - u,    u = ceil(255 * k / 529)
//
// which is (k * 31591 >> 16) + 1 for k of 1 to 529: the factor falls short of 255 * 2^16 / 529 by
// less than 0.08, the product of the two by less than 0.0007, and quotients that are no whole
// numbers lie at least 1/529 = 0.0018 above the next one below. Of whole ones there is 255 alone,
// which the shortfall makes 254. A window that is cut at an edge holds no region, as it reaches no
// further than 21 pixels from the edge, and its mean is 255 in any case.
//
// The second mean is never formed. Below t it is where the sum of its n pixels is below t * n:
//
//     grown     sum of u        > 10 * n
//     shrunk    sum of 255 - u  < 10 * n
//
// so that either is a comparison with at most 5290, and sums may be cut above that: all are 16 bits
// wide. A window that is cut at an edge has fewer pixels, which the grown one must count. A shrunk
// region lies in the box of the one that it is made of, far from the edges: of a window outside of
// the box, less than half of the weight lies in it.
//
// Lines enter and leave the sums of columns; along a line, 23 samples are summed as 5 * 4 + 3. All
// stages are kept for the lines in the windows alone. A line costs about 25 vector operations for
// each 32 columns of the box, and nothing outside of it is looked at.

#include "ImageProcessing/Kernels/Scratch.h"
#include "Tools/InstructionLevel.h"

#include <cstdint>
#include <cstring>

namespace Quick {

namespace {

using Kernels::ClScratch;

constexpr long cnHalf = ClDoubleBlur::cnHalf;
constexpr long cnWindow = ClDoubleBlur::cnWidth;
constexpr long cnReach = ClDoubleBlur::cnReach;
constexpr int cnBoundPerPixel = 10;
constexpr std::uint16_t cnAboveBounds =
    6000; ///< sums of four are cut here; five and three more fit in 16 bits

/// Lines of a box and of what its pixels reach, one after the other.
struct StLines {
    StLines(unsigned char* pMemory, long nBoxWidth)
        : m_nCounts(nBoxWidth + 4 * cnReach), m_nMeans(nBoxWidth + 3 * cnReach),
          m_nResults(nBoxWidth + 2 * cnReach), m_pMemory(pMemory) {
        m_nMeanStride = static_cast<long>(ClScratch::Aligned(static_cast<std::size_t>(m_nMeans)));
        m_pCounts = Take<std::uint8_t>(m_nCounts);
        m_pFours = Take<std::uint8_t>(m_nCounts);
        m_pSums = Take<std::uint16_t>(m_nMeans);
        m_pSumsOfFour = Take<std::uint16_t>(m_nMeans);
        m_pBounds = Take<std::uint16_t>(m_nResults);
        m_pColumns = Take<std::uint8_t>(m_nResults);
        m_pMeans = Take<std::uint8_t>(cnWindow * m_nMeanStride);
    }

    template <class T>
    T* Take(long nSamples) {
        T* pTaken = reinterpret_cast<T*>(m_pMemory);
        m_pMemory += ClScratch::Aligned(static_cast<std::size_t>(nSamples) * sizeof(T));
        return pTaken;
    }

    long m_nCounts;
    long m_nMeans;
    long m_nResults;
    long m_nMeanStride = 0;
    unsigned char* m_pMemory;
    std::uint8_t* m_pCounts = nullptr;      ///< region pixels of the columns of the first window
    std::uint8_t* m_pFours = nullptr;       ///< of four columns
    std::uint16_t* m_pSums = nullptr;       ///< of the columns of the second window
    std::uint16_t* m_pSumsOfFour = nullptr; ///< of four columns, cut
    std::uint16_t* m_pBounds = nullptr;     ///< for the sum of a second window
    std::uint8_t* m_pColumns = nullptr;     ///< whether a column of the result has region
    std::uint8_t* m_pMeans = nullptr;       ///< what the second window sums, line after line
};

/// How many of the places n - half to n + half lie in a frame.
long Inside(long n, long nSize) {
    return std::min(n + cnHalf, nSize - 1) - std::max(n - cnHalf, 0L) + 1;
}

template <bool bGrow>
struct StBlur {
    static constexpr std::uint8_t cnGround = bGrow ? 0 : 255; ///< what ground adds to a sum

    static StBox Run(const StPlane* pIn, const StBox* pBox, const StPlane* pOut,
                     unsigned char* pMemory) {
        return StBlur(*pIn, *pBox, *pOut, pMemory).Blur();
    }

private:
    StBlur(const StPlane& In, const StBox& Box, const StPlane& Out, unsigned char* pMemory)
        : m_In(In), m_Box(Box), m_Out(Out), m_L(pMemory, Box.Width()),
          m_Target((bGrow ? Box.Grown(cnReach) : Box).CutTo(Out.Frame())) {}

    StBox Blur() {
        std::memset(m_L.m_pCounts, 0, static_cast<std::size_t>(m_L.m_nCounts));
        std::memset(m_L.m_pMeans, cnGround, static_cast<std::size_t>(cnWindow * m_L.m_nMeanStride));
        std::memset(m_L.m_pColumns, 0, static_cast<std::size_t>(m_L.m_nResults));
        std::fill_n(m_L.m_pSums, m_L.m_nMeans, static_cast<std::uint16_t>(cnWindow * cnGround));
        StBox Found{m_Target.m_nRight, m_Target.m_nBottom, m_Target.m_nLeft, m_Target.m_nTop};
        for (long y = m_Box.m_nTop - cnReach; y < m_Target.m_nBottom; ++y) {
            EnterMeans(y + cnHalf);
            if (y < m_Target.m_nTop || !WriteLine(y))
                continue;
            Found.m_nTop = std::min(Found.m_nTop, y);
            Found.m_nBottom = y + 1;
        }
        for (long x = m_Target.m_nLeft; x < m_Target.m_nRight; ++x) {
            if (m_L.m_pColumns[x - FirstResult()] == 0)
                continue;
            Found.m_nLeft = std::min(Found.m_nLeft, x);
            Found.m_nRight = x + 1;
        }
        return Found;
    }

    long FirstResult() const { return m_Box.m_nLeft - cnReach; }

    /// Line `y` of the first mean takes the place of line y - 23.
    void EnterMeans(long y) {
        CountLine(y + cnHalf, 1);
        CountLine(y - cnHalf - 1, -1);
        const long nSlot = (y - m_Box.m_nTop + cnWindow) % cnWindow;
        std::uint8_t* __restrict pMeans = m_L.m_pMeans + nSlot * m_L.m_nMeanStride;
        std::uint16_t* __restrict pSums = m_L.m_pSums;
        std::uint8_t* __restrict pFours = m_L.m_pFours;
        const std::uint8_t* __restrict p = m_L.m_pCounts;
        const long nFours = m_L.m_nCounts - 3; // what a loop stores could be its own end else
        const long nMeans = m_L.m_nMeans;
        for (long i = 0; i < nFours; ++i)
            pFours[i] = static_cast<std::uint8_t>(p[i] + p[i + 1] + p[i + 2] + p[i + 3]);
        for (long i = 0; i < nMeans; ++i) {
            const auto n = static_cast<std::uint16_t>(pFours[i] + pFours[i + 4] + pFours[i + 8] +
                                                      pFours[i + 12] + pFours[i + 16] + p[i + 20] +
                                                      p[i + 21] + p[i + 22]);
            const auto nRegion = static_cast<std::uint16_t>(
                static_cast<std::uint16_t>(n * 31591U >> 16) + (n != 0 ? 1 : 0));
            const auto nMean = static_cast<std::uint8_t>(bGrow ? nRegion : 255 - nRegion);
            pSums[i] = static_cast<std::uint16_t>(pSums[i] + nMean - pMeans[i]);
            pMeans[i] = nMean;
        }
    }

    /// Adds a line of the region to the counts of columns, or takes it away.
    void CountLine(long y, int nSign) {
        if (y < m_Box.m_nTop || y >= m_Box.m_nBottom)
            return;
        const unsigned char* __restrict pLine = m_In.Line(y) + m_Box.m_nLeft;
        std::uint8_t* __restrict pCounts = m_L.m_pCounts + 2 * cnReach;
        const long nWidth = m_Box.Width();
        if (nSign > 0)
            for (long x = 0; x < nWidth; ++x)
                pCounts[x] = static_cast<std::uint8_t>(pCounts[x] + pLine[x]);
        else
            for (long x = 0; x < nWidth; ++x)
                pCounts[x] = static_cast<std::uint8_t>(pCounts[x] - pLine[x]);
    }

    void SetBounds(long nLines) {
        if (nLines == m_nLinesOfBounds)
            return;
        m_nLinesOfBounds = nLines;
        for (long i = 0; i < m_L.m_nResults; ++i)
            m_L.m_pBounds[i] = static_cast<std::uint16_t>(
                cnBoundPerPixel * nLines *
                (bGrow ? std::max(Inside(FirstResult() + i, m_In.m_nWidth), 0L) : cnWindow));
    }

    /// Whether the line has region.
    bool WriteLine(long y) {
        SetBounds(bGrow ? Inside(y, m_In.m_nHeight) : cnWindow);
        const std::uint16_t* __restrict p = m_L.m_pSums;
        std::uint16_t* __restrict pFours = m_L.m_pSumsOfFour;
        const long nFours = m_L.m_nMeans - 3;
        for (long i = 0; i < nFours; ++i)
            pFours[i] = std::min(static_cast<std::uint16_t>(p[i] + p[i + 1] + p[i + 2] + p[i + 3]),
                                 cnAboveBounds);
        const long nSkip = m_Target.m_nLeft - FirstResult();
        const std::uint16_t* __restrict pSingle = p + nSkip;
        const std::uint16_t* __restrict pFour = pFours + nSkip;
        const std::uint16_t* __restrict pBounds = m_L.m_pBounds + nSkip;
        std::uint8_t* __restrict pColumns = m_L.m_pColumns + nSkip;
        unsigned char* __restrict pOut = m_Out.Line(y) + m_Target.m_nLeft;
        std::uint8_t nAny = 0;
        const long nWidth = m_Target.Width();
        for (long i = 0; i < nWidth; ++i) {
            const auto nSum = static_cast<std::uint16_t>(
                pFour[i] + pFour[i + 4] + pFour[i + 8] + pFour[i + 12] + pFour[i + 16] +
                pSingle[i + 20] + pSingle[i + 21] + pSingle[i + 22]);
            const std::uint8_t nIn = (bGrow ? nSum > pBounds[i] : nSum < pBounds[i]) ? 1 : 0;
            pOut[i] = nIn;
            pColumns[i] |= nIn;
            nAny |= nIn;
        }
        return nAny != 0;
    }

    const StPlane m_In;
    const StBox m_Box;
    const StPlane m_Out;
    StLines m_L;
    StBox m_Target; ///< where the result may have region
    long m_nLinesOfBounds = -1;
};

} // namespace

std::size_t ClDoubleBlur::Bytes(long nWidth) {
    const StLines Lines(nullptr, nWidth);
    return static_cast<std::size_t>(Lines.m_pMemory - static_cast<unsigned char*>(nullptr));
}

StBox ClDoubleBlur::Grow(const StPlane& In, const StBox& Box, const StPlane& Out) const {
    return RunAtLevel<StBlur<true>>(&In, &Box, &Out, m_pMemory);
}

StBox ClDoubleBlur::Shrink(const StPlane& In, const StBox& Box, const StPlane& Out) const {
    return RunAtLevel<StBlur<false>>(&In, &Box, &Out, m_pMemory);
}

} // namespace Quick
