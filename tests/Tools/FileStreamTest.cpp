#include "Tools/FileStream.h"

#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/TestFolder.h"
#include "support/TestStreams.h"
#include "support/Throws.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using TestSupport::Bytes;
using TestSupport::cnRefused;

namespace {

const char* const cszFullDevice = "/dev/full"; // takes bytes and fails to store them

/// Tests that keep a file.
class FileStream : public testing::Test {
protected:
    const char* Name() const { return m_Name.c_str(); }
    std::wstring WideName() const { return {m_Name.begin(), m_Name.end()}; }

    void Put(const std::string& Content) const { m_Folder.Put(cszName, Content); }
    std::string Get() const { return m_Folder.Get(m_Name.substr(m_Folder.Path().size() + 1)); }

    static constexpr const char* cszName = "stream.bin";
    TestSupport::ClTestFolder m_Folder;
    std::string m_Name = m_Folder / cszName;
};

/// The words of an exception of the system: behind the reason, or the whole where there is none.
std::string LastLine(const ClException& e) {
    const std::string Comment = e.What();
    return Comment.substr(Comment.rfind('\n') + 1);
}

std::string Reason(const ClException& e) {
    const std::string Comment = e.What();
    return Comment.substr(0, Comment.find('\n'));
}

} // namespace

// Files

TEST_F(FileStream, WritesAndReadsAFile) {
    ClFileStream Stream(Name(), "wb");
    EXPECT_EQ(Stream.WriteRaw("letters", 7), 7u);
    EXPECT_EQ(Stream.Pos(), 7u);
    Stream.Close();
    EXPECT_EQ(Get(), "letters");

    EXPECT_TRUE(Stream.Open(Name(), "rb"));
    char acText[10] = {};
    EXPECT_EQ(Stream.Size(), 7u);
    EXPECT_EQ(Stream.ReadRaw(acText, 3), 3u);
    EXPECT_EQ(Stream.Pos(), 3u);
    EXPECT_EQ(Stream.ReadRaw(acText, 10), 4u);
    EXPECT_STREQ(acText, "ters");
}

TEST_F(FileStream, TheSizeLeavesThePosition) {
    Put("letters");
    ClFileStream Stream(Name(), "rb");
    Stream.Seek(2, 0);
    EXPECT_EQ(Stream.Size(), 7u);
    EXPECT_EQ(Stream.Pos(), 2u);
}

TEST_F(FileStream, SeeksFromTheStartThePositionAndTheEnd) {
    Put("letters");
    ClFileStream Stream(Name(), "rb");
    EXPECT_TRUE(Stream.IsSeekable());
    EXPECT_EQ(Stream.Seek(3, 0), 0u);
    EXPECT_EQ(Stream.Seek(-1, 1), 0u);
    EXPECT_EQ(Stream.Pos(), 2u);
    EXPECT_EQ(Stream.Seek(-3, 2), 0u);
    EXPECT_EQ(Stream.Pos(), 4u);
}

TEST_F(FileStream, RefusesBadTargetsAndStaysWhereItIs) {
    Put("letters");
    ClFileStream Stream(Name(), "rb");
    Stream.Seek(3, 0);
    for (const int nWhence : {-1, 3, 4, 1000}) // 3 and 4 mean something to the system
        EXPECT_EQ(Stream.Seek(0, nWhence), cnRefused);
    EXPECT_EQ(Stream.Seek(-1, 0), cnRefused);
    EXPECT_EQ(Stream.Seek(-8, 2), cnRefused);
    EXPECT_EQ(Stream.Pos(), 3u);
}

TEST_F(FileStream, MixesReadingAndWriting) {
    Put("letters");
    ClFileStream Stream(Name(), "r+b");
    char acText[4] = {};
    Stream.ReadRaw(acText, 2);
    Stream.WriteRaw("TT", 2);
    Stream.ReadRaw(acText, 3);
    EXPECT_STREQ(acText, "ers");
    Stream.WriteRaw("!", 1);
    Stream.Close();
    EXPECT_EQ(Get(), "leTTers!");
}

TEST_F(FileStream, WritesBitsToAFileThatCannotBeRead) {
    ClFileStream Stream(Name(), "wb");
    Stream.WriteBits(5, 3);
    Stream.Close();
    EXPECT_EQ(Get(), "\xA0");
}

TEST_F(FileStream, TheDestructorWritesPendingBits) {
    { ClFileStream(Name(), "wb").WriteBits(5, 3); }
    EXPECT_EQ(Get(), "\xA0");
}

TEST_F(FileStream, RandomNumbersSurvive) {
    std::mt19937_64 Random(5);
    ClFileStream Stream(Name(), "w+b");
    std::vector<unsigned long> aNumbers(1000);
    for (unsigned long& nNumber : aNumbers)
        Stream.WriteAutoSwap(nNumber = Random());
    Stream.Seek(0, 0);
    for (const unsigned long nNumber : aNumbers) {
        unsigned long nRead = 0;
        EXPECT_EQ(Stream.ReadAutoSwap(nRead), 8u);
        EXPECT_EQ(nRead, nNumber);
    }
}

// Without a file

TEST_F(FileStream, AnswersNothingWithoutAFile) {
    ClFileStream Stream;
    char cByte = 'x';
    EXPECT_EQ(Stream.Pos(), 0u);
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Stream.ReadRaw(&cByte, 1), 0u);
    EXPECT_EQ(Stream.WriteRaw(&cByte, 1), 0u);
    EXPECT_EQ(Stream.Seek(0, 0), cnRefused);
    EXPECT_STREQ(Stream.Name(), "No file open");
    EXPECT_NO_THROW(Stream.Close());
}

TEST_F(FileStream, NeedsNoMemoryForEmptyTransfers) {
    ClFileStream Stream(Name(), "w+b");
    EXPECT_EQ(Stream.WriteRaw(nullptr, 0), 0u);
    EXPECT_EQ(Stream.ReadRaw(nullptr, 0), 0u);
}

// Opening

TEST_F(FileStream, NullTextsAreRefused) {
    ClFileStream Stream;
    EXPECT_THROWS(Stream.Open(static_cast<const char*>(nullptr), "rb"), ClException, -44,
                  "szName is NULL");
    EXPECT_THROWS(Stream.Open(Name(), nullptr), ClException, -44, "szMode is NULL");
    EXPECT_THROWS(ClFileStream(static_cast<const char*>(nullptr), "rb"), ClException, -44,
                  "szName is NULL");
}

TEST_F(FileStream, AFileThatDoesNotOpenIsNamedWithTheReason) {
    try {
        ClFileStream Stream(Name(), "rb");
        FAIL() << "nothing was thrown";
    } catch (const ClExFilesystem& e) {
        EXPECT_EQ(e.Number(), -200);
        EXPECT_EQ(LastLine(e), m_Name);
        EXPECT_EQ(Reason(e), std::strerror(ENOENT));
    }
}

TEST_F(FileStream, ADirectoryIsNoFile) {
    const std::string& Directory = m_Folder.Path();
    for (const char* szMode : {"rb", "wb"}) {
        try {
            ClFileStream Stream(Directory.c_str(), szMode);
            FAIL() << "nothing was thrown";
        } catch (const ClExFilesystem& e) {
            EXPECT_EQ(e.Number(), -200);
            EXPECT_EQ(LastLine(e), Directory);
            EXPECT_EQ(Reason(e), std::strerror(EISDIR));
        }
    }
}

TEST_F(FileStream, TheModeIsPassedOnAsItStands) {
    Put("a");
    ClFileStream Stream(Name(), "ab");
    Stream.WriteRaw("b", 1);
    Stream.Close();
    EXPECT_EQ(Get(), "ab");
    EXPECT_THROWS(Stream.Open(Name(), "nonsense"), ClExFilesystem, -200, m_Name);
}

TEST_F(FileStream, TheNameOutlivesTheFile) {
    ClFileStream Stream(Name(), "wb");
    EXPECT_STREQ(Stream.Name(), Name());
    Stream.Close();
    EXPECT_STREQ(Stream.Name(), Name());
}

TEST_F(FileStream, AFailedOpenLeavesNoFileAndNoName) {
    ClFileStream Stream(Name(), "wb");
    Stream.WriteRaw("a", 1);
    EXPECT_THROWS(Stream.Open((m_Name + ".missing").c_str(), "rb"), ClExFilesystem, -200,
                  m_Name + ".missing");
    EXPECT_STREQ(Stream.Name(), "No file open");
    EXPECT_EQ(Stream.Size(), 0u);
    EXPECT_EQ(Get(), "a");
}

TEST_F(FileStream, OpenClosesTheFormerFileAndForgetsBits) {
    Put("\xFF\xFF");
    ClFileStream Stream(Name(), "rb");
    unsigned int nValue = 0;
    Stream.ReadBits(nValue, 3);
    Stream.Open(Name(), "rb");
    EXPECT_EQ(Stream.BitPos(), 0u);
    EXPECT_NO_THROW(Stream.CheckBitPosByteAlignment());
}

TEST_F(FileStream, OpensItsOwnNameAgain) {
    ClFileStream Stream(Name(), "wb");
    Stream.WriteRaw("a", 1);
    EXPECT_TRUE(Stream.Open(Stream.Name(), "rb"));
    EXPECT_STREQ(Stream.Name(), Name());
    EXPECT_EQ(Stream.Size(), 1u);
}

TEST_F(FileStream, MissingMemoryLeavesNoFileOpen) {
    TestSupport::FailEachAllocation([this] {
        ClFileStream Stream;
        try {
            Stream.Open(Name(), "wb");
        } catch (...) {
            EXPECT_STREQ(Stream.Name(), "No file open");
            throw;
        }
    });
    const std::wstring Wide = WideName();
    TestSupport::FailEachAllocation([&Wide] { ClFileStream Stream(Wide.c_str(), L"wb"); });
}

TEST_F(FileStream, TheRestIsWhatStandsBehindThePosition) {
    Put("letters");
    ClFileStream Stream(Name(), "rb");
    EXPECT_EQ(Stream.Rest(), 7u);
    Stream.Seek(5, 0);
    EXPECT_EQ(Stream.Rest(), 2u);
    Stream.Seek(7, 0);
    EXPECT_EQ(Stream.Rest(), 0u);
    Stream.Seek(8, 0);
    EXPECT_EQ(Stream.Rest(), std::nullopt);
    EXPECT_EQ(Stream.Pos(), 8u);
}

TEST_F(FileStream, ANamedPipeDoesNotKnowItsRest) {
    ASSERT_EQ(mkfifo(Name(), 0600), 0);
    const int nPipe = open(Name(), O_RDWR); // a writer and a reader: opening cannot block
    ASSERT_EQ(write(nPipe, "ab", 2), 2);
    ClFileStream Stream(Name(), "rb");
    char acTwo[2] = {};
    EXPECT_EQ(Stream.Rest(), std::nullopt);
    EXPECT_EQ(Stream.ReadRaw(acTwo, 2), 2u);
    EXPECT_EQ(Stream.Rest(), std::nullopt);
    close(nPipe);
}

TEST_F(FileStream, TextsComeThroughANamedPipe) {
    const std::string Text(10000, 'x'); // more than a first block
    ClMemStream Memory;
    Memory.WriteString(Text.c_str());
    ASSERT_EQ(mkfifo(Name(), 0600), 0);
    const int nPipe = open(Name(), O_RDWR);
    ASSERT_EQ(write(nPipe, Memory.GetData(), Memory.Size()), static_cast<long>(Memory.Size()));
    ClFileStream Stream(Name(), "rb");
    Stream.SetThrowOnShort(true);
    char* szText = nullptr;
    Stream.ReadString(&szText);
    EXPECT_EQ(szText, Text);
    delete[] szText;
    close(nPipe);
}

TEST_F(FileStream, TellsAFailureFromTheEnd) {
    Put("a");
    ClFileStream Stream(Name(), "rb");
    char acTwo[2] = {};
    EXPECT_EQ(Stream.ReadRaw(acTwo, 2), 1u);
    EXPECT_FALSE(Stream.HasFailed());
    EXPECT_EQ(Stream.WriteRaw("b", 1), 0u); // opened for reading alone
    EXPECT_TRUE(Stream.HasFailed());
    Stream.Close();
    EXPECT_FALSE(Stream.HasFailed());
}

// Wide names

TEST_F(FileStream, OpensWideNames) {
    m_Name += "\xE2\x82\xAC"; // the euro sign
    std::wstring Wide = WideName();
    Wide.replace(Wide.size() - 3, 3, L"\u20AC");
    ClFileStream Stream(Wide.c_str(), L"wb");
    EXPECT_STREQ(Stream.Name(), Name());
    Stream.WriteRaw("a", 1);
    Stream.Close();
    EXPECT_EQ(Get(), "a");
}

TEST_F(FileStream, OpensWideNamesThatGrowByConversion) {
    std::wstring Wide = WideName();
    for (int i = 0; i < 40; ++i) {
        Wide += static_cast<wchar_t>(0x1F600); // four bytes each
        m_Name += "\xF0\x9F\x98\x80";
    }
    ClFileStream Stream(Wide.c_str(), L"wb");
    EXPECT_STREQ(Stream.Name(), Name());
}

TEST_F(FileStream, WideTextsThatAreNullOrDoNotConvertAreRefused) {
    const wchar_t aBad[] = {0xD800, 0}; // half a surrogate pair
    const wchar_t* const szNull = nullptr;
    ClFileStream Stream;
    for (const wchar_t* szBad : {szNull, aBad}) {
        EXPECT_THROWS(Stream.Open(szBad, L"rb"), ClException, -37,
                      "the szName parameter is invalid.");
        EXPECT_THROWS(Stream.Open(WideName().c_str(), szBad), ClException, -37,
                      "the szMode parameter is invalid.");
        EXPECT_THROWS(Stream.Open(szBad, szBad), ClException, -37,
                      "the szName parameter is invalid.");
    }
}

TEST_F(FileStream, AnEmptyWideNameIsNoFile) {
    EXPECT_THROWS(ClFileStream(L"", L"rb"), ClExFilesystem, -200, "");
}

TEST_F(FileStream, AWideOpenThatFailsClosesTheFormerFile) {
    ClFileStream Stream(Name(), "wb");
    Stream.WriteRaw("a", 1);
    EXPECT_THROWS(Stream.Open(static_cast<const wchar_t*>(nullptr), L"rb"), ClException, -37,
                  "the szName parameter is invalid.");
    EXPECT_STREQ(Stream.Name(), "No file open");
    EXPECT_EQ(Get(), "a");
}

// Closing

TEST_F(FileStream, AFileThatCannotBeClosedSaysSoAndIsReleased) {
    ASSERT_EQ(access(cszFullDevice, W_OK), 0) << "every Linux has this device";
    ClFileStream Stream(cszFullDevice, "wb");
    EXPECT_EQ(Stream.WriteRaw("a", 1), 1u); // into the buffer of the C library
    EXPECT_THROWS(Stream.Close(), ClExStream, -204, "ClFileStream::Close. Failed to Close");
    EXPECT_EQ(Stream.WriteRaw("a", 1), 0u);
    EXPECT_NO_THROW(Stream.Close());
}

TEST_F(FileStream, TheDestructorSwallowsAFailureToClose) {
    ASSERT_EQ(access(cszFullDevice, W_OK), 0) << "every Linux has this device";
    EXPECT_NO_THROW(ClFileStream(cszFullDevice, "wb").WriteRaw("a", 1));
}

TEST_F(FileStream, BitsThatCannotBeWrittenReleaseTheFileAllTheSame) {
    Put("");
    ClFileStream Stream(Name(), "rb");
    Stream.WriteBits(1, 1);
    EXPECT_THROWS(Stream.Close(), ClExStreamFailToWrite, -202,
                  "Fail to write BitBuffer into stream");
    EXPECT_EQ(Stream.Seek(0, 0), cnRefused);
    EXPECT_EQ(Stream.BitPos(), 0u);
    EXPECT_NO_THROW(Stream.Close());
}
