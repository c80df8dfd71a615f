#include "Tools/ParameterEnum.h"

#include "Tools/ParameterContainer.h"
#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace {

using TestSupport::DefaultText;
using TestSupport::ValueText;

enum class EMode { eFast, eExact, eHidden = 42 };

struct StModeParameter {
    StModeParameter() {
        m_Parameter.SetName("Mode");
        m_Parameter.Bind(&m_eMode);
        m_Parameter.AddValue(EMode::eFast, "Fast");
        m_Parameter.AddValue(EMode::eExact, "Exact");
    }

    EMode m_eMode = EMode::eExact;
    TpParameterEnumPointer<EMode> m_Parameter;
};

template <class T>
std::string NameAt(TpParameterEnumPointer<T>& Parameter, unsigned long nIndex) {
    char szName[32] = "";
    return Parameter.GetValueName(nIndex, szName, sizeof szName) ? szName : "no entry";
}

TEST(ParameterEnum, AnswersWhatItIs) {
    TpParameterEnumPointer<EMode> parameter;
    EXPECT_TRUE(parameter.IsEnum());
    EXPECT_FALSE(parameter.IsNumeric());
    EXPECT_FALSE(parameter.IsPointer());
    EXPECT_EQ(parameter.GetEnumInterface(), &parameter);
    EXPECT_TRUE(TpParameterEnumPointer<int*>().IsPointer());
}

TEST(ParameterEnum, GivesTheNameOfTheValueAndOfTheDefault) {
    StModeParameter p;
    EXPECT_EQ(ValueText(p.m_Parameter), "Exact");
    EXPECT_EQ(DefaultText(p.m_Parameter), "Fast");
}

TEST(ParameterEnum, SetsAValueByItsNameInUpperAndLowerCase) {
    StModeParameter p;
    p.m_Parameter.SetValue("FAST");
    EXPECT_EQ(p.m_eMode, EMode::eFast);
}

TEST(ParameterEnum, SetsATruthValueByTRUE) {
    bool bValue = false;
    ClParameterContainer container;
    auto* pParameter = container.AddBool("Flag", &bValue);
    pParameter->SetValue("TRUE");
    EXPECT_TRUE(bValue);
    EXPECT_EQ(ValueText(*pParameter), "True");
    EXPECT_EQ(NameAt(*pParameter, 0), "False");
    EXPECT_EQ(NameAt(*pParameter, 1), "True");
}

TEST(ParameterEnum, RefusesANameThatIsNotListed) {
    StModeParameter p;
    EXPECT_THROWS(p.m_Parameter.SetValue("Slow"), ClException, -35,
                  "Value \"Slow\" out of range for parameter \"Mode\"");
    EXPECT_THROWS(p.m_Parameter.SetValue(nullptr), ClException, -35,
                  "Value \"\" out of range for parameter \"Mode\"");
    EXPECT_EQ(p.m_eMode, EMode::eExact);
}

TEST(ParameterEnum, RefusesANameWithAnotherValue) {
    StModeParameter p;
    EXPECT_THROWS(p.m_Parameter.AddValue(EMode::eHidden, "fast"), ClExTessarin, -46,
                  GetErrorDescriptionIntern(-46));
    EXPECT_EQ(p.m_Parameter.GetValueNameCount(), 2u);
}

TEST(ParameterEnum, AddsARepeatOnce) {
    StModeParameter p;
    p.m_Parameter.AddValue(EMode::eFast, "FAST");
    EXPECT_EQ(p.m_Parameter.GetValueNameCount(), 2u);
    EXPECT_EQ(NameAt(p.m_Parameter, 0), "Fast");
}

TEST(ParameterEnum, RefusesAMissingName) {
    StModeParameter p;
    EXPECT_TESSARIN(p.m_Parameter.AddValue(EMode::eHidden, nullptr), -44);
}

TEST(ParameterEnum, UsesTheFirstOfTwoNamesForAValue) {
    StModeParameter p;
    p.m_Parameter.AddValue(EMode::eExact, "Precise");
    EXPECT_EQ(ValueText(p.m_Parameter), "Exact");
    EXPECT_TRUE(p.m_Parameter.RemoveValue("exact"));
    EXPECT_EQ(ValueText(p.m_Parameter), "Precise");
}

TEST(ParameterEnum, RemovesByNameAndByValueAndKeepsTheOrder) {
    TpParameterEnumPointer<int> parameter;
    parameter.AddValue(1, "a");
    parameter.AddValue(2, "b");
    parameter.AddValue(3, "c");
    parameter.AddValue(4, "d");
    EXPECT_TRUE(parameter.RemoveValue("B"));
    EXPECT_TRUE(parameter.RemoveValue(4));
    EXPECT_FALSE(parameter.RemoveValue("b"));
    EXPECT_FALSE(parameter.RemoveValue(4));
    ASSERT_EQ(parameter.GetValueNameCount(), 2u);
    EXPECT_EQ(NameAt(parameter, 0), "a");
    EXPECT_EQ(NameAt(parameter, 1), "c");
    parameter.AddValue(9, "b");
    EXPECT_EQ(NameAt(parameter, 2), "b");
}

TEST(ParameterEnum, RemovesWithoutMemory) {
    TpParameterEnumPointer<int> parameter;
    parameter.AddValue(1, "a");
    parameter.AddValue(2, "b");
    TestSupport::ClFailAllocation fail(0);
    EXPECT_TRUE(parameter.RemoveValue("a"));
    EXPECT_FALSE(TestSupport::ClFailAllocation::Happened());
}

TEST(ParameterEnum, HoldsMoreEntriesThanOneStepOfGrowth) {
    TpParameterEnumPointer<int> parameter;
    for (int i = 0; i < 25; ++i)
        parameter.AddValue(i, std::to_string(i).c_str());
    ASSERT_EQ(parameter.GetValueNameCount(), 25u);
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(NameAt(parameter, static_cast<unsigned long>(i)), std::to_string(i));
}

TEST(ParameterEnum, EnumeratesItsNamesSafely) {
    StModeParameter p;
    char szName[5] = "????";
    EXPECT_FALSE(p.m_Parameter.GetValueName(2, szName, sizeof szName));
    EXPECT_FALSE(p.m_Parameter.GetValueName(0, nullptr, 100));
    EXPECT_FALSE(p.m_Parameter.GetValueName(0, szName, 4));
    EXPECT_STREQ(szName, "????");
    EXPECT_TRUE(p.m_Parameter.GetValueName(0, szName, 5));
    EXPECT_STREQ(szName, "Fast");
}

TEST(ParameterEnum, PrintsAValueWithoutANameAsNumber) {
    StModeParameter p;
    p.m_eMode = EMode::eHidden;
    EXPECT_EQ(ValueText(p.m_Parameter), "42");
    TpParameterEnumPointer<unsigned char> type;
    unsigned char nType = 255;
    type.Bind(&nType);
    EXPECT_EQ(ValueText(type), "255");
}

TEST(ParameterEnum, PrintsAPointerAsAddress) {
    int nTarget = 0;
    int* pTarget = nullptr;
    ClParameterContainer container;
    auto* pParameter = container.AddPointer("pTarget", &pTarget);
    EXPECT_EQ(ValueText(*pParameter), "NULL");
    pTarget = &nTarget;
    char szExpected[32];
    std::snprintf(szExpected, sizeof szExpected, "%p", static_cast<void*>(&nTarget));
    EXPECT_EQ(ValueText(*pParameter), szExpected);
    EXPECT_EQ(DefaultText(*pParameter), "NULL");
}

TEST(ParameterEnum, SetsAPointerByAName) {
    int nTarget = 0;
    int* pTarget = &nTarget;
    ClParameterContainer container;
    auto* pParameter = container.AddPointer("pTarget", &pTarget);
    pParameter->AddValue(nullptr, "none");
    pParameter->SetValue("None");
    EXPECT_EQ(pTarget, nullptr);
    EXPECT_EQ(ValueText(*pParameter), "none");
}

TEST(ParameterEnum, FollowsTheProtocolOfSizes) {
    StModeParameter p;
    char szText[8] = "???????";
    unsigned long nSize = 5;
    EXPECT_FALSE(p.m_Parameter.GetValue(szText, nSize));
    EXPECT_EQ(nSize, 6u);
    EXPECT_STREQ(szText, "???????");
    EXPECT_TRUE(p.m_Parameter.GetValue(nullptr, nSize));
    nSize = 8;
    EXPECT_TRUE(p.m_Parameter.GetValue(szText, nSize));
    EXPECT_EQ(nSize, 6u);
    EXPECT_STREQ(szText, "Exact");
    p.m_eMode = EMode::eHidden;
    nSize = 2;
    EXPECT_FALSE(p.m_Parameter.GetValue(szText, nSize));
    EXPECT_EQ(nSize, 3u);
    EXPECT_STREQ(szText, "Exact");
}

TEST(ParameterEnum, WordsAValueThatCannotBePrinted) {
    EXPECT_THROWS(Vek::ThrowUnprintableValue("Mode", "42"), ClException, -35,
                  "Parameter \"Mode\" out of range using value \"42\"");
}

TEST(ParameterEnum, ClonesItsNames) {
    StModeParameter p;
    const std::unique_ptr<ClParameterBase> pClone(p.m_Parameter.Clone());
    auto* pCopy = dynamic_cast<TpParameterEnumPointer<EMode>*>(pClone.get());
    ASSERT_NE(pCopy, nullptr);
    EXPECT_TRUE(p.m_Parameter.RemoveValue("Fast"));
    pCopy->SetValue("Fast");
    EXPECT_EQ(p.m_eMode, EMode::eFast);
}

TEST(ParameterEnum, IsNoPartnerOfANumber) {
    long nMode = 1;
    long nNumber = 2;
    TpParameterEnumPointer<long> mode;
    TpParameterNumeric<long> number;
    mode.Bind(&nMode);
    number.Bind(&nNumber);
    mode.CopyValuesFrom(&number, true);
    number.CopyValuesFrom(&mode, true);
    mode.CopyTo(&number);
    EXPECT_EQ(nMode, 1);
    EXPECT_EQ(nNumber, 2);
    EXPECT_EQ(number.GetNumber(), 2.0);
}

TEST(ParameterEnum, AnswersAMissingAllocation) {
    TestSupport::FailEachAllocation([] {
        TpParameterEnumPointer<int> parameter;
        for (int i = 0; i < 12; ++i)
            parameter.AddValue(i, std::string(1, static_cast<char>('a' + i)).c_str());
        const std::unique_ptr<ClParameterBase> pClone(parameter.Clone());
    });
}

TEST(ParameterEnum, KeepsItsNamesWhenAnotherCannotBeAdded) {
    TpParameterEnumPointer<int> parameter;
    for (int i = 0; i < 10; ++i)
        parameter.AddValue(i, std::to_string(i).c_str());
    for (long nAfter = 0; nAfter < 5; ++nAfter) {
        TestSupport::ClFailAllocation fail(nAfter);
        EXPECT_THROW(parameter.AddValue(10, "ten"), ClExBadAlloc);
    }
    EXPECT_EQ(parameter.GetValueNameCount(), 10u);
    EXPECT_EQ(NameAt(parameter, 9), "9");
}

} // namespace
