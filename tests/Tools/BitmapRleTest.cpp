#include "Tools/Bitmap.h"

#include "Tools/MemStream.h"
#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <unistd.h>

using namespace TestSupport;

namespace {

Bytes File(int nWidth, int nHeight, const Bytes& aCodes) {
    StHead head;
    head.m_nWidth = nWidth;
    head.m_nHeight = nHeight;
    head.m_nCompression = 1;
    head.m_nSizeImage = static_cast<std::uint32_t>(aCodes.size());
    return FileBytes(Block(head, GreyPalette(), aCodes), 1078);
}

/// The lines of a decoded bitmap, without their padding.
using Lines = std::vector<Bytes>;

Lines LinesOf(const ClBitmap& bitmap) {
    Lines aLines;
    for (long y = 0; y < bitmap.Header()->biHeight; ++y)
        aLines.emplace_back(bitmap.Line(y), bitmap.Line(y) + bitmap.Header()->biWidth);
    return aLines;
}

Lines Decoded(int nWidth, int nHeight, const Bytes& aCodes) {
    ClBitmap bitmap;
    Load(bitmap, File(nWidth, nHeight, aCodes));
    return LinesOf(bitmap);
}

void ExpectCorrupt(int nWidth, int nHeight, const Bytes& aCodes) {
    ClBitmap bitmap(4, 4, 8, 0);
    EXPECT_THROWS(Load(bitmap, File(nWidth, nHeight, aCodes)), ClException, -38,
                  "ClBitmap::Load. RLE Encoding corrupt");
    EXPECT_EQ(bitmap.Header(), nullptr);
}

/// Memory of the process that has been touched.
std::size_t ResidentBytes() {
    std::size_t nPages = 0;
    std::ifstream("/proc/self/statm") >> nPages >> nPages;
    return nPages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// A pipe that remembers how much memory was in use when it was read.
class ClWatchingPipe : public ClPipe {
public:
    using ClPipe::ClPipe;

    unsigned long ReadRaw(void* pData, unsigned long nSize) override {
        m_nMost = std::max(m_nMost, ResidentBytes());
        return ClPipe::ReadRaw(pData, nSize);
    }

    std::size_t m_nMost = 0;
};

/// Codes for lines, by chance as runs, literal bytes or jumps over zeros.
class ClEncoder {
public:
    explicit ClEncoder(unsigned int nSeed) : m_Random(nSeed) {}

    Bytes Encode(const Lines& aLines) {
        m_aCodes.clear();
        for (const Bytes& aLine : aLines)
            EncodeLine(aLine);
        Put({0, 1});
        return m_aCodes;
    }

private:
    void Put(const Bytes& aCodes) { Append(m_aCodes, aCodes); }
    bool Chance() { return m_Random() % 2 == 0; }

    /// How many bytes from `x` on have the value of the first.
    static std::size_t Alike(const Bytes& aLine, std::size_t x) {
        std::size_t n = 1;
        while (x + n < aLine.size() && aLine[x + n] == aLine[x] && n < 255)
            ++n;
        return n;
    }

    void EncodeLine(const Bytes& aLine) {
        bool bWrapped = false; // a literal run that ends its line goes to the next by itself
        for (std::size_t x = 0; x < aLine.size();) {
            const std::size_t nAlike = Alike(aLine, x);
            const std::size_t nRest = std::min<std::size_t>(aLine.size() - x, 255);
            if (aLine[x] == 0 && Chance()) {
                Put({0, 2, static_cast<unsigned char>(nAlike), 0});
                x += nAlike;
            } else if (nRest >= 3 && Chance()) {
                const std::size_t n = 3 + m_Random() % (nRest - 2);
                Put({0, static_cast<unsigned char>(n)});
                Put(Bytes(aLine.begin() + static_cast<long>(x),
                          aLine.begin() + static_cast<long>(x + n)));
                x += n;
                bWrapped = x == aLine.size();
            } else {
                Put({static_cast<unsigned char>(nAlike), aLine[x]});
                x += nAlike;
            }
        }
        if (!bWrapped)
            Put({0, 0});
    }

    std::mt19937 m_Random;
    Bytes m_aCodes;
};

} // namespace

TEST(BitmapRle, DecodesRunsLineByLine) {
    EXPECT_EQ(Decoded(3, 2, {3, 7, 0, 0, 1, 8, 2, 9, 0, 0, 0, 1}), (Lines{{7, 7, 7}, {8, 9, 9}}));
}

TEST(BitmapRle, KeepsAPlainBottomUpBitmap) {
    ClBitmap bitmap;
    Load(bitmap, File(3, 2, {3, 7, 0, 0, 3, 8, 0, 1}));
    StHead head;
    head.m_nWidth = 3;
    head.m_nHeight = 2;
    head.m_nSizeImage = 8; // as the file has it
    EXPECT_EQ(Written(bitmap), Block(head, GreyPalette(), {7, 7, 7, 0, 8, 8, 8, 0}));
    Load(bitmap, File(3, -2, {3, 7, 0, 0, 3, 8, 0, 1}));
    EXPECT_EQ(Written(bitmap), Block(head, GreyPalette(), {8, 8, 8, 0, 7, 7, 7, 0}));
}

TEST(BitmapRle, RunsOnIntoTheNextLine) {
    EXPECT_EQ(Decoded(3, 3, {5, 7, 4, 8, 0, 1}), (Lines{{7, 7, 7}, {7, 7, 8}, {8, 8, 8}}));
}

TEST(BitmapRle, EndsAFilledLineOnce) {
    // The run stays behind its last pixel, so that the end of line belongs to the same line ...
    EXPECT_EQ(Decoded(2, 3, {2, 7, 0, 0, 2, 8, 0, 1}), (Lines{{7, 7}, {8, 8}, {0, 0}}));
    // ... while literal bytes have gone on, so that it ends an empty one.
    EXPECT_EQ(Decoded(3, 3, {0, 3, 7, 7, 7, 0, 0, 3, 8, 0, 1}),
              (Lines{{7, 7, 7}, {0, 0, 0}, {8, 8, 8}}));
}

TEST(BitmapRle, ReadsNoPaddingBehindAnOddLiteralRun) {
    EXPECT_EQ(Decoded(5, 1, {0, 3, 1, 2, 3, 2, 9, 0, 1}), (Lines{{1, 2, 3, 9, 9}}));
}

TEST(BitmapRle, CarriesLiteralBytesOverLines) {
    EXPECT_EQ(Decoded(2, 3, {0, 5, 1, 2, 3, 4, 5, 1, 6, 0, 1}), (Lines{{1, 2}, {3, 4}, {5, 6}}));
    // Behind a filled line they begin the next one.
    EXPECT_EQ(Decoded(2, 3, {2, 9, 0, 3, 1, 2, 3, 0, 1}), (Lines{{9, 9}, {1, 2}, {3, 0}}));
}

TEST(BitmapRle, MovesByADelta) {
    EXPECT_EQ(Decoded(3, 3, {1, 7, 0, 2, 1, 1, 1, 8, 0, 2, 0, 1, 0, 1}),
              (Lines{{7, 0, 0}, {0, 0, 8}, {0, 0, 0}}));
    // To the very end of a line: what follows begins the next.
    EXPECT_EQ(Decoded(3, 2, {0, 2, 3, 0, 1, 8, 0, 1}), (Lines{{0, 0, 0}, {8, 0, 0}}));
}

TEST(BitmapRle, LeavesTheRestZeroAtTheEndOfBitmap) {
    EXPECT_EQ(Decoded(2, 2, {0, 1}), (Lines{{0, 0}, {0, 0}}));
    EXPECT_EQ(Decoded(2, 2, {1, 5, 0, 1, 9, 9, 9}), (Lines{{5, 0}, {0, 0}}));
}

TEST(BitmapRle, EndsQuietlyWhereALineEndLeavesTheBlock) {
    EXPECT_EQ(Decoded(2, 2, {2, 5, 0, 0, 2, 6, 0, 0}), (Lines{{5, 5}, {6, 6}}));
    EXPECT_EQ(Decoded(2, 2, {0, 0, 0, 0}), (Lines{{0, 0}, {0, 0}}));
}

TEST(BitmapRle, EndsQuietlyWhereLiteralBytesFillTheBlock) {
    EXPECT_EQ(Decoded(2, 2, {0, 4, 1, 2, 3, 4}), (Lines{{1, 2}, {3, 4}}));
}

TEST(BitmapRle, WaitsForAnEndBehindAFilledBlock) {
    ClBitmap bitmap;
    EXPECT_THROWS(Load(bitmap, File(2, 2, {4, 5})), ClExStreamUnexpectedEnd, -201,
                  "Unexpected end of stream");
    EXPECT_EQ(Decoded(2, 2, {4, 5, 0, 1}), (Lines{{5, 5}, {5, 5}}));
}

TEST(BitmapRle, NeedsNoCodesWithoutLines) {
    EXPECT_EQ(Decoded(2, 0, {}), Lines());
}

TEST(BitmapRle, RefusesToRunPastTheLastLine) {
    ExpectCorrupt(2, 2, {5, 7, 0, 1});
    ExpectCorrupt(2, 2, {4, 7, 1, 8, 0, 1});
    ExpectCorrupt(2, -2, {5, 7, 0, 1});
    ExpectCorrupt(2, 2, {0, 5, 1, 2, 3, 4, 5, 0, 1});
    ExpectCorrupt(2, 1, {2, 7, 0, 3, 1, 2, 3, 0, 1});
}

TEST(BitmapRle, RefusesToMoveOutOfTheBlock) {
    ExpectCorrupt(3, 3, {0, 2, 4, 0, 0, 1});
    ExpectCorrupt(3, 3, {2, 7, 0, 2, 2, 0, 0, 1});
    ExpectCorrupt(3, 3, {0, 2, 0, 3, 0, 1});
    ExpectCorrupt(3, 3, {0, 0, 0, 0, 0, 2, 0, 1, 0, 1});
    ExpectCorrupt(3, 3, {0, 2, 255, 255, 0, 1});
}

TEST(BitmapRle, DecodesWhatAnEncoderMakes) {
    std::mt19937 random(7);
    for (unsigned int nSeed = 0; nSeed < 300; ++nSeed) {
        const std::size_t nWidth = 1 + random() % 40;
        const std::size_t nHeight = 1 + random() % 6;
        Lines aLines(nHeight, Bytes(nWidth));
        for (Bytes& aLine : aLines)
            for (unsigned char& nByte : aLine)
                nByte = static_cast<unsigned char>(random() % 3);
        const Bytes aCodes = ClEncoder(nSeed).Encode(aLines);
        ASSERT_EQ(Decoded(static_cast<int>(nWidth), static_cast<int>(nHeight), aCodes), aLines);
    }
}

TEST(BitmapRle, RefusesEveryTruncation) {
    const Bytes aFile = File(4, 3, {4, 7, 0, 0, 0, 3, 1, 2, 3, 0, 2, 0, 1, 1, 8, 0, 1});
    ClBitmap whole;
    Load(whole, aFile);
    for (std::size_t nSize = 0; nSize < aFile.size(); ++nSize) {
        const auto pFile = Exactly(aFile, nSize);
        ClMemStream stream(static_cast<const unsigned char*>(pFile.get()), nSize);
        ClBitmap bitmap(4, 4, 8, 0);
        EXPECT_THROWS(bitmap.Load(stream), ClExStreamUnexpectedEnd, -201,
                      "Unexpected end of stream");
        EXPECT_EQ(bitmap.Header(), nullptr);
    }
}

TEST(BitmapRle, SurvivesAnyCodes) {
    std::mt19937 random(11);
    for (int i = 0; i < 3000; ++i) {
        Bytes aCodes(random() % 60);
        for (unsigned char& nByte : aCodes)
            nByte = static_cast<unsigned char>(random() % (random() % 4 == 0 ? 256 : 6));
        const int nWidth = 1 + static_cast<int>(random() % 20);
        const int nHeight = static_cast<int>(random() % 20) - 10;
        ClBitmap bitmap;
        try {
            Load(bitmap, File(nWidth, nHeight, aCodes));
            EXPECT_EQ(LinesOf(bitmap).size(), static_cast<std::size_t>(std::abs(nHeight)));
        } catch (const ClException& e) {
            EXPECT_TRUE(e.Number() == -38 || e.Number() == -201) << e.What();
        }
    }
}

TEST(BitmapRle, SurvivesEveryMutationOfItsHeaders) {
    const Bytes aWhole = File(4, 3, {4, 7, 0, 0, 0, 3, 1, 2, 3, 0, 2, 0, 1, 1, 8, 0, 1});
    for (std::size_t i = 0; i < 54; ++i)
        for (int nValue : {0, 1, 2, 3, 4, 8, 24, 41, 127, 128, 255}) {
            if (i == 20 || i == 21 || i == 24 || i == 25)
                continue; // sizes that are allowed and only cost memory
            Bytes aFile = aWhole;
            aFile[i] = static_cast<unsigned char>(nValue);
            ClBitmap bitmap;
            try {
                Load(bitmap, aFile);
                EXPECT_NE(std::uint32_t{bitmap.Header()->biCompression}, 1u);
            } catch (const ClException&) {
                EXPECT_EQ(bitmap.Header(), nullptr);
            }
        }
}

#ifndef __SANITIZE_THREAD__ // it takes notes of as many bytes as are reserved
TEST(BitmapRle, TakesNoMemoryForLinesThatNoCodeHasReached) {
    constexpr std::size_t cnMost = std::size_t{1} << 30; // a sanitizer has its own share of 2 GiB
    Bytes aCodes = {5, 7};
    for (int i = 0; i < 150; ++i) // far into the block
        Append(aCodes, {0, 2, 0, 255});
    for (const Bytes& aSome : {Bytes(), aCodes}) {
        ClWatchingPipe pipe(File(46336, 46336, aSome));
        const std::size_t nBefore = ResidentBytes();
        ClBitmap bitmap;
        EXPECT_THROWS(bitmap.Load(pipe), ClExStreamUnexpectedEnd, -201, "Unexpected end of stream");
        EXPECT_GT(pipe.m_nMost, 0u);
        EXPECT_LT(pipe.m_nMost, nBefore + cnMost);
    }
}

TEST(BitmapRle, AnEarlyEndTakesNoMemoryForTheRestOfItsClaim) {
    constexpr std::size_t cnMost = std::size_t{1} << 30; // a sanitizer has its own share of 2 GiB
    const std::size_t nBefore = ResidentBytes();
    ClBitmap bitmap;
    Load(bitmap, File(46336, 46336, {5, 7, 0, 1}));
    EXPECT_LT(ResidentBytes(), nBefore + cnMost);
    EXPECT_EQ(bitmap.GetPixel(4, 0), 0x070707u);
    EXPECT_EQ(bitmap.GetPixel(5, 0), 0u);
    EXPECT_EQ(bitmap.GetPixel(46335, 46335), 0u);
}
#endif

TEST(BitmapRle, MissingMemoryLeavesTheBitmapEmpty) {
    const Bytes aFile = File(2, 2, {2, 7, 0, 1});
    bool bLoaded = false;
    for (long nAfter = 0; !bLoaded; ++nAfter) {
        ClMemStream stream(aFile.data(), aFile.size());
        ClBitmap bitmap;
        const TestSupport::ClFailAllocation Fail(nAfter);
        try {
            bitmap.Load(stream);
            bLoaded = true;
        } catch (const ClException& e) {
            EXPECT_EQ(e.Number(), -102);
            EXPECT_EQ(bitmap.Header(), nullptr);
        }
    }
}

TEST(BitmapRle, LinesThatAreNotToldAreZeroWhateverWasInTheirMemory) {
    for (int i = 0; i < 20; ++i) {
        { const std::vector<unsigned char> aUsed(40 + 1024 + 4 * 40, 0xEE); }
        for (int nHeight : {40, -40}) {
            Lines aLines(40, Bytes{0, 0});
            aLines[nHeight > 0 ? 10 : 29] = {0, 7};
            EXPECT_EQ(Decoded(2, nHeight, {0, 2, 1, 10, 1, 7, 0, 1}), aLines);
        }
    }
}

TEST(BitmapRle, RestoresTheStreamsSettingsAtTheEndMarker) {
    const Bytes aFile = File(4, 3, {0, 1, 9, 9});
    ClMemStream stream(aFile.data(), aFile.size());
    ClBitmap bitmap;
    bitmap.Load(stream);
    EXPECT_TRUE(stream.GetBigEndian4Read());
    EXPECT_FALSE(stream.GetThrowOnShort());
    EXPECT_EQ(stream.Pos(), aFile.size() - 2);
}
