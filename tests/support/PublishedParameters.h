#pragma once

/// What a processor publishes, in the tree and in the flat list, compared with a table; and the
/// checks that every processor passes.
///
///     TEST(PublishedFilters, GaussPublishesItsSettings) {
///         ClIpFilterGauss gauss;
///         ExpectTree(gauss, {TreePointer("pInImage", gauss.m_pInImage, ePfIn),
///                            TreeNumber("nFilterWidth", gauss.m_nFilterWidth, 0),
///                            TreeEnum("nMode", gauss.m_nMode, 3, caFilterModeNames)});
///         ExpectFlat(gauss, {FlatImage("InImage", gauss.m_pInImage, "In: Original Image"),
///                            FlatNumber("nFilterWidth", gauss.m_nFilterWidth, 0, "in: Filter
///                            Width"), FlatEnum("eFilterWidth", gauss.m_nMode, 3,
///                            caFilterModeNames)});
///     }
///     TEST(PublishedFilters, GaussIsAProcessor) {
///         ExpectProcessor<ClIpFilterGauss>("ClIpFilterGauss");
///         ExpectSettings(ClIpFilterGauss(), "S[1.00] W[0] M[XY] S[Unknown]");
///     }
///
/// The rows stand in the order of publication. Each names the member that it is bound to: the
/// comparison changes the members and sees the parameters follow, so the processor has to be a
/// new one, and it has its defaults again afterwards. Defaults are numbers, also of enums. Programs
/// that use this header link support/AllocationFailures.cpp.

#include "Tools/ParameterContainer.h"
#include "Tools/ParameterInterface.h"
#include "Tools/ProcessorBase.h"
#include "support/AllocationFailures.h"
#include "support/ParameterText.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace TestSupport {

struct StNamedValue {
    long m_nValue;
    std::string m_Name;
};
using NamedValues = std::vector<StNamedValue>;

inline const NamedValues caBoolNames = {{0, "False"}, {1, "True"}};
inline const NamedValues caFilterModeNames = {{1, "Mode X"},
                                              {2, "Mode Y"},
                                              {3, "Mode XY"},
                                              {8, "MODE_DIRECTED"},
                                              {16, "MODE_DIRECTED_ORTHO"}};
inline const NamedValues caPixelTypeNames = {
    {1, "unsigned char"},  {129, "signed char"}, {2, "unsigned short"},
    {130, "signed short"}, {4, "unsigned int"},  {132, "signed int"},
    {196, "float"},        {200, "double"},      {255, "default"}};

inline bool SameNumber(double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

// Tree

struct StTreeRow {
    std::string m_Name;
    std::string m_Description;
    int m_nFlags;
    /// Compares the default.
    std::function<void(ClParameter&)> m_ExpectDefault;
    /// Changes the member and sees the parameter follow, and back; leaves the member changed.
    std::function<void(ClParameter&)> m_ExpectBinding;
};

/// The parameter as one of type `T` and class `Parameter`, or a failure and null.
template <class Parameter>
Parameter* As(ClParameter& Any) {
    auto* pParameter = dynamic_cast<Parameter*>(&Any);
    EXPECT_NE(pParameter, nullptr)
        << Any.GetName() << " is " << typeid(Any).name() << ", not " << typeid(Parameter).name();
    return pParameter;
}

/// An image, a mask or another object that is not owned.
template <class T>
StTreeRow TreePointer(const char* szName, T*& pMember, int nFlags, const char* szText = "") {
    return {szName, szText, nFlags, [](ClParameter& Any) { EXPECT_EQ(DefaultText(Any), "NULL"); },
            [&pMember](ClParameter& Any) {
                auto* p = As<TpParameterEnumPointer<T*>>(Any);
                if (p == nullptr)
                    return;
                EXPECT_EQ(p->GetValueNameCount(), 0u);
                auto* pAddress = reinterpret_cast<T*>(&pMember); // an address, never followed
                pMember = nullptr;
                p->SetValueT(pAddress);
                EXPECT_EQ(pMember, pAddress);
            }};
}

template <class T>
StTreeRow TreeNumber(const char* szName, T& Member, double dDefault, const char* szText = "") {
    return {szName, szText, ePfIn | ePfOut,
            [dDefault](ClParameter& Any) {
                auto* p = As<TpParameterNumeric<T>>(Any);
                if (p != nullptr) {
                    EXPECT_TRUE(SameNumber(p->GetDefault(), dDefault)) << p->GetDefault();
                    EXPECT_FALSE(p->HasRange());
                }
            },
            [&Member](ClParameter& Any) {
                auto* p = As<TpParameterNumeric<T>>(Any);
                if (p == nullptr)
                    return;
                Member = T(17);
                EXPECT_EQ(p->GetNumber(), 17.0);
                p->SetNumber(18.0);
                EXPECT_EQ(Member, T(18));
            }};
}

template <class T>
StTreeRow TreeEnum(const char* szName, T& Member, long nDefault, const NamedValues& aNames,
                   const char* szText = "", int nFlags = ePfIn | ePfOut) {
    return {szName, szText, nFlags,
            [nDefault](ClParameter& Any) {
                auto* p = As<TpParameterEnumPointer<T>>(Any);
                if (p != nullptr) {
                    EXPECT_EQ(static_cast<long>(p->GetDefaultT()), nDefault);
                }
            },
            [&Member, aNames](ClParameter& Any) {
                auto* p = As<TpParameterEnumPointer<T>>(Any);
                if (p == nullptr)
                    return;
                EXPECT_EQ(p->GetValueNameCount(), aNames.size());
                for (unsigned long i = 0; i < aNames.size(); ++i) {
                    char szValue[64] = {};
                    EXPECT_TRUE(p->GetValueName(i, szValue, sizeof szValue));
                    EXPECT_EQ(szValue, aNames[i].m_Name);
                    Member = static_cast<T>(aNames[i].m_nValue);
                    EXPECT_EQ(ValueText(Any), aNames[i].m_Name);
                    Member = static_cast<T>(aNames[0].m_nValue);
                    p->SetValue(aNames[i].m_Name.c_str());
                    EXPECT_EQ(static_cast<long>(Member), aNames[i].m_nValue);
                }
            }};
}

inline StTreeRow TreeBool(const char* szName, bool& bMember, bool bDefault,
                          const char* szText = "") {
    return TreeEnum(szName, bMember, bDefault ? 1 : 0, caBoolNames, szText);
}

/// A sub-container; its entries follow.
inline StTreeRow TreeContainer(const char* szName) {
    const auto expect = [](ClParameter& Any) { EXPECT_TRUE(Any.IsContainer()); };
    return {szName, "", ePfIn | ePfOut, expect, expect};
}

/// A parameter behind accessors, or of another kind: the default as text alone.
inline StTreeRow TreeOther(const char* szName, const std::string& Default, const char* szText = "",
                           int nFlags = ePfIn | ePfOut) {
    return {szName, szText, nFlags,
            [Default](ClParameter& Any) { EXPECT_EQ(DefaultText(Any), Default); },
            [](ClParameter&) {}};
}

/// All parameters of a tree in the order of a walk.
inline std::vector<ClParameter*> Walk(const ClParameterContainer& Container) {
    std::vector<ClParameter*> aAll;
    for (ClParameter* p = Container.GetFirstParameter(); p != nullptr;
         p = Container.GetNextParameter(p))
        aAll.push_back(p);
    return aAll;
}

inline void ExpectTreeRow(ClParameter& Parameter, const StTreeRow& Row) {
    SCOPED_TRACE("tree parameter " + Row.m_Name);
    EXPECT_STREQ(Parameter.GetName(), Row.m_Name.c_str());
    const char* szText = Parameter.GetDescription();
    EXPECT_STREQ(szText != nullptr ? szText : "", Row.m_Description.c_str());
    EXPECT_EQ(Parameter.GetFlags(), Row.m_nFlags);
    Row.m_ExpectDefault(Parameter);
}

/// Compares twice: on a new processor, and when all its published members have changed.
inline void ExpectTree(ClProcessorBase& Processor, const std::vector<StTreeRow>& aRows) {
    ClParameterContainer Container;
    Processor.QueryParameters(Container);
    const std::vector<ClParameter*> aAll = Walk(Container);
    ASSERT_EQ(aAll.size(), aRows.size()) << "parameters in the tree";
    EXPECT_TRUE(Container.IsDefault());
    for (std::size_t i = 0; i < aAll.size(); ++i) {
        ExpectTreeRow(*aAll[i], aRows[i]);
        SCOPED_TRACE("binding of tree parameter " + aRows[i].m_Name);
        aRows[i].m_ExpectBinding(*aAll[i]);
    }
    ClParameterContainer Again;
    Processor.QueryParameters(Again);
    const std::vector<ClParameter*> aAgain = Walk(Again);
    ASSERT_EQ(aAgain.size(), aRows.size());
    for (std::size_t i = 0; i < aAgain.size(); ++i)
        ExpectTreeRow(*aAgain[i], aRows[i]);
    Container.SetToDefault();
    EXPECT_TRUE(Again.IsDefault());
}

// Flat list

using ClEntry = ClParameterInterface::ClParameter;
using EDirection = ClParameterInterface::EDirection;
constexpr EDirection ceIn = ClParameterInterface::eIn;
constexpr EDirection ceOut = ClParameterInterface::eOut;

struct StFlatRow {
    std::string m_Name;
    std::string m_Description;
    std::string m_Type; ///< as `szType()` tells it
    EDirection m_eDirection;
    double m_dLower;
    double m_dUpper;
    double m_dDefault;
    const void* m_pMember;
    std::function<void(ClEntry&)> m_ExpectValue;
};

inline StFlatRow FlatImage(const char* szName, ClImage*& pMember, const char* szText = "",
                           EDirection eDirection = ceIn) {
    return {
        szName, szText, "eImage", eDirection, 0.0, 0.0, 0.0, &pMember, [&pMember](ClEntry& Entry) {
            EXPECT_EQ(Entry.GetImage(), nullptr);
            Entry.SetValue(reinterpret_cast<ClImage*>(&pMember)); // never followed
            EXPECT_EQ(pMember, reinterpret_cast<ClImage*>(&pMember));
            Entry.SetValue(static_cast<ClImage*>(nullptr));
            EXPECT_EQ(pMember, nullptr);
        }};
}

/// The limits are those that the entry shows. Entries of `double` and `long` keep the default.
template <class T>
StFlatRow FlatNumber(const char* szName, T& Member, double dDefault, const char* szText = "",
                     double dLower = 0.0, double dUpper = 0.0, EDirection eDirection = ceIn) {
    constexpr bool bDouble = std::is_same_v<T, double>;
    constexpr bool bByte = std::is_same_v<T, unsigned char>;
    static_assert(bDouble || bByte || std::is_same_v<T, long> || std::is_same_v<T, int>);
    const char* szType = bDouble ? "eDouble" : bByte ? "eByte" : "eLong";
    const bool bKept = bDouble || std::is_same_v<T, long>;
    return {szName,
            szText,
            szType,
            eDirection,
            dLower,
            dUpper,
            bKept ? dDefault : 0.0,
            &Member,
            [&Member, dDefault](ClEntry& Entry) {
                EXPECT_TRUE(SameNumber(Entry.GetValue(), dDefault)) << Entry.GetValue();
                const T old = Member;
                Entry.SetValue(18.0);
                EXPECT_EQ(Member, T(18));
                EXPECT_EQ(Entry.GetValue(), 18.0);
                Member = old;
            }};
}

/// The names that an entry lists.
inline std::vector<std::string> ListedNames(const ClEntry& Entry) {
    std::vector<std::string> aNames;
    for (const char* p = Entry.GetEnumList(); p != nullptr && *p != '\0';
         p += aNames.back().size() + 1)
        aNames.emplace_back(p);
    return aNames;
}

inline std::vector<std::string> NamesOf(const NamedValues& aValues) {
    std::vector<std::string> aNames;
    for (const StNamedValue& Value : aValues)
        aNames.push_back(Value.m_Name);
    return aNames;
}

template <class T>
StFlatRow FlatEnum(const char* szName, T& Member, long nDefault, const NamedValues& aNames,
                   const char* szText = "", EDirection eDirection = ceIn) {
    return {szName,
            szText,
            "eEnum",
            eDirection,
            0.0,
            0.0,
            0.0,
            &Member,
            [&Member, nDefault, aNames](ClEntry& Entry) {
                EXPECT_EQ(Entry.GetValue(), static_cast<double>(nDefault));
                EXPECT_EQ(ListedNames(Entry), NamesOf(aNames));
                for (const StNamedValue& Value : aNames) {
                    Entry.SetEnum(Value.m_Name.c_str());
                    EXPECT_EQ(static_cast<long>(Member), Value.m_nValue);
                    EXPECT_EQ(Entry.szValue(), Value.m_Name);
                }
                Member = static_cast<T>(nDefault);
            }};
}

inline StFlatRow FlatBool(const char* szName, bool& bMember, bool bDefault, const char* szText = "",
                          EDirection eDirection = ceIn) {
    StFlatRow Row = FlatEnum(szName, bMember, bDefault ? 1 : 0, caBoolNames, szText, eDirection);
    Row.m_Type = "eBool";
    return Row;
}

inline void ExpectFlatRow(ClEntry& Entry, const StFlatRow& Row) {
    SCOPED_TRACE("flat parameter " + Row.m_Name);
    EXPECT_STREQ(Entry.GetName(), Row.m_Name.c_str());
    EXPECT_STREQ(Entry.GetDescription(), Row.m_Description.c_str());
    EXPECT_STREQ(Entry.szType(), Row.m_Type.c_str());
    EXPECT_EQ(Entry.m_eDirection, Row.m_eDirection);
    EXPECT_EQ(Entry.m_dLower, Row.m_dLower);
    EXPECT_EQ(Entry.m_dUpper, Row.m_dUpper);
    EXPECT_EQ(Entry.RangeDefined(), Row.m_dLower != Row.m_dUpper);
    EXPECT_TRUE(SameNumber(Entry.m_dDefault, Row.m_dDefault)) << Entry.m_dDefault;
    ASSERT_EQ(Entry.m_pValue, Row.m_pMember) << "bound to another variable";
    if (Entry.szType() == Row.m_Type)
        Row.m_ExpectValue(Entry);
}

inline void ExpectFlat(ClProcessorBase& Processor, const std::vector<StFlatRow>& aRows) {
    ClParameterInterface List;
    static_cast<ClParameterProvider&>(Processor).QueryParameters(List);
    ASSERT_EQ(List.Count(), static_cast<long>(aRows.size())) << "parameters in the flat list";
    for (std::size_t i = 0; i < aRows.size(); ++i)
        ExpectFlatRow(*List.GetParameter(static_cast<long>(i)), aRows[i]);
}

// Processors

/// Moves the value away from what it is, to one that the variable may hold.
inline void Change(ClEntry& Entry) {
    const std::vector<std::string> aNames = ListedNames(Entry);
    if (aNames.empty())
        Entry.SetValue(Entry.GetValue() + 1.0);
    else
        Entry.SetEnum((aNames.front() != Entry.szValue() ? aNames.front() : aNames.back()).c_str());
}

/// Moves every number and choice of both channels away from its value.
inline void ChangePublished(ClProcessorBase& Processor) {
    ClParameterContainer Container;
    Processor.QueryParameters(Container);
    for (ClParameter* p : Walk(Container))
        if (ClParameterNumericInterface* pNumber = p->GetNumericInterface())
            pNumber->SetNumber(pNumber->GetDefault() != 18.0 ? 18.0 : 17.0);
    ClParameterInterface List;
    static_cast<ClParameterProvider&>(Processor).QueryParameters(List);
    for (ClEntry* p = List.FirstParam(); p != nullptr; p = List.NextParam())
        Change(*p);
}

/// The values of the flat list, as text.
inline std::vector<std::string> FlatValues(ClProcessorBase& Processor) {
    ClParameterInterface List;
    static_cast<ClParameterProvider&>(Processor).QueryParameters(List);
    std::vector<std::string> aValues;
    for (ClEntry* p = List.FirstParam(); p != nullptr; p = List.NextParam())
        aValues.emplace_back(p->szValue());
    return aValues;
}

/// A changed processor creates an instance of its own class, with the defaults of a new one, or
/// `ClExBadAlloc`.
template <class Processor>
void ExpectCreatesWithDefaults() {
    Processor Changed;
    ChangePublished(Changed);
    const std::unique_ptr<ClProcessorBase> pCreated(Changed.Create());
    ASSERT_NE(pCreated, nullptr);
    EXPECT_TRUE(typeid(*pCreated) == typeid(Processor)) << typeid(*pCreated).name();
    ClParameterContainer Container;
    pCreated->QueryParameters(Container);
    EXPECT_TRUE(Container.IsDefault());
    Processor Fresh;
    EXPECT_EQ(FlatValues(*pCreated), FlatValues(Fresh));
    FailEachAllocation([&] { const std::unique_ptr<ClProcessorBase> p(Changed.Create()); });
}

/// What a new processor answers, and Create(). `bCanApply` is told for one without images.
template <class Processor>
void ExpectProcessor(const char* szName, bool bCanApply = false) {
    SCOPED_TRACE(szName);
    Processor Fresh;
    EXPECT_STREQ(Fresh.Name(), szName);
    EXPECT_EQ(Fresh.CanApply(), bCanApply);
    ExpectCreatesWithDefaults<Processor>();
}

/// ParameterString() gives the text in a buffer that just holds it, and refuses each smaller one
/// without a write behind its end.
inline void ExpectSettings(ClProcessorBase& Processor, const std::string& Text) {
    const unsigned long nNeeded = Text.size() + 1;
    std::vector<char> aBuffer(nNeeded + 1, '#');
    EXPECT_EQ(Processor.ParameterString(aBuffer.data(), nNeeded), static_cast<long>(Text.size()));
    EXPECT_EQ(std::string(aBuffer.data()), Text);
    EXPECT_EQ(aBuffer[nNeeded], '#');
    for (unsigned long nSize = 0; nSize < nNeeded; ++nSize) {
        SCOPED_TRACE("a buffer of " + std::to_string(nSize) + " bytes");
        std::fill(aBuffer.begin(), aBuffer.end(), '#');
        EXPECT_THROWS(Processor.ParameterString(aBuffer.data(), nSize), ClException, -101,
                      "String-Length exceeded available size");
        EXPECT_EQ(std::string(aBuffer.begin() + static_cast<long>(nSize), aBuffer.end()),
                  std::string(aBuffer.size() - nSize, '#'));
    }
    EXPECT_THROWS(Processor.ParameterString(nullptr, 0), ClException, -101,
                  "String-Length exceeded available size");
}
inline void ExpectSettings(ClProcessorBase&& Processor, const std::string& Text) {
    ExpectSettings(Processor, Text);
}

/// ParameterString() of a processor that shows no settings.
inline void ExpectNoSettings(ClProcessorBase& Processor) {
    char acBuffer[2] = {'#', '#'};
    EXPECT_EQ(Processor.ParameterString(acBuffer, 1), 0);
    EXPECT_EQ(acBuffer[0], '\0');
    EXPECT_EQ(acBuffer[1], '#');
    EXPECT_THROWS(Processor.ParameterString(acBuffer, 0), ClException, -101,
                  "Unexpected zero-length string");
}
inline void ExpectNoSettings(ClProcessorBase&& Processor) {
    ExpectNoSettings(Processor);
}

} // namespace TestSupport
