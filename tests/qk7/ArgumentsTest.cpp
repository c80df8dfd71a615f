/// Arguments that the parser would take for something else.

#include "apps/qk7/Arguments.h"

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Targets.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

using namespace TestSupport;

namespace {

/// As the parser would hand it over; "!" and the words for what it refuses.
std::string Handed(const CLI::Validator& Validator, std::string text) {
    const std::string words = Validator(text);
    return words.empty() ? text : "!" + words;
}

/// A call is wrong, says so, and writes nothing.
void ExpectWrong(const Arguments& arguments, const std::string& Words) {
    const ClTestFolder folder;
    Put(folder / "target.bmp", RawTarget());
    const StEnded ended = Qk7(arguments, folder.Path());

    EXPECT_EQ(ended.m_nExit, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(ended.m_Out, "");
    EXPECT_NE(ended.m_Err.find(Words), std::string::npos) << ended.m_Err;
    EXPECT_EQ(folder.Names(), std::set<std::string>{"target.bmp"});
}

} // namespace

TEST(Qk7Arguments, GetToTheParserLastOneFirst) {
    const char* aArguments[] = {"qk7", "info", "a", "[e", "f]", "--x=y", "-", "--", ""};

    EXPECT_EQ(qk7::ForParser(9, aArguments),
              (std::vector<std::string>{"", "--", "-", "--x=y", "f]", "[e", "a", "info"}));
    EXPECT_EQ(qk7::ForParser(0, nullptr), std::vector<std::string>());
}

TEST(Qk7Arguments, AreMarkedWhereTheParserWouldTakeThemForSomethingElse) {
    const char* aArguments[] = {"qk7", "[b]", "--finger=[c,d]", "--empty=", "\1x"};

    EXPECT_EQ(qk7::ForParser(5, aArguments),
              (std::vector<std::string>{"\1\1x", "--empty=\1", "--finger=\1[c,d]", "\1[b]"}));
    EXPECT_EQ(Handed(qk7::AsWritten(), "\1\1x"), "\1x");
    EXPECT_EQ(Handed(qk7::AsWritten(), "\1[b]"), "[b]");
    EXPECT_EQ(qk7::WithoutMarks("no --finger=\1[c,d]"), "no --finger=[c,d]");
}

TEST(Qk7Arguments, InBracketsAreNamesAndPatterns) {
    const ClTestFolder folder;
    std::filesystem::create_directory(folder / "[a,b]");
    for (const char* szName : {"[a,b]/1.bmp", "c1", "d2"})
        Put(folder / szName, GreyBlock(1, 1));
    const auto count = [&](const Arguments& arguments) {
        const StEnded ended = Qk7(arguments, folder.Path());
        EXPECT_EQ(ended.m_Err, "");
        std::size_t nCount = 0;
        for (std::size_t n = 0; (n = ended.m_Out.find("bitmap,", n)) != std::string::npos; ++n)
            ++nCount;
        return nCount;
    };

    EXPECT_EQ(count({"info", "[a,b]"}), 1U);
    EXPECT_EQ(count({"info", "[cd][0-9]"}), 2U);
    EXPECT_EQ(count({"info", "--", "[a,b]", "[c-d][12]"}), 3U);
    EXPECT_EQ(Qk7({"info", "[x]"}, folder.Path()).m_Err,
              "qk7 info: [x]: No file has this name or matches this pattern.\n");
    EXPECT_EQ(Qk7({"report", "t", "--finger=[x]", "-o", "p"}, folder.Path()).m_Err,
              "qk7 report: [x]: No file has this name or matches this pattern.\n");
    EXPECT_EQ(Qk7({"precalculate", "-d", "[x]", "-o", "p"}, folder.Path()).m_Err,
              "qk7 precalculate: [x]: No such file or directory\n");
    EXPECT_EQ(Qk7({"precalculate", "-d", "x", "-o", "p", "[x]"}).m_Err,
              "qk7 precalculate: The following argument was not expected: [x]\n"
              "Run with --help for more information.\n");
}

TEST(Qk7Arguments, ThatAreEmptyAreRefused) {
    EXPECT_EQ(Handed(qk7::AsWritten(), "a b"), "a b");
    EXPECT_EQ(Handed(qk7::AsWritten(), ""), "!is empty");
    ExpectWrong({"generate", "target.bmp", "--second", "", "-o", "x.cal"}, "--second: is empty");
    ExpectWrong({"generate", "", "-o", "x.cal"}, "TARGET.bmp: is empty");
    ExpectWrong({"report", "target.bmp", "--empty=", "-o", "x"}, "--empty: is empty");
    ExpectWrong({"info", ""}, "FILE: is empty");
    ExpectWrong({"errors", ""}, "NUMBER: is empty");
    ExpectWrong({"simulate", "--seed", "", "-o", "x"}, "--seed: is empty");
}

TEST(Qk7Arguments, ThatAreNumbersAreDecimal) {
    EXPECT_EQ(Handed(qk7::Whole(), "0"), "0");
    EXPECT_EQ(Handed(qk7::Whole(), "0010"), "10");
    EXPECT_EQ(Handed(qk7::Whole(), "18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(Handed(qk7::Whole(), "18446744073709551616"),
              "!18446744073709551616 is too large a number");
    EXPECT_EQ(Handed(qk7::WholeOrNegative(), "-014"), "-14");
    EXPECT_EQ(Handed(qk7::WholeOrNegative(), "-9223372036854775809"),
              "!-9223372036854775809 is too large a number");
    for (const char* szNone : {"-1", "+1", "1e3", "0x10", "1.0", "1,5", " 1", "1 ", "nan", "-"})
        EXPECT_EQ(Handed(qk7::Whole(), szNone), std::string("!") + szNone + " is no whole number");
}

TEST(Qk7Arguments, ThatAreNumbersMeanWhatTheySay) {
    EXPECT_EQ(Qk7({"errors", "-014"}).m_Out, Qk7({"errors", "-14"}).m_Out);
    const ClTestFolder folder;
    for (const char* szSeed : {"010", "10"})
        ASSERT_EQ(Qk7({"simulate", "--scanners", "01", "-k", "empty", "--seed", szSeed, "-o",
                       folder / szSeed})
                      .m_nExit,
                  0);
    EXPECT_EQ(Get(folder / "010/01/scanner.cal"), Get(folder / "10/01/scanner.cal"));
    ExpectWrong({"simulate", "--seed", "-1", "-o", "x"}, "--seed: -1 is no whole number");
    ExpectWrong({"simulate", "--spoilt", "0x1", "--scanners", "1", "-o", "x"}, "no whole number");
    ExpectWrong({"simulate", "-n", "1,5", "-o", "x"}, "--count: 1,5 is no whole number");
    ExpectWrong({"calibrate", "-d", "a", "b", "-o", "c", "-j", "1e1"}, "--jobs: 1e1 is no whole");
    ExpectWrong({"errors", "99999999999999999999"}, "is too large a number");
}
