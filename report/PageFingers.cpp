#include "report/Markup.h"
#include "report/PageSections.h"

namespace report {

namespace {

std::string Quoted(const std::string& sName) {
    return "\u201c" + sName + "\u201d";
}

void AddPictures(ClPage& rPage, const StFinger& Finger) {
    rPage.OpenGallery("triple");
    rPage.Picture(Finger.m_Raw, "The raw capture " + Finger.m_sName, "As captured");
    if (Finger.m_Corrected)
        rPage.Picture(*Finger.m_Corrected, "The corrected image of " + Finger.m_sName, "Corrected");
    if (Finger.m_Mask)
        rPage.Picture(*Finger.m_Mask, "The finger mask of " + Finger.m_sName,
                      "Finger mask: black is finger");
    rPage.CloseGallery();
}

void AddFinger(ClPage& rPage, const StFinger& Finger, std::size_t nNumber) {
    const std::string sId = "finger-" + std::to_string(nNumber);
    rPage.Markup("<div class=\"finger\" data-file=\"" + Escaped(Finger.m_sName) + "\">\n");
    rPage.Heading(sId, Finger.m_sName);
    if (!Finger.m_sFault.empty())
        rPage.Paragraph(Finger.m_sFault);
    AddPictures(rPage, Finger);
    rPage.FigureTable(EGroup::eLevels, Finger.m_Values, "Levels of the library", false);
    if (Finger.m_Corrected) {
        rPage.OpenDetails("Measures of the print " + Quoted(Finger.m_sName));
        rPage.FigureTable(EGroup::ePrint, Finger.m_Values, "Measures of the print", true);
        rPage.CloseDetails();
    }
    rPage.Markup("</div>\n");
}

} // namespace

void AddPlaten(ClPage& rPage, const StScanner& Scanner) {
    if (!Scanner.m_Platen)
        return;
    rPage.Section("platen", "The platen");
    rPage.Markup("<div class=\"platen\" data-file=\"" + Escaped(Scanner.m_Platen->m_sName) +
                 "\">\n");
    rPage.OpenGallery("beside");
    rPage.Picture(Scanner.m_Platen->m_Picture, "The raw capture of the empty platen",
                  "The empty platen as captured");
    rPage.FigureTable(EGroup::ePlaten, Scanner.m_Platen->m_Values, "Light, dirt and noise", true);
    rPage.CloseGallery();
    rPage.Markup("</div>\n");
}

void AddFingers(ClPage& rPage, const StScanner& Scanner) {
    if (Scanner.m_aFingers.empty())
        return;
    rPage.Section("fingers", "Fingers");
    rPage.Paragraph("Captures of fingers say nothing of the calibration, and do not change the "
                    "verdict; they show what comes of it.");
    for (std::size_t i = 0; i < Scanner.m_aFingers.size(); ++i)
        AddFinger(rPage, Scanner.m_aFingers[i], i + 1);
}

} // namespace report
