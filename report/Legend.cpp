#include "report/Legend.h"

#include <sstream>

namespace report {

namespace {

constexpr double cdLine = 15.0;
constexpr double cdSampleWidth = 18.0;
constexpr double cdGap = 14.0;
constexpr double cdMiddle = -4.0; ///< of small letters above their base line

} // namespace

std::vector<std::string> LinesOf(const std::string& sText, double dWidth) {
    std::vector<std::string> aLines;
    std::istringstream Words(sText);
    for (std::string sWord; Words >> sWord;) {
        sWord = Fitted(sWord, dWidth);
        if (!aLines.empty() && TextWidth(aLines.back() + " " + sWord) <= dWidth)
            aLines.back() += " " + sWord;
        else
            aLines.push_back(sWord);
    }
    return aLines;
}

void ClLegend::Add(const Sample& sample, const std::string& sMeaning) {
    Place(sample, sMeaning, m_aEntries.empty() || !m_aEntries.back().m_Sample);
}

void ClLegend::AddRemark(const std::string& sRemark) {
    for (const std::string& sLine : LinesOf(sRemark, m_dWidth))
        Place({}, sLine, true);
}

double ClLegend::WidthOf(const StEntry& Entry) const {
    return (Entry.m_Sample ? cdSampleWidth : 0.0) + TextWidth(Entry.m_sText);
}

void ClLegend::Place(const Sample& sample, const std::string& sText, bool bNewLine) {
    StEntry Entry{sample, sText, {0.0, cdLine}};
    if (!m_aEntries.empty()) {
        const StEntry& Last = m_aEntries.back();
        Entry.m_At = {Last.m_At.m_dX + WidthOf(Last) + cdGap, Last.m_At.m_dY};
        if (bNewLine || Entry.m_At.m_dX + WidthOf(Entry) > m_dWidth)
            Entry.m_At = {0.0, Last.m_At.m_dY + cdLine};
    }
    m_aEntries.push_back(Entry);
}

double ClLegend::Height() const {
    return m_aEntries.empty() ? 0.0 : m_aEntries.back().m_At.m_dY + 0.4 * cdLine;
}

void ClLegend::Draw(ClSvg& rSvg, const StPoint& UpperLeft) const {
    for (const StEntry& Entry : m_aEntries) {
        StPoint Place = UpperLeft + Entry.m_At;
        if (Entry.m_Sample) {
            Entry.m_Sample(rSvg, Place + StPoint{0.5 * cdSampleWidth - 3.0, cdMiddle});
            Place.m_dX += cdSampleWidth;
        }
        rSvg.Text(Place, Entry.m_sText, mark::cszText);
    }
}

} // namespace report
