#include "Tools/FpImage.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

using namespace TestSupport;

namespace {

ClTestImage Peculiar() {
    ClTestImage image = RandomImage(ClImage::eInt16, 5, 3, 3, 1);
    image.SetPelsX(100);
    image.SetPelsY(200);
    image.SetBlack(-3.0);
    image.SetWhite(4.0);
    image.SetContent(ClImage::eXYZ);
    image.SetAttribute(7);
    return image;
}

} // namespace

// Foreign memory

TEST(ImageAttach, PointsAtTheCallersPixels) {
    unsigned char aPixels[] = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
    ClImage image(9, 9, 1, 0, 0);
    image.SetAttribute(5);
    image.Attach(aPixels, ClImage::eUInt8, 2, 2, 3, 100, 200);
    EXPECT_EQ(image.Data(), aPixels);
    EXPECT_EQ(image.DataType(), ClImage::eUInt8);
    EXPECT_EQ(image.Width(), 2);
    EXPECT_EQ(image.Height(), 2);
    EXPECT_EQ(image.Planes(), 3);
    EXPECT_EQ(image.PelsX(), 100);
    EXPECT_EQ(image.PelsY(), 200);
    EXPECT_EQ(image.Black(), 0.0);
    EXPECT_EQ(image.White(), 255.0);
    EXPECT_EQ(image.Content(), ClImage::eRGB);
    EXPECT_EQ(image.Attribute(), 0);
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}));
}

TEST(ImageAttach, LeavesTheCallersPixelsBehind) {
    const auto pPixels = std::make_unique<unsigned char[]>(4); // freed here and nowhere else
    {
        ClImage image;
        image.Attach(pPixels.get(), ClImage::eUInt8, 4, 1, 1, 0, 0);
        image = static_cast<unsigned char>(9);
        ClImage other;
        other.Attach(image);
        image.Detach();
        ExpectEmptyImage(image);
    }
    EXPECT_EQ(pPixels[3], 9);
}

TEST(ImageAttach, TakesThePixelsOfEveryType) {
    for (unsigned char nType : caPixelTypes) {
        const ClTestImage source = RandomImage(nType, 5, 3, 2, 1);
        ClImage image;
        image.Attach(source.Data(), nType, 5, 3, 2, cnTestPels, cnTestPels);
        ExpectSameImage(image, source);
    }
}

TEST(ImageAttach, TakesTheLayoutOfAnother) {
    const ClTestImage layout = Peculiar();
    ClTestImage pixels = layout;
    ClImage image(9, 9, 1, 0, 0);
    image.Attach(pixels.Data(), layout);
    EXPECT_EQ(image.Data(), pixels.Data());
    ExpectSameImage(image, layout);
}

TEST(ImageAttach, IsEmptyWithItsOwnLayout) {
    unsigned char aPixels[4] = {};
    ClImage image(4, 1, 1, 0, 0);
    image.Attach(aPixels, image);
    ExpectEmptyImage(image);
}

// Other images

TEST(ImageAttach, SharesTheBufferOfAnother) {
    ClTestImage source = Peculiar();
    ClImage image(9, 9, 1, 0, 0);
    image.Attach(source);
    ExpectSameImage(image, source);
    EXPECT_EQ(image.Data(), source.Data());
    SetSample(image, 1, 2, 0, -77);
    EXPECT_EQ(Sample(source, 1, 2, 0), -77);
    SetSample(source, 1, 2, 0, 78);
    EXPECT_EQ(Sample(image, 1, 2, 0), 78);
}

TEST(ImageAttach, KeepsTheSharedBufferAlive) {
    ClImage image;
    {
        const ClTestImage source = Img({{1, 2}, {3, 4}});
        image.Attach(source);
    }
    EXPECT_EQ(Pixels(image), Rows({{1, 2}, {3, 4}}));
    ClTestImage other = Img({{5, 6}});
    image.Attach(other);
    other.Delete();
    EXPECT_EQ(Pixels(image), Rows({{5, 6}}));
}

TEST(ImageAttach, LeavesTheOtherIntactWhenItIsDeleted) {
    const ClTestImage source = Img({{1, 2}, {3, 4}});
    ClImage image;
    image.Attach(source);
    image.Delete();
    EXPECT_EQ(Pixels(source), Rows({{1, 2}, {3, 4}}));
}

TEST(ImageAttach, SharesNothingOfAnEmptyImage) {
    ClImage image(4, 4, 1, 0, 0);
    image.Attach(ClImage());
    ExpectEmptyImage(image);
}

TEST(ImageAttach, HasNoPixelsWithNull) {
    const ClTestImage layout = Peculiar();
    const ClFailAllocation fail(0);
    ClImage image;
    image.Attach(nullptr, ClImage::eUInt8, 2, 2, 1, 100, 200);
    EXPECT_EQ(image.Data(), nullptr);
    EXPECT_EQ(image.Width(), 2);
    image.Attach(nullptr, layout);
    EXPECT_EQ(image.Data(), nullptr);
    EXPECT_EQ(image.Width(), layout.Width());
    image = static_cast<unsigned char>(0);
    image.FillAligment(0);
    EXPECT_FALSE(ClFailAllocation::Happened());
}

TEST(ImageAttach, GetsPixelsOfItsOwnWhereItHadNone) {
    const ClTestImage source = Img({{1, 2}, {3, 4}});
    const auto ExpectPixels = [&](void (*fill)(const ClImage&, ClImage&), const auto& aExpected) {
        ClTestImage image;
        image.Attach(nullptr, ClImage::eUInt8, 2, 2, 1, 0, 0);
        fill(source, image);
        ASSERT_NE(image.Data(), nullptr);
        EXPECT_EQ(Pixels(image), aExpected);
        image.Attach(nullptr, source);
        fill(source, image);
        ASSERT_NE(image.Data(), nullptr);
        EXPECT_EQ(Pixels(image), aExpected);
    };
    ExpectPixels([](const ClImage& from, ClImage& image) { image = from; }, Rows({{1, 2}, {3, 4}}));
    ExpectPixels([](const ClImage& from, ClImage& image) { from.GetPlane(0, image); },
                 Rows({{1, 2}, {3, 4}}));
    ExpectPixels([](const ClImage& from, ClImage& image) { image.New(from); },
                 Rows({{0, 0}, {0, 0}}));
    ExpectPixels(
        [](const ClImage&, ClImage& image) { image.NewWithType(ClImage::eUInt8, 2, 2, 1, 0, 0); },
        Rows({{0, 0}, {0, 0}}));
}

TEST(ImageAttach, AnEmptyImageThatIsSharedTakesAnotherEmptyOne) {
    const ClImage empty;
    ClImage image;
    image.Attach(empty);
    image = empty;
    ExpectEmptyImage(image);
    image.NewWithType(ClImage::eUInt8, 0, 0, 0, 0, 0);
    EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImageAttach, IsEmptyWithItself) {
    ClImage image(4, 4, 1, 0, 0);
    image.SetAttribute(7);
    image.Attach(image);
    ExpectEmptyImage(image);
}

TEST(ImageAttach, IsEmptyWhereMemoryIsMissing) {
    unsigned char aPixels[4] = {};
    FailEachAllocation([&] {
        ClImage image;
        try {
            image.Attach(aPixels, ClImage::eUInt8, 4, 1, 1, 0, 0);
        } catch (const ClExBadAlloc&) {
            ExpectEmptyImage(image);
            throw;
        }
    });
    const ClTestImage layout = Peculiar();
    FailEachAllocation([&] {
        ClImage image;
        try {
            image.Attach(aPixels, layout);
        } catch (const ClExBadAlloc&) {
            ExpectEmptyImage(image);
            throw;
        }
    });
    EXPECT_EQ(aPixels[0], 0);
}

TEST(ImageAttach, CountsHoldersAcrossThreads) {
    ClTestImage source = FlatImage(ClImage::eUInt8, 16, 16, 1, 42);
    ClImage first;
    ClImage second;
    first.Attach(source);
    second.Attach(source);
    const auto Work = [](const ClImage& held) {
        for (int i = 0; i < 20000; ++i) {
            ClImage other;
            other.Attach(held);
        }
    };
    std::thread thread([&] { Work(first); });
    Work(second);
    thread.join();
    first.Delete();
    second.Delete();
    const unsigned char* const pData = source.Data();
    source.NewWithType(ClImage::eUInt8, 16, 16, 1, 0, 0);
    EXPECT_EQ(source.Data(), pData); // it is the only holder again
    EXPECT_EQ(Sample(source, 15, 15), 42);
}
