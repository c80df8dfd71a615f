#pragma once

/// The probability of brightness of a pixel, from the smoothed image of the dark area: its
/// threshold moved to 128, within 0 to 255. In unsigned arithmetic of 16 bits, for vectors.

#include <algorithm>
#include <cstdint>

namespace Quick {

struct StBrightProb {
    explicit StBrightProb(long nThreshold)
        : m_nLift(static_cast<std::uint16_t>(std::max(cnDecision - nThreshold, 0L))),
          m_nDrop(static_cast<std::uint16_t>(std::max(nThreshold - cnDecision, 0L))) {}

    std::uint16_t Of(unsigned char nSmooth) const {
        const auto nLifted =
            std::min(static_cast<std::uint16_t>(nSmooth + m_nLift), std::uint16_t{255});
        return static_cast<std::uint16_t>(std::max(nLifted, m_nDrop) - m_nDrop);
    }

    static constexpr long cnDecision = 128;
    std::uint16_t m_nLift; ///< one of the two is 0
    std::uint16_t m_nDrop;
};

} // namespace Quick
