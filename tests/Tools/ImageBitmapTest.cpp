#include "Tools/Bitmap.h"
#include "Tools/FpImage.h"

#include "support/AllocationFailures.h"
#include "support/BitmapBlocks.h"
#include "support/BitmapStreams.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

using namespace TestSupport;

namespace {

/// Sets every sample, not the padding, to a number of its own.
void NumberSamples(ClImage& image) {
    unsigned char nNext = 1;
    for (int y = 0; y < image.Height(); ++y)
        for (int i = 0; i < image.Width() * image.Planes(); ++i)
            image.LineData(y)[i] = nNext++;
}

std::unique_ptr<ClImage> NumberedImage(int nWidth, int nHeight, int nPlanes) {
    auto pImage = std::make_unique<ClImage>(nWidth, nHeight, nPlanes, 19685, 9843);
    NumberSamples(*pImage);
    return pImage;
}

void ExpectSameSamples(const ClBitmap& bitmap, const ClImage& image) {
    for (int y = 0; y < image.Height(); ++y)
        for (int i = 0; i < image.Width() * image.Planes(); ++i)
            EXPECT_EQ(bitmap.Line(y)[i], image.LineData(y)[i]);
}

} // namespace

// From bitmap to image

TEST(ImageBitmap, AttachesAnImageToTheBitmapsPixels) {
    const int caPlanes[][2] = {{8, 1}, {24, 3}, {32, 4}};
    const ClImage::EContent caContent[] = {ClImage::eGrayscale, ClImage::eRGB, ClImage::eRGBA};
    for (int i = 0; i < 3; ++i) {
        Bytes aBlock = UsualBlock(Head(5, 3, caPlanes[i][0]));
        const ClBitmap bitmap(aBlock.data(), false);
        ClImage image;
        EXPECT_TRUE(image.Attach(bitmap));
        EXPECT_EQ(image.Data(), bitmap.Pixels());
        EXPECT_EQ(image.DataType(), ClImage::eUInt8);
        EXPECT_EQ(image.Width(), 5);
        EXPECT_EQ(image.Height(), 3);
        EXPECT_EQ(image.Planes(), caPlanes[i][1]);
        EXPECT_EQ(image.PelsX(), 19685);
        EXPECT_EQ(image.PelsY(), 9843);
        EXPECT_EQ(image.Content(), caContent[i]);
        EXPECT_EQ(image.LineStrideBytes(), ClBitmap::StrideBytes(*bitmap.Header()));
        EXPECT_TRUE(image.IsValid());
    }
}

TEST(ImageBitmap, MapsTheCallersMemoryWithoutACopy) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    ClBitmap bitmap;
    ClImage image;
    bitmap.Attach(aBlock.data(), aBlock.size());
    image.Attach(bitmap);
    EXPECT_EQ(image.Data(), aBlock.data() + 1064);
}

TEST(ImageBitmap, IgnoresThePalette) {
    Bytes aBlock = Block(Head(4, 1, 8), std::vector<std::uint32_t>(256, 0x123456), {3, 1, 2, 0});
    ClImage image;
    image.Attach(ClBitmap(aBlock.data(), false));
    EXPECT_EQ(image.Data()[0], 3);
}

TEST(ImageBitmap, KeepsTheBitmapsBlockAlive) {
    ClImage image;
    {
        ClBitmap bitmap(5, 3, 8, 0);
        bitmap = static_cast<unsigned char>(42);
        image.Attach(bitmap);
    }
    EXPECT_EQ(image.LineData(2)[4], 42);
    image = static_cast<unsigned char>(43);
    EXPECT_EQ(image.LineData(2)[4], 43);
}

TEST(ImageBitmap, KeepsTheAttachedBufferForTheSameSize) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    ClImage image;
    {
        const ClBitmap bitmap(aBlock.data(), false);
        image.Attach(bitmap);
    }
    image.NewWithType(ClImage::eUInt8, 3, 6, 1, 0, 0); // 24 bytes as before
    EXPECT_EQ(image.Data(), aBlock.data() + 1064);
    image.NewWithType(ClImage::eUInt8, 3, 7, 1, 0, 0); // 28 bytes: more than there are
    EXPECT_NE(image.Data(), aBlock.data() + 1064);
    image = static_cast<unsigned char>(1);
}

TEST(ImageBitmap, LeavesSharedPixelsToTheBitmap) {
    const ClBitmap bitmap(5, 3, 8, 0);
    ClImage image;
    image.Attach(bitmap);
    image.NewWithType(ClImage::eUInt8, 5, 3, 1, 0, 0);
    EXPECT_NE(image.Data(), bitmap.Pixels());
}

TEST(ImageBitmap, RefusesACompressedBitmapQuietly) {
    for (std::uint32_t nCompression : {1u, 2u, 3u}) {
        StHead head = Head(5, 3, 8);
        head.m_nCompression = nCompression;
        Bytes aBlock = UsualBlock(head);
        ClImage image(4, 4, 1, 0, 0);
        image.SetAttribute(7);
        EXPECT_FALSE(image.Attach(ClBitmap(aBlock.data(), false)));
        ExpectEmptyImage(image);
    }
}

TEST(ImageBitmap, RefusesOtherDepths) {
    for (int nBits : {1, 4, 16}) {
        Bytes aBlock = UsualBlock(Head(5, 3, nBits));
        ClImage image(4, 4, 1, 0, 0);
        EXPECT_THROWS(image.Attach(ClBitmap(aBlock.data(), false)), ClException, -12,
                      "bitmap bit depth not supported\n");
        ExpectEmptyImage(image);
    }
}

TEST(ImageBitmap, TellsWhereADepthWasRefused) {
    try {
        ClImage().Attach(ClBitmap(5, 3, 16, 0));
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Tools/ImageBitmap");
        EXPECT_GT(e.Line(), 0);
    }
}

TEST(ImageBitmap, RefusesAnEmptyBitmap) {
    ClImage image(4, 4, 1, 0, 0);
    EXPECT_THROWS(image.Attach(ClBitmap()), ClExTessarin, -10, "The input image is not valid.");
    EXPECT_EQ(image.Data(), nullptr);
    EXPECT_TESSARIN(image = ClBitmap(), -10);
}

TEST(ImageBitmap, RefusesABitmapWithoutItsPixels) {
    const Bytes aBlock = UsualBlock(Head(5, 3, 8));
    for (std::size_t nSize : {40u, 1064u}) {
        const auto pBlock = Exactly(aBlock, nSize);
        ClBitmap bitmap;
        bitmap.Attach(pBlock.get(), nSize);
        ClImage image(4, 4, 1, 0, 0);
        EXPECT_TESSARIN(image.Attach(bitmap), -10);
        EXPECT_EQ(image.Data(), nullptr);
    }
}

TEST(ImageBitmap, RefusesMorePixelsThanAnImageHas) {
    Bytes aBlock = HeaderBytes(Head(0x10000, 0x8000, 8));
    ClBitmap bitmap;
    bitmap.Attach(aBlock.data(), 0); // nobody touches what is not there
    ClImage image;
    EXPECT_TESSARIN(image.Attach(bitmap), -14);
    EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImageBitmap, CopiesANegativeHeightIntoAnInvalidImage) {
    Bytes aBlock = UsualBlock(Head(5, 3, 24));
    StHead head = Head(5, -3, 24);
    std::memcpy(aBlock.data(), HeaderBytes(head).data(), 40);
    const ClBitmap bitmap(aBlock.data(), false);
    ClImage image;
    EXPECT_TRUE(image.Attach(bitmap));
    EXPECT_EQ(image.Height(), -3);
    EXPECT_FALSE(image.IsValid());
    ClImage copy;
    EXPECT_THROWS(copy = bitmap, ClException, -101, "Image area must be positive");
}

TEST(ImageBitmap, AssignsADeepCopy) {
    Bytes aBlock = UsualBlock(Head(5, 3, 24));
    const ClBitmap bitmap(aBlock.data(), false);
    ClImage image;
    image = bitmap;
    EXPECT_NE(image.Data(), bitmap.Pixels());
    ExpectSameSamples(bitmap, image);
    EXPECT_EQ(image.PelsY(), 9843);
}

TEST(ImageBitmap, AssignsACompressedBitmapAsAnEmptyImage) {
    StHead head = Head(5, 3, 8);
    head.m_nCompression = 1;
    Bytes aBlock = UsualBlock(head);
    const ClBitmap bitmap(aBlock.data(), false);
    ClImage image;
    image = bitmap;
    EXPECT_EQ(image.Data(), nullptr);
    ClImage other(4, 4, 1, 0, 0);
    EXPECT_THROWS(other = bitmap, ClException, -101, "Image area must be positive");
}

// From image to bitmap

TEST(ImageBitmap, AttachesABitmapToTheImagesPixels) {
    for (int nPlanes : {1, 3, 4}) {
        const auto pImage = NumberedImage(5, 3, nPlanes);
        ClBitmap bitmap;
        bitmap.Attach(*pImage);
        const Bytes aExpected = HeaderBytes(Head(5, 3, nPlanes * 8));
        EXPECT_EQ(std::memcmp(bitmap.Header(), aExpected.data(), 40), 0);
        EXPECT_EQ(bitmap.Pixels(), pImage->Data());
        EXPECT_EQ(bitmap.Palette() != nullptr, nPlanes == 1);
        EXPECT_TRUE(bitmap.IsGray(false) == (nPlanes == 1));
    }
}

TEST(ImageBitmap, GivesAGreyImageTheIdentityPalette) {
    const auto pImage = NumberedImage(5, 3, 1);
    const ClBitmap bitmap(*pImage, false);
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(bitmap.Palette()[i].rgbBlue, i);
        EXPECT_EQ(bitmap.Palette()[i].rgbGreen, i);
        EXPECT_EQ(bitmap.Palette()[i].rgbRed, i);
        EXPECT_EQ(bitmap.Palette()[i].rgbReserved, 0);
    }
}

TEST(ImageBitmap, KeepsTheImagesPixelsAlive) {
    ClBitmap bitmap;
    bitmap.Attach(*NumberedImage(5, 3, 1));
    EXPECT_EQ(bitmap.Line(2)[4], 15);
}

TEST(ImageBitmap, StaysEmptyForAnEmptyImage) {
    ClBitmap bitmap(4, 4, 8, 0);
    bitmap.Attach(ClImage());
    EXPECT_EQ(bitmap.Header(), nullptr);
    unsigned char aPixels[4] = {};
    ClImage flat;
    flat.Attach(aPixels, ClImage::eUInt16, 4, 0, 2, 0, 0); // the height decides first
    bitmap.Create(4, 4, 8, 0);
    bitmap.Attach(flat);
    EXPECT_EQ(bitmap.Header(), nullptr);
    bitmap.Create(4, 4, 8, 0);
    bitmap = flat;
    EXPECT_EQ(bitmap.Header(), nullptr);
}

TEST(ImageBitmap, RefusesOtherPlaneCounts) {
    for (int nPlanes : {2, 5}) {
        ClImage image;
        image.NewWithType(ClImage::eUInt16, 4, 4, nPlanes, 0, 0); // planes come before the type
        ClBitmap bitmap(4, 4, 8, 0);
        EXPECT_THROWS(bitmap.Attach(image), ClException, -33,
                      "Only grey scale, RGB and RGBA images supported");
        EXPECT_EQ(bitmap.Header(), nullptr);
        EXPECT_THROWS(ClBitmap(image, true), ClException, -33,
                      "Only grey scale, RGB and RGBA images supported");
    }
}

TEST(ImageBitmap, RefusesOtherTypes) {
    for (unsigned char nType : {ClImage::eUInt16, ClImage::eInt8, ClImage::eDouble64}) {
        ClImage image;
        image.NewWithType(nType, 4, 4, 1, 0, 0);
        ClBitmap bitmap(4, 4, 8, 0);
        EXPECT_THROWS(bitmap.Attach(image), ClException, -33,
                      "Only unsigned 8 bit images supported");
        EXPECT_EQ(bitmap.Header(), nullptr);
    }
}

TEST(ImageBitmap, CopiesTheImagesPixels) {
    for (int nPlanes : {1, 3, 4}) {
        const auto pImage = NumberedImage(5, 3, nPlanes);
        ClBitmap assigned;
        assigned = *pImage;
        const ClBitmap constructed(*pImage, true);
        ClBitmap copied;
        copied.CopyFrom(*pImage, true);
        EXPECT_NE(assigned.Pixels(), pImage->Data());
        EXPECT_NE(constructed.Pixels(), pImage->Data());
        ExpectSameSamples(assigned, *pImage);
        EXPECT_TRUE(constructed == assigned);
        EXPECT_TRUE(copied == assigned);
    }
}

TEST(ImageBitmap, CopiesPaddingToo) {
    ClImage image(5, 3, 1, 0, 0);
    image = static_cast<unsigned char>(255);
    const ClBitmap bitmap(image, true);
    EXPECT_EQ(bitmap.Line(2)[7], 255);
}

TEST(ImageBitmap, SharesPixelsWhenTheyAreNotToBeCopied) {
    const auto pImage = NumberedImage(5, 3, 1);
    ClBitmap bitmap;
    bitmap.CopyFrom(*pImage, false);
    EXPECT_EQ(bitmap.Pixels(), pImage->Data());
}

TEST(ImageBitmap, KeepsTheBitmapWhenAnImageCannotBeCopied) {
    ClBitmap bitmap(4, 4, 8, 0);
    const unsigned char* pPixels = bitmap.Pixels();
    EXPECT_THROWS(bitmap.CopyFrom(ClImage(4, 4, 2, 0, 0), true), ClException, -33,
                  "Only grey scale, RGB and RGBA images supported");
    EXPECT_EQ(bitmap.Pixels(), pPixels);
}

TEST(ImageBitmap, ReseatsABitmapOnAnImageOfItsOwnPixels) {
    Bytes aBlock = UsualBlock(Head(5, 3, 8));
    ClBitmap bitmap(aBlock.data(), true);
    ClImage image;
    image.Attach(bitmap);
    bitmap.Attach(image);
    EXPECT_EQ(bitmap.Pixels(), image.Data());
    EXPECT_EQ(std::memcmp(bitmap.Pixels(), aBlock.data() + 1064, 24), 0);
}

TEST(ImageBitmap, GivesBackTheBlockThatCameIn) {
    const Bytes aBlock = UsualBlock(Head(5, 3, 8));
    ClBitmap bitmap(Bytes(aBlock).data(), true);
    ClImage in;
    ClImage out;
    in.Attach(bitmap);
    out = in;
    bitmap.Attach(out);
    Bytes aBack(aBlock.size());
    bitmap.CopyTo(aBack.data());
    EXPECT_EQ(aBack, aBlock);
}

TEST(ImageBitmap, TakesAnImageOfNegativeHeight) {
    unsigned char aPixels[24] = {};
    ClImage image;
    image.Attach(aPixels, ClImage::eUInt8, 5, -3, 1, 0, 0);
    const ClBitmap shared(image, false);
    EXPECT_EQ(shared.Pixels(), aPixels);
    const ClBitmap copied(image, true);
    EXPECT_EQ(int{copied.Header()->biHeight}, -3);
    EXPECT_TRUE(shared == copied);
}

TEST(ImageBitmap, IsEmptyWhereMemoryIsMissing) {
    ClImage image(5, 3, 1, 0, 0);
    const ClBitmap source(5, 3, 8, 0);
    FailEachAllocation([&] {
        ClBitmap bitmap;
        try {
            bitmap.Attach(image);
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(bitmap.Header(), nullptr);
            throw;
        }
    });
    FailEachAllocation([&] {
        ClImage copy;
        copy = source;
    });
}
