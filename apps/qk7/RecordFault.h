#pragma once

/// Names the dot for which the library refuses to load a calibration block that it has generated.
///
/// Generating locates the dots one by one and judges each by its size, its shape and its column;
/// loading judges the finished record as a whole, and a little more strictly. What lies between
/// the two tolerances is generated and does not load. The library answers with a number alone, so
/// the tool applies its rules once more, in the open:
///
///   - a target point lies at most 10 pixels from the ideal pattern, in x and in y, when the
///     pattern is laid onto the first target point;
///   - the step from a dot to the one below it, in lines, and to the one on its right, in columns,
///     differs from the mean of all such steps by at most 30 percent.

#include "apps/qk7/File.h"
#include "apps/qk7/PatternGaps.h"

#include <optional>
#include <string>

namespace qk7 {

struct StRecordFault {
    /// Whose fault it is: the points of the reference, or those found in the capture.
    enum class EList { eTarget, eActual };

    EList m_eList = EList::eActual;
    int m_nColumn = 0;   ///< of the pattern, from 1
    int m_nRow = 0;      ///< of the pattern, from 1
    StPlace m_At;        ///< of the dot in the capture
    std::string m_Words; ///< "103.9 lines to the dot below it, where 55.6 to 103.3 are expected"
};

/// `Calibration` is a block of the newest layout. Nothing where its points are as they should be,
/// or where it is not readable.
std::optional<StRecordFault> FindRecordFault(const Bytes& Calibration);

} // namespace qk7
