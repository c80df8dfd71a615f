#pragma once

#include "report/Dots.h"

namespace report {

enum class ERegion {
    eMissing, ///< a dot was expected there
    eRefused, ///< something was found there and not taken for a dot
};

/// Of the capture, raw pixels.
struct StRegion {
    ERegion m_eRegion = ERegion::eMissing;
    StBox m_Box;
    std::string m_sWords; ///< why: "too small"; may be empty
};

struct StCaptureView {
    StFrame m_Frame;        ///< the capture's
    std::string m_sPicture; ///< data URI of the capture, its upper line uppermost; may be empty
    Dots m_aDots;
    std::vector<StRegion> m_aRegions;
};

/// The capture in the proportions of the plate, which its pixels do not have, with rings on the
/// dots found, lines between neighbours of the pattern, squares with names on doubtful ones, and
/// boxes where dots are missing or something was refused. What lies outside the capture is not
/// drawn and its number told. `sPrefix` as for `ClSvg`.
std::string DrawDotsOverCapture(const StCaptureView& Capture, const std::string& sPrefix);

} // namespace report
