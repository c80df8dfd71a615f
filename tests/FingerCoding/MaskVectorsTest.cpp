// Both masks on two simulated captures, against the stage images of an independent model.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/WorkScale.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "Tools/Bitmap.h"
#include "support/Images.h"
#include "support/TestData.h"

#include <string>

namespace {

using TestSupport::cdRidgeDist;
using TestSupport::ClTestImage;
using TestSupport::Pixels;

ClTestImage Stage(const std::string& Capture, const std::string& Name) {
    const std::string File = "dynamic/" + Capture + "_stage_" + Name + ".bmp";
    ClBitmap bitmap;
    bitmap.Load(TestSupport::DataPath(File).c_str());
    ClTestImage image;
    image = bitmap;
    return image;
}

/// The brightness mask as the finger mask sets it.
void FindDarkArea(ClImage& In, ClMask2& Region, ClImage& Prob) {
    ClIpBrightnessMask detector;
    detector.m_pInImage = &In;
    detector.m_pOptOutProbImage = &Prob;
    detector.m_dRidgeDist = cdRidgeDist;
    detector.m_pInOutMask = &Region;
    detector.m_dIlFixMaxWidthFactor = 1.88444;
    detector.m_dIlFixLowPassWidthFactor = 0.45396;
    detector.m_dDarkNoisePart = 0.11;
    detector.m_dBrightNoisePart = 0.1;
    detector.m_dDilatWidthFactor = 0.63;
    detector.m_dLowPassWidthFactor = 1.20342;
    detector.m_dMinAreaMM2 = 0.0;
    detector.m_nMaxBinarizeThreshold = 198;
    EXPECT_EQ(detector.Apply(), 0);
}

void FindRidges(ClImage& Length, ClMask2& Region, ClImage& Prob) {
    ClIpContrastMask2 detector;
    detector.m_pInImage = &Length;
    detector.m_pOptOutProbImage = &Prob;
    detector.m_dRidgeDist = cdRidgeDist;
    detector.m_pInOutMask = &Region;
    detector.m_dScaleFactor = 7.8;
    detector.m_dMidRotWidthFactor1 = 2.1;
    detector.m_dThresholdFactor = 10.0;
    EXPECT_EQ(detector.Apply(), 0);
}

ClTestImage GradientLength(ClImage& In) {
    ClImage dx;
    ClImage dy;
    ClIpFilterDGauss gauss;
    gauss.m_pInImage = &In;
    gauss.m_pOutImage = &dx;
    gauss.m_nMode = ClIpFilterBase::ModeX;
    EXPECT_EQ(gauss.Apply(), 0);
    gauss.m_pOutImage = &dy;
    gauss.m_nMode = ClIpFilterBase::ModeY;
    EXPECT_EQ(gauss.Apply(), 0);
    ClTestImage length;
    EXPECT_EQ(ClIpEuclidLength().ApplyParam(dx, dy, length), 0);
    return length;
}

class MaskVectors : public testing::TestWithParam<const char*> {};

TEST_P(MaskVectors, TheBrightnessMaskAgreesInEveryPixel) {
    ClTestImage in = Stage(GetParam(), "02_GloballyStretchedImage");
    ClMask2 region;
    ClTestImage prob;
    FindDarkArea(in, region, prob);
    const ClTestImage expected = Stage(GetParam(), "21_BrightProbImage");
    EXPECT_TRUE(Pixels(prob) == Pixels(expected));
    EXPECT_EQ(region.GetOffsetsCount(), 2);
    EXPECT_TRUE(region.IsValid());
}

TEST_P(MaskVectors, TheContrastMaskAgreesInEveryPixel) {
    ClTestImage in = Stage(GetParam(), "02_GloballyStretchedImage");
    ClMask2 region;
    ClImage bright;
    FindDarkArea(in, region, bright);
    ClTestImage length = GradientLength(in);
    region.CutImage(length);
    ClTestImage prob;
    FindRidges(length, region, prob);
    const ClTestImage expected = Stage(GetParam(), "21_ContrastProbImage");
    EXPECT_EQ(prob.Width(), expected.Width());
    EXPECT_EQ(prob.Height(), expected.Height());
    EXPECT_TRUE(Pixels(prob) == Pixels(expected));
}

INSTANTIATE_TEST_SUITE_P(Captures, MaskVectors, testing::Values("loop", "two_fingers"));

} // namespace
