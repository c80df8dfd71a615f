#include "FingerCoding/Quick/DynamicCalibration.h"

#include "FingerCoding/FingerSettings.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/Quick/CleanBackground.h"
#include "FingerCoding/Quick/DarkArea.h"
#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "ImageProcessing/Kernels/LocalStretch.h"
#include "ImageProcessing/MaskChain.h"
#include "Tools/InstructionLevel.h"

#include <numeric>

namespace Quick {

namespace {

using Kernels::ClScratch;
using Kernels::EExtreme;
using namespace FingerSettings;

constexpr unsigned char cnRegion = 1;
constexpr unsigned char cnWhite = 255;

// What is ordinary
constexpr int cnLeastSide = 53; ///< the widest window; no mean is left out
constexpr int cnMostSide = 2048;
constexpr int cnLeastPels = 9000;
constexpr int cnMostPels = 40000;

/// Hands out memory piece by piece; from null it only counts.
class ClPieces {
public:
    explicit ClPieces(unsigned char* pMemory) : m_pMemory(pMemory) {}

    template <class T = unsigned char>
    T* Take(std::size_t nCount) {
        unsigned char* pTaken = m_pMemory != nullptr ? m_pMemory + m_nTaken : nullptr;
        m_nTaken += ClScratch::Aligned(nCount * sizeof(T));
        return reinterpret_cast<T*>(pTaken);
    }
    StPlane TakePlane(long nWidth, long nHeight) {
        const std::size_t nStride = ClScratch::Aligned(static_cast<std::size_t>(nWidth));
        return {Take(nStride * static_cast<std::size_t>(nHeight)),
                static_cast<std::ptrdiff_t>(nStride), nWidth, nHeight};
    }
    std::size_t Taken() const { return m_nTaken; }

private:
    unsigned char* m_pMemory;
    std::size_t m_nTaken = 0;
};

StPlane PlaneOf(const ClImage& Image) {
    return {Image.Data(), Image.LineStrideBytes(), Image.Width(), Image.Height()};
}

StBox FrameOf(const ClImage& Image) {
    return {0, 0, Image.Width(), Image.Height()};
}

bool Contains(const StBox& Frame, const StBox& Box) {
    return Box.m_nLeft >= Frame.m_nLeft && Box.m_nTop >= Frame.m_nTop &&
           Box.m_nRight <= Frame.m_nRight && Box.m_nBottom <= Frame.m_nBottom;
}

StBox BoxOf(const Mask::StWindow& Window) {
    return {Window.m_nX, Window.m_nY, Window.m_nX + Window.m_nWidth,
            Window.m_nY + Window.m_nHeight};
}

/// out = 1 where in is below a threshold, else 0.
struct StBelow {
    static void Run(const unsigned char* __restrict pIn, long nPixels, long nThreshold,
                    unsigned char* __restrict pOut) {
        const auto nBound = static_cast<unsigned char>(nThreshold);
        for (long i = 0; i < nPixels; ++i)
            pOut[i] = pIn[i] < nBound ? cnRegion : 0;
    }
};

/// out = 1 where bright + 2 * ridges is below a threshold, else 0.
struct StSumBelow {
    static void Run(StBrightProb Bright, const unsigned char* __restrict pSmooth,
                    const unsigned char* __restrict pRidges, long nPixels, std::uint16_t nThreshold,
                    unsigned char* __restrict pOut) {
        for (long i = 0; i < nPixels; ++i) {
            const auto nSum = static_cast<std::uint16_t>(Bright.Of(pSmooth[i]) + 2 * pRidges[i]);
            pOut[i] = nSum < nThreshold ? cnRegion : 0;
        }
    }
};

} // namespace

// Captures and memory

bool ClDynamicCalibration::Takes(const ClImage& Capture) {
    const auto within = [](int n, int nLeast, int nMost) { return n >= nLeast && n <= nMost; };
    return Capture.DataType() == ClImage::eUInt8 && Capture.Planes() == 1 &&
           Capture.Data() != nullptr && Capture.Black() == 0.0 && Capture.White() == 255.0 &&
           within(Capture.Width(), cnLeastSide, cnMostSide) &&
           within(Capture.Height(), cnLeastSide, cnMostSide) &&
           within(Capture.PelsX(), cnLeastPels, cnMostPels) &&
           within(Capture.PelsY(), cnLeastPels, cnMostPels);
}

ClDynamicCalibration::ClDynamicCalibration() {
    Set(m_DarkSettings);
    Set(m_RidgeSettings);
    m_DarkSettings.m_dRidgeDist = cdRidgeDist;
    m_RidgeSettings.m_dRidgeDist = cdRidgeDist;
}

/// Takes memory for another size. The size is remembered last: what fails is begun again.
void ClDynamicCalibration::Prepare(const ClImage& Capture) {
    const bool bSame = m_Frame.Width() == Capture.Width() && m_Frame.Height() == Capture.Height();
    if (!bSame) {
        m_Frame.Delete();
        TakeMemory(Capture.Width(), Capture.Height());
        MakeFade();
    }
    m_Frame.Attach(nullptr, ClImage::eUInt8, Capture.Width(), Capture.Height(), 1, Capture.PelsX(),
                   Capture.PelsY());
}

void ClDynamicCalibration::TakeMemory(long nWidth, long nHeight) {
    constexpr long cnBoth = 2 * StCanvas::cnMargin;
    const auto nLine = static_cast<std::size_t>(nWidth);
    const std::size_t nMostSpans = ClSpans::Most(nWidth + cnBoth, nHeight + cnBoth);
    const auto take = [&](ClPieces Pieces) {
        for (StPlane* p : {&m_Stretched, &m_A, &m_B, &m_Smooth, &m_RidgeProb, &m_Mask})
            *p = Pieces.TakePlane(nWidth, nHeight);
        for (StPlane* p : {&m_Canvas.m_A, &m_Canvas.m_B})
            *p = Pieces.TakePlane(nWidth + cnBoth, nHeight + cnBoth);
        m_Canvas.m_pEnds = Pieces.Take<StEnds>(static_cast<std::size_t>(nHeight + cnBoth));
        m_Canvas.m_pBlurMemory = Pieces.Take(ClDoubleBlur::Bytes(nWidth + cnBoth));
        m_pFarMemory = Pieces.Take(FarBackgroundBytes(nWidth));
        m_pLine = Pieces.Take(nLine);
        StRidgeMemory Ridges{m_Canvas.m_A, m_Canvas.m_B};
        Ridges.m_pColumns = Pieces.Take<int>(static_cast<std::size_t>(nWidth + cnBoth));
        Ridges.m_pScratch = &m_Canvas.m_Scratch;
        Ridges.m_pPadded = Pieces.Take(nLine + 2 * cnGradientReach);
        Ridges.m_pSquares = Pieces.Take<std::uint16_t>(nLine);
        m_Ridges.emplace(m_RidgeSettings, Ridges);
        const ClSpans::StScratch Scratch{Pieces.Take<StSpan>(nMostSpans),
                                         Pieces.Take<int>(nMostSpans),
                                         Pieces.Take<int>(nMostSpans)};
        for (ClSpans* p : {&m_Dark, &m_Spans})
            *p = ClSpans(Pieces.Take<StSpan>(nMostSpans), Scratch);
        return Pieces.Taken();
    };
    take(ClPieces(m_Memory.Reserve(take(ClPieces(nullptr)))));
    m_Canvas.m_aPoints.Reserve(2 * static_cast<unsigned long>(nHeight + cnBoth));
    m_Canvas.m_aHull.Reserve(4 * static_cast<unsigned long>(nHeight + cnBoth));
}

/// What the frame of the sensor leaves of clean background.
void ClDynamicCalibration::MakeFade() {
    ClImage White(static_cast<int>(m_Mask.m_nWidth), static_cast<int>(m_Mask.m_nHeight), 1, 1, 1);
    White = cnWhite;
    ClIpQK7FunctionalityCheck::FadeSensorBorder(White, m_FadeImage);
    m_Fade = PlaneOf(m_FadeImage);
}

// The run

std::optional<StLevels> ClDynamicCalibration::Run(const ClImage& Capture, bool bSensitive,
                                                  ClImage* pOut, ClImage* pMask) {
    Prepare(Capture);
    const StPlane In = PlaneOf(Capture);
    const int nRange = StretchGlobally(HistogramOf(In), bSensitive);
    EFinger eFinger = EFinger::eNone;
    if (bSensitive || nRange > cnLargestRangeWithoutFinger) {
        LookUp(In, m_Table.m_aLuT, m_Stretched);
        eFinger = FindFinger();
    }
    if (eFinger == EFinger::eUnusual)
        return std::nullopt;
    StLevels Levels{cdRejectedDirt, 0.0};
    bool bTaken = eFinger == EFinger::eFound && KeepCleanBackground(In);
    if (bTaken) {
        const double dDirt = static_cast<double>(DirtSum(In, m_B)) * cdDirtPerSum;
        Levels.m_dDryFinger = DryFingerLevel();
        bTaken = dDirt < cdUnusableDirt;
        Levels.m_dDirt = bTaken ? dDirt : cdRejectedDirt;
    }
    WriteMask(Capture, eFinger == EFinger::eFound, pMask);
    if (pOut != nullptr)
        pOut->New(Capture);
    if (pOut != nullptr && bTaken)
        WriteStretched(*pOut);
    else if (pOut != nullptr)
        *pOut = cnWhite;
    return Levels;
}

/// Fills the table, and returns the range that it stretches: negative where all is saturated.
int ClDynamicCalibration::StretchGlobally(const ClHistogram& Histogram, bool bSensitive) {
    const std::int32_t* p = Histogram.m_anCount;
    const std::int64_t nTotal = std::accumulate(p, p + 256, std::int64_t{0});
    const double dBright =
        static_cast<double>(p[cnWhite]) / static_cast<double>(nTotal) + cdBrightPart;
    Histogram.GetNoiseFreeRange(bSensitive ? cdDarkPartSensitive : cdDarkPart, dBright,
                                m_Table.m_nFrom, m_Table.m_nTo);
    const int nRange = int{m_Table.m_nTo} - int{m_Table.m_nFrom};
    if (nRange < 0) {
        m_Table.m_nFrom = Histogram.FirstValue();
        m_Table.m_nTo = Histogram.LastValue();
    }
    m_Table.CalculateLuT();
    ClHistogram Stretched;
    for (int v = 0; v < 256; ++v)
        Stretched.m_anCount[m_Table.m_aLuT[v]] += p[v];
    Stretched.GetNoiseFreeRange(cdLocalNoise, cdLocalNoise, m_nLocalLow, m_nLocalHigh);
    return nRange;
}

// The finger

ClDynamicCalibration::EFinger ClDynamicCalibration::FindFinger() {
    FindDarkArea();
    const EFinger eRidges = FindRidges();
    if (eRidges != EFinger::eFound)
        return eRidges;
    const std::optional<StBox> Region = Embrace(m_Canvas, PaintRegion(), m_Spans);
    if (!Region)
        return EFinger::eNone;
    m_MaskBox = Soften(m_Canvas, *Region, m_Mask);
    return EFinger::eFound;
}

void ClDynamicCalibration::FindDarkArea() {
    constexpr long cnLeastBlob = 1000;
    m_nThreshold = SmoothDarkArea(m_Stretched, m_Frame.PelsX(), m_DarkSettings, m_Table,
                                  {m_A, m_B, m_Smooth}, m_Canvas.m_Scratch);
    m_Dark.Clear();
    for (long y = 0; y < m_Smooth.m_nHeight; ++y) {
        RunAtLevel<StBelow>(m_Smooth.Line(y), m_Smooth.m_nWidth, m_nThreshold, m_pLine);
        m_Dark.Append(m_pLine, static_cast<int>(y), m_Smooth.m_nWidth);
    }
    m_Dark.DropSmall(cnLeastBlob);
    m_Dark.FillHoles(m_Smooth.m_nWidth, m_Smooth.m_nHeight);
}

/// The chain of windows takes an image as a step, as where a mask is built from it.
void ClDynamicCalibration::BeginStep(const ClImage& Image) {
    m_Chain.ResetEntries();
    if (Image.PelsX() != m_Chain.m_nPelsX || Image.PelsY() != m_Chain.m_nPelsY)
        m_Chain.ResizeMask(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
    m_Chain.AddPrecutStep(Image, 0, 0, Image.Width(), Image.Height());
}

/// The box of a region becomes a step at the resolution of an image. A box is all that the chain
/// asks of a region, and its first and last line tell it, scaled or not.
void ClDynamicCalibration::BoundStep(const ClSpans& Spans, const ClImage& Image) {
    const StBox Box = Spans.Box();
    if (!Spans.IsEmpty()) {
        m_Chain.m_aEntries.Append({Box.m_nLeft, Box.m_nRight - 1, Box.m_nTop});
        if (Box.Height() > 1)
            m_Chain.m_aEntries.Append({Box.m_nLeft, Box.m_nRight - 1, Box.m_nBottom - 1});
    }
    if (Image.PelsX() != m_Chain.m_nPelsX || Image.PelsY() != m_Chain.m_nPelsY)
        m_Chain.ResizeMask(Image.Width(), Image.Height(), Image.PelsX(), Image.PelsY());
    m_Chain.SetBoundingBox();
}

/// The last window in an image of the chain.
std::optional<StBox> ClDynamicCalibration::CutBox(const ClImage& Image) const {
    const StBox Box = BoxOf(Mask::ClPrecutChain(m_Chain).LastIn(Image));
    if (Box.IsEmpty() || !Contains(FrameOf(Image), Box))
        return std::nullopt;
    return Box;
}

ClDynamicCalibration::EFinger ClDynamicCalibration::FindRidges() {
    const Mask::ClPrecutChain Chain(m_Chain);
    m_Chain.Init();
    BeginStep(m_Frame);
    BoundStep(m_Dark, m_Frame);
    const std::optional<StBox> Window = CutBox(m_Frame);
    if (!Window)
        return EFinger::eUnusual;
    m_WindowBox = *Window;
    m_Window.Attach(nullptr, ClImage::eUInt8, static_cast<int>(Window->Width()),
                    static_cast<int>(Window->Height()), 1, m_Frame.PelsX(), m_Frame.PelsY());
    const auto Work = StRidgeWork::Of(m_Window, m_RidgeSettings);
    if (!Work || Work->m_X.m_nOut > m_Canvas.m_A.m_nWidth ||
        Work->m_Y.m_nOut > m_Canvas.m_A.m_nHeight)
        return EFinger::eUnusual;
    const Mask::StWindow At =
        Chain.LastFrom(Chain.StepOf(m_Window), m_Window.PelsX(), m_Window.PelsY());
    if (At.m_nX != 0 || At.m_nY != 0)
        return EFinger::eUnusual;
    const StBox Dark = m_Dark.Box();
    m_Ridges->Find(m_Stretched, m_WindowBox, m_Dark, Dark.m_nLeft, Dark.m_nTop, *Work, m_Spans);
    m_RidgeProb.m_nWidth = m_WindowBox.Width();
    m_RidgeProb.m_nHeight = m_WindowBox.Height();
    m_Ridges->WriteProbability(*Work, m_RidgeProb);
    ClImage Small;
    Small.Attach(nullptr, ClImage::eUInt8, static_cast<int>(Work->m_X.m_nOut),
                 static_cast<int>(Work->m_Y.m_nOut), 1, static_cast<int>(Work->m_nPelsX),
                 static_cast<int>(Work->m_nPelsY));
    BeginStep(Small);
    BoundStep(m_Spans, m_Window);
    return PlaceRidges() && FindSumRegion() ? EFinger::eFound : EFinger::eUnusual;
}

/// Where the probability of ridges stands in the frame, as wide as the last window.
bool ClDynamicCalibration::PlaceRidges() {
    const Mask::ClPrecutChain Chain(m_Chain);
    const Mask::StWindow InWindow =
        Chain.LastFrom(Chain.StepOf(m_Window), m_Window.PelsX(), m_Window.PelsY());
    const Mask::StWindow InFrame =
        Chain.LastFrom(Chain.StepOf(m_Frame), m_Frame.PelsX(), m_Frame.PelsY());
    m_nPasteX = InFrame.m_nX - InWindow.m_nX;
    m_nPasteY = InFrame.m_nY - InWindow.m_nY;
    const long nWidth = std::min<long>(InWindow.m_nWidth, m_Window.Width());
    m_Pasted =
        StBox{0, 0, nWidth, m_Window.Height()}.Moved(m_nPasteX, m_nPasteY).CutTo(FrameOf(m_Frame));
    return !m_Pasted.IsEmpty();
}

/// What both probabilities, that of ridges twice, take for finger, without holes.
bool ClDynamicCalibration::FindSumRegion() {
    const std::optional<StBox> Bright = CutBox(m_Frame);
    const std::optional<StBox> Ridges = CutBox(m_Window);
    if (!Bright || !Ridges || Bright->Width() != Ridges->Width() ||
        Bright->Height() != Ridges->Height())
        return false;
    const long nWidth = Bright->Width();

    m_Spans.Clear();
    for (long y = 0; y < Bright->Height(); ++y) {
        RunAtLevel<StSumBelow>(StBrightProb(m_nThreshold),
                               m_Smooth.Line(Bright->m_nTop + y) + Bright->m_nLeft,
                               m_RidgeProb.Line(Ridges->m_nTop + y) + Ridges->m_nLeft, nWidth,
                               static_cast<std::uint16_t>(cdSumThreshold), m_pLine);
        m_Spans.Append(m_pLine, static_cast<int>(y), nWidth);
    }
    const Mask::ClPrecutChain Chain(m_Chain);
    if (Chain.Width() != nWidth || Chain.Height() != Bright->Height())
        return false;
    m_Spans.FillHoles(nWidth, Bright->Height());
    return true;
}

/// Paints the region as bytes of 1 on canvas A and returns its box. A region without spans paints
/// nothing: the whole frame is finger then.
StBox ClDynamicCalibration::PaintRegion() {
    const StBox Frame = m_Canvas.FrameBox();
    const StPlane& Canvas = m_Canvas.m_A;
    const Mask::ClPrecutChain Chain(m_Chain);
    const Mask::StWindow At =
        Chain.LastFrom(Chain.StepOf(m_Frame), m_Frame.PelsX(), m_Frame.PelsY());
    const long nX = Frame.m_nLeft + At.m_nX;
    const long nY = Frame.m_nTop + At.m_nY;
    const bool bAll = m_Spans.IsEmpty();
    const StBox Box = bAll ? Frame : m_Spans.Box().Moved(nX, nY).CutTo(Frame);
    for (long y = Box.m_nTop; y < Box.m_nBottom; ++y)
        std::fill_n(Canvas.Line(y) + Box.m_nLeft, Box.Width(),
                    static_cast<unsigned char>(bAll ? cnRegion : 0));
    for (const StSpan& Span : m_Spans) {
        const StBox Part = StBox{Span.m_nFirst, Span.m_nLine, Span.m_nLast + 1L, Span.m_nLine + 1L}
                               .Moved(nX, nY)
                               .CutTo(Frame);
        if (!Part.IsEmpty())
            std::fill_n(Canvas.Line(Part.m_nTop) + Part.m_nLeft, Part.Width(), cnRegion);
    }
    return Box;
}

// Levels

/// Leaves in B what of the background is clean. False where it is one value all over.
bool ClDynamicCalibration::KeepCleanBackground(const StPlane& Capture) {
    WriteLoss(Capture, m_Mask, m_A);
    KeepFarBackground(m_A, m_Fade, m_pFarMemory, m_B);
    return !IsUniform(m_B);
}

double ClDynamicCalibration::DryFingerLevel() const {
    const StBrightProb Bright(m_nThreshold);
    StDrySums Sums;
    for (long y = 0; y < m_B.m_nHeight; ++y) {
        const unsigned char* pMask = m_B.Line(y);
        const bool bRidges = y >= m_Pasted.m_nTop && y < m_Pasted.m_nBottom;
        const long nBegin = bRidges ? m_Pasted.m_nLeft : m_B.m_nWidth;
        const long nEnd = bRidges ? m_Pasted.m_nRight : m_B.m_nWidth;
        AddDrySums(pMask, nBegin, Sums);
        AddDrySums(pMask + nEnd, m_B.m_nWidth - nEnd, Sums);
        if (bRidges)
            AddDrySums(Bright, m_Smooth.Line(y) + nBegin,
                       m_RidgeProb.Line(y - m_nPasteY) + nBegin - m_nPasteX, pMask + nBegin,
                       nEnd - nBegin, Sums);
    }
    return FingerSettings::DryFingerLevel(Sums.m_nExcess, Sums.m_nWeights);
}

// Outputs

/// The finger stretched locally, in the box of the mask, and white around it.
void ClDynamicCalibration::WriteStretched(ClImage& Out) {
    constexpr long cnHalf = cnLocalWidth / 2;
    Kernels::ClScratch& rScratch = m_Canvas.m_Scratch;
    const StBox Inner = m_MaskBox.Grown(cnHalf).CutTo(FrameOf(m_Frame));
    const StBox Outer = m_MaskBox.Grown(2 * cnHalf).CutTo(FrameOf(m_Frame));
    const StPlane In = m_Stretched.Part(Outer);
    Extreme(EExtreme::eMin, In, cnHalf, m_B.Part(Outer), rScratch);
    Mean(m_B.Part(Inner), cnHalf, m_A.Part(Inner), rScratch);
    Extreme(EExtreme::eMax, In, cnHalf, m_Smooth.Part(Outer), rScratch);
    Mean(m_Smooth.Part(Inner), cnHalf, m_B.Part(Inner), rScratch);
    const Kernels::ClLocalStretch Stretch(cnLocalMinContrast, m_nLocalLow, m_nLocalHigh);
    for (long y = 0; y < Out.Height(); ++y) {
        std::fill_n(Out.LineData(y), Out.Width(), cnWhite);
        if (y < m_MaskBox.m_nTop || y >= m_MaskBox.m_nBottom)
            continue;
        const long x = m_MaskBox.m_nLeft;
        unsigned char* pOut = Out.LineData(y) + x;
        Stretch.StretchLine(m_Stretched.Line(y) + x, m_A.Line(y) + x, m_B.Line(y) + x,
                            m_MaskBox.Width(), pOut);
    }
    const StPlane Box = PlaneOf(Out).Part(m_MaskBox);
    Kernels::AddCut(PairOf(Box, m_Mask.Part(m_MaskBox), Box));
}

/// The ends of lines are 0, or white with all else.
void ClDynamicCalibration::WriteMask(const ClImage& Capture, bool bFinger, ClImage* pMask) const {
    if (pMask == nullptr)
        return;
    pMask->New(Capture);
    *pMask = bFinger ? static_cast<unsigned char>(0) : cnWhite;
    for (long y = 0; bFinger && y < m_Mask.m_nHeight; ++y)
        std::copy_n(m_Mask.Line(y), m_Mask.m_nWidth, pMask->LineData(y));
}

} // namespace Quick
