#pragma once

// The division of the sums of a window by their number: a multiplication by a reciprocal. With a
// sum s of n samples of 8 bits, both integers,
//
//     trunc((s + 0.5) * (1 / n))     for s of 0 or more, and with - 0.5 below
//
// is s / n toward zero: (s + 0.5) / n lies at least 0.5 / n away from every integer, while two
// roundings move a quotient of at most 255.5 by less than 255.5 * 2^-23 in single precision, which
// is below 0.5 / n for n up to 16000, or 255.5 * 2^-52 in double precision. s + 0.5 itself is
// exact: s has at most 21 and 39 bits.

#include <cstdint>
#include <type_traits>

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

/// s / n toward zero, for samples of type `T`, from s and 1 / n.
template <class T, class Numbers>
T MeanQuotient(typename Numbers::Sum nSum, typename Numbers::Real reciprocal) {
    using Real = typename Numbers::Real;
    const bool bNegative = std::is_signed_v<T> && nSum < 0;
    const Real half = bNegative ? Real(-0.5) : Real(0.5);
    return static_cast<T>(static_cast<int>((static_cast<Real>(nSum) + half) * reciprocal));
}

} // namespace Kernels
