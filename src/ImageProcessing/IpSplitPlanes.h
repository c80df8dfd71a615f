#pragma once

/// `ClIpSplitPlanes` takes an image of up to four planes apart: target p gets sample p of every
/// pixel, with the input's type, size and resolutions, the range of the type and the content of
/// one plane. Targets that are not set cost nothing, so that a single plane is cheap to take.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpSplitPlanes : public ClProcessorBase {
public:
    static constexpr int cnMaxPlanes = 4;

    ClIpSplitPlanes();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Returns 0, also for a type that no image has, which leaves the targets as they are; -37
    /// without an input or its pixels. Throws "Image has more than 4 planes." (-35) before any
    /// target changes, "Image area must be positive" (-101) and `ClExBadAlloc` (-102). The input
    /// may be a target too; it changes when all planes are done. Of equal targets the last plane
    /// stays.
    long Process() override;

    /// Any of the targets may be null.
    long ApplyParam(ClImage& In, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                    ClImage* pPlane3);

    ClImage* m_pInImage = nullptr;           ///< borrowed, as all images
    ClImage* m_apOutPlane[cnMaxPlanes] = {}; ///< null for a plane that nobody wants
};
