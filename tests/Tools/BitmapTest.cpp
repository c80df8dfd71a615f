#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "support/BitmapBlocks.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <type_traits>

using namespace TestSupport;

static_assert(std::has_virtual_destructor_v<ClBitmap>);
static_assert(!std::is_copy_constructible_v<ClBitmap>);

namespace {

tagBITMAPINFOHEADER Fields(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits,
                           std::uint32_t nCompression = 0, std::uint32_t nClrUsed = 0) {
    tagBITMAPINFOHEADER header{};
    header.biWidth = nWidth;
    header.biHeight = nHeight;
    header.biBitCount = nBits;
    header.biCompression = nCompression;
    header.biClrUsed = nClrUsed;
    return header;
}

/// Offset of the pixels from the header after attaching to the block.
long PixelOffset(Bytes aBlock) {
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    return bitmap.Pixels() - aBlock.data();
}

} // namespace

// Header checks

TEST(Bitmap, RefusesANullHeader) {
    EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(nullptr), ClException, -10,
                  "ClBitmap::Attach, Pointer is NULL.");
}

TEST(Bitmap, RefusesAFileHeaderWhereAnInfoHeaderIsExpected) {
    Bytes aBlock = FileBytes(UsualBlock({}), 1078);
    EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(aBlock.data()), ClException, -36,
                  "ClBitmap::Attach, Bitmapfileheader found Bitmapinfoheader expected.");
}

TEST(Bitmap, SkipsThatFileHeaderWhenAttaching) {
    Bytes aBlock = FileBytes(UsualBlock({}), 1078);
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    EXPECT_EQ(reinterpret_cast<const unsigned char*>(bitmap.Header()), aBlock.data() + 14);
}

TEST(Bitmap, RefusesASecondFileHeader) {
    Bytes aBlock = FileBytes(FileBytes(UsualBlock({}), 1078), 1078);
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Attach(aBlock.data(), aBlock.size()), ClException, -36,
                  "ClBitmap::Attach, Bitmapfileheader found Bitmapinfoheader expected.");
}

// Every header below has the defects of all later rows, too: the first row decides.

TEST(Bitmap, RefusesAnUnknownHeaderSizeFirst) {
    for (std::uint32_t nSize : {0u, 12u, 39u, 41u, 108u, 124u, 0x80000028u}) {
        StHead head;
        head.m_nSize = nSize;
        head.m_nPlanes = 2;
        head.m_nCompression = 4;
        head.m_nBits = 2;
        EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(HeaderBytes(head).data()), ClException, -32,
                      "ClBitmap::Attach, Bitmap Header size is not known.");
    }
}

TEST(Bitmap, RefusesAPlaneCountOtherThanOneSecond) {
    for (int nPlanes : {0, 2, 257, 65535}) {
        StHead head;
        head.m_nPlanes = nPlanes;
        head.m_nCompression = 4;
        head.m_nBits = 2;
        EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(HeaderBytes(head).data()), ClException, -11,
                      "ClBitmap::Attach, pBI->biPlanes != 1.");
    }
}

TEST(Bitmap, RefusesAnUnknownCompressionThird) {
    for (std::uint32_t nCompression : {4u, 5u, 0x34363248u, 0xFFFFFFFFu}) {
        StHead head;
        head.m_nCompression = nCompression;
        head.m_nBits = 2;
        EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(HeaderBytes(head).data()), ClException, -31,
                      "ClBitmap::Attach, Not Supported FOCC.");
    }
}

TEST(Bitmap, RefusesAnUnknownDepthLast) {
    for (int nBits : {0, 2, 3, 7, 9, 12, 15, 31, 33, 64, 264}) {
        StHead head;
        head.m_nBits = nBits;
        EXPECT_THROWS(ClBitmap::MemToBitmapInfoHeader(HeaderBytes(head).data()), ClException, -12,
                      "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!");
    }
}

TEST(Bitmap, AcceptsEveryKnownDepthAndCompression) {
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (std::uint32_t nCompression : {0u, 1u, 2u, 3u}) {
            StHead head;
            head.m_nBits = nBits;
            head.m_nCompression = nCompression;
            const Bytes aHeader = HeaderBytes(head);
            const auto* pBI = ClBitmap::MemToBitmapInfoHeader(aHeader.data());
            EXPECT_EQ(reinterpret_cast<const unsigned char*>(pBI), aHeader.data());
        }
}

TEST(Bitmap, TellsWhereAHeaderWasRefused) {
    StHead size, planes, compression, depth;
    size.m_nSize = 12;
    planes.m_nPlanes = 2;
    compression.m_nCompression = 4;
    depth.m_nBits = 2;
    std::vector<Bytes> aRefused = {{}, FileBytes(HeaderBytes({}), 54)}; // the first stands for null
    for (const StHead& head : {size, planes, compression, depth})
        aRefused.push_back(HeaderBytes(head));
    for (const Bytes& aHeader : aRefused) {
        try {
            ClBitmap::MemToBitmapInfoHeader(aHeader.empty() ? nullptr : aHeader.data());
            ADD_FAILURE() << "nothing was thrown";
        } catch (const ClException& e) {
            EXPECT_STREQ(e.File(), "Tools/Bitmap") << e.What();
            EXPECT_GT(e.Line(), 0) << e.What();
        }
    }
}

TEST(Bitmap, KnowsSixDepths) {
    for (long nBits = -70000; nBits <= 70000; ++nBits)
        EXPECT_EQ(ClBitmap::IsValidBitCount(nBits), nBits == 1 || nBits == 4 || nBits == 8 ||
                                                        nBits == 16 || nBits == 24 || nBits == 32);
}

TEST(Bitmap, CannotAttachToTwoBits) {
    StHead head;
    head.m_nBits = 2;
    Bytes aBlock = UsualBlock(head);
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Attach(aBlock.data(), aBlock.size()), ClException, -12,
                  "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!");
    EXPECT_EQ(bitmap.Header(), nullptr);
}

// Sizes

TEST(Bitmap, PadsLinesToWholeWords) {
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (std::int32_t nWidth = 0; nWidth < 70; ++nWidth)
            EXPECT_EQ(ClBitmap::StrideBytes(Fields(nWidth, 1, static_cast<std::uint16_t>(nBits))),
                      static_cast<std::int64_t>(WordsStride(nBits, nWidth)));
}

TEST(Bitmap, ComputesSizesIn64Bits) {
    EXPECT_EQ(ClBitmap::StrideBytes(Fields(INT_MAX, 1, 32)), 8589934588);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(0x10000, 0x10000, 8)), 4294967296);
}

TEST(Bitmap, ComputesTheLargestSizesExactly) { // 2^32 bytes a line, and 2^31 - 1 lines
    constexpr std::int64_t cnBytes =
        (std::int64_t{1} << 62) - (std::int64_t{1} << 32) + (std::int64_t{1} << 62);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(0x40000000, INT_MAX, 32)), cnBytes);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(0x40000000, -INT_MAX, 32)), -cnBytes);
}

TEST(Bitmap, StopsSizesAtTheEndsOf64Bits) {
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(INT_MAX, INT_MAX, 24)), INT64_MAX);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(INT_MAX, INT_MIN, 32)), INT64_MIN);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(INT_MIN, INT_MIN, 65535)), INT64_MAX);
    EXPECT_EQ(ClBitmap::BlockBytes(Fields(INT_MAX, INT_MAX, 24, 0, UINT32_MAX)),
              40u + 17179869180u + 9223372036854775807u);
}

TEST(Bitmap, TakesNegativeSidesAsNegativeSizes) {
    EXPECT_EQ(ClBitmap::StrideBytes(Fields(-1, 1, 8)), 0); // (-8 + 7) >> 3 is -1, and 2 is cut to 0
    EXPECT_EQ(ClBitmap::StrideBytes(Fields(-8, 1, 8)), -8);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(8, -3, 8)), -24);
    EXPECT_EQ(ClBitmap::PixelBytes(Fields(-8, -3, 8)), 24);
}

TEST(Bitmap, CountsPaletteEntries) {
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 8)), 256);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 4)), 16);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 1)), 2);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 8, 0, 16)), 16);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 8, 3)), 256);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 16, 3, 7)), 3);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 24, 0, 7)), 7);
    EXPECT_EQ(ClBitmap::PalSize(Fields(1, 1, 24)), 0);
    EXPECT_EQ(ClBitmap::PaletteBytes(Fields(1, 1, 8, 0, UINT32_MAX)), 17179869180);
}

TEST(Bitmap, FindsThePixelsBehindThePalette) {
    StHead head;
    EXPECT_EQ(PixelOffset(UsualBlock(head)), 1064);
    head.m_nClrUsed = 16;
    EXPECT_EQ(PixelOffset(Block(head, GreyPalette(16), {1, 2, 3, 4})), 104);
    head.m_nBits = 24;
    EXPECT_EQ(PixelOffset(Block(head, GreyPalette(16), {1, 2, 3, 4})), 104);
    head.m_nCompression = 3;
    EXPECT_EQ(PixelOffset(Block(head, {1, 2, 3}, {1, 2, 3, 4})), 52);
    head = {};
    head.m_nBits = 32;
    EXPECT_EQ(PixelOffset(UsualBlock(head)), 40);
}

// Making

TEST(Bitmap, CreatesABlockWithItsHeader) {
    const ClBitmap bitmap(5, 3, 8, 0);
    const tagBITMAPINFOHEADER header = *bitmap.Header();
    StHead head;
    head.m_nWidth = 5;
    head.m_nHeight = 3;
    const Bytes aExpected = HeaderBytes(head);
    EXPECT_EQ(std::memcmp(&header, aExpected.data(), 40), 0);
    EXPECT_EQ(bitmap.Pixels() - reinterpret_cast<const unsigned char*>(bitmap.Header()), 1064);
    for (int i = 0; i < 24; ++i)
        EXPECT_EQ(bitmap.Pixels()[i], 0);
}

TEST(Bitmap, CreatesALinearGreyPalette) {
    const int caSteps[][2] = {{1, 255}, {4, 17}, {8, 1}};
    for (const auto& step : caSteps) {
        const ClBitmap bitmap(1, 1, step[0], 0);
        for (int i = 0; i < 1 << step[0]; ++i) {
            const tagRGBQUAD entry = bitmap.Palette()[i];
            EXPECT_EQ(entry.rgbBlue, i * step[1]);
            EXPECT_EQ(entry.rgbGreen, i * step[1]);
            EXPECT_EQ(entry.rgbRed, i * step[1]);
            EXPECT_EQ(entry.rgbReserved, 0);
        }
    }
}

TEST(Bitmap, CreatesMasksForBitFields) {
    const ClBitmap narrow(1, 1, 16, 3);
    EXPECT_EQ(std::memcmp(narrow.Palette(), PaletteBytes({31, 992, 31744}).data(), 12), 0);
    const ClBitmap wide(1, 1, 32, 3);
    EXPECT_EQ(std::memcmp(wide.Palette(), PaletteBytes({255, 65280, 16711680}).data(), 12), 0);
    EXPECT_EQ(ClBitmap(1, 1, 32, 0).Palette(), nullptr);
}

TEST(Bitmap, CreatesWithResolutions) {
    const ClBitmap bitmap(2, 2, 24, 0, 19685, 9843);
    EXPECT_EQ(int{bitmap.Header()->biXPelsPerMeter}, 19685);
    EXPECT_EQ(int{bitmap.Header()->biYPelsPerMeter}, 9843);
}

TEST(Bitmap, CreatesTheShapeOfAnother) {
    const ClBitmap shape(7, 5, 4, 0, 19685, 9843);
    ClBitmap bitmap;
    bitmap.Create(shape);
    EXPECT_TRUE(bitmap == shape);
    EXPECT_NE(bitmap.Pixels(), shape.Pixels());
    EXPECT_TESSARIN(bitmap.Create(ClBitmap()), -10);
}

TEST(Bitmap, RefusesToCreateWhatNoHeaderCanSay) {
    ClBitmap bitmap(4, 4, 8, 0);
    const unsigned char* pPixels = bitmap.Pixels();
    for (long nBits : {-8L, 0L, 2L, 12L, 33L, 65544L, 4294967304L})
        EXPECT_THROWS(bitmap.Create(4, 4, nBits, 0), ClException, -12,
                      "The Bitmap format does only support 1, 4, 8, 16, 24 and 32 bit counts!");
    for (long nCompression : {-1L, 4L, 4294967296L})
        EXPECT_THROWS(bitmap.Create(4, 4, 8, nCompression), ClException, -31,
                      "ClBitmap::Attach, Not Supported FOCC.");
    for (long nSide : {2147483648L, -2147483649L, 4294967300L}) {
        EXPECT_TESSARIN(bitmap.Create(nSide, 4, 8, 0), -35);
        EXPECT_TESSARIN(bitmap.Create(4, nSide, 8, 0), -35);
    }
    EXPECT_TESSARIN(ClBitmap(4, 4, 8, 0, 2147483648L, 0), -35);
    EXPECT_TESSARIN(ClBitmap(4, 4, 8, 0, 0, -2147483649L), -35);
    EXPECT_EQ(bitmap.Pixels(), pPixels);
}

TEST(Bitmap, RefusesToCreateMorePixelsThanAnImageHas) {
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Create(0x10000, 0x8000, 8, 0), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_THROWS(bitmap.Create(INT_MAX, INT_MAX, 32, 0), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_THROWS(bitmap.Create(INT_MIN, INT_MIN, 32, 0), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_EQ(bitmap.Header(), nullptr);
}

TEST(Bitmap, CreatesNoPixelsForNegativeSizes) {
    for (long nHeight : {0L, -5L}) {
        ClBitmap bitmap(5, nHeight, 8, 0);
        EXPECT_EQ(long{bitmap.Header()->biHeight}, nHeight);
        EXPECT_EQ(bitmap.Line(0), nullptr);
        bitmap = static_cast<unsigned char>(7);
    }
}

// Emptying

TEST(Bitmap, IsEmptyAfterEachWayOfReleasing) {
    void (ClBitmap::*const caWays[])() noexcept = {&ClBitmap::Clear, &ClBitmap::ClearFree,
                                                   &ClBitmap::Free, &ClBitmap::Detach,
                                                   &ClBitmap::DetachThis};
    for (auto way : caWays) {
        ClBitmap bitmap(4, 4, 8, 0);
        (bitmap.*way)();
        EXPECT_EQ(bitmap.Header(), nullptr);
        EXPECT_EQ(bitmap.Palette(), nullptr);
        EXPECT_EQ(bitmap.Pixels(), nullptr);
        EXPECT_TRUE(bitmap == ClBitmap());
    }
}

TEST(Bitmap, SwapsEverything) {
    ClBitmap one(4, 4, 8, 0);
    ClBitmap other;
    const unsigned char* pPixels = one.Pixels();
    one.Swap(other);
    EXPECT_EQ(one.Header(), nullptr);
    EXPECT_EQ(one.Palette(), nullptr);
    EXPECT_EQ(other.Pixels(), pPixels);
    other.Swap(other);
    EXPECT_EQ(other.Pixels(), pPixels);
}

TEST(Bitmap, GivesLinesAsStored) {
    const ClBitmap bitmap(5, 3, 8, 0);
    EXPECT_EQ(bitmap.Line(0), bitmap.Pixels());
    EXPECT_EQ(bitmap.Line(2), bitmap.Pixels() + 16);
    EXPECT_EQ(bitmap.Line(-1), nullptr);
    EXPECT_EQ(bitmap.Line(3), nullptr);
    EXPECT_EQ(ClBitmap().Line(0), nullptr);
}

TEST(Bitmap, SaysThatItIsEmpty) {
    ClBitmap empty;
    ClImage image;
    unsigned int n = 0;
    unsigned char aBlock[2000];
    EXPECT_TESSARIN(empty.CopyTo(aBlock), -10);
    EXPECT_TESSARIN(empty.GetImage(image), -10);
    EXPECT_TESSARIN(empty.GetChannel(0, image), -10);
    EXPECT_TESSARIN(empty.SetChannel(0, image), -10);
    EXPECT_TESSARIN(empty.IsGray(false), -10);
    EXPECT_TESSARIN(empty.IsEqualSize(empty), -10);
    EXPECT_TESSARIN(empty.GetMask(0, n, n, n, n), -10);
    EXPECT_TESSARIN(empty = static_cast<unsigned char>(0), -10);
    EXPECT_TESSARIN(empty.Store("never-made.bmp"), -10);
}
