// Outputs while others read and write them, and when their writer dies: always one whole file.

#include "apps/qk7/File.h"

#include "qk7/Children.h"
#include "qk7/CommandRunner.h"
#include "qk7/Direct.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace qk7;
using namespace TestSupport;

namespace {

using Names = std::set<std::string>;

constexpr int cnRounds = 100;

/// A writer's content: its length and each byte tell whose it is.
Bytes ContentOf(unsigned char nLetter) {
    return Bytes(50000 + 1000 * std::size_t{nLetter}, nLetter);
}

bool IsOneOf(const Bytes& Content, const Bytes& one, const Bytes& other) {
    return Content == one || Content == other;
}

pid_t StartWriter(const std::string& Path, unsigned char nLetter) {
    return StartChild([=] {
        const Bytes content = ContentOf(nLetter);
        for (int i = 0; i < cnRounds; ++i)
            WriteFile(Path, {&content});
    });
}

bool HasEnded(pid_t nChild) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(nChild), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid == nChild;
}

bool IsTemporary(const std::string& Name) {
    return Name.rfind(".qk7-", 0) == 0 && Name.substr(Name.size() - 4) == ".tmp";
}

bool HasTemporary(const ClTestFolder& Folder) {
    const Names names = Folder.Names();
    return std::any_of(names.begin(), names.end(), IsTemporary);
}

} // namespace

TEST(Qk7OutputFile, IsWholeWhileTwoProcessesWriteIt) {
    const ClTestFolder folder;
    const std::string path = folder / "out";
    Put(path, ContentOf('a'));

    const pid_t nOne = StartWriter(path, 'a');
    const pid_t nOther = StartWriter(path, 'b');
    while (!HasEnded(nOne) || !HasEnded(nOther))
        ASSERT_TRUE(IsOneOf(Get(path), ContentOf('a'), ContentOf('b')));

    EXPECT_EQ(StatusOf(nOne), 0);
    EXPECT_EQ(StatusOf(nOther), 0);
    EXPECT_EQ(folder.Names(), Names{"out"});
}

TEST(Qk7OutputFile, IsTheOldOneWhenItsWriterIsKilledBeforeTheRename) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));

    const int nStatus = StatusOfChild([&] {
        ClOutputFile file(folder / "out");
        file.Write("new", 3);
        raise(SIGKILL);
    });

    EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == SIGKILL) << nStatus;
    EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
    EXPECT_TRUE(HasTemporary(folder));
    EXPECT_EQ(folder.Names().size(), 2U);
}

TEST(Qk7OutputFile, IsTheOldOneWhenItsWriterIsKilledInTheMiddle) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));

    const int nStatus = StatusOfChild([&] {
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit limit = {1000, 1000};
        setrlimit(RLIMIT_FSIZE, &limit);
        const rlimit none = {0, 0};
        setrlimit(RLIMIT_CORE, &none);
        ClOutputFile file(folder / "out");
        file.Write(Bytes(900, 'n').data(), 900);
        file.Write(Bytes(900, 'n').data(), 900); // 100 of it, and then the signal
    });

    EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == SIGXFSZ) << nStatus;
    EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
}

TEST(Qk7OutputFile, IsGivenUpWhereAFolderHasTakenItsName) {
    const ClTestFolder folder;

    ClOutputFile file(folder / "out");
    std::filesystem::create_directory(folder / "out");

    EXPECT_THROW(file.Commit(), ClFailure);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "out"));
    EXPECT_TRUE(HasTemporary(folder)) << "until its writer goes";
}

TEST(Qk7OutputFile, LeavesNoTemporaryFileBesideAFolderThatHasTakenItsName) {
    const ClTestFolder folder;

    EXPECT_NE(StatusOfChild([&] {
                  ClOutputFile file(folder / "out");
                  std::filesystem::create_directory(folder / "out");
                  file.Commit();
              }),
              0);

    EXPECT_EQ(folder.Names(), Names{"out"});
}

TEST(Qk7Tool, LeavesTheOldFileOrTheNewOneWheneverItIsKilled) {
    const ClTestFolder folder;
    const Bytes old = ToBytes("old");
    const Bytes table = DirectlyPrecalculated(Record());
    for (int i = 0; i < 10; ++i) {
        Put(folder / "out.pre", old);

        Qk7Interrupted({"precalculate", "-d", RecordPath(), "-o", folder / "out.pre"}, SIGKILL,
                       [&] { return HasTemporary(folder) || Get(folder / "out.pre") != old; });

        EXPECT_TRUE(IsOneOf(Get(folder / "out.pre"), old, table));
        for (const std::string& name : folder.Names())
            if (IsTemporary(name))
                std::filesystem::remove(folder / name);
    }
}

TEST(Qk7Tool, LeavesOneWholeFileOfTwoWriters) {
    const ClTestFolder folder;
    const std::string other = DataPath("records/scanner901_layout6.cal");
    const Bytes table = DirectlyPrecalculated(Record());
    const Bytes otherTable = DirectlyPrecalculated(Get(other));
    for (int i = 0; i < 3; ++i) {
        const auto exits = Qk7AtOnce({"precalculate", "-d", RecordPath(), "-o", folder / "out.pre"},
                                     {"precalculate", "-d", other, "-o", folder / "out.pre"});

        EXPECT_EQ(exits, std::pair(0, 0));
        EXPECT_TRUE(IsOneOf(Get(folder / "out.pre"), table, otherTable));
        EXPECT_EQ(folder.Names(), Names{"out.pre"});
    }
}
