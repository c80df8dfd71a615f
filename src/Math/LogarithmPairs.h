#pragma once

/// The quick way of CorrectLog(), for loops that the compiler turns into vectors. Logarithm.cpp
/// tells how it works and why it is right.

#include <cstdint>
#include <cstring>

namespace LogarithmPairs {

constexpr int cnIntervals = 256;
constexpr double cdLogOf2High =
    0x1.62e42fefa38p-1; // 42 bits: its product with an exponent is exact
constexpr double cdLogOf2Low = 0x1.ef35793c7673p-45;
constexpr double cdTestedError = 0x1p-63;

/// The 256 intervals of mantissas from 1 to 2. Those from 1.4141 on count as halves, with the next
/// exponent.
struct StTable {
    double m_adFactor[cnIntervals]; ///< c, and c / 2 for halves
    double m_adHalved[cnIntervals]; ///< 1 for halves, else 0
    double m_adHigh[cnIntervals];   ///< -log c
    double m_adLow[cnIntervals];
};

extern const StTable g_Table;

/// An unevaluated sum, the second much smaller than the first.
struct StPair {
    double m_dHigh;
    double m_dLow;
};

/// The exact sum of two doubles, rounded and what the rounding took. The first is 0 or not the
/// smaller.
inline StPair ExactSum(double a, double b) {
    const double dSum = a + b;
    return {dSum, b - (dSum - a)};
}

/// m c - 1, exactly: both products are, with the mantissa cut into 25 and 28 bits.
inline double DifferenceFromOne(std::uint64_t nMantissa, double dFactor) {
    const std::uint64_t nHigh = nMantissa & ~std::uint64_t{0} << 28;
    double m = 0.0;
    double dHigh = 0.0;
    std::memcpy(&m, &nMantissa, sizeof m);
    std::memcpy(&dHigh, &nHigh, sizeof dHigh);
    return (dHigh * dFactor - 1.0) + (m - dHigh) * dFactor;
}

/// The half of z^2, negative: z is split at 2^-34, so that the higher part has 26 bits at most and
/// its square is exact.
inline StPair HalfSquare(double z) {
    constexpr double cdSplitter = 0x1.8p18; // its unit is 2^-34
    const double dHigh = (z + cdSplitter) - cdSplitter;
    return {-0.5 * dHigh * dHigh, -0.5 * (z - dHigh) * (z + dHigh)};
}

/// 1/3 - z/4 + z^2/5 - ... + z^6/9
inline double Tail(double z) {
    double dSum = 1.0 / 9.0;
    dSum = dSum * z - 1.0 / 8.0;
    dSum = dSum * z + 1.0 / 7.0;
    dSum = dSum * z - 1.0 / 6.0;
    dSum = dSum * z + 1.0 / 5.0;
    dSum = dSum * z - 1.0 / 4.0;
    return dSum * z + 1.0 / 3.0;
}

/// The logarithm of 2^`dMoreExponent` x for a positive normal x.
inline StPair LogOfNormal(double x, double dMoreExponent) {
    constexpr std::uint64_t cnFraction = (std::uint64_t{1} << 52) - 1;
    constexpr std::uint64_t cnOne = 0x3FF0000000000000;     // 1.0
    constexpr std::uint64_t cnTwoTo52 = 0x4330000000000000; // 2^52, whose unit is 1
    constexpr double cdTwoTo52AndBias = 4503599627370496.0 + 1023.0;
    std::uint64_t nBits = 0;
    std::memcpy(&nBits, &x, sizeof x);
    const std::uint64_t i = nBits >> 44 & (cnIntervals - 1);
    const std::uint64_t nShifted = nBits >> 52 | cnTwoTo52;
    double dExponent = 0.0;
    std::memcpy(&dExponent, &nShifted, sizeof dExponent);
    dExponent += dMoreExponent - cdTwoTo52AndBias + g_Table.m_adHalved[i];

    const double z = DifferenceFromOne((nBits & cnFraction) | cnOne, g_Table.m_adFactor[i]);
    const StPair half = HalfSquare(z);
    const StPair whole = ExactSum(dExponent * cdLogOf2High, g_Table.m_adHigh[i]);
    const StPair first = ExactSum(whole.m_dHigh, z);
    const StPair second = ExactSum(first.m_dHigh, half.m_dHigh);
    const double dRest = dExponent * cdLogOf2Low + g_Table.m_adLow[i] + whole.m_dLow +
                         first.m_dLow + second.m_dLow + half.m_dLow + z * z * z * Tail(z);
    return ExactSum(second.m_dHigh, dRest);
}

/// A sum less and more of the error that is tested for, rounded: where they are equal that is the
/// correctly rounded sum.
inline double RoundedLess(const StPair& Sum) {
    return Sum.m_dHigh + (Sum.m_dLow - Sum.m_dHigh * cdTestedError);
}
inline double RoundedMore(const StPair& Sum) {
    return Sum.m_dHigh + (Sum.m_dLow + Sum.m_dHigh * cdTestedError);
}

} // namespace LogarithmPairs
