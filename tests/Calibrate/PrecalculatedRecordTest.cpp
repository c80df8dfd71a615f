// The table in a stream: its bytes, and every refusal of foreign ones.

#include "Calibrate/OpenWarp.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Tables.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <functional>
#include <string>

using TestSupport::Bytes;
using TestSupport::ClOpenWarp;
using TestSupport::Content;
using TestSupport::StTable;
using TestSupport::TableOf;
using TestSupport::TableRecord;

namespace {

void Load(ClOpenWarp& rWarp, const Bytes& aRecord) {
    ClMemStream Stream(aRecord.data(), aRecord.size());
    rWarp.Load(Stream);
}

Bytes Stored(const ClOpenWarp& Warp) {
    ClMemStream Stream;
    Warp.Store(Stream);
    return Content(Stream);
}

/// The catalogue's own words come with the class that has no others.
void ExpectRefused(ClOpenWarp& rWarp, ClStream& rStream, long nNumber, const char* szWords) {
    if (std::string(szWords) == GetErrorDescriptionIntern(nNumber)) {
        EXPECT_TESSARIN(rWarp.Load(rStream), nNumber);
    } else {
        EXPECT_THROWS(rWarp.Load(rStream), ClException, nNumber, szWords);
    }
}

/// A refusal of a table that was changed.
void ExpectRefused(const std::function<void(StTable&)>& change, long nNumber, const char* szWords) {
    SCOPED_TRACE(szWords);
    StTable Table = TableOf();
    change(Table);
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf())); // a table that must not survive
    const Bytes aRecord = TableRecord(Table);
    ClMemStream Stream(aRecord.data(), aRecord.size());
    ExpectRefused(Warp, Stream, nNumber, szWords);
}

constexpr const char* cszSignature = "The input signature is not expected here.";
constexpr const char* cszCorrupt = "The input is corrupt; it can be a memoryblock or a file.";
constexpr const char* cszEndMagic = "KPF end Magic is missing";

} // namespace

// Storing

TEST(PrecalculatedRecord, IsStoredByteForByte) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    EXPECT_EQ(Stored(Warp), TableRecord(TableOf()));
}

TEST(PrecalculatedRecord, OfAPreparedWarpHoldsItsTableInHostOrder) {
    ClCalibrateGeometricData Data;
    Fill(TestSupport::PlausibleRecord(), Data);
    ClOpenWarp Warp;
    Warp.m_pData = &Data;
    Warp.Initiate();

    StTable Table;
    Table.m_nSourceWidth = 48;
    Table.m_nSourceHeight = 132;
    Table.m_nTargetWidth = Table.m_nImageWidth = 40;
    Table.m_nTargetHeight = Table.m_nImageHeight = 60;
    Table.m_nTargetPelsX = Table.m_nImagePelsX = 2461;
    Table.m_nTargetPelsY = Table.m_nImagePelsY = 2461;
    Table.m_nBackground = 255;
    Table.m_aTable = Warp.Table();
    EXPECT_EQ(Stored(Warp), TableRecord(Table));
    EXPECT_EQ(Stored(Warp).size(), 94u + 40 * 60 * 36 + 4);
}

TEST(PrecalculatedRecord, TakesTheByteOrderOfItsStream) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    ClMemStream Stream;
    Stream.SetBigEndian(false);
    Warp.Store(Stream);
    EXPECT_EQ(Content(Stream)[12], 10); // the source width's lowest byte first
    EXPECT_EQ(Content(Stream)[15], 0);

    Stream.Seek(0, 0);
    ClOpenWarp Back;
    Back.Load(Stream);
    EXPECT_EQ(Back.Table(), Warp.Table());
}

TEST(PrecalculatedRecord, WithoutTableHasNoEntriesAndDoesNotLoad) {
    const ClOpenWarp Unset;
    const Bytes aRecord = Stored(Unset);
    EXPECT_EQ(aRecord.size(), 98u);
    ClOpenWarp Warp;
    EXPECT_THROWS(Load(Warp, aRecord), ClExTessarin, -40, cszSignature);
}

TEST(PrecalculatedRecord, IsNotStoredWhileBitsArePending) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    ClMemStream Stream;
    Stream.WriteBits(1, 1);
    EXPECT_THROWS(Warp.Store(Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}

// Loading

TEST(PrecalculatedRecord, LoadsNumbersAndTable) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    EXPECT_EQ(Warp.m_nSourceWidth, 10u);
    EXPECT_EQ(Warp.m_nSourceHeight, 9u);
    EXPECT_EQ(Warp.m_nTargetWidth, 3u);
    EXPECT_EQ(Warp.m_nTargetHeight, 2u);
    EXPECT_EQ(Warp.m_nTargetPelsX, 100u);
    EXPECT_EQ(Warp.m_nTargetPelsY, 200u);
    EXPECT_EQ(Warp.m_nPlanes, 1u);
    EXPECT_EQ(Warp.m_nBackground, 77);
    EXPECT_EQ(Warp.m_nEntrySize, 36u);
    EXPECT_EQ(Warp.Table(), TableOf().m_aTable);
}

TEST(PrecalculatedRecord, LoadedWarpsWithoutAnyRecord) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    ClImage In(10, 9, 1, 0, 0);
    for (int i = 0; i < 12 * 9; ++i)
        In.Data()[i] = static_cast<unsigned char>(i);
    ClImage Out;
    Warp.m_pInImage = &In;
    Warp.m_pOutImage = &Out;
    EXPECT_EQ(Warp.Apply(), 0);
    // The unit weight stands one line and one column behind the offset.
    EXPECT_EQ(Bytes(Out.LineData(0), Out.LineData(0) + 3), (Bytes{13, 79, 77}));
    EXPECT_EQ(Bytes(Out.LineData(1), Out.LineData(1) + 3), (Bytes{26, 25, 19}));
    EXPECT_EQ(Out.PelsX(), 100);
    EXPECT_EQ(Out.PelsY(), 200);
}

TEST(PrecalculatedRecord, EndsWhereItsEndMagicEnds) {
    Bytes aRecord = TableRecord(TableOf());
    const unsigned long nEnd = aRecord.size();
    aRecord.resize(nEnd + 100, 0xAB);
    ClMemStream Stream(aRecord.data(), aRecord.size());
    ClOpenWarp Warp;
    Warp.Load(Stream);
    EXPECT_EQ(Stream.Pos(), nEnd);
}

TEST(PrecalculatedRecord, IgnoresRangeAndAttribute) {
    StTable Table = TableOf();
    Table.m_aBlack = Table.m_aWhite = Bytes(8, 0xFF);
    Table.m_nAttribute = 0xFFFFFFFF;
    ClOpenWarp Warp;
    EXPECT_NO_THROW(Load(Warp, TableRecord(Table)));
}

TEST(PrecalculatedRecord, ReadsItsVersionAsANumber) {
    for (const char* szVersion : {"1", "01", "001", " 1", "1xy"}) {
        StTable Table = TableOf();
        Table.m_Version = szVersion;
        ClOpenWarp Warp;
        EXPECT_NO_THROW(Load(Warp, TableRecord(Table))) << szVersion;
    }
    StTable Table = TableOf();
    Table.m_nImageVersion = 0;
    ClOpenWarp Warp;
    EXPECT_NO_THROW(Load(Warp, TableRecord(Table)));
}

TEST(PrecalculatedRecord, LoadsSeveralPlanes) {
    for (std::uint32_t nPlanes = 2; nPlanes <= 3; ++nPlanes) {
        StTable Table = TableOf();
        Table.m_nPlanes = nPlanes;
        Table.m_nPixelBytes = 36 * nPlanes;
        const Bytes aOnce = Table.m_aTable;
        for (std::uint32_t p = 1; p < nPlanes; ++p)
            Table.m_aTable.insert(Table.m_aTable.end(), aOnce.begin(), aOnce.end());
        ClOpenWarp Warp;
        EXPECT_NO_THROW(Load(Warp, TableRecord(Table)));
        EXPECT_EQ(Stored(Warp), TableRecord(Table));
    }
}

TEST(PrecalculatedRecord, LoadingSurvivesMissingMemory) {
    const Bytes aRecord = TableRecord(TableOf());
    TestSupport::FailEachAllocation([&] {
        ClOpenWarp Warp;
        Load(Warp, aRecord);
    });
}

// Refusals, in the order of the tests

TEST(PrecalculatedRecord, RefusesOtherTagsAndVersions) {
    for (const char* szTag : {"CAL", "PRF", "pre", ""}) {
        ExpectRefused([&](StTable& r) { r.m_Type = szTag; }, -40, cszSignature);
        ExpectRefused([&](StTable& r) { r.m_SubType = szTag; }, -40, cszSignature);
    }
    ExpectRefused([](StTable& r) { r.m_Type = "PREX"; }, -40, cszSignature);
    for (const char* szVersion : {"002", "0", "", "-1", "11", "abc"})
        ExpectRefused([&](StTable& r) { r.m_Version = szVersion; }, -40, cszSignature);
}

TEST(PrecalculatedRecord, RefusesPlaneCountsThatNoTableHas) {
    ExpectRefused([](StTable& r) { r.m_nPlanes = 0; }, -40, cszSignature);
    for (const std::uint32_t nPlanes : {4u, 256u, 0xFFFFFFFFu})
        ExpectRefused([&](StTable& r) { r.m_nPlanes = nPlanes; }, -39,
                      "m_nPlanes is not the expected.");
}

TEST(PrecalculatedRecord, RefusesAnotherMagic) {
    ExpectRefused([](StTable& r) { r.m_nMagic ^= 1; }, -40, "KPF Magic is missing");
    ExpectRefused([](StTable& r) { r.m_nEndMagic ^= 1; }, -40, cszEndMagic);
}

TEST(PrecalculatedRecord, RefusesImageVersionsFrom2On) {
    for (const std::uint32_t nVersion : {2u, 3u, 0xFFFFFFFFu})
        ExpectRefused([&](StTable& r) { r.m_nImageVersion = nVersion; }, -40, "Wrong KPF version");
}

TEST(PrecalculatedRecord, RefusesNumbersThatDiffer) {
    ExpectRefused([](StTable& r) { r.m_nDataType = 0; }, -39, "nDataType is not the expected.");
    ExpectRefused([](StTable& r) { r.m_nDataType = 129; }, -39, "nDataType is not the expected.");
    ExpectRefused([](StTable& r) { ++r.m_nImageWidth; }, -39,
                  "m_nTargetWidth is not the expected.");
    ExpectRefused([](StTable& r) { ++r.m_nTargetWidth; }, -39,
                  "m_nTargetWidth is not the expected.");
    ExpectRefused([](StTable& r) { ++r.m_nImageHeight; }, -39,
                  "m_nTargetHeight is not the expected.");
    ExpectRefused([](StTable& r) { --r.m_nTargetHeight; }, -39,
                  "m_nTargetHeight is not the expected.");
    ExpectRefused([](StTable& r) { ++r.m_nImagePelsX; }, -39,
                  "m_nTargetPelsX is not the expected.");
    ExpectRefused([](StTable& r) { ++r.m_nImagePelsY; }, -39,
                  "m_nTargetPelsY is not the expected.");
    ExpectRefused([](StTable& r) { r.m_nContent = 1; }, -39, "eContent is not the expected.");
}

TEST(PrecalculatedRecord, RefusesOtherSizesOfAnEntry) {
    for (const std::uint32_t nBytes : {0u, 35u, 37u, 72u, 0xFFFFFFFFu})
        ExpectRefused([&](StTable& r) { r.m_nPixelBytes = nBytes; }, -39,
                      "m_nEntrySize is not the expected.");
    ExpectRefused([](StTable& r) { r.m_nPlanes = 2; }, -39, "m_nEntrySize is not the expected.");
}

TEST(PrecalculatedRecord, RefusesSizesBeyondItsLimits) {
    const auto Sized = [](std::uint32_t nWidth, std::uint32_t nHeight) {
        return [=](StTable& r) {
            r.m_nTargetWidth = r.m_nImageWidth = nWidth;
            r.m_nTargetHeight = r.m_nImageHeight = nHeight;
        };
    };
    ExpectRefused(Sized(16385, 1), -39, "m_nTargetWidth is not the expected.");
    ExpectRefused(Sized(0xFFFFFFFF, 0xFFFFFFFF), -39, "m_nTargetWidth is not the expected.");
    ExpectRefused(Sized(1, 16385), -39, "m_nTargetHeight is not the expected.");
    ExpectRefused(Sized(16384, 911), -39, "m_nTargetHeight is not the expected.");
    ExpectRefused(Sized(16384, 910), -40, cszEndMagic); // allowed, but not there
}

TEST(PrecalculatedRecord, AllocatesNothingForATableThatIsNotThere) {
    StTable Table = TableOf();
    Table.m_nTargetWidth = Table.m_nImageWidth = 16384;
    Table.m_nTargetHeight = Table.m_nImageHeight = 910;
    const Bytes aRecord = TableRecord(Table);
    ClMemStream Stream(aRecord.data(), aRecord.size());
    ClOpenWarp Warp;
    const auto load = [&] {
        const TestSupport::ClFailAllocation Fail(1); // the only allocation is that of the words
        Warp.Load(Stream);
    };
    EXPECT_THROWS(load(), ClException, -40, cszEndMagic);
}

TEST(PrecalculatedRecord, RefusesTheFirstOfSeveralFaults) {
    StTable Table = TableOf();
    Table.m_nEndMagic = Table.m_nContent = Table.m_nImagePelsY = Table.m_nImagePelsX = 9;
    Table.m_nPixelBytes = Table.m_nImageHeight = Table.m_nImageWidth = 9;
    Table.m_nDataType = 9;
    Table.m_nImageVersion = 9;
    Table.m_nMagic = 9;
    Table.m_nPlanes = 9;
    const StTable Right = TableOf();
    const auto ExpectNext = [&](long nNumber, const char* szWords) {
        ClOpenWarp Warp;
        EXPECT_THROWS(Load(Warp, TableRecord(Table)), ClException, nNumber, szWords);
    };
    ExpectNext(-39, "m_nPlanes is not the expected.");
    Table.m_nPlanes = Right.m_nPlanes;
    ExpectNext(-40, "KPF Magic is missing");
    Table.m_nMagic = Right.m_nMagic;
    ExpectNext(-40, "Wrong KPF version");
    Table.m_nImageVersion = Right.m_nImageVersion;
    ExpectNext(-39, "nDataType is not the expected.");
    Table.m_nDataType = Right.m_nDataType;
    ExpectNext(-39, "m_nTargetWidth is not the expected.");
    Table.m_nImageWidth = Right.m_nImageWidth;
    ExpectNext(-39, "m_nTargetHeight is not the expected.");
    Table.m_nImageHeight = Right.m_nImageHeight;
    ExpectNext(-39, "m_nEntrySize is not the expected.");
    Table.m_nPixelBytes = Right.m_nPixelBytes;
    ExpectNext(-39, "m_nTargetPelsX is not the expected.");
    Table.m_nImagePelsX = Right.m_nImagePelsX;
    ExpectNext(-39, "m_nTargetPelsY is not the expected.");
    Table.m_nImagePelsY = Right.m_nImagePelsY;
    ExpectNext(-39, "eContent is not the expected.");
    Table.m_nContent = Right.m_nContent;
    ExpectNext(-40, cszEndMagic);
}

TEST(PrecalculatedRecord, RefusesARecordThatEndsEarlyAtEveryByte) {
    const Bytes aRecord = TableRecord(TableOf());
    for (unsigned long nSize = 0; nSize < aRecord.size(); ++nSize) {
        ClMemStream Stream(aRecord.data(), nSize);
        ClOpenWarp Warp;
        // Tags, numbers, magic. The last bytes of version and magic are 0, as missing ones count.
        const char* szWords = nSize < 11                  ? cszSignature
                              : nSize >= 41 && nSize < 44 ? "KPF Magic is missing"
                                                          : cszEndMagic;
        ExpectRefused(Warp, Stream, -40, szWords);
        EXPECT_FALSE(Warp.HasTable());
    }
}

TEST(PrecalculatedRecord, RefusesOffsetsOutsideTheCapture) {
    // A capture of 10 x 9 pixels in lines of 12 bytes.
    for (const std::int32_t nOffset : {-2, -2147483647 - 1, 7, 11, 5 * 12 + 7, 6 * 12, 2147483647})
        for (std::size_t nEntry = 0; nEntry < 6; ++nEntry) {
            std::vector<std::int32_t> anOffsets = {0, 6, 60, 66, -1, -1};
            anOffsets[nEntry] = nOffset;
            ClOpenWarp Warp;
            EXPECT_THROWS(Load(Warp, TableRecord(TableOf(anOffsets))), ClExTessarin, -39,
                          cszCorrupt);
            EXPECT_FALSE(Warp.HasTable());
        }
}

TEST(PrecalculatedRecord, TellsRightOffsetsFromWrongOnesBehindEveryRightOne) {
    const auto isRight = [](std::int32_t n) {
        return n == -1 || (n >= 0 && n % 12 + 4 <= 10 && n / 12 + 4 <= 9);
    };
    for (std::int32_t nBefore = 0; nBefore <= 66; ++nBefore)
        for (std::int32_t nOffset = -3; isRight(nBefore) && nOffset <= 72; ++nOffset) {
            const auto load = [&] {
                ClOpenWarp Warp;
                Load(Warp, TableRecord(TableOf({-1, nBefore, -1, nOffset, -1, -1})));
            };
            if (isRight(nOffset))
                EXPECT_NO_THROW(load()) << nOffset << " behind " << nBefore;
            else
                EXPECT_THROW(load(), ClExTessarin) << nOffset << " behind " << nBefore;
        }
}

TEST(PrecalculatedRecord, RefusesEveryOffsetIntoACaptureOfLessThanFourPixels) {
    for (std::uint32_t StTable::*pSize : {&StTable::m_nSourceWidth, &StTable::m_nSourceHeight})
        for (const std::uint32_t nSize : {0u, 3u}) {
            StTable Table = TableOf({0, -1, -1, -1, -1, -1});
            Table.*pSize = nSize;
            ClOpenWarp Warp;
            const char* szWords = nSize > 0 ? cszCorrupt
                                  : pSize == &StTable::m_nSourceWidth
                                      ? "m_nTargetWidth is not the expected."
                                      : "m_nTargetHeight is not the expected.";
            const Bytes aRecord = TableRecord(Table);
            ClMemStream Stream(aRecord.data(), aRecord.size());
            ExpectRefused(Warp, Stream, -39, szWords);
        }
}

TEST(PrecalculatedRecord, RefusesSidesOfZero) {
    const auto Expect = [](std::uint32_t StTable::*pSide, std::uint32_t StTable::*pRepeated,
                           const char* szWords) {
        StTable Table = TableOf({-1, -1, -1, -1, -1, -1});
        Table.*pSide = 0;
        if (pRepeated != nullptr)
            Table.*pRepeated = 0;
        ClOpenWarp Warp;
        EXPECT_THROWS(Load(Warp, TableRecord(Table)), ClException, -39, szWords);
    };
    const char* const szWidth = "m_nTargetWidth is not the expected.";
    const char* const szHeight = "m_nTargetHeight is not the expected.";
    Expect(&StTable::m_nSourceWidth, nullptr, szWidth);
    Expect(&StTable::m_nSourceHeight, nullptr, szHeight);
    Expect(&StTable::m_nTargetWidth, &StTable::m_nImageWidth, szWidth);
    Expect(&StTable::m_nTargetHeight, &StTable::m_nImageHeight, szHeight);
}

TEST(PrecalculatedRecord, LeavesNeitherTableNorNumbersBehindAFailure) {
    ClOpenWarp Warp;
    Load(Warp, TableRecord(TableOf()));
    StTable Table = TableOf();
    Table.m_nSourceWidth = 1234;
    Table.m_nContent = 9;
    EXPECT_THROWS(Load(Warp, TableRecord(Table)), ClException, -39,
                  "eContent is not the expected.");
    EXPECT_FALSE(Warp.HasTable());
    EXPECT_EQ(Warp.m_nSourceWidth, 0u);
    EXPECT_EQ(Warp.m_nTargetPelsX, 0u);
    EXPECT_EQ(Warp.m_nPlanes, 0u);
    EXPECT_EQ(Warp.m_nBackground, 0);
}
