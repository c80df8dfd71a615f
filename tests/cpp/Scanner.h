#pragma once

/// A scanner of the published data, its capture and what that becomes.

#include "support/TestData.h"

#include <TessarinCalibrateSDK.hpp>

namespace TestSupport {

inline Bytes ScannerData() {
    return DataFile("geometric/scanner904.cal");
}
inline Bytes ScannerCapture() {
    return DataBlock("geometric/904_raw.bmp");
}
/// With DynamicFingerMask=false.
inline Bytes ScannerCorrected() {
    return DataBlock("geometric/904_ThinPlateSpline.bmp");
}

/// A calibrator with the data of that scanner, the dynamic calibration switched off.
inline tessarin::Calibrator Loaded() {
    tessarin::Calibrator Calibrator;
    Calibrator.setOption(tessarin::Switch::dynamicFingerMask, false);
    Calibrator.setData(ScannerData());
    return Calibrator;
}

} // namespace TestSupport
