#pragma once

/// How a mask reckons. Scales chain, and no chain of them may lead to a value whose sums overflow:
/// scaled coordinates stay within 2^60. Runs that a caller has made may lie anywhere; what is
/// reckoned with them stops at the ends of 64 bits.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Mask {

/// Toward zero; 0 for what is not a number.
inline std::int64_t Truncated(double dValue) {
    constexpr double cdLimit = 1152921504606846976.0; // 2^60
    return std::isnan(dValue) ? 0
                              : static_cast<std::int64_t>(std::clamp(dValue, -cdLimit, cdLimit));
}

/// To the nearest, halves up, for values above -0.5.
inline std::int64_t Rounded(double dValue) {
    return Truncated(dValue + 0.5);
}

inline std::int64_t Scaled(std::int64_t nValue, double dScale) {
    return Truncated(static_cast<double>(nValue) * dScale);
}

inline std::int64_t Sum(std::int64_t a, std::int64_t b) {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t nSum = 0;
    if (!__builtin_add_overflow(a, b, &nSum))
        return nSum;
    return a < 0 ? Limits::min() : Limits::max();
}

inline std::int64_t Difference(std::int64_t a, std::int64_t b) {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t nDifference = 0;
    if (!__builtin_sub_overflow(a, b, &nDifference))
        return nDifference;
    return a < 0 ? Limits::min() : Limits::max();
}

/// Pixels of an image per pixel of a mask, 1 where either has no resolution.
inline double ScaleOf(int nImagePels, int nMaskPels) {
    return nImagePels < 1 || nMaskPels < 1 ? 1.0 : static_cast<double>(nImagePels) / nMaskPels;
}

/// Columns or lines from the first to the last, both included.
inline std::int64_t Extent(std::int64_t nFirst, std::int64_t nLast) {
    return Sum(Difference(nLast, nFirst), 1);
}

} // namespace Mask
