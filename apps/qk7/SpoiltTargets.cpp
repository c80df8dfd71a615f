#include "apps/qk7/SpoiltTargets.h"

#include <array>

namespace qk7 {

namespace {

/// Two are refused, three accepted and wrong.
constexpr std::array<const char*, 5> g_aCases{"hidden_dot", "missing_dot", "wide_pitch",
                                              "stand_in_far", "glare_spot"};

/// The line has as many parts as spoilt ones, and each lies in the middle of its part.
std::uint64_t PlaceOf(const StLine& Line, std::uint64_t nSpoilt) {
    return (2 * nSpoilt + 1) * Line.m_nScanners / (2 * Line.m_nSpoilt);
}

} // namespace

std::string SpoiltCase(const StLine& Line, std::uint64_t nScanner) {
    for (std::uint64_t n = 0; n < Line.m_nSpoilt; ++n)
        if (PlaceOf(Line, n) == nScanner)
            return g_aCases.at(n % g_aCases.size());
    return "";
}

} // namespace qk7
