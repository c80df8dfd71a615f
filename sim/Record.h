#pragma once

/// The calibration record of a simulated scanner, written from its true geometry: what a perfect
/// calibration would find.

#include "sim/Scanner.h"

#include <vector>

class ClCalibrateGeometricData;

namespace sim {

/// Fills `Data` with sizes, resolutions, background 255 and one plane of 75 dots: target points
/// are the dot pattern in the middle of the target frame, actual points where the scanner's
/// distortion puts them in the capture. Points are rounded to 32-bit floats, so that the record
/// is the same before and after a stream.
///
/// The splines that a warp is made of follow the true geometry inside the dots; in the corners of
/// the frame, 3 mm beyond the last dot, they extrapolate and may be a pixel or two off, as they are
/// for a real scanner.
void FillRecord(const ClScanner& Scanner, ClCalibrateGeometricData& Data);

/// The record as the block that `CalibrateSetData` takes.
std::vector<unsigned char> RecordBlock(const ClScanner& Scanner);

} // namespace sim
