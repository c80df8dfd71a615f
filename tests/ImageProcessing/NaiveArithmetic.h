#pragma once

/// Operators with two images, defined pixel by pixel, and a probe that tells its parts.

#include "ImageProcessing/Ip2to1Base.h"
#include "Tools/Allocate.h"
#include "support/Images.h"

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <variant>

namespace TestSupport {

/// What an image of the type keeps of a value: floating-point types round it; integers truncate it
/// and keep the low bits, and 0 of what is no number within 64 bits.
inline double Stored(unsigned char nType, double d) {
    if (nType == ClImage::eDouble64)
        return d;
    if (nType == ClImage::eFloat32)
        return static_cast<double>(static_cast<float>(d));
    if (!(d >= -std::ldexp(1.0, 63) && d < std::ldexp(1.0, 63)))
        return 0.0;
    const double dModulus = std::ldexp(1.0, 8 * ClImage::BytesPerSample(nType));
    double dLow = std::fmod(std::trunc(d), dModulus);
    if (dLow < 0)
        dLow += dModulus;
    return ClImage::IsSigned(nType) && dLow >= dModulus / 2 ? dLow - dModulus : dLow;
}

/// min(hi, max(lo, d)) with the ends of a range as they are sorted; NaN gives lo, and an end that
/// is NaN does not limit.
inline double Clipped(double d, double dBlack, double dWhite) {
    const double dLower = dWhite < dBlack ? dWhite : dBlack;
    const double dUpper = dWhite < dBlack ? dBlack : dWhite;
    if (!std::isnan(dLower) && (std::isnan(d) || d < dLower))
        return dLower;
    return !std::isnan(dUpper) && d > dUpper ? dUpper : d;
}

/// The default range of a pixel type.
struct StRange {
    explicit StRange(unsigned char nType) {
        ClImage Image;
        Image.BlackWhiteFromType(nType);
        m_dBlack = Image.Black();
        m_dWhite = Image.White();
    }
    double Clip(double d) const { return Clipped(d, m_dBlack, m_dWhite); }

    double m_dBlack;
    double m_dWhite;
};

// A sample as the language sees it

using AnySample = std::variant<std::uint8_t, std::int8_t, std::uint16_t, std::int16_t,
                               std::uint32_t, std::int32_t, float, double>;

inline AnySample TypedSample(unsigned char nType, double d) {
    switch (nType) {
    case ClImage::eUInt8:
        return static_cast<std::uint8_t>(d);
    case ClImage::eInt8:
        return static_cast<std::int8_t>(d);
    case ClImage::eUInt16:
        return static_cast<std::uint16_t>(d);
    case ClImage::eInt16:
        return static_cast<std::int16_t>(d);
    case ClImage::eUInt32:
        return static_cast<std::uint32_t>(d);
    case ClImage::eInt32:
        return static_cast<std::int32_t>(d);
    case ClImage::eFloat32:
        return static_cast<float>(d);
    default:
        return d;
    }
}

// Pairs

using PairFunction = std::function<double(double, double)>;

/// The output of `f` for two images of one size that lie on each other, stored in the type. Images
/// of 3 planes and 1 are paired plane by plane.
inline RealRows NaivePairs(const ClImage& In1, const ClImage& In2, unsigned char nOutType,
                           const PairFunction& f) {
    RealRows aRows(static_cast<std::size_t>(In1.Height()));
    for (int y = 0; y < In1.Height(); ++y)
        for (int x = 0; x < In1.Width(); ++x)
            for (int p = 0; p < In1.Planes(); ++p)
                aRows[static_cast<std::size_t>(y)].push_back(
                    Stored(nOutType,
                           f(Sample(In1, x, y, p), Sample(In2, x, y, In2.Planes() == 1 ? 0 : p))));
    return aRows;
}

/// Small values of every type, negative and broken ones where it has them, and its limits.
inline ClTestImage EdgeImage(unsigned char nType, int nShift) {
    std::vector<double> aValues = {0, 1, 2, 3, 100, 127};
    const StRange Range(nType);
    for (double d : {Range.m_dBlack, Range.m_dBlack + 1, Range.m_dWhite - 1, Range.m_dWhite})
        aValues.push_back(d);
    if (ClImage::IsSigned(nType))
        aValues.insert(aValues.end(), {-1, -2, -3, -100});
    if (ClImage::IsFloat(nType))
        aValues.insert(aValues.end(), {0.25, -0.75, 99.5, 254.75, -300.125, 70000.5, 5e9, -5e9});
    const int nCount = static_cast<int>(aValues.size());
    ClTestImage image = BlankImage(nType, 18, 1);
    for (int x = 0; x < 18; ++x)
        SetSample(image, x, 0, 0, aValues[static_cast<std::size_t>((x + nShift) % nCount)]);
    return image;
}

/// An operator whose value and loop are told by the test, and which notes what it was called with.
class ClIpPairProbe : public ClIp2to1Base {
public:
    ClProcessorBase* Create() override { return Vek::NewObject<ClIpPairProbe>(); }
    const char* Name() const override { return "ClIpPairProbe"; }

    double GetValue(ClImage& In1, ClImage& In2, ClImage& Out, double a, double b) override {
        ++m_nValues;
        return m_Value ? m_Value(a, b) : ClIp2to1Base::GetValue(In1, In2, Out, a, b);
    }
    long DoProcess(ClImage& In1, ClImage& In2, ClImage& Out, long nWidth, long nHeight,
                   long nPlanes1, long nPlanes2, long nIn1Offset, long nIn1Stride, long nIn2Offset,
                   long nIn2Stride, long nOutOffset, long nOutStride) override {
        m_pSeenOut = &Out;
        m_aSeen = {nWidth,     nHeight,    nPlanes1,   nPlanes2,   nIn1Offset,
                   nIn1Stride, nIn2Offset, nIn2Stride, nOutOffset, nOutStride};
        if (m_Loop)
            return m_Loop(Out);
        return ClIp2to1Base::DoProcess(In1, In2, Out, nWidth, nHeight, nPlanes1, nPlanes2,
                                       nIn1Offset, nIn1Stride, nIn2Offset, nIn2Stride, nOutOffset,
                                       nOutStride);
    }

    PairFunction m_Value;
    std::function<long(ClImage&)> m_Loop;
    long m_nValues = 0;
    const ClImage* m_pSeenOut = nullptr;
    /// The numbers that the loop was called with.
    using Seen = std::array<long, 10>;
    Seen m_aSeen = {}; ///< width, height, planes, then offset and stride of 1, 2 and out
};

} // namespace TestSupport
