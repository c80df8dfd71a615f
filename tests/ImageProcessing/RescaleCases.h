#pragma once

/// What the tests of `ClIpRescale` share: sizes, types, and runs in one line.

#include "ImageProcessing/IpRescale.h"
#include "support/Images.h"

#include <cstddef>
#include <vector>

namespace TestSupport {

struct StSizes {
    int m_nInWidth;
    int m_nInHeight;
    int m_nOutWidth;
    int m_nOutHeight;
};

/// Growing, shrinking, both, one axis only; single samples and lines; coprime sizes.
inline constexpr StSizes caRescaleSizes[] = {
    {1, 1, 5, 3},   {1, 1, 1, 7},   {1, 9, 1, 4},   {9, 1, 4, 1},   {1, 6, 3, 2},
    {7, 1, 2, 5},   {4, 3, 8, 6},   {4, 3, 9, 11},  {13, 11, 5, 7}, {12, 10, 6, 5},
    {31, 5, 30, 5}, {5, 31, 5, 17}, {17, 6, 40, 3}, {6, 17, 3, 40}, {8, 8, 1, 1},
    {23, 3, 1, 4},  {3, 23, 4, 1},  {16, 9, 17, 10}};

inline constexpr ClImage::EDataType caByteTypes[] = {ClImage::eUInt8, ClImage::eInt8};

inline constexpr ClIpRescale::eProcessingMode caSizeModes[] = {
    ClIpRescale::ModeNearestNeighbour, ClIpRescale::ModeBiLinear, ClIpRescale::ModeBiCubic,
    ClIpRescale::ModeBiLinearFantMar};

inline Rows RescaledToSize(ClImage& rIn, int nWidth, int nHeight,
                           ClIpRescale::eProcessingMode eMode, double dParameter = -0.75) {
    ClImage Out;
    ClIpRescale Rescale;
    Rescale.m_dConvParameter1 = dParameter;
    EXPECT_EQ(Rescale.ApplyParamSize(rIn, Out, nWidth, nHeight, eMode), 0);
    EXPECT_EQ(Out.Width(), nWidth);
    EXPECT_EQ(Out.Height(), nHeight);
    EXPECT_EQ(Out.DataType(), rIn.DataType());
    return Pixels(Out);
}

inline Rows RescaledToPels(ClImage& rIn, int nPelsX, int nPelsY,
                           ClIpRescale::eProcessingMode eMode) {
    ClImage Out;
    ClIpRescale Rescale;
    EXPECT_EQ(Rescale.ApplyParamPels(rIn, Out, nPelsX, nPelsY, eMode), 0);
    return Pixels(Out);
}

/// Lines of `nHeight` times `nWidth` samples, each from `sampleAt(x, y)`.
template <class SampleAt>
Rows MakeRows(int nWidth, int nHeight, SampleAt sampleAt) {
    Rows aRows(static_cast<std::size_t>(nHeight));
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            aRows[static_cast<std::size_t>(y)].push_back(sampleAt(x, y));
    return aRows;
}

inline int At(const Rows& aRows, long long x, long long y) {
    return aRows.at(static_cast<std::size_t>(y)).at(static_cast<std::size_t>(x));
}

inline int Width(const Rows& aRows) {
    return static_cast<int>(aRows.at(0).size());
}

inline int Height(const Rows& aRows) {
    return static_cast<int>(aRows.size());
}

inline Rows Transposed(const Rows& aRows) {
    return MakeRows(Height(aRows), Width(aRows), [&](int x, int y) { return At(aRows, y, x); });
}

} // namespace TestSupport
