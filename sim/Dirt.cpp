#include "sim/Dirt.h"

#include "Tools/Exception.h"
#include "Tools/SourcePosition.h"
#include "sim/Elementary.h"
#include "sim/Random.h"

#include <cmath>

namespace sim {

namespace {

/// Half the size of the area that a sensor can see, millimetres.
constexpr double g_dReachX = 10.3;
constexpr double g_dReachY = 13.4;

enum ESubject : std::uint64_t { eSubjectSpeck = 1, eSubjectHair, eSubjectSmudge };

void CheckSize(double dDiameter) {
    if (!(dDiameter > 0.0 && dDiameter <= 5.0))
        throw ClException("sim: a speck has up to 5 mm", -35, false, VEK_HERE);
}

bool IsFinite(const ClPoint& Place) {
    return std::isfinite(Place.x) && std::isfinite(Place.y);
}

void CheckPlaced(const ClPlacedSpeck& Speck) {
    CheckSize(Speck.m_dDiameter);
    if (!IsFinite(Speck.m_Centre))
        throw ClException("sim: a speck's place is not finite", -35, false, VEK_HERE);
    if (!(Speck.m_dDarkness >= 0.0 && Speck.m_dDarkness <= 1.0))
        throw ClException("sim: a speck's darkness is not from 0 to 1", -35, false, VEK_HERE);
}

void CheckHair(const ClPlacedHair& Hair) {
    if (!IsFinite(Hair.m_From) || !IsFinite(Hair.m_To) || !(Hair.m_dWidth > 0.0) ||
        !(Hair.m_dWidth <= 1.0) || !(Hair.m_dDarkness >= 0.0 && Hair.m_dDarkness <= 1.0))
        throw ClException("sim: a hair is out of range", -35, false, VEK_HERE);
}

void CheckGlare(const ClPlacedGlare& Glare) {
    if (!IsFinite(Glare.m_Centre) || !(Glare.m_dDiameter > 0.0 && Glare.m_dDiameter <= 20.0) ||
        !(Glare.m_dLight >= 0.0 && Glare.m_dLight <= 10.0))
        throw ClException("sim: a glare is out of range", -35, false, VEK_HERE);
}

void Check(const ClDirtSettings& Settings) {
    for (const int nCount : {Settings.m_nSpecks, Settings.m_nHairs, Settings.m_nSmudges})
        if (nCount < 0 || nCount > 10000)
            throw ClException("sim: dirt is counted from 0 to 10000", -35, false, VEK_HERE);
    CheckSize(Settings.m_dSpeckSize);
    for (const ClPlacedSpeck& Speck : Settings.m_aPlaced)
        CheckPlaced(Speck);
    for (const ClPlacedHair& Hair : Settings.m_aPlacedHairs)
        CheckHair(Hair);
    for (const ClPlacedGlare& Glare : Settings.m_aGlares)
        CheckGlare(Glare);
}

ClPoint Anywhere(ClRandom& Random) {
    const double x = Random.Around(0.0, g_dReachX);
    return {x, Random.Around(0.0, g_dReachY)};
}

/// Runs `Paint(nColumn, nRow, dx, dy)` over the samples around a centre.
template <class TpPaint>
void ForWindow(const ClPoint& Centre, double dReach, TpPaint Paint) {
    const ClWindow Window(Centre, dReach, dReach);
    for (int nRow = Window.m_nTop; nRow < Window.m_nBottom; ++nRow) {
        for (int nColumn = Window.m_nLeft; nColumn < Window.m_nRight; ++nColumn) {
            const ClPoint p = ClPlate::Position(nColumn, nRow);
            Paint(nColumn, nRow, p.x - Centre.x, p.y - Centre.y);
        }
    }
}

/// A grain: a disc whose radius wobbles with the direction.
void PaintSpeck(ClPlate& Plate, double dLargest, ClRandom& Random) {
    const ClPoint Centre = Anywhere(Random);
    const double u = Random.Uniform();
    const double dRadius = 0.5 * dLargest * (0.25 + 0.75 * u * u * u);
    const double dDarkness = Random.Uniform(0.25, 0.85);
    const ClNoiseField Wobble(Random.Next(), 0.8);
    ForWindow(Centre, 1.6 * dRadius + 0.05, [&](int nColumn, int nRow, double dx, double dy) {
        const double d = std::sqrt(dx * dx + dy * dy);
        const double dEdge = d > 0.0 ? dRadius * (1.0 + 0.5 * Wobble.At(dx / d, dy / d)) : dRadius;
        const double dCoverage = SmoothStep(-0.02, 0.02, dEdge - d);
        Plate.DarkenTo(nColumn, nRow, 1.0 - dDarkness * dCoverage);
    });
}

void PaintDisc(ClPlate& Plate, const ClPoint& Centre, double dRadius, double dDarkness) {
    ForWindow(Centre, dRadius + 0.03, [&](int nColumn, int nRow, double dx, double dy) {
        const double dInside = dRadius - std::sqrt(dx * dx + dy * dy);
        Plate.DarkenTo(nColumn, nRow, 1.0 - dDarkness * SmoothStep(-0.02, 0.02, dInside));
    });
}

void PaintPlaced(ClPlate& Plate, const ClPlacedSpeck& Speck) {
    PaintDisc(Plate, Speck.m_Centre, 0.5 * Speck.m_dDiameter, Speck.m_dDarkness);
}

void PaintHair(ClPlate& Plate, ClRandom& Random) {
    const ClPoint From = Anywhere(Random);
    const double dLength = Random.Uniform(2.0, 6.0);
    const double dHeading = Random.Uniform(0.0, 2.0 * g_dPi);
    const double dCurl = Random.Around(0.0, 2.5);
    const double dHalfWidth = Random.Uniform(0.025, 0.055);
    const double dDarkness = Random.Uniform(0.25, 0.75);
    ClPoint p = From;
    constexpr double dStep = 0.015;
    const int nSteps = static_cast<int>(dLength / dStep);
    for (int n = 0; n < nSteps; ++n) {
        // The curl grows along the hair, like that of a lash.
        const double t = static_cast<double>(n) / nSteps;
        const double dDirection = dHeading + dCurl * t * t;
        p.x += dStep * Cosine(dDirection);
        p.y += dStep * Sine(dDirection);
        // Discs so dense along the curve that a line results.
        PaintDisc(Plate, p, dHalfWidth, dDarkness);
    }
}

/// Discs along the hair, as the drawn ones are painted.
void PaintPlacedHair(ClPlate& Plate, const ClPlacedHair& Hair) {
    constexpr double dStep = 0.015;
    const double dx = Hair.m_To.x - Hair.m_From.x;
    const double dy = Hair.m_To.y - Hair.m_From.y;
    const int nSteps = static_cast<int>(Limit(std::sqrt(dx * dx + dy * dy) / dStep, 0.0, 4000.0));
    for (int n = 0; n <= nSteps; ++n) {
        const double t = nSteps > 0 ? static_cast<double>(n) / nSteps : 0.0;
        PaintDisc(Plate, {Hair.m_From.x + t * dx, Hair.m_From.y + t * dy}, 0.5 * Hair.m_dWidth,
                  Hair.m_dDarkness);
    }
}

void PaintGlare(ClPlate& Plate, const ClPlacedGlare& Glare) {
    const double dRadius = 0.5 * Glare.m_dDiameter;
    ForWindow(Glare.m_Centre, dRadius, [&](int nColumn, int nRow, double dx, double dy) {
        const double d = std::sqrt(dx * dx + dy * dy) / dRadius;
        Plate.Brighten(nColumn, nRow, Glare.m_dLight * (1.0 - SmoothStep(0.0, 1.0, d)));
    });
}

/// A stain without an edge, streaked by the finger or cloth that left it.
void PaintSmudge(ClPlate& Plate, ClRandom& Random) {
    const ClPoint Centre = Anywhere(Random);
    const double dRadius = Random.Uniform(0.5, 2.5);
    const double dFlatness = Random.Uniform(1.0, 2.5);
    const double dDarkness = Random.Uniform(0.02, 0.12);
    const double dHeading = Random.Uniform(0.0, g_dPi);
    const double c = Cosine(dHeading);
    const double s = Sine(dHeading);
    const ClNoiseField Streaks(Random.Next(), 0.5);
    ForWindow(Centre, dRadius, [&](int nColumn, int nRow, double dx, double dy) {
        const double u = c * dx + s * dy;
        const double v = (c * dy - s * dx) * dFlatness;
        const double d = std::sqrt(u * u + v * v) / dRadius;
        const double dFading = 1.0 - SmoothStep(0.0, 1.0, d);
        const double dStreak = 0.65 + 0.35 * Streaks.At(0.25 * u, v);
        Plate.Darken(nColumn, nRow, dDarkness * dFading * dStreak);
    });
}

int Part(double dAmount, int nAll) {
    return static_cast<int>(std::lround(dAmount * nAll));
}

} // namespace

ClDirtSettings DirtOfAmount(double dAmount) {
    if (!(dAmount >= 0.0 && dAmount <= 1.0))
        throw ClException("sim: an amount of dirt is not from 0 to 1", -35, false, VEK_HERE);
    ClDirtSettings Settings;
    Settings.m_nSpecks = Part(dAmount, 150);
    Settings.m_nHairs = Part(dAmount, 6);
    Settings.m_nSmudges = Part(dAmount, 9);
    Settings.m_dSpeckSize = 0.3;
    return Settings;
}

void PaintDirt(ClPlate& Plate, const ClDirtSettings& Settings, std::uint64_t nSeed) {
    Check(Settings);
    ClRandom Smudge(nSeed, eSubjectSmudge);
    for (int n = 0; n < Settings.m_nSmudges; ++n)
        PaintSmudge(Plate, Smudge);
    ClRandom Speck(nSeed, eSubjectSpeck);
    for (int n = 0; n < Settings.m_nSpecks; ++n)
        PaintSpeck(Plate, Settings.m_dSpeckSize, Speck);
    ClRandom Hair(nSeed, eSubjectHair);
    for (int n = 0; n < Settings.m_nHairs; ++n)
        PaintHair(Plate, Hair);
    for (const ClPlacedSpeck& Placed : Settings.m_aPlaced)
        PaintPlaced(Plate, Placed);
    for (const ClPlacedHair& Placed : Settings.m_aPlacedHairs)
        PaintPlacedHair(Plate, Placed);
    for (const ClPlacedGlare& Placed : Settings.m_aGlares)
        PaintGlare(Plate, Placed);
}

} // namespace sim
