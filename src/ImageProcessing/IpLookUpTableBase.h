#pragma once

/// `ClIpLookUpTableBase`, the frame of operators that replace every sample of an 8-bit image by
/// an entry of a table:
///
///     out = table[in]
///
/// An operator fills the table in CalculateLuT(). All samples are treated alike, so that the planes
/// of an image need not be taken apart. The result is as if they had been: of several planes it has
/// the range 0 to 255, where one plane keeps that of the input.

#include "Tools/FpImage.h"
#include "Tools/ProcessorBase.h"

class ClIpLookUpTableBase : public ClProcessorBase {
public:
    ClIpLookUpTableBase();

    /// Nothing: operators have the settings.
    void SetParametersToDefault() override;
    /// Runs CalculateLuT() and returns 0.
    long Initialize() override;
    /// Returns -37 without an input image or its pixels. Throws "Image Type is not the assigned
    /// type" (-101) for other types than `eUInt8`, "Image has more than 4 planes." (-35), and
    /// `ClExBadAlloc` (-102); the output is then as before. Without an output image it works in
    /// place.
    long Process() override;

    /// Fills `m_aLuT`. Here it does nothing.
    virtual void CalculateLuT();

    long ApplyParam(ClImage& In, ClImage& Out);
    /// In place.
    long ApplyParam(ClImage& InOut);

    ClImage* m_pInImage = nullptr;  ///< borrowed
    ClImage* m_pOutImage = nullptr; ///< borrowed; null stands for the input
    bool m_bLuTValid = false;       ///< whether the table has been filled
    unsigned char m_aLuT[256] = {};

protected:
    /// Tests the input as Process() does: returns -37, throws, or returns 0.
    long CheckInImage() const;
    /// The output of this run, with the geometry of the input.
    ClImage& PrepareOutImage() const;
};
