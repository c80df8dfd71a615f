#include "apps/qk7/Measures.h"

#include "apps/qk7/BitmapInfo.h"

#include <cstdio>

namespace qk7 {

namespace {

using Json = nlohmann::ordered_json;
using measures::ClGreyView;
using measures::Measure;

constexpr std::size_t cnPalette = 40; ///< where it begins
constexpr std::size_t cnPixels = cnPalette + 1024;
constexpr double cdInchesPerMetre = 1.0 / 0.0254;

/// Entry n is the grey n.
bool HasGreyPalette(const Bytes& Block) {
    for (std::size_t n = 0; n < 256; ++n)
        for (std::size_t nChannel = 0; nChannel < 3; ++nChannel)
            if (Block[cnPalette + 4 * n + nChannel] != n)
                return false;
    return true;
}

bool IsPlainGrey(const StBitmapInfo& Info) {
    return Info.m_nBits == 8 && Info.m_nCompression == 0 &&
           (Info.m_nColours == 0 || Info.m_nColours == 256) && Info.m_nImpliedBytes &&
           *Info.m_nImpliedBytes <= Info.m_nBlockBytes;
}

/// No samples where the block is anything but plain grey.
ClGreyView ViewOf(const Bytes& Block) {
    const StBitmapInfo info = ReadBitmapInfo(Block);
    if (!IsPlainGrey(info) || !HasGreyPalette(Block))
        return {};
    return {&Block[cnPixels], info.m_nWidth, info.m_nHeight, (info.m_nWidth + 3) / 4 * 4};
}

/// Dots per inch; 0, which measures no lengths, where the axes differ.
double ResolutionOf(const Bytes& Block) {
    const StBitmapInfo info = ReadBitmapInfo(Block);
    return info.m_nPelsX == info.m_nPelsY ? info.m_nPelsX / cdInchesPerMetre : 0.0;
}

bool IsOneSize(const ClGreyView& One, const ClGreyView& Other) {
    return One.m_nWidth == Other.m_nWidth && One.m_nHeight == Other.m_nHeight;
}

/// An option that is on or off, for a while.
class ClOptionMeanwhile {
public:
    ClOptionMeanwhile(ClHandle& rHandle, const std::string& Key, bool bOn)
        : m_rHandle(rHandle), m_Key(Key), m_bBefore(rHandle.IsEnabled(Key)) {
        Set(bOn);
    }
    ClOptionMeanwhile(const ClOptionMeanwhile&) = delete;
    ClOptionMeanwhile& operator=(const ClOptionMeanwhile&) = delete;
    ~ClOptionMeanwhile() {
        try {
            Set(m_bBefore);
        } catch (const std::exception&) {
            // A key and a value that were accepted before are not refused; memory alone can lack,
            // and then the work has failed before.
        }
    }

private:
    void Set(bool bOn) { m_rHandle.SetOption(m_Key + (bOn ? "=true" : "=false")); }

    ClHandle& m_rHandle;
    std::string m_Key;
    bool m_bBefore;
};

Bytes CorrectedAs(ClHandle& rHandle, bool bDynamic, bool bMask, const Bytes& Capture,
                  std::size_t nExpected) {
    const ClOptionMeanwhile dynamic(rHandle, "DynamicFingerMask", bDynamic);
    const ClOptionMeanwhile mask(rHandle, "MaskIsOutput", bMask);
    return rHandle.Calibrate(Capture, nExpected);
}

Json Number(const Measure& Value) {
    return Value ? Json(*Value) : Json(nullptr);
}

/// "0.24 mm", or "not measurable".
std::string Words(const Measure& Value, int nDecimals, const char* szUnit) {
    if (!Value)
        return "not measurable";
    char szText[64];
    std::snprintf(szText, sizeof szText, "%.*f%s", nDecimals, *Value, szUnit);
    return szText;
}

Measure Percent(const Measure& Share) {
    return Share ? Measure(100.0 * *Share) : std::nullopt;
}

Measure PixelNoise(const measures::ClPlatenMeasures& Platen) {
    return Platen.m_Noise ? Measure(Platen.m_Noise->m_dPixel) : std::nullopt;
}

Measure LineNoise(const measures::ClPlatenMeasures& Platen) {
    return Platen.m_Noise ? Measure(Platen.m_Noise->m_dLine) : std::nullopt;
}

std::string PrintText(const measures::ClFingerMeasures& Print) {
    return "  print: area " + Words(Print.m_dArea, 1, " mm2") + ", offset to the right " +
           Words(Print.m_dOffsetX, 2, " mm") + ", down " + Words(Print.m_dOffsetY, 2, " mm") +
           ", saturated " + Words(Percent(Print.m_dSaturated), 1, " percent") + ", dark " +
           Words(Percent(Print.m_dDark), 1, " percent") + "\n";
}

std::string RidgeText(const measures::ClRidgeMeasures& Ridges) {
    return "  ridges: contrast " + Words(Ridges.m_dContrast, 3, "") + ", ridge width " +
           Words(Ridges.m_dRidgeWidth, 3, " mm") + ", valley width " +
           Words(Ridges.m_dValleyWidth, 3, " mm") + ", ridge share " +
           Words(Ridges.m_dRidgeShare, 3, "") + ", spread of ridges " +
           Words(Ridges.m_dRidgeSpread, 3, "") + ", of valleys " +
           Words(Ridges.m_dValleySpread, 3, "") + "\n";
}

} // namespace

StFingerMeasures MeasureFinger(const Bytes& Corrected, const Bytes& Mask, const Bytes& Warped) {
    StFingerMeasures result;
    const ClGreyView mask = ViewOf(Mask);
    const ClGreyView corrected = ViewOf(Corrected);
    if (IsOneSize(corrected, mask))
        result.m_Print = measures::MeasureFinger(corrected, mask, ResolutionOf(Corrected));
    const ClGreyView warped = ViewOf(Warped);
    if (IsOneSize(warped, mask))
        result.m_dLightTaken = measures::LightTaken(warped, mask);
    return result;
}

StFingerMeasures MeasureCapture(ClHandle& rHandle, const Bytes& Capture, std::size_t nExpected) {
    const Bytes warped = CorrectedAs(rHandle, false, false, Capture, nExpected);
    const Bytes mask = CorrectedAs(rHandle, true, true, Capture, nExpected);
    const Bytes corrected = CorrectedAs(rHandle, true, false, Capture, nExpected);
    return MeasureFinger(corrected, mask, warped);
}

std::optional<measures::ClPlatenMeasures> MeasurePlaten(const Bytes& Raw) {
    return measures::MeasurePlaten(ViewOf(Raw));
}

nlohmann::ordered_json FingerJson(const StFingerMeasures& Measures) {
    const measures::ClFingerMeasures& print = Measures.m_Print;
    const measures::ClRidgeMeasures& ridges = print.m_Ridges;
    return {{"area_mm2", Number(print.m_dArea)},
            {"offset_right_mm", Number(print.m_dOffsetX)},
            {"offset_down_mm", Number(print.m_dOffsetY)},
            {"saturated_share", Number(print.m_dSaturated)},
            {"dark_share", Number(print.m_dDark)},
            {"ridge_contrast", Number(ridges.m_dContrast)},
            {"ridge_width_mm", Number(ridges.m_dRidgeWidth)},
            {"valley_width_mm", Number(ridges.m_dValleyWidth)},
            {"ridge_share", Number(ridges.m_dRidgeShare)},
            {"ridge_spread", Number(ridges.m_dRidgeSpread)},
            {"valley_spread", Number(ridges.m_dValleySpread)},
            {"brokenness", Number(ridges.m_dBrokenness)},
            {"pressure", Number(ridges.m_dPressure)},
            {"light_taken", Number(Measures.m_dLightTaken)}};
}

nlohmann::ordered_json PlatenJson(const std::optional<measures::ClPlatenMeasures>& Measures) {
    if (!Measures)
        return nullptr;
    return {{"brightness", Measures->m_dBrightness},     {"uniformity", Measures->m_dUniformity},
            {"saturated_share", Measures->m_dSaturated}, {"dark_share", Measures->m_dDark},
            {"soiled_share", Measures->m_dSoiled},       {"noise", Number(PixelNoise(*Measures))},
            {"line_noise", Number(LineNoise(*Measures))}};
}

std::string FingerText(const StFingerMeasures& Measures) {
    const measures::ClRidgeMeasures& ridges = Measures.m_Print.m_Ridges;
    return PrintText(Measures.m_Print) + RidgeText(ridges) + "  skin: brokenness " +
           Words(ridges.m_dBrokenness, 4, "") + ", pressure " + Words(ridges.m_dPressure, 3, "") +
           ", light taken " + Words(Measures.m_dLightTaken, 3, "") + "\n";
}

std::string PlatenText(const std::optional<measures::ClPlatenMeasures>& Measures) {
    if (!Measures)
        return "  platen: not measurable\n";
    return "  platen: brightness " + Words(Measures->m_dBrightness, 1, "") + ", uniformity " +
           Words(Measures->m_dUniformity, 3, "") + ", soiled " +
           Words(Percent(Measures->m_dSoiled), 3, " percent") + ", saturated " +
           Words(Percent(Measures->m_dSaturated), 1, " percent") + ", dark " +
           Words(Percent(Measures->m_dDark), 1, " percent") + ", noise " +
           Words(PixelNoise(*Measures), 2, "") + ", of lines " +
           Words(LineNoise(*Measures), 2, "") + "\n";
}

} // namespace qk7
