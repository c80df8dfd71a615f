#include "Tools/Stream.h"

#include "Tools/FileStream.h"
#include "support/TestFolder.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <unistd.h>

using TestSupport::Bytes;
using TestSupport::ClPipeStream;
using TestSupport::Content;

namespace {

unsigned int ReadBits(ClStream& rStream, unsigned long nBits) {
    unsigned int nValue = 0xDEADBEEF;
    rStream.ReadBits(nValue, nBits);
    return nValue;
}

/// A writable stream with a content, at its start.
struct StFilled {
    ClMemStream m_Stream;

    explicit StFilled(const Bytes& aBytes) {
        m_Stream.Write(aBytes.data(), aBytes.size());
        m_Stream.Seek(0, 0);
    }
};

} // namespace

// Writing

TEST(StreamBits, TheFirstBitIsTheHighestOfTheFirstByte) {
    ClMemStream Stream;
    Stream.WriteBits(5, 3);
    Stream.BitFlush();
    EXPECT_EQ(Content(Stream), (Bytes{0xA0}));
}

TEST(StreamBits, AValueGoesMostSignificantBitFirstAcrossBytes) {
    ClMemStream Stream;
    Stream.WriteBits(0xABC, 12);
    Stream.WriteBits(0xD, 4);
    EXPECT_EQ(Content(Stream), (Bytes{0xAB, 0xCD}));
    Stream.WriteBits(0x12345678, 32);
    EXPECT_EQ(Content(Stream), (Bytes{0xAB, 0xCD, 0x12, 0x34, 0x56, 0x78}));
}

TEST(StreamBits, HigherBitsOfAValueAreLeftOut) {
    ClMemStream Stream;
    Stream.WriteBits(0xFFFFFFF1, 4);
    Stream.WriteBits(0xFFFFFF02, 4);
    EXPECT_EQ(Content(Stream), (Bytes{0x12}));
}

TEST(StreamBits, WholeBytesAreWrittenAtOnceAndTheRestByTheFlush) {
    ClPipeStream Stream;
    Stream.WriteBits(0x1FF, 9);
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xFF}));
    Stream.BitFlush();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xFF, 0x80}));
}

TEST(StreamBits, NoBitsDoNothing) {
    ClPipeStream Stream({0xFF}, 0);
    Stream.WriteBits(1, 0);
    EXPECT_EQ(ReadBits(Stream, 0), 0u);
    EXPECT_EQ(Stream.m_nReads + Stream.m_nWrites, 0);
    EXPECT_EQ(Stream.BitPos(), 0u);
}

TEST(StreamBits, MoreThan32BitsAreRefused) {
    ClMemStream Stream;
    unsigned int nValue = 9;
    EXPECT_THROW(Stream.WriteBits(1, 33), ClExTessarin);
    EXPECT_THROW(Stream.ReadBits(nValue, 33), ClExTessarin);
    EXPECT_TESSARIN(Stream.WriteBits(1, 33), -44);
    EXPECT_TESSARIN(Stream.ReadBits(nValue, ~0UL), -44);
    EXPECT_EQ(nValue, 9u);
    EXPECT_EQ(Stream.Size(), 0u);
}

TEST(StreamBits, AScalarBehindBitsNeedsAFlush) {
    ClMemStream Stream;
    Stream.WriteBits(5, 3);
    EXPECT_THROWS(Stream.WriteAutoSwap(1), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}

TEST(StreamBits, AByteThatIsNotTakenIsAFailedWrite) {
    ClPipeStream Stream({}, 1);
    EXPECT_THROWS(Stream.WriteBits(0xABCD, 16), ClExStreamFailToWrite, -202,
                  "Fail to write BitBuffer into stream");
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xAB}));
    EXPECT_NO_THROW(Stream.CheckBitPosByteAlignment());
}

// Reading

TEST(StreamBits, ReadsWhatStandsThere) {
    const Bytes aBytes{0xAB, 0xCD, 0x12, 0x34, 0x56, 0x78};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    EXPECT_EQ(ReadBits(Stream, 3), 5u);
    EXPECT_EQ(ReadBits(Stream, 9), 0x0BCu);
    EXPECT_EQ(ReadBits(Stream, 4), 0xDu);
    EXPECT_EQ(ReadBits(Stream, 32), 0x12345678u);
}

TEST(StreamBits, AMissingByteThrowsAlsoOnAStreamThatIsNotStrictAndLeavesTheValue) {
    const Bytes aBytes{0xAB};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    unsigned int nValue = 77;
    EXPECT_THROWS(Stream.ReadBits(nValue, 9), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(nValue, 77u);
}

// Flushing

TEST(StreamBits, TheFlushCompletesAByteFromTheOneThatStandsThere) {
    StFilled Filled({0x0F, 0x77});
    Filled.m_Stream.WriteBits(5, 3);
    Filled.m_Stream.BitFlush();
    EXPECT_EQ(Content(Filled.m_Stream), (Bytes{0xAF, 0x77}));
    EXPECT_EQ(Filled.m_Stream.Pos(), 1u);
}

TEST(StreamBits, TheFlushCompletesByZerosWhereAStreamCannotSeek) {
    ClPipeStream Stream({0xFF, 0xFF});
    Stream.WriteBits(5, 3);
    Stream.BitFlush();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xA0}));
    EXPECT_EQ(Stream.m_nReads, 0);
}

TEST(StreamBits, TheFlushAtAByteBoundaryDoesNothing) {
    ClPipeStream Stream;
    Stream.BitFlush();
    Stream.WriteBits(0xAB, 8);
    Stream.BitFlush();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xAB}));
}

TEST(StreamBits, AFlushThatFailsSaysSoAndKeepsTheBits) {
    ClPipeStream Stream({}, 0);
    Stream.WriteBits(5, 3);
    EXPECT_THROWS(Stream.BitFlush(), ClExStreamFailToWrite, -202,
                  "Fail to write BitBuffer into stream");
    Stream.m_nRoom = 1;
    Stream.BitFlush();
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xA0}));
}

TEST(StreamBits, TheFlushDropsReadBitsAndWritesNothing) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size()); // a write would throw
    ReadBits(Stream, 3);
    Stream.BitFlush();
    EXPECT_EQ(ReadBits(Stream, 8), 0xCDu);
}

TEST(StreamBits, TheReadFlushDropsReadBits) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    ReadBits(Stream, 3);
    Stream.ReadBitFlush();
    unsigned char nByte = 0;
    Stream.ReadAutoSwap(nByte);
    EXPECT_EQ(nByte, 0xCD);
}

TEST(StreamBits, TheReadFlushKeepsWrittenBits) {
    ClMemStream Stream;
    Stream.WriteBits(5, 3);
    Stream.ReadBitFlush();
    Stream.BitFlush();
    EXPECT_EQ(Content(Stream), (Bytes{0xA0}));
}

TEST(StreamBits, CloseWritesPendingBits) {
    unsigned char nByte = 0x0F;
    ClMemStream Stream(&nByte, 1, true);
    Stream.WriteBits(5, 3);
    Stream.Close();
    EXPECT_EQ(nByte, 0xAF);
}

// Position

TEST(StreamBits, ThePositionCountsBitsInBothDirections) {
    StFilled Filled({0xAB, 0xCD, 0xEF});
    ClMemStream& Stream = Filled.m_Stream;
    EXPECT_EQ(Stream.BitPos(), 0u);
    ReadBits(Stream, 3);
    EXPECT_EQ(Stream.BitPos(), 3u);
    ReadBits(Stream, 5);
    EXPECT_EQ(Stream.BitPos(), 8u);
    Stream.WriteBits(0, 3);
    EXPECT_EQ(Stream.BitPos(), 11u);
    Stream.WriteBits(0, 6);
    EXPECT_EQ(Stream.BitPos(), 17u);
    Stream.BitFlush();
    EXPECT_EQ(Stream.BitPos(), 24u);
}

TEST(StreamBits, ReadingGoesOnAtABitThatWasSet) {
    const Bytes aBytes{0xAB, 0xCD, 0xEF};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.BitPosSet(12);
    EXPECT_EQ(Stream.BitPos(), 12u);
    EXPECT_EQ(Stream.Pos(), 1u);
    EXPECT_EQ(ReadBits(Stream, 2), 3u);
    EXPECT_EQ(Stream.BitPos(), 14u);
    EXPECT_EQ(Stream.Pos(), 2u);
    EXPECT_EQ(ReadBits(Stream, 6), 0x1Eu);
    EXPECT_EQ(Stream.BitPos(), 20u);
}

TEST(StreamBits, WritingGoesOnAtABitThatWasSet) {
    StFilled Filled({0xAB, 0xCD, 0xEF});
    Filled.m_Stream.BitPosSet(12);
    Filled.m_Stream.WriteBits(0, 2);
    EXPECT_EQ(Filled.m_Stream.BitPos(), 14u);
    Filled.m_Stream.BitFlush();
    EXPECT_EQ(Content(Filled.m_Stream), (Bytes{0xAB, 0xC1, 0xEF}));
}

TEST(StreamBits, SettingAPositionWritesNothing) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.BitPosSet(5);
    EXPECT_NO_THROW(Stream.BitPosSet(9));
    EXPECT_NO_THROW(Stream.BitFlush());
    ClMemStream Empty;
    Empty.BitPosSet(3);
    Empty.BitFlush();
    EXPECT_EQ(Empty.Size(), 0u);
}

TEST(StreamBits, SettingAPositionWritesBitsThatWerePending) {
    StFilled Filled({0x0F, 0xFF});
    Filled.m_Stream.WriteBits(5, 3);
    Filled.m_Stream.BitPosSet(8);
    EXPECT_EQ(Content(Filled.m_Stream), (Bytes{0xAF, 0xFF}));
    EXPECT_EQ(Filled.m_Stream.BitPos(), 8u);
}

TEST(StreamBits, AByteThatIsMissingAtThePositionCountsAsZero) {
    ClMemStream Stream;
    Stream.BitPosSet(3);
    EXPECT_EQ(Stream.BitPos(), 3u);
    Stream.WriteBits(3, 2);
    Stream.BitFlush();
    EXPECT_EQ(Content(Stream), (Bytes{0x18}));

    const unsigned char nByte = 0xFF;
    ClMemStream ReadOnly(&nByte, 1);
    ReadOnly.BitPosSet(11);
    EXPECT_EQ(ReadOnly.BitPos(), 11u);
    EXPECT_EQ(ReadBits(ReadOnly, 5), 0u);
    unsigned int nValue = 0;
    EXPECT_THROWS(ReadOnly.ReadBits(nValue, 1), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
}

TEST(StreamBits, AMissingByteThatWasReadIsForgotten) {
    ClMemStream Stream;
    Stream.BitPosSet(3);
    EXPECT_EQ(ReadBits(Stream, 5), 0u);
    Stream.WriteAutoSwap(static_cast<unsigned char>(0xAB));
    Stream.Seek(0, 0);
    EXPECT_EQ(ReadBits(Stream, 8), 0xABu);
}

TEST(StreamBits, AWriteThatFailsBehindASetPositionLeavesThePosition) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.BitPosSet(5);
    EXPECT_THROWS(Stream.WriteBits(7, 3), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
    EXPECT_EQ(Stream.BitPos(), 5u);
    EXPECT_EQ(ReadBits(Stream, 3), 3u);
}

TEST(StreamBits, SeeksToABitThatBeginsAByte) {
    const Bytes aBytes{0xAB, 0xCD, 0xEF};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    ReadBits(Stream, 5);
    EXPECT_EQ(Stream.BitSeek(16, 0), 0);
    EXPECT_EQ(Stream.Pos(), 2u);
    EXPECT_NO_THROW(Stream.CheckBitPosByteAlignment());
    EXPECT_EQ(ReadBits(Stream, 8), 0xEFu);
    EXPECT_EQ(Stream.BitSeek(-16, 2), 0);
    EXPECT_EQ(ReadBits(Stream, 4), 0xCu);
    EXPECT_EQ(Stream.BitSeek(-20, 1), 0); // from bit 20: a byte behind the pending bits
    EXPECT_EQ(ReadBits(Stream, 8), 0xABu);
}

TEST(StreamBits, DropsTheBitsThatASetPositionHasLookedAt) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.BitPosSet(11);
    Stream.ReadBitFlush();
    EXPECT_EQ(Stream.BitPos(), 8u);
    EXPECT_NO_THROW(Stream.CheckBitPosByteAlignment());
    EXPECT_EQ(ReadBits(Stream, 8), 0xCDu);
}

TEST(StreamBits, DropsNoBitsThatWaitToBeWritten) {
    ClMemStream Stream;
    Stream.BitPosSet(3);
    Stream.WriteBits(3, 2);
    Stream.ReadBitFlush();
    EXPECT_EQ(Stream.BitPos(), 5u);
    Stream.BitFlush();
    EXPECT_EQ(Content(Stream), (Bytes{0x18}));
}

TEST(StreamBits, ARefusedTargetLeavesThePosition) {
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.Seek(1, 0);
    Stream.BitPosSet(8 * 3 + 1);
    EXPECT_EQ(Stream.BitPos(), 8u);
    EXPECT_EQ(ReadBits(Stream, 4), 0xCu);
}

TEST(StreamBits, AStreamThatCannotSeekStaysWhereItIs) {
    ClPipeStream Stream({0xAB, 0xCD});
    ReadBits(Stream, 3);
    Stream.BitPosSet(0);
    EXPECT_EQ(ReadBits(Stream, 8), 0xCDu);
}

TEST(StreamBits, SeeksFromTheStartThePositionAndTheEnd) {
    const Bytes aBytes{0xAB, 0xCD, 0xEF};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    EXPECT_EQ(Stream.BitSeek(4, 0), 0);
    EXPECT_EQ(Stream.BitPos(), 4u);
    EXPECT_EQ(Stream.BitSeek(5, 1), 0);
    EXPECT_EQ(Stream.BitPos(), 9u);
    EXPECT_EQ(Stream.BitSeek(-2, 1), 0);
    EXPECT_EQ(Stream.BitPos(), 7u);
    EXPECT_EQ(Stream.BitSeek(-3, 2), 0);
    EXPECT_EQ(Stream.BitPos(), 21u);
}

TEST(StreamBits, ASeekFromPendingReadBitsStartsBehindTheirByte) {
    const Bytes aBytes{0xAB, 0xCD, 0xEF};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    ReadBits(Stream, 3); // position 1, 3 bits in use
    EXPECT_EQ(Stream.BitSeek(0, 1), 0);
    EXPECT_EQ(Stream.BitPos(), 11u);
}

TEST(StreamBits, ASeekAnswersWhyItIsRefused) {
    ClPipeStream Pipe;
    EXPECT_EQ(Pipe.BitSeek(0, 0), 6);
    EXPECT_EQ(Pipe.BitSeek(0, 7), 6);
    const Bytes aBytes{0xAB, 0xCD};
    ClMemStream Stream(aBytes.data(), aBytes.size());
    Stream.BitPosSet(4);
    for (const int nWhence : {-1, 3, 100})
        EXPECT_EQ(Stream.BitSeek(0, nWhence), 22);
    EXPECT_EQ(Stream.BitSeek(-1, 0), 22);
    EXPECT_EQ(Stream.BitSeek(-5, 1), 22);
    EXPECT_EQ(Stream.BitSeek(-17, 2), 22);
    EXPECT_EQ(Stream.BitSeek(std::numeric_limits<long>::max(), 1), 22);
    EXPECT_EQ(Stream.BitPos(), 4u);
    EXPECT_EQ(Stream.BitSeek(8 * 3, 0), 22); // the stream refuses to go there
}

TEST(StreamBits, CountsTheBitsThatANumberNeeds) {
    EXPECT_EQ(ClStream::BitsNeedForWrite(0), 0u);
    for (unsigned long nBit = 0; nBit < 64; ++nBit) {
        const unsigned long nExpected = nBit < 31 ? nBit + 1 : 32;
        EXPECT_EQ(ClStream::BitsNeedForWrite(static_cast<long>(1UL << nBit)), nExpected);
        EXPECT_EQ(ClStream::BitsNeedForWrite(static_cast<long>((1UL << nBit) | 1)),
                  std::max(nExpected, 1ul));
    }
    EXPECT_EQ(ClStream::BitsNeedForWrite(-1), 32u);
    EXPECT_EQ(ClStream::BitsNeedForWrite(0x7FFFFFFF), 31u);
}

// Against a plain list of bits

namespace {

/// A random mix of bit reads, bit writes, flushes and seeks, on a stream and on a list of bits.
class ClBitRehearsal {
public:
    ClBitRehearsal(ClStream& rStream, unsigned int nSeed) : m_rStream(rStream), m_Random(nSeed) {}

    void Run(int nSteps) {
        for (int i = 0; i < nSteps && !testing::Test::HasFailure(); ++i) {
            switch (m_Random() % 8) {
            case 0:
                Flush();
                break;
            case 1:
                Go();
                break;
            case 2:
            case 3:
            case 4:
                Write();
                break;
            default:
                Read();
            }
            ASSERT_EQ(m_rStream.BitPos(), m_nPos) << "step " << i;
        }
    }

    Bytes Expected() const {
        Bytes aBytes(m_aBits.size() / 8);
        for (std::size_t i = 0; i < aBytes.size() * 8; ++i)
            aBytes[i / 8] = static_cast<unsigned char>(aBytes[i / 8] | m_aBits[i] << (7 - i % 8));
        return aBytes;
    }

private:
    void Write() {
        const unsigned long nBits = m_Random() % 33;
        const auto nValue = static_cast<unsigned int>(m_Random());
        m_rStream.WriteBits(nValue, nBits);
        Grow(m_nPos + nBits);
        for (unsigned long i = nBits; i-- > 0;)
            m_aBits[m_nPos++] = (nValue >> i) & 1;
        m_bOnlySet = m_bOnlySet && nBits == 0;
    }

    void Read() {
        const unsigned long nBits = m_Random() % 33;
        if (m_nPos + nBits > m_aBits.size())
            return;
        unsigned int nExpected = 0;
        for (unsigned long i = 0; i < nBits; ++i)
            nExpected = nExpected << 1 | m_aBits[m_nPos++];
        ASSERT_EQ(ReadBits(m_rStream, nBits), nExpected);
        m_bOnlySet = m_bOnlySet && nBits == 0;
    }

    void Flush() {
        m_rStream.BitFlush();
        m_nPos = (m_bOnlySet ? m_nPos : m_nPos + 7) / 8 * 8;
        m_bOnlySet = false;
    }

    void Go() {
        m_nPos = m_aBits.empty() ? 0 : m_Random() % m_aBits.size();
        m_rStream.BitPosSet(m_nPos);
        m_bOnlySet = true;
    }

    void Grow(unsigned long nBits) {
        if (nBits > m_aBits.size())
            m_aBits.resize((nBits + 7) / 8 * 8);
    }

    ClStream& m_rStream;
    std::mt19937 m_Random;
    std::vector<unsigned char> m_aBits; ///< one bit each, whole bytes
    unsigned long m_nPos = 0;
    bool m_bOnlySet = false; ///< nothing was transferred since the last seek
};

} // namespace

TEST(StreamBits, RandomMixturesDoWhatAListOfBitsDoes) {
    for (unsigned int nSeed = 0; nSeed < 100; ++nSeed) {
        ClMemStream Stream;
        ClBitRehearsal Rehearsal(Stream, nSeed);
        Rehearsal.Run(200);
        Stream.BitFlush();
        ASSERT_EQ(Content(Stream), Rehearsal.Expected()) << "seed " << nSeed;
    }
}

TEST(StreamBits, RandomMixturesDoSoOnAFile) {
    const TestSupport::ClTestFolder Folder;
    for (unsigned int nSeed = 0; nSeed < 5; ++nSeed) {
        ClFileStream Stream((Folder / "bits").c_str(), "w+b");
        ClBitRehearsal Rehearsal(Stream, nSeed);
        Rehearsal.Run(200);
        Stream.BitFlush();
        const Bytes aExpected = Rehearsal.Expected();
        Bytes aContent(Stream.Size());
        Stream.Seek(0, 0);
        Stream.Read(aContent.data(), aContent.size());
        ASSERT_EQ(aContent, aExpected) << "seed " << nSeed;
    }
}

TEST(StreamBits, ChangesOfDirectionGoOnAtTheNextByteWhereAStreamCannotSeek) {
    ClPipeStream Stream({0xAB, 0xCD, 0xEF});
    EXPECT_EQ(ReadBits(Stream, 3), 5u);
    Stream.WriteBits(7, 3);
    EXPECT_EQ(ReadBits(Stream, 4), 0xCu);
    EXPECT_EQ(Stream.m_aOut, (Bytes{0xE0}));
}
