#pragma once

namespace bench {

/// Lays plates that are not the target, whole and clean, before many scanners: how often data are
/// derived from them, whether those load, and what the accuracy check then makes of the same plate
/// and of the right target. Prints a line for each plate; returns 0.
int PrintPlates(unsigned long nScanners, unsigned long nFirst);

} // namespace bench
