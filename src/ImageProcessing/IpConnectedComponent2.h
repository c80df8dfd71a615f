#pragma once

/// `ClIpConnectedComponent2` measures the regions of a binary image: where each lies, how large
/// and how long it is, which way it points and how bright a grey image is under it. Regions are
/// those of `ClIpLabeling`, in its order. With n pixels (x, y) in a region:
///
///     centre         (sum x / n, sum y / n)
///     moments        XY = sum dx dy, YY = sum dy dy, XX = sum dx dx, about the centre
///     eccentricity   ((XX - YY)^2 + 4 XY^2) / (XX + YY)^2, from 0 for a circle to 1 for a line,
///                    and 0 for a single pixel
///     orientation    t = atan(2 XY / (XX - YY)) / 2 or t + pi/2, whichever gives the smaller
///                    cos^2 YY - cos sin XY + sin^2 XX; t where they are equal or undefined
///     mean grey      sum of the grey bytes / n
///
/// Counts and sums of coordinates and bytes are exact; the moments are added up in doubles, pixel
/// by pixel in the order of a scan, since that order decides their last bits. The image is walked
/// two or three times, whatever the number of regions.

#include "Math/Vector.h"
#include "Tools/Array.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpConnectedComponent2 : public ClProcessorBase {
public:
    /// One region. Coordinates and moments are in pixels.
    class ClComponent {
    public:
        ClComponent() = default;
        ClComponent(const ClComponent&) = default;
        ClComponent& operator=(const ClComponent&) = default;
        virtual ~ClComponent() = default;

        /// No field of one lies above or below that of the other; an orientation that is not a
        /// number equals any.
        bool operator==(const ClComponent& Other) const;

        ClVector m_vCentre;
        ClVector m_vMin; ///< smallest x and y
        ClVector m_vMax; ///< largest x and y
        double m_dArea = 0.0;
        double m_dEccentricity = 0.0;
        double m_dMeanGrey = 0.0;    ///< 0 without a grey image
        double m_dOrientation = 0.0; ///< radians; not a number for a single pixel
        double m_dMomentXY = 0.0;
        double m_dMomentYY = 0.0;
        double m_dMomentXX = 0.0;
    };
    using ComponentsArray_t = TpArrayDynamic<ClComponent, 10>;

    ClIpConnectedComponent2();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    void QueryParameters(ClParameterInterface& List) override;

    /// Whether object image and array are set, and the grey image, if there is one, has the size
    /// of the object image.
    bool CanApply() override;

    /// Component k - 1 becomes that of label k; earlier content of the array is lost. Throws, in
    /// this order, "Objectimage is missing" and "Output object array is missing" (-37), "the given
    /// grayimage has not the same size as the object image" (-44), "Image Type is not the assigned
    /// type" (-101) and -11 for an object or grey image other than `eUInt8` or of several planes,
    /// -37 for a grey image without pixels, and what `ClIpLabeling` throws. The label image
    /// changes only when all is measured, and may be one of the inputs.
    long Process() override;

    ClImage* m_pInImage = nullptr;     ///< 0 marks the objects; borrowed, as all images
    ClImage* m_pInImageGrey = nullptr; ///< optional
    ClImage* m_pOutImage = nullptr;    ///< optional: receives the labels
    ComponentsArray_t* m_pComponents = nullptr;

private:
    bool GreyHasSize() const;
    void CheckImages() const;
    void SumCoordinates(const ClImage& Labels) const;
    void SumMoments(const ClImage& Labels) const;
    void SumGrey(const ClImage& Labels) const;
    void FinishShapes() const;
};
