#pragma once

/// The two plates that are laid on the platen to calibrate and to measure: the dot target and the
/// ruled plate.

#include "sim/Plate.h"
#include "sim/Raster.h"

#include <array>
#include <vector>

namespace sim {

constexpr double g_dPitch = 2.0;       ///< millimetres from dot to dot
constexpr double g_dDotDiameter = 0.8; ///< millimetres
constexpr int g_nDots = 75;
/// Dots per column, from the left; all columns begin at the same row.
constexpr std::array<int, 7> g_aColumnLengths{10, 11, 11, 11, 11, 11, 10};

/// The centres of the ideal pattern, column by column, each from the top: millimetres from the
/// middle of the pattern's bounding box.
std::vector<ClPoint> DotPattern();

/// A dot whose print is rubbed off on one side, up to a straight edge.
struct ClWornDot {
    int m_nDot = 0;          ///< pattern index, 0 to 74
    double m_dShare = 0.3;   ///< of its diameter, 0 to 1
    double m_dHeading = 0.0; ///< of the side, degrees clockwise from its right
};

/// How a plate lies on the platen and how it is printed.
struct ClTargetSettings {
    double m_dRotation = 0.0;   ///< degrees clockwise about the plate's middle, below 45
    double m_dShiftX = 0.0;     ///< millimetres to the right; large values cut the plate off
    double m_dShiftY = 0.0;     ///< millimetres down
    double m_dRowSlant = 0.0;   ///< degrees by which rows slope down while columns stay upright
    double m_dColumnLean = 0.0; ///< degrees by which columns lean right going down, rows level
    double m_dContrast = 0.76;  ///< share of the light that the print takes, 0 to 1
    double m_dDotDiameter = g_dDotDiameter; ///< millimetres
    double m_dScale = 1.0;                  ///< of the pattern, not of its dots: 1 is the right one
    std::vector<int> m_aMissing;            ///< pattern indices, 0 to 74, of dots not printed
    std::vector<ClPoint> m_aExtra;          ///< further dots, pattern millimetres
    std::vector<ClWornDot> m_aWorn;
    double m_dLineSpacing = 2.0; ///< of the ruled plate, millimetres
    double m_dLineWidth = 0.15;  ///< of the ruled plate, millimetres
};

/// Pattern millimetres to platen millimetres; the settings are not checked.
ClPoint PlatenFromPattern(const ClTargetSettings& Settings, const ClPoint& Pattern);

/// Prints the dots. Returns the true centres of the 75 pattern dots on the platen in pattern
/// order, missing ones included. Throws -35 for settings out of range.
std::vector<ClPoint> PaintDots(ClPlate& Plate, const ClTargetSettings& Settings);

/// Where on the platen lies what is `dDistance` millimetres away from a pattern dot's centre, in a
/// direction of the pattern: degrees clockwise from its right. Throws -35 for a dot outside 0 to
/// 74.
ClPoint BesideDot(const ClTargetSettings& Settings, int nDot, double dDistance, double dHeading);

/// A straight line on the platen, from end to end.
struct ClLine {
    ClPoint m_From;
    ClPoint m_To;
};

/// Prints the rules: vertical lines over the full height, then horizontal ones over the full
/// width of the target frame's size. Returns their middle lines on the platen, vertical ones from
/// the left first, then the horizontal ones from the top. Throws -35 for settings out of range.
std::vector<ClLine> PaintRules(ClPlate& Plate, const ClTargetSettings& Settings);

} // namespace sim
