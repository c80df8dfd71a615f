#include "report/Page.h"

#include "report/Markup.h"
#include "report/PageSections.h"

namespace report {

namespace {

/// Of a section that the page has.
struct StLink {
    bool m_bThere;
    const char* m_szId;
    const char* m_szName;
};

std::string NavigationMarkup(const StScanner& Scanner) {
    const bool bCalibrated = Scanner.m_Calibrated.has_value();
    const StLink aLinks[] = {
        {bCalibrated, "figures", "Main figures"},
        {true, "target", "The target"},
        {bCalibrated, "image", "The corrected image"},
        {bCalibrated && Scanner.m_Calibrated->m_Second, "second", "The second capture"},
        {Scanner.m_Platen.has_value(), "platen", "The platen"},
        {!Scanner.m_aFingers.empty(), "fingers", "Fingers"},
    };
    std::string sMarkup = "<nav aria-label=\"Sections\">\n<ul>\n";
    if (!Scanner.m_sIndex.empty())
        sMarkup += "<li><a href=\"" + Escaped(Scanner.m_sIndex) + "\">All scanners</a></li>\n";
    for (const StLink& Link : aLinks)
        if (Link.m_bThere)
            sMarkup += std::string("<li><a href=\"#") + Link.m_szId + "\">" + Link.m_szName +
                       "</a></li>\n";
    return sMarkup + "</ul>\n</nav>\n";
}

std::string FilesMarkup(const StScanner& Scanner) {
    std::string sMarkup = "<dl>\n";
    for (const StInputFile& File : Scanner.m_aFiles)
        sMarkup +=
            "<dt>" + Escaped(File.m_szRole) + "</dt><dd>" + Escaped(File.m_sName) + "</dd>\n";
    return sMarkup + "</dl>\n";
}

/// A word, a sign beside its colour, and what it means.
struct StVerdictWords {
    const char* m_szWord;
    const char* m_szMeans;
};

StVerdictWords WordsOf(const StScanner& Scanner) {
    const bool bSecond = Scanner.m_Calibrated && Scanner.m_Calibrated->m_Second;
    switch (Scanner.m_eVerdict) {
    case EVerdict::eGood:
        return {"\u2713 Good", bSecond
                                   ? "The calibration can be believed: its dots agree with each "
                                     "other, and a second capture agrees with them."
                                   : "The calibration can be believed, as far as one capture of "
                                     "the target tells. A second one, laid anew, tells more."};
    case EVerdict::eDoubtful:
        return {"! Doubtful", "The library accepts the calibration. It is better not used as it "
                              "is:"};
    default:
        return {"\u2715 Refused", "There is no calibration from this capture:"};
    }
}

std::string ListMarkup(const std::vector<std::string>& aSentences) {
    if (aSentences.empty())
        return "";
    std::string sMarkup = "<ul>\n";
    for (const std::string& sSentence : aSentences)
        sMarkup += "<li>" + Escaped(sSentence) + "</li>\n";
    return sMarkup + "</ul>\n";
}

std::string VerdictMarkup(const StScanner& Scanner) {
    const StVerdictWords Words = WordsOf(Scanner);
    std::string sMarkup = std::string("<div class=\"verdict ") + VerdictName(Scanner.m_eVerdict) +
                          "\">\n<p class=\"word\">" + Words.m_szWord + "</p>\n<p>" +
                          Words.m_szMeans + "</p>\n" + ListMarkup(Scanner.m_aReasons);
    if (!Scanner.m_sAdvice.empty())
        sMarkup += "<p><strong>What to do:</strong> " + Escaped(Scanner.m_sAdvice) + "</p>\n";
    return sMarkup + "</div>\n";
}

} // namespace

const char* VerdictName(EVerdict eVerdict) {
    return eVerdict == EVerdict::eGood       ? "good"
           : eVerdict == EVerdict::eDoubtful ? "doubtful"
                                             : "refused";
}

void AddHead(ClPage& rPage, const StScanner& Scanner) {
    rPage.Markup("<header>\n<h1>" + Escaped(Scanner.m_sTitle) +
                 "</h1>\n<p class=\"quiet\">Calibration of a QK7 fingerprint scanner</p>\n" +
                 VerdictMarkup(Scanner) + FilesMarkup(Scanner) + NavigationMarkup(Scanner) +
                 "</header>\n");
}

std::string PageOf(const StScanner& Scanner) {
    ClPage Page(Scanner.m_sTitle + ": " + VerdictName(Scanner.m_eVerdict), Scanner.m_sVersion);
    AddHead(Page, Scanner);
    AddFigures(Page, Scanner);
    AddTarget(Page, Scanner);
    AddImage(Page, Scanner);
    AddSecond(Page, Scanner);
    AddPlaten(Page, Scanner);
    AddFingers(Page, Scanner);
    return Page.Document();
}

} // namespace report
