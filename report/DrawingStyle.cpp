#include "report/DrawingStyle.h"

#include <array>

namespace report {

namespace {

struct StColour {
    const char* m_szName;
    const char* m_szLight;
    const char* m_szDark;
};

constexpr std::array<StColour, 16> aColours{{
    {"paper", "#ffffff", "#14171a"},
    {"ink", "#1b1b1b", "#e8e8e8"},
    {"quiet", "#595959", "#a9afb5"},
    {"rule", "#dcdcdc", "#30363b"},
    {"mark", "#0b62a4", "#6db3f2"},
    {"warning", "#b3261e", "#ff8a80"},
    {"limit", "#8a5300", "#e3b35c"},
    {"pale", "#dbe9f6", "#1d3347"},
    {"level0", "#f3f7fb", "#1a242d"},
    {"level1", "#d9e7f4", "#1d3448"},
    {"level2", "#b3d2e8", "#214866"},
    {"level3", "#86b8da", "#296086"},
    {"level4", "#5b9ac8", "#3f7ea8"},
    {"level5", "#397aaf", "#679dc2"},
    {"level6", "#1f5892", "#9bc1db"},
    {"level7", "#0b3671", "#d8e8f3"},
}};

std::string Properties(const char* StColour::*pScheme) {
    std::string sProperties;
    for (const StColour& Colour : aColours)
        sProperties += std::string("--drawing-") + Colour.m_szName + ":" + Colour.*pScheme + ";";
    return sProperties;
}

constexpr const char* cszShapes = R"(
svg.drawing{display:block;width:100%;max-width:33rem;height:auto;font:11px Arial,"Liberation Sans",Helvetica,sans-serif;fill:none;stroke:none;font-variant-numeric:tabular-nums}
svg.drawing .text{fill:var(--drawing-ink)}
svg.drawing .marks{fill:none}
svg.drawing .quiet{fill:var(--drawing-quiet)}
svg.drawing .strong{fill:var(--drawing-ink);font-weight:bold}
svg.drawing .warning{fill:var(--drawing-warning);font-weight:bold;paint-order:stroke;stroke:var(--drawing-paper);stroke-width:3px;stroke-linejoin:round}
svg.drawing .backing{fill:#ffffff}
svg.drawing .picture{opacity:.62}
svg.drawing .frame{stroke:var(--drawing-quiet);stroke-width:.8}
svg.drawing .rule{stroke:var(--drawing-rule);stroke-width:.8}
svg.drawing .axis{stroke:var(--drawing-quiet);stroke-width:.8}
svg.drawing .net{stroke:var(--drawing-quiet);stroke-width:.5}
svg.drawing .dot{stroke:var(--drawing-mark);stroke-width:1.3}
svg.drawing .doubtful{stroke:var(--drawing-warning);stroke-width:2.4}
svg.drawing .missing{stroke:var(--drawing-warning);stroke-width:1.4;stroke-dasharray:4 3}
svg.drawing .refused{stroke:var(--drawing-warning);stroke-width:1.2}
svg.drawing .vector{stroke:var(--drawing-mark);stroke-width:1.3;stroke-linecap:round}
svg.drawing .vector-wrong{stroke:var(--drawing-warning);stroke-width:2.4;stroke-linecap:round}
svg.drawing .bar{fill:var(--drawing-pale);stroke:var(--drawing-mark);stroke-width:1}
svg.drawing .mean{stroke:var(--drawing-ink);stroke-width:1.2;stroke-dasharray:7 3}
svg.drawing .maximum{stroke:var(--drawing-ink);stroke-width:1.2}
svg.drawing .limit{stroke:var(--drawing-limit);stroke-width:1.4;stroke-dasharray:2 2.5}
svg.drawing .contour{stroke:var(--drawing-ink);stroke-width:.4}
svg.drawing .casing{stroke:var(--drawing-paper);stroke-width:4.5;stroke-linejoin:round}
svg.drawing .hull{stroke:var(--drawing-ink);stroke-width:1.5;stroke-dasharray:6 3}
svg.drawing .nominal{stroke:var(--drawing-quiet);stroke-width:.8;stroke-dasharray:2 2}
svg.drawing .actual{stroke:var(--drawing-mark);stroke-width:1.1}
svg.drawing .covered{fill:var(--drawing-pale)}
svg.drawing .uncovered{stroke:var(--drawing-warning);stroke-width:1}
svg.drawing .outline{stroke:var(--drawing-mark);stroke-width:1.3;stroke-dasharray:8 3}
svg.drawing .pair{stroke:var(--drawing-warning);stroke-width:.9}
svg.drawing .point{fill:var(--drawing-mark)}
svg.drawing .outlier{fill:var(--drawing-warning)}
svg.drawing .absent{stroke:var(--drawing-quiet);stroke-width:1.1}
svg.drawing .unknown{fill:var(--drawing-paper)}
svg.drawing .plate{fill:var(--drawing-paper);stroke:var(--drawing-quiet);stroke-width:.5}
)";

std::string Levels() {
    std::string sLevels;
    for (const char cLevel : {'0', '1', '2', '3', '4', '5', '6', '7'})
        sLevels += std::string("svg.drawing .level") + cLevel +
                   "{shape-rendering:crispEdges;fill:var(--drawing-level" + cLevel + ")}\n";
    return sLevels;
}

} // namespace

std::string DrawingStyle() {
    const std::string sLight = Properties(&StColour::m_szLight);
    const std::string sDark = Properties(&StColour::m_szDark);
    return ":root{" + sLight + "}\n@media (prefers-color-scheme:dark){:root{" + sDark +
           "}}\n@media print{:root{" + sLight + "}}\nsvg.drawing .over-picture{" + sLight + "}" +
           cszShapes + Levels();
}

} // namespace report
