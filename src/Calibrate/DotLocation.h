#pragma once

#include "Calibrate/DotSettings.h"
#include "ImageProcessing/IpConnectedComponent2.h"

class ClImage;

namespace DotLocation {

/// Finds and measures the regions that stand out of their surroundings, dots among them, in one
/// plane. `pLabels` may be null. Throws what LocatePoints() of the dot builders tells.
void Measure(ClImage& rImage, const StDotSettings& rSettings, ClImage* pLabels,
             ClIpConnectedComponent2::ComponentsArray_t& rComponents);

} // namespace DotLocation
