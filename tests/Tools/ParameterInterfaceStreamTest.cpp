#include "Tools/ParameterInterface.h"

#include "support/AllocationFailures.h"
#include "support/ParameterEntries.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <array>
#include <cstring>
#include <limits>
#include <string>

namespace {

using TestSupport::Bytes;
using TestSupport::ceIn;
using TestSupport::ClEntry;
using TestSupport::Content;

ClEntry* AddOf(ClParameterInterface& List, void* pValue, const char* szName, int nType) {
    return List.AddParameter(static_cast<void**>(pValue), szName, "", ceIn,
                             static_cast<ClParameterInterface::EParameterType>(nType),
                             ClParameterInterface::eOrdinary);
}

/// One variable of each type that is streamed, and of some that are not.
struct StVariables {
    unsigned char m_nByte = 200;
    short m_nShort = -2;
    unsigned short m_nAngle = 65535;
    long m_nLong = -5000000000;
    double m_dDouble = 0.1;
    float m_fFloat = -1.5F;
    int m_nInt = -7;
    bool m_bBool = true;
    long m_nEnum = 1;

    void AddTo(ClParameterInterface& List) {
        List.AddComment("numbers");
        AddOf(List, &m_nByte, "Byte", 0);
        AddOf(List, &m_nShort, "Short", 1);
        AddOf(List, &m_nAngle, "Angle", 2);
        List.AddParameter(&m_nLong, "Long", "", ceIn, 0.0, 0.0);
        List.AddParameter(&m_dDouble, "Double", "", ceIn, 0.0, 0.0);
        AddOf(List, &m_fFloat, "Float", 5);
        List.AddParameter(&m_nInt, "Int", "", ceIn, 0.0, 0.0);
        List.AddBool(&m_bBool, "Bool", "", ceIn);
        List.AddEnum(&m_nEnum, "Enum", "", "A\0B\0", ceIn);
        List.AddParameter();
    }
};

/// A stream at its start that holds the bytes.
void Fill(ClMemStream& Stream, const Bytes& aBytes) {
    Stream.Write(aBytes.data(), aBytes.size());
    Stream.Seek(0, 0);
}

Bytes Stored(ClParameterInterface& List) {
    ClMemStream stream;
    List.WriteToStream(stream);
    return Content(stream);
}

/// The bytes of one entry of a `long` named "W", written out by hand.
Bytes LongEntryBytes() {
    return {0,    0,    0,    2,    'W',  0,                 // name with its terminator
            0,    0,                                         // direction, kind
            0x40, 0x08, 0,    0,    0,    0,    0,    0,     // lower 3.0
            0x40, 0x5F, 0xC0, 0,    0,    0,    0,    0,     // upper 127.0
            0x40, 0x14, 0,    0,    0,    0,    0,    0,     // default 5.0
            1,    0,                                         // flags
            3,                                               // type
            0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}; // value -2
}

/// Offset of the type in those bytes.
constexpr std::size_t cnTypeOffset = 34;

TEST(ParameterInterfaceStream, WritesAnEntryInItsOrder) {
    ClParameterInterface List;
    long nWidth = 5;
    ClEntry* p = List.AddParameter(&nWidth, "W", "not stored", ceIn, 3.0, 127.0);
    p->m_bFlag = true;
    nWidth = -2;
    EXPECT_EQ(Stored(List), LongEntryBytes());
}

TEST(ParameterInterfaceStream, WritesTheDirectionBeforeTheKindAndGivesBothBack) {
    ClParameterInterface Source;
    Source.AddParameter(nullptr, "W", "", ClParameterInterface::eOptional,
                        ClParameterInterface::eVoid, ClParameterInterface::eNoRange);
    const Bytes aBytes = Stored(Source);
    EXPECT_EQ(Bytes(aBytes.begin() + 6, aBytes.begin() + 8), (Bytes{3, 1}));
    ClMemStream stream;
    Fill(stream, aBytes);
    ClParameterInterface Target;
    ClEntry* p = Target.AddParameter();
    p->SetName("W");
    Target.ReadFromStream(stream);
    EXPECT_EQ(p->m_eDirection, ClParameterInterface::eOptional);
    EXPECT_EQ(p->m_eKind, ClParameterInterface::eNoRange);
}

TEST(ParameterInterfaceStream, WritesInTheOrderOfTheStream) {
    ClParameterInterface List;
    unsigned short nAngle = 0x1234;
    AddOf(List, &nAngle, "A", 2);
    ClMemStream stream;
    stream.SetBigEndian(false);
    List.WriteToStream(stream);
    const Bytes aBytes = Content(stream);
    EXPECT_EQ(Bytes(aBytes.end() - 2, aBytes.end()), (Bytes{0x34, 0x12}));
}

TEST(ParameterInterfaceStream, WritesValuesInTheNaturalWidthOfTheTypesUpToFloat) {
    const std::size_t anWidths[] = {1, 2, 2, 8, 8, 4, 0, 0, 0, 0, 0, 0, 0, 0};
    constexpr std::size_t cnHead = 6 + 2 + 3 * 8 + 2 + 1;
    int nType = 0;
    for (std::size_t nWidth : anWidths) {
        ClParameterInterface List;
        double dRoom = 0.0;
        AddOf(List, &dRoom, "W", nType);
        EXPECT_EQ(Stored(List).size(), cnHead + nWidth) << nType;
        ++nType;
    }
}

TEST(ParameterInterfaceStream, WritesAnIntAsALong) {
    ClParameterInterface List;
    int nWidth = -2;
    ClEntry* p = List.AddParameter(&nWidth, "W", "", ceIn, 3.0, 127.0);
    p->m_bFlag = true;
    p->m_dDefault = 5.0;
    EXPECT_EQ(Stored(List), LongEntryBytes());
}

TEST(ParameterInterfaceStream, WritesZeroForAVariableThatIsNotThere) {
    ClParameterInterface List;
    List.AddParameter(static_cast<long*>(nullptr), "W", "", ceIn, 0.0, 0.0);
    List.AddParameter(static_cast<double*>(nullptr), "D", "", ceIn, 0.0, 0.0);
    const Bytes aBytes = Stored(List);
    EXPECT_EQ(aBytes.size(), 2 * LongEntryBytes().size());
    EXPECT_EQ(Bytes(aBytes.end() - 8, aBytes.end()), Bytes(8, 0));
    ClMemStream stream;
    Fill(stream, aBytes);
    List.ReadFromStream(stream);
    EXPECT_EQ(stream.Pos(), aBytes.size());
}

TEST(ParameterInterfaceStream, WritesAnUnsetNameLikeAnEmptyOne) {
    ClParameterInterface Unset;
    Unset.AddParameter();
    ClParameterInterface Empty;
    Empty.AddParameter()->SetName("");
    EXPECT_EQ(Stored(Unset), Stored(Empty));
}

TEST(ParameterInterfaceStream, GivesEveryValueBack) {
    StVariables From;
    ClParameterInterface Source;
    From.AddTo(Source);
    ClMemStream stream;
    Source.WriteToStream(stream);
    stream.Seek(0, 0);
    StVariables To;
    To.m_nByte = 0;
    To.m_nShort = 0;
    To.m_nAngle = 0;
    To.m_nLong = 0;
    To.m_dDouble = 0.0;
    To.m_fFloat = 0.0F;
    To.m_nInt = 0;
    To.m_bBool = false;
    To.m_nEnum = 0;
    ClParameterInterface Target;
    To.AddTo(Target);
    Target.ReadFromStream(stream);
    EXPECT_EQ(To.m_nByte, 200);
    EXPECT_EQ(To.m_nShort, -2);
    EXPECT_EQ(To.m_nAngle, 65535);
    EXPECT_EQ(To.m_nLong, -5000000000);
    EXPECT_EQ(To.m_dDouble, 0.1);
    EXPECT_EQ(To.m_fFloat, -1.5F);
    EXPECT_EQ(To.m_nInt, -7);
    EXPECT_FALSE(To.m_bBool) << "choices are not stored";
    EXPECT_EQ(To.m_nEnum, 0) << "choices are not stored";
    EXPECT_EQ(stream.Pos(), stream.Size());
}

TEST(ParameterInterfaceStream, GivesWhatStandsBesideTheValueBack) {
    ClMemStream stream;
    Fill(stream, LongEntryBytes());
    ClParameterInterface List;
    long nWidth = 0;
    ClEntry* p = List.AddParameter(&nWidth, "W", "", ClParameterInterface::eOut, 0.0, 0.0);
    List.ReadFromStream(stream);
    EXPECT_EQ(p->m_eDirection, 0);
    EXPECT_EQ(p->m_eKind, 0);
    EXPECT_EQ(p->m_dLower, 3.0);
    EXPECT_EQ(p->m_dUpper, 127.0);
    EXPECT_EQ(p->m_dDefault, 5.0);
    EXPECT_TRUE(p->m_bFlag);
    EXPECT_FALSE(p->m_bLocked);
    EXPECT_EQ(nWidth, -2);
}

TEST(ParameterInterfaceStream, ReadsIntoALockedEntryAndLocksIt) {
    Bytes aBytes = LongEntryBytes();
    aBytes[33] = 1;
    ClMemStream stream;
    Fill(stream, aBytes);
    ClParameterInterface List;
    long nWidth = 0;
    ClEntry* p = List.AddParameter(&nWidth, "W", "", ceIn, 0.0, 0.0);
    p->m_bLocked = true;
    List.ReadFromStream(stream);
    EXPECT_EQ(nWidth, -2);
    EXPECT_TRUE(p->m_bLocked);
}

TEST(ParameterInterfaceStream, WritesAnIntOfAStreamAndNothingBeside) {
    ClMemStream stream;
    Fill(stream, LongEntryBytes());
    ClParameterInterface List;
    std::array<int, 2> anRoom = {0, 77};
    List.AddParameter(anRoom.data(), "W", "", ceIn, 0.0, 0.0);
    List.ReadFromStream(stream);
    EXPECT_EQ(anRoom[0], -2);
    EXPECT_EQ(anRoom[1], 77);
}

// Refusals

/// Reading the bytes into a `long` named "W" answers `nResult`, as the list's exception too, and
/// changes nothing.
void ExpectRefused(const Bytes& aBytes, long nResult) {
    ClParameterInterface List;
    long nWidth = 11;
    ClEntry* p = List.AddParameter(&nWidth, "W", "", ClParameterInterface::eOut, 1.0, 20.0);
    const Bytes aBefore = Stored(List);
    ClMemStream stream;
    Fill(stream, aBytes);
    EXPECT_EQ(p->ReadFromStream(stream), nResult);
    EXPECT_EQ(Stored(List), aBefore);
    stream.Seek(0, 0);
    EXPECT_THROWS(List.ReadFromStream(stream), ClExTessarin, nResult,
                  GetErrorDescriptionIntern(nResult));
    EXPECT_EQ(Stored(List), aBefore);
}

TEST(ParameterInterfaceStream, RefusesAnotherName) {
    for (const std::string name : {"w", "WW", "X", ""}) {
        Bytes aBytes = {0, 0, 0, static_cast<unsigned char>(name.size() + 1)};
        for (const char c : name)
            aBytes.push_back(static_cast<unsigned char>(c));
        aBytes.push_back(0);
        const Bytes aEntry = LongEntryBytes();
        aBytes.insert(aBytes.end(), aEntry.begin() + 6, aEntry.end());
        SCOPED_TRACE(name);
        ExpectRefused(aBytes, -39);
    }
}

TEST(ParameterInterfaceStream, RefusesAnotherType) {
    for (const int nType : {0, 1, 4, 6, 9, 131}) {
        Bytes aBytes = LongEntryBytes();
        aBytes[cnTypeOffset] = static_cast<unsigned char>(nType);
        SCOPED_TRACE(nType);
        ExpectRefused(aBytes, -39);
    }
}

TEST(ParameterInterfaceStream, RefusesAStreamThatEndsEarly) {
    const Bytes aEntry = LongEntryBytes();
    for (std::size_t nBytes = 6; nBytes < aEntry.size(); ++nBytes) {
        SCOPED_TRACE(nBytes);
        ExpectRefused(Bytes(aEntry.begin(), aEntry.begin() + static_cast<long>(nBytes)), -201);
    }
    for (std::size_t nBytes = 0; nBytes < 6; ++nBytes) { // within the name
        SCOPED_TRACE(nBytes);
        ExpectRefused(Bytes(aEntry.begin(), aEntry.begin() + static_cast<long>(nBytes)), -39);
    }
}

TEST(ParameterInterfaceStream, LeavesTheEntryWhereAStrictStreamEndsEarly) {
    const Bytes aEntry = LongEntryBytes();
    for (std::size_t nBytes = 0; nBytes < aEntry.size(); ++nBytes) {
        ClMemStream stream;
        Fill(stream, Bytes(aEntry.begin(), aEntry.begin() + static_cast<long>(nBytes)));
        stream.SetThrowOnShort(true);
        ClParameterInterface List;
        long nWidth = 11;
        List.AddParameter(&nWidth, "W", "", ClParameterInterface::eOut, 1.0, 20.0);
        const Bytes aBefore = Stored(List);
        EXPECT_THROWS(List.ReadFromStream(stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
        EXPECT_EQ(Stored(List), aBefore) << nBytes;
    }
}

TEST(ParameterInterfaceStream, TakesNoMemoryForTheLengthThatAStreamClaims) {
    const Bytes aClaim = {0xFF, 0xFF, 0xFF, 0xFF, 'W', 0};
    ExpectRefused(aClaim, -39); // no name of ours is as long
    TestSupport::ClPipeStream pipe(aClaim);
    ClParameterInterface List;
    long nWidth = 11;
    List.AddParameter(&nWidth, "W", "", ceIn, 0.0, 0.0);
    EXPECT_TESSARIN(List.ReadFromStream(pipe), -39);
    EXPECT_EQ(nWidth, 11);
}

TEST(ParameterInterfaceStream, ComparesWholeNames) {
    for (const std::string& Name :
         {std::string("W\0X\0", 4), std::string("W\0\0", 3), std::string("W"),
          std::string("WX\0", 3), std::string("\0", 1), std::string(), std::string("w\0", 2)}) {
        Bytes aEntry = {0, 0, 0, static_cast<unsigned char>(Name.size())};
        aEntry.insert(aEntry.end(), Name.begin(), Name.end());
        const Bytes aUsual = LongEntryBytes();
        aEntry.insert(aEntry.end(), aUsual.begin() + 6, aUsual.end());
        SCOPED_TRACE(testing::PrintToString(Name));
        ExpectRefused(aEntry, -39);
    }
}

TEST(ParameterInterfaceStream, ComparesLongNamesToTheirEnd) {
    const std::string Name(1000, 'n');
    for (std::size_t nDifferent :
         {std::size_t{0}, std::size_t{255}, std::size_t{256}, std::size_t{999}, Name.size()}) {
        std::string Other = Name;
        if (nDifferent < Other.size())
            Other[nDifferent] = 'm';
        ClParameterInterface Source;
        ClParameterInterface Target;
        long nFrom = 8;
        long nTo = 0;
        Source.AddParameter(&nFrom, Other.c_str(), "", ceIn, 0.0, 0.0);
        Target.AddParameter(&nTo, Name.c_str(), "", ceIn, 0.0, 0.0);
        ClMemStream stream;
        Source.WriteToStream(stream);
        stream.Seek(0, 0);
        if (nDifferent < Name.size()) {
            EXPECT_TESSARIN(Target.ReadFromStream(stream), -39);
        } else {
            Target.ReadFromStream(stream);
        }
        EXPECT_EQ(nTo, nDifferent < Name.size() ? 0 : 8);
    }
}

TEST(ParameterInterfaceStream, TakesATextWithoutBytesForNoName) {
    Bytes aEntry = LongEntryBytes();
    aEntry.erase(aEntry.begin() + 4, aEntry.begin() + 6);
    aEntry[3] = 0;
    ClMemStream stream;
    Fill(stream, aEntry);
    ClParameterInterface List;
    long nWidth = 11;
    List.AddParameter(&nWidth, nullptr, "", ClParameterInterface::eOut, 1.0, 20.0);
    List.ReadFromStream(stream);
    EXPECT_EQ(nWidth, -2);
}

TEST(ParameterInterfaceStream, StopsAtTheFirstEntryThatFails) {
    ClParameterInterface Source;
    long nFrom = 8;
    Source.AddParameter(&nFrom, "W", "", ceIn, 0.0, 0.0);
    Source.AddParameter(&nFrom, "X", "", ceIn, 0.0, 0.0);
    ClMemStream stream;
    Source.WriteToStream(stream);
    stream.Seek(0, 0);
    ClParameterInterface Target;
    long anTo[2] = {0, 0};
    Target.AddParameter(&anTo[0], "W", "", ceIn, 0.0, 0.0);
    Target.AddParameter(&anTo[1], "Y", "", ceIn, 0.0, 0.0);
    EXPECT_TESSARIN(Target.ReadFromStream(stream), -39);
    EXPECT_EQ(anTo[0], 8);
    EXPECT_EQ(anTo[1], 0);
}

TEST(ParameterInterfaceStream, ReadsWithoutAskingForMemory) {
    ClParameterInterface List;
    long nWidth = 11;
    List.AddParameter(&nWidth, "W", "", ClParameterInterface::eOut, 1.0, 20.0);
    ClMemStream stream;
    Fill(stream, LongEntryBytes());
    const TestSupport::ClFailAllocation fail(0);
    List.ReadFromStream(stream);
    EXPECT_FALSE(TestSupport::ClFailAllocation::Happened());
    EXPECT_EQ(nWidth, -2);
}

TEST(ParameterInterfaceStream, CanBeReplacedByADerivedList) {
    class ClQuietList : public ClParameterInterface {
    public:
        void WriteToStream(ClStream&) override { ++m_nWritten; }
        void ReadFromStream(ClStream&) override { ++m_nRead; }
        int m_nWritten = 0;
        int m_nRead = 0;
    };
    ClQuietList quiet;
    ClParameterInterface& List = quiet;
    ClMemStream stream;
    List.WriteToStream(stream);
    List.ReadFromStream(stream);
    EXPECT_EQ(quiet.m_nWritten, 1);
    EXPECT_EQ(quiet.m_nRead, 1);
}

} // namespace
