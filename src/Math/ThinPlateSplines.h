#pragma once

/// `TpThinPlateSplines`, a smooth mapping of the plane through a list of point pairs: of all
/// mappings through them it is the one that bends least. It turns the located dots into a
/// deformation of the whole image. In use for `double` and `float`; every value is of type T.
///
/// The mapping is an affine part plus one radial term U(s) = s log s per origin point, s being the
/// squared distance from it. Its weights are one dense solve of n + 3 equations, an evaluation is
/// n logarithms.

#include "Math/Vector.h"
#include "Tools/Array.h"

#include <boost/numeric/ublas/fwd.hpp>

#include <memory>

template <class T>
class TpThinPlateSplines {
public:
    TpThinPlateSplines();
    TpThinPlateSplines(const TpThinPlateSplines&) = delete;
    TpThinPlateSplines& operator=(const TpThinPlateSplines&) = delete;
    virtual ~TpThinPlateSplines();

    /// Solves the spline that maps origin i to target i, for `nSize` pairs. Throws -44 for null
    /// pointers and a size below 1; -600 where the points allow no solution, or none that meets
    /// every target within CheckSetup()'s tolerance; `ClExBadAlloc`. After any of them but -44
    /// the spline is as one that was never set up.
    void Setup(long nSize, const ClVector* pvOrigin, const ClVector* pvTarget);

    /// Maps (x, y). Throws -1 before a Setup() has succeeded.
    void Transform(T x, T y, T* pX, T* pY) const;

    /// Throws -600 where a mapped origin misses its target by more than 0.01.
    void CheckSetup(long nSize, const ClVector* pvOrigin, const ClVector* pvTarget) const;

    /// What the mapping is made of; null and 0 before a Setup() has succeeded. Holds until the
    /// next.
    struct StParts {
        const ClVector* m_pOrigins;
        unsigned long m_nOrigins;
        const T* m_pWeightsX; ///< one per origin, constant, factor of x, factor of y
        const T* m_pWeightsY;
    };
    StParts Parts() const;

private:
    using Weights = boost::numeric::ublas::vector<T>;

    void Solve(unsigned long nSize, const ClVector* pvOrigin, const ClVector* pvTarget);
    void StoreOrigin(unsigned long nSize, const ClVector* pvOrigin);

    TpArrayStatic<ClVector> m_aOrigin;
    std::unique_ptr<Weights> m_pvWeightsX; ///< n radial weights, constant, factor of x, factor of y
    std::unique_ptr<Weights> m_pvWeightsY;
};

extern template class TpThinPlateSplines<double>;
extern template class TpThinPlateSplines<float>;
