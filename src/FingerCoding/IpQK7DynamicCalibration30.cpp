#include "FingerCoding/IpQK7DynamicCalibration30.h"

#include "FingerCoding/FingerSettings.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/Quick/DynamicCalibration.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/IpAdd.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpSubtract.h"
#include "ImageProcessing/LocalTarget.h"
#include "Tools/Allocate.h"
#include "Tools/ClassCallProfile.h"
#include "Tools/FpImage.h"

#include <TessarinCalibrateSDK.h>

#include <cstdint>
#include <numeric>

namespace {

using namespace FingerSettings;

constexpr unsigned char cnWhite = 255;

constexpr double cdSaturated = 255.0;
constexpr long cnFarWidth = 53;     ///< what is far from the finger, pixels
constexpr double cdFarMask = 250.0; ///< least mean of the mask over that width

/// The share of the saturated samples: a large white background is not to pull the upper limit up
/// to 255.
double WhitePart(const ClHistogram& Histogram) {
    const std::int64_t nTotal =
        std::accumulate(Histogram.m_anCount, Histogram.m_anCount + cnWhite + 1, std::int64_t{0});
    return static_cast<double>(Histogram.m_anCount[cnWhite]) / static_cast<double>(nTotal);
}

void CheckCapture(const ClImage& Capture) {
    if (Capture.DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, false,
                          VEK_NOWHERE);
}

} // namespace

ClIpQK7DynamicCalibration30::ClIpQK7DynamicCalibration30() {
    FillDirtWeights();
}

ClIpQK7DynamicCalibration30::~ClIpQK7DynamicCalibration30() = default;

ClProcessorBase* ClIpQK7DynamicCalibration30::Create() {
    return Vek::NewObject<ClIpQK7DynamicCalibration30>();
}

const char* ClIpQK7DynamicCalibration30::Name() const {
    return "ClIpQK7DynamicCalibration30";
}

void ClIpQK7DynamicCalibration30::Dump(const ClImage& Image, const char* szFileName) const {
    if (m_bDumpImages)
        Image.Store(szFileName);
}

long ClIpQK7DynamicCalibration30::Process() {
    if (m_pInImage == nullptr || m_pOutImage == nullptr)
        return QMT_ERROR_PARAM_IS_MISSING;
    CheckCapture(*m_pInImage);
    if (!IsObserved() && IsOrdinary() && ProcessQuickly())
        return 0;
    ClImage Capture; // the mask may be written over the input
    Capture.Attach(*m_pInImage);
    return ProcessInto(*m_pInImage, *m_pOutImage, [&](const ClImage&, ClImage& Out) {
        Correct(Capture, Out);
        return 0L;
    });
}

// Quickly, where nobody looks at the stages

namespace {

bool SharePixels(const ClImage* pA, const ClImage* pB) {
    return pA != nullptr && pB != nullptr &&
           (pA == pB || (pA->Data() != nullptr && pA->Data() == pB->Data()));
}

} // namespace

/// Whether somebody looks at the steps of a run.
bool ClIpQK7DynamicCalibration30::IsObserved() const {
    return m_bDumpImages || m_bDumpDefectImage || IsTimerEnabled() ||
           g_pClassCallProfile != nullptr;
}

bool ClIpQK7DynamicCalibration30::IsOrdinary() const {
    const auto hasUsualWeights = [this] {
        for (int v = 0; v <= cnWhite; ++v)
            if (m_aDirtWeights[v] != DirtWeight(v))
                return false;
        return true;
    };
    return Quick::ClDynamicCalibration::Takes(*m_pInImage) &&
           !SharePixels(m_pInImage, m_pOutImage) && !SharePixels(m_pInImage, m_pOutMaskImage) &&
           !SharePixels(m_pOutImage, m_pOutMaskImage) && hasUsualWeights();
}

/// False for a capture that is left to the operators; then nothing has changed.
bool ClIpQK7DynamicCalibration30::ProcessQuickly() {
    if (m_pQuick == nullptr)
        m_pQuick.reset(Vek::NewObject<Quick::ClDynamicCalibration>());
    const auto Levels = m_pQuick->Run(*m_pInImage, m_bSensitiveMode,
                                      m_bMaskOnly ? nullptr : m_pOutImage, m_pOutMaskImage);
    if (!Levels)
        return false;
    m_dDirtWarningLevel = Levels->m_dDirt;
    m_dDryFingerWarningLevel = Levels->m_dDryFinger;
    return true;
}

// The plain sequence

void ClIpQK7DynamicCalibration30::Correct(const ClImage& Capture, ClImage& Out) {
    Dump(Capture, "C:\\01_InImage.kpf");
    ClImage Stretched;
    const int nRange = StretchGlobally(Capture, Stretched);
    ClImage Mask;
    ClImage Prob;
    bool bFinger = FindFinger(Capture, Stretched, nRange, Mask, Prob);
    if (m_pOutMaskImage != nullptr)
        *m_pOutMaskImage = Mask;
    StretchLocally(Stretched);
    WhitenBackground(Mask, Stretched, Out);
    KeepCleanBackground(Capture, Mask);
    ClHistogram Histogram;
    Histogram.Create(Mask);
    if (Histogram.GetColorCount() == 1)
        bFinger = false;
    m_dDirtWarningLevel = CalcDirtWarningLevel(Capture, Mask);
    StoreDefects(Capture);
    m_dDryFingerWarningLevel = bFinger ? CalcDryFingerWarningLevel(Prob, Mask) : 0.0;
    if (m_dDirtWarningLevel < cdUnusableDirt && bFinger)
        return;
    m_dDirtWarningLevel = cdRejectedDirt;
    Out = cnWhite;
}

/// The result is the range that was stretched: negative where all samples are saturated.
int ClIpQK7DynamicCalibration30::StretchGlobally(const ClImage& Capture, ClImage& Stretched) const {
    ClIpStretchRangeGlobal Stretch;
    ClHistogram Histogram;
    Histogram.Create(Capture);
    const double dBright = WhitePart(Histogram) + cdBrightPart;
    const double dDark = m_bSensitiveMode ? cdDarkPartSensitive : cdDarkPart;
    Histogram.GetNoiseFreeRange(dDark, dBright, Stretch.m_nOldRangeFrom, Stretch.m_nOldRangeTo);
    ClInputView In(Capture);
    Timed(*this, Stretch).ApplyParam(In, Stretched);
    Dump(Stretched, "C:\\02_GloballyStretchedImage.kpf");
    return int{Stretch.m_nOldRangeTo} - int{Stretch.m_nOldRangeFrom};
}

/// Without a finger the mask is all background, and there are no probabilities.
bool ClIpQK7DynamicCalibration30::FindFinger(const ClImage& Capture, const ClImage& Stretched,
                                             int nRange, ClImage& Mask, ClImage& Prob) {
    const bool bSeek = nRange > cnLargestRangeWithoutFinger || m_bSensitiveMode;
    const bool bFinger = bSeek && BuildMaskImage(Stretched, cdRidgeDist, Mask, Prob) == 0;
    if (!bFinger) {
        Mask.New(Capture);
        Mask = cnWhite;
    }
    Dump(Mask, "C:\\03_MaskImage_orig.kpf");
    return bFinger;
}

void ClIpQK7DynamicCalibration30::StretchLocally(ClImage& Stretched) const {
    ClImage Min;
    ClImage Max;
    ClIpStretchRangeLocal Stretch;
    Stretch.m_nFilterWidth = cnLocalWidth;
    Stretch.m_nSubSampleRate = 1;
    Stretch.m_bUseMinSmoothing = true;
    Stretch.m_bUseMaxSmoothing = true;
    if (m_bDumpImages) {
        Stretch.m_pOptOutMinImage = &Min;
        Stretch.m_pOptOutMaxImage = &Max;
    }
    Timed(*this, Stretch).ApplyParam(Stretched, Stretched);
    Dump(Min, "C:\\07_MinImage.kpf");
    Dump(Max, "C:\\08_MaxImage.kpf");
    Dump(Stretched, "C:\\09_StretchedImage.kpf");
}

void ClIpQK7DynamicCalibration30::WhitenBackground(const ClImage& Mask, const ClImage& Stretched,
                                                   ClImage& Out) const {
    ClInputView MaskIn(Mask);
    ClInputView StretchedIn(Stretched);
    ClIpAdd Add;
    Add.m_eMode = ClIpAdd::ModeCut;
    Timed(*this, Add).ApplyParam(MaskIn, StretchedIn, Out, ClImage::eTypeDefault);
    Dump(Out, "C:\\10_OutImage.kpf");
}

/// Leaves 255 in the mask where dirt can be measured: away from the finger, from what is saturated
/// and from the frame of the sensor.
void ClIpQK7DynamicCalibration30::KeepCleanBackground(const ClImage& Capture, ClImage& Mask) const {
    ClInputView In(Capture);
    ClImage Bright;
    Timed(*this, ClIpBinarizeGlobal()).ApplyParam(In, Bright, cdSaturated);
    Timed(*this, ClIpSubtract()).ApplyParam(Mask, Bright, Mask, ClImage::eTypeDefault);
    Dump(Mask, "C:\\11b_ExtendedMaskImage.kpf");
    ClImage Far;
    Timed(*this, ClIpFilterMid()).ApplyParam(Mask, Far, cnFarWidth);
    Timed(*this, ClIpBinarizeGlobal()).ApplyParam(Far, Far, cdFarMask);
    ClIpQK7FunctionalityCheck::FadeSensorBorder(Far, Mask);
    Dump(Mask, "C:\\11c_FadedMaskImageForDirtMeasurement.kpf");
}

void ClIpQK7DynamicCalibration30::StoreDefects(const ClImage& Capture) const {
    if (!m_bDumpImages && !m_bDumpDefectImage)
        return;
    ClInputView In(Capture);
    ClImage Defects;
    Timed(*this, ClIpQK7FunctionalityCheck()).ApplyParam(In, Defects, ClImage::eTypeDefault);
    Defects.Store("C:\\12_DefectImage.kpf");
}
