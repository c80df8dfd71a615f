#pragma once

#include "diagnosis/Record.h"

#include <utility>

namespace diagnosis {

/// The target in a corrected image, as the library's accuracy check locates and judges it.
struct StLocated {
    Points m_aFound;         ///< in pattern order, pixels; empty where it is not found
    double m_dPercent = 0.0; ///< of the distances within the EFTS limits
    std::vector<std::pair<std::size_t, std::size_t>> m_aFailedPairs;
};

/// `Corrected` is a bitmap block. Throws std::invalid_argument for blocks that are none.
StLocated LocateCorrected(const Bytes& Calibration, const Bytes& Corrected);

} // namespace diagnosis
