#pragma once

/// Whether the points of a stored record look like those of a dot pattern. Only points and the
/// lengths of the pattern's columns count, no setting of a builder.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

namespace RecordPlausibility {

using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;
using PointList = ClIpCalibrateGeometricBuildRefPointsBase::PointList;

/// Throws "Target data is corrupt" (-39) unless the points are the ideal ones, moved as a whole and
/// within 10 pixels.
void CheckTarget(const PointList& rIdeal, const PointList& rPoints);
/// Makes the grid anew, a dot for every point; those behind the pattern have no place in it. Throws
/// "Target and Source arrays must have same size!" (-39); the grid is then as before.
void PlaceDots(const TpArrayStatic<int>& rColumnLengths, const PointList& rSource,
               const PointList& rTarget, DotGrid& rGrid);
/// Throws "Source data is corrupt" (-39) unless every dot's neighbours in the pattern lie below it
/// and to its right by the mean of such steps, within 30 percent.
void CheckSteps(const DotGrid& rGrid);

} // namespace RecordPlausibility
