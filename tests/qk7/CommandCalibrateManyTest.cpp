/// `qk7 calibrate` with many captures: folders, patterns, threads, what is told, and going on.

#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/Documents.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <regex>

using namespace TestSupport;
using nlohmann::json;
using qk7::Bytes;

namespace {

using Names = std::set<std::string>;

/// Captures that differ by their first pixel, in a folder; the tool runs beside it.
class Qk7CalibrateMany : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(m_Folder / "in/sub");
        Put(m_Folder / "scanner.cal", Record());
        for (int i = 0; i < 12; ++i)
            Put(m_Folder / ("in/" + Name(i)), CaptureOf(i));
    }

    static std::string Name(int i) {
        return std::string(i < 10 ? "0" : "") + std::to_string(i) + ".bmp";
    }

    static Bytes CaptureOf(int i) {
        Bytes block = Capture();
        for (std::size_t n = 0; n < 5000; ++n)
            block[40 + 1024 + n] = static_cast<unsigned char>(20 * i);
        return block;
    }

    static Bytes ResultOf(int i) {
        return GreyFileHeader(384, 528) +
               DirectlyCalibrated(Record(), CaptureOf(i),
                                  {"DynamicFingerMask=false", "GeometricCalibrate=oddLines"});
    }

    Arguments Quick(const Arguments& more) const {
        Arguments arguments = {"calibrate",
                               "-d",
                               "scanner.cal",
                               "-O",
                               "DynamicFingerMask=false",
                               "-O",
                               "GeometricCalibrate=oddLines"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    StEnded Calibrate(const Arguments& more) { return Qk7(Quick(more), m_Folder.Path()); }

    ClTestFolder m_Folder;
};

void ExpectSummary(const StEnded& Ended, const std::string& Counts) {
    const std::regex line(
        "qk7 calibrate: (.*) in [0-9]+\\.[0-9]{2} s \\([0-9]+\\.[0-9] per second\\)\n");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(Ended.m_Err, match, line)) << Ended.m_Err;
    EXPECT_EQ(match[1], Counts);
}

} // namespace

TEST_F(Qk7CalibrateMany, GivesTheSameFilesAndWordsForAnyNumberOfThreads) {
    Put(m_Folder / "in/03.bmp", {});
    Put(m_Folder / "in/07.bmp", ToBytes("no picture"));
    std::string out;
    std::string err;
    for (const char* szJobs : {"1", "2", "5", "64"}) {
        const StEnded ended =
            Calibrate({"in", "-o", std::string("out") + szJobs, "-q", "-v", "-j", szJobs});

        EXPECT_EQ(ended.m_nExit, 1);
        EXPECT_TRUE(out.empty() || ended.m_Out == out) << ended.m_Out;
        EXPECT_TRUE(err.empty() || ended.m_Err == err) << ended.m_Err;
        out = ended.m_Out;
        err = ended.m_Err;
        for (int i = 0; i < 12; ++i)
            if (i != 3 && i != 7) {
                EXPECT_EQ(Get(m_Folder / ("out" + std::string(szJobs) + "/" + Name(i))),
                          ResultOf(i));
            }
    }
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 10);
    EXPECT_LT(out.find("in/02.bmp"), out.find("in/10.bmp"));
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 2);
    EXPECT_LT(err.find("in/03.bmp: -21"), err.find("in/07.bmp: -21"));
}

TEST_F(Qk7CalibrateMany, EndsWithASummary) {
    ExpectSummary(Calibrate({"in", "-o", "out"}), "12 made");
    Put(m_Folder / "in/03.bmp", {});
    std::filesystem::remove(m_Folder / "out/03.bmp");
    std::filesystem::remove(m_Folder / "out/05.bmp");

    StEnded ended = Calibrate({"in", "-o", "out", "--skip-existing"});

    EXPECT_EQ(ended.m_nExit, 1);
    const std::size_t nEnd = ended.m_Err.find('\n') + 1;
    EXPECT_EQ(ended.m_Err.rfind("qk7 calibrate: in/03.bmp: -21", 0), 0U) << ended.m_Err;
    ended.m_Err.erase(0, nEnd);
    ExpectSummary(ended, "1 made, 10 skipped, 1 failed");
}

TEST_F(Qk7CalibrateMany, SaysNothingWhenItIsToldToBeQuiet) {
    const StEnded ended = Calibrate({"in", "-o", "out", "--quiet"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(ended.m_Out + ended.m_Err, "");
}

TEST_F(Qk7CalibrateMany, LeavesOutWhatIsThere) {
    std::filesystem::create_directory(m_Folder / "out");
    Put(m_Folder / "out/04.bmp", ToBytes("there"));

    const StEnded ended = Calibrate({"in", "-o", "out", "--skip-existing", "--json", "-q"});

    EXPECT_EQ(ended.m_nExit, 0);
    EXPECT_EQ(Get(m_Folder / "out/04.bmp"), ToBytes("there"));
    EXPECT_EQ(Get(m_Folder / "out/05.bmp"), ResultOf(5));
    const json told = ResultsOf(ended.m_Out, "calibrate");
    EXPECT_EQ(told[4], json({{"file", "in/04.bmp"}, {"output", "out/04.bmp"}, {"skipped", true}}));
    EXPECT_EQ(told[5].at("skipped"), false);
    EXPECT_NE(Calibrate({"in", "-o", "out", "-v", "-q", "--skip-existing"})
                  .m_Out.find("in/04.bmp: skipped, out/04.bmp is there\n"),
              std::string::npos);
}

TEST_F(Qk7CalibrateMany, ReplacesWhatIsThereUnlessItIsToldOtherwise) {
    std::filesystem::create_directory(m_Folder / "out");
    Put(m_Folder / "out/04.bmp", ToBytes("there"));

    Calibrate({"in", "-o", "out"});

    EXPECT_EQ(Get(m_Folder / "out/04.bmp"), ResultOf(4));
}

TEST_F(Qk7CalibrateMany, KeepsTheFoldersOfAFolder) {
    Put(m_Folder / "in/sub/04.bmp", CaptureOf(20));

    EXPECT_EQ(Calibrate({"in", "-r", "-o", "in/out", "-q"}).m_nExit, 0);
    // Called again it takes no result for a capture.
    EXPECT_EQ(Calibrate({"in", "-r", "-o", "in/out", "-q"}).m_nExit, 0);

    EXPECT_EQ(Get(m_Folder / "in/out/sub/04.bmp"), ResultOf(20));
    EXPECT_EQ(Get(m_Folder / "in/out/04.bmp"), ResultOf(4));
    EXPECT_FALSE(std::filesystem::exists(m_Folder / "in/out/out"));
}

TEST_F(Qk7CalibrateMany, TakesAPatternThatTheShellDidNot) {
    EXPECT_EQ(Calibrate({"in/0[45].*", "none*", "-o", "out", "-q"}).m_Err,
              "qk7 calibrate: none*: No file has this name or matches this pattern.\n");

    EXPECT_EQ(Get(m_Folder / "out/04.bmp"), ResultOf(4));
    EXPECT_EQ(Get(m_Folder / "out/05.bmp"), ResultOf(5));
}

TEST_F(Qk7CalibrateMany, PutsOneMatchIntoTheFolderToo) {
    EXPECT_EQ(Calibrate({"in/04.*", "-o", "out"}).m_nExit, 0);

    EXPECT_EQ(Get(m_Folder / "out/04.bmp"), ResultOf(4));
}

TEST_F(Qk7CalibrateMany, WritesTheFormatThatIsAskedFor) {
    EXPECT_EQ(Calibrate({"in", "-o", "out", "-q", "--format", "png"}).m_nExit, 0);
    EXPECT_EQ(Calibrate({"out/04.png", "-o", "copy.png", "--format", "bmp", "-O",
                         "GeometricCalibrate=off"})
                  .m_nExit,
              0);

    const std::string png = ToText(Get(m_Folder / "out/04.png"));
    EXPECT_EQ(png.substr(1, 3), "PNG");
    EXPECT_EQ(ToText(Get(m_Folder / "copy.png")).substr(0, 2), "BM");
}

TEST_F(Qk7CalibrateMany, ShowsItsProgressAtATerminal) {
    Arguments arguments = {"calibrate",
                           "-d",
                           m_Folder / "scanner.cal",
                           "-O",
                           "DynamicFingerMask=false",
                           "-j",
                           "1",
                           m_Folder / "in/00.bmp",
                           m_Folder / "none.bmp",
                           m_Folder / "in/02.bmp",
                           "-o",
                           m_Folder / "out"};

    const std::string shown = Qk7AtTerminal(arguments).m_Err;

    const std::size_t nFirst = shown.find("\r[....................] 0/3, 00.bmp");
    const std::size_t nMessage = shown.find("\r\033[K");
    const std::size_t nName = shown.find("none.bmp: No such file or directory\r\n");
    const std::size_t nLast = shown.find("\r[#############.......] 2/3, ");
    EXPECT_LT(nFirst, nMessage) << shown;
    EXPECT_LT(nMessage, nName) << shown;
    EXPECT_LT(nName, nLast) << shown;
    const std::size_t nSummary = shown.find("\r\033[Kqk7 calibrate: 2 made, 1 failed in ");
    EXPECT_LT(nLast, nSummary) << shown;
    EXPECT_LT(nSummary, shown.size()) << shown;

    arguments.push_back("-q");
    EXPECT_EQ(Qk7AtTerminal(arguments).m_Err.find('['),
              Qk7AtTerminal(arguments).m_Err.find("[31m"));
}

TEST_F(Qk7CalibrateMany, ShowsNoProgressForOneCapture) {
    EXPECT_EQ(
        Qk7AtTerminal({"calibrate", "-d", m_Folder / "scanner.cal", "-O", "DynamicFingerMask=false",
                       m_Folder / "in/00.bmp", "-o", m_Folder / "out"})
            .m_Err,
        "");
}

TEST_F(Qk7CalibrateMany, GoesOnWhereAnInterruptStoppedIt) {
    for (int i = 100; i < 900; ++i)
        std::filesystem::create_hard_link(m_Folder / "in/00.bmp",
                                          m_Folder / ("in/" + std::to_string(i) + ".bmp"));
    const Arguments arguments = {"calibrate",
                                 "-d",
                                 m_Folder / "scanner.cal",
                                 "-O",
                                 "DynamicFingerMask=false",
                                 "-O",
                                 "GeometricCalibrate=oddLines",
                                 m_Folder / "in",
                                 "-o",
                                 m_Folder / "out",
                                 "-j",
                                 "3",
                                 "--skip-existing"};
    const auto results = [&] {
        std::size_t nResults = 0;
        std::error_code ignored;
        for (std::filesystem::directory_iterator i(m_Folder / "out", ignored), end; i != end; ++i)
            ++nResults;
        return nResults;
    };

    const StEnded ended = Qk7Interrupted(arguments, SIGINT, [&] { return results() > 20; });

    EXPECT_EQ(ended.m_nSignal, SIGINT);
    EXPECT_EQ(ended.m_Err, "qk7 calibrate: interrupted; what is there is whole, --skip-existing "
                           "goes on from it\n");
    const std::size_t nMade = results();
    ASSERT_GT(nMade, 10U);
    ASSERT_LT(nMade, 812U);
    const StEnded further = Qk7(arguments);
    EXPECT_EQ(further.m_nExit, 0);
    EXPECT_NE(further.m_Err.find(std::to_string(812 - nMade) + " made, " + std::to_string(nMade) +
                                 " skipped in "),
              std::string::npos)
        << further.m_Err;
    EXPECT_EQ(results(), 812U) << "no temporary file is left";
    EXPECT_EQ(Get(m_Folder / "out/899.bmp"), ResultOf(0));
}
