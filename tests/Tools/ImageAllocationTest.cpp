#include "Tools/FpImage.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <tuple>

using namespace TestSupport;

namespace {

constexpr const char* cszArea = "Image area must be positive";
constexpr const char* cszMemory = "Memory allocation failed";

void New(ClImage& image, int nWidth, int nHeight, int nPlanes = 1,
         unsigned char nType = ClImage::eUInt8) {
    image.NewWithType(nType, nWidth, nHeight, nPlanes, 0, 0);
}

} // namespace

// New buffers

TEST(ImageAllocation, TakesTypeAndGeometry) {
    for (unsigned char nType : caPixelTypes) {
        ClImage image;
        image.NewWithType(nType, 5, 4, 3, 100, 200);
        EXPECT_EQ(image.DataType(), nType);
        EXPECT_EQ(image.Width(), 5);
        EXPECT_EQ(image.Height(), 4);
        EXPECT_EQ(image.Planes(), 3);
        EXPECT_EQ(image.PelsX(), 100);
        EXPECT_EQ(image.PelsY(), 200);
        EXPECT_EQ(image.Content(), ClImage::eRGB);
        EXPECT_EQ(image.BytesPerSample(), ClImage::BytesPerSample(nType));
        EXPECT_NE(image.Data(), nullptr);
        EXPECT_TRUE(image.IsValid());
    }
}

TEST(ImageAllocation, MakesEightBitImagesWhenConstructed) {
    const ClImage image(5, 4, 3, 100, 200);
    EXPECT_EQ(image.DataType(), ClImage::eUInt8);
    EXPECT_EQ(image.Width(), 5);
    EXPECT_EQ(image.Height(), 4);
    EXPECT_EQ(image.Planes(), 3);
    EXPECT_EQ(image.PelsX(), 100);
    EXPECT_EQ(image.PelsY(), 200);
    EXPECT_THROWS(ClImage(5, -4, 3, 0, 0), ClException, -101, cszArea);
}

TEST(ImageAllocation, ZeroFillsANewBuffer) {
    ClImage image;
    New(image, 101, 7, 3, ClImage::eUInt16);
    for (std::size_t i = 0; i < image.SizeBytes(); ++i)
        EXPECT_EQ(image.Data()[i], 0);
}

TEST(ImageAllocation, RoundsItsBufferUpToEightBytes) {
    ClImage image(3, 1, 1, 0, 0); // 4 bytes of pixels
    for (int i = 4; i < 8; ++i) {
        EXPECT_EQ(image.Data()[i], 0); // the sanitizer watches
        image.Data()[i] = 1;
    }
}

#ifndef TESSARIN_WATCHES_MEMORY // there the buffer is all of its memory, for the test above
TEST(ImageAllocation, BeginsItsBufferWithACacheLine) {
    for (int nWidth = 1; nWidth < 400; nWidth += 7) {
        const ClImage image(nWidth, nWidth, 1, 0, 0);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(image.Data()) % 64, 0U) << nWidth;
    }
}
#endif

TEST(ImageAllocation, LeavesTheAttributeAlone) {
    ClImage image(3, 3, 1, 0, 0);
    image.SetAttribute(7);
    New(image, 30, 30);
    EXPECT_EQ(image.Attribute(), 7);
}

// Reuse

TEST(ImageAllocation, KeepsItsBufferForTheSameBytes) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 8, 6, 1, 1); // 48 bytes
    unsigned char* const pData = image.Data();
    const unsigned char nFirst = pData[0];
    New(image, 4, 3, 1, ClImage::eUInt32);
    EXPECT_EQ(image.Data(), pData);
    EXPECT_EQ(pData[0], nFirst); // nothing is cleared
    New(image, 4, 4, 3);
    EXPECT_EQ(image.Data(), pData);
    New(image, 1, 6, 1, ClImage::eDouble64);
    EXPECT_EQ(image.Data(), pData);
    EXPECT_EQ(image.Planes(), 1);
    EXPECT_EQ(image.DataType(), ClImage::eDouble64);
}

TEST(ImageAllocation, TakesANewBufferForOtherBytes) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 8, 6, 1, 200);
    New(image, 8, 5);
    EXPECT_EQ(Pixels(image), Rows(5, std::vector<int>(8, 0)));
    New(image, 8, 7);
    EXPECT_EQ(Pixels(image), Rows(7, std::vector<int>(8, 0)));
}

TEST(ImageAllocation, LeavesASharedBufferToItsOtherHolder) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 8, 6, 1, 200);
    ClImage holder;
    holder.Attach(image);
    New(image, 8, 6);
    EXPECT_NE(image.Data(), holder.Data());
    EXPECT_EQ(Pixels(image), Rows(6, std::vector<int>(8, 0)));
    EXPECT_EQ(Pixels(holder), Rows(6, std::vector<int>(8, 200)));
}

TEST(ImageAllocation, KeepsABufferThatWasSharedOnce) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 8, 6, 1, 200);
    unsigned char* const pData = image.Data();
    {
        ClImage holder;
        holder.Attach(image);
    }
    New(image, 8, 6);
    EXPECT_EQ(image.Data(), pData);
}

TEST(ImageAllocation, KeepsABufferThatItInherited) {
    ClImage image;
    {
        const ClTestImage source = FlatImage(ClImage::eUInt8, 8, 6, 1, 200);
        image.Attach(source);
    }
    unsigned char* const pData = image.Data();
    New(image, 4, 12);
    EXPECT_EQ(image.Data(), pData);
}

TEST(ImageAllocation, KeepsWritingIntoAForeignBufferOfTheSameBytes) {
    unsigned char aPixels[48] = {};
    ClImage image;
    image.Attach(aPixels, ClImage::eUInt8, 8, 6, 1, 0, 0);
    New(image, 4, 4, 3);
    EXPECT_EQ(image.Data(), aPixels);
    image = static_cast<unsigned char>(9);
    EXPECT_EQ(aPixels[47], 9);
    New(image, 4, 5, 3); // more than there is
    EXPECT_NE(image.Data(), aPixels);
}

TEST(ImageAllocation, ResetsRangeAndContentOfAKeptBuffer) {
    ClImage image(8, 6, 1, 0, 0);
    unsigned char* const pData = image.Data();
    image.SetBlack(50.0);
    image.SetWhite(60.0);
    image.SetContent(ClImage::eCIELab);
    New(image, 8, 6);
    EXPECT_EQ(image.Data(), pData);
    EXPECT_EQ(image.Black(), 0.0);
    EXPECT_EQ(image.White(), 255.0);
    EXPECT_EQ(image.Content(), ClImage::eGrayscale);
}

TEST(ImageAllocation, ComparesWithTheTrueSizeOfItsBuffer) {
    ClImage image(8, 6, 1, 0, 0);
    EXPECT_THROWS(New(image, 8, 0), ClException, -101, cszArea);
    New(image, 8, 60); // the geometry said nothing about the buffer any more
    image = static_cast<unsigned char>(9);
    EXPECT_EQ(image.LineData(59)[7], 9);
    EXPECT_THROWS(New(image, 0, 60), ClException, -101, cszArea);
    unsigned char* const pData = image.Data();
    New(image, 8, 60);
    EXPECT_EQ(image.Data(), pData);
}

// Areas without bytes

TEST(ImageAllocation, NeedsAPositiveArea) {
    for (const auto& [nWidth, nHeight, nPlanes] :
         {std::tuple(0, 4, 1), std::tuple(4, 0, 1), std::tuple(4, 4, 0)}) {
        ClImage image(4, 4, 1, 0, 0);
        EXPECT_THROWS(New(image, nWidth, nHeight, nPlanes), ClException, -101, cszArea);
    }
    ClImage image(4, 4, 1, 0, 0);
    EXPECT_THROWS(New(image, 4, 4, 1, ClImage::eTypeUnknown), ClException, -101, cszArea);
}

TEST(ImageAllocation, TellsNoPositionForAnArea) {
    try {
        ClImage(4, -1, 1, 0, 0);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

TEST(ImageAllocation, StaysQuietAboutNothingWhenEmpty) {
    ClImage image;
    New(image, 0, 0, 0);
    New(image, 5, 0);
    New(image, 0, 5, 3);
    EXPECT_EQ(image.Width(), 0);
    EXPECT_EQ(image.Height(), 5);
    EXPECT_EQ(image.Planes(), 3);
    EXPECT_EQ(image.Content(), ClImage::eRGB);
    EXPECT_EQ(image.White(), 255.0);
    EXPECT_EQ(image.Data(), nullptr);
}

TEST(ImageAllocation, RefusesNegativeArgumentsBeforeItLooksForReuse) {
    for (const auto& [nWidth, nHeight, nPlanes] :
         {std::tuple(-8, -6, 1), std::tuple(-8, 6, -1), std::tuple(8, -6, -1), std::tuple(-8, 6, 1),
          std::tuple(8, 6, -1), std::tuple(INT_MIN, INT_MIN, INT_MIN),
          std::tuple(INT_MIN, INT_MAX, INT_MAX)}) {
        ClImage image(8, 6, 1, 0, 0);
        EXPECT_THROWS(New(image, nWidth, nHeight, nPlanes), ClException, -101, cszArea);
        ClImage empty;
        EXPECT_THROWS(New(empty, nWidth, nHeight, nPlanes), ClException, -101, cszArea);
    }
    for (const auto& [nWidth, nHeight, nPlanes] :
         {std::tuple(0, -6, 1), std::tuple(0, 6, -1), std::tuple(-8, 0, 1), std::tuple(8, 0, -1)}) {
        ClImage empty; // which has as many bytes
        EXPECT_THROWS(New(empty, nWidth, nHeight, nPlanes), ClException, -101, cszArea);
    }
}

TEST(ImageAllocation, LeavesTheNewGeometryWithTheOldBufferAfterARefusal) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 8, 6, 1, 200);
    unsigned char* const pData = image.Data();
    EXPECT_THROWS(image.NewWithType(ClImage::eInt16, 7, -2, 3, 100, 200), ClException, -101,
                  cszArea);
    EXPECT_EQ(image.Data(), pData);
    EXPECT_EQ(image.DataType(), ClImage::eInt16);
    EXPECT_EQ(image.Width(), 7);
    EXPECT_EQ(image.Height(), -2);
    EXPECT_EQ(image.Planes(), 3);
    EXPECT_EQ(image.PelsX(), 100);
    EXPECT_EQ(image.PelsY(), 200);
    EXPECT_EQ(image.Black(), -32768.0);
    EXPECT_EQ(image.SizeBytes(), 0u); // so that nothing is read or written by mistake
    image = static_cast<unsigned char>(0);
    image.FillAligment(1);
    EXPECT_EQ(pData[47], 200);
}

TEST(ImageAllocation, HasNoBytesForNegativeSidesWhoseProductIsPositive) {
    ClTestImage image = FlatImage(ClImage::eUInt8, 8, 6, 1, 200); // 48 bytes
    EXPECT_THROWS(New(image, -8000, 6, -1), ClException, -101, cszArea);
    EXPECT_EQ(image.SizeBytes(), 0u);
    image = static_cast<unsigned char>(0); // the sanitizer watches
    image.FillAligment(1);
    EXPECT_EQ(image.Data()[0], 200);
    EXPECT_EQ(image.Data()[47], 200);
    unsigned char nByte = 200;
    image.Attach(&nByte, ClImage::eUInt8, INT_MAX, 1, -1, 0, 0);
    image.FillAligment(1);
    EXPECT_EQ(nByte, 200);
}

// Missing memory

TEST(ImageAllocation, IsEmptyWhereMemoryIsMissing) {
    FailEachAllocation([] {
        ClImage image;
        try {
            image.NewWithType(ClImage::eInt16, 8, 6, 1, 100, 200);
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(Words(e), cszMemory);
            EXPECT_STREQ(e.File(), "Unknown");
            EXPECT_EQ(e.Line(), -1);
            ExpectEmptyImage(image);
            throw;
        }
    });
    FailEachAllocation([] { ClImage(8, 6, 1, 0, 0); });
}

TEST(ImageAllocation, DropsItsOldBufferWhereMemoryIsMissing) {
    ClImage image;
    ClTestImage holder;
    FailEachAllocation([&] {
        image.NewWithType(ClImage::eUInt8, 4, 4, 1, 0, 0);
        image.SetAttribute(7);
        holder.Attach(image);
        try {
            New(image, 8, 8);
        } catch (const ClExBadAlloc&) {
            ExpectEmptyImage(image);
            EXPECT_NE(holder.Data(), nullptr);
            throw;
        }
    });
}

TEST(ImageAllocation, RefusesMoreBytesThanAnImageHas) {
    struct StCase {
        unsigned char m_nType;
        int m_nWidth;
        int m_nHeight;
        int m_nPlanes;
    };
    for (const StCase& c : {StCase{ClImage::eUInt8, 0x10000, 0x8000, 1}, // 2^31
                            StCase{ClImage::eUInt8, INT_MAX, 1, 1},      // padded to 2^31
                            StCase{ClImage::eUInt8, INT_MAX, INT_MAX, INT_MAX},
                            StCase{ClImage::eDouble64, INT_MAX, INT_MAX, INT_MAX},
                            StCase{ClImage::eDouble64, 0x10000, 0x10000, 1}, // 2^35
                            StCase{ClImage::eUInt16, 0x8000, 2, 0x8000},     // 2^32
                            StCase{ClImage::eUInt8, 0x10000, 1, 0x10000},    // 2^32
                            StCase{ClImage::eDouble64, 0x4000000, 8, 1}}) {  // 2^32
        ClImage image(4, 4, 1, 0, 0);
        EXPECT_THROWS(New(image, c.m_nWidth, c.m_nHeight, c.m_nPlanes, c.m_nType), ClExBadAlloc,
                      -102, cszMemory);
        ExpectEmptyImage(image);
    }
}

// After another image

TEST(ImageAllocation, TakesTheGeometryOfAnother) {
    ClTestImage source = RandomImage(ClImage::eUInt8, 5, 3, 3, 1);
    source.SetPelsX(100);
    source.SetContent(ClImage::eHSV);
    source.SetAttribute(7);
    ClImage image;
    image.NewWithType(source, ClImage::eInt16);
    EXPECT_EQ(image.DataType(), ClImage::eInt16);
    EXPECT_EQ(image.Width(), 5);
    EXPECT_EQ(image.Height(), 3);
    EXPECT_EQ(image.Planes(), 3);
    EXPECT_EQ(image.PelsX(), 100);
    EXPECT_EQ(image.PelsY(), cnTestPels);
    EXPECT_EQ(image.Content(), ClImage::eHSV);
    EXPECT_EQ(image.Attribute(), 7);
    EXPECT_EQ(image.Black(), -32768.0);
    EXPECT_EQ(image.White(), 32767.0);
    EXPECT_EQ(RealPixels(image), RealRows(3, std::vector<double>(15, 0.0)));
}

TEST(ImageAllocation, RefusesItselfAsTheOther) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 5, 3, 1, 1);
    const ClTestImage before = image;
    try {
        image.NewWithType(image, ClImage::eInt16);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_EQ(e.Number(), -44);
        EXPECT_EQ(Words(e), "this function dose not work on the same image.");
        EXPECT_STREQ(e.File(), "Tools/FpImage");
        EXPECT_GT(e.Line(), 0);
    }
    ExpectSameImage(image, before);
}

TEST(ImageAllocation, TakesEverythingButThePixelsOfAnother) {
    ClTestImage source = RandomImage(ClImage::eInt16, 5, 3, 3, 1);
    source.SetBlack(-5.0);
    source.SetWhite(6.0);
    source.SetContent(ClImage::eCIELUV);
    source.SetAttribute(7);
    ClImage image;
    image.New(source);
    ClTestImage expected = source;
    expected = static_cast<unsigned char>(0);
    ExpectSameImage(image, expected);
    EXPECT_NE(image.Data(), source.Data());
}

TEST(ImageAllocation, ChangesNothingForANewOfItself) {
    ClTestImage image = RandomImage(ClImage::eInt16, 5, 3, 1, 1);
    image.SetBlack(-5.0);
    const ClTestImage before = image;
    image.New(image);
    ExpectSameImage(image, before);
}
