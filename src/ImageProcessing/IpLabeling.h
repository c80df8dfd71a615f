#pragma once

/// `ClIpLabeling` numbers the regions of a binary image. A pixel of value 0 belongs to a region,
/// every other value is background; pixels join by their four direct neighbours, so that two that
/// touch at a corner are apart:
///
///     255   0 255 255         0 1 0 0
///       0   0 255   0   ->    1 1 0 2
///     255 255   0   0         0 0 2 2
///
/// Regions are numbered from 1 in the order in which a scan line by line meets their first pixel.
/// Each region is filled with its number by runs, over an explicit stack of seeds: linear in the
/// pixels, and no shape can exhaust the call stack.

#include "ImageProcessing/Kernels/RegionFill.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

#include <cstdint>

class ClIpLabeling : public ClProcessorBase {
public:
    struct StPos {
        long x;
        long y;
    };
    using ClLineParts = Kernels::TpSeeds<StPos>;

    ClIpLabeling();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    /// Publishes none.
    void PublishParameters(ClParameterContainer& Container) override;

    /// The output gets the type `eInt32` and, but for that, all that the input says of itself, its
    /// range too: 0 on the background, k in region k. Throws, in this order, "Inputimage is
    /// missing" and "Outputimage is missing" (-37), "Image Type is not the assigned type" (-101)
    /// for an input other than `eUInt8`, -11 for more than one plane, "Image area must be positive"
    /// (-101) and `ClExBadAlloc` (-102). The output may be the input, and changes only when all
    /// regions are labelled.
    long Process() override;

    ClImage* m_pInImage = nullptr; ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;
    std::int32_t m_nLabels = 0; ///< regions found
    ClLineParts m_LineParts;    ///< empty between runs, kept for its storage

private:
    void CheckImages() const;
    void LabelLine(long nY);
    /// Labels the region of a pixel of `m_pInImage` in `m_pOutImage`.
    void FloodFill(long nX, long nY, std::int32_t nLabel);
};
