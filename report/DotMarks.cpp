#include "report/DotMarks.h"

#include "report/Markup.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace report {

namespace {

constexpr std::size_t cnMostNames = 10;

using Places = std::map<std::pair<int, int>, StPoint>;

Places PlacesOf(const ClPanel& Panel, const Dots& aDots) {
    Places Known;
    for (const StDot& Dot : aDots)
        if (Dot.m_Place.m_nColumn > 0 && Dot.m_Place.m_nRow > 0)
            Known[{Dot.m_Place.m_nColumn, Dot.m_Place.m_nRow}] = Panel.At(Dot.m_At);
    return Known;
}

void AddShortened(const StPoint& From, const StPoint& To, double dGap, Points& rEnds) {
    const StPoint Way = To - From;
    const double dLength = std::sqrt(SquaredLength(Way));
    if (!(dLength > 2.0 * dGap))
        return;
    const StPoint Gap{dGap * Way.m_dX / dLength, dGap * Way.m_dY / dLength};
    rEnds.push_back(From + Gap);
    rEnds.push_back(To - Gap);
}

/// Dots without a place in the pattern are those of a target that nobody judged.
bool IsJudged(const Dots& aDots) {
    return std::any_of(aDots.begin(), aDots.end(),
                       [](const StDot& Dot) { return Dot.m_Place.m_nColumn > 0; });
}

} // namespace

Dots DotsWithin(const ClPanel& Panel, const Dots& aDots) {
    Dots aWithin;
    for (const StDot& Dot : aDots)
        if (Panel.Holds(Dot.m_At))
            aWithin.push_back(Dot);
    return aWithin;
}

void DrawNet(ClSvg& rSvg, const ClPanel& Panel, const Dots& aDots, double dGap) {
    const Places Known = PlacesOf(Panel, aDots);
    Points aEnds;
    for (const auto& [place, at] : Known)
        for (const auto& next :
             {std::pair(place.first + 1, place.second), std::pair(place.first, place.second + 1)})
            if (const auto found = Known.find(next); found != Known.end())
                AddShortened(at, found->second, dGap, aEnds);
    rSvg.Segments(aEnds, mark::cszNet);
}

void DrawDoubtful(ClSvg& rSvg, const ClPanel& Panel, const Dots& aDots, ClLabels& rLabels) {
    for (const StDot& Dot : aDots) {
        if (!Dot.m_bDoubtful)
            continue;
        const StPoint Middle = Panel.At(Dot.m_At);
        rSvg.Rect(Around(Middle, cdDoubtfulReach), mark::cszDoubtful, NameOf(Dot.m_Place));
        rLabels.Put(rSvg, Middle, cdDoubtfulReach + 2.5, NameOf(Dot.m_Place), mark::cszWarning);
    }
}

void DoubtfulSample(ClSvg& rSvg, const StPoint& Middle) {
    rSvg.Rect(Around(Middle, 5.0), mark::cszDoubtful);
}

std::size_t CountDoubtful(const Dots& aDots) {
    return static_cast<std::size_t>(std::count_if(
        aDots.begin(), aDots.end(), [](const StDot& Dot) { return Dot.m_bDoubtful; }));
}

std::string DotWords(const Dots& aDots) {
    const std::size_t nDoubtful = CountDoubtful(aDots);
    std::string sWords = Count(aDots.size(), "dot", "dots");
    if (nDoubtful == 0)
        return IsJudged(aDots) ? sWords + ", none of them doubtful" : sWords;
    sWords += nDoubtful == 1 ? ", one of them doubtful: "
                             : ", " + std::to_string(nDoubtful) + " of them doubtful: ";
    std::size_t nNames = 0;
    for (const StDot& Dot : aDots)
        if (Dot.m_bDoubtful && nNames++ < cnMostNames)
            sWords += (nNames == 1 ? "" : "; ") + NameOf(Dot.m_Place);
    return nNames > cnMostNames ? sWords + "; and others" : sWords;
}

std::string OutsideWords(std::size_t nOutside, const char* szOne, const char* szMany) {
    if (nOutside == 0)
        return {};
    return Count(nOutside, szOne, szMany) +
           (nOutside == 1 ? " lies outside and is not drawn" : " lie outside and are not drawn");
}

std::string SentenceAlone(const std::string& sPrefix, const std::string& sTitle,
                          const std::string& sSentence) {
    ClSvg Svg(sPrefix, 400.0, 80.0, sTitle, sSentence + ".");
    const StBox Box{0.5, 0.5, 399.0, 79.0};
    Svg.Rect(Box, mark::cszFrame);
    DrawSentence(Svg, Box, sSentence);
    return Svg.Document();
}

void DrawSentence(ClSvg& rSvg, const StBox& Box, const std::string& sSentence) {
    rSvg.Text({Box.Middle().m_dX, Box.Middle().m_dY + 4.0}, sSentence, mark::cszText,
              EAnchor::eMiddle);
}

} // namespace report
