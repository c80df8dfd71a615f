#include "diagnosis/PlateFit.h"

#include "diagnosis/Trend.h"

#include <algorithm>
#include <cmath>

namespace diagnosis {

namespace {

constexpr double cdDegrees = 180.0 / 3.14159265358979323846;

Points Millimetres(const Points& aPixels, const StDensity& Density) {
    Points aPlaces;
    for (const StPoint& Pixel : aPixels)
        aPlaces.push_back({Pixel.m_dX / Density.m_dX, Pixel.m_dY / Density.m_dY});
    return aPlaces;
}

/// A polynomial of the scaled plate for each coordinate of the capture, millimetres.
struct StFit {
    Values m_aX;
    Values m_aY;

    StPoint At(const StPoint& Scaled, int nDegree) const {
        const Values aTerms = TrendAt(Scaled, nDegree);
        StPoint Sum;
        for (std::size_t i = 0; i < aTerms.size(); ++i)
            Sum = Sum + StPoint{m_aX[i] * aTerms[i], m_aY[i] * aTerms[i]};
        return Sum;
    }
};

StFit Fit(const Points& aScaled, const Points& aFound, int nDegree) {
    return {FitTrend(aScaled, Along(&StPoint::m_dX, aFound), nDegree),
            FitTrend(aScaled, Along(&StPoint::m_dY, aFound), nDegree)};
}

/// Where the terms of the first degree take the two directions of the plate.
StAffine AffineOf(const StFit& Fit, double dScale) {
    const double a = Fit.m_aX[1] / dScale;
    const double b = Fit.m_aX[2] / dScale;
    const double c = Fit.m_aY[1] / dScale;
    const double d = Fit.m_aY[2] / dScale;
    const double dRows = std::atan2(c, a);
    return {std::hypot(a, c), std::hypot(b, d), cdDegrees * dRows,
            cdDegrees * (std::atan2(-b, d) - dRows)};
}

} // namespace

StPlateFit FitPlate(const StRecord& Record) {
    const Points aPlate = Millimetres(Record.m_aTarget, Record.m_Target);
    const Points aFound = Millimetres(Record.m_aFound, Record.m_Source);
    const ClScaling Scaling(aPlate);
    const Points aScaled = Scaling(aPlate);
    const StFit Straight = Fit(aScaled, aFound, 1);
    StPlateFit Plate;
    Plate.m_Whole = AffineOf(Straight, Scaling.Scale());
    Plate.m_Middle = AffineOf(Fit(aScaled, aFound, 3), Scaling.Scale());
    double dSum = 0.0;
    for (std::size_t i = 0; i < aScaled.size(); ++i) {
        const double dSquare = SquaredLength(aFound[i] - Straight.At(aScaled[i], 1));
        dSum += dSquare;
        Plate.m_dDistortionMax = std::max(Plate.m_dDistortionMax, std::sqrt(dSquare));
    }
    Plate.m_dDistortionRms = std::sqrt(dSum / static_cast<double>(aScaled.size()));
    return Plate;
}

} // namespace diagnosis
