#pragma once

/// Residuals to look at: on the left the vectors of one calibration, on the right how long they
/// are, rms, over many. What is darker is further off, in bands that are told below.

#include "bench/Residuals.h"
#include "sim/Raster.h"

#include <string>
#include <vector>

namespace bench {

/// The bands end here, pixels; the last one has no end. Below them the bar in the left panel is one
/// pixel long.
constexpr std::array<double, 5> g_aBandEnds{0.05, 0.1, 0.2, 0.5, 1.0};

class ClResidualPicture {
public:
    /// The first field is the one that is drawn as vectors.
    void Add(const ClResidualField& Field);
    /// Throws std::runtime_error where the file cannot be written.
    void Write(const std::string& sFile) const;

private:
    sim::ClRaster Vectors() const;
    sim::ClRaster RmsLengths() const;

    std::vector<ClResidualField> m_aFields;
};

} // namespace bench
