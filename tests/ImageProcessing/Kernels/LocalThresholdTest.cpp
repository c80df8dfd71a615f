#include "ImageProcessing/Kernels/LocalThreshold.h"

#include "support/AllocationFailures.h"
#include "support/InstructionLevels.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Lines = std::vector<Bytes>;

Lines RandomLines(std::size_t nLines, std::size_t nWidth, unsigned nSeed) {
    std::mt19937 random(nSeed);
    Lines aLines(nLines, Bytes(nWidth));
    for (Bytes& aLine : aLines)
        for (unsigned char& n : aLine)
            n = static_cast<unsigned char>(random());
    return aLines;
}

/// The comparison of one pixel, from its definition.
unsigned char Defined(const Lines& aLines, long nWidth, long nSize, long nOffset, long x,
                      int nPixel) {
    const long nFirst = std::max(0L, x - nSize / 2);
    const long nLast = std::min(nWidth - 1, x + nSize / 2);
    long nSum = 0;
    for (const Bytes& aLine : aLines)
        for (long i = nFirst; i <= nLast; ++i)
            nSum += aLine[static_cast<std::size_t>(i)];
    const bool bWhole = x >= nSize / 2 && x + nSize / 2 < nWidth;
    const long nColumns = bWhole ? nSize : nLast - nFirst + 1;
    const long nArea = static_cast<long>(aLines.size()) * nColumns;
    return (nPixel + nOffset) * nArea > nSum ? 200 : 100;
}

TEST(LocalThresholdKernel, EqualsItsDefinitionForEveryWidthAndWindow) {
    for (long nWidth : {1L, 2L, 3L, 8L, 13L, 32L})
        for (long nSize = 1; nSize <= nWidth; ++nSize)
            for (long nOffset : {0L, 3L, -40L}) {
                const auto nSigned = static_cast<std::size_t>(nWidth);
                const Lines aLines = RandomLines(3, nSigned, static_cast<unsigned>(nSize));
                Kernels::ClLocalThreshold Threshold(nWidth, nSize, nOffset, 100, 200);
                for (const Bytes& aLine : aLines)
                    Threshold.AddLine(aLine.data());
                Bytes aOut(nSigned + 1, 77);
                Threshold.ThresholdLine(aLines[1].data(), aOut.data());
                EXPECT_EQ(aOut.back(), 77);
                for (long x = 0; x < nWidth; ++x) {
                    const auto i = static_cast<std::size_t>(x);
                    EXPECT_EQ(aOut[i], Defined(aLines, nWidth, nSize, nOffset, x, aLines[1][i]))
                        << nWidth << ' ' << nSize << ' ' << nOffset << ' ' << x;
                }
            }
}

TEST(LocalThresholdKernel, ForgetsRemovedLines) {
    const Lines aLines = RandomLines(5, 19, 9);
    const Lines aKept = {aLines[2], aLines[4]};
    Kernels::ClLocalThreshold Threshold(19, 5, 1, 100, 200);
    for (const Bytes& aLine : aLines)
        Threshold.AddLine(aLine.data());
    for (std::size_t i : {0u, 3u, 1u})
        Threshold.RemoveLine(aLines[i].data());
    Bytes aOut(19);
    Threshold.ThresholdLine(aLines[4].data(), aOut.data());
    for (long x = 0; x < 19; ++x)
        EXPECT_EQ(aOut[static_cast<std::size_t>(x)],
                  Defined(aKept, 19, 5, 1, x, aLines[4][static_cast<std::size_t>(x)]));
}

TEST(LocalThresholdKernel, DecidesForOffsetsBeyondAllPixels) {
    const Lines aLines = {Bytes(9, 0), Bytes(9, 255)};
    constexpr long nMax = std::numeric_limits<long>::max();
    for (long nOffset : {256L, 257L, 1L << 40, nMax})
        for (const Bytes& aLine : aLines) {
            Kernels::ClLocalThreshold Up(9, 3, nOffset, 100, 200);
            Kernels::ClLocalThreshold Down(9, 3, -nOffset, 100, 200);
            Up.AddLine(aLines[1].data());
            Down.AddLine(aLines[0].data());
            Bytes aOut(9);
            Up.ThresholdLine(aLine.data(), aOut.data());
            EXPECT_EQ(aOut, Bytes(9, 200)) << nOffset;
            Down.ThresholdLine(aLine.data(), aOut.data());
            EXPECT_EQ(aOut, Bytes(9, 100)) << nOffset;
        }
}

TEST(LocalThresholdKernel, DecidesForOffsetsUpToTheLargestSumOfAnEvenWindow) {
    Lines aLines(50, Bytes(9, 255));
    aLines[7][4] = 0;
    for (long nSize : {2L, 4L, 8L})
        for (long nOffset : {256L, 257L, 300L, 380L, 381L, 382L, 383L, 384L, 1000L}) {
            Kernels::ClLocalThreshold Threshold(9, nSize, nOffset, 100, 200);
            for (const Bytes& aLine : aLines)
                Threshold.AddLine(aLine.data());
            Bytes aOut(9);
            Threshold.ThresholdLine(aLines[7].data(), aOut.data());
            EXPECT_EQ(aOut[4], Defined(aLines, 9, nSize, nOffset, 4, 0)) << nSize << ' ' << nOffset;
        }
}

/// A dark pixel in a white window takes part in its own sum: it takes more than 255 lines before an
/// offset of 382, the largest below the quotient of sum and area, no longer lifts it above.
TEST(LocalThresholdKernel, DecidesForTheLargestSumOfAnEvenWindowOfManyLines) {
    const Bytes aWhite(5, 255);
    Bytes aDark = aWhite;
    aDark[2] = 0;
    Lines aLines = {aDark};
    for (long nLines : {254L, 255L, 256L, 300L, 5000L}) {
        aLines.resize(static_cast<std::size_t>(nLines), aWhite);
        for (long nOffset : {381L, 382L, 383L, 384L, 400L, std::numeric_limits<long>::max()}) {
            Kernels::ClLocalThreshold Threshold(5, 2, nOffset, 100, 200);
            for (const Bytes& aLine : aLines)
                Threshold.AddLine(aLine.data());
            Bytes aOut(5);
            Threshold.ThresholdLine(aDark.data(), aOut.data());
            // (0 + offset) * 2 lines against 3 columns of 255 without the dark pixel; an offset of
            // 1000 decides as any greater one, of which the product is out of range
            const long nShift = std::min(nOffset, 1000L);
            EXPECT_EQ(aOut[2], nShift * 2 * nLines > 3 * 255 * nLines - 255 ? 200 : 100)
                << nLines << " lines, offset " << nOffset;
        }
    }
}

TEST(LocalThresholdKernel, SeesADifferenceOfOneGreyValueInAHugeSum) {
    Kernels::ClLocalThreshold Threshold(3, 3, 0, 100, 200);
    const Bytes aLine = {255, 255, 255};
    const Bytes aDarker = {255, 254, 255};
    Threshold.AddLine(aDarker.data());
    for (int i = 1; i < 3000000; ++i) // sums of columns beyond 2^29, of the window beyond 2^31
        Threshold.AddLine(aLine.data());
    Bytes aOut(3);
    Threshold.ThresholdLine(aLine.data(), aOut.data());
    EXPECT_EQ(aOut, Bytes({200, 200, 200}));
    Threshold.RemoveLine(aDarker.data());
    Threshold.ThresholdLine(aLine.data(), aOut.data());
    EXPECT_EQ(aOut, Bytes({100, 100, 100}));
}

TEST(LocalThresholdKernel, ReportsMissingMemory) {
    TestSupport::FailEachAllocation([] { Kernels::ClLocalThreshold(100, 3, 0, 0, 255); });
}

// Planes

/// Each line with the lines of its window, by the definition of one pixel.
Lines DefinedPlane(const Lines& aIn, long nSizeX, long nSizeY, long nOffset) {
    const long nHeight = static_cast<long>(aIn.size());
    const long nWidth = static_cast<long>(aIn[0].size());
    Lines aOut = aIn;
    for (long y = 0; y < nHeight; ++y) {
        const Lines aWindow(aIn.begin() + std::max(0L, y - nSizeY / 2),
                            aIn.begin() + std::min(nHeight, y + nSizeY / 2 + 1));
        Bytes& aLine = aOut[static_cast<std::size_t>(y)];
        for (long x = 0; x < nWidth; ++x) {
            unsigned char& rPixel = aLine[static_cast<std::size_t>(x)];
            rPixel = Defined(aWindow, nWidth, nSizeX, nOffset, x, rPixel);
        }
    }
    return aOut;
}

void ExpectPlane(const Lines& aIn, long nSizeX, long nSizeY, long nOffset) {
    SCOPED_TRACE(testing::Message() << nSizeX << " by " << nSizeY << ", " << nOffset);
    const std::size_t nWidth = aIn[0].size();
    Bytes aPlane;
    for (const Bytes& aLine : aIn) {
        aPlane.insert(aPlane.end(), aLine.begin(), aLine.end());
        aPlane.push_back(0);
    }
    Bytes aExpected;
    for (const Bytes& aLine : DefinedPlane(aIn, nSizeX, nSizeY, nOffset)) {
        aExpected.insert(aExpected.end(), aLine.begin(), aLine.end());
        aExpected.insert(aExpected.end(), 2, 77);
    }
    TestSupport::AtEveryLevel([&] {
        Kernels::ClScratch Scratch;
        Bytes aOut(aExpected.size(), 77);
        const long nSamples = static_cast<long>(nWidth);
        Kernels::LocalThreshold(aPlane.data(), nSamples + 1, nSamples,
                                static_cast<long>(aIn.size()), {nSizeX, nSizeY, nOffset, 100, 200},
                                aOut.data(), nSamples + 2, Scratch);
        EXPECT_EQ(aOut, aExpected);
    });
}

TEST(LocalThresholdKernel, EqualsItsDefinitionOnPlanes) {
    for (const std::size_t nWidth : {1U, 2U, 9U, 32U, 45U})
        for (const std::size_t nHeight : {1U, 2U, 13U}) {
            const Lines aIn = RandomLines(nHeight, nWidth, 3);
            for (long nSizeX = 1; nSizeX <= static_cast<long>(nWidth); nSizeX += 3)
                for (const long nSizeY : {1L, 2L, 5L, static_cast<long>(nHeight)})
                    if (nSizeY <= static_cast<long>(nHeight))
                        for (const long nOffset : {0L, -10L, 7L, -1000L, 1L << 40})
                            ExpectPlane(aIn, nSizeX, nSizeY, nOffset);
        }
}

TEST(LocalThresholdKernel, EqualsItsDefinitionOnWindowsOfAnyWidth) {
    const Lines aIn = RandomLines(6, 140, 4);
    for (const long nSizeX : {42L, 126L, 127L, 128L, 129L, 140L}) // vectors go to 127
        for (const long nSizeY : {1L, 3L, 4L, 5L, 6L})
            for (const long nOffset : {0L, -10L})
                ExpectPlane(aIn, nSizeX, nSizeY, nOffset);
}

/// Pixels equal to the mean are below, and above with an offset of 1.
TEST(LocalThresholdKernel, DecidesByOneGreyValueOnAFlatPlane) {
    for (const int nValue : {0, 1, 254, 255}) {
        const Lines aIn(5, Bytes(40, static_cast<unsigned char>(nValue)));
        for (const long nOffset : {-1L, 0L, 1L})
            ExpectPlane(aIn, 7, 3, nOffset);
    }
}

} // namespace
