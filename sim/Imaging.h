#pragma once

/// How a scanner sees a plate: optics, light and sensor.
///
/// For each raw pixel the reflectance is averaged over the pixel's area on the platen, blurred by
/// the point spread, lit, multiplied by the column's gain, and noise is added. The pixel's area is
/// the quadrilateral between its four corners, whose platen positions come from the inverse of the
/// distortion; inside it positions are interpolated, which is exact to far below a sample as the
/// distortion is smooth.

#include "sim/Plate.h"
#include "sim/Scanner.h"

#include <cstdint>

namespace sim {

/// The raw capture. `nSeed` decides the noise of this capture.
ClRaster ImageRaw(const ClScanner& Scanner, const ClPlate& Plate, std::uint64_t nSeed);

/// The plate in the target frame under even light, without blur and noise.
ClRaster ImageIdeal(const ClScanner& Scanner, const ClPlate& Plate);

/// The finger area in the target frame: 0 where the plate is covered, else 255.
ClRaster ImageFingerArea(const ClScanner& Scanner, const ClPlate& Plate);

} // namespace sim
