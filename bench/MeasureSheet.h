#pragma once

/// A picture of what the measures follow.

#include <string>

namespace bench {

/// Writes a sheet of three rows as a PNG: parts of corrected fingers of rising dryness (0, 0.25,
/// 0.5, 0.75, 1), of rising pressure (0.5, 0.75, 1, 1.25, 1.5), and of warped empty platens of
/// rising dirt (0, 0.25, 0.5, 0.75, 1). Prints the measures of each on the standard output.
void DrawMeasureSheet(const std::string& sFile, unsigned long nScanner);

} // namespace bench
