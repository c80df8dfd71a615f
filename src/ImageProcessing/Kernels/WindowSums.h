#pragma once

// Sums of neighbours along a line, by doubling: the sums of 2 n neighbours are those of two runs of
// n, and a window is put together from runs of powers of two, 53 = 1 + 4 + 16 + 32. That is one
// addition per sample and doubling, on whole lines and without a running sum, in which each sample
// waits for its neighbour. The last additions are left to the caller, who has more to do with a
// sample.
//
// A few lines go through each step together. A load that needs parts of two stores waits until both
// have reached the cache; what one line has just stored, the next step would load at once.
//
// Numbers have 16 bits: with samples within 255 of 0, sums of 127 neighbours are within 32385. The
// narrower the window, the larger may samples be.

#include "ImageProcessing/Kernels/Scratch.h"

#include <algorithm>
#include <cstddef>

namespace Kernels {

class ClWindowSums {
public:
    static constexpr long cnWidestWindow = 127;
    static constexpr long cnLargest = 32767; ///< of a sum, but for the sign
    static constexpr int cnParts = 4;
    static constexpr int cnBatch = 4; ///< lines

    /// Loops go in rounds of so many samples: what they do beyond a line goes into no result.
    static constexpr long Rounded(long nSamples) { return (nSamples + 31) / 32 * 32; }

    static std::size_t Bytes(long nWidth, long nHalf) {
        return static_cast<std::size_t>(cnBlocks * BlockSize(nWidth, nHalf)) * sizeof(short);
    }

    /// For `cnBatch` lines of `nWidth` samples. `pMemory` is aligned, has Bytes() bytes and
    /// outlives the object.
    ClWindowSums(unsigned char* pMemory, long nWidth, long nHalf)
        : m_nMargin(Rounded(nHalf)), m_nStride(Rounded(nWidth + nHalf)),
          m_nBlock(BlockSize(nWidth, nHalf)), m_pLines(reinterpret_cast<short*>(pMemory)),
          m_pUnused(m_pLines + m_nBlock) {
        std::fill_n(m_pLines, 2 * m_nBlock, short{0});
        const long nWindow = 2 * nHalf + 1;
        long nColumn = m_nMargin - nHalf; // of the window, the first one that has no part
        const short* pRun = m_pLines;
        for (long nRun = 1;; nRun *= 2) {
            if ((nWindow & nRun) != 0) {
                AddPart(pRun + nColumn);
                nColumn += nRun;
            }
            if (2 * nRun > nWindow)
                break;
            pRun = AddStep(pRun, pRun + nRun);
        }
        for (int i = m_nParts; i < cnParts; ++i)
            m_apParts[i] = m_pUnused;
    }

    /// The samples of a line, aligned, which the caller fills as far as the width, rounded.
    short* Line(int n) const { return m_pLines + m_nMargin + n * m_nStride; }

    /// The sum of the window around x of line n is that of item x of all cnParts parts.
    const short* Part(int i, int n) const { return m_apParts[i] + n * m_nStride; }

    /// Makes the parts from the samples.
    void Run() const {
        const long nSamples = m_nMargin + cnBatch * m_nStride;
        for (int i = 0; i < m_nSteps; ++i)
            AddLines(m_aSteps[i], nSamples);
    }

private:
    /// Blocks of lines: the samples and zeros, which are cleared, since margins stay; the longer
    /// runs, and what joins surplus parts.
    static constexpr long cnBlocks = 2 + 6 + 3;

    struct StStep {
        const short* m_pA;
        const short* m_pB;
        short* m_pSums;
    };

    /// The lines of a batch, each with the zeros behind it that are the margin of the next one,
    /// too, and what the steps read beyond the last one: a window that begins in the first round.
    static constexpr long BlockSize(long nWidth, long nHalf) {
        return Rounded(nHalf) + cnBatch * Rounded(nWidth + nHalf) +
               Rounded(Rounded(1) + cnWidestWindow);
    }

    const short* AddStep(const short* pA, const short* pB) {
        short* pSums = m_pUnused + (m_nSteps + 1) * m_nBlock;
        m_aSteps[m_nSteps++] = {pA, pB, pSums};
        return pSums;
    }

    /// More parts than there is room for are added up with the last one.
    void AddPart(const short* pPart) {
        if (m_nParts < cnParts)
            m_apParts[m_nParts++] = pPart;
        else
            m_apParts[cnParts - 1] = AddStep(m_apParts[cnParts - 1], pPart);
    }

    static void AddLines(const StStep& Step, long nSamples) {
        const short* pA = Step.m_pA;
        const short* pB = Step.m_pB;
        short* __restrict pSums = Step.m_pSums;
        for (long i = 0; i < nSamples; ++i)
            pSums[i] = static_cast<short>(pA[i] + pB[i]);
    }

    long m_nMargin;
    long m_nStride;
    long m_nBlock;
    short* m_pLines;
    short* m_pUnused; ///< zeros
    int m_nSteps = 0;
    int m_nParts = 0;
    StStep m_aSteps[cnBlocks - 2];
    const short* m_apParts[cnParts];
};

} // namespace Kernels
