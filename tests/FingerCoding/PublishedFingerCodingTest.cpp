// What the dynamic calibration and its parts publish.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "support/PublishedParameters.h"

namespace {

using namespace TestSupport;

constexpr const char* cszNothing = "Nothing";

TEST(PublishedFingerCoding, BrightnessMaskPublishesItsSettingsInTheTree) {
    ClIpBrightnessMask ip;
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn),
                    TreePointer("pOptOutProbImage", ip.m_pOptOutProbImage, ePfOut),
                    TreeNumber("dRidgeDist", ip.m_dRidgeDist, 0.0),
                    TreePointer("pInOutMask", ip.m_pInOutMask, ePfIn | ePfOut),
                    TreeNumber("nImageBorderWidth", ip.m_nImageBorderWidth, 4),
                    TreeNumber("dIlFixMaxWidthFactor", ip.m_dIlFixMaxWidthFactor, 1.0),
                    TreeNumber("dIlFixLowPassWidthFactor", ip.m_dIlFixLowPassWidthFactor, 0.5),
                    TreeNumber("dDarkNoisePart", ip.m_dDarkNoisePart, 0.1),
                    TreeNumber("dBrightNoisePart", ip.m_dBrightNoisePart, 0.05),
                    TreeNumber("dDilatWidthFactor", ip.m_dDilatWidthFactor, 0.66),
                    TreeNumber("dLowPassWidthFactor", ip.m_dLowPassWidthFactor, 1.0),
                    TreeNumber("nDerivationWidth", ip.m_nDerivationWidth, 10),
                    TreeNumber("dDerivativeThresh", ip.m_dDerivativeThresh, 15.0),
                    TreeNumber("dMinAreaMM2", ip.m_dMinAreaMM2, 300.0),
                    TreeNumber("nMinBinarizeThreshold", ip.m_nMinBinarizeThreshold, 100),
                    TreeNumber("nMaxBinarizeThreshold", ip.m_nMaxBinarizeThreshold, 200)});
}

TEST(PublishedFingerCoding, BrightnessMaskPublishesItsSettingsInTheFlatList) {
    ClIpBrightnessMask ip;
    ExpectFlat(
        ip, {FlatNumber("ImageBorderWidth", ip.m_nImageBorderWidth, 4, cszNothing, 1.0, 10.0),
             FlatNumber("IlFixMaxWidthFactor", ip.m_dIlFixMaxWidthFactor, 1.0, cszNothing),
             FlatNumber("IlFixLowPassWidthFactor", ip.m_dIlFixLowPassWidthFactor, 0.5, cszNothing),
             FlatNumber("DarkNoisePart", ip.m_dDarkNoisePart, 0.1, cszNothing),
             FlatNumber("BrightNoisePart", ip.m_dBrightNoisePart, 0.05, cszNothing),
             FlatNumber("DilatWidthFactor", ip.m_dDilatWidthFactor, 0.66, cszNothing),
             FlatNumber("LowPassWidthFactor", ip.m_dLowPassWidthFactor, 1.0, cszNothing),
             FlatNumber("DerivationWidth", ip.m_nDerivationWidth, 10, cszNothing, 0.0, 255.0),
             FlatNumber("DerivativeThresh", ip.m_dDerivativeThresh, 15.0, cszNothing),
             FlatNumber("MinAreaMM2", ip.m_dMinAreaMM2, 300.0, cszNothing),
             FlatNumber("MinBinarizeThreshold", ip.m_nMinBinarizeThreshold, 100, cszNothing, 0.0,
                        255.0),
             FlatNumber("MaxBinarizeThreshold", ip.m_nMaxBinarizeThreshold, 200, cszNothing, 0.0,
                        255.0)});
}

TEST(PublishedFingerCoding, BrightnessMaskIsAProcessor) {
    ExpectProcessor<ClIpBrightnessMask>("ClIpBrightnessMask");
    ExpectNoSettings(ClIpBrightnessMask());
}

TEST(PublishedFingerCoding, BrightnessMaskKeepsWhatTheTreeDoesNotPublish) {
    double dRidgeDist = 3.0;
    ClMask2* pMask = nullptr;
    ClIpBrightnessMask ip;
    ip.m_pdRidgeDist = &dRidgeDist;
    ip.m_ppInOutMask = &pMask;
    ip.m_bIlFix = false;
    ClParameterContainer Container;
    ip.QueryParameters(Container);
    EXPECT_EQ(ip.m_pdRidgeDist, &dRidgeDist);
    EXPECT_EQ(ip.m_ppInOutMask, &pMask);
    EXPECT_FALSE(ip.m_bIlFix);
}

TEST(PublishedFingerCoding, BrightnessMaskGoesBackToItsOwnStorage) {
    double dRidgeDist = 3.0;
    ClIpBrightnessMask ip;
    EXPECT_EQ(ip.m_pdRidgeDist, &ip.m_dRidgeDist);
    EXPECT_EQ(ip.m_ppInOutMask, &ip.m_pInOutMask);
    EXPECT_TRUE(ip.m_bIlFix);
    ip.m_pdRidgeDist = &dRidgeDist;
    ip.m_ppInOutMask = nullptr;
    ip.m_bIlFix = false;
    ip.SetParametersToDefault();
    EXPECT_EQ(ip.m_pdRidgeDist, &ip.m_dRidgeDist);
    EXPECT_EQ(ip.m_ppInOutMask, &ip.m_pInOutMask);
    EXPECT_TRUE(ip.m_bIlFix);
}

TEST(PublishedFingerCoding, ContrastMaskPublishesItsSettingsInTheFlatList) {
    ClIpContrastMask2 ip;
    ExpectFlat(
        ip, {FlatNumber("BorderWidth", ip.m_nBorderWidth, 3, cszNothing, 1.0, 10.0),
             FlatNumber("ScaleFactor", ip.m_dScaleFactor, 8.0, cszNothing, 4.0, 12.0),
             FlatNumber("MidRotWidthFactor1", ip.m_dMidRotWidthFactor1, 1.5, cszNothing, 0.5, 3.0),
             FlatNumber("MidRotWidthFactor2", ip.m_dMidRotWidthFactor2, 1.5, cszNothing, 0.5, 3.0),
             FlatNumber("MidRotWidthFactor3", ip.m_dMidRotWidthFactor3, 1.5, cszNothing, 0.5, 3.0),
             FlatNumber("MinFgBlobSize", ip.m_dMinFgBlobSize, 16.0, cszNothing, 1.0, 50.0),
             FlatNumber("ThresholdFactor", ip.m_dThresholdFactor, 7.0, cszNothing, 1.0, 15.0)});
}

TEST(PublishedFingerCoding, ContrastMaskPublishesNothingInTheTree) {
    ClIpContrastMask2 ip;
    ExpectTree(ip, {});
}

TEST(PublishedFingerCoding, ContrastMaskIsAProcessor) {
    ExpectProcessor<ClIpContrastMask2>("ClIpContrastMask2");
    ExpectNoSettings(ClIpContrastMask2());
}

TEST(PublishedFingerCoding, ContrastMaskBeginsWithItsOwnStorage) {
    ClIpContrastMask2 ip;
    EXPECT_EQ(ip.m_pInImage, nullptr);
    EXPECT_EQ(ip.m_pOptOutProbImage, nullptr);
    EXPECT_EQ(ip.m_dRidgeDist, 0.0);
    EXPECT_EQ(ip.m_pdRidgeDist, &ip.m_dRidgeDist);
    EXPECT_EQ(ip.m_pInOutMask, nullptr);
    EXPECT_EQ(ip.m_ppInOutMask, &ip.m_pInOutMask);
    EXPECT_EQ(ip.m_dWorkDpi, 250.0);
}

TEST(PublishedFingerCoding, FunctionalityCheckIsAProcessor) {
    ExpectProcessor<ClIpQK7FunctionalityCheck>("ClIpQK7FunctionalityCheck");
}

TEST(PublishedFingerCoding, DynamicCalibrationPublishesNothing) {
    ClIpQK7DynamicCalibration30 ip;
    ExpectTree(ip, {});
    ExpectFlat(ip, {});
    ExpectProcessor<ClIpQK7DynamicCalibration30>("ClIpQK7DynamicCalibration30");
    ExpectNoSettings(ClIpQK7DynamicCalibration30());
}

} // namespace
