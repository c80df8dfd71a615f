// BuildMaskImage: the detectors brought together, and what it refuses. The images of its stages
// are compared in the tests of the published captures.

#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/WorkScale.h"
#include "ImageProcessing/Mask2.h"
#include "support/Throws.h"
#include "support/WorkingFolder.h"

#include <cmath>

using namespace TestSupport;

namespace {

using TestSupport::cdRidgeDist;

/// The mask of an image that is capture and stretched capture in one.
class ClMaskRun {
public:
    explicit ClMaskRun(ClImage& In) : m_rIn(In) { m_Calibration.m_pInImage = &In; }

    long Build(double dRidgeDist = cdRidgeDist) {
        return m_Calibration.BuildMaskImage(m_rIn, dRidgeDist, m_Mask, m_Prob);
    }

    ClImage& m_rIn;
    ClOpenDynamicCalibration m_Calibration;
    ClTestImage m_Mask;
    ClTestImage m_Prob;
};

/// A frame of 10 x 8 pixels, a window (2, 1) of 6 x 5 in it, and in that one (1, 1) of 3 x 3.
ClMask2 Windows() {
    ClMask2 region;
    region.AddPrecutStep(10, 8, cnTestPels, cnTestPels, 2, 1, 6, 5, false);
    region.AddPrecutStep(6, 5, cnTestPels, cnTestPels, 1, 1, 3, 3, false);
    return region;
}

/// Sample x of line y is 10 y + x.
ClTestImage Numbered(int nWidth, int nHeight) {
    ClTestImage image = BlankImage(ClImage::eUInt8, nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            SetSample(image, x, y, 0, 10 * y + x);
    return image;
}

/// Stripes on a dark area, with a bright hole in it.
ClTestImage FingerWithAHole() {
    ClTestImage image = FlatImage(ClImage::eUInt8, 320, 480, 1, 250);
    for (int y = 80; y < 400; ++y)
        for (int x = 50; x < 270; ++x) {
            const int nDistance = (x - 160) * (x - 160) + (y - 240) * (y - 240);
            if (nDistance > 40 * 40)
                image.LineData(y)[x] = y % 12 < 6 ? 20 : 140;
        }
    return image;
}

/// Ridges in the upper left, and a square of them in the lower right corner.
ClTestImage FingerWithAPatch(int nSide) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 320, 480, 1, 250);
    for (int y = 0; y < 480; ++y)
        for (int x = 0; x < 320; ++x) {
            const bool bFinger = x >= 30 && x < 180 && y >= 40 && y < 280;
            const bool bPatch = x >= 300 - nSide && x < 300 && y >= 460 - nSide && y < 460;
            if (bFinger || bPatch)
                image.LineData(y)[x] = y % 12 < 6 ? 20 : 140;
        }
    return image;
}

/// Stripes of 0, 105 and 255, with white dots so close that no part passes for a dim background.
ClTestImage DottedStripes() {
    ClTestImage image = FlatImage(ClImage::eUInt8, 300, 200, 1, 255);
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 240; ++x)
            if (x % 10 != 5 || y % 10 != 5)
                image.LineData(y)[x] = x < 120 ? 0 : 105;
    return image;
}

/// The image of a stage of a run.
ClTestImage StageOf(ClTestImage image, const char* szFileName) {
    ClMaskRun run(image);
    run.m_Calibration.m_bDumpImages = true;
    ClWorkingFolder folder;
    run.Build();
    ClTestImage stored;
    stored.Load(szFileName);
    return stored;
}

} // namespace

// Windows

/// The last window is at (3, 2) of the frame and at (1, 1) of the first one, which is therefore at
/// (2, 1) of the frame. As many columns as the last window has are copied, and all lines.
TEST(FingerMaskBuild, PastesAWindowWhereItWasCut) {
    ClTestImage frame = FlatImage(ClImage::eUInt8, 10, 8, 1, 99);
    ClOpenDynamicCalibration::PasteWindow(Windows(), Numbered(6, 5), frame);
    EXPECT_EQ(Pixels(frame), Rows({{99, 99, 99, 99, 99, 99, 99, 99, 99, 99},
                                   {99, 99, 0, 1, 2, 99, 99, 99, 99, 99},
                                   {99, 99, 10, 11, 12, 99, 99, 99, 99, 99},
                                   {99, 99, 20, 21, 22, 99, 99, 99, 99, 99},
                                   {99, 99, 30, 31, 32, 99, 99, 99, 99, 99},
                                   {99, 99, 40, 41, 42, 99, 99, 99, 99, 99},
                                   {99, 99, 99, 99, 99, 99, 99, 99, 99, 99},
                                   {99, 99, 99, 99, 99, 99, 99, 99, 99, 99}}));
}

/// The other way round the corner comes to lie at (-2, -1) of the window.
TEST(FingerMaskBuild, PastesWhatBothImagesHave) {
    ClTestImage window = FlatImage(ClImage::eUInt8, 6, 5, 1, 99);
    ClOpenDynamicCalibration::PasteWindow(Windows(), Numbered(10, 8), window);
    EXPECT_EQ(Pixels(window), Rows({{12, 99, 99, 99, 99, 99},
                                    {22, 99, 99, 99, 99, 99},
                                    {32, 99, 99, 99, 99, 99},
                                    {42, 99, 99, 99, 99, 99},
                                    {52, 99, 99, 99, 99, 99}}));
    for (int y = 0; y < 5; ++y)
        EXPECT_EQ(window.LineData(y)[6], cnPaddingByte);
    EXPECT_EQ(window.LineData(0)[7], cnPaddingByte);
}

TEST(FingerMaskBuild, PastesAtTheCornerWithoutWindows) {
    ClTestImage small = FlatImage(ClImage::eUInt8, 2, 2, 1, 99);
    ClOpenDynamicCalibration::PasteWindow(ClMask2(), Numbered(3, 3), small);
    EXPECT_EQ(Pixels(small), Rows({{0, 1}, {10, 11}}));
    ClTestImage large = FlatImage(ClImage::eUInt8, 4, 4, 1, 99);
    ClOpenDynamicCalibration::PasteWindow(ClMask2(), Numbered(3, 3), large);
    EXPECT_EQ(Pixels(large),
              Rows({{0, 1, 2, 99}, {10, 11, 12, 99}, {20, 21, 22, 99}, {99, 99, 99, 99}}));
}

TEST(FingerMaskBuild, PastesNoImageThatStandsAtNoWindow) {
    ClTestImage frame = FlatImage(ClImage::eUInt8, 10, 8, 1, 99);
    const ClTestImage small = Numbered(1, 1);
    EXPECT_THROWS(ClOpenDynamicCalibration::PasteWindow(Windows(), small, frame), ClException, -35,
                  "The precut index 'nRefIdx' is out of range.");
    EXPECT_THROWS(ClOpenDynamicCalibration::PasteWindow(Windows(), ClImage(), frame), ClException,
                  -701, "No image size given.");
    EXPECT_EQ(Pixels(frame), Pixels(FlatImage(ClImage::eUInt8, 10, 8, 1, 99)));
}

// The whole

TEST(FingerMaskBuild, FillsTheHolesOfTheRegion) {
    ClTestImage image = FingerWithAHole();
    ClMaskRun run(image);
    run.m_Calibration.m_bDumpImages = true;
    ClWorkingFolder folder;
    EXPECT_EQ(run.Build(), 0);
    ClTestImage stored;
    stored.Load("C:\\03_MaskImage.kpf");
    EXPECT_EQ(Sample(stored, 160, 240), 0);  // the hole
    EXPECT_EQ(Sample(stored, 100, 240), 0);  // the finger
    EXPECT_EQ(Sample(stored, 20, 240), 255); // the background
    EXPECT_GT(Sample(run.m_Prob, 160, 240), 200);
}

/// The histogram climbs towards 105 from 95 on: 100 is the lowest threshold.
TEST(FingerMaskBuild, SeeksTheThresholdOfBrightnessFrom100On) {
    const ClTestImage prob = StageOf(DottedStripes(), "C:\\21_BrightProbImage.kpf");
    EXPECT_EQ(Sample(prob, 60, 100), 0 + 128 - 100);
    EXPECT_EQ(Sample(prob, 180, 100), 105 + 128 - 100);
    EXPECT_EQ(Sample(prob, 280, 100), 255);
}

/// 16 square millimetres are some 79 by 79 pixels, less what the mean adds on each side.
TEST(FingerMaskBuild, LooksAwayFromSmallPatchesOfRidges) {
    const ClTestImage small = StageOf(FingerWithAPatch(40), "C:\\03_MaskImage.kpf");
    EXPECT_EQ(Sample(small, 100, 160), 0);
    EXPECT_EQ(Sample(small, 280, 440), 255);
    const ClTestImage large = StageOf(FingerWithAPatch(80), "C:\\03_MaskImage.kpf");
    EXPECT_EQ(Sample(large, 100, 160), 0);
    EXPECT_EQ(Sample(large, 260, 420), 0);
}

TEST(FingerMaskBuild, FindsAFinger) {
    ClTestImage image = WarpedCapture("loop");
    ClMaskRun run(image);
    EXPECT_EQ(run.Build(), 0);
    EXPECT_EQ(run.m_Mask.Width(), image.Width());
    EXPECT_EQ(run.m_Prob.Height(), image.Height());
    EXPECT_EQ(Sample(run.m_Mask, 160, 240), 0);
    EXPECT_EQ(Sample(run.m_Mask, 5, 5), 255);
    EXPECT_LT(Sample(run.m_Prob, 160, 240), 128);
    EXPECT_EQ(Sample(run.m_Prob, 5, 5), 255); // outside the window of the contrast
}

TEST(FingerMaskBuild, AnswersTwoFingersWithTheMaskThatItHas) {
    ClTestImage image = WarpedCapture("two_fingers");
    ClMaskRun run(image);
    EXPECT_EQ(run.Build(), -33);
    EXPECT_FALSE(IsWhite(run.m_Mask));
}

/// Without contrast the region is empty and paints nothing: the mask stays 0.
TEST(FingerMaskBuild, TakesTheWholePictureWhereNoRegionIsFound) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 101, 120, 1, 0);
    ClMaskRun run(image);
    run.m_Calibration.m_bDumpImages = true;
    ClWorkingFolder folder;
    EXPECT_EQ(run.Build(), 0);
    ClTestImage stored;
    stored.Load("C:\\03_MaskImage.kpf");
    ExpectSameImage(stored, image);
    EXPECT_EQ(Sample(run.m_Mask, 50, 60), 0);
}

TEST(FingerMaskBuild, ReplacesWhatTheImagesHeld) {
    ClTestImage image = WarpedCapture("partial");
    ClMaskRun fresh(image);
    ClMaskRun used(image);
    used.m_Mask = RandomImage(ClImage::eUInt8, 320, 480, 1, 3);
    used.m_Prob = RandomImage(ClImage::eInt16, 11, 9, 1, 4);
    EXPECT_EQ(fresh.Build(), 0);
    EXPECT_EQ(used.Build(), 0);
    ExpectSameImage(used.m_Mask, fresh.m_Mask);
    ExpectSameImage(used.m_Prob, fresh.m_Prob);
}

TEST(FingerMaskBuild, AnswersAnImageWithoutPixelsThatItIsMissing) {
    ClTestImage image;
    ClMaskRun run(image);
    EXPECT_EQ(run.Build(), -37);
    EXPECT_EQ(run.m_Prob.Data(), nullptr);
}

TEST(FingerMaskBuild, RefusesOtherPixelTypes) {
    for (const ClImage::EDataType eType : {ClImage::eUInt16, ClImage::eInt32, ClImage::eFloat32}) {
        ClTestImage image = BlankImage(eType, 60, 60);
        ClMaskRun run(image);
        EXPECT_THROWS(run.Build(), ClException, -101, "Image Type is not the assigned type");
    }
}

TEST(FingerMaskBuild, RefusesAnImageWithoutResolution) {
    ClTestImage image = WarpedCapture("loop");
    image.SetPelsX(0);
    ClMaskRun run(image);
    EXPECT_THROWS(run.Build(), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
}

TEST(FingerMaskBuild, RefusesARidgeDistanceThatIsNone) {
    ClTestImage image = WarpedCapture("loop");
    for (const double dRidgeDist : {0.0, -11.7, std::nan("")}) {
        ClMaskRun run(image);
        EXPECT_THROWS(run.Build(dRidgeDist), ClException, -35, "*m_pdRidgeDist is out of range");
    }
}

/// The mask takes the size of the capture; one that stands at no window of the region is refused.
TEST(FingerMaskBuild, RefusesACaptureThatMatchesNoWindow) {
    ClTestImage image = WarpedCapture("loop");
    ClTestImage small = FlatImage(ClImage::eUInt8, 10, 10, 1, 0);
    ClMaskRun run(image);
    run.m_Calibration.m_pInImage = &small;
    EXPECT_THROWS(run.Build(), ClException, -35, "The precut index 'nRefIdx' is out of range.");
}

/// Of images of at most 30 columns or 25 lines the sensor's frame leaves nothing to measure.
TEST(FingerMaskBuild, SeeksTheFingerInImagesOfAFewPixels) {
    for (const int nWidth : {1, 2, 3, 4, 7, 30, 64})
        for (const int nHeight : {1, 2, 3, 4, 5, 25}) {
            SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
            ClTestImage image = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, 9);
            const ClTestImage before = image;
            ClMaskRun run(image);
            const long nResult = run.Build();
            EXPECT_TRUE(nResult == 0 || nResult == -33) << nResult;
            EXPECT_EQ(run.m_Mask.Width(), nWidth);
            EXPECT_EQ(run.m_Prob.Height(), nHeight);
            StDynamicRun whole(image, true);
            EXPECT_EQ(whole.m_nResult, 0);
            EXPECT_EQ(whole.m_Out.Width(), nWidth);
            EXPECT_EQ(whole.m_Out.Height(), nHeight);
            EXPECT_TRUE(IsWhiteWithPadding(whole.m_Out));
            EXPECT_EQ(whole.Dirt(), 100.0);
            EXPECT_EQ(whole.Dry(), 0.0);
            ExpectSameImage(image, before);
        }
}
