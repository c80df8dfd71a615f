#pragma once

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

namespace DotSorting {

/// Sorts dots into columns from the left, each from the top. A column holds what lies less than
/// half a pitch, in pixels, to the right of its centre: the mean x of those clean dots that are
/// that near to its first one. Dots at one place keep the order of the components.
void IntoColumns(ClIpCalibrateGeometricBuildRefPointsBase::DotGrid& rGrid, double dHalfPitch);

} // namespace DotSorting
