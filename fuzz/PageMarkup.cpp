#include "PageMarkup.h"

#include "Harness.h"

#include <vector>

namespace Fuzz {

namespace {

bool HasEnd(const std::string& Text, const std::string& End) {
    return Text.size() >= End.size() &&
           Text.compare(Text.size() - End.size(), End.size(), End) == 0;
}

bool IsClosedAtOnce(const std::string& Tag, const std::string& Name) {
    return HasEnd(Tag, "/") || Name == "!DOCTYPE" || Name == "meta" || Name == "img";
}

/// Quotes come in pairs, and a number is one.
void RequireSoundAttributes(const std::string& Tag) {
    Require(std::count(Tag.begin(), Tag.end(), '"') % 2 == 0, "an attribute ends");
    for (const char* szNone : {"\"not a number", "infinite\"", " nan", " inf", "\"nan", "\"inf"})
        Require(Tag.find(szNone) == std::string::npos, "an attribute has no number that is none");
}

/// What is open after a tag, without its brackets.
void Follow(const std::string& Tag, std::vector<std::string>& rOpen) {
    const std::string Name = Tag.substr(0, Tag.find_first_of(" \n/", 1));
    if (Tag[0] == '/') {
        Require(!rOpen.empty() && "/" + rOpen.back() == Name, "an element is closed in order");
        rOpen.pop_back();
        return;
    }
    RequireSoundAttributes(Tag);
    if (!IsClosedAtOnce(Tag, Name))
        rOpen.push_back(Name);
}

void RequireSoundText(const std::string& Text) {
    for (std::size_t n = Text.find('&'); n != std::string::npos; n = Text.find('&', n + 1)) {
        const std::size_t nEnd = Text.find(';', n);
        Require(nEnd != std::string::npos && nEnd - n <= 5, "a text has no mark of its own");
    }
}

} // namespace

void RequireSoundMarkup(const std::string& Page) {
    std::vector<std::string> aOpen;
    std::size_t nAt = 0;
    while ((nAt = Page.find('<', nAt)) != std::string::npos) {
        const std::size_t nEnd = Page.find('>', nAt);
        Require(nEnd != std::string::npos && nEnd > nAt + 1, "a tag ends");
        Follow(Page.substr(nAt + 1, nEnd - nAt - 1), aOpen);
        nAt = nEnd + 1;
        RequireSoundText(Page.substr(nAt, Page.find('<', nAt) - nAt));
    }
    Require(aOpen.empty(), "all elements are closed");
}

} // namespace Fuzz
