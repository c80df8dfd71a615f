#include "Tools/Bitmap.h"

#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

using namespace TestSupport;

namespace {

struct StMask {
    unsigned int m_nShift = 99;
    unsigned int m_nMask = 99;
    unsigned int m_nUp = 99;
    unsigned int m_nDown = 99;
};

StMask MaskOf(const ClBitmap& bitmap, unsigned int nChannel) {
    StMask mask;
    bitmap.GetMask(nChannel, mask.m_nShift, mask.m_nMask, mask.m_nUp, mask.m_nDown);
    return mask;
}

/// Bitmap of one line over the block given, which has to outlive it.
struct StLine {
    Bytes m_aBlock;
    ClBitmap m_Bitmap;

    StLine(int nWidth, int nBits, std::uint32_t nCompression,
           const std::vector<std::uint32_t>& aPalette, const Bytes& aPixels) {
        StHead head;
        head.m_nWidth = nWidth;
        head.m_nBits = nBits;
        head.m_nCompression = nCompression;
        head.m_nClrUsed = nBits <= 8 ? static_cast<std::uint32_t>(aPalette.size()) : 0;
        m_aBlock = Block(head, aPalette, aPixels);
        m_Bitmap.Attach(m_aBlock.data(), m_aBlock.size());
    }
};

bool IsGray(int nWidth, int nBits, const std::vector<std::uint32_t>& aPalette, const Bytes& aPixels,
            bool bCheckPixels = false) {
    return StLine(nWidth, nBits, 0, aPalette, aPixels).m_Bitmap.IsGray(bCheckPixels);
}

} // namespace

// Masks

TEST(BitmapPixels, FindsShiftAndWidthOfAMask) {
    const long caRows[][3] = {{0, 0, 0},
                              {1, 0, 1},
                              {0x7C00, 10, 5},
                              {0x03E0, 5, 5},
                              {0x8000, 15, 1},
                              {0xFF000000L, 24, 8},
                              {0xFFFFFFFFL, 0, 32},
                              {0x0F0F00, 8, 8}};
    for (const auto& row : caRows) {
        unsigned int nShift = 99;
        unsigned int nWidth = 99;
        ClBitmap().MaskData(row[0], nShift, nWidth);
        EXPECT_EQ(nShift, row[1]) << std::hex << row[0];
        EXPECT_EQ(nWidth, row[2]) << std::hex << row[0];
    }
}

TEST(BitmapPixels, HasUsualMasksForUpTo16Bits) {
    const ClBitmap bitmap(1, 1, 16, 0);
    const unsigned int caMasks[] = {0x7C00, 0x03E0, 0x001F, 0x8000};
    const unsigned int caShifts[] = {10, 5, 0, 15};
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_EQ(MaskOf(bitmap, i).m_nMask, caMasks[i]);
        EXPECT_EQ(MaskOf(bitmap, i).m_nShift, caShifts[i]);
    }
    EXPECT_EQ(MaskOf(bitmap, 0).m_nUp, 539086u); // 16711680 / 31
    EXPECT_EQ(MaskOf(bitmap, 0).m_nDown, 7967u); // 31 * 257.0039...
    EXPECT_EQ(MaskOf(bitmap, 3).m_nUp, 16711680u);
    EXPECT_EQ(MaskOf(bitmap, 3).m_nDown, 257u);
}

TEST(BitmapPixels, HasUsualMasksAbove16Bits) {
    for (int nBits : {24, 32}) {
        const ClBitmap bitmap(1, 1, nBits, 0);
        const unsigned int caMasks[] = {0xFF0000, 0x00FF00, 0x0000FF, 0xFF000000};
        for (unsigned int i = 0; i < 4; ++i) {
            EXPECT_EQ(MaskOf(bitmap, i).m_nMask, caMasks[i]);
            EXPECT_EQ(MaskOf(bitmap, i).m_nUp, 65536u);
        }
    }
}

TEST(BitmapPixels, ReadsStoredMasksInTheirOrder) {
    StLine line(1, 32, 3, {0x0000FFFF, 0, 0xFFFFFFFF}, {0, 0, 0, 0});
    EXPECT_EQ(MaskOf(line.m_Bitmap, 0).m_nMask, 0xFFFFu);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 0).m_nUp, 255u);        // 16711680 / 65535 is 255.003...
    EXPECT_EQ(MaskOf(line.m_Bitmap, 0).m_nDown, 16842752u); // 65535 * 65536 / 255, exactly
    EXPECT_EQ(MaskOf(line.m_Bitmap, 1).m_nMask, 0u);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 1).m_nShift, 0u);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 1).m_nUp, 0u);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 1).m_nDown, 0u);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 2).m_nUp, 0u); // 32 bits are more than the quotient has
    EXPECT_EQ(MaskOf(line.m_Bitmap, 2).m_nDown, 0xFFFFFFFFu);
    EXPECT_EQ(MaskOf(line.m_Bitmap, 3).m_nMask, 0xFF000000u);
    EXPECT_TESSARIN(MaskOf(line.m_Bitmap, 4), -35);
}

TEST(BitmapPixels, DoesNotTakeAPaletteForMasks) {
    for (int nBits : {1, 4, 8}) {
        StLine line(1, nBits, 3, {1, 2}, {0, 0, 0, 0}); // too short for three masks, besides
        EXPECT_EQ(MaskOf(line.m_Bitmap, 0).m_nMask, 0x7C00u);
        EXPECT_EQ(MaskOf(line.m_Bitmap, 2).m_nMask, 0x001Fu);
    }
}

TEST(BitmapPixels, ReadsMasksOfItsOwnBlueFirst) {
    const ClBitmap bitmap(1, 1, 16, 3);
    EXPECT_EQ(MaskOf(bitmap, 0).m_nMask, 0x001Fu);
    EXPECT_EQ(MaskOf(bitmap, 2).m_nMask, 0x7C00u);
}

TEST(BitmapPixels, SaysThatMasksAreMissing) {
    StHead head;
    head.m_nBits = 16;
    head.m_nCompression = 3;
    Bytes aBlock = HeaderBytes(head);
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    EXPECT_TESSARIN(MaskOf(bitmap, 0), -10);
    EXPECT_EQ(MaskOf(bitmap, 3).m_nMask, 0x8000u);
}

TEST(BitmapPixels, ReadsLittleEndianNumbers) {
    const unsigned char caBytes[] = {0x12, 0x34, 0x56, 0xF8};
    EXPECT_EQ(ClBitmap::LongFromMem(caBytes, 2), 0x3412u);
    EXPECT_EQ(ClBitmap::LongFromMem(caBytes, 4), 0xF8563412u);
}

// Single pixels

TEST(BitmapPixels, AnswersPaletteEntries) {
    StLine four(3, 4, 0, {0x11223344, 0x55667788, 0x99AABBCC}, {0x21, 0x00, 0, 0});
    EXPECT_EQ(four.m_Bitmap.GetPixel(0, 0), 0x99AABBCCu);
    EXPECT_EQ(four.m_Bitmap.GetPixel(1, 0), 0x55667788u);
    EXPECT_EQ(four.m_Bitmap.GetPixel(2, 0), 0x11223344u);
}

TEST(BitmapPixels, AnswersRedGreenBlue) {
    StLine rgb(2, 24, 0, {}, {1, 2, 3, 4, 5, 6, 0, 0});
    EXPECT_EQ(rgb.m_Bitmap.GetPixel(1, 0), 0x060504u);
    StLine rgba(1, 32, 0, {}, {1, 2, 3, 4});
    EXPECT_EQ(rgba.m_Bitmap.GetPixel(0, 0), 0x030201u);
}

TEST(BitmapPixels, ShiftsFieldsToEightBits) {
    StLine narrow(2, 16, 0, {}, {0xFF, 0x7F, 0x41, 0x88}); // all; red 2, green 2, blue 1, alpha
    EXPECT_EQ(narrow.m_Bitmap.GetPixel(0, 0), 0xF8F8F8u);
    EXPECT_EQ(narrow.m_Bitmap.GetPixel(1, 0), 0x101008u);
    StLine wide(1, 32, 3, {0xFFFFF000, 0x00000FFF, 0}, {0xCD, 0xAB, 0x56, 0x34});
    EXPECT_EQ(wide.m_Bitmap.GetPixel(0, 0), 0x34BC00u); // of 0x3456A and 0xBCD the highest 8 bits
}

TEST(BitmapPixels, AnswersAllOnesOutside) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        ClBitmap bitmap(3, 2, nBits, 0);
        const ClBitmap before(bitmap, true);
        const long caOutside[][2] = {{-1, 0}, {3, 0},        {0, -1},
                                     {0, 2},  {1L << 40, 0}, {0, 1L << 40}};
        for (const auto& place : caOutside) {
            EXPECT_EQ(bitmap.GetPixel(place[0], place[1]), 0xFFFFFFFFu);
            bitmap.SetPixel(place[0], place[1], 0xFFFFFF);
        }
        EXPECT_TRUE(bitmap == before);
    }
    EXPECT_EQ(ClBitmap().GetPixel(0, 0), 0xFFFFFFFFu);
    ClBitmap().SetPixel(0, 0, 0);
}

TEST(BitmapPixels, AnswersAllOnesAbove32Bits) {
    StLine line(2, 32, 0, {}, {1, 2, 3, 4, 5, 6, 7, 8});
    const Bytes aPixels(line.m_Bitmap.Pixels(), line.m_Bitmap.Pixels() + 8);
    for (int nBits : {33, 40, 64}) {
        // The caller's block: the header is not looked at again.
        line.m_aBlock[14] = static_cast<unsigned char>(nBits);
        EXPECT_EQ(line.m_Bitmap.GetPixel(0, 0), 0xFFFFFFFFu);
        line.m_Bitmap.SetPixel(0, 0, 0);
    }
    EXPECT_EQ(Bytes(line.m_Bitmap.Pixels(), line.m_Bitmap.Pixels() + 8), aPixels);
}

TEST(BitmapPixels, SetsWhatItAnswers) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        ClBitmap bitmap(5, 3, nBits, 0);
        const unsigned int nWhite = nBits == 16 ? 0xF8F8F8 : 0xFFFFFF;
        bitmap.SetPixel(2, 1, nWhite);
        for (long y = 0; y < 3; ++y)
            for (long x = 0; x < 5; ++x)
                EXPECT_EQ(bitmap.GetPixel(x, y), x == 2 && y == 1 ? nWhite : 0u) << nBits;
    }
}

TEST(BitmapPixels, SetsEveryValueOfEveryField) {
    ClBitmap bitmap(1, 1, 16, 0);
    for (unsigned int n = 0; n < 0x8000; ++n) {
        const unsigned int nValue = (n >> 10 << 19) | ((n >> 5 & 31) << 11) | ((n & 31) << 3);
        bitmap.SetPixel(0, 0, nValue);
        ASSERT_EQ(PixelNumber(bitmap.Line(0), 16, 0), n);
        ASSERT_EQ(bitmap.GetPixel(0, 0), nValue);
    }
}

TEST(BitmapPixels, SetsFieldsWiderThanEightBits) {
    StLine wide(1, 32, 3, {0xFFFFF000, 0x00000FFF, 0}, {0, 0, 0, 0});
    wide.m_Bitmap.SetPixel(0, 0, 0x34BCFF);
    EXPECT_EQ(PixelNumber(wide.m_Bitmap.Line(0), 32, 0), 0x34000BC0u);
    EXPECT_EQ(wide.m_Bitmap.GetPixel(0, 0), 0x34BC00u);
}

TEST(BitmapPixels, SetsTheFirstIndexOfAnEntry) {
    StLine line(2, 4, 0, {0x000001, 0x000002, 0x000002}, {0x22, 0, 0, 0});
    line.m_Bitmap.SetPixel(1, 0, 2);
    EXPECT_EQ(line.m_Bitmap.Line(0)[0], 0x21);
    line.m_Bitmap.SetPixel(0, 0, 3); // no such entry
    EXPECT_EQ(line.m_Bitmap.Line(0)[0], 0x21);
}

TEST(BitmapPixels, SetsIndicesOfEightBits) {
    StLine line(3, 8, 0, {0x000001, 0x123456, 0x98765432}, {9, 9, 9, 9});
    line.m_Bitmap.SetPixel(0, 0, 0x98765432);
    line.m_Bitmap.SetPixel(2, 0, 0x123456);
    EXPECT_EQ(Bytes(line.m_Bitmap.Line(0), line.m_Bitmap.Line(0) + 4), (Bytes{2, 9, 1, 9}));
}

TEST(BitmapPixels, LeavesBitsOfNoColour) {
    StLine rgba(1, 32, 0, {}, {0, 0, 0, 0xAB});
    rgba.m_Bitmap.SetPixel(0, 0, 0x77123456);
    EXPECT_EQ(PixelNumber(rgba.m_Bitmap.Line(0), 32, 0), 0xAB123456u);
    StLine narrow(1, 16, 0, {}, {0, 0x80, 0, 0});
    narrow.m_Bitmap.SetPixel(0, 0, 0);
    EXPECT_EQ(PixelNumber(narrow.m_Bitmap.Line(0), 16, 0), 0x8000u);
}

// Grey

TEST(BitmapPixels, CallsAnImageWithoutLinesGrey) {
    for (int nBits : {1, 4, 8, 16, 24, 32}) {
        const ClBitmap bitmap(3, 0, nBits, 0);
        EXPECT_TRUE(bitmap.IsGray(false));
        EXPECT_TRUE(bitmap.IsGray(true));
    }
}

TEST(BitmapPixels, CallsLinesWithoutPixelsGrey) {
    for (const int nBits :
         {8, 16, 24, 32}) { // many lines: walked, they take seconds in a sanitized build
        StHead head = Head(0, 0x7FFFFFFF, nBits);
        Bytes aBlock = Block(head, nBits == 8 ? GreyPalette() : std::vector<std::uint32_t>(), {});
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), aBlock.size());
        EXPECT_TRUE(bitmap.IsGray(true));
    }
}

TEST(BitmapPixels, NeedsEveryPaletteEntryToBeGrey) {
    EXPECT_TRUE(IsGray(1, 8, {0x050505, 0x010101}, {0, 0, 0, 0}));
    EXPECT_FALSE(IsGray(1, 8, {0x050505, 0x010102}, {0, 0, 0, 0}));
    EXPECT_FALSE(IsGray(1, 8, {0x050505, 0x010201}, {0, 0, 0, 0}));
    EXPECT_FALSE(IsGray(1, 8, {0x050505, 0x020101}, {0, 0, 0, 0}));
    EXPECT_TRUE(IsGray(1, 8, {0x77050505}, {0, 0, 0, 0}));
}

TEST(BitmapPixels, NeedsOnlyOccurringEntriesToBeGreyWhenItLooksAtPixels) {
    const std::vector<std::uint32_t> aPalette = {0x000000, 0x0000FF, 0x111111};
    EXPECT_TRUE(IsGray(2, 8, aPalette, {0, 2, 1, 1}, true)); // the 1s are padding
    EXPECT_FALSE(IsGray(3, 8, aPalette, {0, 2, 1, 0}, true));
    EXPECT_FALSE(IsGray(2, 8, aPalette, {0, 2, 0, 0}, false));
    EXPECT_TRUE(IsGray(2, 4, aPalette, {0x02, 0x11, 0, 0}, true));
    EXPECT_FALSE(IsGray(2, 4, aPalette, {0x12, 0x00, 0, 0}, true));
}

TEST(BitmapPixels, CountsAnIndexWithoutEntryAsTheFirst) {
    EXPECT_FALSE(IsGray(1, 8, {0x0000FF, 0x000000}, {2, 0, 0, 0}, true));
    EXPECT_TRUE(IsGray(1, 8, {0x000000, 0x0000FF}, {2, 0, 0, 0}, true));
}

TEST(BitmapPixels, DoesNotCountEntriesThatNoPixelCanName) {
    EXPECT_TRUE(IsGray(1, 1, {0, 0xFFFFFF, 0x0000FF}, {0, 0, 0, 0}));
}

TEST(BitmapPixels, NeedsEveryTrueColourPixelToBeGrey) {
    EXPECT_TRUE(IsGray(2, 24, {}, {1, 1, 1, 9, 9, 9, 0, 5}));
    EXPECT_FALSE(IsGray(2, 24, {}, {1, 1, 1, 9, 9, 8, 0, 0}));
    EXPECT_FALSE(IsGray(2, 24, {}, {1, 1, 1, 9, 8, 9, 0, 0}));
    EXPECT_FALSE(IsGray(2, 24, {}, {1, 1, 1, 8, 9, 9, 0, 0}));
    EXPECT_TRUE(IsGray(1, 32, {}, {7, 7, 7, 0}));
    EXPECT_FALSE(IsGray(1, 32, {}, {7, 7, 6, 7}));
    EXPECT_TRUE(IsGray(1, 16, {}, {0x42, 0x88, 0, 0})); // 2, 2, 2 and alpha
    EXPECT_FALSE(IsGray(1, 16, {}, {0x43, 0x08, 0, 0}));
}

TEST(BitmapPixels, ComparesFieldsAfterTheMasks) {
    // 5-6-5: the full fields of 31 and 63 are both 255, half of them are not alike.
    EXPECT_TRUE(
        StLine(1, 16, 3, {0xF800, 0x07E0, 0x001F}, {0xFF, 0xFF, 0, 0}).m_Bitmap.IsGray(true));
    EXPECT_FALSE(
        StLine(1, 16, 3, {0xF800, 0x07E0, 0x001F}, {0x0F, 0x7A, 0, 0}).m_Bitmap.IsGray(true));
}
