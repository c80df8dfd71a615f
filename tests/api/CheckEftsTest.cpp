// The geometric accuracy of corrected images of the dot target.

#include "api/Api.h"
#include "api/LoadedHandle.h"
#include "api/WaitingHandle.h"
#include "support/DotTargets.h"
#include "support/GuardedMemory.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::CorrectedTarget;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StLoaded;
using TestSupport::StRecord;
using TestSupport::StTargetImage;
using TestSupport::StWaiting;
using TestSupport::TargetBlock;

namespace {

/// The percentage of a block; -1.0 where the call fails.
double Percent(void* pHandle, const Bytes& aBlock, long nExpected = QMT_SUCCESS) {
    double dPercent = -1.0;
    EXPECT_EQ(CalibrateCheckEfts(pHandle, ClApiHandle::Writable(aBlock), aBlock.size(), &dPercent),
              nExpected);
    return dPercent;
}

} // namespace

TEST(CalibrateCheckEfts, GivesThePercentagesOfAnIndependentModel) {
    const Bytes aText = DataFile("efts/efts.json");
    const auto Cases = nlohmann::json::parse(aText.begin(), aText.end());
    ASSERT_EQ(Cases.size(), 6u);
    for (const auto& Case : Cases) {
        ClApiHandle Handle;
        Handle.Set("PrecalculatedData=true");
        ASSERT_EQ(Handle.SetData(DataFile(Case["record"])), 0);
        EXPECT_EQ(Percent(Handle, DataBlock(Case["corrected"])), Case["percent"].get<double>())
            << Case["corrected"];
    }
}

TEST(CalibrateCheckEfts, OfTheIdealPatternIs100) {
    const StLoaded Handle;
    EXPECT_EQ(Percent(Handle, TargetBlock(CorrectedTarget())), 100.0);
}

TEST(CalibrateCheckEfts, OfAPatternTwoPercentTooLargeIs0) {
    StTargetImage Image = CorrectedTarget();
    Image.m_dScale = 1.02;
    const StLoaded Handle;
    EXPECT_EQ(Percent(Handle, TargetBlock(Image)), 0.0);
}

TEST(CalibrateCheckEfts, LooksAtNoOption) {
    const Bytes aBlock = TargetBlock(CorrectedTarget());
    for (const char* szOption : {"GeometricCalibrate=off", "GeometricCalibrate=oddLines",
                                 "MaskIsOutput=true", "DynamicFingerMask=true"}) {
        StLoaded Handle;
        Handle.Set(szOption);
        EXPECT_EQ(Percent(Handle, aBlock), 100.0) << szOption;
    }
}

TEST(CalibrateCheckEfts, TakesImagesOfAnySize) {
    StTargetImage Image = CorrectedTarget();
    Image.m_nWidth = 263;
    Image.m_nHeight = 601;
    const StLoaded Handle;
    EXPECT_EQ(Percent(Handle, TargetBlock(Image)), 100.0);
}

TEST(CalibrateCheckEfts, LeavesResultAndDataWhereTheTargetIsNotFound) {
    StLoaded Handle;
    StTargetImage Incomplete = CorrectedTarget();
    Incomplete.m_aMissing = {70};
    StTargetImage Slanted = CorrectedTarget();
    Slanted.m_dRowSlant = 16.5;
    for (const Bytes& aBlock : {TargetBlock(Incomplete), TargetBlock(Slanted),
                                TargetBlock(StTargetImage()), TestSupport::Capture(48, 132)})
        EXPECT_EQ(Percent(Handle, aBlock, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE), -1.0);
    EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
}

namespace {

/// Points within ten pixels of each other are those of a pattern without extent.
StRecord WithoutResolution() {
    StRecord Record = PlausibleRecord();
    Record.m_nTargetPelsX = Record.m_nTargetPelsY = 0;
    for (std::size_t i = 0; i < Record.m_aTarget.size(); ++i)
        Record.m_aTarget[i] = {0.5f * static_cast<float>(i / 11),
                               0.5f * static_cast<float>(i % 11)};
    return Record;
}

} // namespace

TEST(CalibrateCheckEfts, RefusesATargetWithoutResolution) {
    StWaiting Handle(WithoutResolution());
    EXPECT_EQ(Percent(Handle, TargetBlock(CorrectedTarget()), QMT_ERROR_CURRUPT_DATA), -1.0);
    EXPECT_EQ(Handle.Data(), RecordBlock(WithoutResolution()));
}

TEST(CalibrateCheckEfts, RefusesATargetWithoutResolutionBetweenFindingDotsAndJudgingThem) {
    const StWaiting Handle(WithoutResolution());
    StTargetImage Incomplete = CorrectedTarget();
    Incomplete.m_aMissing = {70};
    EXPECT_EQ(
        Percent(Handle, TargetBlock(CorrectedTarget(), {}), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE),
        -1.0);
    EXPECT_EQ(Percent(Handle, TargetBlock(Incomplete), QMT_ERROR_CURRUPT_DATA), -1.0);
}

TEST(CalibrateCheckEfts, KeepsDataAndTableOnSuccess) {
    StLoaded Handle;
    const Bytes aTable = Handle.PrecalculatedData();
    EXPECT_EQ(Percent(Handle, TargetBlock(CorrectedTarget())), 100.0);
    EXPECT_EQ(Handle.Data(), RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Handle.PrecalculatedData(), aTable);
}

TEST(CalibrateCheckEfts, ReadsNothingBehindTheBlock) {
    const StLoaded Handle;
    const TestSupport::ClGuardedBlock Guarded(TargetBlock(CorrectedTarget()));
    double dPercent = 0.0;
    EXPECT_EQ(CalibrateCheckEfts(Handle, Guarded.Data(), Guarded.Size(), &dPercent), 0);
    EXPECT_EQ(dPercent, 100.0);
}
