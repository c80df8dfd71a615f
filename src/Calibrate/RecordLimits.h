#pragma once

/// What a calibration record has to satisfy before its geometry is looked at: counts, sizes and
/// finite coordinates. Records come from wherever the application kept them.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/DotPattern.h"

namespace RecordLimits {

bool IsFinite(const ClCalibrateGeometricData::PointList& rPoints);

/// The pattern's count of finite target points, and a size that a table may have; else
/// RefuseTarget().
void CheckTarget(const ClCalibrateGeometricData& rData);
/// As many points as target points in every list in use, then finite ones; else the text of
/// CheckCount() or RefuseSource().
void CheckSource(const ClCalibrateGeometricData& rData);

/// Throws "Target and Source arrays must have same size!" (-39).
void CheckCount(const ClCalibrateGeometricData::PointList& rSource,
                const ClCalibrateGeometricData::PointList& rTarget);
/// Logs and throws "Target data is corrupt" (-39).
[[noreturn]] void RefuseTarget();
/// Logs and throws "Source data is corrupt" (-39).
[[noreturn]] void RefuseSource();

} // namespace RecordLimits
