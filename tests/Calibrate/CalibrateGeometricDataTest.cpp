// The record as an object: its state, its copies, its hash and its trace.

#include "Calibrate/CalibrateGeometricData.h"

#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/LogCapture.h"
#include "support/Md5.h"
#include "support/Records.h"
#include "support/Throws.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

using TestSupport::Bytes;
using TestSupport::ClLogCapture;
using TestSupport::Digest;
using TestSupport::PlausibleRecord;
using TestSupport::StRecord;

namespace {

/// A record with three planes and no two numbers alike.
StRecord ThreePlanes() {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = 3;
    for (int p = 1; p < 3; ++p) {
        Record.m_aActual[p] = Record.m_aActual[0];
        for (TestSupport::StPoint& Point : Record.m_aActual[p])
            Point.x += static_cast<float>(p) * 0.25f;
    }
    Record.m_nTargetPelsY = 2462;
    Record.m_nBackground = 77;
    return Record;
}

Digest HashOf(const ClCalibrateGeometricData& Data) {
    Digest aHash{};
    Data.GenerateHash(aHash.data());
    return aHash;
}

/// A record that was read from a stream, so that its read version differs from a fresh one's.
void Reread(ClCalibrateGeometricData& rData) {
    const Bytes aBlock = RecordBlock(ThreePlanes());
    ClMemStream Stream(aBlock.data(), aBlock.size());
    static_cast<ClCalibrateDataBase&>(rData).Read(Stream);
}

void ExpectContent(const ClCalibrateGeometricData& Data, const StRecord& Record) {
    EXPECT_EQ(Data.m_nSourceWidth, Record.m_nSourceWidth);
    EXPECT_EQ(Data.m_nSourceHeight, Record.m_nSourceHeight);
    EXPECT_EQ(Data.m_nSourcePelsX, Record.m_nSourcePelsX);
    EXPECT_EQ(Data.m_nSourcePelsY, Record.m_nSourcePelsY);
    EXPECT_EQ(Data.m_nTargetWidth, Record.m_nTargetWidth);
    EXPECT_EQ(Data.m_nTargetHeight, Record.m_nTargetHeight);
    EXPECT_EQ(Data.m_nTargetPelsX, Record.m_nTargetPelsX);
    EXPECT_EQ(Data.m_nTargetPelsY, Record.m_nTargetPelsY);
    EXPECT_EQ(Data.m_nPlanes, Record.m_nPlanes);
    EXPECT_EQ(Data.m_nBackground, Record.m_nBackground);
    ASSERT_EQ(Data.m_aTarget.Entries(), Record.m_aTarget.size());
    for (unsigned long i = 0; i < Data.m_aTarget.Entries(); ++i)
        EXPECT_EQ(Data.m_aTarget[i].y, static_cast<double>(Record.m_aTarget[i].y));
    for (int p = 0; p < 3; ++p) {
        ASSERT_EQ(Data.m_aActual[p].Entries(), Record.m_aActual[p].size());
        for (unsigned long i = 0; i < Data.m_aActual[p].Entries(); ++i)
            EXPECT_EQ(Data.m_aActual[p][i].x, static_cast<double>(Record.m_aActual[p][i].x));
    }
}

/// One change of each number and of one coordinate of each list.
std::vector<std::pair<std::string, std::function<void(ClCalibrateGeometricData&)>>> Changes() {
    using Data = ClCalibrateGeometricData;
    return {{"source width", [](Data& r) { ++r.m_nSourceWidth; }},
            {"source height", [](Data& r) { ++r.m_nSourceHeight; }},
            {"source pels x", [](Data& r) { ++r.m_nSourcePelsX; }},
            {"source pels y", [](Data& r) { ++r.m_nSourcePelsY; }},
            {"target width", [](Data& r) { ++r.m_nTargetWidth; }},
            {"target height", [](Data& r) { ++r.m_nTargetHeight; }},
            {"target pels x", [](Data& r) { ++r.m_nTargetPelsX; }},
            {"target pels y", [](Data& r) { ++r.m_nTargetPelsY; }},
            {"planes", [](Data& r) { --r.m_nPlanes; }},
            {"background", [](Data& r) { ++r.m_nBackground; }},
            {"target x", [](Data& r) { r.m_aTarget[7].x += 0.5; }},
            {"target y", [](Data& r) { r.m_aTarget[74].y += 0.5; }},
            {"actual 0", [](Data& r) { r.m_aActual[0][0].x += 0.5; }},
            {"actual 1", [](Data& r) { r.m_aActual[1][33].y += 0.5; }},
            {"actual 2", [](Data& r) { r.m_aActual[2][74].x += 0.5; }}};
}

} // namespace

// State

TEST(CalibrateGeometricData, StartsEmpty) {
    const ClCalibrateGeometricData Data;
    StRecord Empty;
    Empty.m_nPlanes = 0;
    ExpectContent(Data, Empty);
    EXPECT_FALSE(Data.IsValid());
}

TEST(CalibrateGeometricData, IsValidWithPlanes) {
    ClCalibrateGeometricData Data;
    Data.m_nPlanes = 1;
    EXPECT_TRUE(Data.IsValid());
    Data.m_nPlanes = 0;
    EXPECT_FALSE(Data.IsValid());
}

TEST(CalibrateGeometricData, ClearEmptiesContentAndKeepsTags) {
    ClCalibrateGeometricData Data;
    Reread(Data);
    Data.Clear();
    StRecord Empty;
    Empty.m_nPlanes = 0;
    ExpectContent(Data, Empty);
    EXPECT_STREQ(Data.ReadVersion(), "006");
    EXPECT_FALSE(Data.IsValid());
}

// Copies

TEST(CalibrateGeometricData, AssignmentCopiesNumbersAndListsByValue) {
    ClCalibrateGeometricData From;
    Fill(ThreePlanes(), From);
    ClCalibrateGeometricData To;
    Fill(PlausibleRecord(), To);
    To = From;
    From.m_aTarget[0].x = -1;
    From.m_aActual[2][5].y = -1;
    ExpectContent(To, ThreePlanes());
}

TEST(CalibrateGeometricData, AssignmentCopiesTheReadVersion) {
    ClCalibrateGeometricData From;
    Reread(From);
    ClCalibrateGeometricData To;
    To = From;
    EXPECT_STREQ(To.ReadVersion(), "006");
}

TEST(CalibrateGeometricData, AssignmentToItselfChangesNothing) {
    ClCalibrateGeometricData Data;
    Fill(ThreePlanes(), Data);
    const ClCalibrateGeometricData& rSame = Data;
    Data = rSame;
    ExpectContent(Data, ThreePlanes());
}

TEST(CalibrateGeometricData, AssignmentSurvivesMissingMemory) {
    ClCalibrateGeometricData From;
    Fill(ThreePlanes(), From);
    TestSupport::FailEachAllocation([&] {
        ClCalibrateGeometricData To;
        To = From;
        EXPECT_EQ(To.m_aActual[2].Entries(), 75u);
    });
}

// Comparison: equal tags make records different

TEST(CalibrateGeometricData, DiffersFromARecordWithTheSameTags) {
    ClCalibrateGeometricData One;
    ClCalibrateGeometricData Other;
    EXPECT_FALSE(One == Other);
    EXPECT_FALSE(One == One);
}

TEST(CalibrateGeometricData, EqualsARecordOfOtherTagsWithTheSameContent) {
    ClCalibrateGeometricData One;
    Reread(One);
    ClCalibrateGeometricData Other;
    Fill(ThreePlanes(), Other);
    EXPECT_TRUE(One == Other);
}

TEST(CalibrateGeometricData, ComparesEveryNumberAndEveryList) {
    ClCalibrateGeometricData One;
    Reread(One);
    for (const auto& [Name, change] : Changes()) {
        ClCalibrateGeometricData Other;
        Fill(ThreePlanes(), Other);
        change(Other);
        EXPECT_FALSE(One == Other) << Name;
    }
}

TEST(CalibrateGeometricData, ComparesCountsOfLists) {
    ClCalibrateGeometricData One;
    Reread(One);
    ClCalibrateGeometricData Other;
    Fill(ThreePlanes(), Other);
    Other.m_aActual[2].Append(ClVector(1, 2));
    EXPECT_FALSE(One == Other);
}

TEST(CalibrateGeometricData, ComparesOnlyTheListsInUse) {
    ClCalibrateGeometricData One;
    Reread(One);
    ClCalibrateGeometricData Other;
    Fill(ThreePlanes(), Other);
    One.m_nPlanes = Other.m_nPlanes = 1;
    Other.m_aActual[1].Clear();
    Other.m_aActual[2][3].x += 1;
    EXPECT_TRUE(One == Other);
}

TEST(CalibrateGeometricData, ComparesPointsWithATolerance) {
    ClCalibrateGeometricData One;
    Reread(One);
    ClCalibrateGeometricData Other;
    Fill(ThreePlanes(), Other);
    One.m_aTarget[4] = ClVector(0, 0);
    Other.m_aTarget[4] = ClVector(0.99e-7, -0.99e-7);
    EXPECT_TRUE(One == Other);
    Other.m_aTarget[4] = ClVector(0, 1e-7);
    EXPECT_FALSE(One == Other);
    Other.m_aTarget[4] = ClVector(-1.01e-7, 0);
    EXPECT_FALSE(One == Other);
}

// Hash

TEST(CalibrateGeometricData, HashIsTheDigestOfNumbersAndInterleavedPoints) {
    ClCalibrateGeometricData Data;
    const StRecord Record = ThreePlanes();
    Fill(Record, Data);

    Bytes aContent;
    const auto Append = [&](const void* pBytes, std::size_t nSize) {
        const auto* p = static_cast<const unsigned char*>(pBytes);
        aContent.insert(aContent.end(), p, p + nSize);
    };
    for (const std::uint32_t nNumber :
         {Record.m_nSourceWidth, Record.m_nSourceHeight, Record.m_nSourcePelsX,
          Record.m_nSourcePelsY, Record.m_nTargetWidth, Record.m_nTargetHeight,
          Record.m_nTargetPelsX, Record.m_nTargetPelsY, Record.m_nPlanes})
        Append(&nNumber, 4);
    Append(&Record.m_nBackground, 1);
    for (std::size_t i = 0; i < 75; ++i) {
        Append(&Record.m_aTarget[i], 8);
        for (const auto& aList : Record.m_aActual)
            Append(&aList[i], 8);
    }
    ASSERT_EQ(aContent.size(), 37u + 75 * 4 * 8);
    EXPECT_EQ(HashOf(Data), TestSupport::Md5(aContent));
}

TEST(CalibrateGeometricData, HashOfAnEmptyRecordIsThatOf37Zeros) {
    EXPECT_EQ(HashOf(ClCalibrateGeometricData()), TestSupport::Md5(Bytes(37, 0)));
}

TEST(CalibrateGeometricData, EveryNumberAndListCountsInTheHash) {
    ClCalibrateGeometricData Data;
    Fill(ThreePlanes(), Data);
    const Digest aHash = HashOf(Data);
    for (const auto& [Name, change] : Changes()) {
        ClCalibrateGeometricData Changed;
        Changed = Data;
        change(Changed);
        EXPECT_NE(HashOf(Changed), aHash) << Name;
    }
}

// The digest is taken over 32-bit floats, so a point need not be float-exact.
TEST(CalibrateGeometricData, HashIsTheSameBeforeAndAfterAStream) {
    ClCalibrateGeometricData Data;
    Fill(ThreePlanes(), Data);
    for (unsigned long i = 0; i < Data.m_aTarget.Entries(); ++i)
        Data.m_aTarget[i].x += 1e-9 * static_cast<double>(i);
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
    Stream.Seek(0, 0);
    ClCalibrateGeometricData Back;
    static_cast<ClCalibrateDataBase&>(Back).Read(Stream);

    EXPECT_NE(Back.m_aTarget[74].x, Data.m_aTarget[74].x);
    EXPECT_EQ(HashOf(Back), HashOf(Data));
}

TEST(CalibrateGeometricData, HashReadsNoListBeyondItsEnd) {
    ClCalibrateGeometricData Data;
    Fill(ThreePlanes(), Data);
    Data.m_aActual[1].SetEntries(10);
    Data.m_nPlanes = 1000;
    HashOf(Data); // the sanitizer watches
    Data.m_aActual[2].Clear();
    EXPECT_EQ(HashOf(Data), HashOf(Data));
}

// Trace

TEST(CalibrateGeometricData, LogsOneLinePerPointPair) {
    ClCalibrateGeometricData Data;
    Data.m_aTarget.Append(ClVector(1.5, -2.25));
    Data.m_aTarget.Append(ClVector(1000.1234, 0.0004));
    Data.m_aTarget.Append(ClVector(5, 6));
    Data.m_aActual[0].Append(ClVector(3, 4));
    Data.m_aActual[0].Append(ClVector(33, 44));
    Data.m_aActual[1].Append(ClVector(7, 8));
    Data.m_aActual[2].Append(ClVector(9, 10));
    Data.m_aActual[2].Append(ClVector(99, 11));
    const ClLogCapture Log;
    Data.Log();
    EXPECT_EQ(
        Log.Texts(7),
        (std::vector<std::string>{
            "0: Target(  1.500,  -2.250) Actual0(  3.000,   4.000) Actual1(  7.000,   8.000)"
            " Actual2(  9.000,  10.000)",
            "1: Target(1000.123,   0.000) Actual0( 33.000,  44.000) Actual2( 99.000,  11.000)"}));
    EXPECT_EQ(Log.Lines().size(), 2u);
}

TEST(CalibrateGeometricData, LogsNothingWithoutActualPoints) {
    ClCalibrateGeometricData Data;
    Data.m_aTarget.Append(ClVector(1, 2));
    const ClLogCapture Log;
    Data.Log();
    EXPECT_TRUE(Log.Lines().empty());
}

TEST(CalibrateGeometricData, LogCutsALineAt1023Characters) {
    ClCalibrateGeometricData Data;
    Data.m_aTarget.Append(ClVector(1e308, 1e308));
    for (auto& rList : Data.m_aActual)
        rList.Append(ClVector(-1e308, 1e308));
    const ClLogCapture Log;
    Data.Log();
    ASSERT_EQ(Log.Lines().size(), 1u);
    EXPECT_EQ(Log.Lines()[0].m_Text.size(), 1023u);
}

TEST(CalibrateGeometricData, TraceOutHasNoEffect) {
    ClCalibrateGeometricData Data;
    Fill(ThreePlanes(), Data);
    const ClLogCapture Log;
    Data.TraceOut();
    EXPECT_TRUE(Log.Lines().empty());
    ExpectContent(Data, ThreePlanes());
}
