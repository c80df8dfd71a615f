#pragma once

/// Grey tiles set in rows on one sheet, and the sheet as a PNG.

#include "sim/Raster.h"

#include <vector>

namespace bench {

using SheetRow = std::vector<sim::ClRaster>;

/// Every `nDown` lines and `nAcross` columns become one pixel, their mean; a rest is dropped.
sim::ClRaster Reduced(const sim::ClRaster& Image, int nAcross, int nDown);

/// Rows from the top, tiles from the left, a gap between and around them. The tiles of a row may
/// differ in size.
sim::ClRaster SetTiles(const std::vector<SheetRow>& aRows);

/// With `nGreys` of 2 to 16, greys are rounded to as many even steps, which makes the file a good
/// deal smaller; 256 keeps them. Throws std::runtime_error where the file cannot be written.
void WritePng(const char* szFile, const sim::ClRaster& Sheet, int nGreys);

} // namespace bench
