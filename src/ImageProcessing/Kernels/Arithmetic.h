#pragma once

/// Two planes of 8-bit samples, a and b, become one: a plane of its own, or a, or b.

#include <cstddef>

namespace Kernels {

/// `nLines` lines of `nSamples` samples; the strides are in samples.
struct StPairOfPlanes {
    const unsigned char* m_pA;
    std::ptrdiff_t m_nStrideA;
    const unsigned char* m_pB;
    std::ptrdiff_t m_nStrideB;
    long m_nSamples;
    long m_nLines;
    unsigned char* m_pOut;
    std::ptrdiff_t m_nStrideOut;
};

/// out = min(255, a + b)
void AddCut(const StPairOfPlanes& Planes);

/// out = (a + b) / 2, truncated
void AddHalf(const StPairOfPlanes& Planes);

/// out = max(0, a - b)
void Subtract(const StPairOfPlanes& Planes);

/// out = max(a, b)
void Max(const StPairOfPlanes& Planes);

} // namespace Kernels
