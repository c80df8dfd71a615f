#pragma once

#include "diagnosis/Points.h"

namespace diagnosis {

/// The part of the corrected image that a place lies in.
enum class EZone {
    eInside, ///< amid dots, within their convex hull
    eEdge,   ///< beyond the dots to one side, the two places without dots included
    eCorner, ///< beyond the dots in x and in y
};

/// `aTarget` are the 75 target points, in pattern order.
EZone ZoneOf(const StPoint& Place, const Points& aTarget);

} // namespace diagnosis
