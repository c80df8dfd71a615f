// The record in a stream: every layout, every refusal.

#include "Calibrate/CalibrateGeometricData.h"

#include "support/AllocationFailures.h"
#include "support/Records.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <string>

using TestSupport::Bytes;
using TestSupport::ClPipeStream;
using TestSupport::Content;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::RenewCrc;
using TestSupport::StRecord;

namespace {

StRecord UnequalPlanes() {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = 3;
    Record.m_aActual[1] = Record.m_aTarget;
    Record.m_aActual[2] = {{1.5f, 2.5f}, {-3.25f, 1e30f}}; // each list has its own count
    return Record;
}

void Read(ClCalibrateGeometricData& rData, const Bytes& aBlock) {
    ClMemStream Stream(aBlock.data(), aBlock.size());
    static_cast<ClCalibrateDataBase&>(rData).Read(Stream);
}

long NumberOfReading(const Bytes& aBlock) {
    try {
        ClCalibrateGeometricData Data;
        Read(Data, aBlock);
    } catch (const ClException& e) {
        return e.Number();
    }
    return 0;
}

std::uint32_t Count(const Bytes& aBlock, std::size_t nOffset) {
    std::uint32_t nCount = 0;
    for (std::size_t i = 0; i < 4; ++i)
        nCount = (nCount << 8) | aBlock[nOffset + i];
    return nCount;
}

Bytes Written(ClCalibrateGeometricData& rData) {
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(rData).Write(Stream);
    return Content(Stream);
}

template <class List>
void ExpectFloats(const List& Points, const std::vector<TestSupport::StPoint>& aExpected) {
    ASSERT_EQ(Points.Entries(), aExpected.size());
    for (unsigned long i = 0; i < Points.Entries(); ++i) {
        EXPECT_EQ(Points[i].x, static_cast<double>(aExpected[i].x));
        EXPECT_EQ(Points[i].y, static_cast<double>(aExpected[i].y));
    }
}

} // namespace

// Writing

TEST(CalibrateGeometricDataStream, WritesLayout6ByteForByte) {
    for (const StRecord& Record : {PlausibleRecord(), UnequalPlanes()}) {
        ClCalibrateGeometricData Data;
        Fill(Record, Data);
        EXPECT_EQ(Written(Data), RecordBlock(Record));
    }
}

TEST(CalibrateGeometricDataStream, WritesEveryNumberAtItsOffset) {
    ClCalibrateGeometricData Data;
    Data.m_nSourceWidth = 0x01020304;
    Data.m_nSourceHeight = 2;
    Data.m_nSourcePelsX = 3;
    Data.m_nSourcePelsY = 4;
    Data.m_nTargetWidth = 5;
    Data.m_nTargetHeight = 6;
    Data.m_nTargetPelsX = 7;
    Data.m_nTargetPelsY = 8;
    Data.m_nPlanes = 1;
    Data.m_nBackground = 255;
    Data.m_aTarget.Append(ClVector(1.0, -2.0));
    const Bytes aBlock = Written(Data);
    const Bytes aExpected = {'C',  'A',  'L', 0, 'G',  'E', 'O', 0, '0', '0', '6', 0, // tags
                             1,    2,    3,   4, 0,    0,   0,   2, 0,   0,   0,   3, //
                             0,    0,    0,   4, 0,    0,   0,   5, 0,   0,   0,   6, //
                             0,    0,    0,   7, 0,    0,   0,   8, 0,   0,   0,   1, //
                             255,  0,    0,   0, 1,                                   //
                             0x3F, 0x80, 0,   0, 0xC0, 0,   0,   0,                   // 1.0, -2.0
                             0,    0,    0,   0}; // no actual points
    ASSERT_EQ(aBlock.size(), aExpected.size() + 4);
    EXPECT_EQ(Bytes(aBlock.begin(), aBlock.end() - 4), aExpected);
}

TEST(CalibrateGeometricDataStream, WithoutPlanesWritesNoActualList) {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = 0;
    ClCalibrateGeometricData Data;
    Fill(Record, Data);
    EXPECT_EQ(Written(Data).size(), 53u + 8 * 75 + 4);
    EXPECT_EQ(Written(Data), RecordBlock(Record));
}

TEST(CalibrateGeometricDataStream, WritingReportsAStreamThatIsFull) {
    ClCalibrateGeometricData Data;
    Fill(PlausibleRecord(), Data);
    Bytes aRoom(RecordBlock(PlausibleRecord()).size() - 1);
    ClMemStream Stream(aRoom.data(), aRoom.size(), true);
    EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Write(Stream), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
}

TEST(CalibrateGeometricDataStream, WritingSurvivesMissingMemory) {
    ClCalibrateGeometricData Data;
    Fill(UnequalPlanes(), Data);
    TestSupport::FailEachAllocation([&] {
        ClMemStream Stream;
        static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
    });
}

// Reading the present layout

TEST(CalibrateGeometricDataStream, SurvivesWriteAndReadBitForBit) {
    const Bytes aBlock = RecordBlock(UnequalPlanes());
    ClCalibrateGeometricData Data;
    Read(Data, aBlock);
    EXPECT_EQ(Written(Data), aBlock);
}

TEST(CalibrateGeometricDataStream, LeavesTheChecksumUnread) {
    const Bytes aBlock = RecordBlock(PlausibleRecord());
    ClMemStream Stream(aBlock.data(), aBlock.size());
    ClCalibrateGeometricData Data;
    static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
    EXPECT_EQ(Stream.Pos(), Stream.Size() - 4);
}

TEST(CalibrateGeometricDataStream, TakesNoNoticeOfBytesBehindTheRecord) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    for (int i = 0; i < 10; ++i) {
        aBlock.push_back(static_cast<unsigned char>(i * 31));
        EXPECT_EQ(NumberOfReading(aBlock), 0);
    }
}

TEST(CalibrateGeometricDataStream, HasToStandAtOffset0OfAStrictStream) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.insert(aBlock.begin(), 0);
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.Seek(1, 0);
    ClCalibrateGeometricData Data;
    EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Read(Stream), ClExStreamUnexpectedEnd,
                  -201, "Unexpected end of stream");
}

TEST(CalibrateGeometricDataStream, MayStandElsewhereOnAStreamThatIsNotStrict) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.insert(aBlock.begin(), 3, 0);
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.Seek(3, 0);
    ClCalibrateGeometricData Data;
    Data.ReadStream(Stream);
    ExpectFloats(Data.m_aTarget, PlausibleRecord().m_aTarget);
}

TEST(CalibrateGeometricDataStream, ReplacesLongerListsOfTheRecordBefore) {
    ClCalibrateGeometricData Data;
    Fill(UnequalPlanes(), Data);
    StRecord Short = PlausibleRecord();
    Short.m_aTarget.resize(3);
    Short.m_aActual[0].resize(2);
    Read(Data, RecordBlock(Short));
    ExpectFloats(Data.m_aTarget, Short.m_aTarget);
    ExpectFloats(Data.m_aActual[0], Short.m_aActual[0]);
}

TEST(CalibrateGeometricDataStream, DoesNotClearTheRecordFirst) {
    ClCalibrateGeometricData Data;
    Fill(UnequalPlanes(), Data);
    Read(Data, RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Data.m_nPlanes, 1u);
    ExpectFloats(Data.m_aActual[2], UnequalPlanes().m_aActual[2]);
}

TEST(CalibrateGeometricDataStream, WithoutPlanesIsNotValid) {
    StRecord Record = PlausibleRecord();
    Record.m_nPlanes = 0;
    ClCalibrateGeometricData Data;
    Read(Data, RecordBlock(Record));
    EXPECT_FALSE(Data.IsValid());
    EXPECT_EQ(Data.m_aActual[0].Entries(), 0u);
}

TEST(CalibrateGeometricDataStream, ReadingSurvivesMissingMemory) {
    const Bytes aBlock = RecordBlock(UnequalPlanes());
    TestSupport::FailEachAllocation([&] {
        ClCalibrateGeometricData Data;
        Read(Data, aBlock);
    });
}

// Earlier layouts

TEST(CalibrateGeometricDataStream, ReadsEveryLayout) {
    const StRecord Record = PlausibleRecord();
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        ClCalibrateGeometricData Data;
        Data.m_nBackground = 3;
        Data.m_nSourcePelsX = Data.m_nSourcePelsY = 99;
        Read(Data, RecordBlock(Record, nLayout));

        EXPECT_EQ(Data.m_nSourceWidth, 48u) << nLayout;
        EXPECT_EQ(Data.m_nSourceHeight, 132u);
        EXPECT_EQ(Data.m_nSourcePelsX, nLayout > 4 ? 2425u : 0u);
        EXPECT_EQ(Data.m_nSourcePelsY, nLayout > 4 ? 4967u : 0u);
        EXPECT_EQ(Data.m_nTargetWidth, 40u);
        EXPECT_EQ(Data.m_nTargetHeight, 60u);
        EXPECT_EQ(Data.m_nTargetPelsX, nLayout < 2 ? 19685u : 2461u);
        EXPECT_EQ(Data.m_nTargetPelsY, nLayout < 2 ? 19685u : 2461u);
        EXPECT_EQ(Data.m_nPlanes, 1u);
        EXPECT_EQ(Data.m_nBackground, nLayout > 3 ? 255 : 3);
        ExpectFloats(Data.m_aTarget, Record.m_aTarget);
        ExpectFloats(Data.m_aActual[0], Record.m_aActual[0]);
        EXPECT_EQ(Data.ReadVersion(), "00" + std::to_string(nLayout));
    }
}

TEST(CalibrateGeometricDataStream, ReadsSeveralPlanesFromLayout3On) {
    for (int nLayout = 3; nLayout <= 6; ++nLayout) {
        ClCalibrateGeometricData Data;
        Read(Data, RecordBlock(UnequalPlanes(), nLayout));
        EXPECT_EQ(Data.m_nPlanes, 3u);
        ExpectFloats(Data.m_aActual[1], UnequalPlanes().m_aActual[1]);
        ExpectFloats(Data.m_aActual[2], UnequalPlanes().m_aActual[2]);
    }
}

TEST(CalibrateGeometricDataStream, ChecksNoChecksumBeforeLayout6) {
    for (int nLayout = 0; nLayout <= 5; ++nLayout) {
        Bytes aBlock = RecordBlock(PlausibleRecord(), nLayout);
        aBlock.back() ^= 1; // the last coordinate
        EXPECT_EQ(NumberOfReading(aBlock), 0) << nLayout;
        ClMemStream Stream(aBlock.data(), aBlock.size());
        ClCalibrateGeometricData Data;
        static_cast<ClCalibrateDataBase&>(Data).Read(Stream);
        EXPECT_EQ(Stream.Pos(), Stream.Size());
    }
}

TEST(CalibrateGeometricDataStream, ReadsTheOldTagsOfVersion002AsLayout0) {
    const Bytes aBlock = RecordBlock(PlausibleRecord(), 0, "002", "Cal", "Lmv");
    ClCalibrateGeometricData Data;
    Read(Data, aBlock);
    EXPECT_EQ(Data.m_nTargetPelsX, 19685u);
    EXPECT_EQ(Data.m_nTargetPelsY, 19685u);
    EXPECT_EQ(Data.m_nPlanes, 1u);
    ExpectFloats(Data.m_aTarget, PlausibleRecord().m_aTarget);
    ExpectFloats(Data.m_aActual[0], PlausibleRecord().m_aActual[0]);
}

TEST(CalibrateGeometricDataStream, RefusesTheOldTagOfVersion001) {
    for (const char* szType : {"Cal", "CAL"}) {
        const Bytes aBlock = RecordBlock(PlausibleRecord(), 0, "001", szType, "Lmv");
        ClCalibrateGeometricData Data;
        EXPECT_THROWS(Read(Data, aBlock), ClExTessarin, -40,
                      "The input signature is not expected here.");
    }
}

TEST(CalibrateGeometricDataStream, MixesOldAndNewTags) {
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 6, "006", "Cal", "GEO")), 0);
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 0, "002", "CAL", "Lmv")), 0);
}

TEST(CalibrateGeometricDataStream, ReadsOtherVersionsOfTheOldTagByTheirNumber) {
    for (int nLayout = 3; nLayout <= 6; ++nLayout) {
        ClCalibrateGeometricData Data;
        Read(Data, RecordBlock(PlausibleRecord(), nLayout, "", "Cal", "Lmv"));
        EXPECT_EQ(Data.m_nTargetPelsX, 2461u) << nLayout;
    }
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 0, "000", "Cal", "Lmv")), 0);
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 2, "2", "Cal", "Lmv")), 0);
}

TEST(CalibrateGeometricDataStream, ReadsVersionNumbersAsAtoiDoes) {
    const struct {
        const char* m_szVersion;
        int m_nLayout;
    } caVersions[] = {{"6", 6}, {" 5x", 5}, {"+4", 4},  {"3", 3},   {"2a", 2}, {"1", 1},
                      {"", 0},  {"abc", 0}, {"-99", 0}, {"007", 6}, {"999", 6}};
    for (const auto& Version : caVersions) {
        Bytes aBlock = RecordBlock(PlausibleRecord(), Version.m_nLayout, "?");
        std::memset(&aBlock[8], 0, 4);
        std::memcpy(&aBlock[8], Version.m_szVersion, std::strlen(Version.m_szVersion));
        if (Version.m_nLayout == 6)
            RenewCrc(aBlock);
        EXPECT_EQ(NumberOfReading(aBlock), 0) << Version.m_szVersion;
    }
}

TEST(CalibrateGeometricDataStream, EndsTheVersionTextAtItsFourthByte) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    std::memcpy(&aBlock[8], "0006", 4); // the bytes behind it are digits of no version
    RenewCrc(aBlock);
    EXPECT_EQ(NumberOfReading(aBlock), 0);
    std::memcpy(&aBlock[8], "9999", 4);
    RenewCrc(aBlock);
    EXPECT_EQ(NumberOfReading(aBlock), 0);
}

// Refusals

TEST(CalibrateGeometricDataStream, RefusesOtherTags) {
    for (std::size_t nBit = 0; nBit < 64; ++nBit) {
        Bytes aBlock = RecordBlock(PlausibleRecord());
        aBlock[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        EXPECT_EQ(NumberOfReading(aBlock), -40) << "bit " << nBit;
    }
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 6, "", "cal")), -40);
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 6, "", "CAL", "LMV")), -40);
    EXPECT_EQ(NumberOfReading(RecordBlock(PlausibleRecord(), 6, "", "GEO", "CAL")), -40);
}

TEST(CalibrateGeometricDataStream, EndsEarlyWithTheStreamAtEveryByteOfEveryLayout) {
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        const Bytes aBlock = RecordBlock(PlausibleRecord(), nLayout);
        for (unsigned long nSize = 0; nSize < aBlock.size(); ++nSize) {
            ClMemStream Stream(aBlock.data(), nSize);
            ClCalibrateGeometricData Data;
            EXPECT_THROWS(static_cast<ClCalibrateDataBase&>(Data).Read(Stream),
                          ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
        }
    }
}

TEST(CalibrateGeometricDataStream, NoticesEveryFlippedBit) {
    const Bytes aBlock = RecordBlock(PlausibleRecord());
    const auto IsIn = [](std::size_t nByte, std::size_t nFirst) {
        return nByte >= nFirst && nByte < nFirst + 4;
    };
    for (std::size_t nBit = 96; nBit < aBlock.size() * 8; ++nBit) {
        Bytes aFlipped = aBlock;
        aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        long nExpected = -39;
        if (IsIn(nBit / 8, 44)) // 3 planes, the second of which begins with the checksum
            nExpected = aFlipped[47] == 3 ? -201 : -39;
        if (IsIn(nBit / 8, 49)) // the count of the other list is a coordinate, or beyond the end
            nExpected = -201;
        if (IsIn(nBit / 8, 653)) // fewer points leave a coordinate for the checksum
            nExpected = Count(aFlipped, 653) < 75 ? -39 : -201;
        EXPECT_EQ(NumberOfReading(aFlipped), nExpected) << "bit " << nBit;
    }
}

TEST(CalibrateGeometricDataStream, NamesAWrongChecksum) {
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock[20] ^= 1;
    ClCalibrateGeometricData Data;
    EXPECT_THROWS(Read(Data, aBlock), ClException, -39, "Calibration Data currupt");
}

TEST(CalibrateGeometricDataStream, RefusesMoreThanThreePlanes) {
    for (const std::uint32_t nPlanes : {4u, 5u, 256u, 0x80000001u, 0xFFFFFFFFu})
        for (int nLayout = 3; nLayout <= 6; ++nLayout) {
            StRecord Record = UnequalPlanes();
            Record.m_nPlanes = nPlanes;
            EXPECT_EQ(NumberOfReading(RecordBlock(Record, nLayout)), -39);
        }
}

TEST(CalibrateGeometricDataStream, CountsThatClaimTooMuchAllocateNothing) {
    for (const std::size_t nOffset : {std::size_t{49}, std::size_t{653}}) {
        for (const std::uint32_t nCount : {76u, 152u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            Bytes aBlock = RecordBlock(PlausibleRecord());
            for (std::size_t i = 0; i < 4; ++i)
                aBlock[nOffset + i] = static_cast<unsigned char>(nCount >> (24 - 8 * i));
            RenewCrc(aBlock);
            ClMemStream Stream(aBlock.data(), aBlock.size());
            Stream.SetThrowOnShort(true);
            Stream.Seek(static_cast<long>(nOffset), 0);
            ClCalibrateGeometricData Data;
            if (nCount * 8ull > aBlock.size() - nOffset - 4) {
                EXPECT_THROWS(Data.ReadArray(Stream, Data.m_aTarget), ClExStreamUnexpectedEnd, -201,
                              "Unexpected end of stream");
                EXPECT_EQ(Data.m_aTarget.Capacity(), 0u);
            }
            EXPECT_EQ(NumberOfReading(aBlock), -201); // here, or where a coordinate counts points
        }
    }
}

TEST(CalibrateGeometricDataStream, ListsGrowByTheirStepAndNeverShrink) {
    Bytes aBlock;
    TestSupport::AppendPoints(aBlock, std::vector<TestSupport::StPoint>(11, {1, 2}));
    ClMemStream Stream(aBlock.data(), aBlock.size());
    ClCalibrateGeometricData Data;
    Data.ReadArray(Stream, Data.m_aTarget);
    EXPECT_EQ(Data.m_aTarget.Entries(), 11u);
    EXPECT_EQ(Data.m_aTarget.Capacity(), 20u);

    const Bytes aEmpty(4, 0);
    ClMemStream Empty(aEmpty.data(), aEmpty.size());
    Data.ReadArray(Empty, Data.m_aTarget);
    EXPECT_EQ(Data.m_aTarget.Entries(), 0u);
    EXPECT_EQ(Data.m_aTarget.Capacity(), 20u);
}

// The checksum's own members

TEST(CalibrateGeometricDataStream, WritesTheChecksumOfARangeBehindIt) {
    ClMemStream Stream;
    Stream.Write("123456789....", 13);
    Stream.Seek(0, 0);
    ClCalibrateGeometricData().WriteCRC(Stream, 0, 9);
    const Bytes aExpected = {'1', '2', '3', '4', '5', '6', '7', '8', '9', 0xFC, 0x89, 0x19, 0x18};
    EXPECT_EQ(Content(Stream), aExpected);
}

TEST(CalibrateGeometricDataStream, ChecksTheChecksumAndGoesBack) {
    const Bytes aBlock = TestSupport::BytesOf("123456789\xFC\x89\x19\x18");
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.Seek(5, 0);
    ClCalibrateGeometricData().CheckCRC(Stream, 0, 9);
    EXPECT_EQ(Stream.Pos(), 5u);
    EXPECT_THROWS(ClCalibrateGeometricData().CheckCRC(Stream, 0, 8), ClException, -39,
                  "Calibration Data currupt");
}

TEST(CalibrateGeometricDataStream, ChecksumOfNoBytesIs0) {
    ClMemStream Stream;
    ClCalibrateGeometricData().WriteCRC(Stream, 0, 0);
    EXPECT_EQ(Content(Stream), Bytes(4, 0));
}

TEST(CalibrateGeometricDataStream, RefusesACheckedRangeBeyondTheStream) {
    const Bytes aBlock(20, 1);
    ClMemStream Stream(aBlock.data(), aBlock.size());
    EXPECT_THROWS(ClCalibrateGeometricData().CheckCRC(Stream, 0, 21), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_THROWS(ClCalibrateGeometricData().CheckCRC(Stream, 9, 8), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}
