// Measures of a finger and of an empty platen, from pictures of any size and content: each is in
// its range, or not there.

#include "Harness.h"

#include "measures/Finger.h"
#include "measures/Platen.h"

#include <cmath>

namespace {

using measures::ClGreyView;
using measures::Measure;

Fuzz::ClMilestone s_Widths("ridges and valleys are measured");
Fuzz::ClMilestone s_Light("the light that ridges take is measured");
Fuzz::ClMilestone s_NoFinger("a mask is without finger");
Fuzz::ClMilestone s_Platen("a platen is measured");
Fuzz::ClMilestone s_Noise("noise is measured");

constexpr double cdMmPerInch = 25.4;
constexpr double cdProfile = 1.6; ///< mm, in whole samples

/// Whose last line ends where the memory ends.
class ClPicture {
public:
    ClPicture(int nWidth, int nHeight, int nPadding)
        : m_View{nullptr, nWidth, nHeight, nWidth + nPadding},
          m_Samples(std::string(static_cast<std::size_t>(nHeight) *
                                        static_cast<std::size_t>(nWidth + nPadding) -
                                    static_cast<std::size_t>(nPadding),
                                '\0')) {
        m_View.m_pSamples = m_Samples.Data();
    }
    const ClGreyView& View() const { return m_View; }
    template <class Grey>
    void Fill(Grey grey) {
        for (int y = 0; y < m_View.m_nHeight; ++y)
            for (int x = 0; x < m_View.m_nWidth; ++x)
                m_Samples.Data()[y * m_View.m_nStride + x] =
                    static_cast<unsigned char>(std::clamp(static_cast<int>(grey(x, y)), 0, 255));
    }

private:
    ClGreyView m_View;
    Fuzz::ClBlock m_Samples;
};

/// A wave of any direction, light that falls off, and the bytes themselves.
void Paint(const std::string& Bytes, int nContent, ClPicture& rPicture) {
    Fuzz::ClBytes Settings(reinterpret_cast<const std::uint8_t*>(Bytes.data()), Bytes.size());
    const double dX = Settings.NextSigned() / 64.0;
    const double dY = Settings.NextSigned() / 64.0;
    const double dFall = Settings.NextSigned() / 64.0;
    const double dAmplitude = Settings.Next() / 2.0;
    const int nNoise = 1 + Settings.Next();
    const auto byte = [&](int x, int y) {
        const auto n = static_cast<std::size_t>(31 * y + x);
        return Bytes.empty() ? 0 : static_cast<unsigned char>(Bytes[n % Bytes.size()]);
    };
    rPicture.Fill([&](int x, int y) {
        return nContent == 0 ? byte(x, y)
                             : 128.0 + dAmplitude * std::sin(dX * x + dY * y) + dFall * x +
                                   byte(x, y) % nNoise - nNoise / 2.0;
    });
}

void PaintMask(int nKind, int nBorder, ClPicture& rMask) {
    const ClGreyView& View = rMask.View();
    rMask.Fill([&](int x, int y) {
        const bool bBorder =
            std::min({x, y, View.m_nWidth - 1 - x, View.m_nHeight - 1 - y}) < nBorder;
        return nKind == 0 ? (bBorder ? 255 : 0) : nKind == 1 ? 255 : 37 * (x ^ y);
    });
}

void RequireRange(const Measure& Value, double dFrom, double dTo, const char* szPromise) {
    Fuzz::Require(!Value || (*Value >= dFrom && *Value <= dTo), szPromise);
}

void CheckRidges(const measures::ClRidgeMeasures& Ridges, double dMm) {
    RequireRange(Ridges.m_dContrast, 20.0 / 255.0, 1.0, "contrast");
    RequireRange(Ridges.m_dRidgeWidth, 0.0, cdProfile + dMm, "a ridge fits into a profile");
    RequireRange(Ridges.m_dValleyWidth, 0.0, cdProfile + dMm, "a valley fits into a profile");
    RequireRange(Ridges.m_dRidgeShare, 0.0, 1.0, "ridge share");
    RequireRange(Ridges.m_dRidgeSpread, 0.0, HUGE_VAL, "ridge spread");
    RequireRange(Ridges.m_dValleySpread, 0.0, HUGE_VAL, "valley spread");
    RequireRange(Ridges.m_dBrokenness, 0.0, 1.0, "brokenness");
    Fuzz::Require(!Ridges.m_dPressure || std::isfinite(*Ridges.m_dPressure), "pressure");
    Fuzz::Require(Ridges.m_dContrast.has_value() == (Ridges.m_nProfiles > 0),
                  "profiles have a contrast");
    if (Ridges.m_dRidgeWidth)
        s_Widths.Reach();
}

void CheckFinger(const ClGreyView& Image, const ClGreyView& Mask, double dDpi) {
    const measures::ClFingerMeasures Finger = measures::MeasureFinger(Image, Mask, dDpi);
    const double dMm = cdMmPerInch / dDpi;
    const double dWidth = Image.m_nWidth * dMm;
    const double dHeight = Image.m_nHeight * dMm;
    RequireRange(Finger.m_dArea, 0.0, 1.000001 * dWidth * dHeight, "a finger lies in its image");
    RequireRange(Finger.m_dOffsetX, -0.5 * dWidth, 0.5 * dWidth, "its middle lies in the image");
    RequireRange(Finger.m_dOffsetY, -0.5 * dHeight, 0.5 * dHeight, "its middle lies in the image");
    RequireRange(Finger.m_dSaturated, 0.0, 1.0, "share of saturated samples");
    RequireRange(Finger.m_dDark, 0.0, 1.0, "share of dark samples");
    CheckRidges(Finger.m_Ridges, dMm);
    if (!Finger.m_dSaturated)
        s_NoFinger.Reach();
    const Measure Light = measures::LightTaken(Image, Mask);
    RequireRange(Light, 0.0, 1.0, "share of the light");
    if (Light)
        s_Light.Reach();
}

void CheckPlaten(const ClGreyView& Image) {
    const auto Platen = measures::MeasurePlaten(Image);
    if (!Platen)
        return;
    s_Platen.Reach();
    RequireRange(Platen->m_dBrightness, 0.0, 255.0, "brightness");
    RequireRange(Platen->m_dUniformity, 0.0, 1.0, "uniformity");
    RequireRange(Platen->m_dSaturated, 0.0, 1.0, "share of saturated samples");
    RequireRange(Platen->m_dDark, 0.0, 1.0, "share of dark samples");
    RequireRange(Platen->m_dSoiled, 0.0, 1.0, "share of soiled samples");
    if (!Platen->m_Noise)
        return;
    s_Noise.Reach();
    RequireRange(Platen->m_Noise->m_dPixel, 0.0, 255.0, "noise of pixels");
    RequireRange(Platen->m_Noise->m_dLine, 0.0, 255.0, "noise of lines");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    Fuzz::ClBytes Bytes(pData, nSize);
    const int nWidth = 1 + Bytes.Next();
    const int nHeight = 1 + Bytes.Next();
    const int nPadding = Bytes.Below(4);
    const double dDpi = 8.0 * Bytes.Next() + 0.25 * Bytes.Next() + 1.0;
    const int nContent = Bytes.Below(4);
    const int nMask = Bytes.Below(3);
    const int nBorder = Bytes.Below(32);
    ClPicture Image(nWidth, nHeight, nPadding);
    ClPicture Mask(nWidth, nHeight, 0);
    Paint(Bytes.Rest(), nContent, Image);
    PaintMask(nMask, nBorder, Mask);
    CheckFinger(Image.View(), Mask.View(), dDpi);
    CheckPlaten(Image.View());
    return 0;
}
