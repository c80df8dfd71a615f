#pragma once

/// What the arithmetic operators make of one sample, or of a pair of them, in double.

#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpSubtract.h"
#include "ImageProcessing/NaiveArithmetic.h"

#include <type_traits>

namespace TestSupport {

// Sums

/// The sum in the type that the language forms it in, signed overflow wrapped, and its half.
struct StSum {
    template <class T1, class T2>
    StSum(T1 a, T2 b) {
        using Type = decltype(a + b);
        if constexpr (std::is_same_v<Type, int>) {
            const auto sum = static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
            m_dSum = sum;
            m_dHalf = sum / 2;
        } else if constexpr (std::is_same_v<Type, unsigned>) {
            const unsigned sum = static_cast<unsigned>(a) + static_cast<unsigned>(b);
            m_dSum = sum;
            m_dHalf = sum / 2;
        } else {
            const Type sum = static_cast<Type>(a) + static_cast<Type>(b);
            m_dSum = static_cast<double>(sum);
            m_dHalf = static_cast<double>(sum) * 0.5;
        }
    }
    double m_dSum;
    double m_dHalf;
};

inline StSum SumInLanguage(unsigned char nType1, double a, unsigned char nType2, double b) {
    return std::visit([](auto x, auto y) { return StSum(x, y); }, TypedSample(nType1, a),
                      TypedSample(nType2, b));
}

/// What `ClIpAdd` makes of a sum, before it is stored.
inline double NaiveAdded(ClIpAdd::EProcessingMode eMode, const StSum& Sum, const StRange& Range) {
    if (eMode == ClIpAdd::ModeEnlarge)
        return Sum.m_dSum;
    return Range.Clip(eMode == ClIpAdd::ModeCut ? Sum.m_dSum : Sum.m_dHalf);
}

// Differences

struct StBounds {
    double m_dLower;
    double m_dUpper;

    double Clip(double d) const {
        return d < m_dLower || std::isnan(d) ? m_dLower : d > m_dUpper ? m_dUpper : d;
    }
};

/// Integer outputs have integer bounds of their type.
inline StBounds NaiveBounds(const ClIpSubtract& Subtract, const ClImage& In1, const ClImage& In2,
                            unsigned char nOut) {
    const StRange Range(nOut);
    StBounds Bounds = {Range.m_dBlack, Range.m_dWhite};
    if (Subtract.m_eDataRange == ClIpSubtract::InputDependent)
        Bounds = {In1.Black() - In2.White(), In1.White() - In2.Black()};
    if (Subtract.m_eDataRange == ClIpSubtract::UserDependent)
        Bounds = {Subtract.m_dLowerBound, Subtract.m_dUpperBound};
    if (ClImage::IsFloat(nOut))
        return Bounds;
    return {Stored(nOut, Bounds.m_dLower), Stored(nOut, Bounds.m_dUpper)};
}

// One image

inline double NaiveOffset(const ClImage& Image, double v, double dOffset) {
    const unsigned char nType = Image.DataType();
    const bool bInteger = !ClImage::IsFloat(nType) && nType != ClImage::eUInt8;
    if (bInteger)
        dOffset = std::isnan(dOffset) ? 0.0 : std::trunc(dOffset);
    if (dOffset == 0.0 && nType != ClImage::eUInt8)
        return v;
    return Clipped(v + dOffset, Image.Black(), Image.White());
}

inline double NaiveScaled(const ClImage& Image, double v, double dFactor) {
    if (dFactor == 1.0 && Image.DataType() != ClImage::eUInt8)
        return v;
    return Clipped(v * dFactor, Image.Black(), Image.White());
}

/// For an output of the input's range.
inline double NaiveInverted(const ClImage& Image, double v) {
    const double dBlack = Image.Black();
    const double dSpan = Image.White() - dBlack;
    return dBlack + (dBlack - v + Image.White() - dBlack) * dSpan / dSpan;
}

} // namespace TestSupport
