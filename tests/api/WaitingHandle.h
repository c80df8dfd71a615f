#pragma once

/// Handles whose warp is not prepared, and what must not pass for its table.

#include "api/Api.h"
#include "support/Tables.h"

namespace TestSupport {

/// A handle with calibration data whose warp waits for a table or the next run.
struct StWaiting : ClApiHandle {
    explicit StWaiting(const StRecord& Record = PlausibleRecord()) {
        Set("PrecalculatedData=true");
        EXPECT_EQ(SetData(RecordBlock(Record)), 0);
    }

    /// The status of a correction.
    long Run(const Bytes& aIn) {
        long nStatus = 0;
        Corrected(aIn, &nStatus);
        return nStatus;
    }
};

/// The table of a target of one pixel, which has no source, for a capture that there is not.
inline StTable TableOfNothing() {
    StTable Table = TableOf({-1});
    Table.m_nSourceWidth = Table.m_nSourceHeight = 0;
    Table.m_nTargetWidth = Table.m_nTargetHeight = 1;
    Table.m_nImageWidth = Table.m_nImageHeight = 1;
    return Table;
}

} // namespace TestSupport
