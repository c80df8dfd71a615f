#include "FingerCoding/IpBrightnessMask.h"

#include "ImageProcessing/MaskCases.h"
#include "TimerMarks.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using TestSupport::cdInfinity;
using TestSupport::cdNaN;

using namespace TestSupport;

/// Stretches 0 to 255 to itself and filters with width 1: the threshold is sought in the image as
/// it is.
void LeaveTheImage(ClIpBrightnessMask& ip) {
    ip.m_dRidgeDist = 1.0;
    ip.m_bIlFix = false;
    ip.m_dDarkNoisePart = ip.m_dBrightNoisePart = -1.0;
    ip.m_dDilatWidthFactor = ip.m_dLowPassWidthFactor = 0.0;
    ip.m_nDerivationWidth = 1;
    ip.m_dMinAreaMM2 = 0.0;
}

/// An image of 50 columns with so many pixels of each value, in the order of the pairs; what is
/// left of its 60 lines is 255.
ClTestImage ImageWith(const std::vector<std::pair<int, int>>& aCounts) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 50, 60, 1, 255);
    int nPlace = 0;
    for (const auto& [nValue, nCount] : aCounts)
        for (int i = 0; i < nCount; ++i, ++nPlace)
            SetSample(image, nPlace % 50, nPlace / 50, 0, nValue);
    return image;
}

class IpBrightnessMask : public testing::Test {
protected:
    IpBrightnessMask() {
        LeaveTheImage(m_Ip);
        m_Ip.m_pInOutMask = &m_Mask;
        m_Ip.m_pOptOutProbImage = &m_Prob;
    }

    void Run(ClTestImage& rIn) {
        m_Ip.m_pInImage = &rIn;
        EXPECT_EQ(m_Ip.Apply(), 0);
    }

    /// The threshold of an image that begins with a pixel of value 150.
    int Threshold(ClTestImage in) {
        EXPECT_EQ(Sample(in, 0, 0), 150.0);
        m_Mask.Init();
        Run(in);
        return 150 + 128 - static_cast<int>(Sample(m_Prob, 0, 0));
    }

    ClIpBrightnessMask m_Ip;
    ClMask2 m_Mask;
    ClTestImage m_Prob;
};

// Parameters

struct StBrightnessRefusal {
    const char* m_szWords;
    long m_nNumber;
    long m_nLine;
};

void ExpectRefusal(ClIpBrightnessMask& ip, const StBrightnessRefusal& Expected) {
    try {
        ip.Apply();
        ADD_FAILURE() << "not refused: " << Expected.m_szWords;
    } catch (const ClException& e) {
        EXPECT_EQ(Words(e), Expected.m_szWords);
        EXPECT_EQ(e.Number(), Expected.m_nNumber);
        EXPECT_STREQ(e.File(), "FingerCoding/IpBrightnessMask");
        EXPECT_EQ(e.Line(), Expected.m_nLine);
    }
}

TEST(IpBrightnessMaskChecks, ComeInTheirOrder) {
    ClTestImage in = ImageWith({});
    ClIpBrightnessMask ip;
    ip.m_pdRidgeDist = nullptr;
    ip.m_ppInOutMask = nullptr;
    ExpectRefusal(ip, {"m_pInImage is not set", -701, 108});
    ip.m_pInImage = &in;
    ExpectRefusal(ip, {"m_pInImage is not set", -701, 111});
    ip.m_pdRidgeDist = &ip.m_dRidgeDist;
    ExpectRefusal(ip, {"*m_pdRidgeDist is out of range", -35, 113});
    ip.m_dRidgeDist = 0.1;
    ExpectRefusal(ip, {"m_ppInOutMask is not set", -701, 115});
    ip.m_ppInOutMask = &ip.m_pInOutMask;
    ExpectRefusal(ip, {"*m_ppInOutMask is not set", -701, 117});
    ClMask2 mask;
    ip.m_pInOutMask = &mask;
    EXPECT_EQ(ip.Apply(), 0);
}

TEST(IpBrightnessMaskChecks, RefuseARidgeDistanceThatIsNotAboveZero) {
    ClTestImage in = ImageWith({});
    ClMask2 mask;
    ClIpBrightnessMask ip;
    ip.m_pInImage = &in;
    ip.m_pInOutMask = &mask;
    for (double d : {0.0, -0.0, -11.7, -cdInfinity, cdNaN}) {
        ip.m_dRidgeDist = d;
        ExpectRefusal(ip, {"*m_pdRidgeDist is out of range", -35, 113});
    }
    EXPECT_EQ(mask, ClMask2());
}

TEST_F(IpBrightnessMask, ReadsRidgeDistanceAndMaskWhereThePointersSay) {
    ClTestImage in = ImageWith({{150, 5}, {0, 1400}});
    double dRidgeDist = 3.0;
    ClMask2 other;
    ClMask2* pOther = &other;
    m_Ip.m_dRidgeDist = cdNaN;
    m_Ip.m_pdRidgeDist = &dRidgeDist;
    m_Ip.m_pInOutMask = nullptr;
    m_Ip.m_ppInOutMask = &pOther;
    Run(in);
    EXPECT_EQ(m_Mask.GetOffsetsCount(), 0);
    EXPECT_GT(other.m_aEntries.Entries(), 0u);
}

TEST_F(IpBrightnessMask, WorksWithoutProbabilityImage) {
    ClTestImage in = ImageWith({{0, 1500}});
    m_Ip.m_pOptOutProbImage = nullptr;
    Run(in);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 30u);
}

// The threshold. With a derivation width of 1 the derivative is half the difference of the counts
// to either side.

TEST_F(IpBrightnessMask, TakesTheFootOfTheFirstSteepRise) {
    EXPECT_EQ(Threshold(ImageWith({{150, 40}, {0, 1200}, {120, 30}, {180, 500}})), 149);
}

TEST_F(IpBrightnessMask, WantsARiseAboveTheDerivativeThreshold) {
    EXPECT_EQ(Threshold(ImageWith({{150, 30}, {0, 1200}})), 200); // 15.0 is not above 15.0
    EXPECT_EQ(Threshold(ImageWith({{150, 31}, {0, 1200}})), 149);
    m_Ip.m_dDerivativeThresh = 15.5;
    EXPECT_EQ(Threshold(ImageWith({{150, 31}, {0, 1200}})), 200);
}

TEST_F(IpBrightnessMask, TakesTheHighestThresholdWhereNothingRisesSteeply) {
    EXPECT_EQ(Threshold(ImageWith({{150, 3}})), 200);
    m_Ip.m_nMaxBinarizeThreshold = 180;
    EXPECT_EQ(Threshold(ImageWith({{150, 3}})), 180);
    m_Ip.m_nMaxBinarizeThreshold = 255;
    m_Ip.m_nDerivationWidth = 20; // the last derivatives are not defined
    EXPECT_EQ(Threshold(ImageWith({{150, 3}, {255, 2997}})), 235);
}

TEST_F(IpBrightnessMask, EndsAtTheHighestThreshold) {
    m_Ip.m_nMaxBinarizeThreshold = 149;
    EXPECT_EQ(Threshold(ImageWith({{150, 500}, {0, 1200}})), 149);
    m_Ip.m_nMaxBinarizeThreshold = 148;
    EXPECT_EQ(Threshold(ImageWith({{150, 500}, {0, 1200}})), 148);
}

TEST_F(IpBrightnessMask, WithoutMinimumAreaWantsOneDarkPixel) {
    // The first rise has nothing below it; at the second there are the pixels of the first.
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {180, 100}})), 179);
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {140, 1}, {180, 100}})), 149);
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {3, 1}, {180, 100}})), 149); // below the lowest
}

TEST_F(IpBrightnessMask, CountsThePixelsOfTheValueItself) {
    // At 149 the one dark pixel has that value.
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {149, 1}, {180, 100}})), 149);
}

TEST_F(IpBrightnessMask, WantsMoreThanTheMinimumArea) {
    m_Ip.m_dMinAreaMM2 = 1.0; // (100 * 0.19685)^2 = 387.5 pixels
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {0, 387}, {180, 100}})), 179);
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {0, 388}, {180, 100}})), 149);
}

TEST_F(IpBrightnessMask, TakesTheAreaFromTheHorizontalResolution) {
    m_Ip.m_dMinAreaMM2 = 1.0;
    ClTestImage in = ImageWith({{150, 100}, {0, 388}, {180, 100}});
    in.SetPelsY(100 * cnTestPels);
    EXPECT_EQ(Threshold(in), 149);
    in.SetPelsX(2 * cnTestPels);
    EXPECT_EQ(Threshold(in), 179 + 21); // 1550 pixels are never dark enough
}

TEST_F(IpBrightnessMask, BeginsAtTheLowestThreshold) {
    const ClTestImage in = ImageWith({{150, 100}, {0, 400}, {50, 300}});
    m_Ip.m_nMinBinarizeThreshold = 49;
    EXPECT_EQ(Threshold(in), 49);
    m_Ip.m_nMinBinarizeThreshold = 50;
    EXPECT_EQ(Threshold(in), 149);
}

TEST_F(IpBrightnessMask, BeginsWhereTheDerivativeIsDefined) {
    m_Ip.m_nMinBinarizeThreshold = 0;
    m_Ip.m_nDerivationWidth = 60;
    // The counts are level up to 60 and rise from there.
    m_Ip.m_dDerivativeThresh = -1e9;
    EXPECT_EQ(Threshold(ImageWith({{150, 100}, {0, 400}})), 60);
}

TEST_F(IpBrightnessMask, TakesTheLowestThresholdWhereTheLimitsMeet) {
    const ClTestImage in = ImageWith({{150, 100}, {0, 1200}});
    for (int nHigh : {140, 139, 0}) {
        m_Ip.m_nMinBinarizeThreshold = 140;
        m_Ip.m_nMaxBinarizeThreshold = static_cast<unsigned char>(nHigh);
        EXPECT_EQ(Threshold(in), 140) << nHigh;
    }
}

TEST_F(IpBrightnessMask, ReadsNoDerivativeOfAWidthThatDefinesNone) {
    const ClTestImage in = ImageWith({{150, 100}, {0, 1200}});
    m_Ip.m_dDerivativeThresh = -1e9;
    for (int nWidth : {128, 129, 200, 255}) {
        m_Ip.m_nDerivationWidth = static_cast<unsigned char>(nWidth);
        EXPECT_EQ(Threshold(in), nWidth);
    }
    m_Ip.m_nDerivationWidth = 127; // defined at 127 and 128
    EXPECT_EQ(Threshold(in), 127);
}

TEST_F(IpBrightnessMask, MovesTheThresholdToTheMiddleOfTheProbabilities) {
    ClTestImage in = ImageWith({{150, 40}, {149, 1}, {148, 1}, {0, 1200}, {254, 2}});
    Run(in); // threshold 149
    EXPECT_EQ(Sample(m_Prob, 0, 0), 129.0);
    EXPECT_EQ(Sample(m_Prob, 40, 0), 128.0);
    EXPECT_EQ(Sample(m_Prob, 41, 0), 127.0);
    EXPECT_EQ(Sample(m_Prob, 42, 0), 0.0);
    EXPECT_EQ(Sample(m_Prob, 49, 59), 234.0);
    EXPECT_EQ(m_Prob.PelsX(), cnTestPels);
}

// The mask

TEST_F(IpBrightnessMask, TakesWhatIsBelowTheThreshold) {
    ClTestImage in = ImageWith({{100, 1000}});
    m_Ip.m_nMinBinarizeThreshold = m_Ip.m_nMaxBinarizeThreshold = 100;
    Run(in);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 0u);
    m_Ip.m_nMinBinarizeThreshold = m_Ip.m_nMaxBinarizeThreshold = 101;
    Run(in);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 20u);
}

TEST_F(IpBrightnessMask, DropsBlobsBelowAThousandPixels) {
    ClTestImage small = ImageWith({{0, 999}});
    Run(small);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 0u);
    ClTestImage large = ImageWith({{0, 1000}});
    Run(large);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 20u);
}

TEST_F(IpBrightnessMask, ClosesHolesAndAddsTheBoundingBox) {
    ClTestImage in = ImageWith({});
    for (int y = 10; y < 45; ++y)
        for (int x = 5; x < 45; ++x)
            SetSample(in, x, y, 0, x > 18 && x < 24 && y > 20 && y < 24 ? 255 : 0);
    Run(in);
    RunList aRuns;
    for (long y = 0; y < 35; ++y)
        aRuns.push_back({0, 39, y});
    EXPECT_EQ(RunsOf(m_Mask), aRuns);
    EXPECT_EQ(StepsOf(m_Mask), (StepList{{0, 0, 50, 60}, {5, 10, 40, 35}}));
    EXPECT_TRUE(m_Mask.IsValid(in));
}

TEST_F(IpBrightnessMask, LeavesAnImageWithoutDarkAreaWithAnEmptyMask) {
    ClTestImage in = ImageWith({});
    Run(in);
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 0u);
    EXPECT_EQ(StepsOf(m_Mask), (StepList{{0, 0, 50, 60}}));
}

TEST_F(IpBrightnessMask, GoesOnWithTheStepsOfTheMask) {
    ClTestImage in = ImageWith({{255, 1000}, {0, 1500}});
    m_Mask.Cut(in, 10, 15, 35, 40);
    SetRuns(m_Mask, {{3, 4, 0}});
    Run(in);
    EXPECT_EQ(StepsOf(m_Mask), (StepList{{0, 0, 50, 60}, {10, 15, 35, 40}, {10, 20, 35, 30}}));
    EXPECT_EQ(RunsOf(m_Mask).front(), (std::array<long, 3>{0, 34, 0}));
    EXPECT_EQ(m_Mask.m_aEntries.Entries(), 30u);
}

TEST_F(IpBrightnessMask, EvensOutTheLight) {
    // Dim on the left by the light, and ridges on the right.
    ClTestImage in = BlankImage(ClImage::eUInt8, 140, 80);
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 140; ++x) {
            const bool bRidge = x >= 70 && x < 130 && y >= 10 && y < 70 && (x + y) % 8 < 4;
            SetSample(in, x, y, 0, 100 + x - (bRidge ? 80 : 0));
        }
    m_Ip.SetParametersToDefault();
    m_Ip.m_pInOutMask = &m_Mask;
    m_Ip.m_dRidgeDist = 8.0;
    m_Ip.m_dMinAreaMM2 = 0.0;
    m_Ip.m_nImageBorderWidth = 1;
    Run(in);
    ASSERT_EQ(m_Mask.GetOffsetsCount(), 2);
    EXPECT_NEAR(StepsOf(m_Mask).back()[0], 70.0, 5.0);
    EXPECT_NEAR(StepsOf(m_Mask).back()[2], 60.0, 10.0);
    m_Ip.m_bIlFix = false;
    m_Mask.Init();
    Run(in);
    EXPECT_EQ(StepsOf(m_Mask).back()[0], 0.0);
}

} // namespace
