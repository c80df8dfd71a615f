#include "ImageProcessing/PixelTypeDispatch.h"

#include "support/Images.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using TestSupport::caPixelTypes;

/// The pixel type of a sample type, put together from its size and its nature.
template <class T>
unsigned char TypeOf(TpPixelTag<T>) {
    constexpr unsigned nFloat = std::is_floating_point_v<T> ? 0x40 : 0;
    constexpr unsigned nSigned = std::is_signed_v<T> ? 0x80 : 0;
    return static_cast<unsigned char>(sizeof(T) | nFloat | nSigned);
}

bool IsPixelType(int nType) {
    return std::find(std::begin(caPixelTypes), std::end(caPixelTypes), nType) !=
           std::end(caPixelTypes);
}

TEST(PixelTypeDispatch, HandsOverTheSampleTypeOfEachPixelType) {
    for (unsigned char nType : caPixelTypes)
        EXPECT_EQ(DispatchPixelType(nType, [](auto Tag) { return long{TypeOf(Tag)}; }), nType);
}

TEST(PixelTypeDispatch, HandsOverTheSampleTypesOfTwoPixelTypesInTheirOrder) {
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            EXPECT_EQ(DispatchPixelTypes(
                          nType1, nType2,
                          [](auto Tag1, auto Tag2) { return TypeOf(Tag1) * 1000L + TypeOf(Tag2); }),
                      nType1 * 1000L + nType2);
}

TEST(PixelTypeDispatch, HandsOverTheSampleTypesOfThreePixelTypesInTheirOrder) {
    for (unsigned char nType1 : caPixelTypes)
        for (unsigned char nType2 : caPixelTypes)
            for (unsigned char nType3 : caPixelTypes)
                EXPECT_EQ(DispatchPixelTypes(nType1, nType2, nType3,
                                             [](auto Tag1, auto Tag2, auto Tag3) {
                                                 return (TypeOf(Tag1) * 1000L + TypeOf(Tag2)) *
                                                            1000L +
                                                        TypeOf(Tag3);
                                             }),
                          (nType1 * 1000L + nType2) * 1000L + nType3);
}

TEST(PixelTypeDispatch, AnswersEveryOtherValueWithoutACall) {
    const auto refuse = [](auto...) {
        ADD_FAILURE() << "called for a value that is no pixel type";
        return 0L;
    };
    for (int n = 0; n < 256; ++n) {
        if (IsPixelType(n))
            continue;
        const auto nType = static_cast<unsigned char>(n);
        EXPECT_EQ(DispatchPixelType(nType, refuse), -101);
        EXPECT_EQ(DispatchPixelTypes(nType, ClImage::eUInt8, refuse), -101);
        EXPECT_EQ(DispatchPixelTypes(ClImage::eUInt8, nType, refuse), -101);
        EXPECT_EQ(DispatchPixelTypes(ClImage::eUInt8, ClImage::eInt8, nType, refuse), -101);
    }
}

TEST(PixelTypeDispatch, PassesOnTheResult) {
    EXPECT_EQ(DispatchPixelType(ClImage::eFloat32, [](auto) { return -35L; }), -35);
}

TEST(SampleFromDouble, TruncatesTowardZero) {
    EXPECT_EQ(SampleFromDouble<unsigned char>(1.999), 1);
    EXPECT_EQ(SampleFromDouble<signed char>(-1.999), -1);
    EXPECT_EQ(SampleFromDouble<short>(-0.5), 0);
    EXPECT_EQ(SampleFromDouble<int>(2147483647.9), 2147483647);
}

TEST(SampleFromDouble, KeepsTheLowBits) {
    EXPECT_EQ(SampleFromDouble<unsigned char>(300.0), 44);
    EXPECT_EQ(SampleFromDouble<unsigned char>(-1.0), 255);
    EXPECT_EQ(SampleFromDouble<signed char>(128.0), -128);
    EXPECT_EQ(SampleFromDouble<unsigned short>(65536.0 + 7.0), 7);
    EXPECT_EQ(SampleFromDouble<unsigned int>(-2.0), 4294967294U);
    EXPECT_EQ(SampleFromDouble<int>(4294967296.0 + 3.0), 3);
}

TEST(SampleFromDouble, GivesZeroForWhatSixtyFourBitsDoNotHold) {
    constexpr double dInfinity = std::numeric_limits<double>::infinity();
    constexpr double dTwoTo63 = 9223372036854775808.0;
    EXPECT_EQ(SampleFromDouble<unsigned char>(std::nan("")), 0);
    EXPECT_EQ(SampleFromDouble<unsigned char>(dInfinity), 0);
    EXPECT_EQ(SampleFromDouble<signed char>(-dInfinity), 0);
    EXPECT_EQ(SampleFromDouble<long>(dTwoTo63), 0);
    EXPECT_EQ(SampleFromDouble<long>(std::nextafter(-dTwoTo63, -dInfinity)), 0);
}

TEST(SampleFromDouble, ReachesBothEndsOfSixtyFourBits) {
    EXPECT_EQ(SampleFromDouble<long>(-9223372036854775808.0), std::numeric_limits<long>::min());
    EXPECT_EQ(SampleFromDouble<long>(9223372036854774784.0), 9223372036854774784L);
    EXPECT_EQ(SampleFromDouble<unsigned short>(9223372036854774784.0), 0xFC00);
}

TEST(SampleFromDouble, KeepsFractionsOfFloatingPointSamples) {
    EXPECT_EQ(SampleFromDouble<float>(1.25), 1.25F);
    EXPECT_EQ(SampleFromDouble<double>(-0.1), -0.1);
    EXPECT_EQ(SampleFromDouble<float>(0.1), 0.1F);
    EXPECT_TRUE(std::isnan(SampleFromDouble<float>(std::nan(""))));
}

} // namespace
