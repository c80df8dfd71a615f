#include "FingerCoding/IpContrastMask2.h"

#include "FingerCoding/WorkScale.h"
#include "ImageProcessing/MaskCases.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using TestSupport::cszPels;

using namespace TestSupport;

/// 250 dots per inch, the resolution of the work: nothing is rescaled.
constexpr int cnWorkPels = 9842;

ClTestImage FlatAtPels(int nWidth, int nHeight, int nValue, int nPels = cnWorkPels) {
    ClTestImage image = FlatImage(ClImage::eUInt8, nWidth, nHeight, 1, nValue);
    image.SetPelsX(nPels);
    image.SetPelsY(nPels);
    return image;
}

void Paint(ClImage& Image, int nX, int nY, int nWidth, int nHeight, int nValue) {
    for (int y = nY; y < nY + nHeight; ++y)
        for (int x = nX; x < nX + nWidth; ++x)
            SetSample(Image, x, y, 0, nValue);
}

/// Without mean, frame and least area, unless a test says so.
class IpContrastMask2 : public testing::Test {
protected:
    IpContrastMask2() {
        m_Ip.m_pInOutMask = &m_Mask;
        m_Ip.m_dRidgeDist = 0.5;
        m_Ip.m_nBorderWidth = 0;
        m_Ip.m_dMinFgBlobSize = 0.0;
    }

    long Run(ClTestImage in) {
        m_Mask.Init();
        m_Ip.m_pInImage = &in;
        return m_Ip.Apply();
    }

    /// The same with a probability image.
    long RunWithProb(const ClTestImage& In) {
        m_Ip.m_pOptOutProbImage = &m_Prob;
        const long nResult = Run(In);
        m_Ip.m_pOptOutProbImage = nullptr;
        return nResult;
    }

    std::array<double, 4> LastStep() const { return StepsOf(m_Mask).back(); }

    ClIpContrastMask2 m_Ip;
    ClMask2 m_Mask;
    ClTestImage m_Prob;
};

// Threshold

TEST_F(IpContrastMask2, TakesWhatReachesTheThreshold) {
    m_Ip.m_dThresholdFactor = 10.0; // 80
    EXPECT_EQ(Run(FlatAtPels(20, 10, 10)), 0);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 10u);
    EXPECT_EQ(Run(FlatAtPels(20, 10, 9)), -15);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 0u);
}

TEST_F(IpContrastMask2, TruncatesTheThreshold) {
    m_Ip.m_dScaleFactor = 7.8;
    m_Ip.m_dThresholdFactor = 10.1; // 78.78
    EXPECT_EQ(Run(FlatAtPels(20, 10, 10)), 0);
    m_Ip.m_dThresholdFactor = 10.2; // 79.56
    EXPECT_EQ(Run(FlatAtPels(20, 10, 10)), -15);
}

TEST_F(IpContrastMask2, TakesTheThresholdAsAByte) {
    m_Ip.m_dThresholdFactor = 40.0; // 320, that is 64
    EXPECT_EQ(Run(FlatAtPels(20, 10, 8)), 0);
    EXPECT_EQ(Run(FlatAtPels(20, 10, 7)), -15);
}

TEST_F(IpContrastMask2, WithProbabilitiesTakesWhatReachesTwiceTheThresholdLess128) {
    m_Ip.m_dThresholdFactor = 10.0; // 80: 32 with probabilities
    EXPECT_EQ(RunWithProb(FlatAtPels(20, 10, 4)), 0);
    EXPECT_EQ(RunWithProb(FlatAtPels(20, 10, 3)), -15);
    EXPECT_EQ(Run(FlatAtPels(20, 10, 4)), -15);
    m_Ip.m_dThresholdFactor = 20.0; // 160: 192 with probabilities
    EXPECT_EQ(Run(FlatAtPels(20, 10, 20)), 0);
    EXPECT_EQ(RunWithProb(FlatAtPels(20, 10, 23)), -15);
    EXPECT_EQ(RunWithProb(FlatAtPels(20, 10, 24)), 0);
    m_Ip.m_dThresholdFactor = 16.0; // 128 either way
    for (int n : {15, 16})
        EXPECT_EQ(Run(FlatAtPels(20, 10, n)), RunWithProb(FlatAtPels(20, 10, n)));
}

TEST_F(IpContrastMask2, GivesMuchContrastALowProbability) {
    m_Ip.m_dThresholdFactor = 10.0;
    ClTestImage in = FlatAtPels(8, 4, 10);
    Paint(in, 2, 0, 2, 4, 0);
    Paint(in, 4, 0, 2, 4, 12);
    Paint(in, 6, 0, 2, 4, 31);
    RunWithProb(in);
    // 80, 0, 96 and 248, each less 80 and more 128, from 255
    EXPECT_EQ(Pixels(m_Prob), Rows(4, {127, 127, 207, 207, 111, 111, 0, 0}));
}

// Mean

TEST_F(IpContrastMask2, AveragesOverTheRidgeDistance) {
    // One bright pixel becomes a square of the width of the mean.
    ClTestImage in = FlatAtPels(61, 61, 0);
    SetSample(in, 30, 30, 0, 255);
    m_Ip.m_dScaleFactor = m_Ip.m_dThresholdFactor = 1.0;
    m_Ip.m_dMidRotWidthFactor1 = 1.0;
    const std::pair<int, int> aWidths[] = {{0, 1},  {1, 1},   {2, 1},   {3, 5},   {4, 5},
                                           {5, 5},  {6, 5},   {7, 9},   {8, 9},   {9, 9},
                                           {10, 9}, {11, 13}, {12, 13}, {13, 13}, {14, 13}};
    for (const auto& [nRidgeDist, nWidth] : aWidths) {
        m_Ip.m_dRidgeDist = nRidgeDist + 0.5;
        EXPECT_EQ(Run(in), 0);
        const double d = (61 - nWidth) / 2;
        EXPECT_EQ(LastStep(), (std::array<double, 4>{d, d, 1.0 * nWidth, 1.0 * nWidth}))
            << nRidgeDist;
    }
}

TEST_F(IpContrastMask2, AveragesOver13PixelsOfTheWorkAsTheFingerMaskWantsIt) {
    ClTestImage in = FlatAtPels(122, 122, 0, cnTestPels);
    Paint(in, 60, 60, 2, 2, 255);
    m_Ip.m_dScaleFactor = m_Ip.m_dThresholdFactor = 1.0;
    m_Ip.m_dRidgeDist = 11.7;
    m_Ip.m_dMidRotWidthFactor1 = 2.1;
    EXPECT_EQ(Run(in), 0);
    // Columns 24 to 36 begin at 48 and 72; every line is there twice.
    EXPECT_EQ(RunsOf(m_Mask).front(), (std::array<long, 3>{0, 24, 0}));
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 26u);
    EXPECT_EQ(LastStep(), (std::array<double, 4>{48, 48, 25, 26}));
}

TEST_F(IpContrastMask2, ReadsNoOtherWidthFactor) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 60, 50, 1, 7);
    m_Ip.m_dRidgeDist = 6.0;
    Run(in);
    const ClMask2 mask = m_Mask;
    m_Ip.m_dMidRotWidthFactor2 = m_Ip.m_dMidRotWidthFactor3 = 3.0;
    Run(in);
    EXPECT_EQ(m_Mask, mask);
}

// Amplification and frame

TEST_F(IpContrastMask2, FillsASpeckByTheMedianAndKeepsOneThatIsBright) {
    ClTestImage in = FlatAtPels(20, 9, 0);
    Paint(in, 2, 2, 5, 5, 20);
    SetSample(in, 4, 4, 0, 0);
    Paint(in, 12, 3, 1, 2, 20);
    EXPECT_EQ(Run(in), 0);
    EXPECT_EQ(
        RunsOf(m_Mask),
        (RunList{{0, 4, 0}, {0, 4, 1}, {10, 10, 1}, {0, 4, 2}, {10, 10, 2}, {0, 4, 3}, {0, 4, 4}}));
}

TEST_F(IpContrastMask2, BlackensTheFrameOfTheSmallImage) {
    m_Ip.m_nBorderWidth = 3;
    EXPECT_EQ(Run(FlatAtPels(31, 21, 50)), 0);
    EXPECT_EQ(LastStep(), (std::array<double, 4>{3, 3, 25, 15}));
    EXPECT_EQ(Run(FlatAtPels(62, 42, 50, cnTestPels)), 0);
    EXPECT_EQ(LastStep(), (std::array<double, 4>{6, 6, 49, 30}));
    m_Ip.m_nBorderWidth = 11;
    EXPECT_EQ(Run(FlatAtPels(31, 21, 50)), -15);
}

// Resolution

TEST_F(IpContrastMask2, KeepsTheSizeOfAnInputAtTheWorkingResolution) {
    for (int nPels : {9842, 9843}) {
        ClTestImage in = FlatAtPels(45, 33, 0, nPels);
        Paint(in, 7, 9, 31, 17, 50);
        EXPECT_EQ(RunWithProb(in), 0);
        EXPECT_EQ(RunsOf(m_Mask).size(), 33u); // all, by the threshold with probabilities
        EXPECT_EQ(m_Prob.Width(), 45);
        EXPECT_EQ(m_Prob.PelsX(), nPels);
        EXPECT_EQ(Sample(m_Prob, 7, 9), 0.0);
        EXPECT_EQ(Sample(m_Prob, 6, 9), 183.0);
        EXPECT_EQ(Run(in), 0);
        EXPECT_EQ(LastStep(), (std::array<double, 4>{7, 9, 31, 17}));
    }
}

TEST_F(IpContrastMask2, WorksAtAnotherResolution) {
    m_Ip.m_dWorkDpi = 500.0;
    ClTestImage in = FlatAtPels(45, 33, 0, cnTestPels);
    Paint(in, 7, 9, 31, 17, 50);
    EXPECT_EQ(Run(in), 0);
    EXPECT_EQ(LastStep(), (std::array<double, 4>{7, 9, 31, 17}));
}

TEST_F(IpContrastMask2, RefusesAnInputWithoutResolution) {
    for (int nPels : {0, -1, INT_MIN})
        for (bool bX : {true, false}) {
            ClTestImage in = FlatAtPels(20, 10, 50);
            bX ? in.SetPelsX(nPels) : in.SetPelsY(nPels);
            EXPECT_THROWS(RunWithProb(in), ClExTessarin, -13, cszPels);
            EXPECT_EQ(m_Mask, ClMask2());
            ExpectEmptyImage(m_Prob);
        }
}

TEST_F(IpContrastMask2, RefusesAResolutionThatLeavesNoSize) {
    const auto ExpectNoArea = [this](const ClTestImage& In) {
        m_Prob.Delete();
        EXPECT_THROWS(RunWithProb(In), ClException, -101, "Image area must be positive");
        EXPECT_EQ(m_Mask, ClMask2());
        ExpectEmptyImage(m_Prob);
    };
    for (double d : {0.0, -250.0, std::numeric_limits<double>::quiet_NaN(), 1e-300, 0.01}) {
        m_Ip.m_dWorkDpi = d;
        ExpectNoArea(FlatAtPels(20, 10, 50));
    }
    m_Ip.m_dWorkDpi = 0.1;
    ExpectNoArea(FlatAtPels(20, 10, 50, 39370000));
}

/// The axes shrink by one factor, that of the horizontal resolution.
TEST_F(IpContrastMask2, RefusesAVerticalResolutionThatTheWorkLeavesNothingOf) {
    ClTestImage in = FlatAtPels(20, 10, 50, 2 * cnWorkPels + 2);
    in.SetPelsY(2);
    EXPECT_THROWS(Run(in), ClException, -101, "Image area must be positive");
    in.SetPelsY(3); // 1.5 is 1
    EXPECT_EQ(Run(in), 0);
}

TEST_F(IpContrastMask2, RefusesAResolutionThatLeadsToAnAbsurdSize) {
    for (double d : {1e9, 1e300, std::numeric_limits<double>::infinity()}) {
        m_Ip.m_dWorkDpi = d;
        EXPECT_THROWS(Run(FlatAtPels(20, 10, 50)), ClExTessarin, -13, cszPels);
    }
    m_Ip.m_dWorkDpi = 250.0;
    EXPECT_THROWS(Run(FlatAtPels(20, 10, 50, 1)), ClExTessarin, -13, cszPels);
}

namespace {

/// The layout of an image, without a buffer.
void Check(int nWidth, int nHeight, int nPelsX, int nPelsY) {
    ClImage layout;
    layout.Attach(nullptr, ClImage::eUInt8, nWidth, nHeight, 1, nPelsX, nPelsY);
    ClIpContrastMask2().CheckWorkSize(layout);
}

} // namespace

/// At 19685 per metre the work takes 9842: 8192 columns become 4095.79, rounded up, and 8193 one
/// more.
TEST_F(IpContrastMask2, WorksOnAtMost4096PixelsOfAnAxis) {
    Check(8192, 100, 19685, 19685);
    Check(100, 8192, 19685, 19685);
    EXPECT_THROWS(Check(8193, 100, 19685, 19685), ClExTessarin, -13, cszPels);
    EXPECT_THROWS(Check(100, 8193, 19685, 19685), ClExTessarin, -13, cszPels);
    Check(4096, 100, cnWorkPels, cnWorkPels);
    EXPECT_THROWS(Check(4097, 100, cnWorkPels, cnWorkPels), ClExTessarin, -13, cszPels);
}

TEST_F(IpContrastMask2, WorksOnAtMost8MillionPixels) {
    Check(4000, 2000, cnWorkPels, cnWorkPels);
    Check(2000, 4000, cnWorkPels, cnWorkPels);
    EXPECT_THROWS(Check(2589, 3090, cnWorkPels, cnWorkPels), ClExTessarin, -13, cszPels); // by 10
    EXPECT_THROWS(Check(4000, 2001, cnWorkPels, cnWorkPels), ClExTessarin, -13, cszPels);
    EXPECT_THROWS(Check(2001, 4000, cnWorkPels, cnWorkPels), ClExTessarin, -13, cszPels);
}

/// One factor serves both axes, that of the horizontal resolution.
TEST_F(IpContrastMask2, LimitsTheWorkByTheHorizontalResolution) {
    Check(12, 6, 30, 60); // 328 times as wide and as high: 3937 by 1969
    EXPECT_THROWS(Check(13, 6, 30, 60), ClExTessarin, -13, cszPels);
    EXPECT_THROWS(Check(12, 7, 30, 60), ClExTessarin, -13, cszPels);
    Check(12, 4096, 9842, 1);
    EXPECT_THROWS(Check(12, 4097, 9842, 1), ClExTessarin, -13, cszPels);
}

TEST_F(IpContrastMask2, RefusesTooLargeAWorkBeforeItMakesAnything) {
    ClTestImage in = FlatAtPels(70, 70, 50, 30);
    EXPECT_THROWS(RunWithProb(in), ClExTessarin, -13, cszPels);
    EXPECT_EQ(m_Mask, ClMask2());
    ExpectEmptyImage(m_Prob);
}

// Mask

TEST_F(IpContrastMask2, DropsBlobsBelowTheLeastArea) {
    m_Ip.m_dMinFgBlobSize = 16.0; // (400 * 0.09842)^2 = 1549.8 pixels
    ClTestImage in = FlatAtPels(60, 60, 0);
    Paint(in, 10, 10, 40, 38, 50);
    Paint(in, 10, 48, 28, 1, 50);
    EXPECT_EQ(Run(in), -15); // 1548
    SetSample(in, 38, 48, 0, 50);
    EXPECT_EQ(Run(in), 0);
    EXPECT_EQ(LastStep(), (std::array<double, 4>{10, 10, 40, 39}));
}

TEST_F(IpContrastMask2, AnswersNoFingerWithoutAFurtherStep) {
    m_Ip.m_dMinFgBlobSize = 16.0;
    ClTestImage in = FlatAtPels(62, 62, 0, cnTestPels);
    Paint(in, 20, 20, 20, 20, 50);
    m_Mask.BuildFromImage(in, 0);
    m_Mask.SetBoundingBox();
    ClTestImage cut = in;
    m_Mask.CutImage(cut);
    m_Ip.m_pInImage = &cut;
    ASSERT_EQ(m_Mask.GetOffsetsCount(), 2);
    EXPECT_EQ(m_Ip.Apply(), -15);
    EXPECT_EQ(m_Mask.GetOffsetsCount(), 2);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 0u);
    EXPECT_EQ(m_Mask.m_nPelsX, cnTestPels);
}

TEST_F(IpContrastMask2, LooksInsideTheMaskAndInItsFrame) {
    ClTestImage in = FlatAtPels(100, 80, 50, cnTestPels);
    ClTestImage where = FlatAtPels(100, 80, 0, cnTestPels);
    Paint(where, 20, 10, 40, 30, 1);
    Paint(where, 60, 30, 20, 20, 1);
    m_Mask.BuildFromImage(where, 0);
    m_Mask.SetBoundingBox(); // (20, 10), 60 by 40
    m_Mask.CutImage(in);
    m_Ip.m_pInImage = &in;
    EXPECT_EQ(m_Ip.Apply(), 0);
    EXPECT_EQ(RunsOf(m_Mask).front(), (std::array<long, 3>{0, 38, 0}));
    EXPECT_EQ(RunsOf(m_Mask).back(), (std::array<long, 3>{40, 58, 39}));
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 40u);
}

TEST_F(IpContrastMask2, AddsTheBoundingBoxToTheStepsOfTheMask) {
    ClTestImage in = FlatAtPels(100, 80, 0, cnTestPels);
    m_Mask.Cut(in, 10, 20, 80, 50);
    Paint(in, 20, 10, 40, 30, 50);
    m_Ip.m_pInImage = &in;
    EXPECT_EQ(m_Ip.Apply(), 0);
    const StepList aSteps = StepsOf(m_Mask);
    ASSERT_EQ(aSteps.size(), 3u);
    const std::array<double, 4> aExpected = {30, 30, 39, 30};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(aSteps[2][i], aExpected[i], 1e-6) << i;
    EXPECT_EQ(RunsOf(m_Mask).front(), (std::array<long, 3>{0, 38, 0}));
}

} // namespace
