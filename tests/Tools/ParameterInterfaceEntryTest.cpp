#include "Tools/ParameterInterface.h"

#include "Tools/FpImage.h"
#include "support/ParameterEntries.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

using TestSupport::ceIn;
using TestSupport::ClEntry;

/// A variable between two guards.
template <class T>
struct TpGuarded {
    unsigned char m_acBefore[8] = {7, 7, 7, 7, 7, 7, 7, 7};
    T m_Value = T();
    unsigned char m_acAfter[8] = {7, 7, 7, 7, 7, 7, 7, 7};

    void ExpectGuards() const {
        const unsigned char acGuard[8] = {7, 7, 7, 7, 7, 7, 7, 7};
        EXPECT_EQ(std::memcmp(m_acBefore, acGuard, 8), 0) << "written before the variable";
        EXPECT_EQ(std::memcmp(m_acAfter, acGuard, 8), 0) << "written behind the variable";
    }
};

/// An entry of a type that no form of adding chooses by itself.
template <class T>
ClEntry* AddOf(ClParameterInterface& List, T& Value, ClParameterInterface::EParameterType eType) {
    return List.AddParameter(reinterpret_cast<void**>(&Value), "Value", "", ceIn, eType,
                             ClParameterInterface::eOrdinary);
}

/// Sets a number in a variable of type `T` and reads it back.
template <class T>
void ExpectSets(ClParameterInterface::EParameterType eType, double dSet, T expected) {
    ClParameterInterface List;
    TpGuarded<T> Variable;
    ClEntry* p = AddOf(List, Variable.m_Value, eType);
    SCOPED_TRACE(p->szType());
    p->SetValue(dSet);
    EXPECT_EQ(Variable.m_Value, expected) << dSet;
    Variable.ExpectGuards();
    EXPECT_EQ(p->GetValue(), static_cast<double>(expected));
}

// Words

TEST(ParameterInterfaceEntry, NamesItsType) {
    const char* const aszTypes[] = {"eByte",   "eShort",  "eAngle", "eLong",   "eDouble",
                                    "eFloat",  "eVoid",   "eImage", "eBool",   "eEnum",
                                    "Unknown", "Unknown", "eGraph", "Unknown", "Unknown"};
    ClEntry entry;
    int nType = 0;
    for (const char* szType : aszTypes) {
        entry.m_eType = static_cast<ClParameterInterface::EParameterType>(nType++);
        EXPECT_STREQ(entry.szType(), szType);
    }
    entry.m_eType = static_cast<ClParameterInterface::EParameterType>(-1);
    EXPECT_STREQ(entry.szType(), "Unknown");
}

TEST(ParameterInterfaceEntry, NamesItsDirection) {
    const char* const aszDirections[] = {"eIn", "eOut", "eInOut", "eOptional", "Unknown"};
    ClEntry entry;
    int nDirection = 0;
    for (const char* szDirection : aszDirections) {
        entry.m_eDirection = static_cast<ClParameterInterface::EDirection>(nDirection++);
        EXPECT_STREQ(entry.szDir(), szDirection);
    }
}

TEST(ParameterInterfaceEntry, KnowsTheFloatingPointTypes) {
    ClEntry entry;
    for (int nType = 0; nType < 15; ++nType) {
        entry.m_eType = static_cast<ClParameterInterface::EParameterType>(nType);
        EXPECT_EQ(entry.IsFloat(), nType == 4 || nType == 5) << nType;
    }
}

// Numbers

TEST(ParameterInterfaceEntry, WritesEachTypeInItsWidth) {
    ExpectSets<std::uint8_t>(ClParameterInterface::eByte, 200.9, 200);
    ExpectSets<std::int16_t>(ClParameterInterface::eShort, -300.9, -300);
    ExpectSets<std::uint16_t>(ClParameterInterface::eAngle, 65535.0, 65535);
    ExpectSets<std::int64_t>(ClParameterInterface::eLong, -5e15, -5000000000000000);
    ExpectSets<double>(ClParameterInterface::eDouble, -0.1, -0.1);
    ExpectSets<float>(ClParameterInterface::eFloat, 0.1, 0.1F);
    ExpectSets<std::uint8_t>(ClParameterInterface::eBool, 0.5, 1);
    ExpectSets<std::uint8_t>(ClParameterInterface::eBool, -2.0, 1);
    ExpectSets<std::uint8_t>(ClParameterInterface::eBool, 0.0, 0);
    ExpectSets<std::int64_t>(ClParameterInterface::eEnum, 3.0, 3);
}

TEST(ParameterInterfaceEntry, KeepsTheLowBitsOfWhatIsTooLarge) {
    ExpectSets<std::uint8_t>(ClParameterInterface::eByte, 300.0, 44); // 300 - 256
    ExpectSets<std::uint8_t>(ClParameterInterface::eByte, -1.0, 255);
    ExpectSets<std::int16_t>(ClParameterInterface::eShort, 40000.0, -25536); // 40000 - 65536
    ExpectSets<std::uint16_t>(ClParameterInterface::eAngle, 65536.0, 0);
}

TEST(ParameterInterfaceEntry, WritesZeroForWhatIsNoInteger) {
    for (double d : {std::nan(""), 1e19, -1e19, std::numeric_limits<double>::infinity()}) {
        ExpectSets<std::uint8_t>(ClParameterInterface::eByte, d, 0);
        ExpectSets<std::int64_t>(ClParameterInterface::eLong, d, 0);
    }
    ExpectSets<std::uint8_t>(ClParameterInterface::eBool, std::nan(""), 1);
}

TEST(ParameterInterfaceEntry, WritesAndReadsExactlyTheBoundVariable) {
    ClParameterInterface List;
    TpGuarded<int> Int;
    TpGuarded<unsigned char> Byte;
    TpGuarded<bool> Bool;
    TpGuarded<long> Long;
    ClEntry* pInt = List.AddParameter(&Int.m_Value, "Int", "", ceIn, 0.0, 0.0);
    ClEntry* pByte = List.AddParameter(&Byte.m_Value, "Byte", "", ceIn, 0.0, 0.0);
    ClEntry* pBool = List.AddBool(&Bool.m_Value, "Bool", "", ceIn);
    ClEntry* pLong = List.AddParameter(&Long.m_Value, "Long", "", ceIn, 0.0, 0.0);
    pInt->SetValue(-2.0);
    pByte->SetValue(254.0);
    pBool->SetValue(7.0);
    pLong->SetValue(-3.0);
    EXPECT_EQ(Int.m_Value, -2);
    EXPECT_EQ(pInt->GetValue(), -2.0);
    EXPECT_STREQ(pInt->szValue(), "-2");
    EXPECT_EQ(Byte.m_Value, 254);
    EXPECT_TRUE(Bool.m_Value);
    EXPECT_EQ(pBool->GetValue(), 1.0);
    EXPECT_EQ(Long.m_Value, -3);
    Int.ExpectGuards();
    Byte.ExpectGuards();
    Bool.ExpectGuards();
    Long.ExpectGuards();
}

template <class T>
void ExpectEnumWidth(T value) {
    ClParameterInterface List;
    TpGuarded<T> Variable;
    ClEntry* p = List.AddEnum(&Variable.m_Value, "Mode", "", "A\0B\0", ceIn, sizeof(T));
    p->SetEnum(static_cast<long>(value));
    EXPECT_EQ(Variable.m_Value, value);
    EXPECT_EQ(p->GetValue(), static_cast<double>(value));
    Variable.ExpectGuards();
    p->SetEnum("B");
    EXPECT_EQ(Variable.m_Value, T(1));
    EXPECT_STREQ(p->szValue(), "B");
    Variable.ExpectGuards();
}

TEST(ParameterInterfaceEntry, KeepsEnumsOfEveryWidth) {
    ExpectEnumWidth<unsigned char>(255);
    ExpectEnumWidth<short>(-2);
    ExpectEnumWidth<int>(-2);
    ExpectEnumWidth<long>(9223372036854775807L);
}

TEST(ParameterInterfaceEntry, WritesToAnotherTarget) {
    ClParameterInterface List;
    long nOwn = 4;
    long nOther = 0;
    const ClEntry* p = List.AddParameter(&nOwn, "Width", "", ceIn, 0.0, 0.0);
    p->SetValue(&nOther, 9.0);
    p->SetValue(nullptr, 9.0);
    EXPECT_EQ(nOwn, 4);
    EXPECT_EQ(nOther, 9);
    EXPECT_STREQ(p->GetszValue(&nOther), "9");
    EXPECT_STREQ(p->szValue(), "4");
}

TEST(ParameterInterfaceEntry, LeavesOtherTypesUnwritten) {
    const ClParameterInterface::EParameterType aeTypes[] = {
        ClParameterInterface::eVoid,
        ClParameterInterface::eImage,
        ClParameterInterface::eString,
        ClParameterInterface::eGraph,
        ClParameterInterface::eComment,
        static_cast<ClParameterInterface::EParameterType>(10),
        static_cast<ClParameterInterface::EParameterType>(14)};
    for (auto eType : aeTypes) {
        ClParameterInterface List;
        long nValue = 5;
        ClEntry* p = AddOf(List, nValue, eType);
        p->SetValue(1.0);
        p->SetEnum(1L);
        EXPECT_EQ(nValue, 5) << p->m_eType;
        EXPECT_EQ(p->GetValue(), 0.0) << p->m_eType;
    }
}

// The lock

TEST(ParameterInterfaceEntry, IgnoresValuesWhileLocked) {
    ClParameterInterface List;
    double dSigma = 2.0;
    ClEntry* p = List.AddParameter(&dSigma, "Sigma", "", ceIn, 0.0, 0.0);
    p->m_bLocked = true;
    p->SetValue(3.0);
    p->SetEnum(3L);
    EXPECT_EQ(dSigma, 2.0);
    p->m_bLocked = false;
    p->SetValue(3.0);
    EXPECT_EQ(dSigma, 3.0);
}

TEST(ParameterInterfaceEntry, IgnoresNamesWhileLocked) {
    ClParameterInterface List;
    long nMode = 0;
    ClEntry* p = List.AddEnum(&nMode, "Mode", "", "Cut\0Scale\0", ceIn);
    p->m_bLocked = true;
    p->SetEnum("Scale");
    p->SetEnum(1L);
    EXPECT_EQ(nMode, 0);
    p->m_bLocked = false;
    p->SetEnum("Scale");
    EXPECT_EQ(nMode, 1);
}

TEST(ParameterInterfaceEntry, LocksNeitherOtherTargetsNorImages) {
    ClParameterInterface List;
    ClImage image;
    ClImage* pImage = nullptr;
    ClEntry* p = List.AddParameter(&pImage, "Image", "", ceIn, 0.0, 0.0);
    p->m_bLocked = true;
    p->SetValue(image);
    EXPECT_EQ(pImage, &image);
    long nOwn = 0;
    long nOther = 0;
    ClEntry* pLong = List.AddParameter(&nOwn, "Width", "", ceIn, 0.0, 0.0);
    pLong->m_bLocked = true;
    pLong->SetValue(&nOther, 4.0);
    EXPECT_EQ(nOther, 4);
}

// Objects

TEST(ParameterInterfaceEntry, SetsAndGivesImages) {
    ClParameterInterface List;
    ClImage image;
    ClImage* pImage = nullptr;
    ClEntry* p = List.AddParameter(&pImage, "Image", "", ceIn, 0.0, 0.0);
    EXPECT_EQ(p->GetImage(), nullptr);
    p->SetValue(image);
    EXPECT_EQ(pImage, &image);
    EXPECT_EQ(p->GetImage(), &image);
    EXPECT_EQ(p->GetGraph(), nullptr);
    EXPECT_EQ(p->GetValue(), 0.0);
    p->SetValue(static_cast<ClGraph*>(nullptr));
    EXPECT_EQ(pImage, &image) << "a graph is no image";
    p->SetValue(static_cast<ClImage*>(nullptr));
    EXPECT_EQ(pImage, nullptr);
}

TEST(ParameterInterfaceEntry, SetsAndGivesGraphs) {
    ClParameterInterface List;
    int nTarget = 0;
    auto* pAny = reinterpret_cast<ClGraph*>(&nTarget); // an address, never followed
    ClGraph* pGraph = nullptr;
    ClEntry* p = List.AddParameter(&pGraph, "Graph", "", ceIn);
    p->SetValue(pAny);
    EXPECT_EQ(pGraph, pAny);
    EXPECT_EQ(p->GetGraph(), pAny);
    EXPECT_EQ(p->GetImage(), nullptr);
    EXPECT_EQ(p->GetValue(), 0.0);
    p->SetValue(static_cast<ClImage*>(nullptr));
    EXPECT_EQ(pGraph, pAny) << "an image is no graph";
}

TEST(ParameterInterfaceEntry, GivesNoObjectOfANumber) {
    ClParameterInterface List;
    ClImage image;
    long nValue = 5;
    ClEntry* p = List.AddParameter(&nValue, "Width", "", ceIn, 0.0, 0.0);
    p->SetValue(image);
    EXPECT_EQ(nValue, 5);
    EXPECT_EQ(p->GetImage(), nullptr);
    EXPECT_EQ(p->GetGraph(), nullptr);
}

} // namespace
