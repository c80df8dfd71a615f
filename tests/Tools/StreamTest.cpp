#include "Tools/Stream.h"

#include "support/TestStreams.h"
#include "support/Throws.h"
#include "support/VirtualSlots.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

using TestSupport::Bytes;
using TestSupport::ClPipeStream;
using TestSupport::Content;
using TestSupport::SlotOf;

// Numbers

TEST(Stream, WritesNumbersBigEndianByDefault) {
    ClMemStream Stream;
    EXPECT_EQ(Stream.WriteAutoSwap(0x01020304u), 4u);
    EXPECT_EQ(Content(Stream), (Bytes{1, 2, 3, 4}));
}

TEST(Stream, WritesNumbersLittleEndianOnRequest) {
    ClMemStream Stream;
    Stream.SetBigEndian4Write(false);
    Stream.WriteAutoSwap(0x01020304u);
    EXPECT_EQ(Content(Stream), (Bytes{4, 3, 2, 1}));
}

TEST(Stream, ReadsNumbersInTheOrderThatIsSetForReading) {
    const Bytes aBytes{1, 2, 3, 4, 1, 2, 3, 4};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    std::uint32_t nBig = 0;
    std::uint32_t nLittle = 0;
    EXPECT_EQ(Stream.ReadAutoSwap(nBig), 4u);
    Stream.SetBigEndian4Read(false);
    EXPECT_EQ(Stream.ReadAutoSwap(nLittle), 4u);
    EXPECT_EQ(nBig, 0x01020304u);
    EXPECT_EQ(nLittle, 0x04030201u);
}

TEST(Stream, WritesFloatingPointNumbersAsTheirBits) {
    ClMemStream Stream;
    Stream.WriteAutoSwap(1.0f);
    Stream.WriteAutoSwap(-2.0);
    EXPECT_EQ(Content(Stream), (Bytes{0x3F, 0x80, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0}));
}

namespace {

/// Bytes of the bit pattern in the order asked for.
Bytes NaiveBytes(std::uint64_t nBits, std::size_t nSize, bool bBigEndian) {
    Bytes aBytes;
    for (std::size_t i = 0; i < nSize; ++i) {
        const std::size_t nByte = bBigEndian ? nSize - 1 - i : i;
        aBytes.push_back(static_cast<unsigned char>(nBits >> (8 * nByte)));
    }
    return aBytes;
}

/// Random bits as a number of type T, written and read in both orders.
template <class T>
void CheckRandomNumbers() {
    std::mt19937_64 Random(sizeof(T));
    for (int i = 0; i < 200; ++i) {
        const std::uint64_t nBits = Random();
        const bool bBigEndian = (i & 1) != 0;
        T Written;
        std::memcpy(&Written, &nBits, sizeof Written); // the low bytes, as this machine has them
        ClMemStream Stream;
        Stream.SetBigEndian(bBigEndian);
        ASSERT_EQ(Stream.WriteAutoSwap(Written), sizeof(T));
        ASSERT_EQ(Content(Stream), NaiveBytes(nBits, sizeof(T), bBigEndian));
        Stream.Seek(0, 0);
        T Read{};
        ASSERT_EQ(Stream.ReadAutoSwap(Read), sizeof(T));
        ASSERT_EQ(std::memcmp(&Read, &Written, sizeof(T)), 0);
    }
}

} // namespace

TEST(Stream, RandomNumbersOfEveryTypeSurviveBothByteOrders) {
    CheckRandomNumbers<char>();
    CheckRandomNumbers<signed char>();
    CheckRandomNumbers<unsigned char>();
    CheckRandomNumbers<std::int16_t>();
    CheckRandomNumbers<std::uint16_t>();
    CheckRandomNumbers<std::int32_t>();
    CheckRandomNumbers<std::uint32_t>();
    CheckRandomNumbers<long>();
    CheckRandomNumbers<unsigned long>();
    CheckRandomNumbers<long long>();
    CheckRandomNumbers<float>();
    CheckRandomNumbers<double>();
}

TEST(Stream, CountsMissingBytesOfANumberAsZeroBeforeSwapping) {
    const Bytes aBytes{0x12, 0x34};
    for (const bool bBigEndian : {true, false}) {
        ClMemStream Stream(aBytes.data(), aBytes.size());
        Stream.SetBigEndian(bBigEndian);
        std::uint32_t nValue = 0xFFFFFFFF;
        EXPECT_EQ(Stream.ReadAutoSwap(nValue), 2u);
        EXPECT_EQ(nValue, bBigEndian ? 0x12340000u : 0x00003412u);
    }
}

// The strict flag

TEST(Stream, IsNotStrictAtFirstAndAnswersTheFormerSetting) {
    ClMemStream Stream;
    EXPECT_FALSE(Stream.GetThrowOnShort());
    EXPECT_FALSE(Stream.SetThrowOnShort(true));
    EXPECT_TRUE(Stream.GetThrowOnShort());
    EXPECT_TRUE(Stream.SetThrowOnShort(false));
    EXPECT_FALSE(Stream.GetThrowOnShort());
}

TEST(Stream, AStrictStreamThrowsOnAShortNumberAndLeavesTheValue) {
    const Bytes aBytes{1, 2, 3};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.SetThrowOnShort(true);
    std::uint32_t nValue = 77;
    EXPECT_THROWS(Stream.ReadAutoSwap(nValue), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(nValue, 77u);
}

TEST(Stream, AStrictStreamThrowsOnAShortWriteToo) {
    ClPipeStream Stream({}, 3);
    EXPECT_EQ(Stream.WriteAutoSwap(0x0102u), 3u);
    ClPipeStream Strict({}, 3);
    Strict.SetThrowOnShort(true);
    EXPECT_THROWS(Strict.WriteAutoSwap(0x0102u), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

TEST(Stream, TransfersBytesAsTheyAreAndAnswersHowMany) {
    ClMemStream Stream;
    EXPECT_EQ(Stream.Write("abc", 3), 3u);
    Stream.Seek(0, 0);
    char acText[8] = {};
    EXPECT_EQ(Stream.Read(acText, 8), 3u);
    EXPECT_STREQ(acText, "abc");
}

TEST(Stream, AStrictStreamThrowsOnShortTransfersOfBytes) {
    ClPipeStream Stream({1}, 1);
    Stream.SetThrowOnShort(true);
    char acText[2];
    EXPECT_THROWS(Stream.Read(acText, 2), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_THROWS(Stream.Write("ab", 2), ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
}

// Byte order

TEST(Stream, EverySetterOfTheByteOrderAnswersTheFormerSetting) {
    ClMemStream Stream;
    EXPECT_TRUE(Stream.SetBigEndian4Read(false));
    EXPECT_FALSE(Stream.SetBigEndian4Read(true));
    EXPECT_TRUE(Stream.SetBigEndian4Write(false));
    EXPECT_FALSE(Stream.SetBigEndian4Write(true));
    EXPECT_TRUE(Stream.SetBigEndian(false));
    EXPECT_FALSE(Stream.SetBigEndian(true));
}

TEST(Stream, TheSetterOfBothOrdersAnswersTheWriteOrder) {
    ClMemStream Stream;
    Stream.SetBigEndian4Write(false);
    EXPECT_FALSE(Stream.SetBigEndian(true));
    EXPECT_TRUE(Stream.GetBigEndian4Write());
}

TEST(Stream, TheByteOrderAskedForIsThatOfReading) {
    ClMemStream Stream;
    EXPECT_TRUE(Stream.GetBigEndian());
    Stream.SetBigEndian4Read(false);
    EXPECT_FALSE(Stream.GetBigEndian());
    EXPECT_FALSE(Stream.GetBigEndian4Read());
    EXPECT_TRUE(Stream.GetBigEndian4Write());
}

TEST(Stream, ALittleEndianMachineIsNotInNetorder) {
    const std::uint16_t nOne = 1;
    unsigned char nFirst = 0;
    std::memcpy(&nFirst, &nOne, 1);
    EXPECT_EQ(ClStream::IsNotNetorder(), nFirst == 1);
}

// Arrays

TEST(Stream, AnArrayOfOneElementIsReadUnswappedInAnyByteOrder) {
    const Bytes aBytes{1, 2, 3, 4};
    for (const bool bBigEndian : {true, false}) {
        ClMemStream Stream(aBytes.data(), aBytes.size());
        Stream.SetBigEndian(bBigEndian);
        unsigned char acRead[4] = {};
        EXPECT_EQ(Stream.ReadNumericArray(acRead, 1, 4), 4u);
        EXPECT_EQ(Bytes(acRead, acRead + 4), aBytes);
    }
}

TEST(Stream, AnArrayOfTwoElementsIsSwappedByTheWriteFlag) {
    const Bytes aBytes{1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes aSwapped{4, 3, 2, 1, 8, 7, 6, 5};
    for (const bool bRead : {true, false}) {
        for (const bool bWrite : {true, false}) {
            ClMemStream Stream(aBytes.data(), aBytes.size());
            Stream.SetBigEndian4Read(bRead);
            Stream.SetBigEndian4Write(bWrite);
            Bytes aRead(8);
            EXPECT_EQ(Stream.ReadNumericArray(aRead.data(), 2, 4), 8u);
            EXPECT_EQ(aRead, bWrite ? aSwapped : aBytes);
        }
    }
}

TEST(Stream, OnlyWholeElementsOfAShortArrayAreSwapped) {
    const Bytes aBytes{1, 2, 3, 4, 5, 6, 7};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Bytes aRead(8, 9);
    EXPECT_EQ(Stream.ReadNumericArray(aRead.data(), 4, 2), 7u);
    EXPECT_EQ(aRead, (Bytes{2, 1, 4, 3, 6, 5, 7, 9}));
}

TEST(Stream, AShortArrayThrowsOnAStrictStream) {
    const Bytes aBytes{1, 2, 3, 4, 5, 6, 7};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.SetThrowOnShort(true);
    Bytes aRead(8);
    EXPECT_THROWS(Stream.ReadNumericArray(aRead.data(), 4, 2), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    ClPipeStream Full({}, 7);
    Full.SetThrowOnShort(true);
    EXPECT_THROWS(Full.WriteNumericArray(aRead.data(), 4, 2), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

TEST(Stream, ArraysOfBytesAreOneTransferWithoutTheTestForShortness) {
    ClPipeStream Stream({1, 2, 3}, 3);
    Stream.SetThrowOnShort(true);
    Bytes aBytes(5);
    EXPECT_EQ(Stream.ReadNumericArray(aBytes.data(), 5, 1), 3u);
    EXPECT_EQ(aBytes, (Bytes{1, 2, 3, 0, 0}));
    EXPECT_EQ(Stream.WriteNumericArray(aBytes.data(), 5, 1), 3u);
    EXPECT_EQ(Stream.m_nReads, 1);
    EXPECT_EQ(Stream.m_nWrites, 1);
}

TEST(Stream, ArraysAreReadInOneTransferAndWrittenElementByElement) {
    ClPipeStream Stream(Bytes(24, 1));
    Bytes aBytes(24);
    EXPECT_EQ(Stream.ReadNumericArray(aBytes.data(), 3, 8), 24u);
    EXPECT_EQ(Stream.WriteNumericArray(aBytes.data(), 3, 8), 24u);
    EXPECT_EQ(Stream.m_nReads, 1);
    EXPECT_EQ(Stream.m_nWrites, 3);
}

TEST(Stream, ElementsOfOtherSizesAreNotTransferred) {
    for (const unsigned long nElementSize : {0ul, 3ul, 5ul, 6ul, 7ul, 9ul, 16ul, 31ul}) {
        ClPipeStream Stream(Bytes(64, 1));
        Stream.SetThrowOnShort(true);
        Bytes aBytes(64);
        EXPECT_EQ(Stream.ReadNumericArray(aBytes.data(), 2, nElementSize), 0u);
        EXPECT_EQ(Stream.WriteNumericArray(aBytes.data(), 2, nElementSize), 0u);
        EXPECT_EQ(Stream.m_nReads + Stream.m_nWrites, 0);
    }
}

TEST(Stream, AnArrayWhoseBytesCannotBeCountedIsShort) {
    const unsigned long nCount = std::numeric_limits<unsigned long>::max() / 4 + 1;
    ClPipeStream Stream(Bytes(16, 1));
    unsigned char acBytes[16];
    EXPECT_EQ(Stream.ReadNumericArray(acBytes, nCount, 4), 0u);
    EXPECT_EQ(Stream.WriteNumericArray(acBytes, nCount, 4), 0u);
    EXPECT_EQ(Stream.m_nReads + Stream.m_nWrites, 0);
    Stream.SetThrowOnShort(true);
    EXPECT_THROWS(Stream.ReadNumericArray(acBytes, nCount, 4), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_THROWS(Stream.WriteNumericArray(acBytes, nCount, 4), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

TEST(Stream, AnEmptyArrayNeedsNoMemory) {
    ClMemStream Stream;
    EXPECT_EQ(Stream.WriteNumericArray(nullptr, 0, 4), 0u);
    EXPECT_EQ(Stream.WriteNumericArray(nullptr, 0, 1), 0u);
    EXPECT_EQ(Stream.ReadNumericArray(nullptr, 0, 4), 0u);
    EXPECT_EQ(Stream.Size(), 0u);
}

TEST(Stream, ArraysOfEverySizeSurviveBothByteOrders) {
    std::mt19937 Random(7);
    for (const unsigned long nSize : {1ul, 2ul, 4ul, 8ul}) {
        for (const bool bBigEndian : {true, false}) {
            Bytes aWritten(nSize * 5);
            for (unsigned char& nByte : aWritten)
                nByte = static_cast<unsigned char>(Random());
            ClMemStream Stream;
            Stream.SetBigEndian(bBigEndian);
            EXPECT_EQ(Stream.WriteNumericArray(aWritten.data(), 5, nSize), nSize * 5);
            Bytes aExpected = aWritten;
            for (std::size_t i = 0; bBigEndian && i < aExpected.size(); i += nSize)
                std::reverse(&aExpected[i], &aExpected[i] + nSize);
            EXPECT_EQ(Content(Stream), aExpected);
            Stream.Seek(0, 0);
            Bytes aRead(nSize * 5);
            EXPECT_EQ(Stream.ReadNumericArray(aRead.data(), 5, nSize), nSize * 5);
            EXPECT_EQ(aRead, aWritten);
        }
    }
}

// Alignment

TEST(Stream, EveryByteOperationRefusesPendingBits) {
    const char* szWords = "the last bit I/O was finish with out bitflush.";
    ClMemStream Stream;
    Stream.WriteBits(5, 3);
    unsigned int nNumber = 0;
    char acText[4] = "abc";
    char* szText = nullptr;
    EXPECT_THROWS(Stream.WriteAutoSwap(1u), ClException, -39, szWords);
    EXPECT_THROWS(Stream.ReadAutoSwap(nNumber), ClException, -39, szWords);
    EXPECT_THROWS(Stream.Write(acText, 4), ClException, -39, szWords);
    EXPECT_THROWS(Stream.Read(acText, 4), ClException, -39, szWords);
    EXPECT_THROWS(Stream.WriteNumericArray(acText, 2, 2), ClException, -39, szWords);
    EXPECT_THROWS(Stream.ReadNumericArray(acText, 2, 2), ClException, -39, szWords);
    EXPECT_THROWS(Stream.WriteNumericArray(acText, 4, 1), ClException, -39, szWords);
    EXPECT_THROWS(Stream.ReadNumericArray(acText, 4, 1), ClException, -39, szWords);
    EXPECT_THROWS(Stream.WriteString("a"), ClException, -39, szWords);
    EXPECT_THROWS(Stream.ReadString(&szText), ClException, -39, szWords);
    EXPECT_THROWS(Stream.ReadString(acText, 4), ClException, -39, szWords);
    EXPECT_THROWS(Stream.CheckBitPosByteAlignment(), ClException, -39, szWords);
    Stream.BitFlush();
    EXPECT_EQ(Stream.WriteAutoSwap(1u), 4u);
}

TEST(Stream, TheRefusalOfPendingBitsTellsWhereItComesFrom) {
    ClMemStream Stream;
    Stream.WriteBits(1, 1);
    try {
        Stream.CheckBitPosByteAlignment();
        FAIL() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/Stream");
        EXPECT_GT(e.Line(), 0);
    }
}

// The layout that callers are compiled against

TEST(Stream, KeepsItsVirtualOperationsInTheirPlaces) {
    EXPECT_EQ(SlotOf(&ClStream::Close), 2); // behind the two entries of the destructor
    EXPECT_EQ(SlotOf(&ClStream::Pos), 3);
    EXPECT_EQ(SlotOf(&ClStream::Size), 4);
    EXPECT_EQ(SlotOf(&ClStream::Flush), 5);
    EXPECT_EQ(SlotOf(&ClStream::Seek), 6);
    EXPECT_EQ(SlotOf(&ClStream::Name), 7);
    EXPECT_EQ(SlotOf(&ClStream::IsSeekable), 8);
    EXPECT_EQ(SlotOf(&ClStream::WriteRaw), 9);
    EXPECT_EQ(SlotOf(&ClStream::ReadRaw), 10);
    EXPECT_EQ(SlotOf(&ClMemStream::GetData), 11);
}

// What a stream answers that overrides nothing

TEST(Stream, TheBaseHasNoPlaceSizeOrName) {
    ClPipeStream Stream({1, 2});
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.Seek(5, 7), 0u);
    EXPECT_STREQ(Stream.Name(), "Unknown Stream");
}

TEST(Stream, FlushAndCloseWritePendingBits) {
    ClPipeStream Stream;
    Stream.WriteBits(1, 1);
    Stream.Flush();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0x80}));
    Stream.WriteBits(1, 2);
    Stream.Close();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0x80, 0x40}));
}

TEST(Stream, CloseLeavesPendingReadBits) {
    ClPipeStream Stream({0xFF});
    unsigned int nValue = 0;
    Stream.ReadBits(nValue, 3);
    Stream.Close();
    EXPECT_TRUE(Stream.m_aOut.empty());
    Stream.ReadBits(nValue, 5);
    EXPECT_EQ(nValue, 31u);
}
