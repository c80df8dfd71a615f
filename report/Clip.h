#pragma once

#include "report/Svg.h"

namespace report {

/// What of a polygon lies in a box, by cutting it at each side in turn: of a polygon that is not
/// convex, parts may be joined by lines along the border. Points that are not finite are left out.
Points Clipped(Points aPolygon, const StBox& Box);

/// Lines that rise to the right all over a box, `dStep` apart: the two ends of each.
Points Hatching(const StBox& Box, double dStep);

} // namespace report
