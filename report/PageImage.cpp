#include "report/Coverage.h"
#include "report/ErrorMap.h"
#include "report/Markup.h"
#include "report/PageSections.h"

namespace report {

namespace {

void AddErrorMap(ClPage& rPage, const StCalibrated& Calibrated) {
    rPage.Drawing(DrawErrorMap({Calibrated.m_Diagnosis.m_Errors, Calibrated.m_aTarget,
                                Calibrated.m_Corrected.m_bUpward},
                               "errors"),
                  "How far the content of the corrected image is expected to lie from where it "
                  "belongs. Beyond the hull of the dots the calibration extrapolates: what it says "
                  "there rests on how the optics bend amid the dots.");
}

void AddDistortion(ClPage& rPage, const StCalibrated& Calibrated) {
    rPage.Drawing(
        DrawDistortionField(Calibrated.m_Grid, "distortion"),
        "A straight grid of the corrected image as it lies in the capture. The correction "
        "takes this out; it is no fault by itself.");
}

void AddCoverage(ClPage& rPage, const StScanner& Scanner, const StCalibrated& Calibrated) {
    rPage.Drawing(DrawCoverage({Calibrated.m_Corrected, Calibrated.m_aOutline,
                                ValueOf(Scanner.m_Values, "report/coverage").value_or(0.0)},
                               "coverage"),
                  "The frame of the corrected image, and what of it the capture has.");
}

void AddEfts(ClPage& rPage, const StCalibrated& Calibrated) {
    if (!Calibrated.m_Efts) {
        rPage.Paragraph("The accuracy check does not find the target in the corrected capture.");
        return;
    }
    rPage.Drawing(
        DrawEftsPairs(*Calibrated.m_Efts, "efts"),
        "The dots of the corrected target, and the pairs of them whose distance is beyond "
        "the EFTS limits. Pairs of neighbours fail by the check\u2019s own grain, too: it "
        "locates a dot to some tenths of a pixel.");
}

} // namespace

void AddFigures(ClPage& rPage, const StScanner& Scanner) {
    if (!Scanner.m_Calibrated)
        return;
    rPage.Section("figures", "Main figures");
    rPage.FigureTable(EGroup::eDots, Scanner.m_Values, "The dots", false);
    rPage.FigureTable(EGroup::ePlate, Scanner.m_Values, "The plate as a whole", false);
    rPage.FigureTable(EGroup::eImage, Scanner.m_Values, "The corrected image", false);
}

void AddImage(ClPage& rPage, const StScanner& Scanner) {
    if (!Scanner.m_Calibrated)
        return;
    rPage.Section("image", "The corrected image");
    rPage.OpenGallery();
    AddErrorMap(rPage, *Scanner.m_Calibrated);
    AddDistortion(rPage, *Scanner.m_Calibrated);
    AddCoverage(rPage, Scanner, *Scanner.m_Calibrated);
    AddEfts(rPage, *Scanner.m_Calibrated);
    rPage.CloseGallery();
}

} // namespace report
