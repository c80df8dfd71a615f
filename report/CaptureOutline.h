#pragma once

#include "report/Dots.h"

#include <functional>

namespace report {

/// From pixels of the corrected image to raw pixels, as a calibration takes them.
using Mapping = std::function<StPoint(const StPoint&)>;

/// The border of the capture in pixels of the corrected image: corner pixels' middles and points
/// between them, in order. Found by stepping back what the mapping misses each raw point by, in
/// nominal resolutions; points where that does not end within a tenth of a raw pixel are left out.
Points CaptureOutline(const Mapping& RawOf, const StFrame& Capture, const StFrame& Corrected);

/// Percent of the pixels of the corrected image whose places lie in the capture.
double CoveredPercent(const Mapping& RawOf, const StFrame& Capture, const StFrame& Corrected);

} // namespace report
