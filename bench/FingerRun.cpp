#include "bench/FingerRun.h"

#include "sim/BitmapBlock.h"
#include "sim/Record.h"

#include <TessarinCalibrateSDK.h>

#include <algorithm>
#include <stdexcept>
#include <string>

namespace bench {

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t cnPixelsAt = 40 + 1024; ///< header and palette of an 8-bit block

void Require(long nStatus) {
    if (nStatus != QMT_SUCCESS)
        throw std::runtime_error(std::to_string(nStatus) + " " +
                                 CalibrateGetErrorDescription(nStatus));
}

bool IsWhite(const sim::ClRaster& Image) {
    return std::all_of(Image.m_aPixels.begin(), Image.m_aPixels.end(),
                       [](unsigned char n) { return n == 255; });
}

/// Minimum or maximum along one axis, over a window of 15 that is cut off at the ends.
template <class TpChoose>
sim::ClRaster Extreme(const sim::ClRaster& In, bool bAcross, TpChoose Choose) {
    constexpr int cnReach = 7; // three quarters of a ridge distance
    sim::ClRaster Out = In;
    for (int y = 0; y < In.m_nHeight; ++y)
        for (int x = 0; x < In.m_nWidth; ++x)
            for (int d = -cnReach; d <= cnReach; ++d) {
                const int nX = std::clamp(bAcross ? x + d : x, 0, In.m_nWidth - 1);
                const int nY = std::clamp(bAcross ? y : y + d, 0, In.m_nHeight - 1);
                Out.At(x, y) = Choose(Out.At(x, y), In.At(nX, nY));
            }
    return Out;
}

/// Ridges grow together over the valleys between them, and what is left shrinks back.
sim::ClRaster Closed(const sim::ClRaster& Area) {
    const auto Darker = [](unsigned char a, unsigned char b) { return std::min(a, b); };
    const auto Brighter = [](unsigned char a, unsigned char b) { return std::max(a, b); };
    const sim::ClRaster Grown = Extreme(Extreme(Area, true, Darker), false, Darker);
    return Extreme(Extreme(Grown, true, Brighter), false, Brighter);
}

/// The grey value half way between the platen and the ridges.
int HalfDark(const sim::ClCapture& Capture) {
    Bytes aGreys;
    for (std::size_t n = 0; n < Capture.m_Ideal.m_aPixels.size(); ++n)
        if (Capture.m_FingerArea.m_aPixels[n] == 0)
            aGreys.push_back(Capture.m_Ideal.m_aPixels[n]);
    const auto itTenth = aGreys.begin() + static_cast<std::ptrdiff_t>(aGreys.size() / 10);
    std::nth_element(aGreys.begin(), itTenth, aGreys.end());
    const int nPlaten =
        *std::max_element(Capture.m_Ideal.m_aPixels.begin(), Capture.m_Ideal.m_aPixels.end());
    return (nPlaten + *itTenth) / 2;
}

} // namespace

bool ClFingerRun::IsTaken() const {
    return !IsWhite(m_Output);
}

bool ClFingerRun::HasMask() const {
    return !IsWhite(m_Mask);
}

ClFingerScanner::ClFingerScanner(const sim::ClScanner& Scanner)
    : m_Scanner(Scanner), m_pHandle(CalibrateCreate()) {
    Bytes aRecord = sim::RecordBlock(Scanner);
    const long nStatus = CalibrateSetData(m_pHandle, aRecord.data(), aRecord.size());
    if (nStatus != QMT_SUCCESS)
        CalibrateDelete(&m_pHandle);
    Require(nStatus);
}

ClFingerScanner::~ClFingerScanner() {
    CalibrateDelete(&m_pHandle);
}

void ClFingerScanner::Set(const char* szOption) const {
    Require(CalibrateSetOption(m_pHandle, szOption));
}

sim::ClRaster ClFingerScanner::Calibrated(const sim::ClRaster& Raw) const {
    Bytes aCapture = sim::BitmapBlock(Raw);
    sim::ClRaster Result = sim::ClScanner::FrameRaster(0);
    Bytes aOut(cnPixelsAt + Result.m_aPixels.size());
    unsigned long nSize = aOut.size();
    Require(Calibrate(m_pHandle, aCapture.data(), aCapture.size(), aOut.data(), &nSize));
    if (nSize != aOut.size())
        throw std::runtime_error("the corrected image has another size than the target frame");
    std::copy(aOut.begin() + cnPixelsAt, aOut.end(), Result.m_aPixels.begin());
    return Result;
}

ClFingerRun ClFingerScanner::Run(const sim::ClRaster& Raw, bool bSensitive) const {
    ClFingerRun Result;
    Set(bSensitive ? "SensitiveMode=true" : "SensitiveMode=false");
    Set("MaskIsOutput=true");
    Result.m_Mask = Calibrated(Raw);
    Set("MaskIsOutput=false");
    Result.m_Output = Calibrated(Raw);
    Require(GetCalibrationWarningLevels(m_pHandle, &Result.m_dDirt, &Result.m_dDry));
    return Result;
}

sim::ClRaster ClFingerScanner::Warped(const sim::ClRaster& Raw) const {
    Set("DynamicFingerMask=false");
    const sim::ClRaster Result = Calibrated(Raw);
    Set("DynamicFingerMask=true");
    return Result;
}

double ClFingerScanner::Contamination(const sim::ClRaster& Raw) const {
    Bytes aCapture = sim::BitmapBlock(Raw);
    double dLevel = 0.0;
    Require(ContaminationDetection(m_pHandle, aCapture.data(), aCapture.size(), &dLevel));
    return dLevel;
}

double OverlapOf(const sim::ClRaster& Mask, const sim::ClRaster& Area, int nThreshold) {
    int nBoth = 0;
    int nEither = 0;
    for (std::size_t n = 0; n < Area.m_aPixels.size(); ++n) {
        const bool bMask = Mask.m_aPixels[n] < nThreshold;
        const bool bArea = Area.m_aPixels[n] == 0;
        nBoth += bMask && bArea;
        nEither += bMask || bArea;
    }
    return static_cast<double>(nBoth) / nEither;
}

bool HasFinger(const sim::ClCapture& Capture) {
    return !IsWhite(Capture.m_FingerArea);
}

sim::ClRaster PrintArea(const sim::ClCapture& Capture) {
    if (!HasFinger(Capture))
        throw std::runtime_error("no finger on the platen");
    sim::ClRaster Area = Capture.m_FingerArea;
    const int nHalfDark = HalfDark(Capture);
    for (std::size_t n = 0; n < Area.m_aPixels.size(); ++n)
        if (Capture.m_Ideal.m_aPixels[n] > nHalfDark)
            Area.m_aPixels[n] = 255;
    return Closed(Area);
}

} // namespace bench
