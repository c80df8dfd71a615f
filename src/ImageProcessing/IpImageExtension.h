#pragma once

/// `ClIpImageExtension` grows an image by a margin. An input of w x h becomes one of
/// (w + extension X) x (h + extension Y), or the next powers of two of these sizes; it lies at an
/// offset that the alignment chooses, and the rest is filled:
///
///     ExtendSetColor            with a colour, of the 8-bit types; with 0 of any type
///     ExtendAverageColor        with the mean of each plane, truncated, for `eUInt8`; an image
///                               of another type is copied as it is
///     ExtendBorderContinue      out[x] = in[x - offset], the position limited to the image
///     ExtendBorderReflection    out[x] = in mirrored at its edges, the edge sample twice:
///                               position -1 is 0, position w is w - 1
///     ExtendBorderPeriodic      out[x] = in[(x - offset) mod w]
///
/// and likewise for lines. Margins of reflection and period are at most as wide as the image, so
/// that one mirror image or one period fills them. The margins left and right of the input's
/// lines are made first; the lines above and below then repeat complete lines, which gives the
/// corners what both axes say.

#include "ImageProcessing/Ip1to1Base.h"

class ClIpImageExtension : public NewIpBase::ClIp1to1Base {
public:
    /// Where the image lies: all margin right (`Left`) and so on.
    enum class EAlignmentX : int { Center = 0, Left = 1, Right = 2, Manual = 3 };
    /// Line 0 is the visual bottom of a device image: `Down` puts the image there.
    enum class EAlignmentY : int { Center = 0, Down = 1, Up = 2, Manual = 3 };
    enum EExtensionMode : int {
        ExtendSetColor = 0,
        ExtendAverageColor = 1,
        ExtendBorderContinue = 2,
        ExtendBorderReflection = 3,
        ExtendBorderPeriodic = 4,
    };

    ClIpImageExtension();

    ClProcessorBase* Create() override;
    const char* Name() const override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;

    /// The output keeps type, resolutions, range, content and attribute of the input. Returns,
    /// tested in this order:
    ///
    ///     -35   input without pixels
    ///     -14   input without area
    ///     -35   negative extension
    ///     -14   a side above 2^31 - 1, or above 2^30 as power of two
    ///     -35   margins wider than the image, for reflection and period
    ///     -11   neither one plane nor three
    ///
    /// Throws "Image Type is not the assigned type" (-101) for a colour other than 0 on wider
    /// samples, whether or not the mode uses it, except for the average; "The manually set x
    /// offset must be at most the x extension" and the like for y (-44) for an offset outside
    /// 0 to the extension; `ClExBadAlloc` (-102).
    long DoProcess(ClImage& In, ClImage& Out) override;

    /// The smallest power of two that is at least `nSize + nExtension`, and at least 1.
    static long CalculateNextTwoPower(int nSize, int nExtension);

    /// `nExtension` pixels in total on each axis; with `bNextPowerOfTwo` more, up to the next
    /// power of two. Alignment and mode stay as they are set.
    long ApplyParam(ClImage& In, ClImage& Out, int nExtension, unsigned char nColor,
                    bool bNextPowerOfTwo);
    long ApplyParam(ClImage& Image, int nExtension, unsigned char nColor, bool bNextPowerOfTwo);
    long ApplyParam(ClImage& Image, int nExtensionX, int nExtensionY, unsigned char nColor,
                    bool bNextPowerOfTwo);
    long ApplyParam(ClImage& In, ClImage& Out, int nExtensionX, int nExtensionY,
                    unsigned char nColor, bool bNextPowerOfTwo);
    using NewIpBase::ClIp1to1Base::ApplyParam;

    int m_nExtensionX = 0; ///< pixels, both margins together
    int m_nExtensionY = 0;
    unsigned char m_nColor = 0;
    bool m_bNextPowerOfTwo = false;
    EAlignmentX m_eAlignmentX = EAlignmentX::Center;
    EAlignmentY m_eAlignmentY = EAlignmentY::Center;
    EExtensionMode m_eMode = ExtendSetColor;
    int m_nManualOffsetX = 0; ///< pixels, for `Manual`
    int m_nManualOffsetY = 0;

private:
    long ExtendedSize(int nSize, int nExtension) const;
    bool RepeatsWholeImage() const;
    void CalculateNewExtendedImage(ClImage& In, int nWidth, int nHeight, ClImage& Out);
    void FillAverageColor(ClImage& In, ClImage& Out);
    int CalculateOffsetX(int nExtension) const;
    int CalculateOffsetY(int nExtension) const;
    void CalculateExtension(const ClImage& In, int nOffsetX, int nOffsetY, ClImage& Out);
    int SourceIndex(int nIndex, int nSize) const;
};
