#pragma once

/// What a calibration record has to satisfy before anything is computed from it: counts, sizes
/// and finite coordinates. Records come from wherever the application kept them.

class ClCalibrateGeometricData;

/// Dots of the target pattern; every record has a point for each.
inline constexpr unsigned long cnPatternPoints = 75;

/// Throws "Target data is corrupt", "Target and Source arrays must have same size!" or "Source
/// data is corrupt" (-39).
void CheckRecordLimits(const ClCalibrateGeometricData& rData);
