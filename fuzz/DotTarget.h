#pragma once

/// A dot target that the bytes of an input spoil. Any bytes as pixels would show no target at all,
/// so they say what to do with a good one instead: two for each of its 75 dots, how far it is moved
/// in x and in y, -128 for not painted; behind them four for each further blot, its place, size and
/// grey value.

#include "Harness.h"

namespace Fuzz {

/// An image just large enough for the pattern.
struct StTargetFrame {
    unsigned int m_nWidth; ///< pixels, a multiple of 4
    unsigned int m_nHeight;
    double m_dDpiX;
    double m_dDpiY;
};
constexpr StTargetFrame cRawTarget{280, 880, 492.706, 1009.287};
constexpr StTargetFrame cCorrectedTarget{280, 440, 500.0, 500.0};

/// The bitmap block.
std::string DotTarget(const StTargetFrame& Frame, const std::uint8_t* pData, std::size_t nSize);

} // namespace Fuzz
