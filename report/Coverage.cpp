#include "report/Coverage.h"

#include "report/Clip.h"
#include "report/DotMarks.h"
#include "report/Markup.h"

#include <algorithm>
#include <cmath>

namespace report {

namespace {

constexpr const char* cszTitle = "What of the corrected image the capture covers";
constexpr double cdWidth = 400.0;
constexpr double cdTop = 8.0;
constexpr double cdPanelHeight = 400.0;
constexpr double cdHatch = 6.0;

/// Around the corrected image, a share of its size: enough for a capture that reaches beyond it.
constexpr double cdAround = 0.16;

/// The room that is left for the image itself.
StBox RoomFor() {
    const double dHeight = cdPanelHeight / (1.0 + 2.0 * cdAround);
    return {8.0 + cdAround * 384.0, cdTop + cdAround * dHeight, 384.0 * (1.0 - 2.0 * cdAround),
            dHeight};
}

/// Down to a tenth: only all is 100.
std::string PercentWords(double dPercent) {
    return Decimal(std::floor(10.0 * dPercent) / 10.0, 1);
}

class ClDrawing {
public:
    ClDrawing(const StCoverage& Coverage, const std::string& sPrefix)
        : m_Coverage(Coverage), m_Panel(Coverage.m_Corrected, RoomFor()), m_Legend(LegendOf()),
          m_Svg(sPrefix, cdWidth, cdTop + cdPanelHeight + m_Legend.Height() + 6.0, cszTitle,
                Words()) {}

    std::string Draw() {
        Points aOutline;
        for (const StPoint& Place : m_Coverage.m_aOutline)
            aOutline.push_back(m_Panel.At(Place));
        const StBox Seen{1.0, 1.0, cdWidth - 2.0, cdTop + cdPanelHeight - 2.0};
        m_Svg.Segments(Hatching(m_Panel.Box(), cdHatch), mark::cszUncovered);
        m_Svg.Polygon(Clipped(aOutline, m_Panel.Box()), mark::cszCovered);
        m_Svg.Polygon(Clipped(aOutline, Seen), mark::cszOutline);
        m_Svg.Rect(m_Panel.Box(), mark::cszFrame);
        DrawShare();
        m_Legend.Draw(m_Svg, {24.0, cdTop + cdPanelHeight});
        return m_Svg.Document();
    }

private:
    bool IsWhole() const { return m_Coverage.m_dPercent >= 100.0; }
    ClLegend LegendOf() const;
    std::string Words() const;
    void DrawShare();

    const StCoverage& m_Coverage;
    ClPanel m_Panel;
    ClLegend m_Legend;
    ClSvg m_Svg;
};

ClLegend ClDrawing::LegendOf() const {
    const auto box = [](const char* szClass) {
        return [szClass](ClSvg& rSvg, const StPoint& p) {
            rSvg.Rect({p.m_dX - 6.0, p.m_dY - 5.0, 12.0, 10.0}, szClass);
        };
    };
    ClLegend Legend(cdWidth - 48.0);
    Legend.Add(box(mark::cszFrame), "corrected image");
    Legend.Add(box(mark::cszOutline), "capture");
    if (!IsWhole())
        Legend.Add(
            [](ClSvg& rSvg, const StPoint& p) {
                rSvg.Segments(Hatching({p.m_dX - 6.0, p.m_dY - 5.0, 12.0, 10.0}, 4.0),
                              mark::cszUncovered);
            },
            "beyond the capture");
    Legend.AddRemark(Words());
    return Legend;
}

std::string ClDrawing::Words() const {
    if (!std::isfinite(m_Coverage.m_dPercent))
        return "How much of the corrected image the capture covers is not known.";
    if (IsWhole())
        return "The capture covers the whole of the corrected image.";
    return "The capture covers " + PercentWords(m_Coverage.m_dPercent) +
           " percent of the corrected image. What lies beyond it is filled with background and "
           "shows nothing of a finger.";
}

void ClDrawing::DrawShare() {
    const StPoint Middle = m_Panel.Box().Middle();
    const std::string sShare = std::isfinite(m_Coverage.m_dPercent)
                                   ? PercentWords(m_Coverage.m_dPercent) + " %"
                                   : "not known";
    const double dHalf = 0.5 * TextWidth(sShare) + 5.0;
    m_Svg.Rect({Middle.m_dX - dHalf, Middle.m_dY - 9.0, 2.0 * dHalf, 18.0}, mark::cszPlate);
    m_Svg.Text({Middle.m_dX, Middle.m_dY + 4.0}, sShare, mark::cszStrong, EAnchor::eMiddle);
}

} // namespace

std::string DrawCoverage(const StCoverage& Coverage, const std::string& sPrefix) {
    if (!ClPanel(Coverage.m_Corrected, RoomFor()).IsDrawable())
        return SentenceAlone(sPrefix, cszTitle, "The corrected image has no size to draw it in");
    return ClDrawing(Coverage, sPrefix).Draw();
}

} // namespace report
