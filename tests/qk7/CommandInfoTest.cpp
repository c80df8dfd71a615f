/// `qk7 info`.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/PngFiles.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

/// The array that --json prints; the parser throws where it is no valid JSON.
json JsonOf(const Arguments& files, int nExit = 0) {
    Arguments arguments = {"info", "--json"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const StEnded ended = Qk7(arguments);
    EXPECT_EQ(ended.m_nExit, nExit) << ended.m_Err;
    const json array = ResultsOf(ended.m_Out, "info");
    EXPECT_TRUE(array.is_array());
    EXPECT_EQ(array.size(), files.size());
    return array;
}

} // namespace

TEST(Qk7Info, DescribesACalibrationBlock) {
    const StEnded ended = Qk7({"info", RecordPath()});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    EXPECT_EQ(ended.m_Out,
              RecordPath() +
                  ": calibration block, 1261 bytes\n"
                  "  tags                 CAL GEO\n"
                  "  version              006 (layout 6)\n"
                  "  source               384 x 1057 pixels, 19397 x 39735 pixels/m "
                  "(492.68 x 1009.27 dpi)\n"
                  "  target               320 x 480 pixels, 19685 x 19685 pixels/m "
                  "(500.00 x 500.00 dpi)\n"
                  "  planes               1\n"
                  "  background           255\n"
                  "  target points        75, x 41.755 to 277.975, y 51.734 to 445.434\n"
                  "  actual points 0      75, x 70.287 to 310.906, y 132.110 to 947.205\n"
                  "  checksum             0xf7337669, ok\n");
}

TEST(Qk7Info, DescribesAnOldCalibrationBlock) {
    const StEnded ended = Qk7({"info", DataPath("records/scanner900_old_tags.cal")});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_NE(ended.m_Out.find("  tags                 Cal Lmv\n"
                               "  version              002 (layout 0)\n"
                               "  source               384 x 1057 pixels\n"),
              std::string::npos)
        << ended.m_Out;
    EXPECT_NE(ended.m_Out.find("  background           none in this layout\n"), std::string::npos);
    EXPECT_NE(ended.m_Out.find("  checksum             none in this layout\n"), std::string::npos);
}

TEST(Qk7Info, PrintsACalibrationBlockAsJson) {
    const json info = JsonOf({RecordPath()})[0];

    EXPECT_EQ(info.at("file"), RecordPath());
    EXPECT_EQ(info.at("kind"), "calibration block");
    EXPECT_EQ(info.at("bytes"), 1261);
    EXPECT_EQ(info.at("tags"), json::array({"CAL", "GEO"}));
    EXPECT_EQ(info.at("version"), "006");
    EXPECT_EQ(info.at("layout"), 6);
    EXPECT_EQ(info.at("source"), json::parse(R"({"width": 384, "height": 1057,
        "pixels_per_metre": [19397, 39735], "dpi": [492.68, 1009.27]})"));
    EXPECT_EQ(info.at("target"), json::parse(R"({"width": 320, "height": 480,
        "pixels_per_metre": [19685, 19685], "dpi": [500.0, 500.0]})"));
    EXPECT_EQ(info.at("planes"), 1);
    EXPECT_EQ(info.at("background"), 255);
    EXPECT_EQ(info.at("target_points").at("count"), 75);
    EXPECT_EQ(info.at("target_points").at("extent").at("min"),
              json::array({41.7547607421875, 51.73363494873047}));
    EXPECT_EQ(info.at("actual_points").size(), 1U);
    EXPECT_EQ(info.at("actual_points").at(0).at("count"), 75);
    EXPECT_EQ(info.at("checksum"),
              json::parse(R"({"stored": 4147345001, "computed": 4147345001, "ok": true})"));
    EXPECT_EQ(info.at("bytes_behind"), 0);
}

TEST(Qk7Info, TellsInJsonWhatALayoutDoesNotHave) {
    const json info = JsonOf({DataPath("records/scanner900_layout3.cal")})[0];

    EXPECT_TRUE(info.at("background").is_null());
    EXPECT_TRUE(info.at("checksum").is_null());
    EXPECT_FALSE(info.at("source").contains("dpi"));
}

TEST(Qk7Info, ReportsAWrongChecksumWithoutFailing) {
    const ClTestFolder folder;
    Bytes damaged = Record() + ToBytes("more");
    damaged[100] ^= 1;
    Put(folder / "damaged.cal", damaged);

    const StEnded ended = Qk7({"info", folder / "damaged.cal"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_NE(ended.m_Out.find("  checksum             WRONG: 0xf7337669 stored, 0x"),
              std::string::npos)
        << ended.m_Out;
    EXPECT_NE(ended.m_Out.find("  bytes behind         4, without meaning\n"), std::string::npos);
    EXPECT_EQ(JsonOf({folder / "damaged.cal"})[0].at("checksum").at("ok"), false);
}

TEST(Qk7Info, DescribesAPrecalculatedBlock) {
    const ClTestFolder folder;
    const Bytes table = DirectlyPrecalculated(Record());
    Put(folder / "scanner.pre", table);
    std::size_t nWithout = 0;
    for (std::size_t i = 0; i < 153600; ++i)
        nWithout += table[122 + 36 * i] == 0xFF && table[122 + 36 * i + 3] == 0xFF;

    const json info = JsonOf({folder / "scanner.pre"})[0];

    EXPECT_EQ(info.at("kind"), "precalculated block");
    EXPECT_EQ(info.at("version"), "001");
    EXPECT_EQ(info.at("hash"), "5f5a2b1f84fb121f268d570986579ba8"); // of an independent model
    EXPECT_EQ(info.at("source"), json::parse(R"({"width": 384, "height": 1057})"));
    EXPECT_EQ(info.at("target").at("width"), 320);
    EXPECT_EQ(info.at("target").at("dpi"), json::array({500.0, 500.0}));
    EXPECT_EQ(info.at("planes"), 1);
    EXPECT_EQ(info.at("background"), 255);
    EXPECT_EQ(info.at("entries"), 153600);
    EXPECT_EQ(info.at("entry_bytes"), 36);
    EXPECT_EQ(info.at("entries_without_source"), nWithout);
    EXPECT_EQ(info.at("bytes_behind"), 0);
    EXPECT_NE(Qk7({"info", folder / "scanner.pre"})
                  .m_Out.find("  hash                 5f5a2b1f84fb121f268d570986579ba8\n"),
              std::string::npos);
}

TEST(Qk7Info, DescribesABitmapFile) {
    const ClTestFolder folder;
    Put(folder / "a.bmp", GreyFileHeader(7, 3) + GreyBlock(7, 3));

    const StEnded ended = Qk7({"info", "a.bmp"}, folder.Path());

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out, "a.bmp: bitmap, 1102 bytes\n"
                           "  file header          yes: file size 1102, pixels at 1078\n"
                           "  size                 7 x 3 pixels\n"
                           "  depth                8 bits, 1 plane(s), compression 0\n"
                           "  resolution           0 x 0 pixels/m (0.00 x 0.00 dpi)\n"
                           "  colours              0 used, 0 important\n"
                           "  image size           0\n"
                           "  block bytes          1088, as the header implies\n");
}

TEST(Qk7Info, DescribesABitmapBlock) {
    const ClTestFolder folder;
    Put(folder / "a", GreyBlock(7, 3) + ToBytes("x"));
    Bytes upsideDown = GreyBlock(7, 3);
    std::fill_n(upsideDown.begin() + 8, 4, 0xFF); // a height of -1
    Put(folder / "b", upsideDown);

    const json infos = JsonOf({folder / "a", folder / "b"});

    EXPECT_EQ(infos.at(0).at("kind"), "bitmap");
    EXPECT_TRUE(infos.at(0).at("file_header").is_null());
    EXPECT_EQ(infos.at(0).at("width"), 7);
    EXPECT_EQ(infos.at(0).at("bits"), 8);
    EXPECT_EQ(infos.at(0).at("block_bytes"), 1089);
    EXPECT_EQ(infos.at(0).at("implied_bytes"), 1088);
    EXPECT_EQ(infos.at(1).at("height"), -1);
    EXPECT_TRUE(infos.at(1).at("implied_bytes").is_null());
    EXPECT_NE(Qk7({"info", folder / "a"})
                  .m_Out.find("  block bytes          1089, but the header implies 1088\n"),
              std::string::npos);
}

TEST(Qk7Info, GoesOnBehindAFileThatFails) {
    const ClTestFolder folder;
    Put(folder / "text", ToBytes("Once upon a time"));
    Put(folder / "empty", {});
    const Bytes record = Record();
    Put(folder / "cut.cal", Bytes(record.begin(), record.begin() + 30));
    Put(folder / "good.cal", record);

    const StEnded ended =
        Qk7({"info", "text", "empty", "none", "cut.cal", "good.cal"}, folder.Path());

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err,
              "qk7 info: text: is no calibration block, precalculated block, bitmap or PNG "
              "picture; it begins "
              "with 4f 6e 63 65 20 75 70 6f\n"
              "qk7 info: empty: is empty\n"
              "qk7 info: none: No such file or directory\n"
              "qk7 info: cut.cal: ends at byte 30, but the target size at byte 28 needs 4 bytes\n");
    EXPECT_EQ(ended.m_Out.rfind("good.cal: calibration block", 0), 0U) << ended.m_Out;
}

TEST(Qk7Info, GivesAFileThatFailsAnObjectWithTheError) {
    const ClTestFolder folder;
    Put(folder / "empty", {});

    const json infos = JsonOf({folder / "empty", RecordPath()}, 1);

    EXPECT_EQ(infos.at(0),
              json({{"file", folder / "empty"}, {"error", folder / "empty" + ": is empty"}}));
    EXPECT_EQ(infos.at(1).at("kind"), "calibration block");
}

TEST(Qk7Info, PrintsValidJsonForANameThatIsNotUtf8) {
    const ClTestFolder folder;
    Put(folder / "\xFF.cal", Record());

    EXPECT_EQ(JsonOf({folder / "\xFF.cal"})[0].at("file"), folder / "\xEF\xBF\xBD.cal");
}

TEST(Qk7Info, ShowsNoControlCharactersOfAFile) {
    const ClTestFolder folder;
    Bytes block = Get(DataPath("records/scanner900_layout0.cal"));
    block[8] = 0x1B; // no number: layout 0, as before
    block[9] = '[';
    Put(folder / "strange.cal", block);

    const StEnded ended = Qk7({"info", folder / "strange.cal"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_NE(ended.m_Out.find("  version              \\x1b[0 (layout 0)\n"), std::string::npos)
        << ended.m_Out;
}

TEST(Qk7Info, TellsAPngPicture) {
    const ClTestFolder folder;
    Put(folder / "a.png", PngFile({2, 1, 4, 0}, {{0x12}}, PngResolution(19685, 39370)));
    Put(folder / "b.png", PngFile({3, 1, 8, 2, 1}, {Bytes(9)}));

    const StEnded ended = Qk7({"info", "a.png", "b.png"}, folder.Path());

    EXPECT_EQ(ended.m_Out, "a.png: PNG picture, 91 bytes\n"
                           "  size                 2 x 1 pixels\n"
                           "  depth                4 bits, grey\n"
                           "  resolution           19685 x 39370 pixels/m (500.00 x 1000.00 dpi)\n"
                           "b.png: PNG picture, 78 bytes\n"
                           "  size                 3 x 1 pixels\n"
                           "  depth                8 bits, colour, interlaced\n"
                           "  resolution           not told\n");
}
