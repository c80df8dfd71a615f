// Precalculated blocks from anywhere.

#include "api/Api.h"
#include "calls/TableRules.h"
#include "support/GuardedMemory.h"
#include "support/Tables.h"

using TestSupport::Bytes;
using TestSupport::Capture;
using TestSupport::ClApiHandle;
using TestSupport::ClGuardedBlock;
using TestSupport::HashOf;
using TestSupport::PlausibleRecord;
using TestSupport::PrecalculatedBlock;
using TestSupport::RecordBlock;
using TestSupport::StTable;
using TestSupport::TableOf;

namespace {

class ClTableVictim {
public:
    ClTableVictim() : m_aRecord(RecordBlock(PlausibleRecord())) {
        m_Handle.Set("PrecalculatedData=true");
    }

    /// What a block gives, which its bytes tell. A table that is taken is applied to captures of
    /// the size it tells, of the size the record tells, and of others.
    long Attack(const Bytes& aBlock, std::size_t nSize) {
        EXPECT_EQ(m_Handle.SetData(m_aRecord), 0);
        const ClGuardedBlock Guarded(aBlock, nSize);
        const long nStatus = CalibrateSetPrecalculatedData(m_Handle, Guarded.Data(), nSize);
        const Calls::StReadTable Read =
            Calls::ReadTable(Bytes(Guarded.Data(), Guarded.Data() + nSize), m_aHash);
        EXPECT_EQ(nStatus, Read.m_nStatus);
        EXPECT_EQ(m_Handle.IsReady(), nStatus == 0);
        if (nStatus == 0)
            Apply(Read.m_Table);
        return nStatus;
    }
    long Attack(const Bytes& aBlock) { return Attack(aBlock, aBlock.size()); }

private:
    void Apply(const StTable& Table) {
        EXPECT_EQ(m_Handle.PrecalculatedData(), Calls::UsualBlockOf(Table, m_aHash));
        ApplyTo(Table, 48, 132);
        ApplyTo(Table, 10, 9);
        ApplyTo(Table, 9, 10);
        ApplyTo(Table, Table.m_nSourceWidth, Table.m_nSourceHeight);
        ApplyTo(Table, Table.m_nSourceHeight, Table.m_nSourceWidth);
    }

    void ApplyTo(const StTable& Table, std::uint32_t nWidth, std::uint32_t nHeight) {
        if (nWidth > 300 || nHeight > 300)
            return;
        const bool bFits = nWidth == Table.m_nSourceWidth && nHeight == Table.m_nSourceHeight &&
                           Table.m_nPlanes == 1;
        long nStatus = 0;
        const Bytes aOut = m_Handle.Corrected(
            Capture(static_cast<int>(nWidth), static_cast<int>(nHeight)), &nStatus);
        EXPECT_EQ(nStatus, bFits ? QMT_SUCCESS : QMT_ERROR_BITMAP_DIMENSION)
            << nWidth << " x " << nHeight;
        if (nStatus != 0)
            return;
        EXPECT_EQ(TestSupport::Width(aOut), static_cast<int>(Table.m_nTargetWidth));
        EXPECT_EQ(TestSupport::Height(aOut), static_cast<int>(Table.m_nTargetHeight));
    }

    ClApiHandle m_Handle;
    Bytes m_aRecord;
    Calls::Digest m_aHash = HashOf(PlausibleRecord());
};

Bytes BlockOf(const StTable& Table) {
    return PrecalculatedBlock(Table, HashOf(PlausibleRecord()));
}

const std::uint32_t canTableExtremes[] = {
    0,          1,          2,          3,          4,          5,         35,      36,
    37,         72,         255,        16384,      16385,      0xFFFF,    0x10000, 0x01000000,
    0x07FFFFFF, 0x4B504600, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFC, 0xFFFFFFFF};

} // namespace

TEST(HostilePrecalculated, CutAtEveryByte) {
    ClTableVictim Victim;
    const Bytes aBlock = BlockOf(TableOf());
    for (std::size_t nSize = 0; nSize < aBlock.size(); ++nSize)
        EXPECT_EQ(Victim.Attack(aBlock, nSize), QMT_ERROR_UNEXPECTED_SIGNATURE) << nSize;
    EXPECT_EQ(Victim.Attack(aBlock), QMT_SUCCESS);
}

TEST(HostilePrecalculated, WithEveryBitFlipped) {
    ClTableVictim Victim;
    const Bytes aBlock = BlockOf(TableOf());
    for (std::size_t nBit = 0; nBit < aBlock.size() * 8; ++nBit) {
        Bytes aFlipped = aBlock;
        aFlipped[nBit / 8] ^= static_cast<unsigned char>(1u << (nBit % 8));
        Victim.Attack(aFlipped);
    }
}

TEST(HostilePrecalculated, WithExtremeNumbers) {
    ClTableVictim Victim;
    const Bytes aBlock = BlockOf(TableOf());
    for (std::size_t nOffset = 0; nOffset + 4 <= aBlock.size(); ++nOffset)
        for (const std::uint32_t nValue : canTableExtremes) {
            if (nOffset > 28 + 94 + 36 && nOffset < aBlock.size() - 8)
                continue; // one table entry stands for all
            Bytes aChanged = aBlock;
            for (std::size_t i = 0; i < 4; ++i)
                aChanged[nOffset + i] = static_cast<unsigned char>(nValue >> (24 - 8 * i));
            Victim.Attack(aChanged);
        }
}

TEST(HostilePrecalculated, WithConsistentSizesThatTheBlockDoesNotHold) {
    ClTableVictim Victim;
    for (const std::uint32_t nWidth : canTableExtremes)
        for (const std::uint32_t nHeight : canTableExtremes)
            for (std::uint32_t nPlanes = 0; nPlanes < 5; ++nPlanes) {
                StTable Table = TableOf();
                Table.m_nTargetWidth = Table.m_nImageWidth = nWidth;
                Table.m_nTargetHeight = Table.m_nImageHeight = nHeight;
                Table.m_nPlanes = nPlanes;
                Table.m_nPixelBytes = 36 * nPlanes;
                const long nStatus = Victim.Attack(BlockOf(Table));
                const std::uint64_t nEntries = std::uint64_t{nWidth} * nHeight * nPlanes;
                EXPECT_TRUE(nStatus != 0 || nEntries <= 6);
            }
}

// The table ends where its pixels end: entries of every offset, weights of every size.
TEST(HostilePrecalculated, WithEveryOffset) {
    ClTableVictim Victim;
    for (std::int32_t nOffset = -200; nOffset < 400; ++nOffset) {
        const bool bInside = nOffset >= 0 && nOffset % 12 <= 6 && nOffset / 12 <= 5;
        EXPECT_EQ(Victim.Attack(BlockOf(TableOf({nOffset, -1, -1, -1, -1, nOffset}))),
                  bInside || nOffset == -1 ? QMT_SUCCESS : QMT_ERROR_CURRUPT_DATA)
            << nOffset;
    }
    for (const std::int32_t nOffset : {-2147483647 - 1, 2147483647, 1 << 30})
        EXPECT_EQ(Victim.Attack(BlockOf(TableOf({-1, -1, nOffset, -1, -1, -1}))),
                  QMT_ERROR_CURRUPT_DATA);
}

TEST(HostilePrecalculated, WithSeveralPlanesOfAGreyScanner) {
    ClTableVictim Victim;
    for (std::uint32_t nPlanes = 2; nPlanes <= 3; ++nPlanes) {
        StTable Table = TableOf();
        const Bytes aOnce = Table.m_aTable;
        for (std::uint32_t p = 1; p < nPlanes; ++p)
            Table.m_aTable.insert(Table.m_aTable.end(), aOnce.begin(), aOnce.end());
        Table.m_nPlanes = nPlanes;
        Table.m_nPixelBytes = 36 * nPlanes;
        EXPECT_EQ(Victim.Attack(BlockOf(Table)), QMT_SUCCESS); // and answers -14 to a grey capture
    }
}

TEST(HostilePrecalculated, OfAnyBytesAtAll) {
    ClTableVictim Victim;
    const Bytes aBlock = BlockOf(TableOf());
    std::mt19937 Random(12);
    for (int i = 0; i < 2000; ++i) {
        Bytes aChanged = aBlock;
        for (unsigned int n = 0; n <= Random() % 8; ++n)
            aChanged[28 + Random() % (aChanged.size() - 28)] = static_cast<unsigned char>(Random());
        Victim.Attack(aChanged);
    }
}
