#include "ImageProcessing/IpUnsharpMasking.h"

#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/NaiveLinearFilter.h"
#include "ImageProcessing/NaiveSharpening.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/InstructionLevels.h"
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
using TestSupport::NaiveSharpened;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;
using TestSupport::TreeEnum;
using TestSupport::TreeNumber;
using TestSupport::TreePointer;

/// The low pass of each plane by itself, as rows of one image.
Rows LowPass(const ClTestImage& In, double dSigma, long nWidth, long nMode) {
    Rows aLow = Pixels(In);
    const auto nPlanes = static_cast<std::size_t>(In.Planes());
    for (std::size_t p = 0; p < nPlanes; ++p) {
        ClImage plane;
        In.GetPlane(static_cast<int>(p), plane);
        ClImage out;
        ClIpFilterGauss gauss;
        gauss.m_nMode = nMode;
        EXPECT_EQ(gauss.ApplyParam(plane, out, dSigma, nWidth), 0);
        const Rows aPlane = Pixels(out);
        for (std::size_t y = 0; y < aLow.size(); ++y)
            for (std::size_t x = 0; x < aPlane[y].size(); ++x)
                aLow[y][x * nPlanes + p] = aPlane[y][x];
    }
    return aLow;
}

TEST(IpUnsharpMasking, BeginsWithItsDefaults) {
    ClIpUnsharpMasking unsharp;
    EXPECT_EQ(unsharp.m_nLowPassFilterWidth, 0);
    EXPECT_EQ(unsharp.m_dGaussSigma, 2.0);
    EXPECT_EQ(unsharp.m_dAmplificationFactor, 1.0);
    EXPECT_EQ(unsharp.m_nThreshold, 0);
    EXPECT_EQ(unsharp.m_nMode, 3);
}

TEST(IpUnsharpMasking, CreatesItsLikeWithDefaults) {
    ClIpUnsharpMasking unsharp;
    unsharp.m_nMode = 1;
    std::unique_ptr<ClProcessorBase> pNew(unsharp.Create());
    EXPECT_STREQ(pNew->Name(), "ClIpUnsharpMasking");
    auto* pUnsharp = dynamic_cast<ClIpUnsharpMasking*>(pNew.get());
    ASSERT_NE(pUnsharp, nullptr);
    EXPECT_EQ(pUnsharp->m_nMode, 3);
    TestSupport::FailEachAllocation([&] { pNew.reset(unsharp.Create()); });
}

TEST(IpUnsharpMasking, PublishesItsSettings) {
    ClIpUnsharpMasking unsharp;
    ExpectTree(
        unsharp,
        {TreePointer("pInImage", unsharp.m_pInImage, ePfIn, "In: Original Image"),
         TreePointer("pOutImage", unsharp.m_pOutImage, ePfOut, "Out: Output Image"),
         TreeNumber("nLowPassFilterWidth", unsharp.m_nLowPassFilterWidth, 0,
                    "In: Width of gauss filter."),
         TreeNumber("dGaussSigma", unsharp.m_dGaussSigma, 2.0, "In: Sigma of the gauss filter."),
         TreeNumber("dAmplificationFactor", unsharp.m_dAmplificationFactor, 1.0,
                    "In: Factor for amplifying the edge image."),
         TreeNumber("nThreshold", unsharp.m_nThreshold, 0, "In: Threshold for suppressing noise."),
         TreeEnum("nMode", unsharp.m_nMode, 3, TestSupport::caFilterModeNames)});
}

TEST(IpUnsharpMasking, KeepsItsSettingsWhilePublishing) {
    ClIpUnsharpMasking unsharp;
    unsharp.m_nThreshold = 8;
    ClParameterContainer container;
    unsharp.QueryParameters(container);
    EXPECT_EQ(unsharp.m_nThreshold, 8);
}

TEST(IpUnsharpMasking, PrintsNoSettings) {
    ClIpUnsharpMasking unsharp;
    char szText[4] = "abc";
    EXPECT_EQ(unsharp.ParameterString(szText, sizeof szText), 0);
    EXPECT_STREQ(szText, "");
    EXPECT_THROWS(unsharp.ParameterString(szText, 0), ClException, -101,
                  "Unexpected zero-length string");
}

TEST(IpUnsharpMasking, RefusesMissingImages) {
    ClIpUnsharpMasking unsharp;
    EXPECT_FALSE(unsharp.CanApply());
    EXPECT_THROWS(unsharp.Apply(), ClException, -701, "Input image not assigned");
    ClTestImage in = Img({{1}});
    unsharp.m_pInImage = &in;
    EXPECT_TRUE(unsharp.CanApply());
    EXPECT_THROWS(unsharp.Apply(), ClException, -701, "m_pOutImage is not set");
}

TEST(IpUnsharpMasking, TakesUnsignedBytesOnly) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        ClTestImage in = RandomImage(nType, 9, 9, 1, 1);
        ClTestImage out = Img({{9}});
        ClIpUnsharpMasking unsharp;
        if (nType == ClImage::eUInt8) {
            EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
            continue;
        }
        EXPECT_THROWS(unsharp.ApplyParam(in, out, 0), ClException, -33,
                      "Input pixel type \"" + std::string(ClImage::TypeText(nType)) +
                          "\" not supported by processor.");
        EXPECT_FALSE(unsharp.CanApply());
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
}

TEST(IpUnsharpMasking, StoresTheWidthThatItIsGiven) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 30, 20, 1, 1);
    ClImage out;
    ClIpUnsharpMasking unsharp;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 5), 0);
    EXPECT_EQ(unsharp.m_nLowPassFilterWidth, 5);
    EXPECT_EQ(Pixels(out), NaiveSharpened(Pixels(in), LowPass(in, 2.0, 5, 3), 1.0, 0));
}

TEST(IpUnsharpMasking, AddsTheDifferenceToTheLowPass) {
    // Sigma 0 leaves a low pass of p - 1 for every p above 0: p + 1, and 255 at the end.
    ClTestImage in = Img({{0, 1, 100, 254, 255}});
    ClImage out;
    ClIpUnsharpMasking unsharp;
    unsharp.m_dGaussSigma = 0.0;
    unsharp.m_nMode = 1;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 2, 101, 255, 255}}));
    unsharp.m_dAmplificationFactor = -2.5;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 97, 251, 252}})); // truncated
}

TEST(IpUnsharpMasking, LeavesNoiseWithinTheThresholdAlone) {
    // Noise of 5 around 100, whose low pass stays within 95 to 105 less 1, and one edge.
    ClTestImage in = RandomImage(ClImage::eUInt8, 40, 30, 1, 5);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            TestSupport::SetSample(in, x, y, 0, 100 + std::fmod(TestSupport::Sample(in, x, y), 5));
    const Rows aFlat = Pixels(in);
    ClImage out;
    ClIpUnsharpMasking unsharp;
    unsharp.m_nThreshold = 5;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_EQ(Pixels(out), aFlat);
    unsharp.m_nThreshold = 0;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_NE(Pixels(out), aFlat);
    TestSupport::SetSample(in, 20, 15, 0, 200);
    unsharp.m_nThreshold = 5;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_GT(TestSupport::Sample(out, 20, 15), 250);
    EXPECT_EQ(TestSupport::Sample(out, 0, 0), aFlat[0][0]);
}

TEST(IpUnsharpMasking, CountsTheThresholdItselfAsNoise) {
    // The tap 4095 of width 1: the difference is exactly 1.
    ClTestImage in = Img({{7, 8, 9}});
    ClImage out;
    ClIpUnsharpMasking unsharp;
    unsharp.m_nThreshold = 1;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 1), 0);
    EXPECT_EQ(Pixels(out), Rows({{7, 8, 9}}));
    unsharp.m_nThreshold = -1; // no difference lies within 1 to -1
    EXPECT_EQ(unsharp.ApplyParam(in, out, 1), 0);
    EXPECT_EQ(Pixels(out), Rows({{8, 9, 10}}));
}

TEST(IpUnsharpMasking, EqualsTheDefinition) {
    unsigned nSeed = 500;
    const struct {
        double m_dAmplification;
        long m_nThreshold;
    } aSettings[] = {{1.0, 0}, {1.0, 5}, {1.7, 0}, {-0.6, 3}, {0.0, 0}};
    for (const auto& size : caOddSizes)
        for (int nPlanes : {1, 3})
            for (const auto& settings : aSettings)
                for (long nMode : {1L, 2L, 3L}) {
                    ClTestImage in = RandomImage(ClImage::eUInt8, size.m_nWidth, size.m_nHeight,
                                                 nPlanes, ++nSeed);
                    ClIpUnsharpMasking unsharp;
                    unsharp.m_dGaussSigma = 0.9;
                    unsharp.m_nMode = nMode;
                    unsharp.m_dAmplificationFactor = settings.m_dAmplification;
                    unsharp.m_nThreshold = settings.m_nThreshold;
                    ClImage out;
                    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
                    const Rows aExpected =
                        NaiveSharpened(Pixels(in), LowPass(in, 0.9, 0, nMode),
                                       settings.m_dAmplification, settings.m_nThreshold);
                    EXPECT_EQ(Pixels(out), aExpected);
                    EXPECT_EQ(unsharp.ApplyParam(in, in, 0), 0); // through a local image
                    EXPECT_EQ(Pixels(in), aExpected);
                }
}

TEST(IpUnsharpMasking, GivesZeroForAnAmplificationThatIsNoNumber) {
    ClTestImage in = Img({{7, 8, 0}});
    ClImage out;
    ClIpUnsharpMasking unsharp;
    unsharp.m_dAmplificationFactor = std::nan("");
    EXPECT_EQ(unsharp.ApplyParam(in, out, 1), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 0}}));
    unsharp.m_dAmplificationFactor = std::numeric_limits<double>::infinity();
    EXPECT_EQ(unsharp.ApplyParam(in, out, 1), 0);
    EXPECT_EQ(Pixels(out), Rows({{255, 255, 0}})); // 0 times infinity
}

TEST(IpUnsharpMasking, KeepsDescriptionAndClearsThePadding) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 3, 1, 1);
    in.SetAttribute(3);
    ClTestImage out = FlatImage(ClImage::eUInt8, 5, 3, 1, 77);
    ClIpUnsharpMasking unsharp;
    EXPECT_EQ(unsharp.ApplyParam(in, out, 0), 0);
    EXPECT_EQ(out.Attribute(), 3);
    EXPECT_EQ(out.PelsX(), in.PelsX());
    for (int y = 0; y < 3; ++y)
        for (int x = 5; x < 8; ++x)
            EXPECT_EQ(out.LineData(y)[x], 0);
}

TEST(IpUnsharpMasking, PassesOnTheFailureOfItsLowPass) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 9, 9, 1, 1);
    const ClTestImage copy = image;
    ClIpUnsharpMasking unsharp;
    unsharp.m_nMode = 8;
    EXPECT_THROWS(unsharp.ApplyParam(image, image, 0), ClException, -701,
                  "m_pInDxImage is not set");
    unsharp.m_nMode = 32;
    EXPECT_THROWS(unsharp.ApplyParam(image, image, 0), ClExTessarin, -6, "Unknown error code.");
    TestSupport::ExpectSameImage(image, copy);
    ClImage claim; // pixels that are not there
    claim.Attach(nullptr, copy);
    unsharp.m_nMode = 3;
    ClImage out;
    EXPECT_EQ(unsharp.DoProcess(claim, out), -35);
    ClTestImage planes = RandomImage(ClImage::eUInt8, 9, 9, 5, 1);
    EXPECT_THROWS(unsharp.ApplyParam(planes, planes, 0), ClException, -35,
                  "Image has more than 4 planes.");
}

TEST(IpUnsharpMasking, AnswersEveryMissingAllocation) {
    const ClTestImage copy = RandomImage(ClImage::eUInt8, 20, 9, 1, 1);
    ClTestImage image;
    ClIpUnsharpMasking unsharp;
    TestSupport::FailEachAllocation([&] {
        image = copy;
        EXPECT_EQ(unsharp.ApplyParam(image, image, 0), 0);
    });
    EXPECT_EQ(Pixels(image), NaiveSharpened(Pixels(copy), LowPass(copy, 2.0, 0, 3), 1.0, 0));
}

/// In one pass over the columns, and what is next to that.
TEST(IpUnsharpMasking, SharpensColumnsAsItsDefinition) {
    const ClTestImage In = RandomImage(ClImage::eUInt8, 75, 21, 1, 11);
    for (const double dSigma : {0.0, 0.9, 1.5, 3.0})
        for (const long nWidth : {0L, 3L, 4L, 9L})
            for (const double dAmplification : {1.0, 1.5})
                for (const long nThreshold : {0L, 30L}) {
                    SCOPED_TRACE(testing::Message() << dSigma << ' ' << nWidth << ' '
                                                    << dAmplification << ' ' << nThreshold);
                    const Rows aExpected = NaiveSharpened(
                        Pixels(In), LowPass(In, dSigma, nWidth, 2), dAmplification, nThreshold);
                    TestSupport::AtEveryLevel([&] {
                        ClIpUnsharpMasking unsharp;
                        unsharp.m_nMode = 2;
                        unsharp.m_dGaussSigma = dSigma;
                        unsharp.m_dAmplificationFactor = dAmplification;
                        unsharp.m_nThreshold = nThreshold;
                        ClTestImage in = In;
                        ClImage out;
                        EXPECT_EQ(unsharp.ApplyParam(in, out, nWidth), 0);
                        EXPECT_EQ(Pixels(out), aExpected);
                        EXPECT_EQ(unsharp.ApplyParam(in, in, nWidth), 0);
                        EXPECT_EQ(Pixels(in), aExpected) << "in place";
                    });
                }
}

} // namespace
