#include "ImageProcessing/ImagePyramid.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <algorithm>
#include <string>
#include <type_traits>

namespace {

using namespace TestSupport;

TEST(ImagePyramid, BeginsWithoutLayers) {
    ClImagePyramid pyramid;
    EXPECT_EQ(pyramid.Layers(), 0);
    EXPECT_TRUE(std::has_virtual_destructor_v<ClImagePyramid>);
    EXPECT_THROWS(pyramid[0], ClException, -701, "no pyramid is given");
}

TEST(ImagePyramid, MakesEmptyLayers) {
    const ClImagePyramid pyramid(3);
    EXPECT_EQ(pyramid.Layers(), 3);
    for (long i = 0; i < 3; ++i)
        ExpectEmptyImage(pyramid[i]);
}

TEST(ImagePyramid, StoresACountBelowOneAndMakesNone) {
    for (const long nCount : {0L, -1L, -5L}) {
        ClImagePyramid pyramid(2);
        pyramid.Create(nCount);
        EXPECT_EQ(pyramid.Layers(), nCount);
        EXPECT_THROWS(pyramid[0], ClException, -701, "no pyramid is given");
    }
}

TEST(ImagePyramid, CreatesAnewWithoutTheFormerContent) {
    ClImagePyramid pyramid(1);
    pyramid[0] = Img({{1}});
    pyramid.Create(2);
    ExpectEmptyImage(pyramid[0]);
}

TEST(ImagePyramid, HasTheLayersOfTheBinaryLogarithmOfTheShorterSide) {
    const struct {
        int nWidth, nHeight;
        long nLayers;
    } aCases[] = {{1, 1, 1},   {1, 500, 1},   {2, 2, 1},       {3, 9, 1},       {4, 4, 2},
                  {7, 8, 2},   {8, 7, 2},     {8, 8, 3},       {15, 16, 3},     {16, 99, 4},
                  {31, 32, 4}, {320, 480, 8}, {1023, 1024, 9}, {1024, 1024, 10}};
    for (const auto& Case : aCases) {
        const ClImagePyramid pyramid(BlankImage(ClImage::eUInt8, Case.nWidth, Case.nHeight));
        EXPECT_EQ(pyramid.Layers(), Case.nLayers) << Case.nWidth << " x " << Case.nHeight;
        ExpectEmptyImage(pyramid[Case.nLayers - 1]);
    }
    EXPECT_EQ(ClImagePyramid(ClImage()).Layers(), 1);
}

TEST(ImagePyramid, HasWholeLogarithmsForAllPowersOfTwo) {
    // Descriptions only: floating point logarithms miss some of these.
    unsigned char nByte = 0;
    for (int nPower = 1; nPower < 31; ++nPower) {
        ClImage image;
        image.Attach(&nByte, ClImage::eUInt8, 1 << nPower, 1 << nPower, 1, 1, 1);
        EXPECT_EQ(ClImagePyramid(image).Layers(), nPower);
        image.Attach(&nByte, ClImage::eUInt8, (1 << nPower) - 1, 1 << nPower, 1, 1, 1);
        EXPECT_EQ(ClImagePyramid(image).Layers(), std::max(1, nPower - 1));
    }
}

TEST(ImagePyramid, RefusesALayerOutside) {
    ClImagePyramid pyramid(2);
    const ClImagePyramid& constant = pyramid;
    EXPECT_THROWS(pyramid[-1], ClException, -35, "Pyramid layer out of range");
    EXPECT_THROWS(pyramid[2], ClException, -35, "Pyramid layer out of range");
    EXPECT_THROWS(constant[2], ClException, -35, "Pyramid layer out of range");
}

TEST(ImagePyramid, NamesItsFileInBothFailures) {
    ClImagePyramid pyramid;
    for (const long nLayers : {0L, 2L}) {
        pyramid.Create(nLayers);
        try {
            pyramid[2];
            FAIL() << "nothing was thrown";
        } catch (const ClException& e) {
            EXPECT_EQ(std::string(e.File()), "ImageProcessing/ImagePyramid");
        }
    }
}

TEST(ImagePyramid, CopiesDeeply) {
    ClImagePyramid pyramid(3);
    pyramid[0] = Img({{1, 2}, {3, 4}});
    pyramid[2] = Img({{5}});

    ClImagePyramid constructed(pyramid);
    ClImagePyramid assigned(7);
    assigned = pyramid;
    pyramid[0] = static_cast<unsigned char>(0);

    for (const ClImagePyramid* pCopy : {&constructed, &assigned}) {
        ASSERT_EQ(pCopy->Layers(), 3);
        EXPECT_EQ(Pixels((*pCopy)[0]), (Rows{{1, 2}, {3, 4}}));
        ExpectEmptyImage((*pCopy)[1]);
        EXPECT_EQ(Pixels((*pCopy)[2]), (Rows{{5}}));
    }
}

TEST(ImagePyramid, CopiesACountWithoutLayers) {
    ClImagePyramid pyramid(2);
    pyramid = ClImagePyramid(-3);
    EXPECT_EQ(pyramid.Layers(), -3);
}

TEST(ImagePyramid, AssignedToItselfStaysAsItIs) {
    ClImagePyramid pyramid(1);
    pyramid[0] = Img({{9}});
    const unsigned char* pData = pyramid[0].Data();
    const ClImagePyramid& same = pyramid;

    pyramid = same;

    EXPECT_EQ(pyramid[0].Data(), pData);
}

TEST(ImagePyramid, SwapExchangesLayersAndCounts) {
    ClImagePyramid a(1);
    a[0] = Img({{9}});
    ClImagePyramid b(-2);

    a.Swap(b);

    EXPECT_EQ(a.Layers(), -2);
    ASSERT_EQ(b.Layers(), 1);
    EXPECT_EQ(Pixels(b[0]), (Rows{{9}}));
}

TEST(ImagePyramid, ClearForgetsLayersAndReleasesTheirBuffers) {
    ClImagePyramid pyramid(1);
    pyramid[0] = Img({{9}});
    ClImage shared;
    shared.Attach(pyramid[0]);
    const unsigned char* pData = shared.Data();

    pyramid.Clear();

    EXPECT_EQ(pyramid.Layers(), 0);
    EXPECT_THROWS(pyramid[0], ClException, -701, "no pyramid is given");
    shared.NewWithType(ClImage::eUInt8, 1, 1, 1, 0, 0);
    EXPECT_EQ(shared.Data(), pData); // a buffer that nobody else holds is used again
}

TEST(ImagePyramid, RefusesACountThatMemoryCannotHold) {
    ClImagePyramid pyramid(1);
    EXPECT_THROWS(pyramid.Create(0x7FFFFFFFFFFFFFFF), ClExBadAlloc, -102,
                  "Memory allocation failed");
    EXPECT_EQ(pyramid.Layers(), 0);
}

TEST(ImagePyramid, StaysAsItWasWhereACopyFails) {
    ClImagePyramid source(2);
    source[0] = Img({{1, 2}});
    source[1] = Img({{3}});
    FailEachAllocation([&] {
        ClImagePyramid pyramid(1);
        try {
            pyramid = source;
        } catch (...) {
            EXPECT_EQ(pyramid.Layers(), 1);
            ExpectEmptyImage(pyramid[0]);
            throw;
        }
        ASSERT_EQ(pyramid.Layers(), 2);
        EXPECT_EQ(Sample(pyramid[0], 1, 0), 2); // without an allocation, which may fail now
        EXPECT_EQ(Sample(pyramid[1], 0, 0), 3);
    });
}

} // namespace
