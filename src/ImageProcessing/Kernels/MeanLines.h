#pragma once

// Means over a sliding window, line by line.
//
// The sums of all windows of a line are kept. From one line of results to the next they change by
// sums along the line (WindowSums.h), of the differences between the line that enters and the line
// that leaves, which are within 255 of 0. Beyond the ends of a line the differences are 0, so that
// windows are cut at the edges without a test. No more than that is remembered: the memory stays
// in the nearest cache at any size of the window.

#include "ImageProcessing/Kernels/MeanQuotient.h"
#include "ImageProcessing/Kernels/Scratch.h"
#include "ImageProcessing/Kernels/WindowSums.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kernels {

// What a result is made of: the sample in the middle of the window, the sum, and a factor for the
// lines and columns of the window

/// The mean, toward zero.
template <class T>
struct StMean {
    using Sample = T;
    using Factor = float;

    Factor FactorOf(std::int32_t nLines, std::int32_t nColumns) const {
        return MeanReciprocal(static_cast<float>(nLines * nColumns));
    }
    T Result(T, std::int32_t nSum, Factor reciprocal) const {
        return MeanQuotient<T, StNarrowMean>(nSum, reciprocal);
    }
};

/// Whether ClMeanLines takes these windows of a plane: with halves below its sides.
inline bool IsNarrowWindow(long nWidth, long nHeight, long nHalfX, long nHalfY) {
    const long nArea = std::min(2 * nHalfX + 1, nWidth) * std::min(2 * nHalfY + 1, nHeight);
    return nHalfX <= ClWindowSums::cnWidestWindow / 2 && nArea <= StNarrowMean::cnLargestArea;
}

template <class Finish>
class ClMeanLines {
    using T = typename Finish::Sample;
    using Factor = typename Finish::Factor;

public:
    /// What it keeps between two batches, and what it needs during one.
    static std::size_t KeptBytes(long nWidth) { return 4 * LineBytes(nWidth); }
    static std::size_t BatchBytes(long nWidth, long nHalf) {
        return ClWindowSums::Bytes(nWidth, nHalf);
    }

    /// Both memories are aligned and outlive the object.
    ClMeanLines(unsigned char* pKept, unsigned char* pBatch, long nWidth, long nHalf, Finish finish)
        : m_nWidth(nWidth), m_nHalf(nHalf), m_Finish(finish),
          m_pSums(reinterpret_cast<std::uint32_t*>(pKept)),
          m_pColumns(reinterpret_cast<std::int32_t*>(pKept + LineBytes(nWidth))),
          m_pFactors(reinterpret_cast<Factor*>(pKept + 2 * LineBytes(nWidth))),
          m_pZeros(reinterpret_cast<const T*>(pKept + 3 * LineBytes(nWidth))),
          m_Windows(pBatch, nWidth, nHalf) {
        Cleared(pKept, KeptBytes(nWidth));
        CountColumns();
    }

    static constexpr int cnBatch = ClWindowSums::cnBatch;
    static constexpr long cnLargestSample = 255; ///< or difference of two, but for the sign

    /// Lets the first `nLines` lines, `in(y)`, enter the windows. Sums of 16 bits take several
    /// lines at once, where no result is wanted in between.
    template <class In>
    void Enter(long nLines, In in) {
        const long nTogether = ClWindowSums::cnLargest / (cnLargestSample * (2 * m_nHalf + 1));
        for (long y = 0; y < nLines;) {
            int nSums = 0;
            for (; nSums < cnBatch && y < nLines; ++nSums) {
                const long nEnd = std::min(y + nTogether, nLines);
                Change(in(y), m_pZeros, m_Windows.Line(nSums));
                while (++y < nEnd)
                    AddLine(in(y), m_Windows.Line(nSums));
            }
            m_Windows.Run();
            for (int i = 0; i < nSums; ++i)
                AddUp(i);
        }
        m_nLines += static_cast<int>(nLines);
    }

    /// A batch of the lines from `nFirst` on, before `nEnd`, of a plane of `nHeight` lines,
    /// `in(y)`, with windows that reach `nHalfY` lines up and down: writes the lines `out(y)`.
    /// Batches are called for in order, line 0 behind nHalfY lines that have entered.
    template <class In, class Out>
    void RunLines(long nFirst, long nEnd, long nHalfY, long nHeight, In in, Out out) {
        const int nLines = static_cast<int>(std::min<long>(cnBatch, nEnd - nFirst));
        const auto lineOrZeros = [&](long y) { return y >= 0 && y < nHeight ? in(y) : m_pZeros; };
        for (int i = 0; i < nLines; ++i)
            Change(lineOrZeros(nFirst + i + nHalfY), lineOrZeros(nFirst + i - nHalfY - 1),
                   m_Windows.Line(i));
        m_Windows.Run();
        for (int i = 0; i < nLines; ++i) {
            const long y = nFirst + i;
            m_nLines += (y + nHalfY < nHeight ? 1 : 0) - (y > nHalfY ? 1 : 0);
            Write(i, in(y), out(y));
        }
    }

private:
    static std::size_t LineBytes(long nWidth) {
        return static_cast<std::size_t>(ClWindowSums::Rounded(nWidth)) * sizeof(std::int32_t);
    }

    static unsigned char* Cleared(unsigned char* pMemory, std::size_t nBytes) {
        std::fill_n(pMemory, nBytes, static_cast<unsigned char>(0));
        return pMemory;
    }

    // Line by line, in whole rounds: what is left at the end of a line of samples goes by way of a
    // round of its own, since nothing may be read or written behind it.

    static constexpr long cnRound = ClWindowSums::Rounded(1);

    long WholeRounds() const { return m_nWidth / cnRound * cnRound; }

    struct StRound {
        StRound() = default;
        StRound(const T* pIn, long nSamples) { std::copy_n(pIn, nSamples, m_aSamples); }
        T m_aSamples[cnRound] = {};
    };

    void Change(const T* pEnter, const T* pLeave, short* pOut) const {
        const long nWhole = WholeRounds();
        const long nRest = m_nWidth - nWhole;
        Difference(pEnter, pLeave, nWhole, pOut);
        if (nRest == 0)
            return;
        const StRound Enter(pEnter + nWhole, nRest);
        const StRound Leave(pLeave + nWhole, nRest);
        Difference(Enter.m_aSamples, Leave.m_aSamples, cnRound, pOut + nWhole);
    }

    static void Difference(const T* pEnter, const T* pLeave, long nSamples,
                           short* __restrict pOut) {
        for (long x = 0; x < nSamples / cnRound * cnRound; ++x)
            pOut[x] = static_cast<short>(pEnter[x] - pLeave[x]);
    }

    void AddLine(const T* pLine, short* __restrict pOut) const {
        for (long x = 0; x < m_nWidth; ++x)
            pOut[x] = static_cast<short>(pOut[x] + pLine[x]);
    }

    void AddUp(int nLine) {
        std::uint32_t* __restrict pSums = m_pSums;
        const short* pA = m_Windows.Part(0, nLine);
        const short* pB = m_Windows.Part(1, nLine);
        const short* pC = m_Windows.Part(2, nLine);
        const short* pD = m_Windows.Part(3, nLine);
        for (long x = 0; x < ClWindowSums::Rounded(m_nWidth); ++x)
            pSums[x] +=
                static_cast<std::uint32_t>(static_cast<short>(pA[x] + pB[x] + pC[x] + pD[x]));
    }

    void Write(int nLine, const T* pMiddle, T* pOut) {
        if (m_nLinesOfFactors != m_nLines)
            FindFactors();
        const long nWhole = WholeRounds();
        WriteRounds(nLine, 0, nWhole, pMiddle, pOut);
        if (nWhole == m_nWidth)
            return;
        const StRound Middle(pMiddle + nWhole, m_nWidth - nWhole);
        StRound Last;
        WriteRounds(nLine, nWhole, cnRound, Middle.m_aSamples, Last.m_aSamples);
        std::copy_n(Last.m_aSamples, m_nWidth - nWhole, pOut + nWhole);
    }

    void WriteRounds(int nLine, long nFrom, long nSamples, const T* pMiddle, T* __restrict pOut) {
        std::uint32_t* __restrict pSums = m_pSums + nFrom;
        const Factor* __restrict pFactors = m_pFactors + nFrom;
        const short* pA = m_Windows.Part(0, nLine) + nFrom;
        const short* pB = m_Windows.Part(1, nLine) + nFrom;
        const short* pC = m_Windows.Part(2, nLine) + nFrom;
        const short* pD = m_Windows.Part(3, nLine) + nFrom;
        const Finish finish = m_Finish;
        for (long x = 0; x < nSamples / cnRound * cnRound; ++x) {
            const auto nChange = static_cast<short>(pA[x] + pB[x] + pC[x] + pD[x]);
            const std::uint32_t nSum = pSums[x] + static_cast<std::uint32_t>(nChange);
            pSums[x] = nSum;
            pOut[x] = finish.Result(pMiddle[x], static_cast<std::int32_t>(nSum), pFactors[x]);
        }
    }

    void CountColumns() {
        for (long x = 0; x < m_nWidth; ++x)
            m_pColumns[x] = static_cast<std::int32_t>(std::min(x + m_nHalf, m_nWidth - 1) -
                                                      std::max(x - m_nHalf, 0L) + 1);
    }

    /// Windows that no end of the line cuts have one factor.
    void FindFactors() {
        const long nWhole = std::min(m_nHalf, m_nWidth);
        const long nWholeEnd = std::max(nWhole, m_nWidth - m_nHalf);
        FindFactors(0, nWhole);
        if (nWhole < nWholeEnd)
            std::fill(m_pFactors + nWhole, m_pFactors + nWholeEnd,
                      m_Finish.FactorOf(m_nLines, m_pColumns[nWhole]));
        FindFactors(nWholeEnd, m_nWidth);
        m_nLinesOfFactors = m_nLines;
    }

    void FindFactors(long nFrom, long nEnd) {
        const std::int32_t* pColumns = m_pColumns;
        Factor* __restrict pFactors = m_pFactors;
        const Finish finish = m_Finish;
        for (long x = nFrom; x < nEnd; ++x)
            pFactors[x] = finish.FactorOf(m_nLines, pColumns[x]);
    }

    long m_nWidth;
    long m_nHalf;
    Finish m_Finish;
    int m_nLines = 0; ///< in the windows
    int m_nLinesOfFactors = 0;
    std::uint32_t* m_pSums;   ///< modulo 2^32, in which what stands behind a line may grow
    std::int32_t* m_pColumns; ///< of the window in the middle of each column
    Factor* m_pFactors;       ///< per column, for so many lines
    const T* m_pZeros;
    ClWindowSums m_Windows;
};

} // namespace Kernels
