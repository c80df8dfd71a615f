// Records of an independent model: fields, points and digests it tells for every layout.

#include "Calibrate/CalibrateGeometricData.h"

#include "Calibrate/RecordVectors.h"
#include "Tools/MemStream.h"
#include "support/Md5.h"
#include "support/TestData.h"
#include "support/Throws.h"

#include <nlohmann/json.hpp>

#include <cstring>

using nlohmann::json;
using TestSupport::Bytes;
using TestSupport::ExpectNumbers;
using TestSupport::ExpectPointsTold;

namespace {

void Read(const Bytes& aBlock, ClCalibrateGeometricData& rData) {
    ClMemStream Stream(aBlock.data(), aBlock.size());
    static_cast<ClCalibrateDataBase&>(rData).Read(Stream);
}

void ExpectLayout(const json& Scanner, const json& Layout) {
    const std::string Name = Layout["file"];
    ClCalibrateGeometricData Data;
    Read(TestSupport::DataFile(Name), Data);

    ExpectPointsTold(Data.m_aTarget, Scanner["target"]);
    ExpectPointsTold(Data.m_aActual[0], Scanner["actual"]);
    if (!Layout.contains("numbers")) // the old tags: content as in layout 0
        return;
    ExpectNumbers(Data, Layout["numbers"]);
    EXPECT_EQ(Data.m_nBackground, Layout["background"]) << Name;
    TestSupport::Digest aHash{};
    Data.GenerateHash(aHash.data());
    EXPECT_EQ(TestSupport::Hex(aHash), Layout["md5_of_content"]) << Name;
}

} // namespace

TEST(CalibrateGeometricDataVectors, EveryLayoutReadsAsTold) {
    const Bytes aText = TestSupport::DataFile("records/records.json");
    const json Scanners = json::parse(aText.begin(), aText.end());
    ASSERT_EQ(Scanners.size(), 3u);
    for (const json& Scanner : Scanners) {
        ASSERT_EQ(Scanner["layouts"].size(), 8u);
        for (const json& Layout : Scanner["layouts"])
            ExpectLayout(Scanner, Layout);
    }
}

TEST(CalibrateGeometricDataVectors, TheOldTagsHoldTheRecordOfLayout0) {
    for (const char* szScanner : {"900", "901", "902"}) {
        const std::string Path = "records/scanner" + std::string(szScanner);
        ClCalibrateGeometricData Old;
        ClCalibrateGeometricData New;
        Read(TestSupport::DataFile(Path + "_old_tags.cal"), Old);
        Read(TestSupport::DataFile(Path + "_layout0.cal"), New);
        EXPECT_STREQ(Old.ReadVersion(), "002");
        EXPECT_TRUE(Old == New);
    }
}

TEST(CalibrateGeometricDataVectors, Layout6IsWrittenAsItWasRead) {
    for (const char* szScanner : {"900", "901", "902"}) {
        const Bytes aBlock =
            TestSupport::DataFile("records/scanner" + std::string(szScanner) + "_layout6.cal");
        ClCalibrateGeometricData Data;
        Read(aBlock, Data);
        ClMemStream Stream;
        static_cast<ClCalibrateDataBase&>(Data).Write(Stream);
        ASSERT_EQ(Stream.Size(), aBlock.size());
        EXPECT_EQ(std::memcmp(Stream.GetData(), aBlock.data(), aBlock.size()), 0);
    }
}
