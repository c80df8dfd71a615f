#include "Tools/Parameter.h"

#include "Tools/ParameterContainer.h"
#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <cstring>
#include <memory>
#include <type_traits>

namespace {

using TestSupport::FailEachAllocation;
using TestSupport::PathText;

/// A value behind accessors, of which the setter is virtual and inherited.
class ClGauge {
public:
    virtual ~ClGauge() = default;
    virtual void SetLevel(const long& nLevel) { m_nLevel = nLevel; }

    long m_nLevel = 0;
};

class ClDoublingGauge : public ClGauge {
public:
    void SetLevel(const long& nLevel) override { m_nLevel = 2 * nLevel; }
    const long& Level() { return m_nLevel; }
    const long& ConstLevel() const { return m_nLevel; }
};

static_assert(!std::is_copy_constructible_v<TpParameter<long>>);
static_assert(!std::is_copy_constructible_v<ClParameterContainer>);

TEST(Parameter, BeginsWithoutNameAsInputAndOutputOfItsType) {
    TpParameter<long> parameter;
    EXPECT_EQ(parameter.GetName(), nullptr);
    EXPECT_EQ(parameter.GetDescription(), nullptr);
    EXPECT_EQ(parameter.GetFlags(), 3);
    EXPECT_EQ(parameter.GetContainer(), nullptr);
    EXPECT_EQ(*parameter.GetType(), typeid(long));
    EXPECT_EQ(parameter.GetDefaultT(), 0);
}

TEST(Parameter, AnswersWhatItIs) {
    TpParameter<long> parameter;
    EXPECT_TRUE(parameter.IsParameter());
    EXPECT_EQ(parameter.GetParameterInterface(), &parameter);
    EXPECT_EQ(parameter.GetParameterPtr(), &parameter);
    EXPECT_EQ(parameter.GetContainerInterface(), nullptr);
    EXPECT_EQ(parameter.GetNumericInterface(), nullptr);
    EXPECT_EQ(parameter.GetEnumInterface(), nullptr);
    EXPECT_FALSE(parameter.IsContainer());
    EXPECT_FALSE(parameter.IsNumeric());
    EXPECT_FALSE(parameter.IsEnum());
    EXPECT_FALSE(parameter.IsPointer());
    EXPECT_FALSE(parameter.IsString());
    EXPECT_TRUE(TpParameter<long*>().IsPointer());
}

TEST(Parameter, CopiesItsTexts) {
    char szName[] = "Width";
    TpParameter<long> parameter;
    parameter.SetName(szName);
    parameter.SetDescription("In pixels");
    szName[0] = 'X';
    EXPECT_STREQ(parameter.GetName(), "Width");
    EXPECT_STREQ(parameter.GetDescription(), "In pixels");
}

TEST(Parameter, TakesItsOwnNameAsName) {
    TpParameter<long> parameter;
    parameter.SetName("Width");
    parameter.SetName(parameter.GetName());
    EXPECT_STREQ(parameter.GetName(), "Width");
}

TEST(Parameter, DropsATextForNull) {
    TpParameter<long> parameter;
    parameter.SetName("Width");
    parameter.SetName(nullptr);
    EXPECT_EQ(parameter.GetName(), nullptr);
}

TEST(Parameter, KeepsItsNameWhenACopyOfTheNewOneFails) {
    TpParameter<long> parameter;
    parameter.SetName("Width");
    {
        TestSupport::ClFailAllocation fail(0);
        EXPECT_THROW(parameter.SetName("Height"), ClExBadAlloc);
    }
    EXPECT_STREQ(parameter.GetName(), "Width");
}

TEST(Parameter, ReadsAndWritesTheBoundVariable) {
    long nValue = 5;
    TpParameter<long> parameter;
    parameter.Bind(&nValue);
    EXPECT_EQ(parameter.GetValueT(), 5);
    parameter.SetValueT(7);
    EXPECT_EQ(nValue, 7);
}

TEST(Parameter, FollowsARedirectedPointer) {
    long nFirst = 1;
    long nSecond = 2;
    long* pValue = &nFirst;
    TpParameter<long> parameter;
    parameter.Bind(&pValue);
    pValue = &nSecond;
    parameter.SetValueT(9);
    EXPECT_EQ(nFirst, 1);
    EXPECT_EQ(nSecond, 9);
}

TEST(Parameter, UsesAccessors) {
    ClDoublingGauge gauge;
    TpParameter<long> parameter;
    parameter.Bind(&gauge, &ClGauge::SetLevel, &ClDoublingGauge::Level);
    parameter.SetValueT(21);
    EXPECT_EQ(gauge.m_nLevel, 42);
    EXPECT_EQ(parameter.GetValueT(), 42);
}

TEST(Parameter, UsesAConstGetter) {
    ClDoublingGauge gauge;
    TpParameter<long> parameter;
    parameter.Bind(&gauge, &ClGauge::SetLevel, &ClDoublingGauge::ConstLevel);
    gauge.m_nLevel = 3;
    EXPECT_EQ(parameter.GetValueT(), 3);
}

TEST(Parameter, BindsAnewInPlaceOfAccessors) {
    ClDoublingGauge gauge;
    long nValue = 1;
    TpParameter<long> parameter;
    parameter.Bind(&gauge, &ClGauge::SetLevel, &ClDoublingGauge::Level);
    parameter.Bind(&nValue);
    parameter.SetValueT(8);
    EXPECT_EQ(nValue, 8);
    EXPECT_EQ(gauge.m_nLevel, 0);
}

TEST(Parameter, RefusesUseWithoutABinding) {
    TpParameter<long> parameter;
    parameter.SetName("Width");
    EXPECT_THROWS(parameter.GetValueT(), ClException, -701, "Parameter \"Width\" is not bound");
    long* pNowhere = nullptr;
    parameter.Bind(&pNowhere);
    EXPECT_THROWS(parameter.SetValueT(1), ClException, -701, "Parameter \"Width\" is not bound");
}

TEST(Parameter, HasNoTextForm) {
    long nValue = 0;
    unsigned long nSize = 10;
    TpParameter<long> parameter;
    parameter.Bind(&nValue);
    EXPECT_THROWS(parameter.SetValue("1"), ClException, -101, "Abstract function");
    EXPECT_THROWS(parameter.GetValue(nullptr, nSize), ClException, -101, "Abstract function");
    EXPECT_THROWS(parameter.GetDefaultValue(nullptr, nSize), ClException, -101,
                  "Abstract function");
}

TEST(Parameter, TellsTheSourceOfItsFailures) {
    try {
        TpParameter<long>().SetValue("1");
        FAIL();
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/Parameter");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(Parameter, SwapsValueAndDefault) {
    long nValue = 5;
    TpParameter<long> parameter;
    parameter.Bind(&nValue);
    parameter.SetDefaultT(3);
    parameter.SwapDefaultAndValue();
    EXPECT_EQ(nValue, 3);
    EXPECT_EQ(parameter.GetDefaultT(), 5);
}

TEST(Parameter, ComparesWithItsDefaultExactly) {
    float fValue = 1.0f;
    TpParameter<float> parameter;
    parameter.Bind(&fValue);
    EXPECT_FALSE(parameter.IsDefault());
    parameter.SetToDefault();
    EXPECT_EQ(fValue, 0.0f);
    EXPECT_TRUE(parameter.IsDefault());
}

TEST(Parameter, TakesDefaultsAndValuesFromAnother) {
    long nValue = 1;
    long nOther = 2;
    TpParameter<long> parameter;
    TpParameter<long> other;
    parameter.Bind(&nValue);
    other.Bind(&nOther);
    other.SetDefaultT(3);

    parameter.CopyDefaultFrom(&other);
    EXPECT_EQ(parameter.GetDefaultT(), 3);
    parameter.CopyDefaultFromValue(&other);
    EXPECT_EQ(parameter.GetDefaultT(), 2);
    parameter.SetToDefaultFrom(&other);
    EXPECT_EQ(nValue, 3);
    EXPECT_EQ(parameter.GetDefaultT(), 2);
    parameter.CopyValuesFrom(&other, false);
    EXPECT_EQ(nValue, 2);
    EXPECT_EQ(nOther, 2);
}

TEST(Parameter, LeavesAnotherClassAndNullAlone) {
    long nValue = 1;
    double dOther = 2.0;
    TpParameter<long> parameter;
    TpParameter<double> other;
    TpParameterNumeric<long> numeric;
    parameter.Bind(&nValue);
    other.Bind(&dOther);
    long nNumeric = 9;
    numeric.Bind(&nNumeric);
    for (ClParameterBase* p :
         {static_cast<ClParameterBase*>(&other), static_cast<ClParameterBase*>(&numeric),
          static_cast<ClParameterBase*>(nullptr)}) {
        parameter.CopyDefaultFrom(p);
        parameter.CopyDefaultFromValue(p);
        parameter.CopyValuesFrom(p, true);
        parameter.SetToDefaultFrom(p);
        parameter.CopyTo(p);
    }
    EXPECT_EQ(nValue, 1);
    EXPECT_EQ(parameter.GetDefaultT(), 0);
    EXPECT_EQ(dOther, 2.0);
    EXPECT_EQ(nNumeric, 9);
}

TEST(Parameter, CopiesAPointerOnlyOnRequest) {
    long nTarget = 0;
    long* pValue = nullptr;
    long* pOther = &nTarget;
    TpParameter<long*> parameter;
    TpParameter<long*> other;
    parameter.Bind(&pValue);
    other.Bind(&pOther);
    parameter.CopyValuesFrom(&other, false);
    EXPECT_EQ(pValue, nullptr);
    parameter.CopyValuesFrom(&other, true);
    EXPECT_EQ(pValue, &nTarget);
}

TEST(Parameter, ClonesWithTextsFlagsBindingAndDefault) {
    long nValue = 5;
    TpParameter<long> parameter;
    parameter.SetName("Width");
    parameter.SetDescription("In pixels");
    parameter.SetFlags(ePfIn);
    parameter.SetDefaultT(4);
    parameter.Bind(&nValue);
    std::unique_ptr<ClParameterBase> pClone(parameter.Clone());
    auto* pCopy = dynamic_cast<TpParameter<long>*>(pClone.get());
    ASSERT_NE(pCopy, nullptr);
    EXPECT_STREQ(pCopy->GetName(), "Width");
    EXPECT_STREQ(pCopy->GetDescription(), "In pixels");
    EXPECT_EQ(pCopy->GetFlags(), ePfIn);
    EXPECT_EQ(pCopy->GetDefaultT(), 4);
    pCopy->SetValueT(6);
    EXPECT_EQ(nValue, 6);
}

TEST(Parameter, GivesACloneABindingOfItsOwn) {
    long nValue = 5;
    long nElsewhere = 5;
    std::unique_ptr<ClParameterBase> pClone;
    {
        TpParameter<long> parameter;
        parameter.Bind(&nValue);
        pClone.reset(parameter.Clone());
        parameter.Bind(&nElsewhere);
    }
    static_cast<TpParameter<long>*>(pClone.get())->SetValueT(6);
    EXPECT_EQ(nValue, 6);
    EXPECT_EQ(nElsewhere, 5);
}

TEST(Parameter, ClonesARedirectionAndAccessors) {
    long nValue = 5;
    long* pValue = &nValue;
    ClDoublingGauge gauge;
    TpParameter<long> redirected;
    TpParameter<long> accessed;
    redirected.Bind(&pValue);
    accessed.Bind(&gauge, &ClGauge::SetLevel, &ClDoublingGauge::Level);
    std::unique_ptr<ClParameterBase> pRedirected(redirected.Clone());
    std::unique_ptr<ClParameterBase> pAccessed(accessed.Clone());
    long nElsewhere = 0;
    pValue = &nElsewhere;
    static_cast<TpParameter<long>*>(pRedirected.get())->SetValueT(1);
    static_cast<TpParameter<long>*>(pAccessed.get())->SetValueT(1);
    EXPECT_EQ(nElsewhere, 1);
    EXPECT_EQ(gauge.m_nLevel, 2);
}

TEST(Parameter, AnswersAMissingAllocationWhileBindingAndCloning) {
    ClDoublingGauge gauge;
    FailEachAllocation([&] {
        TpParameter<long> parameter;
        parameter.SetName("Width");
        parameter.SetDescription("In pixels");
        parameter.Bind(&gauge, &ClGauge::SetLevel, &ClDoublingGauge::Level);
        const std::unique_ptr<ClParameterBase> pClone(parameter.Clone());
    });
}

TEST(Parameter, TellsItsPathFromTheRootDown) {
    ClParameterContainer root("Root");
    ClParameterContainer* pUnnamed = root.AddContainer(nullptr);
    ClParameterContainer* pInner = pUnnamed->AddContainer("Inner");
    long nValue = 0;
    EXPECT_EQ(PathText(*pInner->AddNumeric("Width", &nValue)), "Root.Inner.Width");
    EXPECT_EQ(PathText(*pUnnamed), "Root");
    EXPECT_EQ(PathText(ClParameterContainer()), "");
}

TEST(Parameter, WritesNoPathIntoABufferThatIsTooSmall) {
    ClParameterContainer root("Root");
    char szPath[5] = "????";
    unsigned long nSize = 4;
    EXPECT_FALSE(root.GetPathName(szPath, nSize));
    EXPECT_EQ(nSize, 5u);
    EXPECT_STREQ(szPath, "????");
    EXPECT_TRUE(root.GetPathName(szPath, nSize));
    EXPECT_STREQ(szPath, "Root");
}

TEST(Parameter, FindsItsRoot) {
    ClParameterContainer root;
    long nValue = 0;
    ClParameter* pInner = root.AddContainer("a")->AddNumeric("b", &nValue);
    EXPECT_EQ(pInner->GetRoot(), &root);
    TpParameter<long> alone;
    EXPECT_EQ(alone.GetRoot(), &alone);
}

} // namespace
