#pragma once

#include "report/Dots.h"

namespace report {

/// Two dots whose distance in the corrected image is beyond the limit.
struct StFailingPair {
    std::size_t m_nFirst = 0; ///< of `StEftsPairs::m_aDots`
    std::size_t m_nSecond = 0;
    double m_dReference = 0.0; ///< distance as it should be, pixels of the corrected image
    double m_dMeasured = 0.0;
    double m_dLimit = 0.0; ///< of the difference of both, pixels
};

struct StEftsPairs {
    StFrame m_Corrected;
    Dots m_aDots; ///< as located; their residuals are not asked for
    std::vector<StFailingPair> m_aFailing;
    std::size_t m_nAll = 0;  ///< pairs that were judged
    double m_dPercent = 0.0; ///< of them that pass
};

/// What a distance may be off by, pixels, for the EFTS at 500 dots per inch.
double EftsLimit(double dReference);

/// The dots with lines between those that fail together: the fifty pairs that are furthest beyond
/// their limits, each told with distance, error and limit, and the number of all. `sPrefix` as for
/// `ClSvg`.
std::string DrawEftsPairs(const StEftsPairs& Pairs, const std::string& sPrefix);

} // namespace report
