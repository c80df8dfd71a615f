#pragma once

/// Dirt on the platen: specks, hairs and smudges, painted into the reflectance of a plate, and
/// spots of glare over it.

#include "sim/Plate.h"
#include "sim/Raster.h"

#include <cstdint>
#include <vector>

namespace sim {

/// A speck at a known place: an even disc, so that its area and centre are known too.
struct ClPlacedSpeck {
    ClPoint m_Centre;         ///< on the platen, millimetres
    double m_dDiameter = 0.2; ///< millimetres, up to 5
    double m_dDarkness = 0.8; ///< share of the light that it takes, 0 to 1
};

/// A straight hair from end to end, even, with round ends.
struct ClPlacedHair {
    ClPoint m_From; ///< on the platen, millimetres
    ClPoint m_To;
    double m_dWidth = 0.08;   ///< millimetres, up to 1
    double m_dDarkness = 0.6; ///< share of the light that it takes, 0 to 1
};

/// Light that gets to the sensor from elsewhere: a soft round spot.
struct ClPlacedGlare {
    ClPoint m_Centre;         ///< on the platen, millimetres
    double m_dDiameter = 1.0; ///< millimetres, up to 20
    double m_dLight = 1.0;    ///< in its middle, 1 being what a clean platen gives; up to 10
};

/// The defaults are a clean platen.
struct ClDirtSettings {
    int m_nSpecks = 0;                    ///< dark grains, most of them small
    int m_nHairs = 0;                     ///< thin curved lines of 2 to 6 mm
    int m_nSmudges = 0;                   ///< soft pale stains of 1 to 5 mm
    double m_dSpeckSize = 0.20;           ///< largest diameter of a speck, millimetres
    std::vector<ClPlacedSpeck> m_aPlaced; ///< further specks, each at its own place
    std::vector<ClPlacedHair> m_aPlacedHairs;
    std::vector<ClPlacedGlare> m_aGlares;
};

/// Dirt by one number: 0 is a clean platen, 1 a very dirty one of 150 specks of up to 0.3 mm, 6
/// hairs and 9 smudges, in between the counts grow evenly. With one seed, more dirt is the dirt
/// before and some more. Throws -35 for a number not from 0 to 1.
ClDirtSettings DirtOfAmount(double dAmount);

/// Paints dirt all over the plate, at places that the seed decides, and the placed specks at
/// theirs, placed hairs, and glare over all of it. Throws -35 for settings out of range: counts of
/// 0 to 10000, specks of up to 5 mm.
void PaintDirt(ClPlate& Plate, const ClDirtSettings& Settings, std::uint64_t nSeed);

} // namespace sim
