#include "sim/Distortion.h"

#include "Tools/Exception.h"
#include "Tools/SourcePosition.h"
#include "sim/Elementary.h"

#include <cmath>

namespace sim {

namespace {

constexpr double g_dRadians = g_dPi / 180.0;

void CheckAngle(double dDegrees) {
    if (!(std::fabs(dDegrees) < 45.0))
        throw ClException("sim: an angle is not below 45 degrees", -35, false, VEK_HERE);
}

void CheckFinite(double dValue) {
    if (!std::isfinite(dValue))
        throw ClException("sim: a distortion setting is not finite", -35, false, VEK_HERE);
}

void Check(const ClDistortionSettings& Settings) {
    CheckAngle(Settings.m_dRotation);
    CheckAngle(Settings.m_dRowSlant);
    CheckAngle(Settings.m_dColumnLean);
    CheckFinite(Settings.m_dShiftX);
    CheckFinite(Settings.m_dShiftY);
    CheckFinite(Settings.m_dTrapezoidX);
    CheckFinite(Settings.m_dTrapezoidY);
    CheckFinite(Settings.m_dBow);
    CheckFinite(Settings.m_dBarrel);
}

double Tangent(double dDegrees) {
    return Sine(dDegrees * g_dRadians) / Cosine(dDegrees * g_dRadians);
}

/// The factor s that solves s (1 + q s^2) = 1, for the radius before a barrel. Newton's steps
/// from 1 converge quadratically while q is above -4/27, the fold of the barrel.
double BarrelFactor(double q) {
    double s = 1.0;
    for (int nStep = 0; nStep < 8; ++nStep)
        s -= (s + q * s * s * s - 1.0) / (1.0 + 3.0 * q * s * s);
    return s;
}

} // namespace

ClDistortion::ClDistortion(const ClDistortionSettings& Settings, const ClPoint& Centre,
                           double dScaleX, double dScaleY)
    : m_Settings(Settings), m_Centre(Centre), m_dScaleX(dScaleX), m_dScaleY(dScaleY) {
    Check(Settings);
    if (!(dScaleX > 0.0) || !(dScaleY > 0.0))
        throw ClException("sim: a scale is not positive", -35, false, VEK_HERE);
    const double c = Cosine(Settings.m_dRotation * g_dRadians);
    const double s = Sine(Settings.m_dRotation * g_dRadians);
    const double dLean = Tangent(Settings.m_dColumnLean);
    const double dSlant = Tangent(Settings.m_dRowSlant);
    // Rotation after the shears (1, lean; slant, 1).
    m_Linear = {c - s * dSlant, c * dLean - s, s + c * dSlant, s * dLean + c};
    m_LinearInverse = Inverted(m_Linear);
}

ClPoint ClDistortion::Multiply(const ClMatrix& Matrix, const ClPoint& Point) {
    return {Matrix.a * Point.x + Matrix.b * Point.y, Matrix.c * Point.x + Matrix.d * Point.y};
}

ClDistortion::ClMatrix ClDistortion::Inverted(const ClMatrix& Matrix) {
    const double dDeterminant = Matrix.a * Matrix.d - Matrix.b * Matrix.c;
    if (!(std::fabs(dDeterminant) > 1e-6))
        throw ClException("sim: slant and lean cancel each other", -35, false, VEK_HERE);
    return {Matrix.d / dDeterminant, -Matrix.b / dDeterminant, -Matrix.c / dDeterminant,
            Matrix.a / dDeterminant};
}

ClPoint ClDistortion::RawFromPlaten(const ClPoint& Platen) const {
    ClPoint p = Multiply(m_Linear, Platen);
    p.x += m_Settings.m_dShiftX;
    p.y += m_Settings.m_dShiftY;
    const double w = 1.0 + m_Settings.m_dTrapezoidX * p.x + m_Settings.m_dTrapezoidY * p.y;
    p.x /= w;
    p.y /= w;
    p.y += m_Settings.m_dBow * p.x * p.x;
    const double dRadial = 1.0 + m_Settings.m_dBarrel * (p.x * p.x + p.y * p.y);
    return {m_Centre.x + m_dScaleX * dRadial * p.x, m_Centre.y + m_dScaleY * dRadial * p.y};
}

ClPoint ClDistortion::PlatenFromRaw(const ClPoint& Raw) const {
    ClPoint p{(Raw.x - m_Centre.x) / m_dScaleX, (Raw.y - m_Centre.y) / m_dScaleY};
    const double s = BarrelFactor(m_Settings.m_dBarrel * (p.x * p.x + p.y * p.y));
    p.x *= s;
    p.y *= s;
    p.y -= m_Settings.m_dBow * p.x * p.x;
    // Dividing by w inverts to dividing by 1 - (trapezoid . image).
    const double w = 1.0 - m_Settings.m_dTrapezoidX * p.x - m_Settings.m_dTrapezoidY * p.y;
    p.x = p.x / w - m_Settings.m_dShiftX;
    p.y = p.y / w - m_Settings.m_dShiftY;
    return Multiply(m_LinearInverse, p);
}

} // namespace sim
