#include "Tools/ParameterInterface.h"

#include "support/AllocationFailures.h"
#include "support/ParameterEntries.h"
#include "support/Throws.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

using TestSupport::ceIn;
using TestSupport::ClEntry;

/// The text of a variable in an entry of a type that no form of adding chooses by itself.
template <class T>
std::string TextOf(T value, ClParameterInterface::EParameterType eType) {
    ClParameterInterface List;
    return List
        .AddParameter(reinterpret_cast<void**>(&value), "Value", "", ceIn, eType,
                      ClParameterInterface::eOrdinary)
        ->szValue();
}

// Numbers

TEST(ParameterInterfaceText, PrintsIntegersInDecimal) {
    EXPECT_EQ(TextOf<unsigned char>(255, ClParameterInterface::eByte), "255");
    EXPECT_EQ(TextOf<short>(-32768, ClParameterInterface::eShort), "-32768");
    EXPECT_EQ(TextOf<long>(5000000000, ClParameterInterface::eLong), "5000000000");
    EXPECT_EQ(TextOf(std::numeric_limits<long>::min(), ClParameterInterface::eLong),
              "-9223372036854775808");
}

TEST(ParameterInterfaceText, PrintsAnglesInDegreesToo) {
    EXPECT_EQ(TextOf<unsigned short>(65535, ClParameterInterface::eAngle), "65535=360.000\xB0");
    EXPECT_EQ(TextOf<unsigned short>(0, ClParameterInterface::eAngle), "0=0.000\xB0");
    // 16384 * 360 / 65535 = 90.00137
    EXPECT_EQ(TextOf<unsigned short>(16384, ClParameterInterface::eAngle), "16384=90.001\xB0");
    // 3555 * 360 / 65535 = 19.528496, and 0.5 / 65535 = 0.000008 more rounds up
    EXPECT_EQ(TextOf<unsigned short>(3555, ClParameterInterface::eAngle), "3555=19.529\xB0");
}

TEST(ParameterInterfaceText, PrintsRealNumbersWithFiveDecimals) {
    EXPECT_EQ(TextOf(-0.123456, ClParameterInterface::eDouble), "-0.12346");
    EXPECT_EQ(TextOf(0.5F, ClParameterInterface::eFloat), "0.50000");
    EXPECT_EQ(TextOf(std::nan(""), ClParameterInterface::eDouble), "nan");
}

TEST(ParameterInterfaceText, RefusesANumberLongerThanItsBuffer) {
    // 2^827 has 249 digits, 2^828 has 250; ".00000" and a terminator follow.
    EXPECT_EQ(TextOf(std::ldexp(1.0, 827), ClParameterInterface::eDouble).size(), 255u);
    EXPECT_THROWS(TextOf(std::ldexp(1.0, 828), ClParameterInterface::eDouble), ClException, -101,
                  "The buffer size is too small.");
}

TEST(ParameterInterfaceText, NamesObjectsByTheirKind) {
    EXPECT_EQ(TextOf<ClImage*>(nullptr, ClParameterInterface::eImage), "Image");
    EXPECT_EQ(TextOf<ClGraph*>(nullptr, ClParameterInterface::eGraph), "Graph");
}

TEST(ParameterInterfaceText, KnowsNoTextOfOtherTypes) {
    for (int nType : {6, 10, 13, 14, 255, -1})
        EXPECT_EQ(TextOf(1L, static_cast<ClParameterInterface::EParameterType>(nType)), "Unknown")
            << nType;
}

TEST(ParameterInterfaceText, GivesATextBufferItself) {
    ClParameterInterface List;
    char szOwn[300];
    std::memset(szOwn, 'x', sizeof szOwn);
    szOwn[299] = '\0';
    char szOther[] = "other";
    const ClEntry* p = List.AddParameterString(szOwn, sizeof szOwn, "Text", "", ceIn);
    EXPECT_EQ(p->szValue(), szOwn);
    EXPECT_EQ(p->GetszValue(szOther), szOther);
}

TEST(ParameterInterfaceText, OverwritesItsBufferAtTheNextCall) {
    ClParameterInterface List;
    long nFirst = 1;
    double dSecond = 2.0;
    const char* szFirst = List.AddParameter(&nFirst, "a", "", ceIn, 0.0, 0.0)->szValue();
    const char* szSecond = List.AddParameter(&dSecond, "b", "", ceIn, 0.0, 0.0)->szValue();
    EXPECT_EQ(szFirst, szSecond);
    EXPECT_STREQ(szFirst, "2.00000");
}

TEST(ParameterInterfaceText, PrintsTheNameOfANumberThatHasNames) {
    ClParameterInterface List;
    long nLong = 1;
    unsigned char nByte = 2;
    for (ClEntry* p : {List.AddParameter(&nLong, "a", "", ceIn, 0.0, 0.0),
                       List.AddParameter(&nByte, "b", "", ceIn, 0.0, 0.0)})
        p->SetEnumList("Zero\0One\0Two\0", nullptr);
    EXPECT_STREQ(List.GetParam("a")->szValue(), "One");
    EXPECT_STREQ(List.GetParam("b")->szValue(), "Two");
}

// FmtInt

TEST(ParameterInterfaceText, FormatsIntegersIntoABufferThatJustHoldsThem) {
    const ClEntry entry;
    char acBuffer[6] = {'#', '#', '#', '#', '#', '#'};
    EXPECT_STREQ(entry.FmtInt(acBuffer, 5, nullptr, -123), "-123");
    EXPECT_EQ(acBuffer[5], '#');
    for (long nSize : {4L, 1L, 0L, -1L})
        EXPECT_THROWS(entry.FmtInt(acBuffer, nSize, nullptr, -123), ClException, -101,
                      "The buffer size is too small.");
    EXPECT_THROWS(entry.FmtInt(nullptr, 8, nullptr, 1), ClException, -101,
                  "The buffer size is too small.");
}

TEST(ParameterInterfaceText, FormatsTheNameIfAListIsGiven) {
    const ClEntry entry;
    char acBuffer[8];
    EXPECT_STREQ(entry.FmtInt(acBuffer, sizeof acBuffer, "Zero\0One\0", 1), "One");
}

// Names of values

TEST(ParameterInterfaceText, NamesValuesByPosition) {
    const ClEntry entry;
    const char* const pList = "Zero\0One\0Two\0";
    char acBuffer[16];
    EXPECT_STREQ(entry.EnumToStr(0, pList, acBuffer, sizeof acBuffer), "Zero");
    EXPECT_STREQ(entry.EnumToStr(2, pList, acBuffer, sizeof acBuffer), "Two");
    EXPECT_STREQ(entry.EnumToStr(-5, pList, acBuffer, sizeof acBuffer), "Zero");
    EXPECT_STREQ(entry.EnumToStr(3, pList, acBuffer, sizeof acBuffer), "No Enum Val");
    EXPECT_STREQ(
        entry.EnumToStr(std::numeric_limits<long>::max(), pList, acBuffer, sizeof acBuffer),
        "No Enum Val");
}

TEST(ParameterInterfaceText, NamesValuesByTheArray) {
    ClEntry entry;
    const long anValues[] = {1, 8, -3};
    entry.SetEnumList("X\0Directed\0Minus\0", anValues);
    const char* const pList = entry.GetEnumList();
    char acBuffer[16];
    EXPECT_STREQ(entry.EnumToStr(8, pList, acBuffer, sizeof acBuffer), "Directed");
    EXPECT_STREQ(entry.EnumToStr(-3, pList, acBuffer, sizeof acBuffer), "Minus");
    EXPECT_STREQ(entry.EnumToStr(0, pList, acBuffer, sizeof acBuffer), "No Enum Val");
    EXPECT_STREQ(entry.EnumToStr(2, pList, acBuffer, sizeof acBuffer), "No Enum Val");
    EXPECT_STREQ(entry.EnumToStr(-3, "Only\0", acBuffer, sizeof acBuffer), "No Enum Val")
        << "a list shorter than the array";
}

TEST(ParameterInterfaceText, NamesNothingWithoutNames) {
    const ClEntry entry;
    char acBuffer[16];
    EXPECT_STREQ(entry.EnumToStr(0, nullptr, acBuffer, sizeof acBuffer), "No Enum Val");
    EXPECT_STREQ(entry.EnumToStr(0, "", acBuffer, sizeof acBuffer), "No Enum Val");
    ClParameterInterface List;
    long nMode = 0;
    EXPECT_STREQ(List.AddEnum(&nMode, "Mode", "", nullptr, ceIn)->szValue(), "No Enum Val");
}

TEST(ParameterInterfaceText, RefusesABufferThatIsTooSmallForAName) {
    const ClEntry entry;
    char acBuffer[5] = {'#', '#', '#', '#', '#'};
    EXPECT_STREQ(entry.EnumToStr(0, "Cut\0", acBuffer, 4), "Cut");
    EXPECT_EQ(acBuffer[4], '#');
    std::memset(acBuffer, '#', sizeof acBuffer);
    for (long nSize : {3L, 0L, -1L}) {
        EXPECT_THROWS(entry.EnumToStr(0, "Cut\0", acBuffer, nSize), ClException, -101,
                      "The buffer size is too small.");
        EXPECT_EQ(acBuffer[0], '#') << "nothing is written";
    }
}

TEST(ParameterInterfaceText, RefusesANameLongerThanTheSharedBuffer) {
    ClParameterInterface List;
    long nMode = 0;
    std::string list(256, 'x');
    list += '\0';
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", list.c_str(), ceIn);
    EXPECT_THROWS(p->szValue(), ClException, -101, "The buffer size is too small.");
    p->SetEnumList(list.c_str() + 1, nullptr);
    EXPECT_EQ(std::strlen(p->szValue()), 255u);
}

// Lists of names

TEST(ParameterInterfaceText, CopiesListAndValues) {
    ClEntry entry;
    char acList[] = "X\0Y\0";
    long anValues[] = {4, 9};
    entry.SetEnumList(acList, anValues);
    acList[0] = '?';
    anValues[0] = -1;
    EXPECT_EQ(std::string(entry.GetEnumList(), 5), std::string("X\0Y\0\0", 5));
    EXPECT_EQ(entry.m_aEnumValues[0], 4);
    EXPECT_EQ(entry.m_aEnumValues[1], 9);
}

TEST(ParameterInterfaceText, ReplacesListAndValues) {
    ClEntry entry;
    const long anValues[] = {4, 9};
    entry.SetEnumList("X\0Y\0", anValues);
    entry.SetEnumList("Z\0", nullptr);
    EXPECT_STREQ(entry.GetEnumList(), "Z");
    EXPECT_EQ(entry.m_aEnumValues, nullptr);
    entry.SetEnumList(entry.GetEnumList(), anValues);
    EXPECT_STREQ(entry.GetEnumList(), "Z");
    EXPECT_EQ(entry.m_aEnumValues[0], 4);
    entry.SetEnumList(nullptr, anValues);
    EXPECT_EQ(entry.GetEnumList(), nullptr);
    EXPECT_EQ(entry.m_aEnumValues, nullptr);
}

TEST(ParameterInterfaceText, KeepsTheListWhereMemoryIsMissing) {
    ClEntry entry;
    const long anValues[] = {4, 9};
    entry.SetEnumList("Old\0", nullptr);
    TestSupport::FailEachAllocation([&] {
        try {
            entry.SetEnumList("X\0Y\0", anValues);
        } catch (...) {
            EXPECT_STREQ(entry.GetEnumList(), "Old");
            EXPECT_EQ(entry.m_aEnumValues, nullptr);
            throw;
        }
    });
    EXPECT_STREQ(entry.GetEnumList(), "X");
}

// Setting by name

TEST(ParameterInterfaceText, SetsTheNamedValue) {
    ClParameterInterface List;
    const long anValues[] = {1, 16};
    long nMode = 0;
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", "X\0Ortho\0", anValues, ceIn, 8);
    p->SetEnum("Ortho");
    EXPECT_EQ(nMode, 16);
    char szName[] = "X";
    p->SetEnum(szName);
    EXPECT_EQ(nMode, 1);
}

TEST(ParameterInterfaceText, SetsThePositionWhereThereAreNoValues) {
    ClParameterInterface List;
    long nMode = 0;
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", "Cut\0Scale\0Enlarge\0", ceIn);
    p->SetEnum("Enlarge");
    EXPECT_EQ(nMode, 2);
}

TEST(ParameterInterfaceText, ChangesNothingForAnUnknownName) {
    ClParameterInterface List;
    long nMode = 1;
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", "Cut\0Scale\0", ceIn);
    for (const char* szName : {"cut", "Cu", "Cutt", "", "No Enum Val"}) {
        p->SetEnum(szName);
        EXPECT_EQ(nMode, 1) << szName;
    }
    p->SetEnum(static_cast<const char*>(nullptr));
    EXPECT_EQ(nMode, 1);
}

TEST(ParameterInterfaceText, RefusesNamesWithoutAList) {
    ClParameterInterface List;
    long nMode = 1;
    ClEntry* p = List.AddParameter(&nMode, "Mode", "", ceIn, 0.0, 0.0);
    EXPECT_THROWS(p->SetEnum("Cut"), ClException, -701, "m_szEnumList is not set");
    EXPECT_EQ(nMode, 1);
}

TEST(ParameterInterfaceText, SetsValuesThatAreNotListed) {
    ClParameterInterface List;
    const long anValues[] = {1, 16};
    long nMode = 0;
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", "X\0Ortho\0", anValues, ceIn, 8);
    p->SetEnum(7L);
    EXPECT_EQ(nMode, 7);
    EXPECT_STREQ(p->szValue(), "No Enum Val");
}

TEST(ParameterInterfaceText, SetsABoolToWhetherTheValueIsNotZero) {
    ClParameterInterface List;
    unsigned char nBool = 0; // a byte, to see that only 0 and 1 are written
    ClEntry* p = List.AddBool(reinterpret_cast<bool*>(&nBool), "Exact", "", ceIn);
    p->SetEnum(256L);
    EXPECT_EQ(nBool, 1);
    p->SetEnum(0L);
    EXPECT_EQ(nBool, 0);
}

TEST(ParameterInterfaceText, SetsARealNumberByAnEnum) {
    ClParameterInterface List;
    double dSigma = 0.0;
    ClEntry* p = List.AddParameter(&dSigma, "Sigma", "", ceIn, 0.0, 0.0);
    p->SetEnum(3L);
    EXPECT_EQ(dSigma, 3.0);
}

} // namespace
