#include "sim/Random.h"

#include <cmath>

namespace sim {

double ClRandom::ToNormal(std::uint64_t n) {
    const std::uint64_t nSum =
        (n & 0xFFFF) + ((n >> 16) & 0xFFFF) + ((n >> 32) & 0xFFFF) + (n >> 48);
    // Four uniform integers 0 to 65535: mean 131070, variance 4 (65536^2 - 1) / 12.
    constexpr double dSigma = 37837.22723720648;
    return (static_cast<double>(nSum) - 131070.0) / dSigma;
}

double ClNoiseField::Knot(std::int64_t nColumn, std::int64_t nRow) const {
    // Columns and rows share the index without overlap up to 2^31 knots to each side.
    const auto nIndex = (static_cast<std::uint64_t>(nRow) << 32) ^
                        (static_cast<std::uint64_t>(nColumn) & 0xFFFFFFFFU);
    return 2.0 * ClRandom::ToUniform(ClRandom::Lookup(m_nSeed, nIndex)) - 1.0;
}

double ClNoiseField::At(double x, double y) const {
    const double dColumn = std::floor(x * m_dScale);
    const double dRow = std::floor(y * m_dScale);
    const double u = x * m_dScale - dColumn;
    const double v = y * m_dScale - dRow;
    const auto nColumn = static_cast<std::int64_t>(dColumn);
    const auto nRow = static_cast<std::int64_t>(dRow);
    const double su = u * u * (3.0 - 2.0 * u);
    const double sv = v * v * (3.0 - 2.0 * v);
    const double dAbove = Knot(nColumn, nRow) * (1.0 - su) + Knot(nColumn + 1, nRow) * su;
    const double dBelow = Knot(nColumn, nRow + 1) * (1.0 - su) + Knot(nColumn + 1, nRow + 1) * su;
    return dAbove * (1.0 - sv) + dBelow * sv;
}

} // namespace sim
