#include "ImageProcessing/IpMax.h"

#include "ImageProcessing/NaiveArithmetic.h"
#include "support/AllocationFailures.h"

namespace {

using TestSupport::caPixelTypes;
using TestSupport::ceDefault;
using TestSupport::ClTestImage;
using TestSupport::EdgeImage;
using TestSupport::Img;
using TestSupport::NaivePairs;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;
using TestSupport::StRange;

TEST(IpMax, KeepsTheLargerSample) {
    ClIpMax max;
    ClTestImage in1 = Img({{10, 20, 0, 255, 7}});
    ClTestImage in2 = Img({{20, 10, 255, 0, 7}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{20, 20, 255, 255, 7}}));
}

TEST(IpMax, ComparesByValueWhateverTheTypes) {
    ClIpMax max;
    ClTestImage negative = Img(ClImage::eInt32, {{-1, -5, 3}});
    ClTestImage word = Img(ClImage::eUInt32, {{0, 4294967295.0, 2}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(negative, word, out, ClImage::eUInt32), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{0, 4294967295.0, 3}}));
    EXPECT_EQ(max.ApplyParam(word, negative, out, ceDefault), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{0, 4294967295.0, 3}}));
    ClTestImage near = Img(ClImage::eDouble64, {{16777217.0}});
    ClTestImage round = Img(ClImage::eFloat32, {{16777216.0}});
    EXPECT_EQ(max.ApplyParam(round, near, out, ClImage::eInt32), 0);
    EXPECT_EQ(Pixels(out), Rows({{16777217}}));
}

TEST(IpMax, ClipsToTheRangeOfTheOutput) {
    ClIpMax max;
    ClTestImage in1 = Img(ClImage::eInt16, {{-7, 300, 100}});
    ClTestImage in2 = Img(ClImage::eInt16, {{-9, 200, 99}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ClImage::eUInt8), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 255, 100}}));
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ClImage::eFloat32), 0);
    EXPECT_EQ(Pixels(out), Rows({{-1, 1, 1}}));
}

TEST(IpMax, ClipsToWhateverRangeTheOutputHas) {
    ClIpMax max;
    ClTestImage in1 = Img({{100, 200, 10}});
    ClTestImage in2 = Img({{100, 240, 20}});
    ClTestImage out = TestSupport::BlankImage(ClImage::eUInt8, 3, 1);
    out.SetBlack(220.0);
    out.SetWhite(30.0);
    EXPECT_EQ(max.DoProcess(in1, in2, out, 3, 1, 1, 1, 0, 4, 0, 4, 0, 4), 0);
    EXPECT_EQ(Pixels(out), Rows({{100, 220, 30}}));
}

TEST(IpMax, LetsTheSecondWinOnlyWhenGreater) {
    const double dNaN = std::nan("");
    ClIpMax max;
    ClTestImage in1 = Img(ClImage::eFloat32, {{dNaN, 0.5, dNaN, -0.0}});
    ClTestImage in2 = Img(ClImage::eFloat32, {{0.5, dNaN, dNaN, 0.0}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(RealPixels(out), RealRows({{-1.0, 0.5, -1.0, 0.0}}));
    EXPECT_TRUE(std::signbit(TestSupport::Sample(out, 3, 0)));
}

TEST(IpMax, EqualsItsDefinitionForEveryCombinationOfTypes) {
    unsigned nSeed = 0;
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nOut : caPixelTypes)
                for (int nShift : {-1, 0, 1, 5}) { // -1 for random images
                    ++nSeed;
                    ClTestImage in1 =
                        nShift < 0 ? RandomImage(nType1, 7, 3, 1, nSeed) : EdgeImage(nType1, 0);
                    ClTestImage in2 = nShift < 0 ? RandomImage(nType2, 7, 3, 1, nSeed + 1000)
                                                 : EdgeImage(nType2, nShift);
                    ClIpMax max;
                    ClImage out;
                    EXPECT_EQ(max.ApplyParam(in1, in2, out, nOut), 0);
                    const StRange Range(nOut);
                    EXPECT_EQ(RealPixels(out), NaivePairs(in1, in2, nOut,
                                                          [&](double a, double b) {
                                                              return Range.Clip(std::max(a, b));
                                                          }))
                        << int{nType1} << ' ' << int{nType2} << ' ' << int{nOut};
                }
}

TEST(IpMax, EqualsItsDefinitionOnEverySizeOfEightBits) {
    const struct {
        int m_nWidth, m_nHeight, m_nPlanes1, m_nPlanes2;
    } aSizes[] = {{1, 1, 1, 1},  {15, 3, 1, 1}, {17, 5, 1, 1},
                  {33, 2, 3, 3}, {33, 2, 3, 1}, {129, 3, 4, 4}};
    for (const auto& Size : aSizes) {
        ClTestImage in1 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes1, 1);
        ClTestImage in2 =
            RandomImage(ClImage::eUInt8, Size.m_nWidth, Size.m_nHeight, Size.m_nPlanes2, 2);
        ClIpMax max;
        ClImage out;
        EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), 0);
        EXPECT_EQ(RealPixels(out), NaivePairs(in1, in2, ClImage::eUInt8,
                                              [](double a, double b) { return std::max(a, b); }));
    }
}

TEST(IpMax, LeavesTheOutputAloneForPlanesThatCannotBePaired) {
    ClIpMax max;
    ClTestImage in1 = RandomImage(ClImage::eUInt8, 3, 2, 1, 1);
    ClTestImage in2 = RandomImage(ClImage::eUInt8, 3, 2, 3, 2);
    ClTestImage out = RandomImage(ClImage::eUInt8, 3, 2, 1, 3);
    const ClTestImage before = out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Pixels(before));
}

TEST(IpMax, AnswersWhatTheFrameRefuses) {
    ClIpMax max;
    EXPECT_EQ(max.Apply(), -37);
    ClTestImage in1 = Img({{1, 2}});
    ClTestImage in2 = Img({{1}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), -44);
    EXPECT_EQ(max.ApplyParam(in1, in1, out, 7), -101);
    alignas(8) unsigned char aBytes[16] = {};
    ClImage strange;
    strange.Attach(aBytes, 3, 1, 1, 1, 0, 0);
    EXPECT_EQ(max.DoProcess(strange, in2, in2, 1, 1, 1, 1, 0, 4, 0, 4, 0, 4), -101);
}

TEST(IpMax, TestsTheTypesBeforeItTouchesTheOutput) {
    ClIpMax max;
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = RandomImage(ClImage::eInt16, 3, 2, 3, 1);
    const ClTestImage before(out);
    EXPECT_EQ(max.ApplyParam(in, in, out, 7), -101);
    TestSupport::ExpectSameImage(out, before);
}

TEST(IpMax, UsesTheTableWhereItIsToldTo) {
    ClIpMax max;
    max.m_bUseLUT = true;
    ClTestImage in1 = Img({{10, 20, 0, 255, 7}});
    ClTestImage in2 = Img({{20, 10, 255, 0, 7}});
    ClImage out;
    EXPECT_EQ(max.ApplyParam(in1, in2, out, ceDefault), 0);
    EXPECT_EQ(Pixels(out), Rows({{20, 20, 255, 255, 7}}));
    EXPECT_EQ(max.GetValue(in1, in2, out, 2.5, 2.25), 2.5);
    EXPECT_EQ(max.GetValue(in1, in2, out, -2.5, -2.25), 0.0);
}

TEST(IpMax, WorksInPlace) {
    ClIpMax max;
    ClTestImage in1 = Img({{10, 20}});
    ClTestImage in2 = Img({{20, 10}});
    EXPECT_EQ(max.ApplyParam(in1, in2, in1, ceDefault), 0);
    EXPECT_EQ(Pixels(in1), Rows({{20, 20}}));
    EXPECT_EQ(Pixels(in2), Rows({{20, 10}}));
}

TEST(IpMax, AnswersEveryMissingAllocation) {
    ClIpMax max;
    ClTestImage image = Img({{1, 2, 3}});
    TestSupport::FailEachAllocation(
        [&] { EXPECT_EQ(max.ApplyParam(image, image, image, ceDefault), 0); });
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
}

} // namespace
