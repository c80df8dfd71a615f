#include "measures/RankCorrelation.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <stdexcept>

namespace measures {

namespace {

std::vector<std::size_t> OrderOf(const std::vector<double>& aValues) {
    std::vector<std::size_t> aOrder(aValues.size());
    std::iota(aOrder.begin(), aOrder.end(), std::size_t{0});
    std::sort(aOrder.begin(), aOrder.end(),
              [&](std::size_t a, std::size_t b) { return aValues[a] < aValues[b]; });
    return aOrder;
}

/// Sum of the products of two lists of ranks, each less the mean.
double Product(const std::vector<double>& aFirst, const std::vector<double>& aSecond) {
    const double dMean = 0.5 * (static_cast<double>(aFirst.size()) + 1.0);
    double dSum = 0.0;
    for (std::size_t n = 0; n < aFirst.size(); ++n)
        dSum += (aFirst[n] - dMean) * (aSecond[n] - dMean);
    return dSum;
}

} // namespace

std::vector<double> Ranks(const std::vector<double>& aValues) {
    const std::vector<std::size_t> aOrder = OrderOf(aValues);
    std::vector<double> aRanks(aValues.size());
    for (std::size_t nFirst = 0; nFirst < aOrder.size();) {
        std::size_t nEnd = nFirst;
        while (nEnd < aOrder.size() && aValues[aOrder[nEnd]] == aValues[aOrder[nFirst]])
            ++nEnd;
        for (std::size_t n = nFirst; n < nEnd; ++n)
            aRanks[aOrder[n]] = 0.5 * (static_cast<double>(nFirst + nEnd) + 1.0);
        nFirst = nEnd;
    }
    return aRanks;
}

double RankCorrelation(const std::vector<double>& aFirst, const std::vector<double>& aSecond) {
    if (aFirst.size() != aSecond.size())
        throw std::invalid_argument("lists of different length have no correlation");
    const std::vector<double> aA = Ranks(aFirst);
    const std::vector<double> aB = Ranks(aSecond);
    const double dScale = std::sqrt(Product(aA, aA) * Product(aB, aB));
    return dScale > 0.0 ? Product(aA, aB) / dScale : 0.0;
}

} // namespace measures
