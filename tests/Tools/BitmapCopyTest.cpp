#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "support/AllocationCount.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

using namespace TestSupport;

namespace {

/// Blocks whose palettes are shorter, as long and longer than their depth needs.
std::vector<Bytes> Blocks() {
    std::vector<Bytes> aBlocks;
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (std::uint32_t nClrUsed : {0u, 1u, 5u, 300u}) {
            StHead head = Head(7, 3, nBits);
            head.m_nClrUsed = nClrUsed;
            std::vector<std::uint32_t> aPalette(nClrUsed, 0x01020304u);
            if (nBits <= 8 && nClrUsed == 0)
                aPalette = GreyPalette(1u << nBits);
            aBlocks.push_back(Block(head, aPalette, NoisePixels(head)));
        }
    for (int nBits : {16, 24, 32}) {
        StHead head = Head(7, 3, nBits);
        head.m_nCompression = 3;
        aBlocks.push_back(Block(head, {31, 992, 31744}, NoisePixels(head)));
    }
    return aBlocks;
}

} // namespace

TEST(BitmapCopy, WritesBackTheBlockThatItIsAttachedTo) {
    for (Bytes aBlock : Blocks()) {
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), aBlock.size());
        EXPECT_EQ(Written(bitmap), aBlock);
    }
}

TEST(BitmapCopy, WritesWithoutTheFileHeader) {
    const Bytes aBlock = UsualBlock(Head(7, 3, 8));
    Bytes aFile = FileBytes(aBlock, 1078);
    ClBitmap bitmap;
    bitmap.Attach(aFile.data(), aFile.size());
    EXPECT_EQ(Written(bitmap), aBlock);
}

TEST(BitmapCopy, CopiesABlockInWhole) {
    for (const Bytes& aBlock : Blocks()) {
        auto pBlock = Exactly(aBlock, aBlock.size());
        ClBitmap bitmap;
        bitmap.CopyFrom(pBlock.get(), true);
        pBlock.reset(); // the copy needs nothing of it
        EXPECT_EQ(Written(bitmap), aBlock);
        EXPECT_EQ(bitmap.Pixels() - reinterpret_cast<const unsigned char*>(bitmap.Header()),
                  static_cast<long>(aBlock.size()) - ClBitmap::PixelBytes(*bitmap.Header()));
    }
}

TEST(BitmapCopy, SharesThePixelsOfABlockOnRequest) {
    for (Bytes aBlock : Blocks()) {
        ClBitmap bitmap;
        bitmap.CopyFrom(aBlock.data(), false);
        EXPECT_EQ(Written(bitmap), aBlock);
        EXPECT_EQ(bitmap.Pixels(),
                  aBlock.data() + aBlock.size() - ClBitmap::PixelBytes(*bitmap.Header()));
        EXPECT_NE(reinterpret_cast<const unsigned char*>(bitmap.Header()), aBlock.data());
    }
}

TEST(BitmapCopy, ChecksTheHeaderOfABlock) {
    ClBitmap bitmap(2, 2, 8, 0);
    const unsigned char* pPixels = bitmap.Pixels();
    const Bytes aFile = FileBytes(UsualBlock(Head(7, 3, 8)), 1078);
    StHead head = Head(7, 3, 8);
    head.m_nBits = 2;
    EXPECT_THROWS(bitmap.CopyFrom(static_cast<const unsigned char*>(nullptr), true), ClException,
                  -10, "ClBitmap::Attach, Pointer is NULL.");
    EXPECT_THROWS(bitmap.CopyFrom(aFile.data(), true), ClException, -36,
                  "ClBitmap::Attach, Bitmapfileheader found Bitmapinfoheader expected.");
    EXPECT_THROWS(bitmap.CopyFrom(HeaderBytes(head).data(), true), ClException, -12,
                  "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!");
    EXPECT_EQ(bitmap.Pixels(), pPixels);
}

TEST(BitmapCopy, CopiesNoPixelsOfNegativeSize) {
    StHead head = Head(4, -3, 24);
    const Bytes aBlock = HeaderBytes(head);
    const auto pBlock = Exactly(aBlock, 40);
    ClBitmap bitmap;
    bitmap.CopyFrom(pBlock.get(), true);
    EXPECT_EQ(Written(bitmap), aBlock);
    bitmap = static_cast<unsigned char>(1);
    EXPECT_TRUE(bitmap == ClBitmap(bitmap, true));
}

TEST(BitmapCopy, CopiesAnotherBitmap) {
    for (Bytes aBlock : Blocks()) {
        ClBitmap source;
        source.Attach(aBlock.data(), aBlock.size());
        ClBitmap deep;
        deep.CopyFrom(source, true);
        ClBitmap shared;
        shared.CopyFrom(source, false);
        EXPECT_TRUE(deep == source);
        EXPECT_TRUE(shared == source);
        EXPECT_NE(deep.Pixels(), source.Pixels());
        EXPECT_EQ(shared.Pixels(), source.Pixels());
        EXPECT_NE(shared.Header(), source.Header());
    }
}

TEST(BitmapCopy, KeepsSharedPixelsAliveWithoutTheirFirstBitmap) {
    ClBitmap shared;
    {
        ClBitmap source(5, 5, 8, 0);
        source = static_cast<unsigned char>(77);
        shared.CopyFrom(source, false);
    }
    EXPECT_EQ(shared.Line(4)[4], 77);
}

TEST(BitmapCopy, CopiesAHeaderWithNothingBehindIt) {
    Bytes aBlock = UsualBlock(Head(7, 3, 8));
    for (std::size_t nSize : {40u, 1064u}) {
        const auto pBlock = Exactly(aBlock, nSize);
        ClBitmap source;
        source.Attach(pBlock.get(), nSize);
        for (bool bPixels : {false, true}) {
            ClBitmap copy;
            copy.CopyFrom(source, bPixels);
            EXPECT_TRUE(copy == source);
            EXPECT_EQ(copy.Pixels(), nullptr);
            EXPECT_EQ(copy.Palette() != nullptr, nSize == 1064);
            EXPECT_TESSARIN(Written(copy), -10);
            EXPECT_TESSARIN(copy = static_cast<unsigned char>(0), -10);
        }
    }
}

TEST(BitmapCopy, AssignsWithPixels) {
    Bytes aBlock = UsualBlock(Head(7, 3, 8));
    ClBitmap source;
    source.Attach(aBlock.data(), aBlock.size());
    ClBitmap copy;
    copy = source;
    EXPECT_TRUE(copy == source);
    EXPECT_NE(copy.Pixels(), source.Pixels());
    const unsigned char* pPixels = copy.Pixels();
    ClBitmap& same = copy;
    copy = same;
    EXPECT_EQ(copy.Pixels(), pPixels);
    copy = ClBitmap();
    EXPECT_EQ(copy.Header(), nullptr);
}

TEST(BitmapCopy, ConstructsByCopyingOrAttaching) {
    Bytes aBlock = UsualBlock(Head(7, 3, 8));
    EXPECT_EQ(ClBitmap(aBlock.data(), false).Pixels(), aBlock.data() + 1064);
    EXPECT_NE(ClBitmap(aBlock.data(), true).Pixels(), aBlock.data() + 1064);
    EXPECT_EQ(Written(ClBitmap(aBlock.data(), true)), aBlock);
    const ClBitmap source(aBlock.data(), false);
    EXPECT_EQ(ClBitmap(source, false).Header(), source.Header());
    EXPECT_NE(ClBitmap(source, true).Pixels(), source.Pixels());
    EXPECT_TRUE(ClBitmap(source, true) == source);
}

TEST(BitmapCopy, RefusesANullTarget) {
    const ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_TESSARIN(bitmap.CopyTo(nullptr), -10);
}

TEST(BitmapCopy, CountsWhatItWrites) {
    for (Bytes aBlock : Blocks())
        EXPECT_EQ(ClBitmap::BlockBytes(*ClBitmap::MemToBitmapInfoHeader(aBlock.data())),
                  aBlock.size());
}

TEST(BitmapCopy, FillsLinesWithTheirPadding) {
    ClBitmap bitmap(5, 3, 8, 0);
    bitmap = static_cast<unsigned char>(9);
    const Bytes aPixels(bitmap.Pixels(), bitmap.Pixels() + 24);
    EXPECT_EQ(aPixels, Bytes(24, 9));
    EXPECT_EQ(bitmap.Palette()[255].rgbRed, 255);
}

// Comparing

TEST(BitmapCopy, IsEqualToACopyAndToNothingElse) {
    const Bytes aBlock = UsualBlock(Head(5, 3, 8));
    const ClBitmap bitmap(Bytes(aBlock).data(), true);
    for (std::size_t i = 0; i < aBlock.size(); ++i) {
        Bytes aOther = aBlock;
        aOther[i] = static_cast<unsigned char>(aOther[i] ^ 1);
        ClBitmap other;
        try {
            other.Attach(aOther.data(), 0);
        } catch (const ClException&) {
            continue; // no bitmap any more
        }
        EXPECT_FALSE(bitmap == other) << "byte " << i;
        EXPECT_TRUE(bitmap != other) << "byte " << i;
    }
    EXPECT_TRUE(bitmap == ClBitmap(bitmap, true));
}

TEST(BitmapCopy, ComparesMissingParts) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    ClBitmap whole;
    ClBitmap headed;
    whole.Attach(aBlock.data(), aBlock.size());
    headed.Attach(aBlock.data(), 40);
    EXPECT_FALSE(whole == headed);
    EXPECT_FALSE(headed == whole);
    EXPECT_TRUE(headed == headed);
    EXPECT_FALSE(whole == ClBitmap());
    EXPECT_FALSE(ClBitmap() == whole);
    EXPECT_TRUE(ClBitmap() == ClBitmap());
}

TEST(BitmapCopy, ComparesSizesByWidthAndHeight) {
    const ClBitmap bitmap(5, 3, 8, 0);
    EXPECT_TRUE(bitmap.IsEqualSize(ClBitmap(5, 3, 24, 0)));
    EXPECT_FALSE(bitmap.IsEqualSize(ClBitmap(5, 4, 8, 0)));
    EXPECT_FALSE(bitmap.IsEqualSize(ClBitmap(6, 3, 8, 0)));
    EXPECT_TESSARIN(bitmap.IsEqualSize(ClBitmap()), -10);
}

// Missing memory

TEST(BitmapCopy, KeepsWhatItHadWhereMemoryIsMissing) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    const ClBitmap source(aBlock.data(), true);
    ClImage image(5, 3, 1, 0, 0);
    ClBitmap bitmap(2, 2, 8, 0);
    const unsigned char* pPixels = bitmap.Pixels();
    const auto failEach = [&](auto work) {
        FailEachAllocation([&] {
            try {
                work();
                pPixels = bitmap.Pixels();
            } catch (const ClExBadAlloc&) {
                EXPECT_EQ(bitmap.Pixels(), pPixels);
                throw;
            }
        });
    };
    failEach([&] { bitmap.CopyFrom(source, true); });
    failEach([&] { bitmap.CopyFrom(source, false); });
    failEach([&] { bitmap.CopyFrom(aBlock.data(), true); });
    failEach([&] { bitmap.CopyFrom(aBlock.data(), false); });
    failEach([&] { bitmap.CopyFrom(image, true); });
    failEach([&] { bitmap.CopyFrom(image, false); });
    failEach([&] { bitmap.Create(9, 9, 24, 0); });
    failEach([&] { bitmap.Create(source); });
}

TEST(BitmapCopy, TakesNoRoomForAPaletteThatIsOnlyClaimed) {
    StHead head = Head(7, 3, 24);
    head.m_nClrUsed = 0xFFFFFFE6;
    Bytes aBlock = HeaderBytes(head);
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    const ClCountAllocations Count;
    ClBitmap copy;
    copy = bitmap;
    EXPECT_LE(Count.SoFar().m_nLargest, 1024u);
    EXPECT_EQ(std::uint32_t{copy.Header()->biClrUsed}, 0xFFFFFFE6u);
    EXPECT_EQ(copy.Palette(), nullptr);
    EXPECT_EQ(copy.Pixels(), nullptr);
}
