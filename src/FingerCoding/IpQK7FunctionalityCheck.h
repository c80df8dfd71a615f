#pragma once

/// `ClIpQK7FunctionalityCheck` looks for defects of the sensor and for dirt on the optics in a
/// capture of the empty scanner. Light grows slowly over the platen, defects are small: what
/// differs from the mean of its surroundings is stressed, whatever the light. The frame of the
/// sensor, where the optics are always uneven, is faded out, and what remains is summed up.
///
///     level = min(100, 0.5 * (pixels of value 255) + 10 * (mean grey value))
///
/// of the output image. Images are 8-bit and of one plane. A flat capture is not quite even: the
/// fixed-point Gaussian comes out slightly darker than the mean. That is within the noise.

#include "ImageProcessing/Ip1to1Base.h"
#include "ImageProcessing/Kernels/Scratch.h"
#include "Tools/FpImage.h"

class ClIpQK7FunctionalityCheck : public ClIp1to1Base {
public:
    ClIpQK7FunctionalityCheck();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    /// "Noise <noise> Defect <level>", terminated and cut to `nSize` bytes. Returns the length of
    /// the whole text.
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// Leaves the stressed and faded image in `Out` and the level in `m_dOutDefectWarningLevel`.
    /// Returns 0. Throws what the operators throw, such as "Color-image not supported in
    /// ClHistogram::Create." (-101) for several planes and `ClExBadAlloc` (-102); the level is
    /// then that of the run before.
    long DoProcess(ClImage& In, ClImage& Out) override;

    /// What is lighter or darker than its surroundings. With S = min(255, 3 * In), F its Gaussian
    /// of sigma 1.5 and C its mean over 51 by 51 pixels,
    ///
    ///     Out = the stretch of |F - C| from `m_nNoise`..64 to 0..255
    ///
    /// where F - C is limited to -128 to 127.
    void StressDefects(ClImage& In, ClImage& Out);

    /// Out = max(0, In - B), with B the mean over 21 by 21 pixels of the sensor mask: the parts
    /// not to be looked at, and a soft edge around them, lose their values.
    static void FadeSensorBorder(ClImage& In, ClImage& Out);

    /// Paints 255, on 0, the parts of the sensor that are not to be looked at: a frame of 15
    /// pixels, the first 25 lines, and in line height - 100 + i, for i from 0 to 99, the first
    /// and the last trunc(i * 60 / 100) pixels, two triangles in the corners of the last lines.
    /// `Out` becomes an image like `In`; what lies outside a small image is not painted.
    static void BuildSensorMask(const ClImage& In, ClImage& Out);

    /// The level of a stressed and faded image, from 0.0 to 100.0.
    double CalcDefectWarningLevel(const ClImage& Image);

    double m_dOutDefectWarningLevel = 0.0; ///< of the last run
    unsigned char m_nNoise = 5;            ///< grey values; differences up to this are no defects

private:
    bool IsOrdinary(const ClImage& In, const ClImage& Out) const;
    void ProcessQuickly(const ClImage& In, ClImage& Out);

    Kernels::ClScratch m_Memory; ///< kept for the next run
    Kernels::ClScratch m_Scratch;
    ClImage m_Fade; ///< what the frame of the sensor leaves of white, for one size
};
