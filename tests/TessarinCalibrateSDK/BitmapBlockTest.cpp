#include "TessarinCalibrateSDK/BitmapBlock.h"

#include "Tools/FpImage.h"
#include "support/AllocationCount.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/GuardedMemory.h"
#include "support/Throws.h"

#include <climits>

using TestSupport::Bytes;
using TestSupport::ClGuardedBlock;
using TestSupport::StHead;
using TestSupport::UsualBlock;

namespace {

tagBITMAPINFOHEADER Header(const StHead& Head) {
    tagBITMAPINFOHEADER header;
    const Bytes aBytes = HeaderBytes(Head);
    std::memcpy(&header, aBytes.data(), sizeof header);
    return header;
}

StHead Head(std::int64_t nWidth, std::int64_t nHeight, int nBits, std::uint32_t nClrUsed = 0,
            std::uint32_t nCompression = 0) {
    StHead Result;
    Result.m_nWidth = nWidth;
    Result.m_nHeight = nHeight;
    Result.m_nBits = nBits;
    Result.m_nClrUsed = nClrUsed;
    Result.m_nCompression = nCompression;
    return Result;
}

std::uint64_t Size(const StHead& Shape) {
    return BitmapBlock::SizeByRule(Header(Shape));
}

long Copied(const Bytes& aBlock, std::size_t nSize) {
    const ClGuardedBlock Guarded(aBlock, nSize);
    ClBitmap Bitmap;
    try {
        return BitmapBlock::Copy(Guarded.Data(), nSize, Bitmap);
    } catch (const ClException& e) {
        return e.Number();
    }
}

} // namespace

// Sizes

TEST(BitmapBlock, SizeIsHeaderPaletteAndPaddedLines) {
    EXPECT_EQ(Size(Head(320, 480, 8)), 40u + 1024 + 320 * 480);
    EXPECT_EQ(Size(Head(321, 2, 8)), 40u + 1024 + 324 * 2);
    EXPECT_EQ(Size(Head(1, 1, 1)), 40u + 8 + 4);
    EXPECT_EQ(Size(Head(33, 3, 1)), 40u + 8 + 8 * 3);
    EXPECT_EQ(Size(Head(9, 2, 4)), 40u + 64 + 8 * 2);
    EXPECT_EQ(Size(Head(3, 5, 16)), 40u + 8 * 5);
    EXPECT_EQ(Size(Head(3, 5, 24)), 40u + 12 * 5);
    EXPECT_EQ(Size(Head(3, 5, 32)), 40u + 12 * 5);
    EXPECT_EQ(Size(Head(0, 7, 8)), 40u + 1024);
    EXPECT_EQ(Size(Head(7, 0, 8)), 40u + 1024);
}

TEST(BitmapBlock, PaletteIsWhatClrUsedSaysOrTheDepth) {
    EXPECT_EQ(Size(Head(4, 1, 8, 0)), 40u + 1024 + 4);
    EXPECT_EQ(Size(Head(4, 1, 8, 256)), 40u + 1024 + 4);
    EXPECT_EQ(Size(Head(4, 1, 8, 16)), 40u + 64 + 4);
    EXPECT_EQ(Size(Head(4, 1, 8, 1000)), 40u + 4000 + 4);
    EXPECT_EQ(Size(Head(4, 1, 8, 16, 3)), 40u + 64 + 4);
    EXPECT_EQ(Size(Head(1, 1, 24, 5)), 40u + 20 + 4);
    EXPECT_EQ(Size(Head(1, 1, 16, 0, 3)), 40u + 12 + 4);
    EXPECT_EQ(Size(Head(1, 1, 32, 99, 3)), 40u + 12 + 4);
    EXPECT_EQ(Size(Head(1, 1, 32, 99, 1)), 40u + 396 + 4);
}

TEST(BitmapBlock, SizeTakesNoNoticeOfSizeImage) {
    StHead Shape = Head(4, 1, 8);
    Shape.m_nSizeImage = 123456;
    EXPECT_EQ(Size(Shape), 40u + 1024 + 4);
}

TEST(BitmapBlock, SizeCountsNegativeTermsAsUnsigned) {
    EXPECT_EQ(Size(Head(4, -1, 8)), 40u + 1024 + 4294967292ull);
    EXPECT_EQ(Size(Head(-4, 1, 8)), 40u + 1024 + 4294967292ull);
    EXPECT_EQ(Size(Head(-8, -1, 8)), 40u + 1024 + 8); // (-64 + 7) >> 3 is -8, a line -8
    EXPECT_EQ(Size(Head(-1, -1, 8)), 40u + 1024);     // (-8 + 7) >> 3 is -1, a line 0
}

TEST(BitmapBlock, SizesThatOverflow32BitsAreNone) {
    EXPECT_EQ(Size(Head(INT_MAX, 1, 8)), 0u);                       // bits of a line
    EXPECT_EQ(Size(Head(268435454, 1, 8)), 40u + 1024 + 268435456); // 2^31 - 16 + 7 bits
    EXPECT_EQ(Size(Head(268435455, 1, 8)), 40u + 1024 + 268435456); // 2^31 - 8 + 7 bits
    EXPECT_EQ(Size(Head(268435456, 1, 8)), 0u);
    EXPECT_EQ(Size(Head(INT_MIN, 1, 8)), 0u);
    EXPECT_EQ(Size(Head(65536, 32767, 8)), 40u + 1024 + 2147418112u);
    EXPECT_EQ(Size(Head(65536, 32768, 8)), 0u); // pixels
    EXPECT_EQ(Size(Head(65536, -32768, 8)), 40u + 1024 + 2147483648u);
    EXPECT_EQ(Size(Head(65536, -32769, 8)), 0u);
    EXPECT_EQ(Size(Head(65536, INT_MAX, 8)), 0u);
    EXPECT_EQ(Size(Head(65536, INT_MIN, 8)), 0u);
    EXPECT_EQ(Size(Head(INT_MAX, INT_MAX, 32)), 0u); // not even 64 bits hold it
    EXPECT_EQ(Size(Head(INT_MIN, INT_MIN, 32)), 0u);
    EXPECT_EQ(Size(Head(4, 1, 8, 0x3FFFFFFF)), 40u + 4294967292ull + 4);
    EXPECT_EQ(Size(Head(4, 1, 8, 0x40000000)), 0u); // palette
    EXPECT_EQ(Size(Head(4, 1, 24, 0xFFFFFFFF)), 0u);
}

// Copies

TEST(BitmapBlock, CopyTakesExactlyTheBlock) {
    for (const int nBits : {1, 4, 8, 16, 24, 32}) {
        const Bytes aBlock = UsualBlock(Head(13, 5, nBits));
        const ClGuardedBlock Guarded(aBlock);
        ClBitmap Bitmap;
        ASSERT_EQ(BitmapBlock::Copy(Guarded.Data(), aBlock.size(), Bitmap), 0) << nBits;
        Bytes aBack(aBlock.size());
        Bitmap.CopyTo(aBack.data());
        EXPECT_EQ(aBack, aBlock);
    }
}

TEST(BitmapBlock, CopyRefusesEveryOtherSize) {
    Bytes aBlock = UsualBlock(Head(13, 5, 8));
    const std::size_t nSize = aBlock.size();
    for (std::size_t n = 0; n < nSize; ++n)
        EXPECT_EQ(Copied(aBlock, n), -21) << n;
    aBlock.resize(nSize + 64);
    for (std::size_t n = nSize + 1; n < aBlock.size(); ++n)
        EXPECT_EQ(Copied(aBlock, n), -21) << n;
}

TEST(BitmapBlock, CopyTestsTheHeaderBeforeTheSize) {
    const auto NumberOf = [](const StHead& Shape) {
        Bytes aBlock = HeaderBytes(Shape);
        return Copied(aBlock, aBlock.size());
    };
    StHead Shape = Head(13, 5, 2);
    Shape.m_nCompression = 4;
    Shape.m_nPlanes = 0;
    Shape.m_nSize = 0x4D42; // "BM"
    EXPECT_EQ(NumberOf(Shape), -36);
    Shape.m_nSize = 41;
    EXPECT_EQ(NumberOf(Shape), -32);
    Shape.m_nSize = 40;
    EXPECT_EQ(NumberOf(Shape), -11);
    Shape.m_nPlanes = 1;
    EXPECT_EQ(NumberOf(Shape), -31);
    Shape.m_nCompression = 0;
    EXPECT_EQ(NumberOf(Shape), -12);
    Shape.m_nBits = 8;
    EXPECT_EQ(NumberOf(Shape), -21);
}

TEST(BitmapBlock, CopyOfLessThanAHeaderReadsNothing) {
    const Bytes aFileHeader = {'B', 'M'};
    EXPECT_EQ(Copied(aFileHeader, 2), -21);
    ClBitmap Bitmap;
    EXPECT_EQ(BitmapBlock::Copy(reinterpret_cast<const unsigned char*>(16), 39, Bitmap), -21);
}

TEST(BitmapBlock, CopySurvivesMissingMemory) {
    const Bytes aBlock = UsualBlock(Head(13, 5, 8));
    TestSupport::FailEachAllocation([&] {
        ClBitmap Bitmap;
        BitmapBlock::Copy(aBlock.data(), aBlock.size(), Bitmap);
        ClImage Image;
        BitmapBlock::Attach(Bitmap, Image);
    });
}

// Images

namespace {

/// Attaches an image to a block and returns the number thrown, or 0.
long Attached(const Bytes& aBlock, ClImage& rImage) {
    ClBitmap Bitmap;
    EXPECT_EQ(BitmapBlock::Copy(aBlock.data(), aBlock.size(), Bitmap), 0);
    try {
        BitmapBlock::Attach(Bitmap, rImage);
    } catch (const ClException& e) {
        return e.Number();
    }
    return 0;
}

Bytes Block(const StHead& Shape) {
    Bytes aBlock = HeaderBytes(Shape);
    aBlock.resize(Size(Shape));
    return aBlock;
}

} // namespace

TEST(BitmapBlock, AttachSharesThePixels) {
    StHead Shape = Head(13, 5, 8);
    Shape.m_nPelsX = 19685;
    Shape.m_nPelsY = 39370;
    const Bytes aBlock = UsualBlock(Shape);
    ClImage Image;
    ASSERT_EQ(Attached(aBlock, Image), 0);
    EXPECT_EQ(Image.Width(), 13);
    EXPECT_EQ(Image.Height(), 5);
    EXPECT_EQ(Image.Planes(), 1);
    EXPECT_EQ(Image.Content(), ClImage::eGrayscale);
    EXPECT_EQ(Image.PelsX(), 19685);
    EXPECT_EQ(Image.PelsY(), 39370);
    EXPECT_EQ(std::memcmp(Image.Data(), &aBlock[40 + 1024], 16 * 5), 0);
}

TEST(BitmapBlock, AttachRefusesDepthsThatNoImageHas) {
    for (const int nBits : {1, 4, 16})
        for (const std::uint32_t nCompression : {0u, 1u, 2u, 3u}) {
            ClImage Image;
            EXPECT_EQ(Attached(Block(Head(8, 8, nBits, 0, nCompression)), Image), -12);
        }
}

TEST(BitmapBlock, AttachLeavesCompressedAndColouredBlocksToTheProcessor) {
    for (const std::uint32_t nCompression : {1u, 2u, 3u})
        for (const int nBits : {8, 24, 32}) {
            ClImage Image;
            EXPECT_EQ(Attached(Block(Head(8, 8, nBits, 0, nCompression)), Image), 0);
            EXPECT_EQ(Image.Planes(), 0);
        }
    ClImage Colour;
    EXPECT_EQ(Attached(Block(Head(8, 8, 24)), Colour), 0);
    EXPECT_EQ(Colour.Planes(), 3);
    EXPECT_EQ(Attached(Block(Head(8, 8, 32)), Colour), 0);
    EXPECT_EQ(Colour.Planes(), 4);
    EXPECT_EQ(Attached(Block(Head(0, 8, 24)), Colour), 0);
}

TEST(BitmapBlock, AttachTakesASinglePixel) {
    ClImage Image;
    EXPECT_EQ(Attached(Block(Head(1, 1, 8)), Image), 0);
    EXPECT_EQ(Image.Width(), 1);
    EXPECT_EQ(Image.Height(), 1);
}

TEST(BitmapBlock, AttachRefusesAnAreaWithoutPixels) {
    for (const StHead& Shape : {Head(0, 8, 8), Head(8, 0, 8), Head(0, 0, 8), Head(-8, -1, 8),
                                Head(-1, -1, 8), Head(-1, -8, 8)}) {
        const Bytes aBlock = Block(Shape);
        ClBitmap Bitmap;
        ASSERT_EQ(BitmapBlock::Copy(aBlock.data(), aBlock.size(), Bitmap), 0);
        ClImage Image;
        EXPECT_THROWS(BitmapBlock::Attach(Bitmap, Image), ClException, -101,
                      "Image area must be positive");
    }
}

// Both in one

namespace {

/// What becomes of a block: the code or the number thrown, and the image.
struct StTaken {
    long m_nCode = 0;
    ClImage m_Image;
};

template <class Take>
void TakeBlock(StTaken& rTaken, Take take) {
    try {
        rTaken.m_nCode = take(rTaken.m_Image);
    } catch (const ClException& e) {
        rTaken.m_nCode = e.Number();
    }
}

void ExpectTakenAsByTwoSteps(const Bytes& aBlock, unsigned long nSize, ClImage& rKept) {
    StTaken Expected;
    TakeBlock(Expected, [&](ClImage& rImage) {
        ClBitmap Bitmap;
        const long nCode = BitmapBlock::Copy(aBlock.data(), nSize, Bitmap);
        if (nCode == 0)
            BitmapBlock::Attach(Bitmap, rImage);
        return nCode;
    });
    StTaken Taken;
    Taken.m_Image.Swap(rKept);
    TakeBlock(Taken, [&](ClImage& rImage) {
        return BitmapBlock::CopyToImage(aBlock.data(), nSize, rImage);
    });
    EXPECT_EQ(Taken.m_nCode, Expected.m_nCode);
    if (Expected.m_nCode == 0) {
        const ClImage& Image = Taken.m_Image;
        const ClImage& Other = Expected.m_Image;
        EXPECT_EQ(Image.Width(), Other.Width());
        EXPECT_EQ(Image.Height(), Other.Height());
        EXPECT_EQ(Image.Planes(), Other.Planes());
        EXPECT_EQ(Image.PelsX(), Other.PelsX());
        EXPECT_EQ(Image.PelsY(), Other.PelsY());
        EXPECT_EQ(Image.DataType(), Other.DataType());
        EXPECT_EQ(Image.Content(), Other.Content());
        ASSERT_EQ(Image.SizeBytes(), Other.SizeBytes());
        if (Image.SizeBytes() > 0) {
            EXPECT_EQ(std::memcmp(Image.Data(), Other.Data(), Image.SizeBytes()), 0);
        }
    }
    rKept.Swap(Taken.m_Image);
}

} // namespace

TEST(BitmapBlock, CopyToImageDoesWhatCopyAndAttachDo) {
    constexpr int canSides[][2] = {{13, 5}, {13, 5}, {8, 5}, {0, 5}, {8, 0}, {-8, -1}};
    ClImage Kept; // from block to block
    unsigned char nByte = 0;
    for (const int nBits : {1, 4, 8, 16, 24, 32})
        for (const std::uint32_t nCompression : {0u, 1u, 3u})
            for (const auto& [nWidth, nHeight] : canSides) {
                StHead Shape = Head(nWidth, nHeight, nBits, nBits == 8 ? 17 : 0, nCompression);
                Shape.m_nPelsX = 19685 + nWidth;
                Shape.m_nPelsY = 39370 + nHeight;
                Bytes aBlock = Block(Shape);
                for (std::size_t i = 40; i < aBlock.size(); ++i)
                    aBlock[i] = ++nByte;
                SCOPED_TRACE(testing::Message() << nBits << " bits, compression " << nCompression
                                                << ", " << nWidth << " x " << nHeight);
                ExpectTakenAsByTwoSteps(aBlock, aBlock.size(), Kept);
                ClImage Fresh; // which has the buffer that no pixels need
                ExpectTakenAsByTwoSteps(aBlock, aBlock.size(), Fresh);
                ExpectTakenAsByTwoSteps(aBlock, aBlock.size() - 1, Kept);
                ExpectTakenAsByTwoSteps(aBlock, 39, Kept);
            }
}

TEST(BitmapBlock, CopyToImageKeepsTheBufferForTheNextBlockOfTheSize) {
    const Bytes aBlock = UsualBlock(Head(13, 5, 8));
    ClImage Image;
    ASSERT_EQ(BitmapBlock::CopyToImage(aBlock.data(), aBlock.size(), Image), 0);
    const TestSupport::ClCountAllocations count;
    ASSERT_EQ(BitmapBlock::CopyToImage(aBlock.data(), aBlock.size(), Image), 0);
    EXPECT_EQ(count.SoFar().m_nCount, 0);
}
