#pragma once

/// Packs a grey raster as the packed device-independent bitmap that the exported calls take.

#include "sim/Raster.h"

#include <vector>

namespace sim {

/// 40-byte header, 256 grey entries, lines padded with zeros to a multiple of 4 bytes; line 0 is
/// stored first, the height is positive.
std::vector<unsigned char> BitmapBlock(const ClRaster& Raster);

/// The same behind a 14-byte file header: the content of a .bmp file.
std::vector<unsigned char> BitmapFile(const ClRaster& Raster);

} // namespace sim
