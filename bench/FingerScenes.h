#pragma once

/// Fingers of which dryness, pressure and dirt are drawn from their whole ranges.

#include "sim/Capture.h"

#include <cstdint>

namespace bench {

/// What is drawn from the whole range; the rest is as usual: dryness and wetness 0, pressure 0.95
/// to 1.05, an amount of dirt of 0.1. Pattern, place, size, ridge distance, contrast, scanner and
/// light differ in any case; of eight fingers one lies only partly on the platen, and one is small.
enum class EVaried { eAll, eDryness, ePressure, eDirt };

struct ClFingerScene {
    sim::ClFingerSettings m_Finger;
    double m_dDirt = 0.0; ///< amount, 0 to 1
    /// A light more uneven than a good scanner's, for a further capture of the empty platen.
    sim::ClLightSettings m_UnevenLight;
};

/// Where all is varied, every fourth finger is wet in place of dry.
ClFingerScene DrawFingerScene(EVaried eVaried, std::uint64_t nSeed);

} // namespace bench
