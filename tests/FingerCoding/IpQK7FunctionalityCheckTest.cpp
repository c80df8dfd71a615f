#include "FingerCoding/IpQK7FunctionalityCheck.h"

#include "FingerCoding/NaiveFunctionalityCheck.h"

#include <utility>

namespace {

using namespace TestSupport;

constexpr int cnSensorWidth = 150;
constexpr int cnSensorHeight = 190;
constexpr int cnInnerX = 75; // far from all that is faded out
constexpr int cnInnerY = 60;

ClTestImage FlatSensor(int nGrey, int nWidth = cnSensorWidth, int nHeight = cnSensorHeight) {
    return TestSupport::FlatImage(ClImage::eUInt8, nWidth, nHeight, 1, nGrey);
}

void PaintSquare(ClImage& Image, int nX, int nY, int nSide, int nGrey) {
    for (int y = nY; y < nY + nSide; ++y)
        for (int x = nX; x < nX + nSide; ++x)
            SetSample(Image, x, y, 0, nGrey);
}

/// Grey values of the empty scanner, with a few specks: light that changes slowly, a little noise.
ClTestImage EmptyScanner(int nWidth, int nHeight, unsigned nSeed) {
    ClTestImage image = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, nSeed);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x) {
            const int nNoise = static_cast<int>(Sample(image, x, y));
            const int nLight = 225 - (x + y) / 12;
            SetSample(image, x, y, 0, nNoise == 77 ? 90 : nLight - nNoise % 4);
        }
    return image;
}

/// Runs the check and compares image and level with the definition.
void ExpectAsDefined(const ClTestImage& In, unsigned char nNoise) {
    ClTestImage in = In;
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.m_nNoise = nNoise;
    ASSERT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
    const Rows aExpected = NaiveDefects(Pixels(In), nNoise);
    EXPECT_EQ(Pixels(out), aExpected);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, NaiveLevel(aExpected));
    EXPECT_EQ(Pixels(in), Pixels(In));
    EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 255.0);
}

// The run

TEST(IpQK7FunctionalityCheck, FindsNothingInAFlatCaptureOfAnyGrey) {
    for (int nGrey = 0; nGrey < 256; ++nGrey) {
        ClTestImage in = FlatSensor(nGrey, 60, 60);
        ClImage out;
        ClIpQK7FunctionalityCheck check;
        check.m_dOutDefectWarningLevel = 7.0;
        EXPECT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
        EXPECT_EQ(check.m_dOutDefectWarningLevel, 0.0) << nGrey;
        EXPECT_EQ(Pixels(out), Pixels(FlatSensor(0, 60, 60))) << nGrey;
    }
}

TEST(IpQK7FunctionalityCheck, CountsTheFaintestDifferenceWithoutNoise) {
    // The Gaussian of a flat 3 * (255 - 200) is 164: a difference of 1, which 0..64 stretches to
    // 16377 >> 12.
    ClTestImage in = FlatSensor(200);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    check.m_nNoise = 0;
    EXPECT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
    EXPECT_EQ(Sample(out, cnInnerX, cnInnerY), 3.0);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, NaiveLevel(Pixels(out)));
    EXPECT_GT(check.m_dOutDefectWarningLevel, 0.0);
}

TEST(IpQK7FunctionalityCheck, WeighsEachPixelOfASingleStrongDefectByAHalf) {
    ClTestImage in = FlatSensor(250);
    PaintSquare(in, cnInnerX, cnInnerY, 5, 0);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    EXPECT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
    long nWhite = 0;
    long nSum = 0;
    for (const std::vector<int>& aLine : Pixels(out))
        for (int n : aLine) {
            nWhite += n == 255 ? 1 : 0;
            nSum += n;
        }
    EXPECT_EQ(Sample(out, cnInnerX + 2, cnInnerY + 2), 255.0);
    EXPECT_GE(nWhite, 9);
    EXPECT_EQ(check.m_dOutDefectWarningLevel,
              static_cast<double>(nWhite) * 0.5 +
                  static_cast<double>(nSum) / (cnSensorWidth * cnSensorHeight) * 10.0);
}

TEST(IpQK7FunctionalityCheck, SeesNothingOnTheSensorsFrame) {
    ClTestImage in = FlatSensor(250);
    PaintSquare(in, 2, cnInnerY, 3, 0);
    PaintSquare(in, cnInnerX, 5, 3, 0);
    PaintSquare(in, 15, cnSensorHeight - 20, 3, 0);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    EXPECT_EQ(check.ApplyParam(in, out, ClImage::eTypeDefault), 0);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, 0.0);
}

TEST(IpQK7FunctionalityCheck, IsTheChainOfItsDefinition) {
    ExpectAsDefined(EmptyScanner(cnSensorWidth, cnSensorHeight, 1), 5);
    ExpectAsDefined(EmptyScanner(137, 163, 2), 0);
    ExpectAsDefined(RandomImage(ClImage::eUInt8, 91, 121, 1, 3), 40);
}

TEST(IpQK7FunctionalityCheck, IsTheChainOfItsDefinitionAtEverySmallSize) {
    unsigned nSeed = 10;
    for (const auto& [nWidth, nHeight] :
         {std::pair(1, 1), std::pair(1, 40), std::pair(40, 1), std::pair(7, 13), std::pair(21, 21),
          std::pair(31, 24), std::pair(33, 99), std::pair(50, 51), std::pair(51, 50),
          std::pair(53, 52), std::pair(64, 100), std::pair(59, 101)}) {
        SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
        ExpectAsDefined(RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, ++nSeed), 5);
    }
}

TEST(IpQK7FunctionalityCheck, WritesOverItsInputWhereBothAreOneImage) {
    const ClTestImage In = EmptyScanner(cnSensorWidth, cnSensorHeight, 4);
    ClTestImage image = In;
    ClIpQK7FunctionalityCheck check;
    EXPECT_EQ(check.ApplyParam(image), 0);
    EXPECT_EQ(Pixels(image), NaiveDefects(Pixels(In), 5));
}

TEST(IpQK7FunctionalityCheck, AnswersForEachRunAlone) {
    ClTestImage dirty = RandomImage(ClImage::eUInt8, 91, 121, 1, 5);
    ClTestImage clean = FlatSensor(255);
    ClImage out;
    ClIpQK7FunctionalityCheck check;
    EXPECT_EQ(check.ApplyParam(dirty, out, ClImage::eTypeDefault), 0);
    EXPECT_GT(check.m_dOutDefectWarningLevel, 0.0);
    EXPECT_EQ(check.ApplyParam(clean, out, ClImage::eTypeDefault), 0);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, 0.0);
}

// Steps

TEST(IpQK7FunctionalityCheck, StressesDifferencesBetweenNoiseAndFullDefect) {
    const Rows aIn = Pixels(RandomImage(ClImage::eUInt8, 83, 71, 1, 6));
    for (const int nNoise : {0, 1, 5, 63}) {
        ClTestImage in = Img(aIn);
        ClImage out;
        ClIpQK7FunctionalityCheck check;
        check.m_nNoise = static_cast<unsigned char>(nNoise);
        check.StressDefects(in, out);
        EXPECT_EQ(Pixels(out), NaiveStressed(aIn, nNoise)) << nNoise;
        EXPECT_EQ(out.DataType(), ClImage::eUInt8);
        EXPECT_EQ(out.Black(), 0.0);
        EXPECT_EQ(out.White(), 255.0);
    }
}

TEST(IpQK7FunctionalityCheck, ReadsTheLargestDifferenceAsALargeOne) {
    // 255 in a surrounding of 0 exceeds 127, 0 in a surrounding of 255 reaches -128: both are
    // white.
    for (const int nGrey : {0, 255}) {
        ClTestImage in = FlatSensor(255 - nGrey);
        PaintSquare(in, cnInnerX, cnInnerY, 9, nGrey);
        ClImage out;
        ClIpQK7FunctionalityCheck check;
        check.StressDefects(in, out);
        EXPECT_EQ(Sample(out, cnInnerX + 4, cnInnerY + 4), 255.0) << nGrey;
    }
}

TEST(IpQK7FunctionalityCheck, PaintsTheSensorMask) {
    for (const auto& [nWidth, nHeight] :
         {std::pair(150, 190), std::pair(373, 400), std::pair(61, 131), std::pair(200, 100),
          std::pair(200, 99), std::pair(31, 60), std::pair(200, 26), std::pair(200, 25),
          std::pair(200, 24), std::pair(30, 30), std::pair(29, 130), std::pair(5, 120),
          std::pair(1, 1), std::pair(1, 200), std::pair(200, 1)}) {
        SCOPED_TRACE(std::to_string(nWidth) + " x " + std::to_string(nHeight));
        ClTestImage in = FlatSensor(17, nWidth, nHeight);
        ClImage mask;
        ClIpQK7FunctionalityCheck::BuildSensorMask(in, mask);
        EXPECT_EQ(Pixels(mask), NaiveSensorMask(nWidth, nHeight));
        EXPECT_EQ(Pixels(in), Pixels(FlatSensor(17, nWidth, nHeight)));
        EXPECT_EQ(mask.PelsX(), in.PelsX());
        EXPECT_EQ(mask.White(), 255.0);
    }
}

TEST(IpQK7FunctionalityCheck, CutsTheLowerCornersInTrianglesOf59Pixels) {
    ClTestImage in = FlatSensor(0, 200, 300);
    ClImage mask;
    ClIpQK7FunctionalityCheck::BuildSensorMask(in, mask);
    const auto MaskedFromLeft = [&](int y) {
        int x = 0;
        while (x < 200 && Sample(mask, x, y) == 255.0)
            ++x;
        return x;
    };
    EXPECT_EQ(MaskedFromLeft(24), 200);
    EXPECT_EQ(MaskedFromLeft(25), 15);
    EXPECT_EQ(MaskedFromLeft(200 + 26), 15);
    EXPECT_EQ(MaskedFromLeft(200 + 27), 16);
    EXPECT_EQ(MaskedFromLeft(200 + 84), 50);
    EXPECT_EQ(MaskedFromLeft(200 + 85), 200);
    EXPECT_EQ(Sample(mask, 200 - 50, 200 + 84), 255.0);
    EXPECT_EQ(Sample(mask, 200 - 51, 200 + 84), 0.0);
}

TEST(IpQK7FunctionalityCheck, PaintsTheSensorMaskOverItsInput) {
    ClTestImage image = FlatSensor(17);
    ClIpQK7FunctionalityCheck::BuildSensorMask(image, image);
    EXPECT_EQ(Pixels(image), NaiveSensorMask(cnSensorWidth, cnSensorHeight));
}

TEST(IpQK7FunctionalityCheck, FadesTheSensorsBorder) {
    for (const auto& [nWidth, nHeight] :
         {std::pair(150, 190), std::pair(97, 143), std::pair(40, 60), std::pair(20, 200)}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, nWidth, nHeight, 1, 7);
        ClImage out;
        ClIpQK7FunctionalityCheck::FadeSensorBorder(in, out);
        EXPECT_EQ(Pixels(out), NaiveFaded(Pixels(in))) << nWidth;
        ClIpQK7FunctionalityCheck::FadeSensorBorder(in, in);
        EXPECT_EQ(Pixels(in), Pixels(out)) << nWidth;
    }
}

TEST(IpQK7FunctionalityCheck, LeavesTheMiddleOfTheSensorAlone) {
    ClTestImage in = FlatSensor(255);
    ClImage out;
    ClIpQK7FunctionalityCheck::FadeSensorBorder(in, out);
    EXPECT_EQ(Sample(out, 14, cnInnerY), 255 - 255 * 11 / 21); // 11 of 21 columns are frame
    EXPECT_EQ(Sample(out, 4, cnInnerY), 0.0);
    EXPECT_EQ(Sample(out, 25, cnInnerY), 255.0);
    EXPECT_EQ(Sample(out, cnInnerX, cnInnerY), 255.0);
    EXPECT_EQ(Sample(out, cnInnerX, 34), 255 - 255 / 21);
}

TEST(IpQK7FunctionalityCheck, LimitsTheLevelTo100) {
    ClIpQK7FunctionalityCheck check;
    const auto LevelOf = [&](const Rows& aRows) {
        ClTestImage image = Img(aRows);
        return check.CalcDefectWarningLevel(image);
    };
    EXPECT_EQ(LevelOf({{0, 0}, {0, 0}}), 0.0);
    EXPECT_EQ(LevelOf({{1, 0}, {0, 0}}), 2.5);
    EXPECT_EQ(LevelOf({{254, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}), 100.0);
    EXPECT_EQ(LevelOf({{10, 10}, {10, 9}}), 97.5);
    EXPECT_EQ(LevelOf({{10, 10}, {10, 10}}), 100.0);
    Rows aOneWhite(10, std::vector<int>(51));
    aOneWhite[3][3] = 255; // the mean is a half
    EXPECT_EQ(LevelOf(aOneWhite), 5.5);
    EXPECT_EQ(check.m_dOutDefectWarningLevel, 0.0);
}

} // namespace
