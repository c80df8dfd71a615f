#pragma once

/// The linear filters as they are defined: one sample at a time, straight from the definition, on
/// plain lists of numbers.

#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TestSupport {

using Taps = std::vector<long>;

/// Taps of 4095 for 1.0 from a kernel of real numbers: divided by the sum, or, where the signs are
/// mixed, by twice the larger of the sums of either sign.
inline Taps NaiveTaps(const std::vector<double>& aKernel) {
    double dPositive = 0.0;
    double dNegative = 0.0;
    double dTotal = 0.0;
    for (double d : aKernel) {
        dTotal += d;
        dPositive += d > 0.0 ? d : 0.0;
        dNegative += d < 0.0 ? -d : 0.0;
    }
    const double dNorm =
        dPositive - dTotal > 0.0001 ? 2.0 * std::max(dPositive, dNegative) : dTotal;
    Taps aTaps;
    for (double d : aKernel)
        aTaps.push_back(static_cast<long>(std::trunc(d / dNorm * 4095.0)));
    return aTaps;
}

/// A sample of an image whose border samples repeat without end.
inline long Repeated(const Rows& aIn, long x, long y) {
    const auto nLastX = static_cast<long>(aIn[0].size()) - 1;
    const auto nLastY = static_cast<long>(aIn.size()) - 1;
    return aIn[static_cast<std::size_t>(std::clamp(y, 0L, nLastY))]
              [static_cast<std::size_t>(std::clamp(x, 0L, nLastX))];
}

/// What a sample of 8 bits keeps of a number.
inline int Stored(long n, bool bSigned) {
    const int nLow = static_cast<int>(n & 0xFF);
    return bSigned && nLow > 127 ? nLow - 256 : nLow;
}

/// The whole of an image from a function of the position.
template <class Function>
Rows ForEachPixel(const Rows& aIn, bool bSigned, Function function) {
    Rows aOut = aIn;
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x)
            aOut[y][x] = Stored(function(static_cast<long>(x), static_cast<long>(y)), bSigned);
    return aOut;
}

inline long Middle(const Taps& aTaps) {
    return static_cast<long>(aTaps.size()) / 2;
}

inline long SumAlongLine(const Rows& aIn, const Taps& aTaps, long x, long y) {
    long nSum = 0;
    for (long i = 0; i < static_cast<long>(aTaps.size()); ++i)
        nSum += aTaps[static_cast<std::size_t>(i)] * Repeated(aIn, x + i - Middle(aTaps), y);
    return nSum;
}

inline long SumAlongColumn(const Rows& aIn, const Taps& aTaps, long x, long y) {
    long nSum = 0;
    for (long i = 0; i < static_cast<long>(aTaps.size()); ++i)
        nSum += aTaps[static_cast<std::size_t>(i)] * Repeated(aIn, x, y + i - Middle(aTaps));
    return nSum;
}

inline Rows NaiveX(const Rows& aIn, const Taps& aTaps, bool bSigned) {
    return ForEachPixel(aIn, bSigned,
                        [&](long x, long y) { return SumAlongLine(aIn, aTaps, x, y) / 4096; });
}

inline Rows NaiveY(const Rows& aIn, const Taps& aTaps, bool bSigned) {
    return ForEachPixel(aIn, bSigned,
                        [&](long x, long y) { return SumAlongColumn(aIn, aTaps, x, y) / 4096; });
}

/// The two-dimensional sum over all pairs of taps, divided once.
inline Rows NaiveXY(const Rows& aIn, const Taps& aTaps, bool bSigned) {
    return ForEachPixel(aIn, bSigned, [&](long x, long y) {
        long nSum = 0;
        for (long i = 0; i < static_cast<long>(aTaps.size()); ++i) {
            const long nAt =
                std::clamp(x + i - Middle(aTaps), 0L, static_cast<long>(aIn[0].size()) - 1);
            nSum += aTaps[static_cast<std::size_t>(i)] * SumAlongColumn(aIn, aTaps, nAt, y);
        }
        return nSum / (4096L * 4096L);
    });
}

/// Along (dx, -dy), or across it, from the middle of each pixel on, in 1/128 pixel per step.
inline Rows NaiveDirected(const Rows& aIn, const Rows& aDx, const Rows& aDy, const Taps& aTaps,
                          bool bOrtho, bool bSigned) {
    return ForEachPixel(aIn, bSigned, [&](long x, long y) {
        const auto nDx = aDx[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
        const auto nDy = aDy[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
        const double dStepX = (bOrtho ? nDy : nDx) / 128.0;
        const double dStepY = (bOrtho ? nDx : -nDy) / 128.0;
        long nSum = 0;
        for (long i = 0; i < static_cast<long>(aTaps.size()); ++i) {
            const auto dAt = static_cast<double>(i - Middle(aTaps));
            const double dX = std::floor(static_cast<double>(x) + 0.5 + dAt * dStepX);
            const double dY = std::floor(static_cast<double>(y) + 0.5 + dAt * dStepY);
            nSum += aTaps[static_cast<std::size_t>(i)] *
                    Repeated(aIn, static_cast<long>(dX), static_cast<long>(dY));
        }
        return nSum / 4096;
    });
}

/// The filter of a mode along lines (1), columns (2) or both (3).
inline Rows NaiveFiltered(long nMode, const Rows& aIn, const Taps& aTaps, bool bSigned) {
    return nMode == 1   ? NaiveX(aIn, aTaps, bSigned)
           : nMode == 2 ? NaiveY(aIn, aTaps, bSigned)
                        : NaiveXY(aIn, aTaps, bSigned);
}

/// Sizes that meet every shape of a loop: single lines and columns, below, at and above the
/// rounds of vectors, wide and high.
struct StSize {
    int m_nWidth, m_nHeight;
};

inline constexpr StSize caOddSizes[] = {{1, 1},  {1, 13}, {13, 1},  {2, 2},   {3, 7},
                                        {7, 3},  {8, 9},  {15, 11}, {16, 6},  {17, 33},
                                        {31, 5}, {33, 8}, {50, 21}, {67, 10}, {9, 64}};

} // namespace TestSupport
