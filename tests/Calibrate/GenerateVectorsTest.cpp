// Captures of the target plate, and the records and refusals of an independent model.

#include "Calibrate/IpCalibrateGeometricBuildRefPointsQK7.h"

#include "Calibrate/RecordVectors.h"
#include "Tools/Bitmap.h"
#include "Tools/FpImage.h"
#include "Tools/MemStream.h"
#include "support/TestData.h"
#include "support/Throws.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using TestSupport::Bytes;
using TestSupport::ExpectNumbers;
using TestSupport::ExpectPointsTold;

namespace {

using PointList = ClCalibrateGeometricData::PointList;

json Cases() {
    const Bytes aText = TestSupport::DataFile("generate/generate.json");
    return json::parse(aText.begin(), aText.end());
}

/// Generates as a scanner's calibration does: the plate shows dark dots.
long Generate(const std::string& Capture, ClCalibrateGeometricData& rData) {
    ClBitmap Bitmap;
    Bitmap.Load(TestSupport::DataPath(Capture).c_str());
    ClImage Image;
    EXPECT_TRUE(Image.Attach(Bitmap));
    ClIpCalibrateGeometricBuildRefPointsQK7 Builder;
    Builder.m_bBrightDots = false;
    Builder.m_pInImage = &Image;
    Builder.m_pOutData = &rData;
    return Builder.Apply();
}

void ExpectBlock(ClCalibrateGeometricData& rData, const Bytes& aExpected) {
    ClMemStream Stream;
    static_cast<ClCalibrateDataBase&>(rData).Write(Stream);
    ASSERT_EQ(Stream.Size(), aExpected.size());
    EXPECT_EQ(Bytes(Stream.GetData(), Stream.GetData() + Stream.Size()), aExpected);
}

} // namespace

TEST(GenerateVectors, CapturesOfThePlateGiveTheRecordsTold) {
    int nRecords = 0;
    for (const json& Case : Cases()) {
        if (Case["status"] != 0)
            continue;
        SCOPED_TRACE(Case["capture"].get<std::string>());
        ClCalibrateGeometricData Data;
        ASSERT_EQ(Generate(Case["capture"], Data), 0);
        ExpectNumbers(Data, Case["numbers"]);
        EXPECT_EQ(Data.m_nBackground, Case["background"]);
        ExpectPointsTold(Data.m_aActual[0], Case["actual"]);
        ExpectPointsTold(Data.m_aTarget, Case["target"]);
        ExpectBlock(Data, TestSupport::DataFile(Case["record"]));
        ++nRecords;
    }
    EXPECT_EQ(nRecords, 6);
}

TEST(GenerateVectors, UselessCapturesAreRefusedAsTold) {
    int nRefusals = 0;
    for (const json& Case : Cases()) {
        if (Case["status"] == 0)
            continue;
        SCOPED_TRACE(Case["capture"].get<std::string>());
        ClCalibrateGeometricData Data;
        EXPECT_THROWS(Generate(Case["capture"], Data), ClException, Case["status"].get<long>(),
                      Case["message"].get<std::string>());
        EXPECT_FALSE(Data.IsValid());
        ++nRefusals;
    }
    EXPECT_EQ(nRefusals, 3);
}
