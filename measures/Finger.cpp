#include "measures/Finger.h"

#include "measures/RidgeDirections.h"
#include "measures/RidgeProfiles.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <stdexcept>

namespace measures {

namespace {

constexpr double cdMmPerInch = 25.4;
constexpr double cdLowestDpi = 100.0;
constexpr double cdHighestDpi = 2000.0;

constexpr double cdDirectionReach = 0.5; ///< mm, about one ridge
constexpr double cdProfileReach = 0.8;   ///< mm: three ridges from end to end
constexpr double cdProfileStep = 0.2;    ///< mm
constexpr double cdLeastContrast = 20.0;
constexpr int cnDark = 85; ///< a third of the way to white
constexpr int cnSaturated = 255;

// What moisture does to the ridge share. Dryness takes contact away as it breaks ridges, moisture
// adds to it as it lets them run together. Fitted to 300 simulated fingers.
constexpr double cdShareByBrokenness = 6.5;
constexpr double cdShareBySpread = -0.85;

// The ends of the greys that tell how much light is taken: few samples lie amid a thin ridge.
constexpr double cdDarkest = 0.02;
constexpr double cdLightest = 0.9;

void CheckSizes(const ClGreyView& Image, const ClGreyView& Mask) {
    if (Image.m_nWidth != Mask.m_nWidth || Image.m_nHeight != Mask.m_nHeight)
        throw std::invalid_argument("image and finger mask differ in size");
}

bool IsMeasurable(double dDpi) {
    return dDpi >= cdLowestDpi && dDpi <= cdHighestDpi;
}

int Samples(double dMm, double dDpi) {
    return static_cast<int>(std::lround(dMm * dDpi / cdMmPerInch));
}

double Mean(const std::vector<double>& aValues) {
    return std::accumulate(aValues.begin(), aValues.end(), 0.0) /
           static_cast<double>(aValues.size());
}

/// Standard deviation over mean.
double Spread(const std::vector<double>& aValues) {
    const double dMean = Mean(aValues);
    double dSum = 0.0;
    for (const double d : aValues)
        dSum += (d - dMean) * (d - dMean);
    return std::sqrt(dSum / static_cast<double>(aValues.size())) / dMean;
}

/// What the profiles of a finger show.
struct ClReadings {
    std::vector<double> m_aContrasts;
    ClWidths m_Widths;
};

ClReadings ReadProfiles(const ClGreyView& Image, const ClGreyView& Mask,
                        const ClRidgeDirections& Directions, double dDpi) {
    const int nStep = Samples(cdProfileStep, dDpi);
    const int nReach = Samples(cdProfileReach, dDpi);
    ClReadings Readings;
    for (int y = 0; y < Image.m_nHeight; y += nStep) {
        for (int x = 0; x < Image.m_nWidth; x += nStep) {
            const auto Values = ProfileAcross(Image, Mask, x, y, Directions.Across(x, y), nReach);
            if (!Values || ContrastOf(*Values) < cdLeastContrast)
                continue;
            Readings.m_aContrasts.push_back(ContrastOf(*Values));
            AddWidths(*Values, Readings.m_Widths);
        }
    }
    return Readings;
}

Measure Brokenness(const ClGreyView& Image, const ClGreyView& Mask,
                   const ClRidgeDirections& Directions) {
    double dBroken = 0.0;
    double dAll = 0.0;
    ForFinger(Mask, [&](int x, int y) {
        const ClGradient g = GradientAt(Image, Mask, x, y);
        const ClStep Across = Directions.Across(x, y);
        const double dAlong = Across.x * g.y - Across.y * g.x;
        dAll += static_cast<double>(g.x) * g.x + static_cast<double>(g.y) * g.y;
        if (Image.At(x, y) < cnDark)
            dBroken += dAlong * dAlong;
    });
    return dAll > 0.0 ? Measure(dBroken / dAll) : std::nullopt;
}

void SetWidths(const ClWidths& Widths, double dDpi, ClRidgeMeasures& rMeasures) {
    if (Widths.m_aRidges.empty() || Widths.m_aValleys.empty())
        return;
    const double dRidge = Mean(Widths.m_aRidges);
    const double dValley = Mean(Widths.m_aValleys);
    rMeasures.m_dRidgeWidth = dRidge * cdMmPerInch / dDpi;
    rMeasures.m_dValleyWidth = dValley * cdMmPerInch / dDpi;
    rMeasures.m_dRidgeShare = dRidge / (dRidge + dValley);
    rMeasures.m_dRidgeSpread = Spread(Widths.m_aRidges);
    rMeasures.m_dValleySpread = Spread(Widths.m_aValleys);
}

ClRidgeMeasures MeasureRidges(const ClGreyView& Image, const ClGreyView& Mask, double dDpi) {
    ClRidgeMeasures Measures;
    const ClRidgeDirections Directions(Image, Mask, Samples(cdDirectionReach, dDpi));
    const ClReadings Readings = ReadProfiles(Image, Mask, Directions, dDpi);
    Measures.m_nProfiles = Readings.m_aContrasts.size();
    if (Readings.m_aContrasts.empty())
        return Measures;
    Measures.m_dContrast = Mean(Readings.m_aContrasts) / 255.0;
    Measures.m_dBrokenness = Brokenness(Image, Mask, Directions);
    SetWidths(Readings.m_Widths, dDpi, Measures);
    if (Measures.m_dRidgeShare && Measures.m_dBrokenness)
        Measures.m_dPressure = *Measures.m_dRidgeShare +
                               cdShareByBrokenness * *Measures.m_dBrokenness +
                               cdShareBySpread * *Measures.m_dRidgeSpread;
    return Measures;
}

/// Counts and sums over the finger.
struct ClFingerSums {
    double m_dCount = 0.0;
    double m_dX = 0.0;
    double m_dY = 0.0;
    double m_dSaturated = 0.0;
    double m_dDark = 0.0;
};

ClFingerSums SumUp(const ClGreyView& Image, const ClGreyView& Mask) {
    ClFingerSums Sums;
    ForFinger(Mask, [&](int x, int y) {
        Sums.m_dCount += 1.0;
        Sums.m_dX += x;
        Sums.m_dY += y;
        Sums.m_dSaturated += Image.At(x, y) == cnSaturated ? 1.0 : 0.0;
        Sums.m_dDark += Image.At(x, y) < cnDark ? 1.0 : 0.0;
    });
    return Sums;
}

/// The lowest grey value above which at most the share 1 - `dShare` of the samples lies.
int GreyAt(const std::array<std::int64_t, 256>& aCounts, double dShare) {
    const double dTarget =
        dShare *
        static_cast<double>(std::accumulate(aCounts.begin(), aCounts.end(), std::int64_t{0}));
    std::int64_t nSum = 0;
    int nGrey = -1;
    do
        nSum += aCounts[static_cast<std::size_t>(++nGrey)];
    while (nGrey < 255 && static_cast<double>(nSum) < dTarget);
    return nGrey;
}

} // namespace

ClFingerMeasures MeasureFinger(const ClGreyView& Image, const ClGreyView& Mask, double dDpi) {
    CheckSizes(Image, Mask);
    ClFingerMeasures Measures;
    if (Image.IsEmpty() || Mask.IsEmpty())
        return Measures;
    const ClFingerSums Sums = SumUp(Image, Mask);
    if (!(Sums.m_dCount > 0.0))
        return Measures;
    Measures.m_dSaturated = Sums.m_dSaturated / Sums.m_dCount;
    Measures.m_dDark = Sums.m_dDark / Sums.m_dCount;
    if (!IsMeasurable(dDpi))
        return Measures;
    const double dMm = cdMmPerInch / dDpi;
    Measures.m_dArea = Sums.m_dCount * dMm * dMm;
    Measures.m_dOffsetX = (Sums.m_dX / Sums.m_dCount - 0.5 * (Image.m_nWidth - 1)) * dMm;
    Measures.m_dOffsetY = (Sums.m_dY / Sums.m_dCount - 0.5 * (Image.m_nHeight - 1)) * dMm;
    Measures.m_Ridges = MeasureRidges(Image, Mask, dDpi);
    return Measures;
}

Measure LightTaken(const ClGreyView& Warped, const ClGreyView& Mask) {
    CheckSizes(Warped, Mask);
    std::array<std::int64_t, 256> aCounts{};
    if (Warped.IsEmpty() || Mask.IsEmpty())
        return std::nullopt;
    std::int64_t nCount = 0;
    ForFinger(Mask, [&](int x, int y) {
        ++aCounts[Warped.At(x, y)];
        ++nCount;
    });
    const int nLightest = nCount > 0 ? GreyAt(aCounts, cdLightest) : 0;
    return nLightest > 0
               ? Measure(1.0 - static_cast<double>(GreyAt(aCounts, cdDarkest)) / nLightest)
               : std::nullopt;
}

} // namespace measures
