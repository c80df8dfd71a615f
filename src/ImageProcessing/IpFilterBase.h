#pragma once

/// `ClIpFilterBase`, the frame of the neighbourhood filters: width and direction of the window,
/// dispatch by direction and signedness, several planes one by one. A filter works along lines
/// (mode 1), along columns (2), on a square window (3), or along or across a direction that two
/// further images give for each pixel (8, 16).

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

    /// Returns -35 without images and -10 for filtering one plane in place; a width of 1 or less
    /// copies. With several planes the result is 0, that of ProcessMultiPlane() is not asked for.
    long Process() override;

    /// Filters the planes one by one, in place too. The output keeps content and attribute of the
    /// input and gets the default range of its type; it changes only when every plane is done.
    /// Returns the first result of DoProcess() that is not 0, and -35 where that has left planes
    /// that do not make an image. Throws "Image has more than 4 planes." (-35).
    virtual long ProcessMultiPlane();
    /// One plane, by mode. Throws -6 for an unknown mode.
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
    /// Whether both images are there, and the pixels that the input claims.
    bool HasImages() const;

    /// Filters one plane, or several one by one.
    long ProcessPlanes();

    /// Runs `first` from the input to a local image and `second` from there to the output.
    template <class First, class Second>
    long ProcessTwice(First first, Second second);

    /// Tests the direction images: throws -701 for a missing one, returns -35 for one that is not
    /// one plane of 8 bits of the input's size, else 0.
    long CheckDirectionImages() const;
};
