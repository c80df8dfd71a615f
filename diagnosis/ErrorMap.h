#pragma once

/// How far the content of the corrected image is expected to lie from where it belongs, at every
/// place of it, from the calibration alone.
///
/// The warp follows S, the thin plate spline through the dots as they were found. What the optics
/// do, f, is not known; but it is smooth, and a spline about a cubic trend, T, knows it better than
/// S where the dots end: perspective, bow and barrel are such trends, and S, which falls back to a
/// plane, loses them. So
///
///     S - f = (S - T) + (T - f)
///
/// is expected to have the square
///
///     (S - T)^2 - scatter^2 sum (s - t)^2 + scatter^2 sum s^2 + looseness^2 openness of T,
///
/// s and t being the counts of the dots in S and T at that place: what S loses, less what of it is
/// scatter; what scatter does to S; and what no smoothness tells. The scatter of the dots about T
/// is what locating them adds. The looseness is what they miss beyond their scatter where T has to
/// reach out for them, as found by leaving out each dot of the border: a distortion that no cubic
/// follows shows there. Amid the dots S and T are the same to a hundredth of a pixel, and the
/// scatter is all; in the corners S - T is nearly all.
///
/// Wrong points have to be named; T then does without them, and the error that they cause shows.
///
/// What cannot be told: an error that all dots share, as a plate of another pitch, and optics that
/// bend beyond the dots in another way than amid them.

#include "diagnosis/Record.h"

namespace diagnosis {

/// One value for each coordinate, raw pixels.
struct StSpread {
    double m_dX = 0.0;
    double m_dY = 0.0;
};

struct StErrorMap {
    static constexpr int cnColumns = 41;
    static constexpr int cnRows = 61;

    StPoint PlaceOf(int nColumn, int nRow) const; ///< pixels of the corrected image
    double At(int nColumn, int nRow) const;

    /// Between the places of the grid, linear in both directions. They are 8 pixels apart and the
    /// dots 39, so that nothing is missed. Outside the image the value at its border.
    double At(const StPoint& Place) const;

    int m_nWidth = 0; ///< of the corrected image, pixels
    int m_nHeight = 0;
    std::vector<double> m_aErrors; ///< expected root mean square, pixels of the corrected image
    StSpread m_Scatter;            ///< of the dots
    StSpread m_Looseness;          ///< in the units of `StKnowledge::m_dOpenness`
    double m_dInside = 0.0;        ///< root mean square over the zones
    double m_dEdge = 0.0;
    double m_dCorner = 0.0;
};

/// `aWrong` are the dots whose points are wrong. Throws std::invalid_argument where the other
/// points determine no spline.
StErrorMap MapErrors(const StRecord& Record, const std::vector<std::size_t>& aWrong);

} // namespace diagnosis
