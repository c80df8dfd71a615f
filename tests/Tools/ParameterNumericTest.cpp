#include "Tools/ParameterNumeric.h"

#include "Tools/MathConst.h"
#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace {

using TestSupport::DefaultText;
using TestSupport::ValueText;

/// A numeric parameter "P" with its variable.
template <class T>
struct StBound {
    explicit StBound(T value = T()) : m_Value(value) {
        m_Parameter.SetName("P");
        m_Parameter.Bind(&m_Value);
    }

    void SetRange(double dLower, double dUpper, int nFlags) {
        m_Parameter.SetLowerBoundary(dLower);
        m_Parameter.SetUpperBoundary(dUpper);
        m_Parameter.SetFlags(static_cast<unsigned char>(ePfIn | nFlags));
    }

    T m_Value;
    TpParameterNumeric<T> m_Parameter;
};

constexpr const char* cszOutOfRange = "Value out of range for parameter \"P\"";

#define EXPECT_OUT_OF_RANGE(statement) EXPECT_THROWS(statement, ClExRange, -35, cszOutOfRange)

TEST(ParameterNumeric, AnswersWhatItIs) {
    TpParameterNumeric<double> parameter;
    EXPECT_TRUE(parameter.IsNumeric());
    EXPECT_FALSE(parameter.IsEnum());
    EXPECT_EQ(parameter.GetNumericInterface(), &parameter);
    EXPECT_EQ(parameter.GetPrecision(), 6);
    EXPECT_EQ(parameter.GetScale(), 1.0);
    EXPECT_STREQ(parameter.GetFormat(), "%f");
    EXPECT_FALSE(parameter.HasRange());
}

TEST(ParameterNumeric, KnowsTheKindOfItsType) {
    EXPECT_TRUE(TpParameterNumeric<double>().IsFloat());
    EXPECT_FALSE(TpParameterNumeric<double>().IsInteger());
    EXPECT_TRUE(TpParameterNumeric<double>().IsSigned());
    EXPECT_TRUE(TpParameterNumeric<unsigned char>().IsInteger());
    EXPECT_FALSE(TpParameterNumeric<unsigned char>().IsFloat());
    EXPECT_FALSE(TpParameterNumeric<unsigned char>().IsSigned());
    EXPECT_TRUE(TpParameterNumeric<short>().IsSigned());
}

TEST(ParameterNumeric, ReadsHexadecimalAndFloatingPointText) {
    StBound<double> p;
    p.m_Parameter.SetValue("0x10");
    EXPECT_EQ(p.m_Value, 16.0);
    p.m_Parameter.SetValue("1.5e2");
    EXPECT_EQ(p.m_Value, 150.0);
    p.m_Parameter.SetValue("-2.25");
    EXPECT_EQ(p.m_Value, -2.25);
}

TEST(ParameterNumeric, ReadsHexadecimalBehindTheLastX) {
    StBound<long> p;
    p.m_Parameter.SetValue("0XfF");
    EXPECT_EQ(p.m_Value, 255);
    p.m_Parameter.SetValue("max x1X2");
    EXPECT_EQ(p.m_Value, 2);
    p.m_Parameter.SetValue("-0xA");
    EXPECT_EQ(p.m_Value, 10);
}

TEST(ParameterNumeric, TakesNothingAsZero) {
    for (const char* pText : {"", "0x", static_cast<const char*>(nullptr)}) {
        StBound<double> p(5.0);
        p.m_Parameter.SetValue(pText);
        EXPECT_EQ(p.m_Value, 0.0);
    }
}

TEST(ParameterNumeric, RefusesTextThatIsNoNumber) {
    StBound<double> p(5.0);
    EXPECT_THROWS(p.m_Parameter.SetValue("12abc"), ClException, -44,
                  "Failed to set parameter \"P\" to value \"12abc\"");
    for (const char* pText : {" ", "1 ", "0x1g", "0x-1", "0x 1", "x1.5", "1,5"})
        EXPECT_THROWS(p.m_Parameter.SetValue(pText), ClException, -44,
                      "Failed to set parameter \"P\" to value \"" + std::string(pText) + "\"");
    EXPECT_EQ(p.m_Value, 5.0);
}

TEST(ParameterNumeric, ShowsAMissingNameAsEmpty) {
    TpParameterNumeric<double> parameter;
    EXPECT_THROWS(parameter.SetValue("?"), ClException, -44,
                  "Failed to set parameter \"\" to value \"?\"");
}

TEST(ParameterNumeric, RefusesNumbersTooLargeToRead) {
    StBound<double> p(5.0);
    EXPECT_THROWS(p.m_Parameter.SetValue("1e400"), ClException, -44,
                  "Failed to set parameter \"P\" to value \"1e400\"");
    EXPECT_THROWS(p.m_Parameter.SetValue("-1e400"), ClException, -44,
                  "Failed to set parameter \"P\" to value \"-1e400\"");
    EXPECT_THROWS(p.m_Parameter.SetValue("0x10000000000000000"), ClException, -44,
                  "Failed to set parameter \"P\" to value \"0x10000000000000000\"");
    EXPECT_EQ(p.m_Value, 5.0);
}

TEST(ParameterNumeric, ReadsAVanishingNumber) {
    StBound<double> p(5.0);
    p.m_Parameter.SetValue("1e-400");
    EXPECT_EQ(p.m_Value, 0.0);
}

TEST(ParameterNumeric, ReadsAll64BitsOfAHexadecimalNumber) {
    StBound<unsigned long> p;
    p.m_Parameter.SetValue("0xFFFFFFFFFFFFFFFF");
    EXPECT_EQ(p.m_Value, std::numeric_limits<unsigned long>::max());
    p.m_Parameter.SetValue("0x0000000008000000000000001");
    EXPECT_EQ(p.m_Value, 0x8000000000000001u);
    StBound<long> s;
    EXPECT_OUT_OF_RANGE(s.m_Parameter.SetValue("0x8000000000000000"));
}

TEST(ParameterNumeric, CutsToTheRangeWithClamp) {
    StBound<double> p;
    p.SetRange(0, 10, ePfClamp);
    p.m_Parameter.SetValue("20");
    EXPECT_EQ(p.m_Value, 10.0);
    p.m_Parameter.SetValue("-0.5");
    EXPECT_EQ(p.m_Value, 0.0);
    p.m_Parameter.SetValue("9.5");
    EXPECT_EQ(p.m_Value, 9.5);
    p.m_Parameter.SetNumber(-0.0); // equals the boundary, and is not cut to it
    EXPECT_TRUE(std::signbit(p.m_Value));
}

TEST(ParameterNumeric, RefusesValuesOutOfRangeWithCheck) {
    StBound<double> p(5.0);
    p.SetRange(0, 10, ePfCheckRange);
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetValue("20"));
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetNumber(-0.001));
    EXPECT_EQ(p.m_Value, 5.0);
    p.m_Parameter.SetValue("10");
    EXPECT_EQ(p.m_Value, 10.0);
    p.m_Parameter.SetValue("0");
    EXPECT_EQ(p.m_Value, 0.0);
}

TEST(ParameterNumeric, CutsBeforeItChecks) {
    StBound<double> p;
    p.SetRange(0, 10, ePfClamp | ePfCheckRange);
    p.m_Parameter.SetValue("20");
    EXPECT_EQ(p.m_Value, 10.0);
}

TEST(ParameterNumeric, CutsToTheLowerBoundaryFirst) {
    StBound<double> p;
    p.SetRange(10, 0, ePfClamp);
    p.m_Parameter.SetValue("5");
    EXPECT_EQ(p.m_Value, 0.0);
}

TEST(ParameterNumeric, AcceptsAnyValueWithoutARange) {
    StBound<double> p;
    p.SetRange(0, 0, ePfClamp | ePfCheckRange);
    EXPECT_FALSE(p.m_Parameter.HasRange());
    p.m_Parameter.SetValue("-1e300");
    EXPECT_EQ(p.m_Value, -1e300);
    p.m_Parameter.SetNumber(MathConst::cdNaN);
    EXPECT_TRUE(std::isnan(p.m_Value));
    EXPECT_TRUE(p.m_Parameter.IsValueInRange());
}

TEST(ParameterNumeric, IgnoresARangeThatNoFlagAsksFor) {
    StBound<double> p;
    p.SetRange(0, 10, 0);
    p.m_Parameter.SetValue("20");
    EXPECT_EQ(p.m_Value, 20.0);
    EXPECT_FALSE(p.m_Parameter.IsValueInRange());
}

TEST(ParameterNumeric, KeepsNaNOutOfARange) {
    for (const int nFlags : {ePfClamp + 0, ePfCheckRange + 0, ePfClamp | ePfCheckRange}) {
        StBound<double> p(5.0);
        p.SetRange(0, 10, nFlags);
        EXPECT_OUT_OF_RANGE(p.m_Parameter.SetNumber(MathConst::cdNaN));
        EXPECT_OUT_OF_RANGE(p.m_Parameter.SetValue("nan"));
        EXPECT_EQ(p.m_Value, 5.0);
        EXPECT_FALSE(p.m_Parameter.IsValueInRange(MathConst::cdNaN));
    }
}

TEST(ParameterNumeric, ChecksAnIntegerBeforeItIsTruncated) {
    StBound<int> p(5);
    p.SetRange(0, 10, ePfCheckRange);
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetValue("10.5"));
    p.m_Parameter.SetValue("9.9");
    EXPECT_EQ(p.m_Value, 9);
}

TEST(ParameterNumeric, TruncatesTowardZeroForAnInteger) {
    StBound<int> p;
    p.m_Parameter.SetNumber(-2.9);
    EXPECT_EQ(p.m_Value, -2);
    StBound<unsigned char> u(1);
    u.m_Parameter.SetNumber(-0.9);
    EXPECT_EQ(u.m_Value, 0);
    u.m_Parameter.SetNumber(255.9);
    EXPECT_EQ(u.m_Value, 255);
}

TEST(ParameterNumeric, RefusesWhatAnIntegerDoesNotHold) {
    StBound<unsigned char> p(7);
    for (const double dValue :
         {256.0, -1.0, 1e300, -1e300, MathConst::cdNaN, std::numeric_limits<double>::infinity()})
        EXPECT_OUT_OF_RANGE(p.m_Parameter.SetNumber(dValue));
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetDefault(256.0));
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetLowerBoundary(-1.0));
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetUpperBoundary(MathConst::cdNaN));
    EXPECT_EQ(p.m_Value, 7);
}

TEST(ParameterNumeric, HoldsTheEndsOfA64BitInteger) {
    StBound<long> p;
    p.m_Parameter.SetNumber(-9223372036854775808.0);
    EXPECT_EQ(p.m_Value, std::numeric_limits<long>::min());
    EXPECT_OUT_OF_RANGE(p.m_Parameter.SetNumber(9223372036854775808.0));
}

TEST(ParameterNumeric, GivesItsNumbersAsDoubles) {
    StBound<long> p(12);
    p.SetRange(-3, 20, ePfCheckRange);
    p.m_Parameter.SetDefault(4.0);
    const ClParameterNumericInterface* pNumeric = p.m_Parameter.GetNumericInterface();
    EXPECT_EQ(pNumeric->GetNumber(), 12.0);
    EXPECT_EQ(pNumeric->GetDefault(), 4.0);
    EXPECT_EQ(pNumeric->GetLowerBoundary(), -3.0);
    EXPECT_EQ(pNumeric->GetUpperBoundary(), 20.0);
    EXPECT_TRUE(pNumeric->HasRange());
    EXPECT_TRUE(pNumeric->IsValueInRange());
    EXPECT_TRUE(pNumeric->IsValueInRange(20.0));
    EXPECT_FALSE(pNumeric->IsValueInRange(20.5));
    EXPECT_TRUE(p.m_Parameter.IsValueInRangeT(-3));
    EXPECT_FALSE(p.m_Parameter.IsValueInRangeT(-4));
}

TEST(ParameterNumeric, ScalesForDisplay) {
    StBound<double> p(0.25);
    ClParameterNumericInterface* pNumeric = p.m_Parameter.GetNumericInterface();
    pNumeric->SetScale(100.0);
    EXPECT_EQ(pNumeric->GetNumberScaled(), 25.0);
    pNumeric->SetNumberSecaled(50.0);
    EXPECT_EQ(p.m_Value, 0.5);
}

TEST(ParameterNumeric, ComparesDoublesWithATolerance) {
    constexpr double dUnit = std::numeric_limits<double>::epsilon(); // 2^-52
    const double dInf = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(Vek::IsEqual(1.0, 1.0 + dUnit));
    EXPECT_FALSE(Vek::IsEqual(1.0, 1.0 + 2 * dUnit));
    EXPECT_TRUE(Vek::IsEqual(MathConst::cdNaN, MathConst::cdNaN));
    EXPECT_FALSE(Vek::IsEqual(MathConst::cdNaN, 1.0));
    EXPECT_FALSE(Vek::IsEqual(1.0, MathConst::cdNaN));
    EXPECT_TRUE(Vek::IsEqual(dInf, dInf));
    EXPECT_FALSE(Vek::IsEqual(dInf, -dInf));
}

TEST(ParameterNumeric, IsDefaultWithinTheTolerance) {
    StBound<double> p(MathConst::cdNaN);
    EXPECT_FALSE(p.m_Parameter.IsDefault());
    p.m_Parameter.SetDefault(MathConst::cdNaN);
    EXPECT_TRUE(p.m_Parameter.IsDefault());
    StBound<long> n(1);
    EXPECT_FALSE(n.m_Parameter.IsDefault());
    n.m_Parameter.SetToDefault();
    EXPECT_TRUE(n.m_Parameter.IsDefault());
}

TEST(ParameterNumeric, ClonesRangeScaleAndFormat) {
    StBound<double> p(2.5);
    p.SetRange(1, 9, ePfClamp);
    p.m_Parameter.SetScale(3.0);
    p.m_Parameter.SetPrecision(1);
    p.m_Parameter.SetFormat("%.*f mm");
    const std::unique_ptr<ClParameterBase> pClone(p.m_Parameter.Clone());
    auto* pCopy = dynamic_cast<TpParameterNumeric<double>*>(pClone.get());
    ASSERT_NE(pCopy, nullptr);
    EXPECT_EQ(ValueText(*pCopy), "2.5 mm");
    EXPECT_EQ(pCopy->GetScale(), 3.0);
    pCopy->SetValue("20");
    EXPECT_EQ(p.m_Value, 9.0);
}

TEST(ParameterNumeric, CopiesAValueWithoutJudgingIt) {
    StBound<double> from(99.0);
    StBound<double> to(1.0);
    to.SetRange(0, 10, ePfCheckRange);
    to.m_Parameter.CopyValuesFrom(&from.m_Parameter, false);
    EXPECT_EQ(to.m_Value, 99.0);
}

TEST(ParameterNumeric, AnswersAMissingAllocation) {
    TestSupport::FailEachAllocation([] {
        StBound<double> p(1.0);
        p.m_Parameter.SetFormat("%.2f");
        const std::unique_ptr<ClParameterBase> pClone(p.m_Parameter.Clone());
    });
}

TEST(ParameterNumeric, AnswersAMissingAllocationForTheMessagesOfItsFailures) {
    StBound<double> p(1.0);
    p.SetRange(0, 10, ePfCheckRange);
    const auto swallow = [](long nNumber, const ClException& e) {
        if (e.Number() != nNumber)
            throw ClExBadAlloc(e);
    };
    TestSupport::FailEachAllocation([&] {
        try {
            p.m_Parameter.SetValue("?");
        } catch (const ClException& e) {
            swallow(-44, e);
        }
    });
    TestSupport::FailEachAllocation([&] {
        try {
            p.m_Parameter.SetValue("11");
        } catch (const ClException& e) {
            swallow(-35, e);
        }
    });
}

} // namespace
