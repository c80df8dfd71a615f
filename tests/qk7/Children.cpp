#include "qk7/Children.h"

#include "apps/qk7/File.h"
#include "qk7/CommandRunner.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

namespace {

void Tell(const char* szFile, const std::string& Text) {
    std::ofstream(szFile) << Text;
}

/// Mounts of its own: as root at once, as a user by being root in a namespace of users.
bool MayMount() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWNS) == 0)
        return true;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    Tell("/proc/self/setgroups", "deny");
    Tell("/proc/self/uid_map", "0 " + user + " 1");
    Tell("/proc/self/gid_map", "0 " + group + " 1");
    return true;
}

} // namespace

pid_t StartChild(const std::function<void()>& work) {
    const pid_t nChild = fork();
    if (nChild != 0)
        return nChild;
    HeedSignals();
    qk7::GuardAgainstSignals();
    try {
        work();
    } catch (const qk7::ClFailure&) {
        _exit(1);
    }
    _exit(0);
}

int StatusOf(pid_t nChild) {
    int nStatus = -1;
    waitpid(nChild, &nStatus, 0);
    return nStatus;
}

int StatusOfChild(const std::function<void()>& work) {
    return StatusOf(StartChild(work));
}

void ExpectInChild(const std::function<void()>& expectations) {
    const int nStatus = StatusOfChild([&] {
        expectations();
        _exit(testing::Test::HasFailure() ? 3 : 0);
    });
    EXPECT_EQ(nStatus, 0) << "what failed stands above";
}

bool LimitRoom(const char* szFolder, unsigned long nBytes) {
    const std::string options = "mode=0700,size=" + std::to_string(nBytes);
    if (MayMount() && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
        mount("tmpfs", szFolder, "tmpfs", 0, options.c_str()) == 0)
        return true;
    const rlimit limit = {nBytes, nBytes};
    setrlimit(RLIMIT_FSIZE, &limit);
    return false;
}

void HeedPermissions() {
    if (geteuid() == 0 && prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE) != 0)
        _exit(124);
}

} // namespace TestSupport
