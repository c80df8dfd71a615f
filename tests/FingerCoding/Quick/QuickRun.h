#pragma once

/// The quick dynamic calibration beside the plain sequence of operators.

#include "FingerCoding/IpQK7DynamicCalibration30.h"
#include "FingerCoding/Quick/DynamicCalibration.h"
#include "Tools/ClassCallProfile.h"
#include "support/Images.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

namespace TestSupport {

/// While it lives somebody looks at the steps of runs, so that all are taken.
class ClObservedRuns : public ClClassCallProfile {
public:
    ClObservedRuns() { g_pClassCallProfile = this; }
    ClObservedRuns(const ClObservedRuns&) = delete;
    ClObservedRuns& operator=(const ClObservedRuns&) = delete;
    ~ClObservedRuns() override { g_pClassCallProfile = nullptr; }
};

struct StOutcome {
    ClImage m_Out;
    ClImage m_Mask;
    double m_dDirt = 0.0;
    double m_dDry = 0.0;
};

inline void RunPlainly(ClImage& rCapture, bool bSensitive, StOutcome& rOutcome) {
    const ClObservedRuns Observed;
    ClIpQK7DynamicCalibration30 Calibration;
    Calibration.m_bSensitiveMode = bSensitive;
    Calibration.m_pInImage = &rCapture;
    Calibration.m_pOutImage = &rOutcome.m_Out;
    Calibration.m_pOutMaskImage = &rOutcome.m_Mask;
    EXPECT_EQ(Calibration.Apply(), 0);
    rOutcome.m_dDirt = Calibration.m_dDirtWarningLevel;
    rOutcome.m_dDry = Calibration.m_dDryFingerWarningLevel;
}

/// Whether the capture was taken.
inline bool RunQuickly(Quick::ClDynamicCalibration& rQuick, const ClImage& Capture, bool bSensitive,
                       StOutcome& rOutcome) {
    if (!Quick::ClDynamicCalibration::Takes(Capture))
        return false;
    const auto Levels = rQuick.Run(Capture, bSensitive, &rOutcome.m_Out, &rOutcome.m_Mask);
    if (Levels) {
        rOutcome.m_dDirt = Levels->m_dDirt;
        rOutcome.m_dDry = Levels->m_dDryFinger;
    }
    return Levels.has_value();
}

/// Everything about an image, line ends included.
inline testing::AssertionResult IsTwin(const ClImage& Image, const ClImage& Plain) {
    if (Image.Width() != Plain.Width() || Image.Height() != Plain.Height() ||
        Image.PelsX() != Plain.PelsX() || Image.PelsY() != Plain.PelsY() ||
        Image.DataType() != Plain.DataType() || Image.Planes() != Plain.Planes() ||
        Image.Content() != Plain.Content() || Image.Attribute() != Plain.Attribute() ||
        Image.Black() != Plain.Black() || Image.White() != Plain.White())
        return testing::AssertionFailure() << "another description";
    for (std::size_t i = 0; i < Plain.SizeBytes(); ++i)
        if (Image.Data()[i] != Plain.Data()[i]) {
            const auto nStride = static_cast<std::size_t>(Plain.LineStrideBytes());
            return testing::AssertionFailure()
                   << "column " << i % nStride << ", line " << i / nStride << ": "
                   << int{Image.Data()[i]} << " instead of " << int{Plain.Data()[i]};
        }
    return testing::AssertionSuccess();
}

inline void ExpectTwins(const StOutcome& Quick, const StOutcome& Plain) {
    EXPECT_TRUE(IsTwin(Quick.m_Out, Plain.m_Out)) << "output";
    EXPECT_TRUE(IsTwin(Quick.m_Mask, Plain.m_Mask)) << "mask";
    EXPECT_EQ(Quick.m_dDirt, Plain.m_dDirt);
    EXPECT_EQ(Quick.m_dDry, Plain.m_dDry);
}

} // namespace TestSupport
