#pragma once

/// What both programs work on: captures of one simulated scanner and its calibration record.

#include "Calibrate/CalibrateGeometricData.h"
#include "Tools/FpImage.h"

#include <vector>

namespace peer {

using Block = std::vector<unsigned char>;

/// A capture as an image and as the block that the exported calls take.
struct StCapture {
    ClImage m_Image;
    Block m_Block;
};

struct StScene {
    StScene();

    ClCalibrateGeometricData m_Record;
    Block m_RecordBlock;
    StCapture m_Finger;
    StCapture m_Empty;
    StCapture m_Target;
    ClImage m_Warped; ///< the finger in the target frame, not corrected for brightness
    ClImage m_Mask;   ///< of the finger: 0 on it, 255 on the background
};

} // namespace peer
