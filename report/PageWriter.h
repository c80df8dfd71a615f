#pragma once

/// Writes a page of HTML that stands by itself: its style within, no script, nothing from
/// elsewhere. It opens and closes what it is told to; texts are escaped, what is told to be markup
/// is not.

#include "report/PageData.h"

#include <string>
#include <utility>
#include <vector>

namespace report {

/// "<data value="0.998512" data-figure="generate/plate/middle/scale/0">0.9985</data>": what is
/// shown, with the number in full and where it comes from.
std::string NumberMarkup(const std::string& sId, double dValue, const std::string& sShown);
/// A number that is no figure of the list, with decimals.
std::string NumberMarkup(const std::string& sId, double dValue, int nDecimals);

/// A cell of a table: markup, and whether it is a heading or a number.
struct StCell {
    enum class EKind { eText, eNumber, eHead };
    std::string m_sMarkup;
    EKind m_eKind = EKind::eText;
};
using Cells = std::vector<StCell>;

StCell TextCell(const std::string& sText);
StCell HeadCell(const std::string& sText);
StCell NumberCell(const std::string& sMarkup);

class ClPage {
public:
    ClPage(const std::string& sTitle, const std::string& sVersion);

    /// Opens a section with a heading of the second level; the one before is closed.
    void Section(const std::string& sId, const std::string& sHeading);
    /// A heading of the third level.
    void Heading(const std::string& sId, const std::string& sHeading);
    void Paragraph(const std::string& sText);
    void Markup(const std::string& sMarkup) { m_sBody += sMarkup; }

    /// Figures side by side where there is room.
    void OpenGallery(const char* szClass = "gallery");
    void CloseGallery();
    /// A drawing, or a picture with its alternative text, and the caption below it.
    void Drawing(const std::string& sSvg, const std::string& sCaption);
    void Picture(const StPicture& Picture, const std::string& sAlternative,
                 const std::string& sCaption);

    /// The group's figures with value, limit, what each means and what it does not. Those without
    /// a value are "not measurable" where `bAll`, and left out otherwise.
    void FigureTable(EGroup eGroup, const Values& Known, const std::string& sCaption, bool bAll);
    /// `aHeads` are the names of the columns; the first cell of a row is its head.
    void OpenTable(const std::string& sCaption, const std::vector<std::string>& aHeads,
                   const char* szClass = "plain");
    void Row(const Cells& aCells);
    void CloseTable();

    void OpenDetails(const std::string& sSummary);
    void CloseDetails();

    std::string Document() const;

private:
    void CloseSection();

    std::string m_sTitle;
    std::string m_sVersion;
    std::string m_sBody;
    std::vector<std::string> m_aHeads; ///< of the table that is open
    bool m_bSection = false;
};

} // namespace report
