#include "report/PageFigures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <stdexcept>

using namespace report;

namespace {

const StFigure& Scale() {
    return FigureOf("generate/plate/middle/scale/0");
}

} // namespace

TEST(PageFigures, AreToldOnceInEachGroup) {
    std::set<std::pair<EGroup, std::string>> Seen;
    for (const StFigure& Figure : Figures())
        EXPECT_TRUE(Seen.insert({Figure.m_eGroup, Figure.m_szId}).second) << Figure.m_szId;
}

TEST(PageFigures, SayWhatTheyMeanAndWhatNot) {
    for (const StFigure& Figure : Figures())
        for (const std::string sWords : {Figure.m_szMeans, Figure.m_szMeansNot}) {
            ASSERT_FALSE(sWords.empty()) << Figure.m_szId;
            EXPECT_EQ(sWords.back(), '.') << Figure.m_szId;
        }
}

TEST(PageFigures, AreShownWithTheirDecimalsAndUnits) {
    EXPECT_EQ(Shown(Scale(), 0.998549), "0.9985");
    EXPECT_EQ(Shown(FigureOf("report/residual_mean"), 2.449), "2.4\u00a0\u00b5m");
    EXPECT_EQ(Shown(FigureOf("generate/plate/middle/shear"), -0.0001), "0.00\u00b0");
}

TEST(PageFigures, SharesAreShownInPercent) {
    EXPECT_EQ(Shown(FigureOf("contamination/platen/soiled_share"), 0.01234), "1.234\u00a0%");
}

TEST(PageFigures, KeepTheLimitsThatTheVerdictHas) {
    EXPECT_TRUE(IsWithin(Scale(), 1.0099));
    EXPECT_FALSE(IsWithin(Scale(), 1.0101));
    EXPECT_TRUE(IsWithin(Scale(), 0.9901));
    EXPECT_FALSE(IsWithin(Scale(), 0.9899));
    EXPECT_EQ(LimitWords(Scale()), "0.9900 to 1.0100");
    EXPECT_TRUE(IsWithin(FigureOf("report/worst_dot"), 0.949));
    EXPECT_FALSE(IsWithin(FigureOf("report/worst_dot"), 0.951));
    EXPECT_EQ(LimitWords(FigureOf("report/worst_dot")), "below 0.95");
    EXPECT_EQ(LimitWords(FigureOf("check/efts_percent")), "none");
    EXPECT_FALSE(IsWithin(Scale(), std::nan("")));
}

TEST(PageFigures, AreWorseInTheirOwnWay) {
    EXPECT_GT(Badness(Scale(), 0.98), Badness(Scale(), 1.01));
    const StFigure& Efts = FigureOf("check/efts_percent");
    EXPECT_GT(Badness(Efts, 98.0), Badness(Efts, 100.0));
    const StFigure& Shear = FigureOf("generate/plate/middle/shear");
    EXPECT_GT(Badness(Shear, -0.6), Badness(Shear, 0.5));
    const StFigure& Noise = FigureOf("contamination/platen/noise");
    EXPECT_GT(Badness(Noise, 2.0), Badness(Noise, 1.0));
}

TEST(PageFigures, OthersAreNone) {
    EXPECT_THROW(FigureOf("generate/plate"), std::invalid_argument);
    EXPECT_FALSE(ValueOf({{"a/b", 1.0}}, "a"));
    EXPECT_EQ(ValueOf({{"a/b", 1.5}}, "a/b"), 1.5);
}
