// The dynamic calibration and the functionality check on simulated captures as they come out of the
// warp: the quick form beside the plain sequence of operators, and at each instruction level.

#include "bench/FingerRun.h"

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/IpQK7FunctionalityCheck.h"
#include "Tools/ClassCallProfile.h"
#include "Tools/FpImage.h"
#include "Tools/InstructionLevel.h"

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {

using sim::EKind;

void ToImage(const sim::ClRaster& Raster, ClImage& rImage) {
    rImage.NewWithType(ClImage::eUInt8, Raster.m_nWidth, Raster.m_nHeight, 1, Raster.m_nPelsX,
                       Raster.m_nPelsY);
    for (int y = 0; y < Raster.m_nHeight; ++y)
        std::copy_n(Raster.Line(y), Raster.m_nWidth, rImage.LineData(y));
}

/// A capture as it comes out of the warp.
void Warp(EKind eKind, ClImage& rImage) {
    static const bench::ClFingerScanner Finger{sim::ClScanner(900)};
    ToImage(Finger.Warped(sim::CaptureKind(Finger.Scanner(), eKind, 1).m_Raw), rImage);
}

void Calibrate(benchmark::State& state, EKind eKind, bool bMaskOnly = false) {
    ClImage Capture;
    ClImage Out;
    ClImage Mask;
    Warp(eKind, Capture);
    ClIpQK7DynamicCalibration30 Calibration;
    Calibration.m_pInImage = &Capture;
    Calibration.m_pOutImage = &Out;
    Calibration.m_pOutMaskImage = bMaskOnly ? &Mask : nullptr;
    Calibration.m_bMaskOnly = bMaskOnly;
    for (auto _ : state)
        Calibration.Apply();
}

void DynamicCalibration(benchmark::State& state, EKind eKind) {
    Calibrate(state, eKind);
}
BENCHMARK_CAPTURE(DynamicCalibration, Loop, EKind::eLoop)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibration, Dry, EKind::eDry)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibration, Wet, EKind::eWet)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibration, TwoFingers, EKind::eTwoFingers)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibration, Empty, EKind::eEmpty)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibration, Dirty, EKind::eDirty)->Unit(benchmark::kMicrosecond);

void DynamicCalibrationMaskOnly(benchmark::State& state) {
    Calibrate(state, EKind::eLoop, true);
}
BENCHMARK(DynamicCalibrationMaskOnly)->Unit(benchmark::kMicrosecond);

void DynamicCalibrationAtLevel(benchmark::State& state, EInstructionLevel eLevel) {
    LimitInstructionLevel(eLevel);
    Calibrate(state, EKind::eLoop);
    LimitInstructionLevel(HighestInstructionLevel());
}
BENCHMARK_CAPTURE(DynamicCalibrationAtLevel, Baseline, EInstructionLevel::Baseline)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibrationAtLevel, V3, EInstructionLevel::V3)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(DynamicCalibrationAtLevel, V4, EInstructionLevel::V4)
    ->Unit(benchmark::kMicrosecond);

/// Somebody who counts the steps makes all of them run.
void DynamicCalibrationByOperators(benchmark::State& state) {
    ClClassCallProfile Profile;
    g_pClassCallProfile = &Profile;
    Calibrate(state, EKind::eLoop);
    g_pClassCallProfile = nullptr;
}
BENCHMARK(DynamicCalibrationByOperators)->Unit(benchmark::kMicrosecond);

void FunctionalityCheck(benchmark::State& state) {
    ClImage Capture;
    ClImage Out;
    Warp(EKind::eEmpty, Capture);
    ClIpQK7FunctionalityCheck Check;
    Check.m_pInImage = &Capture;
    Check.m_pOutImage = &Out;
    for (auto _ : state)
        Check.Apply();
}
BENCHMARK(FunctionalityCheck)->Unit(benchmark::kMicrosecond);

} // namespace
