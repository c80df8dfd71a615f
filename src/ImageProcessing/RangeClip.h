#pragma once

/// The clipping of the pixel arithmetic, in double: a value below the lower bound, or one that is
/// not a number, gives the lower bound, one above the upper bound gives that. A bound that is not a
/// number does not clip.

#include "Tools/FpImage.h"

#include <cmath>

class ClRangeClip {
public:
    /// The range of an image, whichever of its ends is the smaller.
    explicit ClRangeClip(const ClImage& Image)
        : m_dLower(Image.White() < Image.Black() ? Image.White() : Image.Black()),
          m_dUpper(Image.White() < Image.Black() ? Image.Black() : Image.White()) {}
    /// As they stand; the lower bound is asked first.
    ClRangeClip(double dLower, double dUpper) : m_dLower(dLower), m_dUpper(dUpper) {}

    double operator()(double dValue) const {
        if (!(dValue >= m_dLower) && !std::isnan(m_dLower))
            return m_dLower;
        return dValue > m_dUpper ? m_dUpper : dValue;
    }

    /// Whether the range is that of `unsigned char`, which 8-bit kernels clip to.
    bool IsEightBit() const { return m_dLower == 0.0 && m_dUpper == 255.0; }

private:
    double m_dLower;
    double m_dUpper;
};
