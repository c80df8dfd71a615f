#include "sim/Finger.h"

#include "Tools/Exception.h"
#include "Tools/SourcePosition.h"
#include "sim/Elementary.h"
#include "sim/Random.h"
#include "sim/RidgeFlow.h"
#include "sim/RidgePattern.h"

#include <cmath>

namespace sim {

namespace {

/// The outline reaches beyond the half sizes by up to this factor.
constexpr double g_dMargin = 1.12;

enum ESubject : std::uint64_t { eSubjectFlow = 41, eSubjectRidges, eSubjectSkin };

void CheckRange(double dValue, double dLow, double dHigh) {
    if (!(dValue >= dLow && dValue <= dHigh))
        throw ClException("sim: a setting of the finger is out of range", -35, false, VEK_HERE);
}

void Check(const ClFingerSettings& Settings) {
    CheckRange(Settings.m_Centre.x, -100.0, 100.0);
    CheckRange(Settings.m_Centre.y, -100.0, 100.0);
    CheckRange(Settings.m_dHalfWidth, 1.0, 12.0);
    CheckRange(Settings.m_dHalfHeight, 1.0, 15.0);
    CheckRange(Settings.m_dRotation, -44.9, 44.9);
    CheckRange(Settings.m_dPeriod, 0.44, 0.52);
    CheckRange(Settings.m_dPressure, 0.5, 1.5);
    CheckRange(Settings.m_dContrast, 0.0, 1.0);
    CheckRange(Settings.m_dDryness, 0.0, 1.0);
    CheckRange(Settings.m_dWetness, 0.0, 1.0);
}

/// The skin: where it touches, and how dark that is. Positions are millimetres from the finger's
/// middle, the finger upright.
class ClSkin {
public:
    ClSkin(const ClFingerSettings& Settings, std::uint64_t nSeed);

    /// 0 in the middle of the finger, 1 on its outline, more outside.
    double Outline(const ClPoint& p) const;
    /// The share of the light that the skin takes, given the ridges' profile (-1 to 1) and the
    /// outline value there.
    double Darkness(const ClPoint& p, double dRidge, double dOutline) const;

private:
    double Threshold(const ClPoint& p, double dOutline) const;
    double Crease(const ClPoint& p) const;
    double Film(const ClPoint& p) const;

    const ClFingerSettings m_Settings;
    ClNoiseField m_Shape;
    ClNoiseField m_Edge;
    ClNoiseField m_Contact;
    ClNoiseField m_Grain;
    ClNoiseField m_Moisture;
    ClNoiseField m_Pores;
    double m_dCreaseY[2];
    double m_dCreaseSlope[2];
    int m_nCreases;
};

ClSkin::ClSkin(const ClFingerSettings& Settings, std::uint64_t nSeed)
    : m_Settings(Settings), m_Shape(ClRandom::Derive(nSeed, 1), 5.0),
      m_Edge(ClRandom::Derive(nSeed, 2), 0.8), m_Contact(ClRandom::Derive(nSeed, 3), 1.6),
      m_Grain(ClRandom::Derive(nSeed, 4), 0.16), m_Moisture(ClRandom::Derive(nSeed, 5), 1.1),
      m_Pores(ClRandom::Derive(nSeed, 6), 0.13) {
    ClRandom Random(nSeed, 7);
    m_nCreases = Random.Integer(0, 2);
    for (int n = 0; n < 2; ++n) {
        m_dCreaseY[n] = Random.Around(0.0, 0.7) * Settings.m_dHalfHeight;
        m_dCreaseSlope[n] = Random.Around(0.0, 0.4);
    }
}

double ClSkin::Outline(const ClPoint& p) const {
    const double v = p.y / m_Settings.m_dHalfHeight;
    // Fingers narrow toward the tip and a little toward the joint.
    const double dWidth = m_Settings.m_dHalfWidth * (1.0 + 0.06 * v - 0.04 * v * v);
    const double u = p.x / dWidth;
    // Between an ellipse (2 u^2 v^2) and a rectangle.
    const double d = std::sqrt(std::sqrt(u * u * u * u + v * v * v * v + 1.4 * u * u * v * v));
    return d * (1.0 + 0.05 * m_Shape.At(p.x, p.y));
}

double ClSkin::Crease(const ClPoint& p) const {
    double dOpen = 0.0;
    for (int n = 0; n < m_nCreases; ++n) {
        const double d = p.y - m_dCreaseY[n] - m_dCreaseSlope[n] * p.x + 0.3 * m_Edge.At(p.x, 0.0);
        dOpen += 1.0 - SmoothStep(0.03, 0.10, std::fabs(d));
    }
    return dOpen;
}

/// The height of the ridge profile above which the skin touches.
double ClSkin::Threshold(const ClPoint& p, double dOutline) const {
    const double dEdge = dOutline + 0.05 * m_Edge.At(p.x, p.y);
    double d = 0.05 - 0.9 * (m_Settings.m_dPressure - 1.0);
    d += 0.25 * m_Contact.At(p.x, p.y);
    d += 0.28 * m_Grain.At(p.x, p.y);
    d += m_Settings.m_dDryness * (0.35 + 1.1 * m_Grain.At(p.x + 50.0, p.y));
    d -= m_Settings.m_dWetness * (0.40 + 0.35 * m_Moisture.At(p.x, p.y));
    d += 1.2 * SmoothStep(0.80, 1.0, dEdge);
    return d + 0.8 * Crease(p);
}

/// Moisture between the ridges, in patches with a ragged edge.
double ClSkin::Film(const ClPoint& p) const {
    if (!(m_Settings.m_dWetness > 0.0))
        return 0.0;
    const double dLevel = m_Moisture.At(p.x + 30.0, p.y) + 0.35 * m_Edge.At(p.x + 30.0, p.y) +
                          0.25 * m_Grain.At(p.x + 30.0, p.y);
    return m_Settings.m_dWetness * SmoothStep(0.40, 0.85, dLevel);
}

double ClSkin::Darkness(const ClPoint& p, double dRidge, double dOutline) const {
    const double dHeight = dRidge - Threshold(p, dOutline);
    double dContact = SmoothStep(-0.35, 0.55, dHeight);
    if (dRidge > 0.55)
        dContact *= 1.0 - 0.45 * SmoothStep(0.62, 0.85, m_Pores.At(p.x, p.y));
    const double dTone = 0.86 + 0.09 * m_Contact.At(p.x + 20.0, p.y) +
                         0.05 * m_Edge.At(p.x + 20.0, p.y) + 0.08 * (1.0 - dOutline);
    const double dFading = 1.0 - SmoothStep(0.95, 1.0, dOutline);
    const double dFilm = 0.85 * Film(p);
    const double dDark = dContact > dFilm ? dContact : dFilm;
    return m_Settings.m_dContrast * Limit(dTone, 0.0, 1.0) * dFading * dDark;
}

/// Positions on the platen in the finger's own frame, upright about its middle.
class ClUpright {
public:
    explicit ClUpright(const ClFingerSettings& Settings)
        : m_Centre(Settings.m_Centre), m_dCosine(Cosine(Settings.m_dRotation * g_dPi / 180.0)),
          m_dSine(Sine(Settings.m_dRotation * g_dPi / 180.0)) {}

    ClPoint From(const ClPoint& Platen) const {
        const double dx = Platen.x - m_Centre.x;
        const double dy = Platen.y - m_Centre.y;
        return {m_dCosine * dx + m_dSine * dy, m_dCosine * dy - m_dSine * dx};
    }

    /// The samples that a finger of the given half sizes can cover.
    ClWindow Window(double dHalfWidth, double dHalfHeight) const {
        const double s = std::fabs(m_dSine);
        return {m_Centre, m_dCosine * dHalfWidth + s * dHalfHeight,
                m_dCosine * dHalfHeight + s * dHalfWidth};
    }

private:
    ClPoint m_Centre;
    double m_dCosine;
    double m_dSine;
};

} // namespace

void PaintFinger(ClPlate& Plate, const ClFingerSettings& Settings, std::uint64_t nSeed) {
    Check(Settings);
    const double dHalfWidth = g_dMargin * Settings.m_dHalfWidth;
    const double dHalfHeight = g_dMargin * Settings.m_dHalfHeight;
    const ClRidgeFlow Flow(Settings, ClRandom::Derive(nSeed, eSubjectFlow));
    const ClRidgePattern Ridges(Flow, dHalfWidth, dHalfHeight,
                                ClRandom::Derive(nSeed, eSubjectRidges));
    const ClSkin Skin(Settings, ClRandom::Derive(nSeed, eSubjectSkin));
    const ClUpright Upright(Settings);
    const ClWindow Window = Upright.Window(dHalfWidth, dHalfHeight);
    for (int nRow = Window.m_nTop; nRow < Window.m_nBottom; ++nRow) {
        for (int nColumn = Window.m_nLeft; nColumn < Window.m_nRight; ++nColumn) {
            const ClPoint p = Upright.From(ClPlate::Position(nColumn, nRow));
            const double dOutline = Skin.Outline(p);
            if (dOutline >= 1.0)
                continue;
            Plate.Cover(nColumn, nRow);
            Plate.Darken(nColumn, nRow, Skin.Darkness(p, Ridges.At(p), dOutline));
        }
    }
}

} // namespace sim
