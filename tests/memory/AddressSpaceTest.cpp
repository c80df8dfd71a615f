// Every call in a process that may map no more memory: what is free is used up, but for a rest of
// so many bytes, and whatever allocates, the C library and the exceptions themselves included, has
// to do with that.

#include "properties/CallChecks.h"

#include <gtest/gtest.h>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

using namespace Properties;

namespace {

constexpr std::size_t canRests[] = {0, 1 << 12, 1 << 15, 1 << 18, 1 << 20, 1 << 22, 1 << 24};

/// The options that are set in a new handle.
const StOptionSet cDefaults = {true, false, 2, false, false};

rlim_t MappedBytes() {
    std::ifstream Pages("/proc/self/statm");
    rlim_t nPages = 0;
    Pages >> nPages;
    return nPages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

/// While it lives, no memory is to be had but a rest of `nRest` bytes.
class ClScarceMemory {
public:
    explicit ClScarceMemory(std::size_t nRest) {
        void* pRest = std::malloc(nRest);
        malloc_trim(0);
        getrlimit(RLIMIT_AS, &m_Limit);
        const rlimit Tight = {MappedBytes(), m_Limit.rlim_max};
        if (setrlimit(RLIMIT_AS, &Tight) != 0)
            std::abort();
        for (std::size_t nSize = 1 << 20; nSize >= sizeof(StBlock); nSize /= 2)
            Take(nSize);
        std::free(pRest);
    }
    ClScarceMemory(const ClScarceMemory&) = delete;
    ClScarceMemory& operator=(const ClScarceMemory&) = delete;
    ~ClScarceMemory() {
        setrlimit(RLIMIT_AS, &m_Limit);
        while (m_pTaken != nullptr)
            std::free(std::exchange(m_pTaken, m_pTaken->m_pNext));
    }

private:
    struct StBlock {
        StBlock* m_pNext;
    };

    /// Takes all blocks of this size that there are.
    void Take(std::size_t nSize) {
        while (auto* pBlock = static_cast<StBlock*>(std::malloc(nSize))) {
            pBlock->m_pNext = m_pTaken;
            m_pTaken = pBlock;
        }
    }

    rlimit m_Limit{};
    StBlock* m_pTaken = nullptr;
};

/// Calls that were refused and calls that were made, told by the processes that made them.
struct StTally {
    int m_nRefused;
    int m_nMade;
};

class ClSharedTally {
public:
    ClSharedTally()
        : m_pTally(static_cast<StTally*>(mmap(nullptr, sizeof(StTally), PROT_READ | PROT_WRITE,
                                              MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    ClSharedTally(const ClSharedTally&) = delete;
    ClSharedTally& operator=(const ClSharedTally&) = delete;
    ~ClSharedTally() { munmap(m_pTally, sizeof(StTally)); }

    StTally* operator->() const { return m_pTally; }

private:
    StTally* m_pTally;
};

void MakeScarcely(const StCall& Call, const StExpected& Expected, std::size_t nRest,
                  const ClSharedTally& Tally) {
    ClHandle Handle(cDefaults);
    Call.m_pPrepare(Handle);
    StOutcome Outcome = Call.m_Left;
    {
        const ClScarceMemory Scarce(nRest);
        Outcome.m_nStatus = Call.m_pRun(Handle, Outcome);
    }
    if (Outcome.m_nStatus == Expected.m_Outcome.m_nStatus) {
        ++Tally->m_nMade;
        ExpectDone(Handle, Outcome, Expected);
    } else {
        ++Tally->m_nRefused;
        ExpectRefused(Call, Handle, Outcome, Expected);
        ExpectRecovery(Call, Handle, Expected);
    }
}

/// Whether `work` ends a process of its own without a failed expectation.
template <class Work>
bool HoldsInAnotherProcess(Work work) {
    const pid_t nChild = fork();
    if (nChild == 0) {
        work();
        std::fflush(stdout);
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int nStatus = -1;
    return waitpid(nChild, &nStatus, 0) == nChild && WIFEXITED(nStatus) &&
           WEXITSTATUS(nStatus) == 0;
}

} // namespace

TEST(AddressSpace, IsUsedUpByNoCallWithoutItsSayingSo) {
    const ClSharedTally Tally;
    for (const StCall& Call : CallsThatAllocate()) {
        const StExpected Expected = Unharmed(Call, cDefaults);
        for (const std::size_t nRest : canRests)
            EXPECT_TRUE(HoldsInAnotherProcess([&] { MakeScarcely(Call, Expected, nRest, Tally); }))
                << Call.m_szName << " with " << nRest << " bytes";
    }
    EXPECT_GE(Tally->m_nRefused, 20);
    EXPECT_GE(Tally->m_nMade, 20);
    RecordProperty("refused", Tally->m_nRefused);
    RecordProperty("made", Tally->m_nMade);
}
