#pragma once

/// The functionality check as it is defined, one sample at a time, on plain lists of numbers.

#include "ImageProcessing/NaiveLinearFilter.h"
#include "support/Images.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace TestSupport {

inline long WidthOf(const Rows& aIn) {
    return static_cast<long>(aIn.at(0).size());
}
inline long HeightOf(const Rows& aIn) {
    return static_cast<long>(aIn.size());
}

/// An image from a function of each sample.
template <class Function>
Rows EachSample(Rows aImage, Function function) {
    for (std::vector<int>& aLine : aImage)
        for (int& n : aLine)
            n = function(n);
    return aImage;
}

/// An image from a function of the samples of two.
template <class Function>
Rows EachPair(Rows aFirst, const Rows& aSecond, Function function) {
    for (std::size_t y = 0; y < aFirst.size(); ++y)
        for (std::size_t x = 0; x < aFirst[y].size(); ++x)
            aFirst[y][x] = function(aFirst[y][x], aSecond[y][x]);
    return aFirst;
}

/// Sigma 1.5 and its width of 13, limited to an odd one below the smaller side.
inline Rows NaiveGauss(const Rows& aIn) {
    long nWidth = std::min(13L, std::min(WidthOf(aIn), HeightOf(aIn)) - 1);
    nWidth = std::max(1L, nWidth % 2 == 0 ? nWidth - 1 : nWidth);
    std::vector<double> aKernel;
    for (long k = -(nWidth / 2); k <= nWidth / 2; ++k)
        aKernel.push_back(std::exp(-static_cast<double>(k * k) / 4.5) * 0.3989422804014327 / 1.5);
    return NaiveXY(aIn, NaiveTaps(aKernel), false);
}

/// The mean over the part of a square that lies in the image; a copy where the square is wider
/// than the image.
inline Rows NaiveSquareMean(const Rows& aIn, long nWidth) {
    if (nWidth > WidthOf(aIn) || nWidth > HeightOf(aIn))
        return aIn;
    return ForEachPixel(aIn, false, [&](long x, long y) {
        long nSum = 0;
        long nCount = 0;
        for (long j = y - nWidth / 2; j <= y + nWidth / 2; ++j)
            for (long i = x - nWidth / 2; i <= x + nWidth / 2; ++i)
                if (i >= 0 && i < WidthOf(aIn) && j >= 0 && j < HeightOf(aIn)) {
                    nSum += aIn[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)];
                    ++nCount;
                }
        return nSum / nCount;
    });
}

/// What the stretch of `nNoise`..64 to 0..255 makes of a difference.
inline int NaiveStretch(int nDifference, int nNoise) {
    const int nStep = static_cast<int>(255.9 * 4096.0 / (64 - nNoise));
    const double dValue = std::floor((nDifference - nNoise) * nStep / 4096.0);
    return static_cast<int>(std::clamp(dValue, 0.0, 255.0));
}

inline Rows NaiveStressed(const Rows& aIn, int nNoise) {
    const Rows aScaled = EachSample(aIn, [](int n) { return std::min(255, 3 * n); });
    return EachPair(NaiveGauss(aScaled), NaiveSquareMean(aScaled, 51), [&](int a, int b) {
        return NaiveStretch(std::abs(std::clamp(a - b, -128, 127)), nNoise);
    });
}

/// Whether a pixel is one of those not to be looked at.
inline bool IsMasked(long x, long y, long nWidth, long nHeight) {
    const long nLeft = std::min(x, nWidth - 1 - x); // pixels between it and the nearer edge
    const long nTop = std::min(y, nHeight - 1 - y);
    const long i = y - (nHeight - 100);
    return nLeft < 15 || nTop < 15 || y < 25 || (i >= 0 && nLeft < i * 60 / 100);
}

inline Rows NaiveSensorMask(long nWidth, long nHeight) {
    Rows aMask(static_cast<std::size_t>(nHeight),
               std::vector<int>(static_cast<std::size_t>(nWidth)));
    return ForEachPixel(
        aMask, false, [&](long x, long y) { return IsMasked(x, y, nWidth, nHeight) ? 255L : 0L; });
}

inline Rows NaiveFaded(const Rows& aIn) {
    const Rows aBlurred = NaiveSquareMean(NaiveSensorMask(WidthOf(aIn), HeightOf(aIn)), 21);
    return EachPair(aIn, aBlurred, [](int a, int b) { return std::max(0, a - b); });
}

/// The image of a run.
inline Rows NaiveDefects(const Rows& aIn, int nNoise) {
    return NaiveFaded(NaiveStressed(EachSample(aIn, [](int n) { return 255 - n; }), nNoise));
}

inline double NaiveLevel(const Rows& aDefects) {
    long nWhite = 0;
    long nSum = 0;
    for (const std::vector<int>& aLine : aDefects)
        for (int n : aLine) {
            nWhite += n == 255 ? 1 : 0;
            nSum += n;
        }
    const double dMean =
        static_cast<double>(nSum) / static_cast<double>(WidthOf(aDefects) * HeightOf(aDefects));
    return std::min(100.0, static_cast<double>(nWhite) * 0.5 + dMean * 10.0);
}

} // namespace TestSupport
