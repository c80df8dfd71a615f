/// Pictures in PNG against files that are put together here, chunk by chunk, without libpng.

#include "apps/qk7/Png.h"

#include "apps/qk7/BitmapInfo.h"
#include "qk7/PngFiles.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <random>

using namespace TestSupport;
using namespace qk7;

namespace {

/// The same numbers on every machine.
class ClNumbers {
public:
    explicit ClNumbers(unsigned int nSeed) : m_Random(nSeed) {}
    unsigned int operator()() { return static_cast<unsigned int>(m_Random()); }

private:
    std::mt19937 m_Random;
};

std::string WordsOf(const Bytes& Png) {
    try {
        BlockOfPng(Png);
    } catch (const ClFailure& failure) {
        return failure.what();
    }
    return "read";
}

/// The samples of a block of 8 bits, from its upper line.
Bytes SamplesOf(const Bytes& Block, std::size_t nWidth, std::size_t nHeight) {
    const std::size_t nStride = (nWidth + 3) / 4 * 4;
    Bytes samples;
    for (std::size_t y = nHeight; y-- > 0;)
        for (std::size_t x = 0; x < nWidth; ++x)
            samples.push_back(Block.at(40 + 1024 + y * nStride + x));
    return samples;
}

/// Pixel (x, y) as before, the lines counted from the upper one.
Bytes Upright(const Bytes& Block) {
    const std::size_t nStride = static_cast<std::size_t>(Block[4] + 3) / 4 * 4;
    Bytes upright(Block.begin(), Block.begin() + 40 + 1024);
    for (std::size_t nEnd = Block.size(); nEnd > 40 + 1024; nEnd -= nStride)
        upright.insert(upright.end(), Block.begin() + static_cast<std::ptrdiff_t>(nEnd - nStride),
                       Block.begin() + static_cast<std::ptrdiff_t>(nEnd));
    return upright;
}

Bytes WithPels(Bytes block, std::uint32_t nPelsX, std::uint32_t nPelsY) {
    for (std::size_t i = 0; i < 4; ++i) {
        block[24 + i] = static_cast<unsigned char>(nPelsX >> (8 * i));
        block[28 + i] = static_cast<unsigned char>(nPelsY >> (8 * i));
    }
    return block;
}

} // namespace

TEST(Qk7Png, IsToldByItsSignature) {
    EXPECT_TRUE(IsPng(PngFile({2, 1, 8, 0}, {{7, 8}})));
    EXPECT_FALSE(IsPng(GreyFileHeader(2, 1)));
    EXPECT_FALSE(IsPng({0x89, 'P', 'N', 'G', '\r', '\n', 0x1a}));
    EXPECT_FALSE(IsPng({}));
}

TEST(Qk7Png, OfEightBitsIsReadFromTheUpperLine) {
    const Bytes block = BlockOfPng(PngFile({3, 2, 8, 0}, {{1, 2, 3}, {4, 5, 6}}));

    const Bytes expected = GreyBlock(3, 2);
    ASSERT_EQ(block.size(), expected.size());
    EXPECT_TRUE(std::equal(block.begin(), block.begin() + 40 + 1024, expected.begin()));
    EXPECT_EQ(Bytes(block.end() - 8, block.end()), (Bytes{4, 5, 6, 0, 1, 2, 3, 0}))
        << "a bitmap stores its lowest line first";
}

TEST(Qk7Png, OfFewBitsIsSpreadOverTheGreys) {
    EXPECT_EQ(SamplesOf(BlockOfPng(PngFile({3, 1, 1, 0}, {{0xA0}})), 3, 1), (Bytes{255, 0, 255}));
    EXPECT_EQ(SamplesOf(BlockOfPng(PngFile({4, 1, 2, 0}, {{0x1B}})), 4, 1),
              (Bytes{0, 85, 170, 255}));
    EXPECT_EQ(SamplesOf(BlockOfPng(PngFile({3, 1, 4, 0}, {{0x1F, 0x80}})), 3, 1),
              (Bytes{17, 255, 136}));
}

TEST(Qk7Png, OfAPaletteOfGreysIsTranslated) {
    const Bytes palette = {9, 9, 9, 200, 200, 200, 30, 30, 30};
    for (const int nBits : {2, 8}) {
        const Bytes line = nBits == 2 ? Bytes{0x24} : Bytes{0, 2, 1};
        const Bytes png = PngFile({3, 1, nBits, 3}, {line}, PngChunk("PLTE", palette));

        EXPECT_EQ(SamplesOf(BlockOfPng(png), 3, 1), (Bytes{9, 30, 200})) << nBits;
    }
}

TEST(Qk7Png, KeepsItsResolution) {
    const auto pels = [](const Bytes& Png) {
        const StBitmapInfo info = ReadBitmapInfo(BlockOfPng(Png));
        return std::pair(info.m_nPelsX, info.m_nPelsY);
    };
    const StPngShape shape = {1, 1, 8, 0};
    EXPECT_EQ(pels(PngFile(shape, {{0}}, PngResolution(19685, 39370))), std::pair(19685, 39370));
    EXPECT_EQ(pels(PngFile(shape, {{0}}, PngResolution(19685, 39370, 0))), std::pair(0, 0))
        << "a ratio is no resolution";
    EXPECT_EQ(pels(PngFile(shape, {{0}})), std::pair(0, 0));
}

TEST(Qk7Png, ThatIsInterlacedIsReadLikeOthers) {
    // Adam7 of 2 x 2: pass 1 has (0, 0), pass 6 has (1, 0), pass 7 has the second line.
    const StPngShape shape = {2, 2, 8, 0, 1};
    const Bytes png = PngFile(shape, {{1}, {2}, {3, 4}});

    EXPECT_EQ(SamplesOf(BlockOfPng(png), 2, 2), (Bytes{1, 2, 3, 4}));
}

TEST(Qk7Png, OfAnotherProgramIsRead) {
    for (const char* szName : {"pictures/filters.png", "pictures/interlaced.png"})
        EXPECT_EQ(BlockOfPng(Get(DataPath(szName))),
                  WithPels(Upright(GreyBlock(37, 23)), 19685, 39370))
            << szName;
}

TEST(Qk7Png, ThatIsNoGreyPictureIsRefusedWithWhatToDo) {
    const StPngShape grey = {1, 1, 8, 0};
    EXPECT_EQ(WordsOf(PngFile({1, 1, 8, 2}, {{1, 2, 3}})),
              "is a colour picture, a grey one is expected. Save it as 8-bit grey.");
    EXPECT_EQ(WordsOf(PngFile({1, 1, 16, 0}, {{1, 2}})),
              "has 16 bits per sample, at most 8 are expected. Save it as 8-bit grey.");
    for (const Bytes& png :
         {PngFile({1, 1, 8, 4}, {{1, 255}}), PngFile({1, 1, 8, 6}, {{1, 1, 1, 2}}),
          PngFile(grey, {{1}}, PngChunk("tRNS", {0, 7}))})
        EXPECT_EQ(WordsOf(png), "has transparency, which no capture has. Save it as 8-bit grey "
                                "without an alpha channel.");
    EXPECT_EQ(WordsOf(PngFile({1, 1, 8, 3}, {{0}}, PngChunk("PLTE", {1, 1, 2}))),
              "has a palette of colours, greys are expected. Save it as 8-bit grey.");
    EXPECT_EQ(WordsOf(PngFile({1, 1, 8, 3}, {{1}}, PngChunk("PLTE", {1, 1, 1}))),
              "has a pixel beyond its palette of 1 greys. Save it anew.");
}

TEST(Qk7Png, OfAbsurdSizeIsRefusedBeforeMemoryIsTaken) {
    EXPECT_EQ(WordsOf(PngFile({32767, 32767, 8, 0}, {{1}})),
              "claims 32767 x 32767 pixels, more than any picture for this tool.");
    EXPECT_EQ(WordsOf(PngFile({32768, 1, 8, 0}, {{1}})).rfind("is no PNG picture that can", 0), 0U);
    EXPECT_EQ(WordsOf(PngFile({0, 1, 8, 0}, {{1}})).rfind("is no PNG picture that can", 0), 0U);
}

TEST(Qk7Png, ThatIsCutOffAnywhereIsRefused) {
    const Bytes png = PngFile({3, 2, 8, 0}, {{1, 2, 3}, {4, 5, 6}}, PngResolution(19685, 19685));
    ASSERT_EQ(WordsOf(png), "read");
    for (std::size_t nBytes = 8; nBytes < png.size(); ++nBytes)
        EXPECT_EQ(
            WordsOf(Bytes(png.begin(), png.begin() + static_cast<std::ptrdiff_t>(nBytes))),
            "is no PNG picture that can be read (it is cut off). Restore it, or save it anew.")
            << nBytes;
}

TEST(Qk7Png, ThatIsDamagedAnywhereIsRefused) {
    const Bytes png = PngFile({3, 2, 8, 0}, {{1, 2, 3}, {4, 5, 6}}, PngResolution(19685, 19685));
    for (std::size_t nByte = 8; nByte < png.size(); ++nByte)
        for (int nBit = 0; nBit < 8; ++nBit) {
            Bytes damaged = png;
            damaged[nByte] = static_cast<unsigned char>(damaged[nByte] ^ (1 << nBit));
            EXPECT_NE(WordsOf(damaged), "read") << nByte << " " << nBit;
        }
}

TEST(Qk7Png, OfHostileChunksIsReadOrRefused) {
    ClNumbers random(7);
    const auto byte = [&] { return static_cast<unsigned char>(random()); };
    const char* aszNames[] = {"IHDR", "PLTE", "IDAT", "IEND", "pHYs", "tRNS", "gAMA",
                              "zTXt", "iCCP", "sPLT", "hIST", "eXIf", "sBIT", "qkQK"};
    int nRead = 0;
    for (int i = 0; i < 3000; ++i) {
        const StPngShape shape = {1 + random() % 4, 1 + random() % 4, 1 << random() % 5,
                                  static_cast<int>(random() % 7), static_cast<int>(random() % 3)};
        Bytes between;
        for (unsigned int nChunks = random() % 3; nChunks > 0; --nChunks) {
            Bytes content(random() % 20);
            std::generate(content.begin(), content.end(), byte);
            between = between + PngChunk(aszNames[random() % 14], content);
        }
        std::vector<Bytes> lines(shape.m_nHeight, Bytes(4 * shape.m_nWidth));
        for (Bytes& rLine : lines)
            std::generate(rLine.begin(), rLine.end(), byte);

        const std::string words = WordsOf(PngFile(shape, lines, between));

        nRead += words == "read" ? 1 : 0;
        EXPECT_FALSE(words.empty());
    }
    EXPECT_GT(nRead, 20) << "some are well formed";
}

TEST(Qk7Png, GivesEveryBlockBack) {
    ClNumbers random(11);
    for (int i = 0; i < 200; ++i) {
        const int nWidth = 1 + static_cast<int>(random() % 40);
        const int nHeight = 1 + static_cast<int>(random() % 40);
        Bytes block = WithPels(GreyBlock(nWidth, nHeight), random() >> 1, random() >> 1);
        const int nStride = (nWidth + 3) / 4 * 4;
        for (int y = 0; y < nHeight; ++y)
            for (int x = 0; x < nWidth; ++x)
                block[static_cast<std::size_t>(40 + 1024 + y * nStride + x)] =
                    static_cast<unsigned char>(i % 2 == 0 ? random() : static_cast<unsigned>(x));

        EXPECT_EQ(BlockOfPng(PngOfBlock(block)), block) << nWidth << " x " << nHeight;
    }
}

TEST(Qk7Png, KeepsAResolutionOfOneAxis) {
    for (const auto& [nPelsX, nPelsY] : {std::pair(0U, 39370U), std::pair(19685U, 0U)}) {
        const Bytes block = WithPels(GreyBlock(5, 4), nPelsX, nPelsY);
        EXPECT_EQ(BlockOfPng(PngOfBlock(block)), block);
    }
}

TEST(Qk7Png, HasRoomForNoiseThatCannotBeReduced) {
    ClNumbers random(13);
    Bytes block = GreyBlock(1000, 700);
    std::generate(block.begin() + 40 + 1024, block.end(),
                  [&] { return static_cast<unsigned char>(random()); });

    EXPECT_EQ(BlockOfPng(PngOfBlock(block)), block);
}

TEST(Qk7Png, TranslatesThePaletteOfABlock) {
    Bytes block = GreyBlock(1, 1);
    block.back() = 0; // padding
    block[40 + 1024] = 5;
    for (std::size_t i = 0; i < 3; ++i)
        block[40 + 4 * 5 + i] = 99;

    EXPECT_EQ(SamplesOf(BlockOfPng(PngOfBlock(block)), 1, 1), Bytes{99});
}

TEST(Qk7Png, IsNotMadeFromOtherBlocks) {
    const auto words = [](const Bytes& Block) {
        try {
            PngOfBlock(Block);
        } catch (const ClFailure& failure) {
            return std::string(failure.what());
        }
        return std::string("made");
    };
    const std::string end = ". Give it a name that does not end in .png.";
    Bytes block = GreyBlock(2, 2);
    block.pop_back();
    EXPECT_EQ(words(block), "cannot be written as PNG: its header does not fit its bytes" + end);
    block = GreyBlock(2, 2);
    block[14] = 24;
    EXPECT_EQ(words(block),
              "cannot be written as PNG: it is no 8-bit bitmap without compression" + end);
    block = GreyBlock(2, 2);
    block[40 + 4] = 77;
    EXPECT_EQ(words(block), "cannot be written as PNG: its palette has colours" + end);
}

TEST(Qk7Png, TellsWhatStandsBeforeItsPixels) {
    const StPngInfo info = ReadPngInfo(
        PngFile({5, 7, 4, 3, 1}, {{0}}, PngChunk("PLTE", Bytes(3)) + PngResolution(10, 20)));

    EXPECT_EQ(info.m_nWidth, 5U);
    EXPECT_EQ(info.m_nHeight, 7U);
    EXPECT_EQ(info.m_nBits, 4);
    EXPECT_EQ(info.m_nColourType, 3);
    EXPECT_TRUE(info.m_bInterlaced);
    EXPECT_EQ(info.m_nPelsX, 10U);
    EXPECT_EQ(info.m_nPelsY, 20U);
}
