#include "FingerCoding/IpQK7FunctionalityCheck.h"

#include "FingerCoding/Quick/Defects.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/ImageParameters.h"
#include "ImageProcessing/IpAbs.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpScale.h"
#include "ImageProcessing/IpSetBorder.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpSubtract.h"
#include "Tools/Allocate.h"
#include "Tools/ClassCallProfile.h"
#include "Tools/PlainLocale.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

constexpr double cdGain = 3.0;
constexpr double cdFineSigma = 1.5;
constexpr long cnCoarseWidth = 51;
constexpr unsigned char cnFullDefect = 64; ///< the difference that becomes white

constexpr unsigned char cnMasked = 255;
constexpr long cnFrameWidth = 15;
constexpr int cnTopLines = 25;
constexpr int cnCornerLines = 100;
constexpr int cnCornerWidth = 60;
constexpr long cnMaskBlurWidth = 21;

constexpr double cdWeightOfWhitePixel = 0.5;
constexpr double cdWeightOfMean = 10.0;
constexpr double cdHighestLevel = 100.0;

/// The same samples read as unsigned ones: -128 becomes 128, and the range moves up with it.
void ReadAsUnsigned(ClImage& Image) {
    const unsigned char nType = Image.DataType();
    if (!ClImage::IsSigned(nType) || ClImage::IsFloat(nType))
        return;
    const double dShift = std::ldexp(1.0, Image.BytesPerSample() * 8 - 1);
    Image.SetBlack(Image.Black() + dShift);
    Image.SetWhite(Image.White() + dShift);
    Image.SetDataType(static_cast<unsigned char>(nType & 0x7F));
}

double LevelOf(std::int32_t nWhite, double dMean) {
    return std::min(nWhite * cdWeightOfWhitePixel + dMean * cdWeightOfMean, cdHighestLevel);
}

void PaintCorners(ClImage& Mask) {
    const int nFirstLine = Mask.Height() - cnCornerLines;
    for (int i = std::max(0, -nFirstLine); i < cnCornerLines; ++i) {
        const int nPixels = std::min(i * cnCornerWidth / cnCornerLines, Mask.Width());
        unsigned char* pLine = Mask.LineData(nFirstLine + i);
        std::fill_n(pLine, nPixels, cnMasked);
        std::fill_n(pLine + Mask.Width() - nPixels, nPixels, cnMasked);
    }
}

void PaintFirstLines(ClImage& Mask) {
    for (int y = 0; y < std::min(cnTopLines, Mask.Height()); ++y)
        std::fill_n(Mask.LineData(y), Mask.Width(), cnMasked);
}

} // namespace

ClIpQK7FunctionalityCheck::ClIpQK7FunctionalityCheck() {
    m_bInPlace = false;
    m_bUseLUT = false;
    ClIpQK7FunctionalityCheck::SetParametersToDefault();
}

ClProcessorBase* ClIpQK7FunctionalityCheck::Create() {
    return Vek::NewObject<ClIpQK7FunctionalityCheck>();
}

const char* ClIpQK7FunctionalityCheck::Name() const {
    return "ClIpQK7FunctionalityCheck";
}

void ClIpQK7FunctionalityCheck::SetParametersToDefault() {
    ClIp1to1Base::SetParametersToDefault();
    m_nNoise = 5;
    m_dOutDefectWarningLevel = 0.0;
}

void ClIpQK7FunctionalityCheck::QueryParameters(ClParameterInterface& List) {
    ClIp1to1Base::QueryParameters(List);
    AddNumber(List, "dOutDefectWarningLevel", m_dOutDefectWarningLevel, "Out: DefectWarningLevel",
              0.0, 0.0, ClParameterInterface::eOut);
}

long ClIpQK7FunctionalityCheck::ParameterString(char* pBuffer, unsigned long nSize) {
    if (pBuffer == nullptr)
        nSize = 0;
    const Vek::ClPlainLocale plain;
    const long nLength = std::snprintf(pBuffer, nSize, "Noise %d Defect %.1f", int{m_nNoise},
                                       m_dOutDefectWarningLevel);
    if (nSize > 0)
        pBuffer[nSize - 1] = '\0';
    return nLength;
}

// The run

long ClIpQK7FunctionalityCheck::DoProcess(ClImage& In, ClImage& Out) {
    if (IsOrdinary(In, Out)) {
        ProcessQuickly(In, Out);
        return 0;
    }
    ClImage Inverted; // dirt becomes light
    Timed(*this, ClIpInvert()).ApplyParam(In, Inverted);
    ClImage Stressed;
    StressDefects(Inverted, Stressed);
    FadeSensorBorder(Stressed, Out);
    m_dOutDefectWarningLevel = CalcDefectWarningLevel(Out);
    return 0;
}

/// Whether nobody looks at the steps, and all windows are smaller than the capture. The frame has
/// made the output.
bool ClIpQK7FunctionalityCheck::IsOrdinary(const ClImage& In, const ClImage& Out) const {
    return !IsTimerEnabled() && g_pClassCallProfile == nullptr && m_nNoise < cnFullDefect &&
           In.DataType() == ClImage::eUInt8 && In.Planes() == 1 && In.Data() != nullptr &&
           In.Black() == 0.0 && In.White() == 255.0 && In.Width() >= cnCoarseWidth &&
           In.Height() >= cnCoarseWidth && &In != &Out;
}

/// The same as the operators make, in one pass behind the mean.
void ClIpQK7FunctionalityCheck::ProcessQuickly(const ClImage& In, ClImage& Out) {
    if (m_Fade.Width() != In.Width() || m_Fade.Height() != In.Height()) {
        ClImage White(In.Width(), In.Height(), 1, 1, 1);
        White = cnMasked;
        FadeSensorBorder(White, m_Fade);
    }
    Out.NewWithType(In, ClImage::eUInt8);
    const auto planeOf = [](const ClImage& Image) {
        return Quick::StPlane{Image.Data(), Image.LineStrideBytes(), Image.Width(), Image.Height()};
    };
    const Quick::StDefectSums Sums = Quick::WriteDefects(planeOf(In), m_nNoise, planeOf(m_Fade),
                                                         m_Memory, m_Scratch, planeOf(Out));
    const double dPixels = static_cast<double>(In.Width()) * In.Height();
    m_dOutDefectWarningLevel =
        LevelOf(Sums.m_nWhite, static_cast<std::uint32_t>(Sums.m_nSum) / dPixels);
}

void ClIpQK7FunctionalityCheck::StressDefects(ClImage& In, ClImage& Out) {
    ClImage Scaled;
    Timed(*this, ClIpScale()).ApplyParam(In, Scaled, cdGain);
    ClImage Fine;
    Timed(*this, ClIpFilterGauss()).ApplyParam(Scaled, Fine, cdFineSigma, 0);
    ClImage Coarse;
    Timed(*this, ClIpFilterMid()).ApplyParam(Scaled, Coarse, cnCoarseWidth);
    ClImage Delta;
    Timed(*this, ClIpSubtract()).ApplyParam(Fine, Coarse, Delta, ClImage::eInt8);
    ClImage Absolute;
    Timed(*this, ClIpAbs()).ApplyParam(Delta, Absolute);
    ReadAsUnsigned(Absolute);
    ClIpStretchRangeGlobal Stretch;
    Stretch.m_nOldRangeFrom = m_nNoise;
    Stretch.m_nOldRangeTo = cnFullDefect;
    Timed(*this, Stretch).ApplyParam(Absolute, Out);
}

// What serves without an object is not timed.

void ClIpQK7FunctionalityCheck::FadeSensorBorder(ClImage& In, ClImage& Out) {
    ClImage Sensor;
    BuildSensorMask(In, Sensor);
    ClImage Blurred;
    Timed(false, ClIpFilterMid()).ApplyParam(Sensor, Blurred, cnMaskBlurWidth);
    Timed(false, ClIpSubtract()).ApplyParam(In, Blurred, Out, ClImage::eTypeDefault);
}

void ClIpQK7FunctionalityCheck::BuildSensorMask(const ClImage& In, ClImage& Out) {
    ClImage Mask; // `Out` may be `In`
    Mask.New(In);
    Mask = static_cast<unsigned char>(0);
    Timed(false, ClIpSetBorder()).ApplyParam(Mask, cnFrameWidth, cnMasked);
    PaintCorners(Mask);
    PaintFirstLines(Mask);
    Out.Swap(Mask);
}

double ClIpQK7FunctionalityCheck::CalcDefectWarningLevel(const ClImage& Image) {
    ClHistogram Histogram;
    Histogram.Create(Image);
    return LevelOf(Histogram.m_anCount[255], Histogram.GetGreyMid(0, 255));
}
