#include "ImageProcessing/IpLinFilterBase.h"

#include "ImageProcessing/TestKernel.h"
#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/SpecialNumbers.h"
#include "support/Throws.h"

#include <cmath>
#include <limits>
#include <vector>

namespace {

using TestSupport::cdInfinity;
using TestSupport::ClIpTestKernel;
using TestSupport::ClTestImage;
using TestSupport::ExpectEmptyImage;
using TestSupport::ExpectSameImage;
using TestSupport::FlatImage;
using TestSupport::Img;
using TestSupport::Pixels;
using TestSupport::RandomImage;
using TestSupport::Rows;

// TapList

struct StTransfer {
    std::vector<long> m_aTaps;
    bool m_bSigned;
};

StTransfer Transfer(const std::vector<double>& aKernel) {
    ClIpTestKernel filter;
    TpArrayStatic<double> aReal;
    aReal.New(aKernel.size());
    std::copy(aKernel.begin(), aKernel.end(), aReal.Data());
    TpArrayStatic<long> aFixed;
    filter.TransferArray(aReal, aFixed);
    return {std::vector<long>(aFixed.Data(), aFixed.Data() + aFixed.Entries()),
            filter.HasNegativeTaps()};
}

using TapList = std::vector<long>;

TEST(LinFilterTaps, ShareTheUnitByTheirSum) {
    const StTransfer transfer = Transfer({1.0, 2.0, 1.0});
    EXPECT_EQ(transfer.m_aTaps, (TapList{1023, 2047, 1023}));
    EXPECT_FALSE(transfer.m_bSigned);
    EXPECT_EQ(Transfer({0.25}).m_aTaps, TapList{4095});
}

TEST(LinFilterTaps, AreTruncatedTowardZero) {
    const StTransfer transfer = Transfer({-1.0, -1.0});
    EXPECT_EQ(transfer.m_aTaps, (TapList{-1023, -1023})); // -1 / 4 * 4095 = -1023.75
    EXPECT_TRUE(transfer.m_bSigned);
}

TEST(LinFilterTaps, ShareTheUnitByTwiceTheLargerSumWhereSignsAreMixed) {
    const StTransfer derivative = Transfer({-1.0, 0.0, 1.0});
    EXPECT_EQ(derivative.m_aTaps, (TapList{-2047, 0, 2047}));
    EXPECT_TRUE(derivative.m_bSigned);
    const StTransfer positive = Transfer({-1.0, 4.0, -1.0}); // 8, not 2
    EXPECT_EQ(positive.m_aTaps, (TapList{-511, 2047, -511}));
    const StTransfer negative = Transfer({1.0, -4.0, 1.0}); // 8
    EXPECT_EQ(negative.m_aTaps, (TapList{511, -2047, 511}));
}

TEST(LinFilterTaps, ShareTheUnitByTheirSumWhereOneSignIsNegligible) {
    const StTransfer below = Transfer({1.0, -0.00005});
    EXPECT_EQ(below.m_aTaps, (TapList{4095, 0})); // 1 / 0.99995 * 4095 = 4095.2
    EXPECT_TRUE(below.m_bSigned);
    const StTransfer above = Transfer({1.0, -0.00015});
    EXPECT_EQ(above.m_aTaps, (TapList{2047, 0}));
}

TEST(LinFilterTaps, AreZeroWithoutAUsableSum) {
    const std::vector<double> aKernels[] = {
        {0.0, 0.0, 0.0},    {1.0, std::nan(""), 1.0},       {1.0, cdInfinity},
        {1.0, -cdInfinity}, {cdInfinity, -cdInfinity, 1.0}, {1e308, 1e308},
        {0.00003, -0.00003}}; // sum 0, and no mixed signs
    for (const auto& aKernel : aKernels)
        EXPECT_EQ(Transfer(aKernel).m_aTaps, TapList(aKernel.size(), 0));
}

TEST(LinFilterTaps, AreZeroWhereSixtyFourBitsDoNotHoldThem) {
    // The sum is 2^-67: the first tap would be 2^-17 / 2^-67 * 4095, above 2^61, the last 2^2.
    const double dTiny = std::ldexp(1.0, -67);
    const StTransfer held = Transfer({std::ldexp(1.0, -17), -std::ldexp(1.0, -17), dTiny});
    EXPECT_EQ(held.m_aTaps, (TapList{4095L << 50, -(4095L << 50), 4095}));
    const double dTinier = std::ldexp(1.0, -70);
    const StTransfer lost = Transfer({std::ldexp(1.0, -17), -std::ldexp(1.0, -17), dTinier});
    EXPECT_EQ(lost.m_aTaps, (TapList{0, 0, 4095}));
}

TEST(LinFilterTaps, MayBeNone) {
    EXPECT_EQ(Transfer({}).m_aTaps, TapList());
}

// Initialize

TEST(IpLinFilterBase, RefusesANegativeWidthFirst) {
    ClIpTestKernel filter;
    filter.m_nFilterWidth = -1;
    EXPECT_THROWS(filter.Apply(), ClException, -101,
                  "ClIpLinFilterBase::Initialize. Negative FilterWidth is not valid");
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -101,
                  "ClIpLinFilterBase::Initialize. Negative FilterWidth is not valid");
    ExpectEmptyImage(out);
}

TEST(IpLinFilterBase, DoesNothingWithANegativeWidth) {
    ClIpTestKernel filter;
    ClTestImage out = Img({{9}});
    filter.m_nFilterWidth = -3;
    EXPECT_EQ(filter.Process(), 0);
    filter.m_pOutImage = &out;
    EXPECT_EQ(filter.Process(), 0);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpLinFilterBase, AnswersMissingImages) {
    ClIpTestKernel filter({1.0});
    ClTestImage image = Img({{1}});
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.Process(), -35);
    filter.m_pInImage = &image;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.Process(), -35);
    filter.m_pInImage = nullptr;
    filter.m_pOutImage = &image;
    EXPECT_EQ(filter.Apply(), -35);
    EXPECT_EQ(filter.Process(), -35);
    EXPECT_EQ(Pixels(image), Rows({{1}}));
}

TEST(IpLinFilterBase, LimitsTheWidthToTheFilteredAxes) {
    const struct {
        int m_nWidth, m_nHeight;
        long m_nMode, m_nAsked, m_nGot;
    } aCases[] = {{10, 20, 1, 9, 9},   {10, 20, 1, 10, 9},  {10, 20, 1, 1000, 9},
                  {11, 20, 1, 10, 10}, {11, 20, 1, 11, 9},  {10, 20, 2, 19, 19},
                  {10, 20, 2, 20, 19}, {10, 21, 2, 20, 20}, {10, 21, 2, 21, 19},
                  {10, 20, 3, 17, 9},  {20, 10, 3, 17, 9},  {7, 7, 3, 9, 5},
                  {2, 9, 1, 9, 1},     {1, 9, 1, 9, 1},     {1, 9, 3, 9, 1},
                  {1, 1, 2, 2, 1},     {3, 3, 1, 2, 2},     {3, 3, 1, 3, 1},
                  {1, 9, 2, 9, 7},     {4, 4, 8, 99, 99},   {4, 4, 16, 98, 98}};
    for (const auto& c : aCases) {
        ClTestImage in = FlatImage(ClImage::eUInt8, c.m_nWidth, c.m_nHeight, 1, 0);
        ClImage out;
        ClIpTestKernel filter({1.0});
        filter.m_nFilterWidth = c.m_nAsked;
        filter.m_nMode = c.m_nMode;
        filter.m_pInImage = &in;
        filter.m_pOutImage = &out;
        EXPECT_EQ(filter.Initialize(), 0);
        EXPECT_EQ(filter.m_nFilterWidth, c.m_nGot)
            << c.m_nWidth << " x " << c.m_nHeight << ", " << c.m_nAsked;
        EXPECT_EQ(filter.m_nAskedWidth, c.m_nGot);
        EXPECT_EQ(filter.Filter().Entries(), static_cast<unsigned long>(c.m_nGot));
    }
}

TEST(IpLinFilterBase, HandsAZeroedArrayToTheKernel) {
    ClIpTestKernel filter({1.0});
    filter.m_nFilterWidth = 5;
    ClTestImage in = FlatImage(ClImage::eUInt8, 9, 9, 1, 0);
    ClImage out;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(filter.FixedTaps(), (TapList{4095, 0, 0, 0, 0}));
}

TEST(IpLinFilterBase, AnswersEveryMissingAllocation) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 20, 9, 1, 3);
    for (long nMode : {1L, 2L, 3L})
        TestSupport::FailEachAllocation([&] {
            ClImage out;
            ClIpTestKernel filter;
            filter.m_nFilterWidth = 3;
            filter.m_nMode = nMode;
            EXPECT_EQ(filter.ApplyTo(in, out), 0);
        });
}

TEST(IpLinFilterBase, AnswersAWidthThatNoMemoryHolds) {
    ClTestImage in = Img({{1, 2}});
    ClImage out;
    ClIpTestKernel filter({1.0});
    filter.m_nMode = 8;
    filter.m_nFilterWidth = std::numeric_limits<long>::max();
    EXPECT_THROWS(filter.ApplyTo(in, out), ClExBadAlloc, -102, "Memory allocation failed");
}

// Process

TEST(IpLinFilterBase, CopiesOnlyForAWidthOfZero) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 5, 3, 3, 3);
    ClImage out;
    ClIpTestKernel filter;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    ExpectSameImage(out, in);
    EXPECT_EQ(filter.Filter().Entries(), 0U);
    ClTestImage line = Img({{0, 1, 128, 255}});
    filter.m_aKernel = {1.0};
    filter.m_nFilterWidth = 1;
    EXPECT_EQ(filter.ApplyTo(line, out), 0);
    EXPECT_EQ(Pixels(out), Rows({{0, 0, 127, 254}}));
}

TEST(IpLinFilterBase, GivesZeroWhereNoKernelWasInitialized) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 20, 3, 1, 3);
    for (long nMode : {1L, 2L, 3L}) {
        ClImage out;
        ClIpTestKernel filter({1.0, 1.0, 1.0});
        filter.m_nMode = nMode;
        filter.m_pInImage = &in;
        filter.m_pOutImage = &out;
        EXPECT_EQ(filter.Process(), 0);
        EXPECT_EQ(Pixels(out), Rows(3, std::vector<int>(20, 0))) << nMode;
    }
}

TEST(IpLinFilterBase, RefusesSamplesThatAreNotEightBitsWide) {
    for (long nWidth : {0L, 1L, 3L})
        for (unsigned char nType : {ClImage::eUInt16, ClImage::eUInt32, ClImage::eInt16,
                                    ClImage::eInt32, ClImage::eFloat32, ClImage::eDouble64}) {
            ClTestImage in = RandomImage(nType, 9, 9, 1, 3);
            ClTestImage out = Img({{9}});
            ClIpTestKernel filter({1.0, 1.0, 1.0});
            filter.m_nFilterWidth = nWidth;
            EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -101,
                          "Image Type is not the assigned type");
            EXPECT_EQ(Pixels(out), Rows({{9}}));
        }
}

TEST(IpLinFilterBase, RefusesAnEmptyImage) {
    ClImage in;
    ClTestImage out = Img({{9}});
    ClIpTestKernel filter({1.0});
    EXPECT_THROWS(filter.ApplyTo(in, out), ClException, -101,
                  "Image Type is not the assigned type");
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpLinFilterBase, AnswersAnImageThatClaimsPixelsItHasNot) {
    ClImage in;
    in.Attach(nullptr, ClImage::eUInt8, 9, 9, 1, 0, 0);
    ClTestImage out = Img({{9}});
    ClIpTestKernel filter({1.0});
    EXPECT_EQ(filter.ApplyTo(in, out), -35);
    EXPECT_EQ(Pixels(out), Rows({{9}}));
}

TEST(IpLinFilterBase, FindsNothingToDoInAnImageWithoutSamples) {
    unsigned char aBytes[8] = {};
    const struct {
        int m_nWidth, m_nHeight, m_nPlanes;
    } aSizes[] = {{0, 5, 1}, {5, 0, 1}, {5, 5, 0}, {0, 3, 3}};
    for (const auto& size : aSizes)
        for (long nMode : {1L, 2L, 3L}) {
            ClImage in;
            in.Attach(aBytes, ClImage::eUInt8, size.m_nWidth, size.m_nHeight, size.m_nPlanes, 0, 0);
            ClIpTestKernel filter({1.0});
            filter.m_nMode = nMode;
            ClImage fresh;
            EXPECT_EQ(filter.ApplyTo(in, fresh), 0);
            EXPECT_EQ(fresh.Data(), nullptr);
            ClTestImage used = Img({{9}});
            EXPECT_THROWS(filter.ApplyTo(in, used), ClException, -101,
                          "Image area must be positive");
        }
}

TEST(IpLinFilterBase, RefusesToFilterOnePlaneInPlace) {
    ClTestImage image = Img({{1, 2, 3}});
    for (long nWidth : {1L, 3L}) {
        ClIpTestKernel filter({-1.0, 0.0, 1.0});
        filter.m_nFilterWidth = nWidth;
        filter.m_nMode = 1;
        EXPECT_EQ(filter.ApplyTo(image, image), -10);
        EXPECT_EQ(Pixels(image), Rows({{1, 2, 3}}));
        EXPECT_EQ(image.DataType(), ClImage::eUInt8);
        EXPECT_EQ(image.Black(), 0.0);
    }
}

TEST(IpLinFilterBase, RefusesAnUnknownMode) {
    ClTestImage in = Img({{1, 2, 3}});
    ClImage out;
    ClIpTestKernel filter({1.0});
    filter.m_nMode = 4;
    EXPECT_THROWS(filter.ApplyTo(in, out), ClExTessarin, -6, "Unknown error code.");
}

// Finalize

TEST(IpLinFilterBase, FitsSignednessAndRangeToKernelAndInput) {
    const struct {
        unsigned char m_nIn;
        std::vector<double> m_aKernel;
        unsigned char m_nOut;
        double m_dBlack, m_dWhite;
    } aCases[] = {{ClImage::eUInt8, {1.0, 1.0}, ClImage::eUInt8, 0.0, 255.0},
                  {ClImage::eUInt8, {1.0, -1.0}, ClImage::eInt8, -128.0, 127.0},
                  {ClImage::eInt8, {1.0, 1.0}, ClImage::eInt8, -128.0, 127.0},
                  {ClImage::eInt8, {1.0, -1.0}, ClImage::eInt8, -128.0, 127.0}};
    for (const auto& c : aCases)
        for (int nPlanes : {1, 3}) {
            ClTestImage in = RandomImage(c.m_nIn, 9, 9, nPlanes, 3);
            ClImage out;
            ClIpTestKernel filter(c.m_aKernel);
            filter.m_nMode = 1;
            EXPECT_EQ(filter.ApplyTo(in, out), 0);
            EXPECT_EQ(out.DataType(), c.m_nOut);
            EXPECT_EQ(out.Black(), c.m_dBlack);
            EXPECT_EQ(out.White(), c.m_dWhite);
            EXPECT_EQ(in.DataType(), c.m_nIn);
            EXPECT_TRUE(out.IsValid());
        }
}

TEST(IpLinFilterBase, MovesTheRangeOfTheOutput) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 9, 9, 1, 3);
    in.SetBlack(10.0);
    in.SetWhite(110.0);
    ClImage out;
    ClIpTestKernel filter({1.0, -1.0});
    filter.m_nMode = 2;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(out.Black(), 10.0 - 128.0);
    EXPECT_EQ(out.White(), 110.0 - 128.0);
    EXPECT_EQ(in.Black(), 10.0);
}

TEST(IpLinFilterBase, SetsOnlyTheSignOfAFloatingPointOutput) {
    ClTestImage in = Img({{1}});
    ClTestImage out = FlatImage(ClImage::eFloat32, 1, 1, 1, 0);
    ClIpTestKernel filter({1.0, -1.0});
    filter.m_pInImage = &in;
    filter.m_pOutImage = &out;
    TpArrayStatic<double> aReal;
    TpArrayStatic<long> aFixed;
    aReal.New(2);
    aReal[0] = 1.0;
    aReal[1] = -1.0;
    filter.TransferArray(aReal, aFixed);
    EXPECT_EQ(filter.Finalize(0), 0);
    EXPECT_EQ(out.DataType(), ClImage::eFloat32);
    EXPECT_EQ(out.Black(), -1.0);
    EXPECT_EQ(out.White(), 1.0);
}

TEST(IpLinFilterBase, ChangesNothingAfterAFailure) {
    ClTestImage in = FlatImage(ClImage::eInt8, 1, 1, 1, 0);
    ClTestImage out = Img({{1}});
    ClIpTestKernel filter;
    EXPECT_EQ(filter.Finalize(0), 0); // without images
    filter.m_pInImage = &in;
    filter.m_pOutImage = &out;
    EXPECT_EQ(filter.Finalize(-35), 0);
    EXPECT_EQ(out.DataType(), ClImage::eUInt8);
    EXPECT_EQ(out.Black(), 0.0);
    EXPECT_EQ(filter.Finalize(0), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8);
}

TEST(IpLinFilterBase, ChangesNothingAfterAFailureOfAPlane) {
    ClTestImage image = RandomImage(ClImage::eUInt8, 9, 9, 3, 3);
    const ClTestImage copy = image;
    ClTestImage small = FlatImage(ClImage::eInt8, 2, 2, 1, 0);
    ClIpTestKernel filter({1.0, -1.0});
    filter.m_nMode = 8;
    filter.m_pInDxImage = filter.m_pInDyImage = &small;
    EXPECT_EQ(filter.ApplyTo(image, image), 0);
    ExpectSameImage(image, copy);
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyTo(image, image), 0);
    EXPECT_EQ(image.DataType(), ClImage::eInt8);
}

TEST(IpLinFilterBase, ForgetsTheFailureOfAPlaneInARunOfOnePlane) {
    ClTestImage planes = RandomImage(ClImage::eUInt8, 9, 9, 3, 3);
    ClTestImage small = FlatImage(ClImage::eInt8, 2, 2, 1, 0);
    ClImage out;
    ClIpTestKernel filter({1.0, -1.0});
    filter.m_nMode = 8;
    filter.m_pInDxImage = filter.m_pInDyImage = &small;
    EXPECT_EQ(filter.ApplyTo(planes, out), 0);
    ExpectEmptyImage(out);
    ClTestImage plane = RandomImage(ClImage::eUInt8, 9, 9, 1, 3);
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyTo(plane, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8); // as a kernel with negative taps makes it
    EXPECT_EQ(out.Black(), -128.0);
}

TEST(IpLinFilterBase, ForgetsNegativeTapsInARunWithoutAKernel) {
    ClTestImage in = RandomImage(ClImage::eUInt8, 9, 9, 1, 3);
    ClTestImage out;
    ClIpTestKernel filter({1.0, -1.0});
    filter.m_nMode = 1;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    EXPECT_EQ(out.DataType(), ClImage::eInt8);
    EXPECT_TRUE(filter.HasNegativeTaps());
    filter.m_nFilterWidth = 0;
    EXPECT_EQ(filter.ApplyTo(in, out), 0);
    ExpectSameImage(out, in);
    EXPECT_FALSE(filter.HasNegativeTaps());
}

} // namespace
