#include "report/DistortionField.h"

#include "report/DotMarks.h"
#include "report/Markup.h"
#include "report/RoundNumbers.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr const char* cszTitle = "Distortion: the corrected image's grid as it lies in the capture";
constexpr double cdWidth = 400.0;
constexpr double cdLeft = 46.0;
constexpr double cdTop = 14.0;
constexpr double cdPanelWidth = 338.0;
constexpr double cdAxis = 34.0;
constexpr double cdLongest = 0.7; ///< of a step: the largest displacement as drawn, before rounding
constexpr double cdMostMagnification = 1000.0;
constexpr double cdPixel = 25.4 / 500.0; ///< millimetres

bool IsPlace(const StPoint& p) {
    return std::isfinite(p.m_dX) && std::isfinite(p.m_dY);
}

bool IsGrid(const StWarpGrid& Grid) {
    return Grid.m_nColumns >= 2 && Grid.m_nRows >= 2 && Grid.m_Step.m_dX > 0.0 &&
           Grid.m_Step.m_dY > 0.0 && IsPlace(Grid.m_Step) &&
           Grid.m_aRaw.size() ==
               static_cast<std::size_t>(Grid.m_nColumns) * static_cast<std::size_t>(Grid.m_nRows);
}

/// The places that a straight scanner of the nominal resolution would have, raw pixels, the mean of
/// those known agreeing with the mean of what was found.
Points NominalOf(const StWarpGrid& Grid) {
    Points aNominal;
    for (int nRow = 0; nRow < Grid.m_nRows; ++nRow)
        for (int nColumn = 0; nColumn < Grid.m_nColumns; ++nColumn)
            aNominal.push_back({nColumn * Grid.m_Step.m_dX * Grid.m_Capture.m_Density.m_dX,
                                nRow * Grid.m_Step.m_dY * Grid.m_Capture.m_Density.m_dY});
    StPoint Sum;
    double dCount = 0.0;
    for (std::size_t i = 0; i < aNominal.size(); ++i)
        if (IsPlace(Grid.m_aRaw[i])) {
            Sum = Sum + (Grid.m_aRaw[i] - aNominal[i]);
            dCount += 1.0;
        }
    for (StPoint& rPlace : aNominal)
        rPlace = rPlace + StPoint{Sum.m_dX / dCount, Sum.m_dY / dCount};
    return aNominal;
}

class ClDrawing {
public:
    ClDrawing(const StWarpGrid& Grid, const std::string& sPrefix)
        : m_Grid(Grid), m_aNominal(NominalOf(Grid)),
          m_Panel(Grid.m_Capture,
                  {cdLeft, cdTop, cdPanelWidth, HeightFor(Grid.m_Capture, cdPanelWidth)}),
          m_dLargest(Largest()), m_dMagnify(Magnification()), m_Legend(LegendOf()),
          m_Svg(sPrefix, cdWidth, m_Panel.Box().Bottom() + cdAxis + m_Legend.Height(), cszTitle,
                Description()) {}

    std::string Draw() {
        DrawRawAxes(m_Svg, m_Panel, m_Grid.m_Capture);
        DrawGrid(0.0, mark::cszNominal);
        DrawGrid(m_dMagnify, mark::cszActual);
        m_Legend.Draw(m_Svg, {cdLeft, m_Panel.Box().Bottom() + cdAxis - 2.0});
        return m_Svg.Document();
    }

private:
    std::size_t Index(int nColumn, int nRow) const {
        return static_cast<std::size_t>(nRow) * static_cast<std::size_t>(m_Grid.m_nColumns) +
               static_cast<std::size_t>(nColumn);
    }
    /// Millimetres on the plate.
    double Displacement(std::size_t i) const {
        return Micrometres(m_Grid.m_aRaw[i] - m_aNominal[i], m_Grid.m_Capture.m_Density) / 1000.0;
    }
    double Largest() const;
    double Magnification() const;
    std::string LargestWords() const;
    std::string MagnifiedWords() const;
    ClLegend LegendOf() const;
    std::string Description() const;

    StPoint PlaceOf(std::size_t i, double dMagnify) const;
    void DrawGrid(double dMagnify, const char* szClass);
    void DrawLines(const Points& aPlaces, const char* szClass);

    const StWarpGrid& m_Grid;
    Points m_aNominal;
    ClPanel m_Panel;
    double m_dLargest; ///< millimetres
    double m_dMagnify;
    ClLegend m_Legend;
    ClSvg m_Svg;
};

double ClDrawing::Largest() const {
    double dLargest = 0.0;
    for (std::size_t i = 0; i < m_aNominal.size(); ++i)
        if (std::isfinite(Displacement(i)))
            dLargest = std::max(dLargest, Displacement(i));
    return dLargest;
}

double ClDrawing::Magnification() const {
    const double dStep = std::min(m_Grid.m_Step.m_dX, m_Grid.m_Step.m_dY);
    if (!(m_dLargest > 0.0))
        return 1.0;
    return RoundDown(std::clamp(cdLongest * dStep / m_dLargest, 1.0, cdMostMagnification));
}

std::string ClDrawing::LargestWords() const {
    return "largest displacement " + Decimal(m_dLargest, 3) + " mm, " +
           Decimal(m_dLargest / cdPixel, 1) + " pixels at 500 dpi";
}

std::string ClDrawing::MagnifiedWords() const {
    return m_dMagnify > 1.0 ? "displacements drawn " + Decimal(m_dMagnify, 0) + " times as large"
                            : "displacements drawn as they are";
}

ClLegend ClDrawing::LegendOf() const {
    const auto line = [](const char* szClass) {
        return [szClass](ClSvg& rSvg, const StPoint& p) {
            rSvg.Line(p - StPoint{6.0, 0.0}, p + StPoint{6.0, 0.0}, szClass);
        };
    };
    ClLegend Legend(cdWidth - cdLeft);
    Legend.Add(line(mark::cszActual), "in the capture");
    Legend.Add(line(mark::cszNominal), "straight, at the nominal resolution");
    Legend.AddRemark(MagnifiedWords() + "; " + LargestWords());
    return Legend;
}

std::string ClDrawing::Description() const {
    return "A regular grid of the corrected image as the calibration takes it from the capture, "
           "against a straight one of the nominal resolution: " +
           LargestWords() + "; " + MagnifiedWords() + ".";
}

StPoint ClDrawing::PlaceOf(std::size_t i, double dMagnify) const {
    const StPoint Off = m_Grid.m_aRaw[i] - m_aNominal[i];
    return m_Panel.At(dMagnify > 0.0
                          ? m_aNominal[i] + StPoint{dMagnify * Off.m_dX, dMagnify * Off.m_dY}
                          : m_aNominal[i]);
}

void ClDrawing::DrawGrid(double dMagnify, const char* szClass) {
    for (int nRow = 0; nRow < m_Grid.m_nRows; ++nRow) {
        Points aPlaces;
        for (int nColumn = 0; nColumn < m_Grid.m_nColumns; ++nColumn)
            aPlaces.push_back(PlaceOf(Index(nColumn, nRow), dMagnify));
        DrawLines(aPlaces, szClass);
    }
    for (int nColumn = 0; nColumn < m_Grid.m_nColumns; ++nColumn) {
        Points aPlaces;
        for (int nRow = 0; nRow < m_Grid.m_nRows; ++nRow)
            aPlaces.push_back(PlaceOf(Index(nColumn, nRow), dMagnify));
        DrawLines(aPlaces, szClass);
    }
}

/// Broken where a place is none, or beyond the drawing.
void ClDrawing::DrawLines(const Points& aPlaces, const char* szClass) {
    const StBox View = m_Svg.View();
    Points aRun;
    for (const StPoint& Place : aPlaces)
        if (Place.m_dX >= 0.0 && Place.m_dY >= 0.0 && Place.m_dX <= View.m_dWidth &&
            Place.m_dY <= View.m_dHeight) {
            aRun.push_back(Place);
        } else {
            m_Svg.Polyline(aRun, szClass);
            aRun.clear();
        }
    m_Svg.Polyline(aRun, szClass);
}

} // namespace

std::string DrawDistortionField(const StWarpGrid& Grid, const std::string& sPrefix) {
    const bool bKnown = std::any_of(Grid.m_aRaw.begin(), Grid.m_aRaw.end(), IsPlace);
    if (!IsGrid(Grid) || !bKnown || !ClPanel(Grid.m_Capture, {0.0, 0.0, 1.0, 1.0}).IsDrawable())
        return SentenceAlone(sPrefix, cszTitle, "No grid of the corrected image is known");
    return ClDrawing(Grid, sPrefix).Draw();
}

} // namespace report
