// The contrast mask beside its main path: helpers, chain of steps, images that it refuses, settings
// without sense, missing memory.

#include "FingerCoding/IpContrastMask2.h"
#include "ImageProcessing/MaskCases.h"
#include "TimerMarks.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <climits>
#include <limits>
#include <string>
#include <vector>

namespace {

using TestSupport::cdInfinity;
using TestSupport::cdNaN;

using namespace TestSupport;

class ClIpOpenContrast : public ClIpContrastMask2 {
public:
    using ClIpContrastMask2::CopyWithBlackFrame;
    using ClIpContrastMask2::Scale;
};

/// Gradients in a square.
ClTestImage Gradients() {
    ClTestImage image = BlankImage(ClImage::eUInt8, 141, 117);
    for (int y = 18; y < 98; ++y)
        for (int x = 25; x < 125; ++x)
            SetSample(image, x, y, 0, 10 + (x * 7 + y * 3) % 40);
    return image;
}

void Prepare(ClIpContrastMask2& ip, ClImage& In, ClMask2& Mask, ClImage* pProb) {
    ip.m_pInImage = &In;
    ip.m_dRidgeDist = 11.7;
    ip.m_pInOutMask = &Mask;
    ip.m_pOptOutProbImage = pProb;
}

// Helpers

TEST(IpContrastMask2Helpers, CopyWithBlackFramePaintsABlackFrame) {
    ClTestImage in = Img({{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}, {11, 12, 13, 14, 15}});
    const ClTestImage before = in;
    ClTestImage out;
    ClIpOpenContrast::CopyWithBlackFrame(in, out, 1);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0, 0, 0}, {0, 7, 8, 9, 0}, {0, 0, 0, 0, 0}}));
    EXPECT_EQ(out.LineData(1)[5], cnPaddingByte);
    ExpectSameImage(in, before);
}

TEST(IpContrastMask2Helpers, CopyWithBlackFrameTakesWidthsOfAnySize) {
    for (long nWidth : {2L, 3L, LONG_MAX}) {
        ClTestImage in = FlatImage(ClImage::eUInt8, 5, 4, 1, 9);
        ClTestImage out;
        ClIpOpenContrast::CopyWithBlackFrame(in, out, nWidth);
        EXPECT_EQ(Pixels(out), Rows(4, {0, 0, 0, 0, 0}));
    }
    for (long nWidth : {0L, -1L, LONG_MIN}) {
        ClTestImage in = FlatImage(ClImage::eUInt8, 5, 4, 1, 9);
        ClTestImage out;
        ClIpOpenContrast::CopyWithBlackFrame(in, out, nWidth);
        ExpectSameImage(out, in);
    }
    ClTestImage narrow = FlatImage(ClImage::eUInt8, 1, 5, 1, 9);
    ClTestImage out;
    ClIpOpenContrast::CopyWithBlackFrame(narrow, out, 2);
    EXPECT_EQ(Pixels(out), Rows(5, {0}));
}

TEST(IpContrastMask2Helpers, ScaleTruncatesAndSaturatesSamplesOnly) {
    ClTestImage image = Img({{0, 1, 9, 10, 32}, {33, 100, 254, 255, 128}});
    ClIpOpenContrast::Scale(image, 7.8);
    EXPECT_EQ(Pixels(image), Rows({{0, 7, 70, 78, 249}, {255, 255, 255, 255, 255}}));
    for (int y = 0; y < 2; ++y)
        for (int i = 5; i < image.LineStrideBytes(); ++i)
            EXPECT_EQ(image.LineData(y)[i], cnPaddingByte);
    ClTestImage half = Img({{0, 1, 2, 3, 255}});
    ClIpOpenContrast::Scale(half, 0.5);
    EXPECT_EQ(Pixels(half), Rows({{0, 0, 1, 1, 127}}));
}

TEST(IpContrastMask2Helpers, ScaleIsDefinedForEveryFactor) {
    const auto scaled = [](double dFactor) {
        ClTestImage image = Img({{0, 1, 200}});
        ClIpOpenContrast::Scale(image, dFactor);
        return Pixels(image);
    };
    EXPECT_EQ(scaled(cdNaN), Rows({{0, 0, 0}}));
    EXPECT_EQ(scaled(cdInfinity), Rows({{0, 255, 255}})); // 0 times infinity is no number
    EXPECT_EQ(scaled(1e300), Rows({{0, 255, 255}}));
    EXPECT_EQ(scaled(-1.0), Rows({{0, 255, 56}})); // -1 and -200, the low bits
    EXPECT_EQ(scaled(-1e300), Rows({{0, 0, 0}}));
}

// Parameters

struct StContrastRefusal {
    const char* m_szWords;
    long m_nNumber;
};

void ExpectRefusal(ClIpContrastMask2& ip, const StContrastRefusal& Expected) {
    try {
        ip.Apply();
        ADD_FAILURE() << "not refused: " << Expected.m_szWords;
    } catch (const ClException& e) {
        EXPECT_EQ(Words(e), Expected.m_szWords);
        EXPECT_EQ(e.Number(), Expected.m_nNumber);
        EXPECT_STREQ(e.File(), "FingerCoding/IpContrastMask2");
    }
}

TEST(IpContrastMask2Checks, ComeInTheOrderOfTheBrightnessMask) {
    ClTestImage in = Gradients();
    ClIpContrastMask2 ip;
    ip.m_pdRidgeDist = nullptr;
    ip.m_ppInOutMask = nullptr;
    ExpectRefusal(ip, {"m_pInImage is not set", -701});
    ip.m_pInImage = &in;
    ExpectRefusal(ip, {"m_pInImage is not set", -701});
    ip.m_pdRidgeDist = &ip.m_dRidgeDist;
    ExpectRefusal(ip, {"m_ppInOutMask is not set", -701});
    ip.m_ppInOutMask = &ip.m_pInOutMask;
    ExpectRefusal(ip, {"*m_ppInOutMask is not set", -701});
    ClMask2 mask;
    ip.m_pInOutMask = &mask;
    EXPECT_EQ(ip.Apply(), 0);
}

TEST(IpContrastMask2Checks, ReadRidgeDistanceAndMaskWhereThePointersSay) {
    ClTestImage in = Gradients();
    ClMask2 mask;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, nullptr);
    EXPECT_EQ(ip.Apply(), 0);
    ClMask2 other;
    ClMask2* pOther = &other;
    double dRidgeDist = 11.7;
    ip.m_dRidgeDist = 1000.0;
    ip.m_pdRidgeDist = &dRidgeDist;
    ip.m_pInOutMask = nullptr;
    ip.m_ppInOutMask = &pOther;
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(other, mask);
}

// Chain

using Names = std::vector<std::string>;

TEST(IpContrastMask2Chain, RunsItsStepsInOrderAndTimesThem) {
    ClTestImage in = Gradients();
    ClMask2 mask;
    ClImage prob;
    ClTimerMarks marks;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames,
              (Names{"ClIpRescale", "ClIpFilterMedian", "ClIpMax", "ClIpFilterMid", "ClIpOffset",
                     "ClIpRescale", "ClIpInvert", "ClIpBinarizeGlobal", "ClIpContrastMask2"}));
}

TEST(IpContrastMask2Chain, LeavesOutTheProbabilities) {
    ClTestImage in = Gradients();
    ClMask2 mask;
    ClTimerMarks marks;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, nullptr);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames, (Names{"ClIpRescale", "ClIpFilterMedian", "ClIpMax", "ClIpFilterMid",
                                     "ClIpBinarizeGlobal", "ClIpContrastMask2"}));
}

TEST(IpContrastMask2Chain, DoesNotTimeTheStepsOfAnUntimedRun) {
    ClTestImage in = Gradients();
    ClMask2 mask;
    ClImage prob;
    ClTimerMarks marks;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, &prob);
    ip.Timer(false);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(marks.m_aNames, Names());
}

// Images

TEST(IpContrastMask2Images, KeepTheInputAndGiveTheSameAgain) {
    ClTestImage in = Gradients();
    const ClTestImage before = in;
    ClMask2 first;
    ClTestImage prob;
    ClIpContrastMask2 ip;
    Prepare(ip, in, first, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    ExpectSameImage(in, before);
    ClMask2 second;
    ClTestImage again = FlatImage(ClImage::eDouble64, 3, 3, 3, 0.5);
    Prepare(ip, in, second, &again);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(first, second);
    ExpectSameImage(again, prob);
}

TEST(IpContrastMask2Images, MayBeReplacedByTheProbabilities) {
    ClTestImage in = Gradients();
    ClMask2 mask;
    ClTestImage prob;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, &prob);
    EXPECT_EQ(ip.Apply(), 0);
    ClMask2 again;
    Prepare(ip, in, again, &in);
    EXPECT_EQ(ip.Apply(), 0);
    EXPECT_EQ(again, mask);
    ExpectSameImage(in, prob);
}

TEST(IpContrastMask2Images, OfOtherTypesAreRefusedBeforeAnyOutput) {
    for (unsigned char nType : caPixelTypes) {
        if (nType == ClImage::eUInt8)
            continue;
        ClTestImage in = RandomImage(nType, 40, 30, 1, 5);
        ClMask2 mask;
        ClTestImage prob;
        ClIpContrastMask2 ip;
        Prepare(ip, in, mask, &prob);
        EXPECT_THROWS(ip.Apply(), ClException, -101, "Image Type is not the assigned type");
        EXPECT_EQ(mask, ClMask2());
        ExpectEmptyImage(prob);
    }
}

TEST(IpContrastMask2Images, OfNoSizeAreRefused) {
    ClImage in;
    ClMask2 mask;
    ClTestImage prob;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, &prob);
    EXPECT_THROWS(ip.Apply(), ClExTessarin, -13,
                  "Pels are not in a valid range (see documentation).");
    in.Attach(nullptr, ClImage::eUInt8, 0, 0, 1, cnTestPels, cnTestPels);
    EXPECT_THROW(ip.Apply(), ClException);
    EXPECT_EQ(mask, ClMask2());
    ExpectEmptyImage(prob);
}

TEST(IpContrastMask2Images, OfSeveralPlanesStayInTheirMemory) {
    // Meant for one plane; what comes out of others is not told, but a valid mask.
    for (int nPlanes : {2, 3, 4}) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 41, 30, nPlanes, 5);
        const ClTestImage before = in;
        ClMask2 mask;
        ClTestImage prob;
        ClIpContrastMask2 ip;
        Prepare(ip, in, mask, &prob);
        ip.Apply();
        EXPECT_TRUE(mask.IsValid());
        ExpectSameImage(in, before);
    }
}

TEST(IpContrastMask2Images, AtNoStepOfTheMaskAreRefused) {
    ClTestImage large = FlatImage(ClImage::eUInt8, 400, 400, 1, 9);
    ClTestImage in = Gradients();
    ClMask2 mask;
    mask.BuildFromImage(large, 0);
    const ClMask2 before = mask;
    ClIpContrastMask2 ip;
    Prepare(ip, in, mask, nullptr);
    EXPECT_THROWS(ip.Apply(), ClException, -35, "The precut index 'nRefIdx' is out of range.");
    EXPECT_EQ(mask, before);
}

// Settings

TEST(IpContrastMask2Settings, WithoutSenseGiveADefinedMask) {
    double ClIpContrastMask2::*const apSettings[] = {
        &ClIpContrastMask2::m_dRidgeDist,          &ClIpContrastMask2::m_dScaleFactor,
        &ClIpContrastMask2::m_dMidRotWidthFactor1, &ClIpContrastMask2::m_dThresholdFactor,
        &ClIpContrastMask2::m_dMinFgBlobSize,      &ClIpContrastMask2::m_dMidRotWidthFactor2};
    for (auto pSetting : apSettings)
        for (double d :
             {cdNaN, cdInfinity, -cdInfinity, 1e300, -1e300, 1e18, 9.3e18, -5.0, 0.0, 1e-300}) {
            ClTestImage in = Gradients();
            ClMask2 mask;
            ClTestImage prob;
            ClIpContrastMask2 ip;
            Prepare(ip, in, mask, &prob);
            ip.*pSetting = d;
            const long nResult = ip.Apply();
            EXPECT_TRUE(nResult == 0 || nResult == -15);
            EXPECT_EQ(nResult == 0, mask.m_aEntries.Entries() > 0);
            EXPECT_TRUE(mask.IsValid());
            EXPECT_EQ(prob.Width(), in.Width());
        }
}

// Memory

TEST(IpContrastMask2Memory, MissingLeavesEverythingUsable) {
    ClTestImage in = Gradients();
    const ClTestImage before = in;
    ClMask2 toldMask;
    ClTestImage told;
    ClIpContrastMask2 first;
    Prepare(first, in, toldMask, &told);
    EXPECT_EQ(first.Apply(), 0);
    FailEachAllocation([&] {
        ClMask2 mask;
        ClImage prob;
        ClIpContrastMask2 ip;
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
