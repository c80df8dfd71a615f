#pragma once

/// Dirt on the platen: specks, hairs and smudges, painted into the reflectance of a plate.

#include "sim/Plate.h"

#include <cstdint>

namespace sim {

/// The defaults are a clean platen.
struct ClDirtSettings {
    int m_nSpecks = 0;          ///< dark grains, most of them small
    int m_nHairs = 0;           ///< thin curved lines of 2 to 6 mm
    int m_nSmudges = 0;         ///< soft pale stains of 1 to 5 mm
    double m_dSpeckSize = 0.20; ///< largest diameter of a speck, millimetres
};

/// Paints dirt at places that the seed decides, all over the plate. Throws -35 for
/// settings out of range: counts of 0 to 10000, specks of up to 5 mm.
void PaintDirt(ClPlate& Plate, const ClDirtSettings& Settings, std::uint64_t nSeed);

} // namespace sim
