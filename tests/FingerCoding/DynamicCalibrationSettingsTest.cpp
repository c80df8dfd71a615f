// Captures that tell a setting of the detectors from its neighbours: each was drawn at random, and
// chosen because the twin answers otherwise where the one setting is another.

#include "FingerCoding/NaiveDynamicCalibration.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/RandomCaptures.h"
#include "FingerCoding/TwinComparison.h"

using namespace TestSupport;

namespace {

using Naive::StSettings;

enum class EKind { eAny, eScrap, eWavy };

struct StCase {
    const char* m_szName;
    double StSettings::*m_pSetting;
    double m_dOther;
    EKind m_eKind;
    unsigned m_nSeed;
    bool m_bSensitive;
};

constexpr StCase caCases[] = {
    {"RidgeDist", &StSettings::m_dRidgeDist, 12.0, EKind::eAny, 10, false},
    {"ImageBorderWidth", &StSettings::m_dImageBorderWidth, 5, EKind::eAny, 10, false},
    {"IlFixMaxWidth", &StSettings::m_dIlFixMaxWidthFactor, 2.1, EKind::eAny, 10, false},
    {"IlFixLowPassWidth", &StSettings::m_dIlFixLowPassWidthFactor, 0.6, EKind::eAny, 10, false},
    {"DarkNoisePart", &StSettings::m_dDarkNoisePart, 0.12, EKind::eAny, 10, false},
    {"BrightNoisePart", &StSettings::m_dBrightNoisePart, 0.11, EKind::eAny, 4, true},
    {"DilatWidth", &StSettings::m_dDilatWidthFactor, 0.77, EKind::eAny, 10, false},
    {"LowPassWidth", &StSettings::m_dLowPassWidthFactor, 1.37, EKind::eAny, 10, false},
    {"DerivationWidth", &StSettings::m_dDerivationWidth, 9, EKind::eAny, 4, true},
    {"DerivativeThresh16", &StSettings::m_dDerivativeThresh, 16, EKind::eScrap, 16, true},
    {"DerivativeThresh14", &StSettings::m_dDerivativeThresh, 14, EKind::eScrap, 4, false},
    {"MinAreaMM2", &StSettings::m_dMinAreaMM2, 10, EKind::eWavy, 23, false},
    {"MinBinarizeThreshold101", &StSettings::m_dMinBinarizeThreshold, 101, EKind::eScrap, 155,
     false},
    {"MinBinarizeThreshold99", &StSettings::m_dMinBinarizeThreshold, 99, EKind::eScrap, 155, false},
    {"MaxBinarizeThreshold199", &StSettings::m_dMaxBinarizeThreshold, 199, EKind::eAny, 10, false},
    {"MaxBinarizeThreshold197", &StSettings::m_dMaxBinarizeThreshold, 197, EKind::eAny, 10, false},
    {"WorkDpi", &StSettings::m_dWorkDpi, 251, EKind::eAny, 10, false},
    {"BorderWidth4", &StSettings::m_dBorderWidth, 4, EKind::eAny, 10, false},
    {"BorderWidth2", &StSettings::m_dBorderWidth, 2, EKind::eAny, 10, false},
    {"ScaleFactor79", &StSettings::m_dScaleFactor, 7.9, EKind::eAny, 10, false},
    {"ScaleFactor77", &StSettings::m_dScaleFactor, 7.7, EKind::eAny, 10, false},
    {"MidRotWidth", &StSettings::m_dMidRotWidthFactor1, 2.4, EKind::eAny, 10, false},
    {"ThresholdFactor", &StSettings::m_dThresholdFactor, 9.8, EKind::eAny, 10, false},
    {"MinFgBlobSize17", &StSettings::m_dMinFgBlobSize, 17, EKind::eScrap, 301, true},
    {"MinFgBlobSize25", &StSettings::m_dMinFgBlobSize, 25, EKind::eScrap, 134, false},
    {"MinFgBlobSize10", &StSettings::m_dMinFgBlobSize, 10, EKind::eScrap, 171, false},
};

ClTestImage CaptureOf(const StCase& Case) {
    ClRandomCapture Random(Case.m_nSeed);
    return Case.m_eKind == EKind::eAny     ? Random.Make()
           : Case.m_eKind == EKind::eScrap ? Random.MakeOfAScrap(110, 240)
                                           : Random.MakeOnAWavyPlaten();
}

class DynamicSettings : public testing::TestWithParam<StCase> {};

TEST_P(DynamicSettings, AreThoseThatTheCaptureTells) {
    const StCase& Case = GetParam();
    ClTestImage Capture = CaptureOf(Case);
    StSettings Settings;
    Settings.m_bSensitive = Case.m_bSensitive;
    const Naive::StCalibrated Twin = TwinOf(Capture, Settings);
    Settings.*Case.m_pSetting = Case.m_dOther;
    EXPECT_FALSE(TwinOf(Capture, Settings).m_aStages == Twin.m_aStages);
    ExpectStagesLikeTheTwin(Capture, Case.m_bSensitive, Twin);
}

INSTANTIATE_TEST_SUITE_P(Captures, DynamicSettings, testing::ValuesIn(caCases),
                         [](const auto& Info) { return std::string(Info.param.m_szName); });

} // namespace
