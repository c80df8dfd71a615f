#pragma once

/// A least-squares line through a stream of points. It keeps sums, not points, and chooses
/// between y = m x + b and x = m y + b by the smaller slope, so that steep lines stay well
/// conditioned.

#include "Math/Vector.h"

class ClRegressionLine {
public:
    ClRegressionLine() = default;
    ClRegressionLine(const ClRegressionLine&) = default;
    ClRegressionLine& operator=(const ClRegressionLine&) = default;
    virtual ~ClRegressionLine() = default;

    /// Forgets all points. Returns 0.
    long Clear();
    void AddToLine(const ClVector& rPoint);
    /// Adds the points of another line.
    void JoinLine(const ClRegressionLine& rOther);

    /// True: y = rM x + rB. False: x = rM y + rB; with fewer than 2 points both are 0.
    bool GetLineCoeffizienten(double& rM, double& rB) const;
    /// The ends of the line within the box of the points.
    void GetLine(ClVector& rStart, ClVector& rEnd) const;
    double DistFromLine(const ClVector& rPoint) const;
    bool Horizontal() const;
    bool Vertical() const;
    /// Crossing of two lines, see ClVector::Intersection(). The directions point from the end of
    /// GetLine() to its start.
    ClVector Intersection(const ClRegressionLine& rOther, double& rT1, double& rT2) const;
    ClVector CrossPoint(const ClRegressionLine& rOther, double& rT1, double& rT2) const;
    /// Angle between the directions of two lines, 0 to pi.
    double CrossPhi(const ClRegressionLine& rOther) const;
    /// Distance between the ends of GetLine().
    double Len() const;

    long Points() const { return m_nPoints; }

private:
    long m_nPoints = 0;
    double m_dMinX = 0.0;
    double m_dMinY = 0.0;
    double m_dMaxX = 0.0;
    double m_dMaxY = 0.0;
    double m_dSumXY = 0.0;
    double m_dSumX = 0.0;
    double m_dSumY = 0.0;
    double m_dSumXX = 0.0;
    double m_dSumYY = 0.0;
};
