#pragma once

/// The simulator's front door: captures of targets and fingers by a simulated scanner, each with
/// what is true about it.
///
///     const sim::ClScanner Scanner(900);
///     const sim::ClCapture Capture = sim::CaptureKind(Scanner, sim::EKind::eWhorl, 1);
///     const std::vector<unsigned char> aBlock = sim::BitmapBlock(Capture.m_Raw);
///
/// The same scanner, settings and seed give the same bytes on every machine: values are formed by
/// additions, multiplications, divisions and square roots, which IEEE 754 rounds in one way only,
/// and by polynomials of these in place of the mathematics library. What it takes is a compiler
/// that evaluates doubles as written, without contraction (-ffp-contract=off, as this project is
/// built) and without wider registers, as x86-64 does.

#include "sim/Dirt.h"
#include "sim/Finger.h"
#include "sim/Raster.h"
#include "sim/Scanner.h"
#include "sim/Target.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace sim {

struct ClCapture {
    /// What the scanner delivers.
    ClRaster m_Raw;
    /// The same scene as an ideal scanner would deliver it: the target frame, no distortion, even
    /// light, no blur, no noise, dirt included.
    ClRaster m_Ideal;
    /// The true finger area in the target frame: 0 on a finger, 255 on the background.
    ClRaster m_FingerArea;
    /// Dot target: true centres of the 75 dots in raw pixels, in pattern order, missing ones
    /// included.
    std::vector<ClPoint> m_aDots;
    /// Ruled plate: middle lines in pixels of the target frame, vertical ones from the left first,
    /// then the horizontal ones from the top.
    std::vector<ClLine> m_aLines;
};

/// Captures of one subject. The seed decides noise, dirt and what a finger's settings leave open.
ClCapture CaptureTarget(const ClScanner& Scanner, const ClTargetSettings& Target,
                        const ClDirtSettings& Dirt, std::uint64_t nSeed);
ClCapture CaptureRuledPlate(const ClScanner& Scanner, const ClTargetSettings& Target,
                            std::uint64_t nSeed);
/// Any number of fingers; none is an empty platen.
ClCapture CaptureFingers(const ClScanner& Scanner, const std::vector<ClFingerSettings>& aFingers,
                         const ClDirtSettings& Dirt, std::uint64_t nSeed);

/// The ready-made captures.
enum class EKind {
    eTarget,
    eRuled,
    eLoop,
    eWhorl,
    eArch,
    eDry,
    eWet,
    ePartial,
    eTwoFingers,
    eLight,
    eEmpty,
    eDirty,
};

struct ClKindEntry {
    EKind m_eKind;
    const char* m_szName; ///< as typed on a command line
    const char* m_szDescription;
};

/// The single list of kinds, in the order of EKind.
constexpr std::array<ClKindEntry, 12> g_aKinds{{
    {EKind::eTarget, "target", "the dot target"},
    {EKind::eRuled, "ruled", "a plate of straight lines"},
    {EKind::eLoop, "loop", "a finger with a loop"},
    {EKind::eWhorl, "whorl", "a finger with a whorl"},
    {EKind::eArch, "arch", "a finger with an arch"},
    {EKind::eDry, "dry", "a dry finger, its ridges broken"},
    {EKind::eWet, "wet", "a wet finger, its valleys partly filled"},
    {EKind::ePartial, "partial", "a finger that lies only partly on the platen"},
    {EKind::eTwoFingers, "two_fingers", "two fingers side by side"},
    {EKind::eLight, "light", "a finger laid on lightly: small and pale"},
    {EKind::eEmpty, "empty", "the empty platen"},
    {EKind::eDirty, "dirty", "the empty platen, dirty"},
}};

const char* KindName(EKind eKind);
/// Returns false, and leaves `eKind`, where no kind has the name.
bool KindFromName(const std::string& sName, EKind& eKind);

/// A ready-made capture; the seed varies everything that the kind leaves open.
ClCapture CaptureKind(const ClScanner& Scanner, EKind eKind, std::uint64_t nSeed);

} // namespace sim
