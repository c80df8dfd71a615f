#include "ImageProcessing/Kernels/Median.h"

// A histogram slides along the line with the window (Huang): a column of samples leaves it, one
// enters, and the median moves on from where it was, which is seldom far. A step costs the height
// of the window, not its area. Windows along one column slide along a copy of that column.
//
// Windows three wide, the usual ones, need no histogram. The median of three is a minimum and
// three more comparisons; that of nine is, with each column sorted,
//
//     med(max of the lowest, med of the middle ones, min of the highest)
//
// which the compiler turns into vectors.

#include "ImageProcessing/Kernels/Scratch.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <type_traits>

namespace Kernels {

namespace {

template <class T>
T Lowest(T a, T b) {
    return b < a ? b : a;
}

template <class T>
T Highest(T a, T b) {
    return a < b ? b : a;
}

template <class T>
T MedianOf3(T a, T b, T c) {
    return Highest(Lowest(a, b), Lowest(Highest(a, b), c));
}

// Three wide

template <class T>
void MedianLine3(const T* pA, const T* pB, const T* pC, long nWidth, T* __restrict pOut) {
    for (long x = 0; x < nWidth; ++x)
        pOut[x] = MedianOf3(pA[x], pB[x], pC[x]);
}

/// Three neighbours along the line: with the ends repeated, the first and last are their medians.
template <class T>
void MedianAlongLine3(const T* pIn, long nWidth, T* __restrict pOut) {
    pOut[0] = pIn[0];
    pOut[nWidth - 1] = pIn[nWidth - 1];
    if (nWidth > 2)
        MedianLine3(pIn, pIn + 1, pIn + 2, nWidth - 2, pOut + 1);
}

template <class T>
void SortLines(const T* pA, const T* pB, const T* pC, long nWidth, T* __restrict pLow,
               T* __restrict pMiddle, T* __restrict pHigh) {
    for (long x = 0; x < nWidth; ++x) {
        const T nLow = Lowest(pA[x], pB[x]);
        const T nHigh = Highest(pA[x], pB[x]);
        pLow[x] = Lowest(nLow, pC[x]);
        pMiddle[x] = Highest(nLow, Lowest(nHigh, pC[x]));
        pHigh[x] = Highest(nHigh, pC[x]);
    }
}

template <class T>
void MediansOfColumns(const T* pLow, const T* pMiddle, const T* pHigh, long nWidth,
                      T* __restrict pOut) {
    for (long x = 0; x < nWidth; ++x)
        pOut[x] = MedianOf3(Highest(Highest(pLow[x], pLow[x + 1]), pLow[x + 2]),
                            MedianOf3(pMiddle[x], pMiddle[x + 1], pMiddle[x + 2]),
                            Lowest(Lowest(pHigh[x], pHigh[x + 1]), pHigh[x + 2]));
}

/// The sorted columns of three lines, each of the three with its ends repeated.
template <class T>
class ClSortedColumns {
public:
    static std::size_t Bytes(long nWidth) { return 3 * static_cast<std::size_t>(Stride(nWidth)); }

    ClSortedColumns(T* pMemory, long nWidth) : m_nWidth(nWidth), m_pLines(pMemory) {}

    void Sort(const T* pA, const T* pB, const T* pC) const {
        SortLines(pA, pB, pC, m_nWidth, Line(0), Line(1), Line(2));
        for (int i = 0; i < 3; ++i) {
            Line(i)[-1] = Line(i)[0];
            Line(i)[m_nWidth] = Line(i)[m_nWidth - 1];
        }
    }

    void Write(T* pOut) const {
        MediansOfColumns(Line(0) - 1, Line(1) - 1, Line(2) - 1, m_nWidth, pOut);
    }

private:
    static constexpr long cnMargin = 64; ///< the samples of a line begin with a cache line

    static long Stride(long nWidth) {
        return cnMargin +
               static_cast<long>(ClScratch::Aligned(static_cast<std::size_t>(nWidth + 1)));
    }
    T* Line(long i) const { return m_pLines + i * Stride(m_nWidth) + cnMargin; }

    long m_nWidth;
    T* m_pLines;
};

// Any width

/// The samples of a window, counted by value, and their median.
class ClSlidingHistogram {
public:
    void Add(unsigned nValue) {
        ++m_anBins[nValue];
        m_nBelow += nValue < m_nMedian ? 1 : 0;
    }
    void Remove(unsigned nValue) {
        --m_anBins[nValue];
        m_nBelow -= nValue < m_nMedian ? 1 : 0;
    }
    /// The value of rank `nHalf`, counted from 0.
    unsigned Median(long nHalf) {
        while (m_nBelow > nHalf)
            m_nBelow -= m_anBins[--m_nMedian];
        while (m_nBelow + m_anBins[m_nMedian] <= nHalf)
            m_nBelow += m_anBins[m_nMedian++];
        return m_nMedian;
    }

private:
    unsigned short m_anBins[256] = {};
    unsigned m_nMedian = 0;
    long m_nBelow = 0; ///< samples below the median
};

/// Bins are in the order of the samples: signed ones begin with -128.
template <class T>
constexpr unsigned cnOrder = std::is_signed_v<T> ? 0x80 : 0;

template <class T>
unsigned BinOf(T nSample) {
    return static_cast<unsigned char>(nSample) ^ cnOrder<T>;
}

/// One line of medians; `ppLines` are the `nLines` lines of its windows.
template <class T>
void SlideAlongLine(const T* const* ppLines, long nLines, long nWidth, long nHalf, T* pOut) {
    const long nMiddle = nLines * (2 * nHalf + 1) / 2;
    const auto columnAt = [nWidth](long x) { return std::clamp(x, 0L, nWidth - 1); };
    ClSlidingHistogram Histogram;
    for (long i = 0; i < nLines; ++i)
        for (long x = -nHalf; x <= nHalf; ++x)
            Histogram.Add(BinOf(ppLines[i][columnAt(x)]));
    for (long x = 0;; ++x) {
        pOut[x] = static_cast<T>(Histogram.Median(nMiddle) ^ cnOrder<T>);
        if (x == nWidth - 1)
            return;
        const long nLeave = columnAt(x - nHalf);
        const long nEnter = columnAt(x + nHalf + 1);
        for (long i = 0; i < nLines; ++i) {
            const T* pLine = ppLines[i];
            if (pLine[nLeave] == pLine[nEnter])
                continue;
            Histogram.Remove(BinOf(pLine[nLeave]));
            Histogram.Add(BinOf(pLine[nEnter]));
        }
    }
}

template <class T>
struct StPlane {
    const T* m_pIn;
    std::ptrdiff_t m_nInStride;
    long m_nWidth;
    long m_nHeight;
    T* m_pOut;
    std::ptrdiff_t m_nOutStride;

    const T* In(long y) const { return m_pIn + std::clamp(y, 0L, m_nHeight - 1) * m_nInStride; }
    T* Out(long y) const { return m_pOut + y * m_nOutStride; }
};

template <class T>
void AlongLines(const StPlane<T>& Plane, long nHalf) {
    for (long y = 0; y < Plane.m_nHeight; ++y) {
        const T* pLine = Plane.In(y);
        if (nHalf == 1)
            MedianAlongLine3(pLine, Plane.m_nWidth, Plane.Out(y));
        else
            SlideAlongLine(&pLine, 1, Plane.m_nWidth, nHalf, Plane.Out(y));
    }
}

template <class T>
void AlongColumns3(const StPlane<T>& Plane) {
    for (long y = 0; y < Plane.m_nHeight; ++y)
        MedianLine3(Plane.In(y - 1), Plane.In(y), Plane.In(y + 1), Plane.m_nWidth, Plane.Out(y));
}

template <class T>
void AlongColumns(const StPlane<T>& Plane, long nHalf) {
    const auto pColumns = Vek::NewArrayPtr<T>(2 * static_cast<std::size_t>(Plane.m_nHeight));
    T* pIn = pColumns.get();
    T* pOut = pIn + Plane.m_nHeight;
    for (long x = 0; x < Plane.m_nWidth; ++x) {
        for (long y = 0; y < Plane.m_nHeight; ++y)
            pIn[y] = Plane.In(y)[x];
        const T* pLine = pIn;
        SlideAlongLine(&pLine, 1, Plane.m_nHeight, nHalf, pOut);
        for (long y = 0; y < Plane.m_nHeight; ++y)
            Plane.Out(y)[x] = pOut[y];
    }
}

template <class T>
struct StOverSquares3 {
    static void Run(T* pMemory, const StPlane<T>* pPlane) {
        const StPlane<T> Plane = *pPlane;
        ClSortedColumns<T> Columns(pMemory, Plane.m_nWidth);
        for (long y = 0; y < Plane.m_nHeight; ++y) {
            Columns.Sort(Plane.In(y - 1), Plane.In(y), Plane.In(y + 1));
            Columns.Write(Plane.Out(y));
        }
    }
};

template <class T>
void OverSquares3(const StPlane<T>& Plane) {
    ClScratch Scratch;
    unsigned char* pMemory = Scratch.Reserve(ClSortedColumns<T>::Bytes(Plane.m_nWidth));
    RunAtLevel<StOverSquares3<T>>(reinterpret_cast<T*>(pMemory), &Plane);
}

template <class T>
void OverSquares(const StPlane<T>& Plane, long nHalf) {
    const long nLines = 2 * nHalf + 1;
    const auto pLines = Vek::NewArrayPtr<const T*>(static_cast<std::size_t>(nLines));
    for (long y = 0; y < Plane.m_nHeight; ++y) {
        for (long i = 0; i < nLines; ++i)
            pLines[static_cast<std::size_t>(i)] = Plane.In(y + i - nHalf);
        SlideAlongLine(pLines.get(), nLines, Plane.m_nWidth, nHalf, Plane.Out(y));
    }
}

} // namespace

template <class T>
void MedianOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                    long nHalfY, T* pOut, std::ptrdiff_t nOutStride) {
    const StPlane<T> Plane = {pIn, nInStride, nWidth, nHeight, pOut, nOutStride};
    if (nWidth < 1 || nHeight < 1)
        return;
    if (nHalfY == 0)
        AlongLines(Plane, nHalfX);
    else if (nHalfX == 0 && nHalfY == 1)
        AlongColumns3(Plane);
    else if (nHalfX == 0)
        AlongColumns(Plane, nHalfY);
    else if (nHalfX == 1)
        OverSquares3(Plane);
    else
        OverSquares(Plane, nHalfX);
}

template void MedianOfWindow(const unsigned char*, std::ptrdiff_t, long, long, long, long,
                             unsigned char*, std::ptrdiff_t);
template void MedianOfWindow(const signed char*, std::ptrdiff_t, long, long, long, long,
                             signed char*, std::ptrdiff_t);

} // namespace Kernels
