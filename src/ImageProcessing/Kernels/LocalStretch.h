#pragma once

/// Stretching of 8-bit samples between limits that change from sample to sample.

#include <cstdint>

namespace Kernels {

/// Whether there is a sample for which ClLocalStretch takes the range of all: where it is false,
/// that range decides nothing. `nMinContrast` is not negative.
bool IsAnyFlat(const unsigned char* pMin, const unsigned char* pMax, long nSamples,
               long nMinContrast);

class ClLocalStretch {
public:
    /// Differences of up to `nMinContrast` take the range `nLow` to `nHigh` in place of their own.
    ClLocalStretch(long nMinContrast, unsigned char nLow, unsigned char nHigh);

    /// With d = max[i] - min[i], writes
    ///
    ///     ((0xFF0000 / (d + 1)) * (in[i] - min[i])) >> 16              where d > nMinContrast
    ///     ((0xFF0000 / (nHigh - nLow + 1)) * (in[i] - nLow)) >> 16     elsewhere, and for d = -1
    ///
    /// limited to 0 to 255. Divisions truncate, shifts are arithmetic. `pOut` may be `pIn`.
    void StretchLine(const unsigned char* pIn, const unsigned char* pMin, const unsigned char* pMax,
                     long nSamples, unsigned char* pOut) const;

private:
    /// The bottom of the range is (min & m_nMinMask) + m_nLow.
    struct StRange {
        std::int32_t m_nFactor;
        std::uint8_t m_nMinMask;
        std::uint8_t m_nLow;
    };

    bool m_bPlain; ///< neither the threshold is negative nor the range empty
    unsigned char m_nMinContrast;
    unsigned char m_nLow;
    unsigned char m_nSpan;
    static constexpr int cnLargest = 255;
    StRange m_aRanges[2 * cnLargest + 1]; ///< by difference, from -255 on
};

} // namespace Kernels
