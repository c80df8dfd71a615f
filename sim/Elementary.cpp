#include "sim/Elementary.h"

#include <cmath>

namespace sim {

namespace {

/// Taylor's series of the sine; 11 terms leave 1e-18 at pi / 2.
double SineSeries(double x) {
    const double s = x * x;
    double dSum = 1.0;
    for (int n = 20; n > 0; n -= 2)
        dSum = 1.0 - dSum * s / (static_cast<double>(n) * static_cast<double>(n + 1));
    return x * dSum;
}

/// Arc tangent of 0 to 1, a polynomial fitted to the range, error below 2e-5.
double ArcTangent(double q) {
    const double s = q * q;
    return q * (0.9998660 + s * (-0.3302995 + s * (0.1801410 + s * (-0.0851330 + s * 0.0208351))));
}

} // namespace

double Sine(double dAngle) {
    // To -pi .. pi, then fold at the extrema.
    double x = dAngle - 2.0 * g_dPi * std::floor(dAngle / (2.0 * g_dPi) + 0.5);
    if (x > 0.5 * g_dPi)
        x = g_dPi - x;
    else if (x < -0.5 * g_dPi)
        x = -g_dPi - x;
    return SineSeries(x);
}

double Cosine(double dAngle) {
    return Sine(dAngle + 0.5 * g_dPi);
}

double Angle(double x, double y) {
    const double a = std::fabs(x);
    const double b = std::fabs(y);
    if (!(a > 0.0 || b > 0.0))
        return 0.0;
    double dAngle = a > b ? ArcTangent(b / a) : 0.5 * g_dPi - ArcTangent(a / b);
    if (x < 0.0)
        dAngle = g_dPi - dAngle;
    return y < 0.0 ? -dAngle : dAngle;
}

double Decay(double t) {
    if (t > 700.0)
        return 0.0;
    // exp(-t) = (exp(-t / 1024))^1024 with four terms for the small argument.
    const double x = t / 1024.0;
    double dResult =
        1.0 / (1.0 + x * (1.0 + x / 2.0 * (1.0 + x / 3.0 * (1.0 + x / 4.0 * (1.0 + x / 5.0)))));
    for (int n = 0; n < 10; ++n)
        dResult *= dResult;
    return dResult;
}

double SmoothStep(double dFrom, double dTo, double x) {
    const double t = Limit((x - dFrom) / (dTo - dFrom), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

double Limit(double x, double dLow, double dHigh) {
    if (!(x > dLow))
        return dLow;
    return x > dHigh ? dHigh : x;
}

} // namespace sim
