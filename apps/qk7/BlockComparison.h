#pragma once

/// Stored blocks beside what this version makes: what differs, in words.

#include "apps/qk7/File.h"

#include <string>
#include <vector>

namespace qk7 {

struct StComparison {
    std::vector<std::string> m_aDifferences; ///< a sentence each; none where the blocks agree
    std::vector<std::string> m_aNotes;       ///< what is no difference and worth knowing

    void Add(const StComparison& Other);
};

/// A calibration block that loads, and what the library gives back after loading it. An older
/// layout is no difference: its content is the same in the layout of today.
StComparison CompareCalibration(const Bytes& Stored, const Bytes& Rewritten);

/// Two calibration blocks of the newest layout: of a file, and of its capture.
StComparison CompareRecords(const Bytes& Stored, const Bytes& Generated);

/// Two precalculated blocks that can be read: of a file, and of its calibration block.
StComparison ComparePrecalculated(const Bytes& Stored, const Bytes& Made);

} // namespace qk7
