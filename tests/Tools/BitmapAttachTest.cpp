#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <climits>

using namespace TestSupport;

namespace {

/// Blocks of every depth, with and without masks, palettes and a file header in front.
struct StForm {
    StHead m_Head;
    std::size_t m_nPalette; ///< bytes
    bool m_bFileHeader;
};

std::vector<StForm> AllForms() {
    std::vector<StForm> aForms;
    for (bool bFileHeader : {false, true})
        for (int nBits : {1, 4, 8, 16, 24, 32})
            for (std::uint32_t nCompression : {0u, 3u})
                for (std::uint32_t nClrUsed : {0u, 3u}) {
                    StHead head;
                    head.m_nWidth = 5;
                    head.m_nHeight = 3;
                    head.m_nBits = nBits;
                    head.m_nCompression = nCompression;
                    head.m_nClrUsed = nClrUsed;
                    std::size_t nPalette = nClrUsed * 4;
                    if (nBits <= 8 && nClrUsed == 0)
                        nPalette = 4u << nBits;
                    if (nBits > 8 && nCompression == 3)
                        nPalette = 12;
                    aForms.push_back({head, nPalette, bFileHeader});
                }
    return aForms;
}

Bytes BlockOf(const StForm& form) {
    Bytes aBlock = HeaderBytes(form.m_Head);
    for (std::size_t i = 0; i < form.m_nPalette; ++i)
        aBlock.push_back(static_cast<unsigned char>(i));
    Append(aBlock, NoisePixels(form.m_Head));
    return form.m_bFileHeader ? FileBytes(aBlock, 54) : aBlock;
}

/// What attaching to the first `nSize` bytes answers: 0 or a number.
long ExpectedStatus(const StForm& form, std::size_t nSize, std::size_t nWhole) {
    const std::size_t nSkipped = form.m_bFileHeader ? 14 : 0;
    if (nSize == 1)
        return -21;
    if (form.m_bFileHeader && nSize <= 14)
        return -10;
    const std::size_t nRest = nSize - nSkipped;
    const bool bEndsExactly = nRest == 40 || nRest == 40 + form.m_nPalette;
    return nSize >= nWhole || bEndsExactly ? 0 : -21;
}

long StatusOf(ClBitmap& bitmap, unsigned char* pBlock, std::size_t nSize) {
    try {
        bitmap.Attach(pBlock, nSize);
        return 0;
    } catch (const ClException& e) {
        return e.Number();
    }
}

template <class Work>
void RunAndSwallow(Work work) {
    try {
        work();
    } catch (const ClException&) { // a refusal is as good as a result: memory stays untouched
    }
}

/// Everything that reads.
void UseEverything(ClBitmap& bitmap) {
    ClImage image;
    ClBitmap copy;
    std::vector<unsigned char> aOut(3000);
    RunAndSwallow([&] { bitmap.GetImage(image); });
    for (int nChannel = 0; nChannel < 4; ++nChannel)
        RunAndSwallow([&] { bitmap.GetChannel(nChannel, image); });
    RunAndSwallow([&] { image = bitmap; });
    RunAndSwallow([&] { bitmap.IsGray(false); });
    RunAndSwallow([&] { bitmap.IsGray(true); });
    RunAndSwallow([&] { bitmap.CopyTo(aOut.data()); });
    RunAndSwallow([&] { copy = bitmap; });
    RunAndSwallow([&] { EXPECT_TRUE(copy == bitmap); });
    RunAndSwallow([&] { bitmap = static_cast<unsigned char>(9); });
    for (long y = -1; y < 5; ++y)
        for (long x = -1; x < 7; ++x)
            RunAndSwallow([&] { bitmap.SetPixel(x, y, bitmap.GetPixel(x, y)); });
}

/// The bytes of a block from `nFirst` on.
Bytes BytesFrom(const Bytes& aBlock, std::ptrdiff_t nFirst) {
    return Bytes(aBlock.begin() + nFirst, aBlock.end());
}

/// What a bitmap of 5 x 3 pixels shows: its pixels, and as far as they are to be had its channels.
std::vector<unsigned int> Seen(ClBitmap& bitmap) {
    std::vector<unsigned int> aSeen;
    for (long y = 0; y < 3; ++y)
        for (long x = 0; x < 5; ++x)
            aSeen.push_back(bitmap.GetPixel(x, y));
    for (int nChannel = 0; nChannel < 3; ++nChannel) {
        ClImage image;
        bitmap.GetChannel(nChannel, image);
        aSeen.insert(aSeen.end(), image.Data(), image.Data() + image.SizeBytes());
    }
    return aSeen;
}

} // namespace

TEST(BitmapAttach, RefusesNull) {
    ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_THROWS(bitmap.Attach(static_cast<unsigned char*>(nullptr), 100), ClException, -10,
                  "No Bitmap to Attach");
    EXPECT_EQ(bitmap.Header(), nullptr);
    EXPECT_THROWS(ClBitmap::CheckPtr(nullptr, 0), ClException, -10, "No Bitmap to Attach");
    try {
        ClBitmap::CheckPtr(nullptr, 0);
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/Bitmap");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(BitmapAttach, AnswersEveryTruncationOfEveryForm) {
    for (const StForm& form : AllForms()) {
        const Bytes aBlock = BlockOf(form);
        for (std::size_t nSize = 1; nSize <= aBlock.size() + 1; ++nSize) {
            const auto pBlock = Exactly(aBlock, nSize);
            ClBitmap bitmap(2, 2, 8, 0);
            const long nExpected = ExpectedStatus(form, nSize, aBlock.size());
            EXPECT_EQ(StatusOf(bitmap, pBlock.get(), nSize), nExpected)
                << form.m_Head.m_nBits << " bits, size " << nSize;
            EXPECT_EQ(bitmap.Header() != nullptr, nExpected == 0);
            UseEverything(bitmap);
        }
    }
}

TEST(BitmapAttach, ChecksAPointerInTheSameWay) {
    for (const StForm& form : AllForms()) {
        const Bytes aBlock = BlockOf(form);
        for (std::size_t nSize = 1; nSize <= aBlock.size() + 1; ++nSize) {
            const auto pBlock = Exactly(aBlock, nSize);
            const long nExpected = ExpectedStatus(form, nSize, aBlock.size());
            if (nExpected != 0) {
                EXPECT_TESSARIN(ClBitmap::CheckPtr(pBlock.get(), nSize), nExpected);
                continue;
            }
            ClBitmap bitmap;
            bitmap.Attach(pBlock.get(), nSize);
            EXPECT_EQ(ClBitmap::CheckPtr(pBlock.get(), nSize), bitmap.Palette());
        }
    }
}

TEST(BitmapAttach, PointsIntoTheCallersBlock) {
    for (const StForm& form : AllForms()) {
        Bytes aBlock = BlockOf(form);
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), aBlock.size());
        const unsigned char* pHeader = aBlock.data() + (form.m_bFileHeader ? 14 : 0);
        EXPECT_EQ(reinterpret_cast<const unsigned char*>(bitmap.Header()), pHeader);
        EXPECT_EQ(reinterpret_cast<const unsigned char*>(bitmap.Palette()),
                  form.m_nPalette > 0 ? pHeader + 40 : nullptr);
        EXPECT_EQ(bitmap.Pixels(), pHeader + 40 + form.m_nPalette);
    }
}

TEST(BitmapAttach, TakesAHeaderAloneBehindAFileHeader) {
    Bytes aBlock = FileBytes(UsualBlock({}), 1078);
    const auto pBlock = Exactly(aBlock, 54);
    ClBitmap bitmap;
    bitmap.Attach(pBlock.get(), 54);
    EXPECT_EQ(int{bitmap.Header()->biBitCount}, 8);
    EXPECT_EQ(bitmap.Palette(), nullptr);
    EXPECT_EQ(bitmap.Pixels(), nullptr);
}

TEST(BitmapAttach, NeedsMoreThanAFileHeader) {
    Bytes aBlock = FileBytes(UsualBlock({}), 1078);
    ClBitmap bitmap;
    EXPECT_TESSARIN(bitmap.Attach(aBlock.data(), 14), -10);
    EXPECT_TESSARIN(bitmap.Attach(aBlock.data(), 15), -21);
}

TEST(BitmapAttach, DoesNotReadASingleByte) {
    // A page that must not be read would end the program; one byte of memory shows it to a tool.
    for (unsigned char nByte : {'B', '('}) {
        const auto pBlock = Exactly({nByte}, 1);
        ClBitmap bitmap;
        EXPECT_TESSARIN(bitmap.Attach(pBlock.get(), 1), -21);
    }
}

TEST(BitmapAttach, SkipsAllSizeTestsForAnUnknownSize) {
    StHead head;
    head.m_nWidth = INT_MAX;
    head.m_nHeight = INT_MAX;
    head.m_nClrUsed = UINT32_MAX;
    for (bool bFileHeader : {false, true}) {
        Bytes aBlock = bFileHeader ? FileBytes(HeaderBytes(head), 0) : HeaderBytes(head);
        ClBitmap bitmap;
        bitmap.Attach(aBlock.data(), 0);
        EXPECT_EQ(bitmap.Pixels() - reinterpret_cast<const unsigned char*>(bitmap.Header()),
                  40 + 4l * UINT32_MAX);
    }
}

TEST(BitmapAttach, StillChecksTheHeaderForAnUnknownSize) {
    StHead head;
    head.m_nPlanes = 3;
    Bytes aBlock = HeaderBytes(head);
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Attach(aBlock.data(), 0), ClException, -11,
                  "ClBitmap::Attach, pBI->biPlanes != 1.");
}

TEST(BitmapAttach, ChecksTheHeaderBeforePaletteAndPixels) {
    StHead head;
    head.m_nCompression = 9;
    Bytes aBlock = HeaderBytes(head);
    aBlock.push_back(0);
    ClBitmap bitmap;
    EXPECT_THROWS(bitmap.Attach(aBlock.data(), aBlock.size()), ClException, -31,
                  "ClBitmap::Attach, Not Supported FOCC.");
}

TEST(BitmapAttach, RefusesSizesThatNoBlockHas) {
    const std::int64_t caSides[] = {INT_MAX, INT_MIN, -1, -100, 0x40000000};
    for (std::int64_t nWidth : caSides)
        for (int nBits : {1, 4, 8, 16, 24, 32}) {
            StHead head;
            head.m_nWidth = nWidth;
            head.m_nHeight = nWidth < 0 ? 77 : INT_MAX;
            head.m_nBits = nBits;
            Bytes aBlock = HeaderBytes(head);
            aBlock.resize(40 + 1024 + 4096);
            ClBitmap bitmap;
            if (ClBitmap::PixelBytes(*ClBitmap::MemToBitmapInfoHeader(aBlock.data())) == 0)
                continue; // a width of -1 takes no whole word
            EXPECT_TESSARIN(bitmap.Attach(aBlock.data(), aBlock.size()), -21);
        }
}

TEST(BitmapAttach, TakesANegativePixelSizeAsBeyondEveryKnownBlock) {
    StHead head;
    head.m_nWidth = 4;
    head.m_nHeight = -4;
    head.m_nBits = 24;
    Bytes aBlock = HeaderBytes(head);
    aBlock.resize(40 + 48);
    ClBitmap bitmap;
    EXPECT_TESSARIN(bitmap.Attach(aBlock.data(), aBlock.size()), -21);
    bitmap.Attach(aBlock.data(), 0);
    EXPECT_EQ(bitmap.Pixels(), aBlock.data() + 40);
    UseEverything(bitmap);
}

TEST(BitmapAttach, RefusesAPaletteThatTheBlockCannotHold) {
    StHead head;
    for (std::uint32_t nClrUsed : {257u, 0x40000000u, 0x40000001u, UINT32_MAX}) {
        head.m_nClrUsed = nClrUsed;
        Bytes aBlock = HeaderBytes(head);
        aBlock.resize(40 + 1024 + 3);
        ClBitmap bitmap;
        EXPECT_TESSARIN(bitmap.Attach(aBlock.data(), aBlock.size()), -21);
    }
}

TEST(BitmapAttach, AcceptsALargerBlock) {
    Bytes aBlock = UsualBlock({});
    aBlock.resize(aBlock.size() + 100);
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), aBlock.size());
    EXPECT_EQ(bitmap.Pixels(), aBlock.data() + 1064);
}

TEST(BitmapAttach, WorksAtEveryAddress) {
    for (const StForm& form : AllForms()) {
        Bytes aBlock = BlockOf(form);
        ClBitmap reference;
        reference.Attach(aBlock.data(), aBlock.size());
        for (std::size_t nOffset = 1; nOffset < 8; ++nOffset) {
            Bytes aMoved(nOffset);
            Append(aMoved, aBlock);
            ClBitmap bitmap;
            bitmap.Attach(aMoved.data() + nOffset, aBlock.size());
            ASSERT_EQ(bitmap.Pixels() - reinterpret_cast<const unsigned char*>(bitmap.Header()),
                      reference.Pixels() -
                          reinterpret_cast<const unsigned char*>(reference.Header()));
            EXPECT_EQ(Seen(bitmap), Seen(reference)) << form.m_Head.m_nBits << " bits";
            EXPECT_EQ(Written(bitmap), BytesFrom(aBlock, form.m_bFileHeader ? 14 : 0));
            UseEverything(bitmap);
        }
    }
}

TEST(BitmapAttach, SurvivesEveryMutationOfAHeader) {
    for (int nBits : {1, 8, 16, 24, 32}) {
        StHead head;
        head.m_nWidth = 5;
        head.m_nHeight = 3;
        head.m_nBits = nBits;
        const Bytes aBlock = UsualBlock(head);
        for (std::size_t i = 0; i < 40; ++i)
            for (int nValue : {0, 1, 2, 3, 7, 8, 16, 32, 64, 127, 128, 255}) {
                const auto pBlock = Exactly(aBlock, aBlock.size());
                pBlock[i] = static_cast<unsigned char>(nValue);
                ClBitmap bitmap;
                if (StatusOf(bitmap, pBlock.get(), aBlock.size()) == 0)
                    UseEverything(bitmap);
                else
                    EXPECT_EQ(bitmap.Header(), nullptr);
            }
    }
}

TEST(BitmapAttach, IsEmptyWhereMemoryIsMissing) {
    Bytes aBlock = UsualBlock({});
    FailEachAllocation([&] {
        ClBitmap bitmap;
        try {
            bitmap.Attach(aBlock.data(), aBlock.size());
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(bitmap.Header(), nullptr);
            throw;
        }
    });
}

TEST(BitmapAttach, SharesAnotherBitmap) {
    ClBitmap bitmap;
    {
        const ClBitmap other(4, 4, 8, 0);
        bitmap.Attach(other);
        EXPECT_EQ(bitmap.Header(), other.Header());
        EXPECT_EQ(bitmap.Palette(), other.Palette());
        EXPECT_EQ(bitmap.Pixels(), other.Pixels());
    }
    bitmap = static_cast<unsigned char>(5); // the block lives on
    EXPECT_EQ(bitmap.Line(3)[3], 5);
    bitmap.Attach(bitmap);
    EXPECT_EQ(bitmap.Line(3)[3], 5);
    bitmap.Attach(ClBitmap());
    EXPECT_EQ(bitmap.Header(), nullptr);
}
