#include "ImageProcessing/Kernels/Mean.h"

// Windows of up to 127 columns and 2^13 samples, which are all that images of fingers ask for, take
// the lines of MeanLines.h. They cost a few additions of 16 bits more, the wider they are.
//
// Beyond, a window of any size costs the same: a line enters the sums of all columns and one leaves
// them, then a column enters the sum of the window and one leaves it. That last, running sum goes
// sample by sample.
//
// The division is that of MeanQuotient.h, by a reciprocal that is kept for each column and computed
// anew only where the number of lines in the window changes.

#include "ImageProcessing/Kernels/MeanLines.h"
#include "ImageProcessing/Kernels/MeanQuotient.h"
#include "Tools/Allocate.h"
#include "Tools/InstructionLevel.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace Kernels {

namespace {

template <class T>
struct StMeanOfPlane {
    using Lines = ClMeanLines<StMean<T>>;

    static std::size_t Bytes(long nWidth, long nHalfX) {
        return Lines::KeptBytes(nWidth) + Lines::BatchBytes(nWidth, nHalfX);
    }

    static void Run(unsigned char* pMemory, const T* pIn, std::ptrdiff_t nInStride, long nWidth,
                    long nHeight, long nHalfX, long nHalfY, T* pOut, std::ptrdiff_t nOutStride) {
        Lines Mean(pMemory, pMemory + Lines::KeptBytes(nWidth), nWidth, nHalfX, {});
        const auto in = [=](long y) { return pIn + y * nInStride; };
        const auto out = [=](long y) { return pOut + y * nOutStride; };
        Mean.Enter(std::min(nHalfY, nHeight), in);
        for (long y = 0; y < nHeight; y += Lines::cnBatch)
            Mean.RunLines(y, nHeight, nHalfY, nHeight, in, out);
    }
};

template <class T>
class ClMean {
    using Numbers = StWideMean;
    using Sum = Numbers::Sum;
    using Real = Numbers::Real;

public:
    ClMean(long nWidth, long nHalf)
        : m_nWidth(nWidth), m_nHalf(nHalf), m_pColumns(Vek::NewArrayPtr<Sum>(Size())),
          m_pSums(Vek::NewArrayPtr<Sum>(Size())), m_pCounts(Vek::NewArrayPtr<Real>(Size())),
          m_pReciprocals(Vek::NewArrayPtr<Real>(Size())) {
        std::fill_n(m_pColumns.get(), nWidth, Sum{0});
        for (long x = 0; x < nWidth; ++x)
            m_pCounts[static_cast<std::size_t>(x)] =
                static_cast<Real>(std::min(x + nHalf, nWidth - 1) - std::max(x - nHalf, 0L) + 1);
    }

    void Enter(const T* __restrict pLine) {
        Sum* pColumns = m_pColumns.get();
        for (long x = 0; x < m_nWidth; ++x)
            pColumns[x] += pLine[x];
        ++m_nLines;
    }

    void Leave(const T* __restrict pLine) {
        Sum* pColumns = m_pColumns.get();
        for (long x = 0; x < m_nWidth; ++x)
            pColumns[x] -= pLine[x];
        --m_nLines;
    }

    /// One line enters, another one leaves.
    void Exchange(const T* __restrict pEnter, const T* __restrict pLeave) {
        Sum* pColumns = m_pColumns.get();
        for (long x = 0; x < m_nWidth; ++x)
            pColumns[x] += pEnter[x] - pLeave[x];
    }

    void Write(T* __restrict pOut) {
        SumWindows();
        if (m_nLinesOfReciprocals != m_nLines)
            FindReciprocals();
        const Sum* pSums = m_pSums.get();
        const Real* pReciprocals = m_pReciprocals.get();
        for (long x = 0; x < m_nWidth; ++x)
            pOut[x] = MeanQuotient<T, Numbers>(pSums[x], pReciprocals[x]);
    }

private:
    std::size_t Size() const { return static_cast<std::size_t>(m_nWidth); }

    void FindReciprocals() {
        const Real* pCounts = m_pCounts.get();
        Real* __restrict pReciprocals = m_pReciprocals.get();
        const Real lines = static_cast<Real>(m_nLines);
        for (long x = 0; x < m_nWidth; ++x)
            pReciprocals[x] = MeanReciprocal(lines * pCounts[x]);
        m_nLinesOfReciprocals = m_nLines;
    }

    /// The sums of the columns x - half to x + half, as far as there are such.
    void SumWindows() {
        const Sum* pColumns = m_pColumns.get();
        Sum* __restrict pSums = m_pSums.get();
        Sum nSum = 0;
        for (long x = 0; x < m_nHalf; ++x)
            nSum += pColumns[x];
        const long nGrow = std::min(m_nHalf + 1, m_nWidth - m_nHalf);
        long x = 0;
        for (; x < nGrow; ++x)
            pSums[x] = nSum += pColumns[x + m_nHalf];
        for (; x < m_nWidth - m_nHalf; ++x)
            pSums[x] = nSum += pColumns[x + m_nHalf] - pColumns[x - m_nHalf - 1];
        for (; x <= std::min(m_nHalf, m_nWidth - 1); ++x)
            pSums[x] = nSum;
        for (; x < m_nWidth; ++x)
            pSums[x] = nSum -= pColumns[x - m_nHalf - 1];
    }

    long m_nWidth;
    long m_nHalf;
    long m_nLines = 0; ///< in the window
    long m_nLinesOfReciprocals = 0;
    std::unique_ptr<Sum[]> m_pColumns;      ///< of the lines in the window
    std::unique_ptr<Sum[]> m_pSums;         ///< of the windows of a line
    std::unique_ptr<Real[]> m_pCounts;      ///< columns in the window
    std::unique_ptr<Real[]> m_pReciprocals; ///< of the samples in the window
};

template <class T>
void MeanOfAnyWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                     long nHalfY, T* pOut, std::ptrdiff_t nOutStride) {
    ClMean<T> Mean(nWidth, nHalfX);
    for (long y = 0; y < nHalfY; ++y)
        Mean.Enter(pIn + y * nInStride);
    for (long y = 0; y < nHeight; ++y) {
        const T* pEnter = y + nHalfY < nHeight ? pIn + (y + nHalfY) * nInStride : nullptr;
        const T* pLeave = y > nHalfY ? pIn + (y - nHalfY - 1) * nInStride : nullptr;
        if (pEnter != nullptr && pLeave != nullptr)
            Mean.Exchange(pEnter, pLeave);
        else if (pEnter != nullptr)
            Mean.Enter(pEnter);
        else if (pLeave != nullptr)
            Mean.Leave(pLeave);
        Mean.Write(pOut + y * nOutStride);
    }
}

} // namespace

template <class T>
void MeanOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                  long nHalfY, T* pOut, std::ptrdiff_t nOutStride, ClScratch& rScratch) {
    if (nWidth < 1 || nHeight < 1)
        return;
    nHalfX = std::min(nHalfX, nWidth - 1);
    nHalfY = std::min(nHalfY, nHeight - 1);
    if (!IsNarrowWindow(nWidth, nHeight, nHalfX, nHalfY))
        return MeanOfAnyWindow(pIn, nInStride, nWidth, nHeight, nHalfX, nHalfY, pOut, nOutStride);
    unsigned char* pMemory = rScratch.Reserve(StMeanOfPlane<T>::Bytes(nWidth, nHalfX));
    RunAtLevel<StMeanOfPlane<T>>(pMemory, pIn, nInStride, nWidth, nHeight, nHalfX, nHalfY, pOut,
                                 nOutStride);
}

template <class T>
void MeanOfWindow(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, long nHalfX,
                  long nHalfY, T* pOut, std::ptrdiff_t nOutStride) {
    ClScratch Scratch;
    MeanOfWindow(pIn, nInStride, nWidth, nHeight, nHalfX, nHalfY, pOut, nOutStride, Scratch);
}

#define INSTANTIATE(type)                                                                          \
    template void MeanOfWindow(const type*, std::ptrdiff_t, long, long, long, long, type*,         \
                               std::ptrdiff_t, ClScratch&);                                        \
    template void MeanOfWindow(const type*, std::ptrdiff_t, long, long, long, long, type*,         \
                               std::ptrdiff_t);

INSTANTIATE(unsigned char)
INSTANTIATE(signed char)

#undef INSTANTIATE

// 3 by 3, in 16 bits: with the factors times 16 the shift is one by 16, that is the upper half of
// a product, for which there is an instruction.

namespace {

struct StFactor {
    int m_nRounding;
    int m_nFactor;
};
constexpr StFactor cQuarter = {2, 1 << 14};
constexpr StFactor cSixth = {3, 682 << 4};
constexpr StFactor cNinth = {4, 455 << 4};

template <class T>
T Scaled(int nSum, StFactor Factor) {
    return static_cast<T>(
        (static_cast<std::int16_t>(nSum + Factor.m_nRounding) * Factor.m_nFactor) >> 16);
}

/// One line from the sums of its columns.
template <class T>
void WriteLine3(const std::int16_t* pColumns, long nWidth, StFactor Inside, StFactor End,
                T* __restrict pOut) {
    pOut[0] = Scaled<T>(pColumns[0] + pColumns[1], End);
    for (long x = 1; x < nWidth - 1; ++x)
        pOut[x] = Scaled<T>(pColumns[x - 1] + pColumns[x] + pColumns[x + 1], Inside);
    pOut[nWidth - 1] = Scaled<T>(pColumns[nWidth - 2] + pColumns[nWidth - 1], End);
}

template <class T>
void SumOf3(const T* pA, const T* pB, const T* pC, long nWidth, std::int16_t* __restrict pColumns) {
    for (long x = 0; x < nWidth; ++x)
        pColumns[x] = static_cast<std::int16_t>(pA[x] + pB[x] + pC[x]);
}

template <class T>
void SumOf2(const T* pA, const T* pB, long nWidth, std::int16_t* __restrict pColumns) {
    for (long x = 0; x < nWidth; ++x)
        pColumns[x] = static_cast<std::int16_t>(pA[x] + pB[x]);
}

} // namespace

template <class T>
void Mean3x3(const T* pIn, std::ptrdiff_t nInStride, long nWidth, long nHeight, T* pOut,
             std::ptrdiff_t nOutStride) {
    const auto pColumns = Vek::NewArrayPtr<std::int16_t>(static_cast<std::size_t>(nWidth));
    const auto lineAt = [&](long y) { return pIn + y * nInStride; };
    const long nLast = nHeight - 1;

    SumOf2(lineAt(0), lineAt(1), nWidth, pColumns.get());
    WriteLine3(pColumns.get(), nWidth, cSixth, cQuarter, pOut);
    for (long y = 1; y < nLast; ++y) {
        SumOf3(lineAt(y - 1), lineAt(y), lineAt(y + 1), nWidth, pColumns.get());
        WriteLine3(pColumns.get(), nWidth, cNinth, cSixth, pOut + y * nOutStride);
    }
    SumOf2(lineAt(nLast - 1), lineAt(nLast), nWidth, pColumns.get());
    WriteLine3(pColumns.get(), nWidth, cSixth, cQuarter, pOut + nLast * nOutStride);
}

template void Mean3x3(const unsigned char*, std::ptrdiff_t, long, long, unsigned char*,
                      std::ptrdiff_t);
template void Mean3x3(const signed char*, std::ptrdiff_t, long, long, signed char*, std::ptrdiff_t);

} // namespace Kernels
