#include "Tools/Stream.h"

#include "support/AllocationFailures.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

using TestSupport::Bytes;
using TestSupport::BytesOf;
using TestSupport::ClFailAllocation;
using TestSupport::ClPipeStream;
using TestSupport::Content;

namespace {

/// A text on the heap, as its owner would hold it.
char* OwnText(const char* szText) {
    char* szOwn = new char[std::strlen(szText) + 1];
    return std::strcpy(szOwn, szText);
}

/// What ReadString() leaves at a pointer that held a text before.
std::unique_ptr<char[]> ReadText(ClStream& rStream) {
    char* szText = OwnText("old");
    rStream.ReadString(&szText);
    return std::unique_ptr<char[]>(szText);
}

/// A record that claims `nLength` bytes and holds `Text`.
Bytes Claim(unsigned int nLength, const std::string& Text) {
    ClMemStream Stream;
    Stream.WriteAutoSwap(nLength);
    Stream.Write(Text.data(), Text.size());
    return Content(Stream);
}

} // namespace

TEST(StreamText, WritesTheLengthWithTheTerminatorAndTheBytes) {
    ClMemStream Stream;
    Stream.WriteString("ab");
    EXPECT_EQ(Content(Stream), (Bytes{0, 0, 0, 3, 'a', 'b', 0}));
}

TEST(StreamText, TheLengthIsInTheWriteByteOrder) {
    ClMemStream Stream;
    Stream.SetBigEndian4Write(false);
    Stream.WriteString("ab");
    EXPECT_EQ(Content(Stream), (Bytes{3, 0, 0, 0, 'a', 'b', 0}));
}

TEST(StreamText, ANullTextIsWrittenInFiveBytesAndReadAsAnEmptyOne) {
    ClMemStream Stream;
    Stream.WriteString(nullptr);
    EXPECT_EQ(Content(Stream), (Bytes{0, 0, 0, 1, 0}));
    Stream.Seek(0, 0);
    const auto pText = ReadText(Stream);
    ASSERT_NE(pText, nullptr);
    EXPECT_STREQ(pText.get(), "");
}

TEST(StreamText, RandomTextsSurvive) {
    std::mt19937 Random(11);
    ClMemStream Stream;
    std::vector<std::string> aTexts(50);
    for (std::string& Text : aTexts) {
        Text.resize(Random() % 300);
        for (char& c : Text)
            c = static_cast<char>(1 + Random() % 255);
        Stream.WriteString(Text.c_str());
    }
    Stream.Seek(0, 0);
    for (const std::string& Text : aTexts)
        EXPECT_EQ(ReadText(Stream).get(), Text);
    EXPECT_EQ(Stream.Pos(), Stream.Size());
}

TEST(StreamText, AStrictStreamThrowsWhereATextDoesNotFit) {
    ClPipeStream Stream({}, 6);
    Stream.SetThrowOnShort(true);
    EXPECT_THROWS(Stream.WriteString("abc"), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

// Texts that the stream allocates

TEST(StreamText, LengthZeroLeavesNoText) {
    const Bytes aBytes = Claim(0, "rest");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    EXPECT_EQ(ReadText(Stream), nullptr);
    EXPECT_EQ(Stream.Pos(), 4u);
}

TEST(StreamText, TheLastByteOfATextIsZeroWhateverWasStored) {
    const Bytes aBytes = Claim(3, "abc");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    EXPECT_STREQ(ReadText(Stream).get(), "ab");
    EXPECT_EQ(Stream.Pos(), 7u);
}

TEST(StreamText, ALengthBeyondTheStreamIsShortBeforeAnythingIsAllocated) {
    const Bytes aBytes = Claim(0xFFFFFFFF, "abc");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    char* szText = OwnText("old");
    {
        ClFailAllocation Fail(0);
        Stream.ReadString(&szText);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
    EXPECT_EQ(szText, nullptr);
    EXPECT_EQ(Stream.Pos(), 4u);
}

TEST(StreamText, ALengthBeyondAStrictStreamThrowsAndLeavesNoText) {
    const Bytes aBytes = Claim(4, "abc");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.SetThrowOnShort(true);
    char* szText = OwnText("old");
    EXPECT_THROWS(Stream.ReadString(&szText), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(szText, nullptr);
}

TEST(StreamText, AMissingLengthLeavesNoText) {
    ClMemStream Stream;
    EXPECT_EQ(ReadText(Stream), nullptr);
    Stream.SetThrowOnShort(true);
    char* szText = OwnText("old");
    EXPECT_THROWS(Stream.ReadString(&szText), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(szText, nullptr);
}

TEST(StreamText, PendingBitsLeaveNoText) {
    ClMemStream Stream;
    Stream.WriteBits(1, 1);
    char* szText = OwnText("old");
    EXPECT_THROWS(Stream.ReadString(&szText), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
    EXPECT_EQ(szText, nullptr);
}

TEST(StreamText, MissingMemoryLeavesNoTextAndLeaksNone) {
    ClMemStream Stream;
    Stream.WriteString("a text of some length");
    TestSupport::FailEachAllocation([&Stream] {
        Stream.Seek(0, 0);
        char* szText = nullptr;
        try {
            Stream.ReadString(&szText);
        } catch (...) {
            EXPECT_EQ(szText, nullptr);
            throw;
        }
        EXPECT_STREQ(szText, "a text of some length");
        delete[] szText;
    });
}

TEST(StreamText, AStreamThatCannotSeekIsReadAsFarAsItReaches) {
    ClPipeStream Stream(Claim(0xFFFFFFFF, "abc"));
    EXPECT_STREQ(ReadText(Stream).get(), "abc");
}

TEST(StreamText, AStrictStreamThatCannotSeekThrowsAtItsEnd) {
    ClPipeStream Stream(Claim(0xFFFFFFFF, std::string(10000, 'x')));
    Stream.SetThrowOnShort(true);
    char* szText = nullptr;
    EXPECT_THROWS(Stream.ReadString(&szText), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(szText, nullptr);
}

TEST(StreamText, LongTextsComeFromAStreamThatCannotSeek) {
    for (const std::size_t nLength : {4094, 4095, 4096, 4097, 8191, 8192, 100000}) {
        const std::string Text(nLength, 'x');
        ClPipeStream Stream;
        Stream.WriteString(Text.c_str());
        Stream.WriteString(Text.c_str());
        Stream.m_aIn = Stream.m_aOut;
        EXPECT_EQ(ReadText(Stream).get(), Text);
        EXPECT_EQ(Stream.m_nTaken, Stream.m_aIn.size() / 2);
        EXPECT_EQ(ReadText(Stream).get(), Text);
    }
}

TEST(StreamText, MissingMemoryForALongTextLeaksNothing) {
    ClPipeStream Stream(Claim(20001, std::string(20000, 'x') + '\0'));
    TestSupport::FailEachAllocation([&Stream] {
        Stream.m_nTaken = 0;
        char* szText = nullptr;
        Stream.ReadString(&szText);
        EXPECT_EQ(std::strlen(szText), 20000u);
        delete[] szText;
    });
}

// Texts in the caller's buffer

TEST(StreamText, ABufferTakesWhatFitsAndTheStreamStandsBehindTheText) {
    ClMemStream Stream;
    Stream.WriteString("letters");
    Stream.WriteAutoSwap(static_cast<unsigned char>(42));
    Stream.Seek(0, 0);
    char szText[4];
    Stream.ReadString(szText, 4);
    EXPECT_STREQ(szText, "let");
    unsigned char nNext = 0;
    Stream.ReadAutoSwap(nNext);
    EXPECT_EQ(nNext, 42);
}

TEST(StreamText, ABufferIsZeroBehindTheText) {
    ClMemStream Stream;
    Stream.WriteString("ab");
    Stream.Seek(0, 0);
    Bytes aBuffer(6, 0xEE);
    Stream.ReadString(reinterpret_cast<char*>(aBuffer.data()), 6);
    EXPECT_EQ(aBuffer, (Bytes{'a', 'b', 0, 0, 0, 0}));
}

TEST(StreamText, ABufferIsTerminatedWhereTheTextIsNot) {
    const Bytes aBytes = Claim(4, "abcd");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    char szText[4];
    Stream.ReadString(szText, 4);
    EXPECT_STREQ(szText, "abc");
}

TEST(StreamText, ABufferOfSizeZeroDropsTheText) {
    ClMemStream Stream;
    Stream.WriteString("letters");
    Stream.Seek(0, 0);
    Stream.ReadString(nullptr, 0);
    EXPECT_EQ(Stream.Pos(), Stream.Size());
}

TEST(StreamText, ALongTextIsDroppedWhole) {
    ClMemStream Stream;
    Stream.WriteString(std::string(1000, 'x').c_str());
    Stream.Seek(0, 0);
    char szText[2];
    Stream.ReadString(szText, 2);
    EXPECT_STREQ(szText, "x");
    EXPECT_EQ(Stream.Pos(), Stream.Size());
}

TEST(StreamText, ATextThatEndsEarlyFillsTheBufferAsFarAsItGoes) {
    const Bytes aBytes = Claim(0xFFFFFFFF, "ab");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Bytes aBuffer(4, 0xEE);
    Stream.ReadString(reinterpret_cast<char*>(aBuffer.data()), 4);
    EXPECT_EQ(aBuffer, (Bytes{'a', 'b', 0, 0}));
}

TEST(StreamText, AStrictStreamReportsATextThatEndsInTheBuffer) {
    const Bytes aBytes = Claim(5, "ab");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.SetThrowOnShort(true);
    Bytes aBuffer(4, 0xEE);
    EXPECT_THROWS(Stream.ReadString(reinterpret_cast<char*>(aBuffer.data()), 4),
                  ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
    EXPECT_EQ(aBuffer, (Bytes{'a', 'b', 0, 0}));
}

TEST(StreamText, AStrictStreamReportsATextThatEndsInWhatIsDropped) {
    const Bytes aBytes = Claim(5, "abcd");
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.SetThrowOnShort(true);
    char szText[3];
    EXPECT_THROWS(Stream.ReadString(szText, 3), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_STREQ(szText, "ab");
}

TEST(StreamText, ABufferIsEmptyWhereTheLengthIsMissing) {
    ClMemStream Stream;
    Stream.SetThrowOnShort(true);
    char szText[4] = "abc";
    EXPECT_THROWS(Stream.ReadString(szText, 4), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_STREQ(szText, "");
}
