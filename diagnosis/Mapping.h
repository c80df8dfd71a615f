#pragma once

#include "diagnosis/Record.h"
#include "diagnosis/SplineSystem.h"

namespace diagnosis {

/// From pixels of the corrected image to raw pixels, by the spline through the dots of a record.
/// The warp follows the same one, with places rounded to 1/1024 of a pixel.
class ClMapping {
public:
    /// Throws std::invalid_argument where the target points determine no spline.
    explicit ClMapping(const StRecord& Record);

    StPoint operator()(const StPoint& Corrected) const;

private:
    ClSplineSystem m_System;
    Points m_aFound;
};

} // namespace diagnosis
