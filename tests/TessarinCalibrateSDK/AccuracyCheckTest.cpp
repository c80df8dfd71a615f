// The engine's accuracy check, and its parts behind the location of the dots.

#include "TessarinCalibrateSDK/AccuracyCheck.h"

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/DotTargets.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <cmath>
#include <cstring>

using AccuracyCheck::PointList;
using TestSupport::ClLogCapture;
using TestSupport::CorrectedTarget;
using TestSupport::DotsOf;
using TestSupport::Lines;
using TestSupport::StDot;
using TestSupport::StTargetImage;
using TestSupport::Trace;

namespace {

PointList ListOf(const std::vector<StDot>& aDots) {
    PointList aList;
    for (const StDot& Dot : aDots)
        aList.Append({Dot.x, Dot.y});
    return aList;
}

/// An engine whose calibration data has these target points.
struct StChecked {
    StChecked() = default;
    explicit StChecked(const std::vector<StDot>& aTarget) {
        m_Engine.m_CalibrationData.m_aTarget = ListOf(aTarget);
        m_Engine.m_CalibrationData.m_nTargetPelsX = m_Engine.m_CalibrationData.m_nTargetPelsY =
            19685;
    }

    double Compare(const StTargetImage& Image) { return Compare(Image, DotsOf(Image)); }
    double Compare(const StTargetImage& Image, const std::vector<StDot>& aDots) {
        ClImage In(Image.m_nWidth, Image.m_nHeight, 1, 0, 0);
        const auto aPixels = TestSupport::TargetPixels(Image, aDots);
        std::copy(aPixels.begin(), aPixels.end(), In.Data());
        m_Engine.m_pInImage = &In;
        return m_Engine.Compare();
    }

    ClIpCalibrateLumivane2 m_Engine;
};

/// What the check ought to find, by the limits at 500 dots per inch.
double ExpectedPercent(const std::vector<StDot>& aTarget, const std::vector<StDot>& aLocated) {
    int nPairs = 0;
    int nPasses = 0;
    for (std::size_t i = 0; i < aTarget.size(); ++i)
        for (std::size_t j = 0; j < i; ++j) {
            const double r = std::hypot(aTarget[i].x - aTarget[j].x, aTarget[i].y - aTarget[j].y);
            const double m =
                std::hypot(aLocated[i].x - aLocated[j].x, aLocated[i].y - aLocated[j].y);
            ++nPairs;
            nPasses += std::fabs(r - m) <= (r < 35.0 ? 0.35 : 0.01 * r);
        }
    return 100.0 * nPasses / nPairs;
}

} // namespace

// Fit

TEST(AccuracyCheck, FitWantsListsOfOneLengthWithPoints) {
    PointList aNone;
    PointList aTwo = ListOf({{1.0, 2.0}, {3.0, 4.0}});
    PointList aThree = ListOf({{1.0, 2.0}, {3.0, 4.0}, {5.0, 6.0}});
    EXPECT_THROWS(AccuracyCheck::FitOntoTarget(aNone, aNone), ClException, -44, "");
    EXPECT_THROWS(AccuracyCheck::FitOntoTarget(aTwo, aThree), ClException, -44, "");
    EXPECT_THROWS(AccuracyCheck::FitOntoTarget(aThree, aNone), ClException, -44, "");
}

TEST(AccuracyCheck, FitMovesTheLocatedDots) {
    PointList aTarget = ListOf({{0.0, 0.0}, {10.0, 0.0}, {0.0, 20.0}});
    PointList aLocated = ListOf({{5.0, 5.0}, {5.0, 15.0}, {-15.0, 5.0}}); // turned by 90 degrees
    AccuracyCheck::FitOntoTarget(aTarget, aLocated);
    for (unsigned long i = 0; i < 3; ++i) {
        EXPECT_NEAR(aLocated[i].x, aTarget[i].x, 1e-13);
        EXPECT_NEAR(aLocated[i].y, aTarget[i].y, 1e-13);
    }
    EXPECT_EQ(aTarget[1].x, 10.0);
}

// Percentage

TEST(AccuracyCheck, PercentageWantsListsOfOneLength) {
    const PointList aTwo = ListOf({{1.0, 2.0}, {3.0, 4.0}});
    const PointList aThree = ListOf({{1.0, 2.0}, {3.0, 4.0}, {5.0, 6.0}});
    const char* szWords = "The compare data is not the same Entry count.";
    EXPECT_THROWS(AccuracyCheck::PercentWithinLimits(aTwo, aThree), ClException, -44, szWords);
    EXPECT_THROWS(AccuracyCheck::PercentWithinLimits(aThree, aTwo), ClException, -44, szWords);
    EXPECT_THROWS(AccuracyCheck::PercentWithinLimits(PointList(), aTwo), ClException, -44, szWords);
}

TEST(AccuracyCheck, PercentageWantsTwoPoints) {
    const PointList aOne = ListOf({{1.0, 2.0}});
    EXPECT_THROWS(AccuracyCheck::PercentWithinLimits(aOne, aOne), ClException, -101,
                  "less than 2 points!");
    EXPECT_THROWS(AccuracyCheck::PercentWithinLimits(PointList(), PointList()), ClException, -101,
                  "less than 2 points!");
}

TEST(AccuracyCheck, PercentageIsThatOfTheEfts) {
    const PointList aTarget = ListOf({{0.0, 0.0}, {100.0, 0.0}, {0.0, 20.0}});
    // 100 becomes 100.9 and 101.98 becomes 102.96, which pass; 20 becomes 20.5, which does not
    const PointList aLocated = ListOf({{0.0, 0.0}, {100.9, 0.0}, {0.0, 20.5}});
    EXPECT_DOUBLE_EQ(AccuracyCheck::PercentWithinLimits(aTarget, aLocated), 200.0 / 3);
}

// From an image

TEST(AccuracyCheck, OfTheIdealPatternIs100) {
    StChecked Checked;
    EXPECT_EQ(Checked.Compare(CorrectedTarget()), 100.0);
}

TEST(AccuracyCheck, DoesNotDependOnWhereThePatternLies) {
    for (const StDot& Shift : {StDot{12.0, 0.0}, {-9.5, 17.25}, {0.0, -25.0}}) {
        StTargetImage Image = CorrectedTarget();
        Image.m_dShiftX = Shift.x;
        Image.m_dShiftY = Shift.y;
        StChecked Checked;
        EXPECT_EQ(Checked.Compare(Image), 100.0);
    }
}

TEST(AccuracyCheck, OfAPatternTwoPercentTooLargeIs0) {
    StTargetImage Image = CorrectedTarget();
    Image.m_dScale = 1.02;
    StChecked Checked;
    EXPECT_EQ(Checked.Compare(Image), 0.0);
}

TEST(AccuracyCheck, OfAPatternAFifthOfAPercentTooLargeIsNearly100) {
    StTargetImage Image = CorrectedTarget();
    Image.m_dScale = 1.002;
    StChecked Checked;
    EXPECT_GE(Checked.Compare(Image), 99.5); // dots are located to a fifth of a pixel
}

TEST(AccuracyCheck, CountsThePairsOfADotThatIsOutOfPlace) {
    const StTargetImage Image = CorrectedTarget();
    const std::vector<StDot> aTarget = DotsOf(Image);
    for (const std::size_t nDot : {0, 37, 74}) {
        std::vector<StDot> aMoved = aTarget;
        aMoved[nDot].x += 4.0;
        const double dExpected = ExpectedPercent(aTarget, aMoved);
        EXPECT_LT(dExpected, 100.0 - 27 * 100.0 / 2775);
        StChecked Checked;
        // of more than 27 pairs that fail, a few at the very limit may fall to either side
        EXPECT_NEAR(Checked.Compare(Image, aMoved), dExpected, 4 * 100.0 / 2775);
    }
}

TEST(AccuracyCheck, CountsThePairsOfABentImage) {
    const StTargetImage Image = CorrectedTarget();
    const std::vector<StDot> aTarget = DotsOf(Image);
    std::vector<StDot> aBent = aTarget;
    for (StDot& rDot : aBent) {
        const double dx = (rDot.x - 160.0) / 120.0;
        rDot.x += 2.5 * dx * dx * dx;
    }
    const double dExpected = ExpectedPercent(aTarget, aBent);
    EXPECT_LT(dExpected, 95.0);
    StChecked Checked;
    EXPECT_NEAR(Checked.Compare(Image, aBent), dExpected, 2.0);
}

TEST(AccuracyCheck, TakesTheTargetOfTheCalibrationDataInPlaceOfTheIdealPattern) {
    StTargetImage Larger = CorrectedTarget();
    Larger.m_dScale = 1.02;
    StChecked Checked(DotsOf(Larger));
    EXPECT_EQ(Checked.Compare(Larger), 100.0);
    EXPECT_EQ(Checked.Compare(CorrectedTarget()), 0.0);
}

TEST(AccuracyCheck, ReadsTheCalibrationDataOnly) {
    StChecked Checked(DotsOf(CorrectedTarget()));
    const ClCalibrateGeometricData Before = Checked.m_Engine.m_CalibrationData;
    ClImage Out(3, 2, 1, 0, 0);
    Checked.m_Engine.m_pOutImage = &Out;
    Checked.Compare(CorrectedTarget());
    unsigned char acBefore[ClCalibrateGeometricData::cnHashSize];
    unsigned char acAfter[ClCalibrateGeometricData::cnHashSize];
    Before.GenerateHash(acBefore);
    Checked.m_Engine.m_CalibrationData.GenerateHash(acAfter);
    EXPECT_EQ(std::memcmp(acBefore, acAfter, sizeof acBefore), 0);
    EXPECT_EQ(Checked.m_Engine.m_CalibrationData.m_aActual[0].Entries(), 0u);
    EXPECT_EQ(Out.Width(), 3);
}

TEST(AccuracyCheck, RefusesCalibrationDataWithoutTheWholePattern) {
    std::vector<StDot> aTarget = DotsOf(CorrectedTarget());
    aTarget.pop_back();
    StChecked Checked(aTarget);
    EXPECT_THROWS(Checked.Compare(CorrectedTarget()), ClException, -39, "Target data is corrupt");
}

TEST(AccuracyCheck, RefusesAPatternThatIsNotComplete) {
    StTargetImage Image = CorrectedTarget();
    Image.m_aMissing = {40};
    StChecked Checked;
    EXPECT_THROWS(Checked.Compare(Image), ClException, -600, "Not the expected Dot count found.");
}

// An image without distortion has no room for slanted rows: its dots lose their neighbours long
// before the angles of the rows are looked at.
TEST(AccuracyCheck, RefusesRowsThatSlant) {
    StTargetImage Image = CorrectedTarget();
    Image.m_dRowSlant = 16.5;
    StChecked Checked;
    EXPECT_THROWS(Checked.Compare(Image), ClException, -600, "Not the expected Dot count found.");
}

TEST(AccuracyCheck, FindsNoDotsInARawCapture) {
    StChecked Checked;
    EXPECT_THROWS(Checked.Compare(StTargetImage()), ClException, -600,
                  "Not the expected Dot count found.");
}

TEST(AccuracyCheck, SurvivesMissingMemory) {
    StChecked Checked(DotsOf(CorrectedTarget()));
    ClImage In;
    TestSupport::Fill(CorrectedTarget(), In);
    Checked.m_Engine.m_pInImage = &In;
    bool bHappened = true;
    for (long nAfter = 0; bHappened && nAfter < 100000; nAfter += 1 + nAfter / 4) {
        try {
            const TestSupport::ClFailAllocation Fail(nAfter);
            EXPECT_EQ(Checked.m_Engine.Compare(), 100.0);
            bHappened = TestSupport::ClFailAllocation::Happened();
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(e.Number(), -102) << nAfter;
        }
    }
    EXPECT_FALSE(bHappened);
}

TEST(AccuracyCheck, TracesItsStepsInOrder) {
    StChecked Checked;
    ClImage In;
    TestSupport::Fill(CorrectedTarget(), In);
    Checked.m_Engine.m_pInImage = &In;
    const ClLogCapture Log;
    Checked.m_Engine.Compare();
    Lines aOwn;
    for (const TestSupport::StLogLine& Line : Log.Lines())
        if (Line.m_Text.find("ClGeometric") == 0 || Line.m_Text.find("ClIpCalibrateQK7") == 0)
            aOwn.push_back(Line);
    EXPECT_EQ(
        aOwn,
        (Lines{Trace("ClIpCalibrateQK7::Compare() Enter"),
               Trace("ClGeometricTransformation::Transform() Enter"),
               Trace("ClGeometricTransformation::Transform() Leaving"),
               Trace("ClGeometricAccuracy::setRequirements(ClGeometricAccuracy::eEFTS) Enter"),
               Trace("ClGeometricAccuracy::setRequirements() Leaving"),
               Trace("ClGeometricAccuracy::Calculate() Enter"),
               Trace("ClGeometricAccuracy::Calculate() Leaving"),
               Trace("ClGeometricAccuracy::getTestResult() Enter"),
               Trace("ClGeometricAccuracy::getTestResult() Leaving"),
               Trace("ClIpCalibrateQK7::Compare() Leaving")}));
    EXPECT_EQ(Log.Lines().front(), Trace("ClIpCalibrateQK7::Compare() Enter"));
    EXPECT_EQ(Log.Lines().back(), Trace("ClIpCalibrateQK7::Compare() Leaving"));
}
