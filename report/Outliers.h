#pragma once

#include <cstddef>
#include <vector>

namespace report {

/// Values are outliers that lie further from the median than five times 1.4826 times the median of
/// all distances from it: what so few of a normal distribution do, one in a million, that it is
/// worth a look. That number is taken for no less than `dGrain`, so that rounding makes none. With
/// fewer than eight finite values nothing is known, and none is an outlier.
std::vector<bool> Outliers(const std::vector<double>& aValues, double dGrain);

} // namespace report
