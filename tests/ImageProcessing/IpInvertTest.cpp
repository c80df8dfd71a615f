#include "ImageProcessing/IpInvert.h"

#include "ImageProcessing/NaiveArithmetic.h"
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

ClTestImage Inverted(ClImage& In) {
    ClIpInvert invert;
    ClTestImage out;
    EXPECT_EQ(invert.ApplyParam(In, out), 0);
    return out;
}

TEST(IpInvert, MirrorsEightBits) {
    ClTestImage in = Img({{0, 255, 100, 127, 128}});
    EXPECT_EQ(Pixels(Inverted(in)), Rows({{255, 0, 155, 128, 127}}));
}

TEST(IpInvert, MirrorsEveryIntegerTypeInItsRange) {
    for (unsigned char nType : caPixelTypes) {
        if (ClImage::IsFloat(nType))
            continue;
        ClTestImage in = RandomImage(nType, 7, 5, 1, 1);
        ClTestImage out = Inverted(in);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 7; ++x)
                EXPECT_EQ(TestSupport::Sample(out, x, y) + TestSupport::Sample(in, x, y),
                          in.Black() + in.White())
                    << int{nType};
        ExpectSameImage(Inverted(out), in);
    }
}

TEST(IpInvert, MirrorsFloatingPointSamplesAroundZero) {
    ClTestImage in = Img(ClImage::eDouble64, {{-1.0, 1.0, 0.25, 3.0}});
    EXPECT_EQ(RealPixels(Inverted(in)), RealRows({{1.0, -1.0, -0.25, -3.0}}));
}

TEST(IpInvert, DoesNotClip) {
    ClTestImage in = Img({{0, 100, 255}});
    in.SetBlack(50.0);
    in.SetWhite(150.0);
    EXPECT_EQ(Pixels(Inverted(in)), Rows({{200, 100, 201}})); // -55 is 201 modulo 256
}

TEST(IpInvert, EvaluatesFromLeftToRight) {
    ClIpInvert invert;
    ClImage in;
    ClImage out;
    in.SetBlack(1e16); // above 2^53 doubles are even numbers, and ties go to the multiples of 4
    in.SetWhite(3.0);
    out.SetBlack(0.0);
    out.SetWhite(3.0 - 1e16);
    // 1e16 - 1 is 1e16, + 3 is 1e16 + 4, - 1e16 is 4; 3 - 1 would be 2.
    EXPECT_EQ(invert.GetValue(in, out, 1.0), 4.0);
}

TEST(IpInvert, MapsToTheRangeOfTheOutput) {
    ClIpInvert invert;
    ClTestImage in = Img({{0}});
    ClTestImage out = TestSupport::BlankImage(ClImage::eInt16, 1, 1);
    out.SetBlack(-100.0);
    out.SetWhite(155.0);
    EXPECT_EQ(invert.GetValue(in, out, 0.0), 155.0);
    EXPECT_EQ(invert.GetValue(in, out, 255.0), -100.0);
    EXPECT_EQ(invert.GetValue(in, out, 100.0), 55.0);
    out.SetWhite(-610.0); // and the other way round
    EXPECT_EQ(invert.GetValue(in, out, 0.0), -610.0);
    EXPECT_EQ(invert.GetValue(in, out, 255.0), -100.0);
}

TEST(IpInvert, GivesBlackForARangeWithoutExtent) {
    ClTestImage in = Img({{0, 100, 255}});
    in.SetBlack(42.0);
    in.SetWhite(42.0);
    EXPECT_EQ(Pixels(Inverted(in)), Rows({{42, 42, 42}}));
}

TEST(IpInvert, WorksInPlace) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage image = EdgeImage(nType, 0);
        ClTestImage expected = Inverted(image);
        const unsigned char* pBuffer = image.Data();
        ClIpInvert invert;
        EXPECT_TRUE(invert.m_bInPlace);
        EXPECT_EQ(invert.ApplyParam(image), 0);
        EXPECT_EQ(image.Data(), pBuffer);
        ExpectSameImage(image, expected);
    }
}

TEST(IpInvert, LeavesItsInputAlone) {
    ClTestImage in = RandomImage(ClImage::eInt16, 5, 3, 3, 1);
    const ClTestImage copy = in;
    Inverted(in);
    ExpectSameImage(in, copy);
}

TEST(IpInvert, RefusesAnImageWithoutPixels) {
    ClIpInvert invert;
    EXPECT_THROWS(invert.Apply(), ClException, -701, "Input image not assigned");
    ClImage empty;
    EXPECT_THROWS(invert.ApplyParam(empty), ClException, -33,
                  "Input pixel type \"unknown\" not supported by processor.");
}

TEST(IpInvert, AnswersEveryMissingAllocation) {
    ClIpInvert invert;
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    TestSupport::FailEachAllocation([&] {
        out.Delete();
        EXPECT_EQ(invert.ApplyParam(in, out), 0);
    });
    EXPECT_EQ(Pixels(out), Rows({{254, 253}}));
}

} // namespace
