#include "Tools/MemStream.h"

#include "support/AllocationFailures.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>
#include <limits>
#include <random>

using TestSupport::Bytes;
using TestSupport::ClFailAllocation;
using TestSupport::cnRefused;
using TestSupport::Content;

namespace {

void WriteZeros(ClMemStream& rStream, unsigned long nCount) {
    const Bytes aZeros(nCount);
    rStream.WriteRaw(aZeros.data(), nCount);
}

/// Whether writing one byte at the position makes the buffer grow.
bool GrowsAtTheNextByte(ClMemStream& rStream) {
    const unsigned char nByte = 1;
    try {
        ClFailAllocation Fail(0);
        rStream.WriteRaw(&nByte, 1);
        return false;
    } catch (const ClExBadAlloc&) {
        return true;
    }
}

} // namespace

// Construction and content

TEST(MemStream, IsEmptyWritableAndSeekableAtFirst) {
    ClMemStream Stream;
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.GetData(), nullptr);
    EXPECT_TRUE(Stream.IsSeekable());
    EXPECT_STREQ(Stream.Name(), "Mem Stream");
    EXPECT_EQ(Stream.WriteRaw("a", 1), 1u);
}

TEST(MemStream, CanStartWithASize) {
    ClMemStream Stream(16, true);
    EXPECT_EQ(Stream.Size(), 16u);
    EXPECT_EQ(Stream.Pos(), 0u);
    ASSERT_NE(Stream.GetData(), nullptr);
    Stream.WriteRaw("abc", 3);
    EXPECT_EQ(Stream.Size(), 16u);
    EXPECT_EQ(std::memcmp(Stream.GetData(), "abc", 3), 0);
}

TEST(MemStream, OfSizeZeroHasNoData) {
    ClMemStream Stream(0, true);
    EXPECT_EQ(Stream.GetData(), nullptr);
    EXPECT_EQ(Stream.WriteRaw("a", 1), 1u);
    EXPECT_EQ(Content(Stream), (Bytes{'a'}));
}

TEST(MemStream, RefusesToStartWhereMemoryIsMissing) {
    TestSupport::FailEachAllocation([] { ClMemStream Stream(16, true); });
    EXPECT_THROWS(ClMemStream(std::numeric_limits<unsigned long>::max(), true), ClExBadAlloc, -102,
                  "Memory allocation failed");
}

TEST(MemStream, AReadOnlyStreamRefusesEveryWrite) {
    const unsigned char nByte = 1;
    ClMemStream Attached(&nByte, 1);
    EXPECT_THROWS(Attached.WriteRaw("a", 1), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
    EXPECT_THROWS(Attached.WriteRaw("a", 0), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
    ClMemStream Owned(4, false);
    EXPECT_THROWS(Owned.WriteRaw("a", 1), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
}

// The caller's block

TEST(MemStream, AnAttachedBlockTakesItsSizeAndNotAByteMore) {
    unsigned char acBlock[17] = {};
    acBlock[16] = 0xEE;
    ClMemStream Stream(acBlock, 16, true);
    for (unsigned char i = 0; i < 16; ++i)
        EXPECT_EQ(Stream.WriteAutoSwap(i), 1u);
    EXPECT_THROWS(Stream.WriteAutoSwap('x'), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
    EXPECT_EQ(Stream.Pos(), 16u);
    EXPECT_EQ(acBlock[15], 15);
    EXPECT_EQ(acBlock[16], 0xEE);
}

TEST(MemStream, AWriteThatDoesNotFitAnAttachedBlockLeavesItAlone) {
    unsigned char acBlock[4] = {1, 2, 3, 4};
    ClMemStream Stream(acBlock, 4, true);
    Stream.Seek(2, 0);
    EXPECT_THROWS(Stream.WriteRaw("abc", 3), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
    EXPECT_EQ(Bytes(acBlock, acBlock + 4), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(Stream.Pos(), 2u);
}

TEST(MemStream, AnAttachedBlockIsItsContent) {
    const Bytes aBlock{1, 2, 3};
    ClMemStream Stream(aBlock.data(), aBlock.size());
    EXPECT_EQ(Stream.GetData(), aBlock.data());
    EXPECT_EQ(Stream.Size(), 3u);
}

TEST(MemStream, ANullBlockIsEmpty) {
    ClMemStream Stream(nullptr, 10, true);
    unsigned char nByte = 0;
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.ReadRaw(&nByte, 1), 0u);
    EXPECT_THROWS(Stream.WriteRaw("a", 1), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
}

TEST(MemStream, AttachingKeepsStrictFlagAndByteOrderAndForgetsTheRest) {
    const Bytes aBlock{1, 2, 3};
    ClMemStream Stream;
    Stream.SetThrowOnShort(true);
    Stream.SetBigEndian(false);
    Stream.WriteAutoSwap(7u);
    Stream.Seek(0, 0);
    unsigned int nValue = 0;
    Stream.ReadBits(nValue, 3);
    Stream.Attach(aBlock.data(), aBlock.size());
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.BitPos(), 0u);
    EXPECT_EQ(Stream.Size(), 3u);
    EXPECT_TRUE(Stream.GetThrowOnShort());
    EXPECT_FALSE(Stream.GetBigEndian());
    EXPECT_THROWS(Stream.WriteRaw("a", 1), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
}

TEST(MemStream, AttachingWritesPendingBitsIntoTheFormerBlock) {
    unsigned char nFormer = 0;
    unsigned char nNext = 0x11;
    ClMemStream Stream(&nFormer, 1, true);
    Stream.WriteBits(5, 3);
    Stream.Attach(&nNext, 1, true);
    EXPECT_EQ(nFormer, 0xA0);
    Stream.WriteAutoSwap('x');
    EXPECT_EQ(nNext, 'x');
}

// Open, close

TEST(MemStream, OpenGoesToTheStart) {
    ClMemStream Stream;
    Stream.WriteRaw("ab", 2);
    EXPECT_TRUE(Stream.Open());
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.Size(), 2u);
}

TEST(MemStream, CloseEmptiesTheStream) {
    ClMemStream Stream;
    Stream.WriteRaw("ab", 2);
    Stream.Close();
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.GetData(), nullptr);
    EXPECT_NO_THROW(Stream.Close());
}

TEST(MemStream, CloseLetsGoAlsoWhereBitsCannotBeWritten) {
    unsigned char nByte = 0;
    ClMemStream Stream(&nByte, 1, true);
    Stream.Seek(0, 2);
    Stream.WriteBits(1, 1);
    EXPECT_THROWS(Stream.Close(), ClExStream, -204, "ClMemStream::ExpandData. Stream too small");
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.BitPos(), 0u);
    EXPECT_NO_THROW(Stream.Close());
}

TEST(MemStream, TheDestructorSwallowsBitsThatCannotBeWritten) {
    unsigned char nByte = 0;
    EXPECT_NO_THROW({
        ClMemStream Stream(&nByte, 1, true);
        Stream.Seek(0, 2);
        Stream.WriteBits(1, 1);
    });
    EXPECT_EQ(nByte, 0);
}

// Reading

TEST(MemStream, ReadsAsFarAsTheContentReaches) {
    const Bytes aBlock{1, 2, 3};
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Bytes aRead(5, 9);
    EXPECT_EQ(Stream.ReadRaw(aRead.data(), 2), 2u);
    EXPECT_EQ(Stream.ReadRaw(aRead.data() + 2, 3), 1u);
    EXPECT_EQ(aRead, (Bytes{1, 2, 3, 9, 9}));
    EXPECT_EQ(Stream.ReadRaw(aRead.data(), 5), 0u);
    EXPECT_EQ(Stream.Pos(), 3u);
}

TEST(MemStream, ReadsNothingBehindTheContent) {
    ClMemStream Stream;
    WriteZeros(Stream, 20);
    ASSERT_EQ(Stream.SetReadPos(25), 0u);
    unsigned char nByte = 0;
    EXPECT_EQ(Stream.ReadRaw(&nByte, 1), 0u);
    EXPECT_EQ(Stream.Pos(), 25u);
}

// Growing

TEST(MemStream, GrowsByAFifthAndAFewBytes) {
    ClMemStream Stream;
    Stream.WriteRaw("a", 1); // room for (0 + 1 + 8) * 1.2 = 10.8
    WriteZeros(Stream, 9);
    EXPECT_EQ(Stream.Size(), 10u);
    EXPECT_TRUE(GrowsAtTheNextByte(Stream));
    Stream.WriteRaw("b", 1); // (10 + 1 + 8) * 1.2 = 22.8
    WriteZeros(Stream, 10);
    EXPECT_FALSE(GrowsAtTheNextByte(Stream));
    EXPECT_EQ(Stream.Size(), 22u);
    EXPECT_TRUE(GrowsAtTheNextByte(Stream));
}

TEST(MemStream, AGrowthThatFailsChangesNothing) {
    ClMemStream Stream;
    WriteZeros(Stream, 10);
    const Bytes aMore(100, 1);
    TestSupport::FailEachAllocation([&] {
        EXPECT_EQ(Stream.Size(), 10u);
        EXPECT_EQ(Stream.Pos(), 10u);
        Stream.WriteRaw(aMore.data(), aMore.size());
    });
    EXPECT_EQ(Stream.Size(), 110u);
}

TEST(MemStream, AWriteBeyondAllMemoryIsRefused) {
    ClMemStream Stream;
    const unsigned char nByte = 0;
    EXPECT_THROWS(Stream.WriteRaw(&nByte, std::numeric_limits<unsigned long>::max()), ClExBadAlloc,
                  -102, "Memory allocation failed");
    Stream.WriteRaw("a", 1);
    EXPECT_THROWS(Stream.WriteRaw(&nByte, std::numeric_limits<unsigned long>::max()), ClExBadAlloc,
                  -102, "Memory allocation failed");
    EXPECT_EQ(Content(Stream), (Bytes{'a'}));
}

TEST(MemStream, ExpandingMakesRoomAndNothingElse) {
    ClMemStream Stream;
    Stream.ExpandData(3);
    EXPECT_EQ(Stream.Size(), 0u);
    WriteZeros(Stream, 3);
    EXPECT_TRUE(GrowsAtTheNextByte(Stream));
}

TEST(MemStream, ExpandingByAllOnesDoublesTheRoom) {
    ClMemStream Stream;
    Stream.ExpandData(~0UL);
    EXPECT_TRUE(GrowsAtTheNextByte(Stream)); // twice nothing
    Stream.ExpandData(3);
    Stream.ExpandData(~0UL);
    WriteZeros(Stream, 5);
    EXPECT_FALSE(GrowsAtTheNextByte(Stream));
    EXPECT_TRUE(GrowsAtTheNextByte(Stream));
}

TEST(MemStream, ExpandingNeverShrinks) {
    ClMemStream Stream;
    Stream.ExpandData(8);
    Stream.ExpandData(4);
    Stream.ExpandData(8);
    WriteZeros(Stream, 7);
    EXPECT_FALSE(GrowsAtTheNextByte(Stream));
    EXPECT_TRUE(GrowsAtTheNextByte(Stream));
}

TEST(MemStream, AnAttachedBlockCannotBeExpanded) {
    unsigned char acBlock[4];
    ClMemStream Stream(acBlock, 4, true);
    EXPECT_THROWS(Stream.ExpandData(0), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
}

// Positions

TEST(MemStream, SeeksFromTheStartThePositionAndTheEnd) {
    const Bytes aBlock{1, 2, 3, 4, 5};
    ClMemStream Stream(aBlock.data(), aBlock.size());
    EXPECT_EQ(Stream.Seek(2, 0), 0u);
    EXPECT_EQ(Stream.Pos(), 2u);
    EXPECT_EQ(Stream.Seek(2, 1), 0u);
    EXPECT_EQ(Stream.Pos(), 4u);
    EXPECT_EQ(Stream.Seek(-5, 2), 0u);
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.Seek(0, 2), 0u);
    EXPECT_EQ(Stream.Pos(), 5u);
}

TEST(MemStream, RefusesBadTargetsAndStaysWhereItIs) {
    constexpr long nMost = std::numeric_limits<long>::max();
    constexpr long nLeast = std::numeric_limits<long>::min();
    ClMemStream Stream;
    WriteZeros(Stream, 5);
    Stream.Seek(2, 0);
    for (const int nWhence : {-1, 3, 1000})
        EXPECT_EQ(Stream.Seek(0, nWhence), cnRefused);
    EXPECT_EQ(Stream.Seek(-1, 0), cnRefused);
    EXPECT_EQ(Stream.Seek(-3, 1), cnRefused);
    EXPECT_EQ(Stream.Seek(-6, 2), cnRefused);
    EXPECT_EQ(Stream.Seek(nLeast, 1), cnRefused);
    EXPECT_EQ(Stream.Seek(nMost, 1), cnRefused);
    EXPECT_EQ(Stream.Seek(nMost, 2), cnRefused);
    EXPECT_EQ(Stream.SetReadPos(~0UL), cnRefused);
    EXPECT_EQ(Stream.Pos(), 2u);
}

TEST(MemStream, AReadOnlyStreamRefusesToGoBehindItsEnd) {
    const Bytes aBlock{1, 2, 3};
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.SetReadPos(1);
    EXPECT_EQ(Stream.SetReadPos(4), cnRefused);
    EXPECT_EQ(Stream.Pos(), 1u);
    EXPECT_EQ(Stream.SetReadPos(3), 0u);
    EXPECT_EQ(Stream.Pos(), 3u);
}

TEST(MemStream, AnAttachedWritableStreamCannotGoBehindItsEndEither) {
    unsigned char acBlock[3] = {1, 2, 3};
    ClMemStream Stream(acBlock, 3, true);
    EXPECT_THROWS(Stream.SetReadPos(4), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
    EXPECT_EQ(Stream.SetReadPos(~0UL), cnRefused); // no position at all
    EXPECT_EQ(Stream.Pos(), 0u);
}

TEST(MemStream, GoesBehindItsContentOverZeros) {
    ClMemStream Stream;
    Stream.WriteRaw("ab", 2);
    EXPECT_EQ(Stream.SetReadPos(6), 0u);
    EXPECT_EQ(Stream.Pos(), 6u);
    EXPECT_EQ(Stream.Size(), 2u);
    Stream.WriteRaw("c", 1);
    EXPECT_EQ(Content(Stream), (Bytes{'a', 'b', 0, 0, 0, 0, 'c'}));
}

TEST(MemStream, TheGapBehindTheContentStaysZeroWhenTheBufferGrows) {
    ClMemStream Stream;
    Stream.WriteRaw("ab", 2);
    Stream.SetReadPos(9);
    const Bytes aMore(1000, 7);
    Stream.WriteRaw(aMore.data(), aMore.size());
    Bytes aExpected{'a', 'b', 0, 0, 0, 0, 0, 0, 0};
    aExpected.insert(aExpected.end(), aMore.begin(), aMore.end());
    EXPECT_EQ(Content(Stream), aExpected);
}

TEST(MemStream, AnEmptyStreamRefusesTargetsThatAFifthDoesNotReach) {
    for (unsigned long nPos = 1; nPos <= 4; ++nPos) { // 1.2 * 4 = 4.8, room for 4
        ClMemStream Stream;
        EXPECT_EQ(Stream.SetReadPos(nPos), cnRefused);
        EXPECT_EQ(Stream.Pos(), 0u);
    }
    ClMemStream Stream;
    EXPECT_EQ(Stream.SetReadPos(5), 0u); // room for 6
    EXPECT_EQ(Stream.SetReadPos(0), 0u);
}

TEST(MemStream, AnOwnReadOnlyBufferDoesNotGrowByGoingBehindIt) {
    ClMemStream Stream(10, false);
    EXPECT_EQ(Stream.SetReadPos(11), cnRefused);
    EXPECT_EQ(Stream.SetReadPos(10), 0u);
}

TEST(MemStream, ATargetBeyondAllMemoryIsOutOfMemory) {
    ClMemStream Stream;
    EXPECT_THROWS(Stream.SetReadPos(std::numeric_limits<long>::max()), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_EQ(Stream.Pos(), 0u);
}

// Against a plain list of bytes

TEST(MemStream, RandomWritesReadsAndSeeksDoWhatAListOfBytesDoes) {
    std::mt19937 Random(3);
    ClMemStream Stream;
    Bytes aBytes;
    std::size_t nPos = 0;
    for (int i = 0; i < 2000; ++i) {
        Bytes aBlock(Random() % 40, static_cast<unsigned char>(i));
        if (Random() % 3 == 0) {
            nPos = Random() % (aBytes.size() + 1);
            ASSERT_EQ(Stream.Seek(static_cast<long>(nPos), 0), 0u);
        } else if (Random() % 2 == 0) {
            Stream.WriteRaw(aBlock.data(), aBlock.size());
            aBytes.resize(std::max(aBytes.size(), nPos + aBlock.size()));
            std::copy(aBlock.begin(), aBlock.end(), aBytes.begin() + static_cast<long>(nPos));
            nPos += aBlock.size();
        } else {
            const std::size_t nDone = std::min(aBlock.size(), aBytes.size() - nPos);
            ASSERT_EQ(Stream.ReadRaw(aBlock.data(), aBlock.size()), nDone);
            ASSERT_TRUE(std::equal(aBlock.begin(), aBlock.begin() + static_cast<long>(nDone),
                                   aBytes.begin() + static_cast<long>(nPos)));
            nPos += nDone;
        }
        ASSERT_EQ(Stream.Pos(), nPos);
    }
    EXPECT_EQ(Content(Stream), aBytes);
}
