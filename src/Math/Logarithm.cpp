#include "Math/Logarithm.h"

// x = 2^e m, with m from 0.707 to 1.4141, and a table over intervals of m has c near 1 / m, a
// multiple of 2^-8. Then
//
//     log x = e log 2 - log c + log(1 + z),    z = m c - 1,    |z| < 0.0048,
//
// where z is exact: c has 9 bits, and what m c differs from 1 by has 53 at most. In the two
// intervals beside 1 c is 1, so that small results are log(1 + z) alone.
//
// The quick way adds this up in pairs of doubles. Log 2, log c and z^2 / 2 are exact to far below
// 2^-76; z^3 / 3 with all behind it is one double, less than 2^-24.6, cut off behind z^9. A dozen
// roundings of that size come to 2^-74, where the result is at least 2^-9. Where c is 1, |z| is
// below 2^-8, and the same roundings are below 2^-66 z. So the error is below 2^-65 of the result.
// Whether 2^-63 more and less round alike is then tested: one in some hundred does not.
//
// The slow way decides that one in integers with 192 bits behind the point:
//
//     log(a / b) = 2 atanh(w) = 2 (w + w^3 / 3 + w^5 / 5 + ...),    w = (a - b) / (a + b).
//
// Each of up to 61 terms is a few units of 2^-192 too small, the sum less than 2^-183, and e log 2
// less than 2^-172. The result is at least 2^-53, and at least 2^-2 where e is not 0: the error is
// below 2^-130 of it. No double's logarithm lies nearer than 2^-118 of itself to the middle of two
// doubles (by exhaustive search: V. Lefevre and J.-M. Muller, Worst cases for correct rounding of
// the elementary functions in double precision, 2001), so all are decided. The table comes of the
// same sum, which the compiler works out.

#include "Math/LogarithmPairs.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

namespace {

using LogarithmPairs::cnIntervals;
using LogarithmPairs::StPair;

__extension__ typedef unsigned __int128 UInt128;

// The slow way

/// A number with 192 bits behind the point and 64 before it, the lowest first; negative ones are
/// two's complements.
struct StFixed {
    std::uint64_t m_anLimb[4] = {};

    constexpr bool IsNegative() const { return m_anLimb[3] >> 63 != 0; }
    constexpr bool IsZero() const {
        return (m_anLimb[0] | m_anLimb[1] | m_anLimb[2] | m_anLimb[3]) == 0;
    }
};

constexpr StFixed operator+(StFixed a, const StFixed& b) {
    UInt128 nCarry = 0;
    for (int i = 0; i < 4; ++i) {
        nCarry += UInt128{a.m_anLimb[i]} + b.m_anLimb[i];
        a.m_anLimb[i] = static_cast<std::uint64_t>(nCarry);
        nCarry >>= 64;
    }
    return a;
}

constexpr StFixed operator-(StFixed a) {
    for (std::uint64_t& rLimb : a.m_anLimb)
        rLimb = ~rLimb;
    return a + StFixed{{1, 0, 0, 0}};
}

constexpr StFixed operator*(StFixed a, std::uint64_t nFactor) {
    UInt128 nCarry = 0;
    for (std::uint64_t& rLimb : a.m_anLimb) {
        nCarry += UInt128{rLimb} * nFactor;
        rLimb = static_cast<std::uint64_t>(nCarry);
        nCarry >>= 64;
    }
    return a;
}

/// What is behind the last unit is cut off, here and below.
constexpr StFixed operator/(StFixed a, std::uint64_t nDivisor) {
    UInt128 nRest = 0;
    for (int i = 3; i >= 0; --i) {
        nRest = nRest << 64 | a.m_anLimb[i];
        a.m_anLimb[i] = static_cast<std::uint64_t>(nRest / nDivisor);
        nRest %= nDivisor;
    }
    return a;
}

/// The product of two numbers from 0 to below 1.
constexpr StFixed FractionProduct(const StFixed& a, const StFixed& b) {
    std::uint64_t anLimb[6] = {};
    for (int i = 0; i < 3; ++i) {
        UInt128 nCarry = 0;
        for (int j = 0; j < 3; ++j) {
            nCarry += UInt128{a.m_anLimb[i]} * b.m_anLimb[j] + anLimb[i + j];
            anLimb[i + j] = static_cast<std::uint64_t>(nCarry);
            nCarry >>= 64;
        }
        anLimb[i + 3] = static_cast<std::uint64_t>(nCarry);
    }
    return {{anLimb[3], anLimb[4], anLimb[5], 0}};
}

/// log(a / b) of numbers below 2^62, whose ratio is from 1/2 to 2.
constexpr StFixed LogOfRatio(std::uint64_t a, std::uint64_t b) {
    const StFixed one{{0, 0, 0, 1}};
    const StFixed w = one * (a > b ? a - b : b - a) / (a + b);
    const StFixed square = FractionProduct(w, w);
    StFixed sum;
    StFixed power = w;
    for (std::uint64_t n = 1; !power.IsZero(); n += 2) {
        sum = sum + power / n;
        power = FractionProduct(power, square);
    }
    return a > b ? sum + sum : -(sum + sum);
}

constexpr StFixed cstLogOf2 = LogOfRatio(2, 1);

/// The nearest double, to even where two are.
double Rounded(StFixed a) {
    const bool bNegative = a.IsNegative();
    if (bNegative)
        a = -a;
    int nExponent = 0;
    for (; !a.IsZero() && a.m_anLimb[3] >> 63 == 0; --nExponent)
        a = a + a;
    // The highest 64 bits, the last telling of all behind it, are rounded to 53.
    const bool bRest = (a.m_anLimb[0] | a.m_anLimb[1] | a.m_anLimb[2]) != 0;
    const double dMagnitude =
        std::ldexp(static_cast<double>(a.m_anLimb[3] | (bRest ? 1U : 0U)), nExponent);
    return bNegative ? -dMagnitude : dMagnitude;
}

/// The logarithm of 2^nExponent a / b.
double LogInIntegers(int nExponent, std::uint64_t a, std::uint64_t b) {
    const StFixed whole = cstLogOf2 * static_cast<std::uint64_t>(std::abs(nExponent));
    return Rounded((nExponent < 0 ? -whole : whole) + LogOfRatio(a, b));
}

// The table

constexpr double PowerOfHalf(int n) {
    return n == 0 ? 1.0 : 0.5 * PowerOfHalf(n - 1);
}

/// A number of magnitude below 1 as two doubles, the first with this many bits behind the point:
/// few enough for exact sums.
constexpr StPair Split(const StFixed& a, int nBits) {
    const StFixed magnitude = a.IsNegative() ? -a : a;
    const double dSign = a.IsNegative() ? -1.0 : 1.0;
    const std::uint64_t nHigh = magnitude.m_anLimb[2] >> (64 - nBits);
    const std::uint64_t nLow =
        magnitude.m_anLimb[2] << nBits | magnitude.m_anLimb[1] >> (64 - nBits);
    return {dSign * static_cast<double>(nHigh) * PowerOfHalf(nBits),
            dSign * static_cast<double>(nLow) * PowerOfHalf(nBits + 64)};
}

static_assert(Split(cstLogOf2, 42).m_dHigh == LogarithmPairs::cdLogOf2High);
static_assert(Split(cstLogOf2, 42).m_dLow == LogarithmPairs::cdLogOf2Low);

constexpr bool IsHalved(int i) {
    return i >= 106;
}

/// 256 c: the reciprocal of an interval's middle, (513 + 2 i) / 512 or half of that.
constexpr std::uint64_t Reciprocal(int i) {
    const std::uint64_t nMiddle = 513 + 2 * static_cast<std::uint64_t>(i);
    const std::uint64_t nOne = IsHalved(i) ? 256 * 1024 : 256 * 512;
    return i == 0 ? 256 : (nOne + nMiddle / 2) / nMiddle;
}

constexpr double Factor(int i) {
    return static_cast<double>(Reciprocal(i)) * PowerOfHalf(IsHalved(i) ? 9 : 8);
}

template <int i>
constexpr StPair cstMinusLog = Split(LogOfRatio(256, Reciprocal(i)), 52);

template <int... i>
constexpr LogarithmPairs::StTable MakeTable(std::integer_sequence<int, i...>) {
    return {{Factor(i)...},
            {(IsHalved(i) ? 1.0 : 0.0)...},
            {cstMinusLog<i>.m_dHigh...},
            {cstMinusLog<i>.m_dLow...}};
}

constexpr LogarithmPairs::StTable cstTable =
    MakeTable(std::make_integer_sequence<int, cnIntervals>());

/// z at the beginning of an interval, nEnd 0, and at its end, 1.
constexpr double ZAt(int i, int nEnd) {
    return (256 + i + nEnd) / 256.0 * Factor(i) - 1.0;
}

constexpr double Magnitude(double d) {
    return d < 0.0 ? -d : d;
}

/// What the quick way leans on: how large z is, and that it is not above log c.
constexpr bool IsAsTold(int i) {
    const double dFirst = Magnitude(ZAt(i, 0));
    const double dLast = Magnitude(ZAt(i, 1));
    const double dMost = dFirst > dLast ? dFirst : dLast;
    if (Reciprocal(i) == 256)
        return (i == 0 || i == cnIntervals - 1) && dMost <= PowerOfHalf(8);
    const double dExact = IsHalved(i) ? PowerOfHalf(8) : PowerOfHalf(7); // 53 bits
    return dMost < dExact && dMost < 0.0048 && dMost < Magnitude(cstTable.m_adHigh[i]);
}

constexpr bool AreAsTold() {
    for (int i = 0; i < cnIntervals; ++i)
        if (!IsAsTold(i))
            return false;
    return true;
}
static_assert(AreAsTold());

// The two ways

/// The logarithm of 2^nMoreExponent x in integers.
double LogInIntegers(double x, int nMoreExponent) {
    constexpr int cnBits = 52;
    constexpr std::uint64_t cnHiddenBit = std::uint64_t{1} << cnBits;
    std::uint64_t nBits = 0;
    std::memcpy(&nBits, &x, sizeof x);
    const bool bHalved = IsHalved(static_cast<int>(nBits >> (cnBits - 8) & (cnIntervals - 1)));
    const int nExponent = static_cast<int>(nBits >> cnBits) - 1023 + (bHalved ? 1 : 0);
    return LogInIntegers(nExponent + nMoreExponent, (nBits & (cnHiddenBit - 1)) | cnHiddenBit,
                         bHalved ? 2 * cnHiddenBit : cnHiddenBit);
}

double LogOfNormal(double x, int nMoreExponent) {
    const StPair sum = LogarithmPairs::LogOfNormal(x, nMoreExponent);
    const double dLess = RoundedLess(sum);
    return dLess == RoundedMore(sum) ? dLess : LogInIntegers(x, nMoreExponent);
}

} // namespace

const LogarithmPairs::StTable LogarithmPairs::g_Table = cstTable;

double CorrectLog(double x) noexcept {
    if (x >= std::numeric_limits<double>::min() && x <= std::numeric_limits<double>::max())
        return LogOfNormal(x, 0);
    if (x > 0.0 && x < 1.0)
        return LogOfNormal(x / PowerOfHalf(64), -64);
    if (x < 0.0)
        return std::numeric_limits<double>::quiet_NaN();
    return x == 0.0 ? -std::numeric_limits<double>::infinity() : x; // infinity and no numbers
}

float CorrectLog(float x) noexcept {
    return static_cast<float>(CorrectLog(static_cast<double>(x)));
}
