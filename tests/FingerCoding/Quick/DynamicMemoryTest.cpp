// What the dynamic calibration takes from the heap, and what becomes of it where there is none.

#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/Quick/QuickRun.h"
#include "FingerCoding/RandomCaptures.h"
#include "support/AllocationFailures.h"

using namespace TestSupport;

namespace {

class ClKeptCalibration {
public:
    void Run(ClImage& rCapture) {
        m_Calibration.m_pInImage = &rCapture;
        m_Calibration.m_pOutImage = &m_Outcome.m_Out;
        m_Calibration.m_pOutMaskImage = &m_Outcome.m_Mask;
        m_Calibration.Apply();
        m_Outcome.m_dDirt = m_Calibration.m_dDirtWarningLevel;
        m_Outcome.m_dDry = m_Calibration.m_dDryFingerWarningLevel;
    }

    ClIpQK7DynamicCalibration30 m_Calibration;
    StOutcome m_Outcome;
};

} // namespace

TEST(DynamicCalibrationMemory, IsKeptForCapturesOfOneSize) {
    constexpr long cnMostAllocations = 8;
    ClTestImage Capture = WarpedCapture("loop");
    ClKeptCalibration Kept;
    Kept.Run(Capture);
    {
        const ClFailAllocation Limit(cnMostAllocations);
        Kept.Run(Capture);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
    ClTestImage Empty = WarpedCapture("empty");
    const ClFailAllocation Limit(0);
    Kept.Run(Empty); // nothing is sought in it
    EXPECT_FALSE(ClFailAllocation::Happened());
}

TEST(DynamicCalibrationMemory, MayBeMissingAnywhereAndTheNextRunIsWhole) {
    ClTestImage Small = ClRandomCapture(1003).Make();
    ClTestImage Other = ClRandomCapture(1004).Make();
    ASSERT_NE(Small.Width(), Other.Width());
    StOutcome Plain;
    RunPlainly(Small, false, Plain);
    ClKeptCalibration Kept;
    FailEachAllocation([&] {
        Kept.Run(Other);
        Kept.Run(Small);
    });
    ExpectTwins(Kept.m_Outcome, Plain);
}

TEST(DynamicCalibrationMemory, IsNotTakenForAnOutputThatNobodyReads) {
    ClTestImage Capture = WarpedCapture("loop");
    StOutcome Plain;
    RunPlainly(Capture, false, Plain);
    ClKeptCalibration Kept;
    Kept.m_Calibration.m_bMaskOnly = true;
    Kept.Run(Capture);
    EXPECT_EQ(Kept.m_Outcome.m_Out.Data(), nullptr);
    EXPECT_TRUE(IsTwin(Kept.m_Outcome.m_Mask, Plain.m_Mask));
    EXPECT_EQ(Kept.m_Outcome.m_dDirt, Plain.m_dDirt);
    EXPECT_EQ(Kept.m_Outcome.m_dDry, Plain.m_dDry);
}
