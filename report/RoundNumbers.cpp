#include "report/RoundNumbers.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace report {

namespace {

constexpr double cdGrain = 1e-9; ///< by which a quotient may miss a whole number
constexpr std::array<double, 4> aRound{1.0, 2.0, 5.0, 10.0};

/// Positive, and large enough for a power of ten below it.
bool IsSize(double d) {
    return std::isfinite(d) && d >= 1e-300;
}

double PowerBelow(double dValue) {
    return std::pow(10.0, std::floor(std::log10(dValue)));
}

/// In steps.
double FirstTick(double dLow, double dStep) {
    return std::ceil(dLow / dStep - cdGrain);
}

double CountOfTicks(double dLow, double dHigh, double dStep) {
    return std::floor(dHigh / dStep + cdGrain) - FirstTick(dLow, dStep) + 1.0;
}

} // namespace

double RoundDown(double dValue) {
    if (!IsSize(dValue))
        return 1.0;
    const double dPower = PowerBelow(dValue);
    double dRound = dPower;
    for (const double d : aRound)
        if (d * dPower <= dValue * (1.0 + cdGrain))
            dRound = d * dPower;
    return dRound;
}

double RoundUp(double dValue) {
    if (!IsSize(dValue))
        return 1.0;
    const double dPower = PowerBelow(dValue);
    return dPower * *std::find_if(aRound.begin(), aRound.end() - 1,
                                  [&](double d) { return d * dPower >= dValue * (1.0 - cdGrain); });
}

std::vector<double> RoundTicks(double dLow, double dHigh, int nMost) {
    if (!std::isfinite(dLow) || !std::isfinite(dHigh) || !(dLow <= dHigh))
        return {};
    if (dLow == dHigh || nMost < 2)
        return {dLow};
    double dStep = RoundUp(dHigh / nMost - dLow / nMost);
    while (CountOfTicks(dLow, dHigh, dStep) > nMost)
        dStep = RoundUp(1.5 * dStep);
    const int nTicks = static_cast<int>(CountOfTicks(dLow, dHigh, dStep));
    std::vector<double> aTicks;
    aTicks.reserve(static_cast<std::size_t>(nTicks));
    for (int i = 0; i < nTicks; ++i)
        aTicks.push_back((FirstTick(dLow, dStep) + i) * dStep);
    return aTicks;
}

int DecimalsOf(double dStep) {
    constexpr int cnMost = 9;
    if (!IsSize(dStep))
        return 0;
    return std::clamp(static_cast<int>(std::ceil(-std::log10(dStep) - cdGrain)), 0, cnMost);
}

} // namespace report
