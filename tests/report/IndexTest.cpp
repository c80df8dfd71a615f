#include "report/Index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

using namespace report;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

StEntry Entry(const std::string& sName, EState eState, double dScale, double dNoise = 1.0) {
    StEntry Entry;
    Entry.m_sName = sName;
    Entry.m_sPage = eState == EState::eFailed ? "" : "scanner-" + sName + ".html";
    Entry.m_eState = eState;
    if (eState != EState::eGood)
        Entry.m_aReasons = {"Why " + sName + "."};
    if (eState == EState::eGood || eState == EState::eDoubtful)
        Entry.m_Values = {{"generate/plate/middle/scale/0", dScale},
                          {"contamination/platen/noise", dNoise}};
    return Entry;
}

std::vector<StEntry> Line() {
    return {Entry("a", EState::eGood, 1.0005),    Entry("b", EState::eDoubtful, 1.02),
            Entry("c", EState::eGood, 0.9991),    Entry("d", EState::eRefused, 0.0),
            Entry("e", EState::eGood, 1.0, 2.5),  Entry("f", EState::eFailed, 0.0),
            Entry("g", EState::eGood, 1.0, 1.01), Entry("h", EState::eGood, 1.0, 1.02),
            Entry("i", EState::eGood, 1.0, 0.99), Entry("j", EState::eGood, 1.0, 0.98)};
}

std::string Html(const std::vector<StEntry>& aEntries, const std::string& sFile) {
    for (const StIndexPage& Page : IndexPages(aEntries, "1"))
        if (Page.m_sFile == sFile)
            return Page.m_sHtml;
    return "";
}

/// The names in the order of the table.
std::vector<std::string> Rows(const std::string& sHtml) {
    const std::regex Row("<tr data-scanner=\"([^\"]*)\">");
    std::vector<std::string> aNames;
    for (std::sregex_iterator it(sHtml.begin(), sHtml.end(), Row), itEnd; it != itEnd; ++it)
        aNames.push_back((*it)[1]);
    return aNames;
}

} // namespace

TEST(ReportIndex, PutsFailedRefusedDoubtfulAndOutlyingOnesFirst) {
    EXPECT_THAT(Rows(Html(Line(), "index.html")),
                ElementsAre("f", "d", "b", "e", "a", "c", "g", "h", "i", "j"));
}

TEST(ReportIndex, HasTheOrderOfTheNames) {
    EXPECT_THAT(Rows(Html(Line(), "index-name.html")),
                ElementsAre("a", "b", "c", "d", "e", "f", "g", "h", "i", "j"));
}

TEST(ReportIndex, HasAnOrderForEachFigureTheWorstFirstAndThoseWithoutOneLast) {
    EXPECT_THAT(Rows(Html(Line(), "index-scale-x.html")),
                ElementsAre("b", "c", "a", "e", "g", "h", "i", "j", "d", "f"));
    EXPECT_THAT(Rows(Html(Line(), "index-noise.html")),
                ElementsAre("e", "h", "g", "a", "b", "c", "i", "j", "d", "f"));
}

TEST(ReportIndex, NamesOutliersAndWhatIsBeyondALimit) {
    const std::string sHtml = Html(Line(), "index.html");
    EXPECT_THAT(sHtml, HasSubstr("Stands out by: Noise 2.50."));
    EXPECT_THAT(sHtml, HasSubstr("2.50</span> <span class=\"why\">outlier"));
    EXPECT_THAT(sHtml, HasSubstr("1.0200</span> <span class=\"why\">beyond the limit"));
}

TEST(ReportIndex, CountsTheVerdicts) {
    const std::string sHtml = Html(Line(), "index.html");
    EXPECT_THAT(sHtml,
                HasSubstr("<span data-figure=\"count/good\" data-value=\"7\">7</span> good"));
    EXPECT_THAT(sHtml, HasSubstr("data-value=\"1\">1</span> failed"));
}

TEST(ReportIndex, LinksToPagesThatAreThere) {
    const std::string sHtml =
        Html({Entry("x\"#%", EState::eGood, 1.0), Entry("f", EState::eFailed, 0.0)}, "index.html");
    EXPECT_THAT(sHtml, HasSubstr("<a href=\"scanner-x%22%23%25.html\">x&quot;#%</a>"));
    EXPECT_THAT(sHtml, HasSubstr("<th scope=\"row\">f</th>"));
}

TEST(ReportIndex, SaysSoWhereNothingIsToBeLookedAt) {
    const std::string sHtml = Html({Entry("a", EState::eGood, 1.0)}, "index.html");
    EXPECT_THAT(sHtml, HasSubstr("All scanners are good, and none stands out."));
}

TEST(ReportIndex, IsAPageOfNothingToo) {
    EXPECT_THAT(Html({}, "index.html"), HasSubstr("no scanners"));
    EXPECT_THAT(Html({}, "index.html"), Not(HasSubstr("<svg")));
}

TEST(ReportIndex, PromisesNoTrendsWhereEveryScannerFailed) {
    const std::string sNone = Html({Entry("a", EState::eFailed, 0.0)}, "index.html");
    EXPECT_THAT(sNone, HasSubstr("No scanner has figures."));
    EXPECT_THAT(sNone, Not(HasSubstr("Each figure over the scanners")));
    EXPECT_THAT(Html(Line(), "index.html"), HasSubstr("Each figure over the scanners"));
}

TEST(ReportIndex, TellsItsFilesInAdvance) {
    std::vector<std::string> aFiles;
    for (const StIndexPage& Page : IndexPages(Line(), "1"))
        aFiles.push_back(Page.m_sFile);
    EXPECT_EQ(IndexFiles(), aFiles);
}
