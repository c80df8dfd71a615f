#include "Tools/FpImage.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

using namespace TestSupport;

namespace {

/// An image in which no field has its default.
ClTestImage Peculiar(unsigned char nType, unsigned nSeed) {
    ClTestImage image = RandomImage(nType, 5, 3, 3, nSeed);
    image.SetPelsX(100);
    image.SetPelsY(200);
    image.SetBlack(-3.0);
    image.SetWhite(4.0);
    image.SetContent(ClImage::eXYZ);
    image.SetAttribute(static_cast<int>(nSeed));
    return image;
}

} // namespace

// Deep copies

TEST(ImageCopy, CopiesEveryFieldAndPixel) {
    for (unsigned char nType : caPixelTypes) {
        const ClTestImage source = Peculiar(nType, 1);
        ClImage copy;
        const ClImage& result = copy = source;
        EXPECT_EQ(&result, &copy);
        ExpectSameImage(copy, source);
        EXPECT_NE(copy.Data(), source.Data());
    }
}

TEST(ImageCopy, CopiesImagesOfAllOddSizes) {
    for (unsigned char nType : caPixelTypes)
        for (int nWidth = 1; nWidth <= 9; nWidth += 2)
            for (int nHeight : {1, 3})
                for (int nPlanes = 1; nPlanes <= 4; ++nPlanes) {
                    const ClTestImage source = RandomImage(nType, nWidth, nHeight, nPlanes, 1);
                    ClImage copy(2, 2, 1, 0, 0);
                    copy = source;
                    ExpectSameImage(copy, source);
                }
}

TEST(ImageCopy, CopiesPaddingToo) {
    ClTestImage source = Img({{1, 2, 3, 4, 5}});
    source.FillAligment(77);
    ClImage copy;
    copy = source;
    EXPECT_EQ(std::memcmp(copy.Data(), source.Data(), 8), 0);
}

TEST(ImageCopy, DoesNotSeeLaterChanges) {
    ClTestImage source = Img({{1, 2}, {3, 4}});
    ClImage copy;
    copy = source;
    SetSample(source, 0, 0, 0, 99);
    EXPECT_EQ(Pixels(copy), Rows({{1, 2}, {3, 4}}));
}

TEST(ImageCopy, KeepsItsBufferWhereTheSizeFits) {
    const ClTestImage source = Img({{1, 2}, {3, 4}});
    ClTestImage copy = Img({{9, 9}, {9, 9}});
    const unsigned char* const pData = copy.Data();
    copy = source;
    EXPECT_EQ(copy.Data(), pData);
    EXPECT_EQ(Pixels(copy), Rows({{1, 2}, {3, 4}}));
}

TEST(ImageCopy, CopiesIntoAForeignBuffer) {
    unsigned char aPixels[8] = {};
    ClImage copy;
    copy.Attach(aPixels, ClImage::eUInt8, 2, 2, 1, 0, 0);
    copy = Img({{1, 2}, {3, 4}});
    EXPECT_EQ(aPixels[4], 3);
    EXPECT_EQ(copy.Data(), aPixels);
}

TEST(ImageCopy, PartsFromASharedBuffer) {
    const ClTestImage source = Img({{1, 2}, {3, 4}});
    ClImage image;
    image.Attach(source);
    image = source;
    EXPECT_NE(image.Data(), source.Data());
    ExpectSameImage(image, source);
}

TEST(ImageCopy, CopiesOntoAViewOfTheSameMemory) {
    unsigned char aPixels[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    ClImage source;
    ClImage view;
    source.Attach(aPixels, ClImage::eUInt8, 4, 2, 1, 0, 0);
    view.Attach(aPixels + 4, ClImage::eUInt8, 4, 2, 1, 0, 0);
    view = source;
    EXPECT_EQ(Pixels(view), Rows({{1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TEST(ImageCopy, ChangesNothingWhenAssignedToItself) {
    ClTestImage image = Peculiar(ClImage::eInt16, 1);
    const ClTestImage before = image;
    const unsigned char* const pData = image.Data();
    const ClImage& same = image;
    image.ClImage::operator=(same);
    EXPECT_EQ(image.Data(), pData);
    ExpectSameImage(image, before);
}

TEST(ImageCopy, CopiesAnEmptyImageToAnEmptyOneOnly) {
    const ClImage empty;
    ClImage other;
    other = empty;
    ExpectEmptyImage(other);
    ClImage image(4, 4, 1, 0, 0);
    EXPECT_THROWS(image = empty, ClException, -101, "Image area must be positive");
}

TEST(ImageCopy, CopiesNoPixelsFromNowhere) {
    ClImage nowhere;
    nowhere.Attach(nullptr, ClImage::eUInt8, 2, 2, 1, 0, 0);
    ClImage copy;
    copy = nowhere;
    EXPECT_EQ(Pixels(copy), Rows({{0, 0}, {0, 0}}));
    ClTestImage used = Img({{1, 2}, {3, 4}}); // its buffer fits and is kept
    used = nowhere;
    EXPECT_EQ(Pixels(used), Rows({{0, 0}, {0, 0}}));
}

TEST(ImageCopy, IsEmptyWhereMemoryIsMissing) {
    const ClTestImage source = Img({{1, 2}, {3, 4}});
    FailEachAllocation([&] {
        ClImage copy;
        try {
            copy = source;
        } catch (const ClExBadAlloc&) {
            ExpectEmptyImage(copy);
            throw;
        }
    });
    EXPECT_EQ(Pixels(source), Rows({{1, 2}, {3, 4}}));
}

// Exchange

TEST(ImageCopy, ExchangesEverything) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage first = Peculiar(nType, 1);
        ClTestImage second = Img({{1, 2}, {3, 4}});
        const ClTestImage firstBefore = first;
        const ClTestImage secondBefore = second;
        const unsigned char* const pFirst = first.Data();
        const unsigned char* const pSecond = second.Data();
        first.Swap(second);
        ExpectSameImage(first, secondBefore);
        ExpectSameImage(second, firstBefore);
        EXPECT_EQ(first.Data(), pSecond);
        EXPECT_EQ(second.Data(), pFirst);
    }
}

TEST(ImageCopy, ExchangesWithAnEmptyImage) {
    ClTestImage image = Peculiar(ClImage::eInt32, 1);
    const ClTestImage before = image;
    ClImage empty;
    image.Swap(empty);
    ExpectEmptyImage(image);
    ExpectSameImage(empty, before);
}

TEST(ImageCopy, ExchangesTheSizesOfTheBuffersToo) {
    ClTestImage small = Img({{1}});
    ClTestImage large = FlatImage(ClImage::eUInt8, 40, 40, 1, 5);
    small.Swap(large);
    large.NewWithType(ClImage::eUInt8, 40, 40, 1, 0, 0);
    large = static_cast<unsigned char>(9); // the sanitizer watches
    EXPECT_EQ(large.LineData(39)[39], 9);
}

TEST(ImageCopy, ExchangesWithoutMemory) {
    ClTestImage first = Img({{1, 2}});
    ClTestImage second = Img({{3}});
    {
        ClFailAllocation fail(0);
        first.Swap(second);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
    EXPECT_EQ(Pixels(first), Rows({{3}}));
}

TEST(ImageCopy, ChangesNothingWhenExchangedWithItself) {
    ClTestImage image = Peculiar(ClImage::eInt16, 1);
    const ClTestImage before = image;
    const unsigned char* const pData = image.Data();
    image.Swap(image);
    EXPECT_EQ(image.Data(), pData);
    ExpectSameImage(image, before);
}

// Planes

TEST(ImagePlane, IsTakenFromEveryTypeAndSize) {
    for (unsigned char nType : caPixelTypes)
        for (int nWidth : {1, 2, 3, 5, 8})
            for (int nPlanes = 1; nPlanes <= 5; ++nPlanes) {
                const ClTestImage image = RandomImage(nType, nWidth, 3, nPlanes, 1);
                for (int nPlane = 0; nPlane < nPlanes; ++nPlane) {
                    ClImage plane;
                    image.GetPlane(nPlane, plane);
                    ASSERT_EQ(plane.Width(), nWidth);
                    ASSERT_EQ(plane.Height(), 3);
                    for (int y = 0; y < 3; ++y)
                        for (int x = 0; x < nWidth; ++x)
                            EXPECT_EQ(Sample(plane, x, y), Sample(image, x, y, nPlane));
                }
            }
}

TEST(ImagePlane, HasTheDefaultsOfItsType) {
    const ClTestImage image = Peculiar(ClImage::eInt16, 7);
    ClTestImage plane = Img({{1}});
    plane.SetAttribute(5);
    image.GetPlane(1, plane);
    EXPECT_EQ(plane.DataType(), ClImage::eInt16);
    EXPECT_EQ(plane.Planes(), 1);
    EXPECT_EQ(plane.PelsX(), 100);
    EXPECT_EQ(plane.PelsY(), 200);
    EXPECT_EQ(plane.Black(), -32768.0);
    EXPECT_EQ(plane.White(), 32767.0);
    EXPECT_EQ(plane.Content(), ClImage::eGrayscale);
    EXPECT_EQ(plane.Attribute(), 5); // no new type or size changes it
}

TEST(ImagePlane, ReplacesItsOwnImage) {
    ClTestImage image = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}, 3);
    image.SetAttribute(5);
    image.GetPlane(1, image);
    EXPECT_EQ(image.Planes(), 1);
    EXPECT_EQ(Pixels(image), Rows({{2, 5}, {8, 11}}));
    EXPECT_EQ(image.Attribute(), 5);
}

TEST(ImagePlane, IsTakenIntoAnImageThatSharesTheBuffer) {
    const ClTestImage image = Img(ClImage::eUInt8, {{1, 2, 3, 4}}, 2);
    ClImage plane;
    plane.Attach(image);
    image.GetPlane(1, plane);
    EXPECT_EQ(Pixels(plane), Rows({{2, 4}}));
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3, 4}}));
}

TEST(ImagePlane, HasToExist) {
    const ClTestImage image = Img(ClImage::eUInt8, {{1, 2, 3}}, 3);
    ClTestImage plane = Img({{9}});
    for (int nPlane : {-1, 3, 100, INT_MIN, INT_MAX})
        EXPECT_THROWS(image.GetPlane(nPlane, plane), ClExTessarin, -35,
                      "One of the parameters is out of range.");
    EXPECT_EQ(Pixels(plane), Rows({{9}}));
}

TEST(ImagePlane, IsNotTakenFromOtherTypes) {
    unsigned char aPixels[64] = {};
    for (int nType : {0, 3, 8, 65, 128, 136, 192, 255}) {
        ClImage image;
        image.Attach(aPixels, static_cast<unsigned char>(nType), 1, 1, 1, 0, 0);
        ClTestImage plane = Img({{9}});
        image.GetPlane(0, plane);
        image.GetPlane(-1, plane); // the type decides first
        EXPECT_EQ(Pixels(plane), Rows({{9}}));
    }
}

TEST(ImagePlane, IsZeroWhereAnImageHasNoPixels) {
    ClImage nowhere;
    nowhere.Attach(nullptr, ClImage::eUInt8, 2, 2, 3, 0, 0);
    ClTestImage plane = Img({{1, 2}, {3, 4}});
    nowhere.GetPlane(1, plane);
    EXPECT_EQ(Pixels(plane), Rows({{0, 0}, {0, 0}}));
}

TEST(ImagePlane, IsNotTakenWithoutMemory) {
    const ClTestImage source = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);
    FailEachAllocation([&] {
        ClImage plane;
        try {
            source.GetPlane(0, plane);
        } catch (const ClExBadAlloc&) {
            ExpectEmptyImage(plane);
            throw;
        }
    });
    FailEachAllocation([&] {
        ClTestImage image = source;
        try {
            image.GetPlane(1, image);
        } catch (const ClExBadAlloc&) {
            ExpectSameImage(image, source);
            throw;
        }
    });
}
