#pragma once

/// Painted images of the dot target, put together without the simulator or the class under test:
/// dark dots on bright ground, their centres known.

#include "support/BitmapBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace TestSupport {

struct StDot {
    double x;
    double y;
};

/// How a target is painted. The defaults are a raw capture of the scanner.
struct StTargetImage {
    int m_nWidth = 390;
    int m_nHeight = 1052;
    double m_dDpiX = 492.706;
    double m_dDpiY = 1009.287;
    double m_dShiftX = 0.0;   ///< of the pattern from the middle of the image, pixels
    double m_dShiftY = 0.0;   ///< pixels
    double m_dScale = 1.0;    ///< of the pitch; dots keep their size
    double m_dRowSlant = 0.0; ///< degrees by which rows slope down while columns stay upright
    int m_nGround = 200;      ///< grey value between the dots
    int m_nDot = 60;          ///< grey value of a dot
    std::vector<std::size_t> m_aMissing; ///< dots that are not painted
    std::vector<StDot> m_aExtra;         ///< further dots, pixels
};

/// The target in a corrected image: both resolutions are 500 dots per inch.
inline StTargetImage CorrectedTarget() {
    StTargetImage Image;
    Image.m_nWidth = 320;
    Image.m_nHeight = 480;
    Image.m_dDpiX = Image.m_dDpiY = 500.0;
    return Image;
}

/// Centres of the 75 dots in pixels, column by column from the left, each from the top.
inline std::vector<StDot> DotsOf(const StTargetImage& Image) {
    const int anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    const double dPitchX = Image.m_dScale * 2.0 * Image.m_dDpiX / 25.4;
    const double dPitchY = Image.m_dScale * 2.0 * Image.m_dDpiY / 25.4;
    const double dSlope = std::tan(Image.m_dRowSlant * 3.14159265358979323846 / 180.0);
    std::vector<StDot> aDots;
    for (int nColumn = 0; nColumn < 7; ++nColumn)
        for (int nRow = 0; nRow < anLengths[nColumn]; ++nRow) {
            const double dx = (nColumn - 3) * dPitchX;
            aDots.push_back(
                {Image.m_nWidth / 2 + Image.m_dShiftX + dx,
                 Image.m_nHeight / 2 + Image.m_dShiftY + (nRow - 5) * dPitchY + dSlope * dx});
        }
    return aDots;
}

/// The share of a pixel that a dot of 0.8 mm covers, by 8 x 8 samples. Pixel (0, 0) has its
/// middle at (0, 0).
inline double Coverage(const StTargetImage& Image, const StDot& Dot, int x, int y) {
    const double dRadiusX = 0.4 * Image.m_dDpiX / 25.4;
    const double dRadiusY = 0.4 * Image.m_dDpiY / 25.4;
    int nInside = 0;
    for (int j = 0; j < 8; ++j)
        for (int i = 0; i < 8; ++i) {
            const double u = (x - 0.4375 + 0.125 * i - Dot.x) / dRadiusX;
            const double v = (y - 0.4375 + 0.125 * j - Dot.y) / dRadiusY;
            nInside += u * u + v * v <= 1.0;
        }
    return nInside / 64.0;
}

inline void PaintDot(const StTargetImage& Image, const StDot& Dot, Bytes& rPixels) {
    const int nStride = (Image.m_nWidth + 3) & ~3;
    const int nReachX = static_cast<int>(0.4 * Image.m_dDpiX / 25.4) + 2;
    const int nReachY = static_cast<int>(0.4 * Image.m_dDpiY / 25.4) + 2;
    const int nX = static_cast<int>(std::floor(Dot.x));
    const int nY = static_cast<int>(std::floor(Dot.y));
    for (int y = std::max(nY - nReachY, 0); y < std::min(nY + nReachY + 1, Image.m_nHeight); ++y)
        for (int x = std::max(nX - nReachX, 0); x < std::min(nX + nReachX + 1, Image.m_nWidth);
             ++x) {
            const double dShare = Coverage(Image, Dot, x, y);
            unsigned char& rPixel = rPixels[static_cast<std::size_t>(y * nStride + x)];
            rPixel = static_cast<unsigned char>(
                std::lround(rPixel + dShare * (Image.m_nDot - Image.m_nGround)));
        }
}

/// The lines of the image, padded to multiples of 4 bytes.
inline Bytes TargetPixels(const StTargetImage& Image, const std::vector<StDot>& aDots) {
    const std::size_t nStride = static_cast<std::size_t>((Image.m_nWidth + 3) & ~3);
    Bytes aPixels(nStride * static_cast<std::size_t>(Image.m_nHeight),
                  static_cast<unsigned char>(Image.m_nGround));
    for (std::size_t i = 0; i < aDots.size(); ++i)
        if (std::find(Image.m_aMissing.begin(), Image.m_aMissing.end(), i) ==
            Image.m_aMissing.end())
            PaintDot(Image, aDots[i], aPixels);
    for (const StDot& Dot : Image.m_aExtra)
        PaintDot(Image, Dot, aPixels);
    return aPixels;
}

/// The image as a bitmap block.
inline Bytes TargetBlock(const StTargetImage& Image, const std::vector<StDot>& aDots) {
    StHead Head;
    Head.m_nWidth = Image.m_nWidth;
    Head.m_nHeight = Image.m_nHeight;
    return Block(Head, GreyPalette(), TargetPixels(Image, aDots));
}
inline Bytes TargetBlock(const StTargetImage& Image) {
    return TargetBlock(Image, DotsOf(Image));
}

/// Gives a `ClImage` these pixels.
template <class Image>
void Fill(const StTargetImage& Target, Image& rImage) {
    rImage.NewWithType(Image::eUInt8, Target.m_nWidth, Target.m_nHeight, 1, 0, 0);
    const Bytes aPixels = TargetPixels(Target, DotsOf(Target));
    std::copy(aPixels.begin(), aPixels.end(), rImage.Data());
}

} // namespace TestSupport
