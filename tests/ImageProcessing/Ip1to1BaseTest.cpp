// The frame that converts, `ClIp1to1Base`; the other one has a file of its own.

#include "ImageProcessing/Ip1to1Base.h"

#include "ImageProcessing/TestOperator.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/PublishedParameters.h"
#include "support/Throws.h"

#include <memory>
#include <vector>

namespace {

using TestSupport::AddLeftNeighbour;
using TestSupport::caPixelTypes;
using TestSupport::ClTestImage;
using TestSupport::ExpectTree;
using TestSupport::Img;
using TestSupport::Mapped;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::Rows;
using TestSupport::TpIpProbe;
using TestSupport::TreeEnum;
using TestSupport::TreePointer;

using ClIpOld = TpIpProbe<ClIp1to1Base>;

TEST(Ip1to1Base, AnswersMissingImages) {
    ClIpOld ip;
    ClTestImage image = Img({{1}});
    ClImage empty;
    EXPECT_EQ(ip.Apply(), -10);
    ip.m_pInImage = &image;
    EXPECT_EQ(ip.Apply(), -10);
    ip.m_pOutImage = &image;
    ip.m_pInImage = &empty;
    EXPECT_EQ(ip.Apply(), -10);
    EXPECT_EQ(ip.m_pSeenIn, nullptr);
    EXPECT_EQ(Pixels(image), Rows({{1}}));
    EXPECT_FALSE(ip.CanApply());
}

TEST(Ip1to1Base, ConvertsEveryTypeIntoEveryOther) {
    const auto f = [](double d) { return d * 0.5 - 3.25; };
    unsigned nSeed = 0;
    for (unsigned char nIn : caPixelTypes)
        for (unsigned char nOut : caPixelTypes)
            for (bool bUseLUT : {false, true}) {
                ClTestImage in = RandomImage(nIn, 7, 3, 3, ++nSeed);
                in.SetAttribute(5);
                in.SetContent(ClImage::eXYZ);
                ClIpOld ip;
                ip.m_Value = f;
                ip.m_bUseLUT = bUseLUT;
                ClImage out;
                EXPECT_EQ(ip.ApplyParam(in, out, nOut), 0);
                EXPECT_EQ(out.DataType(), nOut);
                EXPECT_EQ(RealPixels(out), Mapped(in, nOut, f)) << int{nIn} << " " << int{nOut};
                EXPECT_EQ(out.Attribute(), 5);
                EXPECT_EQ(out.Content(), ClImage::eXYZ);
            }
}

TEST(Ip1to1Base, GivesTheOutputTheDefaultRangeOfItsType) {
    ClIpOld ip;
    ClTestImage in = RandomImage(ClImage::eUInt16, 2, 2, 1, 1);
    in.SetWhite(1000.0);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eTypeDefault), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt16);
    EXPECT_EQ(out.White(), 65535.0);
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eInt8), 0);
    EXPECT_EQ(out.Black(), -128.0);
}

TEST(Ip1to1Base, AsksForTheTableOnlyOfEightBitInput) {
    ClIpOld ip;
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 3, 2, 3);
    ClImage out;
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eDouble64), 0);
    EXPECT_EQ(ip.m_nValues, 256);
    ip.m_bUseLUT = false;
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eDouble64), 0);
    EXPECT_EQ(ip.m_nValues, 256 + 30);
    in = RandomImage(ClImage::eInt8, 5, 3, 2, 3);
    ip.m_bUseLUT = true;
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eDouble64), 0);
    EXPECT_EQ(ip.m_nValues, 256 + 30 + 30);
}

TEST(Ip1to1Base, KeepsTheTypeOfOneImage) {
    ClIpOld ip;
    ip.m_nOutImageType = ClImage::eFloat32;
    ip.m_Loop = AddLeftNeighbour;
    for (bool bInPlace : {false, true}) {
        ip.m_bInPlace = bInPlace;
        ClTestImage image = Img({{1, 2, 3}});
        EXPECT_EQ(ip.ApplyParam(image), 0);
        EXPECT_EQ(ip.m_nOutImageType, ClImage::eTypeDefault);
        EXPECT_EQ(image.DataType(), ClImage::eUInt8);
        EXPECT_EQ(Pixels(image), Rows({{1, 3, 5}}));
        EXPECT_NE(ip.m_pSeenOut, &image);
    }
}

TEST(Ip1to1Base, AnswersUnknownTypes) {
    ClIpOld ip;
    alignas(8) unsigned char aBytes[96] = {};
    ClImage in;
    ClImage out;
    in.Attach(aBytes, 3, 2, 2, 1, 0, 0);
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eTypeDefault), -101);
    ClTestImage image = Img({{1, 2}});
    EXPECT_EQ(ip.ApplyParam(image, image, 7), -101);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    EXPECT_THROWS(ip.ApplyParam(image, out, ClImage::eTypeUnknown), ClException, -101,
                  "Image area must be positive");
}

TEST(Ip1to1Base, WorksInPlaceOnlyForATypeThatNoImageHas) {
    ClIpOld ip;
    ip.m_bInPlace = true;
    alignas(8) unsigned char aBytes[64] = {};
    ClImage in;
    ClImage out;
    in.Attach(aBytes, ClImage::eTypeDefault, 2, 1, 1, 0, 0);
    EXPECT_EQ(ip.ApplyParam(in), -101);
    EXPECT_EQ(ip.m_pSeenOut, &in);
    EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eTypeDefault), -101);
    EXPECT_EQ(ip.m_pSeenOut, &out);
    EXPECT_EQ(out.Width(), 2);
}

TEST(Ip1to1Base, GivesTheOutputTheTypeOfTheInputFor255) {
    for (unsigned char nIn : caPixelTypes)
        for (bool bInPlace : {false, true}) {
            ClIpOld ip;
            ip.m_Value = [](double d) { return d; };
            ip.m_bInPlace = bInPlace;
            ClTestImage in = RandomImage(nIn, 5, 3, 2, 7);
            ClTestImage out = RandomImage(ClImage::eUInt16, 5, 3, 2, 8);
            EXPECT_EQ(ip.ApplyParam(in, out, 255), 0);
            EXPECT_EQ(ip.m_nOutImageType, 255);
            EXPECT_EQ(out.DataType(), nIn);
            EXPECT_EQ(RealPixels(out), RealPixels(in));
            ClTestImage image(in);
            EXPECT_EQ(ip.ApplyParam(image, image, 255), 0);
            EXPECT_EQ(image.DataType(), nIn);
            EXPECT_NE(ip.m_pSeenOut, &image); // through a local image, whatever m_bInPlace
            EXPECT_EQ(RealPixels(image), RealPixels(in));
        }
}

/// All of in place, output type 255 and input type 255 take the image as it is; with one of them
/// missing the output is made by its type, and goes through a local image.
TEST(Ip1to1Base, AsksForAllThreeToWorkInPlace) {
    alignas(8) unsigned char aBytes[64] = {};
    const struct {
        bool m_bInPlace;
        unsigned char m_nOutType, m_nInType;
        bool m_bDirect;
    } aCases[] = {{true, 255, 255, true},
                  {false, 255, 255, false},
                  {true, ClImage::eUInt8, 255, false},
                  {true, 255, ClImage::eUInt8, false}};
    for (const auto& c : aCases) {
        ClIpOld ip;
        ip.m_bInPlace = c.m_bInPlace;
        ip.m_Loop = [](ClImage&, ClImage&) { return 3L; }; // a result that keeps the image
        ClImage in;
        in.Attach(aBytes, c.m_nInType, 2, 1, 1, 0, 0);
        EXPECT_EQ(ip.ApplyParam(in, in, c.m_nOutType), 3);
        EXPECT_EQ(ip.m_pSeenOut == &in, c.m_bDirect);
        EXPECT_EQ(in.Data(), aBytes);
        EXPECT_EQ(in.DataType(), c.m_nInType);
    }
}

TEST(Ip1to1Base, KeepsTheImageWhereTheLoopFails) {
    ClIpOld ip;
    ip.m_Loop = [](ClImage&, ClImage& Out) {
        Out = static_cast<unsigned char>(0);
        return -35L;
    };
    ClTestImage image = Img({{1, 2}});
    EXPECT_EQ(ip.ApplyParam(image, image, ClImage::eInt16), -35);
    EXPECT_EQ(image.DataType(), ClImage::eUInt8);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
    ip.m_Loop = [](ClImage&, ClImage&) { return 35L; };
    EXPECT_EQ(ip.ApplyParam(image, image, ClImage::eInt16), 35);
    EXPECT_EQ(image.DataType(), ClImage::eUInt8);
}

TEST(Ip1to1Base, AnswersEveryMissingAllocation) {
    ClIpOld ip;
    ip.m_Value = [](double d) { return d; };
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    TestSupport::FailEachAllocation([&] {
        out.Delete();
        EXPECT_EQ(ip.ApplyParam(in, out, ClImage::eInt32), 0);
    });
    EXPECT_EQ(Pixels(out), Rows({{1, 2, 3}}));
}

TEST(Ip1to1Base, PublishesItsImagesAndTheOutputType) {
    ClIpOld ip;
    ExpectTree(ip, {TreePointer("pInImage", ip.m_pInImage, ePfIn, "In: Original Image"),
                    TreePointer("pOutImage", ip.m_pOutImage, ePfOut, "Out: Output Image"),
                    TreeEnum("OutImageType", ip.m_nOutImageType, 255, TestSupport::caPixelTypeNames,
                             "In: OutImage Datatype")});
}

TEST(Ip1to1Base, KeepsTheOutputTypeWhilePublishing) {
    ClIpOld ip;
    ip.m_nOutImageType = ClImage::eInt8;
    ClParameterContainer container;
    ip.QueryParameters(container);
    EXPECT_EQ(ip.m_nOutImageType, ClImage::eInt8);
    ip.SetParametersToDefault();
    EXPECT_EQ(ip.m_nOutImageType, 255);
}

TEST(Ip1to1Base, CopiesItsSettingsButNotItsImages) {
    ClIpOld from;
    ClIpOld to;
    ClImage image;
    from.m_nOutImageType = ClImage::eFloat32;
    from.m_pInImage = &image;
    from.CopyParametersTo(to);
    EXPECT_EQ(to.m_nOutImageType, ClImage::eFloat32);
    EXPECT_EQ(to.m_pInImage, nullptr);
}

} // namespace
