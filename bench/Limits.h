#pragma once

/// How bad a capture of the dot target may be: one thing at a time is made worse, and at each step
/// it is counted how many captures of several scanners are accepted, refused, or accepted with
/// points that are wrong.

namespace bench {

/// Prints the table. Returns 0.
int PrintLimits(unsigned long nScanners, unsigned long nFirst);

} // namespace bench
