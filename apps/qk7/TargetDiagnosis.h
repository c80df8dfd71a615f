#pragma once

/// Looks for the dots of the target once more, in the open: which were found, which regions were
/// refused and why, and where the pattern has a dot and the image has none.
///
/// The library's interface answers with a number alone. This is the one part of the tool that uses
/// the library's inside; its header names nothing of it.

#include "apps/qk7/File.h"

#include <string>
#include <vector>

namespace qk7 {

/// A region of the image that might have been a dot. Positions are those of its centre: the column
/// and the line, line 0 being the one that is stored first.
struct StRegion {
    double m_dX = 0.0;
    double m_dY = 0.0;
    double m_dArea = 0.0;         ///< pixels
    double m_dEccentricity = 0.0; ///< 0 for a circle, 1 for a line
};

/// Regions that were refused for the same reason.
struct StRefusal {
    std::string m_Reason;                    ///< a name: "area_too_small"
    std::string m_Words;                     ///< with the limit: "with an area below 200 pixels"
    double StRegion::*m_pMeasured = nullptr; ///< what the limit is about; null for a place
    std::vector<StRegion> m_aRegions;
};

/// A place of the pattern where no dot was found.
struct StGap {
    int m_nColumn = 0; ///< of the pattern, from 1
    int m_nRow = 0;    ///< of the pattern, from 1
    double m_dX = 0.0; ///< about where it ought to be, in the image
    double m_dY = 0.0;
};

struct StTargetDiagnosis {
    std::string m_Words;            ///< why the dots were not accepted; empty when they were
    std::size_t m_nDots = 0;        ///< dots of the pattern
    std::size_t m_nFound = 0;       ///< dots in a grid at the pattern's pitch
    std::vector<StRegion> m_aFound; ///< those
    /// Of those found, the ones that stood where the pattern's next dot was expected. Behind a
    /// missing dot the order is disturbed, and dots of the next columns are not accepted.
    std::size_t m_nAccepted = 0;
    std::vector<StRefusal> m_aRefusals; ///< in the order of the tests, without empty ones
    /// The dots that are missing; empty also where they cannot be told for certain.
    std::vector<StGap> m_aGaps;
    Bytes m_Picture; ///< a bitmap block, see `ClGridPicture`
    /// The scanner's resolution, by which dots are looked for, whatever the image's header tells.
    double m_dColumnsPerMm = 0.0;
    double m_dLinesPerMm = 0.0;
};

/// Which image of the target it is: a raw capture, or a corrected image.
enum class ETargetImage { eRaw, eCorrected };

/// `Image` is a bitmap block that the library has accepted, `Reference` a calibration block whose
/// target points replace the ideal pattern, or empty.
StTargetDiagnosis DiagnoseTarget(ETargetImage eImage, const Bytes& Image, const Bytes& Reference);

} // namespace qk7
