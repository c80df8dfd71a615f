#pragma once

/// The local stretch as it is defined: every pixel by itself, on plain lists of numbers.

#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TestSupport {

struct StLocalStretch {
    long m_nWidth = 5;       ///< of the rank filters
    long m_nSmoothWidth = 5; ///< of the means
    long m_nMinContrast = 5;
    bool m_bMinSmoothing = true;
    bool m_bMaxSmoothing = false;
};

/// `function(sample)` for all samples of a window around (x, y), as far as it is in the image.
template <class Function>
void ForWindow(const Rows& aIn, long nWidth, long x, long y, Function function) {
    const auto nRight = static_cast<long>(aIn[0].size()) - 1;
    const auto nBottom = static_cast<long>(aIn.size()) - 1;
    for (long v = std::max(0L, y - nWidth / 2); v <= std::min(nBottom, y + nWidth / 2); ++v)
        for (long u = std::max(0L, x - nWidth / 2); u <= std::min(nRight, x + nWidth / 2); ++u)
            function(aIn[static_cast<std::size_t>(v)][static_cast<std::size_t>(u)]);
}

template <class PixelAt>
Rows ForPixels(const Rows& aIn, PixelAt pixelAt) {
    Rows aOut = aIn;
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x)
            aOut[y][x] = pixelAt(static_cast<long>(x), static_cast<long>(y));
    return aOut;
}

inline Rows NaiveMin(const Rows& aIn, long nWidth) {
    return ForPixels(aIn, [&](long x, long y) {
        int nMin = 255;
        ForWindow(aIn, nWidth, x, y, [&](int n) { nMin = std::min(nMin, n); });
        return nMin;
    });
}

inline Rows NaiveMax(const Rows& aIn, long nWidth) {
    return ForPixels(aIn, [&](long x, long y) {
        int nMax = 0;
        ForWindow(aIn, nWidth, x, y, [&](int n) { nMax = std::max(nMax, n); });
        return nMax;
    });
}

/// The mean of a window; one that is wider than the image leaves it as it is, and one of width 3
/// is rounded in fixed point.
inline Rows NaiveMid(const Rows& aIn, long nWidth) {
    if (nWidth > static_cast<long>(aIn.size()) || nWidth > static_cast<long>(aIn[0].size()))
        return aIn;
    return ForPixels(aIn, [&](long x, long y) {
        long nSum = 0;
        long nCount = 0;
        ForWindow(aIn, nWidth, x, y, [&](int n) {
            nSum += n;
            ++nCount;
        });
        if (nWidth != 3)
            return static_cast<int>(nSum / nCount);
        return static_cast<int>(nCount == 4   ? (nSum + 2) >> 2
                                : nCount == 6 ? ((nSum + 3) * 682) >> 12
                                              : ((nSum + 4) * 455) >> 12);
    });
}

/// Darkest and brightest sample that remain when a thousandth is set aside at either end.
inline std::pair<int, int> NaiveGlobalRange(const Rows& aIn) {
    std::vector<int> aAll;
    for (const std::vector<int>& aRow : aIn)
        aAll.insert(aAll.end(), aRow.begin(), aRow.end());
    std::sort(aAll.begin(), aAll.end());
    const auto nAside = static_cast<std::size_t>(0.001 * static_cast<double>(aAll.size()));
    return {aAll[nAside], aAll[aAll.size() - 1 - nAside]};
}

/// A sample of a range of `nSpan` values that begins at `nFrom`, on 0 to 255: the quotient
/// truncated, the product rounded down.
inline int NaiveStretch(int n, int nFrom, int nSpan) {
    const double dFactor = std::trunc(16711680.0 / nSpan);
    return static_cast<int>(std::clamp(std::floor(dFactor * (n - nFrom) / 65536.0), 0.0, 255.0));
}

/// Minimum and maximum of the neighbourhood of every pixel.
struct StNaiveLimits {
    Rows m_aMin, m_aMax;
};

inline StNaiveLimits NaiveLimits(const Rows& aIn, const StLocalStretch& s) {
    StNaiveLimits Limits = {NaiveMin(aIn, s.m_nWidth), NaiveMax(aIn, s.m_nWidth)};
    if (s.m_bMinSmoothing)
        Limits.m_aMin = NaiveMid(Limits.m_aMin, s.m_nSmoothWidth | 1);
    if (s.m_bMaxSmoothing)
        Limits.m_aMax = NaiveMid(Limits.m_aMax, s.m_nSmoothWidth | 1);
    return Limits;
}

/// Every pixel between its limits, or between the global ones where they are too close.
inline Rows NaiveStretched(const Rows& aIn, const StNaiveLimits& Limits, long nMinContrast) {
    const auto [nLow, nHigh] = NaiveGlobalRange(aIn);
    Rows aOut = aIn;
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x) {
            const int nMin = Limits.m_aMin[y][x];
            const int d = Limits.m_aMax[y][x] - nMin;
            aOut[y][x] = d > nMinContrast && d + 1 != 0
                             ? NaiveStretch(aIn[y][x], nMin, d + 1)
                             : NaiveStretch(aIn[y][x], nLow, nHigh - nLow + 1);
        }
    return aOut;
}

} // namespace TestSupport
