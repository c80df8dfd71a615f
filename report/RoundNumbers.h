#pragma once

#include <vector>

namespace report {

/// The largest of 1, 2 and 5 times a power of ten that is not above a value, and the smallest that
/// is not below. 1 for what is not positive and finite, or below 1e-300.
double RoundDown(double dValue);
double RoundUp(double dValue);

/// The multiples of the smallest round number that has at most `nMost` from `dLow` to `dHigh`, ends
/// included. None for ends that are not finite; the lower end alone where both are the same or one
/// number is all there may be.
std::vector<double> RoundTicks(double dLow, double dHigh, int nMost);

/// The decimals that tell such a step apart from the next: 0 for 1 and above, 1 for 0.5; at most 9.
int DecimalsOf(double dStep);

} // namespace report
