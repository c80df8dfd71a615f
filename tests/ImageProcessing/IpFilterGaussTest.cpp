#include "ImageProcessing/IpFilterGauss.h"

#include "ImageProcessing/NaiveLinearFilter.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using TestSupport::caOddSizes;
using TestSupport::cdInfinity;
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

/// A Gaussian of the width, up to a factor.
std::vector<double> Bell(double dSigma, long nWidth) {
    std::vector<double> aKernel;
    for (long i = 0; i < nWidth; ++i) {
        const double k = static_cast<double>(i) - static_cast<double>((nWidth - 1) / 2);
        aKernel.push_back(std::exp(-k * k / (2.0 * dSigma * dSigma)));
    }
    return aKernel;
}

/// The fixed taps of a run on an image of 99 x 99 samples.
Taps GaussTaps(double dSigma, long nWidth) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 99, 99, 1, 0);
    ClImage out;
    ClIpFilterGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, out, dSigma, nWidth), 0);
    return Taps(filter.Filter().Data(), filter.Filter().Data() + filter.Filter().Entries());
}

// Settings

TEST(IpFilterGauss, BeginsWithItsDefaults) {
    ClIpFilterGauss filter;
    EXPECT_EQ(filter.m_nFilterWidth, 0);
    EXPECT_EQ(filter.m_nMode, 3);
    EXPECT_EQ(filter.m_dSigma, 1.0);
    EXPECT_EQ(filter.m_pInImage, nullptr);
    EXPECT_EQ(filter.m_pOutImage, nullptr);
    EXPECT_FALSE(filter.CanApply());
}

TEST(IpFilterGauss, CreatesItsLikeWithDefaults) {
    ClIpFilterGauss filter;
    filter.m_dSigma = 7.0;
    std::unique_ptr<ClProcessorBase> pNew(filter.Create());
    EXPECT_STREQ(pNew->Name(), "ClIpFilterGauss");
    auto* pGauss = dynamic_cast<ClIpFilterGauss*>(pNew.get());
    ASSERT_NE(pGauss, nullptr);
    EXPECT_EQ(pGauss->m_dSigma, 1.0);
    TestSupport::FailEachAllocation([&] { pNew.reset(filter.Create()); });
}

TEST(IpFilterGauss, PublishesItsSettings) {
    ClIpFilterGauss filter;
    ExpectTree(filter, {TreePointer("pInImage", filter.m_pInImage, ePfIn),
                        TreePointer("pOutImage", filter.m_pOutImage, ePfOut),
                        TreeNumber("nFilterWidth", filter.m_nFilterWidth, 0),
                        TreeEnum("nMode", filter.m_nMode, 3, TestSupport::caFilterModeNames),
                        TreePointer("pInDxImage", filter.m_pInDxImage, ePfIn),
                        TreePointer("pInDyImage", filter.m_pInDyImage, ePfIn),
                        TreeNumber("dSigma", filter.m_dSigma, 1.0, "In Sigma")});
}

TEST(IpFilterGauss, KeepsItsSettingsWhilePublishing) {
    ClIpFilterGauss filter;
    filter.m_dSigma = 7.0;
    filter.m_nFilterWidth = 5;
    filter.m_nMode = 2;
    ClParameterContainer container;
    filter.QueryParameters(container);
    EXPECT_EQ(filter.m_dSigma, 7.0);
    EXPECT_EQ(filter.m_nFilterWidth, 5);
    EXPECT_EQ(filter.m_nMode, 2);
}

TEST(IpFilterGauss, CopiesItsSettings) {
    ClIpFilterGauss from;
    ClIpFilterGauss to;
    from.m_dSigma = 2.5;
    from.m_nFilterWidth = 11;
    from.m_nMode = 2;
    from.CopyParametersTo(to);
    EXPECT_EQ(to.m_dSigma, 2.5);
    EXPECT_EQ(to.m_nFilterWidth, 11);
    EXPECT_EQ(to.m_nMode, 2);
}

TEST(IpFilterGauss, PrintsItsSettings) {
    ClIpFilterGauss filter;
    filter.m_dSigma = 1.456;
    const std::string Expected = "S[1.46] W[0] M[XY] S[Unknown]";
    char szText[64];
    EXPECT_EQ(filter.ParameterString(szText, sizeof szText), static_cast<long>(Expected.size()));
    EXPECT_EQ(szText, Expected);
}

TEST(IpFilterGauss, RefusesToPrintIntoTooFewBytes) {
    ClIpFilterGauss filter;
    const unsigned long nNeeded = std::string("S[1.00] W[0] M[XY] S[Unknown]").size() + 1;
    for (unsigned long nSize = 0; nSize < nNeeded; ++nSize) {
        std::vector<char> aShort(nSize);
        EXPECT_THROWS(filter.ParameterString(aShort.data(), nSize), ClException, -101,
                      "String-Length exceeded available size");
    }
    EXPECT_THROWS(filter.ParameterString(nullptr, 100), ClException, -101,
                  "String-Length exceeded available size");
    std::vector<char> aText(nNeeded);
    EXPECT_EQ(filter.ParameterString(aText.data(), nNeeded), static_cast<long>(nNeeded) - 1);
}

TEST(IpFilterGauss, AnswersMissingImages) {
    ClTestImage image = Img({{1}});
    ClIpFilterGauss filter;
    for (long nWidth : {-5L, 0L, 3L}) {
        filter.m_nFilterWidth = nWidth;
        filter.m_pInImage = filter.m_pOutImage = nullptr;
        EXPECT_EQ(filter.Apply(), -35);
        filter.m_pInImage = &image;
        EXPECT_EQ(filter.Apply(), -35);
        filter.m_pInImage = nullptr;
        filter.m_pOutImage = &image;
        EXPECT_EQ(filter.Apply(), -35);
        EXPECT_EQ(filter.m_nFilterWidth, nWidth);
    }
}

// Width and taps

TEST(IpFilterGauss, FindsTheWidthOfASigma) {
    const struct {
        double m_dSigma;
        long m_nWidth;
    } aCases[] = {{1.0, 9},
                  {2.0, 17},
                  {0.9, 7},
                  {1.5, 13},
                  {0.0001, 3},
                  {0.499, 3},
                  {0.5, 5},
                  {0.0, 1},
                  {-0.0, 1},
                  {-3.0, 1},
                  {std::nan(""), 1},
                  {-cdInfinity, 1},
                  {268435455.5, 2147483645}, // 2147483644
                  {268435455.875, 2147483647},
                  {268435456.0, 2147483647},
                  {1e300, 2147483647},
                  {cdInfinity, 2147483647}};
    for (const auto& c : aCases)
        EXPECT_EQ(ClIpFilterGauss::CalcFilterWidth(c.m_dSigma), c.m_nWidth) << c.m_dSigma;
}

TEST(IpFilterGauss, HasTheTapsOfAGaussian) {
    // exp(-k^2 / (2 sigma^2)), normalised, times 4095, in 50 digits.
    EXPECT_EQ(GaussTaps(1.0, 0), (Taps{0, 18, 221, 990, 1633, 990, 221, 18, 0}));
    EXPECT_EQ(GaussTaps(0.9, 0), (Taps{7, 153, 979, 1815, 979, 153, 7}));
    EXPECT_EQ(GaussTaps(1.5, 0), (Taps{0, 4, 31, 147, 447, 872, 1089, 872, 447, 147, 31, 4, 0}));
    EXPECT_EQ(GaussTaps(2.0, 0),
              (Taps{0, 1, 9, 35, 110, 265, 495, 720, 816, 720, 495, 265, 110, 35, 9, 1, 0}));
    EXPECT_EQ(GaussTaps(1.0, 1), Taps{4095});
}

TEST(IpFilterGauss, HasRealTapsThatSumToOne) {
    TpArrayStatic<double> aTaps;
    aTaps.New(41);
    ClIpFilterGauss filter;
    filter.m_dSigma = 3.0;
    filter.CalcFilter(aTaps, 41);
    double dSum = 0.0;
    for (unsigned long i = 0; i < 41; ++i)
        dSum += aTaps[i];
    EXPECT_NEAR(dSum, 1.0, 1e-9);
    EXPECT_EQ(aTaps[20], 0.3989422804014327 / 3.0);
}

TEST(IpFilterGauss, LeavesTheLastTapOfAnEvenWidthZero) {
    EXPECT_EQ(GaussTaps(1.0, 4), (Taps{1122, 1850, 1122, 0})); // e^-0.5 / (1 + 2 e^-0.5) * 4095
}

TEST(IpFilterGauss, HasOneTapForASigmaThatIsNotAboveZero) {
    for (double dSigma : {0.0, -2.0, std::nan("")}) {
        EXPECT_EQ(GaussTaps(dSigma, 0), Taps{4095});
        EXPECT_EQ(GaussTaps(dSigma, 5), (Taps{0, 0, 4095, 0, 0}));
        EXPECT_EQ(GaussTaps(dSigma, 4), (Taps{0, 4095, 0, 0}));
    }
}

TEST(IpFilterGauss, HasNoTapsForASigmaBeyondNumbers) {
    EXPECT_EQ(GaussTaps(cdInfinity, 5), Taps(5, 0));
    EXPECT_EQ(GaussTaps(1e-200, 3), Taps(3, 0)); // 0 / 0
    EXPECT_EQ(GaussTaps(1e300, 0).size(), 97U);
}

TEST(IpFilterGauss, KeepsTheWidthThatItFinds) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 30, 6, 1, 9);
    ClImage out;
    ClIpFilterGauss filter;
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyParam(in, out, 2.0, -7), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 17);
    filter.m_dSigma = 1.0;
    filter.m_nMode = 2;
    EXPECT_EQ(filter.Apply(), 0);
    EXPECT_EQ(filter.m_nFilterWidth, 5);
}

// Samples

TEST(IpFilterGauss, WithSigmaZeroScalesBy4095By4096) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 256, 2, 1, 0);
    for (int x = 0; x < 256; ++x)
        TestSupport::SetSample(in, x, 1, 0, x);
    for (long nMode : {1L, 2L}) {
        ClImage out;
        ClIpFilterGauss filter;
        filter.m_nMode = nMode;
        EXPECT_EQ(filter.ApplyParam(in, out, 0.0, 0), 0);
        EXPECT_EQ(filter.m_nFilterWidth, 1);
        for (int x = 0; x < 256; ++x) {
            EXPECT_EQ(TestSupport::Sample(out, x, 1), x * 4095 / 4096);
            EXPECT_EQ(TestSupport::Sample(out, x, 1), x == 0 ? 0 : x - 1);
        }
    }
}

TEST(IpFilterGauss, CutsTheWidthToTheLargestOddOneBelowTheImage) {
    const struct {
        int m_nWidth, m_nHeight;
        long m_nMode, m_nGot;
    } aCases[] = {{40, 12, 3, 11}, {40, 13, 3, 11}, {40, 12, 1, 39}, {41, 12, 1, 39},
                  {40, 12, 2, 11}, {1, 1, 3, 1},    {2, 40, 3, 1}};
    for (const auto& c : aCases) {
        ClTestImage in = FlatImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, 1, 200);
        ClImage out;
        ClIpFilterGauss filter;
        filter.m_nMode = c.m_nMode;
        EXPECT_EQ(filter.ApplyParam(in, out, 3.0, 1001), 0);
        EXPECT_EQ(filter.m_nFilterWidth, c.m_nGot);
        EXPECT_EQ(out.Width(), c.m_nWidth);
    }
}

TEST(IpFilterGauss, DarkensAFlatImageALittle) {
    // The taps of sigma 1.0 sum to 4091: 200 * 4091 / 4096 = 199.8, 200 * 4091^2 / 2^24 = 199.5.
    ClTestImage in = FlatImage(ClImage::eUInt8, 30, 20, 1, 200);
    for (long nMode : {1L, 2L, 3L}) {
        ClImage out;
        ClIpFilterGauss filter;
        filter.m_nMode = nMode;
        EXPECT_EQ(filter.ApplyParam(in, out, 1.0, 0), 0);
        EXPECT_EQ(Pixels(out), Rows(20, std::vector<int>(30, 199)));
    }
}

TEST(IpFilterGauss, EqualsTheDefinition) {
    unsigned nSeed = 300;
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8})
        for (const auto& size : caOddSizes)
            for (double dSigma : {0.0, 0.4, 0.9, 1.0, 1.5, 2.3})
                for (long nMode : {1L, 2L, 3L}) {
                    ClTestImage in = RandomImage(nType, size.m_nWidth, size.m_nHeight, 1, ++nSeed);
                    ClImage out;
                    ClIpFilterGauss filter;
                    filter.m_nMode = nMode;
                    EXPECT_EQ(filter.ApplyParam(in, out, dSigma, 0), 0);
                    const std::vector<double> aKernel = dSigma > 0.0
                                                            ? Bell(dSigma, filter.m_nFilterWidth)
                                                            : std::vector<double>{1.0};
                    EXPECT_EQ(Pixels(out), NaiveFiltered(nMode, Pixels(in), NaiveTaps(aKernel),
                                                         nType == ClImage::eInt8));
                    EXPECT_EQ(out.DataType(), nType);
                }
}

TEST(IpFilterGauss, KeepsDescriptionAndInput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 9, 7, 1, 4);
    in.SetAttribute(7);
    in.SetContent(ClImage::eHSV);
    const ClTestImage copy = in;
    ClImage out;
    ClIpFilterGauss filter;
    EXPECT_EQ(filter.ApplyParam(in, out, 1.0, 3), 0);
    EXPECT_EQ(out.Attribute(), 7);
    EXPECT_EQ(out.Content(), ClImage::eHSV);
    EXPECT_EQ(out.PelsX(), in.PelsX());
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 255.0);
    TestSupport::ExpectSameImage(in, copy);
}

} // namespace
