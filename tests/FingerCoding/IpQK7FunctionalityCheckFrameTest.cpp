// What the functionality check publishes, refuses and survives, and an independent model's images.

#include "FingerCoding/IpQK7FunctionalityCheck.h"

#include "FingerCoding/NaiveFunctionalityCheck.h"
#include "FingerCoding/TimerMarks.h"
#include "Tools/Bitmap.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/TestData.h"

#include <string>
#include <vector>

namespace {

using namespace TestSupport;

// Parameters

TEST(IpQK7FunctionalityCheck, PublishesItsLevelInTheFlatListAlone) {
    ClIpQK7FunctionalityCheck ip;
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Output Image"),
                    TreeEnum("OutImageType", ip.m_nOutImageType, 255, caPixelTypeNames,
                             "In: OutImage Datatype")});
    ClIpQK7FunctionalityCheck flat;
    ExpectFlat(flat,
               {TestSupport::FlatImage("InImage", flat.m_pInImage, "In: Original Image"),
                TestSupport::FlatImage("OutImage", flat.m_pOutImage, "Out: Output Image", ceOut),
                FlatEnum("OutImageType", flat.m_nOutImageType, 255, caPixelTypeNames,
                         "In: OutImage Datatype"),
                FlatNumber("dOutDefectWarningLevel", flat.m_dOutDefectWarningLevel, 0.0,
                           "Out: DefectWarningLevel", 0.0, 0.0, ceOut)});
}

TEST(IpQK7FunctionalityCheck, IsAProcessor) {
    ExpectProcessor<ClIpQK7FunctionalityCheck>("ClIpQK7FunctionalityCheck");
}

TEST(IpQK7FunctionalityCheck, StartsWithItsDefaultsAndReturnsToThem) {
    ClIpQK7FunctionalityCheck check;
    const auto ExpectDefaults = [&] {
        EXPECT_EQ(check.m_nNoise, 5);
        EXPECT_EQ(check.m_dOutDefectWarningLevel, 0.0);
        EXPECT_EQ(check.m_pInImage, nullptr);
        EXPECT_EQ(check.m_pOutImage, nullptr);
        EXPECT_EQ(check.m_nOutImageType, ClImage::eTypeDefault);
        EXPECT_FALSE(check.m_bInPlace);
        EXPECT_FALSE(check.m_bUseLUT);
    };
    ExpectDefaults();
    ClImage image;
    check.m_nNoise = 17;
    check.m_dOutDefectWarningLevel = 3.0;
    check.m_pInImage = &image;
    check.m_pOutImage = &image;
    check.m_nOutImageType = ClImage::eInt8;
    check.SetParametersToDefault();
    ExpectDefaults();
}

TEST(IpQK7FunctionalityCheck, ShowsNoiseAndLevelCutToTheBuffer) {
    ClIpQK7FunctionalityCheck check;
    check.m_nNoise = 17;
    check.m_dOutDefectWarningLevel = 99.96;
    const std::string Text = "Noise 17 Defect 100.0";
    for (unsigned long nSize = 1; nSize < 30; ++nSize) {
        std::vector<char> aBuffer(nSize + 1, '#');
        EXPECT_EQ(check.ParameterString(aBuffer.data(), nSize), 21);
        EXPECT_EQ(std::string(aBuffer.data()), Text.substr(0, nSize - 1));
        EXPECT_EQ(aBuffer[nSize - 1], '\0');
        EXPECT_EQ(aBuffer[nSize], '#');
    }
    char cUntouched = '#';
    EXPECT_EQ(check.ParameterString(&cUntouched, 0), 21);
    EXPECT_EQ(cUntouched, '#');
    EXPECT_EQ(check.ParameterString(nullptr, 0), 21);
    EXPECT_EQ(check.ParameterString(nullptr, 40), 21);
}

TEST(IpQK7FunctionalityCheck, EndsABufferOfAnySizeWithZero) {
    ClIpQK7FunctionalityCheck check;
    std::vector<char> aBuffer(40, '#');
    EXPECT_EQ(check.ParameterString(aBuffer.data(), aBuffer.size()), 18);
    EXPECT_EQ(std::string(aBuffer.data()), "Noise 5 Defect 0.0");
    EXPECT_EQ(aBuffer[38], '#');
    EXPECT_EQ(aBuffer[39], '\0');
}

// Timing

TEST(IpQK7FunctionalityCheck, TimesItsStepsAndNotTheFading) {
    ClTimerMarks timer;
    ClTestImage in = TestSupport::FlatImage(ClImage::eUInt8, 60, 60, 1, 200);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.ApplyParam(in, out, ClImage::eTypeDefault);
    EXPECT_EQ(timer.m_aRuns,
              (std::vector<std::string>{"ClIpInvert", "ClIpScale", "ClIpFilterGauss",
                                        "ClIpFilterMid", "ClIpSubtract", "ClIpAbs",
                                        "ClIpStretchRangeGlobal", "ClIpQK7FunctionalityCheck"}));
}

TEST(IpQK7FunctionalityCheck, TimesNothingWhenSwitchedOff) {
    ClTimerMarks timer;
    ClTestImage in = TestSupport::FlatImage(ClImage::eUInt8, 60, 60, 1, 200);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.Timer(false);
    check.ApplyParam(in, out, ClImage::eTypeDefault);
    ClIpQK7FunctionalityCheck::FadeSensorBorder(in, out);
    EXPECT_TRUE(timer.m_aRuns.empty());
}

// Failures

TEST(IpQK7FunctionalityCheck, AnswersMissingImagesAndPixels) {
    ClTestImage in = TestSupport::FlatImage(ClImage::eUInt8, 30, 30, 1, 200);
    ClImage empty;
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.m_dOutDefectWarningLevel = 7.0;
    const auto Status = [&](ClImage* pIn, ClImage* pOut) {
        check.m_pInImage = pIn;
        check.m_pOutImage = pOut;
        return check.Apply();
    };
    EXPECT_EQ(Status(nullptr, &out), -10);
    EXPECT_EQ(Status(&in, nullptr), -10);
    EXPECT_EQ(Status(nullptr, nullptr), -10);
    EXPECT_EQ(Status(&empty, &out), -10);
    ExpectEmptyImage(out);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, 7.0);
}

TEST(IpQK7FunctionalityCheck, RefusesColouredImages) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 41, 37, 3, 1);
    const ClTestImage Before = in;
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.m_dOutDefectWarningLevel = 7.0;
    EXPECT_THROWS(check.ApplyParam(in, out, ClImage::eTypeDefault), ClException, -101,
                  "Color-image not supported in ClHistogram::Create.");
    EXPECT_EQ(check.m_dOutDefectWarningLevel, 7.0);
    EXPECT_EQ(RealPixels(in), RealPixels(Before));
}

TEST(IpQK7FunctionalityCheck, RefusesSamplesThatAreNoBytes) {
    for (const unsigned char nType : {ClImage::eUInt16, ClImage::eInt32, ClImage::eDouble64}) {
        ClTestImage in = RandomImage(nType, 41, 37, 1, 1);
        ClImage out;
        ClIpQK7FunctionalityCheck check;
        EXPECT_THROWS(check.ApplyParam(in, out, ClImage::eTypeDefault), ClException, -101,
                      "Image Type is not the assigned type");
    }
}

TEST(IpQK7FunctionalityCheck, HasAnEmptySensorMaskForAnEmptyImage) {
    ClImage empty;
    ClTestImage out = TestSupport::FlatImage(ClImage::eUInt8, 3, 3, 1, 9);
    ClIpQK7FunctionalityCheck::BuildSensorMask(empty, out);
    ExpectEmptyImage(out);
}

TEST(IpQK7FunctionalityCheck, SurvivesEachMissingAllocation) {
    const ClTestImage In = RandomImage(ClImage::eUInt8, 91, 121, 1, 2);
    ClTestImage in = In;
    const Rows aExpected = NaiveDefects(Pixels(In), 5);
    const double dExpected = NaiveLevel(aExpected);
    ASSERT_GT(dExpected, 0.0);
    ClIpQK7FunctionalityCheck check;
    FailEachAllocation([&] {
        check.m_dOutDefectWarningLevel = 7.0;
        ClImage out;
        check.ApplyParam(in, out, ClImage::eTypeDefault);
        const long nPaused = PauseFailures();
        EXPECT_EQ(Pixels(out), aExpected);
        ResumeFailures(nPaused);
        EXPECT_EQ(check.m_dOutDefectWarningLevel, dExpected);
    });
    EXPECT_EQ(check.m_dOutDefectWarningLevel, dExpected);
    EXPECT_EQ(Pixels(in), Pixels(In));
}

TEST(IpQK7FunctionalityCheck, KeepsItsInputWhereFadingInPlaceFails) {
    const ClTestImage In = RandomImage(ClImage::eUInt8, 41, 37, 1, 2);
    for (long nAfter = 0; nAfter < 1000; ++nAfter) {
        ClTestImage image = In;
        try {
            const ClFailAllocation fail(nAfter);
            ClIpQK7FunctionalityCheck::FadeSensorBorder(image, image);
            if (!ClFailAllocation::Happened())
                return;
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(Pixels(image), Pixels(In)) << nAfter;
        }
    }
    FAIL() << "never got by without a failing allocation";
}

// A second opinion

TEST(IpQK7FunctionalityCheck, GivesTheDefectImagesOfAnIndependentModel) {
    for (const std::string szKind : {"loop", "two_fingers"}) {
        Bytes aIn = DataBlock("dynamic/" + szKind + "_stage_01_InImage.bmp");
        Bytes aExpected = DataBlock("dynamic/" + szKind + "_stage_12_DefectImage.bmp");
        ClImage in;
        ClImage expected;
        in.Attach(ClBitmap(aIn.data(), true));
        expected.Attach(ClBitmap(aExpected.data(), true));
        ClImage out;
        ClIpQK7FunctionalityCheck check;
        EXPECT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
        EXPECT_EQ(Pixels(out), Pixels(expected)) << szKind;
    }
}

} // namespace
