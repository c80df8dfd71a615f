#include "report/Index.h"

#include "report/Markup.h"
#include "report/Outliers.h"
#include "report/PageWriter.h"
#include "report/Trend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>

namespace report {

namespace {

using Entries = std::vector<StEntry>;
using Order = std::vector<std::size_t>;

/// A column of the table that the scanners can be ordered by.
struct StColumn {
    const char* m_szId;
    const char* m_szFile;
};

constexpr std::array<StColumn, 9> g_aColumns{{
    {"report/worst_dot", "index-worst-dot.html"},
    {"generate/plate/middle/scale/0", "index-scale-x.html"},
    {"generate/plate/middle/scale/1", "index-scale-y.html"},
    {"report/residual_mean", "index-residual.html"},
    {"generate/expected_error/corner", "index-corners.html"},
    {"check/efts_percent", "index-efts.html"},
    {"generate/second/max", "index-second.html"},
    {"contamination/platen/soiled_share", "index-soiled.html"},
    {"contamination/platen/noise", "index-noise.html"},
}};

constexpr const char* g_szWorst = "index.html";
constexpr const char* g_szByName = "index-name.html";

bool IsOfScanner(const StFigure& Figure) {
    return Figure.m_eGroup != EGroup::eLevels && Figure.m_eGroup != EGroup::ePrint;
}

double ValueIn(const StEntry& Entry, const StFigure& Figure) {
    return ValueOf(Entry.m_Values, Figure.m_szId)
        .value_or(std::numeric_limits<double>::quiet_NaN());
}

std::vector<double> ValuesOf(const Entries& aEntries, const StFigure& Figure) {
    std::vector<double> aValues;
    for (const StEntry& Entry : aEntries)
        aValues.push_back(ValueIn(Entry, Figure));
    return aValues;
}

/// Two of the last decimal that is shown.
double GrainOf(const StFigure& Figure) {
    return 2.0 * std::pow(10.0, -Figure.m_nDecimals) / Figure.m_dFactor;
}

std::vector<bool> OutliersOf(const Entries& aEntries, const StFigure& Figure) {
    return Outliers(ValuesOf(aEntries, Figure), GrainOf(Figure));
}

/// The outlying figures of each scanner as a sentence; empty where there is none.
std::vector<std::string> Remarks(const Entries& aEntries) {
    std::vector<std::string> aRemarks(aEntries.size());
    for (const StFigure& Figure : Figures()) {
        if (!IsOfScanner(Figure))
            continue;
        const std::vector<bool> aOut = OutliersOf(aEntries, Figure);
        for (std::size_t i = 0; i < aEntries.size(); ++i)
            if (aOut[i])
                aRemarks[i] += (aRemarks[i].empty() ? "Stands out by: " : "; ") +
                               std::string(Figure.m_szName) + " " +
                               Shown(Figure, ValueIn(aEntries[i], Figure));
    }
    for (std::string& rRemark : aRemarks)
        rRemark += rRemark.empty() ? "" : ".";
    return aRemarks;
}

/// Everything about the scanners that several pages tell.
struct StIndex {
    const Entries& m_aEntries;
    std::vector<std::string> m_aRemarks;
    std::string m_sVersion;

    bool IsRemarkable(std::size_t i) const {
        return m_aEntries[i].m_eState != EState::eGood || !m_aRemarks[i].empty();
    }
};

Order AsGiven(const StIndex& Index) {
    Order aOrder;
    for (std::size_t i = 0; i < Index.m_aEntries.size(); ++i)
        aOrder.push_back(i);
    return aOrder;
}

Order WorstFirst(const StIndex& Index) {
    Order aOrder = AsGiven(Index);
    const auto rank = [&](std::size_t i) {
        return 2 * static_cast<int>(Index.m_aEntries[i].m_eState) +
               (Index.m_aRemarks[i].empty() ? 0 : 1);
    };
    std::stable_sort(aOrder.begin(), aOrder.end(),
                     [&](std::size_t a, std::size_t b) { return rank(a) > rank(b); });
    return aOrder;
}

/// Those without a value last.
Order ByFigure(const StIndex& Index, const StFigure& Figure) {
    Order aOrder = AsGiven(Index);
    const auto badness = [&](std::size_t i) {
        const double dBad = Badness(Figure, ValueIn(Index.m_aEntries[i], Figure));
        return std::isnan(dBad) ? -std::numeric_limits<double>::infinity() : dBad;
    };
    std::stable_sort(aOrder.begin(), aOrder.end(),
                     [&](std::size_t a, std::size_t b) { return badness(a) > badness(b); });
    return aOrder;
}

/// A name as part of an address.
std::string Address(const std::string& sFile) {
    constexpr const char* szDigits = "0123456789ABCDEF";
    std::string sAddress;
    for (const char c : sFile) {
        const auto n = static_cast<unsigned char>(c);
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
            c == '-' || c == '.' || c == '_')
            sAddress += c;
        else
            sAddress.append({'%', szDigits[n >> 4U], szDigits[n & 15U]});
    }
    return sAddress;
}

std::string NameMarkup(const StEntry& Entry) {
    std::string sName = Escaped(Entry.m_sName);
    if (Entry.m_sPage.empty())
        return sName;
    return "<a href=\"" + Address(Entry.m_sPage) + "\">" + sName + "</a>";
}

std::string StateMarkup(EState eState) {
    constexpr std::array<const char*, 4> aSigns{"\u2713", "!", "\u2715", "\u2715"};
    return std::string("<span class=\"state ") + StateName(eState) + "\">" +
           aSigns.at(static_cast<std::size_t>(eState)) + " " + StateName(eState) + "</span>";
}

std::string CountsMarkup(const Entries& aEntries) {
    std::string sMarkup = "<p class=\"counts\">" + Count(aEntries.size(), "scanner", "scanners");
    for (const EState eState :
         {EState::eGood, EState::eDoubtful, EState::eRefused, EState::eFailed}) {
        const auto n = std::count_if(aEntries.begin(), aEntries.end(), [&](const StEntry& Entry) {
            return Entry.m_eState == eState;
        });
        sMarkup +=
            (eState == EState::eGood ? ": " : ", ") +
            NumberMarkup(std::string("count/") + StateName(eState), static_cast<double>(n), 0) +
            " " + StateName(eState);
    }
    return sMarkup + ".</p>\n";
}

std::string HeadMarkup(const char* szFile, const char* szName, const char* szCurrent) {
    const bool bCurrent = std::string(szFile) == szCurrent;
    return std::string("<th scope=\"col\"") + (bCurrent ? " aria-sort=\"other\"" : "") +
           "><a href=\"" + szFile + "\">" + Escaped(szName) + "</a>" + (bCurrent ? " \u25be" : "") +
           "</th>";
}

std::string CellMarkup(const StEntry& Entry, const StFigure& Figure, bool bOutlier) {
    const std::optional<double> dValue = ValueOf(Entry.m_Values, Figure.m_szId);
    if (!dValue)
        return "<td class=\"empty\">\u2013</td>";
    const std::string sCell =
        std::string("<td class=\"number\" data-column=\"") + Escaped(Figure.m_szName) + "\">";
    const std::string sNumber = NumberMarkup(Figure.m_szId, *dValue, Shown(Figure, *dValue));
    const char* szWhy = !IsWithin(Figure, *dValue) ? "beyond the limit" : "outlier";
    if (IsWithin(Figure, *dValue) && !bOutlier)
        return sCell + sNumber + "</td>";
    return sCell + "<strong class=\"beyond\">" + sNumber + " <span class=\"why\">" + szWhy +
           "</span></strong></td>";
}

void AddTable(ClPage& rPage, const StIndex& Index, const Order& aOrder, const char* szCurrent) {
    std::map<std::string, std::vector<bool>> Out;
    std::string sMarkup =
        "<table class=\"index\">\n<caption>The heads order the scanners, the worst "
        "first</caption>\n<thead>\n<tr>" +
        HeadMarkup(g_szByName, "Scanner", szCurrent) + HeadMarkup(g_szWorst, "Verdict", szCurrent);
    for (const StColumn& Column : g_aColumns) {
        const StFigure& Figure = FigureOf(Column.m_szId);
        Out[Column.m_szId] = OutliersOf(Index.m_aEntries, Figure);
        sMarkup += HeadMarkup(Column.m_szFile, Figure.m_szName, szCurrent);
    }
    sMarkup += "</tr>\n</thead>\n<tbody>\n";
    for (const std::size_t i : aOrder) {
        const StEntry& Entry = Index.m_aEntries[i];
        sMarkup += "<tr data-scanner=\"" + Escaped(Entry.m_sName) + "\"><th scope=\"row\">" +
                   NameMarkup(Entry) + "</th><td data-column=\"Verdict\">" +
                   StateMarkup(Entry.m_eState) + "</td>";
        for (const StColumn& Column : g_aColumns)
            sMarkup += CellMarkup(Entry, FigureOf(Column.m_szId), Out[Column.m_szId][i]);
        sMarkup += "</tr>\n";
    }
    rPage.Markup(sMarkup + "</tbody>\n</table>\n");
}

std::string WhyMarkup(const StEntry& Entry, const std::string& sRemark) {
    std::string sMarkup;
    for (const std::string& sReason : Entry.m_aReasons)
        sMarkup += Escaped(sReason) + "<br>";
    if (sRemark.empty())
        return sMarkup.substr(0, sMarkup.size() - 4);
    return sMarkup + "<span class=\"quiet\">" + Escaped(sRemark) + "</span>";
}

/// Those that are not good, and those that stand out.
void AddRemarkable(ClPage& rPage, const StIndex& Index) {
    rPage.Section("look", "To look at");
    const Order aOrder = WorstFirst(Index);
    if (aOrder.empty() || !Index.IsRemarkable(aOrder.front())) {
        rPage.Paragraph("All scanners are good, and none stands out.");
        return;
    }
    rPage.OpenTable("Scanners that are not good, or stand out", {"Scanner", "Verdict", "Why"});
    for (const std::size_t i : aOrder)
        if (Index.IsRemarkable(i))
            rPage.Row({{NameMarkup(Index.m_aEntries[i]), StCell::EKind::eHead},
                       {StateMarkup(Index.m_aEntries[i].m_eState)},
                       {WhyMarkup(Index.m_aEntries[i], Index.m_aRemarks[i])}});
    rPage.CloseTable();
}

StTrend TrendOf(const Entries& aEntries, const StFigure& Figure) {
    StTrend Trend;
    Trend.m_sFigure = Figure.m_szName;
    Trend.m_sUnit = Figure.m_szUnit;
    Trend.m_nDecimals = Figure.m_nDecimals;
    if (Figure.m_dLower)
        Trend.m_dLower = Figure.m_dFactor * *Figure.m_dLower;
    if (Figure.m_dUpper)
        Trend.m_dUpper = Figure.m_dFactor * *Figure.m_dUpper;
    const std::vector<bool> aOut = OutliersOf(aEntries, Figure);
    for (std::size_t i = 0; i < aEntries.size(); ++i)
        Trend.m_aPoints.push_back(
            {aEntries[i].m_sName, Figure.m_dFactor * ValueIn(aEntries[i], Figure), aOut[i]});
    return Trend;
}

void AddTrends(ClPage& rPage, const StIndex& Index) {
    rPage.Section("trends", "Trends");
    if (std::all_of(Index.m_aEntries.begin(), Index.m_aEntries.end(),
                    [](const StEntry& Entry) { return Entry.m_Values.empty(); })) {
        rPage.Paragraph("No scanner has figures.");
        return;
    }
    rPage.Paragraph("Each figure over the scanners in the order of their names. An outlier lies "
                    "further from the median than five robust standard deviations.");
    rPage.OpenGallery("trends");
    int nNumber = 0;
    for (const StFigure& Figure : Figures()) {
        const std::vector<double> aValues = ValuesOf(Index.m_aEntries, Figure);
        if (IsOfScanner(Figure) &&
            std::any_of(aValues.begin(), aValues.end(), [](double d) { return !std::isnan(d); }))
            rPage.Drawing(
                DrawTrend(TrendOf(Index.m_aEntries, Figure), "trend-" + std::to_string(++nNumber)),
                "");
    }
    rPage.CloseGallery();
}

ClPage PageHead(const StIndex& Index, const std::string& sOrder) {
    ClPage Page("Scanners " + sOrder, Index.m_sVersion);
    Page.Markup("<header>\n<h1>Calibrations of QK7 fingerprint scanners</h1>\n" +
                CountsMarkup(Index.m_aEntries) + "</header>\n");
    return Page;
}

std::string Overview(const StIndex& Index) {
    ClPage Page = PageHead(Index, "by verdict");
    AddRemarkable(Page, Index);
    Page.Section("all", "All scanners by verdict");
    AddTable(Page, Index, WorstFirst(Index), g_szWorst);
    AddTrends(Page, Index);
    return Page.Document();
}

std::string Ordered(const StIndex& Index, const std::string& sOrder, const Order& aOrder,
                    const char* szFile) {
    ClPage Page = PageHead(Index, sOrder);
    Page.Section("all", "All scanners " + sOrder);
    Page.Markup(std::string("<p><a href=\"") + g_szWorst + "\">Overview</a></p>\n");
    AddTable(Page, Index, aOrder, szFile);
    return Page.Document();
}

} // namespace

const char* StateName(EState eState) {
    constexpr std::array<const char*, 4> aNames{"good", "doubtful", "refused", "failed"};
    return aNames.at(static_cast<std::size_t>(eState));
}

std::vector<StIndexPage> IndexPages(const Entries& aEntries, const std::string& sVersion) {
    const StIndex Index{aEntries, Remarks(aEntries), sVersion};
    std::vector<StIndexPage> aPages = {
        {g_szWorst, Overview(Index)},
        {g_szByName, Ordered(Index, "by name", AsGiven(Index), g_szByName)}};
    for (const StColumn& Column : g_aColumns) {
        const StFigure& Figure = FigureOf(Column.m_szId);
        aPages.push_back({Column.m_szFile, Ordered(Index, std::string("by ") + Figure.m_szName,
                                                   ByFigure(Index, Figure), Column.m_szFile)});
    }
    return aPages;
}

std::vector<std::string> IndexFiles() {
    std::vector<std::string> aFiles = {g_szWorst, g_szByName};
    for (const StColumn& Column : g_aColumns)
        aFiles.emplace_back(Column.m_szFile);
    return aFiles;
}

} // namespace report
