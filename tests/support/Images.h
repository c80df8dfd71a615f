#pragma once

/// Readable images for tests, of every pixel type.
///
///     ClTestImage in = Img({{1, 2}, {3, 4}});                       8 bits, one plane
///     ClTestImage in = Img(ClImage::eInt16, {{-1, 300}});           another type
///     ClTestImage in = Img(ClImage::eUInt8, {{1, 2, 3, 4, 5, 6}}, 3);  two pixels of three planes
///     EXPECT_EQ(Pixels(out), Rows({{1, 2}, {3, 4}}));
///
/// Samples are read and written through `memcpy` by one switch of this file, so that no test
/// leans on the library's own walks. Padding is filled with `cnPaddingByte`: an operator that
/// takes it for pixels shows.

#include "Tools/FpImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace TestSupport {

/// The samples of each line, pixel by pixel, the planes of a pixel side by side.
inline constexpr unsigned char ceDefault = ClImage::eTypeDefault;
using Rows = std::vector<std::vector<int>>;
using RealRows = std::vector<std::vector<double>>;

/// The eight pixel types.
inline constexpr ClImage::EDataType caPixelTypes[] = {
    ClImage::eUInt8, ClImage::eUInt16, ClImage::eUInt32,  ClImage::eInt8,
    ClImage::eInt16, ClImage::eInt32,  ClImage::eFloat32, ClImage::eDouble64};

inline constexpr unsigned char cnPaddingByte = 0xA5;

/// 500 dots per inch, the resolution of every test image that is told no other.
inline constexpr int cnTestPels = 19685;

/// A `ClImage` with values: copies are deep, moves exchange the buffers.
class ClTestImage : public ClImage {
public:
    ClTestImage() = default;
    explicit ClTestImage(const ClImage& Src) { ClImage::operator=(Src); }
    ClTestImage(const ClTestImage& Src) : ClImage() { ClImage::operator=(Src); }
    ClTestImage(ClTestImage&& Src) noexcept : ClImage() { Swap(Src); }
    ClTestImage& operator=(const ClTestImage& Src) {
        ClImage::operator=(Src);
        return *this;
    }
    ClTestImage& operator=(ClTestImage&& Src) noexcept {
        Swap(Src);
        return *this;
    }
    using ClImage::operator=;
};

// Samples

template <class T>
double LoadSample(const unsigned char* pFrom) {
    T value;
    std::memcpy(&value, pFrom, sizeof value);
    return static_cast<double>(value);
}

template <class T>
void StoreSample(unsigned char* pTo, double dValue) {
    const T value = static_cast<T>(dValue);
    std::memcpy(pTo, &value, sizeof value);
}

inline unsigned char* SampleAddress(const ClImage& Image, int x, int y, int nPlane) {
    const std::ptrdiff_t nIndex = std::ptrdiff_t{x} * Image.Planes() + nPlane;
    return Image.LineData(y) + nIndex * Image.BytesPerSample();
}

/// One sample; every sample of every type is exactly a double.
inline double Sample(const ClImage& Image, int x, int y, int nPlane = 0) {
    const unsigned char* p = SampleAddress(Image, x, y, nPlane);
    switch (Image.DataType()) {
    case ClImage::eUInt8:
        return LoadSample<std::uint8_t>(p);
    case ClImage::eUInt16:
        return LoadSample<std::uint16_t>(p);
    case ClImage::eUInt32:
        return LoadSample<std::uint32_t>(p);
    case ClImage::eInt8:
        return LoadSample<std::int8_t>(p);
    case ClImage::eInt16:
        return LoadSample<std::int16_t>(p);
    case ClImage::eInt32:
        return LoadSample<std::int32_t>(p);
    case ClImage::eFloat32:
        return LoadSample<float>(p);
    case ClImage::eDouble64:
        return LoadSample<double>(p);
    default:
        ADD_FAILURE() << "an image without a pixel type has no samples";
        return 0.0;
    }
}

/// Writes one sample; `dValue` has to lie in the type.
inline void SetSample(ClImage& Image, int x, int y, int nPlane, double dValue) {
    unsigned char* p = SampleAddress(Image, x, y, nPlane);
    switch (Image.DataType()) {
    case ClImage::eUInt8:
        return StoreSample<std::uint8_t>(p, dValue);
    case ClImage::eUInt16:
        return StoreSample<std::uint16_t>(p, dValue);
    case ClImage::eUInt32:
        return StoreSample<std::uint32_t>(p, dValue);
    case ClImage::eInt8:
        return StoreSample<std::int8_t>(p, dValue);
    case ClImage::eInt16:
        return StoreSample<std::int16_t>(p, dValue);
    case ClImage::eInt32:
        return StoreSample<std::int32_t>(p, dValue);
    case ClImage::eFloat32:
        return StoreSample<float>(p, dValue);
    case ClImage::eDouble64:
        return StoreSample<double>(p, dValue);
    default:
        ADD_FAILURE() << "an image without a pixel type has no samples";
    }
}

/// All samples of an image, without padding.
inline RealRows RealPixels(const ClImage& Image) {
    RealRows aRows(static_cast<std::size_t>(Image.Height()));
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            for (int p = 0; p < Image.Planes(); ++p)
                aRows[static_cast<std::size_t>(y)].push_back(Sample(Image, x, y, p));
    return aRows;
}

/// The same as integers, for images whose samples are integers of 32 bits.
inline Rows Pixels(const ClImage& Image) {
    Rows aRows;
    for (const std::vector<double>& aReal : RealPixels(Image)) {
        aRows.emplace_back();
        for (double d : aReal) {
            const bool bInteger = d >= -2147483648.0 && d <= 2147483647.0 && d == std::trunc(d);
            if (!bInteger)
                ADD_FAILURE() << d << " is no int; compare RealPixels() instead";
            aRows.back().push_back(bInteger ? static_cast<int>(d) : 0);
        }
    }
    return aRows;
}

// Images

/// An image whose samples are 0 and whose padding is `cnPaddingByte`.
inline ClTestImage BlankImage(unsigned char nType, int nWidth, int nHeight, int nPlanes = 1) {
    ClTestImage image;
    image.NewWithType(nType, nWidth, nHeight, nPlanes, cnTestPels, cnTestPels);
    const std::size_t nUsed = static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nPlanes) *
                              static_cast<std::size_t>(image.BytesPerSample());
    const std::size_t nStride = static_cast<std::size_t>(image.LineStrideBytes());
    for (int y = 0; y < nHeight; ++y)
        std::memset(image.LineData(y) + nUsed, cnPaddingByte, nStride - nUsed);
    return image;
}

/// An image with one value in every sample.
inline ClTestImage FlatImage(unsigned char nType, int nWidth, int nHeight, int nPlanes,
                             double dValue) {
    ClTestImage image = BlankImage(nType, nWidth, nHeight, nPlanes);
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            for (int p = 0; p < nPlanes; ++p)
                SetSample(image, x, y, p, dValue);
    return image;
}

/// An image of the given lines, which are equally long.
inline ClTestImage Img(unsigned char nType, const RealRows& aRows, int nPlanes = 1) {
    const int nSamples = static_cast<int>(aRows.at(0).size());
    ClTestImage image =
        BlankImage(nType, nSamples / nPlanes, static_cast<int>(aRows.size()), nPlanes);
    for (int y = 0; y < image.Height(); ++y)
        for (int i = 0; i < nSamples; ++i)
            SetSample(image, i / nPlanes, y, i % nPlanes,
                      aRows.at(static_cast<std::size_t>(y)).at(static_cast<std::size_t>(i)));
    return image;
}

inline ClTestImage Img(const Rows& aRows) {
    RealRows aReal;
    for (const std::vector<int>& aRow : aRows)
        aReal.emplace_back(aRow.begin(), aRow.end());
    return Img(ClImage::eUInt8, aReal);
}

/// Samples drawn evenly from the whole range of the type (-1 to 1 for floating point); the same
/// ones for the same arguments on every machine.
inline ClTestImage RandomImage(unsigned char nType, int nWidth, int nHeight, int nPlanes,
                               unsigned nSeed) {
    ClTestImage image = BlankImage(nType, nWidth, nHeight, nPlanes);
    std::mt19937 random(nSeed);
    const double dSpan = image.White() - image.Black();
    for (int y = 0; y < nHeight; ++y)
        for (int x = 0; x < nWidth; ++x)
            for (int p = 0; p < nPlanes; ++p) {
                const double dShare = static_cast<double>(random()) / 4294967296.0; // below 1
                const double d = ClImage::IsFloat(nType)
                                     ? image.Black() + dShare * dSpan
                                     : image.Black() + std::floor(dShare * (dSpan + 1.0));
                SetSample(image, x, y, p, d);
            }
    return image;
}

/// The two images have the same type, geometry, resolution, range, content, attribute and samples.
inline void ExpectSameImage(const ClImage& Actual, const ClImage& Expected) {
    EXPECT_EQ(Actual.DataType(), Expected.DataType());
    EXPECT_EQ(Actual.Width(), Expected.Width());
    EXPECT_EQ(Actual.Height(), Expected.Height());
    EXPECT_EQ(Actual.Planes(), Expected.Planes());
    EXPECT_EQ(Actual.PelsX(), Expected.PelsX());
    EXPECT_EQ(Actual.PelsY(), Expected.PelsY());
    EXPECT_EQ(Actual.Black(), Expected.Black());
    EXPECT_EQ(Actual.White(), Expected.White());
    EXPECT_EQ(Actual.Content(), Expected.Content());
    EXPECT_EQ(Actual.Attribute(), Expected.Attribute());
    EXPECT_EQ(RealPixels(Actual), RealPixels(Expected));
}

/// An image of 8 bits and one plane that has pixels, all of which are 255.
inline bool IsWhite(const ClImage& Image) {
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            if (Image.LineData(y)[x] != 255)
                return false;
    return Image.Width() > 0 && Image.Height() > 0;
}

/// The image is empty: no type, no geometry, no buffer.
inline void ExpectEmptyImage(const ClImage& Image) {
    EXPECT_EQ(Image.DataType(), ClImage::eTypeUnknown);
    EXPECT_EQ(Image.Width(), 0);
    EXPECT_EQ(Image.Height(), 0);
    EXPECT_EQ(Image.Planes(), 0);
    EXPECT_EQ(Image.PelsX(), 0);
    EXPECT_EQ(Image.PelsY(), 0);
    EXPECT_TRUE(std::isnan(Image.Black()));
    EXPECT_TRUE(std::isnan(Image.White()));
    EXPECT_EQ(Image.Content(), ClImage::eUnknown);
    EXPECT_EQ(Image.Attribute(), 0);
    EXPECT_EQ(Image.Data(), nullptr);
}

} // namespace TestSupport
