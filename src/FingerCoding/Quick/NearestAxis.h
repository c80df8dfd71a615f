#pragma once

/// One axis of a rescale to the nearest neighbour, as `ClIpRescale` has it.

namespace Quick {

struct StNearestAxis {
    static constexpr long cnOne = 4096; ///< 1.0 in fixed point
    static constexpr long cnOutside = -1;

    /// An axis that keeps its pixels.
    explicit StNearestAxis(long nSize) : m_nIn(nSize), m_nOut(nSize), m_nStep(cnOne) {}
    /// The step comes from the resolutions, where there are such.
    StNearestAxis(long nIn, long nOut, long nInPels, long nOutPels)
        : m_nIn(nIn), m_nOut(nOut),
          m_nStep(nInPels != 0 && nOutPels != 0 ? nInPels * cnOne / nOutPels : nIn * cnOne / nOut) {
    }

    /// The place that `n` is taken from.
    long SourceOf(long n) const {
        const long nSource = n * m_nStep >> 12;
        return nSource < m_nIn ? nSource : cnOutside;
    }

    /// Writes where all places are taken from, but for the last ones, which lie outside. Returns
    /// their number.
    long WriteSources(int* pSources) const {
        long n = 0;
        for (; n < m_nOut && SourceOf(n) != cnOutside; ++n)
            pSources[n] = static_cast<int>(SourceOf(n));
        return n;
    }

    long m_nIn;
    long m_nOut;
    long m_nStep;
};

} // namespace Quick
