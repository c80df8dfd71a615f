#pragma once

/// How a mask turns scaled coordinates into whole pixels. Scales chain, and no chain of them may
/// lead to a value whose sums overflow: results stay within 2^60.

#include <algorithm>
#include <cmath>
#include <cstdint>

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

} // namespace Mask
