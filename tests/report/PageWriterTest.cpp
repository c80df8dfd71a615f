#include "report/PageWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace report;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(PageWriter, ShowsNumbersRoundedAndKeepsThemWhole) {
    EXPECT_EQ(NumberMarkup("generate/dots/0/at/1", 0.1, 2),
              "<span data-figure=\"generate/dots/0/at/1\" data-value=\"0.10000000000000001\">0.10"
              "</span>");
}

TEST(PageWriter, EscapesWhatIsToldAsText) {
    ClPage Page("<b>&\"", "1<");
    Page.Section("a", "<h>");
    Page.Paragraph("x < y & \"z\"");
    const std::string sHtml = Page.Document();
    EXPECT_THAT(sHtml, HasSubstr("<title>&lt;b&gt;&amp;&quot;</title>"));
    EXPECT_THAT(sHtml, HasSubstr("<h2 id=\"a-heading\">&lt;h&gt;</h2>"));
    EXPECT_THAT(sHtml, HasSubstr("<p>x &lt; y &amp; &quot;z&quot;</p>"));
    EXPECT_THAT(sHtml, HasSubstr("qk7 1&lt;"));
}

TEST(PageWriter, ClosesASectionBeforeTheNextAndAtTheEnd) {
    ClPage Page("t", "1");
    Page.Section("a", "A");
    Page.Section("b", "B");
    const std::string sHtml = Page.Document();
    const std::size_t nFirst = sHtml.find("</section>");
    EXPECT_LT(nFirst, sHtml.find("<section id=\"b\""));
    EXPECT_NE(sHtml.find("</section>", nFirst + 1), std::string::npos);
}

TEST(PageWriter, TellsAValueBeyondItsLimitInWords) {
    ClPage Page("t", "1");
    Page.FigureTable(
        EGroup::ePlate,
        {{"generate/plate/middle/scale/0", 1.02}, {"generate/plate/middle/shear", 0.5}},
        "The plate", false);
    const std::string sHtml = Page.Document();
    EXPECT_THAT(sHtml, HasSubstr(">1.0200</span> <strong class=\"beyond\">beyond the limit"));
    EXPECT_THAT(sHtml, HasSubstr("data-value=\"0.5\">0.50\u00b0</span></td>"));
    EXPECT_THAT(sHtml, HasSubstr("<th scope=\"col\">Limit</th>"));
    EXPECT_THAT(sHtml, Not(HasSubstr("Scale in y")));
}

TEST(PageWriter, TellsWhatIsNotMeasurableWhereAllIsToBeTold) {
    ClPage Page("t", "1");
    Page.FigureTable(EGroup::ePlaten, {}, "The platen", true);
    EXPECT_THAT(Page.Document(), HasSubstr("<th scope=\"row\">Noise</th><td class=\"number\" "
                                           "data-column=\"Value\"><span class=\"none\">not "
                                           "measurable</span>"));
    EXPECT_THAT(Page.Document(), Not(HasSubstr(">Limit<")));
}

TEST(PageWriter, PutsDrawingsIntoHtml) {
    ClPage Page("t", "1");
    Page.Drawing(ClSvg("plot", 10.0, 10.0, "Name", "Words").Document(), "Caption & more");
    const std::string sHtml = Page.Document();
    EXPECT_THAT(sHtml, Not(HasSubstr("http")));
    EXPECT_THAT(sHtml, HasSubstr("<title>Name</title>"));
    EXPECT_THAT(sHtml, HasSubstr("aria-describedby=\"plot-description\""));
    EXPECT_THAT(sHtml, HasSubstr("<figcaption>Caption &amp; more</figcaption>"));
}

TEST(PageWriter, SaysSoWhereAPictureCannotBeShown) {
    ClPage Page("t", "1");
    Page.Picture({}, "a picture", "Caption");
    EXPECT_THAT(Page.Document(), Not(HasSubstr("<img")));
    EXPECT_THAT(Page.Document(), HasSubstr("is not shown"));
}

TEST(PageWriter, BeginsAndEndsAsHtml) {
    const std::string sHtml = ClPage("t", "1").Document();
    EXPECT_THAT(sHtml, StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"));
    EXPECT_THAT(sHtml, EndsWith("</body>\n</html>\n"));
}
