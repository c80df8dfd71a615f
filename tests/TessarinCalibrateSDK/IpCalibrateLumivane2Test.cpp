// The engine: which steps run on a capture, and what they make of sizes and resolutions.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "ImageProcessing/IpFilterBase.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "TessarinCalibrateSDK/EngineWords.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <cstring>
#include <memory>
#include <random>

using TestSupport::ClLogCapture;
using TestSupport::cszMissing;
using TestSupport::cszPlanes;
using TestSupport::cszSingular;
using TestSupport::IsWhite;
using TestSupport::Lines;
using TestSupport::PlausibleRecord;
using TestSupport::Trace;

namespace {

using Engine = ClIpCalibrateLumivane2;

void FillNoise(ClImage& rImage, unsigned int nSeed = 1) {
    std::mt19937 Random(nSeed);
    for (std::size_t i = 0; i < rImage.SizeBytes(); ++i)
        rImage.Data()[i] = static_cast<unsigned char>(Random());
}

/// An engine with the record of a small scanner, without dynamic calibration, and a capture.
struct StReady {
    explicit StReady(Engine::EGeometricMode eMode) : m_In(48, 132, 1, 2000, 4001) {
        Fill(PlausibleRecord(), m_Engine.m_CalibrationData);
        m_Engine.m_GeometricBicubic.m_pData = &m_Engine.m_CalibrationData;
        m_Engine.m_bDynamicFingerMask = false;
        m_Engine.m_eGeometricMode = eMode;
        m_Engine.m_pInImage = &m_In;
        m_Engine.m_pOutImage = &m_Out;
        FillNoise(m_In);
    }

    ClImage m_In;
    ClImage m_Out;
    Engine m_Engine;
};

/// The sharpening along the columns, by its operator.
void Sharpen(ClImage& rIn, ClImage& rOut) {
    ClIpUnsharpMasking Unsharp;
    Unsharp.m_dGaussSigma = 0.9;
    Unsharp.m_dAmplificationFactor = 1.0;
    Unsharp.m_nThreshold = 0;
    Unsharp.m_nMode = ClIpFilterBase::ModeY;
    ASSERT_EQ(Unsharp.ApplyParam(rIn, rOut, 0), 0);
}

void ExpectSamePixels(const ClImage& Image, const ClImage& Expected) {
    ASSERT_EQ(Image.Width(), Expected.Width());
    ASSERT_EQ(Image.Height(), Expected.Height());
    for (int y = 0; y < Image.Height(); ++y)
        EXPECT_EQ(std::memcmp(Image.LineData(y), Expected.LineData(y),
                              static_cast<std::size_t>(Image.Width())),
                  0)
            << "line " << y;
}

} // namespace

// State

TEST(IpCalibrateLumivane2, StartsWithTheDefaults) {
    const Engine Fresh;
    EXPECT_EQ(Fresh.m_pInImage, nullptr);
    EXPECT_EQ(Fresh.m_pOutImage, nullptr);
    EXPECT_FALSE(Fresh.m_bSensitiveMode);
    EXPECT_TRUE(Fresh.m_bDynamicFingerMask);
    EXPECT_FALSE(Fresh.m_bPrecalculatedData);
    EXPECT_EQ(Fresh.m_eGeometricMode, Engine::eThinPlateSpline);
    EXPECT_FALSE(Fresh.m_bMaskIsOutput);
    EXPECT_FALSE(Fresh.m_TargetData.IsValid());
    EXPECT_FALSE(Fresh.m_CalibrationData.IsValid());
    EXPECT_FALSE(Fresh.m_GeometricBicubic.HasTable());
    EXPECT_FALSE(Fresh.IsInitialized());
}

TEST(IpCalibrateLumivane2, IsInitializedBySizesAndFirstActualPoints) {
    Engine Tested;
    Fill(PlausibleRecord(), Tested.m_CalibrationData);
    EXPECT_TRUE(Tested.IsInitialized());
    Tested.m_CalibrationData.m_nSourceWidth = 0;
    EXPECT_FALSE(Tested.IsInitialized());
    Tested.m_CalibrationData.m_nSourceWidth = 1;
    Tested.m_CalibrationData.m_nSourceHeight = 0;
    EXPECT_FALSE(Tested.IsInitialized());
    Tested.m_CalibrationData.m_nSourceHeight = 1;
    EXPECT_TRUE(Tested.IsInitialized());
    Tested.m_CalibrationData.m_aTarget.Clear();
    Tested.m_CalibrationData.m_nPlanes = 0;
    EXPECT_TRUE(Tested.IsInitialized());
    Tested.m_CalibrationData.m_aActual[0].Clear();
    EXPECT_FALSE(Tested.IsInitialized());
}

TEST(IpCalibrateLumivane2, ClearDropsTheCalibrationDataAlone) {
    StReady Ready(Engine::eThinPlateSpline);
    Ready.m_Engine.Apply();
    Fill(PlausibleRecord(), Ready.m_Engine.m_TargetData);
    Ready.m_Engine.m_bMaskIsOutput = true;
    Ready.m_Engine.Clear();
    EXPECT_FALSE(Ready.m_Engine.IsInitialized());
    EXPECT_TRUE(Ready.m_Engine.m_GeometricBicubic.HasTable());
    EXPECT_EQ(Ready.m_Engine.m_TargetData.m_aTarget.Entries(), 75u);
    EXPECT_TRUE(Ready.m_Engine.m_bMaskIsOutput);
    EXPECT_FALSE(Ready.m_Engine.m_bDynamicFingerMask);
}

TEST(IpCalibrateLumivane2, TellsItsNameAndCreatesItsLike) {
    Engine Tested;
    EXPECT_STREQ(Tested.Name(), "ClIpCalibrateLumivane2");
    Tested.m_bMaskIsOutput = true;
    const std::unique_ptr<ClProcessorBase> pLike(Tested.Create());
    EXPECT_STREQ(pLike->Name(), "ClIpCalibrateLumivane2");
    EXPECT_FALSE(dynamic_cast<Engine&>(*pLike).m_bMaskIsOutput); // a fresh one
}

TEST(IpCalibrateLumivane2, CreateReportsMissingMemory) {
    Engine Tested;
    const TestSupport::ClFailAllocation Fail(0);
    try {
        Tested.Create();
        ADD_FAILURE();
    } catch (const ClExBadAlloc& e) {
        EXPECT_EQ(e.Number(), -102);
        EXPECT_EQ(TestSupport::Words(e), "Memory allocation failed");
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

// Refusals of a run

TEST(IpCalibrateLumivane2, ProcessWantsBothImages) {
    StReady Ready(Engine::eGeometricOff);
    Ready.m_Engine.m_pOutImage = nullptr;
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -37, cszMissing);
    Ready.m_Engine.m_pInImage = nullptr;
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -37, cszMissing);
    Ready.m_Engine.m_pOutImage = &Ready.m_Out;
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -37, cszMissing);
}

TEST(IpCalibrateLumivane2, ProcessWantsOneGreyPlane) {
    StReady Ready(Engine::eGeometricOff);
    for (const int nPlanes : {2, 3, 4}) {
        Ready.m_In.NewWithType(ClImage::eUInt8, 48, 132, nPlanes, 0, 0);
        EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -11, cszPlanes);
    }
    Ready.m_In.NewWithType(ClImage::eUInt8, 48, 132, 1, 0, 0);
    Ready.m_In.SetContent(ClImage::eRGB);
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -11, cszPlanes);
    Ready.m_In.Delete();
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClExTessarin, -11, cszPlanes);
}

TEST(IpCalibrateLumivane2, ProcessRefusesAnUnknownGeometricMode) {
    for (const int nMode : {3, -1, 1000}) {
        StReady Ready(static_cast<Engine::EGeometricMode>(nMode));
        EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -45,
                      "Invalid geometric calibration option");
    }
}

TEST(IpCalibrateLumivane2, ProcessPassesTheWarpsRefusalOfAnotherSize) {
    StReady Ready(Engine::eThinPlateSpline);
    Ready.m_In.NewWithType(ClImage::eUInt8, 48, 131, 1, 0, 0);
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -14, "InImage can't be the out image");
}

TEST(IpCalibrateLumivane2, FailedProcessKeepsOptionsAndData) {
    StReady Ready(Engine::eThinPlateSpline);
    Ready.m_In.NewWithType(ClImage::eUInt8, 5, 5, 1, 0, 0);
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -14, "InImage can't be the out image");
    EXPECT_TRUE(Ready.m_Engine.IsInitialized());
    EXPECT_EQ(Ready.m_Engine.m_eGeometricMode, Engine::eThinPlateSpline);
    EXPECT_FALSE(Ready.m_Engine.m_bDynamicFingerMask);
}

TEST(IpCalibrateLumivane2, PreparationThatFailedIsTriedAgain) {
    StReady Ready(Engine::eThinPlateSpline);
    const ClVector Second = Ready.m_Engine.m_CalibrationData.m_aTarget[1];
    Ready.m_Engine.m_CalibrationData.m_aTarget[1] = Ready.m_Engine.m_CalibrationData.m_aTarget[0];
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -600, cszSingular);
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -600, cszSingular);
    Ready.m_Engine.m_CalibrationData.m_aTarget[1] = Second;
    EXPECT_EQ(Ready.m_Engine.Apply(), 0);
}

TEST(IpCalibrateLumivane2, ProcessSurvivesMissingMemory) {
    for (const auto eMode : {Engine::eGeometricOff, Engine::eOddLines, Engine::eThinPlateSpline}) {
        StReady Ready(eMode);
        Ready.m_Engine.m_CalibrationData.m_nTargetHeight = 4; // a quick table
        TestSupport::FailEachAllocation([&] {
            Ready.m_Out.Delete();
            Ready.m_Engine.Apply();
        });
    }
}

// Modes

TEST(IpCalibrateLumivane2, ModeOffCopiesTheInput) {
    StReady Ready(Engine::eGeometricOff);
    Ready.m_In.NewWithType(ClImage::eUInt8, 21, 7, 1, 2000, 4001);
    FillNoise(Ready.m_In);
    EXPECT_EQ(Ready.m_Engine.Apply(), 0);
    ASSERT_EQ(Ready.m_Out.SizeBytes(), 24u * 7);
    EXPECT_EQ(std::memcmp(Ready.m_Out.Data(), Ready.m_In.Data(), 24 * 7), 0); // padding too
    EXPECT_NE(Ready.m_Out.Data(), Ready.m_In.Data());
    EXPECT_EQ(Ready.m_Out.PelsX(), 2000);
    EXPECT_EQ(Ready.m_Out.PelsY(), 4001);
}

TEST(IpCalibrateLumivane2, OddLinesSharpensAndTakesEverySecondLine) {
    StReady Ready(Engine::eOddLines);
    Ready.m_In.NewWithType(ClImage::eUInt8, 21, 100, 1, 1, 1); // any size passes
    FillNoise(Ready.m_In);
    EXPECT_EQ(Ready.m_Engine.Apply(), 0);

    ClImage Sharp;
    Sharpen(Ready.m_In, Sharp);
    ASSERT_EQ(Ready.m_Out.Width(), 21);
    ASSERT_EQ(Ready.m_Out.Height(), 50);
    for (int y = 0; y < 50; ++y) {
        EXPECT_EQ(std::memcmp(Ready.m_Out.LineData(y), Sharp.LineData(2 * y), 21), 0) << y;
        for (int x = 21; x < 24; ++x)
            EXPECT_EQ(Ready.m_Out.LineData(y)[x], 0);
    }
    EXPECT_EQ(Ready.m_Out.PelsX(), 2425);
    EXPECT_EQ(Ready.m_Out.PelsY(), 4967 / 2);
}

TEST(IpCalibrateLumivane2, OddLinesOfAnOldRecordHasNoResolution) {
    StReady Ready(Engine::eOddLines);
    Ready.m_Engine.m_CalibrationData.m_nSourcePelsX = 0;
    Ready.m_Engine.m_CalibrationData.m_nSourcePelsY = 0;
    EXPECT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Ready.m_Out.PelsX(), 0);
    EXPECT_EQ(Ready.m_Out.PelsY(), 0);
}

TEST(IpCalibrateLumivane2, OddLinesOfASingleLineIsNothing) {
    StReady Ready(Engine::eOddLines);
    Ready.m_In.NewWithType(ClImage::eUInt8, 48, 1, 1, 0, 0);
    EXPECT_THROWS(Ready.m_Engine.Apply(), ClException, -101, "Image area must be positive");
}

TEST(IpCalibrateLumivane2, ThinPlateSplineSharpensAndWarps) {
    StReady Ready(Engine::eThinPlateSpline);
    EXPECT_EQ(Ready.m_Engine.Apply(), 0);

    ClImage Sharp;
    Sharpen(Ready.m_In, Sharp);
    ClImage Expected;
    ClIpCalibrateGeometricBicubic Warp;
    Warp.m_pData = &Ready.m_Engine.m_CalibrationData;
    Warp.m_pInImage = &Sharp;
    Warp.m_pOutImage = &Expected;
    Warp.Apply();
    ExpectSamePixels(Ready.m_Out, Expected);
    EXPECT_EQ(Ready.m_Out.Width(), 40);
    EXPECT_EQ(Ready.m_Out.Height(), 60);
    EXPECT_EQ(Ready.m_Out.PelsX(), 2461);
    EXPECT_EQ(Ready.m_Out.PelsY(), 2461);
}

TEST(IpCalibrateLumivane2, OptionsOfTheDynamicStepAreNoneWithoutIt) {
    for (const auto eMode : {Engine::eGeometricOff, Engine::eOddLines, Engine::eThinPlateSpline}) {
        StReady Plain(eMode);
        EXPECT_EQ(Plain.m_Engine.Apply(), 0);
        for (const bool bMask : {false, true})
            for (const bool bSensitive : {false, true}) {
                StReady Ready(eMode);
                Ready.m_Engine.m_bMaskIsOutput = bMask;
                Ready.m_Engine.m_bSensitiveMode = bSensitive;
                EXPECT_EQ(Ready.m_Engine.Apply(), 0);
                ExpectSamePixels(Ready.m_Out, Plain.m_Out);
            }
    }
}

TEST(IpCalibrateLumivane2, InputIsUnchanged) {
    for (const auto eMode : {Engine::eGeometricOff, Engine::eOddLines, Engine::eThinPlateSpline}) {
        StReady Ready(eMode);
        ClImage Before;
        Before = Ready.m_In;
        Ready.m_Engine.Apply();
        ExpectSamePixels(Ready.m_In, Before);
        EXPECT_EQ(Ready.m_In.PelsX(), 2000);
    }
}

// Kept images

namespace {

/// An image of an earlier capture, with line ends that no output may show.
void Spoil(ClImage& rImage) {
    rImage.NewWithType(ClImage::eUInt8, 45, 66, 1, 2000, 2000);
    std::memset(rImage.Data(), 0x55, rImage.SizeBytes());
}

} // namespace

TEST(IpCalibrateLumivane2, EarlierImagesAreNotSeenBehindLines) {
    StReady Ready(Engine::eOddLines);
    Ready.m_In.NewWithType(ClImage::eUInt8, 45, 132, 1, 2000, 4001);
    FillNoise(Ready.m_In);
    Spoil(Ready.m_Engine.m_Kept.m_Warped);
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    ASSERT_EQ(Ready.m_Out.LineStrideBytes(), 48);
    for (int y = 0; y < 66; ++y)
        for (int x = 45; x < 48; ++x)
            ASSERT_EQ(Ready.m_Out.LineData(y)[x], 0) << x << ", " << y;
}

TEST(IpCalibrateLumivane2, OutputWithoutPixelsTakesTheMemoryThatIsKept) {
    StReady Ready(Engine::eOddLines);
    Ready.m_In.NewWithType(ClImage::eUInt8, 45, 132, 1, 2000, 4001);
    Spoil(Ready.m_Engine.m_Kept.m_Result);
    const unsigned char* pKept = Ready.m_Engine.m_Kept.m_Result.Data();
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Ready.m_Out.Data(), pKept);
    Spoil(Ready.m_Engine.m_Kept.m_Result);
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Ready.m_Out.Data(), pKept) << "it has memory of its own now";
}

// The dynamic step. A capture of one grey value shows no finger: image and mask are white.

namespace {

struct StDynamic : StReady {
    StDynamic() : StReady(Engine::eOddLines) {
        m_In = static_cast<unsigned char>(100);
        m_Engine.m_bDynamicFingerMask = true;
    }

    const ClIpQK7DynamicCalibration30& Step() const { return m_Engine.m_DynamicCalibration; }
};

} // namespace

TEST(IpCalibrateLumivane2, DynamicStepGivesTheImage) {
    StDynamic Ready;
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Ready.Step().m_pOutImage, &Ready.m_Out);
    EXPECT_EQ(Ready.Step().m_pOutMaskImage, nullptr);
    EXPECT_FALSE(Ready.Step().m_bMaskOnly);
    EXPECT_EQ(Ready.m_Out.Height(), 66);
    EXPECT_TRUE(IsWhite(Ready.m_Out));
    EXPECT_EQ(Ready.Step().m_dDirtWarningLevel, 100.0);
}

TEST(IpCalibrateLumivane2, DynamicStepGivesTheMaskWhereItIsAskedFor) {
    StDynamic Ready;
    Ready.m_Engine.m_bMaskIsOutput = true;
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Ready.Step().m_pOutMaskImage, &Ready.m_Out);
    EXPECT_NE(Ready.Step().m_pOutImage, &Ready.m_Out); // it is dropped
    EXPECT_TRUE(Ready.Step().m_bMaskOnly);
    EXPECT_EQ(Ready.m_Out.Height(), 66);
    EXPECT_TRUE(IsWhite(Ready.m_Out));
}

TEST(IpCalibrateLumivane2, DynamicStepLeavesTheMaskOfAnEarlierRun) {
    StDynamic Ready;
    ClImage Mask;
    Ready.m_Engine.m_bMaskIsOutput = true;
    Ready.m_Engine.m_pOutImage = &Mask;
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    Mask = static_cast<unsigned char>(77);
    Ready.m_Engine.m_bMaskIsOutput = false;
    Ready.m_Engine.m_pOutImage = &Ready.m_Out;
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_EQ(Mask.LineData(65)[47], 77);
    EXPECT_TRUE(IsWhite(Ready.m_Out));
}

TEST(IpCalibrateLumivane2, DynamicStepFollowsTheSensitiveMode) {
    StDynamic Ready;
    for (const bool bSensitive : {true, false, true}) {
        Ready.m_Engine.m_bSensitiveMode = bSensitive;
        ASSERT_EQ(Ready.m_Engine.Apply(), 0);
        EXPECT_EQ(Ready.Step().m_bSensitiveMode, bSensitive);
    }
    Ready.m_Engine.m_bDynamicFingerMask = false;
    Ready.m_Engine.m_bSensitiveMode = false;
    ASSERT_EQ(Ready.m_Engine.Apply(), 0);
    EXPECT_TRUE(Ready.Step().m_bSensitiveMode); // as the last run left it
}

TEST(IpCalibrateLumivane2, DynamicStepHasItsInputWhetherOrNotItRuns) {
    for (const bool bDynamic : {false, true}) {
        StDynamic Ready;
        Ready.m_Engine.m_bDynamicFingerMask = bDynamic;
        int nHeight = 0;
        ClLogCapture Log;
        Log.m_OnLine = [&](const TestSupport::StLogLine& Line) {
            if (Line.m_Text.find("ClIpCalibrateQK7::Process() Leaving") == 0 &&
                Ready.Step().m_pInImage != nullptr)
                nHeight = Ready.Step().m_pInImage->Height();
        };
        ASSERT_EQ(Ready.m_Engine.Apply(), 0);
        EXPECT_EQ(nHeight, 66);
    }
}

// The log function takes the output away behind the test for it: the step answers that it is
// missing, and does not throw.
TEST(IpCalibrateLumivane2, AnswersOfAStepAreThrown) {
    StDynamic Ready;
    ClLogCapture Log;
    Log.m_OnLine = [&](const TestSupport::StLogLine& Line) {
        if (Line.m_Text == "ClIpCalibrateQK7::CopyOddLineImage() Leaving")
            Ready.m_Engine.m_pOutImage = nullptr;
    };
    try {
        Ready.m_Engine.Apply();
        ADD_FAILURE();
    } catch (const ClExTessarin& e) {
        EXPECT_EQ(e.Number(), -37);
        EXPECT_STREQ(e.File(), "TessarinCalibrateSDK/IpCalibrateLumivane2");
    }
    EXPECT_TRUE(Ready.m_Engine.IsInitialized());
}

// Trace

TEST(IpCalibrateLumivane2, TracesARunInModeOff) {
    StReady Ready(Engine::eGeometricOff);
    const ClLogCapture Log;
    Ready.m_Engine.Apply();
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace("ClIpCalibrateQK7::Process() Enter"),
                     Trace("ClIpCalibrateQK7::Process() Leaving(0), No errors occurred.")}));
}

TEST(IpCalibrateLumivane2, TracesARunInModeOddLines) {
    StReady Ready(Engine::eOddLines);
    const ClLogCapture Log;
    Ready.m_Engine.Apply();
    EXPECT_EQ(Log.Lines(),
              (Lines{Trace("ClIpCalibrateQK7::Process() Enter"),
                     Trace("ClIpCalibrateQK7::CopyOddLineImage() Enter"),
                     Trace("ClIpCalibrateQK7::CopyOddLineImage() Leaving"),
                     Trace("ClIpCalibrateQK7::Process() Leaving(0), No errors occurred.")}));
}

TEST(IpCalibrateLumivane2, EveryMemberTracesEnterAndLeaving) {
    StReady Ready(Engine::eGeometricOff);
    const auto ExpectTraced = [&](const char* szName, auto call) {
        const ClLogCapture Log;
        call();
        ASSERT_FALSE(Log.Lines().empty());
        const std::string Name = std::string("ClIpCalibrateQK7::") + szName;
        EXPECT_EQ(Log.Lines().front(), Trace(Name + "() Enter"));
        EXPECT_EQ(Log.Lines().back(), Trace(Name + "() Leaving"));
    };
    ClImage Image(3, 3, 1, 0, 0);
    ExpectTraced("CutRescaleImage", [&] { Ready.m_Engine.CutRescaleImage(Image); });
    ExpectTraced("IsInitialized", [&] { Ready.m_Engine.IsInitialized(); });
    ExpectTraced("CheckGeometricDataTarget", [&] {
        Ready.m_Engine.CheckGeometricDataTarget(Ready.m_Engine.m_CalibrationData);
    });
    ExpectTraced("Clear", [&] { Ready.m_Engine.Clear(); });
}
