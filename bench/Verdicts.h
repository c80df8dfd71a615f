#pragma once

#include <string>

namespace bench {

/// Lets the diagnosis judge what was derived from captures of many scanners, two of each: one of
/// the named cases, and a fault of a degree that is drawn. Prints how often wrong calibrations are
/// flagged, with the right dot named, and how often good ones are, by threshold and by kind; how
/// well a plate of another pitch is told; what a second capture tells; and the expected errors of
/// corrected images against the true ones. Draws the first as a curve. Returns 0.
int PrintVerdicts(const std::string& sPicture, unsigned long nScanners, unsigned long nFirst);

} // namespace bench
