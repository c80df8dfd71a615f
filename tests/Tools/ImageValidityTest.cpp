#include "Tools/FpImage.h"

#include "Tools/MathConst.h"
#include "support/Images.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <string>

using namespace TestSupport;

namespace {

constexpr const char* cszSizes = "ClImage::IsValid. Wrong width, height or dpi";
constexpr const char* cszOrder = "ClImage::IsValid. value of Black should be < than value of White";
constexpr const char* cszUnsigned = "ClImage::IsValid. Unsigned require data range >= 0";
constexpr const char* cszChar = "ClImage::IsValid. Char require data range 0...255";
constexpr const char* cszSignedChar = "ClImage::IsValid. Signed Char require data range -128...127";

void ExpectInvalid(const ClImage& image, const char* szWords) {
    EXPECT_FALSE(image.IsValid());
    EXPECT_THROWS(image.CheckValid(), ClException, -101, szWords);
}

void ExpectValid(const ClImage& image) {
    EXPECT_TRUE(image.IsValid());
    EXPECT_TRUE(image.CheckValid());
}

ClTestImage Ranged(unsigned char nType, double dBlack, double dWhite) {
    ClTestImage image = BlankImage(nType, 3, 2);
    image.SetBlack(dBlack);
    image.SetWhite(dWhite);
    return image;
}

} // namespace

TEST(ImageValidity, AcceptsTheDefaultsOfEveryType) {
    for (unsigned char nType : caPixelTypes)
        ExpectValid(BlankImage(nType, 3, 2));
}

TEST(ImageValidity, RefusesNegativeSizesAndResolutions) {
    unsigned char aPixels[16] = {};
    ClImage image;
    image.Attach(aPixels, ClImage::eUInt8, -4, 1, 1, 0, 0);
    ExpectInvalid(image, cszSizes);
    image.Attach(aPixels, ClImage::eUInt8, 4, -1, 1, 0, 0);
    ExpectInvalid(image, cszSizes);
    image.Attach(aPixels, ClImage::eUInt8, 4, 1, 1, -1, 0);
    ExpectInvalid(image, cszSizes);
    image.Attach(aPixels, ClImage::eUInt8, 4, 1, 1, 0, -1);
    ExpectInvalid(image, cszSizes);
    image.Attach(aPixels, ClImage::eUInt8, 0, 0, 0, 0, 0); // zero will do
    ExpectValid(image);
}

TEST(ImageValidity, RefusesBlackAboveWhite) {
    ExpectInvalid(Ranged(ClImage::eUInt16, 10.0, 9.0), cszOrder);
    ExpectInvalid(Ranged(ClImage::eFloat32, 0.5, -0.5), cszOrder);
    ExpectValid(Ranged(ClImage::eUInt16, 9.0, 9.0));
}

TEST(ImageValidity, RefusesNegativeRangesOfUnsignedTypes) {
    ExpectInvalid(Ranged(ClImage::eUInt16, -1.0, 9.0), cszUnsigned);
    ExpectInvalid(Ranged(ClImage::eUInt32, -1e-9, 9.0), cszUnsigned);
    ExpectInvalid(Ranged(ClImage::eUInt8, -1.0, 255.0), cszUnsigned); // before the range of 8 bits
    ExpectValid(Ranged(ClImage::eInt16, -1.0, 9.0));
    ExpectValid(Ranged(ClImage::eFloat32, -5.0, 9.0));
}

TEST(ImageValidity, KnowsOneRangeOfUnsignedBytes) {
    ExpectInvalid(Ranged(ClImage::eUInt8, 0.0, 200.0), cszChar);
    ExpectInvalid(Ranged(ClImage::eUInt8, 1.0, 255.0), cszChar);
    ExpectInvalid(Ranged(ClImage::eUInt8, 0.0, 256.0), cszChar);
}

TEST(ImageValidity, KnowsOneRangeOfSignedBytes) {
    ExpectInvalid(Ranged(ClImage::eInt8, -128.0, 126.0), cszSignedChar);
    ExpectInvalid(Ranged(ClImage::eInt8, -127.0, 127.0), cszSignedChar);
    ExpectInvalid(Ranged(ClImage::eInt8, 0.0, 255.0), cszSignedChar);
}

TEST(ImageValidity, AcceptsNarrowerRangesOfWiderTypes) {
    ExpectValid(Ranged(ClImage::eUInt16, 0.0, 4095.0));
    ExpectValid(Ranged(ClImage::eInt16, -100.0, 100.0));
    ExpectValid(Ranged(ClImage::eUInt32, 5.0, 6.0));
    ExpectValid(Ranged(ClImage::eInt32, -5.0, 6.0));
    ExpectValid(Ranged(ClImage::eDouble64, 0.0, 1e300));
}

TEST(ImageValidity, RefusesTheEmptyImage) {
    ExpectInvalid(ClImage(), cszUnsigned); // no range, no sign
}

TEST(ImageValidity, TakesNaNAsADefinedPath) {
    ExpectValid(Ranged(ClImage::eFloat32, MathConst::cdNaN, MathConst::cdNaN));
    ExpectValid(Ranged(ClImage::eInt16, MathConst::cdNaN, 5.0));
    ExpectValid(Ranged(ClImage::eUInt16, 0.0, MathConst::cdNaN));
    ExpectInvalid(Ranged(ClImage::eUInt16, MathConst::cdNaN, 5.0), cszUnsigned);
    ExpectInvalid(Ranged(ClImage::eUInt8, 0.0, MathConst::cdNaN), cszChar);
    ExpectInvalid(Ranged(ClImage::eInt8, MathConst::cdNaN, 127.0), cszSignedChar);
}

TEST(ImageValidity, TestsInOrder) {
    unsigned char aPixels[16] = {};
    ClImage image;
    image.Attach(aPixels, ClImage::eUInt8, 4, -1, 1, 0, 0);
    image.SetBlack(-1.0);
    image.SetWhite(-2.0);
    ExpectInvalid(image, cszSizes);
    image.Attach(aPixels, ClImage::eUInt8, 4, 1, 1, 0, 0);
    image.SetBlack(-1.0);
    image.SetWhite(-2.0);
    ExpectInvalid(image, cszOrder);
    image.SetWhite(5.0);
    ExpectInvalid(image, cszUnsigned);
    image.SetBlack(1.0);
    ExpectInvalid(image, cszChar);
}

TEST(ImageValidity, TellsNoPosition) {
    try {
        ClImage().CheckValid();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClException& e) {
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}
