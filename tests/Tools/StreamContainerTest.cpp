#include "Tools/StreamContainer.h"

#include "support/AllocationFailures.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

using TestSupport::ClPipeStream;
using TestSupport::Content;
using List = std::vector<unsigned char>;
using Array = TpArrayStatic<unsigned char>;

namespace {

List ListOf(const List& aBytes) {
    return aBytes;
}
List ListOf(const Array& aBytes) {
    return aBytes.Entries() == 0 ? List() : List(aBytes.Data(), aBytes.Data() + aBytes.Entries());
}

void Fill(List& aBytes, const List& aContent) {
    aBytes = aContent;
}
void Fill(Array& aBytes, const List& aContent) {
    aBytes.New(aContent.size());
    std::copy(aContent.begin(), aContent.end(), aBytes.Data());
}

/// A stream that claims to be endless.
class ClEndlessStream : public ClMemStream {
public:
    unsigned long Size() const override { return ~0UL; }
};

template <class T>
class StreamContainer : public testing::Test {};

using Containers = testing::Types<List, Array>;
TYPED_TEST_SUITE(StreamContainer, Containers);

} // namespace

TYPED_TEST(StreamContainer, StoresItsBytesAndNothingElse) {
    TypeParam aBytes;
    Fill(aBytes, {1, 2, 3});
    ClMemStream Stream;
    IO::Store<TypeParam>(aBytes, Stream);
    EXPECT_EQ(Content(Stream), (List{1, 2, 3}));
}

TYPED_TEST(StreamContainer, AnEmptyOneWritesNothing) {
    ClPipeStream Stream;
    IO::Store<TypeParam>(TypeParam(), Stream);
    EXPECT_EQ(Stream.m_nWrites, 0);
}

TYPED_TEST(StreamContainer, LoadsTheWholeStream) {
    const List aContent{1, 2, 3, 4};
    ClMemStream Stream(aContent.data(), aContent.size());
    TypeParam aBytes;
    Fill(aBytes, {9});
    IO::Load<TypeParam>(aBytes, Stream);
    EXPECT_EQ(ListOf(aBytes), aContent);
    EXPECT_EQ(Stream.Pos(), 4u);
}

TYPED_TEST(StreamContainer, LoadsFromThePositionAndKeepsZerosBehind) {
    const List aContent{1, 2, 3, 4};
    ClMemStream Stream(aContent.data(), aContent.size());
    Stream.Seek(3, 0);
    TypeParam aBytes;
    Fill(aBytes, {9, 9, 9, 9});
    IO::Load<TypeParam>(aBytes, Stream);
    EXPECT_EQ(ListOf(aBytes), (List{4, 0, 0, 0}));
}

TYPED_TEST(StreamContainer, LoadsNothingFromAnEmptyStream) {
    ClMemStream Stream;
    TypeParam aBytes;
    Fill(aBytes, {9});
    IO::Load<TypeParam>(aBytes, Stream);
    EXPECT_EQ(ListOf(aBytes), List());
}

TYPED_TEST(StreamContainer, ShortTransfersThrowOnAStrictStream) {
    const List aContent{1, 2, 3, 4};
    ClMemStream Stream(aContent.data(), aContent.size());
    Stream.SetThrowOnShort(true);
    Stream.Seek(1, 0);
    TypeParam aBytes;
    EXPECT_THROWS(IO::Load<TypeParam>(aBytes, Stream), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    ClPipeStream Full({}, 3);
    Full.SetThrowOnShort(true);
    EXPECT_THROWS(IO::Store<TypeParam>(aBytes, Full), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

TYPED_TEST(StreamContainer, RefusesPendingBits) {
    ClMemStream Stream;
    Stream.WriteAutoSwap(1);
    Stream.WriteBits(1, 1);
    TypeParam aBytes;
    EXPECT_THROWS(IO::Load<TypeParam>(aBytes, Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
    EXPECT_THROWS(IO::Store<TypeParam>(aBytes, Stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}

TYPED_TEST(StreamContainer, MissingMemoryIsTheLibrarysOwnException) {
    const List aContent{1, 2, 3, 4};
    ClMemStream Stream(aContent.data(), aContent.size());
    TestSupport::FailEachAllocation([&Stream] {
        Stream.Seek(0, 0);
        TypeParam aBytes;
        IO::Load<TypeParam>(aBytes, Stream);
    });
}

TYPED_TEST(StreamContainer, AStreamBeyondAllMemoryIsOutOfMemory) {
    ClEndlessStream Stream;
    TypeParam aBytes;
    EXPECT_THROWS(IO::Load<TypeParam>(aBytes, Stream), ClExBadAlloc, -102,
                  "Memory allocation failed");
}
