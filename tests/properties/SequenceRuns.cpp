#include "properties/SequenceRuns.h"

#include "calls/InjectedFaults.h"
#include "calls/Shrinking.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Properties {

namespace {

/// What the process of a run leaves behind.
struct StNotes {
    long m_nStep;
    long m_nQuickFingers;
    bool m_bBroken;
    char m_szWhat[400];
};

/// Memory of two processes.
class ClSharedNotes {
public:
    ClSharedNotes()
        : m_pNotes(static_cast<StNotes*>(mmap(nullptr, sizeof(StNotes), PROT_READ | PROT_WRITE,
                                              MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {
        if (m_pNotes == MAP_FAILED)
            std::abort();
    }
    ClSharedNotes(const ClSharedNotes&) = delete;
    ClSharedNotes& operator=(const ClSharedNotes&) = delete;
    ~ClSharedNotes() { munmap(m_pNotes, sizeof(StNotes)); }

    StNotes& operator*() const { return *m_pNotes; }
    StNotes* operator->() const { return m_pNotes; }

private:
    StNotes* m_pNotes;
};

/// Ends the process at the first broken promise: what follows it follows from it.
class ClNoter : public Calls::ClObserver {
public:
    ClNoter(StNotes& rNotes, ETold eTold) : m_rNotes(rNotes), m_bTells(eTold == ETold::eCalls) {}

    void OnStep(long nStep) override { m_rNotes.m_nStep = nStep; }
    void OnCall(long nHandle, const char* szCall, std::size_t nSize, const char* szText) override {
        if (m_bTells)
            std::fprintf(stderr, "  step %ld, handle %ld: %s, %zu bytes%s%s\n", m_rNotes.m_nStep,
                         nHandle, szCall, nSize, szText[0] != 0 ? ": " : "", szText);
    }
    void OnAnswer(long nStatus, bool bFault) override {
        if (m_bTells)
            std::fprintf(stderr, "    answers %ld%s\n", nStatus,
                         bFault ? ", an allocation having failed" : "");
    }
    void OnQuickFinger() override { ++m_rNotes.m_nQuickFingers; }
    void OnBroken(const std::string& Promise) override {
        std::snprintf(m_rNotes.m_szWhat, sizeof m_rNotes.m_szWhat, "%s", Promise.c_str());
        m_rNotes.m_bBroken = true;
        if (m_bTells)
            std::fprintf(stderr, "    broken: %s\n", Promise.c_str());
        std::_Exit(1);
    }

private:
    StNotes& m_rNotes;
    bool m_bTells;
};

/// The child's part. A normal end lets the sanitizers look for what was left behind.
[[noreturn]] void Run(int nSeed, const std::vector<long>& anSteps, ETold eTold, StNotes& rNotes) {
    if (eTold == ETold::eNothing)
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
    {
        Calls::ClSeededChoices Choices(static_cast<std::uint64_t>(nSeed));
        Calls::ClInjectedFaults Faults;
        ClNoter Noter(rNotes, eTold);
        Calls::ClCallSequence(Choices, Faults, Noter).Run(anSteps);
    }
    std::exit(0);
}

std::string EndOf(int nStatus) {
    if (WIFSIGNALED(nStatus))
        return "the process ends by signal " + std::to_string(WTERMSIG(nStatus));
    return "the process ends with status " + std::to_string(WEXITSTATUS(nStatus));
}

} // namespace

StRunEnd RunSteps(int nSeed, const std::vector<long>& anSteps, ETold eTold) {
    const ClSharedNotes Notes;
    std::fflush(stdout); // or both processes write it
    const pid_t nChild = fork();
    if (nChild == 0)
        Run(nSeed, anSteps, eTold, *Notes);
    int nStatus = 1;
    if (nChild < 0 || waitpid(nChild, &nStatus, 0) != nChild)
        return {true, 0, 0, "no process to run in"};
    if (Notes->m_bBroken)
        return {true, Notes->m_nStep, Notes->m_nQuickFingers, Notes->m_szWhat};
    if (nStatus != 0)
        return {true, Notes->m_nStep, Notes->m_nQuickFingers, EndOf(nStatus)};
    return {false, Notes->m_nStep, Notes->m_nQuickFingers, ""};
}

std::vector<long> ShrunkSteps(int nSeed, const StRunEnd& End) {
    std::vector<long> anSteps(static_cast<std::size_t>(End.m_nStep) + 1);
    std::iota(anSteps.begin(), anSteps.end(), 0L);
    return Calls::Shrunk(std::move(anSteps), [&](const std::vector<long>& anTried) {
        return RunSteps(nSeed, anTried, ETold::eNothing).IsSame(End);
    });
}

} // namespace Properties
