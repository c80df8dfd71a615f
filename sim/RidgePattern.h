#pragma once

/// The ridges of a finger, grown along a flow.
///
/// Noise is filtered again and again by a small band-pass filter that, at each place, lies along
/// the flow and has the ridge distance of the place. What fits is amplified until it saturates,
/// and ridges appear; where neighbouring ridges do not match, endings and bifurcations form, as
/// minutiae of real fingers do. Closed formulas for the phase of the ridges would be faster, but
/// have no consistent phase around a loop and no minutiae of themselves.
///
/// The growth runs on a raster of 12 samples per millimetre: 5 to 6.6 samples per ridge, enough
/// for a pattern that has no detail finer than its ridges. Everything finer (edges, pores) is
/// added when the finger is painted.

#include "sim/Raster.h"
#include "sim/RidgeFlow.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace sim {

class ClRidgePattern {
public:
    /// Grows ridges on a rectangle of the given half sizes, in millimetres, about the finger's
    /// middle.
    ClRidgePattern(const ClRidgeFlow& Flow, double dHalfWidth, double dHalfHeight,
                   std::uint64_t nSeed);

    /// About -1 in the middle of a valley to 1 on top of a ridge, interpolated; the rectangle's
    /// edge continues outside.
    double At(const ClPoint& Position) const;

private:
    class ClFilterBank;

    void Sow(std::uint64_t nSeed);
    void ChooseFilters(const ClRidgeFlow& Flow, const ClFilterBank& Bank);
    void Filter(const ClFilterBank& Bank);
    void Saturate();
    std::size_t Index(int nColumn, int nRow) const;
    ClPoint Position(int nColumn, int nRow) const;

    int m_nWidth;
    int m_nHeight;
    std::vector<float> m_aRidges;           ///< with a frame that filters reach into
    std::vector<unsigned short> m_aFilters; ///< index of each sample's filter
};

} // namespace sim
