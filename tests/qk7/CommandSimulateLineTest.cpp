/// `qk7 simulate --scanners`: a production line of simulated scanners.

#include "qk7/CommandRunner.h"
#include "qk7/Documents.h"
#include "qk7/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

using namespace TestSupport;
using nlohmann::json;
using testing::HasSubstr;

namespace {

using Names = std::set<std::string>;

Names NamesIn(const std::string& Folder) {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(Folder))
        names.insert(entry.path().filename().string());
    return names;
}

} // namespace

TEST(Qk7SimulateLine, HasAFolderForEachScanner) {
    const ClTestFolder folder;
    const StEnded ended = Qk7(
        {"simulate", "--seed", "5", "--scanners", "2", "-k", "arch", "-o", "line"}, folder.Path());
    EXPECT_EQ(ended.m_nExit, 0) << ended.m_Err;
    EXPECT_EQ(NamesIn(folder / "line"), (Names{"01", "02"}));
    EXPECT_EQ(NamesIn(folder / "line/02"),
              (Names{"arch.bmp", "empty.bmp", "scanner.cal", "second.bmp", "target.bmp"}));
}

TEST(Qk7SimulateLine, HasTheScannersOfTheSeedsFromTheFirst) {
    const ClTestFolder folder;
    Qk7({"simulate", "--seed", "5", "--scanners", "2", "-k", "arch", "-o", "line"}, folder.Path());
    Qk7({"simulate", "--seed", "6", "-k", "arch", "-o", "six"}, folder.Path());
    for (const char* szName : {"target.bmp", "arch.bmp", "scanner.cal"})
        EXPECT_EQ(Get(folder / (std::string("line/02/") + szName)),
                  Get(folder / (std::string("six/") + szName)));
    EXPECT_NE(Get(folder / "line/02/second.bmp"), Get(folder / "line/02/target.bmp"));
}

TEST(Qk7SimulateLine, SpoilsSomeInTurnEvenlyAmongTheOthers) {
    const ClTestFolder folder;
    const StEnded ended = Qk7(
        {"simulate", "--scanners", "4", "--spoilt", "2", "--json", "-o", "line"}, folder.Path());
    std::vector<std::string> spoilt;
    for (const json& result : ResultsOf(ended.m_Out, "simulate"))
        if (result.contains("case"))
            spoilt.push_back(result["file"].get<std::string>() + " " +
                             result["case"].get<std::string>());
    EXPECT_EQ(spoilt, (std::vector<std::string>{"line/02/target.bmp hidden_dot",
                                                "line/04/target.bmp missing_dot"}));
}

TEST(Qk7SimulateLine, RefusesMoreSpoiltOnesThanScanners) {
    const ClTestFolder folder;
    const StEnded ended =
        Qk7({"simulate", "--scanners", "2", "--spoilt", "3", "-o", "line"}, folder.Path());
    EXPECT_EQ(ended.m_nExit, 2);
    EXPECT_THAT(ended.m_Err, HasSubstr("--spoilt 3 is more than --scanners 2"));
    EXPECT_EQ(
        Qk7({"simulate", "--scanners", "2", "-c", "dust", "-o", "line"}, folder.Path()).m_nExit, 2);
}
