/// Whole calibrations of simulated scanners, good and misled, by blocks alone.

#include "diagnosis/Diagnosis.h"
#include "diagnosis/SecondCapture.h"

#include "diagnosis/Calibrations.h"
#include "sim/BitmapBlock.h"
#include "sim/TargetCases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>

using namespace diagnosis;
using namespace TestSupport;
using sim::ETargetCase;

namespace {

struct ClCase {
    ClCase(std::uint64_t nScanner, ETargetCase eCase)
        : m_Scanner(nScanner), m_Capture(sim::CaptureTargetCase(m_Scanner, eCase, 1)),
          m_aCapture(sim::BitmapBlock(m_Capture.m_Raw)), m_aBlock(Generated(m_aCapture)) {}

    StDiagnosis Diagnosed() const { return Diagnose(m_aBlock, m_aCapture); }
    /// On a second capture, laid by hand.
    StSecond Second() const {
        const sim::ClCapture Capture = sim::CaptureKind(m_Scanner, sim::EKind::eTarget, 2);
        return CheckSecond(m_aBlock, Corrected(m_aBlock, sim::BitmapBlock(Capture.m_Raw)));
    }
    /// The dot that is furthest off its true place.
    std::size_t Worst() const {
        const StRecord Record = ReadRecord(m_aBlock);
        std::vector<double> aShares;
        for (std::size_t i = 0; i < cnDots; ++i)
            aShares.push_back(ShareOfWrong(
                Record.m_aFound[i] - StPoint{m_Capture.m_aDots[i].x, m_Capture.m_aDots[i].y}));
        return static_cast<std::size_t>(std::max_element(aShares.begin(), aShares.end()) -
                                        aShares.begin());
    }

    sim::ClScanner m_Scanner;
    sim::ClCapture m_Capture;
    Bytes m_aCapture;
    Bytes m_aBlock;
};

} // namespace

TEST(Diagnosis, BelievesGoodCalibrations) {
    for (const ETargetCase eCase : {ETargetCase::eLaid, ETargetCase::eBarrel, ETargetCase::eNoisy,
                                    ETargetCase::eGlareBeside, ETargetCase::eHairEnd}) {
        const ClCase Case(3000, eCase);
        const StDiagnosis Diagnosis = Case.Diagnosed();

        EXPECT_TRUE(Diagnosis.IsGood()) << sim::TargetCaseName(eCase);
        ASSERT_EQ(Diagnosis.m_aDots.size(), cnDots);
    }
}

TEST(Diagnosis, NamesTheDotOfEachMisledCase) {
    for (const sim::ClTargetCaseEntry& Entry : sim::g_aTargetCases) {
        if (Entry.m_eOutcome != sim::EOutcome::eMisled)
            continue;
        const ClCase Case(3001, Entry.m_eCase);
        const StDiagnosis Diagnosis = Case.Diagnosed();

        ASSERT_EQ(Diagnosis.m_aReasons.size(), 1U) << Entry.m_szName;
        EXPECT_EQ(Diagnosis.m_aReasons[0].m_eReason, EReason::eDot) << Entry.m_szName;
        EXPECT_EQ(Diagnosis.m_aReasons[0].m_nDot, Case.Worst()) << Entry.m_szName;
    }
}

TEST(Diagnosis, DoubtsPlatesOfAnotherPitch) {
    for (const ETargetCase eCase : {ETargetCase::eNarrowPitch, ETargetCase::eWidePitch}) {
        const StDiagnosis Diagnosis = ClCase(3002, eCase).Diagnosed();

        ASSERT_EQ(Diagnosis.m_aReasons.size(), 1U);
        EXPECT_EQ(Diagnosis.m_aReasons[0].m_eReason, EReason::eScale);
        EXPECT_NEAR(Diagnosis.m_Plate.m_Middle.m_dScaleX,
                    eCase == ETargetCase::eWidePitch ? 1.02 : 0.98, 0.004);
    }
}

// The light of the scanner is 230 at most; a print that takes 0.76 of it, of 0.8 mm.
TEST(Diagnosis, TellsWhatTheDotsLookLike) {
    const StDiagnosis Diagnosis = ClCase(3003, ETargetCase::ePlain).Diagnosed();

    for (const StDotReading& Dot : Diagnosis.m_aDots) {
        EXPECT_NEAR(Dot.m_dContrast, 0.76, 0.03);
        EXPECT_NEAR(Dot.m_dDiameter, 0.8, 0.03);
        EXPECT_GT(Dot.m_dRoundness, 0.95);
        EXPECT_LT(std::fabs(Dot.m_GreyOff.m_dX), 0.2);
        EXPECT_LT(std::fabs(Dot.m_GreyOff.m_dY), 0.3);
        EXPECT_LT(ShareOfWrong(Dot.m_LeaveOneOut), 0.5);
        EXPECT_LT(ShareOfWrong(Dot.m_Off), 0.2);
    }
    EXPECT_EQ(Diagnosis.m_aDots[37].m_Place.m_nColumn, 4);
    EXPECT_EQ(Diagnosis.m_aDots[37].m_Place.m_nRow, 6);
}

TEST(Diagnosis, SeesThatAHalfHiddenDotIsNotRound) {
    const ClCase Case(3004, ETargetCase::eHalfHidden);
    const StDiagnosis Diagnosis = Case.Diagnosed();

    for (std::size_t i = 0; i < cnDots; ++i)
        EXPECT_EQ(Diagnosis.m_aDots[i].m_dRoundness < 0.9, i == Case.Worst()) << i;
}

TEST(Diagnosis, RefusesBlocksThatAreNone) {
    const ClCase Case(3005, ETargetCase::ePlain);
    Bytes aCut = Case.m_aCapture;
    aCut.pop_back();

    EXPECT_THROW(Diagnose({}, Case.m_aCapture), std::invalid_argument);
    EXPECT_THROW(Diagnose(Case.m_aCapture, Case.m_aCapture), std::invalid_argument);
    EXPECT_THROW(Diagnose(Case.m_aBlock, {}), std::invalid_argument);
    EXPECT_THROW(Diagnose(Case.m_aBlock, aCut), std::invalid_argument);
}

TEST(DiagnosisSecondCapture, ConfirmsAGoodCalibration) {
    const StSecond Second = ClCase(3006, ETargetCase::eLaid).Second();

    EXPECT_TRUE(Second.m_bFound);
    EXPECT_TRUE(Second.m_aReasons.empty());
    ASSERT_EQ(Second.m_aDots.size(), cnDots);
    EXPECT_NEAR(Second.m_dScale, 1.0, 0.001);
    EXPECT_LT(Second.m_dMax, 0.5);
    EXPECT_GT(Second.m_dPercent, 99.9);
}

TEST(DiagnosisSecondCapture, ContradictsAWrongPoint) {
    for (const ETargetCase eCase : {ETargetCase::eHiddenDot, ETargetCase::eStandIn}) {
        const ClCase Case(3007, eCase);
        const StSecond Second = Case.Second();
        const StPatternPlace Wrong = PatternPlace(Case.Worst());

        ASSERT_EQ(Second.m_aReasons.size(), 1U) << sim::TargetCaseName(eCase);
        EXPECT_EQ(Second.m_aReasons[0].m_eReason, EReason::eSecond);
        const StPatternPlace Named = PatternPlace(Second.m_aReasons[0].m_nDot);
        EXPECT_EQ(Named.m_nColumn, Wrong.m_nColumn);
        EXPECT_EQ(Named.m_nRow, Wrong.m_nRow);
    }
}

TEST(DiagnosisSecondCapture, CountsThePairsAsTheLibraryDoes) {
    const ClCase Case(3008, ETargetCase::eStandIn);
    const StSecond Second = Case.Second();
    int nFailed = 0;
    for (const StSecondDot& Dot : Second.m_aDots)
        nFailed += Dot.m_nFailedPairs;

    EXPECT_GT(nFailed, 0);
    EXPECT_NEAR(Second.m_dPercent, 100.0 * (1.0 - 0.5 * nFailed / 2775.0), 1e-9);
}

TEST(DiagnosisSecondCapture, ContradictsAPlateOfAnotherPitch) {
    const StSecond Second = ClCase(3009, ETargetCase::eWidePitch).Second();

    ASSERT_EQ(Second.m_aReasons.size(), 1U);
    EXPECT_EQ(Second.m_aReasons[0].m_nDot, cnDots);
    EXPECT_NEAR(Second.m_dScale, 1.0 / 1.02, 0.001);
}

TEST(DiagnosisSecondCapture, SaysWhereTheTargetIsNotFound) {
    const ClCase Case(3010, ETargetCase::ePlain);
    const sim::ClCapture Empty = sim::CaptureKind(Case.m_Scanner, sim::EKind::eEmpty, 1);
    const StSecond Second =
        CheckSecond(Case.m_aBlock, Corrected(Case.m_aBlock, sim::BitmapBlock(Empty.m_Raw)));

    EXPECT_FALSE(Second.m_bFound);
    ASSERT_EQ(Second.m_aReasons.size(), 1U);
    EXPECT_EQ(Second.m_aReasons[0].m_eReason, EReason::eSecond);
    EXPECT_TRUE(Second.m_aDots.empty());
}

TEST(DiagnosisSecondCapture, RefusesBlocksThatAreNone) {
    const ClCase Case(3011, ETargetCase::ePlain);

    EXPECT_THROW(CheckSecond(Case.m_aBlock, {}), std::invalid_argument);
    EXPECT_THROW(CheckSecond({}, Case.m_aCapture), std::invalid_argument);
}
