// The brightness mask beside its main path: frame, chain of steps, images that it refuses, settings
// without sense, missing memory.

#include "FingerCoding/IpBrightnessMask.h"
#include "ImageProcessing/MaskCases.h"
#include "TimerMarks.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <climits>
#include <limits>
#include <string>
#include <vector>

namespace {

using namespace TestSupport;

class ClIpOpenBrightness : public ClIpBrightnessMask {
public:
    using ClIpBrightnessMask::CopyWithFrame;
};

/// A dark square on white, of 40 by 40 pixels.
ClTestImage Square() {
    ClTestImage image = FlatImage(ClImage::eUInt8, 61, 57, 1, 230);
    for (int y = 8; y < 48; ++y)
        for (int x = 10; x < 50; ++x)
            SetSample(image, x, y, 0, (x * 7 + y * 3) % 40);
    return image;
}

void Prepare(ClIpBrightnessMask& ip, ClImage& In, ClMask2& Mask, ClImage* pProb) {
    ip.m_pInImage = &In;
    ip.m_dRidgeDist = 5.0;
    ip.m_dMinAreaMM2 = 0.0;
    ip.m_pInOutMask = &Mask;
    ip.m_pOptOutProbImage = pProb;
}

// Frame

TEST(IpBrightnessMaskBorder, PaintsTheRightEndOfLinesBlackWhateverTheValue) {
    ClTestImage in = Img({{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, {11, 12, 13, 14, 15}});
    const ClTestImage before = in;
    ClTestImage out;
    ClIpOpenBrightness::CopyWithFrame(in, out, 1, 99);
    EXPECT_EQ(Pixels(out), Rows({{99, 99, 99, 99, 99}, {99, 7, 8, 9, 0}, {99, 99, 99, 99, 99}}));
    ExpectSameImage(in, before);
}

TEST(IpBrightnessMaskBorder, LetsTheRightEndWinInNarrowImages) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 3, 5, 1, 50);
    ClTestImage out;
    ClIpOpenBrightness::CopyWithFrame(in, out, 2, 99);
    const std::vector<int> aFull = {99, 99, 99};
    EXPECT_EQ(Pixels(out), Rows({aFull, aFull, {99, 0, 0}, aFull, aFull}));
}

TEST(IpBrightnessMaskBorder, IsTheWholeImageWhereThatIsSmall) {
    for (long nWidth : {3L, 4L, 100L, LONG_MAX}) {
        ClTestImage in = FlatImage(ClImage::eUInt8, 2, 5, 1, 50);
        ClTestImage out;
        ClIpOpenBrightness::CopyWithFrame(in, out, nWidth, 99);
        EXPECT_EQ(Pixels(out), Rows(5, {99, 99}));
    }
}

TEST(IpBrightnessMaskBorder, OfNoWidthIsACopyPaddingIncluded) {
    for (long nWidth : {0L, -1L, LONG_MIN}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 1, 3);
        ClTestImage out;
        ClIpOpenBrightness::CopyWithFrame(in, out, nWidth, 99);
        ExpectSameImage(out, in);
        EXPECT_EQ(out.LineData(1)[5], cnPaddingByte);
    }
}

TEST(IpBrightnessMaskBorder, LeavesThePadding) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 4, 1, 3);
    ClTestImage out;
    ClIpOpenBrightness::CopyWithFrame(in, out, 1, 99);
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(out.LineData(y)[5], cnPaddingByte);
}

// Chain

using Names = std::vector<std::string>;

TEST(IpBrightnessMaskChain, RunsItsStepsInOrderAndTimesThem) {
    ClTestImage in = Square();
    ClMask2 mask;
    ClImage prob;
    ClTimerMarks marks;
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames,
              (Names{"ClIpFilterMax", "ClIpInvert", "ClIpFilterMid", "ClIpAdd",
                     "ClIpStretchRangeGlobalNoiseRemoving", "ClIpFilterMin", "ClIpFilterMid",
                     "ClIpOffset", "ClIpBinarizeGlobal", "ClIpBrightnessMask"}));
}

TEST(IpBrightnessMaskChain, LeavesOutWhatIsSwitchedOff) {
    ClTestImage in = Square();
    ClMask2 mask;
    ClTimerMarks marks;
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, nullptr);
    ip.m_bIlFix = false;
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames, (Names{"ClIpStretchRangeGlobalNoiseRemoving", "ClIpFilterMin",
                                     "ClIpFilterMid", "ClIpBinarizeGlobal", "ClIpBrightnessMask"}));
}

TEST(IpBrightnessMaskChain, DoesNotTimeTheStepsOfAnUntimedRun) {
    ClTestImage in = Square();
    ClMask2 mask;
    ClImage prob;
    ClTimerMarks marks;
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, &prob);
    ip.Timer(false);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames, Names());
}

// Images

TEST(IpBrightnessMaskImages, KeepsTheInputAndGivesTheSameAgain) {
    ClTestImage in = Square();
    const ClTestImage before = in;
    ClMask2 first;
    ClTestImage prob;
    ClIpBrightnessMask ip;
    Prepare(ip, in, first, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    ExpectSameImage(in, before);
    ASSERT_EQ(first.GetOffsetsCount(), 2);
    ClMask2 second;
    ClTestImage again = FlatImage(ClImage::eDouble64, 3, 3, 3, 0.5);
    Prepare(ip, in, second, &again);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(first, second);
    ExpectSameImage(again, prob);
}

TEST(IpBrightnessMaskImages, MayHandTheProbabilitiesOutOverTheInput) {
    ClTestImage in = Square();
    ClMask2 mask;
    ClTestImage prob;
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    ClMask2 again;
    Prepare(ip, in, again, &in);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(again, mask);
    ExpectSameImage(in, prob);
}

TEST(IpBrightnessMaskImages, RefusesOtherTypesBeforeAnyOutput) {
    for (unsigned char nType : caPixelTypes)
        for (int nPlanes : {1, 3}) {
            if (nType == ClImage::eUInt8 && nPlanes == 1)
                continue;
            for (bool bIlFix : {true, false}) {
                SCOPED_TRACE(std::to_string(nType) + " " + std::to_string(nPlanes));
                ClTestImage in = RandomImage(nType, 40, 30, nPlanes, 5);
                const ClTestImage before = in;
                ClMask2 mask;
                ClTestImage prob;
                ClIpBrightnessMask ip;
                Prepare(ip, in, mask, &prob);
                ip.m_bIlFix = bIlFix;
                EXPECT_THROWS(ip.Apply(), ClException, -101,
                              nType == ClImage::eUInt8
                                  ? "Color-image not supported in ClHistogram::Create."
                                  : "Image Type is not the assigned type");
                EXPECT_EQ(mask, ClMask2());
                ExpectEmptyImage(prob);
                ExpectSameImage(in, before);
            }
        }
}

TEST(IpBrightnessMaskImages, RefusesAnEmptyImage) {
    for (bool bIlFix : {true, false}) {
        ClImage in;
        ClMask2 mask;
        ClTestImage prob;
        ClIpBrightnessMask ip;
        Prepare(ip, in, mask, &prob);
        ip.m_bIlFix = bIlFix;
        EXPECT_THROW(ip.Apply(), ClException);
        EXPECT_EQ(mask, ClMask2());
        ExpectEmptyImage(prob);
    }
}

TEST(IpBrightnessMaskImages, RefusesAnImageWithoutResolution) {
    for (int nPels : {0, -1, INT_MIN})
        for (bool bX : {true, false}) {
            ClTestImage in = Square();
            bX ? in.SetPelsX(nPels) : in.SetPelsY(nPels);
            ClMask2 mask;
            ClIpBrightnessMask ip;
            Prepare(ip, in, mask, nullptr);
            EXPECT_THROWS(ip.Apply(), ClExTessarin, -13,
                          "Pels are not in a valid range (see documentation).");
            EXPECT_EQ(mask.GetOffsetsCount(), 0);
        }
}

TEST(IpBrightnessMaskImages, RefusesAnImageAtNoStepOfTheMask) {
    ClTestImage large = FlatImage(ClImage::eUInt8, 200, 200, 1, 9);
    ClTestImage in = Square();
    ClMask2 mask;
    mask.BuildFromImage(large, 255);
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, nullptr);
    EXPECT_THROWS(ip.Apply(), ClException, -35, "The precut index 'nRefIdx' is out of range.");
}

TEST(IpBrightnessMaskImages, GoesOnWhereAStepFindsNothingToDo) {
    // A threshold outside the range that the image claims is none, and nothing is binarised.
    ClTestImage in = Square();
    in.SetWhite(50.0);
    ClMask2 mask;
    ClIpBrightnessMask ip;
    Prepare(ip, in, mask, nullptr);
    ip.m_bIlFix = false;
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_TRUE(mask.IsValid());
    EXPECT_EQ(mask.m_aPrecutSteps[0].dWidth, in.Width());
}

// Settings

TEST(IpBrightnessMaskSettings, WithoutSenseGiveADefinedMask) {
    const double dInfinity = std::numeric_limits<double>::infinity();
    const double dNaN = std::numeric_limits<double>::quiet_NaN();
    double ClIpBrightnessMask::*const apSettings[] = {
        &ClIpBrightnessMask::m_dRidgeDist,
        &ClIpBrightnessMask::m_dIlFixMaxWidthFactor,
        &ClIpBrightnessMask::m_dIlFixLowPassWidthFactor,
        &ClIpBrightnessMask::m_dDarkNoisePart,
        &ClIpBrightnessMask::m_dBrightNoisePart,
        &ClIpBrightnessMask::m_dDilatWidthFactor,
        &ClIpBrightnessMask::m_dLowPassWidthFactor,
        &ClIpBrightnessMask::m_dDerivativeThresh,
        &ClIpBrightnessMask::m_dMinAreaMM2};
    for (auto pSetting : apSettings)
        for (double d : {dNaN, dInfinity, -dInfinity, 1e300, -1e300, 1e18, 9.3e18, -5.0, 1e-300}) {
            ClTestImage in = Square();
            ClMask2 mask;
            ClTestImage prob;
            ClIpBrightnessMask ip;
            Prepare(ip, in, mask, &prob);
            ip.*pSetting = d;
            if (!(ip.m_dRidgeDist > 0.0))
                continue; // refused
            EXPECT_EQ(ip.Apply(), 0);
            EXPECT_TRUE(mask.IsValid());
            EXPECT_EQ(prob.Width(), in.Width());
        }
}

TEST(IpBrightnessMaskSettings, AnAreaBeyondAllNumbersIsNeverReached) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 50, 50, 1, 150);
    SetSample(in, 0, 0, 0, 0);
    SetSample(in, 1, 0, 0, 255);
    for (double d : {1e12, 1e300, std::numeric_limits<double>::infinity()}) {
        ClMask2 mask;
        ClTestImage prob;
        ClIpBrightnessMask ip;
        Prepare(ip, in, mask, &prob);
        ip.m_bIlFix = false;
        ip.m_dDarkNoisePart = ip.m_dBrightNoisePart = 0.0;
        ip.m_dDilatWidthFactor = ip.m_dLowPassWidthFactor = 0.0;
        ip.m_dMinAreaMM2 = d;
        EXPECT_EQ(ip.Apply(), 0);
        EXPECT_EQ(Sample(prob, 20, 20), 150 + 128 - 200); // threshold 200, the highest
    }
}

// Memory

TEST(IpBrightnessMaskMemory, MissingLeavesEverythingUsable) {
    ClTestImage in = Square();
    const ClTestImage before = in;
    ClMask2 toldMask;
    ClTestImage told;
    ClIpBrightnessMask first;
    Prepare(first, in, toldMask, &told);
    EXPECT_EQ(first.Apply(), 0);
    FailEachAllocation([&] {
        ClMask2 mask;
        ClImage prob;
        ClIpBrightnessMask ip;
        Prepare(ip, in, mask, &prob);
        EXPECT_EQ(ip.Apply(), 0);
        const long nPaused = PauseFailures();
        EXPECT_EQ(mask, toldMask);
        ExpectSameImage(prob, told);
        ResumeFailures(nPaused);
    });
    ExpectSameImage(in, before);
}

} // namespace
