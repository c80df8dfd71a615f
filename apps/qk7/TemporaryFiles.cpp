#include "apps/qk7/TemporaryFiles.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstring>
#include <stdexcept>

#include <pthread.h>
#include <unistd.h>

namespace qk7 {

namespace {

constexpr std::array<int, 3> anEndingSignals = {SIGINT, SIGTERM, SIGHUP};

struct StNote {
    std::atomic<bool> m_bTaken{false};
    char m_szName[PATH_MAX] = "";
};

StNote g_aNotes[cnTemporaryFiles];
std::atomic<int> g_nChanging{0};
std::atomic<bool> g_bEnding{false};
std::atomic<const char*> g_szLastWords{nullptr};

sigset_t EndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int nSignal : anEndingSignals)
        sigaddset(&signals, nSignal);
    return signals;
}

extern "C" void RemoveTemporariesAndEnd(int nSignal) {
    g_bEnding = true;
    while (g_nChanging > 0) // this thread is not within a change, the others leave theirs
        usleep(100);
    for (const StNote& note : g_aNotes)
        if (note.m_bTaken)
            unlink(note.m_szName);
    if (const char* szWords = g_szLastWords) [[maybe_unused]]
        const ssize_t nWritten = write(STDERR_FILENO, szWords, strlen(szWords));
    raise(nSignal); // the handler was reset on entry: the default action ends the process
}

} // namespace

ClDiskChange::ClDiskChange() {
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, &m_Former);
    ++g_nChanging;
    if (!g_bEnding)
        return;
    --g_nChanging;
    for (;;)
        pause(); // until the process ends
}

ClDiskChange::~ClDiskChange() {
    --g_nChanging;
    pthread_sigmask(SIG_SETMASK, &m_Former, nullptr);
}

std::size_t NoteTemporary(const std::string& Name) {
    if (Name.size() >= PATH_MAX)
        throw std::length_error("a temporary name is longer than any path");
    for (std::size_t i = 0; i < cnTemporaryFiles; ++i) {
        if (g_aNotes[i].m_bTaken.exchange(true))
            continue;
        std::memcpy(g_aNotes[i].m_szName, Name.c_str(), Name.size() + 1);
        return i;
    }
    throw std::logic_error("too many output files at once");
}

void ForgetTemporary(std::size_t nNote) noexcept {
    g_aNotes[nNote].m_bTaken = false;
}

void RemoveTemporariesOnSignals() {
    struct sigaction action {};
    action.sa_handler = RemoveTemporariesAndEnd;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int nSignal : anEndingSignals) {
        struct sigaction former {};
        // Who started us with a signal ignored, as nohup does, wants it ignored.
        if (sigaction(nSignal, nullptr, &former) == 0 && former.sa_handler != SIG_IGN)
            sigaction(nSignal, &action, nullptr);
    }
}

void SetLastWords(const char* szWords) {
    g_szLastWords = szWords;
}

void LeaveSignalsToOthers() {
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace qk7
