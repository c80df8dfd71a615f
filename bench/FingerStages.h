#pragma once

/// The images between the steps of the dynamic calibration, for pictures and measurements that the
/// exported calls do not give.

#include "sim/Raster.h"

#include <map>
#include <string>

namespace bench {

/// 8-bit images by the names that the library's own dumps have, such as
/// "02_GloballyStretchedImage"; some are smaller than the frame. `Warped` is in the target frame,
/// with its resolution. Stages go through files in a temporary folder, which is the working
/// directory meanwhile.
std::map<std::string, sim::ClRaster> StagesOf(const sim::ClRaster& Warped);

} // namespace bench
