// A dot differs from the mean of a window a little wider than a pitch, which evens out slow changes
// of the light: the window always holds about one dot's worth of dots.

#include "Calibrate/DotLocation.h"

#include "ImageProcessing/IpBinarizeLocal2.h"
#include "ImageProcessing/IpInvert.h"
#include "ImageProcessing/PixelTypeDispatch.h"
#include "Tools/ThrowIfFailed.h"

namespace {

/// Side of the threshold's window in pitches, per millimetre and dot per inch: 1.1 / 25.4.
constexpr double cdWindowFactor = 0.043307086614173235;

long WindowSide(const StDotSettings& rSettings, double dDpi) {
    return SampleFromDouble<long>(cdWindowFactor * rSettings.m_dPitch * dDpi);
}

/// Dots become 0, which is what regions are made of, and all else 255.
void Threshold(ClImage& rImage, const StDotSettings& rSettings, ClImage& rBinary) {
    const bool bBright = rSettings.m_bBrightDots;
    const double dOffset = rSettings.m_dBinarizeOffset;
    ClIpBinarizeLocal2 Binarize;
    Binarize.m_nAboveValue = bBright ? 0 : 255;
    Binarize.m_nBelowValue = bBright ? 255 : 0;
    ThrowIfFailed(Binarize.ApplyParam(rImage, rBinary,
                                      WindowSide(rSettings, rSettings.m_dSourceDpiX),
                                      WindowSide(rSettings, rSettings.m_dSourceDpiY),
                                      SampleFromDouble<long>(bBright ? -dOffset : dOffset)),
                  VEK_HERE);
}

} // namespace

void DotLocation::Measure(ClImage& rImage, const StDotSettings& rSettings, ClImage* pLabels,
                          ClIpConnectedComponent2::ComponentsArray_t& rComponents) {
    ClImage Binary;
    Threshold(rImage, rSettings, Binary);
    ClImage Inverted;
    if (rSettings.m_bBrightDots)
        ThrowIfFailed(ClIpInvert().ApplyParam(rImage, Inverted), VEK_HERE);
    ClIpConnectedComponent2 Components;
    Components.m_pInImage = &Binary;
    Components.m_pInImageGrey = rSettings.m_bBrightDots ? &Inverted : &rImage;
    Components.m_pOutImage = pLabels;
    Components.m_pComponents = &rComponents;
    ThrowIfFailed(Components.Apply(), VEK_HERE);
}
