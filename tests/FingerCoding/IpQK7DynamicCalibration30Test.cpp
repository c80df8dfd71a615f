// What a run makes of captures: those that are of no use, those at the limits, and one with a
// finger.

#include "FingerCoding/IpQK7DynamicCalibration30.h"

#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/TimerMarks.h"
#include "FingerCoding/WorkScale.h"
#include "support/PublishedParameters.h"

#include <cstring>

using namespace TestSupport;

namespace {

using TestSupport::cszPels;

/// The left half of one value and the right half of another, of an odd width.
ClTestImage Halves(int nLeft, int nRight) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 123, 160, 1, nRight);
    for (int y = 0; y < image.Height(); ++y)
        std::memset(image.LineData(y), nLeft, 61);
    return image;
}

/// Without a resolution the finger cannot be sought: a run that seeks it ends with -13.
ClTestImage WithoutResolution(ClTestImage image) {
    image.SetPelsX(0);
    image.SetPelsY(0);
    return image;
}

/// A speck of 121 black pixels on the clean background of the capture "light", and one pixel more.
/// The black ones weigh 164, the last one 156 for the value 5 and 155 for the value 6: together
/// 20000 and 19999, times 255 / 2550.
ClTestImage Speckled(unsigned char nLast) {
    ClTestImage image = WarpedCapture("light");
    for (int y = 0; y < 11; ++y)
        std::memset(image.LineData(60 + y) + 60, 0, 11);
    image.LineData(71)[60] = nLast;
    return image;
}

/// The same, which leaves a level of 1999.9, and 20 by 20 pixels of one value beside the speck.
ClTestImage SpeckledBeside(int nValue) {
    ClTestImage image = Speckled(6);
    for (int y = 60; y < 80; ++y)
        std::memset(image.LineData(y) + 72, nValue, 20);
    return image;
}

void ExpectRejected(const StDynamicRun& Run) {
    EXPECT_EQ(Run.m_nResult, 0);
    EXPECT_TRUE(IsWhiteWithPadding(Run.m_Out));
    EXPECT_EQ(Run.Dirt(), 100.0);
}

/// Rejected without a finger, so that the mask is all background.
void ExpectWithoutFinger(const StDynamicRun& Run) {
    ExpectRejected(Run);
    EXPECT_EQ(Run.Dry(), 0.0);
    EXPECT_TRUE(IsWhiteWithPadding(Run.m_Mask));
}

} // namespace

// The object

TEST(IpQK7DynamicCalibration30, IsAProcessor) {
    ExpectProcessor<ClIpQK7DynamicCalibration30>("ClIpQK7DynamicCalibration30");
    ExpectNoSettings(ClIpQK7DynamicCalibration30());
}

TEST(IpQK7DynamicCalibration30, PublishesNothing) {
    ClIpQK7DynamicCalibration30 calibration;
    ExpectTree(calibration, {});
    ExpectFlat(calibration, {});
}

TEST(IpQK7DynamicCalibration30, StartsWithItsDefaults) {
    const ClIpQK7DynamicCalibration30 calibration;
    EXPECT_FALSE(calibration.m_bSensitiveMode);
    EXPECT_EQ(calibration.m_pInImage, nullptr);
    EXPECT_EQ(calibration.m_pOutImage, nullptr);
    EXPECT_EQ(calibration.m_pOutMaskImage, nullptr);
    EXPECT_EQ(calibration.m_dDirtWarningLevel, 0.0);
    EXPECT_EQ(calibration.m_dDryFingerWarningLevel, 0.0);
    EXPECT_FALSE(calibration.m_bDumpImages);
    EXPECT_FALSE(calibration.m_bDumpDefectImage);
}

// What is refused

TEST(IpQK7DynamicCalibration30, AnswersMissingImages) {
    ClTestImage image = Halves(10, 200);
    ClIpQK7DynamicCalibration30 calibration;
    EXPECT_EQ(calibration.Apply(), -37);
    calibration.m_pInImage = &image;
    EXPECT_EQ(calibration.Apply(), -37);
    calibration.m_pInImage = nullptr;
    calibration.m_pOutImage = &image;
    EXPECT_EQ(calibration.Apply(), -37);
    ExpectSameImage(image, Halves(10, 200));
}

TEST(IpQK7DynamicCalibration30, RefusesOtherPixelTypes) {
    for (const ClImage::EDataType eType : caPixelTypes) {
        if (eType == ClImage::eUInt8)
            continue;
        ClTestImage image = BlankImage(eType, 40, 40);
        EXPECT_THROWS(StDynamicRun{image}, ClException, -101,
                      "Image Type is not the assigned type");
    }
    ClTestImage image;
    EXPECT_THROWS(StDynamicRun{image}, ClException, -101, "Image Type is not the assigned type");
}

TEST(IpQK7DynamicCalibration30, RefusesSeveralPlanes) {
    ClTestImage image = BlankImage(ClImage::eUInt8, 40, 40, 3);
    EXPECT_THROWS(StDynamicRun{image}, ClException, -101,
                  "Color-image not supported in ClHistogram::Create.");
}

TEST(IpQK7DynamicCalibration30, CannotSeekTheFingerWithoutAResolution) {
    ClTestImage image = WithoutResolution(WarpedCapture("loop"));
    EXPECT_THROWS(StDynamicRun{image}, ClExTessarin, -13, cszPels);
}

/// At the resolution of the work it would have 16000 pixels a line. Nothing is made of it before.
TEST(IpQK7DynamicCalibration30, CannotSeekTheFingerAtAnAbsurdResolution) {
    ClTestImage image = Halves(10, 200);
    image.SetPelsX(75);
    image.SetPelsY(75);
    ClTimerMarks marks;
    EXPECT_THROWS(StDynamicRun{image}, ClExTessarin, -13, cszPels);
    EXPECT_EQ(marks.m_aNames, std::vector<std::string>{"ClIpStretchRangeGlobal"});
    image.SetPelsX(600); // 123 * 9842 / 600 = 2018 by 2625
    image.SetPelsY(600);
    EXPECT_EQ(StDynamicRun(image).m_nResult, 0);
}

TEST(IpQK7DynamicCalibration30, NeedsNoResolutionWhereNoFingerIsSought) {
    ClTestImage image = Halves(100, 196);
    image.SetPelsX(1);
    image.SetPelsY(1);
    ExpectWithoutFinger(StDynamicRun(image));
}

TEST(IpQK7DynamicCalibration30, KeepsTheLevelsWhenARunEndsWithAnException) {
    ClTestImage image = WithoutResolution(WarpedCapture("loop"));
    ClTestImage out;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &out;
    calibration.m_dDirtWarningLevel = 12.5;
    calibration.m_dDryFingerWarningLevel = 62.5;
    EXPECT_THROWS(calibration.Apply(), ClExTessarin, -13, cszPels);
    EXPECT_EQ(calibration.m_dDirtWarningLevel, 12.5);
    EXPECT_EQ(calibration.m_dDryFingerWarningLevel, 62.5);
}

// Captures without a finger

TEST(IpQK7DynamicCalibration30, TakesARangeOf96ForNoFinger) {
    ClTestImage image = Halves(100, 196);
    StDynamicRun run(image);
    ExpectWithoutFinger(run);
    EXPECT_EQ(run.m_Out.Width(), 123);
    EXPECT_EQ(run.m_Out.Height(), 160);
}

TEST(IpQK7DynamicCalibration30, SeeksTheFingerInARangeAbove96) {
    ClTestImage narrow = WithoutResolution(Halves(100, 196));
    ExpectWithoutFinger(StDynamicRun(narrow));
    ClTestImage wide = WithoutResolution(Halves(100, 197));
    EXPECT_THROWS(StDynamicRun{wide}, ClExTessarin, -13, cszPels);
}

/// A quarter of the image is 255, and what counts is the largest value below.
TEST(IpQK7DynamicCalibration30, SetsSaturatedSamplesAside) {
    const auto Saturated = [](int nDark) {
        ClTestImage image = WithoutResolution(Halves(nDark, 200));
        for (int y = 0; y < 80; ++y)
            std::memset(image.LineData(y) + 61, 255, 62);
        return image;
    };
    ClTestImage narrow = Saturated(104);
    ExpectWithoutFinger(StDynamicRun(narrow));
    ClTestImage wide = Saturated(103);
    EXPECT_THROWS(StDynamicRun{wide}, ClExTessarin, -13, cszPels);
}

TEST(IpQK7DynamicCalibration30, SeeksTheFingerInAnyRangeInTheSensitiveMode) {
    ClTestImage image = WithoutResolution(Halves(100, 196));
    EXPECT_THROWS((StDynamicRun{image, true}), ClExTessarin, -13, cszPels);
    image = Halves(100, 196);
    StDynamicRun run(image, true);
    EXPECT_EQ(run.m_nResult, 0);
    EXPECT_FALSE(IsWhite(run.m_Mask));
}

TEST(IpQK7DynamicCalibration30, WhitensAFlatCapture) {
    for (const int nValue : {0, 1, 128, 254}) {
        SCOPED_TRACE(nValue);
        ClTestImage image = FlatImage(ClImage::eUInt8, 90, 110, 1, nValue);
        ExpectWithoutFinger(StDynamicRun(image));
    }
}

/// The range is negative then: from 255 to 0.
TEST(IpQK7DynamicCalibration30, WhitensASaturatedCapture) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 90, 110, 1, 255);
    ExpectWithoutFinger(StDynamicRun(image));
    StDynamicRun sensitive(image, true);
    ExpectRejected(sensitive);
    EXPECT_EQ(sensitive.Dry(), 0.0);
}

/// A flat capture shows no ridges anywhere: the region is empty, and an empty region stands for
/// the whole picture. No background is left to measure.
TEST(IpQK7DynamicCalibration30, RejectsAFingerThatLeavesNoBackground) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 90, 110, 1, 128);
    StDynamicRun run(image, true);
    ExpectRejected(run);
    EXPECT_EQ(run.Dry(), 0.0);
    EXPECT_EQ(Sample(run.m_Mask, 45, 55), 0); // it was found
}

TEST(IpQK7DynamicCalibration30, TakesTwoFingersForNone) {
    ClTestImage image = WarpedCapture("two_fingers");
    ExpectWithoutFinger(StDynamicRun(image));
    ExpectWithoutFinger(StDynamicRun(image, true));
}

// The dirt level

TEST(IpQK7DynamicCalibration30, ReportsADirtLevelBelow2000AsItStands) {
    ClTestImage image = Speckled(6);
    StDynamicRun run(image);
    EXPECT_DOUBLE_EQ(run.Dirt(), 1999.9);
    EXPECT_GT(run.Dry(), 0.0);
    EXPECT_FALSE(IsWhite(run.m_Out));
}

TEST(IpQK7DynamicCalibration30, RejectsACaptureFromADirtLevelOf2000On) {
    ClTestImage image = Speckled(5);
    StDynamicRun run(image);
    ExpectRejected(run);
    EXPECT_GT(run.Dry(), 0.0); // the finger was found
}

/// Written over itself a capture goes the plain way.
TEST(IpQK7DynamicCalibration30, RejectsFromADirtLevelOf2000OnOverTheCapture) {
    ClTestImage image = Speckled(5);
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &image;
    EXPECT_EQ(calibration.Apply(), 0);
    EXPECT_EQ(calibration.m_dDirtWarningLevel, 100.0);
    EXPECT_TRUE(IsWhiteWithPadding(image));
}

/// A seventh of the surroundings of every pixel of the speck is no background then.
TEST(IpQK7DynamicCalibration30, MeasuresNoDirtBesideSaturatedPixels) {
    ClTestImage bright = SpeckledBeside(254);
    StDynamicRun measured(bright);
    EXPECT_DOUBLE_EQ(measured.Dirt(), 1999.9);
    ClTestImage saturated = SpeckledBeside(255);
    StDynamicRun run(saturated);
    EXPECT_EQ(run.Dirt(), 0.0);
    EXPECT_FALSE(IsWhite(run.m_Out));
}

// Images

/// What follows changes the mask of the run, not the one handed out.
TEST(IpQK7DynamicCalibration30, KeepsTheMaskOfARejectedCapture) {
    ClTestImage kept = Speckled(6);
    ClTestImage rejected = Speckled(5);
    StDynamicRun first(kept);
    StDynamicRun second(rejected);
    ExpectSameImage(second.m_Mask, first.m_Mask);
    EXPECT_FALSE(IsWhite(second.m_Mask));
    EXPECT_EQ(Sample(second.m_Mask, 160, 240), 0); // the finger
    EXPECT_EQ(Sample(second.m_Mask, 2, 2), 255);   // the frame, which is faded out later
    EXPECT_EQ(Sample(second.m_Mask, 65, 65), 255); // the speck
}

TEST(IpQK7DynamicCalibration30, NeedsNoMaskImage) {
    ClTestImage image = WarpedCapture("loop");
    StDynamicRun told(image);
    ClTestImage out;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &out;
    EXPECT_EQ(calibration.Apply(), 0);
    ExpectSameImage(out, told.m_Out);
    EXPECT_EQ(calibration.m_dDryFingerWarningLevel, told.Dry());
}

TEST(IpQK7DynamicCalibration30, LeavesTheCaptureAlone) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 91, 77, 1, 7);
    const std::vector<unsigned char> aBefore(image.Data(), image.Data() + image.SizeBytes());
    StDynamicRun run(image);
    EXPECT_EQ(std::vector<unsigned char>(image.Data(), image.Data() + image.SizeBytes()), aBefore);
    ExpectSameImage(image, RandomImage(ClImage::eUInt8, 91, 77, 1, 7));
}

TEST(IpQK7DynamicCalibration30, GivesTheSameOverTheCapture) {
    ClTestImage image = WarpedCapture("loop");
    StDynamicRun told(image);
    ClTestImage mask;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &image;
    calibration.m_pOutMaskImage = &mask;
    EXPECT_EQ(calibration.Apply(), 0);
    ExpectSameImage(image, told.m_Out);
    ExpectSameImage(mask, told.m_Mask);
    EXPECT_EQ(calibration.m_dDirtWarningLevel, told.Dirt());
}

TEST(IpQK7DynamicCalibration30, GivesTheSameWithTheMaskOverTheCapture) {
    ClTestImage image = Speckled(6);
    StDynamicRun told(image);
    ClTestImage out;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &out;
    calibration.m_pOutMaskImage = &image;
    EXPECT_EQ(calibration.Apply(), 0);
    ExpectSameImage(image, told.m_Mask);
    ExpectSameImage(out, told.m_Out);
    EXPECT_EQ(calibration.m_dDirtWarningLevel, told.Dirt());
}

TEST(IpQK7DynamicCalibration30, ChangesACaptureThatIsTheOutputOnlyWithSuccess) {
    ClTestImage image = WithoutResolution(WarpedCapture("loop"));
    const ClTestImage before = image;
    ClIpQK7DynamicCalibration30 calibration;
    calibration.m_pInImage = &image;
    calibration.m_pOutImage = &image;
    EXPECT_THROWS(calibration.Apply(), ClExTessarin, -13, cszPels);
    ExpectSameImage(image, before);
}

TEST(IpQK7DynamicCalibration30, RemembersNothingOfTheRunBefore) {
    ClTestImage loop = WarpedCapture("loop");
    ClTestImage dry = WarpedCapture("dry");
    StDynamicRun first(loop);
    StDynamicRun again(dry);
    again.m_Calibration.m_pInImage = &loop;
    EXPECT_EQ(again.m_Calibration.Apply(), 0);
    ExpectSameImage(again.m_Out, first.m_Out);
    ExpectSameImage(again.m_Mask, first.m_Mask);
    EXPECT_EQ(again.Dirt(), first.Dirt());
    EXPECT_EQ(again.Dry(), first.Dry());
}
