#include "report/PageWriter.h"

#include "report/Markup.h"
#include "report/PageStyle.h"

#include <algorithm>
#include <cstdio>

namespace report {

namespace {

/// Enough digits that reading them gives the very number.
std::string InFull(double dValue) {
    char szText[32];
    std::snprintf(szText, sizeof szText, "%.17g", dValue);
    return szText;
}

std::string FigureMarkup(const std::string& sContent, const std::string& sCaption,
                         const char* szClass) {
    const std::string sWords =
        sCaption.empty() ? "" : "<figcaption>" + Escaped(sCaption) + "</figcaption>\n";
    return std::string("<figure class=\"") + szClass + "\">\n" + sContent + sWords + "</figure>\n";
}

/// From the first place of one text to the end of the next place of another.
void Replace(std::string& rText, const std::string& sFrom, const std::string& sTo,
             const std::string& sNew) {
    const std::size_t nFrom = rText.find(sFrom);
    const std::size_t nTo =
        nFrom == std::string::npos ? nFrom : rText.find(sTo, nFrom + sFrom.size());
    if (nTo != std::string::npos)
        rText.replace(nFrom, nTo + sTo.size() - nFrom, sNew);
}

/// Within HTML the name space is known, and its address would look like one that is fetched. HTML
/// gives titles no id; the first title names a drawing all the same.
std::string WithinHtml(std::string sSvg) {
    Replace(sSvg, " xmlns=\"", "\"", "");
    Replace(sSvg, "<title id=\"", "\"", "<title");
    Replace(sSvg, " aria-labelledby=\"", " ", " aria-describedby=\"");
    return sSvg;
}

std::string ValueMarkup(const StFigure& Figure, const std::optional<double>& dValue) {
    if (!dValue)
        return "<span class=\"none\">not measurable</span>";
    const std::string sNumber = NumberMarkup(Figure.m_szId, *dValue, Shown(Figure, *dValue));
    return IsWithin(Figure, *dValue)
               ? sNumber
               : sNumber + " <strong class=\"beyond\">beyond the limit</strong>";
}

std::string MeaningMarkup(const StFigure& Figure) {
    return Escaped(Figure.m_szMeans) + " <span class=\"not\">" + Escaped(Figure.m_szMeansNot) +
           "</span>";
}

bool HasLimits(EGroup eGroup) {
    return std::any_of(Figures().begin(), Figures().end(), [&](const StFigure& Figure) {
        return Figure.m_eGroup == eGroup && (Figure.m_dLower || Figure.m_dUpper);
    });
}

const char* CellClass(const StCell& Cell) {
    return Cell.m_eKind == StCell::EKind::eNumber ? " class=\"number\"" : "";
}

} // namespace

std::string NumberMarkup(const std::string& sId, double dValue, const std::string& sShown) {
    return "<span data-figure=\"" + Escaped(sId) + "\" data-value=\"" + InFull(dValue) + "\">" +
           Escaped(sShown) + "</span>";
}

std::string NumberMarkup(const std::string& sId, double dValue, int nDecimals) {
    return NumberMarkup(sId, dValue, Decimal(dValue, nDecimals));
}

StCell TextCell(const std::string& sText) {
    return {Escaped(sText), StCell::EKind::eText};
}

StCell HeadCell(const std::string& sText) {
    return {Escaped(sText), StCell::EKind::eHead};
}

StCell NumberCell(const std::string& sMarkup) {
    return {sMarkup, StCell::EKind::eNumber};
}

ClPage::ClPage(const std::string& sTitle, const std::string& sVersion)
    : m_sTitle(sTitle), m_sVersion(sVersion) {}

void ClPage::Section(const std::string& sId, const std::string& sHeading) {
    CloseSection();
    m_sBody += "<section id=\"" + sId + "\" aria-labelledby=\"" + sId + "-heading\">\n<h2 id=\"" +
               sId + "-heading\">" + Escaped(sHeading) + "</h2>\n";
    m_bSection = true;
}

void ClPage::CloseSection() {
    if (m_bSection)
        m_sBody += "</section>\n";
    m_bSection = false;
}

void ClPage::Heading(const std::string& sId, const std::string& sHeading) {
    m_sBody += "<h3 id=\"" + sId + "\">" + Escaped(sHeading) + "</h3>\n";
}

void ClPage::Paragraph(const std::string& sText) {
    m_sBody += "<p>" + Escaped(sText) + "</p>\n";
}

void ClPage::OpenGallery(const char* szClass) {
    m_sBody += std::string("<div class=\"") + szClass + "\">\n";
}

void ClPage::CloseGallery() {
    m_sBody += "</div>\n";
}

void ClPage::Drawing(const std::string& sSvg, const std::string& sCaption) {
    m_sBody += FigureMarkup(WithinHtml(sSvg), sCaption, "plot");
}

void ClPage::Picture(const StPicture& Picture, const std::string& sAlternative,
                     const std::string& sCaption) {
    if (Picture.m_sSource.empty()) {
        Paragraph(sAlternative + " is not shown: it is not plain 8-bit grey.");
        return;
    }
    const std::string sImage = "<img src=\"" + Picture.m_sSource + "\" width=\"" +
                               std::to_string(Picture.m_nWidth) + "\" height=\"" +
                               std::to_string(Picture.m_nHeight) + "\" alt=\"" +
                               Escaped(sAlternative) + "\">\n";
    m_sBody += FigureMarkup(sImage, sCaption, "picture");
}

void ClPage::FigureTable(EGroup eGroup, const Values& Known, const std::string& sCaption,
                         bool bAll) {
    const bool bLimits = HasLimits(eGroup);
    if (bLimits)
        OpenTable(sCaption, {"Figure", "Value", "Limit", "What it means, and what not"}, "limited");
    else
        OpenTable(sCaption, {"Figure", "Value", "What it means, and what not"}, "figures");
    for (const StFigure& figure : Figures()) {
        const std::optional<double> dValue = ValueOf(Known, figure.m_szId);
        if (figure.m_eGroup != eGroup || !(dValue || bAll))
            continue;
        Cells aCells = {HeadCell(figure.m_szName), NumberCell(ValueMarkup(figure, dValue))};
        if (bLimits)
            aCells.push_back(NumberCell(Escaped(LimitWords(figure))));
        aCells.push_back({MeaningMarkup(figure)});
        Row(aCells);
    }
    CloseTable();
}

void ClPage::OpenTable(const std::string& sCaption, const std::vector<std::string>& aHeads,
                       const char* szClass) {
    m_aHeads = aHeads;
    m_sBody += std::string("<table class=\"") + szClass + "\">\n<caption>" + Escaped(sCaption) +
               "</caption>\n<thead>\n<tr>";
    for (const std::string& sHead : aHeads)
        m_sBody += "<th scope=\"col\">" + Escaped(sHead) + "</th>";
    m_sBody += "</tr>\n</thead>\n<tbody>\n";
}

/// Narrow screens show the names of the columns beside the cells.
void ClPage::Row(const Cells& aCells) {
    m_sBody += "<tr>";
    for (std::size_t i = 0; i < aCells.size(); ++i)
        m_sBody += i == 0 ? "<th scope=\"row\">" + aCells[i].m_sMarkup + "</th>"
                          : std::string("<td") + CellClass(aCells[i]) + " data-column=\"" +
                                Escaped(m_aHeads.at(i)) + "\">" + aCells[i].m_sMarkup + "</td>";
    m_sBody += "</tr>\n";
}

void ClPage::CloseTable() {
    m_sBody += "</tbody>\n</table>\n";
}

void ClPage::OpenDetails(const std::string& sSummary) {
    m_sBody += "<details>\n<summary>" + Escaped(sSummary) + "</summary>\n";
}

void ClPage::CloseDetails() {
    m_sBody += "</details>\n";
}

std::string ClPage::Document() const {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"color-scheme\" content=\"light dark\">\n"
           "<meta name=\"generator\" content=\"qk7 " +
           Escaped(m_sVersion) + "\">\n<title>" + Escaped(m_sTitle) + "</title>\n<style>\n" +
           PageStyle() + "</style>\n</head>\n<body>\n<main>\n" + m_sBody +
           (m_bSection ? "</section>\n" : "") + "</main>\n<footer>\n<p>Made by qk7 " +
           Escaped(m_sVersion) + ".</p>\n</footer>\n</body>\n</html>\n";
}

} // namespace report
