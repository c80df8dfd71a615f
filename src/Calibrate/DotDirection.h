#pragma once

/// Directions between dots, as angles in radians: 0 to the right and on clockwise, since y grows
/// downward. The eight places around a dot lie at the multiples of pi / 4, its sectors.

#include "Math/Vector.h"
#include "Tools/MathConst.h"

#include <cmath>

namespace DotDirection {

inline constexpr long cnSectors = 8;
inline constexpr double cdFullTurn = 2 * MathConst::cdPi;
inline constexpr double cdSector = MathConst::cdPi / 4;
inline constexpr double cdHalfSector = MathConst::cdPi / 8;

/// From 0 to 2 pi. The axes come out exactly.
inline double AngleOf(const ClVector& rOffset) {
    const double dAngle = std::atan2(rOffset.y, rOffset.x);
    return dAngle < 0.0 ? dAngle + cdFullTurn : dAngle;
}

/// The smaller of the two arcs between two directions, 0 to pi.
inline double Distance(double dA, double dB) {
    const double dArc = std::fmod(std::fabs(dA - dB), cdFullTurn);
    return dArc > MathConst::cdPi ? cdFullTurn - dArc : dArc;
}

} // namespace DotDirection
