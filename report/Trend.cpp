#include "report/Trend.h"

#include "report/DotMarks.h"
#include "report/Markup.h"
#include "report/RoundNumbers.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr double cdWidth = 400.0;
constexpr double cdHeight = 176.0;
constexpr StBox cPanel{46.0, 26.0, 240.0, 118.0}; // beside it 16 letters: "at least 0.9900"
constexpr double cdLine = 13.0;                   ///< between words beside the panel
constexpr double cdMostName = 120.0;
constexpr std::size_t cnMostTold = 10;
constexpr double cdMostValue = 1e12;

bool IsValue(double d) {
    return std::fabs(d) <= cdMostValue;
}

std::vector<double> ValuesOf(const StTrend& Trend) {
    std::vector<double> aValues;
    for (const StTrendPoint& Point : Trend.m_aPoints)
        if (IsValue(Point.m_dValue))
            aValues.push_back(Point.m_dValue);
    std::sort(aValues.begin(), aValues.end());
    return aValues;
}

double MedianOf(const std::vector<double>& aSorted) {
    const std::size_t nUpper = aSorted.size() / 2;
    return aSorted.size() % 2 == 1 ? aSorted[nUpper]
                                   : 0.5 * aSorted[nUpper - 1] + 0.5 * aSorted[nUpper];
}

/// A line across the panel with words beside it.
struct StLevel {
    double m_dValue;
    const char* m_szName;
    const char* m_szClass;
    double m_dBaseLine; ///< of the words
};

class ClDrawing {
public:
    ClDrawing(const StTrend& Trend, const std::string& sPrefix)
        : m_Trend(Trend), m_aSorted(ValuesOf(Trend)), m_aLevels(LevelsOf()),
          m_Svg(sPrefix, cdWidth, cdHeight, Title(), Description()),
          m_Labels({cPanel.m_dX, 14.0, cPanel.m_dWidth, cPanel.Bottom() - 14.0}) {
        FindRange();
    }

    std::string Draw() {
        m_Svg.Text({4.0, 10.0}, Fitted(Title(), cdWidth - 4.0), mark::cszStrong);
        DrawScale();
        SpreadWords();
        for (const StLevel& Level : m_aLevels)
            DrawLevel(Level);
        NameOutliers();
        for (std::size_t i = 0; i < m_Trend.m_aPoints.size(); ++i)
            DrawPoint(i);
        return m_Svg.Document();
    }

private:
    bool IsOutlier(const StTrendPoint& Point) const;
    double Radius() const { return m_Trend.m_aPoints.size() > 150 ? 1.4 : 2.4; }
    double OutlierRadius() const { return Radius() + 2.0; }
    double X(std::size_t i) const {
        const double dCount = static_cast<double>(m_Trend.m_aPoints.size());
        return cPanel.m_dX + cPanel.m_dWidth * (static_cast<double>(i) + 0.5) / dCount;
    }
    double Y(double dValue) const {
        return cPanel.Bottom() - cPanel.m_dHeight * ((dValue - m_dLow) / (m_dHigh - m_dLow));
    }
    std::string Told(double dValue) const { return Decimal(dValue, m_Trend.m_nDecimals); }

    std::string Title() const;
    std::string Description() const;
    std::string OutlierWords() const;
    std::vector<StLevel> LevelsOf() const;
    void FindRange();
    void SpreadWords();
    void DrawScale();
    void DrawLevel(const StLevel& Level);
    void DrawPoint(std::size_t i);
    void NameOutliers();

    const StTrend& m_Trend;
    std::vector<double> m_aSorted;
    std::vector<StLevel> m_aLevels;
    ClSvg m_Svg;
    ClLabels m_Labels;
    double m_dLow = 0.0;
    double m_dHigh = 1.0;
};

bool ClDrawing::IsOutlier(const StTrendPoint& Point) const {
    if (!IsValue(Point.m_dValue))
        return false;
    return Point.m_bOutlier || (m_Trend.m_dLower && Point.m_dValue < *m_Trend.m_dLower) ||
           (m_Trend.m_dUpper && Point.m_dValue > *m_Trend.m_dUpper);
}

std::string ClDrawing::Title() const {
    return m_Trend.m_sUnit.empty() ? m_Trend.m_sFigure : m_Trend.m_sFigure + ", " + m_Trend.m_sUnit;
}

std::string ClDrawing::Description() const {
    const std::size_t nAbsent = m_Trend.m_aPoints.size() - m_aSorted.size();
    std::string sWords =
        Count(m_Trend.m_aPoints.size(), "scanner", "scanners") + " in the order of their names; ";
    sWords += m_aSorted.empty()
                  ? "no values"
                  : "values from " + Told(m_aSorted.front()) + " to " + Told(m_aSorted.back());
    for (const StLevel& Level : m_aLevels)
        sWords += std::string(Level.m_szClass == mark::cszLimit ? ", limit: " : ", ") +
                  Level.m_szName + " " + Told(Level.m_dValue);
    if (nAbsent > 0)
        sWords += "; " + Count(nAbsent, "scanner has", "scanners have") + " no value";
    return sWords + OutlierWords() + ".";
}

std::string ClDrawing::OutlierWords() const {
    std::string sWords;
    std::size_t nTold = 0;
    for (const StTrendPoint& Point : m_Trend.m_aPoints)
        if (IsOutlier(Point) && nTold++ < cnMostTold)
            sWords +=
                (nTold == 1 ? "; outliers: " : ", ") + Point.m_sName + " " + Told(Point.m_dValue);
    return nTold > cnMostTold ? sWords + " and others" : sWords;
}

std::vector<StLevel> ClDrawing::LevelsOf() const {
    std::vector<StLevel> aLevels;
    if (m_Trend.m_dLower && IsValue(*m_Trend.m_dLower))
        aLevels.push_back({*m_Trend.m_dLower, "at least", mark::cszLimit, 0.0});
    if (m_Trend.m_dUpper && IsValue(*m_Trend.m_dUpper))
        aLevels.push_back({*m_Trend.m_dUpper, "at most", mark::cszLimit, 0.0});
    if (!m_aSorted.empty())
        aLevels.push_back({MedianOf(m_aSorted), "median", mark::cszMean, 0.0});
    return aLevels;
}

/// All values and lines, and a little more to each side.
void ClDrawing::FindRange() {
    std::vector<double> aAll = m_aSorted;
    for (const StLevel& Level : m_aLevels)
        aAll.push_back(Level.m_dValue);
    if (aAll.empty())
        return;
    const auto [least, most] = std::minmax_element(aAll.begin(), aAll.end());
    const double dSpan = *most - *least;
    const double dMargin = dSpan > 0.0 ? 0.06 * dSpan : std::max(1.0, 0.1 * std::fabs(*most));
    m_dLow = *least - dMargin;
    m_dHigh = *most + dMargin;
}

/// Words stand at their lines, and where these are close, a line apart and within the drawing.
void ClDrawing::SpreadWords() {
    std::sort(m_aLevels.begin(), m_aLevels.end(),
              [](const StLevel& a, const StLevel& b) { return a.m_dValue > b.m_dValue; });
    double dLeast = cPanel.m_dY;
    for (StLevel& rLevel : m_aLevels) {
        rLevel.m_dBaseLine = std::max(Y(rLevel.m_dValue) + 4.0, dLeast);
        dLeast = rLevel.m_dBaseLine + cdLine;
    }
    double dMost = cPanel.Bottom() + 4.0;
    for (auto level = m_aLevels.rbegin(); level != m_aLevels.rend(); ++level) {
        level->m_dBaseLine = std::min(level->m_dBaseLine, dMost);
        dMost = level->m_dBaseLine - cdLine;
    }
}

void ClDrawing::DrawScale() {
    const std::vector<double> aTicks = RoundTicks(m_dLow, m_dHigh, 5);
    const int nDecimals = aTicks.size() > 1 ? DecimalsOf(aTicks[1] - aTicks[0]) : 0;
    for (const double d : aTicks) {
        m_Svg.Line({cPanel.m_dX, Y(d)}, {cPanel.Right(), Y(d)}, mark::cszRule);
        const std::string sNumber = Decimal(d, nDecimals);
        if (TextWidth(sNumber) <= cPanel.m_dX - 6.0)
            m_Svg.Text({cPanel.m_dX - 6.0, Y(d) + 4.0}, sNumber, mark::cszQuiet, EAnchor::eEnd);
    }
    m_Svg.Line({cPanel.m_dX, cPanel.Bottom()}, {cPanel.Right(), cPanel.Bottom()}, mark::cszAxis);
    const std::size_t nPoints = m_Trend.m_aPoints.size();
    const double dBaseLine = cPanel.Bottom() + 20.0;
    if (nPoints == 0) {
        DrawSentence(m_Svg, cPanel, "No scanners.");
        return;
    }
    m_Svg.Text({cPanel.Middle().m_dX, dBaseLine},
               nPoints == 1
                   ? "one scanner"
                   : "scanners in the order of their names, 1 to " + std::to_string(nPoints),
               mark::cszQuiet, EAnchor::eMiddle);
}

void ClDrawing::DrawLevel(const StLevel& Level) {
    const double y = Y(Level.m_dValue);
    m_Svg.Line({cPanel.m_dX, y}, {cPanel.Right(), y}, Level.m_szClass);
    m_Svg.Text({cPanel.Right() + 6.0, Level.m_dBaseLine},
               Fitted(std::string(Level.m_szName) + " " + Told(Level.m_dValue),
                      cdWidth - cPanel.Right() - 6.0),
               mark::cszText);
}

void ClDrawing::DrawPoint(std::size_t i) {
    const StTrendPoint& Point = m_Trend.m_aPoints[i];
    if (!IsValue(Point.m_dValue)) {
        m_Svg.Cross({X(i), cPanel.Bottom() + 6.0}, 2.5, mark::cszAbsent,
                    Point.m_sName + ": no value");
        return;
    }
    const StPoint Place{X(i), Y(Point.m_dValue)};
    const std::string sTitle = Point.m_sName + ": " + Told(Point.m_dValue);
    if (IsOutlier(Point))
        m_Svg.Diamond(Place, OutlierRadius(), mark::cszOutlier, sTitle);
    else
        m_Svg.Circle(Place, Radius(), mark::cszPoint, sTitle);
}

/// The furthest from the median first: where there is room for some names only, theirs.
void ClDrawing::NameOutliers() {
    std::vector<std::size_t> aOrder;
    for (std::size_t i = 0; i < m_Trend.m_aPoints.size(); ++i) {
        const StTrendPoint& Point = m_Trend.m_aPoints[i];
        if (IsOutlier(Point))
            aOrder.push_back(i);
        if (IsValue(Point.m_dValue))
            m_Labels.Avoid(
                Around({X(i), Y(Point.m_dValue)}, IsOutlier(Point) ? OutlierRadius() : Radius()));
    }
    const auto off = [&](std::size_t i) {
        return std::fabs(m_Trend.m_aPoints[i].m_dValue - MedianOf(m_aSorted));
    };
    std::stable_sort(aOrder.begin(), aOrder.end(),
                     [&](std::size_t a, std::size_t b) { return off(a) > off(b); });
    for (const std::size_t i : aOrder)
        m_Labels.Put(m_Svg, {X(i), Y(m_Trend.m_aPoints[i].m_dValue)}, OutlierRadius() + 3.5,
                     Fitted(m_Trend.m_aPoints[i].m_sName, cdMostName), mark::cszWarning);
}

} // namespace

std::string DrawTrend(const StTrend& Trend, const std::string& sPrefix) {
    return ClDrawing(Trend, sPrefix).Draw();
}

} // namespace report
