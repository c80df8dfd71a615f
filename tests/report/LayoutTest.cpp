/// Names beside marks, legends below drawings, panels of captures.

#include "report/DrawingReader.h"
#include "report/Labels.h"
#include "report/Legend.h"
#include "report/Panel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace report;
using namespace TestSupport;
using testing::ElementsAre;

namespace {

ClSvg Sheet() {
    return ClSvg("sheet", 200.0, 100.0, "Sheet", "A sheet.");
}

} // namespace

// "ab" is 13.2 wide; to the right of a mark at (50, 50) that reaches 5 it is centred at 61.6.
TEST(ReportLabels, StandToTheRightWhereThereIsRoom) {
    ClSvg Svg = Sheet();
    ClLabels Labels(Svg.View());
    EXPECT_TRUE(Labels.Put(Svg, {50.0, 50.0}, 5.0, "ab", "warning"));
    const ClDrawingReader Drawing(Svg.Document());
    const auto Text = Drawing.Text("ab");
    EXPECT_DOUBLE_EQ(Number(Text, "x"), 61.6);
    EXPECT_STREQ(Text.attribute("text-anchor").value(), "middle");
}

TEST(ReportLabels, KeepOffEachOtherAndWithinTheirRoom) {
    ClSvg Svg = Sheet();
    ClLabels Labels(Svg.View());
    for (const char* szName : {"right", "left", "above", "below"})
        EXPECT_TRUE(Labels.Put(Svg, {100.0, 50.0}, 10.0, szName, "warning")) << szName;
    EXPECT_FALSE(Labels.Put(Svg, {100.0, 50.0}, 10.0, "nowhere but on one of them", "warning"));
    ExpectSound(Svg.Document(), "sheet");
    const ClDrawingReader Drawing(Svg.Document());
    EXPECT_EQ(Drawing.CountOf("warning"), 4U);
    EXPECT_LT(Number(Drawing.Text("above"), "y"), 40.0);
    EXPECT_GT(Number(Drawing.Text("below"), "y"), 60.0);
}

TEST(ReportLabels, StandToTheLeftAtTheRightBorder) {
    ClSvg Svg = Sheet();
    ClLabels Labels(Svg.View());
    EXPECT_TRUE(Labels.Put(Svg, {190.0, 50.0}, 5.0, "ab", "warning"));
    EXPECT_DOUBLE_EQ(Number(ClDrawingReader(Svg.Document()).Text("ab"), "x"), 178.4);
}

TEST(ReportLabels, AvoidMarksWhereTheyCan) {
    ClSvg Svg = Sheet();
    ClLabels Labels(Svg.View());
    Labels.Avoid({60.0, 45.0, 10.0, 10.0}); // to the right
    EXPECT_TRUE(Labels.Put(Svg, {50.0, 50.0}, 5.0, "ab", "warning"));
    EXPECT_DOUBLE_EQ(Number(ClDrawingReader(Svg.Document()).Text("ab"), "x"), 38.4);
    Labels.Avoid(Svg.View());
    EXPECT_TRUE(Labels.Put(Svg, {50.0, 50.0}, 5.0, "cd", "warning"));
    EXPECT_DOUBLE_EQ(Number(ClDrawingReader(Svg.Document()).Text("cd"), "x"), 61.6);
}

TEST(ReportLegend, BreaksLinesBetweenWords) {
    EXPECT_THAT(LinesOf("one two three", 8 * 6.6), ElementsAre("one two", "three"));
    EXPECT_THAT(LinesOf("  one\n", 60.0), ElementsAre("one"));
    EXPECT_THAT(LinesOf("unbreakable", 5 * 6.6), ElementsAre("unbr\xE2\x80\xA6"));
    EXPECT_TRUE(LinesOf("", 60.0).empty());
}

// An entry is 18 wide and its text; 14 lie between two. "aaaaa" and "bbbbb" take 2 x 51 + 14 = 116.
TEST(ReportLegend, PutsEntriesBesideEachOtherAsLongAsThereIsRoom) {
    const auto sample = [](ClSvg& rSvg, const StPoint& p) { rSvg.Circle(p, 3.0, "dot"); };
    ClLegend Legend(116.0);
    EXPECT_EQ(Legend.Height(), 0.0);
    Legend.Add(sample, "aaaaa");
    Legend.Add(sample, "bbbbb");
    Legend.Add(sample, "ccccc");
    Legend.AddRemark("ddddd");
    EXPECT_DOUBLE_EQ(Legend.Height(), 3 * 15.0 + 6.0);
    ClSvg Svg = Sheet();
    Legend.Draw(Svg, {10.0, 20.0});
    const ClDrawingReader Drawing(Svg.Document());
    EXPECT_EQ(Drawing.CountOf("dot"), 3U);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("aaaaa"), "x"), 28.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("bbbbb"), "x"), 10.0 + 51.0 + 14.0 + 18.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("bbbbb"), "y"), 35.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("ccccc"), "x"), 28.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("ccccc"), "y"), 50.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("ddddd"), "x"), 10.0);
    EXPECT_DOUBLE_EQ(Number(Drawing.Text("ddddd"), "y"), 65.0);
}

// 100 x 200 pixels of 10 and 20 per millimetre are 10 x 10 millimetres: 8 units each in a room of
// 100 x 80, 10 of it left on either side.
TEST(ReportPanel, HasTheProportionsOfThePlate) {
    const StFrame Frame{100, 200, {10.0, 20.0}, false};
    const ClPanel Panel(Frame, {0.0, 5.0, 100.0, 80.0});
    ASSERT_TRUE(Panel.IsDrawable());
    EXPECT_DOUBLE_EQ(Panel.UnitsPerMillimetre(), 8.0);
    EXPECT_DOUBLE_EQ(Panel.Box().m_dX, 10.0);
    EXPECT_DOUBLE_EQ(Panel.Box().m_dY, 5.0);
    EXPECT_DOUBLE_EQ(Panel.Box().Right(), 90.0);
    EXPECT_DOUBLE_EQ(Panel.Box().Bottom(), 85.0);
    // The middle of the first pixel is half of one, 0.4 by 0.2, from the corner.
    EXPECT_DOUBLE_EQ(Panel.At(StPoint{0.0, 0.0}).m_dX, 10.4);
    EXPECT_DOUBLE_EQ(Panel.At(StPoint{0.0, 0.0}).m_dY, 5.2);
    EXPECT_DOUBLE_EQ(Panel.Along({10.0, 10.0}).m_dX, 8.0);
    EXPECT_DOUBLE_EQ(Panel.Along({10.0, 10.0}).m_dY, 4.0);
    EXPECT_DOUBLE_EQ(HeightFor(Frame, 50.0), 50.0);
}

TEST(ReportPanel, MayStandUpsideDown) {
    const ClPanel Panel({100, 200, {10.0, 20.0}, true}, {0.0, 5.0, 100.0, 80.0});
    EXPECT_DOUBLE_EQ(Panel.At(StPoint{0.0, 0.0}).m_dY, 84.8);
    EXPECT_DOUBLE_EQ(Panel.At(StPoint{0.0, 199.0}).m_dY, 5.2);
    EXPECT_DOUBLE_EQ(Panel.Along({0.0, 10.0}).m_dY, -4.0);
    const StBox Box = Panel.At(StBox{0.0, 0.0, 10.0, 20.0});
    EXPECT_DOUBLE_EQ(Box.m_dX, 10.0);
    EXPECT_DOUBLE_EQ(Box.m_dY, 77.0);
    EXPECT_DOUBLE_EQ(Box.m_dHeight, 8.0);
}

TEST(ReportPanel, HoldsWhatLiesOnItsPixels) {
    const ClPanel Panel({100, 200, {10.0, 20.0}, false}, {0.0, 0.0, 100.0, 80.0});
    EXPECT_TRUE(Panel.Holds({-0.5, 199.5}));
    EXPECT_FALSE(Panel.Holds({-0.51, 10.0}));
    EXPECT_FALSE(Panel.Holds({10.0, 199.51}));
    EXPECT_FALSE(Panel.Holds({std::nan(""), 10.0}));
}

TEST(ReportPanel, IsNotDrawableWithoutASize) {
    const auto drawable = [](const StFrame& Frame) {
        return ClPanel(Frame, {0.0, 0.0, 10.0, 10.0}).IsDrawable();
    };
    EXPECT_FALSE(drawable({}));
    EXPECT_FALSE(drawable({10, 0, {1.0, 1.0}, false}));
    EXPECT_FALSE(drawable({10, 10, {0.0, 1.0}, false}));
    EXPECT_FALSE(drawable({10, 10, {1.0, std::nan("")}, false}));
    EXPECT_FALSE(drawable({41, 10, {1.0, 1.0}, false}));
    EXPECT_FALSE(drawable({10, 41, {1.0, 1.0}, false}));
    EXPECT_TRUE(drawable({10, 40, {1.0, 1.0}, false}));
    EXPECT_EQ(HeightFor({}, 50.0), 0.0);
    EXPECT_EQ(HeightFor({10, 40, {1.0, 1.0}, false}, 50.0), 100.0); // no more than twice the width
}
