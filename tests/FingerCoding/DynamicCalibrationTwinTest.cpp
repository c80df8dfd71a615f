// The dynamic calibration against its plain twin: stage by stage, with the place and the value of
// the first difference. The twin itself is held to the results of an independent model.

#include "FingerCoding/NaiveDynamicCalibration.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/RandomCaptures.h"
#include "FingerCoding/TwinComparison.h"
#include "support/Md5.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>

using namespace TestSupport;

namespace {

using nlohmann::json;

Naive::StSettings Mode(bool bSensitive) {
    Naive::StSettings Settings;
    Settings.m_bSensitive = bSensitive;
    return Settings;
}

json Parsed(const std::string& Name) {
    const Bytes aText = DataFile(Name);
    return json::parse(aText.begin(), aText.end());
}

std::string DigestOf(const Naive::Grid& Image) {
    return Hex(Md5(std::vector<unsigned char>(Image.m_aValues.begin(), Image.m_aValues.end())));
}

// The vectors

class DynamicTwin : public testing::TestWithParam<std::tuple<const char*, bool>> {
protected:
    std::string Kind() const { return std::get<0>(GetParam()); }
    bool Sensitive() const { return std::get<1>(GetParam()); }
    json Told() const {
        for (const json& Case : Parsed("dynamic/dynamic.json"))
            if (Case.at("kind") == Kind())
                return Case.at(Sensitive() ? "sensitive" : "normal");
        ADD_FAILURE() << "no case " << Kind();
        return {};
    }

    /// Each once.
    const Naive::StCalibrated& Twin() {
        static std::map<std::pair<std::string, bool>, Naive::StCalibrated> Twins;
        const auto [it, bNew] = Twins.try_emplace({Kind(), Sensitive()});
        if (bNew)
            it->second = TwinOf(m_Capture, Mode(Sensitive()));
        return it->second;
    }

    ClTestImage m_Capture = WarpedCapture(Kind());
};

TEST_P(DynamicTwin, MeetsTheIndependentModel) {
    const json Told = this->Told();
    const json Digests = Parsed("dynamic/digests.json");
    const auto digest = [&](const json& Name) {
        return Digests.at(Name.get<std::string>()).at("md5").get<std::string>();
    };
    EXPECT_EQ(DigestOf(Twin().m_Out), digest(Told.at("output")));
    EXPECT_EQ(DigestOf(Twin().m_Mask), digest(Told.at("mask")));
    EXPECT_EQ(Twin().m_dDirt, Told.at("dirt").get<double>());
    EXPECT_EQ(Twin().m_dDry, Told.at("dry").get<double>());
    for (const auto& [Name, Stage] : Twin().m_aStages)
        if (Told.contains("stages")) {
            EXPECT_EQ(DigestOf(Stage), digest(Told.at("stages").at(Name))) << Name;
        }
}

TEST_P(DynamicTwin, IsMetInEveryPixelOfEveryStage) {
    ExpectLikeTheTwin(StDynamicRun(m_Capture, Sensitive()), Twin());
    ExpectStagesLikeTheTwin(m_Capture, Sensitive(), Twin());
}

INSTANTIATE_TEST_SUITE_P(Captures, DynamicTwin,
                         testing::Combine(testing::Values("loop", "dry", "wet", "partial", "light",
                                                          "two_fingers", "empty", "dirty"),
                                          testing::Bool()),
                         [](const auto& Info) {
                             return std::string(std::get<0>(Info.param)) +
                                    (std::get<1>(Info.param) ? "_sensitive" : "_normal");
                         });

// Small captures of all resolutions

TEST(DynamicTwinRandom, IsMetBySmallCapturesOfUnequalAxes) {
    int nFingers = 0;
    int nUnequal = 0;
    for (unsigned nSeed = 1; nSeed <= 60; ++nSeed)
        for (const bool bSensitive : {false, true}) {
            SCOPED_TRACE("seed " + std::to_string(nSeed) + (bSensitive ? ", sensitive" : ""));
            ClTestImage Capture = ClRandomCapture(nSeed).Make();
            const Naive::StCalibrated Twin = TwinOf(Capture, Mode(bSensitive));
            const StDynamicRun Run(Capture, bSensitive);
            ExpectLikeTheTwin(Run, Twin);
            if (HasFailure())
                return ExpectStagesLikeTheTwin(Capture, bSensitive, Twin);
            const bool bFinger = !IsWhite(Run.m_Out);
            nFingers += bFinger ? 1 : 0;
            nUnequal += bFinger && Capture.PelsX() != Capture.PelsY() ? 1 : 0;
        }
    EXPECT_GT(nFingers, 25);
    EXPECT_GT(nUnequal, 15);
}

} // namespace
