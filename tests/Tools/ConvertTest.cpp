#include "Tools/Convert.h"

#include "Tools/FpImage.h"

#include <gtest/gtest.h>

#include <type_traits>

static_assert(std::has_virtual_destructor_v<ClConvert>);

TEST(Convert, BeginsWithOnePixelAndNoImage) {
    const ClConvert convert;
    EXPECT_EQ(convert.Image(), nullptr);
    EXPECT_EQ(convert.PelsX(), 1.0);
    EXPECT_EQ(convert.PelsY(), 1.0);
}

TEST(Convert, CountsPixelsPerHundredthOfAMillimetre) {
    // 500 and 250 dots per inch: 19685 and 9843 in a metre of 100000 hundredths.
    const ClConvert convert(19685, 9843);
    EXPECT_EQ(convert.PelsX(), 19685 * 1e-5);
    EXPECT_EQ(convert.PelsY(), 9843 * 1e-5);
    EXPECT_DOUBLE_EQ(convert.PelsX(), 0.19685);
    EXPECT_DOUBLE_EQ(convert.PelsY(), 0.09843);
}

TEST(Convert, TakesAnyResolution) {
    ClConvert convert;
    convert.SetRefPels(0, -100000);
    EXPECT_EQ(convert.PelsX(), 0.0);
    EXPECT_DOUBLE_EQ(convert.PelsY(), -1.0);
}

TEST(Convert, TakesTheResolutionOfAnImage) {
    ClImage image(4, 4, 1, 19685, 9843);
    const ClConvert byReference(image);
    const ClConvert byPointer(&image);
    ClConvert later;
    later.SetRefImage(image);
    for (const ClConvert* pConvert :
         {&byReference, &byPointer, static_cast<const ClConvert*>(&later)}) {
        EXPECT_EQ(pConvert->Image(), &image);
        EXPECT_EQ(pConvert->PelsX(), 19685 * 1e-5);
        EXPECT_EQ(pConvert->PelsY(), 9843 * 1e-5);
    }
}

TEST(Convert, TakesTheResolutionOnce) {
    ClImage image(4, 4, 1, 19685, 9843);
    const ClConvert convert(image);
    image.SetPelsX(40000);
    EXPECT_EQ(convert.PelsX(), 19685 * 1e-5);
}

TEST(Convert, StaysAsItWasForANullImage) {
    const ClConvert convert(static_cast<ClImage*>(nullptr));
    EXPECT_EQ(convert.Image(), nullptr);
    EXPECT_EQ(convert.PelsX(), 1.0);
    EXPECT_EQ(convert.PelsY(), 1.0);
}

TEST(Convert, CopiesItsThreeFields) {
    ClImage image(4, 4, 1, 19685, 9843);
    ClConvert convert;
    convert = ClConvert(image);
    EXPECT_EQ(convert.Image(), &image);
    EXPECT_EQ(convert.PelsX(), 19685 * 1e-5);
    EXPECT_EQ(convert.PelsY(), 9843 * 1e-5);
}

TEST(Convert, ForgetsNoImageWhenPelsAreSet) {
    ClImage image(4, 4, 1, 19685, 9843);
    ClConvert convert(image);
    convert.SetRefPels(100000, 200000);
    EXPECT_EQ(convert.Image(), &image);
    EXPECT_DOUBLE_EQ(convert.PelsX(), 1.0);
    EXPECT_DOUBLE_EQ(convert.PelsY(), 2.0);
}
