#include "report/Svg.h"

#include "report/Markup.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <stdexcept>

namespace report {

namespace {

constexpr int cnDecimals = 2;
constexpr unsigned cnWide = 0xE3U;   ///< first byte of the characters that are as wide as high
constexpr double cdGlyphWidth = 0.6; ///< of its height, a mean over digits and small letters

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsOfName(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '-';
}

bool IsPrefix(const std::string& sPrefix) {
    return !sPrefix.empty() && IsLetter(sPrefix[0]) &&
           std::all_of(sPrefix.begin(), sPrefix.end(), IsOfName);
}

bool IsSize(double d) {
    return std::isfinite(d) && d > 0.0;
}

bool AreFinite(std::initializer_list<double> aValues) {
    return std::all_of(aValues.begin(), aValues.end(), [](double d) { return std::isfinite(d); });
}

bool IsFinite(const StPoint& Point) {
    return AreFinite({Point.m_dX, Point.m_dY});
}

std::string Number(double dValue) {
    std::string sNumber = Decimal(dValue, cnDecimals);
    sNumber.erase(sNumber.find_last_not_of('0') + 1);
    if (sNumber.back() == '.')
        sNumber.pop_back();
    return sNumber;
}

std::string Attribute(const char* szName, const std::string& sValue) {
    return std::string(" ").append(szName).append("=\"").append(sValue).append("\"");
}

std::string Attribute(const char* szName, double dValue) {
    return Attribute(szName, Number(dValue));
}

std::string Element(const char* szName, const std::string& sAttributes, const std::string& sText) {
    return std::string("<") + szName + sAttributes + ">" + Escaped(sText) + "</" + szName + ">\n";
}

std::string BoxAttributes(const StBox& Box) {
    return Attribute("x", Box.m_dX) + Attribute("y", Box.m_dY) + Attribute("width", Box.m_dWidth) +
           Attribute("height", Box.m_dHeight);
}

bool IsBox(const StBox& Box) {
    return AreFinite({Box.m_dX, Box.m_dY, Box.m_dWidth, Box.m_dHeight}) && Box.m_dWidth >= 0.0 &&
           Box.m_dHeight >= 0.0;
}

std::string PointsAttribute(const Points& aPoints) {
    std::string sPoints;
    for (const StPoint& Point : aPoints)
        sPoints += (sPoints.empty() ? "" : " ") + Number(Point.m_dX) + "," + Number(Point.m_dY);
    return Attribute("points", sPoints);
}

Points FiniteOf(Points aPoints) {
    aPoints.erase(std::remove_if(aPoints.begin(), aPoints.end(),
                                 [](const StPoint& Point) { return !IsFinite(Point); }),
                  aPoints.end());
    return aPoints;
}

const char* AnchorName(EAnchor eAnchor) {
    constexpr std::array<const char*, 3> aNames{"start", "middle", "end"};
    return aNames.at(static_cast<std::size_t>(eAnchor));
}

std::string SegmentPath(const StPoint& From, const StPoint& To) {
    return "M" + Number(From.m_dX) + " " + Number(From.m_dY) + "L" + Number(To.m_dX) + " " +
           Number(To.m_dY);
}

/// The two barbs, as long as a third of a short arrow and four units of a long one.
std::string HeadPath(const StPoint& From, const StPoint& To) {
    constexpr double cdLeast = 2.0;
    constexpr double cdHalfWidth = 0.45; // of the length of the head
    const double dLength = std::sqrt(diagnosis::SquaredLength(To - From));
    if (!(dLength >= cdLeast))
        return {};
    const double dHead = std::min(4.0, dLength / 3.0) / dLength;
    const StPoint Back{dHead * (From.m_dX - To.m_dX), dHead * (From.m_dY - To.m_dY)};
    const StPoint Side{-cdHalfWidth * Back.m_dY, cdHalfWidth * Back.m_dX};
    return SegmentPath(To + Back + Side, To) + SegmentPath(To + Back - Side, To);
}

} // namespace

double TextWidth(std::string_view szText) {
    double dGlyphs = 0.0;
    for (const char c : Readable(szText)) {
        const auto nByte = static_cast<unsigned char>(c);
        if (nByte >= cnWide)
            dGlyphs += 2.0;
        else if ((nByte & 0xC0U) != 0x80U)
            dGlyphs += 1.0;
    }
    return cdGlyphWidth * cdTextSize * dGlyphs;
}

std::string Fitted(std::string_view szText, double dWidth) {
    std::string sText = Readable(szText);
    for (std::size_t n = sText.size(); n > 0 && TextWidth(sText) > dWidth; --n)
        sText = Shortened(szText, n);
    return sText;
}

ClSvg::ClSvg(const std::string& sPrefix, double dWidth, double dHeight, const std::string& sTitle,
             const std::string& sDescription)
    : m_sPrefix(sPrefix), m_dWidth(dWidth), m_dHeight(dHeight) {
    if (!IsPrefix(sPrefix))
        throw std::invalid_argument("the ids of a drawing begin with letters, digits and hyphens");
    if (!IsSize(dWidth) || !IsSize(dHeight))
        throw std::invalid_argument("a drawing has a width and a height");
    const std::string sTitleId = sPrefix + "-title";
    const std::string sDescriptionId = sPrefix + "-description";
    m_sHead = Element("title", Attribute("id", sTitleId), sTitle) +
              Element("desc", Attribute("id", sDescriptionId), sDescription);
}

void ClSvg::Mark(const std::string& sElement, const char* szClass, const std::string& sAttributes,
                 const std::string& sTitle) {
    m_sBody += "<" + sElement + Attribute("class", Escaped(szClass)) + sAttributes;
    m_sBody +=
        sTitle.empty() ? "/>\n" : "><title>" + Escaped(sTitle) + "</title></" + sElement + ">\n";
}

void ClSvg::Line(const StPoint& From, const StPoint& To, const char* szClass,
                 const std::string& sTitle) {
    if (IsFinite(From) && IsFinite(To))
        Mark("line", szClass,
             Attribute("x1", From.m_dX) + Attribute("y1", From.m_dY) + Attribute("x2", To.m_dX) +
                 Attribute("y2", To.m_dY),
             sTitle);
}

void ClSvg::Arrow(const StPoint& From, const StPoint& To, const char* szClass,
                  const std::string& sTitle) {
    if (IsFinite(From) && IsFinite(To))
        Mark("path", szClass, Attribute("d", SegmentPath(From, To) + HeadPath(From, To)), sTitle);
}

void ClSvg::Circle(const StPoint& Centre, double dRadius, const char* szClass,
                   const std::string& sTitle) {
    if (IsFinite(Centre))
        Mark("circle", szClass,
             Attribute("cx", Centre.m_dX) + Attribute("cy", Centre.m_dY) + Attribute("r", dRadius),
             sTitle);
}

void ClSvg::Diamond(const StPoint& Centre, double dRadius, const char* szClass,
                    const std::string& sTitle) {
    if (IsFinite(Centre))
        Polygon({Centre - StPoint{0.0, dRadius}, Centre + StPoint{dRadius, 0.0},
                 Centre + StPoint{0.0, dRadius}, Centre - StPoint{dRadius, 0.0}},
                szClass, sTitle);
}

void ClSvg::Cross(const StPoint& Centre, double dRadius, const char* szClass,
                  const std::string& sTitle) {
    const StPoint Falling{dRadius, dRadius};
    const StPoint Rising{dRadius, -dRadius};
    if (IsFinite(Centre))
        Mark("path", szClass,
             Attribute("d", SegmentPath(Centre - Falling, Centre + Falling) +
                                SegmentPath(Centre - Rising, Centre + Rising)),
             sTitle);
}

void ClSvg::Rect(const StBox& Box, const char* szClass, const std::string& sTitle) {
    if (IsBox(Box))
        Mark("rect", szClass, BoxAttributes(Box), sTitle);
}

void ClSvg::Polyline(const Points& aPoints, const char* szClass) {
    const Points aFinite = FiniteOf(aPoints);
    if (aFinite.size() >= 2)
        Mark("polyline", szClass, PointsAttribute(aFinite), {});
}

void ClSvg::Polygon(const Points& aPoints, const char* szClass, const std::string& sTitle) {
    const Points aFinite = FiniteOf(aPoints);
    if (aFinite.size() >= 3)
        Mark("polygon", szClass, PointsAttribute(aFinite), sTitle);
}

void ClSvg::Text(const StPoint& Place, const std::string& sText, const char* szClass,
                 EAnchor eAnchor) {
    if (IsFinite(Place))
        m_sBody +=
            Element("text",
                    Attribute("class", Escaped(szClass)) + Attribute("x", Place.m_dX) +
                        Attribute("y", Place.m_dY) + Attribute("text-anchor", AnchorName(eAnchor)),
                    sText);
}

void ClSvg::UprightText(const StPoint& Place, const std::string& sText, const char* szClass) {
    const std::string sTurn =
        "translate(" + Number(Place.m_dX) + " " + Number(Place.m_dY) + ") rotate(-90)";
    if (IsFinite(Place))
        m_sBody += Element("text",
                           Attribute("class", Escaped(szClass)) + Attribute("transform", sTurn) +
                               Attribute("text-anchor", "middle"),
                           sText);
}

void ClSvg::Segments(const Points& aEnds, const char* szClass) {
    std::string sPath;
    for (std::size_t i = 1; i < aEnds.size(); i += 2)
        if (IsFinite(aEnds[i - 1]) && IsFinite(aEnds[i]))
            sPath += SegmentPath(aEnds[i - 1], aEnds[i]);
    if (!sPath.empty())
        Mark("path", szClass, Attribute("d", sPath), {});
}

void ClSvg::Image(const StBox& Box, const std::string& sSource) {
    if (IsBox(Box))
        m_sBody += "<image" + Attribute("class", mark::cszPicture) + BoxAttributes(Box) +
                   Attribute("preserveAspectRatio", "none") + Attribute("href", Escaped(sSource)) +
                   "/>\n";
}

void ClSvg::OpenGroup(const char* szClass) {
    m_sBody += "<g" + Attribute("class", Escaped(szClass)) + ">\n";
    ++m_nOpen;
}

void ClSvg::CloseGroup() {
    if (m_nOpen == 0)
        throw std::logic_error("no group is open");
    m_sBody += "</g>\n";
    --m_nOpen;
}

std::string ClSvg::Document() const {
    std::string sOpen =
        "<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("class", "drawing") +
        Attribute("viewBox", "0 0 " + Number(m_dWidth) + " " + Number(m_dHeight)) +
        Attribute("role", "img") +
        Attribute("aria-labelledby", m_sPrefix + "-title " + m_sPrefix + "-description") + ">\n";
    std::string sClose;
    for (int i = 0; i < m_nOpen; ++i)
        sClose += "</g>\n";
    return sOpen + m_sHead + m_sBody + sClose + "</svg>\n";
}

} // namespace report
