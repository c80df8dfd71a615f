#include "bench/FingerStages.h"
#include "bench/FingerTables.h"
#include "bench/FingerTally.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace bench {

namespace {

using sim::EKind;

/// Sums of the dry finger level over a part of the image.
struct ClDrySums {
    void Add(int nProb, int nWeight) {
        m_dWeights += nWeight;
        m_dExcess += std::max(nProb - 128, 0) * nWeight;
    }
    double Level() const { return std::clamp(2.0 * (m_dExcess / m_dWeights - 5.0), 0.0, 100.0); }

    double m_dWeights = 0.0;
    double m_dExcess = 0.0;
};

struct ClSources {
    ClSpread m_Zone;    ///< share of the frame that the dirt level looks at, percent
    ClSpread m_Outside; ///< share of the dry finger level's excess outside of the mask, percent
    ClSpread m_Inside;  ///< the dry finger level that the finger alone would have
    ClSpread m_Dry;     ///< the one that it has
};

void AddCapture(const ClFingerScanner& Finger, const sim::ClCapture& Capture, ClSources& rSources) {
    const auto Stages = StagesOf(Finger.Warped(Capture.m_Raw));
    const auto& aZone = Stages.at("11c_FadedMaskImageForDirtMeasurement").m_aPixels;
    const auto& aProb = Stages.at("04_MaskProbImage").m_aPixels;
    const auto& aMask = Stages.at("06_SmoothMaskImage").m_aPixels;
    double dZone = 0.0;
    ClDrySums All;
    ClDrySums Inside;
    for (std::size_t n = 0; n < aZone.size(); ++n) {
        dZone += aZone[n] / 255.0;
        All.Add(aProb[n], 255 - aZone[n]);
        if (aMask[n] < cnMaskThreshold)
            Inside.Add(aProb[n], 255 - aZone[n]);
    }
    const double dDry = Finger.Run(Capture.m_Raw, false).m_dDry;
    if (std::fabs(All.Level() - dDry) > 1e-9)
        throw std::runtime_error("the stages do not lead to the dry finger level");
    rSources.m_Zone.Add(100.0 * dZone / static_cast<double>(aZone.size()));
    rSources.m_Outside.Add(100.0 * (1.0 - Inside.m_dExcess / All.m_dExcess));
    rSources.m_Inside.Add(Inside.Level());
    rSources.m_Dry.Add(dDry);
}

} // namespace

void PrintLevelSources(unsigned long nScanners, unsigned long nFirst) {
    std::printf(
        "| kind | frame looked at for dirt, percent | excess outside of the mask, percent | "
        "dry finger level | the same inside the mask alone |\n|---|---|---|---|---|\n");
    for (const EKind eKind : {EKind::eLoop, EKind::eDry, EKind::eWet, EKind::eLight}) {
        ClSources Sources;
        for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed) {
            const ClFingerScanner Finger{sim::ClScanner(nSeed)};
            AddCapture(Finger, sim::CaptureKind(Finger.Scanner(), eKind, nSeed), Sources);
        }
        std::printf("| %s | %s | %s | %s | %s |\n", sim::KindName(eKind),
                    Sources.m_Zone.Text(1).c_str(), Sources.m_Outside.Text(1).c_str(),
                    Sources.m_Dry.Text(1).c_str(), Sources.m_Inside.Text(1).c_str());
        std::fflush(stdout);
    }
}

} // namespace bench
