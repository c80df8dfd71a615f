// What the calls for options set, tell and refuse.

#include "TessarinCalibrateSDK/OwnHandle.h"

#include <gtest/gtest.h>

#include <string>

using TestSupport::StOwnHandle;

namespace {

using EMode = ClIpCalibrateLumivane2::EGeometricMode;

class OptionCalls : public testing::Test {
protected:
    long Set(const char* szOption) { return CalibrateSetOption(m_Own.Handle(), szOption); }
    long Get(const char* szKey, char* pValue, unsigned long* pnSize) {
        return CalibrateGetOption(m_Own.Handle(), szKey, pValue, pnSize);
    }
    std::string Text(const char* szKey) {
        char acValue[32] = {};
        unsigned long nSize = sizeof acValue;
        EXPECT_EQ(Get(szKey, acValue, &nSize), 0) << szKey;
        EXPECT_EQ(nSize, std::string(acValue).size() + 1) << szKey;
        return acValue;
    }

    StOwnHandle<> m_Own;
};

struct StSwitch {
    const char* m_szKey;
    bool ClIpCalibrateLumivane2::*m_pValue;
};

constexpr StSwitch caSwitches[] = {
    {"DynamicFingerMask", &ClIpCalibrateLumivane2::m_bDynamicFingerMask},
    {"SensitiveMode", &ClIpCalibrateLumivane2::m_bSensitiveMode},
    {"MaskIsOutput", &ClIpCalibrateLumivane2::m_bMaskIsOutput},
    {"PrecalculatedData", &ClIpCalibrateLumivane2::m_bPrecalculatedData},
};

} // namespace

TEST_F(OptionCalls, SwitchEachOptionAndNoOther) {
    for (const StSwitch& Chosen : caSwitches) {
        for (const StSwitch& Other : caSwitches)
            m_Own.m_Processor.*Other.m_pValue = false;
        EXPECT_EQ(Set((std::string(Chosen.m_szKey) + "=true").c_str()), 0);
        for (const StSwitch& Other : caSwitches)
            EXPECT_EQ(m_Own.m_Processor.*Other.m_pValue, &Other == &Chosen) << Other.m_szKey;
        EXPECT_EQ(Set((std::string(Chosen.m_szKey) + "=false").c_str()), 0);
        EXPECT_FALSE(m_Own.m_Processor.*Chosen.m_pValue) << Chosen.m_szKey;
    }
}

TEST_F(OptionCalls, ChooseHowTheGeometryIsCorrected) {
    EXPECT_EQ(Set("GeometricCalibrate=off"), 0);
    EXPECT_EQ(m_Own.m_Processor.m_eGeometricMode, EMode::eGeometricOff);
    EXPECT_EQ(Set("geometriccalibrate= ODDLINES"), 0);
    EXPECT_EQ(m_Own.m_Processor.m_eGeometricMode, EMode::eOddLines);
}

TEST_F(OptionCalls, TellEachSwitchByItsOwnState) {
    for (const StSwitch& Told : caSwitches) {
        for (const StSwitch& Other : caSwitches)
            m_Own.m_Processor.*Other.m_pValue = &Other != &Told;
        EXPECT_EQ(Text(Told.m_szKey), "Disabled") << Told.m_szKey;
        m_Own.m_Processor.*Told.m_pValue = true;
        EXPECT_EQ(Text(Told.m_szKey), "Enabled") << Told.m_szKey;
    }
}

TEST_F(OptionCalls, TellHowTheGeometryIsCorrected) {
    EXPECT_EQ(Text("GeometricCalibrate"), "ThinPlateSpline");
    m_Own.m_Processor.m_eGeometricMode = EMode::eOddLines;
    EXPECT_EQ(Text("geometricCALIBRATE"), "oddLines");
    m_Own.m_Processor.m_eGeometricMode = EMode::eGeometricOff;
    EXPECT_EQ(Text("GeometricCalibrate"), "off");
}

TEST_F(OptionCalls, RefuseWhatNamesNoOption) {
    for (const char* szOption :
         {"", "=true", "Unknown=true", "DynamicFingerMask", "DynamicFingerMask=perhaps"})
        EXPECT_EQ(Set(szOption), -37) << szOption;
    EXPECT_EQ(Set(nullptr), -37);
    unsigned long nSize = 7;
    for (const char* szKey : {"", "Unknown", "DynamicFingerMas", "DynamicFingerMask="})
        EXPECT_EQ(Get(szKey, nullptr, &nSize), -37) << szKey;
    EXPECT_EQ(Get(nullptr, nullptr, nullptr), -37);
    EXPECT_EQ(nSize, 7u);
}

TEST_F(OptionCalls, TellTheSizeOfATextAndFillItsRoomToTheLastByte) {
    m_Own.m_Processor.m_bSensitiveMode = true; // "Enabled" and its zero are eight bytes
    char acValue[9] = "????????";
    unsigned long nSize = 7;
    EXPECT_EQ(Get("SensitiveMode", acValue, &nSize), -21);
    EXPECT_EQ(nSize, 8u);
    EXPECT_EQ(std::string(acValue), "????????");
    nSize = 100;
    EXPECT_EQ(Get("SensitiveMode", nullptr, &nSize), 0);
    EXPECT_EQ(nSize, 8u);
    EXPECT_EQ(Get("SensitiveMode", acValue, &nSize), 0);
    EXPECT_EQ(nSize, 8u);
    EXPECT_EQ(std::string(acValue), "Enabled");
    EXPECT_EQ(Get("SensitiveMode", acValue, nullptr), -24);
}

TEST_F(OptionCalls, GiveTheLevelsThatAreAskedFor) {
    m_Own.m_Processor.m_DynamicCalibration.m_dDirtWarningLevel = 12.5;
    m_Own.m_Processor.m_DynamicCalibration.m_dDryFingerWarningLevel = 62.5;
    double dDirt = 0.0;
    double dDry = 0.0;
    EXPECT_EQ(GetCalibrationWarningLevels(m_Own.Handle(), &dDirt, nullptr), 0);
    EXPECT_EQ(GetCalibrationWarningLevels(m_Own.Handle(), nullptr, &dDry), 0);
    EXPECT_EQ(dDirt, 12.5);
    EXPECT_EQ(dDry, 62.5);
}
