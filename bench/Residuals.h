#pragma once

/// Where the content of a corrected image lies against where it ought to lie, as vectors over the
/// whole image: not only at the dots, where the splines are held, but between and beyond them.

#include "bench/Generation.h"
#include "diagnosis/Zone.h"
#include "sim/Scanner.h"

#include <array>
#include <string>
#include <vector>

namespace bench {

using diagnosis::EZone;
constexpr std::array<EZone, 3> g_aZones{EZone::eInside, EZone::eEdge, EZone::eCorner};

/// The vectors of one calibration at even steps over the corrected image, borders included.
struct ClResidualField {
    static constexpr int cnColumns = 41;
    static constexpr int cnRows = 61;

    static sim::ClPoint PlaceOf(int nColumn, int nRow);
    const sim::ClPoint& At(int nColumn, int nRow) const {
        return m_aVectors[static_cast<std::size_t>(nRow * cnColumns + nColumn)];
    }

    Points m_aVectors; ///< pixels of the corrected image: where it lies less where it should
    Points m_aTarget;  ///< of the calibration, pixels of the corrected image
};

/// The field of a calibration that was derived from `Target`, by the true geometry of its scanner.
/// How the target lay on the platen is no error: it is where the corrected image was meant to be.
ClResidualField MeasureResiduals(const sim::ClScanner& Scanner, const sim::ClCapture& Target,
                                 const ClGeneration& Generated);

EZone ZoneOf(const sim::ClPoint& Place, const Points& aTarget);

/// The lengths of vectors, pixels.
class ClLengths {
public:
    void Add(double dLength) { m_aLengths.push_back(dLength); }
    std::size_t Count() const { return m_aLengths.size(); }
    double Mean() const;
    double Rms() const;
    double Largest() const;
    /// What 95 percent do not exceed.
    double Percentile95() const;

private:
    std::vector<double> m_aLengths;
};

/// Measures `nScanners` scanners, each with a target laid by hand; prints the lengths by zone, of
/// the derived data and of data with the true centres in place of the located ones; draws the
/// vectors of the first scanner and the rms lengths of all. Returns 0.
int PrintResiduals(const std::string& sPicture, unsigned long nScanners, unsigned long nFirst);

} // namespace bench
