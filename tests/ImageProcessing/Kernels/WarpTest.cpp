#include "ImageProcessing/Kernels/Warp.h"

#include "support/GuardedMemory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

using Bytes = std::vector<unsigned char>;
using TestSupport::ClGuardedBlock;

namespace {

struct StEntry {
    std::int32_t m_nOffset = -1;
    std::int16_t m_anWeights[16] = {};
};

Bytes TableOf(const std::vector<StEntry>& aEntries) {
    Bytes aTable(36 * aEntries.size());
    for (std::size_t i = 0; i < aEntries.size(); ++i) {
        std::memcpy(&aTable[36 * i], &aEntries[i].m_nOffset, 4);
        std::memcpy(&aTable[36 * i + 4], aEntries[i].m_anWeights, 32);
    }
    return aTable;
}

/// The definition.
unsigned char WarpedSample(const StEntry& Entry, const unsigned char* pSource, int nStride,
                           int nStep, unsigned char nBackground) {
    if (Entry.m_nOffset < 0)
        return nBackground;
    int nSum = 0;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            nSum +=
                Entry.m_anWeights[4 * r + c] * pSource[Entry.m_nOffset + r * nStride + c * nStep];
    const int nValue = (nSum + 1023) >> 10;
    return static_cast<unsigned char>(nValue < 0 ? 0 : nValue > 255 ? 255 : nValue);
}

Bytes Warped(const std::vector<StEntry>& aEntries, const Bytes& aSource, int nStride, int nStep,
             unsigned char nBackground) {
    const ClGuardedBlock Table(TableOf(aEntries)); // both end where memory ends
    const ClGuardedBlock Source(aSource);
    Bytes aOut(aEntries.size() + 2, 0xEE);
    Kernels::WarpLine(Table.Data(), aEntries.size(), Source.Data(), nStride, nStep, nBackground,
                      aOut.data() + 1);
    EXPECT_EQ(aOut.front(), 0xEE);
    EXPECT_EQ(aOut.back(), 0xEE);
    return Bytes(aOut.begin() + 1, aOut.end() - 1);
}

/// The sample of an entry, from a line of as many equal ones as take every way through the kernel.
int SampleOf(const StEntry& Entry, const Bytes& aSource, int nStride, int nStep) {
    const Bytes aOut = Warped(std::vector<StEntry>(5, Entry), aSource, nStride, nStep, 99);
    EXPECT_EQ(aOut, Bytes(5, aOut[0]));
    return aOut[0];
}

/// The sample of one entry with these weights over 16 equal samples.
int Flat(std::initializer_list<int> anWeights, unsigned char nValue) {
    StEntry Entry;
    Entry.m_nOffset = 0;
    int i = 0;
    for (const int nWeight : anWeights)
        Entry.m_anWeights[i++] = static_cast<std::int16_t>(nWeight);
    return SampleOf(Entry, Bytes(16, nValue), 4, 1);
}

} // namespace

TEST(WarpKernel, AWeightOf1024ReproducesTheSample) {
    for (int nTap = 0; nTap < 16; ++nTap)
        for (int nStep = 1; nStep <= 3; ++nStep) {
            const int nStride = 4 * nStep;
            StEntry Entry;
            Entry.m_nOffset = 0;
            Entry.m_anWeights[nTap] = 1024;
            for (int v = 0; v < 256; ++v) {
                Bytes aSource(static_cast<std::size_t>(4 * nStride), 77);
                aSource[static_cast<std::size_t>(nTap / 4 * nStride + nTap % 4 * nStep)] =
                    static_cast<unsigned char>(v);
                EXPECT_EQ(SampleOf(Entry, aSource, nStride, nStep), v);
            }
        }
}

TEST(WarpKernel, RoundsTheSumUp) {
    EXPECT_EQ(Flat({0}, 1), 0);
    EXPECT_EQ(Flat({1}, 1), 1);       // (1 + 1023) >> 10
    EXPECT_EQ(Flat({1024}, 1), 1);    // (1024 + 1023) >> 10
    EXPECT_EQ(Flat({1024, 1}, 1), 2); // (1025 + 1023) >> 10
    EXPECT_EQ(Flat({1024, -1024}, 9), 0);
}

TEST(WarpKernel, ClampsTo0And255) {
    EXPECT_EQ(Flat({-1023}, 1), 0); // (-1023 + 1023) >> 10
    EXPECT_EQ(Flat({-1024}, 1), 0); // -1 >> 10 is -1
    EXPECT_EQ(Flat({1025}, 255), 255);
    EXPECT_EQ(Flat({32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767, 32767,
                    32767, 32767, 32767, 32767, 32767},
                   255),
              255);
    EXPECT_EQ(Flat({-32768, -32768, -32768, -32768, -32768, -32768, -32768, -32768, -32768, -32768,
                    -32768, -32768, -32768, -32768, -32768, -32768},
                   255),
              0);
}

TEST(WarpKernel, EveryNegativeOffsetGivesTheBackground) {
    for (const std::int32_t nOffset : {-1, -2, -1000000, -2147483647 - 1}) {
        StEntry Entry;
        Entry.m_nOffset = nOffset;
        Entry.m_anWeights[5] = 1024;
        for (const unsigned char nBackground : Bytes{0, 7, 255})
            EXPECT_EQ(Warped({Entry}, Bytes(16, 100), 4, 1, nBackground), Bytes{nBackground});
    }
}

TEST(WarpKernel, TellsSamplesWithoutSourceFromTheirNeighbours) {
    StEntry Entry;
    Entry.m_nOffset = 0;
    Entry.m_anWeights[5] = 1024;
    for (unsigned nPattern = 0; nPattern < 32; ++nPattern) {
        std::vector<StEntry> aEntries(5, Entry);
        Bytes aExpected(5, 100);
        for (std::size_t i = 0; i < 5; ++i)
            if ((nPattern >> i & 1) != 0) {
                aEntries[i].m_nOffset = -1;
                aExpected[i] = 7;
            }
        EXPECT_EQ(Warped(aEntries, Bytes(16, 100), 4, 1, 7), aExpected) << nPattern;
    }
}

TEST(WarpKernel, WritesNothingForNoEntries) {
    EXPECT_TRUE(Warped({}, Bytes(16, 100), 4, 1, 99).empty());
}

TEST(WarpKernel, DoesWhatTheDefinitionDoesInAllStepsAndWidths) {
    std::mt19937 Random(7);
    for (int nStep = 1; nStep <= 4; ++nStep)
        for (int nWidth = 4; nWidth <= 37; ++nWidth) {
            const int nStride = (nWidth * nStep + 3) & ~3;
            const int nHeight = 4 + nWidth % 5;
            Bytes aSource(static_cast<std::size_t>(nStride * nHeight));
            for (unsigned char& nByte : aSource)
                nByte = static_cast<unsigned char>(Random());

            const int nLast = static_cast<int>(aSource.size()) - 1 - 3 * nStride - 3 * nStep;
            std::vector<StEntry> aEntries(static_cast<std::size_t>(nWidth * nStep));
            for (StEntry& Entry : aEntries) {
                Entry.m_nOffset = static_cast<int>(Random() % static_cast<unsigned>(nLast + 2)) - 1;
                const int nRange = nWidth % 2 == 0 ? 1100 : 65535;
                for (std::int16_t& nWeight : Entry.m_anWeights)
                    nWeight = static_cast<std::int16_t>(
                        static_cast<int>(Random() % static_cast<unsigned>(nRange)) - nRange / 2);
            }
            aEntries.back().m_nOffset = nLast; // its last sample is the last byte

            Bytes aExpected;
            for (const StEntry& Entry : aEntries)
                aExpected.push_back(WarpedSample(Entry, aSource.data(), nStride, nStep, 42));
            EXPECT_EQ(Warped(aEntries, aSource, nStride, nStep, 42), aExpected)
                << "step " << nStep << " width " << nWidth;
        }
}
