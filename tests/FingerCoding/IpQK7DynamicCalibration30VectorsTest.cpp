// Captures of eight kinds of fingers and of none, against the results of an independent model:
// outputs, masks, levels, and for two captures the image of every stage. Images are compared by
// the MD5 digest of their samples, line by line and without padding.

#include "FingerCoding/OpenDynamicCalibration.h"
#include "support/Md5.h"
#include "support/WorkingFolder.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using namespace TestSupport;

namespace {

json Parsed(const std::string& Name) {
    const Bytes aText = DataFile(Name);
    return json::parse(aText.begin(), aText.end());
}

std::string DigestOf(const ClImage& Image) {
    std::vector<unsigned char> aSamples;
    for (int y = 0; y < Image.Height(); ++y)
        aSamples.insert(aSamples.end(), Image.LineData(y), Image.LineData(y) + Image.Width());
    return Hex(Md5(aSamples));
}

/// Signed stages are told as bytes, and one byte per sample is what all have.
void ExpectImage(const ClImage& Image, const json& Told) {
    EXPECT_EQ(Image.BytesPerSample(), 1);
    EXPECT_EQ(Image.Planes(), 1);
    ASSERT_EQ(Image.Width(), Told.at("width"));
    ASSERT_EQ(Image.Height(), Told.at("height"));
    EXPECT_EQ(DigestOf(Image), Told.at("md5").get<std::string>());
}

const json& ToldImage(const json& Name) {
    static const json Digests = Parsed("dynamic/digests.json");
    return Digests.at(Name.get<std::string>());
}

void ExpectRun(const std::string& Kind, const json& Told, bool bSensitive) {
    ClTestImage Capture = WarpedCapture(Kind);
    const ClTestImage Before = Capture;
    StDynamicRun Run(Capture, bSensitive);
    EXPECT_EQ(Run.m_nResult, 0);
    ExpectImage(Run.m_Out, ToldImage(Told.at("output")));
    ExpectImage(Run.m_Mask, ToldImage(Told.at("mask")));
    EXPECT_EQ(Run.Dirt(), Told.at("dirt").get<double>());
    EXPECT_EQ(Run.Dry(), Told.at("dry").get<double>());
    EXPECT_EQ(IsWhite(Run.m_Out), !Told.at("finger").get<bool>());
    ExpectSameImage(Capture, Before);
}

class DynamicVectors : public testing::TestWithParam<const char*> {
protected:
    static json Told() {
        for (const json& Case : Parsed("dynamic/dynamic.json"))
            if (Case.at("kind") == GetParam())
                return Case;
        ADD_FAILURE() << "no case " << GetParam();
        return {};
    }
};

} // namespace

TEST_P(DynamicVectors, AreMetInTheNormalMode) {
    ExpectRun(GetParam(), Told().at("normal"), false);
}

TEST_P(DynamicVectors, AreMetInTheSensitiveMode) {
    ExpectRun(GetParam(), Told().at("sensitive"), true);
}

INSTANTIATE_TEST_SUITE_P(Captures, DynamicVectors,
                         testing::Values("loop", "dry", "wet", "partial", "light", "two_fingers",
                                         "empty", "dirty"),
                         [](const auto& Info) { return std::string(Info.param); });

TEST(DynamicVectorStages, AreStoredByTheirNames) {
    int nStages = 0;
    for (const json& Case : Parsed("dynamic/dynamic.json")) {
        if (!Case.at("normal").contains("stages"))
            continue;
        SCOPED_TRACE(Case.at("kind").get<std::string>());
        ClTestImage Capture = WarpedCapture(Case.at("kind"));
        ClTestImage Out;
        ClIpQK7DynamicCalibration30 Calibration;
        Calibration.m_pInImage = &Capture;
        Calibration.m_pOutImage = &Out;
        Calibration.m_bDumpImages = true;
        ClWorkingFolder Folder;
        EXPECT_EQ(Calibration.Apply(), 0);
        for (const auto& Stage : Case.at("normal").at("stages").items()) {
            SCOPED_TRACE(Stage.key());
            ClImage Stored;
            Stored.Load(("C:\\" + Stage.key() + ".kpf").c_str());
            ExpectImage(Stored, ToldImage(Stage.value()));
            ++nStages;
        }
        EXPECT_EQ(Folder.Names().size(), Case.at("normal").at("stages").size());
    }
    EXPECT_EQ(nStages, 32);
}
