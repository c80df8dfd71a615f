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
        return ClWindowSums::Bytes(nWidth + 2 * nHalf);
    }

    /// Both memories are aligned and outlive the object.
    ClMeanLines(unsigned char* pKept, unsigned char* pBatch, long nWidth, long nHalf, Finish finish)
        : m_nWidth(nWidth), m_nHalf(nHalf), m_Finish(finish),
          m_pSums(reinterpret_cast<std::uint32_t*>(pKept)),
          m_pColumns(reinterpret_cast<std::int32_t*>(pKept + LineBytes(nWidth))),
          m_pFactors(reinterpret_cast<Factor*>(pKept + 2 * LineBytes(nWidth))),
          m_pZeros(reinterpret_cast<const T*>(pKept + 3 * LineBytes(nWidth))),
          m_Windows(Cleared(pBatch, BatchBytes(nWidth, nHalf)), nWidth + 2 * nHalf, 2 * nHalf + 1) {
        Cleared(pKept, KeptBytes(nWidth));
        CountColumns();
    }

    static constexpr int cnBatch = ClWindowSums::cnBatch;

    /// One line enters the windows, one leaves them, null for none; and a line of results is
    /// written, unless `m_pOut` is null.
    struct StStep {
        const T* m_pEnter;
        const T* m_pLeave;
        T* m_pOut;
        const T* m_pMiddle; ///< the line of the results, where one is written
    };

    /// At most cnBatch steps. None reads what one of them writes.
    void Run(const StStep* pSteps, int nSteps) {
        for (int i = 0; i < nSteps; ++i)
            Change(pSteps[i], m_Windows.Line(i) + m_nHalf);
        m_Windows.Run();
        for (int i = 0; i < nSteps; ++i)
            Take(pSteps[i], i);
    }

    /// A batch of steps on a plane of `nHeight` lines, `in(y)`, with windows that reach `nHalfY`
    /// lines up and down: the lines `out(y)` from `nFirst` on, before `nEnd`. Lines before 0 make
    /// the windows of line 0 and are written nowhere; the first of these is -nHalfY or before.
    template <class In, class Out>
    void RunLines(long nFirst, long nEnd, long nHalfY, long nHeight, In in, Out out) {
        StStep aSteps[cnBatch];
        int nSteps = 0;
        for (long y = nFirst; nSteps < cnBatch && y < nEnd; ++y) {
            const long nEnter = y + nHalfY;
            const long nLeave = y - nHalfY - 1;
            aSteps[nSteps++] = {nEnter >= 0 && nEnter < nHeight ? in(nEnter) : nullptr,
                                nLeave >= 0 ? in(nLeave) : nullptr, y >= 0 ? out(y) : nullptr,
                                y >= 0 ? in(y) : nullptr};
        }
        Run(aSteps, nSteps);
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

    void Change(const StStep& Step, short* pOut) const {
        const long nWhole = WholeRounds();
        const long nRest = m_nWidth - nWhole;
        const T* pEnter = Step.m_pEnter != nullptr ? Step.m_pEnter : m_pZeros;
        const T* pLeave = Step.m_pLeave != nullptr ? Step.m_pLeave : m_pZeros;
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

    void Take(const StStep& Step, int nLine) {
        m_nLines += (Step.m_pEnter != nullptr ? 1 : 0) - (Step.m_pLeave != nullptr ? 1 : 0);
        if (Step.m_pOut != nullptr)
            Write(nLine, Step.m_pMiddle, Step.m_pOut);
        else
            AddUp(nLine);
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

    void FindFactors() {
        const std::int32_t* pColumns = m_pColumns;
        Factor* __restrict pFactors = m_pFactors;
        const Finish finish = m_Finish;
        for (long x = 0; x < m_nWidth; ++x)
            pFactors[x] = finish.FactorOf(m_nLines, pColumns[x]);
        m_nLinesOfFactors = m_nLines;
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
