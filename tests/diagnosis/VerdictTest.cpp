/// Good and doubtful, by records made by hand.

#include "diagnosis/Verdict.h"

#include "diagnosis/Patterns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace diagnosis;
using namespace TestSupport;
using testing::HasSubstr;

namespace {

StRecord Moved(std::size_t nDot, const StPoint& By) {
    StRecord Record = MappedRecord([](const StPoint& p) { return p; });
    Record.m_aFound[nDot] = Record.m_aFound[nDot] + By;
    return Record;
}

StAffine Affine(double dScaleX, double dScaleY, double dShear) {
    return {dScaleX, dScaleY, 0.0, dShear};
}

Reasons PlateReasonsOf(const StAffine& Middle) {
    StPlateFit Plate;
    Plate.m_Middle = Middle;
    return PlateReasons(Plate);
}

} // namespace

TEST(DiagnosisVerdict, MeasuresADotByTheLargerOfItsDirections) {
    EXPECT_EQ(ShareOfWrong({1.5, 0.0}), 1.0);
    EXPECT_EQ(ShareOfWrong({0.0, -3.0}), 1.0);
    EXPECT_EQ(ShareOfWrong({-0.75, 2.0}), 2.0 / 3.0);
}

// 0.95 of 1.5 pixels in x and of 3 in y.
TEST(DiagnosisVerdict, DoubtsADotFromItsThresholdOn) {
    for (const std::size_t nDot : {0U, 9U, 37U, 65U, 74U}) {
        EXPECT_TRUE(DoubtfulDots(Moved(nDot, {1.41, 0.0})).empty()) << nDot;
        EXPECT_TRUE(DoubtfulDots(Moved(nDot, {0.0, -2.84})).empty()) << nDot;
        for (const StPoint& By : {StPoint{1.44, 0.0}, {-1.44, 0.0}, {0.0, 2.87}, {0.0, -2.87}}) {
            const auto aDoubtful = DoubtfulDots(Moved(nDot, By));
            ASSERT_EQ(aDoubtful.size(), 1U) << nDot;
            EXPECT_EQ(aDoubtful[0].m_nDot, nDot);
            EXPECT_NEAR(aDoubtful[0].m_Off.m_dX, By.m_dX, 1e-6);
            EXPECT_NEAR(aDoubtful[0].m_Off.m_dY, By.m_dY, 1e-6);
        }
    }
}

TEST(DiagnosisVerdict, PutsTheWorstDotFirst) {
    StRecord Record = Moved(20, {2.0, 0.0});
    Record.m_aFound[60].m_dY += 9.0;
    const auto aDoubtful = DoubtfulDots(Record);

    ASSERT_EQ(aDoubtful.size(), 2U);
    EXPECT_EQ(aDoubtful[0].m_nDot, 60U);
    EXPECT_EQ(aDoubtful[1].m_nDot, 20U);
}

// A strong barrel, perspective and bow move dots by pixels, and none of them alone.
TEST(DiagnosisVerdict, DoubtsNoDotOfASmoothDistortion) {
    const StRecord Record = MappedRecord([](const StPoint& p) {
        const double w = 1.0 + 0.002 * p.m_dX + 0.003 * p.m_dY;
        const double d = 1.0 - 0.0004 * SquaredLength(p);
        return StPoint{d * p.m_dX / w, d * p.m_dY / w + 0.002 * p.m_dX * p.m_dX};
    });

    EXPECT_TRUE(DoubtfulDots(Record).empty());
}

// In a corner the spline of the calibration, about a plane, is off by most of a pixel here. About a
// cubic trend a wrong dot shows as what it is.
TEST(DiagnosisVerdict, MeasuresACornerDotBesideTheDistortion) {
    const StRecord Record = MappedRecord([](const StPoint& p) {
        const double d = 1.0 - 0.0004 * SquaredLength(p);
        return StPoint{d * p.m_dX, d * p.m_dY};
    });
    for (const std::size_t nDot : {0U, 65U})
        for (const StPoint& By : {StPoint{1.6, 0.0}, {-1.6, 0.0}, {0.0, 3.2}, {0.0, -3.2}}) {
            StRecord Wrong = Record;
            Wrong.m_aFound[nDot] = Wrong.m_aFound[nDot] + By;
            const auto aDoubtful = DoubtfulDots(Wrong);

            ASSERT_EQ(aDoubtful.size(), 1U) << nDot;
            EXPECT_EQ(aDoubtful[0].m_nDot, nDot);
            EXPECT_NEAR(aDoubtful[0].m_Off.m_dX, By.m_dX, 0.05);
            EXPECT_NEAR(aDoubtful[0].m_Off.m_dY, By.m_dY, 0.1);
        }
}

TEST(DiagnosisVerdict, NamesTheDotWithItsPlaceAndHowFarItIsOff) {
    StRecord Record = Moved(38, {0.1, -15.8});
    const Reasons aReasons = DotReasons(Record, DoubtfulDots(Record));

    ASSERT_EQ(aReasons.size(), 1U);
    EXPECT_EQ(aReasons[0].m_eReason, EReason::eDot);
    EXPECT_EQ(aReasons[0].m_nDot, 38U);
    EXPECT_THAT(aReasons[0].m_Words,
                HasSubstr("column 4, row 7 of the pattern, is 0.10 pixels in x "
                          "and -15.80 in y from where the other dots place"));
}

TEST(DiagnosisVerdict, DoubtsThePatternWhereTooManyDotsAreOff) {
    StRecord Record = Moved(0, {0.0, 0.0});
    for (std::size_t i = 0; i < 40; ++i)
        Record.m_aFound[(7 * i) % 75].m_dX += i % 2 == 0 ? 6.0 : -7.0;
    const auto aDoubtful = DoubtfulDots(Record);
    const Reasons aReasons = DotReasons(Record, aDoubtful);

    EXPECT_EQ(aDoubtful.size(), cnMostDoubtfulDots + 1);
    ASSERT_EQ(aReasons.size(), 1U);
    EXPECT_EQ(aReasons[0].m_eReason, EReason::ePattern);
    EXPECT_EQ(aReasons[0].m_nDot, cnDots);
}

TEST(DiagnosisVerdict, DoubtsAScaleFromAPercentOn) {
    EXPECT_TRUE(PlateReasonsOf(Affine(1.0, 1.0, 0.0)).empty());
    EXPECT_TRUE(PlateReasonsOf(Affine(1.0099, 0.9901, 0.99)).empty());
    for (const StAffine& Middle : {Affine(1.011, 1.0, 0.0), Affine(1.0, 0.989, 0.0),
                                   Affine(std::numeric_limits<double>::quiet_NaN(), 1.0, 0.0)}) {
        const Reasons aReasons = PlateReasonsOf(Middle);
        ASSERT_EQ(aReasons.size(), 1U);
        EXPECT_EQ(aReasons[0].m_eReason, EReason::eScale);
    }
    EXPECT_THAT(PlateReasonsOf(Affine(1.02, 0.98, 0.0))[0].m_Words,
                HasSubstr("2.0 percent larger in x and 2.0 percent smaller in y"));
}

TEST(DiagnosisVerdict, DoubtsAShearFromADegreeOn) {
    const Reasons aReasons = PlateReasonsOf(Affine(1.0, 1.0, -1.1));

    ASSERT_EQ(aReasons.size(), 1U);
    EXPECT_EQ(aReasons[0].m_eReason, EReason::eShear);
    EXPECT_THAT(aReasons[0].m_Words, HasSubstr("1.1 degrees off a right angle"));
}

TEST(DiagnosisVerdict, HasANameForEachReason) {
    EXPECT_STREQ(ReasonName(EReason::eDot), "dot");
    EXPECT_STREQ(ReasonName(EReason::ePattern), "pattern");
    EXPECT_STREQ(ReasonName(EReason::eScale), "scale");
    EXPECT_STREQ(ReasonName(EReason::eShear), "shear");
    EXPECT_STREQ(ReasonName(EReason::eSecond), "second");
}
