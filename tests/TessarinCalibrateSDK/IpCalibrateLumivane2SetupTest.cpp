// The engine's way from a capture of the dot target to calibration data.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/DotTargets.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <limits>

using TestSupport::ClLogCapture;
using TestSupport::DotsOf;
using TestSupport::PlausibleRecord;
using TestSupport::StDot;
using TestSupport::StTargetImage;
using TestSupport::Trace;

namespace {

using Engine = ClIpCalibrateLumivane2;

/// Pixels of a corrected image from dot to dot.
constexpr double cdPitch = 2.0 * 500.0 / 25.4;

/// An engine and the capture of a target.
struct StCaptured {
    explicit StCaptured(const StTargetImage& Target = {}) {
        TestSupport::Fill(Target, m_In);
        m_Engine.m_pInImage = &m_In;
        m_Engine.m_bDynamicFingerMask = false;
    }

    const ClCalibrateGeometricData& Data() const { return m_Engine.m_CalibrationData; }

    ClImage m_In;
    Engine m_Engine;
};

/// A reference target of the ideal pattern, stretched, as if measured at a resolution.
void FillReference(Engine& rEngine, double dStretch, std::uint32_t nPels = 19685) {
    const StTargetImage Ideal = TestSupport::CorrectedTarget();
    rEngine.m_TargetData.Clear();
    rEngine.m_TargetData.m_nTargetPelsX = rEngine.m_TargetData.m_nTargetPelsY = nPels;
    for (const StDot& Dot : DotsOf(Ideal))
        rEngine.m_TargetData.m_aTarget.Append(
            {Dot.x * dStretch * nPels / 19685, Dot.y * nPels / 19685});
}

void ExpectPoint(const ClVector& v, double x, double y, double dLimit) {
    EXPECT_NEAR(v.x, x, dLimit);
    EXPECT_NEAR(v.y, y, dLimit);
}

/// The pattern, its sixth row and fourth column through (x, y).
void ExpectPattern(const ClCalibrateGeometricData& Data, double x, double y, double dPitchX,
                   double dPitchY, double dLimit) {
    ASSERT_EQ(Data.m_aTarget.Entries(), 75u);
    const int anLengths[] = {10, 11, 11, 11, 11, 11, 10};
    unsigned long i = 0;
    for (int nColumn = 0; nColumn < 7; ++nColumn)
        for (int nRow = 0; nRow < anLengths[nColumn]; ++nRow)
            ExpectPoint(Data.m_aTarget[i++], x + (nColumn - 3) * dPitchX, y + (nRow - 5) * dPitchY,
                        dLimit);
}

} // namespace

// The record

TEST(IpCalibrateLumivane2Setup, FindsThePaintedDots) {
    StTargetImage Target;
    Target.m_dShiftX = 3.25;
    Target.m_dShiftY = -7.5;
    StCaptured Captured(Target);
    Captured.m_Engine.Setup();
    const std::vector<StDot> aDots = DotsOf(Target);
    ASSERT_EQ(Captured.Data().m_aActual[0].Entries(), 75u);
    for (unsigned long i = 0; i < 75; ++i)
        ExpectPoint(Captured.Data().m_aActual[0][i], aDots[i].x, aDots[i].y, 0.2);
    EXPECT_EQ(Captured.Data().m_aActual[1].Entries(), 0u);
}

TEST(IpCalibrateLumivane2Setup, FillsTheNumbersOfTheScanner) {
    StTargetImage Target;
    Target.m_nWidth = 384;
    Target.m_nHeight = 1045;
    StCaptured Captured(Target);
    Captured.m_Engine.Setup();
    EXPECT_TRUE(Captured.m_Engine.IsInitialized());
    const ClCalibrateGeometricData& Data = Captured.Data();
    EXPECT_EQ(Data.m_nSourceWidth, 384u);
    EXPECT_EQ(Data.m_nSourceHeight, 1045u);
    EXPECT_EQ(Data.m_nSourcePelsX, 19397u); // 492.706 dots per inch
    EXPECT_EQ(Data.m_nSourcePelsY, 39735u); // 1009.287 dots per inch
    EXPECT_EQ(Data.m_nTargetWidth, 320u);
    EXPECT_EQ(Data.m_nTargetHeight, 480u);
    EXPECT_EQ(Data.m_nTargetPelsX, 19685u);
    EXPECT_EQ(Data.m_nTargetPelsY, 19685u);
    EXPECT_EQ(Data.m_nPlanes, 1u);
    EXPECT_EQ(Data.m_nBackground, 255); // the ground of dark dots
}

TEST(IpCalibrateLumivane2Setup, PlacesThePatternAsItLiesInTheCapture) {
    for (const StDot& Shift : {StDot{0.0, 0.0}, {10.0, -20.0}, {-6.0, 31.0}}) {
        StTargetImage Target;
        Target.m_dShiftX = Shift.x;
        Target.m_dShiftY = Shift.y;
        StCaptured Captured(Target);
        Captured.m_Engine.Setup();
        ExpectPattern(Captured.Data(), 160.0 + Shift.x * 500.0 / 492.706,
                      240.0 + Shift.y * 500.0 / 1009.287, cdPitch, cdPitch, 0.25);
    }
}

TEST(IpCalibrateLumivane2Setup, IgnoresTheCapturesOwnResolution) {
    StCaptured Captured;
    Captured.m_In.SetPelsX(123);
    Captured.m_In.SetPelsY(-5);
    Captured.m_Engine.Setup();
    EXPECT_EQ(Captured.Data().m_nSourcePelsX, 19397u);
}

TEST(IpCalibrateLumivane2Setup, ReplacesFormerData) {
    StCaptured Captured;
    TestSupport::Fill(PlausibleRecord(), Captured.m_Engine.m_CalibrationData);
    Captured.m_Engine.Setup();
    EXPECT_EQ(Captured.Data().m_nSourceWidth, 390u);
    EXPECT_EQ(Captured.Data().m_aActual[0].Entries(), 75u);
}

// The reference target

TEST(IpCalibrateLumivane2Setup, TakesTheReferenceInPlaceOfTheIdealPattern) {
    StCaptured Captured;
    FillReference(Captured.m_Engine, 1.01);
    Captured.m_Engine.Setup();
    // a pattern 1 percent too wide says that the capture shows more than it seems
    const ClCalibrateGeometricData& Data = Captured.Data();
    EXPECT_NEAR(Data.m_aTarget[74].x - Data.m_aTarget[0].x, 6 * 1.01 * cdPitch, 1e-3);
    EXPECT_NEAR(Data.m_aTarget[9].y - Data.m_aTarget[0].y, 9 * cdPitch, 1e-3);
    EXPECT_EQ(Captured.m_Engine.m_TargetData.m_aTarget.Entries(), 75u);
}

TEST(IpCalibrateLumivane2Setup, ScalesTheReferenceToTheTargetsResolution) {
    StCaptured Captured;
    FillReference(Captured.m_Engine, 1.0, 7874); // 200 dots per inch
    Captured.m_Engine.Setup();
    ExpectPattern(Captured.Data(), 160.0, 240.0, cdPitch, cdPitch, 0.25);
}

TEST(IpCalibrateLumivane2Setup, IgnoresAReferenceWithoutPoints) {
    StCaptured Captured;
    Captured.m_Engine.m_TargetData.m_nTargetPelsX = 1;
    Captured.m_Engine.Setup();
    ExpectPattern(Captured.Data(), 160.0, 240.0, cdPitch, cdPitch, 0.25);
}

TEST(IpCalibrateLumivane2Setup, RefusesAReferenceThatIsNone) {
    StCaptured Captured;
    ClCalibrateGeometricData& rReference = Captured.m_Engine.m_TargetData;
    const auto ExpectRefused = [&] {
        EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -39, "Target data is corrupt");
    };
    FillReference(Captured.m_Engine, 1.0);
    rReference.m_aTarget.Remove(74);
    ExpectRefused();
    FillReference(Captured.m_Engine, 1.0);
    rReference.m_aTarget.Append({1.0, 1.0});
    ExpectRefused();
    FillReference(Captured.m_Engine, 1.0);
    rReference.m_nTargetPelsX = 0;
    ExpectRefused();
    FillReference(Captured.m_Engine, 1.0);
    rReference.m_nTargetPelsY = 0;
    ExpectRefused();
    FillReference(Captured.m_Engine, 1.0);
    rReference.m_aTarget[3].y = std::numeric_limits<double>::quiet_NaN();
    ExpectRefused();
    FillReference(Captured.m_Engine, 1.0);
    EXPECT_NO_THROW(Captured.m_Engine.Setup());
}

TEST(IpCalibrateLumivane2Setup, FindsNoPatternByAReferenceWithTwoPointsInOne) {
    StCaptured Captured;
    FillReference(Captured.m_Engine, 1.0);
    auto& rPoints = Captured.m_Engine.m_TargetData.m_aTarget;
    rPoints[1] = rPoints[0];
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
    for (unsigned long i = 0; i < 75; ++i)
        rPoints[i] = {5.0, 5.0};
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
}

// Table and rescaler

TEST(IpCalibrateLumivane2Setup, PreparesTheTableWhateverTheOption) {
    for (const bool bPrecalculated : {false, true}) {
        StCaptured Captured;
        Captured.m_Engine.m_bPrecalculatedData = bPrecalculated;
        Captured.m_Engine.Setup();
        EXPECT_TRUE(Captured.m_Engine.m_GeometricBicubic.HasTable());
        EXPECT_EQ(Captured.m_Engine.m_GeometricBicubic.m_pData,
                  &Captured.m_Engine.m_CalibrationData);
        EXPECT_EQ(Captured.m_Engine.m_GeometricBicubic.m_pInImage, nullptr);
        EXPECT_EQ(Captured.m_Engine.m_GeometricBicubic.m_pOutImage, nullptr);
    }
}

TEST(IpCalibrateLumivane2Setup, SetsTheRescalerToTheTargetsResolution) {
    StCaptured Captured;
    Captured.m_Engine.Setup();
    EXPECT_EQ(Captured.m_Engine.m_Rescale.m_nNewPelsX, 19685);
    EXPECT_EQ(Captured.m_Engine.m_Rescale.m_nNewPelsY, 19685);
    EXPECT_EQ(static_cast<int>(Captured.m_Engine.m_Rescale.m_eMode), 3);
}

// Dots of the corrected capture lie on the target points: dark there, bright between them.
TEST(IpCalibrateLumivane2Setup, MakesTheScannerReadyToCorrectItsCaptures) {
    StTargetImage Target;
    Target.m_dShiftX = 4.0;
    StCaptured Captured(Target);
    Captured.m_Engine.Setup();
    ClImage Out;
    Captured.m_Engine.m_pOutImage = &Out;
    ASSERT_EQ(Captured.m_Engine.Apply(), 0);
    ASSERT_EQ(Out.Width(), 320);
    ASSERT_EQ(Out.Height(), 480);
    for (unsigned long i = 0; i < 75; ++i) {
        const auto x = static_cast<int>(Captured.Data().m_aTarget[i].x);
        const auto y = static_cast<int>(Captured.Data().m_aTarget[i].y);
        EXPECT_NEAR(Out.LineData(y)[x], 60, 2);
        EXPECT_NEAR(Out.LineData(y + 19)[x + 19], 200, 2);
    }
}

TEST(IpCalibrateLumivane2Setup, LeavesTheOutputImageAlone) {
    StCaptured Captured;
    ClImage Out(3, 2, 1, 7, 8);
    Out = static_cast<unsigned char>(99);
    Captured.m_Engine.m_pOutImage = &Out;
    Captured.m_Engine.Setup();
    EXPECT_EQ(Captured.m_Engine.m_pOutImage, &Out);
    EXPECT_EQ(Out.Width(), 3);
    EXPECT_EQ(Out.LineData(1)[2], 99);
}

// Failures

TEST(IpCalibrateLumivane2Setup, RefusesAPatternThatIsNotComplete) {
    StTargetImage Target;
    Target.m_aMissing = {30};
    StCaptured Captured(Target);
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
}

TEST(IpCalibrateLumivane2Setup, RefusesRowsThatSlant) {
    StTargetImage Target;
    Target.m_dRowSlant = 16.5;
    StCaptured Captured(Target);
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "The Angle(x) of the Dot Grid is too big.");
}

TEST(IpCalibrateLumivane2Setup, FindsNothingInAnEmptyCapture) {
    StTargetImage Target;
    Target.m_nDot = Target.m_nGround;
    StCaptured Captured(Target);
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
    ClImage Single(1, 1, 1, 0, 0);
    Captured.m_Engine.m_pInImage = &Single;
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
}

TEST(IpCalibrateLumivane2Setup, DropsTheOldTableOnceItLooksAtTheCapture) {
    StCaptured Captured;
    Captured.m_Engine.Setup();
    ClImage Colour(8, 8, 3, 0, 0);
    Captured.m_Engine.m_pInImage = &Colour;
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClExTessarin, -11,
                  "Only grey-scale images with 8-bit color-depth are supported.");
    EXPECT_TRUE(Captured.m_Engine.m_GeometricBicubic.HasTable());
    ClImage Empty(64, 64, 1, 0, 0);
    Captured.m_Engine.m_pInImage = &Empty;
    EXPECT_THROWS(Captured.m_Engine.Setup(), ClException, -600,
                  "Not the expected dot count found.");
    EXPECT_FALSE(Captured.m_Engine.m_GeometricBicubic.HasTable());
    Captured.m_Engine.m_pInImage = &Captured.m_In;
    EXPECT_NO_THROW(Captured.m_Engine.Setup());
    EXPECT_TRUE(Captured.m_Engine.m_GeometricBicubic.HasTable());
}

// Every early failure, and a sample of the later ones: each takes a capture.
TEST(IpCalibrateLumivane2Setup, SurvivesMissingMemory) {
    StCaptured Captured;
    bool bHappened = true;
    for (long nAfter = 0; bHappened && nAfter < 100000; nAfter += 1 + nAfter / 4) {
        try {
            const TestSupport::ClFailAllocation Fail(nAfter);
            Captured.m_Engine.Setup();
            bHappened = TestSupport::ClFailAllocation::Happened();
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(e.Number(), -102) << nAfter;
        }
    }
    EXPECT_FALSE(bHappened);
    EXPECT_EQ(Captured.Data().m_aTarget.Entries(), 75u);
}

// Trace

TEST(IpCalibrateLumivane2Setup, TracesItsStepsAndThePoints) {
    StCaptured Captured;
    const ClLogCapture Log;
    Captured.m_Engine.Setup();
    const auto& aLines = Log.Lines();
    EXPECT_EQ(aLines.front(), Trace("ClIpCalibrateQK7::Setup() Enter"));
    EXPECT_EQ(aLines[1], Trace("ClIpCalibrateGeometricBase::Reset() Enter"));
    EXPECT_EQ(aLines.back(), Trace("ClIpCalibrateQK7::Setup() Leaving"));
    const auto Find = [&](const std::string& Start) {
        return std::find_if(aLines.begin(), aLines.end(), [&](const auto& Line) {
            return Line.m_Text.compare(0, Start.size(), Start) == 0;
        });
    };
    const auto itLocated = Find("ClIpCalibrateGeometricBuildRefPointsBase::Process() Leaving");
    const auto itPoint = Find("74: Target(");
    const auto itTable = Find("ClIpCalibrateGeometricBase::Initiate() Enter");
    ASSERT_NE(itLocated, aLines.end());
    ASSERT_NE(itPoint, aLines.end());
    EXPECT_LT(itLocated, itPoint);
    EXPECT_LT(itPoint, itTable);
}
