#include "Tools/FpImage.h"

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <boost/noncopyable.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>

using namespace TestSupport;

namespace {

struct StType {
    unsigned char m_nType;
    int m_nValue;
    const char* m_szText;
    int m_nBytes;
    bool m_bSigned;
    bool m_bFloat;
    double m_dBlack;
    double m_dWhite;
};

const StType caTypes[] = {
    {ClImage::eUInt8, 1, "uint8", 1, false, false, 0.0, 255.0},
    {ClImage::eUInt16, 2, "uint16", 2, false, false, 0.0, 65535.0},
    {ClImage::eUInt32, 4, "uint32", 4, false, false, 0.0, 4294967295.0},
    {ClImage::eInt8, 129, "int8", 1, true, false, -128.0, 127.0},
    {ClImage::eInt16, 130, "int16", 2, true, false, -32768.0, 32767.0},
    {ClImage::eInt32, 132, "int32", 4, true, false, -2147483648.0, 2147483647.0},
    {ClImage::eFloat32, 196, "float32", 4, true, true, -1.0, 1.0},
    {ClImage::eDouble64, 200, "double64", 8, true, true, -1.0, 1.0},
};

bool IsOneOfTheEight(int nType) {
    for (const StType& type : caTypes)
        if (type.m_nType == nType)
            return true;
    return false;
}

} // namespace

// The type itself

TEST(Image, IsNotCopiedByAccident) {
    static_assert(std::is_base_of_v<boost::noncopyable, ClImage>);
    static_assert(!std::is_copy_constructible_v<ClImage>);
    static_assert(std::is_copy_assignable_v<ClImage>);
    static_assert(std::has_virtual_destructor_v<ClImage>);
}

TEST(Image, StartsEmpty) {
    const ClImage image;
    ExpectEmptyImage(image);
    EXPECT_EQ(image.BytesPerSample(), 0);
    EXPECT_EQ(image.LineStrideBytes(), 0);
    EXPECT_EQ(image.LineStrideSamples(), 0);
    EXPECT_EQ(image.SizeBytes(), 0u);
}

TEST(Image, StartsEmptyWithoutMemory) {
    const ClFailAllocation fail(0);
    ClImage image;
    image.Initialize();
    EXPECT_FALSE(ClFailAllocation::Happened());
    ExpectEmptyImage(image);
}

TEST(Image, BecomesEmptyInThreeWays) {
    for (void (*const empty)(ClImage&) :
         {+[](ClImage& image) { image.Initialize(); }, +[](ClImage& image) { image.Delete(); },
          +[](ClImage& image) { image.Detach(); }}) {
        ClImage image(5, 4, 3, 100, 200);
        image.SetAttribute(7);
        empty(image);
        ExpectEmptyImage(image);
    }
}

// Pixel types

TEST(Image, HasEightPixelTypes) {
    for (const StType& type : caTypes) {
        EXPECT_EQ(type.m_nType, type.m_nValue);
        EXPECT_STREQ(ClImage::TypeText(type.m_nType), type.m_szText);
        EXPECT_EQ(ClImage::BytesPerSample(type.m_nType), type.m_nBytes);
        EXPECT_EQ(ClImage::IsSigned(type.m_nType), type.m_bSigned);
        EXPECT_EQ(ClImage::IsFloat(type.m_nType), type.m_bFloat);
    }
    EXPECT_EQ(int{ClImage::eTypeUnknown}, 0);
    EXPECT_EQ(int{ClImage::eTypeDefault}, 255);
    EXPECT_STREQ(ClImage::TypeText(ClImage::eTypeUnknown), "unknown");
    EXPECT_STREQ(ClImage::TypeText(ClImage::eTypeDefault), "default");
}

TEST(Image, CallsEveryOtherValueNotValid) {
    for (int nType = 1; nType < 255; ++nType) {
        const char* const szText = ClImage::TypeText(static_cast<unsigned char>(nType));
        EXPECT_EQ(std::string(szText) == "not valid", !IsOneOfTheEight(nType)) << nType;
    }
}

TEST(Image, TakesItsRangeFromTheType) {
    ClImage image;
    for (const StType& type : caTypes) {
        image.BlackWhiteFromType(type.m_nType);
        EXPECT_EQ(image.Black(), type.m_dBlack);
        EXPECT_EQ(image.White(), type.m_dWhite);
    }
}

TEST(Image, HasNoRangeForEveryOtherValue) {
    for (int nType = 0; nType < 256; ++nType) {
        if (IsOneOfTheEight(nType))
            continue;
        ClImage image(2, 2, 1, 0, 0);
        image.BlackWhiteFromType(static_cast<unsigned char>(nType));
        EXPECT_TRUE(std::isnan(image.Black()));
        EXPECT_TRUE(std::isnan(image.White()));
    }
}

TEST(Image, TakesItsContentFromThePlanes) {
    ClImage image;
    const auto ContentOf = [&](int nPlanes) {
        image.ContentFromPlanes(nPlanes);
        return image.Content();
    };
    EXPECT_EQ(ContentOf(1), ClImage::eGrayscale);
    EXPECT_EQ(ContentOf(3), ClImage::eRGB);
    EXPECT_EQ(ContentOf(4), ClImage::eRGBA);
    for (int nPlanes : {-1, 0, 2, 5, 100, std::numeric_limits<int>::max()})
        EXPECT_EQ(ContentOf(nPlanes), ClImage::eUnknown);
}

TEST(Image, NumbersItsContents) {
    EXPECT_EQ(static_cast<int>(ClImage::eUnknown), 0);
    EXPECT_EQ(static_cast<int>(ClImage::eGrayscale), 1);
    EXPECT_EQ(static_cast<int>(ClImage::eRGB), 2);
    EXPECT_EQ(static_cast<int>(ClImage::eRGBA), 3);
    EXPECT_EQ(static_cast<int>(ClImage::eHSV), 4);
    EXPECT_EQ(static_cast<int>(ClImage::eXYZ), 5);
    EXPECT_EQ(static_cast<int>(ClImage::eCIELab), 6);
    EXPECT_EQ(static_cast<int>(ClImage::eCIELUV), 7);
    static_assert(sizeof(ClImage::EContent) == 4);
}

TEST(Image, IsTold) {
    ClImage image(5, 4, 3, 100, 200);
    image.SetBlack(1.5);
    image.SetWhite(2.5);
    image.SetContent(ClImage::eHSV);
    image.SetAttribute(-9);
    image.SetPelsX(300);
    image.SetPelsY(400);
    EXPECT_EQ(image.Black(), 1.5);
    EXPECT_EQ(image.White(), 2.5);
    EXPECT_EQ(image.Content(), ClImage::eHSV);
    EXPECT_EQ(image.Attribute(), -9);
    EXPECT_EQ(image.PelsX(), 300);
    EXPECT_EQ(image.PelsY(), 400);
}

// Memory layout

TEST(Image, PadsLinesToFourBytes) {
    const auto StrideOf = [](unsigned char nType, int nWidth, int nPlanes) {
        ClImage image;
        image.NewWithType(nType, nWidth, 2, nPlanes, 0, 0);
        return std::make_pair(image.LineStrideBytes(), image.LineStrideSamples());
    };
    EXPECT_EQ(StrideOf(ClImage::eUInt8, 3, 1), std::make_pair(4, 4));
    EXPECT_EQ(StrideOf(ClImage::eUInt8, 3, 3), std::make_pair(12, 12));
    EXPECT_EQ(StrideOf(ClImage::eUInt16, 1, 1), std::make_pair(4, 2));
    EXPECT_EQ(StrideOf(ClImage::eUInt8, 4, 1), std::make_pair(4, 4));
    EXPECT_EQ(StrideOf(ClImage::eDouble64, 1, 1), std::make_pair(8, 1));
    EXPECT_EQ(StrideOf(ClImage::eInt16, 3, 3), std::make_pair(20, 10));
}

TEST(Image, FollowsTheLineRuleForEveryTypeAndSize) {
    for (const StType& type : caTypes)
        for (int nWidth = 1; nWidth <= 9; ++nWidth)
            for (int nPlanes = 1; nPlanes <= 5; ++nPlanes)
                for (int nHeight : {1, 2, 7}) {
                    ClImage image;
                    image.NewWithType(type.m_nType, nWidth, nHeight, nPlanes, 0, 0);
                    int nStride = nWidth * nPlanes * type.m_nBytes;
                    while (nStride % 4 != 0)
                        ++nStride;
                    EXPECT_EQ(image.LineStrideBytes(), nStride);
                    EXPECT_EQ(image.LineStrideSamples(), nStride / type.m_nBytes);
                    EXPECT_EQ(image.SizeBytes(), static_cast<std::size_t>(nStride * nHeight));
                    EXPECT_EQ(image.LineData(nHeight - 1), image.Data() + nStride * (nHeight - 1));
                }
}

TEST(Image, InterleavesItsSamples) {
    const ClTestImage image = Img(ClImage::eUInt16, {{1, 2, 3, 4, 5, 6}, {7, 8, 9, 10, 11, 12}}, 3);
    ASSERT_EQ(image.LineStrideSamples(), 6);
    const auto* pSamples = reinterpret_cast<const std::uint16_t*>(image.Data());
    for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x)
            for (int p = 0; p < 3; ++p)
                EXPECT_EQ(pSamples[y * image.LineStrideSamples() + x * 3 + p],
                          y * 6 + x * 3 + p + 1);
    EXPECT_EQ(image.Line<std::uint16_t>(1)[5], 12);
}

TEST(Image, KeepsSamplesOfEveryType) {
    for (unsigned char nType : caPixelTypes) {
        const ClTestImage image = RandomImage(nType, 5, 3, 2, 1);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 5; ++x)
                for (int p = 0; p < 2; ++p) {
                    EXPECT_GE(Sample(image, x, y, p), image.Black());
                    EXPECT_LE(Sample(image, x, y, p), image.White());
                }
        EXPECT_EQ(RealPixels(RandomImage(nType, 5, 3, 2, 1)), RealPixels(image));
        EXPECT_NE(RealPixels(RandomImage(nType, 5, 3, 2, 2)), RealPixels(image));
    }
}

// Fills

TEST(Image, IsClearedWhateverItsType) {
    for (unsigned char nType : caPixelTypes) {
        ClTestImage image = RandomImage(nType, 5, 3, 2, 1);
        image = static_cast<unsigned char>(0);
        for (std::size_t i = 0; i < image.SizeBytes(); ++i) // padding included
            EXPECT_EQ(image.Data()[i], 0);
    }
}

TEST(Image, IsFilledWithBytes) {
    for (unsigned char nType : {ClImage::eUInt8, ClImage::eInt8}) {
        ClTestImage image = RandomImage(nType, 5, 3, 2, 1);
        image = static_cast<unsigned char>(200);
        for (std::size_t i = 0; i < image.SizeBytes(); ++i)
            EXPECT_EQ(image.Data()[i], 200);
    }
}

TEST(Image, RefusesToFillWiderSamplesWithBytes) {
    for (unsigned char nType : caPixelTypes) {
        if (ClImage::BytesPerSample(nType) == 1)
            continue;
        ClTestImage image = RandomImage(nType, 5, 3, 2, 1);
        const ClTestImage before = image;
        EXPECT_THROWS(image = static_cast<unsigned char>(1), ClException, -101,
                      "Image Type is not the assigned type");
        ExpectSameImage(image, before);
    }
}

TEST(Image, TellsNoPositionForARefusedFill) {
    ClTestImage image = BlankImage(ClImage::eInt16, 2, 2);
    try {
        image = static_cast<unsigned char>(1);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

TEST(Image, IsNotFilledWhenItIsEmpty) {
    ClImage image;
    image = static_cast<unsigned char>(0);
    ExpectEmptyImage(image);
}

TEST(Image, FillsItsLineEnds) {
    ClTestImage image = Img({{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}});
    image.FillAligment(77);
    for (int y = 0; y < 2; ++y)
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(image.LineData(y)[i], i < 5 ? y * 5 + i + 1 : 77);
}

TEST(Image, FillsItsLineEndsWithALowByte) {
    ClTestImage image = Img({{1, 2, 3}});
    image.FillAligment(0x1234);
    EXPECT_EQ(image.Data()[3], 0x34);
}

TEST(Image, HasNoLineEndsToFillWhereLinesAreFull) {
    ClTestImage image = Img({{1, 2, 3, 4}});
    image.FillAligment(77);
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 3, 4}}));
}

TEST(Image, FillsFromTheByteOfItsWidthOnOnWiderPixels) {
    ClTestImage image = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3); // two pixels, six bytes
    image.FillAligment(77);
    EXPECT_EQ(Pixels(image), Rows({{1, 2, 77, 77, 77, 77}}));
    EXPECT_EQ(image.Data()[7], 77);
    ClTestImage wide = Img(ClImage::eUInt16, {{0x0101, 0x0101, 0x0101}});
    wide.FillAligment(0);
    EXPECT_EQ(Pixels(wide), Rows({{0x0101, 0x0001, 0}}));
}

TEST(Image, FillsNothingWithoutLines) {
    ClImage empty;
    empty.FillAligment(77);
    ExpectEmptyImage(empty);
    unsigned char aPixels[24] = {};
    ClImage image;
    for (const auto& [nWidth, nHeight] : {std::pair(5, 0), std::pair(5, -3), std::pair(-5, 3)}) {
        image.Attach(aPixels, ClImage::eUInt8, nWidth, nHeight, 1, 0, 0);
        image.FillAligment(77);
        image = static_cast<unsigned char>(77);
    }
    image.Attach(nullptr, ClImage::eUInt8, 5, 3, 1, 0, 0);
    image.FillAligment(77);
    for (unsigned char nByte : aPixels)
        EXPECT_EQ(nByte, 0);
}
