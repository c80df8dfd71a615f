#include "Tools/Bitmap.h"

#include "Tools/FpImage.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <string>

using namespace TestSupport;

namespace {

constexpr int cnRed = 0;
constexpr int cnGreen = 1;
constexpr int cnBlue = 2;
constexpr int cnAlpha = 3;

/// A bitmap together with the parts that it was made of.
struct StCase {
    StHead m_Head;
    std::vector<std::uint32_t> m_aPalette;
    Bytes m_aPixels;
    Bytes m_aBlock;

    StCase(const StHead& head, const std::vector<std::uint32_t>& aPalette, const Bytes& aPixels)
        : m_Head(head), m_aPalette(aPalette), m_aPixels(aPixels),
          m_aBlock(Block(head, aPalette, aPixels)) {}
    StCase(const StHead& head, const std::vector<std::uint32_t>& aPalette)
        : StCase(head, aPalette, NoisePixels(head)) {}

    void AttachTo(ClBitmap& bitmap) { bitmap.Attach(m_aBlock.data(), m_aBlock.size()); }

    std::uint32_t Number(int x, int y) const {
        const std::size_t nStride = WordsStride(m_Head.m_nBits, m_Head.m_nWidth);
        return PixelNumber(m_aPixels.data() + static_cast<std::size_t>(y) * nStride, m_Head.m_nBits,
                           x);
    }
    std::uint32_t Entry(int x, int y) const {
        const std::uint32_t nIndex = Number(x, y);
        return m_aPalette[nIndex < m_aPalette.size() ? nIndex : 0];
    }
};

/// Byte of a channel in a number 0xAARRGGBB.
std::uint32_t ChannelByte(std::uint32_t nNumber, int nChannel) {
    const int caShifts[] = {16, 8, 0, 24};
    return nNumber >> caShifts[nChannel] & 0xFF;
}

/// A field of 5 bits in 8.
std::uint32_t Widened(std::uint32_t nField) {
    return (nField * 539086 + 0x8FFF) / 65536;
}

std::vector<std::uint32_t> ColourPalette(unsigned int nEntries) {
    std::vector<std::uint32_t> aEntries;
    for (std::uint32_t i = 0; i < nEntries; ++i)
        aEntries.push_back((i * 0x9E3779B1u) ^ 0x5A123456u);
    return aEntries;
}

/// `expected(x, y, plane)` in every sample.
template <class Expected>
void ExpectSamples(const ClImage& image, Expected expected, const std::string& What) {
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x)
            for (int p = 0; p < image.Planes(); ++p)
                ASSERT_EQ(image.LineData(y)[x * image.Planes() + p], expected(x, y, p))
                    << What << " at " << x << ", " << y << ", plane " << p;
}

void ExpectShape(const ClImage& image, const StCase& made, int nPlanes) {
    EXPECT_EQ(image.Width(), made.m_Head.m_nWidth);
    EXPECT_EQ(image.Height(), made.m_Head.m_nHeight);
    EXPECT_EQ(image.Planes(), nPlanes);
    EXPECT_EQ(image.PelsX(), 19685);
    EXPECT_EQ(image.PelsY(), 9843);
    EXPECT_EQ(image.DataType(), ClImage::eUInt8);
}

constexpr int cnChannelOfPlane[] = {cnBlue, cnGreen, cnRed, cnAlpha};

} // namespace

// GetImage

TEST(BitmapChannels, ReadsGreyIndicesAsOnePlane) {
    for (int nBits : {1, 4, 8})
        for (int nWidth = 1; nWidth < 20; ++nWidth) {
            StCase made(Head(nWidth, 3, nBits), GreyPalette(1u << nBits));
            ClBitmap bitmap;
            made.AttachTo(bitmap);
            ClImage image;
            bitmap.GetImage(image);
            ExpectShape(image, made, 1);
            ExpectSamples(
                image, [&](int x, int y, int) { return ChannelByte(made.Entry(x, y), cnRed); },
                std::to_string(nBits) + " bits");
        }
}

TEST(BitmapChannels, ReadsIndicesFromTheHighestBitDown) {
    StCase one(Head(8, 1, 1), {0x000000, 0xFFFFFF}, {0b10110001, 0, 0, 0});
    StCase four(Head(2, 1, 4), GreyPalette(16), {0x2C, 0, 0, 0});
    ClBitmap bitmap;
    ClImage image;
    one.AttachTo(bitmap);
    bitmap.GetImage(image);
    const Bytes aOne(image.Data(), image.Data() + 8);
    EXPECT_EQ(aOne, (Bytes{255, 0, 255, 255, 0, 0, 0, 255}));
    four.AttachTo(bitmap);
    bitmap.GetImage(image);
    EXPECT_EQ(image.Data()[0], 2 * 17);
    EXPECT_EQ(image.Data()[1], 12 * 17);
}

TEST(BitmapChannels, ReadsTwoBitsThoughItCannotAttachToThem) {
    StHead head = Head(5, 1, 4);
    head.m_nClrUsed = 4;
    StCase made(head, GreyPalette(4), {0b11011000, 0b01000000, 0, 0});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    made.m_aBlock[14] = 2; // the caller's block: the header is not looked at again
    ClImage image;
    bitmap.GetImage(image);
    const Bytes aSamples(image.Data(), image.Data() + 5);
    EXPECT_EQ(aSamples, (Bytes{255, 85, 170, 0, 85}));
}

TEST(BitmapChannels, SendsGreyPixelsThroughThePalette) {
    std::vector<std::uint32_t> aInverse;
    for (std::uint32_t i = 0; i < 256; ++i)
        aInverse.push_back((255 - i) * 0x010101);
    StCase made(Head(4, 1, 8), aInverse, {0, 1, 200, 255});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    const Bytes aSamples(image.Data(), image.Data() + 4);
    EXPECT_EQ(aSamples, (Bytes{255, 254, 55, 0}));
}

TEST(BitmapChannels, ReadsAnIndexWithoutEntryAsTheFirst) {
    StHead head = Head(4, 1, 8);
    head.m_nClrUsed = 3;
    StCase made(head, {0x070707, 0x080808, 0x090909}, {0, 2, 3, 255});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    const Bytes aSamples(image.Data(), image.Data() + 4);
    EXPECT_EQ(aSamples, (Bytes{7, 9, 7, 7}));
    EXPECT_EQ(bitmap.GetPixel(3, 0), 0x070707u);
}

TEST(BitmapChannels, ReadsAShortIdentityPaletteThroughThePalette) {
    StHead head = Head(4, 1, 8);
    head.m_nClrUsed = 255; // one entry short of the identity
    std::vector<std::uint32_t> aPalette = GreyPalette();
    aPalette.pop_back();
    StCase made(head, aPalette, {254, 255, 1, 0});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    EXPECT_EQ(image.Data()[0], 254);
    EXPECT_EQ(image.Data()[1], 0);
}

TEST(BitmapChannels, ReadsColouredIndicesAsBlueGreenRed) {
    for (int nBits : {1, 4, 8})
        for (int nWidth = 1; nWidth < 20; ++nWidth) {
            StCase made(Head(nWidth, 3, nBits), ColourPalette(1u << nBits));
            ClBitmap bitmap;
            made.AttachTo(bitmap);
            ClImage image;
            bitmap.GetImage(image);
            ExpectShape(image, made, 3);
            ExpectSamples(
                image,
                [&](int x, int y, int p) {
                    return ChannelByte(made.Entry(x, y), cnChannelOfPlane[p]);
                },
                std::to_string(nBits) + " bits");
        }
}

TEST(BitmapChannels, ReadsBytesAsTheyAre) {
    for (int nBits : {24, 32})
        for (int nWidth = 1; nWidth < 9; ++nWidth) {
            StCase made(Head(nWidth, 3, nBits), {});
            ClBitmap bitmap;
            made.AttachTo(bitmap);
            ClImage image;
            bitmap.GetImage(image);
            ExpectShape(image, made, nBits / 8);
            ExpectSamples(
                image,
                [&](int x, int y, int p) {
                    return ChannelByte(made.Number(x, y), cnChannelOfPlane[p]);
                },
                std::to_string(nBits) + " bits");
        }
}

TEST(BitmapChannels, ReadsSixteenBitsByTheUsualMasks) {
    for (int nWidth = 1; nWidth < 9; ++nWidth) {
        StCase made(Head(nWidth, 3, 16), {});
        ClBitmap bitmap;
        made.AttachTo(bitmap);
        ClImage image;
        bitmap.GetImage(image);
        ExpectShape(image, made, 3);
        ExpectSamples(
            image, [&](int x, int y, int p) { return Widened(made.Number(x, y) >> (5 * p) & 31); },
            "16 bits");
    }
}

TEST(BitmapChannels, WidensFiveBitsAsWorkedOutByHand) {
    // 31 * 539086 + 36863 = 16748529, which is 255 times 65536 and a rest.
    StCase made(Head(4, 1, 16), {}, {0x00, 0x7C, 0x1F, 0x00, 0x20, 0x00, 0x00, 0x40});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    const Bytes aSamples(image.Data(), image.Data() + 12);
    EXPECT_EQ(aSamples, (Bytes{0, 0, 255, 255, 0, 0, 0, 8, 0, 0, 0, 132}));
}

TEST(BitmapChannels, ReadsFieldsByTheStoredMasks) {
    // Red of 5, green of 6, blue of 5 bits; the scales are 16711680 / 31 and 16711680 / 63.
    StCase made(Head(7, 3, 16, 3), {0xF800, 0x07E0, 0x001F});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    ExpectSamples(
        image,
        [&](int x, int y, int p) {
            const std::uint32_t n = made.Number(x, y);
            if (p == 1)
                return ((n >> 5 & 63) * 265264 + 0x8FFF) / 65536;
            return Widened(p == 0 ? n & 31 : n >> 11);
        },
        "5-6-5");
}

TEST(BitmapChannels, ReadsThirtyTwoBitFieldsWithTheAlphaOfTheTable) {
    StCase made(Head(7, 3, 32, 3), {0x0000FF, 0x00FF00, 0xFF0000});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    ExpectShape(image, made, 4);
    const int caShifts[] = {16, 8, 0, 24}; // blue and red changed places
    ExpectSamples(
        image, [&](int x, int y, int p) { return made.Number(x, y) >> caShifts[p] & 0xFF; },
        "32 bits");
}

TEST(BitmapChannels, ReadsOddMasksWithinBounds) {
    // No red at all, green in two pieces (5 bits wide, values up to 0x81F), blue of all bits.
    StCase made(Head(2, 1, 32, 3), {0, 0x0F000010, 0xFFFFFFFF},
                {0xFF, 0xFF, 0xFF, 0xFF, 0x10, 0x00, 0x00, 0x00});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage image;
    bitmap.GetImage(image);
    const Bytes aSamples(image.Data(), image.Data() + 8);
    EXPECT_EQ(aSamples, (Bytes{0, 255, 0, 255, 0, 8, 0, 0}));
}

TEST(BitmapChannels, ReadsNoImageWithoutLines) {
    ClImage image(4, 4, 1, 0, 0);
    EXPECT_THROWS(ClBitmap(4, 0, 24, 0).GetImage(image), ClException, -101,
                  "Image area must be positive");
    ClImage other(4, 4, 1, 0, 0);
    EXPECT_THROWS(ClBitmap(4, -2, 8, 0).GetImage(other), ClException, -101,
                  "Image area must be positive");
}

TEST(BitmapChannels, ReadsNoColumnsIntoAnEmptyImage) {
    for (int nBits : {1, 8, 16, 24, 32}) {
        ClImage image;
        ClBitmap(0, 3, nBits, 0).GetImage(image); // no bytes before, none after
        EXPECT_EQ(image.Data(), nullptr);
        ClBitmap(0, 3, nBits, 0).GetRedChannel(image);
        EXPECT_EQ(image.Data(), nullptr);
    }
}

TEST(BitmapChannels, RefusesEncodedPixels) {
    for (std::uint32_t nCompression : {1u, 2u}) {
        StCase made(Head(4, 4, 8, nCompression), GreyPalette());
        ClBitmap bitmap;
        made.AttachTo(bitmap);
        ClImage image(4, 4, 1, 0, 0);
        EXPECT_TESSARIN(bitmap.GetImage(image), -31);
        EXPECT_TESSARIN(bitmap.GetRedChannel(image), -31);
        EXPECT_TESSARIN(bitmap.SetRedChannel(image), -31);
        EXPECT_TESSARIN(bitmap.IsGray(true), -31);
        EXPECT_TRUE(bitmap.IsGray(false));
        EXPECT_EQ(bitmap.GetPixel(0, 0), 0xFFFFFFFFu);
    }
}

// Channels

TEST(BitmapChannels, ReadsChannelsOfEveryDepth) {
    for (int nBits : {1, 4, 8, 16, 24, 32})
        for (int nChannel = 0; nChannel < 4; ++nChannel) {
            if (nBits == 24 && nChannel == cnAlpha)
                continue;
            StCase made(Head(9, 3, nBits),
                        nBits <= 8 ? ColourPalette(1u << nBits) : std::vector<std::uint32_t>());
            ClBitmap bitmap;
            made.AttachTo(bitmap);
            ClImage image;
            bitmap.GetChannel(nChannel, image);
            ExpectShape(image, made, 1);
            const auto expected = [&](int x, int y, int) -> std::uint32_t {
                if (nBits <= 8)
                    return ChannelByte(made.Entry(x, y), nChannel);
                const std::uint32_t n = made.Number(x, y);
                if (nBits > 16)
                    return ChannelByte(n, nChannel);
                return nChannel == cnAlpha ? (n >> 15) * 255
                                           : Widened(n >> (10 - 5 * nChannel) & 31);
            };
            ExpectSamples(image, expected, std::to_string(nBits) + " bits");
        }
}

TEST(BitmapChannels, NamesTheChannels) {
    StCase made(Head(1, 1, 32), {}, {1, 2, 3, 4});
    ClBitmap bitmap;
    made.AttachTo(bitmap);
    ClImage red, green, blue, alpha;
    bitmap.GetRedChannel(red);
    bitmap.GetGreenChannel(green);
    bitmap.GetBlueChannel(blue);
    bitmap.GetAlphaChannel(alpha);
    EXPECT_EQ(blue.Data()[0], 1);
    EXPECT_EQ(green.Data()[0], 2);
    EXPECT_EQ(red.Data()[0], 3);
    EXPECT_EQ(alpha.Data()[0], 4);
    bitmap.SplitChannels(blue, red, green);
    EXPECT_EQ(blue.Data()[0], 3);
    EXPECT_EQ(red.Data()[0], 2);
    EXPECT_EQ(green.Data()[0], 1);
}

TEST(BitmapChannels, RefusesChannelsThatThereAreNot) {
    ClImage image(4, 4, 1, 0, 0);
    for (int nBits : {8, 16, 24, 32}) {
        ClBitmap bitmap(4, 4, nBits, 0);
        for (int nChannel : {-1, 4, 1000}) {
            EXPECT_TESSARIN(bitmap.GetChannel(nChannel, image), -35);
            EXPECT_TESSARIN(bitmap.SetChannel(nChannel, image), -35);
        }
    }
    ClBitmap rgb(4, 4, 24, 0);
    EXPECT_TESSARIN(rgb.GetAlphaChannel(image), -35);
    EXPECT_TESSARIN(rgb.SetAlphaChannel(image), -35);
}

TEST(BitmapChannels, WritesWhatItReads) {
    for (int nBits : {24, 32})
        for (int nChannel = 0; nChannel < (nBits == 32 ? 4 : 3); ++nChannel) {
            StCase made(Head(5, 3, nBits), {});
            StCase noise(Head(5, 3, 8), GreyPalette());
            ClBitmap bitmap, source;
            made.AttachTo(bitmap);
            noise.AttachTo(source);
            ClImage image, back;
            image.Attach(source);
            bitmap.SetChannel(nChannel, image);
            bitmap.GetChannel(nChannel, back);
            ExpectSamples(
                back, [&](int x, int y, int) { return noise.Number(x, y); }, "written");
            for (int nOther = 0; nOther < (nBits == 32 ? 4 : 3); ++nOther) {
                if (nOther == nChannel)
                    continue;
                bitmap.GetChannel(nOther, back);
                ExpectSamples(
                    back, [&](int x, int y, int) { return ChannelByte(made.Number(x, y), nOther); },
                    "left alone");
            }
        }
}

TEST(BitmapChannels, WritesFieldsOfSixteenBits) {
    // The scale down of 5 bits is 31 * 257.0039... = 7967: 132 * 7967 + 36863 is 16 times 65536.
    ClBitmap bitmap(4, 1, 16, 0);
    bitmap = static_cast<unsigned char>(0xFF);
    ClImage image(4, 1, 1, 0, 0);
    const unsigned char caSamples[] = {0, 8, 132, 255};
    const std::uint32_t caFields[] = {0, 1, 16, 31};
    std::copy(caSamples, caSamples + 4, image.Data());
    bitmap.SetGreenChannel(image);
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(PixelNumber(bitmap.Line(0), 16, x), 0xFC1Fu | caFields[x] << 5);
}

TEST(BitmapChannels, RefusesImagesThatDoNotFit) {
    ClBitmap bitmap(4, 4, 24, 0);
    EXPECT_TESSARIN(bitmap.SetRedChannel(ClImage()), -14);
    EXPECT_TESSARIN(bitmap.SetRedChannel(ClImage(5, 4, 1, 0, 0)), -14);
    EXPECT_TESSARIN(bitmap.SetRedChannel(ClImage(4, 3, 1, 0, 0)), -14);
    EXPECT_TESSARIN(bitmap.SetRedChannel(ClImage(4, 4, 3, 0, 0)), -14);
    ClImage typed;
    typed.NewWithType(ClImage::eInt8, 4, 4, 1, 0, 0);
    EXPECT_TESSARIN(bitmap.SetRedChannel(typed), -14);
}

TEST(BitmapChannels, WritesNoIndices) {
    const ClImage image(4, 4, 1, 0, 0);
    for (int nBits : {1, 4, 8}) {
        ClBitmap bitmap(4, 4, nBits, 0);
        EXPECT_TESSARIN(bitmap.SetRedChannel(image), -33);
        EXPECT_TESSARIN(bitmap.JoinChannels(image, image, image), -33);
    }
}

TEST(BitmapChannels, JoinsChannelsIntoATrueColourBitmap) {
    ClImage red(5, 3, 1, 19685, 9843), green(5, 3, 1, 0, 0), blue(5, 3, 1, 0, 0);
    red = static_cast<unsigned char>(10);
    green = static_cast<unsigned char>(20);
    blue = static_cast<unsigned char>(30);
    ClBitmap bitmap;
    bitmap.JoinChannels(red, green, blue);
    EXPECT_EQ(int{bitmap.Header()->biBitCount}, 24);
    EXPECT_EQ(int{bitmap.Header()->biXPelsPerMeter}, 19685);
    EXPECT_EQ(int{bitmap.Header()->biYPelsPerMeter}, 9843);
    EXPECT_EQ(bitmap.GetPixel(4, 2), 0x0A141Eu);
    bitmap.Create(5, 3, 32, 0);
    bitmap.JoinChannels(blue, green, red);
    EXPECT_EQ(bitmap.GetPixel(4, 2), 0x1E140Au);
}

TEST(BitmapChannels, JoinsNothingWhereOneImageDoesNotFit) {
    const ClImage fitting(5, 3, 1, 0, 0), other(5, 4, 1, 0, 0);
    ClBitmap empty;
    EXPECT_TESSARIN(empty.JoinChannels(fitting, fitting, other), -14);
    EXPECT_EQ(empty.Header(), nullptr);
    ClBitmap bitmap(5, 3, 24, 0);
    bitmap = static_cast<unsigned char>(7);
    EXPECT_TESSARIN(bitmap.JoinChannels(fitting, other, fitting), -14);
    EXPECT_EQ(bitmap.GetPixel(0, 0), 0x070707u);
}
