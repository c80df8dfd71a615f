#pragma once

#include <cstddef>
#include <vector>

namespace diagnosis {

using Values = std::vector<double>;

/// The inverse of a matrix of n x n numbers about 1, row by row: Gauss and Jordan with the largest
/// pivot of each column. Throws std::invalid_argument for one that is singular, or nearly so.
Values Inverse(Values aMatrix, std::size_t n);

/// A matrix of n x n numbers times a list of n.
Values Product(const Values& aMatrix, const Values& aList);

} // namespace diagnosis
