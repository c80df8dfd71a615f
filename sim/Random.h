#pragma once

/// Random numbers that are the same on every machine.
///
/// The generator is SplitMix64: the n-th number is a mixing function of seed + n * step, so that a
/// number can be drawn in sequence or looked up by its index. The look-up gives every pixel its own
/// noise whatever the order of rendering. The distributions of the standard library are not used:
/// they differ between implementations.

#include <cstdint>

namespace sim {

class ClRandom {
public:
    explicit ClRandom(std::uint64_t nSeed) : m_nState(nSeed) {}

    /// A generator for one subject, independent of the others drawn from the same seed.
    ClRandom(std::uint64_t nSeed, std::uint64_t nSubject) : m_nState(Derive(nSeed, nSubject)) {}

    std::uint64_t Next() { return Mix(m_nState += ms_nStep); }
    /// The number that the n-th call of Next(), from 0, gives on a fresh generator of this seed.
    static std::uint64_t Lookup(std::uint64_t nSeed, std::uint64_t n) {
        return Mix(nSeed + (n + 1) * ms_nStep);
    }
    /// A seed that belongs to a subject of another seed.
    static std::uint64_t Derive(std::uint64_t nSeed, std::uint64_t nSubject) {
        return Mix(Mix(nSeed + ms_nStep) ^ Mix(nSubject * ms_nStep + 1));
    }

    /// 0 inclusive to 1 exclusive, a multiple of 2^-53.
    double Uniform() { return ToUniform(Next()); }
    double Uniform(double dFrom, double dTo) { return dFrom + (dTo - dFrom) * Uniform(); }
    /// dMiddle - dReach to dMiddle + dReach.
    double Around(double dMiddle, double dReach) {
        return Uniform(dMiddle - dReach, dMiddle + dReach);
    }
    /// nFrom to nTo, both inclusive; the bias of the remainder is below 2^-32 for small ranges.
    int Integer(int nFrom, int nTo) {
        const auto nCount = static_cast<std::uint64_t>(static_cast<std::int64_t>(nTo) - nFrom + 1);
        return nFrom + static_cast<int>(Next() % nCount);
    }
    double Normal() { return ToNormal(Next()); }

    static double ToUniform(std::uint64_t n) {
        return static_cast<double>(n >> 11) * (1.0 / 9007199254740992.0);
    }
    /// Mean 0 and variance 1, nearly normal: the sum of four uniform 16-bit numbers, which ends at
    /// 3.46 sigma. Noise of a sensor needs no longer tail, and integers add up exactly.
    static double ToNormal(std::uint64_t n);

private:
    static constexpr std::uint64_t ms_nStep = 0x9E3779B97F4A7C15U;
    static std::uint64_t Mix(std::uint64_t n) {
        n = (n ^ (n >> 30)) * 0xBF58476D1CE4E5B9U;
        n = (n ^ (n >> 27)) * 0x94D049BB133111EBU;
        return n ^ (n >> 31);
    }

    std::uint64_t m_nState;
};

/// A smooth random field over the plane: independent values at the knots of a square grid, cubic
/// in between. Values are uniform from -1 to 1 at the knots.
class ClNoiseField {
public:
    /// `dCell` is the distance of the knots, in the unit of the positions.
    ClNoiseField(std::uint64_t nSeed, double dCell) : m_nSeed(nSeed), m_dScale(1.0 / dCell) {}

    double At(double x, double y) const;

private:
    double Knot(std::int64_t nColumn, std::int64_t nRow) const;

    std::uint64_t m_nSeed;
    double m_dScale;
};

} // namespace sim
