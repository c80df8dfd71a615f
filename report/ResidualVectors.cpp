#include "report/ResidualVectors.h"

#include "report/DotMarks.h"
#include "report/Markup.h"
#include "report/RoundNumbers.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

/// What tells the two kinds apart.
struct StWords {
    const char* m_szTitle;
    const char* m_szWay;
};

StWords WordsOf(EResidual eResidual) {
    if (eResidual == EResidual::ePredicted)
        return {"Residuals of the dots, each against what all others predict",
                "from where the others predict a dot to where it was found"};
    return {"Residuals of the dots, each against where it belongs",
            "from where a dot belongs to where it came out"};
}

constexpr double cdWidth = 400.0;
constexpr double cdLeft = 46.0;
constexpr double cdTop = 14.0;
constexpr double cdPanelWidth = 338.0;
constexpr double cdAxis = 34.0;
constexpr double cdScaleHeight = 34.0;
constexpr double cdPitch = 2.0;      ///< millimetres
constexpr double cdLongest = 0.45;   ///< of the pitch: the longest believed arrow, before rounding
constexpr double cdCut = 0.95;       ///< of the pitch: no arrow is longer
constexpr double cdMostScale = 60.0; ///< units: the arrow of the scale
constexpr double cdMostMagnification = 10000.0;

double LengthOf(const StPoint& p) {
    return std::hypot(p.m_dX, p.m_dY);
}

class ClDrawing {
public:
    ClDrawing(const StFrame& Capture, const Dots& aDots, const std::string& sPrefix,
              const StWords& Words)
        : m_Frame(Capture), m_aAll(aDots), m_Words(Words),
          m_Panel(Capture, {cdLeft, cdTop, cdPanelWidth, HeightFor(Capture, cdPanelWidth)}),
          m_aDots(DotsWithin(m_Panel, aDots)), m_dMagnify(Magnification()), m_Legend(LegendOf()),
          m_Svg(sPrefix, cdWidth, ScaleTop() + cdScaleHeight + m_Legend.Height(), Words.m_szTitle,
                Description()),
          m_Labels(m_Panel.Box()) {}

    std::string Draw() {
        DrawRawAxes(m_Svg, m_Panel, m_Frame);
        DrawNet(m_Svg, m_Panel, m_aDots, 3.0);
        DrawDoubtful(m_Svg, m_Panel, m_aDots, m_Labels);
        for (const StDot& Dot : m_aDots)
            DrawDot(Dot);
        if (m_aDots.empty())
            DrawSentence(m_Svg, m_Panel.Box(), "No residuals are known.");
        else
            DrawScale();
        m_Legend.Draw(m_Svg, {cdLeft, ScaleTop() + cdScaleHeight - 6.0});
        return m_Svg.Document();
    }

private:
    double ScaleTop() const { return m_Panel.Box().Bottom() + cdAxis; }
    double Cut() const { return cdCut * cdPitch * m_Panel.UnitsPerMillimetre(); }
    StBox Room() const { return {3.0, 3.0, cdWidth - 6.0, ScaleTop() - 6.0}; }
    double Length(const StDot& Dot) const { return Micrometres(Dot.m_Residual, m_Frame.m_Density); }
    StPoint Magnified(const StDot& Dot) const {
        const StPoint Along = m_Panel.Along(Dot.m_Residual);
        return {m_dMagnify * Along.m_dX, m_dMagnify * Along.m_dY};
    }
    /// What of an arrow is drawn, 0 to 1.
    double ShareDrawn(const StDot& Dot) const;

    double LongestBelieved() const;
    double Magnification() const;
    ClLegend LegendOf() const;
    std::string Description() const;
    void DrawDot(const StDot& Dot);
    void DrawScale();

    const StFrame& m_Frame;
    const Dots& m_aAll;
    StWords m_Words;
    ClPanel m_Panel;
    Dots m_aDots;
    double m_dMagnify;
    ClLegend m_Legend;
    ClSvg m_Svg;
    ClLabels m_Labels;
};

/// Micrometres; of the doubtful ones where there are no others.
double ClDrawing::LongestBelieved() const {
    const bool bAll = CountDoubtful(m_aDots) == m_aDots.size();
    double dLongest = 0.0;
    for (const StDot& Dot : m_aDots)
        if ((bAll || !Dot.m_bDoubtful) && std::isfinite(Length(Dot)))
            dLongest = std::max(dLongest, Length(Dot));
    return dLongest;
}

double ClDrawing::Magnification() const {
    const double dLongest = LongestBelieved() / 1000.0;
    if (!(dLongest > 0.0))
        return 1.0;
    return RoundDown(std::clamp(cdLongest * cdPitch / dLongest, 1.0, cdMostMagnification));
}

double ClDrawing::ShareDrawn(const StDot& Dot) const {
    const StPoint Foot = m_Panel.At(Dot.m_At);
    const StPoint Way = Magnified(Dot);
    const double dAcross = Way.m_dX < 0.0 ? Foot.m_dX - Room().m_dX : Room().Right() - Foot.m_dX;
    const double dDown = Way.m_dY < 0.0 ? Foot.m_dY - Room().m_dY : Room().Bottom() - Foot.m_dY;
    return std::min(
        {1.0, Cut() / LengthOf(Way), dAcross / std::fabs(Way.m_dX), dDown / std::fabs(Way.m_dY)});
}

ClLegend ClDrawing::LegendOf() const {
    ClLegend Legend(cdWidth - cdLeft);
    if (CountDoubtful(m_aDots) > 0)
        Legend.Add(DoubtfulSample, "doubtful");
    if (std::any_of(m_aDots.begin(), m_aDots.end(),
                    [&](const StDot& d) { return ShareDrawn(d) < 1.0; }))
        Legend.Add(
            [](ClSvg& rSvg, const StPoint& p) {
                rSvg.Arrow(p - StPoint{6.0, 0.0}, p + StPoint{6.0, 0.0}, mark::cszWrong);
            },
            "thick: longer than drawn");
    Legend.AddRemark(OutsideWords(m_aAll.size() - m_aDots.size(), "dot", "dots"));
    return Legend;
}

std::string ClDrawing::Description() const {
    return std::string("The dots in their places of the ") + m_Frame.m_szWhat + ": " +
           DotWords(m_aAll) + ". The arrows point " + m_Words.m_szWay + ", " +
           Decimal(m_dMagnify, 0) + " times as long; the longest that is believed stands for " +
           Decimal(LongestBelieved(), 1) + " micrometres.";
}

void ClDrawing::DrawDot(const StDot& Dot) {
    const StPoint Foot = m_Panel.At(Dot.m_At);
    const std::string sTitle = NameOf(Dot.m_Place) + ": " + Decimal(Dot.m_Residual.m_dX, 2) +
                               " pixels in x, " + Decimal(Dot.m_Residual.m_dY, 2) + " in y, " +
                               Decimal(Length(Dot), 1) + " \xC2\xB5m";
    m_Svg.Circle(Foot, 1.6, mark::cszPoint, sTitle);
    const StPoint Way = Magnified(Dot);
    if (!std::isfinite(LengthOf(Way)))
        return;
    const double dShare = ShareDrawn(Dot);
    m_Svg.Arrow(Foot, Foot + StPoint{dShare * Way.m_dX, dShare * Way.m_dY},
                dShare < 1.0 ? mark::cszWrong : mark::cszVector, sTitle);
}

/// An arrow as long as a residual of a round length would have it.
void ClDrawing::DrawScale() {
    const double dMost = std::min(cdCut * cdPitch, cdMostScale / m_Panel.UnitsPerMillimetre());
    const double dLength = RoundDown(1000.0 * dMost / m_dMagnify); // micrometres
    const double dUnits = dLength / 1000.0 * m_dMagnify * m_Panel.UnitsPerMillimetre();
    const StPoint Foot{cdLeft, ScaleTop() + 10.0};
    m_Svg.Arrow(Foot, Foot + StPoint{dUnits, 0.0}, mark::cszVector);
    const StPoint Text = Foot + StPoint{dUnits + 8.0, 4.0};
    m_Svg.Text(Text,
               Fitted(Decimal(dLength, DecimalsOf(dLength)) + " \xC2\xB5m: " +
                          Decimal(dLength / 1000.0 * m_Frame.m_Density.m_dX, 2) + " columns or " +
                          Decimal(dLength / 1000.0 * m_Frame.m_Density.m_dY, 2) + " lines",
                      cdWidth - Text.m_dX),
               mark::cszStrong);
    m_Svg.Text(Text + StPoint{0.0, 14.0},
               m_dMagnify > 1.0
                   ? "Residuals are drawn " + Decimal(m_dMagnify, 0) + " times as long."
                   : "Residuals are drawn as long as they are.",
               mark::cszQuiet);
}

} // namespace

std::string DrawResidualVectors(const StFrame& Capture, const Dots& aDots,
                                const std::string& sPrefix, EResidual eResidual) {
    const StWords Words = WordsOf(eResidual);
    if (!ClPanel(Capture, {0.0, 0.0, 1.0, 1.0}).IsDrawable())
        return SentenceAlone(sPrefix, Words.m_szTitle, "The capture has no size to draw it in");
    return ClDrawing(Capture, aDots, sPrefix, Words).Draw();
}

} // namespace report
