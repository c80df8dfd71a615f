// The weights of dirt and the warning levels, against sums by hand and plain loops.

#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "support/Throws.h"

#include <algorithm>
#include <cmath>

using namespace TestSupport;

namespace {

double NaiveDirt(const ClImage& In, const ClImage& Mask) {
    double dSum = 0.0; // integers below 2^53: exact
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x) {
            const double dDark = std::max(205.0 - Sample(In, x, y), 0.0);
            dSum += Sample(Mask, x, y) * std::floor(dDark * dDark / 255.0);
        }
    return dSum / 2550.0;
}

double NaiveDry(const ClImage& Prob, const ClImage& Mask) {
    double dWeights = 0.0;
    double dExcess = 0.0;
    for (int y = 0; y < Prob.Height(); ++y)
        for (int x = 0; x < Prob.Width(); ++x) {
            const double dWeight = 255.0 - Sample(Mask, x, y);
            dWeights += dWeight;
            if (Sample(Prob, x, y) > 128.0)
                dExcess += (Sample(Prob, x, y) - 128.0) * dWeight;
        }
    return std::min(100.0, std::max(0.0, 2.0 * (dExcess / dWeights - 5.0)));
}

double DirtOf(ClTestImage In, ClTestImage Mask) {
    return ClOpenDynamicCalibration().CalcDirtWarningLevel(In, Mask);
}

double DryOf(ClTestImage Prob, ClTestImage Mask) {
    return ClOpenDynamicCalibration().CalcDryFingerWarningLevel(Prob, Mask);
}

double Dirt2Of(ClTestImage In, ClTestImage Mask) {
    return ClOpenDynamicCalibration().CalcDirtWarningLevel2(In, Mask);
}

ClTestImage Flat(int nValue, int nWidth = 30, int nHeight = 20) {
    return FlatImage(ClImage::eUInt8, nWidth, nHeight, 1, nValue);
}

constexpr const char* cszPlanes = "Only grey-scale images with 8-bit color-depth are supported.";

/// Fields of 8 by 8 pixels.
ClTestImage Checkerboard(int nWidth, int nHeight) {
    ClTestImage image = Flat(0, nWidth, nHeight);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            image.LineData(y)[x] = (x / 8 + y / 8) % 2 == 0 ? 90 : 250;
    return image;
}

} // namespace

// Weights

TEST(WarningLevels, WeighDarknessByItsSquare) {
    const ClIpQK7DynamicCalibration30 calibration;
    for (int v = 0; v < 256; ++v) {
        const double dDark = std::max(205.0 - v, 0.0);
        EXPECT_EQ(calibration.m_aDirtWeights[v], std::min(255.0, std::floor(dDark * dDark / 255.0)))
            << v;
    }
    EXPECT_EQ(calibration.m_aDirtWeights[0], 164);
    EXPECT_EQ(calibration.m_aDirtWeights[100], 43);
    EXPECT_EQ(calibration.m_aDirtWeights[128], 23);
    EXPECT_EQ(calibration.m_aDirtWeights[180], 2);
    EXPECT_EQ(calibration.m_aDirtWeights[189], 1);
    EXPECT_EQ(calibration.m_aDirtWeights[190], 0);
    EXPECT_EQ(calibration.m_aDirtWeights[255], 0);
}

// Dirt

TEST(WarningLevels, CountABlackSpeckPixelAs16Point4) {
    ClTestImage image = Flat(255);
    image.LineData(7)[11] = 0;
    EXPECT_DOUBLE_EQ(DirtOf(image, Flat(255)), 16.4);
    image.LineData(7)[12] = 0;
    EXPECT_DOUBLE_EQ(DirtOf(image, Flat(255)), 32.8);
}

TEST(WarningLevels, FindNoDirtInAWhiteCapture) {
    EXPECT_EQ(DirtOf(Flat(255), Flat(255)), 0.0);
}

TEST(WarningLevels, FindNoDirtFromAGreyValueOf190On) {
    for (int v = 190; v < 256; ++v)
        EXPECT_EQ(DirtOf(Flat(v), Flat(255)), 0.0);
    EXPECT_GT(DirtOf(Flat(189), Flat(255)), 0.0);
}

TEST(WarningLevels, FindNoDirtBehindAMaskOfZero) {
    EXPECT_EQ(DirtOf(Flat(0), Flat(0)), 0.0);
}

/// Twice the background with the same shade is twice the dirt.
TEST(WarningLevels, DoNotNormaliseDirtByTheBackground) {
    EXPECT_DOUBLE_EQ(DirtOf(Flat(100, 30, 40), Flat(255, 30, 40)),
                     2.0 * DirtOf(Flat(100, 30, 20), Flat(255, 30, 20)));
}

TEST(WarningLevels, SumDirtAsPlainLoopsDo) {
    for (const int nWidth : {1, 2, 3, 4, 61}) {
        const ClTestImage image = RandomImage(ClImage::eUInt8, nWidth, 43, 1, 11);
        const ClTestImage mask = RandomImage(ClImage::eUInt8, nWidth, 43, 1, 12);
        EXPECT_DOUBLE_EQ(DirtOf(image, mask), NaiveDirt(image, mask));
    }
}

/// 164 * 255 * 409600 is beyond 32 bits.
TEST(WarningLevels, SumDirtBeyond32Bits) {
    EXPECT_DOUBLE_EQ(DirtOf(Flat(0, 640, 640), Flat(255, 640, 640)), 164.0 * 409600.0 / 10.0);
}

// Dry finger

TEST(WarningLevels, FindADryFingerByItsExcess) {
    struct StCase {
        int m_nProb;
        double m_dLevel;
    };
    for (const StCase& Case :
         {StCase{0, 0.0}, StCase{128, 0.0}, StCase{132, 0.0}, StCase{133, 0.0}, StCase{134, 2.0},
          StCase{182, 98.0}, StCase{183, 100.0}, StCase{184, 100.0}, StCase{255, 100.0}})
        EXPECT_EQ(DryOf(Flat(Case.m_nProb), Flat(0)), Case.m_dLevel) << Case.m_nProb;
}

/// Half of 20 is a mean excess of 10.
TEST(WarningLevels, WeighTheDecisionValueWithoutExcess) {
    EXPECT_EQ(DryOf(Img({{148, 128}}), Img({{0, 0}})), 10.0);
    EXPECT_EQ(DryOf(Img({{148, 0}}), Img({{0, 0}})), 10.0);
}

/// 153 to 102 are three fifths of the weights: 3/5 * 20 - 5.
TEST(WarningLevels, WeighExcessByTheComplementOfTheMask) {
    EXPECT_EQ(DryOf(Img({{148, 128, 255}}), Img({{102, 153, 255}})), 2.0 * (12.0 - 5.0));
}

TEST(WarningLevels, FindNoDryFingerWithoutWeights) {
    EXPECT_EQ(DryOf(Flat(255), Flat(255)), 0.0);
}

TEST(WarningLevels, SumExcessAsPlainLoopsDo) {
    for (const int nWidth : {1, 2, 3, 4, 61}) {
        const ClTestImage prob = RandomImage(ClImage::eUInt8, nWidth, 43, 1, 21);
        const ClTestImage mask = RandomImage(ClImage::eUInt8, nWidth, 43, 1, 22);
        EXPECT_DOUBLE_EQ(DryOf(prob, mask), NaiveDry(prob, mask));
        EXPECT_GT(NaiveDry(prob, mask), 0.0);
    }
}

// The other dirt level

TEST(WarningLevels, BoundTheOtherDirtLevelFromBelow) {
    EXPECT_EQ(Dirt2Of(Flat(200, 150, 150), Flat(255, 150, 150)), 100.0);
    EXPECT_EQ(Dirt2Of(RandomImage(ClImage::eUInt8, 150, 150, 1, 2), Flat(0, 150, 150)), 100.0);
}

/// Sum of the defects, less what the mask takes away, at the given noise.
double NaiveRest(ClTestImage In, const ClTestImage& Mask, unsigned char nNoise) {
    ClIpQK7FunctionalityCheck check;
    check.m_nNoise = nNoise;
    ClTestImage defects;
    EXPECT_EQ(check.ApplyParam(In, defects, ClImage::eTypeDefault), 0);
    double dSum = 0.0;
    for (int y = 0; y < In.Height(); ++y)
        for (int x = 0; x < In.Width(); ++x)
            dSum += std::max(0.0, Sample(defects, x, y) - (255.0 - Sample(Mask, x, y)));
    return dSum;
}

TEST(WarningLevels, MeasureTheOtherDirtLevelWithoutNoise) {
    ClTestImage image = BlankImage(ClImage::eUInt8, 190, 210); // waves that are mostly faint
    ClTestImage mask = RandomImage(ClImage::eUInt8, 190, 210, 1, 32);
    for (int y = 0; y < 210; ++y)
        for (int x = 0; x < 190; ++x) {
            const double dWave = 200.0 + 0.2 * (x - 95) * std::sin(0.3 * x) * std::cos(0.3 * y);
            SetSample(image, x, y, 0, std::floor(dWave));
            mask.LineData(y)[x] |= 0xC0;
        }
    const ClTestImage imageBefore = image;
    const ClTestImage maskBefore = mask;
    const double dRest = NaiveRest(image, mask, 0);
    EXPECT_DOUBLE_EQ(ClOpenDynamicCalibration().CalcDirtWarningLevel2(image, mask), 0.0005 * dRest);
    EXPECT_GT(0.0005 * dRest, 100.0); // above the bound
    EXPECT_NE(NaiveRest(image, mask, 5), dRest);
    ExpectSameImage(image, imageBefore);
    ExpectSameImage(mask, maskBefore);
}

// Images that do not fit

TEST(WarningLevels, AreZeroWithoutLines) {
    EXPECT_EQ(DirtOf(ClTestImage(), ClTestImage()), 0.0);
    EXPECT_EQ(DryOf(ClTestImage(), ClTestImage()), 0.0);
    EXPECT_EQ(DirtOf(Flat(0), ClTestImage()), 0.0);
    EXPECT_EQ(DryOf(ClTestImage(), Flat(0)), 0.0);
}

/// A checkerboard has a level of its own, far above the bound; no difference leaves the bound.
TEST(WarningLevels, AreTheBoundForTheOtherDirtLevelWhereNothingIsLeft) {
    const ClTestImage dirty = Checkerboard(120, 160);
    EXPECT_GT(Dirt2Of(dirty, Flat(255, 120, 160)), 100.0);
    EXPECT_EQ(Dirt2Of(dirty, Flat(255, 120, 159)), 100.0); // unequal sizes
    EXPECT_EQ(Dirt2Of(ClTestImage(), Flat(255)), 100.0);   // no capture
}

TEST(WarningLevels, NeedAMaskForTheOtherDirtLevel) {
    EXPECT_THROWS(Dirt2Of(Flat(0), ClTestImage()), ClException, -33,
                  "Input pixel type \"unknown\" not supported by processor.");
}

TEST(WarningLevels, RefuseImagesOfUnequalSize) {
    for (const auto& [nWidth, nHeight] : {std::pair{31, 20}, {29, 20}, {30, 21}, {30, 19}}) {
        EXPECT_THROWS(DirtOf(Flat(0, nWidth, nHeight), Flat(255)), ClExTessarin, -14,
                      "The image is too small or too big.");
        EXPECT_THROWS(DryOf(Flat(0, nWidth, nHeight), Flat(255)), ClExTessarin, -14,
                      "The image is too small or too big.");
    }
}

TEST(WarningLevels, RefuseOtherPixelTypesAndPlanes) {
    const ClTestImage wide = BlankImage(ClImage::eUInt16, 30, 20);
    EXPECT_THROWS(DirtOf(wide, Flat(255)), ClException, -101,
                  "Image Type is not the assigned type");
    EXPECT_THROWS(DryOf(Flat(255), wide), ClException, -101, "Image Type is not the assigned type");
    const ClTestImage planes = BlankImage(ClImage::eUInt8, 30, 20, 3);
    EXPECT_THROWS(DirtOf(planes, Flat(255)), ClExTessarin, -11, cszPlanes);
    EXPECT_THROWS(DryOf(Flat(255), planes), ClExTessarin, -11, cszPlanes);
}

TEST(WarningLevels, RefuseImagesWithoutPixels) {
    ClTestImage image = Flat(255);
    ClImage layout;
    layout.Attach(nullptr, image);
    ClOpenDynamicCalibration calibration;
    EXPECT_TESSARIN(calibration.CalcDirtWarningLevel(layout, image), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_TESSARIN(calibration.CalcDirtWarningLevel(image, layout), QMT_ERROR_PARAM_IS_MISSING);
    EXPECT_TESSARIN(calibration.CalcDryFingerWarningLevel(image, layout),
                    QMT_ERROR_PARAM_IS_MISSING);
}
