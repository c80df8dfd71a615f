#include "apps/qk7/TemporaryFiles.h"

#include "apps/qk7/File.h"
#include "qk7/Children.h"
#include "qk7/TestFiles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include <sys/wait.h>

using namespace qk7;
using namespace TestSupport;

namespace {

using Names = std::set<std::string>;

void Wait(const std::atomic<bool>& bFlag) {
    while (!bFlag)
        std::this_thread::yield();
}

void Sleep(int nMilliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
}

std::thread Helper(const std::function<void()>& work) {
    return std::thread([work] {
        LeaveSignalsToOthers();
        work();
    });
}

void ExpectEndedBy(int nSignal, int nStatus) {
    EXPECT_TRUE(WIFSIGNALED(nStatus) && WTERMSIG(nStatus) == nSignal) << nStatus;
}

} // namespace

TEST(Qk7TemporaryFiles, OfAChangeThatIsUnderWayAreRemovedToo) {
    const ClTestFolder folder;

    const int nStatus = StatusOfChild([&] {
        std::atomic<bool> bMade{false};
        std::thread helper = Helper([&] {
            const ClDiskChange change;
            Put(folder / "made", {});
            bMade = true;
            Sleep(100); // the interrupt comes between the file and its note
            NoteTemporary(folder / "made");
        });
        Wait(bMade);
        raise(SIGINT);
        helper.join();
    });

    ExpectEndedBy(SIGINT, nStatus);
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(Qk7TemporaryFiles, AreNotMadeWhileTheProcessEnds) {
    const ClTestFolder folder;

    const int nStatus = StatusOfChild([&] {
        std::atomic<bool> bWithin{false};
        std::thread first = Helper([&] {
            const ClDiskChange change;
            bWithin = true;
            Sleep(300); // the interrupt waits for this
        });
        std::thread second = Helper([&] {
            Wait(bWithin);
            Sleep(100);
            const ClDiskChange change;
            Put(folder / "late", {});
        });
        Wait(bWithin);
        raise(SIGTERM);
        first.join();
        second.join();
    });

    ExpectEndedBy(SIGTERM, nStatus);
    EXPECT_EQ(folder.Names(), Names{});
}

TEST(Qk7TemporaryFiles, HaveNamesThatFitTheirNotes) {
    EXPECT_THROW(NoteTemporary(std::string(5000, 'n')), std::length_error);
}

TEST(Qk7TemporaryFiles, AreForgottenWhenTheyAreNoLongerTemporary) {
    const ClTestFolder folder;
    Put(folder / "kept", {});

    const int nStatus = StatusOfChild([&] {
        ForgetTemporary(NoteTemporary(folder / "kept"));
        raise(SIGHUP);
    });

    ExpectEndedBy(SIGHUP, nStatus);
    EXPECT_EQ(folder.Names(), Names{"kept"});
}
