// A tree of parameters of any names, values and depth: it is walked, found, copied, written as text
// and read back from its text.

#include "Refusals.h"
#include "TextRoom.h"

#include "Tools/ParameterContainer.h"

#include <deque>
#include <memory>
#include <vector>

namespace {

Fuzz::ClMilestone s_Nested("a parameter stands three floors below the root");
Fuzz::ClMilestone s_Found("every path of a tree is found");
Fuzz::ClMilestone s_Refused("a name is refused");
Fuzz::ClMilestone s_Set("a text sets a parameter");

enum class EColour : int { eRed = 1, eGreen = 2 };

/// Whether a path can name the entry: no dots, and not nothing.
bool IsPlain(const std::string& Name) {
    return !Name.empty() && Name.find('.') == std::string::npos;
}

/// Built step by step. Variables outlive the parameters that are bound to them.
class ClTree {
public:
    ClTree() { m_Root.SetName("Root"); }

    void Step(Fuzz::ClBytes& rBytes) {
        const int nKind = rBytes.Below(8);
        const int nValue = rBytes.NextSigned();
        const std::string Name = rBytes.Text(20).c_str(); // up to its first zero
        if (nKind == 6)
            Leave();
        else if (nKind == 7)
            SetLast(Name);
        else
            Add(nKind, nValue, Name);
    }

    ClParameterContainer& Root() { return m_Root; }
    bool IsPlainOverall() const { return m_bPlain; }
    std::size_t Count() const { return m_nCount; }

private:
    void Add(int nKind, int nValue, const std::string& Name) {
        ClParameter* pAdded = nullptr;
        if (!Fuzz::Try([&] { pAdded = New(nKind, nValue, Name.c_str()); }))
            return s_Refused.Reach();
        ++m_nCount;
        m_bPlain = m_bPlain && IsPlain(Name);
        m_pLast = pAdded;
        if (ClParameterContainer* pEntered = pAdded->GetContainerInterface())
            m_apFloors.push_back(pEntered);
        else if (m_apFloors.size() > 3)
            s_Nested.Reach();
    }

    ClParameter* New(int nKind, int nValue, const char* szName) {
        ClParameterContainer& rHere = *m_apFloors.back();
        switch (nKind) {
        case 0:
            return rHere.AddNumeric(szName, &m_anInts.emplace_back(nValue));
        case 1:
            return rHere.AddNumeric(szName, &m_adReals.emplace_back(nValue / 8.0));
        case 2:
            return rHere.AddNumeric(
                szName, &m_anBytes.emplace_back(static_cast<unsigned char>(nValue & 255)));
        case 3:
            return rHere.AddBool(szName, &m_abFlags.emplace_back(nValue < 0));
        case 4:
            return rHere.AddEnum(
                szName, &m_aeColours.emplace_back(nValue < 0 ? EColour::eRed : EColour::eGreen),
                {{EColour::eRed, "Red"}, {EColour::eGreen, "Green"}});
        default:
            return rHere.AddContainer(szName);
        }
    }

    void Leave() {
        if (m_apFloors.size() > 1)
            m_apFloors.pop_back();
    }

    void SetLast(const std::string& Text) {
        if (m_pLast != nullptr && Fuzz::Try([&] { m_pLast->SetValue(Text.c_str()); }))
            s_Set.Reach();
    }

    std::deque<int> m_anInts;
    std::deque<double> m_adReals;
    std::deque<unsigned char> m_anBytes;
    std::deque<bool> m_abFlags;
    std::deque<EColour> m_aeColours;
    ClParameterContainer m_Root;
    std::vector<ClParameterContainer*> m_apFloors{&m_Root};
    ClParameter* m_pLast = nullptr;
    std::size_t m_nCount = 0;
    bool m_bPlain = true;
};

std::string PathOf(const ClParameter& Parameter) {
    return Fuzz::TextOf([&](char* p, unsigned long& n) { return Parameter.GetPathName(p, n); });
}

std::string ValueOf(ClParameter& rParameter) {
    return Fuzz::TextOf([&](char* p, unsigned long& n) { return rParameter.GetValue(p, n); });
}

std::vector<ClParameter*> EntriesOf(const ClParameterContainer& Root) {
    std::vector<ClParameter*> apEntries;
    for (ClParameter* p = Root.GetFirstParameter(); p != nullptr; p = Root.GetNextParameter(p))
        apEntries.push_back(p);
    return apEntries;
}

/// A line for each entry.
std::string Listing(const ClParameterContainer& Root) {
    std::string Lines;
    for (ClParameter* p : EntriesOf(Root))
        Lines += PathOf(*p) + " = " + (p->IsContainer() ? "" : ValueOf(*p)) + '\n';
    return Lines;
}

void FindAll(ClTree& rTree, const std::vector<ClParameter*>& apEntries) {
    for (ClParameter* p : apEntries) {
        ClParameter* pFound = nullptr;
        Fuzz::Try([&] { pFound = rTree.Root().Find(PathOf(*p).c_str()); });
        Fuzz::Require(pFound == p || !rTree.IsPlainOverall(), "a path leads to its parameter");
    }
    if (rTree.IsPlainOverall() && apEntries.size() > 3)
        s_Found.Reach();
}

void Copy(ClParameterContainer& rRoot) {
    const std::string Before = Listing(rRoot);
    const std::unique_ptr<ClParameterBase> pCopy(rRoot.Clone());
    Fuzz::Require(Listing(*pCopy->GetContainerInterface()) == Before,
                  "a copy has the names and the values");
    ClParameterContainer Other;
    rRoot.CloneDataTo(&Other);
    Fuzz::Require(Listing(Other) == Before, "a container that is filled has them, too");
}

void UseDefaults(ClParameterContainer& rRoot) {
    rRoot.CopyDefaultFromValue(&rRoot);
    Fuzz::Require(rRoot.IsDefault(), "the values are the defaults");
    const std::string Before = Listing(rRoot);
    rRoot.SwapDefaultAndValue();
    rRoot.SetToDefault();
    Fuzz::Require(Listing(rRoot) == Before, "equal values and defaults stay");
}

/// A value of a text is given as the same text again.
void SetAgain(const std::vector<ClParameter*>& apEntries) {
    for (ClParameter* p : apEntries) {
        const std::string Text = p->IsContainer() ? std::string() : ValueOf(*p);
        if (Fuzz::Try([&] { p->SetValue(Text.c_str()); }))
            Fuzz::Require(p->IsContainer() || ValueOf(*p) == Text, "a text sets what it tells");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    ClTree Tree;
    for (int i = 0; i < 60 && !Bytes.IsEmpty(); ++i)
        Tree.Step(Bytes);
    const std::vector<ClParameter*> apEntries = EntriesOf(Tree.Root());
    Fuzz::Require(apEntries.size() == Tree.Count(), "a walk comes by every entry");
    FindAll(Tree, apEntries);
    Copy(Tree.Root());
    UseDefaults(Tree.Root());
    SetAgain(apEntries);
    return 0;
}
