#pragma once

/// What the grey values around a dot say of it, apart from where the library placed it.

#include "diagnosis/Record.h"

namespace diagnosis {

/// Not a number where nothing dark stands there.
struct StDotShape {
    StPoint m_GreyCentre;      ///< of the darkness, each pixel weighed by its own; pixels
    double m_dContrast = 0.0;  ///< share of the light around it that the dot takes
    double m_dDiameter = 0.0;  ///< of a disc of its area at half darkness, millimetres
    double m_dRoundness = 0.0; ///< its smallest by its largest width; 1 is a circle
};

/// The dot near a place, which has no other within 1.6 millimetres of its middle. The light around
/// it is the median of a ring, its own that of a small disc in its middle.
StDotShape MeasureDot(const StGrey& Image, const StPoint& Near, const StDensity& Density);

} // namespace diagnosis
