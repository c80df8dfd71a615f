#pragma once

/// The dynamic calibration beside its plain twin, with the place and the value of the first
/// difference.

#include "FingerCoding/NaiveDynamicCalibration.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "support/WorkingFolder.h"

#include <gtest/gtest.h>

#include <string>

namespace TestSupport {

inline Naive::Grid GridOf(const ClImage& Image) {
    Naive::Grid Result(Image.Width(), Image.Height());
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            Result.At(x, y) = Image.LineData(y)[x];
    return Result;
}

inline Naive::StCalibrated TwinOf(const ClImage& Capture, const Naive::StSettings& Settings) {
    return Naive::Calibrated(GridOf(Capture), Capture.PelsX(), Capture.PelsY(), Settings);
}

/// Tells the first place that differs.
inline testing::AssertionResult IsSame(const ClImage& Image, const Naive::Grid& Expected) {
    if (Image.Width() != Expected.m_nWidth || Image.Height() != Expected.m_nHeight)
        return testing::AssertionFailure()
               << Image.Width() << " x " << Image.Height() << " pixels instead of "
               << Expected.m_nWidth << " x " << Expected.m_nHeight;
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            if (Image.LineData(y)[x] != Expected.At(x, y))
                return testing::AssertionFailure()
                       << "column " << x << ", line " << y << ": " << int{Image.LineData(y)[x]}
                       << " instead of " << Expected.At(x, y);
    return testing::AssertionSuccess();
}

inline void ExpectLikeTheTwin(const StDynamicRun& Run, const Naive::StCalibrated& Twin) {
    EXPECT_EQ(Run.m_nResult, 0);
    EXPECT_TRUE(IsSame(Run.m_Out, Twin.m_Out));
    EXPECT_TRUE(IsSame(Run.m_Mask, Twin.m_Mask));
    EXPECT_EQ(Run.Dirt(), Twin.m_dDirt);
    EXPECT_EQ(Run.Dry(), Twin.m_dDry);
}

/// Runs in a folder of its own, and compares every stage up to the first that differs.
inline void ExpectStagesLikeTheTwin(ClTestImage& rCapture, bool bSensitive,
                                    const Naive::StCalibrated& Twin) {
    StDynamicRun Run(rCapture, bSensitive);
    Run.m_Calibration.m_bDumpImages = true;
    const ClWorkingFolder Folder;
    EXPECT_EQ(Run.m_Calibration.Apply(), 0);
    EXPECT_EQ(Folder.Names().size(), Twin.m_aStages.size() + 1); // and the defects
    for (const auto& [Name, Stage] : Twin.m_aStages) {
        ClImage Stored;
        Stored.Load(("C:\\" + Name + ".kpf").c_str());
        ASSERT_TRUE(IsSame(Stored, Stage)) << Name;
    }
}

} // namespace TestSupport
