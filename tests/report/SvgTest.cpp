/// The writer, element by element.

#include "report/Svg.h"

#include "report/DrawingReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>

using namespace report;
using TestSupport::ClDrawingReader;

namespace {

ClSvg Blank() {
    return ClSvg("a-1", 40.0, 30.5, "A <title>", "Tells \"all\".");
}

} // namespace

TEST(ReportSvg, OpensWithANameAndADescription) {
    EXPECT_EQ(Blank().Document(),
              "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"drawing\" viewBox=\"0 0 40 30.5\" "
              "role=\"img\" aria-labelledby=\"a-1-title a-1-description\">\n"
              "<title id=\"a-1-title\">A &lt;title&gt;</title>\n"
              "<desc id=\"a-1-description\">Tells &quot;all&quot;.</desc>\n"
              "</svg>\n");
}

TEST(ReportSvg, RefusesPrefixesThatAreNoBeginningOfAnId) {
    for (const char* szPrefix : {"", "1a", "-a", "a b", "a\"", "a_b", "\xC3\xA9"})
        EXPECT_THROW(ClSvg(szPrefix, 1.0, 1.0, "", ""), std::invalid_argument) << szPrefix;
    EXPECT_NO_THROW(ClSvg("Z9-", 1.0, 1.0, "", ""));
}

TEST(ReportSvg, RefusesSizesThatAreNone) {
    for (const double d : {0.0, -1.0, std::nan(""), static_cast<double>(INFINITY)}) {
        EXPECT_THROW(ClSvg("a", d, 1.0, "", ""), std::invalid_argument) << d;
        EXPECT_THROW(ClSvg("a", 1.0, d, "", ""), std::invalid_argument) << d;
    }
}

TEST(ReportSvg, WritesEachMark) {
    ClSvg Svg = Blank();
    Svg.Line({1.0, 2.0}, {3.25, 4.125}, "axis");
    Svg.Circle({5.0, 6.0}, 2.0, "dot", "a & b");
    Svg.Rect({1.0, 2.0, 3.0, 4.0}, "bar");
    Svg.Polyline({{0.0, 0.0}, {1.0, -0.001}}, "actual");
    Svg.Polygon({{0.0, 0.0}, {1.0, 0.0}, {0.0, 1.0}}, "hull");
    Svg.Segments({{0.0, 1.0}, {2.0, 3.0}, {4.0, 5.0}, {6.0, 7.0}, {8.0, 9.0}}, "net");
    Svg.Text({7.0, 8.0}, "1 < 2", "text", EAnchor::eEnd);
    Svg.UprightText({7.0, 8.0}, "up", "quiet");
    Svg.Image({0.0, 0.0, 40.0, 30.0}, "data:,\"");
    const std::string sAll = Svg.Document();
    for (const char* szPart :
         {"<line class=\"axis\" x1=\"1\" y1=\"2\" x2=\"3.25\" y2=\"4.12\"/>\n",
          "<circle class=\"dot\" cx=\"5\" cy=\"6\" r=\"2\"><title>a &amp; b</title></circle>\n",
          "<rect class=\"bar\" x=\"1\" y=\"2\" width=\"3\" height=\"4\"/>\n",
          "<polyline class=\"actual\" points=\"0,0 1,0\"/>\n",
          "<polygon class=\"hull\" points=\"0,0 1,0 0,1\"/>\n",
          "<path class=\"net\" d=\"M0 1L2 3M4 5L6 7\"/>\n",
          "<text class=\"text\" x=\"7\" y=\"8\" text-anchor=\"end\">1 &lt; 2</text>\n",
          "<text class=\"quiet\" transform=\"translate(7 8) rotate(-90)\" "
          "text-anchor=\"middle\">up</text>\n",
          "<image class=\"picture\" x=\"0\" y=\"0\" width=\"40\" height=\"30\" "
          "preserveAspectRatio=\"none\" href=\"data:,&quot;\"/>\n"})
        EXPECT_NE(sAll.find(szPart), std::string::npos) << szPart << sAll;
}

TEST(ReportSvg, LeavesOutWhatIsNowhere) {
    const double dNone = std::nan("");
    ClSvg Svg = Blank();
    Svg.Line({dNone, 0.0}, {1.0, 1.0}, "axis");
    Svg.Arrow({0.0, 0.0}, {1.0, dNone}, "vector");
    Svg.Circle({0.0, dNone}, 1.0, "dot");
    Svg.Diamond({dNone, 0.0}, 1.0, "outlier");
    Svg.Cross({dNone, 0.0}, 1.0, "absent");
    Svg.Rect({0.0, 0.0, dNone, 1.0}, "bar");
    Svg.Rect({0.0, 0.0, -1.0, 1.0}, "bar");
    Svg.Polyline({{0.0, 0.0}, {dNone, 0.0}}, "actual");
    Svg.Polygon({{0.0, 0.0}, {1.0, 0.0}, {dNone, 0.0}}, "hull");
    Svg.Segments({{0.0, 0.0}, {dNone, 0.0}}, "net");
    Svg.Text({dNone, 0.0}, "text", "text");
    Svg.UprightText({dNone, 0.0}, "text", "text");
    Svg.Image({dNone, 0.0, 1.0, 1.0}, "data:,");
    EXPECT_EQ(Svg.Document(), Blank().Document());
}

TEST(ReportSvg, KeepsThePointsOfALineThatAreSomewhere) {
    ClSvg Svg = Blank();
    Svg.Polyline({{0.0, 0.0}, {INFINITY, 0.0}, {2.0, 3.0}}, "actual");
    EXPECT_STREQ(ClDrawingReader(Svg.Document()).First("actual").attribute("points").value(),
                 "0,0 2,3");
}

// A head of a third of its length, 9 / 3 = 3, and 0.45 of that to either side.
TEST(ReportSvg, GivesAnArrowAHead) {
    ClSvg Svg = Blank();
    Svg.Arrow({0.0, 5.0}, {9.0, 5.0}, "vector");
    EXPECT_STREQ(ClDrawingReader(Svg.Document()).First("vector").attribute("d").value(),
                 "M0 5L9 5M6 3.65L9 5M6 6.35L9 5");
}

TEST(ReportSvg, GivesAShortArrowNoHeadAndALongOneNoLargerOne) {
    ClSvg Svg = Blank();
    Svg.Arrow({0.0, 5.0}, {1.9, 5.0}, "vector");
    Svg.Arrow({0.0, 5.0}, {30.0, 5.0}, "vector-wrong");
    const ClDrawingReader Drawing(Svg.Document());
    EXPECT_STREQ(Drawing.First("vector").attribute("d").value(), "M0 5L1.9 5");
    EXPECT_STREQ(Drawing.First("vector-wrong").attribute("d").value(),
                 "M0 5L30 5M26 3.2L30 5M26 6.8L30 5");
}

TEST(ReportSvg, ClosesGroupsThatAreOpen) {
    ClSvg Svg = Blank();
    Svg.OpenGroup("marks");
    Svg.OpenGroup("over-picture");
    Svg.CloseGroup();
    Svg.Line({0.0, 0.0}, {1.0, 1.0}, "axis");
    const ClDrawingReader Drawing(Svg.Document());
    EXPECT_STREQ(Drawing.First("axis").parent().attribute("class").value(), "marks");
    Svg.CloseGroup();
    EXPECT_THROW(Svg.CloseGroup(), std::logic_error);
}

// 0.6 of 11 units for a letter, twice that for one as wide as high.
TEST(ReportSvg, EstimatesTheWidthOfTexts) {
    EXPECT_DOUBLE_EQ(TextWidth("12.5 \xC2\xB5m"), 7 * 6.6);
    EXPECT_DOUBLE_EQ(TextWidth("\xE6\xBC\xA2\xE2\x80\xA6"), 3 * 6.6);
    EXPECT_DOUBLE_EQ(TextWidth("\xFF\x80"), 4 * 6.6); // each is replaced by a wide one
}

TEST(ReportSvg, CutsATextToAWidth) {
    EXPECT_EQ(Fitted("scanner", 7 * 6.6), "scanner");
    EXPECT_EQ(Fitted("scanners", 7 * 6.6), "scanne\xE2\x80\xA6");
    EXPECT_EQ(Fitted("\xE6\xBC\xA2\xE6\xBC\xA2\xE6\xBC\xA2", 4 * 6.6), "\xE6\xBC\xA2\xE2\x80\xA6");
}
