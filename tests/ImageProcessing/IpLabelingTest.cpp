#include "ImageProcessing/IpLabeling.h"

#include "ImageProcessing/MissingMemory.h"

#include "RegionShapes.h"
#include "Tools/ParameterContainer.h"
#include "support/GuardedMemory.h"
#include "support/Throws.h"

namespace {

using namespace TestSupport;

long Label(ClImage& In, ClImage& Out, int& rRegions) {
    ClIpLabeling labeling;
    labeling.m_pInImage = &In;
    labeling.m_pOutImage = &Out;
    const long nResult = labeling.Apply();
    rRegions = labeling.m_nLabels;
    return nResult;
}

void ExpectLabels(const ClTestImage& Image) {
    ClTestImage in = Image;
    ClImage out;
    int nRegions = -1;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    const ClNaiveLabels naive(Image);
    EXPECT_EQ(nRegions, naive.Regions());
    EXPECT_TRUE(Pixels(out) == naive.Labels()) << Image.Width() << " x " << Image.Height();
    EXPECT_TRUE(Pixels(in) == Pixels(Image));
}

TEST(IpLabeling, NumbersRegionsInTheOrderOfTheirFirstPixels) {
    ClTestImage in = Drawn({
        ".#..#", //
        "##.##", //
        "...#.", //
        "#.#.#",
    });
    ClImage out;
    int nRegions = 0;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    EXPECT_EQ(nRegions, 5);
    EXPECT_EQ(Pixels(out), Rows({{0, 1, 0, 0, 2}, //
                                 {1, 1, 0, 2, 2},
                                 {0, 0, 0, 2, 0},
                                 {3, 0, 4, 0, 5}}));
}

TEST(IpLabeling, TakesTheValueZeroAlone) {
    ClTestImage in = Img({{1, 0, 254, 0, 128}});
    ClImage out;
    int nRegions = 0;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    EXPECT_EQ(nRegions, 2);
    EXPECT_EQ(Pixels(out), Rows({{0, 1, 0, 2, 0}}));
}

TEST(IpLabeling, FindsNoRegionInAGround) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 7, 5, 1, 255.0);
    ClImage out;
    int nRegions = -1;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    EXPECT_EQ(nRegions, 0);
    EXPECT_EQ(Pixels(out), Rows(5, std::vector<int>(7, 0)));
}

TEST(IpLabeling, FindsOneRegionInAnObjectWithoutGround) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 7, 5, 1, 0.0);
    ClImage out;
    int nRegions = -1;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    EXPECT_EQ(nRegions, 1);
    EXPECT_EQ(Pixels(out), Rows(5, std::vector<int>(7, 1)));
}

TEST(IpLabeling, KeepsPixelsApartThatTouchAtACorner) {
    for (const auto& aLines : {std::vector<std::string>{"#.", ".#"}, {".#", "#."}}) {
        ClTestImage in = Drawn(aLines);
        ClImage out;
        int nRegions = -1;
        EXPECT_EQ(Label(in, out, nRegions), 0);
        EXPECT_EQ(nRegions, 2);
        ExpectLabels(in);
    }
}

TEST(IpLabeling, AgreesWithAUnionFindOnRandomImages) {
    for (int w : {1, 2, 3, 5, 8, 17, 64, 101})
        for (int h : {1, 2, 7, 33})
            for (double dShare : {0.1, 0.4, 0.59, 0.7, 0.95})
                for (unsigned nSeed : {1U, 2U, 3U})
                    ExpectLabels(RandomShape(w, h, dShare, nSeed));
}

TEST(IpLabeling, AgreesWithAUnionFindOnLargerImages) {
    for (double dShare : {0.5, 0.593, 0.65}) // about where regions begin to span the image
        ExpectLabels(RandomShape(320, 203, dShare, 7));
}

TEST(IpLabeling, AgreesWithAUnionFindOnPathsAndCombs) {
    for (int n : {1, 2, 3, 4, 5, 12, 67}) {
        ExpectLabels(Spiral(n));
        ExpectLabels(Comb(n, n, true));
        ExpectLabels(Comb(n, n, false));
        ExpectLabels(Lattice(n));
        ExpectLabels(Shape(n, n, [](int x, int y) { return (x + y) % 2 == 0; }));
    }
}

TEST(IpLabeling, LabelsLargeRegionsOfAnyShapeOnASmallCallStack) {
    RunOnSmallStack([] {
        constexpr int n = 1024;
        ClTestImage aImages[] = {FlatImage(ClImage::eUInt8, n, n, 1, 0.0), Spiral(n),
                                 Comb(n, n, true), Comb(n, n, false), Lattice(n)};
        for (ClTestImage& rImage : aImages) {
            ClImage out;
            ClIpLabeling labeling;
            labeling.m_pInImage = &rImage;
            labeling.m_pOutImage = &out;
            EXPECT_EQ(labeling.Apply(), 0);
            EXPECT_EQ(labeling.m_nLabels, 1);
            EXPECT_LE(labeling.m_LineParts.Capacity(), n * n / 4UL);
            EXPECT_EQ(out.Line<int>(0)[0], rImage.LineData(0)[0] == 0 ? 1 : 0);
        }
    });
}

TEST(IpLabeling, ReadsNothingOutsideTheImage) {
    for (int nWidth : {4, 8, 12, 36}) { // lines without padding
        const std::vector<unsigned char> aObject(static_cast<std::size_t>(nWidth) * 5, 0);
        const ClGuardedBlock guarded(aObject);
        ClImage in;
        in.Attach(guarded.Data(), ClImage::eUInt8, nWidth, 5, 1, 0, 0);
        ClImage out;
        int nRegions = 0;
        EXPECT_EQ(Label(in, out, nRegions), 0);
        EXPECT_EQ(nRegions, 1);
    }
}

TEST(IpLabeling, TakesNoPixelFromThePadding) {
    ClTestImage in = FlatImage(ClImage::eUInt8, 5, 3, 1, 255.0);
    in = static_cast<unsigned char>(0); // padding too
    for (int y = 0; y < 3; ++y)
        in.LineData(y)[4] = 255;
    ExpectLabels(in);
}

TEST(IpLabeling, KeepsWhatTheInputSaysOfItself) {
    ClTestImage in = Drawn({"#."});
    in.SetPelsX(100);
    in.SetPelsY(200);
    in.SetContent(ClImage::eHSV);
    in.SetAttribute(5);
    ClImage out;
    int nRegions = 0;
    EXPECT_EQ(Label(in, out, nRegions), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt32);
    EXPECT_EQ(out.PelsX(), 100);
    EXPECT_EQ(out.PelsY(), 200);
    EXPECT_EQ(out.Planes(), 1);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(out.White(), 255.0);
    EXPECT_EQ(out.Content(), ClImage::eHSV);
    EXPECT_EQ(out.Attribute(), 5);
}

TEST(IpLabeling, MayReplaceItsInput) {
    ClTestImage image = RandomShape(19, 11, 0.6, 4);
    const ClNaiveLabels naive(image);
    int nRegions = 0;
    EXPECT_EQ(Label(image, image, nRegions), 0);
    EXPECT_EQ(image.DataType(), ClImage::eInt32);
    EXPECT_EQ(Pixels(image), naive.Labels());
}

TEST(IpLabeling, MayRunAgainOnOtherImages) {
    ClIpLabeling labeling;
    ClImage out;
    labeling.m_pOutImage = &out;
    for (unsigned nSeed : {1U, 2U, 3U}) {
        ClTestImage in = RandomShape(9 + static_cast<int>(nSeed), 7, 0.6, nSeed);
        labeling.m_pInImage = &in;
        EXPECT_EQ(labeling.Apply(), 0);
        EXPECT_EQ(Pixels(out), ClNaiveLabels(in).Labels());
    }
}

TEST(IpLabeling, BeginsWithoutTheSeedsThatARunLeft) {
    ClTestImage in = Drawn({"#.#"});
    ClImage out;
    ClIpLabeling labeling;
    labeling.m_pInImage = &in;
    labeling.m_pOutImage = &out;
    labeling.m_LineParts.Push({2, 0}); // would join what does not touch
    EXPECT_EQ(labeling.Apply(), 0);
    EXPECT_EQ(labeling.m_nLabels, 2);
    EXPECT_EQ(Pixels(out), Rows({{1, 0, 2}}));
}

TEST(IpLabeling, SaysWhichImageIsMissing) {
    ClTestImage in = Drawn({"#"});
    ClImage out;
    ClIpLabeling labeling;
    EXPECT_THROWS(labeling.Apply(), ClException, -37, "Inputimage is missing");
    labeling.m_pInImage = &in;
    EXPECT_THROWS(labeling.Apply(), ClException, -37, "Outputimage is missing");
    ClImage empty;
    labeling.m_pInImage = &empty;
    labeling.m_pOutImage = &out;
    EXPECT_THROWS(labeling.Apply(), ClException, -37, "Inputimage is missing");
}

TEST(IpLabeling, RefusesOtherTypesAndPlanesBeforeTheOutputChanges) {
    const ClTestImage before = Img({{1, 2}, {3, 4}});
    ClTestImage out = before;
    ClIpLabeling labeling;
    labeling.m_pOutImage = &out;
    for (unsigned char nType : caPixelTypes) {
        ClTestImage in = FlatImage(nType, 3, 3, 1, 0.0);
        labeling.m_pInImage = &in;
        if (nType != ClImage::eUInt8)
            EXPECT_THROWS(labeling.Apply(), ClException, -101,
                          "Image Type is not the assigned type");
    }
    ClTestImage in = FlatImage(ClImage::eUInt8, 3, 3, 3, 0.0);
    labeling.m_pInImage = &in;
    EXPECT_THROWS(labeling.Apply(), ClExTessarin, -11,
                  "Only grey-scale images with 8-bit color-depth are supported.");
    ExpectSameImage(out, before);
}

TEST(IpLabeling, PublishesNothingAndKeepsItsImagesWhenAsked) {
    ClTestImage in = Drawn({"#"});
    ClImage out;
    ClIpLabeling labeling;
    labeling.m_pInImage = &in;
    labeling.m_pOutImage = &out;
    labeling.m_nLabels = 4;
    ClParameterContainer Container;
    labeling.QueryParameters(Container);
    EXPECT_EQ(Container.Entries(), 0u);
    EXPECT_EQ(labeling.m_pInImage, &in);
    EXPECT_EQ(labeling.m_pOutImage, &out);
    EXPECT_EQ(labeling.m_nLabels, 4);
}

TEST(IpLabeling, LabelsOrLeavesItsImagesWhereMemoryIsMissing) {
    // The comb stands on its teeth's ends: 300 seeds wait at once, more than the first step holds.
    const ClTestImage comb = Comb(601, 3, true);
    Rows aExpected = Pixels(comb); // one region
    for (auto& rRow : aExpected)
        for (int& n : rRow)
            n = n == 0 ? 1 : 0;
    ClIpLabeling labeling; // kept: a run that failed must not disturb the next
    ClImage image;
    TestSupport::ExpectAllOrNothing(
        [&] {
            image.Attach(comb);
            labeling.m_pInImage = labeling.m_pOutImage = &image;
            EXPECT_EQ(labeling.Apply(), 0);
        },
        [&] {
            EXPECT_EQ(image.Data(), comb.Data());
            EXPECT_EQ(labeling.m_pInImage, &image);
            EXPECT_EQ(labeling.m_pOutImage, &image);
        },
        [&] {
            EXPECT_EQ(Pixels(image), aExpected);
            EXPECT_EQ(labeling.m_nLabels, 1);
        });
    EXPECT_EQ(labeling.m_LineParts.Capacity() % 100, 0u);
    EXPECT_GT(labeling.m_LineParts.Capacity(), 100u);
}

} // namespace
