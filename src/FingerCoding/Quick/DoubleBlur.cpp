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

#include "FingerCoding/Quick/LineSums.h"
#include "Tools/InstructionLevel.h"

#include <cstdint>
#include <cstring>

namespace Quick {

namespace {

using namespace LineSums;

constexpr long cnHalf = ClDoubleBlur::cnHalf;
constexpr long cnWindow = ClDoubleBlur::cnWidth;
constexpr long cnReach = ClDoubleBlur::cnReach;
constexpr int cnBoundPerPixel = 10;
constexpr std::uint16_t cnAboveBounds = 6000; ///< five of these and three sums fit in 16 bits

/// Lines of a box and of what its pixels reach, one after the other.
struct StLines {
    template <class Memory>
    StLines(Memory& rMemory, long nBoxWidth)
        : m_nCounts(nBoxWidth + 4 * cnReach), m_nMeans(nBoxWidth + 3 * cnReach),
          m_nResults(nBoxWidth + 2 * cnReach), m_nMeanStride(static_cast<long>(Room(m_nMeans))) {
        m_pCounts = rMemory.template Take<std::uint8_t>(m_nCounts);
        m_pFourCounts = rMemory.template Take<std::uint8_t>(m_nCounts);
        m_pNothing = rMemory.template Take<std::uint8_t>(m_nCounts);
        m_pSums = rMemory.template Take<std::uint16_t>(m_nMeans);
        m_pFourSums = rMemory.template Take<std::uint16_t>(m_nMeans);
        m_pBounds = rMemory.template Take<std::uint16_t>(m_nResults);
        m_pColumns = rMemory.template Take<std::uint8_t>(m_nResults);
        m_pMeans = rMemory.template Take<std::uint16_t>(cnWindow * m_nMeanStride);
    }

    long m_nCounts;
    long m_nMeans;
    long m_nResults;
    long m_nMeanStride;
    std::uint8_t* m_pCounts;     ///< region pixels of the columns of the first window
    std::uint8_t* m_pFourCounts; ///< of four columns
    std::uint8_t* m_pNothing;    ///< a line without region
    std::uint16_t* m_pSums;      ///< of the columns of the second window
    std::uint16_t* m_pFourSums;  ///< of four columns, cut
    std::uint16_t* m_pBounds;    ///< for the sum of a second window
    std::uint8_t* m_pColumns;    ///< whether a column of the result has region
    std::uint16_t* m_pMeans;     ///< what the second window sums, line after line
};

// Lines. Windows are known by their first column.

/// Puts the means of a line in the place of those that leave the sums of columns.
template <bool bGrow>
void ExchangeMeans(const std::uint8_t* __restrict p, const std::uint8_t* __restrict pFours,
                   long nSamples, std::uint16_t* __restrict pMeans,
                   std::uint16_t* __restrict pSums) {
    const long nEnd = Rounds(nSamples);
    for (long i = 0; i < nEnd; ++i) {
        // Up to 8 columns of 23 pixels fit in 8 bits.
        const auto n8 = static_cast<std::uint8_t>(pFours[i] + pFours[i + 4]);
        const auto n16 = static_cast<std::uint8_t>(pFours[i + 8] + pFours[i + 12]);
        const auto n23 =
            static_cast<std::uint8_t>(pFours[i + 16] + p[i + 20] + p[i + 21] + p[i + 22]);
        const auto n = static_cast<std::uint16_t>(n8 + n16 + n23);
        const auto nRegion = static_cast<std::uint16_t>(
            static_cast<std::uint16_t>(n * 31591U >> 16) + (n != 0 ? 1 : 0));
        const auto nMean = static_cast<std::uint16_t>(bGrow ? nRegion : 255 - nRegion);
        pSums[i] = static_cast<std::uint16_t>(pSums[i] + nMean - pMeans[i]);
        pMeans[i] = nMean;
    }
}

/// Whether there is region in a line of the result.
template <bool bGrow>
bool Compare(const std::uint16_t* __restrict p, const std::uint16_t* __restrict pFours,
             const std::uint16_t* __restrict pBounds, long nSamples, std::uint8_t* __restrict pOut,
             std::uint8_t* __restrict pColumns) {
    std::uint8_t nAny = 0;
    for (long i = 0; i < nSamples; ++i) {
        const auto nSum =
            static_cast<std::uint16_t>(pFours[i] + pFours[i + 4] + pFours[i + 8] + pFours[i + 12] +
                                       pFours[i + 16] + p[i + 20] + p[i + 21] + p[i + 22]);
        const std::uint8_t nIn = (bGrow ? nSum > pBounds[i] : nSum < pBounds[i]) ? 1 : 0;
        pOut[i] = nIn;
        pColumns[i] |= nIn;
        nAny |= nIn;
    }
    return nAny != 0;
}

template <bool bGrow>
struct StBlur {
    static constexpr std::uint16_t cnGround = bGrow ? 0 : 255; ///< what ground adds to a sum

    static StBox Run(const StPlane* pIn, const StBox* pBox, const StPlane* pOut,
                     unsigned char* pMemory) {
        ClLineMemory Memory(pMemory);
        return StBlur(*pIn, *pBox, *pOut, Memory).Blur();
    }

private:
    StBlur(const StPlane& In, const StBox& Box, const StPlane& Out, ClLineMemory& rMemory)
        : m_In(In), m_Box(Box), m_Out(Out), m_L(rMemory, Box.Width()),
          m_Target((bGrow ? Box.Grown(cnReach) : Box).CutTo(Out.Frame())) {}

    StBox Blur() {
        Begin();
        StBox Found{m_Target.m_nRight, m_Target.m_nBottom, m_Target.m_nLeft, m_Target.m_nTop};
        for (long y = m_Box.m_nTop - cnReach; y < m_Target.m_nBottom; ++y) {
            EnterLine(y + cnHalf);
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

    /// All is ground so far.
    void Begin() {
        std::memset(m_L.m_pCounts, 0, Room(m_L.m_nCounts));
        std::memset(m_L.m_pNothing, 0, Room(m_L.m_nCounts));
        std::memset(m_L.m_pColumns, 0, Room(m_L.m_nResults));
        std::fill_n(m_L.m_pMeans, cnWindow * m_L.m_nMeanStride, cnGround);
        std::fill_n(m_L.m_pSums, Room(m_L.m_nMeans),
                    static_cast<std::uint16_t>(cnWindow * cnGround));
    }

    long FirstResult() const { return m_Box.m_nLeft - cnReach; }

    const unsigned char* LineOf(long y) const {
        const bool bInBox = y >= m_Box.m_nTop && y < m_Box.m_nBottom;
        return bInBox ? m_In.Line(y) + m_Box.m_nLeft : m_L.m_pNothing;
    }

    /// Line `y` of the first mean takes the place of line y - 23.
    void EnterLine(long y) {
        Exchange(LineOf(y + cnHalf), LineOf(y - cnHalf - 1), m_Box.Width(),
                 m_L.m_pCounts + 2 * cnReach);
        SumFours<1>(m_L.m_pCounts, m_L.m_nCounts, std::uint8_t{255}, m_L.m_pFourCounts);
        const long nSlot = (y - m_Box.m_nTop + cnWindow) % cnWindow;
        ExchangeMeans<bGrow>(m_L.m_pCounts, m_L.m_pFourCounts, m_L.m_nMeans,
                             m_L.m_pMeans + nSlot * m_L.m_nMeanStride, m_L.m_pSums);
    }

    void SetBounds(long nLines) {
        if (nLines == m_nLinesOfBounds)
            return;
        m_nLinesOfBounds = nLines;
        if (bGrow)
            FillBounds(cnBoundPerPixel, nLines, FirstResult(), cnHalf, m_In.m_nWidth,
                       m_L.m_nResults, m_L.m_pBounds);
        else
            std::fill_n(m_L.m_pBounds, m_L.m_nResults,
                        static_cast<std::uint16_t>(cnBoundPerPixel * cnWindow * cnWindow));
    }

    bool WriteLine(long y) {
        SetBounds(bGrow ? Inside(y, cnHalf, m_In.m_nHeight) : cnWindow);
        SumFours<1>(m_L.m_pSums, m_L.m_nMeans, cnAboveBounds, m_L.m_pFourSums);
        const long nSkip = m_Target.m_nLeft - FirstResult();
        return Compare<bGrow>(m_L.m_pSums + nSkip, m_L.m_pFourSums + nSkip, m_L.m_pBounds + nSkip,
                              m_Target.Width(), m_Out.Line(y) + m_Target.m_nLeft,
                              m_L.m_pColumns + nSkip);
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
    ClLineMemorySize Size;
    static_cast<void>(StLines(Size, nWidth));
    return Size.Bytes();
}

StBox ClDoubleBlur::Grow(const StPlane& In, const StBox& Box, const StPlane& Out) const {
    return RunAtLevel<StBlur<true>>(&In, &Box, &Out, m_pMemory);
}

StBox ClDoubleBlur::Shrink(const StPlane& In, const StBox& Box, const StPlane& Out) const {
    return RunAtLevel<StBlur<false>>(&In, &Box, &Out, m_pMemory);
}

} // namespace Quick
