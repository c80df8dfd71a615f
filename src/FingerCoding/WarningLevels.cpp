// The weights of dirt and the warning levels. The two levels differ in scale, and are to: dryness
// is a score from 0 to 100, dirt an open sum, so that a larger background shows more of it.

#include "FingerCoding/FingerSettings.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "FingerCoding/TimedOperator.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/IpSubtract.h"
#include "Tools/Exception.h"
#include "Tools/FpImage.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr int cnDecision = 128; ///< of a probability
constexpr int cnWhite = 255;

constexpr double cdDirt2PerSum = 0.0005;
constexpr double cdLeastDirt2 = 100.0;

/// Images that are walked as a pair, by the line stride of the second one.
void CheckPair(const ClImage& Image, const ClImage& Mask) {
    if (Image.DataType() != ClImage::eUInt8 || Mask.DataType() != ClImage::eUInt8)
        throw ClException("Image Type is not the assigned type", QMT_ERROR_INTERNAL, true,
                          VEK_HERE);
    if (Image.Planes() != 1 || Mask.Planes() != 1)
        throw ClExTessarin(QMT_ERROR_BITMAP_PLANE, VEK_HERE);
    if (Image.Width() != Mask.Width() || Image.Height() != Mask.Height())
        throw ClExTessarin(QMT_ERROR_BITMAP_DIMENSION, VEK_HERE);
    if (Image.Data() == nullptr || Mask.Data() == nullptr)
        throw ClExTessarin(QMT_ERROR_PARAM_IS_MISSING, VEK_HERE);
}

/// `visit(image sample, mask sample)` for every pixel; nothing without lines.
template <class Visit>
void ForEachPair(const ClImage& Image, const ClImage& Mask, Visit visit) {
    if (Image.Height() < 1 || Mask.Height() < 1)
        return;
    CheckPair(Image, Mask);
    for (int y = 0; y < Mask.Height(); ++y) {
        const unsigned char* pImage = Image.LineData(y);
        const unsigned char* pMask = Mask.LineData(y);
        for (int x = 0; x < Mask.Width(); ++x)
            visit(int{pImage[x]}, int{pMask[x]});
    }
}

std::uint64_t SampleSum(const ClImage& Image) {
    std::uint64_t nSum = 0;
    for (int y = 0; y < Image.Height(); ++y) {
        const unsigned char* pLine = Image.LineData(y);
        for (int x = 0; x < Image.Width(); ++x)
            nSum += pLine[x];
    }
    return nSum;
}

} // namespace

void ClIpQK7DynamicCalibration30::FillDirtWeights() {
    for (int v = 0; v <= cnWhite; ++v)
        m_aDirtWeights[v] = FingerSettings::DirtWeight(v);
}

double ClIpQK7DynamicCalibration30::CalcDirtWarningLevel(const ClImage& In,
                                                         const ClImage& Mask) const {
    std::uint64_t nMaskSum = 0;
    std::uint64_t nWeighted = 0;
    ForEachPair(In, Mask, [&](int nIn, int nMask) {
        nMaskSum += static_cast<unsigned>(nMask);
        nWeighted += static_cast<unsigned>(nMask * m_aDirtWeights[nIn]);
    });
    return nMaskSum == 0 ? 0.0 : static_cast<double>(nWeighted) * FingerSettings::cdDirtPerSum;
}

double ClIpQK7DynamicCalibration30::CalcDryFingerWarningLevel(const ClImage& Prob,
                                                              const ClImage& Mask) const {
    std::uint64_t nWeights = 0;
    std::uint64_t nExcess = 0;
    ForEachPair(Prob, Mask, [&](int nProb, int nMask) {
        const int nWeight = cnWhite - nMask;
        nWeights += static_cast<unsigned>(nWeight);
        nExcess += static_cast<unsigned>(std::max(nProb - cnDecision, 0) * nWeight);
    });
    return FingerSettings::DryFingerLevel(nExcess, nWeights);
}

double ClIpQK7DynamicCalibration30::CalcDirtWarningLevel2(const ClImage& In,
                                                          const ClImage& Mask) const {
    ClInputView Capture(In);
    ClInputView Background(Mask);
    ClImage Defects;
    ClIpQK7FunctionalityCheck Check;
    Check.m_nNoise = 0;
    Timed(*this, Check).ApplyParam(Capture, Defects, ClImage::eTypeDefault);
    ClImage Inverted;
    Timed(*this, ClIpInvert()).ApplyParam(Background, Inverted);
    ClImage Rest;
    Timed(*this, ClIpSubtract()).ApplyParam(Defects, Inverted, Rest, ClImage::eTypeDefault);
    return std::max(cdDirt2PerSum * static_cast<double>(SampleSum(Rest)), cdLeastDirt2);
}
