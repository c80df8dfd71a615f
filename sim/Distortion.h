#pragma once

/// The geometric error of a scanner: a map from the platen (millimetres, origin in the middle) to
/// raw pixels, in closed form, and its inverse.
///
/// The map is a chain of stages of which each is invertible by itself: shear and rotation, shift,
/// perspective, bow, barrel, scale. All but the barrel have an inverse in closed form; the barrel
/// needs a root of a cubic, for which Newton's steps converge quadratically from 1. A general
/// two-dimensional Newton would do as well, but could fail far outside the platen, where a chain
/// of stages still tells whether a position has an inverse.

#include "sim/Raster.h"

namespace sim {

/// All zero is the ideal scanner: a scale and nothing else.
struct ClDistortionSettings {
    double m_dRotation = 0.0;   ///< degrees, clockwise as the capture is seen
    double m_dRowSlant = 0.0;   ///< degrees by which rows slope down to the right, columns upright
    double m_dColumnLean = 0.0; ///< degrees by which columns lean right going down, rows level
    double m_dShiftX = 0.0;     ///< millimetres by which the image moves to the right
    double m_dShiftY = 0.0;     ///< millimetres by which the image moves down
    double m_dTrapezoidX = 0.0; ///< 1/mm: the image shrinks toward the right by this share per mm
    double m_dTrapezoidY = 0.0; ///< 1/mm: the same toward the bottom
    double m_dBow = 0.0;        ///< 1/mm: rows sag at both ends by this times the square of x
    double m_dBarrel = 0.0;     ///< 1/mm^2: radius r becomes r (1 + this r^2); negative is a barrel
};

class ClDistortion {
public:
    /// `Centre` is where, in raw pixels, the middle of the platen lies without shift; the scales
    /// are raw pixels per millimetre. Throws -35 for a setting that is not finite, an angle of 45
    /// degrees or more, or a scale that is not positive.
    ClDistortion(const ClDistortionSettings& Settings, const ClPoint& Centre, double dScaleX,
                 double dScaleY);

    /// Millimetres on the platen to raw pixels.
    ClPoint RawFromPlaten(const ClPoint& Platen) const;
    /// The inverse, to better than 1e-9 mm wherever a scanner of moderate settings can look.
    ClPoint PlatenFromRaw(const ClPoint& Raw) const;

private:
    /// (x, y) becomes (a x + b y, c x + d y).
    struct ClMatrix {
        double a, b, c, d;
    };
    static ClPoint Multiply(const ClMatrix& Matrix, const ClPoint& Point);
    static ClMatrix Inverted(const ClMatrix& Matrix);

    ClDistortionSettings m_Settings;
    ClPoint m_Centre;
    double m_dScaleX;
    double m_dScaleY;
    ClMatrix m_Linear;
    ClMatrix m_LinearInverse;
};

} // namespace sim
