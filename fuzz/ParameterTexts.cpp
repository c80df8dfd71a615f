// The tree of parameters: paths, texts, formats and rooms of any kind.

#include "Refusals.h"
#include "TextRoom.h"

#include "Tools/ParameterContainer.h"

#include <algorithm>

namespace {

Fuzz::ClMilestone s_Set("a text sets a parameter");
Fuzz::ClMilestone s_Found("a path is found");
Fuzz::ClMilestone s_Printed("a format prints a value");

enum class EColour : int { eRed = 1, eGreen = 2 };

/// Every kind of parameter, some of them a floor below.
struct StTree {
    StTree() {
        m_Root.SetName("Root");
        m_Root.AddNumeric("Number", &m_nNumber);
        m_Root.AddNumeric("Real", &m_dReal)->SetUpperBoundary(1000.0);
        m_Root.AddBool("Flag", &m_bFlag);
        ClParameterContainer* pBelow = m_Root.AddContainer("Below");
        pBelow->AddNumeric("Byte", &m_nByte)->SetFlags(ePfIn | ePfOut | ePfClamp);
        pBelow->AddEnum("Colour", &m_eColour, {{EColour::eRed, "Red"}, {EColour::eGreen, "Green"}});
        pBelow->AddPointer("Pointer", &m_pPointer);
    }

    int m_nNumber = 7;
    double m_dReal = 0.5;
    bool m_bFlag = true;
    unsigned char m_nByte = 200;
    EColour m_eColour = EColour::eGreen;
    int* m_pPointer = nullptr;
    ClParameterContainer m_Root;
};

void Read(ClParameter& rParameter) {
    Fuzz::Try([&] {
        const std::string Text =
            Fuzz::TextOf([&](char* p, unsigned long& n) { return rParameter.GetValue(p, n); });
        if (!Text.empty())
            s_Printed.Reach();
    });
    Fuzz::Try([&] {
        Fuzz::TextOf([&](char* p, unsigned long& n) { return rParameter.GetDefaultValue(p, n); });
    });
    const std::string Path =
        Fuzz::TextOf([&](char* p, unsigned long& n) { return rParameter.GetPathName(p, n); });
    Fuzz::Require(!Path.empty(), "a parameter has a path");
}

/// A format is the program's own word, and printed as wide as it asks for: a billion characters
/// take seconds.
bool IsWide(const std::string& Format) {
    int nDigits = 0;
    return std::any_of(Format.begin(), Format.end(), [&](char c) {
        nDigits = c >= '0' && c <= '9' ? nDigits + 1 : 0;
        return nDigits > 4;
    });
}

void Step(Fuzz::ClBytes& rBytes, StTree& rTree) {
    static constexpr const char* cazPaths[] = {"Root.Number",     "Root.Real",         "Root.Flag",
                                               "Root.Below.Byte", "Root.Below.Colour", "Root",
                                               "Root.Below",      "Root.Below.Pointer"};
    const int nWhat = rBytes.Next();
    const std::string Text = rBytes.Text(24);
    ClParameter* pFound = rTree.m_Root.Find(cazPaths[nWhat >> 2 & 7]);
    if ((nWhat & 3) == 0)
        pFound = rTree.m_Root.Find(Text.c_str());
    if (pFound == nullptr)
        return;
    s_Found.Reach();
    if ((nWhat & 3) == 1 && Fuzz::Try([&] { pFound->SetValue(Text.c_str()); }))
        s_Set.Reach();
    if ((nWhat & 3) == 2 && pFound->GetNumericInterface() != nullptr && !IsWide(Text))
        Fuzz::Try([&] { pFound->GetNumericInterface()->SetFormat(Text.c_str()); });
    Read(*pFound);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    StTree Tree;
    for (int i = 0; i < 30 && !Bytes.IsEmpty(); ++i)
        Step(Bytes, Tree);
    return 0;
}
