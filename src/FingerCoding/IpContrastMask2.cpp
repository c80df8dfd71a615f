#include "FingerCoding/IpContrastMask2.h"

#include "FingerCoding/DetectorSteps.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpMax.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/Allocate.h"
#include "Tools/Convert.h"

#include <algorithm>
#include <limits>

namespace {

using DetectorSteps::Run;
using DetectorSteps::ThrowFailure;

constexpr const char* cszNothing = "Nothing";

/// Picture elements per metre to dots per inch, 1 / 39.37.
constexpr double cdDpiPerPels = 0.025400050800101603;

/// A resolution that is not one of a scanner makes a huge image of a small one.
constexpr int cnLargestWorkSide = 4096;
constexpr double cdMostWorkPixels = 8e6;

constexpr int cnProbThreshold = 128; ///< grey value of the threshold when the offset is applied

void CheckPointer(const void* pPointer, const char* szText, long nLine) {
    if (pPointer == nullptr)
        throw ClException(szText, QMT_ERROR_BAD_POINTER, true, VEK_FILE, nLine);
}

/// Toward zero, as near as an `int` comes to it.
int TruncatedInt(double dValue) {
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(
        std::clamp<std::int64_t>(Mask::Truncated(dValue), Limits::min(), Limits::max()));
}

} // namespace

ClProcessorBase* ClIpContrastMask2::Create() {
    return Vek::NewObject<ClIpContrastMask2>();
}

const char* ClIpContrastMask2::Name() const {
    return "ClIpContrastMask2";
}

void ClIpContrastMask2::QueryParameters(ClParameterInterface& List) {
    AddNumber(List, "BorderWidth", m_nBorderWidth, cszNothing, 1.0, 10.0);
    AddNumber(List, "ScaleFactor", m_dScaleFactor, cszNothing, 4.0, 12.0);
    AddNumber(List, "MidRotWidthFactor1", m_dMidRotWidthFactor1, cszNothing, 0.5, 3.0);
    AddNumber(List, "MidRotWidthFactor2", m_dMidRotWidthFactor2, cszNothing, 0.5, 3.0);
    AddNumber(List, "MidRotWidthFactor3", m_dMidRotWidthFactor3, cszNothing, 0.5, 3.0);
    AddNumber(List, "MinFgBlobSize", m_dMinFgBlobSize, cszNothing, 1.0, 50.0);
    AddNumber(List, "ThresholdFactor", m_dThresholdFactor, cszNothing, 1.0, 15.0);
}

// The run

void ClIpContrastMask2::CheckParameters() const {
    CheckPointer(m_pInImage, "m_pInImage is not set", __LINE__);
    // As in the brightness mask, the text names the image here, too.
    CheckPointer(m_pdRidgeDist, "m_pInImage is not set", __LINE__);
    CheckPointer(m_ppInOutMask, "m_ppInOutMask is not set", __LINE__);
    CheckPointer(*m_ppInOutMask, "*m_ppInOutMask is not set", __LINE__);
    CheckWorkSize(*m_pInImage);
}

/// By the sizes that the rescale will choose: rounded up, but for less than a ten thousandth.
void ClIpContrastMask2::CheckWorkSize(const ClImage& In) const {
    if (In.PelsX() < 1 || In.PelsY() < 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PELS, VEK_HERE);
    const auto WorkSize = [](double dSize, int nWorkPels, int nPels) {
        return std::floor(dSize * nWorkPels / nPels + 0.9999);
    };
    const double dWidth = WorkSize(In.Width(), WorkPels(In, In.PelsX()), In.PelsX());
    const double dHeight = WorkSize(In.Height(), WorkPels(In, In.PelsY()), In.PelsY());
    if (dWidth > cnLargestWorkSide || dHeight > cnLargestWorkSide ||
        dWidth * dHeight > cdMostWorkPixels)
        throw ClExTessarin(QMT_ERROR_BITMAP_PELS, VEK_HERE);
}

double ClIpContrastMask2::ShrinkFactor(const ClImage& In) const {
    return In.PelsX() * cdDpiPerPels / m_dWorkDpi;
}

int ClIpContrastMask2::WorkPels(const ClImage& In, int nPels) const {
    return TruncatedInt(nPels / ShrinkFactor(In));
}

/// What two means of half the width, made odd, would cover: odd itself, and about the width.
long ClIpContrastMask2::MeanWidth(const ClImage& In) const {
    const std::int64_t n =
        Mask::Truncated(*m_pdRidgeDist * m_dMidRotWidthFactor1 / ShrinkFactor(In));
    const std::int64_t nOdd = (n - n / 2) | 1;
    return (2 * nOdd - 1) | 1;
}

long ClIpContrastMask2::Process() {
    CheckParameters();
    ClImage In; // the probability image may be the input
    In.Attach(*m_pInImage);
    const int nThreshold = SampleFromDouble<unsigned char>(m_dScaleFactor * m_dThresholdFactor);
    ClImage Image;
    ShrinkRegion(Image);
    Amplify(Image);
    Smoothen(Image);
    if (m_pOptOutProbImage != nullptr)
        HandOutProbability(In, Image, nThreshold);
    return BuildMask(In, Image, nThreshold);
}

/// The input inside the mask, at the resolution of the work and with a black frame, which hides the
/// edges that the cut to the mask has made.
void ClIpContrastMask2::ShrinkRegion(ClImage& Out) {
    constexpr unsigned char cnOutside = 0;
    ClImage Region;
    Region = *m_pInImage;
    (*m_ppInOutMask)->ApplyOnImage(Region, true, cnOutside);
    ClImage Small;
    ThrowFailure(Timed(*this, ClIpRescale())
                     .ApplyParamPels(Region, Small, WorkPels(Region, Region.PelsX()),
                                     WorkPels(Region, Region.PelsY()),
                                     ClIpRescale::ModeNearestNeighbour));
    CopyWithBlackFrame(Small, Region, m_nBorderWidth);
    Out.Swap(Region);
}

/// The median fills what is dark between strong gradients; ridges keep their own values.
void ClIpContrastMask2::Amplify(ClImage& Image) {
    constexpr long cnMedianWidth = 3;
    Scale(Image, m_dScaleFactor);
    ClImage Median;
    Run(*this, ClIpFilterMedian(), Image, Median, cnMedianWidth);
    Run(*this, ClIpMax(), Image, Median, Image, ClImage::eTypeDefault);
}

void ClIpContrastMask2::Smoothen(ClImage& Image) {
    ClImage Smooth;
    Run(*this, ClIpFilterMid(), Image, Smooth, MeanWidth(*m_pInImage));
    Image.Swap(Smooth);
}

/// `Image` keeps the offset.
void ClIpContrastMask2::HandOutProbability(const ClImage& In, ClImage& Image, int nThreshold) {
    Run(*this, ClIpOffset(), Image, static_cast<double>(cnProbThreshold - nThreshold));
    ThrowFailure(Timed(*this, ClIpRescale())
                     .ApplyParamSize(Image, *m_pOptOutProbImage, In.Width(), In.Height(),
                                     ClIpRescale::ModeNearestNeighbour));
    m_pOptOutProbImage->SetPelsX(In.PelsX());
    m_pOptOutProbImage->SetPelsY(In.PelsY());
    Run(*this, ClIpInvert(), *m_pOptOutProbImage);
}

long ClIpContrastMask2::BuildMask(const ClImage& In, ClImage& Image, int nThreshold) {
    constexpr unsigned char cnBackground = 0;
    ClImage Binary;
    Run(*this, ClIpBinarizeGlobal(), Image, Binary, static_cast<double>(nThreshold));
    ClMask2& rMask = **m_ppInOutMask;
    rMask.BuildFromImage(Binary, cnBackground);
    const ClConvert Convert(Image.PelsX(), Image.PelsY());
    rMask.RemoveSmallFgBlobs(DetectorSteps::PixelsOfArea(m_dMinFgBlobSize, Convert.PelsX()), false);
    rMask.ResizeMask(In.Width(), In.Height(), In.PelsX(), In.PelsY());
    return rMask.SetBoundingBox() ? 0 : QMT_ERROR_BITMAP_NO_FINGER;
}

void ClIpContrastMask2::Scale(ClImage& Image, double dFactor) {
    constexpr double cdWhite = 255.0;
    unsigned char aScaled[256];
    for (int i = 0; i < 256; ++i) {
        const double dValue = i * dFactor;
        aScaled[i] = SampleFromDouble<unsigned char>(dValue > cdWhite ? cdWhite : dValue);
    }
    for (int y = 0; y < Image.Height(); ++y) {
        unsigned char* pLine = Image.LineData(y);
        std::transform(pLine, pLine + Image.Width(), pLine,
                       [&](unsigned char nValue) { return aScaled[nValue]; });
    }
}

void ClIpContrastMask2::CopyWithBlackFrame(const ClImage& In, ClImage& Out, long nWidth) {
    constexpr unsigned char cnBlack = 0;
    Out = In;
    DetectorSteps::PaintOutermostPixels(Out, nWidth, cnBlack, cnBlack);
}
