#include "report/Markup.h"
#include "report/PageSections.h"
#include "report/ResidualHistogram.h"
#include "report/ResidualVectors.h"

namespace report {

namespace {

const char* const g_szDots = "generate/dots/";

std::string Path(std::size_t nDot, const char* szField) {
    return g_szDots + std::to_string(nDot) + "/" + szField;
}

StCell PlaceCell(const StPatternPlace& Place) {
    return HeadCell(NameOf(Place));
}

/// Two numbers of a JSON array.
StCell PairCell(const std::string& sId, const StPoint& Pair, int nDecimals) {
    return NumberCell(NumberMarkup(sId + "/0", Pair.m_dX, nDecimals) + ", " +
                      NumberMarkup(sId + "/1", Pair.m_dY, nDecimals));
}

/// What grey values say of a dot holds for the capture that it was found in.
void AddDotRow(ClPage& rPage, bool bGrey, std::size_t nDot, const diagnosis::StDotReading& Dot) {
    const auto number = [&](const char* szField, double dValue, int nDecimals) {
        return NumberCell(NumberMarkup(Path(nDot, szField), dValue, nDecimals));
    };
    Cells aCells = {PlaceCell(Dot.m_Place), PairCell(Path(nDot, "at"), Dot.m_Found, 1),
                    PairCell(Path(nDot, "leave_one_out"), Dot.m_LeaveOneOut, 2),
                    PairCell(Path(nDot, "off"), Dot.m_Off, 2)};
    if (bGrey)
        aCells.insert(aCells.end(), {PairCell(Path(nDot, "grey_off"), Dot.m_GreyOff, 2),
                                     number("contrast", Dot.m_dContrast, 2),
                                     number("diameter_mm", Dot.m_dDiameter, 3),
                                     number("roundness", Dot.m_dRoundness, 2)});
    rPage.Row(aCells);
}

void OpenDotTable(ClPage& rPage, bool bGrey) {
    std::vector<std::string> aHeads = {"Dot", "Found at", "Residual", "Off"};
    if (bGrey)
        aHeads.insert(aHeads.end(), {"Grey centre", "Contrast", "Diameter", "Roundness"});
    rPage.OpenTable(bGrey ? "Places and differences in raw pixels, x and y; the diameter in mm"
                          : "Places and differences in raw pixels, x and y, as the stored "
                            "calibration has them",
                    aHeads, "many");
}

void AddDotTable(ClPage& rPage, const StCalibrated& Calibrated) {
    const auto& aDots = Calibrated.m_Diagnosis.m_aDots;
    const bool bGrey = !Calibrated.m_bStored;
    rPage.OpenDetails("All 75 dots in numbers");
    OpenDotTable(rPage, bGrey);
    for (std::size_t i = 0; i < aDots.size(); ++i)
        AddDotRow(rPage, bGrey, i, aDots[i]);
    rPage.CloseTable();
    rPage.Paragraph(
        std::string("Residual: found less what the spline through the other 74 predicts. Off: "
                    "found less what the dots that are not doubtful predict about a smooth "
                    "distortion; the verdict goes by it.") +
        (bGrey ? " Grey centre: the centre by grey values less the one found; large where "
                 "something dark touches the dot."
               : ""));
    rPage.CloseDetails();
}

void AddResidualWords(ClPage& rPage, const Values& Known) {
    const auto number = [&](const char* szId) {
        return NumberMarkup(szId, ValueOf(Known, szId).value_or(0.0),
                            Shown(FigureOf(szId), ValueOf(Known, szId).value_or(0.0)));
    };
    const auto pixels = [&](const char* szId) {
        return NumberMarkup(szId, ValueOf(Known, szId).value_or(0.0), 3) + " px";
    };
    rPage.Markup("<p>Residuals are " + number("report/residual_mean") + " in the mean and " +
                 number("report/residual_max") +
                 " at most: " + pixels("report/residual_mean_pixels") + " and " +
                 pixels("report/residual_max_pixels") +
                 " of the corrected image, whose pixels measure 50.8 \u00b5m.</p>\n");
}

void AddResiduals(ClPage& rPage, const StScanner& Scanner, const StCalibrated& Calibrated) {
    const Dots aDots = DotsOf(Calibrated.m_Diagnosis);
    rPage.Drawing(DrawResidualVectors(Scanner.m_CaptureFrame, aDots, "vectors"),
                  "Each arrow leads from where the spline through the other 74 dots predicts a dot "
                  "to where it was found, magnified. Arrows at the border are longer: there the "
                  "prediction comes from one side.");
    rPage.Drawing(DrawResidualHistogram(ResidualLengths(aDots, Scanner.m_CaptureFrame.m_Density),
                                        "histogram"),
                  "How many dots have a residual of which length.");
}

StCaptureView ViewOf(const StScanner& Scanner) {
    StCaptureView View;
    View.m_Frame = Scanner.m_CaptureFrame;
    View.m_sPicture = Scanner.m_Capture.m_sSource;
    View.m_aRegions = Scanner.m_Finds.m_aRegions;
    View.m_aDots = Scanner.m_Calibrated && !Scanner.m_Calibrated->m_bStored
                       ? DotsOf(Scanner.m_Calibrated->m_Diagnosis)
                       : Scanner.m_Finds.m_aDots;
    return View;
}

void AddCounts(ClPage& rPage, const StTargetFinds& Finds) {
    const auto count = [](const char* szField, std::size_t nCount) {
        return NumberMarkup(std::string("generate/target/") + szField, static_cast<double>(nCount),
                            0);
    };
    rPage.Markup(
        "<p>" + count("found", Finds.m_nFound) + " of " + count("dots", Finds.m_nDots) +
        " dots were found" +
        (Finds.m_nAccepted < Finds.m_nFound
             ? ", and " + count("accepted", Finds.m_nAccepted) +
                   " of them stand where the pattern\u2019s next dot is expected; behind a "
                   "missing dot the order is disturbed"
             : "") +
        ".</p>\n");
}

void AddMissing(ClPage& rPage, const StTargetFinds& Finds) {
    if (Finds.m_aMissing.empty())
        return;
    rPage.OpenTable("Places of the pattern without a dot", {"Dot", "Column", "Line"});
    for (std::size_t i = 0; i < Finds.m_aMissing.size(); ++i) {
        const std::string sNear = "generate/target/missing/" + std::to_string(i) + "/near/";
        const StTargetFinds::StMissing& missing = Finds.m_aMissing[i];
        rPage.Row({PlaceCell(missing.m_Place),
                   NumberCell(NumberMarkup(sNear + "0", missing.m_Near.m_dX, 0)),
                   NumberCell(NumberMarkup(sNear + "1", missing.m_Near.m_dY, 0))});
    }
    rPage.CloseTable();
}

/// Specks are refused on good targets as well.
void AddRefusals(ClPage& rPage, const StTargetFinds& Finds) {
    if (Finds.m_aRefusals.empty())
        return;
    rPage.OpenTable("Dark regions that were not taken for dots", {"Why", "Number"});
    for (std::size_t i = 0; i < Finds.m_aRefusals.size(); ++i)
        rPage.Row(
            {HeadCell(Finds.m_aRefusals[i].m_sWords),
             NumberCell(NumberMarkup("generate/target/refused/" + std::to_string(i) + "/count",
                                     static_cast<double>(Finds.m_aRefusals[i].m_nCount), 0))});
    rPage.CloseTable();
}

} // namespace

void AddTarget(ClPage& rPage, const StScanner& Scanner) {
    rPage.Section("target", "The target");
    AddCounts(rPage, Scanner.m_Finds);
    rPage.OpenGallery();
    rPage.Drawing(
        DrawDotsOverCapture(ViewOf(Scanner), "capture"),
        "The capture of the target in the proportions of the plate, with the dots as they "
        "were found.");
    if (Scanner.m_Calibrated)
        AddResiduals(rPage, Scanner, *Scanner.m_Calibrated);
    rPage.Markup("<div>\n");
    if (Scanner.m_Calibrated)
        AddResidualWords(rPage, Scanner.m_Values);
    AddMissing(rPage, Scanner.m_Finds);
    AddRefusals(rPage, Scanner.m_Finds);
    rPage.Markup("</div>\n");
    rPage.CloseGallery();
    if (Scanner.m_Calibrated)
        AddDotTable(rPage, *Scanner.m_Calibrated);
}

} // namespace report
