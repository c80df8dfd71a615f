// Settings, destination, refusals and frame of ClIpRescale; the modes have files of their own.

#include "ImageProcessing/IpRescale.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/IpSplitPlanes.h"
#include "ImageProcessing/RescaleCases.h"
#include "support/Throws.h"

#include <climits>

namespace {

using TestSupport::BlankImage;
using TestSupport::caByteTypes;
using TestSupport::caRescaleSizes;
using TestSupport::caSizeModes;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RescaledToSize;
using TestSupport::Rows;
using TestSupport::StSizes;
using EMode = ClIpRescale::eProcessingMode;

constexpr EMode caAllModes[] = {ClIpRescale::ModeWholeNumbered, ClIpRescale::ModeNearestNeighbour,
                                ClIpRescale::ModeBiLinear, ClIpRescale::ModeBiCubic,
                                ClIpRescale::ModeBiLinearFantMar};

ClTestImage WithPels(ClTestImage image, int nPelsX, int nPelsY) {
    image.SetPelsX(nPelsX);
    image.SetPelsY(nPelsY);
    return image;
}

// Destination

TEST(IpRescale, RoundsSizesFromResolutionsUp) {
    const struct {
        int m_nSize;
        int m_nPels;
        int m_nNewPels;
        int m_nExpected;
    } aCases[] = {{100, 500, 250, 50}, {101, 500, 250, 51}, {100, 500, 1000, 200}, {3, 300, 100, 1},
                  {4, 300, 100, 2},    {1, 500, 501, 2},    {10, 10000, 1, 1}};
    for (const auto& Case : aCases) {
        ClTestImage in = WithPels(BlankImage(ClImage::eUInt8, Case.m_nSize, Case.m_nSize),
                                  Case.m_nPels, Case.m_nPels);
        ClImage out;
        ClIpRescale rescale;
        EXPECT_EQ(rescale.ApplyParamPels(in, out, Case.m_nNewPels, Case.m_nNewPels,
                                         ClIpRescale::ModeNearestNeighbour),
                  0);
        EXPECT_EQ(out.Width(), Case.m_nExpected) << Case.m_nSize;
        EXPECT_EQ(out.Height(), Case.m_nExpected) << Case.m_nSize;
        EXPECT_EQ(out.PelsX(), Case.m_nNewPels);
        EXPECT_EQ(out.PelsY(), Case.m_nNewPels);
    }
}

TEST(IpRescale, ScalesTheAxesByTheirOwnResolutions) {
    ClTestImage in = WithPels(BlankImage(ClImage::eUInt8, 20, 30), 500, 1000);
    ClImage out;
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 500, 500, ClIpRescale::ModeBiLinear), 0);
    EXPECT_EQ(out.Width(), 20);
    EXPECT_EQ(out.Height(), 15);
}

TEST(IpRescale, CopiesForEqualResolutions) {
    for (EMode eMode : caAllModes) {
        ClTestImage in = RandomImage(ClImage::eUInt8, 9, 4, 3, 1);
        in.SetBlack(3.0);
        in.SetAttribute(7);
        ClImage out;
        ClIpRescale rescale;
        EXPECT_EQ(rescale.ApplyParamPels(in, out, in.PelsX(), in.PelsY(), eMode), 0);
        ExpectSameImage(out, in);
    }
}

TEST(IpRescale, CopiesWithTheOldResolutionsWhereTheSizeStays) {
    ClTestImage in = WithPels(RandomImage(ClImage::eInt8, 10, 10, 1, 2), 10000, 10000);
    ClImage out;
    ClIpRescale rescale;
    // 10 * 0.9999 + 0.9999 is still 10
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 9999, 9999, ClIpRescale::ModeBiLinear), 0);
    ExpectSameImage(out, in);
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 10, 10, ClIpRescale::ModeBiCubic), 0);
    ExpectSameImage(out, in);
    EXPECT_EQ(rescale.ApplyParamSize(in, in, 10, 10, ClIpRescale::ModeBiCubic), 0);
    ExpectSameImage(out, in);
}

TEST(IpRescale, DerivesResolutionsFromANewSize) {
    ClTestImage in = WithPels(BlankImage(ClImage::eUInt8, 3, 7), 1000, 500);
    ClImage out;
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 2, 20, ClIpRescale::ModeNearestNeighbour), 0);
    EXPECT_EQ(out.PelsX(), 666);  // 2000 / 3
    EXPECT_EQ(out.PelsY(), 1428); // 10000 / 7
    in = WithPels(BlankImage(ClImage::eUInt8, 3, 7), 0, 0);
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 2, 20, ClIpRescale::ModeNearestNeighbour), 0);
    EXPECT_EQ(out.PelsX(), 0);
    EXPECT_EQ(out.PelsY(), 0);
}

TEST(IpRescale, PrefersResolutionsToASize) {
    ClTestImage in = WithPels(BlankImage(ClImage::eUInt8, 8, 8), 100, 100);
    ClImage out;
    ClIpRescale rescale;
    rescale.m_nNewWidth = 3;
    rescale.m_nNewHeight = 3;
    rescale.m_nNewPelsX = 50;
    rescale.m_nNewPelsY = 50;
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), 0);
    EXPECT_EQ(out.Width(), 4);
    in = WithPels(BlankImage(ClImage::eUInt8, 8, 8), 100, 0);
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), 0);
    EXPECT_EQ(out.Width(), 3);
}

TEST(IpRescale, TakesAResolutionOfOne) {
    ClTestImage in = WithPels(Img({{1, 2}, {3, 4}}), 1, 1);
    ClImage out;
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 2, 2, ClIpRescale::ModeNearestNeighbour), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 1, 2, 2}, {1, 1, 2, 2}, {3, 3, 4, 4}, {3, 3, 4, 4}}));
}

// Refusals

TEST(IpRescale, RefusesWholeNumbersBySize) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    rescale.m_nNewPelsX = 5;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 4, 2, ClIpRescale::ModeWholeNumbered), -101);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
    EXPECT_EQ(rescale.m_nNewPelsX, 5);
    EXPECT_EQ(rescale.m_nNewWidth, 0);
}

TEST(IpRescale, RefusesToRunWithoutADestination) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), -101);
    rescale.m_nNewPelsX = 5; // one resolution is none
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), -101);
    rescale.m_nNewWidth = 5; // a size is set, though half of it
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), -35);
    rescale.m_nNewWidth = 0;
    rescale.m_nNewHeight = 5;
    EXPECT_EQ(rescale.ApplyParam(in, out, ClIpRescale::ModeBiLinear), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRescale, TellsAWidthThatIsSetThoughItIsNone) {
    ClIpRescale rescale;
    rescale.m_nNewWidth = -3;
    char aText[64] = {};
    rescale.ParameterString(aText, sizeof aText);
    EXPECT_STREQ(aText, "W-3 H0 BiLinear");
}

TEST(IpRescale, RefusesResolutionsForAnInputWithoutThem) {
    const int aanPels[][2] = {{0, 0}, {500, 0}, {0, 500}, {-1, 500}};
    for (const auto& anPels : aanPels) {
        ClTestImage in = WithPels(Img({{1, 2}}), anPels[0], anPels[1]);
        ClTestImage out = Img({{9}});
        ClIpRescale rescale;
        EXPECT_EQ(rescale.ApplyParamPels(in, out, 250, 250, ClIpRescale::ModeBiLinear), -13);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
        EXPECT_EQ(rescale.m_nNewPelsX, 0);
    }
}

TEST(IpRescale, RefusesSizesBelowOne) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    const int aanSizes[][2] = {{0, 0}, {0, 4}, {4, 0}, {-1, 4}, {4, INT_MIN}};
    for (const auto& anSize : aanSizes)
        EXPECT_EQ(rescale.ApplyParamSize(in, out, anSize[0], anSize[1], ClIpRescale::ModeBiLinear),
                  -35);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 0, 250, ClIpRescale::ModeBiLinear), -35);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, -5, -5, ClIpRescale::ModeBiLinear), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRescale, RefusesMissingImagesAndPixels) {
    ClTestImage image = Img({{1, 2}});
    ClIpRescale rescale;
    rescale.m_nNewWidth = 1;
    rescale.m_nNewHeight = 1;
    EXPECT_EQ(rescale.Apply(), -35);
    EXPECT_EQ(rescale.Process(), -35);
    rescale.m_pInImage = &image;
    EXPECT_EQ(rescale.Apply(), -35);
    rescale.m_pInImage = nullptr;
    rescale.m_pOutImage = &image;
    EXPECT_EQ(rescale.Apply(), -35);
    ClImage empty; // neither resolution nor size
    rescale.m_pInImage = &empty;
    EXPECT_EQ(rescale.Apply(), -35);
    empty.Attach(nullptr, image);
    EXPECT_EQ(rescale.Apply(), -35);
    unsigned char anBytes[8] = {};
    empty.Attach(anBytes, ClImage::eUInt8, 2, 2, 0, 100, 100); // no planes
    EXPECT_EQ(rescale.Apply(), -35);
    EXPECT_EQ(Pixels(image), Rows({{1, 2}}));
}

TEST(IpRescale, LimitsTheDestination) {
    ClTestImage in = WithPels(Img({{1, 2}}), 100, 100);
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    const EMode eMode = ClIpRescale::ModeNearestNeighbour;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 16385, 1, eMode), -13);
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 1, 16385, eMode), -13);
    EXPECT_EQ(rescale.ApplyParamSize(in, out, INT_MAX, INT_MAX, eMode), -13);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 819201, 100, eMode), -13); // 16384.02 + 0.9999
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 100, 1638401, eMode), -13);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, INT_MAX, INT_MAX, eMode), -13);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 16384, 1, eMode), 0);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, 819200, 100, eMode), 0);
    EXPECT_EQ(out.Width(), 16384);
}

TEST(IpRescale, LimitsACopyToo) {
    ClTestImage in = BlankImage(ClImage::eUInt8, 16385, 1);
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 16385, 1, ClIpRescale::ModeBiLinear), -13);
    EXPECT_EQ(rescale.ApplyParamPels(in, out, in.PelsX(), in.PelsY(), ClIpRescale::ModeBiLinear),
              -13);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRescale, RefusesADestinationOfNothing) {
    for (EMode eMode : caAllModes) {
        ClTestImage in = WithPels(Img({{1}}), 20000, 20000);
        ClImage out;
        ClIpRescale rescale; // 1 / 20000 + 0.9999 stays below 1
        EXPECT_THROWS(rescale.ApplyParamPels(in, out, 1, 1, eMode), ClException, -101,
                      "Image area must be positive");
        EXPECT_THROWS(rescale.ApplyParamPels(in, in, 1, 1, eMode), ClException, -101,
                      "Image area must be positive");
        EXPECT_EQ(Pixels(in), Rows({{1}}));
    }
}

TEST(IpRescale, RefusesOtherTypesBeforeTheOutputChanges) {
    for (unsigned char nType : TestSupport::caPixelTypes) {
        if (nType == ClImage::eUInt8 || nType == ClImage::eInt8)
            continue;
        for (int nPlanes : {1, 3})
            for (int nWidth : {4, 8}) {
                ClTestImage in = BlankImage(nType, 4, 4, nPlanes);
                ClTestImage out = Img({{9}});
                ClIpRescale rescale;
                EXPECT_THROWS(rescale.ApplyParamSize(in, out, nWidth, 4, ClIpRescale::ModeBiLinear),
                              ClException, -101, "Image Type is not the assigned type");
                EXPECT_EQ(Pixels(out), Rows({{9}}));
            }
    }
}

TEST(IpRescale, RefusesUnknownModes) {
    for (int nPlanes : {1, 3})
        for (int nMode : {-1, 5, 255}) {
            ClTestImage in = BlankImage(ClImage::eUInt8, 4, 4, nPlanes);
            ClTestImage out = Img({{9}});
            ClIpRescale rescale;
            EXPECT_EQ(rescale.ApplyParamSize(in, out, 2, 2, static_cast<EMode>(nMode)), -35);
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
}

// Several planes

TEST(IpRescale, RefusesSeveralPlanesOfXYZAndLab) {
    for (ClImage::EContent eContent : {ClImage::eXYZ, ClImage::eCIELab}) {
        ClTestImage in = BlankImage(ClImage::eUInt8, 4, 4, 3);
        in.SetContent(eContent);
        ClTestImage out = Img({{9}});
        ClIpRescale rescale;
        EXPECT_EQ(rescale.ApplyParamSize(in, out, 2, 2, ClIpRescale::ModeBiLinear), -101);
        EXPECT_EQ(Pixels(out), Rows({{9}}));
        EXPECT_EQ(rescale.ApplyParamSize(in, out, 4, 4, ClIpRescale::ModeBiLinear), 0);
        ExpectSameImage(out, in);
    }
}

TEST(IpRescale, RefusesMoreThanFourPlanes) {
    ClTestImage in = BlankImage(ClImage::eUInt8, 4, 4, 5);
    ClTestImage out = Img({{9}});
    ClIpRescale rescale;
    EXPECT_THROWS(rescale.ApplyParamSize(in, out, 2, 2, ClIpRescale::ModeBiLinear), ClException,
                  -35, "Image has more than 4 planes.");
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpRescale, RescalesPlanesOneByOne) {
    for (unsigned char nType : caByteTypes)
        for (int nPlanes : {2, 3, 4})
            for (EMode eMode : caAllModes) {
                ClTestImage in = RandomImage(nType, 9, 7, nPlanes, 3);
                in.SetContent(ClImage::eHSV);
                in.SetAttribute(5);
                ClIpRescale rescale;
                ClImage out;
                EXPECT_EQ(rescale.ApplyParamPels(in, out, 11000, 40000, eMode), 0);
                EXPECT_EQ(out.Planes(), nPlanes);
                EXPECT_EQ(out.Content(), ClImage::eHSV);
                EXPECT_EQ(out.Attribute(), 5);
                EXPECT_EQ(out.PelsX(), 11000);
                for (int p = 0; p < nPlanes; ++p) {
                    ClImage plane;
                    ClImage expected;
                    ClImage actual;
                    in.GetPlane(p, plane);
                    out.GetPlane(p, actual);
                    EXPECT_EQ(rescale.ApplyParamPels(plane, expected, 11000, 40000, eMode), 0);
                    EXPECT_EQ(Pixels(actual), Pixels(expected));
                }
            }
}

// Every mode

TEST(IpRescale, GivesTheOutputTypeRangeAndResolutions) {
    for (unsigned char nType : caByteTypes)
        for (EMode eMode : caAllModes) {
            ClTestImage in = RandomImage(nType, 6, 5, 1, 4);
            in.SetBlack(50.0);
            ClImage out;
            ClIpRescale rescale;
            EXPECT_EQ(rescale.ApplyParamPels(in, out, 30000, 10000, eMode), 0);
            const ClTestImage expected = BlankImage(nType, 1, 1);
            EXPECT_EQ(out.DataType(), nType);
            EXPECT_EQ(out.Planes(), 1);
            EXPECT_EQ(out.Black(), expected.Black());
            EXPECT_EQ(out.PelsX(), 30000);
            EXPECT_EQ(out.PelsY(), 10000);
            EXPECT_EQ(out.Content(), ClImage::eGrayscale);
        }
}

TEST(IpRescale, KeepsConstantImages) {
    for (const StSizes& Sizes : caRescaleSizes)
        for (EMode eMode : caSizeModes) {
            // Bilinear terms lose fractions where an axis grows, radial quotients in the last bit.
            const bool bGrows =
                Sizes.m_nOutWidth > Sizes.m_nInWidth || Sizes.m_nOutHeight > Sizes.m_nInHeight;
            if (eMode == ClIpRescale::ModeBiLinear && bGrows)
                continue;
            for (int nValue : {1, 77, 200, 255}) {
                ClTestImage in =
                    FlatImage(ClImage::eUInt8, Sizes.m_nInWidth, Sizes.m_nInHeight, 1, nValue);
                in.SetPelsX(0); // by sizes: no source behind the edge
                in.SetPelsY(0);
                const Rows aOut =
                    RescaledToSize(in, Sizes.m_nOutWidth, Sizes.m_nOutHeight, eMode, 0.75);
                EXPECT_EQ(aOut, Pixels(FlatImage(ClImage::eUInt8, Sizes.m_nOutWidth,
                                                 Sizes.m_nOutHeight, 1, nValue)));
            }
        }
}

TEST(IpRescale, WorksInPlace) {
    for (int nPlanes : {1, 3})
        for (EMode eMode : caAllModes) {
            const ClTestImage original = RandomImage(ClImage::eUInt8, 9, 7, nPlanes, 5);
            ClTestImage in = original;
            ClImage out;
            ClIpRescale rescale;
            EXPECT_EQ(rescale.ApplyParamPels(in, out, 11000, 40000, eMode), 0);
            ExpectSameImage(in, original);
            EXPECT_EQ(rescale.ApplyParamPels(in, in, 11000, 40000, eMode), 0);
            ExpectSameImage(in, out);
        }
}

TEST(IpRescale, RescalesOrLeavesItsImagesWhereMemoryIsMissing) {
    for (int nPlanes : {1, 3})
        for (EMode eMode : caAllModes)
            for (double dParameter : {-0.75, 0.75}) {
                ClIpRescale rescale;
                rescale.m_dConvParameter1 = dParameter;
                TestSupport::ExpectImagesOrNothing(
                    RandomImage(ClImage::eUInt8, 9, 7, nPlanes, 6), [&](ClImage& In, ClImage& Out) {
                        return rescale.ApplyParamPels(In, Out, 11000, 40000, eMode);
                    });
            }
}

TEST(IpRescale, KeepsTheAttributeOfTheOutputInPlaceToo) {
    for (EMode eMode : caAllModes)
        for (int nNewPels : {11000, 19000, 40000}) { // smaller, as large, larger
            ClTestImage in = RandomImage(ClImage::eUInt8, 9, 7, 1, 8);
            in.SetAttribute(5);
            ClTestImage out = Img({{9}});
            out.SetAttribute(6);
            ClIpRescale rescale;
            EXPECT_EQ(rescale.ApplyParamPels(in, out, nNewPels, 40000, eMode), 0);
            EXPECT_EQ(out.Attribute(), 6);
            EXPECT_EQ(rescale.ApplyParamPels(in, in, nNewPels, 40000, eMode), 0);
            EXPECT_EQ(in.Attribute(), 5);
        }
}

TEST(IpRescale, KeepsTheAttributeOfTheOutputWhereBothAxesShrink) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 9, 7, 1, 9);
    in.SetAttribute(5);
    ClTestImage out = Img({{9}});
    out.SetAttribute(6);
    ClIpRescale rescale;
    EXPECT_EQ(rescale.ApplyParamSize(in, out, 4, 3, ClIpRescale::ModeBiLinear), 0);
    EXPECT_EQ(out.Attribute(), 6);
    EXPECT_EQ(rescale.ApplyParamSize(in, in, 4, 3, ClIpRescale::ModeBiLinear), 0);
    EXPECT_EQ(in.Attribute(), 5);
}

} // namespace
