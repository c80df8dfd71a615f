#include "report/Outliers.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace report {

namespace {

constexpr std::size_t cnLeast = 8;
constexpr double cdDeviations = 5.0;
constexpr double cdPerMedian = 1.4826; ///< standard deviation by the median of the distances

/// The mean of the two in the middle of an even number.
double MedianOf(std::vector<double> aValues) {
    std::sort(aValues.begin(), aValues.end());
    const std::size_t nMiddle = aValues.size() / 2;
    return aValues.size() % 2 == 1 ? aValues[nMiddle]
                                   : 0.5 * (aValues[nMiddle - 1] + aValues[nMiddle]);
}

std::vector<double> FiniteOf(const std::vector<double>& aValues) {
    std::vector<double> aFinite;
    std::copy_if(aValues.begin(), aValues.end(), std::back_inserter(aFinite),
                 [](double d) { return std::isfinite(d); });
    return aFinite;
}

} // namespace

std::vector<bool> Outliers(const std::vector<double>& aValues, double dGrain) {
    std::vector<bool> aOut(aValues.size(), false);
    const std::vector<double> aFinite = FiniteOf(aValues);
    if (aFinite.size() < cnLeast)
        return aOut;
    const double dMedian = MedianOf(aFinite);
    std::vector<double> aDistances;
    aDistances.reserve(aFinite.size());
    for (const double d : aFinite)
        aDistances.push_back(std::fabs(d - dMedian));
    const double dDeviation = std::max(cdPerMedian * MedianOf(aDistances), dGrain);
    for (std::size_t i = 0; i < aValues.size(); ++i)
        aOut[i] = std::fabs(aValues[i] - dMedian) > cdDeviations * dDeviation;
    return aOut;
}

} // namespace report
