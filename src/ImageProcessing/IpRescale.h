#pragma once

/// `ClIpRescale` changes the size or the resolution of an 8-bit image, unsigned or signed. With
/// w, h the input's size and W, H the destination's, all positions in 64-bit integers:
///
///     whole-numbered     repeats samples, or picks every n-th, by the rounded quotient of the
///                        resolutions
///     nearest neighbour  out(x, y) = in(x * stepX >> 12, y * stepY >> 12)
///     bilinear           growing axes: four neighbours, weighted in 12-bit fixed point around
///                        x * step + (step >> 1) - 2048; shrinking axes: the mean of the cell
///                        from x * step to (x + 1) * step; step = (w << 12) / W
///     bicubic            a radial kernel on 4 by 4 neighbours (parameter of 0 or below), or the
///                        separable cubic (above 0)
///     Fant               the mean of the area from x * w / W to (x + 1) * w / W, exactly
///
/// Fast work on masks takes the nearest neighbour; bilinear shrinks without losing a sample, which
/// point sampling would; the Fant mode has the same virtue without the 12-bit grid, for a second
/// pass through memory. The methods stand in Rescale*.cpp, with their formulas.
///
/// The destination is given by new resolutions, in picture elements per metre, or by a new size.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpRescale : public ClProcessorBase {
public:
    enum eProcessingMode : int {
        ModeWholeNumbered = 0,
        ModeNearestNeighbour = 1,
        ModeBiLinear = 2,
        ModeBiCubic = 3,
        ModeBiLinearFantMar = 4,
    };

    ClIpRescale();

    using ClProcessorBase::QueryParameters;

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void QueryParameters(ClParameterInterface& List) override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "W<width> H<height> <mode>" with a new width, else "X<pels> Y<pels> <mode>"; "InvalidMode"
    /// for a mode without a name. Throws "String-Length exceeded available size" (-101).
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// Fixes the destination. New resolutions count where both are at least 1 and the input's are
    /// too: where either differs from the input's,
    ///
    ///     W = trunc(w * newPelsX / pelsX + 0.9999), H likewise, in double;
    ///
    /// else the size stays. Otherwise the new size counts, and the resolutions follow it:
    /// newWidth * pelsX / w, truncated. Returns -35 without images or pixels and for a new size
    /// below 1 by 1; -13 for a destination above 16384 in width or height.
    long Initialize() override;

    /// Returns -35 without images or pixels and for an unknown mode, -101 for several planes of
    /// content `eXYZ` or `eCIELab`. Throws "Image Type is not the assigned type" (-101) for other
    /// types than `eUInt8` and `eInt8`; "Image has more than 4 planes." (-35); "Image area must be
    /// positive" (-101) for a destination that resolutions have brought to 0; `ClExBadAlloc`
    /// (-102). In and out may be one image; the input then changes with success only.
    ///
    /// A size that does not change gives a copy, resolutions included. Several planes are rescaled
    /// one by one, the result has their content and attribute.
    long Process() override;

    /// With the settings as they are; -101 where neither size nor resolutions are set.
    long ApplyParam(ClImage& rIn, ClImage& rOut, eProcessingMode eMode);
    /// To a size; -101 for `ModeWholeNumbered`, which needs resolutions.
    long ApplyParamSize(ClImage& rIn, ClImage& rOut, int nWidth, int nHeight,
                        eProcessingMode eMode);
    /// To resolutions; -13 where the input has none. All three leave the settings alone when they
    /// refuse.
    long ApplyParamPels(ClImage& rIn, ClImage& rOut, int nPelsX, int nPelsY, eProcessingMode eMode);

    // The steps of the Fant mode, on samples without padding, timed under "Resample", "Resample 2"
    // and "FlipXY".

    /// Brings `nHeight` lines of `nWidth` samples of `eUInt8` or `eInt8` to `nNewWidth` samples;
    /// all sizes are above 0. Both do the same. Throw `ClExBadAlloc` (-102).
    void BilinearResample(unsigned char nType, const unsigned char* pIn, int nWidth, int nHeight,
                          int nNewWidth, unsigned char* pOut);
    void BilinearResample2(unsigned char nType, const unsigned char* pIn, int nWidth, int nHeight,
                           int nNewWidth, unsigned char* pOut);
    /// Lines become columns.
    void FlipXY(const unsigned char* pIn, int nWidth, int nHeight, unsigned char* pOut);

    ClImage* m_pInImage = nullptr; ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;
    int m_nNewWidth = 0; ///< pixels; 0: not set
    int m_nNewHeight = 0;
    int m_nNewPelsX = 0; ///< picture elements per metre; 0: not set
    int m_nNewPelsY = 0;
    eProcessingMode m_eMode = ModeBiLinear;
    /// Of the cubic kernels: 0 or below is that of the radial one, above 0 minus that of the
    /// separable one.
    double m_dConvParameter1 = -0.75;
    int m_nDestWidth = 0; ///< of the present run, as are the three below
    int m_nDestHeight = 0;
    int m_nDestPelsX = 0;
    int m_nDestPelsY = 0;

private:
    bool HasImages() const;
    bool NewSizeIsSet() const;
    bool NewPelsAreSet() const;
    long FixByPels();
    long FixBySize();
    long FixDestination(double dWidth, double dHeight, long long nPelsX, long long nPelsY);
    long ApplyMode(ClImage& rIn, ClImage& rOut, eProcessingMode eMode);
    long ProcessMultiPlane();
    long ProcessPlane(const ClImage& In, ClImage& Out);
};
