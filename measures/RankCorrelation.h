#pragma once

/// How well a measure follows a truth, whatever the shape of the curve.

#include <vector>

namespace measures {

/// The rank of each value, the lowest being 1; equal values share the mean of their ranks.
std::vector<double> Ranks(const std::vector<double>& aValues);

/// Spearman's: the correlation of the ranks, -1 to 1; 0 where one of both lists is all the same.
/// Throws std::invalid_argument for lists of different length.
double RankCorrelation(const std::vector<double>& aFirst, const std::vector<double>& aSecond);

} // namespace measures
