#pragma once

/// The rank filters as they are defined: the samples of one window after the other, put together,
/// sorted or summed.

#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TestSupport {

using Values = std::vector<double>;

/// How far a window reaches along either axis, by mode: lines (1), columns (2) or both (3).
struct StReach {
    StReach(long nMode, long nWidth)
        : m_nX((nMode & 1) != 0 ? nWidth / 2 : 0), m_nY((nMode & 2) != 0 ? nWidth / 2 : 0) {}
    long m_nX, m_nY;
};

inline long LinesOf(const RealRows& aIn) {
    return static_cast<long>(aIn.size());
}

inline long ColumnsOf(const RealRows& aIn) {
    return static_cast<long>(aIn.at(0).size());
}

inline double At(const RealRows& aIn, long x, long y) {
    return aIn.at(static_cast<std::size_t>(y)).at(static_cast<std::size_t>(x));
}

/// The samples of the window that lie in the image.
inline Values CutWindow(const RealRows& aIn, long x, long y, StReach Reach) {
    Values aSamples;
    for (long j = y - Reach.m_nY; j <= y + Reach.m_nY; ++j)
        for (long i = x - Reach.m_nX; i <= x + Reach.m_nX; ++i)
            if (i >= 0 && i < ColumnsOf(aIn) && j >= 0 && j < LinesOf(aIn))
                aSamples.push_back(At(aIn, i, j));
    return aSamples;
}

/// All of the window, with the edge samples repeated beyond the edges.
inline Values RepeatedWindow(const RealRows& aIn, long x, long y, StReach Reach) {
    Values aSamples;
    for (long j = y - Reach.m_nY; j <= y + Reach.m_nY; ++j)
        for (long i = x - Reach.m_nX; i <= x + Reach.m_nX; ++i)
            aSamples.push_back(At(aIn, std::clamp(i, 0L, ColumnsOf(aIn) - 1),
                                  std::clamp(j, 0L, LinesOf(aIn) - 1)));
    return aSamples;
}

/// An image from a function of the position.
template <class Function>
RealRows ForEachPlace(const RealRows& aIn, Function function) {
    RealRows aOut = aIn;
    for (std::size_t y = 0; y < aIn.size(); ++y)
        for (std::size_t x = 0; x < aIn[y].size(); ++x)
            aOut[y][x] = function(static_cast<long>(x), static_cast<long>(y));
    return aOut;
}

inline RealRows NaiveMax(const RealRows& aIn, long nMode, long nWidth) {
    return ForEachPlace(aIn, [&](long x, long y) {
        const Values aSamples = CutWindow(aIn, x, y, StReach(nMode, nWidth));
        return *std::max_element(aSamples.begin(), aSamples.end());
    });
}

inline RealRows NaiveMin(const RealRows& aIn, long nMode, long nWidth) {
    return ForEachPlace(aIn, [&](long x, long y) {
        const Values aSamples = CutWindow(aIn, x, y, StReach(nMode, nWidth));
        return *std::min_element(aSamples.begin(), aSamples.end());
    });
}

/// The extreme of one line by the walk that is told: only the walk says what becomes of a value
/// that is not a number. `takes(a, b)` is whether an entering a takes the place of b.
template <class Takes>
Values WalkedExtremes(const Values& aIn, long nHalf, Takes takes) {
    const long nCount = static_cast<long>(aIn.size());
    const auto at = [&](long i) { return aIn.at(static_cast<std::size_t>(i)); };
    const auto scan = [&](long nFrom, long nTo) {
        double dCurrent = at(nFrom);
        for (long i = nFrom + 1; i <= nTo; ++i)
            dCurrent = takes(at(i), dCurrent) ? at(i) : dCurrent;
        return dCurrent;
    };
    Values aOut;
    double dCurrent = 0.0;
    for (long x = 0; x < nCount; ++x) { // while the window grows, then while it is whole
        const bool bEnters = x + nHalf < nCount;
        if (x == 0)
            dCurrent = scan(0, std::min(nHalf, nCount - 1));
        else if (bEnters && takes(at(x + nHalf), dCurrent))
            dCurrent = at(x + nHalf);
        else if (bEnters && x > nHalf && at(x - nHalf - 1) == dCurrent)
            dCurrent = scan(x - nHalf, x + nHalf);
        aOut.push_back(dCurrent);
    }
    const long nFirst = std::max(nHalf + 1, nCount - nHalf); // where it shrinks, from the end
    for (long x = nCount - 1; x >= nFirst; --x) {
        if (x == nCount - 1)
            dCurrent = scan(x - nHalf, x);
        else if (takes(at(x - nHalf), dCurrent))
            dCurrent = at(x - nHalf);
        aOut[static_cast<std::size_t>(x)] = dCurrent;
    }
    return aOut;
}

inline RealRows NaiveMedian(const RealRows& aIn, long nMode, long nWidth) {
    return ForEachPlace(aIn, [&](long x, long y) {
        Values aSamples = RepeatedWindow(aIn, x, y, StReach(nMode, nWidth));
        const auto middle = aSamples.begin() + static_cast<long>(aSamples.size() / 2);
        std::nth_element(aSamples.begin(), middle, aSamples.end());
        return *middle;
    });
}

/// Integer samples, whose sums a double holds. The quotient is an integer toward zero.
inline double TruncatedMean(const Values& aSamples) {
    long long nSum = 0;
    for (double d : aSamples)
        nSum += static_cast<long long>(d);
    return static_cast<double>(nSum / static_cast<long long>(aSamples.size()));
}

/// Real samples, for sums that are exact in any order.
inline double RealMean(const Values& aSamples) {
    double dSum = 0.0;
    for (double d : aSamples)
        dSum += d;
    return dSum / static_cast<double>(aSamples.size());
}

inline RealRows NaiveMean(const RealRows& aIn, long nMode, long nWidth) {
    return ForEachPlace(aIn, [&](long x, long y) {
        return TruncatedMean(CutWindow(aIn, x, y, StReach(nMode, nWidth)));
    });
}

/// The square of 3 in fixed point, by the number of samples in the image.
inline double FixedPointMean(const Values& aSamples) {
    long nSum = 0;
    for (double d : aSamples)
        nSum += static_cast<long>(d);
    const auto floorOf = [](double d) { return std::floor(d); };
    switch (aSamples.size()) {
    case 4:
        return floorOf(static_cast<double>(nSum + 2) / 4.0);
    case 6:
        return floorOf(static_cast<double>((nSum + 3) * 682) / 4096.0);
    case 9:
        return floorOf(static_cast<double>((nSum + 4) * 455) / 4096.0);
    default:
        ADD_FAILURE() << "a square of 3 with " << aSamples.size() << " samples";
        return 0.0;
    }
}

inline RealRows NaiveMean3x3(const RealRows& aIn) {
    return ForEachPlace(
        aIn, [&](long x, long y) { return FixedPointMean(CutWindow(aIn, x, y, StReach(3, 3))); });
}

/// Sizes that meet every shape of a loop: single lines and columns, below, at and above the
/// rounds of vectors, wide and high; few are divisible by 4.
struct StRankSize {
    int m_nWidth, m_nHeight;
};

inline constexpr StRankSize caRankSizes[] = {{1, 1},   {1, 13}, {13, 1}, {2, 2},   {3, 7},
                                             {7, 3},   {5, 5},  {8, 9},  {15, 11}, {16, 6},
                                             {17, 33}, {31, 5}, {33, 8}, {37, 21}};

} // namespace TestSupport
