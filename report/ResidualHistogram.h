#pragma once

#include "report/Svg.h"

#include <vector>

namespace report {

/// How many residuals have which length, with their mean and maximum. The lengths are micrometres;
/// a second axis has them in pixels of a corrected image of 500 dots per inch. Those that are no
/// number, negative or above a metre are left out and their number told. `sPrefix` as for `ClSvg`.
std::string DrawResidualHistogram(const std::vector<double>& aMicrometres,
                                  const std::string& sPrefix);

} // namespace report
