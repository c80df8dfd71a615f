// What a node of the parameter tree answers about its kind, and what it takes from another kind.

#include "Tools/ParameterContainer.h"
#include "Tools/ParameterEnum.h"
#include "Tools/ParameterNumeric.h"
#include "Tools/ParameterProvider.h"
#include "support/ParameterText.h"

#include <gtest/gtest.h>

namespace {

using TestSupport::ValueText;

/// Settings of an object that is no processor.
class ClSettings : public ClParameterProvider {
public:
    void PublishParameters(ClParameterContainer& Container) override {
        Container.AddNumeric("nWidth", &m_nWidth);
    }
    int m_nWidth = 7;
};

TEST(ParameterKinds, AContainerIsAParameterAndNoPointer) {
    ClParameterContainer container;
    EXPECT_TRUE(container.IsContainer());
    EXPECT_EQ(container.GetParameterInterface(), &container);
    EXPECT_TRUE(container.IsParameter());
    EXPECT_FALSE(container.IsPointer());
}

TEST(ParameterKinds, ANumberIsCopiedToNumbersOfItsTypeAlone) {
    double dFrom = 2.5;
    long nTo = 7;
    TpParameterNumeric<double> from;
    TpParameterNumeric<long> to;
    from.Bind(&dFrom);
    to.Bind(&nTo);
    from.SetUpperBoundary(9.0);
    from.SetFlags(ePfIn | ePfClamp);
    from.CopyTo(&to);
    from.CopyTo(nullptr);
    from.CopyTo(&from);
    to.SetValue("20");
    EXPECT_EQ(nTo, 20) << "neither bound elsewhere nor cut";
    from.SetValue("20");
    EXPECT_EQ(dFrom, 9.0);
}

TEST(ParameterKinds, NamesAreCopiedToParametersWithNamesOfTheirTypeAlone) {
    long nFrom = 1;
    long nTo = 1;
    TpParameterEnumPointer<long> from;
    TpParameter<long> to;
    from.Bind(&nFrom);
    to.Bind(&nTo);
    from.AddValue(1, "One");
    from.CopyTo(&to);
    from.CopyTo(nullptr);
    from.CopyTo(&from);
    to.SetValueT(2);
    EXPECT_EQ(nFrom, 1) << "not bound to the same";
    EXPECT_EQ(nTo, 2);
    EXPECT_EQ(ValueText(from), "One");
}

TEST(ParameterKinds, SettingsOfWhatIsNoProcessorAreCopiedAlike) {
    ClSettings from;
    ClSettings to;
    from.m_nWidth = 3;
    from.CopyParametersTo(to);
    EXPECT_EQ(to.m_nWidth, 3);
    EXPECT_EQ(from.m_nWidth, 3);
}

} // namespace
