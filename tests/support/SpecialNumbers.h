#pragma once

/// Numbers that many tests set in.

#include <limits>

namespace TestSupport {

inline constexpr double cdPi = 3.14159265358979323846;
inline constexpr double cdNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double cdInfinity = std::numeric_limits<double>::infinity();

} // namespace TestSupport
