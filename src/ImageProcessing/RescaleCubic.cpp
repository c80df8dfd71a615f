// Bicubic interpolation in double. The source position of column x is s = x * w / W with the
// fraction dx = s - floor(s), rows alike; 4 by 4 taps, at floor(s) - 1 to floor(s) + 2, are
// weighted, and the result is limited to the range of the samples and truncated.
//
// The radial form weighs a tap by its squared distance q = (m - dx)^2 + (n - dy)^2, a being the
// parameter:
//
//     q < 2:    (sqrt(q) (a + 2) - (a + 3)) q + 1
//     q < 4:    (sqrt(q) (q + 8) - 5 q) a - 4 a
//     else 0
//
// and divides the sum by that of the weights; 0 where this is no number to divide by. Taps are
// found by their place in the samples without padding: one behind the end of a line is the start
// of the next line, one before the first or behind the last sample does not count.
//
// The fast form is separable: the same cubics with |t| for sqrt(q), limits 1 and 2, and minus the
// parameter for a, along lines and then along columns; taps beyond the border repeat its samples.
// Its weights sum to 1, so it adds weighted differences to the tap at the position itself, which
// keeps a constant exactly. Four taps a row and a table per column stand against sixteen roots.

#include "ImageProcessing/RescaleModes.h"
#include "ImageProcessing/Walks/ByteSamples.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int cnTaps = 4;

/// A position between input samples.
struct StPosition {
    int m_nFloor;
    double m_dFraction;
};

StPosition PositionOf(int nOut, int nIn, int nOutSize) {
    const double dAt = static_cast<double>(nOut) * nIn / nOutSize;
    const double dFloor = std::floor(dAt);
    return {static_cast<int>(dFloor), dAt - dFloor};
}

template <class T>
T LimitedSample(double dValue) {
    constexpr double cdLowest = std::numeric_limits<T>::min();
    constexpr double cdHighest = std::numeric_limits<T>::max();
    return SampleFromDouble<T>(std::clamp(dValue, cdLowest, cdHighest)); // NaN passes, and gives 0
}

// Radial

double RadialWeight(double q, double a) {
    if (q < 2.0)
        return (std::sqrt(q) * (a + 2.0) - (a + 3.0)) * q + 1.0;
    if (q < 4.0)
        return (std::sqrt(q) * (q + 8.0) - 5.0 * q) * a - 4.0 * a;
    return 0.0;
}

/// The samples without padding, and how to find them.
template <class T>
struct StPlain {
    const T* m_pSamples;
    long long m_nWidth;
    long long m_nCount;
};

template <class T>
T RadialSample(const StPlain<T>& Plain, const StPosition& Column, const StPosition& Row, double a) {
    double dSum = 0.0;
    double dWeights = 0.0;
    for (int n = -1; n <= 2; ++n)
        for (int m = -1; m <= 2; ++m) {
            const long long nIndex = (Row.m_nFloor + n) * Plain.m_nWidth + Column.m_nFloor + m;
            if (nIndex < 0 || nIndex >= Plain.m_nCount)
                continue;
            const double dX = m - Column.m_dFraction;
            const double dY = n - Row.m_dFraction;
            const double dWeight = RadialWeight(dX * dX + dY * dY, a);
            dSum += dWeight * Plain.m_pSamples[nIndex];
            dWeights += dWeight;
        }
    const double dQuotient = dSum / dWeights;
    return std::isfinite(dQuotient) ? LimitedSample<T>(dQuotient) : T(0);
}

// Separable

/// The taps of a position on one axis. The weight of the tap at the position itself is what the
/// others leave of 1.
struct StTaps {
    int m_anIndex[cnTaps];
    double m_adWeight[cnTaps];
};

double CubicWeight(double t, double a) {
    if (t < 1.0)
        return (t * (a + 2.0) - (a + 3.0)) * t * t + 1.0;
    return ((t - 5.0) * t + 8.0) * t * a - 4.0 * a;
}

StTaps FindTaps(int nOut, int nIn, int nOutSize, double a) {
    const StPosition Position = PositionOf(nOut, nIn, nOutSize);
    StTaps Taps;
    for (int i = 0; i < cnTaps; ++i) {
        const long long nIndex = Position.m_nFloor + i - 1LL;
        Taps.m_anIndex[i] = static_cast<int>(std::clamp(nIndex, 0LL, nIn - 1LL));
        Taps.m_adWeight[i] = CubicWeight(std::fabs(i - 1 - Position.m_dFraction), a);
    }
    return Taps;
}

double Interpolate(const StTaps& Taps, const double (&adSamples)[cnTaps]) {
    const double dHere = adSamples[1];
    return dHere + (Taps.m_adWeight[0] * (adSamples[0] - dHere) +
                    Taps.m_adWeight[2] * (adSamples[2] - dHere) +
                    Taps.m_adWeight[3] * (adSamples[3] - dHere));
}

template <class T>
double InterpolateRow(const T* pLine, const StTaps& Taps) {
    const double adSamples[cnTaps] = {
        static_cast<double>(pLine[Taps.m_anIndex[0]]),
        static_cast<double>(pLine[Taps.m_anIndex[1]]),
        static_cast<double>(pLine[Taps.m_anIndex[2]]),
        static_cast<double>(pLine[Taps.m_anIndex[3]]),
    };
    return Interpolate(Taps, adSamples);
}

template <class T>
void InterpolateLine(const T* const (&apLines)[cnTaps], const StTaps& Rows, const StTaps* pColumns,
                     int nWidth, T* pOut) {
    for (int x = 0; x < nWidth; ++x) {
        const double adRows[cnTaps] = {
            InterpolateRow(apLines[0], pColumns[x]), InterpolateRow(apLines[1], pColumns[x]),
            InterpolateRow(apLines[2], pColumns[x]), InterpolateRow(apLines[3], pColumns[x])};
        pOut[x] = LimitedSample<T>(Interpolate(Rows, adRows));
    }
}

void ProcessBiCubicExact(const ClIpRescale& Run, const ClImage& In, ClImage& Out) {
    Rescale::NewOutput(Run, In, Run.m_nDestWidth, Run.m_nDestHeight, Out);
    const long long nCount = static_cast<long long>(In.Width()) * In.Height();
    const auto aPlain = Vek::NewArrayPtr<unsigned char>(static_cast<std::size_t>(nCount));
    for (long long y = 0; y < In.Height(); ++y)
        std::copy_n(In.LineData(y), In.Width(), aPlain.get() + y * In.Width());
    const auto aColumns = Vek::NewArrayPtr<StPosition>(static_cast<std::size_t>(Run.m_nDestWidth));
    for (int x = 0; x < Run.m_nDestWidth; ++x)
        aColumns[static_cast<std::size_t>(x)] = PositionOf(x, In.Width(), Run.m_nDestWidth);
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        const StPlain<T> Plain = {reinterpret_cast<const T*>(aPlain.get()), In.Width(), nCount};
        for (int y = 0; y < Run.m_nDestHeight; ++y) {
            const StPosition Row = PositionOf(y, In.Height(), Run.m_nDestHeight);
            for (int x = 0; x < Run.m_nDestWidth; ++x)
                Out.Line<T>(y)[x] = RadialSample(Plain, aColumns[static_cast<std::size_t>(x)], Row,
                                                 Run.m_dConvParameter1);
        }
    });
}

void ProcessBiCubicFast(const ClIpRescale& Run, const ClImage& In, ClImage& Out) {
    Rescale::NewOutput(Run, In, Run.m_nDestWidth, Run.m_nDestHeight, Out);
    const auto aColumns = Vek::NewArrayPtr<StTaps>(static_cast<std::size_t>(Run.m_nDestWidth));
    for (int x = 0; x < Run.m_nDestWidth; ++x)
        aColumns[static_cast<std::size_t>(x)] =
            FindTaps(x, In.Width(), Run.m_nDestWidth, -Run.m_dConvParameter1);
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (int y = 0; y < Run.m_nDestHeight; ++y) {
            const StTaps Rows = FindTaps(y, In.Height(), Run.m_nDestHeight, -Run.m_dConvParameter1);
            const T* apLines[cnTaps];
            for (int n = 0; n < cnTaps; ++n)
                apLines[n] = In.Line<const T>(Rows.m_anIndex[n]);
            InterpolateLine(apLines, Rows, aColumns.get(), Run.m_nDestWidth, Out.Line<T>(y));
        }
    });
}

} // namespace

void Rescale::ProcessBiCubic(ClIpRescale& rRun, const ClImage& In, ClImage& Out) {
    if (rRun.m_dConvParameter1 > 0.0)
        ProcessBiCubicFast(rRun, In, Out);
    else
        ProcessBiCubicExact(rRun, In, Out);
}
