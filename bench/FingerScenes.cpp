#include "bench/FingerScenes.h"

#include "sim/Random.h"

namespace bench {

namespace {

enum ESubject : std::uint64_t { eSubjectScene = 91, eSubjectLight };

sim::ClFingerSettings AnyFinger(sim::ClRandom& rRandom) {
    sim::ClFingerSettings Finger;
    Finger.m_ePattern = static_cast<sim::EPattern>(rRandom.Integer(0, 3));
    Finger.m_Centre.x = rRandom.Around(0.0, 0.8);
    Finger.m_Centre.y = rRandom.Around(0.6, 1.0);
    Finger.m_dHalfWidth = rRandom.Uniform(5.6, 7.2);
    Finger.m_dHalfHeight = Finger.m_dHalfWidth * rRandom.Uniform(1.4, 1.5);
    Finger.m_dRotation = rRandom.Around(0.0, 8.0);
    Finger.m_dPeriod = rRandom.Uniform(0.45, 0.51);
    Finger.m_dContrast = rRandom.Uniform(0.66, 0.92);
    return Finger;
}

void LayPartly(sim::ClFingerSettings& rFinger, std::uint64_t nSeed, double dPlace) {
    rFinger.m_Centre.y = (9.5 + 1.5 * dPlace) * (nSeed % 16 < 8 ? 1.0 : -1.0);
}

void Shrink(sim::ClFingerSettings& rFinger, double dPlace) {
    rFinger.m_dHalfWidth = 4.4 + 0.8 * dPlace;
    rFinger.m_dHalfHeight = 1.42 * rFinger.m_dHalfWidth;
}

/// At most 248 at its brightest, so that nothing saturates.
sim::ClLightSettings UnevenLight(sim::ClRandom Random) {
    sim::ClLightSettings Light;
    Light.m_dBright = Random.Uniform(160.0, 200.0);
    Light.m_dTiltX = Random.Around(0.0, 0.12);
    Light.m_dTiltY = Random.Around(0.0, 0.12);
    Light.m_dVignette = Random.Uniform(0.0, 0.2);
    Light.m_dTopEdge = Random.Uniform(0.0, 0.1);
    Light.m_dCorners = Random.Uniform(0.0, 0.25);
    return Light;
}

} // namespace

ClFingerScene DrawFingerScene(EVaried eVaried, std::uint64_t nSeed) {
    sim::ClRandom Random(nSeed, eSubjectScene);
    ClFingerScene Scene;
    Scene.m_Finger = AnyFinger(Random);
    const double dPressure = Random.Uniform(0.5, 1.5);
    const double dMoisture = Random.Uniform();
    const double dPlace = Random.Uniform();
    const double dDirt = Random.Uniform();
    const auto IsVaried = [&](EVaried e) { return eVaried == e || eVaried == EVaried::eAll; };
    const bool bWet = eVaried == EVaried::eAll && nSeed % 4 == 0;
    Scene.m_Finger.m_dPressure =
        IsVaried(EVaried::ePressure) ? dPressure : 1.0 + 0.1 * (dPressure - 1.0);
    Scene.m_Finger.m_dDryness = IsVaried(EVaried::eDryness) && !bWet ? dMoisture : 0.0;
    Scene.m_Finger.m_dWetness = bWet ? dMoisture : 0.0;
    Scene.m_dDirt = IsVaried(EVaried::eDirt) ? dDirt : 0.1;
    Scene.m_UnevenLight = UnevenLight(sim::ClRandom(nSeed, eSubjectLight));
    if (nSeed % 8 == 1)
        LayPartly(Scene.m_Finger, nSeed, dPlace);
    if (nSeed % 8 == 2)
        Shrink(Scene.m_Finger, dPlace);
    return Scene;
}

} // namespace bench
