#include "report/ErrorMap.h"

#include "report/DotMarks.h"
#include "report/Hull.h"
#include "report/Markup.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace report {

namespace {

using diagnosis::StErrorMap;

constexpr const char* cszTitle = "Expected error of the corrected image";
constexpr double cdWidth = 400.0;
constexpr double cdHeight = 400.0;
constexpr StBox cRoom{8.0, 8.0, 248.0, 386.0};
constexpr double cdLegendLeft = 272.0;
constexpr double cdSwatch = 18.0;

/// Where a class ends and the next one begins, pixels. 0.35 is what a short distance may be off
/// by the EFTS.
constexpr std::array<double, 7> aLimits{0.05, 0.1, 0.2, 0.35, 0.5, 1.0, 2.0};
constexpr int cnLevels = static_cast<int>(aLimits.size()) + 1;
constexpr int cnUnknown = -1;

int LevelOf(double dError) {
    if (!(dError >= 0.0))
        return cnUnknown;
    return static_cast<int>(std::upper_bound(aLimits.begin(), aLimits.end(), dError) -
                            aLimits.begin());
}

std::string ErrorWords(double dError) {
    constexpr double cdMost = 99.0; // more than the image has places for
    if (!(dError >= 0.0))
        return "none";
    return dError > cdMost ? "> 99" : Decimal(dError, 2);
}

std::string LevelClass(int nLevel) {
    return nLevel == cnUnknown ? mark::cszUnknown : mark::cszLevel + std::to_string(nLevel);
}

std::string LevelWords(int nLevel) {
    const auto limit = [&](int n) { return Decimal(aLimits.at(static_cast<std::size_t>(n)), 2); };
    if (nLevel == 0)
        return "below " + limit(0);
    if (nLevel == cnLevels - 1)
        return limit(nLevel - 1) + " and more";
    return limit(nLevel - 1) + " to " + limit(nLevel);
}

bool IsWhole(const StErrorMap& Errors) {
    return Errors.m_aErrors.size() ==
           static_cast<std::size_t>(StErrorMap::cnColumns) * StErrorMap::cnRows;
}

/// Pixels of the same size in both directions.
StFrame FrameOf(const StErrorView& View) {
    return {View.m_Errors.m_nWidth, View.m_Errors.m_nHeight, {1.0, 1.0}, View.m_bUpward};
}

class ClDrawing {
public:
    ClDrawing(const StErrorView& View, const std::string& sPrefix)
        : m_View(View), m_Errors(View.m_Errors), m_Panel(FrameOf(View), cRoom),
          m_Svg(sPrefix, cdWidth, cdHeight, cszTitle, Description()) {}

    std::string Draw() {
        for (int nRow = 0; nRow < StErrorMap::cnRows; ++nRow)
            DrawRow(nRow);
        DrawContours();
        DrawHull();
        m_Svg.Rect(m_Panel.Box(), mark::cszFrame);
        DrawNumbers();
        DrawLevels();
        DrawFigures();
        return m_Svg.Document();
    }

private:
    static constexpr int cnLastColumn = StErrorMap::cnColumns - 1;
    static constexpr int cnLastRow = StErrorMap::cnRows - 1;

    int LevelAt(int nColumn, int nRow) const { return LevelOf(m_Errors.At(nColumn, nRow)); }

    /// The cell of a place reaches half the way to its neighbours. Its left and upper sides, and,
    /// with the next place, its right and lower ones.
    double Side(int nPlace, int nLast) const {
        return std::clamp((nPlace - 0.5) / nLast, 0.0, 1.0);
    }
    double Left(int nColumn) const {
        return m_Panel.Box().m_dX + m_Panel.Box().m_dWidth * Side(nColumn, cnLastColumn);
    }
    double Upper(int nRow) const {
        const StBox& Box = m_Panel.Box();
        const double dDown = Box.m_dHeight * Side(nRow, cnLastRow);
        return m_View.m_bUpward ? Box.Bottom() - dDown : Box.m_dY + dDown;
    }

    std::string Description() const;
    void DrawRow(int nRow);
    void DrawRun(int nRow, int nFirst, int nEnd);
    void DrawContours();
    void DrawHull();
    void DrawNumbers();
    void DrawNumber(int nColumn, int nRow);
    void DrawLevels();
    void DrawFigures();

    const StErrorView& m_View;
    const StErrorMap& m_Errors;
    ClPanel m_Panel;
    ClSvg m_Svg;
};

std::string ClDrawing::Description() const {
    return "Expected error in pixels of the corrected image: root mean square amid the dots " +
           ErrorWords(m_Errors.m_dInside) + ", beyond them to one side " +
           ErrorWords(m_Errors.m_dEdge) + ", in the corners beyond them " +
           ErrorWords(m_Errors.m_dCorner) + ". Beyond the hull of the dots it is extrapolated.";
}

/// Neighbours of the same class are one rectangle.
void ClDrawing::DrawRow(int nRow) {
    int nFirst = 0;
    for (int nColumn = 1; nColumn <= StErrorMap::cnColumns; ++nColumn)
        if (nColumn == StErrorMap::cnColumns || LevelAt(nColumn, nRow) != LevelAt(nFirst, nRow)) {
            DrawRun(nRow, nFirst, nColumn);
            nFirst = nColumn;
        }
}

void ClDrawing::DrawRun(int nRow, int nFirst, int nEnd) {
    const double dTop = std::min(Upper(nRow), Upper(nRow + 1));
    m_Svg.Rect(
        {Left(nFirst), dTop, Left(nEnd) - Left(nFirst), std::fabs(Upper(nRow + 1) - Upper(nRow))},
        LevelClass(LevelAt(nFirst, nRow)).c_str());
}

void ClDrawing::DrawContours() {
    Points aEnds;
    for (int nRow = 0; nRow <= cnLastRow; ++nRow)
        for (int nColumn = 0; nColumn <= cnLastColumn; ++nColumn) {
            const int nLevel = LevelAt(nColumn, nRow);
            const StPoint Corner{Left(nColumn + 1), Upper(nRow + 1)};
            if (nColumn < cnLastColumn && LevelAt(nColumn + 1, nRow) != nLevel)
                aEnds.insert(aEnds.end(), {{Corner.m_dX, Upper(nRow)}, Corner});
            if (nRow < cnLastRow && LevelAt(nColumn, nRow + 1) != nLevel)
                aEnds.insert(aEnds.end(), {{Left(nColumn), Corner.m_dY}, Corner});
        }
    m_Svg.Segments(aEnds, mark::cszContour);
}

void ClDrawing::DrawHull() {
    Points aCorners;
    for (const StPoint& Dot : m_View.m_aDots)
        if (m_Panel.Holds(Dot))
            aCorners.push_back(m_Panel.At(Dot));
    const Points aHull = ConvexHull(aCorners);
    m_Svg.Polygon(aHull, mark::cszCasing);
    m_Svg.Polygon(aHull, mark::cszHull);
}

void ClDrawing::DrawNumbers() {
    for (const int nRow : {0, cnLastRow / 2, cnLastRow})
        for (const int nColumn : {0, cnLastColumn / 2, cnLastColumn})
            DrawNumber(nColumn, nRow);
}

/// At the border it stands within the image.
void ClDrawing::DrawNumber(int nColumn, int nRow) {
    const std::string sNumber = ErrorWords(m_Errors.At(nColumn, nRow));
    const double dHalf = 0.5 * TextWidth(sNumber) + 3.0;
    const StBox& Box = m_Panel.Box();
    const double dAcross = static_cast<double>(nColumn) / cnLastColumn;
    const double dDown = static_cast<double>(nRow) / cnLastRow;
    const double x = std::clamp(Box.m_dX + Box.m_dWidth * dAcross, Box.m_dX + dHalf + 3.0,
                                Box.Right() - dHalf - 3.0);
    const double y = std::clamp(Box.m_dY + Box.m_dHeight * (m_View.m_bUpward ? 1.0 - dDown : dDown),
                                Box.m_dY + 11.0, Box.Bottom() - 11.0);
    m_Svg.Rect({x - dHalf, y - 8.0, 2.0 * dHalf, 16.0}, mark::cszPlate);
    m_Svg.Text({x, y + 4.0}, sNumber, mark::cszText, EAnchor::eMiddle);
}

void ClDrawing::DrawLevels() {
    m_Svg.Text({cdLegendLeft, 18.0}, "expected error,", mark::cszStrong);
    m_Svg.Text({cdLegendLeft, 32.0}, "pixels", mark::cszStrong);
    for (int nLevel = 0; nLevel < cnLevels; ++nLevel) {
        const double y = 42.0 + cdSwatch * (cnLevels - 1 - nLevel);
        m_Svg.Rect({cdLegendLeft, y, cdSwatch, cdSwatch}, LevelClass(nLevel).c_str());
        m_Svg.Text({cdLegendLeft + cdSwatch + 6.0, y + 13.0}, LevelWords(nLevel), mark::cszText);
    }
    for (int n = 0; n < cnLevels; ++n)
        m_Svg.Rect({cdLegendLeft, 42.0 + cdSwatch * n, cdSwatch, cdSwatch}, mark::cszContour);
}

void ClDrawing::DrawFigures() {
    double y = 210.0;
    m_Svg.Line({cdLegendLeft, y}, {cdLegendLeft + cdSwatch, y}, mark::cszHull);
    m_Svg.Text({cdLegendLeft + cdSwatch + 6.0, y + 4.0}, "hull of the", mark::cszText);
    m_Svg.Text({cdLegendLeft + cdSwatch + 6.0, y + 18.0}, "dots; outside", mark::cszText);
    m_Svg.Text({cdLegendLeft + cdSwatch + 6.0, y + 32.0}, "extrapolated", mark::cszText);
    y += 62.0;
    m_Svg.Text({cdLegendLeft, y}, "root mean square", mark::cszStrong);
    for (const auto& [szZone, dError] : {std::pair("amid the dots", m_Errors.m_dInside),
                                         std::pair("to one side", m_Errors.m_dEdge),
                                         std::pair("in corners", m_Errors.m_dCorner)}) {
        y += 16.0;
        m_Svg.Text({cdLegendLeft, y}, ErrorWords(dError), mark::cszText);
        m_Svg.Text({cdLegendLeft + 38.0, y}, szZone, mark::cszQuiet);
    }
}

} // namespace

std::string DrawErrorMap(const StErrorView& View, const std::string& sPrefix) {
    if (!IsWhole(View.m_Errors) || !ClPanel(FrameOf(View), cRoom).IsDrawable())
        return SentenceAlone(sPrefix, cszTitle, "No expected error is known");
    return ClDrawing(View, sPrefix).Draw();
}

} // namespace report
