// Bilinear interpolation for axes that grow, box integration for axes that shrink, on a grid of
// 12-bit fixed point: step = (w << 12) / W.
//
// Growing. Pixel centres are aligned: column x lies at p = x * step + (step >> 1) - 2048, not below
// 0, between the columns p >> 12 and one more, neither behind the last. With f = p & 4095 the
// weights are 4096 - f and f, rows alike, and
//
//     out = sum over the four neighbours of ((((wy * wx) >> 12) * in) >> 12)
//
// Shifts truncate each of the four terms, so that the result lies up to 4 below the exact value;
// of the sum the low 8 bits are kept.
//
// Shrinking. Column x is the mean of the cell from x * step to (x + 1) * step, the last one to
// w << 12, see Kernels/CellMean.h. An axis that shrinks goes first: less is left for the other.

#include "ImageProcessing/Kernels/CellMean.h"
#include "ImageProcessing/RescaleModes.h"
#include "ImageProcessing/Walks/ByteSamples.h"
#include "Tools/Allocate.h"

#include <algorithm>

namespace {

constexpr int cnShift = 12;
constexpr long long cnOne = 1LL << cnShift;

/// The two neighbours of an output position.
struct StNeighbours {
    int m_nFirst;
    int m_nSecond;
    int m_nFirstWeight;
    int m_nSecondWeight;
};

long long Step(int nIn, int nOut) {
    return nIn * cnOne / nOut;
}

StNeighbours FindNeighbours(int nPosition, long long nStep, int nIn) {
    const long long nAt = std::max(0LL, nPosition * nStep + (nStep >> 1) - cnOne / 2);
    const long long nLast = nIn - 1;
    const int nFraction = static_cast<int>(nAt & (cnOne - 1));
    return {static_cast<int>(std::min(nAt >> cnShift, nLast)),
            static_cast<int>(std::min((nAt >> cnShift) + 1, nLast)),
            static_cast<int>(cnOne) - nFraction, nFraction};
}

int Term(int nWeightY, int nWeightX, int nSample) {
    return (((nWeightY * nWeightX) >> cnShift) * nSample) >> cnShift;
}

template <class T>
void InterpolateLine(const T* pFirst, const T* pSecond, const StNeighbours& Row,
                     const StNeighbours* pColumns, int nWidth, T* pOut) {
    for (int x = 0; x < nWidth; ++x) {
        const StNeighbours& Column = pColumns[x];
        pOut[x] = static_cast<T>(
            Term(Row.m_nFirstWeight, Column.m_nFirstWeight, pFirst[Column.m_nFirst]) +
            Term(Row.m_nFirstWeight, Column.m_nSecondWeight, pFirst[Column.m_nSecond]) +
            Term(Row.m_nSecondWeight, Column.m_nFirstWeight, pSecond[Column.m_nFirst]) +
            Term(Row.m_nSecondWeight, Column.m_nSecondWeight, pSecond[Column.m_nSecond]));
    }
}

Kernels::StCell CellOf(int nPosition, int nIn, int nOut) {
    const long long nStep = Step(nIn, nOut);
    const long long nEnd = nPosition + 1 == nOut ? nIn * cnOne : (nPosition + 1) * nStep;
    return Kernels::MakeCell(nPosition * nStep, nEnd, cnOne);
}

void ProcessBiLinear(const ClIpRescale& Run, const ClImage& In, ClImage& Out) {
    Rescale::NewOutput(Run, In, Run.m_nDestWidth, Run.m_nDestHeight, Out);
    const auto aColumns =
        Vek::NewArrayPtr<StNeighbours>(static_cast<std::size_t>(Run.m_nDestWidth));
    const long long nStepX = Step(In.Width(), Run.m_nDestWidth);
    for (int x = 0; x < Run.m_nDestWidth; ++x)
        aColumns[static_cast<std::size_t>(x)] = FindNeighbours(x, nStepX, In.Width());
    const long long nStepY = Step(In.Height(), Run.m_nDestHeight);
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (int y = 0; y < Run.m_nDestHeight; ++y) {
            const StNeighbours Row = FindNeighbours(y, nStepY, In.Height());
            InterpolateLine(In.Line<const T>(Row.m_nFirst), In.Line<const T>(Row.m_nSecond), Row,
                            aColumns.get(), Run.m_nDestWidth, Out.Line<T>(y));
        }
    });
}

void ProcessXBiLinearIntegrating(const ClIpRescale& Run, const ClImage& In, ClImage& Out) {
    Rescale::NewOutput(Run, In, Run.m_nDestWidth, In.Height(), Out);
    const auto aCells =
        Vek::NewArrayPtr<Kernels::StCell>(static_cast<std::size_t>(Run.m_nDestWidth));
    for (int x = 0; x < Run.m_nDestWidth; ++x)
        aCells[static_cast<std::size_t>(x)] = CellOf(x, In.Width(), Run.m_nDestWidth);
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (int y = 0; y < In.Height(); ++y)
            Kernels::MeanOfCells(In.Line<const T>(y), aCells.get(), Run.m_nDestWidth, cnOne,
                                 Out.Line<T>(y));
    });
}

void ProcessYBiLinearIntegrating(const ClIpRescale& Run, const ClImage& In, ClImage& Out) {
    Rescale::NewOutput(Run, In, In.Width(), Run.m_nDestHeight, Out);
    DispatchByteType(In.DataType(), [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (int y = 0; y < Run.m_nDestHeight; ++y)
            Kernels::MeanOfLines(In.Line<const T>(0), In.LineStrideSamples(),
                                 CellOf(y, In.Height(), Run.m_nDestHeight), cnOne, In.Width(),
                                 Out.Line<T>(y));
    });
}

} // namespace

void Rescale::ProcessModeBiLinear(ClIpRescale& rRun, const ClImage& In, ClImage& Out) {
    const bool bShrinkX = rRun.m_nDestWidth < In.Width();
    const bool bShrinkY = rRun.m_nDestHeight < In.Height();
    if (!bShrinkX && !bShrinkY)
        return ProcessBiLinear(rRun, In, Out);

    ClImage Narrow;
    if (bShrinkX)
        ProcessXBiLinearIntegrating(rRun, In, Narrow);
    const ClImage& Columns = bShrinkX ? Narrow : In;
    ClImage Small;
    if (bShrinkY)
        ProcessYBiLinearIntegrating(rRun, Columns, Small);
    ClImage& Last = bShrinkY ? Small : Narrow;
    if (Last.Width() == rRun.m_nDestWidth && Last.Height() == rRun.m_nDestHeight) {
        Last.SetAttribute(Out.Attribute()); // as where the output is written in its place
        Out.Swap(Last);
    } else
        ProcessBiLinear(rRun, Last, Out);
}
