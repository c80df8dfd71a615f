#include "ImageProcessing/Kernels/MinMax.h"

// Both directions work on whole lines of samples, so that the compiler makes vectors of them and
// no branch depends on a sample.
//
// Along lines the windows double: the extreme of 2 n samples is that of two neighbouring runs of
// n, and any window is covered by two overlapping runs of the largest power of two within it. That
// costs one comparison per sample and doubling, 6 for a width of 53. A few lines go through each
// step together: what has just been stored is not loaded at once, across the stores.
//
// Along columns the lines are taken in blocks as high as the window (van Herk, Gil and Werman). A
// window covers the end of one block and the beginning of the next: the extremes of all ends are
// kept, one line each, those of the beginnings run along. Three comparisons per sample at any
// width.
//
// Over the square the columns come first: they need no margins at the ends of lines, and what they
// give is written where the windows along lines begin. No more than a batch of it is kept.
//
// Beyond the edges stand samples that never win.

#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <limits>
#include <utility>

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

/// Samples of a round; memory for lines has whole ones.
constexpr long cnRound = 64;

constexpr long Rounded(long nSamples) {
    return (nSamples + cnRound - 1) / cnRound * cnRound;
}

/// Calls `round(i)` for rounds from i on, the last of which ends with the line and repeats some of
/// the one before; or, for a short line, `single(i)` for each sample.
template <class Round, class Single>
void ForEachRound(long nSamples, Round round, Single single) {
    if (nSamples < cnRound) {
        for (long i = 0; i < nSamples; ++i)
            single(i);
        return;
    }
    for (long i = 0; i < nSamples; i += cnRound)
        round(std::min(i, nSamples - cnRound));
}

/// out[i] = the extreme of a[i] and b[i]; `pOut` overlaps neither.
template <EExtreme eKind, class T>
void PickLine(const T* pA, const T* pB, long nSamples, T* __restrict pOut) {
    ForEachRound(
        nSamples,
        [=](long nFrom) {
            for (long i = nFrom; i < nFrom + cnRound; ++i)
                pOut[i] = Pick<eKind>(pA[i], pB[i]);
        },
        [=](long i) { pOut[i] = Pick<eKind>(pA[i], pB[i]); });
}

// Memory: lines side by side, and planes

template <class T>
class ClLines {
public:
    ClLines(T* pFirst, long nStride) : m_pFirst(pFirst), m_nStride(nStride) {}

    T* operator[](long i) const { return m_pFirst + i * m_nStride; }

private:
    T* m_pFirst;
    long m_nStride;
};

template <class T>
struct StPlanes {
    const T* In(long y) const { return m_pIn + y * m_nInStride; }
    T* Out(long y) const { return m_pOut + y * m_nOutStride; }

    const T* m_pIn;
    std::ptrdiff_t m_nInStride;
    long m_nWidth;
    long m_nHeight;
    T* m_pOut;
    std::ptrdiff_t m_nOutStride;
};

// Along lines

/// A batch of lines with their margins.
template <EExtreme eKind, class T>
class ClPaddedLines {
public:
    static constexpr int cnBatch = 8;

    static long Samples(long nWidth, long nHalf) { return 3 * BlockSize(nWidth, nHalf); }

    ClPaddedLines(T* pMemory, long nWidth, long nHalf)
        : m_nWidth(nWidth), m_nHalf(nHalf), m_nStride(Rounded(nWidth + nHalf)),
          m_nBlock(BlockSize(nWidth, nHalf)), m_pLines(pMemory) {
        std::fill_n(pMemory, Samples(nWidth, nHalf), cNeverWins<eKind, T>);
    }

    /// The samples of a line, which the caller fills.
    T* Line(long i) const { return m_pLines + i * m_nStride + Rounded(m_nHalf); }

    /// `out(i)` is a line for i from 0 to nLines, at most cnBatch.
    template <class Out>
    void Run(int nLines, Out out) {
        const T* pRuns = m_pLines; // sample i is the extreme of nRun samples from i on
        T* pLonger = m_pLines + m_nBlock;
        T* pSpare = pLonger + m_nBlock;
        long nRun = 1;
        for (; 2 * nRun <= Window(); nRun *= 2) {
            PickLine<eKind>(pRuns, pRuns + nRun, Rounded(m_nHalf) + nLines * m_nStride, pLonger);
            pRuns = pLonger;
            std::swap(pLonger, pSpare);
        }
        for (int i = 0; i < nLines; ++i) {
            const T* pLine = pRuns + i * m_nStride + Rounded(m_nHalf) - m_nHalf;
            PickLine<eKind>(pLine, pLine + (Window() - nRun), m_nWidth, out(i));
        }
    }

private:
    /// Samples begin with a round.
    static long Stride(long nWidth, long nHalf) { return Rounded(nHalf) + Rounded(nWidth + nHalf); }
    /// What the runs of the last line read beyond it follows the lines.
    static long BlockSize(long nWidth, long nHalf) {
        return cnBatch * Stride(nWidth, nHalf) + Rounded(nHalf + 1);
    }
    long Window() const { return 2 * m_nHalf + 1; }

    long m_nWidth;
    long m_nHalf;
    long m_nStride;
    long m_nBlock;
    T* m_pLines;
};

// Along columns

/// The lines of a plane with their extremes over blocks of as many lines as the window has. Line 0
/// is the first one of the margin above the plane.
template <EExtreme eKind, class T>
class ClBlocks {
public:
    static long Samples(long nWidth, long nHalf) { return Rounded(nWidth) * (2 * nHalf + 3); }

    ClBlocks(T* pMemory, const StPlanes<T>& Planes, long nHalf)
        : m_Planes(Planes), m_nHalf(nHalf),
          m_Ends(pMemory + 2 * Rounded(Planes.m_nWidth), Rounded(Planes.m_nWidth)),
          m_pMargin(pMemory), m_pBeginning(pMemory + Rounded(Planes.m_nWidth)) {
        std::fill_n(m_pMargin, Planes.m_nWidth, cNeverWins<eKind, T>);
    }

    /// The extremes of the windows in the middle of which line y is, called for 0, 1, 2, ...
    void TakeLine(long y, T* pOut) {
        if (m_nOfBlock == 0)
            TakeEnds(y);
        TakeWindow(y + Window() - 1, m_Ends[m_nOfBlock], pOut);
        m_nOfBlock = m_nOfBlock + 1 < Window() ? m_nOfBlock + 1 : 0;
    }

private:
    long Window() const { return 2 * m_nHalf + 1; }

    const T* Line(long i) const {
        const long y = i - m_nHalf;
        return y >= 0 && y < m_Planes.m_nHeight ? m_Planes.In(y) : m_pMargin;
    }

    /// The extremes from each line of the block that begins at `nBlock` to its end.
    void TakeEnds(long nBlock) {
        const long nLast = Window() - 1;
        std::copy_n(Line(nBlock + nLast), m_Planes.m_nWidth, m_Ends[nLast]);
        for (long i = nLast - 1; i >= 0; --i)
            PickLine<eKind>(Line(nBlock + i), m_Ends[i + 1], m_Planes.m_nWidth, m_Ends[i]);
        std::fill_n(m_pBeginning, m_Planes.m_nWidth, cNeverWins<eKind, T>);
    }

    /// A window is the end of one block and the beginning of the next, with one more line.
    void TakeWindow(long nEntering, const T* pEnd, T* __restrict pOut) {
        const T* pEntering = Line(nEntering);
        T* __restrict pBeginning = m_pBeginning;
        const auto take = [=](long x) {
            const T nBeginning = Pick<eKind>(pBeginning[x], pEntering[x]);
            pBeginning[x] = nBeginning;
            pOut[x] = Pick<eKind>(pEnd[x], nBeginning);
        };
        ForEachRound(
            m_Planes.m_nWidth,
            [=](long nFrom) {
                for (long x = nFrom; x < nFrom + cnRound; ++x)
                    take(x);
            },
            take);
    }

    StPlanes<T> m_Planes;
    long m_nHalf;
    long m_nOfBlock = 0; ///< the next window's place in its block
    ClLines<T> m_Ends;
    T* m_pMargin;
    T* m_pBeginning;
};

// Planes

template <EExtreme eKind, class T>
struct StAlongLines {
    using Lines = ClPaddedLines<eKind, T>;

    static void Run(T* pMemory, const StPlanes<T>* pPlane, long nHalf) {
        const StPlanes<T> P = *pPlane;
        Lines Padded(pMemory, P.m_nWidth, nHalf);
        for (long y = 0; y < P.m_nHeight; y += Lines::cnBatch) {
            const int nLines = static_cast<int>(std::min<long>(Lines::cnBatch, P.m_nHeight - y));
            for (int i = 0; i < nLines; ++i)
                std::copy_n(P.In(y + i), P.m_nWidth, Padded.Line(i));
            Padded.Run(nLines, [=](int i) { return P.Out(y + i); });
        }
    }
};

template <EExtreme eKind, class T>
struct StAlongColumns {
    static void Run(T* pMemory, const StPlanes<T>* pPlane, long nHalf) {
        const StPlanes<T> P = *pPlane;
        ClBlocks<eKind, T> Blocks(pMemory, P, nHalf);
        for (long y = 0; y < P.m_nHeight; ++y)
            Blocks.TakeLine(y, P.Out(y));
    }
};

template <EExtreme eKind, class T>
struct StOverSquares {
    using Lines = ClPaddedLines<eKind, T>;
    using Blocks = ClBlocks<eKind, T>;

    static long Samples(long nWidth, long nHalfX, long nHalfY) {
        return Rounded(Lines::Samples(nWidth, nHalfX)) + Blocks::Samples(nWidth, nHalfY);
    }

    static void Run(T* pMemory, const StPlanes<T>* pPlane, long nHalfX, long nHalfY) {
        const StPlanes<T> P = *pPlane;
        Lines Padded(pMemory, P.m_nWidth, nHalfX);
        Blocks Columns(pMemory + Rounded(Lines::Samples(P.m_nWidth, nHalfX)), P, nHalfY);
        for (long y = 0; y < P.m_nHeight; y += Lines::cnBatch) {
            const int nLines = static_cast<int>(std::min<long>(Lines::cnBatch, P.m_nHeight - y));
            for (int i = 0; i < nLines; ++i)
                Columns.TakeLine(y + i, Padded.Line(i));
            Padded.Run(nLines, [=](int i) { return P.Out(y + i); });
        }
    }
};

template <class T>
T* Reserve(ClScratch& rScratch, long nSamples) {
    return reinterpret_cast<T*>(rScratch.Reserve(static_cast<std::size_t>(nSamples)));
}

} // namespace

template <EExtreme eKind, class T>
void ExtremeAlongLines(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                       long nHalf, T* pOut, std::ptrdiff_t nOutStride) {
    if (nWidth < 1 || nHeight < 1)
        return;
    nHalf = std::min(nHalf, nWidth - 1); // covers the line
    const StPlanes<T> Plane = {pIn, nInStride, nWidth, nHeight, pOut, nOutStride};
    ClScratch Scratch;
    T* pMemory = Reserve<T>(Scratch, ClPaddedLines<eKind, T>::Samples(nWidth, nHalf));
    RunAtLevel<StAlongLines<eKind, T>>(pMemory, &Plane, nHalf);
}

template <EExtreme eKind, class T>
void ExtremeAlongColumns(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                         long nHalf, T* pOut, std::ptrdiff_t nOutStride) {
    if (nWidth < 1 || nHeight < 1)
        return;
    nHalf = std::min(nHalf, nHeight - 1);
    const StPlanes<T> Plane = {pIn, nInStride, nWidth, nHeight, pOut, nOutStride};
    ClScratch Scratch;
    T* pMemory = Reserve<T>(Scratch, ClBlocks<eKind, T>::Samples(nWidth, nHalf));
    RunAtLevel<StAlongColumns<eKind, T>>(pMemory, &Plane, nHalf);
}

template <EExtreme eKind, class T>
void ExtremeOverSquares(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight,
                        long nHalf, T* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch) {
    if (nWidth < 1 || nHeight < 1)
        return;
    const long nHalfX = std::min(nHalf, nWidth - 1);
    const long nHalfY = std::min(nHalf, nHeight - 1);
    const StPlanes<T> Plane = {pIn, nInStride, nWidth, nHeight, pOut, nOutStride};
    T* pMemory = Reserve<T>(rScratch, StOverSquares<eKind, T>::Samples(nWidth, nHalfX, nHalfY));
    RunAtLevel<StOverSquares<eKind, T>>(pMemory, &Plane, nHalfX, nHalfY);
}

#define INSTANTIATE(kind, type)                                                                    \
    template void ExtremeAlongLines<kind>(const type*, std::ptrdiff_t, long, long, long, type*,    \
                                          std::ptrdiff_t);                                         \
    template void ExtremeAlongColumns<kind>(const type*, std::ptrdiff_t, long, long, long, type*,  \
                                            std::ptrdiff_t);                                       \
    template void ExtremeOverSquares<kind>(const type*, std::ptrdiff_t, long, long, long, type*,   \
                                           std::ptrdiff_t, ClScratch&);

INSTANTIATE(EExtreme::eMin, unsigned char)
INSTANTIATE(EExtreme::eMin, signed char)
INSTANTIATE(EExtreme::eMax, unsigned char)
INSTANTIATE(EExtreme::eMax, signed char)

#undef INSTANTIATE

} // namespace Kernels
