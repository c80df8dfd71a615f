#pragma once

/// Polynomials of the plane: what optics do to a whole image.

#include "diagnosis/Inverse.h"
#include "diagnosis/Points.h"

#include <cstddef>

namespace diagnosis {

/// Terms of a polynomial of a degree of 1 to 3: 3, 6 or 10. Throws std::invalid_argument for
/// another degree.
std::size_t TrendTerms(int nDegree);

/// 1, x, y, x^2, xy, y^2, ... at a place.
Values TrendAt(const StPoint& Place, int nDegree);

/// The factors of these terms in the polynomial nearest to the values in the least squares. Throws
/// std::invalid_argument where places, about 1 in size, and values determine none.
Values FitTrend(const Points& aPlaces, const Values& aValues, int nDegree);

/// One coordinate of all points.
Values Along(double StPoint::*pAxis, const Points& aPoints);

/// Places moved to their middle and scaled to a mean square of 1.
class ClScaling {
public:
    /// Throws std::invalid_argument where all places are one, or one is not finite.
    explicit ClScaling(const Points& aPlaces);

    StPoint operator()(const StPoint& Place) const;
    Points operator()(const Points& aPlaces) const;
    double Scale() const { return m_dScale; }

private:
    StPoint m_Middle;
    double m_dScale = 1.0;
};

} // namespace diagnosis
