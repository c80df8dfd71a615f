#pragma once

#include "Calibrate/DotSettings.h"
#include "Math/Vector.h"
#include "Tools/Array.h"

namespace GridLines {

/// Refuses a pattern whose rows or columns lean or bend too much. `rLengths` are its columns,
/// `rPoints` go column by column. Throws (-600), in this order, "The Angle(x) of the Dot Grid is
/// too big.", "There are Dots are too far a way from a Grid(x) line." and the same for y; -35 for
/// another count of points.
void Check(const TpArrayStatic<int>& rLengths, const TpArrayDynamic<ClVector, 10>& rPoints,
           const StDotSettings& rLimits);

} // namespace GridLines
