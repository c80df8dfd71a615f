#pragma once

/// Calibration data derived from simulated captures, by the exported calls alone, and how far its
/// points lie from the truth.

#include "sim/Capture.h"

#include <string>
#include <vector>

namespace bench {

using Bytes = std::vector<unsigned char>;
using Points = std::vector<sim::ClPoint>;

/// The words behind a failure: what the library logged last on this thread when it caught an
/// exception, without the description of its number.
std::string LastWords();

/// What the library made of a capture of the dot target.
struct ClGeneration {
    long m_nStatus = 0;
    std::string m_sWords; ///< of a failure
    Bytes m_aBlock;       ///< calibration block
    Points m_aActual;     ///< raw pixels, in pattern order
    Points m_aTarget;     ///< pixels of the corrected image
};

ClGeneration Generate(const sim::ClRaster& Raw);

/// Whether a calibration block is loaded; what was generated need not be.
bool Loads(const Bytes& aCalibration);

/// The capture corrected with a calibration block, finger mask off: 320 x 480 pixels as a block.
/// Throws what the library answers.
Bytes Correct(const Bytes& aCalibration, const sim::ClRaster& Raw);
constexpr std::size_t cnPixelsAt = 40 + 1024; ///< header and palette of an 8-bit block

/// The share of distances within the limits in a corrected image of the target, percent. Throws
/// what the library answers.
double CheckEfts(const Bytes& aCalibration, const Bytes& aCorrected);

/// Points against the true centres, raw pixels.
struct ClPointErrors {
    double m_dRmsX = 0.0;
    double m_dRmsY = 0.0;
    double m_dMaxX = 0.0;
    double m_dMaxY = 0.0;
};
ClPointErrors ErrorsOf(const Points& aActual, const Points& aTrue);

/// A point further off than this is wrong: a tenth of a dot in either direction.
constexpr double cdWrongX = 1.5;
constexpr double cdWrongY = 3.0;
bool IsWrong(const ClPointErrors& Errors);

} // namespace bench
