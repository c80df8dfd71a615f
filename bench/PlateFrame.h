#pragma once

/// Where a calibration puts the platen: derived data place the corrected image by the target as it
/// lay, turned and shifted against the platen. The map is affine, since the target is a plane that
/// lies on a plane, and three of its dots, known on the platen and in the corrected image, tell it.

#include "bench/Generation.h"

#include <array>

namespace bench {

class ClPlateFrame {
public:
    /// The true places of the dots on the platen, millimetres, and their target points.
    ClPlateFrame(const Points& aOnPlaten, const Points& aTarget);

    /// Platen millimetres to pixels of the corrected image.
    sim::ClPoint FromPlaten(const sim::ClPoint& Platen) const;

private:
    sim::ClPoint m_Platen; ///< of the first dot
    sim::ClPoint m_Target;
    std::array<double, 4> m_aMatrix{}; ///< row by row
};

} // namespace bench
