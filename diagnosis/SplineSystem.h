#pragma once

/// The equations of the thin plate spline through a list of places, solved once for all values
/// that may be found there. They tell what a spline alone does not: how far each value is from
/// what all others predict, how much each value counts at any place, and how little is known
/// there.
///
/// With K the radial terms between the places, P the rows of the trend, (1, x, y) for the spline
/// that a calibration uses, and
///
///         | K   P |                                       | C   . |
///     A = |       | , weights (w, a) = A^-1 (v, 0), A^-1 =|       |
///         | P'  0 |                                       | .   . |
///
/// the spline that leaves value i out misses it by  e_i = w_i / C_ii : leaving i out makes its
/// weight 0, which is what lowering v_i by e_i does, since w_i falls by C_ii for each unit. So one
/// inverse of 78 x 78 takes the place of 75 solutions of 77 x 77, and is exact.
///
/// v'Cv is the bending of the spline through the values v, never negative. A trend of higher
/// degree takes what optics do to a whole image, perspective and barrel among it, out of the
/// bending: what is left then is what single values do.

#include "diagnosis/Trend.h"

namespace diagnosis {

/// What a spline knows about a place.
struct StKnowledge {
    /// How the values count there: the spline is their sum by these numbers, which add up to 1.
    /// Outside some are negative and others above 1.
    Values m_aCounts;
    /// The square of what smoothness leaves open there: 0 at the places of values, growing with
    /// the distance from them. It is 1 / C_ii at a place i that is left out.
    double m_dOpenness = 0.0;
};

class ClSplineSystem {
public:
    /// `nDegree` of the trend, 1 to 3. Throws std::invalid_argument where the places are no more
    /// than the terms of the trend, not finite, all on one curve of its degree, or one of them
    /// twice: no spline is then determined.
    explicit ClSplineSystem(const Points& aPlaces, int nDegree = 1);

    std::size_t Size() const { return m_aPlaces.size(); }

    /// Radial weights w = C v. All lists of values have Size() entries, or std::invalid_argument is
    /// thrown.
    Values Weights(const Values& aValues) const;

    /// v_i less what the spline through all other values takes at place i.
    Values LeaveOneOut(const Values& aValues) const;

    /// C_ij: what value j adds to weight i.
    double Bending(std::size_t i, std::size_t j) const { return m_aInverse[i * m_nRows + j]; }

    StKnowledge KnowledgeAt(const StPoint& Place) const;

private:
    /// (U of the distances to all places, terms of the trend).
    Values BasisAt(const StPoint& Place) const;

    int m_nDegree;
    std::size_t m_nRows; ///< of the equations
    ClScaling m_Scaling;
    Points m_aPlaces; ///< scaled, so that all numbers are of like size
    Values m_aInverse;
};

} // namespace diagnosis
