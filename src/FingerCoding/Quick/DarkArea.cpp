#include "FingerCoding/Quick/DarkArea.h"

#include "FingerCoding/Quick/Filters.h"
#include "ImageProcessing/Kernels/Arithmetic.h"
#include "Tools/InstructionLevel.h"

#include <cstring>

namespace Quick {

namespace {

using Kernels::EExtreme;

/// out = 255 - in; samples of neighbouring lines, padding included, are taken in one go.
struct StInvert {
    static void Run(const unsigned char* __restrict pIn, long nSamples,
                    unsigned char* __restrict pOut) {
        for (long i = 0; i < nSamples; ++i)
            pOut[i] = static_cast<unsigned char>(255 - pIn[i]);
    }
};

void CopyWithBlackFrame(const StPlane& In, long nBorder, const StPlane& Out) {
    const auto nSide = static_cast<std::size_t>(std::min(In.m_nWidth, nBorder));
    const auto nWidth = static_cast<std::size_t>(In.m_nWidth);
    for (long y = 0; y < In.m_nHeight; ++y) {
        unsigned char* pOut = Out.Line(y);
        if (y < nBorder || y >= In.m_nHeight - nBorder) {
            std::memset(pOut, 0, nWidth);
            continue;
        }
        std::memcpy(pOut, In.Line(y), nWidth);
        std::memset(pOut, 0, nSide);
        std::memset(pOut + nWidth - nSide, 0, nSide);
    }
}

/// min(255, In + what the smoothed background lacks to white), in B.
void FixIllumination(const StPlane& In, const ClIpBrightnessMask& Settings,
                     const StDarkPlanes& Planes, Kernels::ClScratch& rScratch) {
    CopyWithBlackFrame(In, Settings.m_nImageBorderWidth, Planes.m_A);
    Extreme(EExtreme::eMax, Planes.m_A, Settings.FilterWidth(Settings.m_dIlFixMaxWidthFactor) / 2,
            Planes.m_B, rScratch);
    for (long y = 0; y < In.m_nHeight; ++y)
        RunAtLevel<StInvert>(Planes.m_B.Line(y), In.m_nWidth, Planes.m_A.Line(y));
    Mean(Planes.m_A, Settings.FilterWidth(Settings.m_dIlFixLowPassWidthFactor) / 2, Planes.m_B,
         rScratch);
    Kernels::AddCut(PairOf(In, Planes.m_B, Planes.m_B));
}

/// B stretched without noise, its ridges grown into the valleys, and smoothed.
void SpreadRidges(const ClIpBrightnessMask& Settings, ClIpStretchRangeGlobal& rTable,
                  const StDarkPlanes& Planes, Kernels::ClScratch& rScratch) {
    HistogramOf(Planes.m_B)
        .GetNoiseFreeRange(Settings.m_dDarkNoisePart, Settings.m_dBrightNoisePart, rTable.m_nFrom,
                           rTable.m_nTo);
    rTable.m_nFrom = std::min(rTable.m_nFrom, rTable.m_nTo);
    rTable.CalculateLuT();
    LookUp(Planes.m_B, rTable.m_aLuT, Planes.m_B);
    Extreme(EExtreme::eMin, Planes.m_B, Settings.FilterWidth(Settings.m_dDilatWidthFactor) / 2,
            Planes.m_A, rScratch);
    Mean(Planes.m_A, Settings.FilterWidth(Settings.m_dLowPassWidthFactor) / 2, Planes.m_Smooth,
         rScratch);
}

} // namespace

long SmoothDarkArea(const StPlane& In, int nPelsX, const ClIpBrightnessMask& Settings,
                    ClIpStretchRangeGlobal& rTable, const StDarkPlanes& Planes,
                    Kernels::ClScratch& rScratch) {
    FixIllumination(In, Settings, Planes, rScratch);
    SpreadRidges(Settings, rTable, Planes, rScratch);
    return Settings.FindThreshold(HistogramOf(Planes.m_Smooth), nPelsX);
}

} // namespace Quick
