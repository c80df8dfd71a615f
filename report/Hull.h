#pragma once

#include "diagnosis/Points.h"

namespace report {

/// The corners of the convex hull of the points that are finite, in order; without points on its
/// sides. Fewer than three where all lie on one line.
diagnosis::Points ConvexHull(diagnosis::Points aPoints);

} // namespace report
