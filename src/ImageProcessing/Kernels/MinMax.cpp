#include "ImageProcessing/Kernels/MinMax.h"

// Both directions work on whole lines of samples, so that the compiler makes vectors of them and
// no branch depends on a sample.
//
// Along lines the windows double: the extreme of 2 n samples is that of two neighbouring runs of
// n, and any window is covered by two overlapping runs of the largest power of two within it. That
// costs one comparison per sample and doubling, 6 for a width of 53.
//
// Along columns the lines are taken in blocks as high as the window (van Herk, Gil and Werman). A
// window covers the end of one block and the beginning of the next: the extremes of all ends are
// kept, one line each, those of the beginnings run along. Three comparisons per sample at any
// width.
//
// Beyond the edges stand samples that never win.

#include "Tools/Allocate.h"

#include <algorithm>
#include <limits>

namespace Kernels {

namespace {

template <EExtreme eKind, class T>
constexpr T cNeverWins = eKind == EExtreme::eMax ? std::numeric_limits<T>::min()
                                                 : std::numeric_limits<T>::max();

template <EExtreme eKind, class T>
T Pick(T a, T b) {
    if constexpr (eKind == EExtreme::eMax)
        return a < b ? b : a;
    else
        return b < a ? b : a;
}

/// out[i] = the extreme of a[i] and b[i]; `pOut` overlaps neither.
template <EExtreme eKind, class T>
void PickLine(const T* pA, const T* pB, long nCount, T* __restrict pOut) {
    for (long i = 0; i < nCount; ++i)
        pOut[i] = Pick<eKind>(pA[i], pB[i]);
}

// Along lines

/// Two buffers for a line with its margins.
template <class T>
class ClPaddedLine {
public:
    explicit ClPaddedLine(long nLength)
        : m_nLength(nLength),
          m_pBuffers(Vek::NewArrayPtr<T>(2 * static_cast<std::size_t>(nLength))),
          m_pLine(m_pBuffers.get()), m_pSpare(m_pLine + nLength) {}

    /// `nWidth` samples in the middle, `nMargin` at both ends.
    void Fill(const T* pIn, long nWidth, T nMargin) {
        const long nHalf = (m_nLength - nWidth) / 2;
        std::fill_n(m_pLine, nHalf, nMargin);
        std::copy_n(pIn, nWidth, m_pLine + nHalf);
        std::fill_n(m_pLine + nHalf + nWidth, nHalf, nMargin);
    }

    /// The extremes of `nWindow` samples from each place on, to `nWidth` places.
    template <EExtreme eKind>
    void Run(long nWindow, long nWidth, T* pOut) {
        long nRun = 1; // sample i of the line is the extreme of so many from i on
        long nLength = m_nLength;
        for (; 2 * nRun <= nWindow; nRun *= 2) {
            nLength -= nRun;
            PickLine<eKind>(m_pLine, m_pLine + nRun, nLength, m_pSpare);
            std::swap(m_pLine, m_pSpare);
        }
        PickLine<eKind>(m_pLine, m_pLine + (nWindow - nRun), nWidth, pOut);
    }

private:
    long m_nLength;
    std::unique_ptr<T[]> m_pBuffers;
    T* m_pLine;
    T* m_pSpare;
};

// Along columns

/// The lines of a plane with their extremes over blocks of `nWindow` lines. Line 0 is the first
/// one of the margin above the plane.
template <EExtreme eKind, class T>
class ClBlocks {
public:
    ClBlocks(const T* pIn, std::ptrdiff_t nStride, long nWidth, long nHeight, long nHalf)
        : m_pIn(pIn), m_nStride(nStride), m_nWidth(nWidth), m_nHeight(nHeight), m_nHalf(nHalf),
          m_pLines(Vek::NewArrayPtr<T>(static_cast<std::size_t>(nWidth) *
                                       static_cast<std::size_t>(Window() + 2))) {
        std::fill_n(Margin(), nWidth, cNeverWins<eKind, T>);
    }

    long Window() const { return 2 * m_nHalf + 1; }

    /// The extremes from each line of the block that begins at `nBlock` to its end.
    void TakeEnds(long nBlock) {
        const long nLast = Window() - 1;
        std::copy_n(LineAt(nBlock + nLast), m_nWidth, End(nLast));
        for (long i = nLast - 1; i >= 0; --i)
            PickLine<eKind>(LineAt(nBlock + i), End(i + 1), m_nWidth, End(i));
        std::fill_n(Beginning(), m_nWidth, cNeverWins<eKind, T>);
    }

    /// The extremes of the window that begins `i` lines into the block, called for 0, 1, 2, ...
    void TakeWindow(long nBlock, long i, T* __restrict pOut) {
        const T* pEntering = LineAt(nBlock + i + Window() - 1);
        const T* pEnd = End(i);
        T* pBeginning = Beginning();
        for (long x = 0; x < m_nWidth; ++x) {
            const T nBeginning = Pick<eKind>(pBeginning[x], pEntering[x]);
            pBeginning[x] = nBeginning;
            pOut[x] = Pick<eKind>(pEnd[x], nBeginning);
        }
    }

private:
    T* Margin() { return m_pLines.get(); }
    T* Beginning() { return Margin() + m_nWidth; }
    T* End(long i) { return Margin() + (i + 2) * m_nWidth; }
    const T* LineAt(long i) {
        const long y = i - m_nHalf;
        return y >= 0 && y < m_nHeight ? m_pIn + y * m_nStride : Margin();
    }

    const T* m_pIn;
    std::ptrdiff_t m_nStride;
    long m_nWidth;
    long m_nHeight;
    long m_nHalf;
    std::unique_ptr<T[]> m_pLines;
};

} // namespace

template <EExtreme eKind, class T>
void ExtremeAlongLines(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                       long nHalf, T* pOut, std::ptrdiff_t nOutStride) {
    if (nWidth < 1 || nHeight < 1)
        return;
    nHalf = std::min(nHalf, nWidth - 1); // covers the line
    ClPaddedLine<T> Line(nWidth + 2 * nHalf);
    for (long y = 0; y < nHeight; ++y) {
        Line.Fill(pIn + y * nInStride, nWidth, cNeverWins<eKind, T>);
        Line.template Run<eKind>(2 * nHalf + 1, nWidth, pOut + y * nOutStride);
    }
}

template <EExtreme eKind, class T>
void ExtremeAlongColumns(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                         long nHalf, T* pOut, std::ptrdiff_t nOutStride) {
    if (nWidth < 1 || nHeight < 1)
        return;
    ClBlocks<eKind, T> Blocks(pIn, nInStride, nWidth, nHeight, std::min(nHalf, nHeight - 1));
    for (long nBlock = 0; nBlock < nHeight; nBlock += Blocks.Window()) {
        Blocks.TakeEnds(nBlock);
        const long nLines = std::min(Blocks.Window(), nHeight - nBlock);
        for (long i = 0; i < nLines; ++i)
            Blocks.TakeWindow(nBlock, i, pOut + (nBlock + i) * nOutStride);
    }
}

#define INSTANTIATE(kind, type)                                                                    \
    template void ExtremeAlongLines<kind>(const type*, std::ptrdiff_t, long, long, long, type*,    \
                                          std::ptrdiff_t);                                         \
    template void ExtremeAlongColumns<kind>(const type*, std::ptrdiff_t, long, long, long, type*,  \
                                            std::ptrdiff_t);

INSTANTIATE(EExtreme::eMin, unsigned char)
INSTANTIATE(EExtreme::eMin, signed char)
INSTANTIATE(EExtreme::eMax, unsigned char)
INSTANTIATE(EExtreme::eMax, signed char)

#undef INSTANTIATE

} // namespace Kernels
