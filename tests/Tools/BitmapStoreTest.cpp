#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

/// The block is attached to, so that the header's adjustment shows in it.
Bytes StoredFrom(Bytes& aBlock) {
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    return Stored(bitmap);
}

} // namespace

TEST(BitmapStore, WritesFileHeaderAndBlock) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        StHead head = Head(5, 3, nBits);
        Bytes aBlock = UsualBlock(head);
        const Bytes aFile = StoredFrom(aBlock);
        head.m_nSizeImage = static_cast<std::uint32_t>(WordsStride(nBits, 5) * 3);
        const std::uint32_t nOffBits = nBits <= 8 ? 54 + (4u << nBits) : 54;
        EXPECT_EQ(aFile, FileBytes(UsualBlock(head), nOffBits));
    }
}

TEST(BitmapStore, WritesTheBytesOfAKnownFile) {
    const ClBitmap bitmap(1, 1, 24, 0, 19685, 9843);
    const Bytes aExpected = {'B', 'M', 58, 0, 0, 0, 0, 0, 0,    0,    54, 0, 0,    0,    40,
                             0,   0,   0,  1, 0, 0, 0, 1, 0,    0,    0,  1, 0,    24,   0,
                             0,   0,   0,  0, 4, 0, 0, 0, 0xE5, 0x4C, 0,  0, 0x73, 0x26, 0,
                             0,   0,   0,  0, 0, 0, 0, 0, 0,    0,    0,  0, 0};
    EXPECT_EQ(Stored(bitmap), aExpected);
}

TEST(BitmapStore, FillsInTheImageSizeInTheHeaderItself) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    StoredFrom(aBlock);
    StHead head = Head(5, 3, 8);
    head.m_nSizeImage = 24;
    EXPECT_EQ(aBlock, UsualBlock(head));
    head.m_nSizeImage = 7; // a size that is told stays
    aBlock = UsualBlock(head);
    StoredFrom(aBlock);
    EXPECT_EQ(aBlock, UsualBlock(head));
}

TEST(BitmapStore, DropsThePaletteOfATrueColourBitmap) {
    StHead head = Head(5, 3, 24);
    head.m_nClrUsed = 7;
    head.m_nClrImportant = 0x1000001;
    Bytes aBlock = Block(head, GreyPalette(7), NoisePixels(head));
    const Bytes aFile = StoredFrom(aBlock);
    head.m_nClrUsed = 0;
    head.m_nClrImportant = 0x1000000;
    head.m_nSizeImage = 48;
    EXPECT_EQ(aFile, FileBytes(Block(head, {}, NoisePixels(head)), 54));
    EXPECT_EQ(aBlock, Block(head, GreyPalette(7), NoisePixels(head)));
}

TEST(BitmapStore, CutsTheColourCountsToTheDepth) {
    StHead head = Head(5, 3, 4);
    head.m_nClrUsed = 20;
    head.m_nClrImportant = 19;
    Bytes aBlock = Block(head, GreyPalette(20), NoisePixels(head));
    const Bytes aFile = StoredFrom(aBlock);
    std::vector<std::uint32_t> aKept = GreyPalette(20);
    aKept.resize(16);
    head.m_nClrUsed = 16;
    head.m_nClrImportant = 16;
    head.m_nSizeImage = 12;
    EXPECT_EQ(aFile, FileBytes(Block(head, aKept, NoisePixels(head)), 54 + 64));
}

TEST(BitmapStore, CutsNoImportantColoursOf32Bits) {
    StHead head = Head(5, 3, 32);
    head.m_nClrImportant = 0xFFFFFFFF;
    head.m_nSizeImage = 60;
    Bytes aBlock = UsualBlock(head);
    EXPECT_EQ(StoredFrom(aBlock), FileBytes(UsualBlock(head), 54));
}

TEST(BitmapStore, WritesAShortPalette) {
    StHead head = Head(5, 3, 8);
    head.m_nClrUsed = 5;
    head.m_nSizeImage = 24;
    Bytes aBlock = Block(head, GreyPalette(5), NoisePixels(head));
    EXPECT_EQ(StoredFrom(aBlock), FileBytes(aBlock, 54 + 20));
}

TEST(BitmapStore, WritesMasks) {
    StHead head = Head(5, 3, 16);
    head.m_nCompression = 3;
    head.m_nClrUsed = 9;
    head.m_nSizeImage = 36;
    Bytes aBlock = Block(head, {0xF800, 0x07E0, 0x001F}, NoisePixels(head));
    head.m_nClrUsed = 0;
    const Bytes aExpected = Block(head, {0xF800, 0x07E0, 0x001F}, NoisePixels(head));
    EXPECT_EQ(StoredFrom(aBlock), FileBytes(aExpected, 66));
}

TEST(BitmapStore, NeedsTheSizeOfPixelsThatAreNotPlain) {
    for (std::uint32_t nCompression : {1u, 2u, 3u}) {
        StHead head = Head(5, 3, 8);
        head.m_nCompression = nCompression;
        head.m_nClrUsed = 256;
        head.m_nClrImportant = 999;
        Bytes aBlock = Block(head, GreyPalette(), NoisePixels(head));
        const Bytes aBefore = aBlock;
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), aBlock.size());
        ClMemStream stream;
        EXPECT_THROWS(bitmap.Store(stream), ClException, -33,
                      "Bitmap Store: Combination of biSizeImage not set and compression set to "
                      "other than plain not allowed");
        EXPECT_EQ(stream.Size(), 0u);
        EXPECT_EQ(aBlock, aBefore);
    }
}

TEST(BitmapStore, WritesNoPixelsOfNegativeSize) {
    StHead head = Head(4, -3, 24);
    Bytes aBlock = HeaderBytes(head);
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), 0);
    EXPECT_EQ(Stored(bitmap), FileBytes(HeaderBytes(head), 54));
}

TEST(BitmapStore, NeedsHeaderPaletteAndPixels) {
    ClMemStream stream;
    EXPECT_TESSARIN(ClBitmap().Store(stream), -10);
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    for (std::size_t nSize : {40u, 1064u}) {
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), nSize);
        EXPECT_TESSARIN(bitmap.Store(stream), -10);
    }
    EXPECT_EQ(stream.Size(), 0u);
}

TEST(BitmapStore, StoresWhatItLoads) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        const ClBitmap bitmap(UsualBlock(Head(7, 4, nBits)).data(), true);
        const Bytes aFile = Stored(bitmap);
        ClBitmap back;
        Load(back, aFile);
        EXPECT_TRUE(back == bitmap);
        EXPECT_EQ(Stored(back), aFile);
    }
}

TEST(BitmapStore, StoresAnImage) {
    ClImage image(5, 3, 1, 19685, 9843);
    image = static_cast<unsigned char>(200);
    const Bytes aFile = Stored(ClBitmap(image, false));
    StHead head = Head(5, 3, 8);
    head.m_nSizeImage = 24;
    EXPECT_EQ(aFile, FileBytes(Block(head, GreyPalette(), Bytes(24, 200)), 1078));
}

TEST(BitmapStore, WritesLittleEndianWhateverTheStreamDoes) {
    const ClBitmap bitmap(5, 3, 8, 0);
    const Bytes aExpected = Stored(bitmap);
    for (bool bBigEndian : {false, true}) {
        ClMemStream stream;
        stream.SetBigEndian4Write(bBigEndian);
        bitmap.Store(stream);
        EXPECT_EQ(Bytes(stream.GetData(), stream.GetData() + stream.Size()), aExpected);
        EXPECT_EQ(stream.GetBigEndian4Write(), bBigEndian);
        EXPECT_TRUE(stream.GetBigEndian4Read());
    }
}

TEST(BitmapStore, NoticesEveryShortWrite) {
    const ClBitmap bitmap(UsualBlock(Head(5, 3, 4)).data(), true);
    const std::size_t nWhole = Stored(bitmap).size();
    for (std::size_t nRoom = 0; nRoom < nWhole; ++nRoom) {
        ClPipe lax({}, nRoom);
        EXPECT_THROWS(bitmap.Store(lax), ClExStreamFailToWrite, -202,
                      "Failed to write into stream");
        EXPECT_TRUE(lax.GetBigEndian4Write());
        ClPipe strict({}, nRoom);
        strict.SetThrowOnShort(true);
        if (nRoom < 54) {
            EXPECT_THROWS(bitmap.Store(strict), ClExStreamUnexpectedEnd, -201,
                          "Unexpected end of stream");
        } else {
            EXPECT_THROWS(bitmap.Store(strict), ClExStreamFailToWrite, -202,
                          "Failed to write into stream");
        }
        EXPECT_TRUE(strict.GetBigEndian4Write());
    }
    ClPipe enough({}, nWhole);
    bitmap.Store(enough);
    EXPECT_EQ(enough.Written(), Stored(bitmap));
}

TEST(BitmapStore, PassesOnWhatTheStreamThrows) {
    const ClBitmap bitmap(5, 3, 8, 0);
    unsigned char aSmall[100];
    ClMemStream stream(aSmall, sizeof aSmall, true);
    EXPECT_THROWS(bitmap.Store(stream), ClExStream, -204,
                  "ClMemStream::ExpandData. Stream too small");
    EXPECT_TRUE(stream.GetBigEndian4Write());
    ClMemStream pending;
    pending.WriteBits(1, 3);
    EXPECT_THROWS(bitmap.Store(pending), ClException, -39,
                  "the last bit I/O was finish with out bitflush.");
}
