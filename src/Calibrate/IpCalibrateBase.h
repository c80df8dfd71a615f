#pragma once

/// `ClIpCalibrateBase`, the frame of a correction that is prepared once and applied to many
/// captures: Initiate() prepares it from the record, Calibrate() corrects one image.

#include "Tools/ProcessorBase.h"

class ClCalibrateGeometricData;
class ClImage;

class ClIpCalibrateBase : public ClProcessorBase {
public:
    /// Initiate(), then Calibrate(). Returns 0; failures are exceptions.
    long Process() override;

    /// Forgets what was prepared.
    virtual void Reset() = 0;
    virtual void Initiate() = 0;
    virtual void Calibrate() = 0;

    // All three are borrowed and outlive the call that uses them.
    ClCalibrateGeometricData* m_pData = nullptr; ///< record to work from
    ClImage* m_pInImage = nullptr;               ///< raw capture
    ClImage* m_pOutImage = nullptr;              ///< corrected image
};
