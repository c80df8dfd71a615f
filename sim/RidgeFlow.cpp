#include "sim/RidgeFlow.h"

#include "sim/Elementary.h"

#include <cmath>

namespace sim {

namespace {

enum ESubject : std::uint64_t { eSubjectSingular = 21, eSubjectTurn, eSubjectStretch };

constexpr double g_dTurn = 0.13;    ///< largest random turn, radians
constexpr double g_dBend = 0.55;    ///< bend at the sides of the tip, radians
constexpr double g_dStretch = 0.07; ///< largest relative change of the ridge distance

ClPoint Product(const ClPoint& a, const ClPoint& b) {
    return {a.x * b.x - a.y * b.y, a.x * b.y + a.y * b.x};
}

ClPoint Conjugate(const ClPoint& a) {
    return {a.x, -a.y};
}

ClPoint Unit(double x, double y) {
    const double d = std::sqrt(x * x + y * y);
    return d > 0.0 ? ClPoint{x / d, y / d} : ClPoint{1.0, 0.0};
}

ClPoint Turned(const ClPoint& Doubled, double dAngle) {
    return Product(Doubled, {Cosine(2.0 * dAngle), Sine(2.0 * dAngle)});
}

} // namespace

ClRidgeFlow::ClRidgeFlow(const ClFingerSettings& Settings, std::uint64_t nSeed)
    : m_ePattern(Settings.m_ePattern), m_dHalfWidth(Settings.m_dHalfWidth),
      m_dHalfHeight(Settings.m_dHalfHeight), m_dPeriod(Settings.m_dPeriod),
      m_Turn(ClRandom::Derive(nSeed, eSubjectTurn), 3.5),
      m_Stretch(ClRandom::Derive(nSeed, eSubjectStretch), 2.5) {
    ClRandom Random(nSeed, eSubjectSingular);
    switch (m_ePattern) {
    case EPattern::eArch:
        m_dArchSlope = Random.Uniform(0.6, 1.0);
        break;
    case EPattern::eLeftLoop:
        PlaceLoop(-1.0, Random);
        break;
    case EPattern::eRightLoop:
        PlaceLoop(1.0, Random);
        break;
    case EPattern::eWhorl:
        PlaceWhorl(Random);
        break;
    }
}

/// A loop that opens to the right (`dSide` 1) has its delta on the left.
void ClRidgeFlow::PlaceLoop(double dSide, ClRandom& Random) {
    const ClPoint Core{dSide * Random.Around(0.2, 0.4), Random.Around(-1.0, 0.8)};
    m_aCores.push_back(Core);
    m_aDeltas.push_back({Core.x - dSide * m_dHalfWidth * Random.Uniform(0.55, 0.7),
                         Core.y + m_dHalfHeight * Random.Uniform(0.5, 0.65)});
}

void ClRidgeFlow::PlaceWhorl(ClRandom& Random) {
    const ClPoint Upper{Random.Around(0.0, 0.8), Random.Around(-1.4, 0.8)};
    m_aCores.push_back(Upper);
    m_aCores.push_back({Upper.x + Random.Around(0.0, 0.6), Upper.y + Random.Uniform(1.2, 2.6)});
    for (const double dSide : {-1.0, 1.0})
        m_aDeltas.push_back({Upper.x + dSide * m_dHalfWidth * Random.Uniform(0.65, 0.8),
                             Upper.y + m_dHalfHeight * Random.Uniform(0.55, 0.7)});
}

ClPoint ClRidgeFlow::DoubledDirection(const ClPoint& Position) const {
    const ClPoint Plain = m_ePattern == EPattern::eArch ? Arch(Position) : Singular(Position);
    return Turned(Plain, g_dTurn * m_Turn.At(Position.x, Position.y));
}

ClPoint ClRidgeFlow::Singular(const ClPoint& Position) const {
    ClPoint Flow{1.0, 0.0};
    for (const ClPoint& Core : m_aCores)
        Flow = Product(Flow, Unit(Position.x - Core.x, Position.y - Core.y));
    for (const ClPoint& Delta : m_aDeltas)
        Flow = Product(Flow, Conjugate(Unit(Position.x - Delta.x, Position.y - Delta.y)));
    const double dTip = 1.0 - SmoothStep(-0.8, 0.3, Position.y / m_dHalfHeight);
    return Turned(Flow, g_dBend * dTip * Limit(Position.x / m_dHalfWidth, -1.0, 1.0));
}

/// Ridges y = const - lift(x): the slope is largest half way to the sides, and less above and
/// below the middle.
ClPoint ClRidgeFlow::Arch(const ClPoint& Position) const {
    const double u = Limit(Position.x / m_dHalfWidth, -1.0, 1.0);
    const double v = Limit((Position.y / m_dHalfHeight - 0.1) / 0.9, -1.0, 1.0);
    const double dShare = 0.35 + 0.65 * (1.0 - v * v) * (1.0 - v * v);
    // A lift of (1 - u^2)^2 has a slope as u (1 - u^2), at most 0.385. Toward the tip the slope
    // goes on to the sides.
    const double dTip = 1.0 - SmoothStep(-0.9, 0.0, Position.y / m_dHalfHeight);
    const double dSlope = m_dArchSlope * dShare * u * (1.0 - u * u) / 0.385 + 0.7 * dTip * u;
    return Unit(1.0 - dSlope * dSlope, 2.0 * dSlope);
}

double ClRidgeFlow::Period(const ClPoint& Position) const {
    return m_dPeriod * (1.0 + g_dStretch * m_Stretch.At(Position.x, Position.y));
}

} // namespace sim
