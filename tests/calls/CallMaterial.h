#pragma once

/// The blocks that a sequence of calls gives: good ones, spoilt ones and foreign ones, small enough
/// for thousands of calls a second.

#include "calls/Choices.h"
#include "support/Tables.h"

namespace Calls {

using TestSupport::Bytes;
using TestSupport::Digest;
using TestSupport::StRecord;
using TestSupport::StTable;

struct StSize {
    std::uint32_t m_nWidth;
    std::uint32_t m_nHeight;
};

/// A calibration block of any kind.
Bytes AnyRecordBlock(ClChoices& rChoices);

/// A precalculated block of any kind for a handle whose data have this hash, and whose captures
/// this size. `aGiven` are blocks that handles have given.
Bytes AnyTableBlock(ClChoices& rChoices, const Digest& aHash, const StSize& Source,
                    const std::vector<Bytes>& aGiven);

/// A capture of any kind; of this size where it is a good one.
Bytes AnyCapture(ClChoices& rChoices, const StSize& Size);

/// The calibration block of a scanner, and a finger on it, that are as small as the dynamic step
/// calibrates the quick way. Images are of one size in both modes, and their lines have ends.
Bytes QuickScanner();
Bytes QuickFinger();

/// Painted targets: as a scanner takes them, and as they are when corrected.
const Bytes& TargetCapture();
const Bytes& CorrectedTarget();

} // namespace Calls
