// An operator that was used goes back to what it began with: its images are forgotten, whatever
// class of its line holds them, and its settings are those of a new one.

#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpImageExtension.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpLabeling.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpResize.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpSubsample.h"
#include "ImageProcessing/IpSubtract.h"
#include "ImageProcessing/IpUnsharpMasking.h"

#include <gtest/gtest.h>

template <class Operator>
class ResetOfOneImage : public testing::Test {};

using OfOneImage =
    testing::Types<ClIpAbs, ClIpBinarizeGlobal, ClIpBinarizeLocal2, ClIpCut, ClIpFilterDGauss,
                   ClIpFilterGauss, ClIpFilterMax, ClIpFilterMedian, ClIpFilterMid, ClIpFilterMin,
                   ClIpFloodFill, ClIpImageExtension, ClIpInvert, ClIpLabeling, ClIpOffset,
                   ClIpRescale, ClIpResize, ClIpScale, ClIpStretchRangeLocal, ClIpSubsample,
                   ClIpUnsharpMasking>;
TYPED_TEST_SUITE(ResetOfOneImage, OfOneImage, );

TYPED_TEST(ResetOfOneImage, ForgetsItsImages) {
    ClImage Image;
    TypeParam Operator;
    Operator.m_pInImage = Operator.m_pOutImage = &Image;
    Operator.SetParametersToDefault();
    EXPECT_EQ(Operator.m_pInImage, nullptr);
    EXPECT_EQ(Operator.m_pOutImage, nullptr);
}

template <class Operator>
class ResetOfTwoImages : public testing::Test {};

using OfTwoImages = testing::Types<ClIpAdd, ClIpMax, ClIpSubtract>;
TYPED_TEST_SUITE(ResetOfTwoImages, OfTwoImages, );

TYPED_TEST(ResetOfTwoImages, ForgetsItsImages) {
    ClImage Image;
    TypeParam Operator;
    Operator.m_pInImage1 = Operator.m_pInImage2 = Operator.m_pOutImage = &Image;
    Operator.m_bSizeMustBeEqual = false;
    Operator.SetParametersToDefault();
    EXPECT_EQ(Operator.m_pInImage1, nullptr);
    EXPECT_EQ(Operator.m_pInImage2, nullptr);
    EXPECT_EQ(Operator.m_pOutImage, nullptr);
    EXPECT_TRUE(Operator.m_bSizeMustBeEqual);
}

TEST(Reset, OfADifferenceGoesBackToTheRangeOfTheData) {
    ClIpSubtract Subtract;
    Subtract.m_dLowerBound = 1.0;
    Subtract.m_dUpperBound = 2.0;
    Subtract.m_eDataRange = ClIpSubtract::UserDependent;
    Subtract.SetParametersToDefault();
    EXPECT_EQ(Subtract.m_dLowerBound, 0.0);
    EXPECT_EQ(Subtract.m_dUpperBound, 0.0);
    EXPECT_EQ(Subtract.m_eDataRange, ClIpSubtract::DataDependent);
}
