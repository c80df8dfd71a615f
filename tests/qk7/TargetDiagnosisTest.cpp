/// What is found in images of the target, against what was printed.

#include "apps/qk7/TargetDiagnosis.h"

#include "qk7/Targets.h"
#include "qk7/TestFiles.h"
#include "sim/BitmapBlock.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace qk7;
using namespace TestSupport;

namespace {

const char* szCount = "Not the expected dot count found.";

StTargetDiagnosis DiagnoseRaw(const Bytes& Image, const Bytes& Reference = {}) {
    return DiagnoseTarget(ETargetImage::eRaw, Image, Reference);
}

/// Dirt of full darkness: discs of one size at places on the platen.
sim::ClDirtSettings Discs(const std::vector<sim::ClPoint>& aPlaces, double dDiameter) {
    sim::ClDirtSettings dirt;
    for (const sim::ClPoint& place : aPlaces) {
        sim::ClPlacedSpeck speck;
        speck.m_Centre = place;
        speck.m_dDiameter = dDiameter;
        dirt.m_aPlaced.push_back(speck);
    }
    return dirt;
}

/// The place of the pattern's lower left corner that has no dot, millimetres on the platen.
constexpr sim::ClPoint g_EmptyCorner = {-6.0, 10.0};

/// Expects one region, refused for this reason, about where it was put.
void ExpectRefused(const sim::ClTargetSettings& Target, const sim::ClDirtSettings& Dirt,
                   const std::string& Reason, const sim::ClPoint& Platen) {
    const StTargetDiagnosis diagnosis = DiagnoseRaw(RawTarget(Target, Dirt));

    ASSERT_EQ(diagnosis.m_aRefusals.size(), 1U) << Reason;
    const StRefusal& refusal = diagnosis.m_aRefusals[0];
    EXPECT_EQ(refusal.m_Reason, Reason);
    ASSERT_EQ(refusal.m_aRegions.size(), 1U) << Reason;
    const sim::ClScanner scanner(1, sim::ClScannerSettings());
    const sim::ClPoint expected = scanner.RawFromPlaten(Platen);
    EXPECT_NEAR(refusal.m_aRegions[0].m_dX, expected.x, 1.0) << Reason;
    EXPECT_NEAR(refusal.m_aRegions[0].m_dY, expected.y, 2.0) << Reason;
    EXPECT_EQ(diagnosis.m_nFound, 75U) << Reason;
    EXPECT_EQ(diagnosis.m_Words, "") << "the pattern is whole: " << Reason;
}

/// The darkest of the nine samples around a place.
int DarkestAt(const Bytes& Block, int nWidth, double dX, double dY) {
    const long nLine = (nWidth + 3) / 4 * 4;
    int nDarkest = 255;
    for (long y = std::lround(dY) - 1; y <= std::lround(dY) + 1; ++y)
        for (long x = std::lround(dX) - 1; x <= std::lround(dX) + 1; ++x)
            nDarkest = std::min<int>(nDarkest,
                                     Block.at(static_cast<std::size_t>(40 + 1024 + y * nLine + x)));
    return nDarkest;
}

} // namespace

TEST(Qk7TargetDiagnosis, FindsTheWholePattern) {
    const StTargetDiagnosis diagnosis = DiagnoseRaw(RawTarget());

    EXPECT_EQ(diagnosis.m_Words, "");
    EXPECT_EQ(diagnosis.m_nDots, 75U);
    EXPECT_EQ(diagnosis.m_nFound, 75U);
    EXPECT_EQ(diagnosis.m_nAccepted, 75U);
    EXPECT_TRUE(diagnosis.m_aRefusals.empty());
    EXPECT_TRUE(diagnosis.m_aGaps.empty());
}

TEST(Qk7TargetDiagnosis, TellsWhichDotIsMissing) {
    const std::vector<sim::ClPoint> dots = TargetCapture().m_aDots;
    const struct {
        int m_nIndex;
        int m_nColumn;
        int m_nRow;
    } aGaps[] = {{0, 1, 1}, {9, 1, 10}, {10, 2, 1}, {38, 4, 7}, {74, 7, 10}};
    for (const auto& gap : aGaps) {
        const StTargetDiagnosis diagnosis = DiagnoseRaw(RawTarget(Without({gap.m_nIndex})));

        EXPECT_EQ(diagnosis.m_Words, szCount);
        EXPECT_EQ(diagnosis.m_nFound, 74U);
        ASSERT_EQ(diagnosis.m_aGaps.size(), 1U) << gap.m_nIndex;
        EXPECT_EQ(diagnosis.m_aGaps[0].m_nColumn, gap.m_nColumn);
        EXPECT_EQ(diagnosis.m_aGaps[0].m_nRow, gap.m_nRow);
        const sim::ClPoint& dot = dots[static_cast<std::size_t>(gap.m_nIndex)];
        EXPECT_NEAR(diagnosis.m_aGaps[0].m_dX, dot.x, 1.0);
        EXPECT_NEAR(diagnosis.m_aGaps[0].m_dY, dot.y, 1.0);
    }
}

TEST(Qk7TargetDiagnosis, TellsTheDotsThatAMissingOnePutsOutOfOrder) {
    // 37 is the sixth dot of the fourth column. The columns up to it have 43 dots, one of which
    // is missing; each later one is compared with a place of a column that it does not stand in.
    const StTargetDiagnosis diagnosis = DiagnoseRaw(RawTarget(Without({37})));

    EXPECT_EQ(diagnosis.m_nFound, 74U);
    EXPECT_EQ(diagnosis.m_nAccepted, 42U);
    ASSERT_EQ(diagnosis.m_aRefusals.size(), 1U);
    EXPECT_EQ(diagnosis.m_aRefusals[0].m_Reason, "outside_column");
    ASSERT_EQ(diagnosis.m_aRefusals[0].m_aRegions.size(), 32U);
    const sim::ClPoint first = TargetCapture().m_aDots[43];
    EXPECT_NEAR(diagnosis.m_aRefusals[0].m_aRegions[0].m_dX, first.x, 1.0);
    EXPECT_NEAR(diagnosis.m_aRefusals[0].m_aRegions[0].m_dY, first.y, 1.0);
}

TEST(Qk7TargetDiagnosis, TellsWhyARegionIsNoDot) {
    // A raw pixel is 0.0516 mm wide and 0.0252 mm high: a disc of 0.3 mm has 54 of them, a dot 387.
    ExpectRefused({}, Discs({g_EmptyCorner}, 0.3), "area_too_small", g_EmptyCorner);
    // A disc of 1.2 mm has 870.
    ExpectRefused({}, Discs({g_EmptyCorner}, 1.2), "area_too_big", g_EmptyCorner);
    // Two discs side by side are as wide as high in raw pixels, two on top of each other four
    // times as high as wide; a dot is twice as high as wide.
    const double dHalf = 0.25;
    ExpectRefused({},
                  Discs({{g_EmptyCorner.x - dHalf, g_EmptyCorner.y},
                         {g_EmptyCorner.x + dHalf, g_EmptyCorner.y}},
                        0.55),
                  "eccentricity_too_small", g_EmptyCorner);
    ExpectRefused({},
                  Discs({{g_EmptyCorner.x, g_EmptyCorner.y - dHalf},
                         {g_EmptyCorner.x, g_EmptyCorner.y + dHalf}},
                        0.55),
                  "eccentricity_too_big", g_EmptyCorner);
}

TEST(Qk7TargetDiagnosis, TellsADotThatStandsAlone) {
    sim::ClTargetSettings target;
    target.m_aExtra = {{8.9, 0.0}}; // 2.9 mm beside the last column, no pitch away from any dot
    ExpectRefused(target, {}, "too_few_neighbours", target.m_aExtra[0]);
}

TEST(Qk7TargetDiagnosis, TellsADotThatThePatternHasNoPlaceFor) {
    sim::ClTargetSettings target;
    target.m_aExtra = {{8.0, 0.0}}; // a pitch beside the last column
    ExpectRefused(target, {}, "no_ideal_point", target.m_aExtra[0]);
}

TEST(Qk7TargetDiagnosis, NamesTheLimitThatWasBroken) {
    const StTargetDiagnosis diagnosis = DiagnoseRaw(RawTarget({}, Discs({g_EmptyCorner}, 0.3)));

    ASSERT_EQ(diagnosis.m_aRefusals.size(), 1U);
    const StRefusal& refusal = diagnosis.m_aRefusals[0];
    EXPECT_EQ(refusal.m_Words, "with an area below 200 pixels");
    ASSERT_NE(refusal.m_pMeasured, nullptr);
    // The disc has 54 pixels, and some of its rim are dark enough to count.
    EXPECT_GE(refusal.m_aRegions.at(0).*refusal.m_pMeasured, 54.0);
    EXPECT_LT(refusal.m_aRegions.at(0).*refusal.m_pMeasured, 100.0);
}

TEST(Qk7TargetDiagnosis, DrawsSpokesAndBoxesOverThePaleImage) {
    const std::vector<sim::ClPoint> dots = TargetCapture().m_aDots;
    const int nWidth = TargetCapture().m_Raw.m_nWidth;
    const double dPitchX = 2.0 / 25.4 * 492.706;
    const double dPitchY = 2.0 / 25.4 * 1009.287;

    const Bytes picture = DiagnoseRaw(RawTarget(Without({38}))).m_Picture;

    ASSERT_EQ(picture.size(), RawTarget().size());
    const auto at = [&](std::size_t nDot, double dX, double dY) {
        return DarkestAt(picture, nWidth, dots[nDot].x + dX * dPitchX, dots[nDot].y + dY * dPitchY);
    };
    EXPECT_EQ(at(0, 0.2, 0.0), 0) << "a spoke to the right";
    EXPECT_EQ(at(0, 0.0, 0.2), 0) << "a spoke down";
    EXPECT_GE(at(0, -0.2, 0.0), 128) << "no neighbour on the left";
    EXPECT_GE(at(0, 0.0, -0.2), 128) << "no neighbour above";
    EXPECT_EQ(at(37, 0.0, -0.2), 0) << "a spoke up";
    EXPECT_GE(at(37, 0.0, 0.2), 128) << "the missing dot is no neighbour";
    EXPECT_GE(at(38, 0.0, 0.0), 128) << "no spokes where no dot is";
    EXPECT_EQ(at(38, 0.25, 0.0), 0) << "a box around the gap";
}

TEST(Qk7TargetDiagnosis, LooksForTheDotsOfACorrectedImageToo) {
    const auto diagnose = [](const Bytes& Image) {
        return DiagnoseTarget(ETargetImage::eCorrected, Image, TrueCalibration());
    };
    EXPECT_EQ(diagnose(CorrectedTarget()).m_nAccepted, 75U);
    EXPECT_EQ(diagnose(CorrectedTarget()).m_Words, "");

    const StTargetDiagnosis diagnosis = diagnose(CorrectedTarget(Without({37})));

    EXPECT_EQ(diagnosis.m_Words, "Not the expected Dot count found.");
    EXPECT_EQ(diagnosis.m_nFound, 74U);
    EXPECT_EQ(diagnosis.m_nAccepted, 42U);
    ASSERT_EQ(diagnosis.m_aGaps.size(), 1U);
    EXPECT_EQ(diagnosis.m_aGaps[0].m_nColumn, 4);
    EXPECT_EQ(diagnosis.m_aGaps[0].m_nRow, 6);
}

TEST(Qk7TargetDiagnosis, MeasuresByTheReferenceWhereThereIsOne) {
    EXPECT_EQ(DiagnoseRaw(RawTarget(), TrueCalibration()).m_nFound, 75U);
    // Places half as far again apart than dots: those outside are nearest to no dot of their own.
    EXPECT_LT(DiagnoseRaw(RawTarget(), StretchedCalibration(1.5F, 1.5F)).m_nFound, 75U);
}

TEST(Qk7TargetDiagnosis, SaysWhatIsWrongWithForeignBytes) {
    const auto words = [](const Bytes& Image, const Bytes& Reference) -> std::string {
        try {
            DiagnoseRaw(Image, Reference);
        } catch (const ClFailure& failure) {
            return failure.what();
        }
        return "diagnosed";
    };
    Bytes cut = RawTarget();
    cut.pop_back();
    EXPECT_EQ(words(cut, {}), "is not the size that its header tells");
    EXPECT_EQ(words({}, {}), "is not the size that its header tells");
    EXPECT_EQ(words(RawTarget(), ToBytes("CAL")), "Unexpected end of stream");
    Bytes coloured = GreyBlock(4, 1);
    coloured.resize(40); // the header alone, for two pixels of 24 bits
    coloured[4] = 2;
    coloured[14] = 24;
    EXPECT_EQ(words(coloured + Bytes(8, 0), {}), "is no grey image");
}

TEST(Qk7TargetDiagnosis, FindsNothingOnAPlatenWithoutATarget) {
    const StTargetDiagnosis diagnosis = DiagnoseRaw(EmptyPlaten());

    EXPECT_EQ(diagnosis.m_Words, szCount);
    EXPECT_EQ(diagnosis.m_nFound, 0U);
    EXPECT_TRUE(diagnosis.m_aGaps.empty());
}
