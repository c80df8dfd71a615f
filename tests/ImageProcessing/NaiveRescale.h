#pragma once

/// The modes of `ClIpRescale`, defined sample by sample.

#include "ImageProcessing/RescaleCases.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace TestSupport {

/// What is kept of a sum in a byte.
inline int KeptByte(int nSum, bool bSigned) {
    return bSigned ? static_cast<std::int8_t>(nSum) : static_cast<std::uint8_t>(nSum);
}

// Nearest neighbour

/// With one step per axis.
inline Rows NaiveNearest(const Rows& aIn, int nWidth, int nHeight, long long nStepX,
                         long long nStepY) {
    return MakeRows(nWidth, nHeight, [&](int x, int y) {
        const long long nX = (x * nStepX) >> 12;
        const long long nY = (y * nStepY) >> 12;
        return nX < Width(aIn) && nY < Height(aIn) ? At(aIn, nX, nY) : 0;
    });
}

// Bilinear

/// Position, first neighbour and weight of the second, for one axis.
struct StPlace {
    int m_nFirst;
    int m_nSecond;
    int m_nWeight;
};

inline StPlace PlaceOf(int nOut, int nIn, int nOutSize) {
    const int nStep = (nIn << 12) / nOutSize;
    const int nAt = std::max(0, nOut * nStep + (nStep >> 1) - 2048);
    return {std::min(nAt / 4096, nIn - 1), std::min(nAt / 4096 + 1, nIn - 1), nAt % 4096};
}

inline Rows NaiveInterpolated(const Rows& aIn, int nWidth, int nHeight, bool bSigned) {
    return MakeRows(nWidth, nHeight, [&](int x, int y) {
        const StPlace X = PlaceOf(x, Width(aIn), nWidth);
        const StPlace Y = PlaceOf(y, Height(aIn), nHeight);
        int nSum = 0;
        for (int j = 0; j < 2; ++j)
            for (int i = 0; i < 2; ++i) {
                const int nWeightX = i == 0 ? 4096 - X.m_nWeight : X.m_nWeight;
                const int nWeightY = j == 0 ? 4096 - Y.m_nWeight : Y.m_nWeight;
                const int nSample =
                    At(aIn, i == 0 ? X.m_nFirst : X.m_nSecond, j == 0 ? Y.m_nFirst : Y.m_nSecond);
                nSum += (((nWeightY * nWeightX) >> 12) * nSample) >> 12;
            }
        return KeptByte(nSum, bSigned);
    });
}

/// Means along the lines, of cells that cover parts of samples, by the overlap of every cell with
/// every sample.
inline Rows CellMeans(const Rows& aIn, int nWidth) {
    const long long nIn = Width(aIn);
    const long long nStep = nIn * 4096 / nWidth;
    return MakeRows(nWidth, Height(aIn), [&](int x, int y) {
        const long long nFrom = x * nStep;
        const long long nTo = x == nWidth - 1 ? nIn * 4096 : nFrom + nStep;
        long long nSum = 0;
        for (long long k = 0; k < nIn; ++k)
            nSum += std::max(0LL, std::min(nTo, (k + 1) * 4096) - std::max(nFrom, k * 4096)) *
                    At(aIn, k, y);
        return static_cast<int>(nSum / (nTo - nFrom));
    });
}

/// Shrinking axes first, then growing ones.
inline Rows NaiveBiLinear(Rows aRows, int nWidth, int nHeight, bool bSigned) {
    if (nWidth < Width(aRows))
        aRows = CellMeans(aRows, nWidth);
    if (nHeight < Height(aRows))
        aRows = Transposed(CellMeans(Transposed(aRows), nHeight));
    if (nWidth > Width(aRows) || nHeight > Height(aRows))
        aRows = NaiveInterpolated(aRows, nWidth, nHeight, bSigned);
    return aRows;
}

// Bicubic

struct StTypeLimits {
    double m_dLowest;
    double m_dHighest;
};

inline StTypeLimits LimitsOf(unsigned char nType) {
    return nType == ClImage::eInt8 ? StTypeLimits{-128.0, 127.0} : StTypeLimits{0.0, 255.0};
}

/// Where column or line `nOut` of `nOutSize` lies among `nIn`.
inline double CubicPosition(int nOut, int nIn, int nOutSize) {
    return static_cast<double>(nOut) * nIn / nOutSize;
}

inline double RadialKernel(double q, double a) {
    if (q >= 4)
        return 0.0;
    if (q >= 2)
        return (std::sqrt(q) * (q + 8) - 5 * q) * a - 4 * a;
    return (std::sqrt(q) * (a + 2) - (a + 3)) * q + 1;
}

/// One sample of the radial form; `aSamples` are the lines one behind the other.
inline int NaiveRadial(const std::vector<double>& aSamples, int nWidth, double dX, double dY,
                       double a, StTypeLimits Range) {
    const int nX = static_cast<int>(std::floor(dX));
    const int nY = static_cast<int>(std::floor(dY));
    double dSum = 0.0;
    double dKernels = 0.0;
    for (int j = nY - 1; j <= nY + 2; ++j)
        for (int i = nX - 1; i <= nX + 2; ++i) {
            const int nIndex = j * nWidth + i;
            if (nIndex < 0 || nIndex >= static_cast<int>(aSamples.size()))
                continue;
            const double dFromX = (i - nX) - (dX - nX);
            const double dFromY = (j - nY) - (dY - nY);
            const double dKernel = RadialKernel(dFromX * dFromX + dFromY * dFromY, a);
            dSum += dKernel * aSamples[static_cast<std::size_t>(nIndex)];
            dKernels += dKernel;
        }
    if (dKernels == 0.0 || !std::isfinite(dKernels))
        return 0;
    return static_cast<int>(std::clamp(dSum / dKernels, Range.m_dLowest, Range.m_dHighest));
}

inline Rows NaiveRadial(const Rows& aIn, int nWidth, int nHeight, double a, StTypeLimits Range) {
    std::vector<double> aSamples;
    for (const std::vector<int>& aLine : aIn)
        aSamples.insert(aSamples.end(), aLine.begin(), aLine.end());
    return MakeRows(nWidth, nHeight, [&](int x, int y) {
        return NaiveRadial(aSamples, Width(aIn), CubicPosition(x, Width(aIn), nWidth),
                           CubicPosition(y, Height(aIn), nHeight), a, Range);
    });
}

inline double CubicKernel(double t, double a) {
    t = std::fabs(t);
    if (t < 1.0)
        return (a + 2) * t * t * t - (a + 3) * t * t + 1;
    if (t < 2.0)
        return a * t * t * t - 5 * a * t * t + 8 * a * t - 4 * a;
    return 0.0;
}

/// One sample of the separable form, not yet limited and truncated.
inline double NaiveSeparable(const Rows& aIn, double dX, double dY, double a) {
    double dSum = 0.0;
    for (int j = -1; j <= 2; ++j)
        for (int i = -1; i <= 2; ++i) {
            const double dAtX = std::floor(dX) + i;
            const double dAtY = std::floor(dY) + j;
            const int nX = std::clamp(static_cast<int>(dAtX), 0, Width(aIn) - 1);
            const int nY = std::clamp(static_cast<int>(dAtY), 0, Height(aIn) - 1);
            dSum += CubicKernel(dAtX - dX, a) * CubicKernel(dAtY - dY, a) * At(aIn, nX, nY);
        }
    return dSum;
}

/// Whether each sample is that of the separable form for `a`, its sum before truncation taken as
/// exact to 1e-9: the order of additions is not told.
inline bool IsSeparable(const Rows& aIn, const Rows& aOut, double a, StTypeLimits Range) {
    constexpr double cdTolerance = 1e-9;
    for (int y = 0; y < Height(aOut); ++y)
        for (int x = 0; x < Width(aOut); ++x) {
            const double dExact =
                std::clamp(NaiveSeparable(aIn, CubicPosition(x, Width(aIn), Width(aOut)),
                                          CubicPosition(y, Height(aIn), Height(aOut)), a),
                           Range.m_dLowest, Range.m_dHighest);
            if (At(aOut, x, y) < std::trunc(dExact - cdTolerance) ||
                At(aOut, x, y) > std::trunc(dExact + cdTolerance))
                return false;
        }
    return true;
}

// Fant

/// The mean of line `y` from x * w / W to (x + 1) * w / W, by the overlap with every sample.
inline long double AreaMean(const Rows& aIn, int x, int y, int nWidth) {
    const long double dIn = Width(aIn);
    long double dSum = 0.0L;
    for (int k = 0; k < Width(aIn); ++k) { // in parts of 1 / W: all terms are whole numbers
        const long double dFrom = std::max(x * dIn, static_cast<long double>(k) * nWidth);
        const long double dTo = std::min((x + 1) * dIn, static_cast<long double>(k + 1) * nWidth);
        dSum += std::max(0.0L, dTo - dFrom) * At(aIn, k, y);
    }
    return dSum / dIn;
}

inline Rows NaiveResample(const Rows& aIn, int nWidth) {
    return MakeRows(nWidth, Height(aIn),
                    [&](int x, int y) { return static_cast<int>(AreaMean(aIn, x, y, nWidth)); });
}

inline Rows NaiveFant(const Rows& aIn, int nWidth, int nHeight) {
    return Transposed(NaiveResample(Transposed(NaiveResample(aIn, nWidth)), nHeight));
}

// Whole factors

/// Above 0: how often a sample is repeated; below 0: minus the distance of the samples picked.
inline int WholeFactor(int nPels, int nNewPels) {
    const auto rounded = [](int nLarge, int nSmall) {
        return nLarge / nSmall + (nLarge % nSmall > nSmall / 2 ? 1 : 0);
    };
    if (nPels < 1 || nNewPels < 1 || nPels == nNewPels)
        return 1;
    return nNewPels > nPels ? rounded(nNewPels, nPels) : -rounded(nPels, nNewPels);
}

inline Rows NaiveWhole(const Rows& aIn, int nWidth, int nHeight, int nFactorX, int nFactorY) {
    const auto source = [](int i, int nFactor) {
        return nFactor > 0 ? static_cast<long long>(i) / nFactor
                           : static_cast<long long>(i) * -nFactor;
    };
    return MakeRows(nWidth, nHeight, [&](int x, int y) {
        const long long nX = source(x, nFactorX);
        const long long nY = source(y, nFactorY);
        return nX < Width(aIn) && nY < Height(aIn) ? At(aIn, nX, nY) : 0;
    });
}

} // namespace TestSupport
