#pragma once

/// Unsharp masking of one line of 8-bit samples.

namespace Kernels {

/// With p of `pIn`, l of `pLowPass` and d = p - l, writes p where `nThreshold` is not 0 and d lies
/// within -nThreshold to nThreshold, else p + d * dAmplification, limited to 0 to 255 and
/// truncated; 0 where that is not a number.
void SharpenLine(const unsigned char* pIn, const unsigned char* pLowPass, long nSamples,
                 double dAmplification, long nThreshold, unsigned char* pOut);

} // namespace Kernels
