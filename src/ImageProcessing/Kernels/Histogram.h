#pragma once

/// Counting of 8-bit values.

#include <cstddef>
#include <cstdint>

namespace Kernels {

/// Adds to `pBins`, 256 counters, how often each value occurs in `nLines` lines of `nSamples`
/// bytes, which begin `nStride` bytes apart. In all fewer than 2^31 samples.
void CountValues(const unsigned char* pData, std::ptrdiff_t nStride, long nSamples, long nLines,
                 std::int32_t* pBins);

} // namespace Kernels
