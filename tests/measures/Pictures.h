#pragma once

/// Pictures whose measures are known.

#include "measures/GreyView.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace pictures {

constexpr double cdDpi = 500.0;
constexpr double cdMmPerSample = 25.4 / cdDpi;
constexpr unsigned char cnFinger = 0;
constexpr unsigned char cnBackground = 255;

/// An image that owns its samples.
struct ClPicture {
    ClPicture(int nWidth, int nHeight, unsigned char nGrey)
        : m_nWidth(nWidth), m_nHeight(nHeight),
          m_aSamples(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight), nGrey) {}

    unsigned char& At(int x, int y) {
        return m_aSamples[static_cast<std::size_t>(y) * static_cast<std::size_t>(m_nWidth) +
                          static_cast<std::size_t>(x)];
    }
    measures::ClGreyView View() const { return {m_aSamples.data(), m_nWidth, m_nHeight, m_nWidth}; }

    int m_nWidth;
    int m_nHeight;
    std::vector<unsigned char> m_aSamples;
};

inline unsigned char Grey(double d) {
    return static_cast<unsigned char>(std::lround(std::clamp(d, 0.0, 255.0)));
}

/// `Value(x, y)` everywhere.
template <class TpValue>
ClPicture Painted(int nWidth, int nHeight, TpValue Value) {
    ClPicture Picture(nWidth, nHeight, 0);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            Picture.At(x, y) = Grey(Value(x, y));
    return Picture;
}

/// Where a sample lies across ridges that are crossed in the direction of `dDegrees`, 0 being to
/// the right and 90 down.
inline double Across(int x, int y, double dDegrees) {
    const double dAngle = dDegrees * M_PI / 180.0;
    return x * std::cos(dAngle) + y * std::sin(dAngle);
}

/// Ridges `dRidge` samples wide, a new one every `dPeriod` samples. The edges are ramps of two
/// samples, half way up where the ridge ends.
inline double Ridges(double dAcross, double dPeriod, double dRidge) {
    const double dFromMiddle = std::fabs(dAcross - dPeriod * std::round(dAcross / dPeriod));
    return 255.0 * std::clamp(0.5 + 0.5 * (dFromMiddle - 0.5 * dRidge), 0.0, 1.0);
}

inline ClPicture RidgePicture(double dPeriod, double dRidge, double dDegrees) {
    return Painted(120, 140,
                   [&](int x, int y) { return Ridges(Across(x, y, dDegrees), dPeriod, dRidge); });
}

/// All of a frame is finger.
inline ClPicture WholeMask(const ClPicture& Picture) {
    return {Picture.m_nWidth, Picture.m_nHeight, cnFinger};
}

} // namespace pictures
