#include "FingerCoding/IpBrightnessMask.h"

#include "FingerCoding/DetectorSteps.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpFilterMin.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpOffset.h"
#include "ImageProcessing/IpStretchRangeGlobalNoiseRemoving.h"
#include "Tools/Allocate.h"
#include "Tools/Convert.h"

#include <algorithm>
#include <numeric>

namespace {

using DetectorSteps::Run;

constexpr const char* cszNothing = "Nothing";

/// Grey value of the threshold in a probability image.
constexpr long cnProbThreshold = 128;

/// Pixels of the smallest blob, of whatever resolution.
constexpr long cnMinBlobSize = 1000;

// The lines that exceptions about parameters name.
constexpr long cnNoImageLine = 108;
constexpr long cnNoRidgeDistLine = 111;
constexpr long cnRidgeDistRangeLine = 113;
constexpr long cnNoMaskPlaceLine = 115;
constexpr long cnNoMaskLine = 117;

void CheckPointer(const void* pPointer, const char* szText, long nLine) {
    if (pPointer == nullptr)
        throw ClException(szText, QMT_ERROR_BAD_POINTER, true, VEK_FILE, nLine);
}

} // namespace

ClIpBrightnessMask::ClIpBrightnessMask() {
    ClIpBrightnessMask::SetParametersToDefault();
}

ClProcessorBase* ClIpBrightnessMask::Create() {
    return Vek::NewObject<ClIpBrightnessMask>();
}

const char* ClIpBrightnessMask::Name() const {
    return "ClIpBrightnessMask";
}

void ClIpBrightnessMask::SetParametersToDefault() {
    m_pInImage = nullptr;
    m_pOptOutProbImage = nullptr;
    m_dRidgeDist = 0.0;
    m_pdRidgeDist = &m_dRidgeDist;
    m_pInOutMask = nullptr;
    m_ppInOutMask = &m_pInOutMask;
    m_bIlFix = true;
    m_nImageBorderWidth = 4;
    m_dIlFixMaxWidthFactor = 1.0;
    m_dIlFixLowPassWidthFactor = 0.5;
    m_dDarkNoisePart = 0.1;
    m_dBrightNoisePart = 0.05;
    m_dDilatWidthFactor = 0.66;
    m_dLowPassWidthFactor = 1.0;
    m_nDerivationWidth = 10;
    m_dDerivativeThresh = 15.0;
    m_dMinAreaMM2 = 300.0;
    m_nMinBinarizeThreshold = 100;
    m_nMaxBinarizeThreshold = 200;
}

void ClIpBrightnessMask::QueryParameters(ClParameterInterface& List) {
    AddNumber(List, "ImageBorderWidth", m_nImageBorderWidth, cszNothing, 1.0, 10.0);
    AddNumber(List, "IlFixMaxWidthFactor", m_dIlFixMaxWidthFactor, cszNothing);
    AddNumber(List, "IlFixLowPassWidthFactor", m_dIlFixLowPassWidthFactor, cszNothing);
    AddNumber(List, "DarkNoisePart", m_dDarkNoisePart, cszNothing);
    AddNumber(List, "BrightNoisePart", m_dBrightNoisePart, cszNothing);
    AddNumber(List, "DilatWidthFactor", m_dDilatWidthFactor, cszNothing);
    AddNumber(List, "LowPassWidthFactor", m_dLowPassWidthFactor, cszNothing);
    AddNumber(List, "DerivationWidth", m_nDerivationWidth, cszNothing, 0.0, 255.0);
    AddNumber(List, "DerivativeThresh", m_dDerivativeThresh, cszNothing);
    AddNumber(List, "MinAreaMM2", m_dMinAreaMM2, cszNothing);
    AddNumber(List, "MinBinarizeThreshold", m_nMinBinarizeThreshold, cszNothing, 0.0, 255.0);
    AddNumber(List, "MaxBinarizeThreshold", m_nMaxBinarizeThreshold, cszNothing, 0.0, 255.0);
}

void ClIpBrightnessMask::PublishParameters(ClParameterContainer& Container) {
    AddInImage(Container, "pInImage", m_pInImage);
    AddOutImage(Container, "pOptOutProbImage", m_pOptOutProbImage);
    Container.AddNumeric("dRidgeDist", &m_dRidgeDist);
    Container.AddPointer("pInOutMask", &m_pInOutMask);
    Container.AddNumeric("nImageBorderWidth", &m_nImageBorderWidth);
    Container.AddNumeric("dIlFixMaxWidthFactor", &m_dIlFixMaxWidthFactor);
    Container.AddNumeric("dIlFixLowPassWidthFactor", &m_dIlFixLowPassWidthFactor);
    Container.AddNumeric("dDarkNoisePart", &m_dDarkNoisePart);
    Container.AddNumeric("dBrightNoisePart", &m_dBrightNoisePart);
    Container.AddNumeric("dDilatWidthFactor", &m_dDilatWidthFactor);
    Container.AddNumeric("dLowPassWidthFactor", &m_dLowPassWidthFactor);
    Container.AddNumeric("nDerivationWidth", &m_nDerivationWidth);
    Container.AddNumeric("dDerivativeThresh", &m_dDerivativeThresh);
    Container.AddNumeric("dMinAreaMM2", &m_dMinAreaMM2);
    Container.AddNumeric("nMinBinarizeThreshold", &m_nMinBinarizeThreshold);
    Container.AddNumeric("nMaxBinarizeThreshold", &m_nMaxBinarizeThreshold);
    Container.Keep(&m_pdRidgeDist, &m_ppInOutMask, &m_bIlFix);
}

void ClIpBrightnessMask::QueryParameters(ClParameterContainer& Container) {
    ClProcessorBase::QueryParameters(Container);
}

// The run

void ClIpBrightnessMask::CheckParameters() const {
    CheckPointer(m_pInImage, "m_pInImage is not set", cnNoImageLine);
    // The text names the image here, too, and is part of the interface.
    CheckPointer(m_pdRidgeDist, "m_pInImage is not set", cnNoRidgeDistLine);
    if (!(*m_pdRidgeDist > 0.0))
        throw ClException("*m_pdRidgeDist is out of range", QMT_ERROR_PARAM_OUT_OF_RANGE, true,
                          VEK_FILE, cnRidgeDistRangeLine);
    CheckPointer(m_ppInOutMask, "m_ppInOutMask is not set", cnNoMaskPlaceLine);
    CheckPointer(*m_ppInOutMask, "*m_ppInOutMask is not set", cnNoMaskLine);
}

long ClIpBrightnessMask::FilterWidth(double dRidgeDistances) const {
    return Mask::Truncated(*m_pdRidgeDist * dRidgeDistances) | 1;
}

long ClIpBrightnessMask::Process() {
    CheckParameters();
    ClImage Image;
    if (m_bIlFix)
        FixIllumination(Image);
    else
        Image = *m_pInImage;
    SpreadRidges(Image);
    ClHistogram Histogram;
    Histogram.Create(Image);
    const long nThreshold = FindThreshold(Histogram, Image.PelsX());
    if (m_pOptOutProbImage != nullptr)
        Run(*this, ClIpOffset(), Image, *m_pOptOutProbImage,
            static_cast<double>(cnProbThreshold - nThreshold));
    BuildMask(Image, nThreshold);
    return 0;
}

/// The maximum follows the bright valleys between the ridges: an estimate of the background. What
/// it lacks to white is added, smoothed. The frame keeps the sensor's bright edge out of it.
void ClIpBrightnessMask::FixIllumination(ClImage& Out) {
    ClImage Lift;
    CopyWithFrame(*m_pInImage, Lift, m_nImageBorderWidth, 0);
    Run(*this, ClIpFilterMax(), Lift, Out, FilterWidth(m_dIlFixMaxWidthFactor),
        ClIpFilterBase::ModeXY);
    Run(*this, ClIpInvert(), Out);
    Run(*this, ClIpFilterMid(), Out, Lift, FilterWidth(m_dIlFixLowPassWidthFactor));
    ClIpAdd Add;
    Add.m_eMode = ClIpAdd::ModeCut;
    Run(*this, Add, *m_pInImage, Lift, Out, ClImage::eTypeDefault);
}

/// Stretches the image and lets the dark ridges grow into the valleys.
void ClIpBrightnessMask::SpreadRidges(ClImage& Image) {
    ClImage Scratch;
    Run(*this, ClIpStretchRangeGlobalNoiseRemoving(), Image, Scratch, m_dDarkNoisePart,
        m_dBrightNoisePart);
    Run(*this, ClIpFilterMin(), Scratch, Image, FilterWidth(m_dDilatWidthFactor),
        ClIpFilterBase::ModeXY);
    Run(*this, ClIpFilterMid(), Image, Scratch, FilterWidth(m_dLowPassWidthFactor));
    Image.Swap(Scratch);
}

/// Values whose derivative is not defined, within its width of either end, are left out.
long ClIpBrightnessMask::FindThreshold(const ClHistogram& Histogram, int nPelsX) const {
    const long nLow = std::max(m_nMinBinarizeThreshold, m_nDerivationWidth);
    const long nHigh = std::min<long>(255 - m_nDerivationWidth, m_nMaxBinarizeThreshold);
    if (nLow >= nHigh)
        return nLow;
    const ClConvert Convert(nPelsX, nPelsX);
    return SearchFoot(Histogram, nLow, nHigh,
                      DetectorSteps::PixelsOfArea(m_dMinAreaMM2, Convert.PelsX()));
}

long ClIpBrightnessMask::SearchFoot(const ClHistogram& Histogram, long nLow, long nHigh,
                                    std::int64_t nMinPixels) const {
    double adDerivative[256] = {};
    Histogram.CalcFirstDerivation(m_nDerivationWidth, adDerivative);
    std::int64_t nSum =
        std::accumulate(Histogram.m_anCount, Histogram.m_anCount + nLow, std::int64_t{0});
    for (long nValue = nLow; nValue < nHigh; ++nValue) {
        nSum += Histogram.m_anCount[nValue];
        if (nMinPixels < nSum && m_dDerivativeThresh < adDerivative[nValue])
            return nValue;
    }
    return nHigh;
}

void ClIpBrightnessMask::BuildMask(const ClImage& Image, long nThreshold) {
    constexpr unsigned char cnBackground = 255;
    ClInputView In(Image);
    ClImage Binary;
    Run(*this, ClIpBinarizeGlobal(), In, Binary, static_cast<double>(nThreshold));
    ClMask2& rMask = **m_ppInOutMask;
    rMask.BuildFromImage(Binary, cnBackground);
    rMask.RemoveSmallFgBlobs(cnMinBlobSize, false);
    rMask.RemoveBgBlobs();
    rMask.SetBoundingBox();
}

void ClIpBrightnessMask::CopyWithFrame(const ClImage& In, ClImage& Out, long nWidth,
                                       unsigned char nValue) {
    constexpr unsigned char cnRightEnd = 0;
    Out = In;
    DetectorSteps::PaintOutermostPixels(Out, nWidth, nValue, cnRightEnd);
}
