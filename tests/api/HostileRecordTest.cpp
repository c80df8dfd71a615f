// Calibration blocks from anywhere.

#include "api/Api.h"
#include "calls/RecordRules.h"
#include "support/GuardedMemory.h"
#include "support/Records.h"

#include <limits>

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::ClGuardedBlock;
using TestSupport::PlausibleRecord;
using TestSupport::RecordBlock;
using TestSupport::StRecord;

namespace {

/// The calls that take a record, without the work of preparing a table.
class ClRecordVictim {
public:
    ClRecordVictim() { m_Handle.Set("PrecalculatedData=true"); }

    /// What a block gives; the handle is in order afterwards whatever it was.
    long Attack(const Bytes& aBlock, std::size_t nSize) {
        const ClGuardedBlock Guarded(aBlock, nSize);
        const Calls::StReadRecord Read =
            Calls::ReadRecord(Bytes(Guarded.Data(), Guarded.Data() + nSize));
        EXPECT_EQ(CalibrateSetReferenceData(m_Handle, Guarded.Data(), nSize), Read.m_nStatus);
        const long nStatus = CalibrateSetData(m_Handle, Guarded.Data(), nSize);
        EXPECT_EQ(nStatus, StatusOf(Read));
        const bool bReady =
            nStatus == 0 && Read.m_Record.m_nSourceWidth != 0 && Read.m_Record.m_nSourceHeight != 0;
        EXPECT_EQ(m_Handle.IsReady(), bReady);
        if (bReady)
            UseData(Read.m_Record);
        return nStatus;
    }
    long Attack(const Bytes& aBlock) { return Attack(aBlock, aBlock.size()); }

private:
    /// What loading answers, which the bytes tell.
    static long StatusOf(const Calls::StReadRecord& Read) {
        if (Read.m_nStatus != 0)
            return Read.m_nStatus;
        return Calls::IsPlausible(Read.m_Record) ? QMT_SUCCESS : QMT_ERROR_CURRUPT_DATA;
    }

    void UseData(const StRecord& Record) {
        const Bytes aBack = m_Handle.Data();
        EXPECT_EQ(aBack, RecordBlock(Record));
        ClApiHandle Second;
        Second.Set("PrecalculatedData=true");
        EXPECT_EQ(Second.SetData(aBack), 0);
        EXPECT_EQ(Second.Data(), aBack);
        m_Handle.Set("GeometricCalibrate=oddLines");
        m_Handle.Corrected(Capture(9, 8));
    }

    ClApiHandle m_Handle;
};

void StoreBig(Bytes& rBlock, std::size_t nOffset, std::uint32_t nValue) {
    for (std::size_t i = 0; i < 4; ++i)
        rBlock[nOffset + i] = static_cast<unsigned char>(nValue >> (24 - 8 * i));
}

/// A record that a layout can store: without a resolution of the target, its pattern is that of
/// 500 dots per inch.
StRecord OfLayout(int nLayout) {
    return nLayout < 2 ? PlausibleRecord(390, 1052, 320, 480, 19685) : PlausibleRecord();
}

const std::uint32_t canRecordExtremes[] = {
    0,          1,          2,          3,          4,          74,         75,         76,
    150,        255,        16384,      16385,      0xFFFF,     0x10000,    0x1FFFFFFF, 0x20000000,
    0x7F800000, 0x7FC00000, 0x7FFFFFFF, 0x80000000, 0xFF800000, 0xFFFFFFF8, 0xFFFFFFFF};

} // namespace

TEST(HostileRecord, CutAtEveryByteOfEveryLayout) {
    ClRecordVictim Victim;
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        const Bytes aBlock = RecordBlock(PlausibleRecord(), nLayout);
        for (std::size_t nSize = 0; nSize < aBlock.size(); ++nSize)
            EXPECT_EQ(Victim.Attack(aBlock, nSize), QMT_ERROR_UNEXPECTED_EOF) << nLayout;
    }
}

TEST(HostileRecord, WithEveryBitFlipped) {
    ClRecordVictim Victim;
    const Bytes aBlock = RecordBlock(PlausibleRecord());
    for (std::size_t nBit = 0; nBit < aBlock.size() * 8; ++nBit) {
        Bytes aFlipped = aBlock;
        aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        const long nStatus = Victim.Attack(aFlipped);
        const bool bTag = nBit < 64;
        const bool bVersion = nBit >= 64 && nBit < 96; // another layout
        EXPECT_EQ(nStatus == QMT_ERROR_UNEXPECTED_SIGNATURE, bTag) << nBit;
        EXPECT_TRUE(bTag || bVersion || nStatus == QMT_ERROR_CURRUPT_DATA ||
                    nStatus == QMT_ERROR_UNEXPECTED_EOF)
            << nBit;
    }
}

TEST(HostileRecord, WithEveryBitFlippedWhereNoChecksumWatches) {
    ClRecordVictim Victim;
    for (const int nLayout : {2, 5}) {
        const Bytes aBlock = RecordBlock(PlausibleRecord(), nLayout);
        // The points of both are alike: of the second layout, each bit of a number is met in some.
        const std::size_t nStride = nLayout == 2 ? 1 : 7;
        for (std::size_t nBit = 0; nBit < aBlock.size() * 8; nBit += nBit < 512 ? 1 : nStride) {
            Bytes aFlipped = aBlock;
            aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
            Victim.Attack(aFlipped);
        }
    }
}

TEST(HostileRecord, WithExtremeNumbersUnderARightChecksum) {
    ClRecordVictim Victim;
    for (std::size_t nOffset = 12; nOffset + 8 <= 49; nOffset += 4)
        for (const std::uint32_t nValue : canRecordExtremes) {
            Bytes aBlock = RecordBlock(PlausibleRecord());
            StoreBig(aBlock, nOffset, nValue);
            TestSupport::RenewCrc(aBlock);
            const long nStatus = Victim.Attack(aBlock);
            const bool bSource = nOffset < 28; // a capture may have any size
            const bool bTooLarge = !bSource && nOffset < 36 && nValue > 16384;
            EXPECT_TRUE(!bSource || nStatus == 0) << nOffset << ": " << nValue;
            EXPECT_TRUE(!bTooLarge || nStatus == QMT_ERROR_CURRUPT_DATA)
                << nOffset << ": " << nValue;
        }
}

TEST(HostileRecord, WithExtremeCountsUnderARightChecksum) {
    ClRecordVictim Victim;
    for (int nLayout = 0; nLayout <= 6; ++nLayout) {
        const Bytes aBlock = RecordBlock(OfLayout(nLayout), nLayout);
        const std::size_t nSecond = aBlock.size() - (nLayout == 6 ? 4 : 0) - 75 * 8 - 4;
        for (const std::size_t nOffset : {nSecond - 75 * 8 - 4, nSecond})
            for (const std::uint32_t nValue : canRecordExtremes) {
                Bytes aChanged = aBlock;
                StoreBig(aChanged, nOffset, nValue);
                if (nLayout == 6)
                    TestSupport::RenewCrc(aChanged);
                EXPECT_EQ(Victim.Attack(aChanged) == 0, nValue == 75) << nLayout << ": " << nValue;
            }
    }
}

TEST(HostileRecord, WithCoordinatesThatAreNoNumbers) {
    ClRecordVictim Victim;
    for (const float f :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity()})
        for (const std::size_t nPoint : {0, 40, 74})
            for (const bool bTarget : {false, true}) {
                StRecord Record = PlausibleRecord();
                (bTarget ? Record.m_aTarget : Record.m_aActual[0])[nPoint].y = f;
                EXPECT_EQ(Victim.Attack(RecordBlock(Record)), QMT_ERROR_CURRUPT_DATA);
            }
}

TEST(HostileRecord, WithMorePlanesThanLists) {
    ClRecordVictim Victim;
    StRecord Record = PlausibleRecord();
    for (const std::uint32_t nPlanes : {0u, 2u, 3u}) {
        Record.m_nPlanes = nPlanes;
        EXPECT_EQ(Victim.Attack(RecordBlock(Record)), QMT_ERROR_CURRUPT_DATA);
    }
    Record.m_nPlanes = 4;
    EXPECT_EQ(Victim.Attack(RecordBlock(Record)), QMT_ERROR_CURRUPT_DATA);
}

// The splines meet coordinates of every size: what they cannot map is refused, what they map is
// used without reading outside the capture.
TEST(HostileRecord, WithExtremeCoordinatesPreparesOrRefuses) {
    const Bytes aIn = Capture(48, 132);
    ClApiHandle Handle;
    const Bytes aBlock = RecordBlock(PlausibleRecord(), 5);
    const std::size_t nTarget = 53;
    const std::size_t nActual = nTarget + 75 * 8 + 4;
    for (const std::size_t nOffset : {nTarget, nActual + 20 * 8})
        for (std::size_t nBit = 0; nBit < 32; nBit += 2) {
            Bytes aFlipped = aBlock;
            aFlipped[nOffset + nBit / 8] ^= static_cast<unsigned char>(0x80u >> (nBit % 8));
            const ClGuardedBlock Guarded(aFlipped);
            const long nStatus = CalibrateSetData(Handle, Guarded.Data(), Guarded.Size());
            const StRecord Record = Calls::ReadRecord(aFlipped).m_Record;
            if (!Calls::IsPlausible(Record)) {
                EXPECT_EQ(nStatus, QMT_ERROR_CURRUPT_DATA) << nBit;
            } else {
                EXPECT_TRUE(nStatus == 0 || nStatus == QMT_ERROR_CALIBRATE_FAILED_TO_GENERATE)
                    << nBit << ": " << nStatus;
            }
            if (nStatus == 0) {
                EXPECT_EQ(Handle.Corrected(aIn).size(), 40u + 1024 + 40 * 60);
            }
        }
}

TEST(HostileRecord, OfAnyBytesAtAll) {
    ClRecordVictim Victim;
    std::mt19937 Random(11);
    for (int i = 0; i < 2000; ++i) {
        Bytes aBlock(Random() % 1500);
        for (unsigned char& nByte : aBlock)
            nByte = static_cast<unsigned char>(Random());
        if (i % 2 == 0 && aBlock.size() > 12)
            std::memcpy(aBlock.data(), "CAL\0GEO\0\60\60\66", 12);
        Victim.Attack(aBlock);
    }
}
