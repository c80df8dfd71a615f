#pragma once

/// A small writer of SVG: one drawing that stands in a page by itself, has a name and a description
/// for those who do not see it, and no colours. What a mark means is told by its class; the style
/// sheet of the page, `DrawingStyle()`, decides how it looks on light, on dark and on paper.

#include "diagnosis/Points.h"

#include <string>
#include <string_view>

namespace report {

using diagnosis::Points;
using diagnosis::StPoint;

/// The classes of marks, each with what it means.
namespace mark {
constexpr const char* cszBacking = "backing";     ///< behind a picture, white in every scheme
constexpr const char* cszPicture = "picture";     ///< a capture, paler than it is
constexpr const char* cszOver = "over-picture";   ///< marks on a picture: colours of light paper
constexpr const char* cszBare = "marks";          ///< marks on no picture
constexpr const char* cszFrame = "frame";         ///< border of a capture, an image or a panel
constexpr const char* cszRule = "rule";           ///< quiet line of a scale, behind the data
constexpr const char* cszAxis = "axis";           ///< axis and its ticks
constexpr const char* cszNet = "net";             ///< between dots that are neighbours
constexpr const char* cszDot = "dot";             ///< a dot as found: an open ring
constexpr const char* cszDoubtful = "doubtful";   ///< around what is not believed: a thick square
constexpr const char* cszMissing = "missing";     ///< where something was expected: dashed
constexpr const char* cszRefused = "refused";     ///< found and not taken: a box, crossed out
constexpr const char* cszVector = "vector";       ///< arrow of a displacement
constexpr const char* cszWrong = "vector-wrong";  ///< that of a doubtful dot: thick
constexpr const char* cszBar = "bar";             ///< of a histogram
constexpr const char* cszMean = "mean";           ///< line at a mean or median: long dashes
constexpr const char* cszMaximum = "maximum";     ///< line at a maximum: solid
constexpr const char* cszContour = "contour";     ///< between classes of a map
constexpr const char* cszHull = "hull";           ///< around the dots: beyond it is extrapolation
constexpr const char* cszCasing = "casing";       ///< paper beside a line that lies on a map
constexpr const char* cszNominal = "nominal";     ///< as it should be: dashed, quiet
constexpr const char* cszActual = "actual";       ///< as it is: solid
constexpr const char* cszCovered = "covered";     ///< area that a capture covers: pale
constexpr const char* cszUncovered = "uncovered"; ///< area that it does not: hatched
constexpr const char* cszOutline = "outline";     ///< where a capture ends
constexpr const char* cszPair = "pair";           ///< line between two dots that fail together
constexpr const char* cszPoint = "point";         ///< a value among many: a filled disc
constexpr const char* cszOutlier = "outlier";     ///< one to look at: a filled diamond
constexpr const char* cszAbsent = "absent";       ///< no value: a cross on the axis
constexpr const char* cszLimit = "limit";         ///< line at a limit: short dashes
constexpr const char* cszPlate = "plate";         ///< opaque ground of a number that lies on a map
constexpr const char* cszUnknown = "unknown";     ///< place of a map that has no value: bare
constexpr const char* cszLevel = "level"; ///< first part of "level0" to "level7", few to much

// Texts
constexpr const char* cszText = "text";       ///< labels
constexpr const char* cszQuiet = "quiet";     ///< numbers of scales, side remarks
constexpr const char* cszStrong = "strong";   ///< what is to be read first
constexpr const char* cszWarning = "warning"; ///< names of what is doubtful
} // namespace mark

/// Upper left corner and size.
struct StBox {
    double m_dX = 0.0;
    double m_dY = 0.0;
    double m_dWidth = 0.0;
    double m_dHeight = 0.0;

    double Right() const { return m_dX + m_dWidth; }
    double Bottom() const { return m_dY + m_dHeight; }
    StPoint Middle() const { return {m_dX + 0.5 * m_dWidth, m_dY + 0.5 * m_dHeight}; }
};

enum class EAnchor { eStart, eMiddle, eEnd };

/// Height of letters and an upper estimate of the width of a text, units of the drawing: labels
/// are laid out by it.
constexpr double cdTextSize = 11.0;
double TextWidth(std::string_view szText);

/// A text that is no wider: its end is cut where it would be.
std::string Fitted(std::string_view szText, double dWidth);

/// All coordinates are those of the view box, x to the right, y downward. Marks that have a
/// coordinate that is no finite number are left out.
class ClSvg {
public:
    /// `sPrefix` tells the ids of this drawing from all others of a page: letters, digits and
    /// hyphens, a letter first. Throws std::invalid_argument for another one, and for a size that
    /// is not positive and finite.
    ClSvg(const std::string& sPrefix, double dWidth, double dHeight, const std::string& sTitle,
          const std::string& sDescription);

    StBox View() const { return {0.0, 0.0, m_dWidth, m_dHeight}; }

    /// A title that is not empty is shown where the pointer rests on the mark.
    void Line(const StPoint& From, const StPoint& To, const char* szClass,
              const std::string& sTitle = {});
    /// A line with a head at its end; without a head where it is too short for one.
    void Arrow(const StPoint& From, const StPoint& To, const char* szClass,
               const std::string& sTitle = {});
    void Circle(const StPoint& Centre, double dRadius, const char* szClass,
                const std::string& sTitle = {});
    void Diamond(const StPoint& Centre, double dRadius, const char* szClass,
                 const std::string& sTitle = {});
    void Cross(const StPoint& Centre, double dRadius, const char* szClass,
               const std::string& sTitle = {});
    void Rect(const StBox& Box, const char* szClass, const std::string& sTitle = {});
    /// Points that are no finite numbers are left out, with fewer than two left the whole line.
    void Polyline(const Points& aPoints, const char* szClass);
    void Polygon(const Points& aPoints, const char* szClass, const std::string& sTitle = {});
    /// `Place` is the left, middle or right end of the base line.
    void Text(const StPoint& Place, const std::string& sText, const char* szClass,
              EAnchor eAnchor = EAnchor::eStart);
    /// Text that reads upward, its middle at the place.
    void UprightText(const StPoint& Place, const std::string& sText, const char* szClass);
    /// Lines from each point of an even place to the next one, as one mark.
    void Segments(const Points& aEnds, const char* szClass);
    /// A picture stretched to the box; `sSource` is a data URI.
    void Image(const StBox& Box, const std::string& sSource);

    void OpenGroup(const char* szClass);
    void CloseGroup();

    /// The whole drawing; groups that are open are closed.
    std::string Document() const;

private:
    void Mark(const std::string& sElement, const char* szClass, const std::string& sAttributes,
              const std::string& sTitle);

    std::string m_sPrefix;
    double m_dWidth;
    double m_dHeight;
    std::string m_sHead;
    std::string m_sBody;
    int m_nOpen = 0;
};

} // namespace report
