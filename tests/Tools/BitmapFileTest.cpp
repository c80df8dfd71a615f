#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/TestFolder.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace TestSupport;

namespace {

std::uint32_t UsualOffBits(int nBits) {
    return nBits <= 8 ? 54 + (4u << nBits) : 54;
}

Bytes UsualFile(const StHead& head) {
    return FileBytes(UsualBlock(head), UsualOffBits(head.m_nBits));
}

Bytes LoadedBlock(const Bytes& aFile) {
    ClBitmap bitmap;
    Load(bitmap, aFile);
    return Written(bitmap);
}

/// A file of a header alone: what it claims is not there.
Bytes Claim(const StHead& head, std::uint32_t nOffBits = 54) {
    return FileBytes(HeaderBytes(head), nOffBits);
}

template <class Class>
void ExpectRefused(const Bytes& aFile, long nNumber, const char* szWords) {
    ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_THROWS(Load(bitmap, aFile), Class, nNumber, szWords);
    EXPECT_EQ(bitmap.Header(), nullptr);
}

void ExpectHeaderRefused(const Bytes& aFile, long nNumber, const char* szWords) {
    ExpectRefused<ClException>(aFile, nNumber, szWords);
}

void ExpectSizesRefused(const Bytes& aFile) {
    ExpectRefused<ClExTessarin>(aFile, -38, GetErrorDescriptionIntern(-38));
}

void ExpectEndMissing(const Bytes& aFile) {
    ExpectRefused<ClExStreamUnexpectedEnd>(aFile, -201, "Unexpected end of stream");
}

} // namespace

TEST(BitmapFile, LoadsEveryDepth) {
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (int nWidth = 1; nWidth < 10; ++nWidth) {
            const StHead head = Head(nWidth, 3, nBits);
            EXPECT_EQ(LoadedBlock(UsualFile(head)), UsualBlock(head));
        }
}

TEST(BitmapFile, LoadsABareInfoHeader) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        const StHead head = Head(5, 3, nBits);
        EXPECT_EQ(LoadedBlock(UsualBlock(head)), UsualBlock(head));
    }
}

TEST(BitmapFile, LoadsBitFieldsAndPalettesOfTrueColour) {
    StHead head = Head(5, 3, 16);
    head.m_nCompression = 3;
    Bytes aBlock = Block(head, {0xF800, 0x07E0, 0x001F}, NoisePixels(head));
    EXPECT_EQ(LoadedBlock(aBlock), aBlock);
    EXPECT_EQ(LoadedBlock(FileBytes(aBlock, 66)), aBlock);
    head = Head(5, 3, 24);
    head.m_nClrUsed = 7;
    aBlock = Block(head, GreyPalette(7), NoisePixels(head));
    EXPECT_EQ(LoadedBlock(aBlock), aBlock);
    EXPECT_EQ(LoadedBlock(FileBytes(aBlock, 82)), aBlock);
}

TEST(BitmapFile, TurnsATopDownBitmapOver) {
    const Bytes aLines = {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
    const Bytes aTurned = {3, 3, 3, 3, 2, 2, 2, 2, 1, 1, 1, 1};
    const Bytes aFile = FileBytes(Block(Head(4, -3, 8), GreyPalette(), aLines), 1078);
    EXPECT_EQ(LoadedBlock(aFile), Block(Head(4, 3, 8), GreyPalette(), aTurned));
}

TEST(BitmapFile, LoadsNoLinesAtAll) {
    const Bytes aBlock = UsualBlock(Head(5, 0, 8));
    EXPECT_EQ(LoadedBlock(aBlock), aBlock);
}

TEST(BitmapFile, LeavesTheStreamBehindTheBitmap) {
    Bytes aFile = UsualFile(Head(5, 3, 8));
    const std::size_t nSize = aFile.size();
    aFile.resize(nSize + 5);
    ClMemStream stream(static_cast<const unsigned char*>(aFile.data()), aFile.size());
    ClBitmap bitmap;
    bitmap.Load(stream);
    EXPECT_EQ(stream.Pos(), nSize);
}

// Signatures and headers

TEST(BitmapFile, NeedsASignature) {
    for (const Bytes& aStart : {Bytes{'M', 'B'}, Bytes{0, 0}, Bytes{'B', 'N'}, Bytes{40, 1}}) {
        Bytes aFile = UsualFile(Head(5, 3, 8));
        std::copy(aStart.begin(), aStart.end(), aFile.begin());
        ClBitmap bitmap;
        EXPECT_THROWS(Load(bitmap, aFile), ClException, -210,
                      "ClBitmap::Load. Fileheader Signature is Missing");
    }
}

TEST(BitmapFile, RefusesOtherCompressionsBeforeAnythingElse) {
    const std::uint32_t caRows[][2] = {{2, 4}, {2, 8}, {4, 24}, {0xFFFFFFFF, 8},
                                       {1, 1}, {1, 4}, {1, 24}, {1, 32}};
    for (const auto& row : caRows) {
        StHead head = Head(0, 3, static_cast<int>(row[1])); // a width below 1, too
        head.m_nCompression = row[0];
        head.m_nSize = 12;
        head.m_nPlanes = 2;
        ClBitmap bitmap(4, 4, 8, 0);
        EXPECT_THROWS(Load(bitmap, Claim(head)), ClException, -31,
                      "ClBitmap::Load. Unsupported compressions mode");
        EXPECT_EQ(bitmap.Header(), nullptr);
    }
}

TEST(BitmapFile, ChecksTheHeaderNext) {
    StHead head = Head(0, 3, 2);
    head.m_nPlanes = 2;
    head.m_nSize = 41;
    ExpectHeaderRefused(Claim(head), -32, "ClBitmap::Attach, Bitmap Header size is not known.");
    head.m_nSize = 0x10000 + 40;
    ExpectHeaderRefused(
        HeaderBytes(head), -32,
        "ClBitmap::Attach, Bitmap Header size is not known."); // the half that follows the
                                                               // signature of a bare header
    head.m_nSize = 0x4D42;
    ExpectHeaderRefused(Claim(head), -32, "ClBitmap::Attach, Bitmap Header size is not known.");
    head.m_nSize = 40;
    ExpectHeaderRefused(Claim(head), -11, "ClBitmap::Attach, pBI->biPlanes != 1.");
    head.m_nPlanes = 1;
    ExpectHeaderRefused(Claim(head), -12,
                        "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!");
}

TEST(BitmapFile, RefusesSizesThatFitNoBlock) {
    for (int nWidth : {0, -1, INT_MIN})
        ExpectSizesRefused(Claim(Head(nWidth, 3, 8), 1078));
    ExpectSizesRefused(Claim(Head(3, INT_MIN, 8), 1078));
    ExpectSizesRefused(Claim(Head(INT_MAX, 1, 8), 1078));
    ExpectSizesRefused(Claim(Head(INT_MAX, INT_MAX, 32)));
    ExpectSizesRefused(Claim(Head(INT_MAX, -INT_MAX, 32)));
    ExpectSizesRefused(Claim(Head(0x4000, 0x8000, 32)));          // 2^31 bytes of pixels
    ExpectSizesRefused(Claim(Head(4, 0x20000000 - 10, 8), 1078)); // 2^31 with header and palette
}

TEST(BitmapFile, RefusesAPaletteBeyondItsArea) {
    StHead head = Head(5, 3, 24);
    head.m_nClrUsed = 1;
    ExpectSizesRefused(Claim(head, 57));
    ExpectEndMissing(Claim(head, 58)); // it fits, and is not there
    head.m_nClrUsed = UINT_MAX;
    ExpectSizesRefused(Claim(head, UINT_MAX));
    ExpectSizesRefused(HeaderBytes(head)); // without file header it is the block that has no room
    head.m_nCompression = 3;
    ExpectSizesRefused(Claim(head, 65));
    ExpectEndMissing(Claim(head, 66));
}

TEST(BitmapFile, AsksForNothingThatTheStreamCannotHold) {
    for (const StHead& head : {Head(0x4000, 0x7FFF, 32), Head(1, 0x1FFFFF00, 1)}) {
        const Bytes aFile = Claim(head);
        ClMemStream stream(aFile.data(), aFile.size());
        ClBitmap bitmap;
        EXPECT_THROWS(bitmap.Load(stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
        EXPECT_EQ(stream.Pos(), 54u); // no byte behind the header was tried
    }
    const Bytes aGap = FileBytes(UsualBlock(Head(5, 3, 8)), UINT_MAX);
    ClMemStream stream(aGap.data(), aGap.size());
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Load(stream), ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
    EXPECT_EQ(stream.Pos(), 54u);
}

// Palettes

TEST(BitmapFile, BoundsThePaletteByItsDepth) {
    StHead head = Head(5, 3, 4);
    head.m_nClrUsed = 300;
    head.m_nClrImportant = 200;
    const Bytes aFile = FileBytes(Block(head, GreyPalette(300), NoisePixels(head)), 54 + 1200);
    StHead kept = head;
    kept.m_nClrUsed = 16;
    kept.m_nClrImportant = 16;
    std::vector<std::uint32_t> aKept = GreyPalette(300);
    aKept.resize(16);
    EXPECT_EQ(LoadedBlock(aFile), Block(kept, aKept, NoisePixels(head)));
    EXPECT_EQ(LoadedBlock(Bytes(aFile.begin() + 14, aFile.end())),
              Block(kept, aKept, NoisePixels(head)));
}

TEST(BitmapFile, BoundsThePaletteByItsArea) {
    StHead head = Head(5, 3, 8);
    head.m_nClrUsed = 9;
    head.m_nClrImportant = 2;
    const Bytes aFile = FileBytes(Block(head, GreyPalette(4), NoisePixels(head)), 54 + 16);
    StHead kept = head;
    kept.m_nClrUsed = 4;
    EXPECT_EQ(LoadedBlock(aFile), Block(kept, GreyPalette(4), NoisePixels(head)));
}

TEST(BitmapFile, SkipsWhatStandsBetweenPaletteAndPixels) {
    const StHead head = Head(5, 3, 8);
    for (std::uint32_t nGap : {1u, 4u, 5000u}) {
        Bytes aBlock = HeaderBytes(head);
        Append(aBlock, PaletteBytes(GreyPalette()));
        aBlock.resize(aBlock.size() + nGap, 0xEE);
        Append(aBlock, NoisePixels(head));
        EXPECT_EQ(LoadedBlock(FileBytes(aBlock, 1078 + nGap)), UsualBlock(head));
    }
}

TEST(BitmapFile, RaisesAnOffsetInsideTheHeaders) {
    const StHead head = Head(5, 3, 24);
    for (std::uint32_t nOffBits : {0u, 14u, 53u})
        EXPECT_EQ(LoadedBlock(FileBytes(UsualBlock(head), nOffBits)), UsualBlock(head));
}

TEST(BitmapFile, ReadsTheWholePaletteWhereNoneIsCounted) {
    StHead head = Head(5, 3, 8);
    const Bytes aFile = FileBytes(UsualBlock(head), 54); // the offset leaves no room for it
    EXPECT_EQ(LoadedBlock(aFile), UsualBlock(head));
    head.m_nClrUsed = 5; // becomes 0, which means all
    StHead kept = Head(5, 3, 8);
    Bytes aBlock = UsualBlock(head);
    EXPECT_EQ(LoadedBlock(FileBytes(aBlock, 54)), UsualBlock(kept));
}

// Broken files

TEST(BitmapFile, RefusesEveryTruncation) {
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (bool bBare : {false, true}) {
            const StHead head = Head(5, 3, nBits);
            const Bytes aFile = bBare ? UsualBlock(head) : UsualFile(head);
            for (std::size_t nSize = 0; nSize < aFile.size(); ++nSize) {
                const auto pFile = Exactly(aFile, nSize);
                ClMemStream stream(static_cast<const unsigned char*>(pFile.get()), nSize);
                ClBitmap bitmap(4, 4, 8, 0);
                EXPECT_THROWS(bitmap.Load(stream), ClExStreamUnexpectedEnd, -201,
                              "Unexpected end of stream");
                EXPECT_EQ(bitmap.Header(), nullptr);
                EXPECT_LE(stream.Pos(), bBare ? 40u : 54u); // no palette, no line was begun
            }
        }
}

TEST(BitmapFile, RefusesEveryTruncationOfAPipe) {
    const Bytes aFile = UsualFile(Head(5, 3, 8));
    for (std::size_t nSize = 0; nSize < aFile.size(); ++nSize) {
        ClPipe stream(Bytes(aFile.begin(), aFile.begin() + static_cast<long>(nSize)));
        ClBitmap bitmap(4, 4, 8, 0);
        EXPECT_THROWS(bitmap.Load(stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
        EXPECT_EQ(bitmap.Header(), nullptr);
    }
    ClPipe stream(aFile);
    ClBitmap bitmap;
    bitmap.Load(stream);
    EXPECT_EQ(Written(bitmap), UsualBlock(Head(5, 3, 8)));
}

TEST(BitmapFile, SurvivesEveryMutationOfItsHeaders) {
    for (int nBits : {1, 8, 16, 24, 32})
        for (std::size_t i = 0; i < 54; ++i)
            for (int nValue : {0, 1, 2, 3, 7, 8, 16, 32, 64, 127, 128, 255}) {
                Bytes aFile = UsualFile(Head(5, 3, nBits));
                aFile[i] = static_cast<unsigned char>(nValue);
                ClBitmap bitmap;
                try {
                    Load(bitmap, aFile);
                } catch (const ClException&) {
                    EXPECT_EQ(bitmap.Header(), nullptr);
                    continue;
                }
                EXPECT_GT(int{bitmap.Header()->biWidth}, 0);
                EXPECT_GE(int{bitmap.Header()->biHeight}, 0);
                EXPECT_LE(Written(bitmap).size(), aFile.size() + 1024);
                bitmap.IsGray(true);
            }
}

TEST(BitmapFile, IsEmptyWhereMemoryIsMissing) {
    const Bytes aFile = UsualFile(Head(5, 3, 8));
    FailEachAllocation([&] {
        ClMemStream stream(aFile.data(), aFile.size());
        ClBitmap bitmap;
        try {
            bitmap.Load(stream);
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(bitmap.Header(), nullptr);
            EXPECT_TRUE(stream.GetBigEndian4Read());
            throw;
        }
    });
}

// The stream's settings

TEST(BitmapFile, RestoresTheStreamsSettings) {
    const Bytes aGood = UsualFile(Head(5, 3, 8));
    const Bytes aShort(aGood.begin(), aGood.end() - 1);
    for (const Bytes& aFile : {aGood, aShort, Bytes{'X', 'Y'}, Bytes()})
        for (bool bBigEndian : {false, true})
            for (bool bThrow : {false, true}) {
                ClMemStream stream(aFile.data(), aFile.size());
                stream.SetBigEndian4Read(bBigEndian);
                stream.SetThrowOnShort(bThrow);
                ClBitmap bitmap;
                try {
                    bitmap.Load(stream);
                } catch (const ClException&) { // the settings are of interest
                }
                EXPECT_EQ(stream.GetBigEndian4Read(), bBigEndian);
                EXPECT_EQ(stream.GetThrowOnShort(), bThrow);
                EXPECT_TRUE(stream.GetBigEndian4Write());
            }
}

TEST(BitmapFile, RefusesAStreamWithPendingBits) {
    const Bytes aFile = UsualFile(Head(5, 3, 8));
    ClMemStream stream(aFile.data(), aFile.size());
    unsigned int nBits = 0;
    stream.ReadBits(nBits, 3);
    ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_THROWS(bitmap.Load(stream), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
    EXPECT_EQ(bitmap.Header(), nullptr);
}

// Names

TEST(BitmapFile, LoadsWhatItStoredUnderAName) {
    const ClTestFolder folder;
    const std::string Name = folder / "image.bmp";
    const ClBitmap bitmap(Bytes(UsualBlock(Head(5, 3, 8))).data(), true);
    bitmap.Store(Name.c_str());
    ClBitmap back(4, 4, 8, 0);
    back.Load(Name.c_str());
    EXPECT_TRUE(back == bitmap);
}

TEST(BitmapFile, LoadsFromANamedPipe) {
    const ClTestFolder folder;
    const std::string Name = folder / "pipe";
    const Bytes aFile = UsualFile(Head(5, 3, 8));
    ASSERT_EQ(mkfifo(Name.c_str(), 0600), 0);
    const int nPipe = open(Name.c_str(), O_RDWR); // a writer and a reader: opening cannot block
    ASSERT_EQ(write(nPipe, aFile.data(), aFile.size()), static_cast<long>(aFile.size()));
    ClBitmap bitmap;
    bitmap.Load(Name.c_str());
    EXPECT_EQ(Written(bitmap), UsualBlock(Head(5, 3, 8)));
    close(nPipe);
}

TEST(BitmapFile, IsEmptyWhereThereIsNoFile) {
    const ClTestFolder folder;
    const std::string Name = folder / "no-such-folder/image.bmp";
    ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_THROWS(bitmap.Store(Name.c_str()), ClExFilesystem, -200, Name);
    EXPECT_THROWS(bitmap.Store(static_cast<const char*>(nullptr)), ClException, -44,
                  "szName is NULL");
    EXPECT_THROWS(bitmap.Load(Name.c_str()), ClExFilesystem, -200, Name);
    EXPECT_EQ(bitmap.Header(), nullptr);
    EXPECT_THROWS(bitmap.Load(static_cast<const char*>(nullptr)), ClException, -44,
                  "szName is NULL");
}

TEST(BitmapFile, MakesNoFileOfAnEmptyBitmap) {
    const ClTestFolder folder;
    const std::string Name = folder / "never-made.bmp";
    EXPECT_TESSARIN(ClBitmap().Store(Name.c_str()), -10);
    EXPECT_THROWS(ClBitmap().Load(Name.c_str()), ClExFilesystem, -200, Name);
}

TEST(BitmapFile, LeavesAFileAloneThatItCannotReplace) {
    const ClTestFolder folder;
    folder.Put("kept.bmp", std::string("kept"));
    StHead head = Head(5, 3, 8);
    head.m_nCompression = 1; // without the size of its codes
    Bytes aBlock = UsualBlock(head);
    ClBitmap encoded;
    encoded.Attach(aBlock.data(), 0);
    EXPECT_THROWS(encoded.Store((folder / "kept.bmp").c_str()), ClException, -33,
                  "Bitmap Store: Combination of biSizeImage not set and compression set to "
                  "other than plain not allowed");
    EXPECT_EQ(folder.Get("kept.bmp"), "kept");
}
