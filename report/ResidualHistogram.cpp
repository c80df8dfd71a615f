#include "report/ResidualHistogram.h"

#include "report/DotMarks.h"
#include "report/Markup.h"
#include "report/RoundNumbers.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace report {

namespace {

constexpr const char* cszTitle = "Residuals by their length";
constexpr double cdPixel = 50.8;     ///< micrometres of a pixel of 500 dots per inch
constexpr double cdMostLength = 1e6; ///< micrometres: no plate is larger than a metre
constexpr double cdLeastBin = 0.01;
constexpr int cnMostBins = 20;
constexpr int cnMostTicks = 7;
constexpr StBox cPanel{40.0, 42.0, 344.0, 140.0};
constexpr double cdWidth = 400.0;
constexpr double cdHeight = 262.0;
constexpr double cdBorder = 6.0; ///< between words and the border: bold ones are wider
constexpr double cdBetweenWords = 14.0;
constexpr double cdPixelAxis = 36.0; ///< below the panel

using Lengths = std::vector<double>;

Lengths Usable(const Lengths& aAll) {
    Lengths aUsable;
    for (const double d : aAll)
        if (d >= 0.0 && d <= cdMostLength)
            aUsable.push_back(d);
    return aUsable;
}

double MeanOf(const Lengths& aLengths) {
    const double dCount = static_cast<double>(aLengths.size());
    return std::accumulate(aLengths.begin(), aLengths.end(), 0.0,
                           [&](double dSum, double d) { return dSum + d / dCount; });
}

std::string InBoth(double dMicrometres) {
    return Decimal(dMicrometres, 1) + " \xC2\xB5m (" + Decimal(dMicrometres / cdPixel, 2) +
           " pixels)";
}

class ClDrawing {
public:
    ClDrawing(const Lengths& aAll, const std::string& sPrefix)
        : m_aLengths(Usable(aAll)), m_nLeftOut(aAll.size() - m_aLengths.size()),
          m_dMean(MeanOf(m_aLengths)),
          m_dMost(*std::max_element(m_aLengths.begin(), m_aLengths.end())),
          m_dBin(m_dMost > 0.0 ? std::max(RoundUp(m_dMost / (cnMostBins - 1)), cdLeastBin) : 1.0),
          m_aCounts(CountInBins()), m_nMost(*std::max_element(m_aCounts.begin(), m_aCounts.end())),
          m_Svg(sPrefix, cdWidth, cdHeight, cszTitle, Description()) {}

    std::string Draw() {
        DrawCounts();
        DrawBars();
        DrawAxis(1.0, cPanel.Bottom(), "length on the plate, \xC2\xB5m");
        DrawAxis(cdPixel, cPanel.Bottom() + cdPixelAxis, "the same in pixels at 500 dpi");
        DrawFigures();
        return m_Svg.Document();
    }

private:
    double End() const { return m_dBin * static_cast<double>(m_aCounts.size()); }
    double X(double dMicrometres) const {
        return cPanel.m_dX + cPanel.m_dWidth * (dMicrometres / End());
    }
    double Y(std::size_t nCount) const {
        return cPanel.Bottom() -
               cPanel.m_dHeight * static_cast<double>(nCount) / static_cast<double>(m_nMost);
    }

    std::vector<std::size_t> CountInBins() const;
    std::string Description() const;
    void DrawCounts();
    void DrawBars();
    void DrawAxis(double dUnit, double y, const char* szName);
    StBox WordsAt(double x, const std::string& sWords) const;
    void DrawFigures();

    Lengths m_aLengths;
    std::size_t m_nLeftOut;
    double m_dMean;
    double m_dMost;
    double m_dBin;
    std::vector<std::size_t> m_aCounts;
    std::size_t m_nMost;
    ClSvg m_Svg;
};

std::vector<std::size_t> ClDrawing::CountInBins() const {
    const auto bin = [&](double d) { return static_cast<std::size_t>(d / m_dBin); };
    std::vector<std::size_t> aCounts(bin(m_dMost) + 1, 0);
    for (const double d : m_aLengths)
        ++aCounts[bin(d)];
    return aCounts;
}

std::string ClDrawing::Description() const {
    std::string sWords = Count(m_aLengths.size(), "residual", "residuals") + ", mean " +
                         InBoth(m_dMean) + ", maximum " + InBoth(m_dMost) + ".";
    if (m_nLeftOut > 0)
        sWords += " Left out: " + Count(m_nLeftOut, "value", "values") + " that are no length.";
    return sWords;
}

void ClDrawing::DrawCounts() {
    for (const double d : RoundTicks(0.0, static_cast<double>(m_nMost), 5)) {
        if (d != std::floor(d))
            continue;
        const double y = Y(static_cast<std::size_t>(d));
        m_Svg.Line({cPanel.m_dX, y}, {cPanel.Right(), y}, mark::cszRule);
        m_Svg.Text({cPanel.m_dX - 6.0, y + 4.0}, Decimal(d, 0), mark::cszQuiet, EAnchor::eEnd);
    }
    m_Svg.UprightText({12.0, cPanel.Middle().m_dY}, "dots", mark::cszQuiet);
}

void ClDrawing::DrawBars() {
    for (std::size_t i = 0; i < m_aCounts.size(); ++i) {
        if (m_aCounts[i] == 0)
            continue;
        const double dFrom = m_dBin * static_cast<double>(i);
        const int nDecimals = DecimalsOf(m_dBin);
        m_Svg.Rect({X(dFrom), Y(m_aCounts[i]), X(dFrom + m_dBin) - X(dFrom),
                    cPanel.Bottom() - Y(m_aCounts[i])},
                   mark::cszBar,
                   Count(m_aCounts[i], "dot", "dots") + " from " + Decimal(dFrom, nDecimals) +
                       " to " + Decimal(dFrom + m_dBin, nDecimals) + " \xC2\xB5m");
    }
}

void ClDrawing::DrawAxis(double dUnit, double y, const char* szName) {
    const std::vector<double> aTicks = RoundTicks(0.0, End() / dUnit, cnMostTicks);
    const int nDecimals = aTicks.size() > 1 ? DecimalsOf(aTicks[1]) : 0;
    m_Svg.Line({cPanel.m_dX, y}, {cPanel.Right(), y}, mark::cszAxis);
    for (const double d : aTicks) {
        m_Svg.Line({X(d * dUnit), y}, {X(d * dUnit), y + 4.0}, mark::cszAxis);
        const std::string sNumber = Decimal(d, nDecimals);
        m_Svg.Text({std::min(X(d * dUnit), cdWidth - 0.5 * TextWidth(sNumber)), y + 15.0}, sNumber,
                   mark::cszQuiet, EAnchor::eMiddle);
    }
    m_Svg.Text({cPanel.Right(), y + 28.0}, szName, mark::cszQuiet, EAnchor::eEnd);
}

/// Words about a place, as far within the drawing as they are.
StBox ClDrawing::WordsAt(double x, const std::string& sWords) const {
    constexpr double cdBold = 1.15; // letters as wide as of usual ones
    const double dWidth = cdBold * TextWidth(sWords);
    const double dMost = std::max(cdBorder, cdWidth - cdBorder - dWidth);
    return {std::clamp(x - 0.5 * dWidth, cdBorder, dMost), 0.0, dWidth, 0.0};
}

/// The words of the maximum stand in the line above where those of the mean leave no room.
void ClDrawing::DrawFigures() {
    const std::string sMean = "mean " + InBoth(m_dMean);
    const std::string sMost = "maximum " + InBoth(m_dMost);
    const StBox Mean = WordsAt(X(m_dMean), sMean);
    const StBox Most = WordsAt(X(m_dMost), sMost);
    const double dBaseLine = cPanel.m_dY - 8.0;
    const bool bAbove = Most.m_dX < Mean.Right() + cdBetweenWords;
    const bool bCovered = X(m_dMost) < Mean.Right() + 3.0;
    m_Svg.Line({X(m_dMean), cPanel.m_dY - 4.0}, {X(m_dMean), cPanel.Bottom()}, mark::cszMean);
    m_Svg.Line({X(m_dMost), cPanel.m_dY - (bAbove && !bCovered ? 19.0 : 4.0)},
               {X(m_dMost), cPanel.Bottom()}, mark::cszMaximum);
    m_Svg.Text({Mean.Middle().m_dX, dBaseLine}, sMean, mark::cszStrong, EAnchor::eMiddle);
    m_Svg.Text({Most.Middle().m_dX, dBaseLine - (bAbove ? 15.0 : 0.0)}, sMost, mark::cszStrong,
               EAnchor::eMiddle);
}

} // namespace

std::string DrawResidualHistogram(const std::vector<double>& aMicrometres,
                                  const std::string& sPrefix) {
    if (Usable(aMicrometres).empty())
        return SentenceAlone(sPrefix, cszTitle, "No residuals are known");
    return ClDrawing(aMicrometres, sPrefix).Draw();
}

} // namespace report
