#pragma once

#include <limits>

namespace MathConst {

/// The undefined double: every comparison with it is false.
inline constexpr double cdNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace MathConst
