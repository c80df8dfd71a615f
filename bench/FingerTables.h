#pragma once

/// What the dynamic calibration makes of simulated captures, as Markdown tables on the standard
/// output.

namespace bench {

/// One capture of each kind by each of `nScanners` scanners, numbered from `nFirst`. Returns the
/// number of captures that were not judged as they ought to be, and tells each on the standard
/// error: a whole, normal finger that is refused, an empty platen that is taken as one.
int PrintKinds(unsigned long nScanners, unsigned long nFirst);

/// One thing about the finger, the platen or the light changed step by step, `nScanners` captures
/// a step.
void PrintSeries(unsigned long nScanners, unsigned long nFirst);

/// Where in the image the two levels come from.
void PrintLevelSources(unsigned long nScanners, unsigned long nFirst);

/// How the measures, and the library's own levels beside them, follow what the simulator knows, as
/// rank correlations: over `nFingers` fingers on which everything differs, and over a third as
/// many each on which dryness, pressure or dirt differs and the others are as usual.
void PrintMeasures(unsigned long nFingers, unsigned long nFirst);

} // namespace bench
