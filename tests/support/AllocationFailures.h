#pragma once

/// Injected allocation failures: the n-th allocation of a piece of work fails, for every n until
/// the work needs no more, so that each path of unwinding is taken once.

#include "Tools/Exception.h"

#include <gtest/gtest.h>

namespace TestSupport {

/// How an allocation that throws by its nature fails.
enum class EFailure { eThrow, eNull };

/// While it lives, the allocation number `nAfter` of this thread (0 is the next one), and no
/// other, answers with null or `std::bad_alloc`; with `eNull` always with null, as allocators do
/// in programs without exceptions.
class ClFailAllocation {
public:
    explicit ClFailAllocation(long nAfter, EFailure eFailure = EFailure::eThrow);
    ClFailAllocation(const ClFailAllocation&) = delete;
    ClFailAllocation& operator=(const ClFailAllocation&) = delete;
    ~ClFailAllocation();

    static bool Happened();
};

/// Injected failures as they stand, for helpers whose own allocations are no part of the work:
/// counts none until they are resumed. Both are weak in helpers that work without this file, too.
long PauseFailures();
void ResumeFailures(long nPaused);

/// Runs `work` with its first, second, third ... allocation failing until none fails. Each failed
/// run has to end with a `ClExBadAlloc`, number -102, or `work` has to swallow it.
template <class Work>
void FailEachAllocation(Work work) {
    for (long nAfter = 0; nAfter < 10000; ++nAfter) {
        bool bHappened = false;
        try {
            ClFailAllocation fail(nAfter);
            work();
            bHappened = ClFailAllocation::Happened();
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(e.Number(), -102);
            bHappened = true;
        } catch (...) {
            FAIL() << "allocation " << nAfter << " failed, and what came is no ClExBadAlloc";
        }
        if (!bHappened)
            return;
    }
    FAIL() << "the work never got by without a failing allocation";
}

} // namespace TestSupport
