// The region of the finger: two detectors, and the sum of their probabilities.

#include "FingerCoding/FingerSettings.h"
#include "FingerCoding/IpBrightnessMask.h"
#include "FingerCoding/IpContrastMask2.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpEuclidLength.h"
#include "ImageProcessing/IpFilterDGauss.h"
#include "ImageProcessing/Mask2.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned char cnFinger = 0;
constexpr unsigned char cnBackground = 255;

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

/// Copies as much of a line as both images have, from a column of the one to another of the other.
void PasteLine(const ClImage& From, int nLine, long nWidth, long nColumn, long nToLine,
               ClImage& To) {
    if (nToLine < 0 || nToLine >= To.Height())
        return;
    const long nBegin = std::max(0L, -nColumn);
    const long nEnd = std::min({nWidth, long{From.Width()}, To.Width() - nColumn});
    if (nBegin < nEnd)
        std::memcpy(To.LineData(nToLine) + nColumn + nBegin, From.LineData(nLine) + nBegin,
                    static_cast<std::size_t>(nEnd - nBegin));
}

// Steps, with the timer of their owner

/// Leaves the dark area in the region, with its bounding box as the last step.
void FindDarkArea(const ClProcessorBase& Owner, const ClImage& Image, double dRidgeDist,
                  ClMask2& Region, ClImage& Prob) {
    ClInputView In(Image);
    ClIpBrightnessMask Detector;
    Detector.m_pInImage = &In;
    Detector.m_pOptOutProbImage = &Prob;
    Detector.m_pdRidgeDist = &dRidgeDist;
    Detector.m_pInOutMask = &Region;
    FingerSettings::Set(Detector);
    Timed(Owner, Detector).Apply();
}

/// Looks for ridges in the region, and narrows it to where they are. That there are none shows in
/// the probabilities; the code is not needed.
void FindRidges(const ClProcessorBase& Owner, const ClImage& Length, double dRidgeDist,
                ClMask2& Region, ClImage& Prob) {
    ClInputView In(Length);
    ClIpContrastMask2 Detector;
    Detector.m_pInImage = &In;
    Detector.m_pOptOutProbImage = &Prob;
    Detector.m_pdRidgeDist = &dRidgeDist;
    Detector.m_pInOutMask = &Region;
    FingerSettings::Set(Detector);
    Timed(Owner, Detector).Apply();
}

/// min(255, a + b). `Out` may be `A` or `B`.
long AddProbabilities(const ClProcessorBase& Owner, ClImage& A, ClImage& B, ClImage& Out) {
    ClIpAdd Add;
    Add.m_eMode = ClIpAdd::ModeCut;
    return Timed(Owner, Add).ApplyParam(A, B, Out, ClImage::eTypeDefault);
}

/// The region becomes what the sum of the probabilities, contrast twice, takes for finger, without
/// holes. The images are cut to the last window.
void FindSumRegion(const ClProcessorBase& Owner, ClImage& BrightProb, ClImage& ContrastProb,
                   ClMask2& Region) {
    Region.CutImage(BrightProb);
    Region.CutImage(ContrastProb);
    ClImage Sum;
    AddProbabilities(Owner, BrightProb, ContrastProb, Sum);
    AddProbabilities(Owner, Sum, ContrastProb, Sum);
    Timed(Owner, ClIpBinarizeGlobal()).ApplyParam(Sum, Sum, FingerSettings::cdSumThreshold);
    Region.ResetEntries();
    Region.BuildFromImage(Sum, cnBackground);
    Region.RemoveBgBlobs();
}

} // namespace

long ClIpQK7DynamicCalibration30::BuildMaskImage(const ClImage& In, double dRidgeDist,
                                                 ClImage& OutMask, ClImage& OutProb) {
    if (In.Data() == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    ClIpContrastMask2().CheckWorkSize(In); // of the whole, so that no finger's place decides
    ClImage Dx;
    ClImage Dy;
    ClImage Length;
    BuildDerivationImages(In, Dx, Dy, Length);
    ClMask2 Region;
    ClImage BrightProb;
    FindDarkArea(*this, In, dRidgeDist, Region, BrightProb);
    Region.CutImage(Length, Length);
    Dump(BrightProb, "C:\\21_BrightProbImage.kpf");
    ClImage ContrastProb;
    FindRidges(*this, Length, dRidgeDist, Region, ContrastProb);
    Dump(ContrastProb, "C:\\21_ContrastProbImage.kpf");
    OutProb.New(In);
    OutProb = cnBackground;
    PasteWindow(Region, ContrastProb, OutProb);
    const long nAdded = AddProbabilities(*this, BrightProb, OutProb, OutProb);
    if (nAdded != 0)
        return nAdded;
    FindSumRegion(*this, BrightProb, ContrastProb, Region);
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

long ClIpQK7DynamicCalibration30::BuildDerivationImages(const ClImage& In, ClImage& OutDx,
                                                        ClImage& OutDy, ClImage& OutLength) {
    ClInputView Image(In);
    ClIpFilterDGauss Filter;
    Filter.m_pInImage = &Image;
    Filter.m_pOutImage = &OutDx;
    Filter.m_nMode = ClIpFilterBase::ModeX;
    Timed(*this, Filter).Apply();
    Filter.m_pOutImage = &OutDy;
    Filter.m_nMode = ClIpFilterBase::ModeY;
    Filter.Apply();
    Timed(*this, ClIpEuclidLength()).ApplyParam(OutDx, OutDy, OutLength);
    return 0;
}

/// A region without runs paints nothing: the whole picture is finger then.
void ClIpQK7DynamicCalibration30::PaintRegion(const ClMask2& Region, ClImage& OutMask) const {
    OutMask.New(*m_pInImage);
    OutMask = cnFinger;
    Region.ApplyOnImage(OutMask, true, cnBackground);
    Dump(OutMask, "C:\\03_MaskImage.kpf");
}
