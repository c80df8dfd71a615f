#pragma once

#include <limits>

namespace MathConst {

/// The undefined double: every comparison with it is false.
inline constexpr double cdNaN = std::numeric_limits<double>::quiet_NaN();

inline constexpr double cdPi = 3.141592653589793;
inline constexpr double cdDegreesPerRadian = 57.29577951308232;
inline constexpr double cdMillimetresPerInch = 25.4;
inline constexpr double cdInchesPerMillimetre = 0.03937007874015748;

} // namespace MathConst
