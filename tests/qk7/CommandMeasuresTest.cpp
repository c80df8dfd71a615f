/// The measures that `qk7 calibrate` and `qk7 contamination` tell.

#include "apps/qk7/Measures.h"

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

/// A folder with a simulated scanner's files; the tool runs in it.
class Qk7CommandMeasures : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Qk7({"simulate", "-s", "5", "-k", "whorl", "-k", "empty", "-o", m_Folder.Path()})
                      .m_nExit,
                  0);
    }

    Bytes Block(const std::string& Name) {
        const Bytes file = Get(m_Folder / Name);
        return Bytes(file.begin() + 14, file.end());
    }

    Bytes Corrected(const std::string& Option) {
        return DirectlyCalibrated(Get(m_Folder / "scanner.cal"), Block("whorl.bmp"), {Option});
    }

    StEnded Run(const Arguments& arguments) { return Qk7(arguments, m_Folder.Path()); }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7CommandMeasures, OfAPrintAreToldBesideTheLevels) {
    const json plain = ResultsOf(
        Run({"calibrate", "-d", "scanner.cal", "-o", "out/", "--json", "whorl.bmp"}).m_Out,
        "calibrate");
    EXPECT_FALSE(plain[0].contains("measures"));

    const json told = ResultsOf(
        Run({"calibrate", "-d", "scanner.cal", "-o", "out/", "--json", "--measures", "whorl.bmp"})
            .m_Out,
        "calibrate");

    const auto expected =
        qk7::MeasureFinger(Corrected("MaskIsOutput=false"), Corrected("MaskIsOutput=true"),
                           Corrected("DynamicFingerMask=false"));
    ASSERT_TRUE(expected.m_Print.m_Ridges.m_dPressure);
    ASSERT_TRUE(expected.m_dLightTaken);
    EXPECT_EQ(told[0].at("measures"), json(qk7::FingerJson(expected)));
    EXPECT_EQ(told[0].at("dirt_level"), plain[0].at("dirt_level"));
    EXPECT_EQ(told[0].at("dry_finger_level"), plain[0].at("dry_finger_level"));
}

TEST_F(Qk7CommandMeasures, OfAPrintFollowTheLevelsAsText) {
    const StEnded ended =
        Run({"calibrate", "-d", "scanner.cal", "-o", "out/", "--measures", "whorl.bmp"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out.find("whorl.bmp: dirt level"), 0U);
    EXPECT_NE(ended.m_Out.find("\n  print: area "), std::string::npos);
}

TEST_F(Qk7CommandMeasures, AreNoneWithoutADynamicCalibration) {
    const json told = ResultsOf(Run({"calibrate", "-d", "scanner.cal", "-o", "out/", "--json",
                                     "--measures", "-O", "DynamicFingerMask=false", "whorl.bmp"})
                                    .m_Out,
                                "calibrate");
    EXPECT_TRUE(told[0].at("dirt_level").is_null());
    EXPECT_TRUE(told[0].at("measures").is_null());
}

TEST_F(Qk7CommandMeasures, OfThePlatenAreToldBesideTheContamination) {
    const json told = ResultsOf(Run({"contamination", "--json", "--measures", "empty.bmp"}).m_Out,
                                "contamination");

    const auto expected = qk7::MeasurePlaten(Block("empty.bmp"));
    ASSERT_TRUE(expected);
    EXPECT_GT(expected->m_dUniformity, 0.8);
    EXPECT_EQ(told[0].at("platen"), json(qk7::PlatenJson(expected)));
    EXPECT_FALSE(
        ResultsOf(Run({"contamination", "--json", "empty.bmp"}).m_Out, "contamination")[0].contains(
            "platen"));
}

TEST_F(Qk7CommandMeasures, OfThePlatenFollowTheContaminationAsText) {
    const std::string told = Run({"contamination", "--measures", "empty.bmp"}).m_Out;
    EXPECT_EQ(told.find("empty.bmp: contamination level"), 0U);
    EXPECT_NE(told.find("\n  platen: brightness "), std::string::npos);
}
