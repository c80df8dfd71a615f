#include "ImageProcessing/IpFilterDGauss.h"

#include "ImageProcessing/NaiveLinearFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace {

using TestSupport::caOddSizes;
using TestSupport::ClTestImage;
using TestSupport::ExpectTree;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::NaiveFiltered;
using TestSupport::NaiveTaps;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::Taps;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

Taps DGaussTaps(double dSigma, long nWidth) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 99, 99, 1, 0);
    ClImage out;
    ClIpFilterDGauss filter;
    filter.m_pInImage = &in;
    filter.m_pOutImage = &out;
    filter.m_dSigma = dSigma;
    filter.m_nFilterWidth = nWidth;
    EXPECT_EQ(filter.Apply(), 0);
    return Taps(filter.Filter().Data(), filter.Filter().Data() + filter.Filter().Entries());
}

TEST(IpFilterDGauss, BeginsWithItsDefaults) {
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.m_nFilterWidth, 0);
    EXPECT_EQ(filter.m_nMode, 1);
    EXPECT_EQ(filter.m_dSigma, 1.0);
    filter.m_nMode = 2;
    filter.SetParametersToDefault();
    EXPECT_EQ(filter.m_nMode, 1);
}

TEST(IpFilterDGauss, CreatesItsLike) {
    ClIpFilterDGauss filter;
    std::unique_ptr<ClProcessorBase> pNew(filter.Create());
    EXPECT_STREQ(pNew->Name(), "ClIpFilterDGauss");
    EXPECT_NE(dynamic_cast<ClIpFilterDGauss*>(pNew.get()), nullptr);
    TestSupport::FailEachAllocation([&] { pNew.reset(filter.Create()); });
}

TEST(IpFilterDGauss, PublishesItsSettings) {
    ClIpFilterDGauss filter;
    ExpectTree(filter, {TreePointer("pInImage", filter.m_pInImage, ePfIn),
                        TreePointer("pOutImage", filter.m_pOutImage, ePfOut),
                        TreeNumber("nFilterWidth", filter.m_nFilterWidth, 0),
                        TreeEnum("nMode", filter.m_nMode, 1, TestSupport::caFilterModeNames),
                        TreePointer("pInDxImage", filter.m_pInDxImage, ePfIn),
                        TreePointer("pInDyImage", filter.m_pInDyImage, ePfIn),
                        TreeNumber("dSigma", filter.m_dSigma, 1.0, "In Sigma")});
}

TEST(IpFilterDGauss, KeepsItsSettingsWhilePublishing) {
    ClIpFilterDGauss filter;
    filter.m_dSigma = 7.0;
    filter.m_nFilterWidth = 5;
    filter.m_nMode = 2;
    ClParameterContainer container;
    filter.QueryParameters(container);
    EXPECT_EQ(filter.m_dSigma, 7.0);
    EXPECT_EQ(filter.m_nFilterWidth, 5);
    EXPECT_EQ(filter.m_nMode, 2);
}

TEST(IpFilterDGauss, PrintsItsSettings) {
    ClIpFilterDGauss filter;
    char szText[64];
    EXPECT_EQ(filter.ParameterString(szText, sizeof szText), 28);
    EXPECT_STREQ(szText, "S[1.00] W[0] M[X] S[Unknown]");
}

TEST(IpFilterDGauss, RefusesBothDirectionsAtOnce) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
        ClTestImage in = RandomImage(nType, 9, 9, 1, 1);
        ClTestImage out = Img({{9}});
        ClIpFilterDGauss filter;
        filter.m_nMode = 3;
        filter.m_pInImage = &in;
        filter.m_pOutImage = &out;
        EXPECT_EQ(filter.Apply(), -101);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
        EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    }
}

TEST(IpFilterDGauss, LeavesPlanesAloneThatItRefuses) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 9, 9, 3, 1);
    const ClTestImage copy = image;
    ClIpFilterDGauss filter;
    filter.m_nMode = 3;
    filter.m_pInImage = filter.m_pOutImage = &image;
    EXPECT_EQ(filter.Apply(), 0);
    TestSupport::ExpectSameImage(image, copy);
}

TEST(IpFilterDGauss, AnswersMissingImages) {
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.Apply(), -35);
}

// Taps

TEST(IpFilterDGauss, HasTheTapsOfADerivative) {
    // -k exp(-k^2 / (2 sigma^2)) by twice the sum of the positive ones, times 4095, in 50 digits.
    EXPECT_EQ(DGaussTaps(1.0, 0), (Taps{3, 74, 607, 1361, 0, -1361, -607, -74, -3}));
    EXPECT_EQ(DGaussTaps(1.0, 7), (Taps{74, 608, 1363, 0, -1363, -608, -74}));
    EXPECT_EQ(DGaussTaps(2.0, 0), (Taps{1, 8, 34, 114, 283, 509, 634, 461, 0, -461, -634, -509,
                                        -283, -114, -34, -8, -1}));
}

TEST(IpFilterDGauss, HasTwoPiSigmaUnderTheRoot) {
    TpArrayStatic<double> aTaps;
    aTaps.New(3);
    ClIpFilterDGauss filter;
    filter.m_dSigma = 2.0;
    filter.CalcFilter(aTaps, 3);
    const double dExpected = std::exp(-1.0 / 8.0) / (4.0 * std::sqrt(6.283185307179586 * 2.0));
    EXPECT_DOUBLE_EQ(aTaps[0], dExpected);
    EXPECT_EQ(aTaps[1], 0.0);
    EXPECT_DOUBLE_EQ(aTaps[2], -dExpected);
}

TEST(IpFilterDGauss, HasATapOfZeroForAWidthOfOne) {
    EXPECT_EQ(DGaussTaps(1.0, 1), Taps{0});
    ClTestImage in = FlatImage(ClImage::eUInt8, 2, 2, 1, 200);
    ClImage x;
    ClImage y;
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, x, y, 1.0, 0), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 1);
    EXPECT_EQ(Pixels(x), Rows({{0, 0}, {0, 0}}));
    EXPECT_EQ(x.DataType(), ClImage::eUInt8); // no tap is negative
}

TEST(IpFilterDGauss, HasNoTapsForASigmaThatIsNoWidth) {
    for (double dSigma : {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(DGaussTaps(dSigma, 3), Taps(3, 0)) << dSigma;
}

TEST(IpFilterDGauss, LeavesTheLastTapOfAnEvenWidthZero) {
    EXPECT_EQ(DGaussTaps(1.0, 4), (Taps{2047, 0, -2047, 0}));
}

// Samples

TEST(IpFilterDGauss, LeavesBothOutputsSigned) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 20, 15, 1, 1);
    ClImage x;
    ClImage y;
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, x, y, 1.0, 0), 0);
    for (const ClImage* pOut : {&x, &y}) {
        EXPECT_EQ(pOut->DataType(), ClImage::eInt8);
        EXPECT_EQ(pOut->Black(), -128.0);
        EXPECT_EQ(pOut->White(), 127.0);
    }
    EXPECT_EQ(in.DataType(), ClImage::eUInt8);
    EXPECT_EQ(filter.m_nMode, 2);
    EXPECT_EQ(filter.m_pOutImage, &y);
}

TEST(IpFilterDGauss, FallsWhereTheImageRises) {
    // A step of 100 between columns 9 and 10: all taps of one sign meet it, 2045 * 100 / 4096.
    ClTestImage in = FlatImage(ClImage::eUInt8, 20, 12, 1, 50);
    for (int y = 0; y < 12; ++y)
        for (int x = 10; x < 20; ++x)
            TestSupport::SetSample(in, x, y, 0, 150);
    ClImage dx;
    ClImage dy;
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, dx, dy, 1.0, 0), 0);
    EXPECT_EQ(TestSupport::Sample(dx, 9, 5), -49);
    EXPECT_EQ(TestSupport::Sample(dx, 10, 5), -49);
    EXPECT_EQ(TestSupport::Sample(dx, 2, 5), 0);
    EXPECT_EQ(Pixels(dy), Rows(12, std::vector<int>(20, 0)));
}

TEST(IpFilterDGauss, BeginsInYWithTheWidthFoundForX) {
    // 5 columns limit the width to 3, where 40 lines would allow 9.
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 40, 1, 1);
    ClImage x;
    ClImage y;
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, x, y, 1.0, 0), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 3);
    const Taps aTaps = NaiveTaps({1.0, 0.0, -1.0});
    EXPECT_EQ(Pixels(x), NaiveFiltered(1, Pixels(in), aTaps, true));
    EXPECT_EQ(Pixels(y), NaiveFiltered(2, Pixels(in), aTaps, true));
}

TEST(IpFilterDGauss, AnswersTheFirstFailure) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage y = Img({{9}});
    ClIpFilterDGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, in, y, 1.0, 0), -10);
    EXPECT_EQ(Pixels(y), Rows({{9}}));
    ClImage x;
    EXPECT_EQ(filter.ApplyParam(in, x, in, 1.0, 0), -10);
    EXPECT_EQ(Pixels(in), Rows({{1, 2}}));
}

TEST(IpFilterDGauss, EqualsTheDefinition) {
    unsigned nSeed = 400;
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (const auto& size : caOddSizes)
            for (double dSigma : {0.4, 1.0, 1.7})
                for (long nMode : {1L, 2L}) {
                    ClTestImage in = RandomImage(nType, size.m_nWidth, size.m_nHeight, 1, ++nSeed);
                    ClImage out;
                    ClIpFilterDGauss filter;
                    filter.m_nMode = nMode;
                    filter.m_dSigma = dSigma;
                    filter.m_pInImage = &in;
                    filter.m_pOutImage = &out;
                    EXPECT_EQ(filter.Apply(), 0);
                    std::vector<double> aKernel;
                    const long nHalf = (filter.m_nFilterWidth - 1) / 2;
                    for (long k = -nHalf; k <= nHalf; ++k) {
                        const auto d = static_cast<double>(k);
                        aKernel.push_back(-d * std::exp(-d * d / (2.0 * dSigma * dSigma)));
                    }
                    const Taps aTaps = nHalf > 0 ? NaiveTaps(aKernel) : Taps{0};
                    const bool bSigned = nType == ClImage::eInt8 || nHalf > 0;
                    EXPECT_EQ(Pixels(out), NaiveFiltered(nMode, Pixels(in), aTaps, bSigned));
                }
}

} // namespace
