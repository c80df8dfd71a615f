#include "Math/Logarithm.h"

// x = 2^e m, with m from 0.707 to 1.4141, and a table over intervals of m has c near 1 / m, a
// multiple of 2^-8. Then
//
//     log x = e log 2 - log c + log(1 + z),    z = m c - 1,    |z| < 0.0048,
//
// where z is exact: m c is a product of integers, and what it differs from 1 by has 53 bits at
// most. In the two intervals beside 1 c is 1, so that small results are log(1 + z) alone.
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

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

namespace {

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

/// A number of magnitude below 1 as two doubles, the first with so few bits that sums are exact.
struct StPair {
    double m_dHigh;
    double m_dLow;
};

constexpr double PowerOfHalf(int n) {
    return n == 0 ? 1.0 : 0.5 * PowerOfHalf(n - 1);
}

constexpr double cdTestedError = PowerOfHalf(63);

constexpr StPair Split(const StFixed& a, int nBits) {
    const StFixed magnitude = a.IsNegative() ? -a : a;
    const double dSign = a.IsNegative() ? -1.0 : 1.0;
    const std::uint64_t nHigh = magnitude.m_anLimb[2] >> (64 - nBits);
    const std::uint64_t nLow =
        magnitude.m_anLimb[2] << nBits | magnitude.m_anLimb[1] >> (64 - nBits);
    return {dSign * static_cast<double>(nHigh) * PowerOfHalf(nBits),
            dSign * static_cast<double>(nLow) * PowerOfHalf(nBits + 64)};
}

constexpr StPair cstPairOf2 = Split(cstLogOf2, 42); // its product with an exponent is exact

constexpr int cnMantissaBits = 52;
constexpr std::uint64_t cnHiddenBit = std::uint64_t{1} << cnMantissaBits;
constexpr int cnIntervals = 256;
/// Intervals from 1.4141 on are taken as halves of themselves, with the next exponent.
constexpr int cnFirstHalved = 106;

/// 256 c: the reciprocal of an interval's middle, (513 + 2 i) / 512 or half of that.
constexpr std::uint64_t Reciprocal(int i) {
    const std::uint64_t nMiddle = 513 + 2 * static_cast<std::uint64_t>(i);
    const std::uint64_t nOne = i < cnFirstHalved ? 256 * 512 : 256 * 1024;
    return i == 0 ? 256 : (nOne + nMiddle / 2) / nMiddle;
}

struct StInterval {
    std::uint64_t m_nReciprocal; ///< 256 c
    StPair m_Log;                ///< -log c
};

template <int i>
constexpr StInterval cstInterval = {Reciprocal(i), Split(LogOfRatio(256, Reciprocal(i)), 52)};

struct StTable {
    StInterval m_aIntervals[cnIntervals];
};

template <int... i>
constexpr StTable MakeTable(std::integer_sequence<int, i...>) {
    return {{cstInterval<i>...}};
}

constexpr StTable cstTable = MakeTable(std::make_integer_sequence<int, cnIntervals>());

/// z at the beginning of an interval, nEnd 0, and at its end, 1.
constexpr double ZAt(int i, int nEnd) {
    const double dHalved = i < cnFirstHalved ? 1.0 : 0.5;
    return (256 + i + nEnd) / 256.0 * dHalved * static_cast<double>(Reciprocal(i)) / 256.0 - 1.0;
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
    const double dExact = i < cnFirstHalved ? PowerOfHalf(7) : PowerOfHalf(8); // 53 bits
    return dMost < dExact && dMost < 0.0048 &&
           dMost < Magnitude(cstTable.m_aIntervals[i].m_Log.m_dHigh);
}

constexpr bool AreAsTold() {
    for (int i = 0; i < cnIntervals; ++i)
        if (!IsAsTold(i))
            return false;
    return true;
}
static_assert(AreAsTold());

// The quick way

/// 1 / (256 m_nOne), for mantissas taken as they are and as halves.
constexpr double cadUnit[2] = {PowerOfHalf(cnMantissaBits + 8), PowerOfHalf(cnMantissaBits + 9)};

/// A positive double as 2^m_nExponent * m_nMantissa / m_nOne, the quotient from 0.707 to 1.4141.
struct StParts {
    explicit StParts(double x) {
        std::uint64_t nBits = 0;
        std::memcpy(&nBits, &x, sizeof nBits);
        m_nInterval = static_cast<int>(nBits >> (cnMantissaBits - 8) & (cnIntervals - 1));
        const int nHalved = m_nInterval >= cnFirstHalved;
        m_nExponent = static_cast<int>(nBits >> cnMantissaBits) - 1023 + nHalved;
        m_nMantissa = (nBits & (cnHiddenBit - 1)) | cnHiddenBit;
        m_nOne = cnHiddenBit << nHalved;
        m_dUnit = cadUnit[nHalved];
    }

    int m_nInterval;
    int m_nExponent;
    std::uint64_t m_nMantissa;
    std::uint64_t m_nOne;
    double m_dUnit; ///< 1 / (256 m_nOne)
};

/// The exact sum of two doubles, rounded and what the rounding took. The first is 0 or not the
/// smaller.
StPair ExactSum(double a, double b) {
    const double dSum = a + b;
    return {dSum, b - (dSum - a)};
}

/// 1/3 - z/4 + z^2/5 - ... + z^6/9
double Tail(double z) {
    double dSum = 1.0 / 9.0;
    for (const double d : {-1.0 / 8.0, 1.0 / 7.0, -1.0 / 6.0, 1.0 / 5.0, -1.0 / 4.0, 1.0 / 3.0})
        dSum = dSum * z + d;
    return dSum;
}

/// The half of z^2, negative: z is split at 2^-34, so that the higher part has 26 bits at most and
/// its square is exact.
StPair HalfSquare(double z) {
    constexpr double cdSplitter = 0x1.8p18; // its unit is 2^-34
    const double dHigh = (z + cdSplitter) - cdSplitter;
    return {-0.5 * dHigh * dHigh, -0.5 * (z - dHigh) * (z + dHigh)};
}

/// A double next to the logarithm, and the rest.
StPair LogInPairs(const StParts& Parts) {
    const StInterval& rInterval = cstTable.m_aIntervals[Parts.m_nInterval];
    const double z = static_cast<double>(static_cast<std::int64_t>(
                         Parts.m_nMantissa * rInterval.m_nReciprocal - 256 * Parts.m_nOne)) *
                     Parts.m_dUnit;
    const double dExponent = Parts.m_nExponent;
    const StPair half = HalfSquare(z);
    const StPair whole = ExactSum(dExponent * cstPairOf2.m_dHigh, rInterval.m_Log.m_dHigh);
    const StPair first = ExactSum(whole.m_dHigh, z);
    const StPair second = ExactSum(first.m_dHigh, half.m_dHigh);
    const double dRest = dExponent * cstPairOf2.m_dLow + rInterval.m_Log.m_dLow + whole.m_dLow +
                         first.m_dLow + second.m_dLow + half.m_dLow + z * z * z * Tail(z);
    return ExactSum(second.m_dHigh, dRest);
}

double LogOfNormal(double x, int nMoreExponent) {
    StParts Parts(x);
    Parts.m_nExponent += nMoreExponent;
    const StPair sum = LogInPairs(Parts);
    const double dError = sum.m_dHigh * cdTestedError;
    const double dResult = sum.m_dHigh + (sum.m_dLow + dError);
    if (dResult == sum.m_dHigh + (sum.m_dLow - dError))
        return dResult;
    return LogInIntegers(Parts.m_nExponent, Parts.m_nMantissa, Parts.m_nOne);
}

} // namespace

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
