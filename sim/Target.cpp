#include "sim/Target.h"

#include "Tools/Exception.h"
#include "Tools/SourcePosition.h"
#include "sim/Elementary.h"
#include "sim/Scanner.h"

#include <algorithm>
#include <cmath>

namespace sim {

namespace {

constexpr double g_dRadians = g_dPi / 180.0;
/// Columns 0 to 6 and rows 0 to 10 about the middle of the pattern.
constexpr double g_dMiddleColumn = 3.0;
constexpr double g_dMiddleRow = 5.0;
constexpr double g_dFrameWidthMm = g_nFrameWidth * 25.4 / g_dFrameDpi;
constexpr double g_dFrameHeightMm = g_nFrameHeight * 25.4 / g_dFrameDpi;

void CheckDot(int nDot) {
    if (nDot < 0 || nDot >= g_nDots)
        throw ClException("sim: dots count from 0 to 74", -35, false, VEK_HERE);
}

void Check(const ClTargetSettings& Settings) {
    for (const double dAngle : {Settings.m_dRotation, Settings.m_dRowSlant, Settings.m_dColumnLean})
        if (!(std::fabs(dAngle) < 45.0))
            throw ClException("sim: an angle is not below 45 degrees", -35, false, VEK_HERE);
    if (!(Settings.m_dContrast >= 0.0 && Settings.m_dContrast <= 1.0))
        throw ClException("sim: contrast is not from 0 to 1", -35, false, VEK_HERE);
    if (!(Settings.m_dDotDiameter > 0.0 && Settings.m_dDotDiameter <= 5.0))
        throw ClException("sim: a dot has up to 5 mm", -35, false, VEK_HERE);
    if (!(Settings.m_dScale >= 0.5 && Settings.m_dScale <= 2.0))
        throw ClException("sim: a pattern is scaled by 0.5 to 2", -35, false, VEK_HERE);
    for (const ClWornDot& Worn : Settings.m_aWorn) {
        CheckDot(Worn.m_nDot);
        if (!(Worn.m_dShare >= 0.0 && Worn.m_dShare <= 1.0) || !std::isfinite(Worn.m_dHeading))
            throw ClException("sim: a worn dot is out of range", -35, false, VEK_HERE);
    }
    if (!(Settings.m_dLineSpacing >= 0.1) || !(Settings.m_dLineWidth > 0.0))
        throw ClException("sim: rules are too close or too thin", -35, false, VEK_HERE);
}

double Tangent(double dDegrees) {
    return Sine(dDegrees * g_dRadians) / Cosine(dDegrees * g_dRadians);
}

/// The share of a sample that lies inside an edge at signed distance `dInside` (millimetres,
/// positive inside), the edge being a straight line across a sample of unit width.
double Coverage(double dInside) {
    return Limit(0.5 + dInside * ClPlate::ms_dSamplesPerMm, 0.0, 1.0);
}

/// An edge across a dot: what lies beyond it is not printed.
struct ClEdge {
    ClPoint m_Outward;           ///< of length 1
    double m_dDistance = 1000.0; ///< from the dot's centre, millimetres

    double Inside(double dx, double dy) const {
        return m_dDistance - m_Outward.x * dx - m_Outward.y * dy;
    }
};

ClEdge EdgeOf(const ClTargetSettings& Settings, int nDot) {
    for (const ClWornDot& Worn : Settings.m_aWorn)
        if (Worn.m_nDot == nDot) {
            const double dAngle = Worn.m_dHeading * g_dRadians;
            return {{Cosine(dAngle), Sine(dAngle)},
                    (0.5 - Worn.m_dShare) * Settings.m_dDotDiameter};
        }
    return {};
}

void PaintDot(ClPlate& Plate, const ClTargetSettings& Settings, const ClPoint& Centre,
              const ClEdge& Edge = {}) {
    const double dRadius = 0.5 * Settings.m_dDotDiameter;
    const double dReach = dRadius + 0.1;
    const ClWindow Window(Centre, dReach, dReach);
    for (int nRow = Window.m_nTop; nRow < Window.m_nBottom; ++nRow) {
        for (int nColumn = Window.m_nLeft; nColumn < Window.m_nRight; ++nColumn) {
            const ClPoint p = ClPlate::Position(nColumn, nRow);
            const double dx = p.x - Centre.x;
            const double dy = p.y - Centre.y;
            const double dInside =
                std::min(dRadius - std::sqrt(dx * dx + dy * dy), Edge.Inside(dx, dy));
            Plate.DarkenTo(nColumn, nRow, 1.0 - Settings.m_dContrast * Coverage(dInside));
        }
    }
}

double Distance(const ClLine& Line, const ClPoint& p) {
    const double dx = Line.m_To.x - Line.m_From.x;
    const double dy = Line.m_To.y - Line.m_From.y;
    const double t = Limit(
        ((p.x - Line.m_From.x) * dx + (p.y - Line.m_From.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    const double ex = p.x - Line.m_From.x - t * dx;
    const double ey = p.y - Line.m_From.y - t * dy;
    return std::sqrt(ex * ex + ey * ey);
}

void PaintLine(ClPlate& Plate, const ClTargetSettings& Settings, const ClLine& Line) {
    const double dReach = 0.5 * Settings.m_dLineWidth + 0.1;
    const ClPoint Middle{0.5 * (Line.m_From.x + Line.m_To.x), 0.5 * (Line.m_From.y + Line.m_To.y)};
    const ClWindow Window(Middle, 0.5 * std::fabs(Line.m_To.x - Line.m_From.x) + dReach,
                          0.5 * std::fabs(Line.m_To.y - Line.m_From.y) + dReach);
    for (int nRow = Window.m_nTop; nRow < Window.m_nBottom; ++nRow) {
        for (int nColumn = Window.m_nLeft; nColumn < Window.m_nRight; ++nColumn) {
            const double dInside =
                0.5 * Settings.m_dLineWidth - Distance(Line, ClPlate::Position(nColumn, nRow));
            Plate.DarkenTo(nColumn, nRow, 1.0 - Settings.m_dContrast * Coverage(dInside));
        }
    }
}

ClLine LaidLine(const ClTargetSettings& Settings, const ClPoint& From, const ClPoint& To) {
    return {PlatenFromPattern(Settings, From), PlatenFromPattern(Settings, To)};
}

/// Rules at multiples of the spacing from the middle, as far as they lie inside the frame.
std::vector<ClLine> RuleLines(const ClTargetSettings& Settings) {
    const double dHalfWidth = 0.5 * g_dFrameWidthMm;
    const double dHalfHeight = 0.5 * g_dFrameHeightMm;
    const int nVertical = static_cast<int>(dHalfWidth / Settings.m_dLineSpacing);
    const int nHorizontal = static_cast<int>(dHalfHeight / Settings.m_dLineSpacing);
    std::vector<ClLine> aLines;
    for (int n = -nVertical; n <= nVertical; ++n) {
        const double x = n * Settings.m_dLineSpacing;
        aLines.push_back(LaidLine(Settings, {x, -dHalfHeight}, {x, dHalfHeight}));
    }
    for (int n = -nHorizontal; n <= nHorizontal; ++n) {
        const double y = n * Settings.m_dLineSpacing;
        aLines.push_back(LaidLine(Settings, {-dHalfWidth, y}, {dHalfWidth, y}));
    }
    return aLines;
}

} // namespace

std::vector<ClPoint> DotPattern() {
    std::vector<ClPoint> aDots;
    for (std::size_t nColumn = 0; nColumn < g_aColumnLengths.size(); ++nColumn) {
        for (int nRow = 0; nRow < g_aColumnLengths[nColumn]; ++nRow)
            aDots.push_back({(static_cast<double>(nColumn) - g_dMiddleColumn) * g_dPitch,
                             (nRow - g_dMiddleRow) * g_dPitch});
    }
    return aDots;
}

ClPoint PlatenFromPattern(const ClTargetSettings& Settings, const ClPoint& Pattern) {
    const double c = Cosine(Settings.m_dRotation * g_dRadians);
    const double s = Sine(Settings.m_dRotation * g_dRadians);
    const ClPoint p{Settings.m_dScale * Pattern.x, Settings.m_dScale * Pattern.y};
    const double x = p.x + Tangent(Settings.m_dColumnLean) * p.y;
    const double y = p.y + Tangent(Settings.m_dRowSlant) * p.x;
    return {c * x - s * y + Settings.m_dShiftX, s * x + c * y + Settings.m_dShiftY};
}

std::vector<ClPoint> PaintDots(ClPlate& Plate, const ClTargetSettings& Settings) {
    Check(Settings);
    std::vector<ClPoint> aDots;
    for (const ClPoint& Pattern : DotPattern())
        aDots.push_back(PlatenFromPattern(Settings, Pattern));
    for (std::size_t n = 0; n < aDots.size(); ++n) {
        const auto& aMissing = Settings.m_aMissing;
        if (std::find(aMissing.begin(), aMissing.end(), static_cast<int>(n)) == aMissing.end())
            PaintDot(Plate, Settings, aDots[n], EdgeOf(Settings, static_cast<int>(n)));
    }
    for (const ClPoint& Extra : Settings.m_aExtra)
        PaintDot(Plate, Settings, PlatenFromPattern(Settings, Extra));
    return aDots;
}

ClPoint BesideDot(const ClTargetSettings& Settings, int nDot, double dDistance, double dHeading) {
    CheckDot(nDot);
    const ClPoint Dot = DotPattern()[static_cast<std::size_t>(nDot)];
    const double dAngle = dHeading * g_dRadians;
    return PlatenFromPattern(
        Settings, {Dot.x + dDistance * Cosine(dAngle), Dot.y + dDistance * Sine(dAngle)});
}

std::vector<ClLine> PaintRules(ClPlate& Plate, const ClTargetSettings& Settings) {
    Check(Settings);
    std::vector<ClLine> aLines = RuleLines(Settings);
    for (const ClLine& Line : aLines)
        PaintLine(Plate, Settings, Line);
    return aLines;
}

} // namespace sim
