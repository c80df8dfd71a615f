// CalibrateGenerateData() and CalibrateCheckEfts() as their trace shows them: which words come up,
// and on which level.

#include "TessarinCalibrateSDK/OwnHandle.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/DotTargets.h"
#include "support/Records.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::MatchesRegex;
using TestSupport::Bytes;
using TestSupport::ClFailAllocation;
using TestSupport::ClLogCapture;
using TestSupport::CorrectedTarget;
using TestSupport::Leaving;
using TestSupport::Lines;
using TestSupport::PlausibleRecord;
using TestSupport::Printed;
using TestSupport::StTargetImage;
using TestSupport::TargetBlock;
using TestSupport::Trace;

namespace {

using StOwn = TestSupport::StOwnHandle<>;

/// The call's own lines: those of the engine, of the points and of the check are left out.
Lines OwnLines(const ClLogCapture& Log, const std::string& Function) {
    Lines aOwn;
    for (const TestSupport::StLogLine& Line : Log.Lines())
        if (Line.m_Text.compare(0, Function.size(), Function) == 0)
            aOwn.push_back(Line);
    return aOwn;
}

struct StTargetCall {
    long m_nStatus;
    Lines m_aLines;
};

StTargetCall Generate(StOwn& rOwn, Bytes aBlock) {
    const ClLogCapture Log;
    const long nStatus = CalibrateGenerateData(rOwn.Handle(), aBlock.data(), aBlock.size());
    return {nStatus, OwnLines(Log, "CalibrateGenerateData")};
}

StTargetCall CheckEfts(StOwn& rOwn, Bytes aBlock) {
    const ClLogCapture Log;
    double dResult = 0;
    const long nStatus = CalibrateCheckEfts(rOwn.Handle(), aBlock.data(), aBlock.size(), &dResult);
    return {nStatus, OwnLines(Log, "CalibrateCheckEfts")};
}

/// Error, File and Leaving, all on one level, behind the Enter line.
void ExpectCaught(const StTargetCall& Outcome, const std::string& Function, long nNumber,
                  const std::string& Words, long nLevel) {
    EXPECT_EQ(Outcome.m_nStatus, nNumber);
    ASSERT_EQ(Outcome.m_aLines.size(), 4u);
    EXPECT_EQ(Outcome.m_aLines[0].m_nLevel, 7);
    EXPECT_EQ(
        Outcome.m_aLines[1],
        (TestSupport::StLogLine{
            nLevel, Function + "() Error: " + GetErrorDescriptionIntern(nNumber) + "\n" + Words}));
    EXPECT_EQ(Outcome.m_aLines[2].m_nLevel, nLevel);
    EXPECT_THAT(Outcome.m_aLines[2].m_Text,
                MatchesRegex(Function + "\\(\\) File: Calibrate/[A-Za-z0-9]+\\([0-9]+\\)"));
    EXPECT_EQ(Outcome.m_aLines[3], Leaving(Function, nNumber, nLevel));
}

StTargetImage Without(StTargetImage Image, std::size_t nDot) {
    Image.m_aMissing = {nDot};
    return Image;
}

StTargetImage Slanted() {
    StTargetImage Image;
    Image.m_dRowSlant = 16.5;
    return Image;
}

} // namespace

TEST(TargetCalls, GeneratingLeavesTwoLines) {
    StOwn Own;
    Bytes aBlock = TargetBlock(StTargetImage());
    const ClLogCapture Log;
    EXPECT_EQ(CalibrateGenerateData(Own.Handle(), aBlock.data(), aBlock.size()), 0);
    EXPECT_EQ(
        OwnLines(Log, "CalibrateGenerateData"),
        (Lines{Trace(Printed("CalibrateGenerateData(0x%p, 0x%p, %d) Enter", Own.Handle(),
                             static_cast<void*>(aBlock.data()), static_cast<int>(aBlock.size()))),
               Leaving("CalibrateGenerateData", 0)}));
    EXPECT_TRUE(Log.Texts(3).empty());
}

TEST(TargetCalls, TargetThatCannotBeEvaluatedIsAnExpectedOutcome) {
    StOwn Own;
    ExpectCaught(Generate(Own, TargetBlock(Without(StTargetImage(), 17))), "CalibrateGenerateData",
                 -600, "Not the expected dot count found.", 7);
    ExpectCaught(Generate(Own, TargetBlock(Slanted())), "CalibrateGenerateData", -600,
                 "The Angle(x) of the Dot Grid is too big.", 7);
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    ExpectCaught(CheckEfts(Own, TargetBlock(Without(CorrectedTarget(), 17))), "CalibrateCheckEfts",
                 -600, "Not the expected Dot count found.", 7);
}

TEST(TargetCalls, ReferenceThatIsNoneIsAFailure) {
    StOwn Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_TargetData);
    Own.m_Processor.m_TargetData.m_aTarget.Remove(0);
    ExpectCaught(Generate(Own, TargetBlock(StTargetImage())), "CalibrateGenerateData", -39,
                 "Target data is corrupt", 3);
    EXPECT_FALSE(Own.m_Processor.IsInitialized());
}

TEST(TargetCalls, CheckingLeavesTwoLines) {
    StOwn Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    const StTargetCall Outcome = CheckEfts(Own, TargetBlock(CorrectedTarget()));
    EXPECT_EQ(Outcome.m_nStatus, 0);
    ASSERT_EQ(Outcome.m_aLines.size(), 2u);
    EXPECT_EQ(Outcome.m_aLines[1], Leaving("CalibrateCheckEfts", 0));
}

TEST(TargetCalls, GeneratingClearsTheDataBeforeAndAfterAFailure) {
    StOwn Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    Bytes aBlock = TargetBlock(Without(StTargetImage(), 3));
    const ClLogCapture Log;
    CalibrateGenerateData(Own.Handle(), aBlock.data(), aBlock.size());
    long nClears = 0;
    for (const TestSupport::StLogLine& Line : Log.Lines())
        nClears += Line == Trace("ClIpCalibrateQK7::Clear() Enter");
    EXPECT_EQ(nClears, 2);
    EXPECT_FALSE(Own.m_Processor.IsInitialized());
    EXPECT_EQ(Own.m_Processor.m_CalibrationData.m_aActual[0].Entries(), 0u);
}

TEST(TargetCalls, CallsSetTheImagesTheyWorkOn) {
    StOwn Own;
    ClImage Former;
    Own.m_Processor.m_pOutImage = &Former;
    Bytes aBlock = TargetBlock(StTargetImage());
    CalibrateGenerateData(Own.Handle(), aBlock.data(), aBlock.size());
    EXPECT_EQ(Own.m_Processor.m_pOutImage, nullptr);
    Own.m_Processor.m_pOutImage = &Former;
    Bytes aCorrected = TargetBlock(CorrectedTarget());
    double dResult = 0;
    EXPECT_EQ(CalibrateCheckEfts(Own.Handle(), aCorrected.data(), aCorrected.size(), &dResult), 0);
    EXPECT_EQ(Own.m_Processor.m_pOutImage, nullptr);
}

namespace {

/// The calibration block of a handle that has data.
Bytes DataOf(StOwn& rOwn) {
    Bytes aBlock(2000);
    unsigned long nSize = aBlock.size();
    EXPECT_EQ(CalibrateGetData(rOwn.Handle(), aBlock.data(), &nSize), 0);
    aBlock.resize(nSize);
    return aBlock;
}

} // namespace

// A sample of all allocations, each of which takes a capture.
TEST(TargetCalls, GeneratingSurvivesMissingMemory) {
    StOwn Own;
    Bytes aBlock = TargetBlock(StTargetImage());
    ASSERT_EQ(CalibrateGenerateData(Own.Handle(), aBlock.data(), aBlock.size()), 0);
    const Bytes aUndisturbed = DataOf(Own);
    int nFailures = 0;
    for (long nAfter = 0; nAfter < 100000; nAfter += 1 + nAfter / 3, ++nFailures) {
        long nStatus = 0;
        {
            const ClFailAllocation Fail(nAfter);
            nStatus = CalibrateGenerateData(Own.Handle(), aBlock.data(), aBlock.size());
        }
        EXPECT_EQ(Own.m_Processor.IsInitialized(), nStatus == 0);
        if (nStatus == 0) // sorting does without memory that it does not get
            EXPECT_EQ(DataOf(Own), aUndisturbed) << nAfter;
        else
            EXPECT_EQ(nStatus, -102) << nAfter;
        if (!ClFailAllocation::Happened())
            break;
    }
    EXPECT_TRUE(Own.m_Processor.IsInitialized());
    EXPECT_GT(nFailures, 10);
}

TEST(TargetCalls, CheckingSurvivesMissingMemory) {
    StOwn Own;
    Fill(PlausibleRecord(), Own.m_Processor.m_CalibrationData);
    Bytes aBlock = TargetBlock(CorrectedTarget());
    double dResult = 5.0;
    int nFailures = 0;
    for (long nAfter = 0; nAfter < 100000; nAfter += 1 + nAfter / 3, ++nFailures) {
        const ClFailAllocation Fail(nAfter);
        const long nStatus =
            CalibrateCheckEfts(Own.Handle(), aBlock.data(), aBlock.size(), &dResult);
        EXPECT_TRUE(Own.m_Processor.IsInitialized());
        if (!ClFailAllocation::Happened())
            break;
        EXPECT_EQ(nStatus, dResult == 100.0 ? 0 : -102) << nAfter;
        EXPECT_EQ(dResult, nStatus == 0 ? 100.0 : 5.0);
        dResult = 5.0;
    }
    EXPECT_EQ(dResult, 100.0);
    EXPECT_GT(nFailures, 10);
}
