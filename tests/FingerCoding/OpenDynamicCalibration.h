#pragma once

/// The dynamic calibration with its steps open to tests, and captures for it.

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "Tools/Bitmap.h"
#include "support/Images.h"
#include "support/TestData.h"

#include <string>

namespace TestSupport {

class ClOpenDynamicCalibration : public ClIpQK7DynamicCalibration30 {
public:
    using ClIpQK7DynamicCalibration30::BuildDerivationImages;
    using ClIpQK7DynamicCalibration30::BuildMaskImage;
    using ClIpQK7DynamicCalibration30::CalcDirtWarningLevel;
    using ClIpQK7DynamicCalibration30::CalcDirtWarningLevel2;
    using ClIpQK7DynamicCalibration30::CalcDryFingerWarningLevel;
    using ClIpQK7DynamicCalibration30::EmbraceMask;
    using ClIpQK7DynamicCalibration30::GetMaskRegionCount;
    using ClIpQK7DynamicCalibration30::PasteWindow;
    using ClIpQK7DynamicCalibration30::SmoothenMask;
};

/// What a run gives for a capture, with a mask requested.
struct StDynamicRun {
    explicit StDynamicRun(ClImage& Capture, bool bSensitive = false) {
        m_Calibration.m_bSensitiveMode = bSensitive;
        m_Calibration.m_pInImage = &Capture;
        m_Calibration.m_pOutImage = &m_Out;
        m_Calibration.m_pOutMaskImage = &m_Mask;
        m_nResult = m_Calibration.Apply();
    }
    StDynamicRun(const StDynamicRun&) = delete;
    StDynamicRun& operator=(const StDynamicRun&) = delete;

    double Dirt() const { return m_Calibration.m_dDirtWarningLevel; }
    double Dry() const { return m_Calibration.m_dDryFingerWarningLevel; }

    ClTestImage m_Out;
    ClTestImage m_Mask;
    ClOpenDynamicCalibration m_Calibration;
    long m_nResult = -1;
};

/// A capture of the data folder, as it comes out of the warp: "loop", "partial" and so on.
inline ClTestImage WarpedCapture(const std::string& Kind) {
    const Bytes aBlock = DataBlock("dynamic/" + Kind + "_warped.bmp");
    ClBitmap Bitmap;
    Bitmap.CopyFrom(aBlock.data(), true);
    ClTestImage image;
    image = Bitmap;
    return image;
}

/// Whether every byte of the buffer, padding included, is 255.
inline bool IsWhiteWithPadding(const ClImage& Image) {
    for (std::size_t i = 0; i < Image.SizeBytes(); ++i)
        if (Image.Data()[i] != 255)
            return false;
    return Image.SizeBytes() > 0;
}

} // namespace TestSupport
