// A preparation that runs out of memory, at each of its allocations.

#include "api/WaitingHandle.h"
#include "calls/TableRules.h"
#include "support/AllocationFailures.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClFailAllocation;
using TestSupport::HashOf;
using TestSupport::PlausibleRecord;
using TestSupport::PrecalculatedBlock;
using TestSupport::StRecord;
using TestSupport::StWaiting;
using TestSupport::TableOfNothing;

namespace {

/// A run whose allocation `nAfter` fails. Returns false where none did.
bool RunWithout(StWaiting& rHandle, long nAfter, Bytes& rIn, Bytes& rOut, long& rnStatus) {
    unsigned long nSize = rOut.size();
    const ClFailAllocation Fail(nAfter);
    rnStatus = Calibrate(rHandle, rIn.data(), rIn.size(), rOut.data(), &nSize);
    return ClFailAllocation::Happened();
}

} // namespace

TEST(WarpWithoutMemory, IsPreparedByTheNextRun) {
    const StRecord Record = PlausibleRecord(20, 24, 8, 10);
    const Bytes aWithout = Calls::BlockWithoutTable(HashOf(Record));
    Bytes aIn = Capture(20, 24);
    StWaiting Whole(Record);
    const Bytes aExpected = Whole.Corrected(aIn);
    const Bytes aTable = Whole.PrecalculatedData();
    bool bHappened = true;
    bool bSeenWithout = false;
    for (long nAfter = 0; bHappened; ++nAfter) {
        StWaiting Handle(Record);
        Bytes aOut(aExpected.size());
        long nStatus = 0;
        bHappened = RunWithout(Handle, nAfter, aIn, aOut, nStatus);
        // Some work can do without what it asks for.
        const bool bFailed = bHappened && nStatus != QMT_SUCCESS;
        EXPECT_EQ(nStatus, bFailed ? QMT_ERROR_OUT_OF_MEMORY : QMT_SUCCESS) << nAfter;
        EXPECT_EQ(aOut, bFailed ? Bytes(aExpected.size()) : aExpected) << nAfter;
        const Bytes aLeft = Handle.PrecalculatedData();
        EXPECT_TRUE(aLeft == aWithout || aLeft == aTable) << nAfter;
        bSeenWithout |= aLeft == aWithout;
        EXPECT_EQ(Handle.Corrected(aIn), aExpected) << nAfter;
        EXPECT_EQ(Handle.PrecalculatedData(), aTable) << nAfter;
    }
    EXPECT_TRUE(bSeenWithout);
}

// Were the block taken, its one entry would be all the table of a target of 600 x 600 pixels.
TEST(WarpWithoutMemory, IsNotMixedWithABlockWithoutCapture) {
    const StRecord Record = PlausibleRecord(20, 24, 600, 600);
    Bytes aIn = Capture(20, 24);
    for (long nAfter = 0; nAfter < 30; ++nAfter) {
        StWaiting Handle(Record);
        EXPECT_EQ(Handle.SetPrecalculatedData(PrecalculatedBlock(TableOfNothing(), HashOf(Record))),
                  QMT_ERROR_CURRUPT_DATA);
        Bytes aOut(500000);
        long nStatus = 0;
        EXPECT_FALSE(RunWithout(Handle, nAfter, aIn, aOut, nStatus));
        EXPECT_EQ(nStatus, QMT_ERROR_NOT_INITIALIZED);
        EXPECT_EQ(Handle.Run(aIn), QMT_ERROR_NOT_INITIALIZED);
    }
}
