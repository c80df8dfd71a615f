#pragma once

#include "Calibrate/IpCalibrateGeometricBuildRefPointsBase.h"

namespace DotGridPicture {

using DotGrid = ClIpCalibrateGeometricBuildRefPointsBase::DotGrid;

/// Blanks all planes and draws the valid dots, the samples of a dot's pixel and of the eight around
/// it: 128 in a direction that has a neighbour and 0 in the others, and bit 64 set in the middle.
/// Dots nearer than a pixel to the edge are left out. Throws "Image Type is not the assigned type"
/// (-101) for other types than `eUInt8`.
void Draw(const DotGrid& rGrid, ClImage& rImage);
/// A line of the trace for each dot: its place, its state and how many neighbours it has.
void LogStates(const DotGrid& rGrid);
/// A line of the trace for each dot: its place, its state and shape and which neighbours it has.
void LogShapes(const DotGrid& rGrid);

} // namespace DotGridPicture
