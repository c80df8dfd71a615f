#include "ImageProcessing/IpOffset.h"

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

ClTestImage Moved(ClImage& In, double dOffset) {
    ClIpOffset offset;
    ClTestImage out;
    EXPECT_EQ(offset.ApplyParam(In, out, dOffset), 0);
    return out;
}

// By hand

TEST(IpOffset, AddsAndSaturates) {
    ClTestImage in = Img({{0, 5, 100, 250, 255}});
    EXPECT_EQ(Pixels(Moved(in, 10)), Rows({{10, 15, 110, 255, 255}}));
    EXPECT_EQ(Pixels(Moved(in, -10)), Rows({{0, 0, 90, 240, 245}}));
    EXPECT_EQ(Pixels(Moved(in, 0)), Rows({{0, 5, 100, 250, 255}}));
    EXPECT_EQ(Pixels(Moved(in, 1e300)), Rows({{255, 255, 255, 255, 255}}));
}

TEST(IpOffset, CopiesForAnOffsetOfZero) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 3, 3, 1);
    in.SetWhite(100.0); // most samples lie above
    in.SetAttribute(3);
    in.SetContent(ClImage::eHSV);
    ExpectSameImage(Moved(in, 0.0), in);
    ExpectSameImage(Moved(in, 0.99), in);
    ExpectSameImage(Moved(in, -0.99), in);
    ExpectSameImage(Moved(in, std::nan("")), in);
}

TEST(IpOffset, SaturatesAtTheLowerEnd) {
    ClTestImage in = Img(ClImage::eUInt16, {{5, 10, 11}});
    EXPECT_EQ(Pixels(Moved(in, -10)), Rows({{0, 0, 1}}));
}

TEST(IpOffset, TruncatesTheOffsetOfIntegersButNotOfEightBits) {
    ClTestImage bytes = Img({{5, 100}});
    EXPECT_EQ(Pixels(Moved(bytes, -0.5)), Rows({{4, 99}})); // 99.5 truncated
    EXPECT_EQ(Pixels(Moved(bytes, 0.5)), Rows({{5, 100}}));
    ClTestImage words = Img(ClImage::eInt16, {{5, -100}});
    EXPECT_EQ(Pixels(Moved(words, -1.5)), Rows({{4, -101}}));
    EXPECT_EQ(Pixels(Moved(words, 1.5)), Rows({{6, -99}}));
}

TEST(IpOffset, AddsToFloatingPointSamplesInDouble) {
    ClTestImage floats = Img(ClImage::eFloat32, {{0.5, -0.75, 0.1, 5.0}});
    const double dTenth = static_cast<double>(0.1f);
    EXPECT_EQ(
        RealPixels(Moved(floats, 0.25)),
        RealRows({{0.75, -0.5, static_cast<double>(static_cast<float>(dTenth + 0.25)), 1.0}}));
    ExpectSameImage(Moved(floats, 0.0), floats); // 5.0 is not clipped
    ClTestImage clipped = Moved(floats, 1e-300); // anything but 0 does clip
    EXPECT_EQ(RealPixels(clipped), RealRows({{0.5, -0.75, dTenth, 1.0}}));
}

TEST(IpOffset, ClipsWhatIsNotANumberToTheLowerBound) {
    ClTestImage in = Img(ClImage::eDouble64, {{std::nan(""), 0.5}});
    EXPECT_EQ(RealPixels(Moved(in, 0.25)), RealRows({{-1.0, 0.75}}));
    EXPECT_EQ(RealPixels(Moved(in, std::nan(""))), RealRows({{-1.0, -1.0}}));
    ClTestImage bytes = Img({{100}});
    EXPECT_EQ(Pixels(Moved(bytes, std::nan(""))), Rows({{0}}));
}

TEST(IpOffset, ClipsToTheRangeOfTheImage) {
    ClTestImage in = Img(ClImage::eUInt16, {{0, 1000, 4000}});
    in.SetBlack(500.0);
    in.SetWhite(4095.0);
    EXPECT_EQ(Pixels(Moved(in, 100)), Rows({{500, 1100, 4095}}));
    in.SetBlack(4095.0);
    in.SetWhite(500.0);
    EXPECT_EQ(Pixels(Moved(in, 100)), Rows({{500, 1100, 4095}}));
    ClTestImage bytes = Img({{0, 100, 200}});
    bytes.SetBlack(50.0);
    bytes.SetWhite(150.0);
    EXPECT_EQ(Pixels(Moved(bytes, 10)), Rows({{50, 110, 150}}));
}

// Against the definition

TEST(IpOffset, EqualsItsDefinitionForEveryType) {
    for (unsigned char nType : caPixelTypes)
        for (double dOffset : {0.0, 0.25, 1.0, -1.0, 127.5, -128.5, 70000.0, -70000.0, 4294967295.0,
                               -4294967295.0, 4294967296.0, 1e10, -1e10, 1e300, -1e300})
            for (int nShift : {-1, 0}) {
                ClTestImage in =
                    nShift < 0 ? RandomImage(nType, 7, 5, 3, 1) : EdgeImage(nType, nShift);
                RealRows aExpected = RealPixels(in);
                for (auto& aRow : aExpected)
                    for (double& d : aRow)
                        d = TestSupport::Stored(nType, TestSupport::NaiveOffset(in, d, dOffset));
                EXPECT_EQ(RealPixels(Moved(in, dOffset)), aExpected)
                    << int{nType} << " + " << dOffset;
            }
}

// The frame

TEST(IpOffset, WorksOnOneImage) {
    for (unsigned char nType : caPixelTypes) {
        ClIpOffset offset;
        ClTestImage image = TestSupport::FlatImage(nType, 3, 2, 1, 1.0);
        EXPECT_EQ(offset.ApplyParam(image, -1.0), 0);
        EXPECT_EQ(Pixels(image), Rows({{0, 0, 0}, {0, 0, 0}}));
        EXPECT_EQ(offset.m_dOffset, -1.0);
        EXPECT_EQ(offset.ApplyParam(image, 0.0), 0);
        EXPECT_EQ(Pixels(image), Rows({{0, 0, 0}, {0, 0, 0}}));
        EXPECT_EQ(offset.ApplyParam(image), 0); // the form of the frame
    }
}

TEST(IpOffset, CanApplyWithAnyInput) {
    ClIpOffset offset;
    EXPECT_FALSE(offset.CanApply());
    ClImage empty;
    offset.m_pInImage = &empty;
    EXPECT_TRUE(offset.CanApply());
    EXPECT_THROWS(
        offset.Apply(), ClException, -33,
        "Input pixel type \"unknown\" not supported by processor."); // yet it does not run
}

TEST(IpOffset, AnswersAnOutputOfAnotherType) {
    ClIpOffset offset;
    ClTestImage in = Img({{1}});
    ClTestImage out = TestSupport::FlatImage(ClImage::eInt8, 1, 1, 1, 5);
    EXPECT_EQ(offset.DoProcess(in, out), -101);
    EXPECT_EQ(offset.DoProcess(out, in), -101);
    EXPECT_EQ(Pixels(out), Rows({{5}}));
}

TEST(IpOffset, AnswersEveryMissingAllocation) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt16}) {
        ClIpOffset offset;
        ClTestImage image = RandomImage(nType, 3, 2, 1, 1);
        const ClTestImage copy = image;
        TestSupport::FailEachAllocation([&] { EXPECT_EQ(offset.ApplyParam(image, 0.0), 0); });
        ExpectSameImage(image, copy);
    }
}

} // namespace
