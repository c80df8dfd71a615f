#include "bench/Straightness.h"

#include "Math/RegressionLine.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

constexpr int cnWidth = sim::g_nFrameWidth;
constexpr int cnHeight = sim::g_nFrameHeight;
constexpr int cnHalfWindow = 6; // lines are 39 pixels apart and 3 wide
constexpr int cnMargin = 12;    // the corrected image ends here, and so do windows

/// Centre of the darkness in a window along one axis, or NaN in an even window.
double DarkCentre(const unsigned char* pFirst, std::ptrdiff_t nStep, int nFrom) {
    const int nSamples = 2 * cnHalfWindow + 1;
    unsigned char nBrightest = 0;
    for (int i = 0; i < nSamples; ++i)
        nBrightest = std::max(nBrightest, pFirst[i * nStep]);
    double dSum = 0.0;
    double dMoment = 0.0;
    for (int i = 0; i < nSamples; ++i) {
        const double dDark = nBrightest - pFirst[i * nStep];
        dSum += dDark;
        dMoment += dDark * (nFrom + i);
    }
    return dMoment / dSum;
}

double LargestDistance(const std::vector<ClVector>& aPoints) {
    ClRegressionLine Line;
    for (const ClVector& rPoint : aPoints)
        Line.AddToLine(rPoint);
    double dLargest = 0.0;
    for (const ClVector& rPoint : aPoints)
        dLargest = std::max(dLargest, Line.DistFromLine(rPoint));
    return dLargest;
}

bool IsVertical(const sim::ClLine& Line) {
    return std::fabs(Line.m_To.y - Line.m_From.y) > std::fabs(Line.m_To.x - Line.m_From.x);
}

sim::ClPoint PointOn(const sim::ClLine& Line, double t) {
    return {Line.m_From.x + t * (Line.m_To.x - Line.m_From.x),
            Line.m_From.y + t * (Line.m_To.y - Line.m_From.y)};
}

/// Where along a line its coordinate of the running axis is `d`: 0 at its beginning, 1 at its end.
double ParameterAt(const sim::ClLine& Line, double d) {
    return IsVertical(Line) ? (d - Line.m_From.y) / (Line.m_To.y - Line.m_From.y)
                            : (d - Line.m_From.x) / (Line.m_To.x - Line.m_From.x);
}

/// Whether one of the lines of the other direction passes near a place.
bool IsCrossed(const std::vector<sim::ClLine>& aLines, bool bVertical, const sim::ClPoint& Place) {
    return std::any_of(aLines.begin(), aLines.end(), [&](const sim::ClLine& Other) {
        if (IsVertical(Other) == bVertical)
            return false;
        const sim::ClPoint p = PointOn(Other, ParameterAt(Other, bVertical ? Place.x : Place.y));
        return std::fabs(bVertical ? p.y - Place.y : p.x - Place.x) < cnHalfWindow;
    });
}

/// Whether the window across a line stays inside the image.
bool HasWindow(bool bVertical, const sim::ClPoint& Place) {
    const double dAcross = bVertical ? Place.x : Place.y;
    return dAcross > cnMargin + cnHalfWindow &&
           dAcross < (bVertical ? cnWidth : cnHeight) - cnMargin - cnHalfWindow;
}

/// The places of a line at which it can be followed, one per pixel along it; none where its window
/// leaves the image anywhere.
std::vector<sim::ClPoint> PlacesOf(const sim::ClLine& Line,
                                   const std::vector<sim::ClLine>& aLines) {
    const bool bVertical = IsVertical(Line);
    const int nLength = bVertical ? cnHeight : cnWidth;
    std::vector<sim::ClPoint> aPlaces;
    for (int i = cnMargin; i < nLength - cnMargin; ++i) {
        const sim::ClPoint Place = PointOn(Line, ParameterAt(Line, i));
        if (!HasWindow(bVertical, Place))
            return {};
        if (!IsCrossed(aLines, bVertical, Place))
            aPlaces.push_back(Place);
    }
    return aPlaces;
}

/// Centres of one line in the corrected image.
std::vector<ClVector> FollowLine(const unsigned char* pImage, bool bVertical,
                                 const std::vector<sim::ClPoint>& aPlaces) {
    std::vector<ClVector> aPoints;
    for (const sim::ClPoint& Place : aPlaces) {
        const int nFrom =
            static_cast<int>(std::lround(bVertical ? Place.x : Place.y)) - cnHalfWindow;
        const int nAlong = static_cast<int>(std::lround(bVertical ? Place.y : Place.x));
        const unsigned char* pFirst =
            bVertical ? pImage + nAlong * cnWidth + nFrom : pImage + nFrom * cnWidth + nAlong;
        const double dCentre = DarkCentre(pFirst, bVertical ? 1 : cnWidth, nFrom);
        if (std::isfinite(dCentre))
            aPoints.push_back(bVertical ? ClVector(dCentre, nAlong) : ClVector(nAlong, dCentre));
    }
    return aPoints;
}

/// The same line where the scanner sees it, in the scale of the corrected image.
std::vector<ClVector> SeeLine(const sim::ClScanner& Scanner, const sim::ClLine& PlatenLine,
                              const sim::ClLine& Line, const std::vector<sim::ClPoint>& aPlaces) {
    std::vector<ClVector> aPoints;
    for (const sim::ClPoint& Place : aPlaces) {
        const double t = ParameterAt(Line, IsVertical(Line) ? Place.y : Place.x);
        const sim::ClPoint Raw = Scanner.RawFromPlaten(PointOn(PlatenLine, t));
        aPoints.emplace_back(Raw.x * sim::g_dFrameDpi / sim::g_dRawDpiX,
                             Raw.y * sim::g_dFrameDpi / sim::g_dRawDpiY);
    }
    return aPoints;
}

} // namespace

ClStraightness MeasureStraightness(const sim::ClScanner& Scanner,
                                   const std::vector<sim::ClLine>& aPlatenLines,
                                   const std::vector<sim::ClLine>& aLines,
                                   const unsigned char* pCorrected) {
    ClStraightness Result;
    for (std::size_t n = 0; n < aLines.size(); ++n) {
        const std::vector<sim::ClPoint> aPlaces = PlacesOf(aLines[n], aLines);
        if (aPlaces.empty())
            continue;
        const auto aSeen = SeeLine(Scanner, aPlatenLines[n], aLines[n], aPlaces);
        const auto aFollowed = FollowLine(pCorrected, IsVertical(aLines[n]), aPlaces);
        Result.m_dBefore = std::max(Result.m_dBefore, LargestDistance(aSeen));
        Result.m_dAfter = std::max(Result.m_dAfter, LargestDistance(aFollowed));
        ++Result.m_nLines;
    }
    return Result;
}

} // namespace bench
