#pragma once

/// What lies on the platen: a fine raster of reflectances, 1 where light comes back in full (the
/// clean platen), 0 where none does. Subjects are painted into it in millimetres; a scanner then
/// looks at it. Painting first and imaging later keeps the subjects free of the scanner's geometry
/// and lets the same scene be seen by several scanners, the ideal one included.
///
/// The raster has 50 samples per millimetre, 1270 dots per inch: finer than the raw lines
/// (39.7 per millimetre), so that dots of 0.8 mm keep their centres to a thousandth of a pixel.

#include "sim/Raster.h"

#include <cstddef>
#include <vector>

namespace sim {

class ClPlate {
public:
    static constexpr double ms_dSamplesPerMm = 50.0;
    static constexpr int ms_nWidth = 1150;  ///< samples: 23 mm
    static constexpr int ms_nHeight = 1450; ///< samples: 29 mm

    /// A clean platen.
    ClPlate();

    /// The platen position of a sample, and the inverse in fractions of samples.
    static ClPoint Position(int nColumn, int nRow);
    static ClPoint Sample(const ClPoint& Platen);

    /// Takes the share `dDarkness` (0 to 1) of the light away at a sample inside the raster.
    void Darken(int nColumn, int nRow, double dDarkness);
    /// Adds light that comes from elsewhere, as a share of what a clean platen gives.
    void Brighten(int nColumn, int nRow, double dLight);
    /// Lowers the reflectance of a sample to `dReflectance` where it is higher: prints that
    /// overlap are no darker than one alone.
    void DarkenTo(int nColumn, int nRow, double dReflectance);
    /// Marks a sample as covered by a finger.
    void Cover(int nColumn, int nRow);

    /// The reflectance, interpolated between the four samples around; outside the raster that of
    /// the nearest sample.
    double Reflectance(const ClPoint& Platen) const;
    /// Whether the nearest sample is covered by a finger.
    bool IsCovered(const ClPoint& Platen) const;

private:
    static std::size_t Index(int nColumn, int nRow);

    std::vector<float> m_aReflectance;
    std::vector<unsigned char> m_aCovered;
};

/// The samples of a rectangle on the platen, cut to the raster; the last ones are excluded.
struct ClWindow {
    /// Around `Centre`, `dReachX` and `dReachY` millimetres to each side.
    ClWindow(const ClPoint& Centre, double dReachX, double dReachY);

    int m_nLeft;
    int m_nTop;
    int m_nRight;
    int m_nBottom;
};

} // namespace sim
