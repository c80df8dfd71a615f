#include "report/DotsOverCapture.h"

#include "report/DotMarks.h"
#include "report/Markup.h"

#include <algorithm>

namespace report {

namespace {

constexpr const char* cszTitle = "Dots found in the capture of the target";
constexpr double cdWidth = 400.0;
constexpr double cdLeft = 46.0;
constexpr double cdTop = 14.0;
constexpr double cdPanelWidth = 338.0;
constexpr double cdBelow = 36.0;           ///< for the axis
constexpr double cdRingMillimetres = 0.56; ///< outside the rim of a dot, which is 0.4 away

constexpr double cdOfRing = 0.8; ///< what names avoid: a square of nearly its area
constexpr double cdMostRing = 12.0;
constexpr double cdMostWords = 200.0; ///< about a region

class ClDrawing {
public:
    ClDrawing(const StCaptureView& Capture, const std::string& sPrefix)
        : m_Capture(Capture), m_Panel(Capture.m_Frame, {cdLeft, cdTop, cdPanelWidth,
                                                        HeightFor(Capture.m_Frame, cdPanelWidth)}),
          m_aDots(DotsWithin(m_Panel, Capture.m_aDots)), m_Legend(LegendOf()),
          m_Svg(sPrefix, cdWidth, m_Panel.Box().Bottom() + cdBelow + m_Legend.Height(), cszTitle,
                Description()),
          m_Labels(m_Panel.Box()) {}

    std::string Draw() {
        DrawPicture();
        DrawDots();
        m_Svg.CloseGroup();
        DrawRawAxes(m_Svg, m_Panel, m_Capture.m_Frame);
        m_Legend.Draw(m_Svg, {cdLeft, m_Panel.Box().Bottom() + cdBelow - 2.0});
        return m_Svg.Document();
    }

private:
    double Ring() const {
        return std::min(cdRingMillimetres * m_Panel.UnitsPerMillimetre(), cdMostRing);
    }

    bool Is(ERegion eRegion) const {
        return std::any_of(m_Capture.m_aRegions.begin(), m_Capture.m_aRegions.end(),
                           [&](const StRegion& r) { return r.m_eRegion == eRegion; });
    }

    std::size_t CountOf(ERegion eRegion) const {
        return static_cast<std::size_t>(
            std::count_if(m_Capture.m_aRegions.begin(), m_Capture.m_aRegions.end(),
                          [&](const StRegion& r) { return r.m_eRegion == eRegion; }));
    }

    ClLegend LegendOf() const;
    std::string Description() const;
    void DrawPicture();
    void DrawDots();
    void DrawRegion(const StRegion& Region);

    const StCaptureView& m_Capture;
    ClPanel m_Panel;
    Dots m_aDots;
    ClLegend m_Legend;
    ClSvg m_Svg;
    ClLabels m_Labels;
};

ClLegend ClDrawing::LegendOf() const {
    ClLegend Legend(cdWidth - cdLeft);
    if (!m_aDots.empty())
        Legend.Add([](ClSvg& rSvg, const StPoint& p) { rSvg.Circle(p, 5.0, mark::cszDot); },
                   "dot found");
    if (CountDoubtful(m_aDots) > 0)
        Legend.Add(DoubtfulSample, "doubtful");
    if (Is(ERegion::eMissing))
        Legend.Add(
            [](ClSvg& rSvg, const StPoint& p) { rSvg.Rect(Around(p, 5.0), mark::cszMissing); },
            "missing");
    if (Is(ERegion::eRefused))
        Legend.Add(
            [](ClSvg& rSvg, const StPoint& p) {
                rSvg.Cross(p, 5.0, mark::cszRefused);
                rSvg.Rect(Around(p, 5.0), mark::cszRefused);
            },
            "refused");
    Legend.AddRemark(OutsideWords(m_Capture.m_aDots.size() - m_aDots.size(), "dot", "dots"));
    return Legend;
}

std::string ClDrawing::Description() const {
    std::string sWords = "A capture of " + std::to_string(m_Capture.m_Frame.m_nWidth) + " by " +
                         std::to_string(m_Capture.m_Frame.m_nHeight) +
                         " pixels, in the proportions of the plate, with " +
                         DotWords(m_Capture.m_aDots) + ".";
    if (Is(ERegion::eMissing))
        sWords += " Missing: " + Count(CountOf(ERegion::eMissing), "dot", "dots") + ".";
    if (Is(ERegion::eRefused))
        sWords += " Refused: " + Count(CountOf(ERegion::eRefused), "mark", "marks") + ".";
    return sWords;
}

void ClDrawing::DrawPicture() {
    if (m_Capture.m_sPicture.empty()) {
        m_Svg.OpenGroup(mark::cszBare);
        return;
    }
    m_Svg.OpenGroup(mark::cszOver);
    m_Svg.Rect(m_Panel.Box(), mark::cszBacking);
    m_Svg.Image(m_Panel.Box(), m_Capture.m_sPicture);
}

void ClDrawing::DrawDots() {
    DrawNet(m_Svg, m_Panel, m_aDots, Ring());
    for (const StDot& Dot : m_aDots) {
        m_Svg.Circle(m_Panel.At(Dot.m_At), Ring(), mark::cszDot, NameOf(Dot.m_Place));
        m_Labels.Avoid(Around(m_Panel.At(Dot.m_At), cdOfRing * Ring()));
    }
    for (const StRegion& Region : m_Capture.m_aRegions)
        DrawRegion(Region);
    DrawDoubtful(m_Svg, m_Panel, m_aDots, m_Labels);
    if (m_Capture.m_aDots.empty() && m_Capture.m_aRegions.empty())
        DrawSentence(m_Svg, m_Panel.Box(), "No dots were found.");
}

/// Cut to the capture: a box may reach out of it.
void ClDrawing::DrawRegion(const StRegion& Region) {
    const StBox Whole = m_Panel.At(Region.m_Box);
    const StBox& Panel = m_Panel.Box();
    const double dLeft = std::max(Whole.m_dX, Panel.m_dX);
    const double dTop = std::max(Whole.m_dY, Panel.m_dY);
    const StBox Box{dLeft, dTop, std::min(Whole.Right(), Panel.Right()) - dLeft,
                    std::min(Whole.Bottom(), Panel.Bottom()) - dTop};
    if (!(Box.m_dWidth > 0.0 && Box.m_dHeight > 0.0))
        return;
    const bool bRefused = Region.m_eRegion == ERegion::eRefused;
    const std::string sKind = bRefused ? "refused" : "missing";
    const std::string sWords = Region.m_sWords.empty() ? sKind : sKind + ": " + Region.m_sWords;
    m_Svg.Rect(Box, bRefused ? mark::cszRefused : mark::cszMissing, sWords);
    if (bRefused)
        m_Svg.Segments({{Box.m_dX, Box.m_dY},
                        {Box.Right(), Box.Bottom()},
                        {Box.m_dX, Box.Bottom()},
                        {Box.Right(), Box.m_dY}},
                       mark::cszRefused);
    m_Labels.Put(m_Svg, Box.Middle(), 0.5 * std::max(Box.m_dWidth, Box.m_dHeight) + 3.0,
                 Fitted(sWords, cdMostWords), mark::cszWarning);
}

} // namespace

std::string DrawDotsOverCapture(const StCaptureView& Capture, const std::string& sPrefix) {
    if (!ClPanel(Capture.m_Frame, {0.0, 0.0, 1.0, 1.0}).IsDrawable())
        return SentenceAlone(sPrefix, cszTitle, "The capture has no size to draw it in");
    return ClDrawing(Capture, sPrefix).Draw();
}

} // namespace report
