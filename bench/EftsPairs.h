#pragma once

/// Where the accuracy check of a corrected image loses its points: the same measurement as
/// CalibrateCheckEfts(), taken apart.

#include "bench/Generation.h"

#include <vector>

namespace bench {

/// Two dots whose distance is out of the limits.
struct ClFailedPair {
    int m_nFirst; ///< places in the pattern, 0 to 74
    int m_nSecond;
    double m_dReference; ///< distance as it should be, pixels of the corrected image
    double m_dMeasured;
};

/// The dots of a corrected image, in pattern order, as the check locates them.
Points LocateCorrected(const Bytes& aCorrected);

/// Where a dot lies in a corrected image by the weights of its grey values, independent of any
/// threshold's grain: the centre of darkness around a place near it.
sim::ClPoint CentreOfDarkness(const Bytes& aCorrected, const sim::ClPoint& Near);

/// The pairs that do not pass; `aTarget` are the target points of the calibration data.
std::vector<ClFailedPair> FailedPairs(const Points& aTarget, const Points& aFound);

} // namespace bench
