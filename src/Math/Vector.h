#pragma once

/// A point or vector of the plane: image coordinates with y downward, or millimetres.

class ClVector {
public:
    /// Tolerance of point comparisons and of the parallelism test.
    static constexpr double m_cdEpsilon = 1e-07;

    ClVector() = default;
    ClVector(double dX, double dY) : x(dX), y(dY) {}
    ClVector(const ClVector&) = default;
    ClVector& operator=(const ClVector&) = default;
    virtual ~ClVector() = default;

    ClVector operator+(const ClVector& Other) const { return {x + Other.x, y + Other.y}; }
    ClVector operator-(const ClVector& Other) const { return {x - Other.x, y - Other.y}; }

    double Length() const;

    /// Crossing of the lines P1 + t1 D1 and P2 + t2 D2. For parallel lines parameters and result
    /// are 0.
    static ClVector Intersection(const ClVector& rP1, const ClVector& rD1, const ClVector& rP2,
                                 const ClVector& rD2, double& rT1, double& rT2);
    static ClVector CrossPoint(const ClVector& rP1, const ClVector& rD1, const ClVector& rP2,
                               const ClVector& rD2, double& rT1, double& rT2);

    double x = 0.0;
    double y = 0.0;
};
