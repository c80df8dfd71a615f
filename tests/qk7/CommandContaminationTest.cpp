/// `qk7 contamination`.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

/// A folder with captures of a clean and of a dirty platen; the tool runs in it.
class Qk7Contamination : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(Qk7({"simulate", "-s", "3", "-k", "empty", "-k", "dirty", "-o", m_Folder.Path()})
                      .m_nExit,
                  0);
    }

    Bytes Block(const std::string& Name) {
        const Bytes file = Get(m_Folder / Name);
        return Bytes(file.begin() + 14, file.end());
    }

    StEnded Measure(const Arguments& more) {
        Arguments arguments = {"contamination", "-q"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Qk7(arguments, m_Folder.Path());
    }

    ClTestFolder m_Folder;
};

} // namespace

TEST_F(Qk7Contamination, TellsTheLevelsOfTheLibrary) {
    const StEnded ended = Measure({"--json", "empty.bmp", "dirty.bmp"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Err, "");
    const json told = ResultsOf(ended.m_Out, "contamination");
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0].at("file"), "empty.bmp");
    EXPECT_EQ(told[0].at("contamination_level"), DirectContamination(Block("empty.bmp")));
    EXPECT_EQ(told[1].at("contamination_level"), DirectContamination(Block("dirty.bmp")));
    EXPECT_LT(told[0].at("contamination_level"), told[1].at("contamination_level"));
}

TEST_F(Qk7Contamination, PrintsALineForEachCapture) {
    Put(m_Folder / "even.bmp", EmptyPlaten());

    const StEnded ended = Measure({"even.bmp", "none.bmp", "dirty.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Err, "qk7 contamination: none.bmp: No such file or directory\n");
    EXPECT_EQ(ended.m_Out.rfind("even.bmp: contamination level ", 0), 0U) << ended.m_Out;
    EXPECT_NE(ended.m_Out.find("\ndirty.bmp: contamination level "), std::string::npos);
}

TEST_F(Qk7Contamination, SaysHowABitmapHasToBeSaved) {
    constexpr std::size_t cnCompressionAt = 16;
    Bytes unknown = Block("empty.bmp");
    unknown[cnCompressionAt] = 9;
    Put(m_Folder / "unknown.bmp", unknown);
    EXPECT_EQ(Measure({"unknown.bmp"}).m_Err,
              "qk7 contamination: unknown.bmp: -31 The compression FOCC is not supported. Save it "
              "without compression.\n");

    // The library measures 0.00 on such a block.
    Bytes compressed = Block("empty.bmp");
    compressed[cnCompressionAt] = 1;
    Put(m_Folder / "compressed.bmp", compressed);
    const StEnded ended = Measure({"compressed.bmp"});
    EXPECT_EQ(ended.m_nExit, 1);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_EQ(ended.m_Err,
              "qk7 contamination: compressed.bmp: is compressed. Save it without compression.\n");
}

TEST_F(Qk7Contamination, SaysWhichDepthIsExpected) {
    Bytes deep = GreyBlock(4, 4);
    deep[14] = 24;
    deep.resize(40 + 12 * 4);
    Put(m_Folder / "deep.bmp", deep);

    EXPECT_EQ(
        Measure({"deep.bmp"}).m_Err,
        "qk7 contamination: deep.bmp: -101 Internal error. It has 24 bits in 1 plane(s). Save "
        "it as an 8-bit grey bitmap.\n");
}

TEST_F(Qk7Contamination, TellsFailuresAsJson) {
    Put(m_Folder / "short.bmp", ToBytes("BM"));

    const StEnded ended = Measure({"--json", "short.bmp"});

    EXPECT_EQ(ended.m_nExit, 1);
    const json told = ResultsOf(ended.m_Out, "contamination");
    EXPECT_EQ(told[0].at("file"), "short.bmp");
    EXPECT_EQ("qk7 contamination: " + told[0].at("error").get<std::string>() + "\n", ended.m_Err);
}
