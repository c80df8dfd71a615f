#pragma once

#include "report/Svg.h"

#include <optional>
#include <vector>

namespace report {

struct StTrendPoint {
    std::string m_sName; ///< of the scanner
    double m_dValue = 0.0;
    bool m_bOutlier = false; ///< to be named; what is beyond a limit is named anyway
};

/// One figure of many scanners.
struct StTrend {
    std::string m_sFigure;          ///< "mean residual"
    std::string m_sUnit;            ///< "micrometres"; may be empty
    int m_nDecimals = 1;            ///< of values told, 0 to 9
    std::optional<double> m_dLower; ///< limits
    std::optional<double> m_dUpper;
    std::vector<StTrendPoint> m_aPoints; ///< in the order of their names
};

/// The values in their order, a line at their median and at the limits, outliers as diamonds with
/// their names, crosses on the axis where a value is none. Small: several stand side by side.
/// `sPrefix` as for `ClSvg`.
std::string DrawTrend(const StTrend& Trend, const std::string& sPrefix);

} // namespace report
