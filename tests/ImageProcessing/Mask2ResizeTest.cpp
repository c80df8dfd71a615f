#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskCases.h"
#include "support/Throws.h"

#include <cmath>

namespace {

using namespace TestSupport;

constexpr const char* cszTooSmall = "New Width or Height too small.";

TEST(Mask2Resize, WithoutResolutionOnlyTakesOverTheNewOne) {
    ClMask2 mask = MaskWithRuns(8, 8, {{0, 7, 7}});
    mask.m_nPelsY = 0;

    mask.ResizeMask(1, 1, 30, 40);

    EXPECT_EQ(mask.m_nPelsX, 30);
    EXPECT_EQ(mask.m_nPelsY, 40);
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 8, 8}}));
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 7, 7}}));
}

TEST(Mask2Resize, ResizingRepeatsALineOnTheLinesThatItFills) {
    ClMask2 mask = MaskWithRuns(4, 3, {{0, 1, 0}, {3, 3, 0}, {1, 2, 2}});

    mask.ResizeMask(8, 8, cnTestPels * 2, cnTestPels / 5 * 13); // by 2 and 2.6

    EXPECT_EQ(RunsOf(mask),
              (RunList{{0, 2, 0}, {6, 6, 0}, {0, 2, 1}, {6, 6, 1}, {2, 4, 5}, {2, 4, 6}}));
    EXPECT_EQ(mask.m_aPrecutSteps[0].dWidth, 8.0);
    EXPECT_EQ(mask.m_aPrecutSteps[0].dHeight, 3 * 2.6);
}

TEST(Mask2Resize, ResizingRepeatsNoLineBeyondTheHeight) {
    ClMask2 mask = MaskWithRuns(2, 2, {{0, 0, 1}});

    mask.ResizeMask(8, 6, cnTestPels, cnTestPels * 4); // fills 4 to 7

    EXPECT_EQ(RunsOf(mask), (RunList{{0, 0, 4}, {0, 0, 5}}));
}

TEST(Mask2Resize, ResizingDownPutsSeveralLinesIntoOne) {
    ClMask2 mask = MaskWithRuns(6, 3, {{0, 1, 0}, {4, 5, 0}, {2, 5, 1}, {5, 5, 2}});

    mask.ResizeMask(3, 2, cnTestPels / 5, cnTestPels / 5 * 2); // by 0.2 and 0.4

    EXPECT_EQ(RunsOf(mask), (RunList{{0, 0, 0}, {0, 1, 0}, {0, 1, 0}, {1, 1, 0}}));
}

TEST(Mask2Resize, RefusesASizeIntoWhichTheRunsDoNotFit) {
    const ClMask2 before = MaskWithRuns(4, 4, {{0, 3, 0}, {1, 1, 3}});
    const int nPels = cnTestPels * 2; // last column 6, last line 6
    ClMask2 mask(before);

    EXPECT_THROWS(mask.ResizeMask(6, 8, nPels, nPels), ClException, -101, cszTooSmall);
    EXPECT_THROWS(mask.ResizeMask(8, 6, nPels, nPels), ClException, -101, cszTooSmall);
    EXPECT_THROWS(mask.ResizeMask(-1, -1, nPels, nPels), ClException, -101, cszTooSmall);
    EXPECT_TRUE(mask == before);

    mask.ResizeMask(7, 7, nPels, nPels);
    EXPECT_EQ(mask.m_aEntries.Entries(), 3UL); // line 3 fills 6 and, beyond the height, 7
}

TEST(Mask2Resize, RefusesAResolutionBelowOne) {
    ClMask2 mask = MaskOf({"##"});
    ClMask2 fresh;
    EXPECT_THROWS(mask.ResizeMask(9, 9, 0, 100), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
    EXPECT_THROWS(mask.ResizeMask(9, 9, 100, -1), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
    EXPECT_THROWS(fresh.ResizeMask(9, 9, 0, 0), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
    EXPECT_TRUE(mask == MaskOf({"##"}));
    EXPECT_TRUE(fresh == ClMask2());
}

/// The formulas, run by run.
RunList PlainlyScaled(const RunList& aRuns, double sx, double sy, int nHeight) {
    RunList aScaled;
    for (std::size_t nBegin = 0; nBegin < aRuns.size();) {
        const long nLine = aRuns[nBegin][2];
        std::size_t nEnd = nBegin;
        RunList aLine;
        for (; nEnd < aRuns.size() && aRuns[nEnd][2] == nLine; ++nEnd)
            aLine.push_back({static_cast<long>(static_cast<double>(aRuns[nEnd][0]) * sx),
                             static_cast<long>(static_cast<double>(aRuns[nEnd][1]) * sx),
                             static_cast<long>(static_cast<double>(nLine) * sy)});
        aScaled.insert(aScaled.end(), aLine.begin(), aLine.end());
        const long nNext = static_cast<long>(static_cast<double>(nLine + 1) * sy);
        for (long n = aLine[0][2] + 1; n < nNext && n < nHeight; ++n)
            for (auto Run : aLine) {
                Run[2] = n;
                aScaled.push_back(Run);
            }
        nBegin = nEnd;
    }
    return aScaled;
}

TEST(Mask2Resize, ScalesRandomMasksByTheFormulas) {
    std::mt19937 random(4);
    for (int i = 0; i < 300; ++i) {
        const int nWidth = RandomInt(random, 1, 30);
        const int nHeight = RandomInt(random, 1, 20);
        ClMask2 mask = MaskOf(RandomPicture(random, nWidth, nHeight, 0.5));
        const RunList aBefore = RunsOf(mask);
        const int nPelsX = RandomInt(random, 1000, 80000);
        const int nPelsY = RandomInt(random, 1000, 80000);
        const double sx = static_cast<double>(nPelsX) / cnTestPels;
        const double sy = static_cast<double>(nPelsY) / cnTestPels;
        const int nNewWidth = static_cast<int>(std::ceil(nWidth * sx));
        const int nNewHeight = static_cast<int>(std::ceil(nHeight * sy));

        mask.ResizeMask(nNewWidth, nNewHeight, nPelsX, nPelsY);

        EXPECT_EQ(RunsOf(mask), PlainlyScaled(aBefore, sx, sy, nNewHeight));
        EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, nWidth * sx, nHeight * sy}}));
        EXPECT_EQ(mask.m_nPelsX, nPelsX);
        EXPECT_EQ(mask.m_nPelsY, nPelsY);
    }
}

TEST(Mask2Resize, ScalesOffsetsWithTheirOwnAxis) {
    ClMask2 mask;
    mask.AddPrecutStep(100, 80, 1000, 2000, 10, 20, 50, 30, true);

    mask.ResizeMask(0, 0, 4000, 1000);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 400, 40}, {40, 10, 200, 15}}));
}

TEST(Mask2Resize, SurvivesScalesBeyondAllImages) {
    ClMask2 mask = MaskWithRuns(1, 1, {});
    for (int i = 0; i < 20; ++i) {
        mask.ResizeMask(1, 1, 2147483647, 2147483647);
        mask.m_nPelsX = mask.m_nPelsY = 1;
    }
    long x = 0;
    long y = 0;
    long w = 0;
    long h = 0;
    mask.GetCutOffsets(0UL, 0, 0, x, y, w, h);
    EXPECT_EQ(x, 0);
    EXPECT_GT(w, 2147483647);
    EXPECT_TRUE(mask.IsValid());
}

} // namespace
