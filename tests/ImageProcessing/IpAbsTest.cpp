#include "ImageProcessing/IpAbs.h"

#include "ImageProcessing/NaiveArithmetic.h"
#include "support/AllocationFailures.h"

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

ClTestImage Abs(ClImage& In) {
    ClIpAbs abs;
    ClTestImage out;
    EXPECT_EQ(abs.ApplyParam(In, out), 0);
    return out;
}

TEST(IpAbs, TakesTheSignAway) {
    ClTestImage in = Img(ClImage::eInt16, {{-5, 0, 5, 32767, -32767}});
    EXPECT_EQ(Pixels(Abs(in)), Rows({{5, 0, 5, 32767, 32767}}));
    ClTestImage floats = Img(ClImage::eFloat32, {{-0.5, 0.25, -300.0}});
    EXPECT_EQ(RealPixels(Abs(floats)), RealRows({{0.5, 0.25, 300.0}})); // not clipped
}

TEST(IpAbs, KeepsTheLowestSignedSample) {
    ClTestImage bytes = Img(ClImage::eInt8, {{-128, -127, 127}});
    EXPECT_EQ(Pixels(Abs(bytes)), Rows({{-128, 127, 127}}));
    ClTestImage words = Img(ClImage::eInt16, {{-32768}});
    EXPECT_EQ(Pixels(Abs(words)), Rows({{-32768}}));
    ClTestImage ints = Img(ClImage::eInt32, {{-2147483648.0}});
    EXPECT_EQ(RealPixels(Abs(ints)), RealRows({{-2147483648.0}}));
}

TEST(IpAbs, CopiesUnsignedImages) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eUInt16, ClImage::eUInt32}) {
        ClTestImage in = RandomImage(nType, 7, 5, 3, 1);
        ExpectSameImage(Abs(in), in);
    }
}

TEST(IpAbs, EqualsItsDefinitionForEveryType) {
    for (unsigned char nType : caPixelTypes)
        for (bool bUseLUT : {false, true}) {
            ClTestImage in = EdgeImage(nType, 0);
            RealRows aExpected = RealPixels(in);
            for (double& d : aExpected[0])
                d = TestSupport::Stored(nType, d < 0 ? -d : d);
            ClIpAbs abs;
            abs.m_bUseLUT = bUseLUT;
            ClImage out;
            EXPECT_EQ(abs.ApplyParam(in, out), 0);
            EXPECT_EQ(RealPixels(out), aExpected) << int{nType};
        }
}

TEST(IpAbs, WorksOnOneImage) {
    ClIpAbs abs;
    ClTestImage image = Img(ClImage::eInt8, {{-1, 2, -3}});
    EXPECT_EQ(abs.ApplyParam(image), 0);
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
}

TEST(IpAbs, AnswersEveryMissingAllocation) {
    ClIpAbs abs;
    ClTestImage image = Img({{1, 2, 3}});
    TestSupport::FailEachAllocation([&] { EXPECT_EQ(abs.ApplyParam(image), 0); });
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
}

} // namespace
