#pragma once

/// Finds the dots of the pattern that are missing among those that were found.
///
/// The centres of both do not say how they lie to each other when dots are missing. So each pair
/// of a place and a dot is tried as the one that fits, and the shift wins under which most places
/// have a dot within reach in both directions. 75 places and as many dots make 5625 shifts
/// of at most 5625 comparisons each: some hundredths of a second, for an answer that stands on its
/// own.

#include <cstddef>
#include <vector>

namespace qk7 {

struct StPlace {
    double m_dX = 0.0;
    double m_dY = 0.0;
};

struct StUnfilled {
    std::size_t m_nIndex = 0; ///< of the place
    StPlace m_Place;          ///< shifted to where the dot ought to be
};

/// The places without a dot within `Reach` to each side, which is less than half a pitch. None
/// where that is not certain: where two shifts fit equally well, as when the whole first row is
/// missing, or where places and dots do not add up, as in an image that is turned too far.
std::vector<StUnfilled> UnfilledPlaces(const std::vector<StPlace>& aPlaces,
                                       const std::vector<StPlace>& aDots, const StPlace& Reach);

} // namespace qk7
