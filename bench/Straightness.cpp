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

bool IsCrossing(const std::vector<double>& aCrossings, double dAt) {
    return std::any_of(aCrossings.begin(), aCrossings.end(),
                       [&](double d) { return std::fabs(d - dAt) < cnHalfWindow; });
}

/// Centres of one line in the corrected image; where other lines cross it, it has none.
std::vector<ClVector> FollowLine(const unsigned char* pImage, bool bVertical, double dAt,
                                 const std::vector<double>& aCrossings) {
    std::vector<ClVector> aPoints;
    const int nFrom = static_cast<int>(std::lround(dAt)) - cnHalfWindow;
    const int nLength = bVertical ? cnHeight : cnWidth;
    for (int i = cnMargin; i < nLength - cnMargin; ++i) {
        if (IsCrossing(aCrossings, i))
            continue;
        const unsigned char* pFirst =
            bVertical ? pImage + i * cnWidth + nFrom : pImage + nFrom * cnWidth + i;
        const double dCentre = DarkCentre(pFirst, bVertical ? 1 : cnWidth, nFrom);
        if (std::isfinite(dCentre))
            aPoints.push_back(bVertical ? ClVector(dCentre, i) : ClVector(i, dCentre));
    }
    return aPoints;
}

/// The same line where the scanner sees it, in the scale of the corrected image.
std::vector<ClVector> SeeLine(const sim::ClScanner& Scanner, bool bVertical, double dAt) {
    std::vector<ClVector> aPoints;
    const int nLength = bVertical ? cnHeight : cnWidth;
    for (int i = cnMargin; i < nLength - cnMargin; ++i) {
        const sim::ClPoint Raw = Scanner.RawFromFrame(bVertical ? sim::ClPoint{dAt, double(i)}
                                                                : sim::ClPoint{double(i), dAt});
        aPoints.emplace_back(Raw.x * sim::g_dFrameDpi / sim::g_dRawDpiX,
                             Raw.y * sim::g_dFrameDpi / sim::g_dRawDpiY);
    }
    return aPoints;
}

bool IsInside(double dAt, int nLength) {
    return dAt > cnMargin + cnHalfWindow && dAt < nLength - cnMargin - cnHalfWindow;
}

} // namespace

ClStraightness MeasureStraightness(const sim::ClScanner& Scanner, const sim::ClCapture& Capture,
                                   const unsigned char* pCorrected) {
    std::vector<double> aVertical;
    std::vector<double> aHorizontal;
    for (const sim::ClLine& rLine : Capture.m_aLines) {
        const bool bVertical =
            std::fabs(rLine.m_To.y - rLine.m_From.y) > std::fabs(rLine.m_To.x - rLine.m_From.x);
        (bVertical ? aVertical : aHorizontal)
            .push_back(bVertical ? rLine.m_From.x : rLine.m_From.y);
    }
    ClStraightness Result;
    for (const bool bVertical : {true, false})
        for (const double dAt : bVertical ? aVertical : aHorizontal) {
            if (!IsInside(dAt, bVertical ? cnWidth : cnHeight))
                continue;
            const auto aSeen = SeeLine(Scanner, bVertical, dAt);
            const auto aFollowed =
                FollowLine(pCorrected, bVertical, dAt, bVertical ? aHorizontal : aVertical);
            Result.m_dBefore = std::max(Result.m_dBefore, LargestDistance(aSeen));
            Result.m_dAfter = std::max(Result.m_dAfter, LargestDistance(aFollowed));
            ++Result.m_nLines;
        }
    return Result;
}

} // namespace bench
