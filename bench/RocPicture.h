#pragma once

#include "bench/VerdictTables.h"

#include <string>

namespace bench {

/// Draws what thresholds do: good calibrations flagged against wrong ones found, in percent, as an
/// SVG. Throws std::runtime_error where the file cannot be written.
void DrawRoc(const std::string& sFile, const std::vector<ClOperatingPoint>& aPoints);

} // namespace bench
