#pragma once

/// `ClIpFilterBase`, the frame of the neighbourhood filters: width and direction of the window,
/// dispatch by direction and signedness, several planes one by one. A filter works along lines
/// (mode 1), along columns (2), on a square window (3), or along or across a direction that two
/// further images give for each pixel (8, 16).

#include "Tools/Exception.h"
#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpFilterBase : public ClProcessorBase {
public:
    /// Bits of the mode.
    enum EFilterMode : long {
        ModeX = 1,
        ModeY = 2,
        ModeXY = 3,
        ModeDirected = 8,
        ModeDirectedOrtho = 16,
    };

    ClIpFilterBase();

    using ClProcessorBase::QueryParameters;
    void QueryParameters(ClParameterInterface& List) override;
    void SetParametersToDefault() override;
    void PublishParameters(ClParameterContainer& Container) override;
    /// "W[width] M[directions] S[signedness]". Throws "String-Length exceeded available size"
    /// (-101) where it does not fit.
    long ParameterString(char* pBuffer, unsigned long nSize) override;

    /// A width of 1 or less copies. Returns -10 for filtering one plane in place, and what
    /// DoProcess() returns; with several planes the result is 0, whatever that of
    /// ProcessMultiPlane(). Returns -35 without images, where DoProcess() has no other objection.
    long Process() override;

    /// Filters the planes one by one, in place too. The output keeps content and attribute of the
    /// input and gets the default range of its type; it changes only when every plane is done.
    /// Returns the first result of DoProcess() that is not 0, and -35 without images or where
    /// DoProcess() has left planes that do not make an image. Throws "Image has more than 4
    /// planes." (-35).
    virtual long ProcessMultiPlane();
    /// One plane, by mode. Returns -35 without an input, throws -6 for an unknown mode; the output
    /// is for the operation of the mode to test.
    virtual long DoProcess();
    virtual long ProcessX();
    virtual long ProcessY();
    /// Along lines, then along columns of that result.
    virtual long ProcessXY();
    virtual long ProcessSignedX();
    virtual long ProcessSignedY();
    virtual long ProcessSignedXY();
    virtual long ProcessDirected(bool bOrtho);
    virtual long ProcessSignedDirected(bool bOrtho);

    ClImage* m_pInImage = nullptr; ///< borrowed, as all images
    ClImage* m_pOutImage = nullptr;
    long m_nFilterWidth = 3; ///< side of the window, pixels
    long m_nMode = ModeXY;
    ClImage* m_pInDxImage = nullptr; ///< direction images of the directed modes, 8 bits, signed
    ClImage* m_pInDyImage = nullptr;

protected:
    /// Without a row in the catalogue; applications know it by its "Unknown error code.".
    static constexpr long cnUnknownMode = -6;

    /// Whether the input is there, and the pixels that it claims.
    bool HasInput() const;
    /// The same, and the output.
    bool HasImages() const;

    /// Of a window of an odd width; 0 for a width below 0.
    long HalfWidth() const;

    /// Copies, whatever the image is. Returns -35 without images.
    long CopyInput();
    /// Filters one plane, or several one by one.
    long ProcessPlanes();

    /// `alongX()`, `alongY()` or `alongBoth()` by mode, for samples that have no other one: returns
    /// -33 for the directed modes; throws -6, from the given place, for an unknown one.
    template <class X, class Y, class XY>
    long ProcessAxes(X alongX, Y alongY, XY alongBoth, const char* szFile, long nLine);

    /// Runs `first` from the input to a local image and `second` from there to the output.
    template <class First, class Second>
    long ProcessTwice(First first, Second second);

    /// Tests the images of the directed modes: throws "m_pInDxImage is not set", and from the given
    /// place "m_pInDyImage is not set" (-701); returns -35 without images and for a direction image
    /// that is not one plane of 8 bits of the input's size, else 0.
    long CheckDirectionImages(const char* szFile, long nLine) const;
};

template <class X, class Y, class XY>
long ClIpFilterBase::ProcessAxes(X alongX, Y alongY, XY alongBoth, const char* szFile, long nLine) {
    switch (m_nMode) {
    case ModeX:
        return alongX();
    case ModeY:
        return alongY();
    case ModeXY:
        return alongBoth();
    case ModeDirected:
    case ModeDirectedOrtho:
        return QMT_ERROR_FORMAT_NOTSUPPORTED;
    default:
        throw ClExTessarin(cnUnknownMode, szFile, nLine);
    }
}
