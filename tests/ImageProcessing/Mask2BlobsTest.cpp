// Connected parts: examples by hand, random masks against a fill of pixels, and blobs of a
// hundred thousand runs.

#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskCases.h"

#include <algorithm>
#include <utility>

namespace {

using namespace TestSupport;

// Separating

TEST(Mask2Blobs, SeparatesTheRunsThatShareColumnsOfNeighbouringLines) {
    ClMask2 mask = MaskOf({"##..#", ".#..#", ".###.", "#...#"});
    ClMask2 blob = MaskOf({"#########"});

    EXPECT_EQ(mask.SeparateFgBlob(2, blob), 6); // the middle of it

    EXPECT_EQ(PictureOf(blob, 5, 4), (Picture{"##...", ".#...", ".###.", "....."}));
    EXPECT_TRUE(blob.IsValid());
    EXPECT_EQ(StepsOf(blob), StepsOf(mask));
    EXPECT_EQ(blob.m_nPelsX, cnTestPels);
    EXPECT_EQ(
        RunsOf(mask),
        (RunList{{0, 1, -1}, {4, 4, 0}, {1, 1, -1}, {4, 4, 1}, {1, 3, -1}, {0, 0, 3}, {4, 4, 3}}));
}

TEST(Mask2Blobs, DiagonalsDoNotConnect) {
    ClMask2 mask = MaskOf({"##..", "..##", "##.."});
    ClMask2 blob;
    EXPECT_EQ(mask.SeparateFgBlob(0, blob), 2);
    EXPECT_EQ(mask.SeparateFgBlob(1, blob), 2);
    EXPECT_EQ(mask.SeparateFgBlob(2, blob), 2);
}

TEST(Mask2Blobs, AnIndexOutsideAndAConsumedRunGiveAHeaderOnly) {
    ClMask2 mask = MaskOf({"#.#"});
    mask.m_aEntries[1].nLine = -1;
    for (const long nIdx : {-1L, 1L, 2L, 1000L}) {
        ClMask2 blob = MaskOf({"#########"});
        EXPECT_EQ(mask.SeparateFgBlob(nIdx, blob), 0) << nIdx;
        EXPECT_EQ(RunsOf(blob), RunList{});
        EXPECT_EQ(StepsOf(blob), StepsOf(mask));
    }
    EXPECT_EQ(mask.m_aEntries[0].nLine, 0);
}

TEST(Mask2Blobs, ConsumedRunsDoNotInterruptABlob) {
    ClMask2 mask = MaskOf({"#.#.#", "#.#.#", "#.#.#"});
    ClMask2 blob;
    EXPECT_EQ(mask.SeparateFgBlob(1, blob), 3); // its runs stand between those of the others
    EXPECT_EQ(mask.SeparateFgBlob(0, blob), 3);
    EXPECT_EQ(mask.SeparateFgBlob(8, blob), 3);
    EXPECT_EQ(PictureOf(blob, 5, 3), (Picture{"....#", "....#", "....#"}));
}

TEST(Mask2Blobs, RunsThatWereScaledIntoOneLineAreFollowed) {
    // Two runs of one place, and a short one behind a long one, reached past both.
    ClMask2 mask = MaskWithRuns(
        30, 3, {{0, 20, 0}, {2, 3, 0}, {2, 3, 0}, {25, 26, 0}, {18, 25, 1}, {2, 2, 1}});
    ClMask2 blob;
    EXPECT_EQ(mask.SeparateFgBlob(3, blob), 21 + 2 + 2 + 2 + 8 + 1);
    EXPECT_EQ(mask.m_aEntries[1].nLine, -1);
}

TEST(Mask2Blobs, CompletingEndsAtTheFirstRunThatIsTooFar) {
    // Line 1 touches the seed, but stands behind line 2.
    ClMask2 mask = MaskWithRuns(9, 9, {{0, 1, 2}, {0, 1, 1}});
    ClMask2 blob;
    EXPECT_EQ(mask.CompleteFgBlob(0, 1, {0, 1, 0}, blob), 0);
    EXPECT_EQ(mask.CompleteFgBlob(1, 1, {0, 1, 0}, blob), 4); // both: line 2 touches line 1
}

TEST(Mask2Blobs, CompletingLooksInOneDirectionAndThenInBoth) {
    const Picture picture = {"#..#", "#..#", "####", "#..#"};
    ClMask2 mask = MaskOf(picture);
    ClMask2 blob;
    const ClMask2::STEntry seed = mask.m_aEntries[2]; // column 0 of line 1
    mask.m_aEntries[2].nLine = -1;

    EXPECT_EQ(mask.CompleteFgBlob(2, 1, seed, blob), 8); // down, and up at the right

    EXPECT_EQ(PictureOf(blob, 4, 4), (Picture{"...#", "...#", "####", "#..#"}));
    EXPECT_EQ(mask.CompleteFgBlob(2, -1, seed, blob), 1);
    EXPECT_EQ(blob.m_aEntries.Entries(), 6UL);
}

TEST(Mask2Blobs, CompletingEndsTwoLinesFromTheSeed) {
    ClMask2 mask = MaskOf({"#", ".", "#"});
    ClMask2 blob;
    EXPECT_EQ(mask.CompleteFgBlob(0, 1, mask.m_aEntries[0], blob), 0);
    EXPECT_EQ(mask.CompleteFgBlob(-1, 1, mask.m_aEntries[0], blob), 0);
    EXPECT_EQ(mask.CompleteFgBlob(2, -1, mask.m_aEntries[0], blob), 0);
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 0, 0}, {0, 0, 2}}));
}

TEST(Mask2Blobs, CompletingByAStepOfZeroLooksAtOneRun) {
    ClMask2 mask = MaskOf({"#.#", "#.#"});
    ClMask2 blob;
    EXPECT_EQ(mask.CompleteFgBlob(3, 0, mask.m_aEntries[0], blob), 0);
    EXPECT_EQ(mask.CompleteFgBlob(3, 0, mask.m_aEntries[1], blob), 2);
}

TEST(Mask2Blobs, CompletingIntoItselfLosesNothing) {
    ClMask2 mask = MaskOf({"#", "#"});
    EXPECT_EQ(mask.CompleteFgBlob(0, 1, mask.m_aEntries[0], mask), 2);
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 0, -1}, {0, 0, -1}, {0, 0, 1}, {0, 0, 0}}));
}

// Removing

TEST(Mask2Blobs, RemovesBlobsBelowASizeAndCountsTheOthers) {
    const Picture picture = {"##..#", "##...", "...#.", "##.##"};
    ClMask2 mask = MaskOf(picture);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(3, false), 2);
    EXPECT_EQ(PictureOf(mask, 5, 4), (Picture{"##...", "##...", "...#.", "...##"}));

    mask = MaskOf(picture);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(1, false), 4);
    EXPECT_TRUE(mask == MaskOf(picture));
}

TEST(Mask2Blobs, KeepsBlobsAtTheBorderWhereAsked) {
    ClMask2 mask = MaskOf({"#....", "..#..", ".....", "....."});
    SetRuns(mask, {{0, 0, 1}, {2, 2, 1}, {4, 4, 2}, {1, 2, 3}});
    EXPECT_EQ(mask.RemoveSmallFgBlobs(10, true), 2);
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 0, 1}, {4, 4, 2}, {1, 2, 3}}));
}

TEST(Mask2Blobs, RunsWithoutPixelsAreNeitherRemovedNorCountedBelowTheSize) {
    const RunList aRuns = {{0, -1, 0}, {5, 3, 1}, {1, 2, 3}, {4, 4, 4}}; // of 0, -1 and 2 pixels
    for (const bool bKeepBorder : {false, true}) {
        ClMask2 mask = MaskWithRuns(9, 6, aRuns);
        EXPECT_EQ(mask.RemoveSmallFgBlobs(2, bKeepBorder), 1);
        EXPECT_EQ(RunsOf(mask), aRuns);
        EXPECT_EQ(mask.RemoveSmallFgBlobs(0, bKeepBorder), 2);
    }
}

TEST(Mask2Blobs, OneRunIsNoSeed) {
    ClMask2 mask = MaskOf({"....", ".##.", "...."});
    EXPECT_EQ(mask.RemoveSmallFgBlobs(1000, false), 0);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(1, false), 0);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(), 0);
    EXPECT_EQ(RunsOf(mask), (RunList{{1, 2, 1}}));
    EXPECT_EQ(ClMask2().RemoveSmallFgBlobs(1, false), 0);
}

TEST(Mask2Blobs, TheLastRunGoesWithTheBlobOfAnother) {
    ClMask2 mask = MaskOf({".#.", ".#."});
    EXPECT_EQ(mask.RemoveSmallFgBlobs(3, false), 0);
    EXPECT_EQ(RunsOf(mask), RunList{});
}

TEST(Mask2Blobs, TheLargestBlobIsMeasuredWithEveryRunAsASeed) {
    EXPECT_EQ(ClMask2().GetMaxFgBlobSize(), 0);
    EXPECT_EQ(MaskOf({".###"}).GetMaxFgBlobSize(), 3);
    const ClMask2 mask = MaskOf({"##.#", "...#", "##.#"});
    EXPECT_EQ(mask.GetMaxFgBlobSize(), 3);
    EXPECT_TRUE(mask == MaskOf({"##.#", "...#", "##.#"}));
}

TEST(Mask2Blobs, AllButTheLargestAreRemoved) {
    ClMask2 mask = MaskOf({"##..#", "##..#", ".....", "####."});
    EXPECT_EQ(mask.RemoveSmallFgBlobs(), 1); // the last run is as large, and is not counted
    EXPECT_EQ(PictureOf(mask, 5, 4), (Picture{"##...", "##...", ".....", "####."}));
}

// Holes

TEST(Mask2Blobs, HolesCloseAndBaysStay) {
    ClMask2 mask = MaskOf({"#####..", "#...#..", "#.#.#..", "#...#..", "#####..", "##.##.."});
    mask.RemoveBgBlobs();
    EXPECT_EQ(PictureOf(mask, 7, 6),
              (Picture{"#####..", "#####..", "#####..", "#####..", "#####..", "##.##.."}));
}

TEST(Mask2Blobs, HolesThatReachTheFrameStay) {
    // Four that each reach one side; the one in the middle shows that the others were looked at.
    ClMask2 mask = MaskOf({"#.#####", "#######", "..#.#..", "#######", "#####.#"});
    mask.RemoveBgBlobs();
    EXPECT_EQ(PictureOf(mask, 7, 5),
              (Picture{"#.#####", "#######", "..###..", "#######", "#####.#"}));
}

TEST(Mask2Blobs, AHoleThatIsTheLastRunOfTheBackgroundStays) {
    const Picture picture = {"#.###", "###..", "#.###", "#####"};
    ClMask2 mask = MaskOf(picture);
    mask.RemoveBgBlobs();
    EXPECT_EQ(PictureOf(mask, 5, 4), picture);
}

TEST(Mask2Blobs, WithoutRunsOrFrameThereAreNoHoles) {
    ClMask2 mask = MaskOf({"..", ".."});
    mask.RemoveBgBlobs();
    EXPECT_TRUE(mask == MaskOf({"..", ".."}));

    ClMask2 frameless;
    SetRuns(frameless, {{0, 1, 0}});
    frameless.RemoveBgBlobs();
    EXPECT_EQ(RunsOf(frameless), (RunList{{0, 1, 0}}));
}

// Borders

TEST(Mask2Blobs, CountsTheBordersThatRunsTouch) {
    const auto Count = [](const RunList& aRuns) {
        return MaskWithRuns(10, 5, aRuns).CountBorders();
    };
    EXPECT_EQ(Count({}), 0);
    EXPECT_EQ(Count({{1, 8, 1}, {1, 8, 3}}), 0);
    EXPECT_EQ(Count({{0, 3, 2}}), 1);
    EXPECT_EQ(Count({{-2, 3, 2}, {0, 0, 3}}), 1);
    EXPECT_EQ(Count({{5, 9, 2}}), 1);
    EXPECT_EQ(Count({{5, 12, 2}}), 1);
    EXPECT_EQ(Count({{5, 5, 0}}), 1);
    EXPECT_EQ(Count({{5, 5, 4}}), 1);
    EXPECT_EQ(Count({{0, 9, 2}}), 2);
    EXPECT_EQ(Count({{0, 9, 0}}), 3);
    EXPECT_EQ(Count({{0, 9, 0}, {5, 5, 4}}), 4);
    EXPECT_EQ(Count({{0, 9, -1}}), 0); // consumed
    EXPECT_EQ(MaskOf({"#"}).CountBorders(), 4);
    EXPECT_EQ(ClMask2().CountBorders(), 0);
}

TEST(Mask2Blobs, TheFrameOfTheBordersIsTheRoundedLastStep) {
    ClMask2 mask = MaskWithRuns(10, 10, {{1, 3, 1}});
    mask.m_aPrecutSteps.Append({0, 0, 4.5, 2.49});
    EXPECT_EQ(mask.CountBorders(), 1); // of 5 by 2, the lower one
    mask.m_aPrecutSteps[1].dWidth = 4.49;
    EXPECT_EQ(mask.CountBorders(), 2);
}

// Against a fill of pixels

struct StComponent {
    int m_nPixels = 0;
    int m_nRuns = 0;
    bool m_bBorder = false;
    bool m_bLastRun = false;
    std::vector<std::pair<int, int>> m_aPixels;
};

/// The parts of the pixels of one kind, connected at their sides.
std::vector<StComponent> Components(Picture aPicture, char cKind) {
    std::vector<StComponent> aFound;
    const Picture aOriginal = aPicture;
    const int nWidth = WidthOf(aPicture);
    const int nHeight = HeightOf(aPicture);
    const auto At = [](auto& rPicture, int x, int y) -> auto& {
        return rPicture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
    };
    std::pair<int, int> last{-1, -1};
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            if (At(aOriginal, x, y) == cKind)
                last = {x, y};
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            if (At(aPicture, x, y) != cKind)
                continue;
            StComponent part;
            std::vector<std::pair<int, int>> aStack{{x, y}};
            At(aPicture, x, y) = '*';
            while (!aStack.empty()) {
                const auto [px, py] = aStack.back();
                aStack.pop_back();
                part.m_aPixels.emplace_back(px, py);
                ++part.m_nPixels;
                part.m_nRuns += px == 0 || At(aOriginal, px - 1, py) != cKind ? 1 : 0;
                part.m_bBorder |= px == 0 || py == 0 || px == nWidth - 1 || py == nHeight - 1;
                part.m_bLastRun |= last == std::pair(px, py);
                const std::pair<int, int> aNext[] = {
                    {px - 1, py}, {px + 1, py}, {px, py - 1}, {px, py + 1}};
                for (const auto& [nx, ny] : aNext)
                    if (nx >= 0 && ny >= 0 && nx < nWidth && ny < nHeight &&
                        At(aPicture, nx, ny) == cKind) {
                        At(aPicture, nx, ny) = '*';
                        aStack.emplace_back(nx, ny);
                    }
            }
            aFound.push_back(part);
        }
    return aFound;
}

bool IsNoSeed(const StComponent& Part) {
    return Part.m_bLastRun && Part.m_nRuns == 1;
}

void Paint(Picture& rPicture, const StComponent& Part, char cKind) {
    for (const auto& [x, y] : Part.m_aPixels)
        rPicture[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = cKind;
}

template <class Compare>
void WithRandomPictures(unsigned nSeed, Compare compare) {
    std::mt19937 random(nSeed);
    for (int i = 0; i < 300; ++i)
        compare(random, RandomPicture(random, RandomInt(random, 1, 30), RandomInt(random, 1, 20),
                                      RandomInt(random, 1, 9) / 10.0));
}

TEST(Mask2Blobs, RemovesWhatAFillOfPixelsFindsSmall) {
    WithRandomPictures(6, [](std::mt19937& rRandom, const Picture& aPicture) {
        const int nMinSize = RandomInt(rRandom, -1, 20);
        const bool bKeepBorder = rRandom() % 2 == 0;
        Picture aExpected = aPicture;
        long nKept = 0;
        for (const StComponent& Part : Components(aPicture, '#')) {
            if (IsNoSeed(Part))
                continue;
            if (Part.m_nPixels >= nMinSize || (bKeepBorder && Part.m_bBorder))
                ++nKept;
            else
                Paint(aExpected, Part, '.');
        }
        ClMask2 mask = MaskOf(aPicture);

        EXPECT_EQ(mask.RemoveSmallFgBlobs(nMinSize, bKeepBorder), nKept);
        EXPECT_TRUE(mask == MaskOf(aExpected));
    });
}

TEST(Mask2Blobs, SeparatesWhatAFillOfPixelsFinds) {
    WithRandomPictures(7, [](std::mt19937&, const Picture& aPicture) {
        ClMask2 work = MaskOf(aPicture);
        long nIdx = 0;
        ClMask2::STEntry run;
        long nLargest = 0;
        for (const StComponent& Part : Components(aPicture, '#')) {
            ClMask2 blob;
            ASSERT_TRUE(work.GetNextFgEntry(nIdx, 1, run));
            EXPECT_EQ(work.SeparateFgBlob(nIdx, blob), Part.m_nPixels);
            Picture aExpected(aPicture.size(), std::string(aPicture[0].size(), '.'));
            Paint(aExpected, Part, '#');
            EXPECT_TRUE(blob == MaskOf(aExpected));
            nLargest = std::max<long>(nLargest, Part.m_nPixels);
        }
        EXPECT_FALSE(work.GetNextFgEntry(nIdx, 1, run));
        EXPECT_EQ(MaskOf(aPicture).GetMaxFgBlobSize(), nLargest);
    });
}

TEST(Mask2Blobs, FillsTheHolesThatAFillOfPixelsFinds) {
    WithRandomPictures(8, [](std::mt19937&, const Picture& aPicture) {
        Picture aExpected = aPicture;
        const ClMask2 before = MaskOf(aPicture);
        for (const StComponent& Part : Components(aPicture, '.'))
            if (before.m_aEntries.Entries() > 0 && !IsNoSeed(Part) && !Part.m_bBorder)
                Paint(aExpected, Part, '#');
        ClMask2 mask(before);

        mask.RemoveBgBlobs();

        EXPECT_TRUE(mask == MaskOf(aExpected));
    });
}

// Blobs of any size

/// All runs are one blob of `nPixels`.
void ExpectOneBlob(const ClMask2& Mask, long nPixels, unsigned long nRuns) {
    ASSERT_GE(Mask.m_aEntries.Entries(), nRuns);
    for (const unsigned long nSeed : {0UL, Mask.m_aEntries.Entries() / 2}) {
        ClMask2 work(Mask);
        ClMask2 blob;
        EXPECT_EQ(work.SeparateFgBlob(static_cast<long>(nSeed), blob), nPixels);
        EXPECT_TRUE(blob == Mask);
    }
    ClMask2 mask(Mask);
    EXPECT_EQ(mask.GetMaxFgBlobSize(), nPixels);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(), 1);
    EXPECT_TRUE(mask == Mask);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(nPixels + 1, false), 0);
    EXPECT_EQ(mask.m_aEntries.Entries(), 0UL);
}

TEST(Mask2Blobs, ACombOfAHundredThousandRunsIsOneBlob) {
    for (const int nTeeth : {1000, 50000}) { // long teeth, and wide lines
        const int nLength = 100000 / nTeeth;
        Picture comb;
        for (int y = 0; y < nLength; ++y) {
            comb.emplace_back();
            for (int x = 0; x < nTeeth; ++x)
                comb.back() += "#.";
        }
        comb.emplace_back(2 * static_cast<std::size_t>(nTeeth), '#');
        ExpectOneBlob(MaskOf(comb), 100000 + 2 * nTeeth, 100001);
    }
}

/// A path of one pixel's width that winds inward, one pixel between its turns.
Picture Spiral(int nSize) {
    Picture spiral(static_cast<std::size_t>(nSize),
                   std::string(static_cast<std::size_t>(nSize), '.'));
    const auto Free = [&](int x, int y) {
        return x < 0 || y < 0 || x >= nSize || y >= nSize || !IsSet(spiral, x, y);
    };
    int x = 0;
    int y = 0;
    int dx = 1;
    int dy = 0;
    for (int nTurns = 0; nTurns < 2;) {
        spiral[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = '#';
        const bool bInside = x + dx >= 0 && y + dy >= 0 && x + dx < nSize && y + dy < nSize;
        if (bInside && Free(x + dx, y + dy) && Free(x + 2 * dx, y + 2 * dy)) {
            x += dx;
            y += dy;
            nTurns = 0;
        } else {
            dx = -std::exchange(dy, dx);
            ++nTurns;
        }
    }
    return spiral;
}

TEST(Mask2Blobs, ASpiralOfAHundredThousandRunsIsOneBlob) {
    EXPECT_EQ(Spiral(7), (Picture{"#######", "......#", "#####.#", "#...#.#", "#.###.#", "#.....#",
                                  "#######"}));
    const ClMask2 spiral = MaskOf(Spiral(651));
    ExpectOneBlob(spiral, spiral.AreaSize() + static_cast<long>(spiral.m_aEntries.Entries()),
                  100000);
}

TEST(Mask2Blobs, AHundredThousandBlobsAreRemovedOneByOne) {
    Picture dots;
    for (int y = 0; y < 400; ++y) {
        dots.emplace_back();
        for (int x = 0; x < 250; ++x)
            dots.back() += y % 2 == 0 ? "#." : ".#";
    }
    ClMask2 mask = MaskOf(dots);
    ASSERT_EQ(mask.m_aEntries.Entries(), 100000UL);

    EXPECT_EQ(mask.RemoveSmallFgBlobs(1, false), 99999);
    EXPECT_EQ(mask.RemoveSmallFgBlobs(2, false), 0);
    EXPECT_EQ(mask.m_aEntries.Entries(), 1UL);
}

TEST(Mask2Blobs, RunsBeyondASideTouchItAndLinesBeyondTheFrameDoNot) {
    const struct {
        std::array<long, 3> m_aRun;
        int m_nBorders;
    } aCases[] = {{{-3, 4, 1}, 1}, {{0, 4, 1}, 1},  {{1, 7, 1}, 0},   {{3, 8, 1}, 1},
                  {{3, 20, 1}, 1}, {{3, 4, 0}, 1},  {{3, 4, 4}, 1},   {{3, 4, 5}, 0},
                  {{3, 4, 99}, 0}, {{3, 4, -2}, 0}, {{-1, 9, -2}, 2}, {{0, 8, -1}, 0}};
    for (const auto& Case : aCases)
        EXPECT_EQ(MaskWithRuns(9, 5, {Case.m_aRun}).CountBorders(), Case.m_nBorders)
            << Case.m_aRun[0] << ' ' << Case.m_aRun[1] << ' ' << Case.m_aRun[2];
}

} // namespace
