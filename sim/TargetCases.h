#pragma once

/// Named captures of the dot target, for calibration data to be derived from, and what becomes of
/// each: a list that the tool, the tests and the benchmarks share.
///
/// Every case is the target laid straight on a clean platen of the scanner at hand, with one thing
/// changed. That keeps causes apart: what is refused is refused for what the case is named after.
/// Sizes keep a distance from the limits at which the outcome turns, so that it is the same for
/// every scanner that ClScanner draws.

#include "sim/Capture.h"
#include "sim/Dirt.h"
#include "sim/Scanner.h"
#include "sim/Target.h"

#include <array>
#include <cstdint>
#include <string>

namespace sim {

enum class ETargetCase {
    ePlain,
    eLaid,
    eRotated,
    eSlanted,
    eLeaning,
    eShifted,
    eBarrel,
    ePincushion,
    eTrapezoid,
    eUnevenLight,
    eDim,
    eGlaring,
    eBlurred,
    eNoisy,
    ePale,
    eDust,
    eSpeckBeside,
    eSpeckBetween,
    eExtraDot,
    eFilledCorner,
    eRotatedFar,
    eRotatedWildly,
    eSlantedFar,
    eLeaningFar,
    eMissingDot,
    eMissingCorner,
    eMissingColumn,
    eCutOffSide,
    eCutOffBottom,
    eBlurredFar,
    eNoisyFar,
    eFaint,
    eDark,
    eBridge,
    eSpeckTouching,
    eBlot,
    eSmallDots,
    eLargeDots,
    eBlank,
    eHiddenDot,
    eStandIn,
    eStandInFar,
    eWornDot,
    eHalfHidden,
    eHairEnd,
    eHairAcross,
    eGlareBeside,
    eGlareSpot,
    eNarrowPitch,
    eWidePitch,
};

/// What deriving calibration data from a capture comes to.
enum class EOutcome {
    eAccepted,   ///< the points lie on the true dots
    eRefused,    ///< a failure with words
    eMisled,     ///< accepted, though a point is off: the capture does not show that it is wrong
    eUnloadable, ///< accepted with a point so far off that the block derived does not load
};

struct ClTargetCaseEntry {
    ETargetCase m_eCase;
    const char* m_szName; ///< as typed on a command line
    const char* m_szDescription;
    EOutcome m_eOutcome;
    const char* m_szRefusal; ///< the words of the failure, -600; empty where there is none
};

/// The words of the failures.
constexpr const char* g_szRefusedCount = "Not the expected dot count found.";
constexpr const char* g_szRefusedAngle = "The Angle(x) of the Dot Grid is too big.";

constexpr ClTargetCaseEntry Accepted(ETargetCase eCase, const char* szName,
                                     const char* szDescription) {
    return {eCase, szName, szDescription, EOutcome::eAccepted, ""};
}
constexpr ClTargetCaseEntry Refused(ETargetCase eCase, const char* szName,
                                    const char* szDescription,
                                    const char* szRefusal = g_szRefusedCount) {
    return {eCase, szName, szDescription, EOutcome::eRefused, szRefusal};
}
constexpr ClTargetCaseEntry Misled(ETargetCase eCase, const char* szName,
                                   const char* szDescription) {
    return {eCase, szName, szDescription, EOutcome::eMisled, ""};
}

constexpr ClTargetCaseEntry Unloadable(ETargetCase eCase, const char* szName,
                                       const char* szDescription) {
    return {eCase, szName, szDescription, EOutcome::eUnloadable, ""};
}

/// The single list of cases, in the order of ETargetCase.
constexpr std::array<ClTargetCaseEntry, 50> g_aTargetCases{{
    Accepted(ETargetCase::ePlain, "plain", "laid straight on a clean platen"),
    Accepted(ETargetCase::eLaid, "laid",
             "laid by hand: turned by up to 0.5 degrees, off by 0.5 mm"),
    Accepted(ETargetCase::eRotated, "rotated", "turned by 1.5 degrees"),
    Accepted(ETargetCase::eSlanted, "slanted", "rows slope by 5 degrees, columns upright"),
    Accepted(ETargetCase::eLeaning, "leaning", "columns lean by 1.5 degrees, rows level"),
    Accepted(ETargetCase::eShifted, "shifted", "1.5 mm to the side and 1.5 mm up or down"),
    Accepted(ETargetCase::eBarrel, "barrel", "strong barrel distortion of the optics"),
    Accepted(ETargetCase::ePincushion, "pincushion", "strong pincushion distortion of the optics"),
    Accepted(ETargetCase::eTrapezoid, "trapezoid", "strong perspective of the optics"),
    Accepted(ETargetCase::eUnevenLight, "uneven_light", "light falls off to half at the edges"),
    Accepted(ETargetCase::eDim, "dim", "light at a third of its strength"),
    Accepted(ETargetCase::eGlaring, "glaring", "light so strong that the sensor saturates"),
    Accepted(ETargetCase::eBlurred, "blurred", "twice to three times the usual blur"),
    Accepted(ETargetCase::eNoisy, "noisy", "noise of 8 grey values"),
    Accepted(ETargetCase::ePale, "pale", "a print that takes a quarter of the light"),
    Accepted(ETargetCase::eDust, "dust", "300 grains of up to 0.06 mm, wherever they fall"),
    Accepted(ETargetCase::eSpeckBeside, "speck_beside", "a speck of 0.3 mm close to a dot"),
    Accepted(ETargetCase::eSpeckBetween, "speck_between", "a speck of a dot's size amid four dots"),
    Accepted(ETargetCase::eExtraDot, "extra_dot", "a dot too many, beside the pattern"),
    Accepted(ETargetCase::eFilledCorner, "filled_corner", "dots where the pattern's corners lack"),
    Refused(ETargetCase::eRotatedFar, "rotated_far", "turned by 6 degrees"),
    Refused(ETargetCase::eRotatedWildly, "rotated_wildly", "turned by 30 degrees"),
    Refused(ETargetCase::eSlantedFar, "slanted_far", "rows slope by 8.3 degrees, columns upright",
            g_szRefusedAngle),
    Refused(ETargetCase::eLeaningFar, "leaning_far", "columns lean by 6 degrees, rows level"),
    Refused(ETargetCase::eMissingDot, "missing_dot", "a dot amid the pattern is not printed"),
    Refused(ETargetCase::eMissingCorner, "missing_corner", "a dot in a corner is not printed"),
    Refused(ETargetCase::eMissingColumn, "missing_column", "the first column is not printed"),
    Refused(ETargetCase::eCutOffSide, "cut_off_side", "5 mm to the side: columns are cut off"),
    Refused(ETargetCase::eCutOffBottom, "cut_off_bottom", "5 mm down: rows are cut off"),
    Refused(ETargetCase::eBlurredFar, "blurred_far", "blurred until dots run together"),
    Refused(ETargetCase::eNoisyFar, "noisy_far", "noise of 100 grey values"),
    Refused(ETargetCase::eFaint, "faint", "a print that takes a fiftieth of the light"),
    Refused(ETargetCase::eDark, "dark", "next to no light"),
    Refused(ETargetCase::eBridge, "bridge", "dirt that joins two dots"),
    Refused(ETargetCase::eSpeckTouching, "speck_touching", "dirt of 0.45 mm on the rim of a dot"),
    Refused(ETargetCase::eBlot, "blot", "dirt of 1.5 mm on a dot"),
    Refused(ETargetCase::eSmallDots, "small_dots", "a plate with dots of 0.4 mm"),
    Refused(ETargetCase::eLargeDots, "large_dots", "a plate with dots of 1.2 mm"),
    Refused(ETargetCase::eBlank, "blank", "a plate without dots"),
    Misled(ETargetCase::eHiddenDot, "hidden_dot", "dirt of 0.95 mm hides a dot, 0.11 mm off it"),
    Misled(ETargetCase::eStandIn, "stand_in",
           "a dot is not printed, and dirt of its size lies 0.4 mm beside its place"),
    Unloadable(ETargetCase::eStandInFar, "stand_in_far",
               "a dot is not printed, and dirt of its size lies 0.62 mm above or below its place"),
    Accepted(ETargetCase::eWornDot, "worn_dot", "a tenth of a dot's width is rubbed off, askew"),
    Misled(ETargetCase::eHalfHidden, "half_hidden",
           "two fifths of a dot's width are hidden, askew"),
    Accepted(ETargetCase::eHairEnd, "hair_end", "a hair ends 0.2 mm beyond the rim of a dot"),
    Refused(ETargetCase::eHairAcross, "hair_across",
            "a hair of 2.8 mm lies along a row, across a dot"),
    Accepted(ETargetCase::eGlareBeside, "glare_beside", "a spot of glare, 1.6 mm, beside a dot"),
    Misled(ETargetCase::eGlareSpot, "glare_spot", "a spot of glare, 1.6 mm, on the rim of a dot"),
    Accepted(ETargetCase::eNarrowPitch, "narrow_pitch",
             "a plate with a pitch of 1.96 mm: the data derived have a wrong scale"),
    Accepted(ETargetCase::eWidePitch, "wide_pitch",
             "a plate with a pitch of 2.04 mm: the data derived have a wrong scale"),
}};

const char* TargetCaseName(ETargetCase eCase);
/// Returns false, and leaves `eCase`, where no case has the name.
bool TargetCaseFromName(const std::string& sName, ETargetCase& eCase);

/// What a case is made of.
struct ClTargetScene {
    ClScannerSettings m_Scanner;
    ClTargetSettings m_Target;
    ClDirtSettings m_Dirt;
};

/// The scene of a case before a scanner of given settings. The seed decides what the case leaves
/// open: which dot, which side, which direction.
ClTargetScene TargetScene(const ClScannerSettings& Scanner, ETargetCase eCase, std::uint64_t nSeed);

/// A capture of a case by the scanner, with those of its settings changed that the case is about.
ClCapture CaptureTargetCase(const ClScanner& Scanner, ETargetCase eCase, std::uint64_t nSeed);

} // namespace sim
