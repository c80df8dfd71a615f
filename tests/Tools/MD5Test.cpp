#include "Tools/MD5.h"

#include "support/TestFolder.h"
#include "support/Throws.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

using Bytes = std::vector<unsigned char>;

namespace {

std::string Hex(const unsigned char* pDigest) {
    std::string Text;
    for (int i = 0; i < 16; ++i) {
        char szByte[3];
        std::snprintf(szByte, sizeof szByte, "%02x", pDigest[i]);
        Text += szByte;
    }
    return Text;
}

Bytes DigestOf(const Bytes& aBytes) {
    Bytes aDigest(16);
    ClMD5::Make(aBytes.data(), aBytes.size(), aDigest.data());
    return aDigest;
}

std::string HexOf(const std::string& Text) {
    return Hex(DigestOf(Bytes(Text.begin(), Text.end())).data());
}

/// A message that tells its bytes apart.
Bytes Message(std::size_t nSize) {
    Bytes aBytes(nSize);
    for (std::size_t i = 0; i < nSize; ++i)
        aBytes[i] = static_cast<unsigned char>(i * 7 + 3);
    return aBytes;
}

/// Two files, of which a test makes what it needs.
class MD5Files : public testing::Test {
protected:
    void Put(const Bytes& aBytes) const { m_Folder.Put("message", aBytes); }
    Bytes GetDigest() const { return m_Folder.Get<Bytes>("digest"); }

    TestSupport::ClTestFolder m_Folder;
    const std::string m_Name = m_Folder / "message";
    const std::string m_DigestName = m_Folder / "digest";
};

} // namespace

TEST(MD5, GivesThePublishedDigests) {
    EXPECT_EQ(HexOf(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(HexOf("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(HexOf("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(HexOf("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(HexOf("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(HexOf("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(HexOf("1234567890123456789012345678901234567890"
                    "1234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(MD5, AnEmptyBlockNeedsNoMemory) {
    unsigned char acDigest[16];
    ClMD5::Make(nullptr, 0ul, acDigest);
    EXPECT_EQ(Hex(acDigest), "d41d8cd98f00b204e9800998ecf8427e");
}

TEST(MD5, PadsEveryLengthAsAnotherImplementationDoes) {
    Bytes aDigests; // of the messages of 0 to 200 bytes; the digest of them comes from elsewhere
    for (std::size_t nSize = 0; nSize <= 200; ++nSize) {
        const Bytes aDigest = DigestOf(Message(nSize));
        aDigests.insert(aDigests.end(), aDigest.begin(), aDigest.end());
    }
    EXPECT_EQ(Hex(DigestOf(aDigests).data()), "3c2e2f5ba85a139b95d47a02f96f81c1");
}

TEST(MD5, AMessageMayComeInPieces) {
    const Bytes aMessage = Message(300);
    const std::string Whole = Hex(DigestOf(aMessage).data());
    for (std::size_t nPiece = 1; nPiece <= 130; ++nPiece) {
        ClMD5::MD5_CTX Context;
        ClMD5::Init(&Context);
        for (std::size_t i = 0; i < aMessage.size(); i += nPiece)
            ClMD5::Update(&Context, &aMessage[i], std::min(nPiece, aMessage.size() - i));
        ClMD5::Update(&Context, nullptr, 0);
        unsigned char acDigest[16];
        ClMD5::Final(acDigest, &Context);
        EXPECT_EQ(Hex(acDigest), Whole) << "pieces of " << nPiece;
    }
}

TEST(MD5, CountsBitsInTwoWordsOf32) {
    ClMD5::MD5_CTX Context;
    ClMD5::Init(&Context);
    Context.count[0] = 0xFFFFFFF8; // one byte before 2^29
    const unsigned char nByte = 0;
    ClMD5::Update(&Context, &nByte, 1);
    EXPECT_EQ(Context.count[0], 0u);
    EXPECT_EQ(Context.count[1], 1u);
}

TEST(MD5, TheWordsOfAContextStayWithin32Bits) {
    ClMD5::MD5_CTX Context;
    ClMD5::Init(&Context);
    const Bytes aMessage = Message(1000);
    ClMD5::Update(&Context, aMessage.data(), aMessage.size());
    for (const unsigned long nWord : Context.state)
        EXPECT_EQ(nWord >> 32, 0u);
}

TEST(MD5, TheContextIsClearedAtTheEnd) {
    ClMD5::MD5_CTX Context;
    ClMD5::Init(&Context);
    ClMD5::Update(&Context, Message(100).data(), 100);
    unsigned char acDigest[16];
    ClMD5::Final(acDigest, &Context);
    const Bytes aZeros(sizeof Context);
    EXPECT_EQ(std::memcmp(&Context, aZeros.data(), sizeof Context), 0);
}

TEST(MD5, ThePaddingIsOneBitAndZeros) {
    EXPECT_EQ(ClMD5::PADDING[0], 0x80);
    EXPECT_TRUE(std::all_of(ClMD5::PADDING + 1, ClMD5::PADDING + 64,
                            [](unsigned char n) { return n == 0; }));
}

// Files

TEST_F(MD5Files, AFileHasTheDigestOfItsBytes) {
    for (const std::size_t nSize : {0, 1, 1023, 1024, 1025, 2048, 5000}) {
        Put(Message(nSize));
        Bytes aDigest(16);
        ClMD5::Make(m_Name.c_str(), aDigest.data());
        EXPECT_EQ(aDigest, DigestOf(Message(nSize))) << nSize << " bytes";
    }
}

TEST_F(MD5Files, TheDigestOfAFileGoesIntoAnother) {
    Put(Message(3000));
    ClMD5::Make(m_Name.c_str(), m_DigestName.c_str());
    EXPECT_EQ(GetDigest(), DigestOf(Message(3000)));
}

TEST_F(MD5Files, AMissingFileIsReportedAndNoDigestIsWritten) {
    unsigned char acDigest[16];
    EXPECT_THROWS(ClMD5::Make(m_Name.c_str(), acDigest), ClExFilesystem, -200, m_Name);
    EXPECT_THROWS(ClMD5::Make(m_Name.c_str(), m_DigestName.c_str()), ClExFilesystem, -200, m_Name);
    EXPECT_NE(access(m_DigestName.c_str(), F_OK), 0);
}

TEST_F(MD5Files, AFileThatCannotBeReadHasNoDigest) {
    const char* szOwnMemory = "/proc/self/mem"; // nothing can be read at its address 0
    ASSERT_EQ(access(szOwnMemory, R_OK), 0) << "every Linux has this file";
    unsigned char acDigest[16] = {1};
    EXPECT_THROWS(ClMD5::Make(szOwnMemory, acDigest), ClExStream, -204,
                  "ClMD5::Make. Failed to read");
    EXPECT_EQ(acDigest[0], 1);
    EXPECT_THROWS(ClMD5::Make(szOwnMemory, m_DigestName.c_str()), ClExStream, -204,
                  "ClMD5::Make. Failed to read");
    EXPECT_TRUE(m_Folder.Names().empty());
}

TEST_F(MD5Files, ANullNameIsReported) {
    unsigned char acDigest[16];
    EXPECT_THROWS(ClMD5::Make(static_cast<const char*>(nullptr), acDigest), ClException, -44,
                  "szName is NULL");
}

TEST_F(MD5Files, ADigestThatCannotBeStoredIsReported) {
    const char* szFullDevice = "/dev/full";
    ASSERT_EQ(access(szFullDevice, W_OK), 0) << "every Linux has this device";
    Put(Message(10));
    EXPECT_THROWS(ClMD5::Make(m_Name.c_str(), szFullDevice), ClExStream, -204,
                  "ClFileStream::Close. Failed to Close");
}
