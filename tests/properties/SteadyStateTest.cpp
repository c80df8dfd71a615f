// A handle that has corrected one capture corrects the next of its size in the memory that it has.

#include "api/Api.h"
#include "support/AllocationCount.h"
#include "support/Records.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::ClCountAllocations;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StAllocations;

namespace {

constexpr long cnMost = 20;
constexpr std::size_t cnSmall = 1200; ///< a bitmap's header with its palette

/// What the second of two calls allocates.
StAllocations AllocationsOfTheNext(const char* szGeometry, const char* szDynamic, Bytes aIn) {
    ClApiHandle Handle;
    EXPECT_EQ(Handle.SetData(RecordBlock(PlausibleRecord())), 0);
    Handle.Set(szGeometry);
    Handle.Set(szDynamic);
    Bytes aOut(aIn.size());
    StAllocations Counted;
    for (int i = 0; i < 2; ++i) {
        unsigned long nSize = aOut.size();
        const ClCountAllocations count;
        EXPECT_EQ(Calibrate(Handle, aIn.data(), aIn.size(), aOut.data(), &nSize), 0);
        Counted = count.SoFar();
    }
    return Counted;
}

} // namespace

TEST(SteadyState, ACaptureThatIsPassedThroughTakesNoNewImages) {
    const StAllocations Counted =
        AllocationsOfTheNext("GeometricCalibrate=off", "DynamicFingerMask=false", Capture(48, 132));
    EXPECT_LE(Counted.m_nCount, cnMost);
    EXPECT_LE(Counted.m_nLargest, cnSmall);
}
