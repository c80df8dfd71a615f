#include "bench/Plates.h"

#include "bench/Generation.h"
#include "sim/TargetCases.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace bench {

namespace {

/// Half of the platen, millimetres, as far as dots are printed.
constexpr double cdReachX = 9.5;
constexpr double cdReachY = 12.8;
constexpr double cdSmallDot = 0.65; ///< millimetres: dots so close do not run together

struct ClPlate {
    std::string m_sName;
    sim::ClTargetSettings m_Settings;
};

/// A plate with dots of its own in place of the pattern's.
sim::ClTargetSettings Blank() {
    sim::ClTargetSettings Settings;
    for (int nDot = 0; nDot < sim::g_nDots; ++nDot)
        Settings.m_aMissing.push_back(nDot);
    return Settings;
}

/// The pattern at another pitch.
ClPlate Scaled(double dPitch) {
    sim::ClTargetSettings Settings = Blank();
    for (const sim::ClPoint& Dot : sim::DotPattern())
        Settings.m_aExtra.push_back(
            {Dot.x * dPitch / sim::g_dPitch, Dot.y * dPitch / sim::g_dPitch});
    char szName[64];
    std::snprintf(szName, sizeof szName, "the pattern at a pitch of %.2f mm", dPitch);
    return {szName, Settings};
}

/// Dots all over the platen, so many raw pixels apart.
ClPlate Lattice(int nColumns, int nLines) {
    sim::ClTargetSettings Settings = Blank();
    Settings.m_dDotDiameter = cdSmallDot;
    const double dPitchX = nColumns * 25.4 / sim::g_dRawDpiX;
    const double dPitchY = nLines * 25.4 / sim::g_dRawDpiY;
    for (double x = -cdReachX; x < cdReachX; x += dPitchX)
        for (double y = -cdReachY; y < cdReachY; y += dPitchY)
            Settings.m_aExtra.push_back({x, y});
    return {"a lattice of " + std::to_string(nColumns) + " x " + std::to_string(nLines) +
                " raw pixels",
            Settings};
}

/// The percentages of checks, and the checks that found no target.
struct ClChecks {
    void Add(const std::optional<double>& Percent) {
        if (!Percent) {
            ++m_nRefused;
            return;
        }
        m_dLeast = m_nDone == 0 ? *Percent : std::min(m_dLeast, *Percent);
        m_dMost = m_nDone == 0 ? *Percent : std::max(m_dMost, *Percent);
        ++m_nDone;
    }
    std::string Text() const {
        char szText[64] = "-";
        if (m_nDone > 0)
            std::snprintf(szText, sizeof szText, "%.2f to %.2f", m_dLeast, m_dMost);
        return szText + (m_nRefused > 0 ? ", " + std::to_string(m_nRefused) + " refused" : "");
    }

    int m_nDone = 0;
    int m_nRefused = 0;
    double m_dLeast = 0.0;
    double m_dMost = 0.0;
};

struct ClOutcome {
    int m_nRefused = 0;
    int m_nDoNotLoad = 0;
    int m_nLoad = 0;
    ClChecks m_Same;
    ClChecks m_Right;
};

std::optional<double> Checked(const ClGeneration& Generated, const sim::ClRaster& Raw) {
    const Bytes aCorrected = Correct(Generated.m_aBlock, Raw);
    try {
        return CheckEfts(Generated.m_aBlock, aCorrected);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

void Lay(const ClPlate& Plate, unsigned long nSeed, ClOutcome& rOutcome) {
    const sim::ClScanner Scanner(nSeed);
    sim::ClTargetSettings Settings = Plate.m_Settings;
    const sim::ClTargetSettings ByHand =
        sim::TargetScene(Scanner.Settings(), sim::ETargetCase::eLaid, nSeed).m_Target;
    Settings.m_dRotation = ByHand.m_dRotation;
    Settings.m_dShiftX = ByHand.m_dShiftX;
    Settings.m_dShiftY = ByHand.m_dShiftY;
    const sim::ClCapture Capture = sim::CaptureTarget(Scanner, Settings, {}, nSeed);
    const ClGeneration Generated = Generate(Capture.m_Raw);
    if (Generated.m_nStatus != 0) {
        ++rOutcome.m_nRefused;
    } else if (!Loads(Generated.m_aBlock)) {
        ++rOutcome.m_nDoNotLoad;
    } else {
        ++rOutcome.m_nLoad;
        rOutcome.m_Same.Add(Checked(Generated, Capture.m_Raw));
        rOutcome.m_Right.Add(
            Checked(Generated, sim::CaptureKind(Scanner, sim::EKind::eTarget, 2).m_Raw));
    }
}

std::vector<ClPlate> Plates() {
    std::vector<ClPlate> aPlates;
    for (const double dPitch : {1.80, 1.85, 1.90, 1.95, 1.98, 2.00, 2.02, 2.05, 2.10, 2.15, 2.20})
        aPlates.push_back(Scaled(dPitch));
    for (const int nColumns : {16, 18, 20})
        for (const int nLines : {30, 32, 48, 78})
            aPlates.push_back(Lattice(nColumns, nLines));
    return aPlates;
}

} // namespace

int PrintPlates(unsigned long nScanners, unsigned long nFirst) {
    std::printf("%36s %8s %12s %6s   %-26s %s\n", "", "refused", "do not load", "load",
                "check of the same plate", "of the right target, percent");
    for (const ClPlate& Plate : Plates()) {
        ClOutcome Outcome;
        for (unsigned long nSeed = nFirst; nSeed < nFirst + nScanners; ++nSeed)
            Lay(Plate, nSeed, Outcome);
        std::printf("%36s %8d %12d %6d   %-26s %s\n", Plate.m_sName.c_str(), Outcome.m_nRefused,
                    Outcome.m_nDoNotLoad, Outcome.m_nLoad, Outcome.m_Same.Text().c_str(),
                    Outcome.m_Right.Text().c_str());
        std::fflush(stdout);
    }
    return 0;
}

} // namespace bench
