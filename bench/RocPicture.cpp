#include "bench/RocPicture.h"

#include "diagnosis/Verdict.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace bench {

namespace {

// Pixels of the picture
constexpr double cdLeft = 70.0;
constexpr double cdTop = 20.0;
constexpr double cdWidth = 480.0;
constexpr double cdHeight = 300.0;

/// Good ones flagged: from 0.03 to 100 percent in equal steps for equal factors, none at the left.
constexpr double cdLeastPercent = 0.03;
/// Wrong ones found: from 80 to 100 percent.
constexpr double cdLeastFound = 80.0;

double AcrossOf(double dPercent) {
    const double d = std::log10(std::max(dPercent, cdLeastPercent) / cdLeastPercent) /
                     std::log10(100.0 / cdLeastPercent);
    return cdLeft + cdWidth * d;
}

double DownOf(double dPercent) {
    const double d = (100.0 - std::max(dPercent, cdLeastFound)) / (100.0 - cdLeastFound);
    return cdTop + cdHeight * d;
}

template <class... Numbers>
std::string Text(const char* szFormat, Numbers... numbers) {
    char szText[256];
    std::snprintf(szText, sizeof szText, szFormat, numbers...);
    return szText;
}

std::string Label(double x, double y, const char* szAnchor, const std::string& sText) {
    return Text("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">", x, y, szAnchor) + sText +
           "</text>\n";
}

std::string Line(double x1, double y1, double x2, double y2, const char* szClass) {
    return Text("<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" class=\"%s\"/>\n", x1, y1,
                x2, y2, szClass);
}

std::string Axes() {
    std::string sAxes;
    for (const double d : {0.1, 0.5, 1.0, 10.0, 100.0}) {
        sAxes += Line(AcrossOf(d), cdTop, AcrossOf(d), cdTop + cdHeight, "grid");
        sAxes += Label(AcrossOf(d), cdTop + cdHeight + 18.0, "middle", Text("%g", d));
    }
    sAxes += Label(cdLeft, cdTop + cdHeight + 18.0, "middle", "none");
    for (const double d : {80.0, 85.0, 90.0, 95.0, 100.0}) {
        sAxes += Line(cdLeft, DownOf(d), cdLeft + cdWidth, DownOf(d), "grid");
        sAxes += Label(cdLeft - 8.0, DownOf(d) + 4.0, "end", Text("%g", d));
    }
    sAxes += Label(cdLeft + 0.5 * cdWidth, cdTop + cdHeight + 38.0, "middle",
                   "good calibrations flagged, percent");
    sAxes += Text("<text transform=\"translate(18 %.1f) rotate(-90)\" text-anchor=\"middle\">wrong "
                  "ones flagged, the dot named, percent</text>\n",
                  cdTop + 0.5 * cdHeight);
    return sAxes;
}

std::string Curve(const std::vector<ClOperatingPoint>& aPoints) {
    std::string sCurve = "<polyline class=\"curve\" points=\"";
    std::string sMarks;
    for (const ClOperatingPoint& Point : aPoints) {
        const double x = AcrossOf(Point.m_Good.Percent());
        const double y = DownOf(Point.m_Found.Percent());
        const bool bTaken = Point.m_dShare == diagnosis::cdDoubtfulShare;
        sCurve += Text("%.1f,%.1f ", x, y);
        sMarks += Text("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"%d\" class=\"%s\"><title>threshold "
                       "%g</title></circle>\n",
                       x, y, bTaken ? 6 : 3, bTaken ? "taken" : "mark", Point.m_dShare);
    }
    return sCurve + "\"/>\n" + sMarks;
}

} // namespace

void DrawRoc(const std::string& sFile, const std::vector<ClOperatingPoint>& aPoints) {
    std::ofstream Out(sFile);
    Out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"600\" height=\"380\" "
           "viewBox=\"0 0 600 380\" role=\"img\" font-family=\"sans-serif\" font-size=\"12\">\n"
           "<title>Good calibrations flagged against wrong ones found, by threshold</title>\n"
           "<style>.grid{stroke:#ccc}.curve{fill:none;stroke:#06c;stroke-width:2}"
           ".mark{fill:#06c}.taken{fill:#c30}</style>\n"
           "<rect width=\"600\" height=\"380\" fill=\"#fff\"/>\n"
        << Axes() << Curve(aPoints) << "</svg>\n";
    Out.close();
    if (!Out)
        throw std::runtime_error(sFile + " cannot be written");
}

} // namespace bench
