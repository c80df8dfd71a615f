#pragma once

/// Two lines of 8-bit samples, a and b, become one. `pOut` is a line of its own, or `pA`, or `pB`.

namespace Kernels {

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
