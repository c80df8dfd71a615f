// Area-weighted resampling in two passes, after Fant: every line is brought to the new width, the
// image is transposed, every column, now a line, is brought to the new height, and the image is
// transposed back. Both passes run along memory. Output sample x of a line is the mean of the
// input from x * w / W to (x + 1) * w / W, whether the line grows or shrinks, limited to the
// samples' range, which a mean never leaves, and truncated.
//
// Counted in W-th parts of a sample all ends of cells are integers, and sums of them exact: the
// quotient is what the mean is, in every precision that holds it. Kernels/CellMean.h does the sums.

#include "ImageProcessing/Kernels/CellMean.h"
#include "ImageProcessing/RescaleModes.h"
#include "ImageProcessing/Walks/ByteSamples.h"
#include "Tools/Allocate.h"

#include <algorithm>
#include <climits>

namespace {

/// Side of the tiles that are transposed one by one: 32 lines of either image stay in the cache.
constexpr int cnTile = 32;

using PlainImage = std::unique_ptr<unsigned char[]>;

/// Images are limited alike.
PlainImage NewPlain(int nWidth, int nHeight) {
    const long long nCount = static_cast<long long>(nWidth) * nHeight;
    if (nCount > INT_MAX)
        Vek::ThrowBadAlloc();
    return Vek::NewArrayPtr<unsigned char>(static_cast<std::size_t>(nCount));
}

void TransposeTile(const unsigned char* pIn, int nWidth, int nHeight, int nX, int nY,
                   unsigned char* pOut) {
    const int nEndX = nX + std::min(cnTile, nWidth - nX);
    const int nEndY = nY + std::min(cnTile, nHeight - nY);
    for (int x = nX; x < nEndX; ++x)
        for (int y = nY; y < nEndY; ++y)
            pOut[static_cast<long long>(x) * nHeight + y] =
                pIn[static_cast<long long>(y) * nWidth + x];
}

void ResampleLines(unsigned char nType, const unsigned char* pIn, int nWidth, int nHeight,
                   int nNewWidth, unsigned char* pOut) {
    const auto aCells = Vek::NewArrayPtr<Kernels::StCell>(static_cast<std::size_t>(nNewWidth));
    for (long long x = 0; x < nNewWidth; ++x)
        aCells[static_cast<std::size_t>(x)] =
            Kernels::MakeCell(x * nWidth, (x + 1) * nWidth, nNewWidth);
    DispatchByteType(nType, [&](auto Tag) {
        using T = typename decltype(Tag)::Type;
        for (long long y = 0; y < nHeight; ++y)
            Kernels::MeanOfCells(reinterpret_cast<const T*>(pIn) + y * nWidth, aCells.get(),
                                 nNewWidth, nNewWidth, reinterpret_cast<T*>(pOut) + y * nNewWidth);
    });
}

void ConvertImageToPlain(ClIpRescale& rTimer, const ClImage& In, unsigned char* pPlain) {
    rTimer.TimerStart("Convert");
    for (int y = 0; y < In.Height(); ++y)
        pPlain = std::copy_n(In.LineData(y), In.Width(), pPlain);
    rTimer.TimerStop("Convert");
}

void ConvertPlainToImage(ClIpRescale& rTimer, const unsigned char* pPlain, ClImage& Out) {
    rTimer.TimerStart("Convert");
    for (int y = 0; y < Out.Height(); ++y, pPlain += Out.Width())
        std::copy_n(pPlain, Out.Width(), Out.LineData(y));
    rTimer.TimerStop("Convert");
}

} // namespace

void Rescale::ProcessBiLinearFant(ClIpRescale& rRun, const ClImage& In, ClImage& Out) {
    NewOutput(rRun, In, rRun.m_nDestWidth, rRun.m_nDestHeight, Out);
    const unsigned char nType = In.DataType();
    const int nWidth = Out.Width();
    const int nHeight = Out.Height();
    PlainImage aFrom = NewPlain(In.Width(), In.Height());
    ConvertImageToPlain(rRun, In, aFrom.get());
    PlainImage aTo = NewPlain(nWidth, In.Height());
    rRun.BilinearResample(nType, aFrom.get(), In.Width(), In.Height(), nWidth, aTo.get());
    aFrom = NewPlain(In.Height(), nWidth);
    rRun.FlipXY(aTo.get(), nWidth, In.Height(), aFrom.get());
    aTo = NewPlain(nHeight, nWidth);
    rRun.BilinearResample(nType, aFrom.get(), In.Height(), nWidth, nHeight, aTo.get());
    aFrom = NewPlain(nWidth, nHeight);
    rRun.FlipXY(aTo.get(), nHeight, nWidth, aFrom.get());
    ConvertPlainToImage(rRun, aFrom.get(), Out);
}

void ClIpRescale::FlipXY(const unsigned char* pIn, int nWidth, int nHeight, unsigned char* pOut) {
    TimerStart("FlipXY");
    for (long long y = 0; y < nHeight; y += cnTile)
        for (long long x = 0; x < nWidth; x += cnTile)
            TransposeTile(pIn, nWidth, nHeight, static_cast<int>(x), static_cast<int>(y), pOut);
    TimerStop("FlipXY");
}

void ClIpRescale::BilinearResample(unsigned char nType, const unsigned char* pIn, int nWidth,
                                   int nHeight, int nNewWidth, unsigned char* pOut) {
    TimerStart("Resample");
    ResampleLines(nType, pIn, nWidth, nHeight, nNewWidth, pOut);
    TimerStop("Resample");
}

void ClIpRescale::BilinearResample2(unsigned char nType, const unsigned char* pIn, int nWidth,
                                    int nHeight, int nNewWidth, unsigned char* pOut) {
    TimerStart("Resample 2");
    ResampleLines(nType, pIn, nWidth, nHeight, nNewWidth, pOut);
    TimerStop("Resample 2");
}
