#pragma once

/// `ClIpJoinPlanes` puts one image together from images of one plane: sample p of every pixel is
/// that of input p. The wanted content says how many planes there are:
///
///     eGrayscale 1    eRGB, eHSV, eCIELUV 3    eRGBA 4    eUnknown: `m_nPlanes`
///
/// An input that is not set leaves a plane empty, which gets a value of its own: the fill colour,
/// converted to the type by truncation, 0 for NaN. With `m_bFillEmptyPlanes` clear it is left
/// alone and holds whatever the output's buffer held.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpJoinPlanes : public ClProcessorBase {
public:
    static constexpr int cnMaxPlanes = 4;

    ClIpJoinPlanes();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// Type, size and resolutions of the output are those of the first input that is set; its
    /// content becomes `m_eOutContent`, or that of the plane count for `eUnknown`; its range is
    /// that of the type. Tested in this order, before the output changes:
    ///
    ///     -37   no output
    ///     0     `eUnknown` with `m_nPlanes` below 1: nothing to do
    ///     -35   `eXYZ`, `eCIELab` or another content than the above, more than 4 planes, no
    ///           input, or inputs that are not of one plane, one type and one size
    ///     -101  a type that no image has
    ///
    /// Throws "Image area must be positive" (-101) and `ClExBadAlloc` (-102). The output may be
    /// one of the inputs. Inputs behind the plane count are not looked at.
    long Process() override;

    /// Any of the inputs may be null.
    long ApplyParam(ClImage& Out, ClImage* pPlane0, ClImage* pPlane1, ClImage* pPlane2,
                    ClImage* pPlane3);

    ClImage* m_apInPlane[cnMaxPlanes] = {};    ///< borrowed, as all images
    double m_adInFillcolors[cnMaxPlanes] = {}; ///< values of empty planes, NaN at first
    ClImage* m_pOutImage = nullptr;
    ClImage::EContent m_eOutContent = ClImage::eUnknown;
    bool m_bFillEmptyPlanes = true;
    int m_nPlanes = 0; ///< for `eUnknown`

private:
    int PlaneCount() const;
    const ClImage* FirstInput(int nPlanes) const;
    bool InputsMatch(const ClImage& First, int nPlanes) const;
    long Join(const ClImage& First, int nPlanes, ClImage& Out) const;
    template <class T>
    void JoinLine(int y, ClImage& Out) const;
};
