#pragma once

/// Two planes of 8-bit samples, a and b, become one, or two lines. The result is a plane of its
/// own, or a, or b.

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

void AddCut(const StPairOfPlanes& Planes);
void AddHalf(const StPairOfPlanes& Planes);
void Subtract(const StPairOfPlanes& Planes);
void Max(const StPairOfPlanes& Planes);

/// out[i] = min(255, a[i] + b[i])
void AddCutLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                unsigned char* pOut);

/// out[i] = (a[i] + b[i]) / 2, truncated
void AddHalfLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                 unsigned char* pOut);

/// out[i] = max(0, a[i] - b[i])
void SubtractLine(const unsigned char* pA, const unsigned char* pB, long nSamples,
                  unsigned char* pOut);

/// out[i] = max(a[i], b[i])
void MaxLine(const unsigned char* pA, const unsigned char* pB, long nSamples, unsigned char* pOut);

} // namespace Kernels
