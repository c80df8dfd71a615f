#include "apps/qk7/File.h"
#include "apps/qk7/TemporaryFiles.h"

#include "qk7/Children.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace qk7;
using namespace TestSupport;

namespace {

using Names = std::set<std::string>;

std::string WordsOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const ClFailure& failure) {
        return failure.what();
    }
    return "done";
}

unsigned int ModeOf(const std::string& Path) {
    struct stat status {};
    stat(Path.c_str(), &status);
    return status.st_mode & 0777U;
}

} // namespace

TEST(Qk7ReadFile, GivesTheWholeFile) {
    const ClTestFolder folder;
    Bytes content(100000);
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<unsigned char>(i * i >> 3);
    Put(folder / "large", content);
    Put(folder / "empty", {});

    EXPECT_EQ(ReadFile(folder / "large"), content);
    EXPECT_EQ(ReadFile(folder / "empty"), Bytes());
}

TEST(Qk7ReadFile, NamesTheFileThatCannotBeRead) {
    const ClTestFolder folder;

    EXPECT_EQ(WordsOf([&] { ReadFile(folder / "none"); }),
              folder / "none" + ": No such file or directory");
    EXPECT_EQ(WordsOf([&] { ReadFile(folder.Path()); }), folder.Path() + ": Is a directory");
}

TEST(Qk7ReadFile, ReadsNoMoreThanTheLimit) {
    const ClTestFolder folder;
    Put(folder / "ten", ToBytes("0123456789"));

    EXPECT_EQ(ReadFile(folder / "ten", 10).size(), 10U);
    EXPECT_EQ(WordsOf([&] { ReadFile(folder / "ten", 9); }),
              folder / "ten" + ": has more than 9 bytes, more than any file for this tool");
    EXPECT_EQ(WordsOf([] { ReadFile("/dev/zero", 100000); }),
              "/dev/zero: has more than 100000 bytes, more than any file for this tool")
        << "a device tells no size";
}

TEST(Qk7OutputFile, AppearsUnderItsNameOnlyWhenCommitted) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));

    {
        ClOutputFile file(folder / "out");
        file.Write("new", 3);
        EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
        EXPECT_EQ(folder.Names().size(), 2U) << "the old file and the temporary one";
        file.Commit();
    }

    EXPECT_EQ(Get(folder / "out"), ToBytes("new"));
    EXPECT_EQ(folder.Names(), Names{"out"});
}

TEST(Qk7OutputFile, LeavesNothingBehindWithoutACommit) {
    const ClTestFolder folder;
    Put(folder / "old", ToBytes("old"));

    for (const char* szName : {"old", "new"}) {
        ClOutputFile file(folder / szName);
        file.Write("half", 4);
    }

    EXPECT_EQ(folder.Names(), Names{"old"});
    EXPECT_EQ(Get(folder / "old"), ToBytes("old"));
}

TEST(Qk7OutputFile, KeepsThePermissionsOfTheFileThatItReplaces) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));
    chmod((folder / "out").c_str(), 0640);
    const Bytes content = ToBytes("new");

    WriteFile(folder / "out", {&content});

    EXPECT_EQ(ModeOf(folder / "out"), 0640U);
}

TEST(Qk7OutputFile, GivesANewFileThePermissionsOfTheUser) {
    const ClTestFolder folder;
    const mode_t nFormer = umask(0027);
    const Bytes content = ToBytes("new");

    WriteFile(folder / "out", {&content});
    umask(nFormer);

    EXPECT_EQ(ModeOf(folder / "out"), 0640U);
}

TEST(Qk7OutputFile, DoesNotReplaceAFileThatMayNotBeWritten) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));
    chmod((folder / "out").c_str(), 0444);
    chmod(folder.Path().c_str(), 0777);

    const int nStatus = StatusOfChild([&] {
        const uid_t nNobody = 65534;
        if (geteuid() == 0 && setuid(nNobody) != 0) // root may write everything
            _exit(2);
        const Bytes content = ToBytes("new");
        WriteFile(folder / "out", {&content});
    });

    EXPECT_TRUE(WIFEXITED(nStatus) && WEXITSTATUS(nStatus) == 1) << nStatus;
    EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
}

TEST(Qk7OutputFile, FollowsALink) {
    const ClTestFolder folder;
    Put(folder / "real", ToBytes("old"));
    std::filesystem::create_symlink("real", folder / "link");
    const Bytes content = ToBytes("new");

    WriteFile(folder / "link", {&content});

    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(Get(folder / "real"), content);
}

TEST(Qk7OutputFile, ReplacesALinkThatLeadsNowhere) {
    const ClTestFolder folder;
    std::filesystem::create_symlink("none", folder / "link");
    const Bytes content = ToBytes("new");

    WriteFile(folder / "link", {&content});

    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(folder / "link")));
    EXPECT_EQ(folder.Names(), Names{"link"});
}

TEST(Qk7OutputFile, JoinsItsParts) {
    const ClTestFolder folder;
    const Bytes front = ToBytes("front ");
    const Bytes nothing;
    const Bytes behind = ToBytes("behind");

    WriteFile(folder / "out", {&front, &nothing, &behind});

    EXPECT_EQ(Get(folder / "out"), ToBytes("front behind"));
}

TEST(Qk7OutputFile, TakesANameOfTheGreatestLength) {
    const ClTestFolder folder;
    const std::string name(255, 'n');
    const Bytes content = ToBytes("new");

    WriteFile(folder / name, {&content});

    EXPECT_EQ(folder.Names(), Names{name});
}

TEST(Qk7OutputFile, PassesByATemporaryFileThatWasLeftBehind) {
    const ClTestFolder folder;
    const std::string left = ".qk7-" + std::to_string(getpid()) + "-0.tmp";
    Put(folder / left, ToBytes("left"));
    const Bytes content = ToBytes("new");

    WriteFile(folder / "out", {&content});

    EXPECT_EQ(folder.Names(), (Names{left, "out"}));
    EXPECT_EQ(Get(folder / left), ToBytes("left"));
}

TEST(Qk7OutputFile, WritesADeviceDirectly) {
    const Bytes content = ToBytes("new");

    WriteFile("/dev/null", {&content});

    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(Qk7OutputFile, ReportsAFullDisk) {
    const Bytes content = ToBytes("new");

    EXPECT_EQ(WordsOf([&] { WriteFile("/dev/full", {&content}); }),
              "/dev/full: cannot be written: No space left on device");
}

TEST(Qk7OutputFile, ReportsADirectoryThatIsMissing) {
    const ClTestFolder folder;

    EXPECT_EQ(WordsOf([&] { ClOutputFile file(folder / "none/out"); }),
              folder / "none/out" + ": cannot be written: No such file or directory");
    EXPECT_EQ(WordsOf([&] { ClOutputFile file(folder.Path()); }),
              folder.Path() + ": cannot be written: Is a directory");
}

TEST(Qk7OutputFile, IsRemovedByAnInterruptWithAllOthers) {
    const ClTestFolder folder;

    const int nStatus = StatusOfChild([&] {
        ClOutputFile first(folder / "first");
        ClOutputFile second(folder / "second");
        ClOutputFile third(folder / "third");
        second.Commit();
        raise(SIGTERM);
    });

    EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == SIGTERM) << nStatus;
    EXPECT_EQ(folder.Names(), Names{"second"});
}

TEST(Qk7OutputFile, OfManyThreadsIsWholeOrGoneAfterAnInterrupt) {
    const ClTestFolder folder;
    const Bytes content(1000, 'n');

    const int nStatus = StatusOfChild([&] {
        std::vector<std::thread> threads;
        for (int nThread = 0; nThread < 4; ++nThread)
            threads.emplace_back([&, nThread] {
                LeaveSignalsToOthers();
                for (int i = 0;; ++i)
                    WriteFile(folder / std::to_string(nThread) + "_" + std::to_string(i % 50),
                              {&content});
            });
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        kill(getpid(), SIGINT);
        threads[0].join();
    });

    EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == SIGINT) << nStatus;
    EXPECT_FALSE(folder.Names().empty());
    for (const std::string& name : folder.Names())
        EXPECT_EQ(Get(folder / name), content) << name;
}

TEST(Qk7OutputFile, LimitsHowManyAreWrittenAtOnce) {
    const ClTestFolder folder;
    std::vector<std::unique_ptr<ClOutputFile>> files;
    for (std::size_t i = 0; i < cnTemporaryFiles; ++i)
        files.push_back(std::make_unique<ClOutputFile>(folder / std::to_string(i)));

    EXPECT_THROW(ClOutputFile(folder / "more"), std::logic_error);

    EXPECT_EQ(folder.Names().size(), cnTemporaryFiles);
    files.clear();
    EXPECT_TRUE(folder.Names().empty());
}

TEST(Qk7OutputFile, IsRemovedByAnInterrupt) {
    for (const int nSignal : {SIGINT, SIGTERM, SIGHUP}) {
        const ClTestFolder folder;
        Put(folder / "out", ToBytes("old"));

        const int nStatus = StatusOfChild([&] {
            ClOutputFile file(folder / "out");
            file.Write("half", 4);
            raise(nSignal);
        });

        EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == nSignal) << nStatus;
        EXPECT_EQ(folder.Names(), Names{"out"});
        EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
    }
}

TEST(Qk7OutputFile, IsWrittenUnderASignalThatTheCallerIgnores) {
    const ClTestFolder folder;

    const int nStatus = StatusOfChild([&] {
        std::signal(SIGHUP, SIG_IGN);
        std::signal(SIGTERM, SIG_DFL);
        GuardAgainstSignals();
        ClOutputFile file(folder / "out");
        raise(SIGHUP);
        file.Commit();
    });

    EXPECT_EQ(nStatus, 0);
    EXPECT_EQ(folder.Names(), Names{"out"});
}

TEST(Qk7OutputFile, KeepsTheOldFileWhenTheNewOneHasNoRoom) {
    const ClTestFolder folder;
    Put(folder / "out", ToBytes("old"));

    const int nStatus = StatusOfChild([&] {
        const rlimit limit = {1000, 1000}; // bytes per file
        setrlimit(RLIMIT_FSIZE, &limit);
        const Bytes content(2000, 'n');
        WriteFile(folder / "out", {&content});
    });

    EXPECT_TRUE(WIFEXITED(nStatus) && WEXITSTATUS(nStatus) == 1) << nStatus;
    EXPECT_EQ(folder.Names(), Names{"out"});
    EXPECT_EQ(Get(folder / "out"), ToBytes("old"));
}

TEST(Qk7MakeDirectory, MakesThoseAboveToo) {
    const ClTestFolder folder;

    MakeDirectory(folder / "a/b/");
    MakeDirectory(folder / "a/b");

    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b"));
}

TEST(Qk7MakeDirectory, NamesTheFileInItsPlace) {
    const ClTestFolder folder;
    Put(folder / "a", {});

    EXPECT_EQ(WordsOf([&] { MakeDirectory(folder / "a"); }),
              folder / "a" + ": cannot be made a directory: Not a directory");
}

TEST(Qk7StandardStreams, ThatAreClosedDoNotLeadIntoAnOutput) {
    const ClTestFolder folder;

    const int nStatus = StatusOfChild([&] {
        for (const int nFile : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            close(nFile);
        OccupyStandardStreams();
        ClOutputFile file(folder / "out");
        file.Write("whole", 5);
        char c = 0;
        for (const int nFile : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            if (write(nFile, "told", 4) >= 0 || read(nFile, &c, 1) >= 0)
                throw ClFailure("it was written or read");
        file.Commit();
    });

    EXPECT_EQ(nStatus, 0);
    EXPECT_EQ(Get(folder / "out"), ToBytes("whole"));
}
