#pragma once

#include "report/Dots.h"

namespace report {

/// The part of a drawing that shows a capture or a corrected image: as large as fits into a room,
/// in the proportions of the plate.
class ClPanel {
public:
    /// A frame without size or resolution, or more than four times as wide as high or as high as
    /// wide, has no panel: IsDrawable() is false, nothing else may then be asked.
    ClPanel(const StFrame& Frame, const StBox& Room);

    bool IsDrawable() const { return m_Box.m_dWidth > 0.0; }
    const StBox& Box() const { return m_Box; }

    /// Where the middle of a pixel lies in the drawing, and how a distance looks there.
    StPoint At(const StPoint& Pixel) const;
    StPoint Along(const StPoint& Pixels) const;
    StBox At(const StBox& Pixels) const;

    /// Whether a place is on the frame; what is no number is not.
    bool Holds(const StPoint& Pixel) const;

    double UnitsPerMillimetre() const { return m_dScale; }

private:
    StFrame m_Frame;
    StBox m_Box;
    double m_dScale = 0.0;
};

/// The proportions of a frame: what `nWidth` units of a drawing make in height. 0 for a frame
/// that has no panel, and never more than twice the width.
double HeightFor(const StFrame& Frame, double dWidth);

/// Border, and ticks on the left and below with the numbers of lines and columns.
void DrawRawAxes(ClSvg& rSvg, const ClPanel& Panel, const StFrame& Frame);

} // namespace report
