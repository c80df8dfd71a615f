#include "report/CaptureOutline.h"

#include <cmath>

namespace report {

namespace {

constexpr int cnSteps = 50;    ///< of the search, each a tenth of the way left or better
constexpr double cdNear = 0.1; ///< raw pixels
constexpr int cnPointsPerSide = 24;

/// The way back, once the nominal resolutions are taken for those of the place.
StPoint Back(const StPoint& Missed, const StFrame& Capture, const StFrame& Corrected) {
    return {Missed.m_dX * Corrected.m_Density.m_dX / Capture.m_Density.m_dX,
            Missed.m_dY * Corrected.m_Density.m_dY / Capture.m_Density.m_dY};
}

Points BorderOf(const StFrame& Capture) {
    const double dRight = Capture.m_nWidth - 1.0;
    const double dBottom = Capture.m_nHeight - 1.0;
    const Points aCorners{{0.0, 0.0}, {dRight, 0.0}, {dRight, dBottom}, {0.0, dBottom}};
    Points aBorder;
    for (std::size_t i = 0; i < aCorners.size(); ++i) {
        const StPoint Way = aCorners[(i + 1) % aCorners.size()] - aCorners[i];
        for (int n = 0; n < cnPointsPerSide; ++n)
            aBorder.push_back(aCorners[i] + StPoint{n * Way.m_dX / cnPointsPerSide,
                                                    n * Way.m_dY / cnPointsPerSide});
    }
    return aBorder;
}

bool IsIn(const StFrame& Capture, const StPoint& Raw) {
    return Raw.m_dX >= 0.0 && Raw.m_dY >= 0.0 && Raw.m_dX <= Capture.m_nWidth - 1.0 &&
           Raw.m_dY <= Capture.m_nHeight - 1.0;
}

} // namespace

Points CaptureOutline(const Mapping& RawOf, const StFrame& Capture, const StFrame& Corrected) {
    Points aOutline;
    StPoint Place{0.5 * Corrected.m_nWidth, 0.5 * Corrected.m_nHeight};
    for (const StPoint& Raw : BorderOf(Capture)) {
        StPoint Missed = Raw - RawOf(Place);
        for (int n = 0; n < cnSteps && SquaredLength(Missed) > 0.01 * cdNear * cdNear; ++n) {
            Place = Place + Back(Missed, Capture, Corrected);
            Missed = Raw - RawOf(Place);
        }
        if (SquaredLength(Missed) <= cdNear * cdNear)
            aOutline.push_back(Place);
        else
            Place = {0.5 * Corrected.m_nWidth, 0.5 * Corrected.m_nHeight};
    }
    return aOutline;
}

double CoveredPercent(const Mapping& RawOf, const StFrame& Capture, const StFrame& Corrected) {
    double dCovered = 0.0;
    for (int y = 0; y < Corrected.m_nHeight; ++y)
        for (int x = 0; x < Corrected.m_nWidth; ++x)
            dCovered += IsIn(Capture, RawOf({static_cast<double>(x), static_cast<double>(y)}));
    const double dPixels = static_cast<double>(Corrected.m_nWidth) * Corrected.m_nHeight;
    return dPixels > 0.0 ? 100.0 * dCovered / dPixels : 0.0;
}

} // namespace report
