#include "bench/EftsPairs.h"

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7Half.h"
#include "Math/GeometricAccuracy.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace bench {

namespace {

constexpr int cnReach = 14; ///< a dot's radius is 8 pixels, its neighbours' rims are 31 away

unsigned char PixelAt(const Bytes& aCorrected, int x, int y) {
    return aCorrected[cnPixelsAt + static_cast<std::size_t>(y * sim::g_nFrameWidth + x)];
}

} // namespace

Points LocateCorrected(const Bytes& aCorrected) {
    ClImage Image(sim::g_nFrameWidth, sim::g_nFrameHeight, 1, sim::g_nFramePels, sim::g_nFramePels);
    for (int y = 0; y < sim::g_nFrameHeight; ++y)
        std::memcpy(Image.LineData(y),
                    &aCorrected[cnPixelsAt + static_cast<std::size_t>(y) * sim::g_nFrameWidth],
                    sim::g_nFrameWidth);
    ClCalibrateGeometricData Data;
    ClIpCalibrateGeometricBuildRefPointsQK7Half Builder;
    Builder.m_bBrightDots = false;
    Builder.m_pInImage = &Image;
    Builder.m_pOutData = &Data;
    Builder.Apply();
    Points aPoints;
    for (unsigned long n = 0; n < Data.m_aActual[0].Entries(); ++n)
        aPoints.push_back({Data.m_aActual[0][n].x, Data.m_aActual[0][n].y});
    return aPoints;
}

sim::ClPoint CentreOfDarkness(const Bytes& aCorrected, const sim::ClPoint& Near) {
    constexpr double dLight = 190.0; // darker than the platen by more than its noise and unevenness
    const int nX = static_cast<int>(std::lround(Near.x));
    const int nY = static_cast<int>(std::lround(Near.y));
    double dSum = 0.0;
    sim::ClPoint Centre;
    for (int y = std::max(0, nY - cnReach); y <= std::min(sim::g_nFrameHeight - 1, nY + cnReach);
         ++y)
        for (int x = std::max(0, nX - cnReach); x <= std::min(sim::g_nFrameWidth - 1, nX + cnReach);
             ++x) {
            const double dDark = std::max(0.0, dLight - PixelAt(aCorrected, x, y));
            dSum += dDark;
            Centre.x += dDark * x;
            Centre.y += dDark * y;
        }
    return {Centre.x / dSum, Centre.y / dSum};
}

std::vector<ClFailedPair> FailedPairs(const Points& aTarget, const Points& aFound) {
    const auto Distance = [](const sim::ClPoint& a, const sim::ClPoint& b) {
        return ClGeometricAccuracy::calculateDistance(ClVector(a.x, a.y), ClVector(b.x, b.y));
    };
    const ClGeometricAccuracy Limits;
    std::vector<ClFailedPair> aPairs;
    for (std::size_t i = 1; i < aTarget.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const double dReference = Distance(aTarget[i], aTarget[j]);
            const double dMeasured = Distance(aFound[i], aFound[j]);
            if (!Limits.checkRequirements(dReference, dMeasured))
                aPairs.push_back({static_cast<int>(j), static_cast<int>(i), dReference, dMeasured});
        }
    return aPairs;
}

} // namespace bench
