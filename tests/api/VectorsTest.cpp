// What an independent model gives for the same blocks and captures.

#include "api/Api.h"
#include "support/DataJson.h"
#include "support/Md5.h"
#include "support/TestData.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using TestSupport::Bytes;
using TestSupport::ClApiHandle;
using TestSupport::DataBlock;
using TestSupport::DataFile;
using TestSupport::DataJson;

namespace {

constexpr std::size_t cnTableOffset = 28 + 94;

/// The table of a precalculated block without header, record and end magic.
Bytes TableOfBlock(const Bytes& aBlock) {
    return Bytes(aBlock.begin() + cnTableOffset, aBlock.end() - 4);
}

std::string HashOfBlock(const Bytes& aBlock) {
    TestSupport::Digest aHash{};
    std::copy_n(aBlock.begin() + 12, 16, aHash.begin());
    return TestSupport::Hex(aHash);
}

void ExpectEntry(const Bytes& aBlock, const json& Sample, int nWidth) {
    const int nEntry = Sample["y"].get<int>() * nWidth + Sample["x"].get<int>();
    const unsigned char* pEntry = aBlock.data() + cnTableOffset + 36 * nEntry;
    std::int32_t nOffset = 0;
    std::int16_t anWeights[16];
    std::memcpy(&nOffset, pEntry, 4);
    std::memcpy(anWeights, pEntry + 4, 32);
    EXPECT_EQ(nOffset, Sample["offset"]);
    EXPECT_EQ(std::vector<int>(anWeights, anWeights + 16),
              Sample["weights"].get<std::vector<int>>());
}

/// Header, palette and pixels agree; line ends are not told.
void ExpectSameImage(const Bytes& aBlock, const Bytes& aExpected) {
    ASSERT_EQ(aBlock.size(), aExpected.size());
    EXPECT_TRUE(std::equal(aBlock.begin(), aBlock.begin() + 40 + 1024, aExpected.begin()));
    for (int y = 0; y < TestSupport::Height(aExpected); ++y)
        ASSERT_EQ(TestSupport::Line(aBlock, y), TestSupport::Line(aExpected, y)) << "line " << y;
}

} // namespace

TEST(Vectors, TablesAreByteForByteAsTold) {
    const json Tables = DataJson("tables/tables.json");
    ASSERT_EQ(Tables.size(), 4u);
    for (const json& Table : Tables) {
        ClApiHandle Handle;
        const std::string Record = Table["record"];
        ASSERT_EQ(Handle.SetData(DataFile(Record)), 0);
        const Bytes aBlock = Handle.PrecalculatedData();
        EXPECT_EQ(aBlock.size(), Table["size_of_precalculated_block"]);
        EXPECT_EQ(TestSupport::Hex(TestSupport::Md5(aBlock)), Table["md5_of_precalculated_block"])
            << Record;
        ASSERT_EQ(Table["samples"].size(), 40u);
        for (const json& Sample : Table["samples"])
            ExpectEntry(aBlock, Sample, 320);
    }
}

TEST(Vectors, HashesAreThoseToldForEveryLayout) {
    int nHashes = 0;
    for (const json& Scanner : DataJson("records/records.json"))
        for (const json& Layout : Scanner["layouts"]) {
            ClApiHandle Handle;
            Handle.Set("PrecalculatedData=true");
            const std::string Record = Layout["file"];
            ASSERT_EQ(Handle.SetData(DataFile(Record)), 0) << Record;
            const json& Told = Layout.contains("md5_of_content") ? Layout : Scanner["layouts"][0];
            EXPECT_EQ(HashOfBlock(Handle.PrecalculatedData()), Told["md5_of_content"]) << Record;
            ++nHashes;
        }
    EXPECT_EQ(nHashes, 24);
}

TEST(Vectors, EveryLayoutGivesTheSameTable) {
    const json Tables = DataJson("tables/tables.json");
    const json Scanner = DataJson("records/records.json")[0];
    ASSERT_EQ(DataFile("tables/scanner900.cal"), DataFile("records/scanner900_layout6.cal"));
    ClApiHandle Newest;
    ASSERT_EQ(Newest.SetData(DataFile("records/scanner900_layout6.cal")), 0);
    const Bytes aTable = TableOfBlock(Newest.PrecalculatedData());
    for (const json& Layout : Scanner["layouts"]) {
        ClApiHandle Handle;
        const std::string Record = Layout["file"];
        ASSERT_EQ(Handle.SetData(DataFile(Record)), 0);
        EXPECT_EQ(TableOfBlock(Handle.PrecalculatedData()), aTable) << Record;
    }
}

TEST(Vectors, CorrectedCapturesAreAsTold) {
    const json Captures = DataJson("geometric/geometric.json");
    ASSERT_EQ(Captures.size(), 3u);
    for (const json& Capture : Captures) {
        ClApiHandle Handle;
        ASSERT_EQ(Handle.SetData(DataFile(Capture["record"])), 0);
        const Bytes aRaw = DataBlock(Capture["capture"]);
        for (const char* szMode : {"oddLines", "ThinPlateSpline"}) {
            SCOPED_TRACE(Capture[szMode].get<std::string>());
            Handle.Set((std::string("GeometricCalibrate=") + szMode).c_str());
            ExpectSameImage(Handle.Corrected(aRaw), DataBlock(Capture[szMode]));
        }
    }
}

TEST(Vectors, CorrectedCapturesAreTheSameAfterAFastStart) {
    const Bytes aRecord = DataFile("geometric/scanner904.cal");
    const Bytes aRaw = DataBlock("geometric/904_raw.bmp");
    ClApiHandle First;
    ASSERT_EQ(First.SetData(aRecord), 0);
    ClApiHandle Second;
    Second.Set("PrecalculatedData=true");
    ASSERT_EQ(Second.SetData(aRecord), 0);
    ASSERT_EQ(Second.SetPrecalculatedData(First.PrecalculatedData()), 0);
    ExpectSameImage(Second.Corrected(aRaw), DataBlock("geometric/904_ThinPlateSpline.bmp"));
}
