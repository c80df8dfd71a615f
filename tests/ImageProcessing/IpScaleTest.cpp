#include "ImageProcessing/IpScale.h"

#include "ImageProcessing/NaiveOperators.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ClTestImage;
using TestSupport::EdgeImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

ClTestImage Scaled(ClImage& In, double dFactor) {
    ClIpScale scale;
    ClTestImage out;
    EXPECT_EQ(scale.ApplyParam(In, out, dFactor), 0);
    return out;
}

// By hand

TEST(IpScale, MultipliesAndSaturates) {
    ClTestImage in = Img({{0, 1, 100, 127, 128, 200}});
    EXPECT_EQ(Pixels(Scaled(in, 2.0)), Rows({{0, 2, 200, 254, 255, 255}}));
    EXPECT_EQ(Pixels(Scaled(in, -1.0)), Rows({{0, 0, 0, 0, 0, 0}}));
}

TEST(IpScale, Truncates) {
    ClTestImage in = Img({{3, 5, 7}});
    EXPECT_EQ(Pixels(Scaled(in, 0.5)), Rows({{1, 2, 3}}));
    ClTestImage words = Img(ClImage::eInt16, {{-3, 5, -7}});
    EXPECT_EQ(Pixels(Scaled(words, 0.5)), Rows({{-1, 2, -3}}));
}

TEST(IpScale, CopiesForAFactorOfOne) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 3, 3, 1);
    in.SetWhite(100.0); // most samples lie above
    in.SetContent(ClImage::eHSV);
    ExpectSameImage(Scaled(in, 1.0), in);
    ClTestImage bytes = Img({{0, 100, 255}});
    EXPECT_EQ(Pixels(Scaled(bytes, 1.0)), Rows({{0, 100, 255}}));
}

TEST(IpScale, ClipsToTheRangeOfTheImage) {
    ClTestImage in = Img(ClImage::eUInt16, {{100, 1000, 4000}});
    in.SetBlack(500.0);
    in.SetWhite(4095.0);
    EXPECT_EQ(Pixels(Scaled(in, 1.5)), Rows({{500, 1500, 4095}}));
    ClTestImage bytes = Img({{0, 100, 200}});
    bytes.SetBlack(150.0);
    bytes.SetWhite(50.0);
    EXPECT_EQ(Pixels(Scaled(bytes, 1.0)), Rows({{50, 100, 150}}));
}

TEST(IpScale, ClipsWhatIsNotANumberToTheLowerBound) {
    const double dNaN = std::nan("");
    ClTestImage in = Img(ClImage::eFloat32, {{dNaN, 0.25}});
    EXPECT_EQ(RealPixels(Scaled(in, 2.0)), RealRows({{-1.0, 0.5}}));
    EXPECT_EQ(RealPixels(Scaled(in, dNaN)), RealRows({{-1.0, -1.0}}));
    ClTestImage bytes = Img({{0, 100}});
    EXPECT_EQ(Pixels(Scaled(bytes, dNaN)), Rows({{0, 0}}));
    EXPECT_EQ(Pixels(Scaled(bytes, std::numeric_limits<double>::infinity())), Rows({{0, 255}}));
}

// Against the definition

TEST(IpScale, EqualsItsDefinitionForEveryType) {
    for (unsigned char nType : caPixelTypes)
        for (double dFactor : {0.0, 0.3, 0.999999, 1.0, 1.000001, 2.2, -1.0, -0.7, 1e10, 1e300})
            for (int nShift : {-1, 0}) {
                ClTestImage in =
                    nShift < 0 ? RandomImage(nType, 7, 5, 3, 1) : EdgeImage(nType, nShift);
                RealRows aExpected = RealPixels(in);
                for (auto& aRow : aExpected)
                    for (double& d : aRow)
                        d = TestSupport::Stored(nType, TestSupport::NaiveScaled(in, d, dFactor));
                EXPECT_EQ(RealPixels(Scaled(in, dFactor)), aExpected)
                    << int{nType} << " * " << dFactor;
            }
}

// The frame

TEST(IpScale, WorksOnOneImage) {
    for (unsigned char nType : caPixelTypes) {
        ClIpScale scale;
        ClTestImage image = TestSupport::FlatImage(nType, 3, 2, 1, 1.0);
        EXPECT_EQ(scale.ApplyParam(image, 0.5), 0);
        const double dExpected = ClImage::IsFloat(nType) ? 0.5 : 0.0;
        EXPECT_EQ(RealPixels(image),
                  RealRows({{dExpected, dExpected, dExpected}, {dExpected, dExpected, dExpected}}));
        EXPECT_EQ(scale.m_dScaleFactor, 0.5);
        EXPECT_EQ(scale.ApplyParam(image, 1.0), 0);
        EXPECT_EQ(RealPixels(image)[0][0], dExpected);
        EXPECT_EQ(scale.ApplyParam(image), 0); // the form of the frame
    }
}

TEST(IpScale, SetsTheTableAndNotInPlace) {
    ClIpScale scale;
    EXPECT_TRUE(scale.m_bUseLUT);
    EXPECT_FALSE(scale.m_bInPlace);
    EXPECT_EQ(scale.m_dScaleFactor, 1.0);
}

TEST(IpScale, AnswersAnOutputOfAnotherType) {
    ClIpScale scale;
    ClTestImage in = Img({{1}});
    ClTestImage out = TestSupport::FlatImage(ClImage::eInt8, 1, 1, 1, 5);
    EXPECT_EQ(scale.DoProcess(in, out), -101);
    EXPECT_EQ(scale.DoProcess(out, in), -101);
    EXPECT_EQ(Pixels(out), Rows({{5}}));
}

TEST(IpScale, AnswersEveryMissingAllocation) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt16}) {
        ClIpScale scale;
        ClTestImage image = RandomImage(nType, 3, 2, 1, 1);
        const ClTestImage copy = image;
        TestSupport::FailEachAllocation([&] { EXPECT_EQ(scale.ApplyParam(image, 1.0), 0); });
        ExpectSameImage(image, copy);
    }
}

} // namespace
