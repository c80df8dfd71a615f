#pragma once

/// `ClIpBrightnessMask`, the dark area of a capture: a finger presses dark ridges onto a bright
/// platen. Slow changes of the light are removed first, then the ridges are spread over the
/// valleys, so that the finger is one dark area, and a threshold parts it from the background.
///
/// A fixed threshold fails with the light, and one by the valley between two peaks of the histogram
/// fails where the finger is faint and makes no peak. What every capture has is the background: the
/// threshold is the foot of its peak, the first grey value v, from a lowest one on, with
///
///     minimum area < area not brighter than v    and    slope < first derivative at v
///
/// or a highest grey value, where none is found before.
///
/// Widths of filters are multiples of the ridge distance, width(f) = trunc(ridge distance * f) | 1.
/// In order: frame black, F = maximum over width(IlFixMax), I = mean over width(IlFixLowPass) of
/// 255 - F, min(255, In + I); global stretch without noise; minimum over width(Dilat); mean over
/// width(LowPass); threshold.

#include "ImageProcessing/Mask2.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <cstdint>

class ClHistogram;

class ClIpBrightnessMask : public ClProcessorBase {
public:
    ClIpBrightnessMask();
    ClIpBrightnessMask(const ClIpBrightnessMask&) = delete; // points into itself
    ClIpBrightnessMask& operator=(const ClIpBrightnessMask&) = delete;

    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterContainer& Container) override;

    /// The runs of the mask become the dark area, and its bounding box a further step; blobs below
    /// 1000 pixels are dropped, holes closed. An image without dark area leaves no runs. The
    /// probability image gets the smoothed image, moved so that the threshold lies at 128.
    ///
    /// Returns 0. Throws, in this order, "m_pInImage is not set" (-701) for a missing input and for
    /// a missing place of the ridge distance, "*m_pdRidgeDist is out of range" (-35),
    /// "m_ppInOutMask is not set" and "*m_ppInOutMask is not set" (-701); what the sub-processors
    /// throw, such as -101 for an input that is not one plane of `eUInt8`, and as `ClExTessarin`
    /// their results other than 0, -10, -33, -35, -37 and -44, after which the work goes on; -13
    /// from the mask for an input without resolution; `ClExBadAlloc`
    /// (-102). The input is not changed.
    long Process() override;

    /// Odd: trunc(ridge distance * dRidgeDistances) | 1
    long FilterWidth(double dRidgeDistances) const;
    /// The threshold for an image of this histogram and resolution.
    long FindThreshold(const ClHistogram& Histogram, int nPelsX) const;

    ClImage* m_pInImage = nullptr;           ///< 8 bits, one plane; borrowed, as all objects
    ClImage* m_pOptOutProbImage = nullptr;   ///< 8 bits: dark below 128, bright above; may be null
    double m_dRidgeDist = 0.0;               ///< pixels
    double* m_pdRidgeDist = &m_dRidgeDist;   ///< where the ridge distance is read
    ClMask2* m_pInOutMask = nullptr;         ///< gets the region; keeps its steps
    ClMask2** m_ppInOutMask = &m_pInOutMask; ///< where the mask is found
    bool m_bIlFix = true;                    ///< remove slow changes of the light
    long m_nImageBorderWidth = 4;            ///< pixels: the sensor's edge is bright
    double m_dIlFixMaxWidthFactor = 1.0;     ///< times the ridge distance, as all factors
    double m_dIlFixLowPassWidthFactor = 0.5;
    double m_dDarkNoisePart = 0.1; ///< shares of 1, set aside by the stretch
    double m_dBrightNoisePart = 0.05;
    double m_dDilatWidthFactor = 0.66;
    double m_dLowPassWidthFactor = 1.0;
    unsigned char m_nDerivationWidth = 10; ///< grey values to either side
    double m_dDerivativeThresh = 15.0;     ///< pixels per grey value
    double m_dMinAreaMM2 = 300.0;          ///< square millimetres
    unsigned char m_nMinBinarizeThreshold = 100;
    unsigned char m_nMaxBinarizeThreshold = 200;

protected:
    /// `Out` becomes `In` with a frame of `nValue`, except that the right end of a line that is not
    /// painted whole is 0.
    static void CopyWithFrame(const ClImage& In, ClImage& Out, long nWidth, unsigned char nValue);

private:
    void CheckParameters() const;
    void FixIllumination(ClImage& Out);
    void SpreadRidges(ClImage& Image);
    long SearchFoot(const ClHistogram& Histogram, long nLow, long nHigh,
                    std::int64_t nMinPixels) const;
    void BuildMask(const ClImage& Image, long nThreshold);
};
