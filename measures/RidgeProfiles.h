#pragma once

/// Grey values along a short line across the ridges, and the widths that can be read from them.

#include "measures/GreyView.h"
#include "measures/RidgeDirections.h"

#include <optional>
#include <vector>

namespace measures {

/// Values at steps of half a sample, each the mean of five side by side along the ridges.
using Profile = std::vector<double>;

/// About (x, y), `nReach` samples to each side. Nothing where a corner of the strip that is
/// averaged is not on the finger.
std::optional<Profile> ProfileAcross(const ClGreyView& Image, const ClGreyView& Mask, int x, int y,
                                     const ClStep& Across, int nReach);

/// The difference of the highest and the lowest value.
double ContrastOf(const Profile& Values);

/// Widths in samples.
struct ClWidths {
    std::vector<double> m_aRidges;
    std::vector<double> m_aValleys;
};

/// Adds the widths of all ridges (below the middle between the lowest and the highest value) and
/// valleys of which the profile shows both ends. The ends are interpolated.
void AddWidths(const Profile& Values, ClWidths& rWidths);

} // namespace measures
