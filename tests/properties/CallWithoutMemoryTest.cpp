// Every call that works, with its first, second, third ... allocation failing: it answers that
// memory is missing and leaves its outputs, or gives what it always gives, where work can do
// without what it asked for. The next call gives what it always gave.

#include "api/Api.h"
#include "support/AllocationFailures.h"
#include "support/DotTargets.h"
#include "support/Records.h"

#include <functional>

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::ClFailAllocation;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;

namespace {

constexpr unsigned char cnFill = 0xEE;

/// What a call answers and leaves.
struct StOutcome {
    long m_nStatus = 0;
    unsigned long m_nSize = 0;
    Bytes m_aOut;
};

/// A call that writes into a buffer of this size.
using Call = std::function<long(unsigned char*, unsigned long*)>;

StOutcome Run(const Call& call, std::size_t nSize) {
    StOutcome Outcome{0, nSize, Bytes(nSize, cnFill)};
    Outcome.m_nStatus = call(Outcome.m_aOut.data(), &Outcome.m_nSize);
    return Outcome;
}

void ExpectFailed(const StOutcome& Outcome, std::size_t nSize) {
    EXPECT_EQ(Outcome.m_nStatus, QMT_ERROR_OUT_OF_MEMORY);
    EXPECT_EQ(Outcome.m_nSize, nSize);
    EXPECT_EQ(Outcome.m_aOut, Bytes(nSize, cnFill));
}

void ExpectSame(const StOutcome& Outcome, const StOutcome& Expected) {
    EXPECT_EQ(Outcome.m_nStatus, Expected.m_nStatus);
    EXPECT_EQ(Outcome.m_nSize, Expected.m_nSize);
    EXPECT_EQ(Outcome.m_aOut, Expected.m_aOut);
}

/// Fails every `nStep`-th allocation of a call in turn.
void FailEachAllocationOf(const Call& call, std::size_t nSize, long nStep = 1) {
    const StOutcome Expected = Run(call, nSize);
    ASSERT_EQ(Expected.m_nStatus, 0);
    long nFailed = 0;
    bool bHappened = true;
    for (long nAfter = 0; bHappened && !testing::Test::HasFailure(); nAfter += nStep) {
        SCOPED_TRACE("allocation " + std::to_string(nAfter));
        StOutcome Outcome{0, nSize, Bytes(nSize, cnFill)};
        {
            const ClFailAllocation Fail(nAfter);
            Outcome.m_nStatus = call(Outcome.m_aOut.data(), &Outcome.m_nSize);
            bHappened = ClFailAllocation::Happened();
        }
        if (bHappened && Outcome.m_nStatus != 0) {
            ++nFailed;
            ExpectFailed(Outcome, nSize);
        } else {
            ExpectSame(Outcome, Expected);
        }
        ExpectSame(Run(call, nSize), Expected);
    }
    EXPECT_GT(nFailed, 0);
}

struct StReady : ClApiHandle {
    StReady() { EXPECT_EQ(SetData(RecordBlock(PlausibleRecord())), 0); }
};

Call CalibrateOf(const StReady& Handle, Bytes& rIn) {
    return [&](unsigned char* pOut, unsigned long* pSize) {
        return Calibrate(Handle, rIn.data(), rIn.size(), pOut, pSize);
    };
}

} // namespace

TEST(CallWithoutMemory, CalibratesInEveryMode) {
    Bytes aIn = Capture(48, 132);
    for (const char* szMode : {"off", "oddLines", "ThinPlateSpline"}) {
        SCOPED_TRACE(szMode);
        StReady Handle;
        Handle.Set((std::string("GeometricCalibrate=") + szMode).c_str());
        FailEachAllocationOf(CalibrateOf(Handle, aIn), 10000);
    }
}

TEST(CallWithoutMemory, CalibratesWithTheDynamicStep) {
    Bytes aIn = Capture(48, 132);
    for (const char* szMask : {"MaskIsOutput=false", "MaskIsOutput=true"}) {
        SCOPED_TRACE(szMask);
        StReady Handle;
        Handle.Set("DynamicFingerMask=true");
        Handle.Set(szMask);
        FailEachAllocationOf(CalibrateOf(Handle, aIn), 10000);
    }
}

TEST(CallWithoutMemory, GivesItsBlocks) {
    StReady Handle;
    FailEachAllocationOf(
        [&](unsigned char* pOut, unsigned long* pSize) {
            return CalibrateGetData(Handle, pOut, pSize);
        },
        3000);
    FailEachAllocationOf(
        [&](unsigned char* pOut, unsigned long* pSize) {
            return CalibrateGetPrecalculatedData(Handle, pOut, pSize);
        },
        100000);
}

TEST(CallWithoutMemory, MeasuresContamination) {
    StReady Handle;
    Bytes aIn = Capture(64, 64);
    FailEachAllocationOf(
        [&](unsigned char* pOut, unsigned long*) {
            double dLevel = 0.0;
            const long nStatus = ContaminationDetection(Handle, aIn.data(), aIn.size(), &dLevel);
            if (nStatus == 0) {
                std::memcpy(pOut, &dLevel, sizeof dLevel);
            } else {
                EXPECT_EQ(dLevel, 101.0);
            }
            return nStatus;
        },
        sizeof(double));
}

// A target has hundreds of dots and pieces of lists: each 29th allocation stands for all.
TEST(CallWithoutMemory, MeasuresAccuracy) {
    StReady Handle;
    Bytes aIn = TargetBlock(TestSupport::CorrectedTarget());
    FailEachAllocationOf(
        [&](unsigned char* pOut, unsigned long*) {
            return CalibrateCheckEfts(Handle, aIn.data(), aIn.size(),
                                      reinterpret_cast<double*>(pOut));
        },
        sizeof(double), 29);
}
