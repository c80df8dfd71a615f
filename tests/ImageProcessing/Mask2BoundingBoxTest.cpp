// The bounding box of the runs as a step, and runs at the ends of 64 bits.

#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskCases.h"
#include "support/Throws.h"

#include <limits>

namespace {

using TestSupport::cszIndex;

using namespace TestSupport;

constexpr long cnLeast = std::numeric_limits<long>::min();
constexpr long cnMost = std::numeric_limits<long>::max();

TEST(Mask2BoundingBox, TheBoundingBoxBecomesTheFrameOfTheRuns) {
    ClMask2 mask = MaskOf({"......", "..##..", ".#....", "......"});

    EXPECT_TRUE(mask.SetBoundingBox());

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 6, 4}, {1, 1, 3, 2}}));
    EXPECT_EQ(PictureOf(mask, 3, 2), (Picture{".##", "#.."}));
    EXPECT_TRUE(mask.IsValid());
}

TEST(Mask2BoundingBox, WithoutRunsThereIsNoBoundingBox) {
    ClMask2 mask = MaskOf({"..", ".."});
    EXPECT_FALSE(mask.SetBoundingBox());
    EXPECT_EQ(mask.GetOffsetsCount(), 1);
    EXPECT_FALSE(ClMask2().SetBoundingBox());
}

TEST(Mask2BoundingBox, AKnownBoundingBoxStillMovesTheRuns) {
    ClMask2 mask = MaskWithRuns(200, 200, {{1, 199, 1}, {1, 199, 199}});

    EXPECT_TRUE(mask.SetBoundingBox()); // 199 pixels are 200 within the tolerance

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 200, 200}}));
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 198, 0}, {0, 198, 198}}));
}

TEST(Mask2BoundingBox, StandsRelativeToTheLastStepAlsoWhereAnEarlierOneHasItsSize) {
    ClMask2 mask;
    mask.AddPrecutStep(100, 100, 1000, 1000, 2, 2, 98, 98, true);
    mask.ResizeMask(25, 25, 250, 250);
    ASSERT_EQ(StepsOf(mask), (StepList{{0, 0, 25, 25}, {0.5, 0.5, 24.5, 24.5}}));
    ASSERT_EQ(mask.GetOffsetsIndex(25, 25, 250, 250), 0); // 24.5, rounded, stands there, too
    SetRuns(mask, {{4, 9, 3}});

    EXPECT_TRUE(mask.SetBoundingBox());

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 25, 25}, {0.5, 0.5, 24.5, 24.5}, {4.5, 3.5, 6, 1}}));
    EXPECT_EQ(RunsOf(mask), (RunList{{0, 5, 0}}));
}

TEST(Mask2BoundingBox, ToleratesAHundredthAndAHalfOfItsShorterSide) {
    // A box of 200 x 100 has the tolerance 1.5, in either axis.
    const struct {
        double m_dWidth, m_dHeight;
        bool m_bKnown;
    } aCases[] = {{201.25, 101.25, true}, {201.5, 101.25, false}, {201.25, 101.5, false},
                  {300, 50, false},       {150, 400, false},      {1, 1, true}};
    for (const auto& Case : aCases) {
        ClMask2 mask = MaskWithRuns(400, 400, {{3, 202, 5}, {3, 3, 104}});
        mask.m_aPrecutSteps.Append({7, 8, Case.m_dWidth, Case.m_dHeight});
        mask.m_aPrecutSteps.Append({10, 20, 400, 400});

        EXPECT_TRUE(mask.SetBoundingBox());

        EXPECT_EQ(mask.GetOffsetsCount(), Case.m_bKnown ? 3 : 4) << Case.m_dWidth;
        if (!Case.m_bKnown) {
            EXPECT_EQ(StepsOf(mask).back(), (std::array<double, 4>{13, 25, 200, 100}));
        }
        EXPECT_EQ(RunsOf(mask), (RunList{{0, 199, 0}, {0, 0, 99}}));
    }
}

TEST(Mask2BoundingBox, NeedsAResolution) {
    for (int ClMask2::*pPels : {&ClMask2::m_nPelsX, &ClMask2::m_nPelsY}) {
        ClMask2 mask = MaskWithRuns(9, 9, {{3, 4, 5}});
        mask.*pPels = 0;
        const ClMask2 before(mask);
        EXPECT_THROWS(mask.SetBoundingBox(), ClExTessarin, -13,
                      "Pels are not in a valid range (see documentation).");
        EXPECT_TRUE(mask == before);
    }
}

TEST(Mask2BoundingBox, WithoutStepsTheBoundingBoxHasNoFrame) {
    ClMask2 mask;
    SetRuns(mask, {{3, 4, 5}});
    EXPECT_THROWS(mask.SetBoundingBox(), ClException, -35, cszIndex);
    EXPECT_EQ(RunsOf(mask), (RunList{{3, 4, 5}}));
}

// Runs that only a caller can make

TEST(Mask2FarRuns, AreasStopAtTheEndOfNumbers) {
    EXPECT_EQ(MaskWithRuns(9, 9, {{cnLeast, cnMost, 0}}).AreaSize(), cnMost);
    EXPECT_EQ(MaskWithRuns(9, 9, {{cnMost, cnLeast, 0}}).AreaSize(), cnLeast);
    EXPECT_EQ(MaskWithRuns(9, 9, {{0, cnMost, 0}, {0, cnMost, 1}}).AreaSize(), cnMost);
    EXPECT_EQ(MaskWithRuns(9, 9, {{0, cnLeast, 0}, {2, 0, 1}}).AreaSize(), cnLeast);
    EXPECT_EQ(MaskWithRuns(9, 9, {{cnLeast, -1, 0}}).AreaSize(), cnMost); // exactly
}

TEST(Mask2FarRuns, BlobsStopAtTheEndOfNumbers) {
    ClMask2 blob;
    for (const auto& Run : RunList{{cnLeast, cnMost, 0}, {0, cnMost, 0}, {cnLeast, 3, 0}}) {
        ClMask2 mask = MaskWithRuns(9, 9, {Run, {1, 2, 1}});
        EXPECT_EQ(mask.GetMaxFgBlobSize(), cnMost);
        EXPECT_EQ(mask.SeparateFgBlob(0, blob), cnMost);
        EXPECT_EQ(RunsOf(blob), (RunList{Run, {1, 2, 1}}));
    }
}

TEST(Mask2FarRuns, TheFirstAndTheLastLineAreNoNeighbours) {
    ClMask2 mask = MaskWithRuns(9, 9, {{0, 1, cnLeast}, {0, 1, cnMost}});
    ClMask2 blob;

    EXPECT_EQ(mask.CompleteFgBlob(0, 1, {0, 1, cnMost}, blob), 0);
    EXPECT_EQ(mask.CompleteFgBlob(1, -1, {0, 1, cnLeast}, blob), 0);
    EXPECT_EQ(mask.SeparateFgBlob(0, blob), 2);
    EXPECT_EQ(RunsOf(blob), (RunList{{0, 1, cnLeast}}));
    EXPECT_EQ(mask.SeparateFgBlob(1, blob), 2);
    EXPECT_EQ(RunsOf(blob), (RunList{{0, 1, cnMost}}));
}

TEST(Mask2FarRuns, OverlappingRunsOfTheFirstLineAreNoNeighboursOfThemselves) {
    for (const long nLine : {cnLeast, cnMost}) {
        ClMask2 mask = MaskWithRuns(9, 9, {{0, 3, nLine}, {2, 5, nLine}});
        ClMask2 blob;
        EXPECT_EQ(mask.SeparateFgBlob(0, blob), 4);
    }
}

TEST(Mask2FarRuns, TheBoundingBoxStopsAtTheEndOfNumbers) {
    ClMask2 mask = MaskWithRuns(9, 9, {{cnLeast, cnMost, cnLeast}, {-1, cnLeast, cnMost}});

    EXPECT_TRUE(mask.SetBoundingBox());

    EXPECT_EQ(RunsOf(mask), (RunList{{0, cnMost, 0}, {cnMost, 0, cnMost}}));
    const double dTwoTo63 = 9223372036854775808.0;
    EXPECT_EQ(mask.GetOffsetsCount(), 1); // the frame is smaller, and so known
    mask.m_aPrecutSteps[0] = {1, 2, 2e19, 2e19};
    SetRuns(mask, {{cnLeast, cnMost, cnLeast}, {-1, cnLeast, cnMost}});
    EXPECT_TRUE(mask.SetBoundingBox());
    EXPECT_EQ(StepsOf(mask).back(),
              (std::array<double, 4>{-dTwoTo63, -dTwoTo63, dTwoTo63, dTwoTo63}));
}

TEST(Mask2FarRuns, ResizingKeepsThemWithinBounds) {
    ClMask2 mask = MaskWithRuns(9, 9, {{cnLeast, 0, cnLeast}});
    mask.ResizeMask(9, 9, cnTestPels * 2, cnTestPels * 2);
    constexpr long cnFar = 1L << 60;
    EXPECT_EQ(RunsOf(mask), (RunList{{-cnFar, 0, -cnFar}}));

    ClMask2 last = MaskWithRuns(9, 9, {{0, 0, cnMost}});
    EXPECT_THROWS(last.ResizeMask(9, 9, cnTestPels * 2, cnTestPels * 2), ClException, -101,
                  "New Width or Height too small.");
}

TEST(Mask2FarRuns, InvertingCutsThemToTheFrame) {
    ClMask2 mask = MaskWithRuns(4, 2, {{cnLeast, 0, 0}, {3, cnMost, 0}, {cnLeast, cnMost, 1}});
    mask.Invert(mask);
    EXPECT_EQ(RunsOf(mask), (RunList{{1, 2, 0}}));
}

TEST(Mask2FarRuns, PaintingCutsThemToTheImage) {
    const ClMask2 mask =
        MaskWithRuns(4, 2, {{cnLeast, cnMost, cnLeast}, {0, cnMost, 0}, {3, cnLeast, 1}});
    ClTestImage image = FlatImage(ClImage::eUInt8, 4, 2, 1, 1);
    mask.ApplyOnImage(image, true, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 1, 1, 1}, {9, 9, 9, 9}}));
}

} // namespace
