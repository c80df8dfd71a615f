#include "diagnosis/DotShape.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace diagnosis {

namespace {

// Millimetres; a dot has a radius of 0.4, and its neighbours begin at 1.6.
constexpr double cdMiddle = 0.2;
constexpr double cdReach = 0.65;
constexpr double cdRingEnd = 1.0;
constexpr double cdPi = 3.14159265358979323846;
/// Share of a dot's darkness that is noise and unevenness of the platen.
constexpr double cdIgnored = 0.1;

/// Runs `visit(x, y, dx, dy)`, pixels and millimetres, over the pixels from one radius to another.
template <class Visit>
void ForRing(const StGrey& Image, const StPoint& Centre, const StDensity& Density, double dFrom,
             double dTo, Visit visit) {
    const auto first = [](double d) { return static_cast<int>(std::max(0.0, std::ceil(d))); };
    const auto last = [](double d, int nSize) {
        return static_cast<int>(std::min(nSize - 1.0, std::floor(d)));
    };
    const double dReachX = dTo * Density.m_dX;
    const double dReachY = dTo * Density.m_dY;
    for (int y = first(Centre.m_dY - dReachY); y <= last(Centre.m_dY + dReachY, Image.m_nHeight);
         ++y)
        for (int x = first(Centre.m_dX - dReachX); x <= last(Centre.m_dX + dReachX, Image.m_nWidth);
             ++x) {
            const double dx = (x - Centre.m_dX) / Density.m_dX;
            const double dy = (y - Centre.m_dY) / Density.m_dY;
            const double dSquare = dx * dx + dy * dy;
            if (dSquare >= dFrom * dFrom && dSquare < dTo * dTo)
                visit(x, y, dx, dy);
        }
}

double MedianOfRing(const StGrey& Image, const StPoint& Centre, const StDensity& Density,
                    double dFrom, double dTo) {
    Bytes aValues;
    ForRing(Image, Centre, Density, dFrom, dTo,
            [&](int x, int y, double, double) { aValues.push_back(Image.At(x, y)); });
    if (aValues.empty())
        return std::numeric_limits<double>::quiet_NaN();
    const auto middle = aValues.begin() + static_cast<std::ptrdiff_t>(aValues.size() / 2);
    std::nth_element(aValues.begin(), middle, aValues.end());
    return *middle;
}

/// Sums of weighted places, millimetres from the middle.
struct StMoments {
    void Add(double dWeight, double dx, double dy) {
        m_dWeight += dWeight;
        m_dX += dWeight * dx;
        m_dY += dWeight * dy;
        m_dXX += dWeight * dx * dx;
        m_dXY += dWeight * dx * dy;
        m_dYY += dWeight * dy * dy;
    }
    double MeanX() const { return m_dX / m_dWeight; }
    double MeanY() const { return m_dY / m_dWeight; }

    double m_dWeight = 0.0;
    double m_dX = 0.0;
    double m_dY = 0.0;
    double m_dXX = 0.0;
    double m_dXY = 0.0;
    double m_dYY = 0.0;
};

/// The root of the quotient of the principal second moments.
double Roundness(const StMoments& m) {
    const double xx = m.m_dXX / m.m_dWeight - m.MeanX() * m.MeanX();
    const double yy = m.m_dYY / m.m_dWeight - m.MeanY() * m.MeanY();
    const double xy = m.m_dXY / m.m_dWeight - m.MeanX() * m.MeanY();
    const double dMean = 0.5 * (xx + yy);
    const double dSpread = std::hypot(0.5 * (xx - yy), xy);
    return std::sqrt(std::max(0.0, dMean - dSpread) / (dMean + dSpread));
}

StDotShape Nothing() {
    constexpr double dNone = std::numeric_limits<double>::quiet_NaN();
    return {{dNone, dNone}, dNone, dNone, dNone};
}

} // namespace

StDotShape MeasureDot(const StGrey& Image, const StPoint& Near, const StDensity& Density) {
    const double dLight = MedianOfRing(Image, Near, Density, cdReach, cdRingEnd);
    const double dDot = MedianOfRing(Image, Near, Density, 0.0, cdMiddle);
    if (!(dLight > dDot))
        return Nothing();
    const double dIgnored = cdIgnored * (dLight - dDot);
    const double dHalf = 0.5 * (dLight + dDot);
    StMoments Darkness;
    StMoments Region;
    ForRing(Image, Near, Density, 0.0, cdReach, [&](int x, int y, double dx, double dy) {
        const double dValue = Image.At(x, y);
        Darkness.Add(std::max(0.0, dLight - dIgnored - dValue), dx, dy);
        Region.Add(dValue < dHalf ? 1.0 : 0.0, dx, dy);
    });
    const double dArea = Region.m_dWeight / (Density.m_dX * Density.m_dY);
    return {
        {Near.m_dX + Darkness.MeanX() * Density.m_dX, Near.m_dY + Darkness.MeanY() * Density.m_dY},
        1.0 - dDot / dLight,
        2.0 * std::sqrt(dArea / cdPi),
        Roundness(Region)};
}

} // namespace diagnosis
