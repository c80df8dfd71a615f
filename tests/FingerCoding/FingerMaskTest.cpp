// The steps of the finger mask, against plain loops and shapes whose result is plain.

#include "FingerCoding/NaiveMaskSteps.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/WorkScale.h"
#include "ImageProcessing/RegionShapes.h"
#include "support/Throws.h"
#include "support/WorkingFolder.h"

#include <cmath>
#include <limits>

using namespace TestSupport;

namespace {

using TestSupport::cdRidgeDist;

ClTestImage Disc(int nWidth, int nHeight, int nX, int nY, int nRadius) {
    return Shape(nWidth, nHeight, [=](int x, int y) {
        return (x - nX) * (x - nX) + (y - nY) * (y - nY) <= nRadius * nRadius;
    });
}

/// Two discs of radius 40 in one line, with a gap between them.
ClTestImage TwoDiscs(int nGap) {
    return Shape(320, 160, [=](int x, int y) {
        const int nLeft = (x - 60) * (x - 60) + (y - 80) * (y - 80);
        const int nRight = (x - 141 - nGap) * (x - 141 - nGap) + (y - 80) * (y - 80);
        return std::min(nLeft, nRight) <= 1600;
    });
}

/// With `nMargin` pixels of 255 on every side.
Rows Extended(const Rows& aIn, int nMargin) {
    const std::size_t nWidth = aIn.at(0).size() + 2 * static_cast<std::size_t>(nMargin);
    Rows aOut(aIn.size() + 2 * static_cast<std::size_t>(nMargin), std::vector<int>(nWidth, 255));
    for (std::size_t y = 0; y < aIn.size(); ++y)
        std::copy(aIn[y].begin(), aIn[y].end(),
                  aOut[y + static_cast<std::size_t>(nMargin)].begin() + nMargin);
    return aOut;
}

Rows NaiveSmooth(const ClImage& Mask, int nWidth) {
    const Rows aBlurred = Naive::MeanOf(Naive::MeanOf(Extended(Pixels(Mask), 2), nWidth), nWidth);
    Rows aOut = Pixels(Mask);
    for (std::size_t y = 0; y < aOut.size(); ++y)
        for (std::size_t x = 0; x < aOut[y].size(); ++x)
            aOut[y][x] = static_cast<int>(std::min(255.0, aBlurred[y + 2][x + 2] * 2.2));
    return aOut;
}

long Count(const ClImage& Image, int nValue) {
    long nCount = 0;
    for (const std::vector<int>& aRow : Pixels(Image))
        nCount += std::count(aRow.begin(), aRow.end(), nValue);
    return nCount;
}

} // namespace

// GetMaskRegionCount

TEST(FingerMask, CountsRegionsAsANaiveLabellingDoes) {
    ClOpenDynamicCalibration calibration;
    for (unsigned nSeed = 0; nSeed < 12; ++nSeed) {
        ClTestImage image = RandomShape(37, 29, 0.15 + 0.06 * nSeed, nSeed);
        const ClTestImage before = image;
        EXPECT_EQ(calibration.GetMaskRegionCount(image, 0), ClNaiveLabels(image).Regions());
        ExpectSameImage(image, before);
    }
}

TEST(FingerMask, CountsRegionsOfAnyValue) {
    ClTestImage image = Img({{7, 7, 0, 248}, {0, 0, 7, 248}, {7, 0, 7, 7}});
    ClOpenDynamicCalibration calibration;
    EXPECT_EQ(calibration.GetMaskRegionCount(image, 7), 3);
    EXPECT_EQ(calibration.GetMaskRegionCount(image, 0), 2);
    EXPECT_EQ(calibration.GetMaskRegionCount(image, 248), 1); // 7 is its complement
    EXPECT_EQ(calibration.GetMaskRegionCount(image, 255), 0);
}

TEST(FingerMask, CountsRegionsThatOnlyTouchAtACornerEach) {
    ClTestImage image = Img({{0, 255}, {255, 0}});
    EXPECT_EQ(ClOpenDynamicCalibration().GetMaskRegionCount(image, 0), 2);
    EXPECT_EQ(ClOpenDynamicCalibration().GetMaskRegionCount(image, 255), 2);
}

TEST(FingerMask, CountsNoRegionWithoutLines) {
    ClImage image;
    EXPECT_EQ(ClOpenDynamicCalibration().GetMaskRegionCount(image, 0), 0);
}

TEST(FingerMask, CountsOneRegionInAFullImage) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 33, 21, 1, 0);
    EXPECT_EQ(ClOpenDynamicCalibration().GetMaskRegionCount(image, 0), 1);
}

// EmbraceMask

TEST(FingerMask, EmbracesOneRegionIntoAConvexOne) {
    ClTestImage mask = Shape(150, 170, [](int x, int y) { // an angle, with holes
        const bool bArm =
            (x >= 40 && x < 75 && y >= 40 && y < 130) || (y >= 95 && y < 130 && x >= 40 && x < 120);
        return bArm && !(x % 9 == 0 && y % 7 == 0);
    });
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_EQ(Count(mask, 0) + Count(mask, 255), 150 * 170);
    EXPECT_EQ(ClNaiveLabels(mask).Regions(), 1);
    EXPECT_EQ(Sample(mask, 85, 85), 0); // inside the hull, outside the angle
    EXPECT_EQ(Sample(mask, 115, 45), 255);
    for (const std::vector<int>& aRow : Pixels(mask)) { // one run per line
        int nEnds = 0;
        for (std::size_t x = 1; x < aRow.size(); ++x)
            nEnds += aRow[x - 1] != aRow[x];
        EXPECT_LE(nEnds, 2);
    }
}

TEST(FingerMask, KeepsADiscAboutAsItIs) {
    ClTestImage mask = Disc(200, 200, 100, 100, 60);
    const double dBefore = static_cast<double>(Count(mask, 0));
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_NEAR(static_cast<double>(Count(mask, 0)), dBefore, 0.15 * dBefore);
    EXPECT_EQ(Sample(mask, 100, 100), 0);
}

TEST(FingerMask, EmbracesARegionThatTouchesTheFrame) {
    ClTestImage mask = Shape(160, 120, [](int, int y) { return y >= 30; }); // three borders
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_EQ(mask.Width(), 160);
    EXPECT_EQ(mask.Height(), 120);
    EXPECT_EQ(Sample(mask, 80, 119), 0);
    EXPECT_EQ(Sample(mask, 80, 60), 0);
    EXPECT_EQ(Sample(mask, 80, 2), 255);
}

TEST(FingerMask, EmbracesTheWholePicture) {
    ClTestImage mask = FlatImage(ClImage::eUInt8, 121, 140, 1, 0);
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_EQ(Sample(mask, 60, 70), 0);
    EXPECT_EQ(Sample(mask, 0, 70), 0);
}

TEST(FingerMask, LeavesTwoRegionsAlone) {
    ClTestImage mask = TwoDiscs(90);
    const ClTestImage before = mask;
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), -33);
    ExpectSameImage(mask, before);
}

TEST(FingerMask, LeavesAFingerWithABrokenOffTipAlone) {
    ClTestImage mask = Shape(200, 320, [](int x, int y) {
        return x > 50 && x < 150 && y > 40 && y < 280 && (y < 100 || y > 180);
    });
    const ClTestImage before = mask;
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), -33);
    ExpectSameImage(mask, before);
}

TEST(FingerMask, JoinsRegionsThatNearlyTouch) {
    ClTestImage mask = TwoDiscs(4);
    ASSERT_EQ(ClNaiveLabels(mask).Regions(), 2);
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_EQ(ClNaiveLabels(mask).Regions(), 1);
    EXPECT_EQ(Sample(mask, 102, 80), 0);
    EXPECT_EQ(Sample(mask, 102, 50), 0); // the hull
}

TEST(FingerMask, DropsACrumb) {
    ClTestImage mask = Disc(300, 200, 90, 100, 60);
    for (int y = 20; y < 26; ++y)
        std::memset(mask.LineData(y) + 260, 0, 6);
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), 0);
    EXPECT_EQ(Sample(mask, 262, 22), 255);
}

TEST(FingerMask, FindsNoRegionInAWhiteMask) {
    ClTestImage mask = FlatImage(ClImage::eUInt8, 60, 60, 1, 255);
    EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, cdRidgeDist), -33);
    EXPECT_EQ(Count(mask, 255), 3600);
}

/// The blurs copy, the thresholds keep what is below 10, and the hull remains.
TEST(FingerMask, BlursNothingForARidgeDistanceBelowAHalf) {
    const ClTestImage angle = Img({{255, 255, 255, 255, 255, 255, 255},
                                   {255, 9, 255, 255, 255, 255, 255},
                                   {255, 0, 255, 255, 255, 255, 255},
                                   {255, 0, 10, 255, 255, 255, 255},
                                   {255, 0, 255, 255, 255, 255, 255},
                                   {255, 0, 0, 0, 0, 0, 255},
                                   {255, 255, 255, 255, 255, 255, 255}});
    for (const double dRidgeDist : {0.49, 0.0, -3.0, std::nan("")}) {
        ClTestImage mask = angle;
        EXPECT_EQ(ClOpenDynamicCalibration().EmbraceMask(mask, dRidgeDist), 0);
        EXPECT_EQ(Pixels(mask), Rows({{255, 255, 255, 255, 255, 255, 255},
                                      {255, 0, 255, 255, 255, 255, 255},
                                      {255, 0, 0, 255, 255, 255, 255},
                                      {255, 0, 0, 0, 255, 255, 255},
                                      {255, 0, 0, 0, 0, 255, 255},
                                      {255, 0, 0, 0, 0, 0, 255},
                                      {255, 255, 255, 255, 255, 255, 255}}));
    }
}

TEST(FingerMask, HasNoMemoryForAnAbsurdRidgeDistance) {
    for (const double dRidgeDist : {1e9, std::numeric_limits<double>::infinity()}) {
        ClTestImage mask = Disc(20, 20, 10, 10, 5);
        const ClTestImage before = mask;
        EXPECT_THROWS(ClOpenDynamicCalibration().EmbraceMask(mask, dRidgeDist), ClExBadAlloc, -102,
                      "Memory allocation failed");
        ExpectSameImage(mask, before);
    }
}

// SmoothenMask

TEST(FingerMask, SmoothensAsPlainLoopsDo) {
    for (const double dRidgeDist : {11.7, 10.0, 5.5}) {
        ClTestImage mask = RandomShape(61, 43, 0.3, 5);
        const Rows aTold = NaiveSmooth(mask, static_cast<int>(dRidgeDist) | 1);
        EXPECT_EQ(ClOpenDynamicCalibration().SmoothenMask(mask, dRidgeDist), 0);
        EXPECT_EQ(Pixels(mask), aTold);
    }
}

TEST(FingerMask, ScalesWithoutABlurForARidgeDistanceBelowTwo) {
    for (const double dRidgeDist : {1.9, 0.3, -1.0, std::nan("")}) {
        ClTestImage mask = Img({{0, 1, 5}, {100, 115, 116}, {254, 255, 9}});
        EXPECT_EQ(ClOpenDynamicCalibration().SmoothenMask(mask, dRidgeDist), 0);
        EXPECT_EQ(Pixels(mask), Rows({{0, 2, 11}, {220, 253, 255}, {255, 255, 19}}));
    }
}

// BuildDerivationImages

TEST(FingerMask, FindsAGradientAcrossAStep) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 40, 30, 1, 50);
    for (int y = 0; y < 30; ++y)
        std::memset(image.LineData(y) + 20, 200, 20);
    ClTestImage dx;
    ClTestImage dy;
    ClTestImage length;
    EXPECT_EQ(ClOpenDynamicCalibration().BuildDerivationImages(image, dx, dy, length), 0);
    EXPECT_EQ(dx.DataType(), ClImage::eInt8);
    EXPECT_EQ(length.DataType(), ClImage::eUInt8);
    EXPECT_EQ(Count(dy, 0), 40 * 30);
    EXPECT_NE(Sample(dx, 20, 15), 0);
    EXPECT_EQ(Sample(dx, 5, 15), 0);
    for (int x = 0; x < 40; ++x)
        EXPECT_EQ(Sample(length, x, 15), std::trunc(std::abs(Sample(dx, x, 15)) * 1.414));
    ClTestImage turned = Shape(30, 40, [](int, int y) { return y < 20; });
    EXPECT_EQ(ClOpenDynamicCalibration().BuildDerivationImages(turned, dx, dy, length), 0);
    EXPECT_EQ(Count(dx, 0), 40 * 30);
    EXPECT_NE(Sample(dy, 15, 20), 0);
}
