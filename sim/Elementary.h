#pragma once

/// Elementary functions built from additions, multiplications and divisions alone, so that they
/// give the same bits on every machine; results of the mathematics library differ in the last bit
/// between versions, and one bit can move a grey value. They are as accurate as their users need,
/// not more: the bounds stand beside each.

namespace sim {

constexpr double g_dPi = 3.14159265358979323846;

/// Sine and cosine of an angle in radians, any size; absolute error below 1e-14 up to 10.
double Sine(double dAngle);
double Cosine(double dAngle);

/// Angle of the vector (x, y), -pi to pi; absolute error below 2e-5. 0 for the null vector.
double Angle(double x, double y);

/// exp(-t) for t of 0 or more; relative error below 1e-10 up to 20; 0 above 700.
double Decay(double t);

/// 0 below `dFrom`, 1 above `dTo`, a cubic in between; `dFrom` is below `dTo`.
double SmoothStep(double dFrom, double dTo, double x);

/// `x` between `dLow` and `dHigh`; `dLow` for what is not a number.
double Limit(double x, double dLow, double dHigh);

} // namespace sim
