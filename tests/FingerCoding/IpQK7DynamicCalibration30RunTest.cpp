// How a run works: which processors it takes, what it times, which files it writes, and how it
// ends where memory is missing.

#include "FingerCoding/IpQK7DynamicCalibration30.h"

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/TimerMarks.h"
#include "Tools/ClassCallProfile.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"
#include "support/WorkingFolder.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

using namespace TestSupport;

namespace {

using NameSet = std::set<std::string>;

class ClCountedCalls : public ClClassCallProfile {
public:
    ClCountedCalls() { g_pClassCallProfile = this; }
    ClCountedCalls(const ClCountedCalls&) = delete;
    ClCountedCalls& operator=(const ClCountedCalls&) = delete;
    ~ClCountedCalls() override { g_pClassCallProfile = nullptr; }

    template <class Processor>
    long Calls() const {
        for (unsigned long i = 0; i < m_aEntries.Entries(); ++i)
            if (*m_aEntries[i].m_pType == typeid(Processor))
                return m_aEntries[i].m_nCalls;
        return 0;
    }
};

/// Stripes, ten pixels apart, on a part of a bright plate.
ClTestImage SmallFinger() {
    ClTestImage image = FlatImage(ClImage::eUInt8, 78, 130, 1, 230);
    for (int y = 30; y < 100; ++y)
        for (int x = 20; x < 60; ++x)
            image.LineData(y)[x] = y % 10 < 5 ? 30 : 190;
    return image;
}

/// A run of the small finger in a folder of its own, and the files that it leaves.
NameSet FilesOf(bool bImages, bool bDefects) {
    ClTestImage image = SmallFinger();
    ClTestImage out;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &out;
    calibration.m_bDumpImages = bImages;
    calibration.m_bDumpDefectImage = bDefects;
    ClWorkingFolder folder;
    EXPECT_EQ(calibration.Apply(), 0);
    return folder.Names();
}

} // namespace

// Sub-processors

TEST(IpQK7DynamicCalibration30Run, TakesBothDetectorsAndNoFunctionalityCheck) {
    ClTestImage image = SmallFinger();
    ClCountedCalls calls;
    StDynamicRun run(image);
    EXPECT_EQ(calls.Calls<ClOpenDynamicCalibration>(), 1);
    EXPECT_EQ(calls.Calls<ClIpBrightnessMask>(), 1);
    EXPECT_EQ(calls.Calls<ClIpContrastMask2>(), 1);
    EXPECT_EQ(calls.Calls<ClIpQK7FunctionalityCheck>(), 0);
}

TEST(IpQK7DynamicCalibration30Run, TakesNoDetectorForANarrowRange) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 60, 60, 1, 100);
    ClCountedCalls calls;
    StDynamicRun run(image);
    EXPECT_EQ(calls.Calls<ClIpBrightnessMask>(), 0);
    EXPECT_EQ(calls.Calls<ClIpContrastMask2>(), 0);
}

TEST(IpQK7DynamicCalibration30Run, TimesItsSubProcessorsWhereItIsTimed) {
    ClTestImage image = SmallFinger();
    ClTimerMarks timer;
    StDynamicRun run(image); // made while there is a timer: timed
    for (const char* szName :
         {"ClIpQK7DynamicCalibration30", "ClIpStretchRangeGlobal", "ClIpStretchRangeLocal",
          "ClIpAdd", "ClIpSubtract", "ClIpBinarizeGlobal", "ClIpFilterMid", "ClIpFilterDGauss",
          "ClIpEuclidLength", "ClIpBrightnessMask", "ClIpContrastMask2", "ClIpImageExtension",
          "ClIpCut", "ClIpScale", "ClIpFloodFill", "ClIpBuildConvexHull"})
        EXPECT_THAT(timer.m_aRuns, testing::Contains(szName));
}

TEST(IpQK7DynamicCalibration30Run, TimesNothingWhereItIsNot) {
    ClTestImage image = SmallFinger();
    ClTimerMarks timer;
    StDynamicRun run(image);
    run.m_Calibration.Timer(false);
    run.m_Calibration.m_bDumpDefectImage = true;
    timer.m_aRuns.clear();
    ClWorkingFolder folder;
    EXPECT_EQ(run.m_Calibration.Apply(), 0);
    run.m_Calibration.CalcDirtWarningLevel2(image, run.m_Mask);
    for (const char* szName :
         {"ClIpQK7DynamicCalibration30", "ClIpStretchRangeGlobal", "ClIpStretchRangeLocal",
          "ClIpAdd", "ClIpSubtract", "ClIpInvert", "ClIpBinarizeGlobal", "ClIpFilterDGauss",
          "ClIpEuclidLength", "ClIpBrightnessMask", "ClIpContrastMask2", "ClIpImageExtension",
          "ClIpCut", "ClIpScale", "ClIpFloodFill", "ClIpBuildConvexHull",
          "ClIpQK7FunctionalityCheck"})
        EXPECT_THAT(timer.m_aRuns, testing::Not(testing::Contains(szName)));
}

// Files

TEST(IpQK7DynamicCalibration30Run, WritesNoFileByDefault) {
    EXPECT_EQ(FilesOf(false, false), NameSet());
}

TEST(IpQK7DynamicCalibration30Run, WritesTheDefectsAlone) {
    EXPECT_EQ(FilesOf(false, true), NameSet({"C:\\12_DefectImage.kpf"}));
}

TEST(IpQK7DynamicCalibration30Run, WritesEveryStage) {
    const NameSet stages = {"C:\\01_InImage.kpf",
                            "C:\\02_GloballyStretchedImage.kpf",
                            "C:\\03_MaskImage.kpf",
                            "C:\\03_MaskImage_orig.kpf",
                            "C:\\04_MaskProbImage.kpf",
                            "C:\\05_EmbracedMaskImage.kpf",
                            "C:\\06_SmoothMaskImage.kpf",
                            "C:\\07_MinImage.kpf",
                            "C:\\08_MaxImage.kpf",
                            "C:\\09_StretchedImage.kpf",
                            "C:\\10_OutImage.kpf",
                            "C:\\11b_ExtendedMaskImage.kpf",
                            "C:\\11c_FadedMaskImageForDirtMeasurement.kpf",
                            "C:\\12_DefectImage.kpf",
                            "C:\\21_BrightProbImage.kpf",
                            "C:\\21_ContrastProbImage.kpf"};
    EXPECT_EQ(FilesOf(true, false), stages);
    EXPECT_EQ(FilesOf(true, true), stages);
}

TEST(IpQK7DynamicCalibration30Run, WritesTheDefectsOfTheCapture) {
    ClTestImage image = SmallFinger();
    ClTestImage defects;
    EXPECT_EQ(ClIpQK7FunctionalityCheck().ApplyParam(image, defects, ClImage::eTypeDefault), 0);
    ClTestImage out;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &out;
    calibration.m_bDumpDefectImage = true;
    ClWorkingFolder folder;
    EXPECT_EQ(calibration.Apply(), 0);
    ClTestImage stored;
    stored.Load("C:\\12_DefectImage.kpf");
    EXPECT_EQ(Pixels(stored), Pixels(defects));
}

/// Both ends of the range are that value, which becomes the lower end of the new range.
TEST(IpQK7DynamicCalibration30Run, StretchesAFlatCaptureToBlack) {
    for (const int nValue : {0, 1, 128, 254}) {
        ClTestImage image = FlatImage(ClImage::eUInt8, 40, 50, 1, nValue);
        ClTestImage out;
        ClIpQK7DynamicCalibration30 calibration;
        calibration.m_pInImage = &image;
        calibration.m_pOutImage = &out;
        calibration.m_bDumpImages = true;
        ClWorkingFolder folder;
        EXPECT_EQ(calibration.Apply(), 0);
        ClTestImage stored;
        stored.Load("C:\\02_GloballyStretchedImage.kpf");
        EXPECT_EQ(Pixels(stored), Pixels(FlatImage(ClImage::eUInt8, 40, 50, 1, 0))) << nValue;
    }
}

TEST(IpQK7DynamicCalibration30Run, GivesTheSameWhileItWrites) {
    ClTestImage image = SmallFinger();
    StDynamicRun told(image);
    StDynamicRun run(image);
    run.m_Calibration.m_bDumpImages = true;
    ClWorkingFolder folder;
    EXPECT_EQ(run.m_Calibration.Apply(), 0);
    ExpectSameImage(run.m_Out, told.m_Out);
    ExpectSameImage(run.m_Mask, told.m_Mask);
    EXPECT_EQ(run.Dirt(), told.Dirt());
    EXPECT_EQ(run.Dry(), told.Dry());
}

/// The dirt level is that of the run already when the last file is written.
TEST(IpQK7DynamicCalibration30Run, EndsWhereAFileCannotBeWritten) {
    ClTestImage image = WarpedCapture("dry");
    StDynamicRun told(image);
    StDynamicRun run(image);
    ClWorkingFolder folder;
    folder.Block("C:\\12_DefectImage.kpf");
    run.m_Calibration.m_bDumpDefectImage = true;
    run.m_Calibration.m_dDirtWarningLevel = -1.0;
    run.m_Calibration.m_dDryFingerWarningLevel = -1.0;
    EXPECT_THROWS(run.m_Calibration.Apply(), ClExFilesystem, -200, "C:\\12_DefectImage.kpf");
    EXPECT_EQ(run.Dirt(), told.Dirt());
    EXPECT_EQ(run.Dry(), -1.0);
    folder.Block("C:\\01_InImage.kpf");
    run.m_Calibration.m_bDumpImages = true;
    EXPECT_THROWS(run.m_Calibration.Apply(), ClExFilesystem, -200, "C:\\01_InImage.kpf");
}

// Memory

TEST(IpQK7DynamicCalibration30Run, AnswersEveryMissingAllocation) {
    ClTestImage image = SmallFinger();
    const ClTestImage before = image;
    const StDynamicRun told(image);
    // A run that gets over a missing allocation has done all of its work.
    FailEachAllocation([&] {
        const StDynamicRun run(image);
        const long nPaused = PauseFailures();
        ExpectSameImage(run.m_Out, told.m_Out);
        ExpectSameImage(run.m_Mask, told.m_Mask);
        EXPECT_EQ(run.Dirt(), told.Dirt());
        EXPECT_EQ(run.Dry(), told.Dry());
        ResumeFailures(nPaused);
    });
    ExpectSameImage(image, before);
}

/// Whether it ends the run or is got over (an empty image does without its null buffer).
TEST(IpQK7DynamicCalibration30Run, GivesTheSameAfterAMissingAllocation) {
    ClTestImage image = SmallFinger();
    StDynamicRun told(image);
    StDynamicRun run(image);
    for (long nAfter = 0; nAfter < 450; nAfter += 7) {
        long nResult = -1;
        try {
            ClFailAllocation fail(nAfter);
            nResult = run.m_Calibration.Apply();
        } catch (const ClExBadAlloc&) {
            nResult = run.m_Calibration.Apply();
        }
        ASSERT_EQ(nResult, 0);
        ExpectSameImage(run.m_Out, told.m_Out);
        ExpectSameImage(run.m_Mask, told.m_Mask);
        EXPECT_EQ(run.Dry(), told.Dry());
    }
}
