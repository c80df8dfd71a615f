#pragma once

/// What the calls answer to a calibration block, worked out from its bytes alone.

#include "support/Records.h"

namespace Calls {

using TestSupport::Bytes;
using TestSupport::StRecord;

struct StReadRecord {
    long m_nStatus; ///< what reading answers
    StRecord m_Record;
};

/// A block read as a record, in whichever layout it is.
StReadRecord ReadRecord(const Bytes& aBlock);

/// Whether a record that was read is that of a target: its points the pattern's, its steps alike.
bool IsPlausible(const StRecord& Record);

/// Whether a target can be built of its points.
bool IsReference(const StRecord& Record);

/// Whether two target points are the same, so that no smooth mapping exists.
bool HasTwinPoints(const StRecord& Record);

} // namespace Calls
