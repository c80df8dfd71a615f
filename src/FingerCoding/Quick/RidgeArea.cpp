#include "FingerCoding/Quick/RidgeArea.h"

#include "FingerCoding/DetectorSteps.h"
#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/Kernels/Median.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/Convert.h"
#include "Tools/InstructionLevel.h"

#include <array>

namespace Quick {

namespace {

constexpr int cnProbThreshold = 128;
constexpr int cnLargestSquare = 1023;
constexpr int cnTapBits = 12; ///< taps count in 1/4096

/// The taps of the derivative of a Gaussian to the right of the middle, which is 0. Those to the
/// left are their negatives.
std::array<int, cnGradientReach> GradientTaps() {
    ClImage Layout;
    Layout.Attach(nullptr, ClImage::eUInt8, 2 * cnGradientReach + 2, 1, 1, 1, 1);
    ClImage Out;
    ClIpFilterDGauss Filter;
    Filter.m_pInImage = &Layout;
    Filter.m_pOutImage = &Out;
    Filter.Initialize();
    std::array<int, cnGradientReach> aTaps{};
    for (unsigned long i = 0; i < cnGradientReach; ++i)
        aTaps[i] = static_cast<int>(Filter.Filter()[cnGradientReach + 1 + i]);
    return aTaps;
}

/// min(1023, dx^2 + dy^2) with both gradients cut to whole numbers, toward zero: their signs do not
/// matter. `pPadded` is the line in the middle with its ends repeated, `ppLines` are those around
/// it from the lowest on.
struct StSquares {
    static void Run(const unsigned char* pPadded, const unsigned char* const* ppLines,
                    const int* pTaps, long nSamples, std::uint16_t* __restrict pOut) {
        const int a = pTaps[0];
        const int b = pTaps[1];
        const int c = pTaps[2];
        const int d = pTaps[3];
        const unsigned char* pMiddle = pPadded + cnGradientReach;
        const unsigned char* const apUp[] = {ppLines[3], ppLines[2], ppLines[1], ppLines[0]};
        const unsigned char* const apDown[] = {ppLines[5], ppLines[6], ppLines[7], ppLines[8]};
        for (long i = 0; i < nSamples; ++i) {
            const int x =
                a * (pMiddle[i + 1] - pMiddle[i - 1]) + b * (pMiddle[i + 2] - pMiddle[i - 2]) +
                c * (pMiddle[i + 3] - pMiddle[i - 3]) + d * (pMiddle[i + 4] - pMiddle[i - 4]);
            const int y = a * (apDown[0][i] - apUp[0][i]) + b * (apDown[1][i] - apUp[1][i]) +
                          c * (apDown[2][i] - apUp[2][i]) + d * (apDown[3][i] - apUp[3][i]);
            const int nX = (x < 0 ? -x : x) >> cnTapBits;
            const int nY = (y < 0 ? -y : y) >> cnTapBits;
            pOut[i] = static_cast<std::uint16_t>(std::min(nX * nX + nY * nY, cnLargestSquare));
        }
    }
};

/// in becomes min(255, in + lift); out = 1 where that is at least a threshold, else 0.
struct StLift {
    static void Run(unsigned char* __restrict pInOut, long nSamples, int nLift, int nThreshold,
                    unsigned char* __restrict pOut) {
        for (long i = 0; i < nSamples; ++i) {
            const int nValue = std::clamp(pInOut[i] + nLift, 0, 255);
            pInOut[i] = static_cast<unsigned char>(nValue);
            pOut[i] = nValue >= nThreshold ? 1 : 0;
        }
    }
};

int ThresholdOf(const ClIpContrastMask2& Settings) {
    return SampleFromDouble<unsigned char>(Settings.m_dScaleFactor * Settings.m_dThresholdFactor);
}

} // namespace

std::optional<StRidgeWork> StRidgeWork::Of(const ClImage& Window,
                                           const ClIpContrastMask2& Settings) {
    constexpr double cdRoundUp = 0.9999;
    const int nPelsX = Settings.WorkPels(Window, Window.PelsX());
    const int nPelsY = Settings.WorkPels(Window, Window.PelsY());
    StRidgeWork Work{Window.PelsX(), Window.PelsY(), StNearestAxis(Window.Width()),
                     StNearestAxis(Window.Height()), Settings.MeanWidth(Window)};
    if (nPelsX < 1 || nPelsY < 1)
        return std::nullopt;
    if (nPelsX == Window.PelsX() && nPelsY == Window.PelsY())
        return Work;
    const long nWidth =
        static_cast<long>(1.0 * Window.Width() * nPelsX / Window.PelsX() + cdRoundUp);
    const long nHeight =
        static_cast<long>(1.0 * Window.Height() * nPelsY / Window.PelsY() + cdRoundUp);
    if (nWidth < 1 || nHeight < 1)
        return std::nullopt;
    if (nWidth == Window.Width() && nHeight == Window.Height())
        return Work; // a copy, which keeps the resolution
    Work.m_nPelsX = nPelsX;
    Work.m_nPelsY = nPelsY;
    Work.m_X = StNearestAxis(Window.Width(), nWidth, Window.PelsX(), nPelsX);
    Work.m_Y = StNearestAxis(Window.Height(), nHeight, Window.PelsY(), nPelsY);
    return Work;
}

ClRidgeArea::ClRidgeArea(const ClIpContrastMask2& Settings, const StRidgeMemory& Memory)
    : m_rSettings(Settings), m_Memory(Memory), m_aTaps(GradientTaps()) {
    for (int n = 0; n <= cnLargestSquare; ++n) {
        const auto nLength = static_cast<unsigned char>(std::sqrt(static_cast<double>(n)) * 1.414);
        m_aAmplified[n] =
            SampleFromDouble<unsigned char>(std::min(255.0, nLength * m_rSettings.m_dScaleFactor));
    }
}

void ClRidgeArea::FindGradients(const StPlane& In, long nLine) {
    std::array<const unsigned char*, 2 * cnGradientReach + 1> apLines;
    for (long i = 0; i < 2 * cnGradientReach + 1; ++i)
        apLines[static_cast<std::size_t>(i)] =
            In.Line(std::clamp(nLine + i - cnGradientReach, 0L, In.m_nHeight - 1));
    unsigned char* pPadded = m_Memory.m_pPadded;
    std::fill_n(pPadded, cnGradientReach, In.Line(nLine)[0]);
    std::copy_n(In.Line(nLine), In.m_nWidth, pPadded + cnGradientReach);
    std::fill_n(pPadded + cnGradientReach + In.m_nWidth, cnGradientReach,
                In.Line(nLine)[In.m_nWidth - 1]);
    RunAtLevel<StSquares>(static_cast<const unsigned char*>(pPadded), apLines.data(),
                          m_aTaps.data(), In.m_nWidth, m_Memory.m_pSquares);
}

/// The frame that is black at the resolution of the work hides the edges that the cut to the region
/// has made.
void ClRidgeArea::Shrink(const StPlane& In, const StBox& Window, const ClSpans& Region, long nX,
                         long nY, const StRidgeWork& Work, const StPlane& Out) {
    const long nBorder = m_rSettings.m_nBorderWidth;
    const int* pColumns = m_Memory.m_pColumns;
    const long nColumns = Work.m_X.WriteSources(m_Memory.m_pColumns);
    const StSpan* pSpan = Region.begin();
    for (long y = 0; y < Out.m_nHeight; ++y) {
        unsigned char* pOut = Out.Line(y);
        std::fill_n(pOut, Out.m_nWidth, static_cast<unsigned char>(0));
        const long nLine = Work.m_Y.SourceOf(y);
        if (y < nBorder || y >= Out.m_nHeight - nBorder || nLine == StNearestAxis::cnOutside)
            continue;
        while (pSpan != Region.end() && pSpan->m_nLine - nY < nLine)
            ++pSpan;
        const auto copy = [&](long nFirst, long nLast) {
            const long nBegin = std::lower_bound(pColumns, pColumns + nColumns, nFirst) - pColumns;
            const long nEnd = std::upper_bound(pColumns, pColumns + nColumns, nLast) - pColumns;
            const long nStop = std::min(nEnd, Out.m_nWidth - nBorder);
            const std::uint16_t* pSquares = m_Memory.m_pSquares + Window.m_nLeft;
            for (long x = std::max(nBegin, nBorder); x < nStop; ++x)
                pOut[x] = m_aAmplified[pSquares[pColumns[x]]];
        };
        if (!Region.IsEmpty() && (pSpan == Region.end() || pSpan->m_nLine - nY != nLine))
            continue;
        FindGradients(In, Window.m_nTop + nLine);
        if (Region.IsEmpty())
            copy(0, Window.Width() - 1);
        for (const StSpan* p = pSpan; p != Region.end() && p->m_nLine - nY == nLine; ++p)
            copy(p->m_nFirst - nX, p->m_nLast - nX);
    }
}

/// The median fills what is dark between strong gradients; ridges keep their own values.
void ClRidgeArea::Amplify(const StPlane& InOut, const StPlane& Median) const {
    Kernels::MedianOfWindow<unsigned char>(InOut.m_pData, InOut.m_nStride, InOut.m_nWidth,
                                           InOut.m_nHeight, 1, 1, Median.m_pData, Median.m_nStride);
    Kernels::Max(PairOf(InOut, Median, InOut));
}

void ClRidgeArea::Find(const StPlane& In, const StBox& Window, const ClSpans& Region, long nX,
                       long nY, const StRidgeWork& Work, ClSpans& rStrong) {
    const StBox Box{0, 0, Work.m_X.m_nOut, Work.m_Y.m_nOut};
    StPlane Image = m_Memory.m_A.Part(Box);
    StPlane Other = m_Memory.m_B.Part(Box);
    Shrink(In, Window, Region, nX, nY, Work, Image);
    Amplify(Image, Other);
    if (Work.m_nMeanWidth <= std::min(Box.m_nRight, Box.m_nBottom)) { // else no mean is taken
        Mean(Image, Work.m_nMeanWidth / 2, Other, *m_Memory.m_pScratch);
        std::swap(Image, Other);
    }
    const int nThreshold = ThresholdOf(m_rSettings);
    rStrong.Clear();
    for (long y = 0; y < Box.m_nBottom; ++y) {
        RunAtLevel<StLift>(Image.Line(y), Box.m_nRight, cnProbThreshold - nThreshold, nThreshold,
                           Other.Line(y));
        rStrong.Append(Other.Line(y), static_cast<int>(y), Box.m_nRight);
    }
    m_Lifted = Image;
    const ClConvert Convert(Work.m_nPelsX, Work.m_nPelsY);
    rStrong.DropSmall(DetectorSteps::PixelsOfArea(m_rSettings.m_dMinFgBlobSize, Convert.PelsX()));
}

/// 255 less the pixels that the columns are taken from.
void ClRidgeArea::InvertLine(const unsigned char* __restrict pIn, long nColumns,
                             unsigned char* __restrict pOut) const {
    const int* __restrict pColumns = m_Memory.m_pColumns;
    for (long x = 0; x < nColumns; ++x)
        pOut[x] = static_cast<unsigned char>(255 - pIn[pColumns[x]]);
}

void ClRidgeArea::WriteProbability(const StRidgeWork& Work, const StPlane& Out) {
    constexpr unsigned char cnOutside = 255; // behind the edge there is 0, and it is inverted
    const bool bCopy = Work.m_X.m_nOut == Out.m_nWidth && Work.m_Y.m_nOut == Out.m_nHeight;
    const auto axis = [bCopy](long nIn, long nOut, long nPels) {
        return bCopy ? StNearestAxis(nOut) : StNearestAxis(nIn, nOut, nPels, nOut * nPels / nIn);
    };
    const StNearestAxis X = axis(Work.m_X.m_nOut, Out.m_nWidth, Work.m_nPelsX);
    const StNearestAxis Y = axis(Work.m_Y.m_nOut, Out.m_nHeight, Work.m_nPelsY);
    const long nColumns = X.WriteSources(m_Memory.m_pColumns);
    for (long y = 0; y < Out.m_nHeight; ++y) {
        const long nLine = Y.SourceOf(y);
        unsigned char* pOut = Out.Line(y);
        if (nLine == StNearestAxis::cnOutside)
            std::fill_n(pOut, Out.m_nWidth, cnOutside);
        else if (y > 0 && nLine == Y.SourceOf(y - 1))
            std::copy_n(Out.Line(y - 1), Out.m_nWidth, pOut);
        else
            InvertLine(m_Lifted.Line(nLine), nColumns, pOut);
        std::fill(pOut + nColumns, pOut + Out.m_nWidth, cnOutside);
    }
}

} // namespace Quick
