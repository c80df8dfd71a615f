#include "ImageProcessing/IpJoinPlanes.h"

#include "ImageProcessing/MissingMemory.h"

#include "ImageProcessing/IpSplitPlanes.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <climits>
#include <cmath>
#include <functional>
#include <vector>

namespace {

using TestSupport::BlankImage;
using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

TEST(IpJoinPlanes, PutsASplitImageTogetherAgain) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes = 1; nPlanes <= 4; ++nPlanes) {
            ClTestImage in = RandomImage(nType, 5, 3, nPlanes, 11);
            ClImage aPlane[4];
            ClIpSplitPlanes split;
            EXPECT_EQ(split.ApplyParam(in, &aPlane[0], &aPlane[1], &aPlane[2], &aPlane[3]), 0);
            ClImage out;
            ClIpJoinPlanes join;
            join.m_nPlanes = nPlanes;
            EXPECT_EQ(join.ApplyParam(out, &aPlane[0], &aPlane[1], &aPlane[2], &aPlane[3]), 0);
            ExpectSameImage(out, in);
        }
}

TEST(IpJoinPlanes, TakesTheNumberOfPlanesFromTheContent) {
    const struct {
        ClImage::EContent m_eContent;
        Rows m_aPixels;
    } aCases[] = {{ClImage::eGrayscale, {{1, 5}}},
                  {ClImage::eRGB, {{1, 2, 3, 5, 6, 7}}},
                  {ClImage::eRGBA, {{1, 2, 3, 4, 5, 6, 7, 8}}},
                  {ClImage::eHSV, {{1, 2, 3, 5, 6, 7}}},
                  {ClImage::eCIELUV, {{1, 2, 3, 5, 6, 7}}}};
    ClTestImage aIn[] = {Img({{1, 5}}), Img({{2, 6}}), Img({{3, 7}}), Img({{4, 8}})};
    for (const auto& Case : aCases) {
        ClImage out;
        ClIpJoinPlanes join;
        join.m_eOutContent = Case.m_eContent;
        join.m_nPlanes = 2; // not asked for
        EXPECT_EQ(join.ApplyParam(out, &aIn[0], &aIn[1], &aIn[2], &aIn[3]), 0);
        EXPECT_EQ(Pixels(out), Case.m_aPixels);
        EXPECT_EQ(out.Content(), Case.m_eContent);
    }
}

TEST(IpJoinPlanes, LeavesUnknownContentToTheNumberOfPlanes) {
    const ClImage::EContent aContent[] = {ClImage::eGrayscale, ClImage::eUnknown, ClImage::eRGB,
                                          ClImage::eRGBA};
    ClTestImage in = Img({{1, 2}});
    for (int nPlanes = 1; nPlanes <= 4; ++nPlanes) {
        ClImage out;
        ClIpJoinPlanes join;
        join.m_nPlanes = nPlanes;
        EXPECT_EQ(join.ApplyParam(out, &in, &in, &in, &in), 0);
        EXPECT_EQ(out.Planes(), nPlanes);
        EXPECT_EQ(out.Content(), aContent[nPlanes - 1]);
    }
}

TEST(IpJoinPlanes, HasNothingToDoWithoutAnyPlanes) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    for (int nPlanes : {0, -1, INT_MIN}) {
        join.m_nPlanes = nPlanes;
        EXPECT_EQ(join.ApplyParam(out, &in, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(join.ApplyParam(out, nullptr, nullptr, nullptr, nullptr), 0);
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesOtherContents) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 3;
    for (unsigned nContent : {5u, 6u, 8u, 9u, 0xFFFFFFFFu}) {
        join.m_eOutContent = static_cast<ClImage::EContent>(nContent);
        EXPECT_EQ(join.ApplyParam(out, &in, &in, &in, &in), -35) << nContent;
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesMoreThanFourPlanes) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    for (int nPlanes : {5, 6, INT_MAX}) {
        join.m_nPlanes = nPlanes;
        EXPECT_EQ(join.ApplyParam(out, &in, &in, &in, &in), -35);
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesToJoinNothing) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 3;
    EXPECT_EQ(join.ApplyParam(out, nullptr, nullptr, nullptr, nullptr), -35);
    EXPECT_EQ(join.ApplyParam(out, nullptr, nullptr, nullptr, &in), -35); // behind the planes
    join.m_eOutContent = ClImage::eGrayscale;
    EXPECT_EQ(join.ApplyParam(out, nullptr, &in, &in, &in), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesInputsThatDiffer) {
    ClTestImage first = Img({{1, 2}});
    ClTestImage aOther[] = {BlankImage(ClImage::eInt8, 2, 1), BlankImage(ClImage::eUInt8, 3, 1),
                            BlankImage(ClImage::eUInt8, 2, 2), BlankImage(ClImage::eUInt8, 2, 1, 2),
                            ClTestImage()};
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 3;
    for (ClTestImage& other : aOther) {
        EXPECT_EQ(join.ApplyParam(out, &first, nullptr, &other, nullptr), -35);
        EXPECT_EQ(join.ApplyParam(out, &other, &first, nullptr, nullptr), -35);
    }
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesAFirstInputOfSeveralPlanes) {
    ClTestImage in = BlankImage(ClImage::eUInt8, 2, 1, 2);
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 1;
    EXPECT_EQ(join.ApplyParam(out, &in, nullptr, nullptr, nullptr), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesAnInputWithoutPixels) {
    ClTestImage first = Img({{1, 2}});
    ClImage other;
    other.Attach(nullptr, first);
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 2;
    EXPECT_EQ(join.ApplyParam(out, &first, &other, nullptr, nullptr), -35);
    EXPECT_EQ(join.ApplyParam(out, &other, nullptr, nullptr, nullptr), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesATypeThatNoImageHas) {
    unsigned char aBytes[64] = {};
    ClImage in;
    in.Attach(aBytes, 7, 1, 1, 1, 0, 0);
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 2;
    EXPECT_EQ(join.ApplyParam(out, &in, nullptr, nullptr, nullptr), -101);
    EXPECT_EQ(join.ApplyParam(in, &in, nullptr, nullptr, nullptr), -101);
    EXPECT_EQ(in.Planes(), 1);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpJoinPlanes, RefusesImagesWithoutArea) {
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 4, 0, 1, 0, 0);
    ClTestImage out = Img({{9}});
    ClIpJoinPlanes join;
    join.m_nPlanes = 1;
    EXPECT_THROWS(join.ApplyParam(out, &in, nullptr, nullptr, nullptr), ClException, -101,
                  "Image area must be positive");
}

TEST(IpJoinPlanes, RefusesAMissingOutput) {
    ClTestImage in = Img({{1, 2}});
    ClIpJoinPlanes join;
    EXPECT_EQ(join.Apply(), -37);
    join.m_apInPlane[0] = &in;
    join.m_nPlanes = 1;
    EXPECT_EQ(join.Apply(), -37);
}

TEST(IpJoinPlanes, DoesNotLookAtInputsBehindThePlanes) {
    ClTestImage in = Img({{1, 2}});
    ClTestImage other = BlankImage(ClImage::eInt16, 7, 7, 2);
    ClImage out;
    ClIpJoinPlanes join;
    join.m_eOutContent = ClImage::eGrayscale;
    EXPECT_EQ(join.ApplyParam(out, &in, &other, &other, &other), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2}}));
}

TEST(IpJoinPlanes, TakesTypeSizeAndResolutionOfTheFirstInputThatIsSet) {
    ClTestImage second = Img(ClImage::eInt16, {{-300, 300}});
    second.SetPelsX(100);
    second.SetPelsY(200);
    second.SetWhite(1000.0);
    second.SetAttribute(8);
    ClTestImage third = Img(ClImage::eInt16, {{5, 6}});
    ClImage out;
    out.SetAttribute(3);
    ClIpJoinPlanes join;
    join.m_nPlanes = 3;
    EXPECT_EQ(join.ApplyParam(out, nullptr, &second, &third, nullptr), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt16);
    EXPECT_EQ(Pixels(out), Rows({{0, -300, 5, 0, 300, 6}}));
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.White(), 32767.0);
    EXPECT_EQ(out.Attribute(), 3); // its own
}

/// What a fill colour becomes in a sample.
struct StFill {
    unsigned char m_nType;
    double m_dColor;
    double m_dSample;
};

TEST(IpJoinPlanes, FillsEmptyPlanesWithTheirColours) {
    const double dNaN = std::nan("");
    const StFill aCases[] = {
        {ClImage::eUInt8, 7.9, 7},
        {ClImage::eUInt8, 300.7, 44}, // 300 - 256
        {ClImage::eUInt8, -1.5, 255},
        {ClImage::eInt8, 200.0, -56}, // 200 - 256
        {ClImage::eUInt16, 65537.0, 1},
        {ClImage::eInt16, 40000.0, -25536}, // 40000 - 65536
        {ClImage::eUInt32, 4294967297.0, 1},
        {ClImage::eInt32, -2147483649.0, 2147483647}, // wraps by one
        {ClImage::eUInt8, 1e300, 0},
        {ClImage::eFloat32, 0.25, 0.25},
        {ClImage::eDouble64, -1e300, -1e300},
        {ClImage::eUInt8, dNaN, 0},
        {ClImage::eInt32, dNaN, 0},
        {ClImage::eFloat32, dNaN, 0},
        {ClImage::eDouble64, dNaN, 0},
    };
    for (const StFill& Case : aCases) {
        ClTestImage in = TestSupport::FlatImage(Case.m_nType, 3, 2, 1, 1.0);
        ClImage out;
        ClIpJoinPlanes join;
        join.m_nPlanes = 4;
        join.m_adInFillcolors[1] = Case.m_dColor;
        join.m_adInFillcolors[2] = 5.0; // has an input
        join.m_adInFillcolors[3] = Case.m_dColor;
        EXPECT_EQ(join.ApplyParam(out, nullptr, nullptr, &in, nullptr), 0);
        const std::vector<double> aPixel = {0.0, Case.m_dSample, 1.0, Case.m_dSample};
        std::vector<double> aRow;
        for (int x = 0; x < 3; ++x)
            aRow.insert(aRow.end(), aPixel.begin(), aPixel.end());
        EXPECT_EQ(RealPixels(out), RealRows({aRow, aRow})) << Case.m_dColor;
    }
}

TEST(IpJoinPlanes, LeavesEmptyPlanesAloneOnRequest) {
    ClTestImage first = Img({{1, 2}});
    ClTestImage second = Img({{3, 4}});
    ClTestImage out = Img(ClImage::eUInt8, {{91, 92, 93, 94, 95, 96}}, 3);
    const unsigned char* pBuffer = out.Data();
    ClIpJoinPlanes join;
    join.m_eOutContent = ClImage::eRGB;
    join.m_bFillEmptyPlanes = false;
    join.m_adInFillcolors[2] = 5.0;
    EXPECT_EQ(join.ApplyParam(out, &first, &second, nullptr, nullptr), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 3, 93, 2, 4, 96}})); // as the buffer was
    EXPECT_EQ(out.Data(), pBuffer);
}

TEST(IpJoinPlanes, MayWriteToAnInput) {
    for (int nTarget = 0; nTarget < 3; ++nTarget) {
        ClTestImage aIn[] = {Img({{1, 4}}), Img({{2, 5}}), Img({{3, 6}})};
        ClTestImage& rOut = aIn[nTarget];
        rOut.SetAttribute(8);
        ClIpJoinPlanes join;
        join.m_eOutContent = ClImage::eHSV;
        EXPECT_EQ(join.ApplyParam(rOut, &aIn[0], &aIn[1], &aIn[2], nullptr), 0);
        EXPECT_EQ(Pixels(rOut), Rows({{1, 2, 3, 4, 5, 6}}));
        EXPECT_EQ(rOut.Content(), ClImage::eHSV);
        EXPECT_EQ(rOut.Attribute(), 8);
    }
}

TEST(IpJoinPlanes, MayWriteToAnImageThatSharesAnInputsBuffer) {
    ClTestImage in = Img({{1, 2, 3, 4}});
    ClImage out;
    out.Attach(in);
    ClIpJoinPlanes join;
    join.m_nPlanes = 2;
    EXPECT_EQ(join.ApplyParam(out, &in, &in, nullptr, nullptr), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 1, 2, 2, 3, 3, 4, 4}}));
    EXPECT_EQ(Pixels(in), Rows({{1, 2, 3, 4}}));
}

TEST(IpJoinPlanes, JoinsOrLeavesItsImagesWhereMemoryIsMissing) {
    TestSupport::ExpectImagesOrNothing(Img({{1, 4}}), [](ClImage& In, ClImage& Out) {
        ClIpJoinPlanes join;
        join.m_nPlanes = 2;
        return join.ApplyParam(Out, &In, &In, nullptr, nullptr);
    });
}

} // namespace
