#pragma once

/// The geometric accuracy check behind `ClIpCalibrateLumivane2::Compare()`, from the located dots
/// on: the dots are laid onto the target and the distances between them compared. The fit changes
/// no distance; it brings both lists into one frame, for those who look at them.

#include "Calibrate/CalibrateGeometricData.h"

namespace AccuracyCheck {

using PointList = ClCalibrateGeometricData::PointList;

/// Lays the located dots onto the target by a rotation and a shift. Throws -44 for empty lists
/// and for different counts.
void FitOntoTarget(PointList& rTarget, PointList& rLocated);

/// Percentage of the pairs of dots whose distance keeps the limits of the EFTS. Throws "The
/// compare data is not the same Entry count." (-44), and "less than 2 points!" (-101).
double PercentWithinLimits(const PointList& rTarget, const PointList& rLocated);

} // namespace AccuracyCheck
