#pragma once

/// What a corrected image shows of a finger: how its ridges print, how much of it, and where.
///
/// The image is the output of the correction, the mask that of the same capture: 0 on the finger,
/// 255 on the background, in between on its rim. The finger is where the mask is below 128. The
/// correction stretches the contrast around every sample, so that the paler of two fingers prints
/// as dark as the other: all measures but one tell of the print as it is delivered, and what light
/// the ridges took is measured on the capture that was warped only.
///
/// Nothing is measured by a mathematics library's function other than the square root: the numbers
/// are the same on every machine.

#include "measures/GreyView.h"

#include <cstddef>
#include <optional>

namespace measures {

/// Nothing where it cannot be measured.
using Measure = std::optional<double>;

/// Of ridges and valleys, read from profiles across the ridges: straight lines of 1.6 mm through
/// every fourth sample (at 500 dots per inch) of every fourth line. A ridge is what is darker than
/// the middle between the lowest and the highest value of a profile. Profiles of less than 20 grey
/// values of contrast are left out; where none is left, nothing is measurable.
struct ClRidgeMeasures {
    /// Mean difference of the lightest and the darkest value of a profile, in parts of 255: 0.08
    /// to 1.
    Measure m_dContrast;
    /// Mean widths, mm: above 0, below 1.6.
    Measure m_dRidgeWidth;
    Measure m_dValleyWidth;
    /// Ridge width over ridge width and valley width together, 0 to 1: below a half the valleys
    /// are wider, as with a dry finger or little pressure.
    Measure m_dRidgeShare;
    /// Standard deviation of the ridge widths over their mean, from 0: ridges that run together
    /// over filled valleys, as with a wet finger, and interrupted ones raise it.
    Measure m_dRidgeSpread;
    Measure m_dValleySpread;
    /// How broken the ridges are, 0 to 1: of the energy of all gradients on the finger, the share
    /// that dark samples (below 85) have along the ridges. A ridge that goes on evenly has none.
    /// Follows dryness.
    Measure m_dBrokenness;
    /// The ridge share without what moisture does to it, about 0 to 0.9: ridge share
    /// + 6.5 brokenness - 0.85 ridge spread. Follows pressure.
    Measure m_dPressure;
    /// The profiles that were read.
    std::size_t m_nProfiles = 0;
};

struct ClFingerMeasures {
    /// Of the finger on the platen, mm^2: above 0.
    Measure m_dArea;
    /// Of the mean of all finger samples from the middle of the frame, mm to the right and down.
    Measure m_dOffsetX;
    Measure m_dOffsetY;
    /// Share of the finger's samples that are 255, and that are below 85: 0 to 1 each.
    Measure m_dSaturated;
    Measure m_dDark;
    ClRidgeMeasures m_Ridges;
};

/// `dDpi` is the resolution of both axes in dots per inch. Outside of 100 to 2000 lengths and
/// ridges are not measurable; of a mask without finger nothing is. Throws std::invalid_argument
/// where the sizes of image and mask differ.
ClFingerMeasures MeasureFinger(const ClGreyView& Image, const ClGreyView& Mask, double dDpi);

/// The share of the light that the ridges take, 0 to 1: one less a ratio of two grey values, that
/// which two percent of the finger's samples do not exceed to that which ninety percent do not.
/// For a capture that was warped, and nothing else: there the light is as it came. Nothing
/// without a finger, or where all is black. Throws as above.
Measure LightTaken(const ClGreyView& Warped, const ClGreyView& Mask);

} // namespace measures
