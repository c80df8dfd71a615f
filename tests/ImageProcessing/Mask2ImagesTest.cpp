// Painting a mask and cutting images to its frame.

#include "ImageProcessing/ImagePyramid.h"
#include "ImageProcessing/Mask2.h"
#include "ImageProcessing/MaskCases.h"
#include "ImageProcessing/MissingMemory.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

namespace {

using TestSupport::cszIndex;

using namespace TestSupport;

constexpr const char* cszTooHigh = "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()";

/// Bytes of a line behind its pixels.
std::vector<int> PaddingOf(const ClImage& Image, int y) {
    const unsigned char* pLine = Image.LineData(y);
    return {pLine + Image.Width(), pLine + Image.LineStrideBytes()};
}

// Painting

TEST(Mask2Images, PaintsOutsideWithThePadding) {
    const ClMask2 mask = MaskOf({".##..", ".....", "##..#"});
    ClTestImage image = FlatImage(ClImage::eUInt8, 5, 3, 1, 7);

    mask.ApplyOnImage(image, true, 9);

    EXPECT_EQ(Pixels(image), (Rows{{9, 7, 7, 9, 9}, {9, 9, 9, 9, 9}, {7, 7, 9, 9, 7}}));
    for (int y = 0; y < 3; ++y)
        EXPECT_EQ(PaddingOf(image, y), (std::vector<int>{9, 9, 9}));
}

TEST(Mask2Images, PaintsInsideWithoutThePadding) {
    const ClMask2 mask = MaskOf({".##..", ".....", "##..#"});
    ClTestImage image = FlatImage(ClImage::eUInt8, 5, 3, 1, 7);

    mask.ApplyOnImage(image, false, 9);

    EXPECT_EQ(Pixels(image), (Rows{{7, 9, 9, 7, 7}, {7, 7, 7, 7, 7}, {9, 9, 7, 7, 9}}));
    for (int y = 0; y < 3; ++y)
        EXPECT_EQ(PaddingOf(image, y), std::vector<int>(3, cnPaddingByte));
}

TEST(Mask2Images, WithoutRunsOrResolutionPaintsNothingOrEverything) {
    ClMask2 unresolved = MaskOf({"#.", ".."});
    unresolved.m_nPelsY = 0;
    for (const ClMask2& Mask : {ClMask2(), MaskOf({"..", ".."}), unresolved}) {
        ClTestImage image = Img({{1, 2}, {3, 4}});
        Mask.ApplyOnImage(image, true, 9);
        EXPECT_EQ(Pixels(image), (Rows{{1, 2}, {3, 4}}));
        EXPECT_EQ(PaddingOf(image, 0), std::vector<int>(2, cnPaddingByte));

        Mask.ApplyOnImage(image, false, 9);
        EXPECT_EQ(Pixels(image), (Rows{{9, 9}, {9, 9}}));
        EXPECT_EQ(PaddingOf(image, 0), std::vector<int>(2, 9));
    }
}

TEST(Mask2Images, RefusesAnImageOfAnotherType) {
    const ClMask2 mask = MaskOf({"#"});
    for (const ClImage::EDataType eType : caPixelTypes) {
        if (eType == ClImage::eUInt8)
            continue;
        ClTestImage image = BlankImage(eType, 1, 1);
        EXPECT_THROWS(mask.ApplyOnImage(image, false, 0), ClException, -101,
                      "Image Type is not the assigned type");
    }
    ClImage empty;
    EXPECT_THROWS(mask.ApplyOnImage(empty, true, 0), ClException, -101,
                  "Image Type is not the assigned type");
}

TEST(Mask2Images, RefusesToPaintAnImageThatStandsAtNoStep) {
    ClTestImage image = Img({{1}});
    EXPECT_THROWS(MaskOf({"##"}).ApplyOnImage(image, true, 0), ClException, -35, cszIndex);
    EXPECT_EQ(Pixels(image), (Rows{{1}}));
}

TEST(Mask2Images, WithoutStepsPaintsAtTheOrigin) {
    ClMask2 mask;
    mask.m_nPelsX = mask.m_nPelsY = cnTestPels;
    SetRuns(mask, {{1, 1, 0}});
    ClTestImage image = Img({{1, 2, 3}});
    mask.ApplyOnImage(image, false, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 9, 3}}));
}

TEST(Mask2Images, PaintsAtTheOffsetOfTheLastStep) {
    ClMask2 mask = MaskOf({"....", "..#.", "..##"});
    mask.SetBoundingBox();
    ClTestImage image = FlatImage(ClImage::eUInt8, 4, 3, 1, 1);
    mask.ApplyOnImage(image, false, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 1, 1, 1}, {1, 1, 9, 1}, {1, 1, 9, 9}}));
}

TEST(Mask2Images, KeepsTheScaleWhereTheImageHasNoResolution) {
    const ClMask2 mask = MaskOf({".##"});
    ClTestImage image = Img({{1, 1, 1}});
    image.SetPelsX(0);
    image.SetPelsY(0);
    mask.ApplyOnImage(image, false, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 9, 9}}));
}

TEST(Mask2Images, ClipsRunsToTheImageAndIgnoresNegativeGaps) {
    const ClMask2 mask = MaskWithRuns(
        4, 3, {{-9, 0, -5}, {-2, 0, 0}, {3, 9, 0}, {7, 8, 1}, {1, 2, 1}, {0, 1, 1}, {2, 3, 5}});
    ClTestImage image = FlatImage(ClImage::eUInt8, 4, 3, 1, 1);
    mask.ApplyOnImage(image, true, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 9, 9, 1}, {9, 1, 1, 9}, {9, 9, 9, 9}}));

    image = FlatImage(ClImage::eUInt8, 4, 3, 1, 1);
    mask.ApplyOnImage(image, false, 9);
    EXPECT_EQ(Pixels(image), (Rows{{9, 1, 1, 9}, {9, 9, 9, 1}, {1, 1, 1, 1}}));
}

TEST(Mask2Images, KeepsOutsideWhatLiesBeforeTheFurthestEndOfALine) {
    // Lines 0 and 1 of the mask fall on line 0 of the image, 2 and 3 on line 1.
    ClMask2 mask = MaskWithRuns(12, 4, {{4, 5, 0}, {0, 1, 1}, {8, 9, 1}, {0, 11, 2}, {6, 7, 3}});
    ClTestImage image = FlatImage(ClImage::eUInt8, 12, 2, 1, 1);
    image.SetPelsY(cnTestPels / 2 + 1);

    mask.ApplyOnImage(image, true, 9);

    EXPECT_EQ(Pixels(image),
              (Rows{{9, 9, 9, 9, 1, 1, 9, 9, 1, 1, 9, 9}, {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}}));
}

TEST(Mask2Images, StandsRunsFarOutside) {
    constexpr std::int64_t cnFar = 576460752303423488; // 2^59
    ClMask2 mask = MaskOf({"####"});
    mask.m_aEntries[0] = {-cnFar, cnFar, 0};
    ClTestImage image = Img({{1, 1, 1, 1}});
    mask.ApplyOnImage(image, true, 9);
    mask.m_aEntries[0] = {cnFar, cnFar, cnFar};
    mask.ApplyOnImage(image, false, 9);
    EXPECT_EQ(Pixels(image), (Rows{{1, 1, 1, 1}}));
}

/// Whether a pixel of an image lies in a run, by the formulas.
bool Covers(const ClMask2& Mask, const ClImage& Image, long x0, long y0, int x, int y) {
    const double fx = static_cast<double>(Image.PelsX()) / Mask.m_nPelsX;
    const double fy = static_cast<double>(Image.PelsY()) / Mask.m_nPelsY;
    for (const auto& [nFrom, nTo, nLine] : RunsOf(Mask)) {
        const long nBegin = static_cast<long>(static_cast<double>(nFrom) * fx) + x0;
        const long nLength = static_cast<long>(static_cast<double>(nTo - nFrom) * fx) + 1;
        if (y == static_cast<long>(static_cast<double>(nLine) * fy) + y0 && x >= nBegin &&
            x < nBegin + nLength)
            return true;
    }
    return false;
}

TEST(Mask2Images, PaintsWhatALoopOverPixelsPaints) {
    std::mt19937 random(9);
    for (int i = 0; i < 200; ++i) {
        const int nWidth = RandomInt(random, 2, 30);
        const int nHeight = RandomInt(random, 1, 20);
        ClMask2 mask = MaskOf(RandomPicture(random, nWidth, nHeight, 0.4));
        if (!mask.SetBoundingBox())
            continue;
        const int nScaleX = RandomInt(random, 1, 4); // halves
        const int nScaleY = RandomInt(random, 1, 2);
        ClTestImage image = RandomImage(ClImage::eUInt8, (nWidth * nScaleX + 1) / 2,
                                        nHeight * nScaleY, 1, static_cast<unsigned>(i));
        image.SetPelsX(cnTestPels * nScaleX / 2);
        image.SetPelsY(cnTestPels * nScaleY);
        const ClTestImage before(image);
        long x0 = 0;
        long y0 = 0;
        long w = 0;
        long h = 0;
        mask.GetCutOffsets(static_cast<unsigned long>(mask.GetOffsetsIndex(image)), image.PelsX(),
                           image.PelsY(), x0, y0, w, h);
        const bool bOutside = i % 2 == 0;

        mask.ApplyOnImage(image, bOutside, 77);

        for (int y = 0; y < image.Height(); ++y) {
            for (int x = 0; x < image.Width(); ++x) {
                const bool bPaint = Covers(mask, image, x0, y0, x, y) != bOutside;
                ASSERT_EQ(Sample(image, x, y), bPaint ? 77 : Sample(before, x, y))
                    << "case " << i << " at " << x << ", " << y;
            }
            for (const int nByte : PaddingOf(image, y))
                ASSERT_EQ(nByte, bOutside ? 77 : cnPaddingByte);
        }
    }
}

// Cutting

ClTestImage TwentyPixels() {
    return Img({{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, {11, 12, 13, 14, 15}, {16, 17, 18, 19, 20}});
}

TEST(Mask2Images, CutsAnImageOfAnyStepToTheLast) {
    ClMask2 mask;
    mask.AddPrecutStep(5, 4, cnTestPels, cnTestPels, 1, 1, 4, 3, true);
    mask.AddPrecutStep(4, 3, cnTestPels, cnTestPels, 1, 0, 2, 2, true);
    ClTestImage first = TwentyPixels();
    ClTestImage second = Img(ClImage::eInt16, {{7, 8, 9, 10}, {12, 13, 14, 15}, {17, 18, 19, 20}});
    ClImage out;

    mask.CutImage(first, out);
    EXPECT_EQ(Pixels(out), (Rows{{8, 9}, {13, 14}}));
    mask.CutImage(second, second); // in place
    EXPECT_EQ(Pixels(second), (Rows{{8, 9}, {13, 14}}));
    mask.CutImage(second);
    EXPECT_EQ(Pixels(second), (Rows{{8, 9}, {13, 14}}));
    mask.CutImage(first);
    EXPECT_EQ(Pixels(first), (Rows{{8, 9}, {13, 14}}));
    EXPECT_EQ(first.PelsX(), cnTestPels);
}

TEST(Mask2Images, CutsInTheScaleOfTheImage) {
    ClMask2 mask;
    mask.AddPrecutStep(40, 30, cnTestPels, cnTestPels, 3, 4, 13, 11, true);
    ClTestImage image = BlankImage(ClImage::eUInt8, 80, 12);
    image.SetPelsX(2 * cnTestPels);
    image.SetPelsY(cnTestPels / 5 * 2);
    SetSample(image, 6, 2, 0, 1);  // 3 x 2 and 4 x 0.4 + 0.5
    SetSample(image, 31, 5, 0, 2); // 26 columns, 4.4 + 0.5 lines
    ClImage out;

    mask.CutImage(image, out);

    EXPECT_EQ(out.Width(), 26);
    EXPECT_EQ(out.Height(), 4);
    EXPECT_EQ(Sample(out, 0, 0), 1);
    EXPECT_EQ(Sample(out, 25, 3), 2);
}

TEST(Mask2Images, CutsAnAxisWithoutResolutionInTheScaleOfTheMask) {
    ClMask2 mask;
    mask.AddPrecutStep(5, 4, cnTestPels, cnTestPels, 1, 2, 3, 2, true);
    for (const auto& [nPelsX, nPelsY] : {std::pair(0, 0), {0, cnTestPels}, {cnTestPels, 0}}) {
        ClTestImage image = TwentyPixels();
        image.SetPelsX(nPelsX);
        image.SetPelsY(nPelsY);

        mask.CutImage(image);

        EXPECT_EQ(Pixels(image), (Rows{{12, 13, 14}, {17, 18, 19}}));
        EXPECT_EQ(image.PelsX(), nPelsX);
        EXPECT_EQ(image.PelsY(), nPelsY);
    }
    ClMask2 unresolved(mask);
    unresolved.m_nPelsX = unresolved.m_nPelsY = 0;
    unresolved.m_aPrecutSteps[0] = {0, 0, 0, 0}; // the scale of the image is 0: it stands here
    ClTestImage image = TwentyPixels();
    unresolved.CutImage(image);
    EXPECT_EQ(Pixels(image), (Rows{{12, 13, 14}, {17, 18, 19}}));
}

TEST(Mask2Images, RoundsTheWindowBeforeTheOffsetIsTakenOff) {
    ClMask2 mask;
    mask.AddPrecutStep(9, 9, cnTestPels, cnTestPels, 2, 2, 5, 4, true);
    mask.m_aPrecutSteps.Append({1.4, 2, 4, 4}); // rounded to 1, before column 2
    ClTestImage image = TwentyPixels();
    EXPECT_THROWS(mask.CutImage(image), ClException, -35, "ClIpCut::Process. m_nX0<0");
    mask.m_aPrecutSteps[2] = {2, 1.4, 4, 4};
    EXPECT_THROWS(mask.CutImage(image), ClException, -35, "ClIpCut::Process. m_nY0<0");
    mask.m_aPrecutSteps[2] = {1.5, 1.5, 4, 4};
    mask.CutImage(image);
    EXPECT_EQ(Pixels(image),
              (Rows{{1, 2, 3, 4}, {6, 7, 8, 9}, {11, 12, 13, 14}, {16, 17, 18, 19}}));
}

TEST(Mask2Images, WithoutStepsCuttingIsADeepCopy) {
    ClTestImage image = Img({{1, 2}});
    ClImage out;
    ClMask2().CutImage(image, out);
    ExpectSameImage(out, image);
    EXPECT_NE(out.Data(), image.Data());
    ClMask2().CutImage(image, image);
    EXPECT_EQ(Pixels(image), (Rows{{1, 2}}));
}

TEST(Mask2Images, AFailedCutLeavesTheImage) {
    ClTestImage small = Img({{1, 2}});
    EXPECT_THROWS(MaskOf({"##", "##"}).CutImage(small), ClException, -35, cszIndex);
    EXPECT_EQ(Pixels(small), (Rows{{1, 2}}));

    ClMask2 outside;
    outside.AddPrecutStep(2, 2, cnTestPels, cnTestPels, 1, 1, 1, 2, true); // line 2 is none
    ClTestImage image = Img({{1, 2}, {3, 4}});
    EXPECT_THROWS(outside.CutImage(image), ClException, -35, cszTooHigh);
    EXPECT_THROWS(outside.CutImage(image, image), ClException, -35, cszTooHigh);
    EXPECT_EQ(Pixels(image), (Rows{{1, 2}, {3, 4}}));
}

TEST(Mask2Images, CutRecordsTheFrameAndTheWindow) {
    ClMask2 mask;
    ClTestImage image = Img({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});

    mask.Cut(image, 1, 0, 2, 2);

    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 3, 3}, {1, 0, 2, 2}}));
    EXPECT_EQ(Pixels(image), (Rows{{2, 3}, {5, 6}}));
    mask.Cut(image, 0, 1, 1, 1);
    EXPECT_EQ(StepsOf(mask), (StepList{{0, 0, 3, 3}, {1, 0, 2, 2}, {1, 1, 1, 1}}));
    EXPECT_EQ(Pixels(image), (Rows{{5}}));
}

// Pyramids

/// Layer 0 of 8 x 8 pixels, layer 1 of half the resolution, layer 2 empty.
ClImagePyramid TestPyramid() {
    ClImagePyramid pyramid(3);
    for (int nLayer = 0; nLayer < 2; ++nLayer) {
        const int nSize = 8 >> nLayer;
        ClTestImage layer = BlankImage(ClImage::eUInt8, nSize, nSize);
        for (int y = 0; y < nSize; ++y)
            for (int x = 0; x < nSize; ++x)
                SetSample(layer, x, y, 0, 10 * y + x);
        layer.SetPelsX(1000 >> nLayer);
        layer.SetPelsY(1000 >> nLayer);
        pyramid[nLayer] = layer;
    }
    return pyramid;
}

ClMask2 PyramidMask() {
    ClMask2 mask;
    mask.AddPrecutStep(8, 8, 1000, 1000, 2, 4, 4, 2, true);
    return mask;
}

void ExpectCut(const ClImagePyramid& Pyramid) {
    ASSERT_EQ(Pyramid.Layers(), 3);
    EXPECT_EQ(Pixels(Pyramid[0]), (Rows{{42, 43, 44, 45}, {52, 53, 54, 55}}));
    EXPECT_EQ(Pixels(Pyramid[1]), (Rows{{21, 22}}));
    ExpectEmptyImage(Pyramid[2]);
}

TEST(Mask2Images, CutsEveryLayerAtItsOwnResolution) {
    ClImagePyramid in = TestPyramid();
    ClImagePyramid out;
    ClImagePyramid used(3);
    used[2] = Img({{1}}); // an empty layer stays empty

    PyramidMask().CutPyramid(in, out);
    PyramidMask().CutPyramid(in, used);
    ExpectCut(out);
    ExpectCut(used);
    EXPECT_EQ(in[0].Width(), 8);

    PyramidMask().CutPyramid(in);
    ExpectCut(in);
}

TEST(Mask2Images, RefusesAPyramidThatStandsAtNoStep) {
    ClImagePyramid pyramid = TestPyramid();
    ClMask2 larger;
    larger.AddPrecutStep(9, 9, 1000, 1000, 0, 0, 9, 9, true);
    EXPECT_THROWS(larger.CutPyramid(pyramid), ClException, -35, cszIndex);
    EXPECT_THROWS(ClMask2().CutPyramid(pyramid), ClException, -35, cszIndex);
    ClImagePyramid none;
    EXPECT_THROWS(PyramidMask().CutPyramid(none), ClException, -701, "no pyramid is given");
    ClImagePyramid empty(2);
    EXPECT_THROWS(PyramidMask().CutPyramid(empty), ClException, -701, "No image size given.");
    EXPECT_EQ(pyramid[0].Width(), 8);
}

TEST(Mask2Images, AFailedCutLeavesThePyramid) {
    ClImagePyramid pyramid = TestPyramid();
    pyramid[1].SetPelsX(1000); // the window does not lie in it
    EXPECT_THROWS(PyramidMask().CutPyramid(pyramid), ClException, -35,
                  "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()");
    EXPECT_EQ(pyramid[0].Width(), 8);

    ClImagePyramid whole(2);
    for (const long i : {0L, 1L})
        whole[i] = TestPyramid()[i];
    FailEachAllocation([&] {
        ClImagePyramid work(whole);
        try {
            PyramidMask().CutPyramid(work);
        } catch (...) {
            EXPECT_EQ(work[0].Width(), 8);
            EXPECT_EQ(work[1].Width(), 4);
            throw;
        }
    });
}

TEST(Mask2Images, CutsAPyramidWholeOrNotAtAll) {
    ClImagePyramid in = TestPyramid();
    for (const long nLayers : {0L, 1L, 3L, 7L}) {
        ClImagePyramid out(nLayers);
        if (nLayers > 0)
            out[0] = Img({{5}});
        ExpectAllOrNothing([&] { PyramidMask().CutPyramid(in, out); },
                           [&] {
                               EXPECT_EQ(out.Layers(), nLayers);
                               if (nLayers > 0) {
                                   EXPECT_EQ(Pixels(out[0]), (Rows{{5}}));
                               }
                           },
                           [&] {
                               ExpectCut(out);
                               out.Create(nLayers);
                               if (nLayers > 0)
                                   out[0] = Img({{5}});
                           });
        EXPECT_EQ(in[0].Width(), 8);
    }
}

} // namespace
