// What the capture of a finger meets, step by step, at each instruction level that this processor
// has, on frames of a quarter of the scanner's pixels, of as many, and of four times as many: the
// time for a pixel ought to be the same for all three.

#include "Calibrate/CalibrateGeometricData.h"
#include "Calibrate/IpCalibrateGeometricBicubic.h"
#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "ImageProcessing/Histogram.h"
#include "ImageProcessing/IpBinarizeGlobal.h"
#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpFilterGauss.h"
#include "ImageProcessing/IpFilterMax.h"
#include "ImageProcessing/IpFilterMedian.h"
#include "ImageProcessing/IpFilterMid.h"
#include "ImageProcessing/IpRescale.h"
#include "ImageProcessing/IpStretchRangeGlobal.h"
#include "ImageProcessing/IpStretchRangeLocal.h"
#include "ImageProcessing/IpUnsharpMasking.h"
#include "Tools/FpImage.h"
#include "Tools/InstructionLevel.h"
#include "sim/Capture.h"
#include "sim/Record.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <map>
#include <string>

namespace {

constexpr int cnScannerWidth = 320;

const sim::ClScanner& Scanner() {
    static const sim::ClScanner scanner(900);
    return scanner;
}

/// The record of a scanner of another resolution.
void FillRecord(int nFrameWidth, ClCalibrateGeometricData& rRecord) {
    const double dScale = static_cast<double>(nFrameWidth) / cnScannerWidth;
    sim::FillRecord(Scanner(), rRecord);
    for (std::uint32_t* pNumber :
         {&rRecord.m_nSourceWidth, &rRecord.m_nSourceHeight, &rRecord.m_nTargetWidth,
          &rRecord.m_nTargetHeight, &rRecord.m_nSourcePelsX, &rRecord.m_nSourcePelsY,
          &rRecord.m_nTargetPelsX, &rRecord.m_nTargetPelsY})
        *pNumber = static_cast<std::uint32_t>(*pNumber * dScale);
    for (auto* pList : {&rRecord.m_aTarget, &rRecord.m_aActual[0]})
        for (unsigned long i = 0; i < pList->Entries(); ++i)
            (*pList)[i] = ClVector((*pList)[i].x * dScale, (*pList)[i].y * dScale);
}

/// One finger at one resolution, with the warp of that resolution.
struct StFinger {
    explicit StFinger(int nFrameWidth) {
        const sim::ClRaster Raw = sim::CaptureKind(Scanner(), sim::EKind::eLoop, 1).m_Raw;
        ClImage Capture(Raw.m_nWidth, Raw.m_nHeight, 1, Raw.m_nPelsX, Raw.m_nPelsY);
        for (int y = 0; y < Raw.m_nHeight; ++y)
            std::memcpy(Capture.LineData(y), Raw.Line(y), static_cast<std::size_t>(Raw.m_nWidth));
        FillRecord(nFrameWidth, m_Record);
        ClIpRescale().ApplyParamSize(Capture, m_Capture, static_cast<int>(m_Record.m_nSourceWidth),
                                     static_cast<int>(m_Record.m_nSourceHeight),
                                     ClIpRescale::ModeBiLinear);
        m_Warp.m_pData = &m_Record;
        m_Warp.m_pInImage = &m_Capture;
        m_Warp.m_pOutImage = &m_Frame;
        m_Warp.Apply();
    }

    ClCalibrateGeometricData m_Record;
    ClIpCalibrateGeometricBicubic m_Warp;
    ClImage m_Capture;
    ClImage m_Frame; ///< the capture after the warp
};

StFinger& Finger(int nFrameWidth) {
    static std::map<int, StFinger> aFingers;
    return aFingers.try_emplace(nFrameWidth, nFrameWidth).first->second;
}

using Step = void (*)(StFinger& rFinger, ClImage& rOut);

void Warp(StFinger& rFinger, ClImage& rOut) {
    rFinger.m_Warp.m_pOutImage = &rOut;
    rFinger.m_Warp.Apply();
}

void Sharpen(StFinger& rFinger, ClImage& rOut) {
    ClIpUnsharpMasking Unsharp;
    Unsharp.m_dGaussSigma = 0.9;
    Unsharp.m_nMode = ClIpFilterBase::ModeY;
    Unsharp.ApplyParam(rFinger.m_Capture, rOut, 0);
}

void Contamination(StFinger& rFinger, ClImage& rOut) {
    ClIpQK7FunctionalityCheck().ApplyParam(rFinger.m_Capture, rOut, ClImage::eTypeDefault);
}

void DynamicCalibration(StFinger& rFinger, ClImage& rOut) {
    ClIpQK7DynamicCalibration30 Dynamic;
    Dynamic.m_pInImage = &rFinger.m_Frame;
    Dynamic.m_pOutImage = &rOut;
    Dynamic.Apply();
}

template <int nWidth>
void Mean(StFinger& rFinger, ClImage& rOut) {
    ClIpFilterMid().ApplyParam(rFinger.m_Frame, rOut, nWidth);
}

void Maximum(StFinger& rFinger, ClImage& rOut) {
    ClIpFilterMax().ApplyParam(rFinger.m_Frame, rOut, 23, ClIpFilterBase::ModeXY);
}

void Median(StFinger& rFinger, ClImage& rOut) {
    ClIpFilterMedian().ApplyParam(rFinger.m_Frame, rOut, 3);
}

void Gauss(StFinger& rFinger, ClImage& rOut) {
    ClIpFilterGauss().ApplyParam(rFinger.m_Frame, rOut, 1.5, 0);
}

void CountValues(StFinger& rFinger, ClImage&) {
    ClHistogram Histogram;
    Histogram.Create(rFinger.m_Frame);
    benchmark::DoNotOptimize(Histogram);
}

void Threshold(StFinger& rFinger, ClImage& rOut) {
    ClIpBinarizeGlobal().ApplyParam(rFinger.m_Frame, rOut, 128.0);
}

void GlobalStretch(StFinger& rFinger, ClImage& rOut) {
    ClIpStretchRangeGlobal Stretch;
    Stretch.m_nOldRangeFrom = 20;
    Stretch.m_nOldRangeTo = 230;
    Stretch.ApplyParam(rFinger.m_Frame, rOut);
}

void LocalStretch(StFinger& rFinger, ClImage& rOut) {
    ClIpStretchRangeLocal Stretch;
    Stretch.m_nFilterWidth = 23;
    Stretch.m_nSubSampleRate = 1;
    Stretch.m_bUseMaxSmoothing = true;
    Stretch.ApplyParam(rFinger.m_Frame, rOut);
}

void LocalThreshold(StFinger& rFinger, ClImage& rOut) {
    ClIpBinarizeLocal2().ApplyParam(rFinger.m_Frame, rOut, 42, 87, 10);
}

struct StStep {
    const char* m_szName;
    Step m_Step;
    ClImage StFinger::*m_pIn; ///< whose pixels the time is told for
};

constexpr StStep caSteps[] = {
    {"Sharpen", Sharpen, &StFinger::m_Capture},
    {"Warp", Warp, &StFinger::m_Frame},
    {"DynamicCalibration", DynamicCalibration, &StFinger::m_Frame},
    {"Contamination", Contamination, &StFinger::m_Capture},
    {"Mean23", Mean<23>, &StFinger::m_Frame},
    {"Mean53", Mean<53>, &StFinger::m_Frame},
    {"Maximum23", Maximum, &StFinger::m_Frame},
    {"Median3", Median, &StFinger::m_Frame},
    {"Gauss1.5", Gauss, &StFinger::m_Frame},
    {"Histogram", CountValues, &StFinger::m_Frame},
    {"Threshold", Threshold, &StFinger::m_Frame},
    {"GlobalStretch", GlobalStretch, &StFinger::m_Frame},
    {"LocalStretch23", LocalStretch, &StFinger::m_Frame},
    {"LocalThreshold42x87", LocalThreshold, &StFinger::m_Frame},
};

void RunStep(benchmark::State& state, const StStep& Chosen, EInstructionLevel eLevel,
             int nFrameWidth) {
    StFinger& rFinger = Finger(nFrameWidth);
    LimitInstructionLevel(eLevel);
    ClImage Out;
    for (auto _ : state)
        Chosen.m_Step(rFinger, Out);
    LimitInstructionLevel(HighestInstructionLevel());
    const ClImage& In = rFinger.*Chosen.m_pIn;
    const double dPixels = static_cast<double>(In.Width()) * In.Height();
    state.counters["per_pixel"] = benchmark::Counter(
        dPixels, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

int RegisterAll() {
    for (const StStep& Chosen : caSteps)
        for (const EInstructionLevel eLevel :
             {EInstructionLevel::Baseline, EInstructionLevel::V3, EInstructionLevel::V4}) {
            if (eLevel > HighestInstructionLevel())
                continue;
            for (const int nFrameWidth : {cnScannerWidth / 2, cnScannerWidth, 2 * cnScannerWidth}) {
                const std::string sName = std::string(Chosen.m_szName) +
                                          "/level:" + std::to_string(static_cast<int>(eLevel)) +
                                          "/width:" + std::to_string(nFrameWidth);
                benchmark::RegisterBenchmark(sName.c_str(), RunStep, Chosen, eLevel, nFrameWidth)
                    ->Unit(benchmark::kMicrosecond);
            }
        }
    return 0;
}

[[maybe_unused]] const int g_nRegistered = RegisterAll();

} // namespace
