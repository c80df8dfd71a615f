#include "Tools/ParameterContainer.h"

#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <memory>
#include <string>
#include <vector>

namespace {

using TestSupport::DefaultText;
using TestSupport::ValueText;

/// A parameter that counts its kind.
class ClCounted : public TpParameterNumeric<long> {
public:
    ClCounted() { ++s_nAlive; }
    ~ClCounted() override { --s_nAlive; }

    static int s_nAlive;
};
int ClCounted::s_nAlive = 0;

/// Some settings of a made-up processor, as a tree: Width, Scale, Flag, Inner.Width, pTarget.
struct StSettings {
    void Publish(ClParameterContainer& Container) {
        Container.AddNumeric("Width", &m_nWidth);
        Container.AddNumeric("Scale", &m_dScale);
        Container.AddBool("Flag", &m_bFlag);
        Container.AddContainer("Inner")->AddNumeric("Width", &m_nInnerWidth);
        Container.AddPointer("pTarget", &m_pTarget);
    }

    long m_nWidth = 1;
    double m_dScale = 2.0;
    bool m_bFlag = true;
    int m_nInnerWidth = 3;
    int* m_pTarget = nullptr;
};

std::vector<std::string> WalkedNames(ClParameterContainer& Container) {
    std::vector<std::string> aNames;
    for (ClParameter* p = Container.GetFirstParameter(); p != nullptr;
         p = Container.GetNextParameter(p))
        aNames.push_back(p->GetName() != nullptr ? p->GetName() : "(unnamed)");
    return aNames;
}

TEST(ParameterContainer, AnswersWhatItIs) {
    ClParameterContainer container("Settings");
    EXPECT_STREQ(container.GetName(), "Settings");
    EXPECT_TRUE(container.IsContainer());
    EXPECT_TRUE(container.IsParameter());
    EXPECT_EQ(container.GetContainerInterface(), &container);
    EXPECT_EQ(container.GetNumericInterface(), nullptr);
    EXPECT_EQ(ClParameterContainer().GetName(), nullptr);
}

TEST(ParameterContainer, HasNoValue) {
    ClParameterContainer container;
    container.SetValue("12");
    EXPECT_EQ(ValueText(container), "");
    unsigned long nSize = 1;
    EXPECT_TRUE(container.GetValue(nullptr, nSize));
    EXPECT_EQ(nSize, 1u);
    nSize = 100;
    EXPECT_FALSE(container.GetDefaultValue(nullptr, nSize));
}

TEST(ParameterContainer, OwnsWhatIsAdded) {
    {
        ClParameterContainer container;
        container.AddParameter("a", Vek::NewObject<ClCounted>());
        container.AddContainer("Inner")->AddParam<ClCounted>("b");
        EXPECT_EQ(ClCounted::s_nAlive, 2);
        EXPECT_EQ(container.FindLocal("a")->GetContainer(), &container);
    }
    EXPECT_EQ(ClCounted::s_nAlive, 0);
}

TEST(ParameterContainer, DeletesItsEntriesOnClear) {
    ClParameterContainer container;
    for (int i = 0; i < 25; ++i)
        container.AddParam<ClCounted>(std::to_string(i).c_str());
    EXPECT_EQ(ClCounted::s_nAlive, 25);
    container.Clear();
    EXPECT_EQ(ClCounted::s_nAlive, 0);
    EXPECT_EQ(container.Entries(), 0u);
    container.AddParam<ClCounted>("0");
    EXPECT_EQ(container.Entries(), 1u);
}

TEST(ParameterContainer, RefusesANameThatDiffersOnlyInCase) {
    long nValue = 0;
    ClParameterContainer container;
    container.AddNumeric("Width", &nValue);
    EXPECT_THROWS(container.AddNumeric("WIDTH", &nValue), ClExTessarin, -46,
                  GetErrorDescriptionIntern(-46));
    EXPECT_TESSARIN(container.AddContainer("width"), -46);
    bool bValue = false;
    EXPECT_TESSARIN(container.AddBool("Width", &bValue), -46);
    long* pValue = nullptr;
    EXPECT_TESSARIN(container.AddPointer("Width", &pValue), -46);
    EXPECT_EQ(container.Entries(), 1u);
}

TEST(ParameterContainer, DestroysARefusedParameterOfItsOwnMaking) {
    ClParameterContainer container;
    container.AddParam<ClCounted>("a");
    EXPECT_TESSARIN(container.AddParam<ClCounted>("A"), -46);
    EXPECT_EQ(ClCounted::s_nAlive, 1);
}

TEST(ParameterContainer, LeavesARefusedParameterToTheCaller) {
    ClParameterContainer container;
    container.AddParam<ClCounted>("a");
    const auto pRefused = std::make_unique<ClCounted>();
    EXPECT_TESSARIN(container.AddParameter("A", pRefused.get()), -46);
    EXPECT_EQ(pRefused->GetContainer(), nullptr);
    EXPECT_EQ(container.Entries(), 1u);
}

TEST(ParameterContainer, AllowsANameAgainInAnotherContainer) {
    long nValue = 0;
    ClParameterContainer container;
    container.AddNumeric("Width", &nValue);
    EXPECT_NE(container.AddContainer("Inner")->AddNumeric("Width", &nValue), nullptr);
}

TEST(ParameterContainer, AllowsManyEntriesWithoutName) {
    long nValue = 0;
    ClParameterContainer container;
    container.AddNumeric(nullptr, &nValue);
    container.AddNumeric(nullptr, &nValue);
    EXPECT_EQ(container.Entries(), 2u);
    EXPECT_EQ(container.FindLocal(nullptr), nullptr);
    EXPECT_EQ(container.FindLocal(""), nullptr);
}

TEST(ParameterContainer, RefusesWhatItMustNotOwn) {
    ClParameterContainer root;
    ClParameterContainer* pInner = root.AddContainer("Inner");
    ClParameterContainer other;
    EXPECT_TESSARIN(root.AddParameter("a", nullptr), -44);
    EXPECT_TESSARIN(other.AddParameter("a", pInner), -44);
    EXPECT_TESSARIN(root.AddParameter("a", &root), -44);
    EXPECT_TESSARIN(pInner->AddParameter("a", &root), -44);
    EXPECT_EQ(root.Entries(), 1u);
    EXPECT_EQ(pInner->Entries(), 0u);
}

TEST(ParameterContainer, PublishesFlagsAndDescriptions) {
    long nValue = 0;
    int* pIn = nullptr;
    enum EMode { eFast, eExact } eMode = eExact;
    ClParameterContainer container;
    const ClParameter* pNumeric = container.AddNumeric("n", &nValue, "A number");
    const ClParameter* pPointer = container.AddPointer("p", &pIn, ePfIn, "An image");
    ClParameter* pEnum = container.AddEnum("e", &eMode, {{eFast, "Fast"}, {eExact, "Exact"}});
    EXPECT_EQ(pNumeric->GetFlags(), 3);
    EXPECT_STREQ(pNumeric->GetDescription(), "A number");
    EXPECT_EQ(pPointer->GetFlags(), 1);
    EXPECT_STREQ(pPointer->GetDescription(), "An image");
    EXPECT_TRUE(pPointer->IsPointer());
    EXPECT_EQ(ValueText(*pEnum), "Exact");
    EXPECT_EQ(pEnum->GetDescription(), nullptr);
}

TEST(ParameterContainer, WalksDepthFirst) {
    StSettings settings;
    ClParameterContainer container;
    settings.Publish(container);
    const std::vector<std::string> expected{"Width", "Scale", "Flag", "Inner", "Width", "pTarget"};
    EXPECT_EQ(WalkedNames(container), expected);
}

TEST(ParameterContainer, WalksOnlyWhatIsBelow) {
    StSettings settings;
    ClParameterContainer container;
    settings.Publish(container);
    ClParameterContainer* pInner = container.FindLocal("Inner")->GetContainerInterface();
    EXPECT_EQ(WalkedNames(*pInner), std::vector<std::string>{"Width"});
    EXPECT_EQ(pInner->GetNextParameter(container.FindLocal("Flag")), nullptr);
    EXPECT_EQ(container.GetNextParameter(&container), nullptr);
    EXPECT_EQ(container.GetNextParameter(nullptr), nullptr);
}

TEST(ParameterContainer, WalksPastEmptyContainersAndNestedEnds) {
    long nValue = 0;
    ClParameterContainer container;
    container.AddContainer("a")->AddContainer("b")->AddContainer("c");
    container.AddNumeric("d", &nValue);
    const std::vector<std::string> expected{"a", "b", "c", "d"};
    EXPECT_EQ(WalkedNames(container), expected);
    EXPECT_TRUE(WalkedNames(*container.AddContainer("e")).empty());
}

TEST(ParameterContainer, GivesTheEntryBehindAnIndex) {
    StSettings settings;
    ClParameterContainer container;
    settings.Publish(container);
    EXPECT_STREQ(container.GetNextParameter(0UL)->GetName(), "Scale");
    EXPECT_STREQ(container.GetNextParameter(3UL)->GetName(), "pTarget");
    EXPECT_EQ(container.GetNextParameter(4UL), nullptr);
    EXPECT_EQ(container.GetNextParameter(~0UL), nullptr);
}

TEST(ParameterContainer, CopiesValuesBetweenTrees) {
    int nTarget = 0;
    StSettings from{10, 20.0, false, 30, &nTarget};
    StSettings to;
    ClParameterContainer source;
    ClParameterContainer target;
    from.Publish(source);
    to.Publish(target);
    target.CopyValuesFrom(&source, false);
    EXPECT_EQ(to.m_nWidth, 10);
    EXPECT_EQ(to.m_dScale, 20.0);
    EXPECT_FALSE(to.m_bFlag);
    EXPECT_EQ(to.m_nInnerWidth, 30);
    EXPECT_EQ(to.m_pTarget, nullptr);
    target.CopyValuesFrom(&source, true);
    EXPECT_EQ(to.m_pTarget, &nTarget);
}

TEST(ParameterContainer, PairsByIndexAndSkipsOtherClasses) {
    long anFrom[] = {1, 2, 3};
    double dFrom = 4.0;
    long anTo[] = {10, 20, 30, 40};
    ClParameterContainer source;
    ClParameterContainer target;
    source.AddNumeric("a", &anFrom[0]);
    source.AddNumeric("b", &dFrom);
    source.AddContainer("c");
    source.AddNumeric("d", &anFrom[2]);
    target.AddNumeric("w", &anTo[0]);
    target.AddNumeric("x", &anTo[1]);
    target.AddNumeric("y", &anTo[2]);
    target.CopyValuesFrom(&source, false);
    EXPECT_EQ(anTo[0], 1);
    EXPECT_EQ(anTo[1], 20);
    EXPECT_EQ(anTo[2], 30);
    source.CopyValuesFrom(target.FindLocal("w"), false);
    source.CopyValuesFrom(nullptr, false);
    EXPECT_EQ(anFrom[0], 1);
}

TEST(ParameterContainer, HandlesDefaultsOfTheWholeTree) {
    StSettings settings;
    StSettings others{10, 20.0, false, 30, nullptr};
    ClParameterContainer container;
    ClParameterContainer other;
    settings.Publish(container);
    others.Publish(other);

    EXPECT_FALSE(container.IsDefault());
    container.CopyDefaultFromValue(&container);
    EXPECT_TRUE(container.IsDefault());
    other.CopyDefaultFromValue(&other);
    container.SetToDefaultFrom(&other);
    EXPECT_EQ(settings.m_nInnerWidth, 30);
    EXPECT_FALSE(container.IsDefault());
    container.SetToDefault();
    EXPECT_EQ(settings.m_nInnerWidth, 3);
    EXPECT_TRUE(settings.m_bFlag);
    container.CopyDefaultFrom(&other);
    EXPECT_EQ(DefaultText(*container.Find("Inner.Width")), "30");
    container.SwapDefaultAndValue();
    EXPECT_EQ(settings.m_dScale, 20.0);
    EXPECT_EQ(DefaultText(*container.FindLocal("Width")), "1");
}

TEST(ParameterContainer, AddsAParameterUnderTheNameItHas) {
    ClParameterContainer container;
    auto pFirst = std::make_unique<TpParameterNumeric<long>>();
    pFirst->SetName("A name that is longer than what stands in a string itself");
    container.AddParameter(pFirst->GetName(), pFirst.get());
    const ClParameter* pAdded = pFirst.release();
    EXPECT_EQ(container.FindLocal(pAdded->GetName()), pAdded);

    TpParameterNumeric<long> second;
    second.SetName(pAdded->GetName());
    EXPECT_TESSARIN(container.AddParameter(second.GetName(), &second), -46);
    EXPECT_EQ(container.Entries(), 1u);
    EXPECT_EQ(second.GetContainer(), nullptr);
}

TEST(ParameterContainer, UndoesASwapThatFailsHalfway) {
    long nFirst = 1;
    ClParameterContainer container;
    container.AddNumeric("a", &nFirst);
    container.AddParam<TpParameterNumeric<long>>("unbound");
    EXPECT_THROWS(container.SwapDefaultAndValue(), ClException, -701,
                  "Parameter \"unbound\" is not bound");
    EXPECT_EQ(nFirst, 1);
    EXPECT_EQ(DefaultText(*container.FindLocal("a")), "0");
}

TEST(ParameterContainer, ClonesTheTree) {
    StSettings settings;
    ClParameterContainer container("Settings");
    settings.Publish(container);
    container.SetDescription("All of them");
    const std::unique_ptr<ClParameterBase> pClone(container.Clone());
    ClParameterContainer* pCopy = pClone->GetContainerInterface();
    ASSERT_NE(pCopy, nullptr);
    EXPECT_STREQ(pCopy->GetName(), "Settings");
    EXPECT_STREQ(pCopy->GetDescription(), "All of them");
    EXPECT_EQ(WalkedNames(*pCopy), WalkedNames(container));
    container.Clear();
    pCopy->Find("Inner.Width")->SetValue("77");
    EXPECT_EQ(settings.m_nInnerWidth, 77);
    EXPECT_EQ(pCopy->Find("Inner.Width")->GetRoot(), pCopy);
}

TEST(ParameterContainer, ReplacesTheContentOfACloningTarget) {
    StSettings settings;
    ClParameterContainer container("Settings");
    settings.Publish(container);
    ClParameterContainer target("Old");
    target.AddParam<ClCounted>("gone");
    container.CloneDataTo(&target);
    EXPECT_EQ(ClCounted::s_nAlive, 0);
    EXPECT_STREQ(target.GetName(), "Settings");
    EXPECT_EQ(WalkedNames(target), WalkedNames(container));
    container.CloneDataTo(&container);
    container.CloneDataTo(nullptr);
    EXPECT_EQ(container.Entries(), 5u);
}

TEST(ParameterContainer, ClonesIntoItsOwnParentAndChild) {
    long nValue = 0;
    ClParameterContainer root("Root");
    ClParameterContainer* pInner = root.AddContainer("Inner");
    pInner->AddNumeric("a", &nValue);
    root.CloneDataTo(pInner);
    EXPECT_EQ(WalkedNames(root), (std::vector<std::string>{"Root", "Inner", "a"}));
    root.Find("Root.Root")->GetContainerInterface()->CloneDataTo(&root);
    EXPECT_EQ(WalkedNames(root), (std::vector<std::string>{"Inner", "a"}));
}

TEST(ParameterContainer, CopiesPairsToAnotherTree) {
    long nFrom = 1;
    long nTo = 2;
    ClParameterContainer source("s");
    ClParameterContainer target("t");
    source.AddNumeric("a", &nFrom);
    target.AddNumeric("b", &nTo);
    source.CopyTo(&target);
    EXPECT_STREQ(target.GetName(), "s");
    auto* pCopy = target.FindLocal("a")->GetNumericInterface();
    pCopy->SetNumber(5.0);
    EXPECT_EQ(nFrom, 5);
    EXPECT_EQ(nTo, 2);
    source.CopyTo(target.FindLocal("a"));
    source.CopyTo(&source);
    source.CopyTo(nullptr);
}

TEST(ParameterContainer, KeepsACloningTargetWhenMemoryIsMissing) {
    StSettings settings;
    ClParameterContainer container("Settings");
    settings.Publish(container);
    long nFailures = 0;
    for (bool bDone = false; !bDone; ++nFailures) {
        ClParameterContainer target("Old");
        target.AddParam<ClCounted>("kept");
        try {
            TestSupport::ClFailAllocation fail(nFailures);
            container.CloneDataTo(&target);
            bDone = true;
        } catch (const ClExBadAlloc&) {
            EXPECT_STREQ(target.GetName(), "Old");
            EXPECT_EQ(target.Entries(), 1u);
            EXPECT_EQ(ClCounted::s_nAlive, 1);
        }
    }
    EXPECT_GT(nFailures, 10);
}

TEST(ParameterContainer, AnswersAMissingAllocation) {
    StSettings settings;
    TestSupport::FailEachAllocation([&] {
        ClParameterContainer container("Settings");
        settings.Publish(container);
        long anValues[12] = {};
        for (int i = 0; i < 12; ++i)
            container.AddNumeric(std::string(1, static_cast<char>('a' + i)).c_str(), &anValues[i],
                                 "A number");
        container.Keep(&settings.m_nWidth, &settings.m_dScale);
        const std::unique_ptr<ClParameterBase> pClone(container.Clone());
    });
    EXPECT_EQ(settings.m_nWidth, 1);
}

} // namespace
