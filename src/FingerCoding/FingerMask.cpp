// The finger mask: two detectors, the sum of their probabilities, one convex region, a soft border.

#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBuildConvexHull.h"
#include "ImageProcessing/IpCut.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFloodFill.h"
#include "ImageProcessing/IpImageExtension.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/Mask2.h"
#include "Tools/FpImage.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

constexpr unsigned char cnFinger = 0;
constexpr unsigned char cnBackground = 255;

constexpr double cdSumThreshold = 72.0; ///< of the added probabilities: below is finger

/// A blur spreads a region and its ground into each other. What it has left untouched of the
/// ground lies above the one threshold, what is purely region below the other.
constexpr double cdGrow = 245.0;
constexpr double cdShrink = 10.0;

constexpr int cnSoftMargin = 2; ///< pixels of ground around a mask that is smoothed
constexpr double cdSoftScale = 2.2;

/// A length of pixels from a real one, truncated. Eight times the largest are still an `int`.
int WholePixels(double dLength) {
    constexpr int cnMost = std::numeric_limits<int>::max() / 8;
    return dLength > 0.0 ? static_cast<int>(std::min(dLength, double{cnMost})) : 0;
}

/// A rectangle in pixels.
struct StPlace {
    long m_nX = 0;
    long m_nY = 0;
    long m_nWidth = 0;
    long m_nHeight = 0;
};

/// The last window of the region in the frame of an image.
StPlace PlaceOf(const ClMask2& Region, const ClImage& Image) {
    StPlace Place{0, 0, Image.Width(), Image.Height()};
    if (Region.GetOffsetsCount() > 0)
        Region.GetCutOffsets(static_cast<unsigned long>(Region.GetOffsetsIndex(Image)),
                             Image.PelsX(), Image.PelsY(), Place.m_nX, Place.m_nY, Place.m_nWidth,
                             Place.m_nHeight);
    return Place;
}

/// The first column from `nFrom` on where a line has the value; the width without one.
int ColumnOf(unsigned char nValue, const ClImage& Image, int nLine, int nFrom) {
    const unsigned char* pLine = Image.LineData(nLine);
    const void* pFound =
        std::memchr(pLine + nFrom, nValue, static_cast<std::size_t>(Image.Width() - nFrom));
    return pFound == nullptr ? Image.Width()
                             : static_cast<int>(static_cast<const unsigned char*>(pFound) - pLine);
}

/// Copies as much of a line as both images have, from a column of the one to another of the other.
void PasteLine(const ClImage& From, int nLine, long nWidth, long nColumn, long nToLine,
               ClImage& To) {
    if (nToLine < 0 || nToLine >= To.Height())
        return;
    const long nBegin = std::max(0L, -nColumn);
    const long nEnd = std::min({nWidth, long{From.Width()}, To.Width() - nColumn});
    if (nBegin < nEnd)
        std::memcpy(To.LineData(static_cast<int>(nToLine)) + nColumn + nBegin,
                    From.LineData(nLine) + nBegin, static_cast<std::size_t>(nEnd - nBegin));
}

} // namespace

long ClIpQK7DynamicCalibration30::BuildMaskImage(ClImage& In, double dRidgeDist, ClImage& OutMask,
                                                 ClImage& OutProb) {
    ClIpContrastMask2().CheckWorkSize(In); // of the whole, so that no finger's place decides
    ClImage Dx;
    ClImage Dy;
    ClImage Length;
    BuildDerivationImages(In, Dx, Dy, Length);
    ClMask2 Region;
    ClImage BrightProb;
    FindDarkArea(In, dRidgeDist, Region, BrightProb);
    Region.CutImage(Length, Length);
    Dump(BrightProb, "C:\\21_BrightProbImage.kpf");
    ClImage ContrastProb;
    FindRidges(Length, dRidgeDist, Region, ContrastProb);
    OutProb.New(In);
    OutProb = cnBackground;
    PasteWindow(Region, ContrastProb, OutProb);
    const long nAdded = AddProbabilities(BrightProb, OutProb, OutProb);
    if (nAdded != 0)
        return nAdded;
    FindSumRegion(BrightProb, ContrastProb, Region);
    PaintRegion(Region, OutMask);
    const long nResult = EmbraceMask(OutMask, dRidgeDist);
    Dump(OutProb, "C:\\04_MaskProbImage.kpf");
    Dump(OutMask, "C:\\05_EmbracedMaskImage.kpf");
    SmoothenMask(OutMask, dRidgeDist);
    Dump(OutMask, "C:\\06_SmoothMaskImage.kpf");
    return nResult;
}

void ClIpQK7DynamicCalibration30::PasteWindow(const ClMask2& Region, const ClImage& Window,
                                              ClImage& Frame) {
    const StPlace InWindow = PlaceOf(Region, Window);
    const StPlace InFrame = PlaceOf(Region, Frame);
    const long nX = InFrame.m_nX - InWindow.m_nX;
    const long nY = InFrame.m_nY - InWindow.m_nY;
    for (int y = 0; y < Window.Height(); ++y)
        PasteLine(Window, y, InWindow.m_nWidth, nX, nY + y, Frame);
}

long ClIpQK7DynamicCalibration30::BuildDerivationImages(ClImage& In, ClImage& OutDx, ClImage& OutDy,
                                                        ClImage& OutLength) {
    ClIpFilterDGauss Filter;
    Filter.Timer(IsTimerEnabled());
    Filter.m_pInImage = &In;
    Filter.m_pOutImage = &OutDx;
    Filter.m_nMode = ClIpFilterBase::ModeX;
    Filter.Apply();
    Filter.m_pOutImage = &OutDy;
    Filter.m_nMode = ClIpFilterBase::ModeY;
    Filter.Apply();
    ClIpEuclidLength Length;
    Length.Timer(IsTimerEnabled());
    Length.ApplyParam(OutDx, OutDy, OutLength);
    return 0;
}

/// Leaves the dark area in the region, with its bounding box as the last step.
void ClIpQK7DynamicCalibration30::FindDarkArea(ClImage& In, double& dRidgeDist, ClMask2& Region,
                                               ClImage& Prob) {
    ClIpBrightnessMask Detector;
    Detector.Timer(IsTimerEnabled());
    Detector.m_pInImage = &In;
    Detector.m_pOptOutProbImage = &Prob;
    Detector.m_pdRidgeDist = &dRidgeDist;
    Detector.m_pInOutMask = &Region;
    Detector.m_bIlFix = true;
    Detector.m_nImageBorderWidth = 4;
    Detector.m_dIlFixMaxWidthFactor = 1.88444;
    Detector.m_dIlFixLowPassWidthFactor = 0.45396;
    Detector.m_dDarkNoisePart = 0.11;
    Detector.m_dBrightNoisePart = 0.1;
    Detector.m_dDilatWidthFactor = 0.63;
    Detector.m_dLowPassWidthFactor = 1.20342;
    Detector.m_nDerivationWidth = 10;
    Detector.m_dDerivativeThresh = 15.0;
    Detector.m_dMinAreaMM2 = 0.0;
    Detector.m_nMinBinarizeThreshold = 100;
    Detector.m_nMaxBinarizeThreshold = 198;
    Detector.Apply();
}

/// Looks for ridges in the region, and narrows it to where they are. That there are none shows in
/// the probabilities; the code is not needed.
void ClIpQK7DynamicCalibration30::FindRidges(ClImage& Length, double& dRidgeDist, ClMask2& Region,
                                             ClImage& Prob) {
    ClIpContrastMask2 Detector;
    Detector.Timer(IsTimerEnabled());
    Detector.m_pInImage = &Length;
    Detector.m_pOptOutProbImage = &Prob;
    Detector.m_pdRidgeDist = &dRidgeDist;
    Detector.m_pInOutMask = &Region;
    Detector.m_nBorderWidth = 3;
    Detector.m_dScaleFactor = 7.8;
    Detector.m_dMidRotWidthFactor1 = 2.1;
    Detector.m_dMidRotWidthFactor2 = 2.0;
    Detector.m_dMidRotWidthFactor3 = 2.0;
    Detector.m_dThresholdFactor = 10.0;
    Detector.m_dMinFgBlobSize = 16.0;
    Detector.Apply();
    Dump(Prob, "C:\\21_ContrastProbImage.kpf");
}

/// min(255, a + b)
long ClIpQK7DynamicCalibration30::AddProbabilities(ClImage& A, ClImage& B, ClImage& Out) {
    ClIpAdd Add;
    Add.Timer(IsTimerEnabled());
    Add.m_eMode = ClIpAdd::ModeCut;
    return Add.ApplyParam(A, B, Out, ClImage::eTypeDefault);
}

/// The region becomes what the sum of the probabilities, contrast twice, takes for finger, without
/// holes. The images are cut to the last window.
void ClIpQK7DynamicCalibration30::FindSumRegion(ClImage& BrightProb, ClImage& ContrastProb,
                                                ClMask2& Region) {
    Region.CutImage(BrightProb);
    Region.CutImage(ContrastProb);
    ClImage Sum;
    AddProbabilities(BrightProb, ContrastProb, Sum);
    AddProbabilities(Sum, ContrastProb, Sum);
    Binarize(Sum, cdSumThreshold, Sum);
    Region.ResetEntries();
    Region.BuildFromImage(Sum, cnBackground);
    Region.RemoveBgBlobs();
}

/// A region without runs paints nothing: the whole picture is finger then.
void ClIpQK7DynamicCalibration30::PaintRegion(const ClMask2& Region, ClImage& OutMask) {
    OutMask.New(*m_pInImage);
    OutMask = cnFinger;
    Region.ApplyOnImage(OutMask, true, cnBackground);
    Dump(OutMask, "C:\\03_MaskImage.kpf");
}

/// A blur of twice the ridge distance, run twice, closes the gaps between ridges; the count is
/// taken on a grown copy, so that pieces which nearly touch count as one, and the hull joins them.
long ClIpQK7DynamicCalibration30::EmbraceMask(ClImage& Mask, double dRidgeDist) {
    const int k = WholePixels(2.0 * dRidgeDist);
    const long nWidth = k | 1;
    ClImage A; // larger than the mask, so that no blur meets the edge
    ClImage B;
    Extend(Mask, 4 * k, A);
    BlurAndBinarize(A, nWidth, cdGrow, B);
    BlurAndBinarize(A, nWidth, cdShrink, B);
    BlurAndBinarize(A, nWidth, cdShrink, B); // removes bridges and crumbs
    ClImage Grown;
    BlurTwice(A, nWidth, B, Grown);
    Binarize(Grown, cdGrow, B);
    if (GetMaskRegionCount(B, cnFinger) != 1)
        return QMT_ERROR_FORMAT_NOTSUPPORTED;
    ClIpBuildConvexHull Hull;
    Hull.Timer(IsTimerEnabled());
    Hull.m_pInImage = &A;
    Hull.m_pOutImage = &A;
    Hull.Apply();
    BlurAndBinarize(A, nWidth, cdGrow, B);
    CutMargin(A, 2 * k, Mask);
    return 0;
}

/// The scale keeps the finger's side of the ramp in place and brings the other to white sooner.
long ClIpQK7DynamicCalibration30::SmoothenMask(ClImage& Mask, double dRidgeDist) {
    ClImage A;
    ClImage B;
    Extend(Mask, 2 * cnSoftMargin, A);
    BlurTwice(A, WholePixels(dRidgeDist) | 1, B, A);
    ClIpScale Scale;
    Scale.Timer(IsTimerEnabled());
    Scale.ApplyParam(A, cdSoftScale);
    CutMargin(A, cnSoftMargin, Mask);
    return 0;
}

/// Each region found is painted over, so that every pixel is looked at once.
long ClIpQK7DynamicCalibration30::GetMaskRegionCount(ClImage& Image, unsigned char nValue) {
    ClImage Copy;
    Copy = Image;
    ClIpFloodFill Fill;
    Fill.Timer(IsTimerEnabled());
    Fill.m_pInImage = &Copy;
    Fill.m_pOutImage = &Copy;
    Fill.m_nFillColor = static_cast<unsigned char>(~nValue);
    long nRegions = 0;
    for (int y = 0; y < Copy.Height(); ++y)
        for (int x = ColumnOf(nValue, Copy, y, 0); x < Copy.Width();
             x = ColumnOf(nValue, Copy, y, x + 1)) {
            ++nRegions;
            Fill.m_nStartX = x;
            Fill.m_nStartY = y;
            Fill.Apply();
        }
    return nRegions;
}

// Operators, with the timer of this processor

/// Grows the mask by ground, `nExtension` pixels in total on each axis, half of it on each side.
void ClIpQK7DynamicCalibration30::Extend(ClImage& Mask, int nExtension, ClImage& Out) {
    ClIpImageExtension Extension;
    Extension.Timer(IsTimerEnabled());
    Extension.ApplyParam(Mask, Out, nExtension, nExtension, cnBackground, false);
}

void ClIpQK7DynamicCalibration30::CutMargin(ClImage& In, int nMargin, ClImage& Out) {
    ClIpCut Cut;
    Cut.Timer(IsTimerEnabled());
    Cut.ApplyParam(In, nMargin, nMargin, long{In.Width()} - 2L * nMargin,
                   long{In.Height()} - 2L * nMargin, Out);
}

void ClIpQK7DynamicCalibration30::BlurTwice(ClImage& In, long nWidth, ClImage& Scratch,
                                            ClImage& Out) {
    ClIpFilterMid Mid;
    Mid.Timer(IsTimerEnabled());
    Mid.ApplyParam(In, Scratch, nWidth);
    Mid.ApplyParam(Scratch, Out, nWidth);
}

void ClIpQK7DynamicCalibration30::Binarize(ClImage& In, double dThreshold, ClImage& Out) {
    ClIpBinarizeGlobal Threshold;
    Threshold.Timer(IsTimerEnabled());
    Threshold.ApplyParam(In, Out, dThreshold);
}

void ClIpQK7DynamicCalibration30::BlurAndBinarize(ClImage& Image, long nWidth, double dThreshold,
                                                  ClImage& Scratch) {
    BlurTwice(Image, nWidth, Scratch, Image);
    Binarize(Image, dThreshold, Image);
}
