#include "report/PageSections.h"
#include "report/ResidualVectors.h"

namespace report {

namespace {

using diagnosis::StSecond;
using diagnosis::StSecondDot;

/// Where each dot came out against where it belongs, as residuals are drawn.
Dots DotsOf(const StSecond& Second) {
    Dots aDots;
    for (const StSecondDot& Dot : Second.m_aDots) {
        const bool bOff = diagnosis::SquaredLength(Dot.m_Off) >= Dot.m_dTrusted * Dot.m_dTrusted;
        aDots.push_back({Dot.m_Place, Dot.m_Found, Dot.m_Off, bOff});
    }
    return aDots;
}

void AddDotTable(ClPage& rPage, const StSecond& Second) {
    rPage.OpenDetails("All 75 dots of the second capture in numbers");
    rPage.OpenTable("Pixels of the corrected image, x and y",
                    {"Dot", "Found at", "Off its place", "EFTS pairs that fail"}, "many");
    for (std::size_t i = 0; i < Second.m_aDots.size(); ++i) {
        const StSecondDot& Dot = Second.m_aDots[i];
        const std::string sDot = "generate/second/dots/" + std::to_string(i) + "/";
        rPage.Row({HeadCell(NameOf(Dot.m_Place)),
                   NumberCell(NumberMarkup(sDot + "at/0", Dot.m_Found.m_dX, 1) + ", " +
                              NumberMarkup(sDot + "at/1", Dot.m_Found.m_dY, 1)),
                   NumberCell(NumberMarkup(sDot + "off/0", Dot.m_Off.m_dX, 2) + ", " +
                              NumberMarkup(sDot + "off/1", Dot.m_Off.m_dY, 2)),
                   NumberCell(NumberMarkup(sDot + "failed_pairs", Dot.m_nFailedPairs, 0))});
    }
    rPage.CloseTable();
    rPage.CloseDetails();
}

} // namespace

void AddSecond(ClPage& rPage, const StScanner& Scanner) {
    if (!Scanner.m_Calibrated || !Scanner.m_Calibrated->m_Second)
        return;
    const StSecond& Second = *Scanner.m_Calibrated->m_Second;
    rPage.Section("second", "The second capture");
    rPage.Paragraph("The target was laid anew and captured once more. Corrected with the "
                    "calibration, its dots have to come out where they belong: what the first "
                    "capture took wrongly for a dot is now something else.");
    if (!Second.m_bFound) {
        rPage.Paragraph("Corrected, it does not show the target.");
        return;
    }
    rPage.FigureTable(EGroup::eSecond, Scanner.m_Values, "The second capture, corrected", false);
    rPage.OpenGallery();
    rPage.Drawing(DrawResidualVectors(Scanner.m_Calibrated->m_Corrected, DotsOf(Second),
                                      "second-vectors", EResidual::ePlace),
                  "From where each dot belongs to where it came out in the corrected image, "
                  "magnified, when the pattern is laid onto all of them.");
    rPage.CloseGallery();
    AddDotTable(rPage, Second);
}

} // namespace report
