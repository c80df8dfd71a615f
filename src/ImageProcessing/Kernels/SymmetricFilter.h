#pragma once

// Lines of a symmetric filter of few taps, none of them negative, on bytes: a Gaussian's. All of it
// is exact, in the narrowest numbers.
//
// Across lines, a tap t of 1/4096 is taken apart into t / 16 and t % 16, and with a the sum of the
// products of the first and b of the second ones,
//
//     floor((16 a + b) / 4096) = floor((a + floor(b / 16)) / 256)
//
// holds in 16 bits: taps add up to 4096 at most, so that a <= 256 * 255 and a + b / 16, a sixteenth
// of the whole sum, as well; and b <= 15 * 13 * 255, which is below 2^16. The two samples of a pair
// of equal taps are added first.
//
// Along the sums of columns, 16 a + b, the sum of all products is at most 4096^2 * 255, which is
// below 2^32.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Kernels {

/// The taps from the middle on.
class ClSymmetricTaps {
public:
    static constexpr int cnLargestHalf = 6;

    ClSymmetricTaps() = default;
    /// Half() is -1 for taps that are not of this kind.
    ClSymmetricTaps(const long* pTaps, long nTaps) {
        if (!AreSymmetric(pTaps, nTaps))
            return;
        m_nHalf = static_cast<int>(nTaps / 2);
        for (int k = 0; k <= m_nHalf; ++k) {
            const auto nTap = static_cast<std::uint32_t>(pTaps[m_nHalf + k]);
            const auto i = static_cast<std::size_t>(k);
            m_aWhole[i] = static_cast<std::uint16_t>(nTap / 16);
            m_aPart[i] = static_cast<std::uint16_t>(nTap % 16);
            m_aTaps[i] = nTap;
        }
    }

    int Half() const { return m_nHalf; }

    using Words = std::array<std::uint16_t, cnLargestHalf + 1>;
    Words m_aWhole = {};
    Words m_aPart = {};
    std::array<std::uint32_t, cnLargestHalf + 1> m_aTaps = {};

private:
    static bool AreSymmetric(const long* pTaps, long nTaps) {
        long nSum = 0;
        if (nTaps % 2 == 0 || nTaps > 2 * cnLargestHalf + 1)
            return false;
        for (long i = 0; i < nTaps; ++i) {
            if (pTaps[i] != pTaps[nTaps - 1 - i] || pTaps[i] < 0 || pTaps[i] > 4096)
                return false;
            nSum += pTaps[i];
        }
        return nSum <= 4096;
    }

    int m_nHalf = -1;
};

// What becomes of a and b, and of the sample p in the middle

struct StQuotientOfSum {
    static unsigned char Of(std::uint16_t a, std::uint16_t b, unsigned char) {
        return static_cast<unsigned char>(static_cast<std::uint16_t>(a + (b >> 4)) >> 8);
    }
};

/// With the quotient l, 2 p - l, limited to 0 to 255: unsharp masking.
struct StSharpened {
    static unsigned char Of(std::uint16_t a, std::uint16_t b, unsigned char p) {
        const auto nValue = static_cast<std::int16_t>(2 * p - StQuotientOfSum::Of(a, b, p));
        const std::int16_t nFloor = nValue < 0 ? std::int16_t{0} : nValue;
        return static_cast<unsigned char>(nFloor > 255 ? std::int16_t{255} : nFloor);
    }
};

struct StWholeSum {
    static std::uint32_t Of(std::uint16_t a, std::uint16_t b, unsigned char) { return 16U * a + b; }
};

/// Lines have at least one round of samples.
constexpr long cnSymmetricRound = 64;

/// Calls `range(from, rounds)` for whole rounds, and for a last one that ends with the line; from
/// one place, so that it is compiled once.
template <class Range>
void InRounds(long nSamples, Range range) {
    long nFrom = 0;
    long nRounds = nSamples / cnSymmetricRound;
    for (;;) {
        range(nFrom, nRounds);
        if (nFrom + nRounds * cnSymmetricRound == nSamples)
            return;
        nFrom = nSamples - cnSymmetricRound;
        nRounds = 1;
    }
}

/// `ppLines` are the lines of the taps; `pOut` is none of them. There is room for nHalf taps on
/// either side.
template <int nHalf, class Finish, class Out>
struct StFilterLines {
    static void Run(const ClSymmetricTaps* pTaps, const unsigned char* const* ppLines,
                    long nSamples, Out* pOut) {
        const ClSymmetricTaps Taps = *pTaps;
        const unsigned char* apLines[2 * nHalf + 1];
        std::fill_n(apLines, 2 * nHalf + 1, ppLines[Taps.Half()]);
        std::copy_n(ppLines, 2 * Taps.Half() + 1, apLines + nHalf - Taps.Half());
        InRounds(nSamples, [&](long nFrom, long nRounds) {
            Range(Taps, apLines, nFrom, nRounds * cnSymmetricRound, pOut);
        });
    }

private:
    static void Range(const ClSymmetricTaps& Taps, const unsigned char* const* ppLines, long nFrom,
                      long nSamples, Out* __restrict pOut) {
        const unsigned char* apLines[2 * nHalf + 1];
        std::copy_n(ppLines, 2 * nHalf + 1, apLines);
        const ClSymmetricTaps::Words aWhole = Taps.m_aWhole;
        const ClSymmetricTaps::Words aPart = Taps.m_aPart;
        for (long x = nFrom; x < nFrom + nSamples; ++x) {
            const std::uint16_t nMiddle = apLines[nHalf][x];
            auto a = static_cast<std::uint16_t>(nMiddle * aWhole[0]);
            auto b = static_cast<std::uint16_t>(nMiddle * aPart[0]);
            for (int k = 1; k <= nHalf; ++k) {
                const auto i = static_cast<std::size_t>(k);
                const auto nPair =
                    static_cast<std::uint16_t>(apLines[nHalf - k][x] + apLines[nHalf + k][x]);
                a = static_cast<std::uint16_t>(a + static_cast<std::uint16_t>(nPair * aWhole[i]));
                b = static_cast<std::uint16_t>(b + static_cast<std::uint16_t>(nPair * aPart[i]));
            }
            pOut[x] = Finish::Of(a, b, apLines[nHalf][x]);
        }
    }
};

/// Along sums of columns, of which there are nHalf more than samples on either side, from `pSums`
/// on.
template <int nHalf>
struct StFilterSums {
    static void Run(const ClSymmetricTaps* pTaps, const std::uint32_t* pSums, long nSamples,
                    unsigned char* pOut) {
        const ClSymmetricTaps Taps = *pTaps;
        InRounds(nSamples, [&](long nFrom, long nRounds) {
            Range(Taps, pSums, nFrom, nRounds * cnSymmetricRound, pOut);
        });
    }

private:
    static void Range(const ClSymmetricTaps& Taps, const std::uint32_t* pSums, long nFrom,
                      long nSamples, unsigned char* __restrict pOut) {
        const auto aTaps = Taps.m_aTaps;
        for (long x = nFrom; x < nFrom + nSamples; ++x) {
            std::uint32_t nSum = aTaps[0] * pSums[x + nHalf];
            for (int k = 1; k <= nHalf; ++k)
                nSum += aTaps[static_cast<std::size_t>(k)] *
                        (pSums[x + nHalf - k] + pSums[x + nHalf + k]);
            pOut[x] = static_cast<unsigned char>(nSum >> 24);
        }
    }
};

/// Calls `work(std::integral_constant<int, half>())` for one of two halves: a filter with fewer
/// taps has taps of 0 beside them.
template <class Work>
void WithRoom(int nHalf, Work work) {
    constexpr int cnSmall = 3; // of the scanner's sharpening
    if (nHalf <= cnSmall)
        work(std::integral_constant<int, cnSmall>());
    else
        work(std::integral_constant<int, ClSymmetricTaps::cnLargestHalf>());
}

} // namespace Kernels
