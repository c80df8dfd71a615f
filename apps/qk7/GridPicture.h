#pragma once

/// The picture of a grid for the eyes of a user: a pale copy of the image of the target, and in
/// black a spoke from each dot towards each of its neighbours, a cross on each region that was
/// refused, and a box where a dot is missing.
///
/// The library's own picture marks a dot by 3 x 3 samples on black, which a program finds easily
/// and an eye does not. The spokes are those marks, enlarged.

#include "apps/qk7/PatternGaps.h"

#include "Tools/FpImage.h"

namespace qk7 {

class ClGridPicture {
public:
    /// `Pitch` is the distance of neighbouring dots in samples; it scales what is drawn.
    ClGridPicture(const ClImage& Target, const StPlace& Pitch);

    /// `Marks` is the library's picture of the same size.
    void AddDot(const ClImage& Marks, const StPlace& Dot);
    void AddRefused(const StPlace& Region);
    void AddMissing(const StPlace& Gap);

    const ClImage& Image() const { return m_Image; }

private:
    /// Between two offsets from a place, in pitches.
    void DrawLine(const StPlace& Place, const StPlace& From, const StPlace& To);

    ClImage m_Image;
    StPlace m_Pitch;
};

} // namespace qk7
