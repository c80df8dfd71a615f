/// `qk7 calibrate`: the levels that it tells.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/TestFiles.h"

#include "TessarinCalibrateSDK.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

/// A folder with a simulated scanner's files; the tool runs in it.
class Qk7CalibrateLevels : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Qk7({"simulate", "-s", "5", "-k", "whorl", "-k", "dirty", "-o", m_Folder.Path()})
                      .m_nExit,
                  0);
    }

    StEnded Calibrate(const Arguments& more) {
        Arguments arguments = {"calibrate", "-q", "-d", "scanner.cal", "-o", "out/"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    std::pair<double, double> Expected(const std::string& Name) {
        const Bytes file = Get(m_Folder / Name);
        return DirectLevels(Get(m_Folder / "scanner.cal"), Bytes(file.begin() + 14, file.end()));
    }

    ClTestFolder m_Folder;
};

std::string Hundredths(double dValue) {
    char szText[64];
    std::snprintf(szText, sizeof szText, "%.2f", dValue);
    return szText;
}

} // namespace

TEST_F(Qk7CalibrateLevels, AreTheLibrarysAsJson) {
    const StEnded ended = Calibrate({"--json", "whorl.bmp", "none.bmp", "dirty.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 calibrate: none.bmp: No such file or directory\n");
    const json told = ResultsOf(ended.m_Out, "calibrate");
    ASSERT_EQ(told.size(), 3U);
    EXPECT_EQ(told[0], json({{"file", "whorl.bmp"},
                             {"output", "out/whorl.bmp"},
                             {"skipped", false},
                             {"dirt_level", Expected("whorl.bmp").first},
                             {"dry_finger_level", Expected("whorl.bmp").second}}));
    EXPECT_EQ(told[1],
              json({{"file", "none.bmp"}, {"error", "none.bmp: No such file or directory"}}));
    EXPECT_EQ(told[2].at("dirt_level"), Expected("dirty.bmp").first);
    EXPECT_EQ(told[2].at("dry_finger_level"), Expected("dirty.bmp").second);
}

TEST_F(Qk7CalibrateLevels, AreTheLibrarysAsText) {
    const StEnded ended = Calibrate({"-v", "whorl.bmp"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_EQ(ended.m_Out, "whorl.bmp: dirt level " + Hundredths(Expected("whorl.bmp").first) +
                               ", dry finger level " + Hundredths(Expected("whorl.bmp").second) +
                               "\n");
}

TEST_F(Qk7CalibrateLevels, AreNotToldWhenNobodyAsks) {
    EXPECT_EQ(Calibrate({"whorl.bmp"}).m_Out, "");
}

TEST_F(Qk7CalibrateLevels, AreNoneWithoutADynamicCalibration) {
    const StEnded text = Calibrate({"-v", "-O", "DynamicFingerMask=false", "whorl.bmp"});
    EXPECT_EQ(text.m_nExit, 0);
    EXPECT_EQ(text.m_Out, "whorl.bmp: no levels, as DynamicFingerMask is off\n");

    const json told = ResultsOf(
        Calibrate({"--json", "-O", "dynamicfingermask=disable", "whorl.bmp"}).m_Out, "calibrate");
    EXPECT_TRUE(told[0].at("dirt_level").is_null());
    EXPECT_TRUE(told[0].at("dry_finger_level").is_null());
}
