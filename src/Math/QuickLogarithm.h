#pragma once

/// A logarithm for loops that the compiler turns into vectors: no branch, no table, no call.

#include <cstdint>
#include <cstring>

/// The natural logarithm of a positive normal double, off by less than 2^-48 of itself; something
/// finite for 0 and what is between.
///
/// With s = 2^e m, m from 0.7071 to 1.4143, and z = (m - 1) / (m + 1), it is e log 2 + 2 atanh(z).
/// |z| is below 0.1716, and the terms behind z^17 / 17 are together below 2^-50 of the sum. Three
/// roundings of z and four of the sum come to less than 2^-50, too, as do those of e log 2: where
/// e is not 0, the logarithm is at least half of it.
inline double QuickLog(double s) noexcept {
    constexpr std::uint64_t cnOne = 0x3FF0000000000000;     // 1.0
    constexpr std::uint64_t cnLeast = 0x3FE6A09E00000000;   // 0.7071, the least m
    constexpr std::uint64_t cnTwoTo52 = 0x4330000000000000; // 2^52, whose unit is 1
    constexpr double cdTwoTo52AndBias = 4503599627370496.0 + 1023.0;
    constexpr double cdLogOf2 = 0.69314718055994530942;

    std::uint64_t nBits = 0;
    std::memcpy(&nBits, &s, sizeof s);
    const std::uint64_t nExponent = (nBits + (cnOne - cnLeast)) >> 52;
    const std::uint64_t nMantissa = nBits - (nExponent << 52) + cnOne;
    const std::uint64_t nShifted = nExponent | cnTwoTo52;
    double m = 0.0;
    double dExponent = 0.0;
    std::memcpy(&m, &nMantissa, sizeof m);
    std::memcpy(&dExponent, &nShifted, sizeof dExponent);
    dExponent -= cdTwoTo52AndBias;

    const double z = (m - 1.0) / (m + 1.0);
    const double z2 = z * z;
    double dTail = 1.0 / 17.0;
    dTail = dTail * z2 + 1.0 / 15.0;
    dTail = dTail * z2 + 1.0 / 13.0;
    dTail = dTail * z2 + 1.0 / 11.0;
    dTail = dTail * z2 + 1.0 / 9.0;
    dTail = dTail * z2 + 1.0 / 7.0;
    dTail = dTail * z2 + 1.0 / 5.0;
    dTail = dTail * z2 + 1.0 / 3.0;
    const double d2z = z + z;
    return dExponent * cdLogOf2 + (d2z + d2z * z2 * dTail);
}
