#pragma once

/// What the calls answer to a precalculated block, worked out from its bytes alone.

#include "support/Tables.h"

namespace Calls {

using TestSupport::Bytes;
using TestSupport::Digest;
using TestSupport::StTable;

struct StReadTable {
    long m_nStatus;
    StTable m_Table;
};

/// A precalculated block as a handle takes it whose calibration data have this hash.
StReadTable ReadTable(const Bytes& aBlock, const Digest& aHash);

/// The block that a handle gives for a table: everything that loading leaves open is as usual.
Bytes UsualBlockOf(const StTable& Table, const Digest& aHash);
/// The block of a handle that has prepared nothing.
Bytes BlockWithoutTable(const Digest& aHash);

/// The offset of an entry.
std::int32_t OffsetOf(const StTable& Table, std::size_t nEntry);
/// Whether every offset names 4 by 4 samples of the source, or none.
bool AreOffsetsInside(const StTable& Table);

} // namespace Calls
