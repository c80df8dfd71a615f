#pragma once

/// `ClGeometricTransformation` lays one list of points onto another by a rotation and a shift: the
/// centres of mass are brought together, and the rotation is the circular mean of the differences
/// in direction of the rays from the first point to every other one,
///
///     atan2(sum of sin(b(i) - a(i)), sum of cos(b(i) - a(i)))
///
/// where a(i) and b(i) are the directions in the fixed and in the moved list. A mean of the angles
/// themselves would fail where they wrap round. Entry i of both lists is the same point. Angles
/// are radians, positive from x to y, which is clockwise in an image.

#include "Math/Vector.h"
#include "Tools/Array.h"

class ClGeometricTransformation {
public:
    using PointList = TpArrayDynamic<ClVector, 10>;

    ClGeometricTransformation() = default;
    ClGeometricTransformation(const ClGeometricTransformation&) = default;
    ClGeometricTransformation& operator=(const ClGeometricTransformation&) = default;
    virtual ~ClGeometricTransformation() = default;

    /// Finds the fit and moves the points of `*m_pMoved` by it. Throws -37 for a missing list, -44
    /// for an empty one or different counts, before any point moves.
    void Transform();
    /// Moves by a known fit: a rotation about the origin, then a shift. Throws as above.
    void Transform(double dAngle, const ClVector& shift);

    /// Mean of the points; not a number without any.
    static ClVector GetCenterOfMass(const PointList& rPoints);
    /// Adds `shift` to every point.
    static void Translate(const ClVector& shift, PointList& rPoints);
    /// Rotates every point about `centre`.
    static void Rotate(const ClVector& centre, double dAngle, PointList& rPoints);
    /// By how much the rays of `rB` are rotated against those of `rA`, 0 to below 2 pi; pi / 2
    /// where a list has no rays.
    static double RotAngle(const PointList& rA, const PointList& rB);

    PointList* m_pFixed = nullptr; ///< the points that stay; borrowed
    PointList* m_pMoved = nullptr; ///< the points that are moved, in place; borrowed
    double m_dAngle = 0.0;         ///< by how much the moved points were rotated, 0 to below 2 pi
    ClVector m_Translation; ///< centre of the fixed points minus that of the moved ones before

private:
    void CheckLists() const;
};
