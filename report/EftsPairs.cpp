#include "report/EftsPairs.h"

#include "report/DotMarks.h"
#include "report/Markup.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace report {

namespace {

constexpr const char* cszTitle = "Pairs of dots whose distance is beyond the EFTS limits";
constexpr double cdWidth = 400.0;
constexpr StBox cRoom{30.0, 14.0, 340.0, 420.0};
constexpr std::size_t cnMostDrawn = 50;
constexpr std::size_t cnMostNamed = 3;
constexpr double cdRing = 3.5;

double ErrorOf(const StFailingPair& Pair) {
    return Pair.m_dMeasured - Pair.m_dReference;
}

/// How many times its limit a pair is off: what is no number is the worst.
double ExcessOf(const StFailingPair& Pair) {
    const double dExcess = std::fabs(ErrorOf(Pair)) / Pair.m_dLimit;
    return std::isnan(dExcess) ? HUGE_VAL : dExcess;
}

class ClDrawing {
public:
    ClDrawing(const StEftsPairs& Pairs, const std::string& sPrefix)
        : m_Pairs(Pairs), m_Panel(Pairs.m_Corrected, cRoom), m_aWorst(Worst()),
          m_Legend(LegendOf()),
          m_Svg(sPrefix, cdWidth, m_Panel.Box().Bottom() + 10.0 + m_Legend.Height(), cszTitle,
                Summary()),
          m_Labels(m_Panel.Box()) {}

    std::string Draw() {
        m_Svg.Rect(m_Panel.Box(), mark::cszFrame);
        for (auto pair = m_aWorst.rbegin(); pair != m_aWorst.rend(); ++pair)
            DrawPair(*pair);
        for (const StDot& Dot : DotsWithin(m_Panel, m_Pairs.m_aDots)) {
            m_Svg.Circle(m_Panel.At(Dot.m_At), cdRing, mark::cszDot, NameOf(Dot.m_Place));
            m_Labels.Avoid(Around(m_Panel.At(Dot.m_At), cdRing));
        }
        DrawDoubtful(m_Svg, m_Panel, DotsWithin(m_Panel, m_Pairs.m_aDots), m_Labels);
        NameCulprits();
        if (m_Pairs.m_aDots.empty())
            DrawSentence(m_Svg, m_Panel.Box(), "No dots were found.");
        m_Legend.Draw(m_Svg, {cRoom.m_dX, m_Panel.Box().Bottom() + 4.0});
        return m_Svg.Document();
    }

private:
    bool IsDrawable(const StFailingPair& Pair) const {
        const Dots& aDots = m_Pairs.m_aDots;
        return Pair.m_nFirst < aDots.size() && Pair.m_nSecond < aDots.size() &&
               m_Panel.Holds(aDots[Pair.m_nFirst].m_At) &&
               m_Panel.Holds(aDots[Pair.m_nSecond].m_At);
    }
    std::vector<StFailingPair> Worst() const;
    std::vector<std::size_t> FailuresByDot() const;
    std::string Summary() const;
    ClLegend LegendOf() const;
    void DrawPair(const StFailingPair& Pair);
    void NameCulprits();

    const StEftsPairs& m_Pairs;
    ClPanel m_Panel;
    std::vector<StFailingPair> m_aWorst; ///< the worst first
    ClLegend m_Legend;
    ClSvg m_Svg;
    ClLabels m_Labels;
};

std::vector<StFailingPair> ClDrawing::Worst() const {
    std::vector<StFailingPair> aWorst;
    for (const StFailingPair& Pair : m_Pairs.m_aFailing)
        if (IsDrawable(Pair))
            aWorst.push_back(Pair);
    std::stable_sort(aWorst.begin(), aWorst.end(),
                     [](const auto& a, const auto& b) { return ExcessOf(a) > ExcessOf(b); });
    if (aWorst.size() > cnMostDrawn)
        aWorst.resize(cnMostDrawn);
    return aWorst;
}

std::vector<std::size_t> ClDrawing::FailuresByDot() const {
    std::vector<std::size_t> aCounts(m_Pairs.m_aDots.size(), 0);
    for (const StFailingPair& Pair : m_Pairs.m_aFailing)
        for (const std::size_t nDot : {Pair.m_nFirst, Pair.m_nSecond})
            if (nDot < aCounts.size())
                ++aCounts[nDot];
    return aCounts;
}

std::string ClDrawing::Summary() const {
    const std::size_t nFailing = m_Pairs.m_aFailing.size();
    const std::string sPercent = Decimal(m_Pairs.m_dPercent, 2) + " percent";
    if (nFailing == 0)
        return m_Pairs.m_nAll == 0
                   ? "No distances were judged."
                   : "All " + std::to_string(m_Pairs.m_nAll) +
                         " distances between the dots are within the limits: " + sPercent + ".";
    std::string sWords =
        (nFailing == 1 ? "One distance" : std::to_string(nFailing) + " distances") + " of " +
        std::to_string(m_Pairs.m_nAll) + (nFailing == 1 ? " is" : " are") + " beyond the limits; " +
        sPercent + " are within.";
    if (m_aWorst.size() == 1 && nFailing > 1)
        sWords += " Drawn is the worst one.";
    else if (m_aWorst.size() < nFailing)
        sWords += " Drawn are the worst " + std::to_string(m_aWorst.size()) + ".";
    return sWords;
}

ClLegend ClDrawing::LegendOf() const {
    ClLegend Legend(cRoom.m_dWidth + 20.0);
    if (!m_Pairs.m_aDots.empty())
        Legend.Add([](ClSvg& rSvg, const StPoint& p) { rSvg.Circle(p, cdRing, mark::cszDot); },
                   "dot found");
    if (!m_aWorst.empty())
        Legend.Add(
            [](ClSvg& rSvg, const StPoint& p) {
                rSvg.Line(p - StPoint{6.0, 0.0}, p + StPoint{6.0, 0.0}, mark::cszPair);
            },
            "failing pair");
    if (CountDoubtful(m_Pairs.m_aDots) > 0)
        Legend.Add(DoubtfulSample, "doubtful");
    Legend.AddRemark(Summary());
    return Legend;
}

void ClDrawing::DrawPair(const StFailingPair& Pair) {
    const StDot& First = m_Pairs.m_aDots[Pair.m_nFirst];
    const StDot& Second = m_Pairs.m_aDots[Pair.m_nSecond];
    m_Svg.Line(m_Panel.At(First.m_At), m_Panel.At(Second.m_At), mark::cszPair,
               NameOf(First.m_Place) + " to " + NameOf(Second.m_Place) + ": " +
                   Decimal(Pair.m_dMeasured, 2) + " pixels apart, " +
                   Decimal(Pair.m_dReference, 2) + " expected, error " + Decimal(ErrorOf(Pair), 2) +
                   ", limit " + Decimal(Pair.m_dLimit, 2));
}

/// The dots that take part in most failures, if any in more than its share.
void ClDrawing::NameCulprits() {
    const std::vector<std::size_t> aCounts = FailuresByDot();
    std::vector<std::size_t> aOrder;
    for (std::size_t i = 0; i < aCounts.size(); ++i)
        if (4 * aCounts[i] > aCounts.size() && m_Panel.Holds(m_Pairs.m_aDots[i].m_At))
            aOrder.push_back(i);
    std::stable_sort(aOrder.begin(), aOrder.end(),
                     [&](std::size_t a, std::size_t b) { return aCounts[a] > aCounts[b]; });
    for (std::size_t n = 0; n < std::min(cnMostNamed, aOrder.size()); ++n) {
        const StDot& Dot = m_Pairs.m_aDots[aOrder[n]];
        const std::string sCount = std::to_string(aCounts[aOrder[n]]) + " pairs fail";
        m_Labels.Put(
            m_Svg, m_Panel.At(Dot.m_At), (Dot.m_bDoubtful ? cdDoubtfulReach : cdRing) + 3.0,
            Dot.m_bDoubtful ? sCount : NameOf(Dot.m_Place) + ": " + sCount, mark::cszWarning);
    }
}

} // namespace

double EftsLimit(double dReference) {
    constexpr double cdLong = 35.0; // where both limits meet
    constexpr double cdAbsolute = 0.35;
    constexpr double cdRelative = 0.01;
    return dReference < cdLong ? cdAbsolute : dReference * cdRelative;
}

std::string DrawEftsPairs(const StEftsPairs& Pairs, const std::string& sPrefix) {
    if (!ClPanel(Pairs.m_Corrected, cRoom).IsDrawable())
        return SentenceAlone(sPrefix, cszTitle, "The corrected image has no size to draw it in");
    return ClDrawing(Pairs, sPrefix).Draw();
}

} // namespace report
