#include "Tools/ParameterProvider.h"

#include "Tools/Allocate.h"
#include "Tools/ParameterContainer.h"
#include "Tools/ProcessorBase.h"
#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

using TestSupport::DefaultText;
using TestSupport::ValueText;

/// A processor with published settings, settings behind accessors, and members of its own.
class ClIpSample : public ClProcessorBase {
public:
    ClIpSample() { ClIpSample::SetParametersToDefault(); }

    ClProcessorBase* Create() override { return Vek::NewObject<ClIpSample>(); }
    const char* Name() const override { return "ClIpSample"; }
    long Process() override { return 0; }

    void SetParametersToDefault() override {
        if (m_bFailing)
            throw ClExTessarin(-37, VEK_HERE);
        m_nWidth = 7;
        m_dScale = 0.5;
        m_bExact = true;
        m_nLevel = 70;
        m_bInPlace = false;
        std::fill(std::begin(m_adFill), std::end(m_adFill), 0.0);
    }
    void PublishParameters(ClParameterContainer& Container) override {
        Container.AddPointer("pInImage", &m_pInImage, ePfIn);
        Container.AddNumeric("nWidth", &m_nWidth);
        Container.AddNumeric("dScale", &m_dScale);
        Container.AddBool("bExact", &m_bExact);
        Container.AddParam<TpParameterNumeric<long>>("nLevel")->Bind(this, &ClIpSample::SetLevel,
                                                                     &ClIpSample::Level);
        Container.Keep(&m_bInPlace, &m_adFill);
    }

    void SetLevel(const long& nLevel) { m_nLevel = nLevel; }
    const long& Level() const { return m_nLevel; }

    int* m_pInImage = nullptr;
    int m_nWidth = 0;
    double m_dScale = 0.0;
    bool m_bExact = false;
    long m_nLevel = 0;
    bool m_bInPlace = false;
    double m_adFill[4] = {};
    bool m_bFailing = false;
};

/// Everything away from the defaults.
void Change(ClIpSample& Sample, int* pImage) {
    Sample.m_pInImage = pImage;
    Sample.m_nWidth = 1;
    Sample.m_dScale = 2.0;
    Sample.m_bExact = false;
    Sample.m_nLevel = 3;
    Sample.m_bInPlace = true;
    Sample.m_adFill[3] = 4.0;
}

void ExpectChanged(const ClIpSample& Sample, const int* pImage) {
    EXPECT_EQ(Sample.m_pInImage, pImage);
    EXPECT_EQ(Sample.m_nWidth, 1);
    EXPECT_EQ(Sample.m_dScale, 2.0);
    EXPECT_FALSE(Sample.m_bExact);
    EXPECT_EQ(Sample.m_nLevel, 3);
    EXPECT_TRUE(Sample.m_bInPlace);
    EXPECT_EQ(Sample.m_adFill[3], 4.0);
}

/// Owns two samples and nests their settings.
class ClIpComposite : public ClIpSample {
public:
    ClIpComposite() { ClIpComposite::SetParametersToDefault(); }

    void SetParametersToDefault() override {
        m_First.SetParametersToDefault();
        m_Second.SetParametersToDefault();
        m_Second.m_nWidth = 99;
    }
    void PublishParameters(ClParameterContainer& Container) override {
        m_First.PublishParamSubContainer(Container, "First");
        m_Second.PublishParamSubContainer(Container, "Second");
    }

    ClIpSample m_First;
    ClIpSample m_Second;
};

TEST(ParameterProvider, PublishesNothingByItself) {
    ClParameterProvider provider;
    ClParameterContainer container;
    provider.SetParametersToDefault();
    provider.PublishParameters(container);
    provider.QueryParameters(container);
    EXPECT_EQ(container.Entries(), 0u);
}

TEST(ParameterProvider, LeavesTheFlatListAlone) {
    ClIpSample sample;
    // The list is an opaque object here: the empty body must not touch it.
    alignas(16) char acOpaque[16] = {};
    static_cast<ClParameterProvider&>(sample).QueryParameters(
        reinterpret_cast<ClParameterInterface&>(acOpaque));
    EXPECT_TRUE(
        std::all_of(std::begin(acOpaque), std::end(acOpaque), [](char c) { return c == 0; }));
}

TEST(ParameterProvider, CapturesDefaultsAndKeepsTheMembers) {
    int nImage = 0;
    ClIpSample sample;
    Change(sample, &nImage);
    ClParameterContainer container;
    sample.QueryParameters(container);
    ExpectChanged(sample, &nImage);
    EXPECT_EQ(DefaultText(*container.Find("nWidth")), "7");
    EXPECT_EQ(DefaultText(*container.Find("dScale")), "0.500000");
    EXPECT_EQ(DefaultText(*container.Find("bExact")), "True");
    EXPECT_EQ(DefaultText(*container.Find("nLevel")), "70");
    EXPECT_EQ(ValueText(*container.Find("nWidth")), "1");
    EXPECT_FALSE(container.IsDefault());
    container.Find("nLevel")->SetToDefault();
    EXPECT_EQ(sample.m_nLevel, 70);
}

TEST(ParameterProvider, CapturesTheSameDefaultsAgain) {
    ClIpSample sample;
    ClParameterContainer first;
    sample.QueryParameters(first);
    Change(sample, nullptr);
    ClParameterContainer second;
    sample.QueryParameters(second);
    for (const char* pName : {"nWidth", "dScale", "bExact", "nLevel"})
        EXPECT_EQ(DefaultText(*first.Find(pName)), DefaultText(*second.Find(pName))) << pName;
    ExpectChanged(sample, nullptr);
}

TEST(ParameterProvider, RefusesASecondRunIntoOneContainer) {
    ClIpSample sample;
    ClParameterContainer container;
    sample.QueryParameters(container);
    Change(sample, nullptr);
    EXPECT_TESSARIN(sample.QueryParameters(container), -46);
    ExpectChanged(sample, nullptr);
    EXPECT_EQ(container.Entries(), 5u);
    EXPECT_EQ(DefaultText(*container.Find("nWidth")), "7");
}

TEST(ParameterProvider, TakesBackWhatItPublishedBeforeACollision) {
    long nTaken = 5;
    ClIpSample sample;
    Change(sample, nullptr);
    ClParameterContainer container;
    container.AddNumeric("DSCALE", &nTaken);
    EXPECT_TESSARIN(sample.QueryParameters(container), -46);
    ExpectChanged(sample, nullptr);
    EXPECT_EQ(container.Entries(), 1u);
    EXPECT_EQ(nTaken, 5);
}

TEST(ParameterProvider, RestoresTheMembersWhenTheDefaultsFail) {
    ClIpSample sample;
    Change(sample, nullptr);
    sample.m_bFailing = true;
    ClParameterContainer container;
    EXPECT_TESSARIN(sample.QueryParameters(container), -37);
    ExpectChanged(sample, nullptr);
    EXPECT_EQ(container.Entries(), 0u);
}

TEST(ParameterProvider, KeepsTheMembersWhenMemoryIsMissing) {
    ClIpSample sample;
    Change(sample, nullptr);
    TestSupport::FailEachAllocation([&] {
        ClParameterContainer container;
        sample.QueryParameters(container);
    });
    ExpectChanged(sample, nullptr);
}

TEST(ParameterProvider, CopiesValuesButNoPointers) {
    int nImage = 0;
    ClIpSample from;
    ClIpSample to;
    Change(from, &nImage);
    from.CopyParametersTo(to);
    EXPECT_EQ(to.m_nWidth, 1);
    EXPECT_EQ(to.m_dScale, 2.0);
    EXPECT_FALSE(to.m_bExact);
    EXPECT_EQ(to.m_nLevel, 3);
    EXPECT_EQ(to.m_pInImage, nullptr);
    EXPECT_FALSE(to.m_bInPlace);
    ExpectChanged(from, &nImage);
}

TEST(ParameterProvider, CopiesToItself) {
    ClIpSample sample;
    Change(sample, nullptr);
    sample.CopyParametersTo(sample);
    ExpectChanged(sample, nullptr);
}

/// Counts the calls of its query.
class ClIpAsked : public ClIpSample {
public:
    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterContainer& Container) override {
        ++m_nAsked;
        ClIpSample::QueryParameters(Container);
    }

    int m_nAsked = 0;
};

TEST(ParameterProvider, AsksProcessorsByTheirOwnQueryWhenItCopies) {
    ClIpAsked from;
    ClIpAsked to;
    from.CopyParametersTo(to);
    EXPECT_EQ(from.m_nAsked, 1);
    EXPECT_EQ(to.m_nAsked, 1);
}

TEST(ParameterProvider, NestsPartsInSubContainers) {
    ClIpComposite composite;
    Change(composite.m_First, nullptr);
    Change(composite.m_Second, nullptr);
    ClParameterContainer container;
    composite.QueryParameters(container);
    EXPECT_EQ(container.Entries(), 2u);
    EXPECT_EQ(DefaultText(*container.Find("First.nWidth")), "7");
    EXPECT_EQ(DefaultText(*container.Find("Second.nWidth")), "99");
    container.Find("Second.nWidth")->SetValue("12");
    EXPECT_EQ(composite.m_Second.m_nWidth, 12);
    EXPECT_TRUE(composite.m_First.m_bInPlace);
    EXPECT_EQ(composite.m_First.m_nWidth, 1);
}

TEST(ParameterProvider, PublishesAtTheTopForANullName) {
    ClIpSample sample;
    ClParameterContainer container;
    sample.PublishParamSubContainer(container, nullptr);
    EXPECT_EQ(container.Entries(), 5u);
    EXPECT_NE(container.FindLocal("nWidth"), nullptr);
}

TEST(ParameterProvider, RefusesASubContainerOfATakenName) {
    ClIpSample sample;
    ClParameterContainer container;
    container.AddContainer("Part");
    EXPECT_TESSARIN(sample.PublishParamSubContainer(container, "part"), -46);
    EXPECT_EQ(container.Entries(), 1u);
}

} // namespace
