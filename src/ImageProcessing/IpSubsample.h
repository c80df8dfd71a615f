#pragma once

/// `ClIpSubsample` makes an 8-bit image smaller by a whole factor n, to (w + n - 1) / n by
/// (h + n - 1) / n pixels. A block of n by n pixels, cut at the right and lower border, becomes
///
///     the pixel (x * n, y * n)                          fast, for masks and the like
///     the sum of its pixels divided by their number     mean, truncated toward zero
///
/// The mean is what an image is to be smoothed or compared with afterwards: it has no aliasing.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpSubsample : public ClProcessorBase {
public:
    ClIpSubsample();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "Sub<factor>,Mid=Yes" or "Sub<factor>,Mid=No". Throws "String-Length exceeded available
    /// size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// Resolutions are divided by n. Throws "m_pInImage is not set" and "m_pOutImage is not set"
    /// (-701); returns -35 for an input without pixels and for a factor below 1. Throws "Image
    /// Type is not the assigned type" (-101) for other types than `eUInt8`, and `eInt8` with
    /// means; "Image has more than 4 planes." (-35); `ClExBadAlloc` (-102). In and out may be one
    /// image; the input then changes with success only. Planes are taken one by one.
    long Process() override;

    long ApplyParam(ClImage& rIn, long nFactor, ClImage& rOut, bool bMid);

    // Set by the caller, and not published.
    ClImage* m_pInImage = nullptr; ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;
    long m_nFactor = 2;
    bool m_bMid = false; ///< means instead of single pixels

private:
    void CheckType() const;
    long ProcessMultiPlane();
    long ProcessPlane(const ClImage& In, ClImage& Out) const;
    void ProcessFast(const ClImage& In, ClImage& Out) const;
    void ProcessMid(const ClImage& In, ClImage& Out) const;
};
