#include "Calibrate/CalibrateDataBase.h"

#include "Tools/FileStream.h"
#include "support/AllocationFailures.h"
#include "support/TestStreams.h"
#include "support/Throws.h"
#include "support/WorkingFolder.h"

#include <cstdio>
#include <cstring>
#include <string>

using TestSupport::Bytes;
using TestSupport::BytesOf;
using TestSupport::ClPipeStream;
using TestSupport::Content;

namespace {

/// A record of nothing but tags and one number.
class ClPlainRecord : public ClCalibrateDataBase {
public:
    bool IsValid() const override { return m_nNumber != 0; }
    void Clear() override { m_nNumber = 0; }
    void ReadStream(ClStream& rStream) override {
        m_bStrict = rStream.GetThrowOnShort();
        m_bBigEndian = rStream.GetBigEndian4Read();
        ClCalibrateDataBase::ReadStream(rStream);
        rStream.ReadAutoSwap(m_nNumber);
    }
    void WriteStream(ClStream& rStream) override {
        m_bStrict = rStream.GetThrowOnShort();
        m_bBigEndian = rStream.GetBigEndian4Write();
        ClCalibrateDataBase::WriteStream(rStream);
        rStream.WriteAutoSwap(m_nNumber);
    }

    std::string Tags() const {
        return std::string(m_acType, 4) + std::string(m_acSubType, 4) +
               std::string(m_acVersion, 4) + std::string(m_acReadVersion, 4);
    }
    void SetTags(const std::string& Text) {
        std::memcpy(m_acType, Text.data(), 4);
        std::memcpy(m_acSubType, Text.data() + 4, 4);
        std::memcpy(m_acVersion, Text.data() + 8, 4);
        std::memcpy(m_acReadVersion, Text.data() + 12, 4);
    }

    unsigned int m_nNumber = 0;
    bool m_bStrict = false;
    bool m_bBigEndian = false;
};

const std::string TagsAtStart("CAL\0NOT\0SET\0\0\0\0\0", 16);

Bytes PlainBlock() {
    return BytesOf(std::string("CAL\0NOT\0SET\0\1\2\3\4", 16));
}

/// A name for a file that goes with the test.
class ClTemporaryName {
public:
    const char* Text() const { return "record"; }

private:
    TestSupport::ClWorkingFolder m_Folder;
};

} // namespace

// Tags

TEST(CalibrateDataBase, StartsWithTheTagsOfNoRecord) {
    EXPECT_EQ(ClPlainRecord().Tags(), TagsAtStart);
    EXPECT_EQ(std::string(ClPlainRecord().ReadVersion(), 4), std::string(4, '\0'));
}

TEST(CalibrateDataBase, AssignmentCopiesThreeBytesOfEachTag) {
    ClPlainRecord From;
    ClPlainRecord To;
    From.SetTags("abcdefghijklmnop");
    To.SetTags("ABCDEFGHIJKLMNOP");
    static_cast<ClCalibrateDataBase&>(To) = static_cast<ClCalibrateDataBase&>(From);
    EXPECT_EQ(To.Tags(), "abcDefgHijkLmnoP");
}

TEST(CalibrateDataBase, AssignmentToItselfChangesNothing) {
    ClPlainRecord Record;
    Record.SetTags("abcdefghijklmnop");
    ClCalibrateDataBase& rSame = Record;
    static_cast<ClCalibrateDataBase&>(Record) = rSame;
    EXPECT_EQ(Record.Tags(), "abcdefghijklmnop");
}

TEST(CalibrateDataBase, ComparesAllFourTags) {
    for (std::size_t nTag = 0; nTag < 4; ++nTag) {
        ClPlainRecord One;
        ClPlainRecord Other;
        EXPECT_TRUE(static_cast<ClCalibrateDataBase&>(One) == Other);
        std::string Tags = TagsAtStart;
        Tags[4 * nTag] = '?';
        Other.SetTags(Tags);
        EXPECT_FALSE(static_cast<ClCalibrateDataBase&>(One) == Other) << "tag " << nTag;
    }
}

TEST(CalibrateDataBase, ComparesTagsAsTexts) {
    ClPlainRecord One;
    ClPlainRecord Other;
    One.SetTags(std::string("C\0xyNOT\0SET\0\0abc", 16));
    Other.SetTags(std::string("C\0\0\0NOT\0SET\0\0\0\0\0", 16));
    EXPECT_TRUE(static_cast<ClCalibrateDataBase&>(One) == Other);
}

// Streams

TEST(CalibrateDataBase, WritesTagsOfFourBytesAndBigEndianNumbers) {
    ClMemStream Stream;
    Stream.SetBigEndian(false);
    ClPlainRecord Record;
    Record.m_nNumber = 0x01020304;
    Record.Write(Stream);
    EXPECT_EQ(Content(Stream), PlainBlock());
}

TEST(CalibrateDataBase, ReadsTagsAndBigEndianNumbers) {
    const Bytes aBlock = PlainBlock();
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.SetBigEndian(false);
    ClPlainRecord Record;
    Record.Read(Stream);
    EXPECT_EQ(Record.m_nNumber, 0x01020304u);
    EXPECT_STREQ(Record.ReadVersion(), "SET");
}

TEST(CalibrateDataBase, SetsTheStreamUpAndRestoresIt) {
    const bool abStates[] = {false, true};
    for (const bool bStrict : abStates)
        for (const bool bBigEndian : abStates) {
            ClMemStream Stream;
            Stream.SetThrowOnShort(bStrict);
            Stream.SetBigEndian(bBigEndian);
            ClPlainRecord Record;

            Record.Write(Stream);
            EXPECT_TRUE(Record.m_bStrict && Record.m_bBigEndian);
            Record.m_bStrict = Record.m_bBigEndian = false;
            Stream.Seek(0, 0);
            Record.Read(Stream);

            EXPECT_TRUE(Record.m_bStrict && Record.m_bBigEndian);
            EXPECT_EQ(Stream.GetThrowOnShort(), bStrict);
            EXPECT_EQ(Stream.GetBigEndian4Read(), bBigEndian);
            EXPECT_EQ(Stream.GetBigEndian4Write(), bBigEndian);
        }
}

TEST(CalibrateDataBase, RestoresNothingAfterAnException) {
    const Bytes aBlock = BytesOf("CAL");
    ClMemStream Stream(aBlock.data(), aBlock.size());
    Stream.SetBigEndian(false);
    ClPlainRecord Record;
    EXPECT_THROWS(Record.Read(Stream), ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
    EXPECT_TRUE(Stream.GetThrowOnShort());
    EXPECT_TRUE(Stream.GetBigEndian4Read());
    EXPECT_FALSE(Stream.GetBigEndian4Write());

    Stream.SetThrowOnShort(false);
    EXPECT_THROWS(Record.Write(Stream), ClExStream, -204,
                  "ClMemStream::WriteRaw. Stream is not open for write");
    EXPECT_TRUE(Stream.GetThrowOnShort());
    EXPECT_TRUE(Stream.GetBigEndian4Write());
}

TEST(CalibrateDataBase, RefusesEveryOtherTypeTag) {
    for (std::size_t nByte = 0; nByte < 8; ++nByte) {
        Bytes aBlock = PlainBlock();
        aBlock[nByte] ^= 0x20;
        ClMemStream Stream(aBlock.data(), aBlock.size());
        ClPlainRecord Record;
        EXPECT_THROWS(Record.Read(Stream), ClExTessarin, -40,
                      "The input signature is not expected here.");
        EXPECT_EQ(Record.m_nNumber, 0u);
    }
}

TEST(CalibrateDataBase, TakesTagsRawWhateverTheByteOrder) {
    for (const bool bBigEndian : {false, true}) {
        const Bytes aBlock = PlainBlock();
        ClMemStream Stream(aBlock.data(), aBlock.size());
        Stream.SetBigEndian(bBigEndian);
        ClPlainRecord Record;
        Record.ClCalibrateDataBase::ReadStream(Stream);
        EXPECT_EQ(Record.Tags(), std::string("CAL\0NOT\0SET\0SET\0", 16));
        EXPECT_EQ(Stream.Pos(), 12u);
    }
}

TEST(CalibrateDataBase, KeepsTheVersionThatAStreamNoLongerHolds) {
    const Bytes aBlock = PlainBlock();
    for (const bool bStrict : {true, false})
        for (unsigned long nSize = 8; nSize < 12; ++nSize) {
            ClMemStream Stream(aBlock.data(), nSize);
            Stream.SetThrowOnShort(bStrict);
            ClPlainRecord Record;
            Record.SetTags(std::string("CAL\0NOT\0SET\0old\0", 16));
            if (bStrict)
                EXPECT_THROWS(Record.ClCalibrateDataBase::ReadStream(Stream),
                              ClExStreamUnexpectedEnd, -201, "Unexpected end of stream")
            else
                Record.ClCalibrateDataBase::ReadStream(Stream);
            EXPECT_STREQ(Record.ReadVersion(), "old") << nSize;
        }
}

TEST(CalibrateDataBase, EndsEarlyWithTheStreamAtEveryByte) {
    const Bytes aBlock = PlainBlock();
    for (unsigned long nSize = 0; nSize < aBlock.size(); ++nSize) {
        ClMemStream Stream(aBlock.data(), nSize);
        ClPlainRecord Record;
        EXPECT_THROWS(Record.Read(Stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
    }
}

TEST(CalibrateDataBase, ReportsAShortWrite) {
    for (unsigned long nRoom = 0; nRoom < 16; ++nRoom) {
        ClPipeStream Stream({}, nRoom);
        ClPlainRecord Record;
        EXPECT_THROWS(Record.Write(Stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
    }
}

// Files

TEST(CalibrateDataBase, WritesAndReadsFiles) {
    const ClTemporaryName Name;
    ClPlainRecord Record;
    Record.m_nNumber = 0x01020304;
    Record.Write(Name.Text());
    ClPlainRecord Back;
    Back.Read(Name.Text());
    EXPECT_EQ(Back.m_nNumber, Record.m_nNumber);

    ClFileStream File(Name.Text(), "rb");
    Bytes aBytes(File.Size());
    EXPECT_EQ(File.Read(aBytes.data(), aBytes.size()), 16u);
    EXPECT_EQ(aBytes, PlainBlock());
}

TEST(CalibrateDataBase, ReportsAFileThatCannotBeOpened) {
    ClPlainRecord Record;
    EXPECT_THROWS(Record.Read("/no such folder/file"), ClExFilesystem, -200,
                  "/no such folder/file");
    EXPECT_THROWS(Record.Write("/no such folder/file"), ClExFilesystem, -200,
                  "/no such folder/file");
}

TEST(CalibrateDataBase, ReportsAFileThatTakesNoBytes) {
    ClPlainRecord Record;
    EXPECT_THROWS(Record.Write("/dev/full"), ClExStream, -204,
                  "ClFileStream::Close. Failed to Close"); // buffered until then
}

TEST(CalibrateDataBase, SurvivesMissingMemory) {
    TestSupport::FailEachAllocation([] {
        ClMemStream Stream;
        ClPlainRecord Record;
        Record.Write(Stream);
        Stream.Seek(0, 0);
        Record.Read(Stream);
    });
}
