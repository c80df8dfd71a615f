// The two persistent blocks of the engine.

#include "TessarinCalibrateSDK/IpCalibrateLumivane2.h"

#include "TessarinCalibrateSDK/EngineWords.h"
#include "TessarinCalibrateSDK/Trace.h"
#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/Tables.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <cstdlib>

using TestSupport::Bytes;
using TestSupport::ClLogCapture;
using TestSupport::ClPipeStream;
using TestSupport::Content;
using TestSupport::cszMissing;
using TestSupport::cszSingular;
using TestSupport::HashOf;
using TestSupport::PlausibleRecord;
using TestSupport::PrecalculatedBlock;
using TestSupport::RecordBlock;
using TestSupport::StRecord;
using TestSupport::TableOf;
using TestSupport::Trace;

namespace {

using Engine = ClIpCalibrateLumivane2;

void Read(Engine& rEngine, const Bytes& aBlock) {
    ClMemStream Stream(aBlock.data(), aBlock.size());
    rEngine.Read(Stream);
}

void ReadTarget(Engine& rEngine, const Bytes& aBlock) {
    ClMemStream Stream(aBlock.data(), aBlock.size());
    rEngine.ReadTarget(Stream);
}

void ReadPrecalculated(Engine& rEngine, const Bytes& aBlock) {
    ClMemStream Stream(aBlock.data(), aBlock.size());
    rEngine.ReadPrecalculatedData(Stream);
}

Bytes Written(Engine& rEngine) {
    ClMemStream Stream;
    rEngine.Write(Stream);
    return Content(Stream);
}

Bytes WrittenPrecalculated(Engine& rEngine) {
    ClMemStream Stream;
    rEngine.WritePrecalculatedData(Stream);
    return Content(Stream);
}

/// A capture corrected by an engine.
Bytes Corrected(Engine& rEngine, int nWidth, int nHeight) {
    ClImage In(nWidth, nHeight, 1, 0, 0);
    for (std::size_t i = 0; i < In.SizeBytes(); ++i)
        In.Data()[i] = static_cast<unsigned char>(i * i / 7);
    ClImage Out;
    rEngine.m_bDynamicFingerMask = false;
    rEngine.m_pInImage = &In;
    rEngine.m_pOutImage = &Out;
    EXPECT_EQ(rEngine.Apply(), 0);
    return Bytes(Out.Data(), Out.Data() + Out.SizeBytes());
}

const char* const cszSignature = "The input signature is not expected here.";
const char* const cszEnd = "Unexpected end of stream";

} // namespace

// Calibration block

TEST(CalibrationBlocks, ReadPreparesTheTable) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    EXPECT_TRUE(Tested.IsInitialized());
    EXPECT_TRUE(Tested.m_GeometricBicubic.HasTable());
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pData, &Tested.m_CalibrationData);
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pInImage, nullptr);
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pOutImage, nullptr);
}

TEST(CalibrationBlocks, ReadSetsTheRescalerToTheTargetsResolution) {
    StRecord Record = PlausibleRecord();
    Record.m_nTargetPelsY = 2470; // of 2461: the pattern is still the same within its tolerance
    Engine Tested;
    Read(Tested, RecordBlock(Record));
    EXPECT_EQ(Tested.m_Rescale.m_nNewPelsX, 2461);
    EXPECT_EQ(Tested.m_Rescale.m_nNewPelsY, 2470);
    EXPECT_EQ(Tested.m_Rescale.m_eMode, ClIpRescale::ModeBiCubic);
}

TEST(CalibrationBlocks, ReadLeavesTheTableToAPrecalculatedBlock) {
    Engine Tested;
    ClImage Earlier;
    Tested.m_GeometricBicubic.m_pInImage = &Earlier;
    Tested.m_GeometricBicubic.m_pOutImage = &Earlier;
    Tested.m_bPrecalculatedData = true;
    Read(Tested, RecordBlock(PlausibleRecord()));
    EXPECT_TRUE(Tested.IsInitialized());
    EXPECT_FALSE(Tested.m_GeometricBicubic.HasTable());
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pData, &Tested.m_CalibrationData);
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pInImage, nullptr);
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pOutImage, nullptr);
}

TEST(CalibrationBlocks, ReadDropsTheOldTable) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    Tested.m_bPrecalculatedData = true;
    Read(Tested, RecordBlock(PlausibleRecord()));
    EXPECT_FALSE(Tested.m_GeometricBicubic.HasTable());
    EXPECT_THROWS(Read(Tested, Bytes()), ClExStreamUnexpectedEnd, -201, cszEnd);
    EXPECT_FALSE(Tested.m_GeometricBicubic.HasTable());
}

TEST(CalibrationBlocks, FirstRunPreparesATableThatIsMissing) {
    Engine Prepared;
    Read(Prepared, RecordBlock(PlausibleRecord()));
    Engine Later;
    Later.m_bPrecalculatedData = true;
    Read(Later, RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Corrected(Later, 48, 132), Corrected(Prepared, 48, 132));
    EXPECT_TRUE(Later.m_GeometricBicubic.HasTable());
}

TEST(CalibrationBlocks, WriteGivesTheBlockThatWasRead) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Written(Tested), RecordBlock(PlausibleRecord()));
}

TEST(CalibrationBlocks, ReadPassesOverBytesBehindTheRecord) {
    for (std::size_t nBehind = 0; nBehind < 12; ++nBehind) {
        Bytes aBlock = RecordBlock(PlausibleRecord());
        const std::size_t nRecord = aBlock.size();
        aBlock.resize(nRecord + nBehind, 0xAB);
        ClMemStream Stream(aBlock.data(), aBlock.size());
        Engine Tested;
        Tested.m_bPrecalculatedData = true;
        Tested.Read(Stream);
        EXPECT_EQ(Stream.Pos(), nRecord - 4); // in front of the checksum, where the record ends
        EXPECT_FALSE(Stream.GetThrowOnShort());
    }
}

TEST(CalibrationBlocks, ReadRestoresTheStrictFlag) {
    const Bytes aBlock = RecordBlock(PlausibleRecord(), 5); // nothing at all behind it
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.SetThrowOnShort(true);
    Engine Tested;
    Tested.m_bPrecalculatedData = true;
    EXPECT_NO_THROW(Tested.Read(Stream));
    EXPECT_TRUE(Stream.GetThrowOnShort());
    EXPECT_EQ(Stream.Pos(), aBlock.size());
}

TEST(CalibrationBlocks, ReadPassesTheRecordsFailures) {
    Engine Tested;
    EXPECT_THROWS(Read(Tested, TestSupport::BytesOf("CALxGEO")), ClExTessarin, -40, cszSignature);
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.pop_back();
    EXPECT_THROWS(Read(Tested, aBlock), ClExStreamUnexpectedEnd, -201, cszEnd);
    aBlock = RecordBlock(PlausibleRecord());
    aBlock.back() ^= 1;
    EXPECT_THROWS(Read(Tested, aBlock), ClException, -39, "Calibration Data currupt");
}

TEST(CalibrationBlocks, ReadChecksTheRecordBeforeItPrepares) {
    StRecord Record = PlausibleRecord();
    Record.m_aTarget.pop_back();
    Engine Tested;
    EXPECT_THROWS(Read(Tested, RecordBlock(Record)), ClException, -39, "Target data is corrupt");
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pData, nullptr);
}

TEST(CalibrationBlocks, ReadPassesTheSplinesFailures) {
    StRecord Record = PlausibleRecord();
    Record.m_aTarget[1] = Record.m_aTarget[0]; // near enough to the pattern, and no mapping
    Engine Tested;
    EXPECT_THROWS(Read(Tested, RecordBlock(Record)), ClException, -600, cszSingular);
}

TEST(CalibrationBlocks, ReadSurvivesMissingMemory) {
    StRecord Record = PlausibleRecord();
    Record.m_nTargetHeight = 3;
    const Bytes aBlock = RecordBlock(Record);
    TestSupport::FailEachAllocation([&] {
        Engine Tested;
        Read(Tested, aBlock);
    });
}

// Reference target

TEST(CalibrationBlocks, ReadTargetFillsTheReferenceAlone) {
    Engine Tested;
    ReadTarget(Tested, RecordBlock(PlausibleRecord()));
    EXPECT_EQ(Tested.m_TargetData.m_aTarget.Entries(), 75u);
    EXPECT_FALSE(Tested.IsInitialized());
    EXPECT_EQ(Tested.m_GeometricBicubic.m_pData, nullptr);
    EXPECT_FALSE(Tested.m_GeometricBicubic.HasTable());
}

TEST(CalibrationBlocks, ReadTargetLeavesDataAndTable) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aTable = WrittenPrecalculated(Tested);
    StRecord Reference = PlausibleRecord();
    Reference.m_aTarget[7].x += 1.0f;
    ReadTarget(Tested, RecordBlock(Reference));
    EXPECT_EQ(Written(Tested), RecordBlock(PlausibleRecord()));
    EXPECT_EQ(WrittenPrecalculated(Tested), aTable);
    EXPECT_EQ(Tested.m_TargetData.m_aTarget[7].x, static_cast<double>(Reference.m_aTarget[7].x));
}

TEST(CalibrationBlocks, FailedReadTargetKeepsWhatWasRead) {
    Engine Tested;
    ReadTarget(Tested, RecordBlock(PlausibleRecord()));
    Bytes aBlock = RecordBlock(PlausibleRecord());
    aBlock.back() ^= 1;
    EXPECT_THROWS(ReadTarget(Tested, aBlock), ClException, -39, "Calibration Data currupt");
    EXPECT_EQ(Tested.m_TargetData.m_aTarget.Entries(), 75u);
    EXPECT_THROWS(ReadTarget(Tested, TestSupport::BytesOf("no record at all")), ClExTessarin, -40,
                  cszSignature);
    EXPECT_EQ(Tested.m_TargetData.m_aTarget.Entries(), 75u);
}

// Precalculated block

TEST(CalibrationBlocks, PrecalculatedBlockIsHeaderHashAndTable) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = WrittenPrecalculated(Tested);
    ClMemStream Table;
    Tested.m_GeometricBicubic.Store(Table);
    Bytes aExpected = TestSupport::BytesOf(std::string("CAL\0PRE\0"
                                                       "001\0",
                                                       12));
    for (const unsigned char nByte : HashOf(PlausibleRecord()))
        aExpected.push_back(nByte);
    for (const unsigned char nByte : Content(Table))
        aExpected.push_back(nByte);
    EXPECT_EQ(aBlock, aExpected);
}

TEST(CalibrationBlocks, PrecalculatedBlockGivesTheSameCorrection) {
    Engine First;
    Read(First, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = WrittenPrecalculated(First);
    Engine Second;
    Second.m_bPrecalculatedData = true;
    Read(Second, RecordBlock(PlausibleRecord()));
    ReadPrecalculated(Second, aBlock);
    EXPECT_TRUE(Second.m_GeometricBicubic.HasTable());
    EXPECT_EQ(Corrected(Second, 48, 132), Corrected(First, 48, 132));
    EXPECT_EQ(WrittenPrecalculated(Second), aBlock);
}

TEST(CalibrationBlocks, PrecalculatedBlockReplacesAPreparedTable) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    ReadPrecalculated(Tested, aBlock);
    EXPECT_EQ(WrittenPrecalculated(Tested), aBlock);
    EXPECT_EQ(Corrected(Tested, 10, 9).size(), 8u); // the loaded sizes hold
}

TEST(CalibrationBlocks, PrecalculatedBlockNeedsDataThatWereSet) {
    Engine Tested;
    EXPECT_THROWS(ReadPrecalculated(Tested, Bytes()), ClExTessarin, -37, cszMissing);
    Read(Tested, RecordBlock(PlausibleRecord()));
    Tested.Clear(); // does not unset them
    EXPECT_THROWS(
        ReadPrecalculated(Tested, PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()))),
        ClExTessarin, -40, cszSignature);
}

TEST(CalibrationBlocks, PrecalculatedBlockOfAnEmptyRecordIsRefused) {
    StRecord Empty;
    Empty.m_nPlanes = 0;
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(Empty));
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aOwn = WrittenPrecalculated(Tested);
    Tested.Clear();
    EXPECT_THROWS(ReadPrecalculated(Tested, aBlock), ClExTessarin, -40, cszSignature);
    Fill(PlausibleRecord(), Tested.m_CalibrationData);
    EXPECT_EQ(WrittenPrecalculated(Tested), aOwn); // the table has not been touched
}

TEST(CalibrationBlocks, PrecalculatedBlockOfARecordWithoutSourceIsRefused) {
    for (const bool bWidth : {true, false}) {
        StRecord Record = PlausibleRecord();
        (bWidth ? Record.m_nSourceWidth : Record.m_nSourceHeight) = 0;
        Engine Tested;
        Tested.m_bPrecalculatedData = true;
        Read(Tested, RecordBlock(Record));
        EXPECT_FALSE(Tested.IsInitialized());
        EXPECT_THROWS(ReadPrecalculated(Tested, PrecalculatedBlock(TableOf(), HashOf(Record))),
                      ClExTessarin, -40, cszSignature);
        EXPECT_FALSE(Tested.m_GeometricBicubic.HasTable());
    }
}

TEST(CalibrationBlocks, PrecalculatedBlockBelongsToOneRecord) {
    Engine First;
    Read(First, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = WrittenPrecalculated(First);
    StRecord Changed = PlausibleRecord();
    Changed.m_aActual[0][40].x = std::nextafter(Changed.m_aActual[0][40].x, 1000.0f);
    Engine Second;
    Read(Second, RecordBlock(Changed));
    EXPECT_THROWS(ReadPrecalculated(Second, aBlock), ClExTessarin, -40, cszSignature);
    EXPECT_TRUE(Second.m_GeometricBicubic.HasTable()); // its own
}

TEST(CalibrationBlocks, PrecalculatedBlockRefusesOtherTagsVersionsAndHashes) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    for (std::size_t nBit = 0; nBit < 28 * 8; ++nBit) {
        Bytes aFlipped = aBlock;
        aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        const std::string Version(aFlipped.begin() + 8, aFlipped.begin() + 12);
        if (nBit / 32 == 2 && std::atoi(Version.c_str()) == 1)
            EXPECT_NO_THROW(ReadPrecalculated(Tested, aFlipped)) << "bit " << nBit;
        else
            EXPECT_THROWS(ReadPrecalculated(Tested, aFlipped), ClExTessarin, -40, cszSignature);
    }
}

TEST(CalibrationBlocks, PrecalculatedBlockReadsItsVersionAsANumber) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const auto aHash = HashOf(PlausibleRecord());
    for (const char* szVersion : {"1", "01", "001", "0001", " 1", "1abc"})
        EXPECT_NO_THROW(ReadPrecalculated(Tested, PrecalculatedBlock(TableOf(), aHash, szVersion)));
    for (const char* szVersion : {"002", "0", "", "x1", "10"})
        EXPECT_THROWS(ReadPrecalculated(Tested, PrecalculatedBlock(TableOf(), aHash, szVersion)),
                      ClExTessarin, -40, cszSignature);
}

TEST(CalibrationBlocks, PrecalculatedBlockThatEndsEarlyIsASignatureFailure) {
    constexpr std::size_t cnNumbers = 28 + 12;
    constexpr std::size_t cnMagic = cnNumbers + 7 * 4 + 1;
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    for (std::size_t nSize = 0; nSize < aBlock.size(); ++nSize) {
        SCOPED_TRACE(nSize);
        ClMemStream Stream(aBlock.data(), nSize);
        if (nSize < cnNumbers - 1) // a version without its terminator is one
            EXPECT_THROWS(Tested.ReadPrecalculatedData(Stream), ClExTessarin, -40, cszSignature)
        else if (nSize >= cnMagic && nSize < cnMagic + 3) // its last byte is 0, as a missing one
            EXPECT_THROWS(Tested.ReadPrecalculatedData(Stream), ClException, -40,
                          "KPF Magic is missing")
        else
            EXPECT_THROWS(Tested.ReadPrecalculatedData(Stream), ClException, -40,
                          "KPF end Magic is missing")
    }
}

TEST(CalibrationBlocks, PrecalculatedBlockWithoutTableDoesNotLoad) {
    Engine Tested;
    Tested.m_bPrecalculatedData = true;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = WrittenPrecalculated(Tested); // nothing tests that there is a table
    EXPECT_EQ(aBlock.size(), 28u + 98);
    EXPECT_THROWS(ReadPrecalculated(Tested, aBlock), ClExTessarin, -40, cszSignature);
}

TEST(CalibrationBlocks, PrecalculatedBlockSurvivesARoundTripOfTheRecord) {
    Engine First;
    Read(First, RecordBlock(PlausibleRecord()));
    // Points that no float holds, as a generated record has them.
    for (unsigned long i = 0; i < 75; ++i)
        First.m_CalibrationData.m_aActual[0][i].x += 1e-9;
    const Bytes aRecord = Written(First);
    const Bytes aBlock = WrittenPrecalculated(First);
    Engine Second;
    Read(Second, aRecord);
    EXPECT_NO_THROW(ReadPrecalculated(Second, aBlock));
}

TEST(CalibrationBlocks, BlocksAreNotWrittenWhileBitsArePending) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    ClMemStream Stream;
    Stream.WriteBits(1, 3);
    EXPECT_THROWS(Tested.WritePrecalculatedData(Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
    EXPECT_THROWS(Tested.Write(Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}

TEST(CalibrationBlocks, PrecalculatedBlockSurvivesMissingMemory) {
    Engine Tested;
    Read(Tested, RecordBlock(PlausibleRecord()));
    const Bytes aBlock = PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord()));
    TestSupport::FailEachAllocation([&] {
        ReadPrecalculated(Tested, aBlock);
        ClMemStream Stream;
        Tested.WritePrecalculatedData(Stream);
    });
}

// Trace

TEST(CalibrationBlocks, EveryMemberTracesEnterAndLeaving) {
    Engine Tested;
    const auto ExpectTraced = [](const char* szName, auto call) {
        const ClLogCapture Log;
        call();
        const std::string Name = std::string("ClIpCalibrateQK7::") + szName;
        EXPECT_EQ(Log.Lines().front(), Trace(Name + "() Enter"));
        EXPECT_EQ(Log.Lines().back(), Trace(Name + "() Leaving"));
        EXPECT_EQ(Log.Texts(7).size(), Log.Lines().size());
    };
    ClMemStream Stream;
    ExpectTraced("ReadTarget", [&] { ReadTarget(Tested, RecordBlock(PlausibleRecord())); });
    ExpectTraced("Read", [&] { Read(Tested, RecordBlock(PlausibleRecord())); });
    ExpectTraced("Write", [&] { Tested.Write(Stream); });
    ExpectTraced("WritePrecalculatedData", [&] { Tested.WritePrecalculatedData(Stream); });
    ExpectTraced("ReadPrecalculatedData", [&] {
        ReadPrecalculated(Tested, PrecalculatedBlock(TableOf(), HashOf(PlausibleRecord())));
    });
}
