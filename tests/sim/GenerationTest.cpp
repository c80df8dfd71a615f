// Calibration data derived from simulated captures: what is accepted, what is refused and with
// which words, and that what was derived corrects the captures of its scanner.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "sim/BitmapBlock.h"
#include "sim/TargetCases.h"

#include "support/RuledPlate.h"
#include "support/Throws.h"

#include <TessarinCalibrateSDK.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

using sim::ClCapture;
using sim::ClPoint;
using sim::ClRaster;
using sim::ClScanner;
using sim::ClTargetCaseEntry;
using sim::EKind;
using sim::EOutcome;
using sim::ETargetCase;

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t cnPixelsAt = 40 + 1024;

/// A point further off than this is on something else than its dot's centre.
constexpr double cdWrongX = 1.5;
constexpr double cdWrongY = 3.0;

class ClHandle {
public:
    ClHandle() : m_pHandle(CalibrateCreate()) {
        CalibrateSetOption(m_pHandle, "DynamicFingerMask=false");
    }
    ~ClHandle() { CalibrateDelete(&m_pHandle); }
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;

    long Generate(const ClRaster& Raw) const {
        Bytes aCapture = sim::BitmapBlock(Raw);
        return CalibrateGenerateData(m_pHandle, aCapture.data(), aCapture.size());
    }
    long SetData(Bytes aBlock) const {
        return CalibrateSetData(m_pHandle, aBlock.data(), aBlock.size());
    }
    Bytes GetData() const {
        unsigned long nSize = 0;
        CalibrateGetData(m_pHandle, nullptr, &nSize);
        Bytes aBlock(nSize);
        EXPECT_EQ(CalibrateGetData(m_pHandle, aBlock.data(), &nSize), QMT_SUCCESS);
        return aBlock;
    }
    ClRaster Correct(const ClRaster& Raw) const {
        const Bytes aOut = CorrectBlock(Raw);
        ClRaster Image = ClScanner::FrameRaster(0);
        std::copy(aOut.begin() + cnPixelsAt, aOut.end(), Image.m_aPixels.begin());
        return Image;
    }
    Bytes CorrectBlock(const ClRaster& Raw) const {
        Bytes aCapture = sim::BitmapBlock(Raw);
        Bytes aOut(cnPixelsAt + sim::g_nFrameWidth * sim::g_nFrameHeight);
        unsigned long nSize = aOut.size();
        EXPECT_EQ(Calibrate(m_pHandle, aCapture.data(), aCapture.size(), aOut.data(), &nSize),
                  QMT_SUCCESS);
        return aOut;
    }
    double CheckEfts(Bytes aImage) const {
        double dResult = 0.0;
        EXPECT_EQ(CalibrateCheckEfts(m_pHandle, aImage.data(), aImage.size(), &dResult),
                  QMT_SUCCESS);
        return dResult;
    }
    bool HasData() const {
        unsigned long nSize = 0;
        return CalibrateGetData(m_pHandle, nullptr, &nSize) != QMT_ERROR_NOT_INITIALIZED;
    }

private:
    void* m_pHandle;
};

/// The engine's own failure, whose words a call only logs.
void SetUp(const ClRaster& Raw) {
    ClImage In(Raw.m_nWidth, Raw.m_nHeight, 1, Raw.m_nPelsX, Raw.m_nPelsY);
    for (int y = 0; y < Raw.m_nHeight; ++y)
        std::memcpy(In.LineData(y), Raw.Line(y), static_cast<std::size_t>(Raw.m_nWidth));
    ClIpCalibrateLumivane2 Engine;
    Engine.m_pInImage = &In;
    Engine.Setup();
}

/// The two point lists of a block.
struct ClPoints {
    explicit ClPoints(const Bytes& aBlock) {
        ClMemStream Stream(aBlock.data(), aBlock.size());
        ClCalibrateGeometricData Data;
        Data.Read(Stream);
        for (unsigned long n = 0; n < Data.m_aTarget.Entries(); ++n) {
            m_aTarget.push_back({Data.m_aTarget[n].x, Data.m_aTarget[n].y});
            m_aActual.push_back({Data.m_aActual[0][n].x, Data.m_aActual[0][n].y});
        }
    }
    std::vector<ClPoint> m_aTarget;
    std::vector<ClPoint> m_aActual;
};

/// The largest distances along x and along y between two lists.
ClPoint Largest(const std::vector<ClPoint>& aFound, const std::vector<ClPoint>& aTrue) {
    EXPECT_EQ(aFound.size(), aTrue.size());
    ClPoint Most;
    for (std::size_t n = 0; n < std::min(aFound.size(), aTrue.size()); ++n) {
        Most.x = std::max(Most.x, std::fabs(aFound[n].x - aTrue[n].x));
        Most.y = std::max(Most.y, std::fabs(aFound[n].y - aTrue[n].y));
    }
    return Most;
}

ClPoint LargestError(const ClHandle& Handle, const ClCapture& Capture) {
    return Largest(ClPoints(Handle.GetData()).m_aActual, Capture.m_aDots);
}

void ExpectRefused(const ClRaster& Raw, const char* szWords) {
    const ClHandle Handle;
    EXPECT_EQ(Handle.Generate(Raw), QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE);
    EXPECT_FALSE(Handle.HasData());
    EXPECT_THROWS(SetUp(Raw), ClException, QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE, szWords);
}

class SimGenerationCase : public testing::TestWithParam<ClTargetCaseEntry> {};

} // namespace

TEST_P(SimGenerationCase, ComesToWhatTheTableTells) {
    const ClTargetCaseEntry& Case = GetParam();
    const ClScanner Scanner(2000 + static_cast<std::uint64_t>(Case.m_eCase));
    const ClCapture Capture = sim::CaptureTargetCase(Scanner, Case.m_eCase, 1);
    if (Case.m_eOutcome == EOutcome::eRefused) {
        ExpectRefused(Capture.m_Raw, Case.m_szRefusal);
        return;
    }
    const ClHandle Handle;
    ASSERT_EQ(Handle.Generate(Capture.m_Raw), QMT_SUCCESS);
    const ClPoint Error = LargestError(Handle, Capture);
    EXPECT_EQ(Error.x > cdWrongX || Error.y > cdWrongY, Case.m_eOutcome != EOutcome::eAccepted)
        << Error.x << " " << Error.y;
    EXPECT_EQ(ClHandle().SetData(Handle.GetData()),
              Case.m_eOutcome == EOutcome::eUnloadable ? QMT_ERROR_CURRUPT_DATA : QMT_SUCCESS);
}

INSTANTIATE_TEST_SUITE_P(Cases, SimGenerationCase, testing::ValuesIn(sim::g_aTargetCases),
                         [](const auto& Info) { return std::string(Info.param.m_szName); });

TEST(SimGeneration, RefusesWhatIsNoTarget) {
    const ClScanner Scanner(7);
    for (const EKind eKind : {EKind::eRuled, EKind::eWhorl, EKind::eEmpty, EKind::eDirty}) {
        SCOPED_TRACE(sim::KindName(eKind));
        ExpectRefused(sim::CaptureKind(Scanner, eKind, 1).m_Raw, sim::g_szRefusedCount);
    }
}

TEST(SimGeneration, PointsLieOnTheTrueDotsInPatternOrder) {
    for (std::uint64_t nSeed = 11; nSeed <= 14; ++nSeed) {
        const ClCapture Capture = sim::CaptureKind(ClScanner(nSeed), EKind::eTarget, 1);
        const ClHandle Handle;
        ASSERT_EQ(Handle.Generate(Capture.m_Raw), QMT_SUCCESS) << nSeed;
        const ClPoint Error = LargestError(Handle, Capture);

        // Dots have 15 x 32 pixels, and no light speck in their rim moves them by a pixel.
        EXPECT_LT(Error.x, 0.75) << nSeed;
        EXPECT_LT(Error.y, 1.5) << nSeed;
    }
}

// A target that lies straight is the platen's own frame. The simulator places that by the true
// geometry, the library by a spline through the dots, which has to reach up to 4.3 mm beyond them.
TEST(SimGeneration, TargetPointsLieWhereTheScannerSeesTheMiddleOfTheCapture) {
    for (std::uint64_t nSeed = 21; nSeed <= 23; ++nSeed) {
        const ClScanner Scanner(nSeed);
        const ClCapture Capture = sim::CaptureTargetCase(Scanner, ETargetCase::ePlain, 1);
        const ClHandle Handle;
        ASSERT_EQ(Handle.Generate(Capture.m_Raw), QMT_SUCCESS) << nSeed;
        std::vector<ClPoint> aTrue;
        for (const ClPoint& Dot : sim::DotPattern())
            aTrue.push_back(Scanner.FrameFromPlaten(Dot));
        const ClPoint Error = Largest(ClPoints(Handle.GetData()).m_aTarget, aTrue);

        EXPECT_LT(Error.x, 2.0) << nSeed;
        EXPECT_LT(Error.y, 2.0) << nSeed;
    }
}

TEST(SimGeneration, DerivedDataStraightenTheLinesOfTheirScanner) {
    for (std::uint64_t nSeed = 31; nSeed <= 33; ++nSeed) {
        const ClScanner Scanner(nSeed);
        const ClHandle Handle;
        ASSERT_EQ(Handle.Generate(sim::CaptureTargetCase(Scanner, ETargetCase::ePlain, 1).m_Raw),
                  QMT_SUCCESS);
        const ClPoint First = ClPoints(Handle.GetData()).m_aTarget[0];
        const ClPoint Expected = Scanner.FrameFromPlaten(sim::DotPattern()[0]);
        ClCapture Ruled = sim::CaptureKind(Scanner, EKind::eRuled, 1);
        for (sim::ClLine& Line : Ruled.m_aLines)
            for (ClPoint* pEnd : {&Line.m_From, &Line.m_To}) {
                pEnd->x += First.x - Expected.x;
                pEnd->y += First.y - Expected.y;
            }
        const ClRaster Image = Handle.Correct(Ruled.m_Raw);

        EXPECT_LT(TestSupport::WorstInside(Image, Ruled.m_aLines), 0.3) << nSeed;
        // Beyond the dots the splines extrapolate.
        EXPECT_LT(TestSupport::WorstAnywhere(Image, Ruled.m_aLines), 1.5) << nSeed;
    }
}

// At most 2 of the 2775 pairs: neighbours whose errors of locating, up to 0.2 pixels in the
// calibration and again in the check, happen to be opposite.
TEST(SimGeneration, CorrectedTargetPassesTheAccuracyCheck) {
    for (std::uint64_t nSeed = 41; nSeed <= 43; ++nSeed) {
        const ClScanner Scanner(nSeed);
        const ClHandle Handle;
        const ClCapture First = sim::CaptureKind(Scanner, EKind::eTarget, 1);
        ASSERT_EQ(Handle.Generate(First.m_Raw), QMT_SUCCESS);
        const ClCapture Second = sim::CaptureKind(Scanner, EKind::eTarget, 2);

        EXPECT_GE(Handle.CheckEfts(Handle.CorrectBlock(First.m_Raw)), 100.0 * 2773 / 2775);
        EXPECT_GE(Handle.CheckEfts(Handle.CorrectBlock(Second.m_Raw)), 100.0 * 2773 / 2775);
    }
}

// The same check sees an error: the data of another scanner, of the same size, do not pass.
TEST(SimGeneration, DataOfAnotherScannerDoNotPassTheAccuracyCheck) {
    const ClScanner Scanner(44);
    sim::ClScannerSettings Settings = Scanner.Settings();
    Settings.m_Distortion.m_dBarrel = -0.0003;
    const ClScanner Other(44, Settings);
    const ClHandle Handle;
    ASSERT_EQ(Handle.Generate(sim::CaptureKind(Other, EKind::eTarget, 1).m_Raw), QMT_SUCCESS);

    const ClCapture Capture = sim::CaptureKind(Scanner, EKind::eTarget, 1);
    EXPECT_LT(Handle.CheckEfts(Handle.CorrectBlock(Capture.m_Raw)), 90.0);
}

// A dot off by a tenth of a millimetre changes its distances to neighbours by more than a percent
// as far as five of them away; one dot of 75 takes part in 74 of 2775 pairs.
TEST(SimGeneration, AccuracyCheckOfACleanCaptureSeesAWrongPoint) {
    const ClScanner Scanner(46);
    for (const ETargetCase eCase : {ETargetCase::eHiddenDot, ETargetCase::eStandIn}) {
        const ClHandle Handle;
        ASSERT_EQ(Handle.Generate(sim::CaptureTargetCase(Scanner, eCase, 1).m_Raw), QMT_SUCCESS);
        const ClCapture Clean = sim::CaptureKind(Scanner, EKind::eTarget, 2);
        const double dPercent = Handle.CheckEfts(Handle.CorrectBlock(Clean.m_Raw));

        EXPECT_LT(dPercent, 99.75) << sim::TargetCaseName(eCase);
        EXPECT_GT(dPercent, 100.0 * (2775 - 2 * 74) / 2775) << sim::TargetCaseName(eCase);
    }
}

TEST(SimGeneration, DerivedBlockCorrectsLikeTheHandleThatDerivedIt) {
    const ClScanner Scanner(45);
    const ClHandle Derived;
    ASSERT_EQ(Derived.Generate(sim::CaptureKind(Scanner, EKind::eTarget, 1).m_Raw), QMT_SUCCESS);
    const ClHandle Loaded;
    ASSERT_EQ(Loaded.SetData(Derived.GetData()), QMT_SUCCESS);
    const ClRaster Raw = sim::CaptureKind(Scanner, EKind::eRuled, 1).m_Raw;

    const Bytes aFirst = Derived.CorrectBlock(Raw);
    const Bytes aSecond = Loaded.CorrectBlock(Raw);
    int nMost = 0;
    for (std::size_t n = 0; n < aFirst.size(); ++n)
        nMost = std::max(nMost, std::abs(aFirst[n] - aSecond[n]));
    // Coordinates are rounded to 32-bit floats in a block: a thirty-thousandth of a pixel.
    EXPECT_LE(nMost, 1);
}
