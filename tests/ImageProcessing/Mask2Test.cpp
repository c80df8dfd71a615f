#include "ImageProcessing/Mask2.h"

#include "ImageProcessing/MaskCases.h"
#include "ImageProcessing/MissingMemory.h"
#include "support/Throws.h"

#include <limits>
#include <optional>
#include <type_traits>

namespace {

using TestSupport::cszIndex;
using TestSupport::cszNoSize;

using namespace TestSupport;

constexpr const char* cszWrongType = "Image Type is not the assigned type";

TEST(Mask2, BeginsWithoutRunsStepsAndResolution) {
    const ClMask2 mask;

    EXPECT_EQ(mask.m_aEntries.Entries(), 0UL);
    EXPECT_EQ(mask.GetOffsetsCount(), 0);
    EXPECT_EQ(mask.m_nPelsX, 0);
    EXPECT_EQ(mask.m_nPelsY, 0);
    EXPECT_TRUE(std::has_virtual_destructor_v<ClMask2>);
}

TEST(Mask2, InitAndResetForgetEverything) {
    for (const bool bInit : {false, true}) {
        ClMask2 mask = MaskOf({"##", ".#"});

        bInit ? mask.Init() : mask.Reset();

        EXPECT_TRUE(mask == ClMask2());
    }
}

TEST(Mask2, ResetEntriesKeepsStepsAndResolutions) {
    ClMask2 mask = MaskOf({"##", ".#"});

    mask.ResetEntries();

    EXPECT_EQ(RunsOf(mask), RunList{});
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 2, 2}}));
    EXPECT_EQ(mask.m_nPelsX, cnTestPels);
    EXPECT_EQ(mask.m_nPelsY, cnTestPels);
}

TEST(Mask2, CopyHeaderKeepsTheRuns) {
    ClMask2 mask = MaskOf({"##", ".#"});
    ClMask2 other;
    other.AddPrecutStep(30, 20, 100, 200, 3, 4, 10, 5, true);

    mask.CopyHeader(other);

    EXPECT_EQ(StepsOf(mask), StepsOf(other));
    EXPECT_EQ(mask.m_nPelsX, 100);
    EXPECT_EQ(mask.m_nPelsY, 200);
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 1, 0}, {1, 1, 1}}));
}

// Building

TEST(Mask2, BuildsMaximalRunsByLineAndColumn) {
    const ClMask2 mask = MaskOf({"##.#", "....", "####", "#..."});

    EXPECT_EQ(RunsOf(mask), (RunList{{0, 1, 0}, {3, 3, 0}, {0, 3, 2}, {0, 0, 3}}));
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 4, 4}}));
}

TEST(Mask2, TakesEveryValueButTheBackgroundForForeground) {
    ClMask2 mask;

    mask.BuildFromImage(Img({{7, 8, 0, 7, 255}}), 7);

    EXPECT_EQ(RunsOf(mask), (RunList{{1, 2, 0}, {4, 4, 0}}));
}

TEST(Mask2, OfABackgroundImageHasNoRunsAndOneStep) {
    const ClMask2 mask = MaskOf({"...", "..."});

    EXPECT_EQ(RunsOf(mask), RunList{});
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 3, 2}}));
}

TEST(Mask2, BuildingAgainDropsTheRunsAndKeepsTheStep) {
    ClMask2 mask = MaskOf({"##", "##"});

    mask.BuildFromImage(ImageOf({".#", ".."}), cnBackground);

    EXPECT_EQ(RunsOf(mask), (RunList{{1, 1, 0}}));
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 2, 2}}));
}

TEST(Mask2, BuildingFromAnotherResolutionScalesTheSteps) {
    ClMask2 mask = MaskWithRuns(100, 60, {{0, 99, 59}}); // would not fit, and is dropped before
    ClTestImage half = BlankImage(ClImage::eUInt8, 50, 30);
    half.SetPelsX(cnTestPels / 5);
    half.SetPelsY(cnTestPels / 5 * 2);

    mask.BuildFromImage(half, 1);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 20, 24}}));
    EXPECT_EQ(mask.m_nPelsX, 3937);
    EXPECT_EQ(mask.m_nPelsY, 7874);
    EXPECT_EQ(mask.m_aEntries.Entries(), 30UL);
}

TEST(Mask2, ReturnsTheImageItWasBuiltFrom) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const int nWidth = RandomInt(random, 1, 40);
        const int nHeight = RandomInt(random, 1, 20);
        const Picture picture =
            RandomPicture(random, nWidth, nHeight, RandomInt(random, 0, 10) / 10.0);

        const ClMask2 mask = MaskOf(picture);

        EXPECT_EQ(PictureOf(mask, nWidth, nHeight), picture);
        EXPECT_TRUE(mask.IsValid());
        EXPECT_EQ(mask.m_aEntries.Capacity() % 100, 0UL);
    }
}

TEST(Mask2, RefusesAnImageOfAnotherTypeAndStaysAsItWas) {
    for (const ClImage::EDataType eType : caPixelTypes) {
        if (eType == ClImage::eUInt8)
            continue;
        ClMask2 mask = MaskOf({"##"});
        const ClTestImage image = BlankImage(eType, 2, 1);

        EXPECT_THROWS(mask.BuildFromImage(image, 0), ClException, -101, cszWrongType);

        EXPECT_TRUE(mask == MaskOf({"##"}));
    }
}

TEST(Mask2, RefusesAnEmptyImageAndStaysAsItWas) {
    ClMask2 mask = MaskOf({"##"});
    const ClImage empty;
    EXPECT_THROWS(mask.BuildFromImage(empty, 0), ClException, -101, cszWrongType);
    EXPECT_TRUE(mask == MaskOf({"##"}));
}

TEST(Mask2, RefusesAnImageWithoutPixels) {
    ClMask2 mask = MaskOf({"##"});
    ClImage image;
    image.Attach(nullptr, ClImage::eUInt8, 2, 1, 1, cnTestPels, cnTestPels);

    EXPECT_THROWS(mask.BuildFromImage(image, 0), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    EXPECT_THROWS(mask.ApplyOnImage(image, true, 0), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    unsigned char anPixels[4] = {};
    image.Attach(anPixels, ClImage::eUInt8, 2, 1, 0, cnTestPels, cnTestPels); // no planes
    EXPECT_THROWS(mask.BuildFromImage(image, 0), ClExTessarin, -37,
                  "One of the required parameter is missing.");
    EXPECT_TRUE(mask == MaskOf({"##"}));
}

TEST(Mask2, RefusesAnImageWithoutResolution) {
    ClTestImage image = BlankImage(ClImage::eUInt8, 2, 2);
    image.SetPelsY(0);
    ClMask2 fresh;
    ClMask2 mask = MaskOf({"##", "##"});

    EXPECT_THROWS(fresh.BuildFromImage(image, 0), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
    EXPECT_THROWS(mask.BuildFromImage(image, 0), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");

    EXPECT_TRUE(fresh == ClMask2());
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 2, 2}}));
    EXPECT_EQ(mask.m_nPelsY, cnTestPels);
}

TEST(Mask2, RefusesAnImageWithoutArea) {
    unsigned char nByte = 0;
    ClImage image;
    image.Attach(&nByte, ClImage::eUInt8, 1, 0, 1, cnTestPels, cnTestPels);
    EXPECT_THROWS(MaskOf({"##"}).BuildFromImage(image, 0), ClException, -701, cszNoSize);
    EXPECT_THROWS(MaskOf({"##"}).ApplyOnImage(image, true, 0), ClException, -701, cszNoSize);
}

TEST(Mask2, RefusesAnImageThatStandsAtNoStep) {
    ClMask2 mask = MaskOf({"##", "##"});
    EXPECT_THROWS(mask.BuildFromImage(BlankImage(ClImage::eUInt8, 1, 1), 0), ClException, -35,
                  cszIndex);
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 2, 2}}));
}

// Questions about runs

TEST(Mask2, AreaSizeCountsARunWithoutItsLastPixel) {
    EXPECT_EQ(MaskOf({"####..##"}).AreaSize(), 4);
    EXPECT_EQ(MaskOf({"#.#.#"}).AreaSize(), 0);
    EXPECT_EQ(ClMask2().AreaSize(), 0);
}

TEST(Mask2, ARunOfOnePixelIsNothingAsAnAreaAndOneAsABlob) {
    ClMask2 mask = MaskOf({"..", ".#"});
    ClMask2 blob;

    EXPECT_EQ(RunsOf(mask), (RunList{{1, 1, 1}}));
    EXPECT_EQ(mask.AreaSize(), 0);
    EXPECT_EQ(mask.SeparateFgBlob(0, blob), 1);
}

TEST(Mask2, RangeIsTheExtentOfTheRuns) {
    long nLeft = 9;
    long nRight = 9;
    long nTop = 9;
    long nBottom = 9;

    MaskOf({".....", "..##.", ".#...", "....."}).GetRange(nLeft, nRight, nTop, nBottom);
    EXPECT_EQ((std::array{nLeft, nRight, nTop, nBottom}), (std::array{1L, 3L, 1L, 2L}));

    ClMask2().GetRange(nLeft, nRight, nTop, nBottom);
    EXPECT_EQ((std::array{nLeft, nRight, nTop, nBottom}), (std::array{0L, 0L, 0L, 0L}));
}

TEST(Mask2, RangeIsTheExtentOfRandomRuns) {
    std::mt19937 random(4);
    for (int i = 0; i < 100; ++i) {
        std::array<long, 4> aExpected{99, -99, 99, -99};
        ClMask2 mask;
        for (int nRun = RandomInt(random, 1, 9); nRun > 0; --nRun) {
            const int nFrom = RandomInt(random, -50, 50);
            const int nTo = RandomInt(random, nFrom, 60);
            const int nLine = RandomInt(random, -50, 50);
            mask.m_aEntries.Append({nFrom, nTo, nLine});
            aExpected = {std::min<long>(aExpected[0], nFrom), std::max<long>(aExpected[1], nTo),
                         std::min<long>(aExpected[2], nLine), std::max<long>(aExpected[3], nLine)};
        }
        std::array<long, 4> aRange{};
        mask.GetRange(aRange[0], aRange[1], aRange[2], aRange[3]);
        EXPECT_EQ(aRange, aExpected);
    }
}

/// Runs 0, 2 and 5 of 6 are there, the others consumed.
ClMask2 PartlyConsumed() {
    ClMask2 mask = MaskOf({"#.#.#.#.#.#"});
    for (const unsigned long i : {1UL, 3UL, 4UL})
        mask.m_aEntries[i].nLine = -1;
    return mask;
}

TEST(Mask2, NextEntryBeginsWithTheIndexAndSkipsConsumedRuns) {
    const ClMask2 mask = PartlyConsumed();
    const struct {
        long nIdx, nStep, nFound; // -1: none
    } aCases[] = {{0, 1, 0},  {1, 1, 2},  {3, 1, 5},   {4, -1, 2},  {1, -1, 0},
                  {5, 3, 5},  {1, 2, 5},  {4, -3, -1}, {3, -2, -1}, {2, 0, 2},
                  {1, 0, -1}, {6, 1, -1}, {6, -1, -1}, {-1, 1, -1}, {1, 1000, -1}};
    for (const auto& Case : aCases) {
        long nIdx = Case.nIdx;
        ClMask2::STEntry out;
        out.nFrom = -7;

        const bool bFound = mask.GetNextFgEntry(nIdx, Case.nStep, out);

        EXPECT_EQ(bFound, Case.nFound >= 0) << Case.nIdx << " by " << Case.nStep;
        EXPECT_EQ(nIdx, bFound ? Case.nFound : Case.nIdx);
        EXPECT_EQ(out.nFrom, bFound ? 2 * Case.nFound : -7);
    }
}

TEST(Mask2, NextEntryStandsTheLargestSteps) {
    using Limits = std::numeric_limits<long>;
    const ClMask2 mask = PartlyConsumed();
    ClMask2::STEntry out;
    for (const long nStep : {Limits::min(), Limits::max()})
        for (const long nStart : {Limits::min(), 1L, 4L, Limits::max()}) {
            long nIdx = nStart;
            EXPECT_FALSE(mask.GetNextFgEntry(nIdx, nStep, out));
            EXPECT_EQ(nIdx, nStart);
        }
}

TEST(Mask2, EntriesAreOrderedByLineAndColumn) {
    const ClMask2::STEntry a{5, 9, 1};
    EXPECT_TRUE(a < (ClMask2::STEntry{0, 0, 2}));
    EXPECT_TRUE(a < (ClMask2::STEntry{6, 6, 1}));
    EXPECT_FALSE(a < (ClMask2::STEntry{5, 20, 1}));
    EXPECT_FALSE(a < (ClMask2::STEntry{9, 9, 0}));
}

// Removing and inverting

TEST(Mask2, RemovesTheRunsThatAreEqualInAllFields) {
    ClMask2 mask = MaskWithRuns(20, 3, {{0, 3, 0}, {5, 6, 0}, {0, 3, 1}, {0, 3, 2}, {8, 9, 2}});
    const ClMask2 sub = MaskWithRuns(20, 3, {{8, 9, 2}, {0, 3, 1}, {5, 7, 0}, {0, 2, 2}});

    mask.RemoveSubMask(sub);

    EXPECT_EQ(RunsOf(mask), (RunList{{0, 3, 0}, {5, 6, 0}, {0, 3, 2}}));
}

TEST(Mask2, RemovesItselfAndNothing) {
    ClMask2 mask = MaskOf({"##.#", "#..."});
    mask.RemoveSubMask(ClMask2());
    EXPECT_TRUE(mask == MaskOf({"##.#", "#..."}));

    mask.RemoveSubMask(mask);
    EXPECT_EQ(RunsOf(mask), RunList{});
}

Picture Complement(Picture aPicture) {
    for (std::string& rLine : aPicture)
        for (char& rPixel : rLine)
            rPixel = rPixel == '#' ? '.' : '#';
    return aPicture;
}

TEST(Mask2, InvertsEveryPixelOfTheFrame) {
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        const int nWidth = RandomInt(random, 1, 30);
        const int nHeight = RandomInt(random, 1, 20);
        const Picture picture =
            RandomPicture(random, nWidth, nHeight, RandomInt(random, 0, 10) / 10.0);
        const ClMask2 from = MaskOf(picture);

        ClMask2 inverse;
        inverse.Invert(from);
        EXPECT_TRUE(inverse == MaskOf(Complement(picture)));

        inverse.Invert(inverse);
        EXPECT_TRUE(inverse == from);
    }
}

TEST(Mask2, InvertsWithinTheRoundedLastStep) {
    ClMask2 mask;
    mask.m_nPelsX = mask.m_nPelsY = cnTestPels;
    mask.m_aPrecutSteps.Append({0, 0, 9, 9});
    mask.m_aPrecutSteps.Append({1, 1, 2.5, 1.49});

    mask.Invert(mask);

    EXPECT_EQ(RunsOf(mask), (RunList{{0, 2, 0}}));
}

TEST(Mask2, InvertsOverlappingAndOutlyingRunsPixelByPixel) {
    const ClMask2 mask = MaskWithRuns(10, 2,
                                      {{4, 6, 0},
                                       {-3, 1, 0},
                                       {5, 9, 0},
                                       {12, 13, 0},
                                       {-5, 20, 1},
                                       {2, 3, 1},
                                       {1, 2, 7},
                                       {4, 9, -1}});
    ClMask2 inverse;

    inverse.Invert(mask);

    EXPECT_EQ(RunsOf(inverse), (RunList{{2, 3, 0}}));
}

TEST(Mask2, InvertsToNothingWithoutSteps) {
    ClMask2 mask;
    SetRuns(mask, {{0, 1, 0}});
    mask.Invert(mask);
    EXPECT_TRUE(mask == ClMask2());
}

// Validity and equality

TEST(Mask2, IsValidWithSortedDisjointRunsInsideTheLastStep) {
    EXPECT_TRUE(ClMask2().IsValid());
    EXPECT_TRUE(MaskWithRuns(10, 3, {{0, 9, 0}, {0, 3, 1}, {4, 9, 1}, {5, 5, 2}}).IsValid());
    const RunList aInvalid[] = {{{-1, 3, 0}},
                                {{0, 10, 0}},
                                {{5, 4, 0}},
                                {{0, 1, -1}},
                                {{0, 1, 3}},
                                {{0, 1, 1}, {0, 1, 0}},
                                {{5, 6, 0}, {0, 1, 0}},
                                {{0, 5, 0}, {5, 9, 0}},
                                {{0, 1, 0}, {0, 1, 0}}};
    for (const RunList& aRuns : aInvalid)
        EXPECT_FALSE(MaskWithRuns(10, 3, aRuns).IsValid()) << aRuns[0][0] << ' ' << aRuns[0][1];
}

TEST(Mask2, WithRunsButWithoutStepsIsNotValid) {
    ClMask2 mask;
    SetRuns(mask, {{0, 0, 0}});
    EXPECT_FALSE(mask.IsValid());
}

TEST(Mask2, IsValidForAnImageThatStandsAtAStep) {
    const ClMask2 mask = MaskOf({"##", "##"});
    ClTestImage negative = BlankImage(ClImage::eUInt8, 2, 2);
    negative.SetPelsX(-1);

    EXPECT_TRUE(mask.IsValid(BlankImage(ClImage::eUInt8, 2, 2)));
    EXPECT_TRUE(mask.IsValid(BlankImage(ClImage::eInt16, 3, 2))); // steps may be smaller
    EXPECT_FALSE(mask.IsValid(BlankImage(ClImage::eUInt8, 1, 2)));
    EXPECT_FALSE(mask.IsValid(negative));
    EXPECT_FALSE(mask.IsValid(ClImage()));
    EXPECT_FALSE(MaskWithRuns(2, 2, {{0, 2, 0}}).IsValid(BlankImage(ClImage::eUInt8, 2, 2)));
}

TEST(Mask2, EqualityIsExactInEveryField) {
    const ClMask2 mask = MaskOf({"##.", ".##"});
    ClMask2 copy(mask);
    EXPECT_TRUE(copy == mask);
    EXPECT_FALSE(copy != mask);

    const auto Differs = [&mask](auto change) {
        ClMask2 other(mask);
        change(other);
        return other != mask && !(other == mask) && mask != other;
    };
    EXPECT_TRUE(Differs([](ClMask2& m) { ++m.m_nPelsX; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { ++m.m_nPelsY; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { ++m.m_aEntries[1].nFrom; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { ++m.m_aEntries[1].nTo; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { ++m.m_aEntries[1].nLine; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aEntries.Remove(1); }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aPrecutSteps[0].dX += 1e-9; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aPrecutSteps[0].dY += 1e-9; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aPrecutSteps[0].dWidth += 1e-9; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aPrecutSteps[0].dHeight += 1e-9; }));
    EXPECT_TRUE(Differs([](ClMask2& m) { m.m_aPrecutSteps.Append({}); }));
}

TEST(Mask2, AssignmentIsADeepCopyAndItselfChangesNothing) {
    ClMask2 mask = MaskOf({"##.", ".##"});
    ClMask2 copy = MaskOf({"#.#.#.#"});
    copy = mask;
    EXPECT_TRUE(copy == mask);

    mask.m_aEntries[0].nTo = 0;
    EXPECT_EQ(copy.m_aEntries[0].nTo, 1);

    const ClMask2& same = copy;
    copy = same;
    EXPECT_TRUE(copy == MaskOf({"##.", ".##"}));
}

// Missing memory

template <class Change>
void ExpectUnchangedWithoutMemory(const ClMask2& Mask, Change change) {
    ClMask2 changed(Mask);
    change(changed);
    EXPECT_TRUE(changed != Mask);
    std::optional<ClMask2> subject(Mask); // made anew for each run, with no room to spare
    ExpectAllOrNothing([&] { change(*subject); },
                       [&] {
                           EXPECT_TRUE(*subject == Mask);
                           subject.emplace(Mask);
                       },
                       [&] {
                           EXPECT_TRUE(*subject == changed);
                           subject.emplace(Mask);
                       });
}

TEST(Mask2, StaysAsItWasWhereMemoryIsMissing) {
    std::mt19937 random(3);
    const ClMask2 mask = MaskOf(RandomPicture(random, 60, 40, 0.4));
    const ClMask2 large = MaskOf(RandomPicture(random, 90, 80, 0.5));
    const int nHalf = cnTestPels / 2;

    ExpectUnchangedWithoutMemory(mask, [&](ClMask2& m) { m = large; });
    ExpectUnchangedWithoutMemory(mask, [&](ClMask2& m) { m.CopyHeader(large); });
    ExpectUnchangedWithoutMemory(mask, [&](ClMask2& m) { m.Invert(large); });
    ExpectUnchangedWithoutMemory(mask, [&](ClMask2& m) { m.RemoveSubMask(large); });
    ExpectUnchangedWithoutMemory(MaskWithRuns(60, 40, {{10, 12, 5}, {11, 30, 9}}),
                                 [](ClMask2& m) { m.SetBoundingBox(); });
    ExpectUnchangedWithoutMemory(mask, [](ClMask2& m) { m.RemoveSmallFgBlobs(5, true); });
    ExpectUnchangedWithoutMemory(mask, [](ClMask2& m) { m.RemoveSmallFgBlobs(); });
    ExpectUnchangedWithoutMemory(mask, [](ClMask2& m) { m.RemoveBgBlobs(); });
    ExpectUnchangedWithoutMemory(mask, [=](ClMask2& m) { m.ResizeMask(60, 40, nHalf, nHalf); });
    ExpectUnchangedWithoutMemory(ClMask2(), [](ClMask2& m) {
        m.AddPrecutStep(9, 9, cnTestPels, cnTestPels, 1, 1, 4, 4, false);
    });
    ExpectUnchangedWithoutMemory(mask, [](ClMask2& m) {
        ClMask2 blob;
        m.SeparateFgBlob(0, blob);
    });
    ExpectUnchangedWithoutMemory(mask, [](ClMask2& m) {
        ClMask2 blob;
        m.CompleteFgBlob(30, 1, m.m_aEntries[30], blob);
    });
}

TEST(Mask2, BuildsOrReportsMissingMemory) {
    const ClTestImage image = ImageOf({"#.#", "###"});
    std::optional<ClMask2> mask;
    ExpectAllOrNothing([&] { mask.emplace().BuildFromImage(image, cnBackground); },
                       [&] { EXPECT_EQ(RunsOf(*mask), RunList{}); },
                       [&] {
                           EXPECT_EQ(RunsOf(*mask), (RunList{{0, 0, 0}, {2, 2, 0}, {0, 2, 1}}));
                           EXPECT_EQ(StepsOf(*mask), (StepList{{0, 0, 3, 2}}));
                       });
}

} // namespace
