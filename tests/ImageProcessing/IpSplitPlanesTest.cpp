#include "ImageProcessing/IpSplitPlanes.h"

#include "ImageProcessing/MissingMemory.h"

#include "support/Images.h"
#include "support/Throws.h"

#include <vector>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectEmptyImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

/// Sample `nPlane` of every pixel.
RealRows PlaneOf(const ClImage& Image, int nPlane) {
    RealRows aRows;
    for (int y = 0; y < Image.Height(); ++y) {
        aRows.emplace_back();
        for (int x = 0; x < Image.Width(); ++x)
            aRows.back().push_back(TestSupport::Sample(Image, x, y, nPlane));
    }
    return aRows;
}

TEST(IpSplitPlanes, GivesEachTargetItsPlane) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes = 1; nPlanes <= 4; ++nPlanes) {
            ClTestImage in = RandomImage(nType, 5, 3, nPlanes, 11);
            const ClTestImage copy = in;
            ClImage aOut[4];
            ClIpSplitPlanes split;
            EXPECT_EQ(split.ApplyParam(in, &aOut[0], &aOut[1], &aOut[2], &aOut[3]), 0);
            for (int p = 0; p < nPlanes; ++p)
                EXPECT_EQ(RealPixels(aOut[p]), PlaneOf(in, p));
            for (int p = nPlanes; p < 4; ++p)
                ExpectEmptyImage(aOut[p]);
            ExpectSameImage(in, copy);
        }
}

TEST(IpSplitPlanes, GivesTargetsTypeSizeAndResolution) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 3, 3, 1);
    in.SetPelsX(100);
    in.SetPelsY(200);
    in.SetWhite(1000.0);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(8);
    ClImage out;
    ClIpSplitPlanes split;
    EXPECT_EQ(split.ApplyParam(in, nullptr, &out, nullptr, nullptr), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt16);
    EXPECT_EQ(out.Width(), 5);
    EXPECT_EQ(out.Height(), 3);
    EXPECT_EQ(out.Planes(), 1);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 65535.0); // of the type
    EXPECT_EQ(out.Content(), ClImage::eGrayscale);
    EXPECT_EQ(out.Attribute(), 0); // its own
}

TEST(IpSplitPlanes, TakesASinglePlaneWithoutTheOthers) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    for (int p = 0; p < 3; ++p) {
        ClImage out;
        ClIpSplitPlanes split;
        split.m_pInImage = &in;
        split.m_apOutPlane[p] = &out;
        EXPECT_EQ(split.Apply(), 0);
        EXPECT_EQ(Pixels(out), Rows({{1 + p, 4 + p}}));
    }
}

TEST(IpSplitPlanes, LeavesEqualTargetsTheLastPlane) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    ClImage out;
    ClIpSplitPlanes split;
    EXPECT_EQ(split.ApplyParam(in, &out, &out, &out, &out), 0);
    EXPECT_EQ(Pixels(out), Rows({{3, 6}}));
}

TEST(IpSplitPlanes, ThrowsForFivePlanes) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 3, 2, 5, 1);
    ClTestImage out = Img({{9}});
    ClIpSplitPlanes split;
    try {
        split.ApplyParam(in, &out, nullptr, nullptr, nullptr);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_EQ(e.Number(), -35);
        EXPECT_EQ(TestSupport::Words(e), "Image has more than 4 planes.");
        EXPECT_STREQ(e.File(), "ImageProcessing/IpSplitPlanes");
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpSplitPlanes, NamesFivePlanesAlsoOfAnUnknownType) {
    unsigned char aBytes[64] = {};
    ClImage in;
    in.Attach(aBytes, 7, 1, 1, 5, 0, 0);
    ClIpSplitPlanes split;
    EXPECT_THROWS(split.ApplyParam(in, nullptr, nullptr, nullptr, nullptr), ClException, -35,
                  "Image has more than 4 planes.");
}

TEST(IpSplitPlanes, DoesNothingForAnUnknownType) {
    unsigned char aBytes[64] = {};
    ClTestImage out = Img({{9}});
    ClIpSplitPlanes split;
    for (unsigned char nType :
         {ClImage::eTypeUnknown, ClImage::eTypeDefault, ClImage::EDataType(7)}) {
        ClImage in;
        in.Attach(aBytes, nType, 1, 1, 1, 0, 0);
        EXPECT_EQ(split.ApplyParam(in, &out, &out, &out, &out), 0);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
    }
    ClImage empty;
    EXPECT_EQ(split.ApplyParam(empty, &out, &out, &out, &out), 0);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpSplitPlanes, RefusesAMissingImageAndMissingPixels) {
    ClIpSplitPlanes split;
    EXPECT_EQ(split.Apply(), -37);
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 4, 4, 3, 0, 0);
    ClTestImage out = Img({{9}});
    EXPECT_EQ(split.ApplyParam(in, &out, nullptr, nullptr, nullptr), -37);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpSplitPlanes, RefusesAnImageWithoutArea) {
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 4, 0, 3, 0, 0);
    ClTestImage out = Img({{9}});
    ClIpSplitPlanes split;
    EXPECT_THROWS(split.ApplyParam(in, &out, nullptr, nullptr, nullptr), ClException, -101,
                  "Image area must be positive");
}

TEST(IpSplitPlanes, MayGiveAPlaneToTheInput) {
    for (int nTarget = 0; nTarget < 3; ++nTarget) {
        ClTestImage image = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
        image.SetAttribute(8);
        ClImage aOut[3];
        ClImage* apOut[3] = {&aOut[0], &aOut[1], &aOut[2]};
        apOut[nTarget] = &image;
        ClIpSplitPlanes split;
        EXPECT_EQ(split.ApplyParam(image, apOut[0], apOut[1], apOut[2], nullptr), 0);
        for (int p = 0; p < 3; ++p)
            EXPECT_EQ(Pixels(*apOut[p]), Rows({{1 + p, 4 + p}}));
        EXPECT_EQ(image.Attribute(), 8); // the target's own
    }
}

TEST(IpSplitPlanes, MayGiveAPlaneToAnImageThatSharesTheBuffer) {
    ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    const ClTestImage copy = in;
    ClImage out;
    out.Attach(in);
    ClIpSplitPlanes split;
    EXPECT_EQ(split.ApplyParam(in, &out, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 4}}));
    ExpectSameImage(in, copy);
}

TEST(IpSplitPlanes, SplitsOrLeavesItsInputWhereMemoryIsMissing) {
    const ClTestImage before = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    ClTestImage image = before; // a target, too
    ClImage aOut[2];
    TestSupport::ExpectAllOrNothing(
        [&] {
            aOut[0].Delete();
            aOut[1].Delete();
            EXPECT_EQ(ClIpSplitPlanes().ApplyParam(image, &image, &aOut[0], &aOut[1], nullptr), 0);
        },
        [&] { ExpectSameImage(image, before); },
        [&] {
            EXPECT_EQ(Pixels(image), Rows({{1, 4}}));
            EXPECT_EQ(Pixels(aOut[0]), Rows({{2, 5}}));
            EXPECT_EQ(Pixels(aOut[1]), Rows({{3, 6}}));
            image = before;
        });
}

} // namespace
