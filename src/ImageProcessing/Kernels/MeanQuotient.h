#pragma once

// The division of the sums of a window by their number: a multiplication by a reciprocal that is a
// little too large. With u the unit of rounding of the numbers, 2^-24 or 2^-53, it is
//
//     r = (1 / n) (1 + 4 u)
//
// and for an integer s of either sign, trunc(s r) is s / n toward zero. With its three roundings
// the product lies between |s| / n and |s| / n (1 + 8 u): a multiple of n is never missed, and
// where s is one less than the multiple (k + 1) n, the product stays below k + 1, which is 256 at
// most, as long as
//
//     256 * 8 u <= 1 / n     that is, for n up to 2^13, or 2^42.
//
// Sums are exact: of so many samples of 8 bits they have 21 bits, or 50.

#include <cstdint>
#include <limits>

namespace Kernels {

/// Sums and reciprocals of windows of up to 2^13 samples, which are squares 89 wide.
struct StNarrowMean {
    using Sum = std::int32_t;
    using Real = float;
    static constexpr long cnLargestArea = 1L << 13;
};

/// Those of all others.
struct StWideMean {
    using Sum = std::int64_t;
    using Real = double;
};

/// r for n samples.
template <class Real>
Real MeanReciprocal(Real samples) {
    return (Real(1) / samples) * (Real(1) + 2 * std::numeric_limits<Real>::epsilon());
}

/// s / n toward zero, for samples of type `T`, from s and r.
template <class T, class Numbers>
T MeanQuotient(typename Numbers::Sum nSum, typename Numbers::Real reciprocal) {
    return static_cast<T>(static_cast<int>(static_cast<typename Numbers::Real>(nSum) * reciprocal));
}

} // namespace Kernels
