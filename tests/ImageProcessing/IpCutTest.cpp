#include "ImageProcessing/IpCut.h"

#include "ImageProcessing/MissingMemory.h"

#include "Tools/ParameterContainer.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <climits>

namespace {

using TestSupport::ClTestImage;
using TestSupport::ExpectSameImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::RealPixels;
using TestSupport::RealRows;
using TestSupport::Rows;

RealRows Rectangle(const ClImage& Image, int nX0, int nY0, int nWidth, int nHeight) {
    RealRows aRows;
    for (int y = 0; y < nHeight; ++y) {
        aRows.emplace_back();
        for (int x = 0; x < nWidth; ++x)
            for (int p = 0; p < Image.Planes(); ++p)
                aRows.back().push_back(TestSupport::Sample(Image, nX0 + x, nY0 + y, p));
    }
    return aRows;
}

/// 4 x 3 pixels: tens count lines, ones columns.
ClTestImage Numbered() {
    return Img({{0, 1, 2, 3}, {10, 11, 12, 13}, {20, 21, 22, 23}});
}

TEST(IpCut, TakesEveryRectangleOfEveryType) {
    for (unsigned char nType : TestSupport::caPixelTypes)
        for (int nPlanes : {1, 3, 5}) {
            ClTestImage in = RandomImage(nType, 5, 4, nPlanes, 3);
            const ClTestImage copy = in;
            for (int x = 0; x < 5; ++x)
                for (int w = 1; w <= 5 - x; ++w)
                    for (int y = 0; y < 4; ++y)
                        for (int h = 1; h <= 4 - y; ++h) {
                            ClImage out;
                            ClIpCut cut;
                            EXPECT_EQ(cut.ApplyParam(in, x, y, w, h, out), 0);
                            EXPECT_EQ(RealPixels(out), Rectangle(in, x, y, w, h));
                        }
            ExpectSameImage(in, copy);
        }
}

TEST(IpCut, CopiesWholeLines) {
    ClTestImage in = Numbered();
    ClImage out;
    ClIpCut cut;
    EXPECT_EQ(cut.ApplyParam(in, 0, 1, 4, 2, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{10, 11, 12, 13}, {20, 21, 22, 23}}));
    EXPECT_EQ(cut.ApplyParam(in, 0, 0, 4, 3, out), 0);
    EXPECT_EQ(Pixels(out), Pixels(in));
}

TEST(IpCut, CutsABorderOffEachSide) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 10, 8, 1, 5);
    ClImage out;
    ClIpCut cut;
    EXPECT_EQ(cut.ApplyParam(in, 2, out), 0);
    EXPECT_EQ(out.Width(), 6);
    EXPECT_EQ(out.Height(), 4);
    EXPECT_EQ(RealPixels(out), Rectangle(in, 2, 2, 6, 4));
    EXPECT_EQ(cut.m_nX0, 2);
    EXPECT_EQ(cut.m_nY0, 2);
    EXPECT_EQ(cut.m_nDestWidth, 6);
    EXPECT_EQ(cut.m_nDestHeight, 4);
    EXPECT_EQ(cut.ApplyParam(in, 0, out), 0);
    EXPECT_EQ(RealPixels(out), RealPixels(in));
}

TEST(IpCut, KeepsWhatTheInputSaysOfItsPixels) {
    ClTestImage in = RandomImage(ClImage::eUInt16, 5, 4, 3, 3);
    in.SetPelsX(100);
    in.SetPelsY(200);
    in.SetBlack(10.0);
    in.SetWhite(1000.0);
    in.SetContent(ClImage::eCIELab);
    in.SetAttribute(8);
    ClImage out;
    ClIpCut cut;
    EXPECT_EQ(cut.ApplyParam(in, 1, 1, 3, 2, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt16);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Black(), 10.0);
    EXPECT_EQ(out.White(), 1000.0);
    EXPECT_EQ(out.Content(), ClImage::eCIELab);
    EXPECT_EQ(out.Attribute(), 8);
}

TEST(IpCut, RefusesARectangleWithoutArea) {
    ClTestImage in = Numbered();
    ClIpCut cut;
    ClImage out;
    EXPECT_THROWS(cut.ApplyParam(in, 1, 1, 0, 2, out), ClException, -101,
                  "Image area must be positive");
    ClImage out2;
    EXPECT_THROWS(cut.ApplyParam(in, 1, 1, 2, 0, out2), ClException, -101,
                  "Image area must be positive");
    ClImage out3;
    EXPECT_THROWS(cut.ApplyParam(in, 2, out3), ClException, -35, // 4 - 4 columns, but 3 - 4 lines
                  "ClIpCut::Process. m_nDestHeight < 0");
}

// Each row violates its own condition and, as far as they can be, all that are tested later.
TEST(IpCut, TestsTheRectangleInOrder) {
    const struct {
        long m_nX0, m_nY0, m_nWidth, m_nHeight;
        const char* m_szWords;
    } aRows[] = {
        {-1, -1, -1, -1, "ClIpCut::Process. m_nX0<0"},
        {4, -1, -1, -1, "ClIpCut::Process. m_nY0<0"},
        {4, 3, -1, -1, "ClIpCut::Process. m_nX0>=m_pInImage->Width()"},
        {3, 3, -1, -1, "ClIpCut::Process. m_nY0>=m_pInImage->Height()"},
        {3, 2, -1, -1, "ClIpCut::Process. m_nDestWidth < 0"},
        {3, 2, 2, -1, "ClIpCut::Process. m_nDestHeight < 0"},
        {3, 2, 2, 2, "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()"},
        {3, 2, 1, 2, "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()"},
    };
    ClTestImage in = Numbered();
    ClIpCut cut;
    ClImage out;
    for (const auto& Row : aRows)
        EXPECT_THROWS(cut.ApplyParam(in, Row.m_nX0, Row.m_nY0, Row.m_nWidth, Row.m_nHeight, out),
                      ClException, -35, Row.m_szWords);
    EXPECT_EQ(cut.ApplyParam(in, 3, 2, 1, 1, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{23}}));
}

TEST(IpCut, TellsWhereItThrows) {
    ClTestImage in = Numbered();
    ClImage out;
    try {
        ClIpCut().ApplyParam(in, -1, 0, 1, 1, out);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "ImageProcessing/IpCut");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(IpCut, RefusesNumbersBeyondAnyImage) {
    ClTestImage in = Numbered();
    ClIpCut cut;
    ClImage out;
    EXPECT_THROWS(cut.ApplyParam(in, LONG_MAX, 0, 1, 1, out), ClException, -35,
                  "ClIpCut::Process. m_nX0>=m_pInImage->Width()");
    EXPECT_THROWS(cut.ApplyParam(in, 1, 1, LONG_MAX, 1, out), ClException, -35,
                  "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()");
    EXPECT_THROWS(cut.ApplyParam(in, 1, 1, 1, LONG_MAX, out), ClException, -35,
                  "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()");
    EXPECT_THROWS(cut.ApplyParam(in, 1, 1, 1, (1L << 32) + 1, out), ClException, -35,
                  "ClIpCut::Process. m_nY0+m_nDestHeight > m_pInImage->Height()");
    for (long nBorder : {LONG_MAX, 1L << 32, 4L})
        EXPECT_THROWS(cut.ApplyParam(in, nBorder, out), ClException, -35,
                      "ClIpCut::Process. m_nX0>=m_pInImage->Width()");
    for (long nBorder : {LONG_MIN, -1L})
        EXPECT_THROWS(cut.ApplyParam(in, nBorder, out), ClException, -35,
                      "ClIpCut::Process. m_nX0<0");
}

TEST(IpCut, MayCutAnImageDownInPlace) {
    ClTestImage image = Numbered();
    ClIpCut cut;
    EXPECT_EQ(cut.ApplyParam(image, 1, image), 0);
    EXPECT_EQ(Pixels(image), Rows({{11, 12}}));
    cut.m_bInPlace = true;
    EXPECT_EQ(cut.ApplyParam(image, 1, 0, 1, 1, image), 0);
    EXPECT_EQ(Pixels(image), Rows({{12}}));
}

TEST(IpCut, LeavesAnImageAsItIsWhereItFailsInPlace) {
    ClTestImage image = Numbered();
    const ClTestImage copy = image;
    for (bool bInPlace : {false, true}) {
        ClIpCut cut;
        cut.m_bInPlace = bInPlace;
        EXPECT_THROWS(cut.ApplyParam(image, 0, 0, 5, 1, image), ClException, -35,
                      "ClIpCut::Process. m_nX0+m_nDestWidth > m_pInImage->Width()");
        EXPECT_THROWS(cut.ApplyParam(image, 0, 0, 0, 1, image), ClException, -101,
                      "Image area must be positive");
        ExpectSameImage(image, copy);
    }
}

TEST(IpCut, ReadsTheRectangleThroughItsPointers) {
    ClTestImage in = Numbered();
    ClImage out;
    long anShared[4] = {1, 0, 2, 3};
    ClIpCut cut;
    cut.m_pX0 = &anShared[0];
    cut.m_pY0 = &anShared[1];
    cut.m_pDestWidth = &anShared[2];
    cut.m_pDestHeight = &anShared[3];
    cut.m_pInImage = &in;
    cut.m_pOutImage = &out;
    EXPECT_EQ(cut.Apply(), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2}, {11, 12}, {21, 22}}));

    ClParameterContainer Container;
    cut.QueryParameters(Container); // captures defaults, and leaves the pointers
    anShared[3] = 1;
    EXPECT_EQ(cut.Apply(), 0);
    EXPECT_EQ(Pixels(out), Rows({{1, 2}}));

    EXPECT_EQ(cut.ApplyParam(in, 3, 2, 1, 1, out), 0); // back to its own fields
    EXPECT_EQ(Pixels(out), Rows({{23}}));
    cut.m_pX0 = &anShared[0];
    cut.SetParametersToDefault();
    EXPECT_EQ(cut.m_pX0, &cut.m_nX0);
    EXPECT_EQ(cut.m_nX0, 0);
}

TEST(IpCut, RefusesARectangleThatIsNotThere) {
    ClTestImage in = Numbered();
    ClImage out;
    long* ClIpCut::*const apPointer[] = {&ClIpCut::m_pX0, &ClIpCut::m_pY0, &ClIpCut::m_pDestWidth,
                                         &ClIpCut::m_pDestHeight};
    for (auto pPointer : apPointer) {
        ClIpCut cut;
        cut.m_pInImage = &in;
        cut.m_pOutImage = &out;
        cut.*pPointer = nullptr;
        EXPECT_EQ(cut.Apply(), -37);
    }
}

TEST(IpCut, ChecksItsImages) {
    ClIpCut cut;
    EXPECT_THROWS(cut.Apply(), ClException, -701, "Input image not assigned");
    ClImage empty;
    ClImage out;
    EXPECT_THROWS(cut.ApplyParam(empty, 0, out), ClException, -33,
                  "Input pixel type \"unknown\" not supported by processor.");
    EXPECT_FALSE(cut.CanApply());
    for (unsigned char nType : TestSupport::caPixelTypes) {
        ClTestImage in = RandomImage(nType, 1, 1, 1, 0);
        cut.m_pInImage = &in;
        EXPECT_TRUE(cut.CanApply());
    }
}

TEST(IpCut, CutsOrLeavesItsImagesWhereMemoryIsMissing) {
    TestSupport::ExpectImagesOrNothing(
        Numbered(), [](ClImage& In, ClImage& Out) { return ClIpCut().ApplyParam(In, 1, Out); });
}

} // namespace
