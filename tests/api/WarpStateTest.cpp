// What a warp is after a preparation that failed and a block that is refused.

#include "api/WaitingHandle.h"
#include "calls/TableRules.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::HashOf;
using TestSupport::PlausibleRecord;
using TestSupport::PrecalculatedBlock;
using TestSupport::RecordBlock;
using TestSupport::StRecord;
using TestSupport::StWaiting;
using TestSupport::TableOf;
using TestSupport::TableOfNothing;

namespace {

/// A plausible record without a smooth mapping. Its target is so large that a step beside a small
/// table leads out of all memory.
StRecord Unsolvable() {
    StRecord Record = PlausibleRecord(16, 16, 600, 600);
    Record.m_aTarget[1] = Record.m_aTarget[0];
    return Record;
}

} // namespace

TEST(WarpState, IsNotThatOfABlockWithoutCapture) {
    StWaiting Handle(Unsolvable());
    EXPECT_EQ(
        Handle.SetPrecalculatedData(PrecalculatedBlock(TableOfNothing(), HashOf(Unsolvable()))),
        QMT_ERROR_CURRUPT_DATA);
    EXPECT_EQ(Handle.Run(Capture(16, 16)), QMT_ERROR_NOT_INITIALIZED);
    EXPECT_EQ(Handle.Run(Capture(16, 16)), QMT_ERROR_NOT_INITIALIZED);
}

TEST(WarpState, IsNoneAfterEveryFailedPreparation) {
    StWaiting Handle(Unsolvable());
    const Bytes aWithout = Calls::BlockWithoutTable(HashOf(Unsolvable()));
    EXPECT_EQ(Handle.PrecalculatedData(), aWithout);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Handle.Run(Capture(16, 16)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
        EXPECT_EQ(Handle.PrecalculatedData(), aWithout);
    }
}

TEST(WarpState, IsThatOfABlockLoadedBetweenFailedPreparations) {
    StWaiting Handle(Unsolvable());
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(Unsolvable()));
    EXPECT_EQ(Handle.Run(Capture(16, 16)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_EQ(Handle.SetPrecalculatedData(aBlock), 0);
    EXPECT_EQ(Handle.Run(Capture(16, 16)), QMT_ERROR_BITMAP_DIMENSION);
    EXPECT_EQ(Handle.Run(Capture(10, 9)), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), aBlock);
}

TEST(WarpState, GoesWithItsRecord) {
    StWaiting Handle(PlausibleRecord());
    EXPECT_EQ(Handle.SetPrecalculatedData(PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()))),
              0);
    EXPECT_EQ(Handle.Run(Capture(10, 9)), 0);
    EXPECT_EQ(Handle.SetData(RecordBlock(Unsolvable())), 0);
    EXPECT_EQ(Handle.PrecalculatedData(), Calls::BlockWithoutTable(HashOf(Unsolvable())));
    EXPECT_EQ(Handle.Run(Capture(10, 9)), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
}
