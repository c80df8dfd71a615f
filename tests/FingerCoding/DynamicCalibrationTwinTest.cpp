// The dynamic calibration against its plain twin: stage by stage, with the place and the value of
// the first difference. The twin itself is held to the results of an independent model.

#include "FingerCoding/NaiveDynamicCalibration.h"
#include "FingerCoding/OpenDynamicCalibration.h"
#include "FingerCoding/RandomCaptures.h"
#include "support/Md5.h"
#include "support/WorkingFolder.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>

using namespace TestSupport;

namespace {

using nlohmann::json;

Naive::Grid GridOf(const ClImage& Image) {
    Naive::Grid Result(Image.Width(), Image.Height());
    for (int y = 0; y < Image.Height(); ++y)
        for (int x = 0; x < Image.Width(); ++x)
            Result.At(x, y) = Image.LineData(y)[x];
    return Result;
}

Naive::StCalibrated TwinOf(const ClImage& Capture, const Naive::StSettings& Settings) {
    return Naive::Calibrated(GridOf(Capture), Capture.PelsX(), Capture.PelsY(), Settings);
}

Naive::StSettings Mode(bool bSensitive) {
    Naive::StSettings Settings;
    Settings.m_bSensitive = bSensitive;
    return Settings;
}

/// Tells the first place that differs.
testing::AssertionResult IsSame(const ClImage& Image, const Naive::Grid& Expected) {
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

void ExpectLikeTheTwin(const StDynamicRun& Run, const Naive::StCalibrated& Twin) {
    EXPECT_EQ(Run.m_nResult, 0);
    EXPECT_TRUE(IsSame(Run.m_Out, Twin.m_Out));
    EXPECT_TRUE(IsSame(Run.m_Mask, Twin.m_Mask));
    EXPECT_EQ(Run.Dirt(), Twin.m_dDirt);
    EXPECT_EQ(Run.Dry(), Twin.m_dDry);
}

/// Runs in a folder of its own, and compares every stage up to the first that differs.
void ExpectStagesLikeTheTwin(ClTestImage& rCapture, bool bSensitive,
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
