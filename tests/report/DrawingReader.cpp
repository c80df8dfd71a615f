#include "report/DrawingReader.h"

#include "report/DrawingStyle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace TestSupport {

using report::StBox;
using report::StPoint;

namespace {

constexpr double cdRounding = 0.006; ///< two decimals

void Gather(const pugi::xml_node& Node, std::vector<pugi::xml_node>& rAll) {
    for (const pugi::xml_node& Child : Node.children())
        if (Child.type() == pugi::node_element) {
            rAll.push_back(Child);
            Gather(Child, rAll);
        }
}

/// Where the numbers of an element's attributes put it.
report::Points ExtremesOf(const pugi::xml_node& Node) {
    const std::string sName = Node.name();
    const auto n = [&](const char* szAttribute) { return Number(Node, szAttribute); };
    if (sName == "line")
        return {{n("x1"), n("y1")}, {n("x2"), n("y2")}};
    if (sName == "circle")
        return {{n("cx") - n("r"), n("cy") - n("r")}, {n("cx") + n("r"), n("cy") + n("r")}};
    if (sName == "rect" || sName == "image")
        return {{n("x"), n("y")}, {n("x") + n("width"), n("y") + n("height")}};
    report::Points aPoints;
    const auto aNumbers = Numbers(Node, sName == "path" ? "d" : "points");
    for (std::size_t i = 1; i < aNumbers.size(); i += 2)
        aPoints.push_back({aNumbers[i - 1], aNumbers[i]});
    return aPoints;
}

void ExpectWithin(const StBox& View, const StPoint& Point, const pugi::xml_node& Node) {
    EXPECT_TRUE(Point.m_dX >= -cdRounding && Point.m_dX <= View.Right() + cdRounding &&
                Point.m_dY >= -cdRounding && Point.m_dY <= View.Bottom() + cdRounding)
        << "<" << Node.name() << " class=" << Node.attribute("class").value() << "> "
        << Node.child_value() << " reaches to " << Point.m_dX << ", " << Point.m_dY;
}

bool IsShape(const pugi::xml_node& Node) {
    const std::set<std::string> aShapes{"line", "circle",  "rect",    "image",
                                        "path", "polygon", "polyline"};
    return aShapes.count(Node.name()) > 0;
}

void ExpectNamed(const ClDrawingReader& Drawing, const std::string& sPrefix) {
    const pugi::xml_node Root = Drawing.Root();
    EXPECT_STREQ(Root.attribute("role").value(), "img");
    EXPECT_EQ(Root.attribute("aria-labelledby").value(),
              sPrefix + "-title " + sPrefix + "-description");
    EXPECT_EQ(Root.child("title").attribute("id").value(), sPrefix + "-title");
    EXPECT_EQ(Root.child("desc").attribute("id").value(), sPrefix + "-description");
    EXPECT_FALSE(Drawing.Title().empty());
    EXPECT_FALSE(Drawing.Description().empty());
}

void ExpectUniqueIds(const ClDrawingReader& Drawing, const std::string& sPrefix) {
    std::set<std::string> aIds;
    for (const pugi::xml_node& Node : Drawing.All())
        if (const pugi::xml_attribute Id = Node.attribute("id")) {
            EXPECT_TRUE(aIds.insert(Id.value()).second) << Id.value();
            EXPECT_EQ(std::string(Id.value()).find(sPrefix + "-"), 0U) << Id.value();
        }
}

/// Neither words for what is no number, nor the sign of what is none.
void ExpectPlainNumbers(const ClDrawingReader& Drawing) {
    for (const pugi::xml_node& Node : Drawing.All())
        for (const pugi::xml_attribute& Attribute : Node.attributes()) {
            const std::string sValue = std::string(Attribute.value()) + " ";
            for (const char* szNone : {"nan", "not a number", "inf", "-0 ", "-0,"})
                EXPECT_EQ(sValue.find(szNone), std::string::npos) << sValue;
        }
}

bool IsInStyle(const std::string& sClass) {
    static const std::string s_sStyle = report::DrawingStyle();
    return sClass.empty() || s_sStyle.find("svg.drawing ." + sClass + "{") != std::string::npos;
}

void ExpectKnownClasses(const ClDrawingReader& Drawing) {
    for (const pugi::xml_node& Node : Drawing.All())
        EXPECT_TRUE(IsInStyle(Node.attribute("class").value())) << Node.attribute("class").value();
}

bool Overlap(const StBox& a, const StBox& b) {
    return a.m_dX < b.Right() && b.m_dX < a.Right() && a.m_dY < b.Bottom() && b.m_dY < a.Bottom();
}

void ExpectApart(const std::vector<pugi::xml_node>& aTexts) {
    std::vector<StBox> aBoxes;
    for (const pugi::xml_node& Text : aTexts) {
        aBoxes.push_back(TextBox(Text));
        for (std::size_t i = 0; i + 1 < aBoxes.size(); ++i)
            EXPECT_FALSE(Overlap(aBoxes.back(), aBoxes[i]))
                << "\"" << Text.child_value() << "\" lies on \"" << aTexts[i].child_value() << "\"";
    }
}

} // namespace

ClDrawingReader::ClDrawingReader(const std::string& sDrawing) {
    const auto result = m_Document.load_buffer(sDrawing.data(), sDrawing.size(),
                                               pugi::parse_default | pugi::parse_ws_pcdata_single,
                                               pugi::encoding_utf8);
    EXPECT_TRUE(result) << result.description() << " at "
                        << sDrawing.substr(
                               static_cast<std::size_t>(std::max<std::ptrdiff_t>(result.offset, 0)),
                               60);
    EXPECT_STREQ(m_Document.document_element().name(), "svg");
}

StBox ClDrawingReader::View() const {
    const auto aView = Numbers(Root(), "viewBox");
    return aView.size() == 4 ? StBox{aView[0], aView[1], aView[2], aView[3]} : StBox{};
}

std::vector<pugi::xml_node> ClDrawingReader::All() const {
    std::vector<pugi::xml_node> aAll;
    Gather(Root(), aAll);
    return aAll;
}

std::vector<pugi::xml_node> ClDrawingReader::OfClass(const std::string& sClass) const {
    std::vector<pugi::xml_node> aFound;
    for (const pugi::xml_node& Node : All())
        if (Node.attribute("class").value() == sClass)
            aFound.push_back(Node);
    return aFound;
}

std::vector<pugi::xml_node> ClDrawingReader::OfClass(const std::string& sClass,
                                                     const char* szElement) const {
    std::vector<pugi::xml_node> aFound;
    for (const pugi::xml_node& Node : OfClass(sClass))
        if (std::string(Node.name()) == szElement)
            aFound.push_back(Node);
    return aFound;
}

pugi::xml_node ClDrawingReader::First(const std::string& sClass) const {
    const auto aFound = OfClass(sClass);
    EXPECT_FALSE(aFound.empty()) << "no " << sClass;
    return aFound.empty() ? pugi::xml_node() : aFound.front();
}

std::vector<std::string> ClDrawingReader::Texts() const {
    std::vector<std::string> aTexts;
    for (const pugi::xml_node& Node : All())
        if (std::string(Node.name()) == "text")
            aTexts.emplace_back(Node.child_value());
    return aTexts;
}

pugi::xml_node ClDrawingReader::Text(const std::string& sText) const {
    for (const pugi::xml_node& Node : All())
        if (std::string(Node.name()) == "text" && Node.child_value() == sText)
            return Node;
    ADD_FAILURE() << "no text reads \"" << sText << "\"";
    return {};
}

double Number(const pugi::xml_node& Node, const char* szAttribute) {
    return Node.attribute(szAttribute).as_double(std::nan(""));
}

std::vector<double> Numbers(const pugi::xml_node& Node, const char* szAttribute) {
    std::vector<double> aNumbers;
    for (const char* p = Node.attribute(szAttribute).value(); *p != '\0';) {
        char* pEnd = nullptr;
        const double d = std::strtod(p, &pEnd);
        if (pEnd != p)
            aNumbers.push_back(d);
        p = pEnd != p ? pEnd : p + 1;
    }
    return aNumbers;
}

std::string Tip(const pugi::xml_node& Node) {
    return Node.child_value("title");
}

StBox TextBox(const pugi::xml_node& Text) {
    const double dWidth = report::TextWidth(Text.child_value());
    const std::string sAnchor = Text.attribute("text-anchor").value();
    const double dLeft = sAnchor == "end" ? -dWidth : sAnchor == "middle" ? -0.5 * dWidth : 0.0;
    constexpr double cdAscent = 0.72 * report::cdTextSize; // of capitals and digits
    if (Text.attribute("transform")) {
        const auto aTurn = Numbers(Text, "transform");
        return {aTurn.at(0) - cdAscent, aTurn.at(1) - 0.5 * dWidth, cdAscent, dWidth};
    }
    return {Number(Text, "x") + dLeft, Number(Text, "y") - cdAscent, dWidth, cdAscent};
}

void ExpectSound(const std::string& sDrawing, const std::string& sPrefix) {
    const ClDrawingReader Drawing(sDrawing);
    ExpectNamed(Drawing, sPrefix);
    ExpectUniqueIds(Drawing, sPrefix);
    ExpectKnownClasses(Drawing);
    ExpectPlainNumbers(Drawing);
    std::vector<pugi::xml_node> aTexts;
    for (const pugi::xml_node& Node : Drawing.All()) {
        if (std::string(Node.name()) == "text")
            aTexts.push_back(Node);
        if (IsShape(Node))
            for (const StPoint& Point : ExtremesOf(Node))
                ExpectWithin(Drawing.View(), Point, Node);
    }
    for (const pugi::xml_node& Text : aTexts) {
        const StBox Box = TextBox(Text);
        ExpectWithin(Drawing.View(), {Box.m_dX, Box.m_dY}, Text);
        ExpectWithin(Drawing.View(), {Box.Right(), Box.Bottom()}, Text);
    }
    ExpectApart(aTexts);
}

} // namespace TestSupport
