#include "Tools/ParameterInterface.h"

#include "support/AllocationFailures.h"
#include "support/ParameterEntries.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using TestSupport::ceIn;
using TestSupport::ClEntry;

static_assert(!std::is_copy_constructible_v<ClParameterInterface>);
static_assert(!std::is_copy_constructible_v<ClEntry>);

/// The names of a list in order, by the walk.
std::vector<std::string> Names(ClParameterInterface& List) {
    std::vector<std::string> aNames;
    for (const ClEntry* p = List.FirstParam(); p != nullptr; p = List.NextParam())
        aNames.emplace_back(p->GetName());
    return aNames;
}

// Adding

TEST(ParameterInterface, AddsABareEntryWithTheTypeVoid) {
    ClParameterInterface List;
    const ClEntry* p = List.AddParameter();
    EXPECT_EQ(p->m_eType, 6);
    EXPECT_EQ(p->m_eDirection, 2);
    EXPECT_EQ(p->m_eKind, 0);
    EXPECT_EQ(p->m_dLower, 0.0);
    EXPECT_EQ(p->m_dUpper, 0.0);
    EXPECT_EQ(p->m_dDefault, 0.0);
    EXPECT_EQ(p->m_pValue, nullptr);
    EXPECT_EQ(p->GetEnumList(), nullptr);
    EXPECT_EQ(p->m_aEnumValues, nullptr);
    EXPECT_FALSE(p->m_bFlag);
    EXPECT_FALSE(p->m_bLocked);
    EXPECT_STREQ(p->GetName(), "Noname");
    EXPECT_STREQ(p->GetDescription(), "NoDescription");
    EXPECT_EQ(p->m_pNext, nullptr);
    EXPECT_FALSE(p->RangeDefined());
}

TEST(ParameterInterface, AppendsAtTheEnd) {
    ClParameterInterface List;
    double dSigma = 0.0;
    long nWidth = 0;
    const ClEntry* pFirst = List.AddParameter(&dSigma, "Sigma", "", ceIn, 0.0, 0.0);
    const ClEntry* pSecond = List.AddParameter(&nWidth, "Width", "", ceIn, 0.0, 0.0);
    EXPECT_EQ(List.Count(), 2);
    EXPECT_EQ(List.GetParameter(0), pFirst);
    EXPECT_EQ(List.GetParameter(1), pSecond);
    EXPECT_EQ(pFirst->m_pNext, pSecond);
}

TEST(ParameterInterface, CopiesNamesAndDescriptions) {
    ClParameterInterface List;
    std::string name = "Sigma";
    std::string text = "In: Sigma";
    double dSigma = 0.0;
    ClEntry* p = List.AddParameter(&dSigma, name.c_str(), text.c_str(), ceIn, 0.0, 0.0);
    name = "other";
    text = "other";
    EXPECT_STREQ(p->GetName(), "Sigma");
    EXPECT_STREQ(p->GetDescription(), "In: Sigma");
    p->SetName(nullptr);
    p->SetDescription(nullptr);
    EXPECT_STREQ(p->GetName(), "Noname");
    EXPECT_STREQ(p->GetDescription(), "NoDescription");
}

TEST(ParameterInterface, AddsNumbersWithTheirTypes) {
    ClParameterInterface List;
    double d = 0.0;
    long l = 0;
    int n = 0;
    unsigned char c = 0;
    EXPECT_STREQ(List.AddParameter(&d, "d", "", ceIn, 0.0, 0.0)->szType(), "eDouble");
    EXPECT_STREQ(List.AddParameter(&l, "l", "", ceIn, 0.0, 0.0)->szType(), "eLong");
    EXPECT_STREQ(List.AddParameter(&n, "n", "", ceIn, 0.0, 0.0)->szType(), "eLong");
    EXPECT_STREQ(List.AddParameter(&c, "c", "", ceIn, 0.0, 0.0)->szType(), "eByte");
    EXPECT_EQ(List.GetParameter(3)->m_pValue, &c);
}

TEST(ParameterInterface, KeepsTheValueOfDoublesAndLongsAsDefault) {
    ClParameterInterface List;
    double d = 2.5;
    long l = -7;
    int n = 9;
    EXPECT_EQ(List.AddParameter(&d, "d", "", ceIn, 0.0, 0.0)->m_dDefault, 2.5);
    EXPECT_EQ(List.AddParameter(&l, "l", "", ceIn, 0.0, 0.0)->m_dDefault, -7.0);
    EXPECT_EQ(List.AddParameter(&n, "n", "", ceIn, 0.0, 0.0)->m_dDefault, 0.0);
}

TEST(ParameterInterface, AddsObjectsByTheAddressOfTheirPointer) {
    ClParameterInterface List;
    ClImage* pImage = nullptr;
    ClGraph* pGraph = nullptr;
    const ClEntry* pFirst =
        List.AddParameter(&pImage, "Image", "Out: Image", ClParameterInterface::eOut, 2.0, 5.0);
    EXPECT_STREQ(pFirst->szType(), "eImage");
    EXPECT_STREQ(pFirst->szDir(), "eOut");
    EXPECT_EQ(pFirst->m_pValue, &pImage);
    EXPECT_EQ(pFirst->m_dLower, 2.0);
    EXPECT_EQ(pFirst->m_dUpper, 5.0);
    const ClEntry* pSecond =
        List.AddParameter(&pGraph, "Graph", "", ClParameterInterface::eOptional);
    EXPECT_STREQ(pSecond->szType(), "eGraph");
    EXPECT_STREQ(pSecond->szDir(), "eOptional");
    EXPECT_EQ(pSecond->m_pValue, &pGraph);
}

TEST(ParameterInterface, AddsAnythingByTypeAndKind) {
    ClParameterInterface List;
    float f = 1.5F;
    const ClEntry* p = List.AddParameter(reinterpret_cast<void**>(&f), "Float", "In: Float",
                                         ClParameterInterface::eInOut, ClParameterInterface::eFloat,
                                         ClParameterInterface::eNoRange);
    EXPECT_STREQ(p->szType(), "eFloat");
    EXPECT_STREQ(p->szDir(), "eInOut");
    EXPECT_EQ(p->m_eKind, 1);
    EXPECT_STREQ(p->GetDescription(), "In: Float");
    EXPECT_EQ(p->GetValue(), 1.5);
}

TEST(ParameterInterface, AddsABool) {
    ClParameterInterface List;
    bool bExact = true;
    ClEntry* p = List.AddBool(&bExact, "Exact", "In: Exact", ceIn);
    EXPECT_STREQ(p->szType(), "eBool");
    EXPECT_STREQ(p->szValue(), "True");
    p->SetEnum("False");
    EXPECT_FALSE(bExact);
    EXPECT_STREQ(p->szValue(), "False");
    EXPECT_EQ(std::string(p->GetEnumList(), 12), std::string("False\0True\0\0", 12));
}

TEST(ParameterInterface, AddsAnEnum) {
    ClParameterInterface List;
    long nMode = 1;
    const ClEntry* p = List.AddEnum(&nMode, "Mode", "In: Mode", "Cut\0Scale\0", ceIn);
    EXPECT_EQ(p->m_eType, 9);
    EXPECT_EQ(p->m_aEnumValues, nullptr);
    EXPECT_STREQ(p->szValue(), "Scale");
}

TEST(ParameterInterface, AddsAnEnumWithValues) {
    ClParameterInterface List;
    unsigned char nMode = 200;
    const long anValues[] = {1, 200};
    const ClEntry* p = List.AddEnum(&nMode, "Mode", "", "One\0Many\0", anValues, ceIn, 1);
    EXPECT_STREQ(p->szValue(), "Many");
}

TEST(ParameterInterface, RefusesAnEnumOfAWidthThatNoIntegerHas) {
    ClParameterInterface List;
    long nMode = 0;
    for (std::size_t nWidth : {std::size_t{0}, std::size_t{3}, std::size_t{16}})
        EXPECT_TESSARIN(List.AddEnum(&nMode, "Mode", "", "Cut\0", ceIn, nWidth), -44);
    EXPECT_EQ(List.Count(), 0);
}

TEST(ParameterInterface, AddsATextWithItsSizeAsRange) {
    ClParameterInterface List;
    char szText[20] = "glass plate";
    const ClEntry* p = List.AddParameterString(szText, sizeof szText, "Text", "", ceIn);
    EXPECT_EQ(p->m_eType, 11);
    EXPECT_STREQ(p->szType(), "Unknown");
    EXPECT_EQ(p->m_dLower, 0.0);
    EXPECT_EQ(p->m_dUpper, 20.0);
    EXPECT_EQ(p->szValue(), szText) << "the buffer itself";
}

TEST(ParameterInterface, AddsARemark) {
    ClParameterInterface List;
    const ClEntry* p = List.AddComment("Widths are pixels");
    EXPECT_EQ(p->m_eType, 13);
    EXPECT_STREQ(p->szType(), "Unknown");
    EXPECT_STREQ(p->szDir(), "eOut");
    EXPECT_EQ(p->m_eKind, 1);
    EXPECT_STREQ(p->GetName(), "Widths are pixels");
    EXPECT_STREQ(p->GetDescription(), "NoDescription");
}

TEST(ParameterInterface, TakesVariablesThatAreNotThere) {
    ClParameterInterface List;
    EXPECT_EQ(List.AddParameter(static_cast<double*>(nullptr), "d", "", ceIn, 1.0, -1.0)->m_dUpper,
              0.0);
    EXPECT_EQ(List.AddParameter(static_cast<long*>(nullptr), "l", "", ceIn, 1.0, -1.0)->m_dUpper,
              0.0);
    List.AddBool(nullptr, "b", "", ceIn);
    List.AddEnum(nullptr, "e", "", "Cut\0", ceIn);
    List.AddParameter(static_cast<ClImage**>(nullptr), "i", "", ceIn, 0.0, 0.0);
    List.AddParameter(static_cast<ClGraph**>(nullptr), "g", "", ceIn);
    List.AddParameterString(nullptr, 8, "s", "", ceIn);
    for (ClEntry* p = List.FirstParam(); p != nullptr; p = List.NextParam()) {
        SCOPED_TRACE(p->GetName());
        p->SetValue(1.0);
        p->SetEnum(1L);
        p->SetValue(static_cast<ClImage*>(nullptr));
        p->SetValue(static_cast<ClGraph*>(nullptr));
        EXPECT_EQ(p->GetValue(), 0.0);
        EXPECT_EQ(p->GetImage(), nullptr);
        EXPECT_EQ(p->GetGraph(), nullptr);
        const bool bObject = p->m_eType == 7 || p->m_eType == 12; // told without following
        EXPECT_STREQ(p->szValue(), !bObject ? "Unknown" : p->m_eType == 7 ? "Image" : "Graph");
    }
}

TEST(ParameterInterface, LeavesTheListAloneWhereMemoryIsMissing) {
    double d = 0.0;
    bool b = false;
    const long anValues[] = {4, 5};
    long nMode = 0;
    ClParameterInterface List;
    TestSupport::FailEachAllocation([&] {
        List.Clear();
        const auto Added = [&](auto add) {
            const long nBefore = List.Count();
            try {
                add();
            } catch (...) {
                EXPECT_EQ(List.Count(), nBefore);
                throw;
            }
        };
        Added([&] { List.AddParameter(&d, "Sigma", "In: Sigma", ceIn, 0.0, 0.0); });
        Added([&] { List.AddBool(&b, "Exact", "In: Exact", ceIn); });
        Added([&] { List.AddEnum(&nMode, "Mode", "", "Cut\0Scale\0", anValues, ceIn, 8); });
        Added([&] { List.AddComment("Widths are pixels"); });
    });
    EXPECT_EQ(List.Count(), 4);
}

// Ranges

TEST(ParameterInterface, MakesARangeAroundTheValueOnRequest) {
    ClParameterInterface List;
    double dPositive = 3.0;
    double dNegative = -3.0;
    long nValue = 6;
    const ClEntry* p = List.AddParameter(&dPositive, "a", "", ceIn, 1.0, -1.0);
    EXPECT_EQ(p->m_dLower, 2.0);
    EXPECT_EQ(p->m_dUpper, 4.0);
    EXPECT_TRUE(p->RangeDefined());
    p = List.AddParameter(&dNegative, "b", "", ceIn, 1.0, -1.0);
    EXPECT_EQ(p->m_dLower, -4.0);
    EXPECT_EQ(p->m_dUpper, -2.0);
    p = List.AddParameter(&nValue, "c", "", ceIn, 1.0, -1.0);
    EXPECT_EQ(p->m_dLower, 4.0);
    EXPECT_EQ(p->m_dUpper, 8.0);
}

TEST(ParameterInterface, KeepsEveryOtherRange) {
    const double aPairs[][2] = {{1.0, -2.0}, {-1.0, 1.0}, {0.0, 0.0}, {1.0, 1.0}};
    for (const auto& adPair : aPairs) {
        double dLower = adPair[0];
        double dUpper = adPair[1];
        ClParameterInterface::ProcessRanges(3.0, dLower, dUpper);
        EXPECT_EQ(dLower, adPair[0]);
        EXPECT_EQ(dUpper, adPair[1]);
    }
}

TEST(ParameterInterface, MakesNoRangeForIntAndByte) {
    ClParameterInterface List;
    int n = 3;
    unsigned char c = 3;
    for (const ClEntry* p : {List.AddParameter(&n, "n", "", ceIn, 1.0, -1.0),
                             List.AddParameter(&c, "c", "", ceIn, 1.0, -1.0)}) {
        EXPECT_EQ(p->m_dLower, 1.0);
        EXPECT_EQ(p->m_dUpper, -1.0);
    }
}

TEST(ParameterInterface, TakesEqualLimitsForNoRange) {
    ClEntry entry;
    entry.SetRange(3.0, 127.0);
    EXPECT_EQ(entry.m_eKind, 0);
    EXPECT_TRUE(entry.RangeDefined());
    entry.SetRange(3.0, 3.0);
    EXPECT_EQ(entry.m_eKind, 1);
    EXPECT_FALSE(entry.RangeDefined());
    entry.SetRange(4.0, 3.0);
    EXPECT_EQ(entry.m_eKind, 0);
    EXPECT_TRUE(entry.RangeDefined());
    entry.SetRange(std::nan(""), std::nan(""));
    EXPECT_FALSE(entry.RangeDefined());
}

// Reading the list

TEST(ParameterInterface, WalksFromTheFirstToNull) {
    ClParameterInterface List;
    EXPECT_EQ(List.FirstParam(), nullptr);
    List.AddComment("a");
    List.AddComment("b");
    List.AddComment("c");
    EXPECT_EQ(Names(List), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(Names(List), (std::vector<std::string>{"a", "b", "c"})) << "a second walk";
}

TEST(ParameterInterface, RefusesToGoOnWhereNoWalkIsUnderWay) {
    ClParameterInterface List;
    List.AddComment("a");
    EXPECT_THROWS(List.NextParam(), ClException, -701, "m_pActEntry is not set");
    List.FirstParam();
    EXPECT_EQ(List.NextParam(), nullptr);
    EXPECT_THROWS(List.NextParam(), ClException, -701, "m_pActEntry is not set");
    List.FirstParam();
    List.Clear();
    EXPECT_THROWS(List.NextParam(), ClException, -701, "m_pActEntry is not set");
}

TEST(ParameterInterface, FindsEntriesByPosition) {
    ClParameterInterface List;
    const ClEntry* pFirst = List.AddComment("a");
    const ClEntry* pLast = List.AddComment("b");
    EXPECT_EQ(List.GetParam(0L), pFirst);
    EXPECT_EQ(List.GetParam(1L), pLast);
    for (long nIndex : {-1L, 2L, std::numeric_limits<long>::min(), 9223372036854775807L}) {
        EXPECT_EQ(List.GetParameter(nIndex), nullptr);
        EXPECT_EQ(List.GetParam(nIndex), nullptr);
    }
}

TEST(ParameterInterface, FindsEntriesByTheirExactName) {
    ClParameterInterface List;
    List.AddParameter();
    const ClEntry* pFirst = List.AddComment("Width");
    List.AddComment("Width");
    EXPECT_EQ(List.GetParam("Width"), pFirst);
    EXPECT_EQ(List.GetParam("width"), nullptr);
    EXPECT_EQ(List.GetParam("Widt"), nullptr);
    EXPECT_EQ(List.GetParam("Noname"), nullptr) << "no name matches an entry without one";
    EXPECT_EQ(List.GetParam(""), nullptr);
    EXPECT_EQ(List.GetParam(static_cast<const char*>(nullptr)), nullptr);
}

TEST(ParameterInterface, IsEmptyAfterClearAndTakesNewEntries) {
    ClParameterInterface List;
    List.AddComment("a");
    List.Clear();
    EXPECT_EQ(List.Count(), 0);
    EXPECT_EQ(List.FirstParam(), nullptr);
    List.AddComment("b");
    EXPECT_EQ(List.Count(), 1);
    EXPECT_STREQ(List.GetParameter(0)->GetName(), "b");
}

} // namespace
