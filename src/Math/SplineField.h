#pragma once

/// `ClSplineField`, the values of a spline at all whole positions of a plane, cheaper than one by
/// one and a little off, by no more than it tells.

#include "Math/ThinPlateSplines.h"

#include <cstddef>
#include <memory>

class ClSplineField {
public:
    /// Values come in blocks of this many lines and columns.
    static constexpr int cnBlockHeight = 16;
    static constexpr int cnBlockWidth = 320;

    struct StBlock {
        double m_aadX[cnBlockHeight][cnBlockWidth];
        double m_aadY[cnBlockHeight][cnBlockWidth];
    };

    /// Prepares the values at columns 0 to `nWidth` - 1 and lines 0 to `nHeight` - 1 of a spline
    /// that has been set up. Throws `ClExBadAlloc`.
    ClSplineField(const TpThinPlateSplines<double>& rSpline, int nWidth, int nHeight);

    /// The values at columns from `nX` and lines from `nY` on. Those outside the plane are
    /// anything.
    void Evaluate(int nX, int nY, StBlock& rBlock) const noexcept;

    /// How far a value may lie from what Transform() gives there; infinite or no number where
    /// coordinates or weights are such that nothing can be said.
    double ErrorOfX() const { return m_adError[0]; }
    double ErrorOfY() const { return m_adError[1]; }

    /// An origin point and its weights.
    struct StSource {
        double m_dX;
        double m_dY;
        double m_adWeights[2]; ///< of the x and of the y output
    };

private:
    std::unique_ptr<StSource[]> m_pSources;
    std::size_t m_nSources;
    double m_aadAffine[2][3]; ///< constant, factor of x, factor of y, for both outputs
    double m_adError[2];
};
