#pragma once

/// Which scanners of a simulated production line have a target that is spoilt, and how.

#include <cstdint>
#include <string>

namespace qk7 {

struct StLine {
    std::uint64_t m_nScanners = 0;
    std::uint64_t m_nSpoilt = 0; ///< of them, at most all
};

/// The target case of a scanner, counted from 0; empty for a target as it should be. The spoilt
/// ones lie evenly among the others, and take the cases in turn.
std::string SpoiltCase(const StLine& Line, std::uint64_t nScanner);

} // namespace qk7
