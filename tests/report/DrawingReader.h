#pragma once

/// Reads a drawing back as XML.

#include "report/Svg.h"

#include <pugixml.hpp>

#include <string>
#include <vector>

namespace TestSupport {

class ClDrawingReader {
public:
    /// The test fails where the text is no well-formed XML with an svg element alone.
    explicit ClDrawingReader(const std::string& sDrawing);

    pugi::xml_node Root() const { return m_Document.child("svg"); }
    report::StBox View() const;
    std::string Title() const { return Root().child_value("title"); }
    std::string Description() const { return Root().child_value("desc"); }

    /// All elements below the root, in the order of drawing.
    std::vector<pugi::xml_node> All() const;
    std::vector<pugi::xml_node> OfClass(const std::string& sClass) const;
    std::size_t CountOf(const std::string& sClass) const { return OfClass(sClass).size(); }
    /// The elements of a class and a name.
    std::vector<pugi::xml_node> OfClass(const std::string& sClass, const char* szElement) const;
    /// The first one of a class; the test fails where there is none.
    pugi::xml_node First(const std::string& sClass) const;

    /// The contents of the text elements.
    std::vector<std::string> Texts() const;
    /// The text element that reads so; the test fails where none does.
    pugi::xml_node Text(const std::string& sText) const;

private:
    pugi::xml_document m_Document;
};

/// A number that stands in an attribute; not a number where none does.
double Number(const pugi::xml_node& Node, const char* szAttribute);

/// All numbers that stand in an attribute.
std::vector<double> Numbers(const pugi::xml_node& Node, const char* szAttribute);

/// The tip of what is titled.
std::string Tip(const pugi::xml_node& Node);

/// Where a text stands, by the estimate of its width; upright ones turned.
report::StBox TextBox(const pugi::xml_node& Text);

/// What holds for every drawing: it has a name and a description that its root refers to, ids are
/// unique and begin with the prefix, all numbers are finite, all marks and texts lie in the view
/// box, no text lies on another one, and each class is one that the style sheet knows.
void ExpectSound(const std::string& sDrawing, const std::string& sPrefix);

} // namespace TestSupport
