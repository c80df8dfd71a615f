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

/// How a piece of work ended in which one allocation may have failed.
enum class EEnd { eUnharmed, eRefused, eSwallowed, eOther };

/// Runs `work` with the allocation number `nAfter` failing.
template <class Work>
EEnd EndOfFailing(long nAfter, Work& work) {
    ClFailAllocation fail(nAfter);
    try {
        work();
    } catch (const ClExBadAlloc& e) {
        return e.Number() == -102 && ClFailAllocation::Happened() ? EEnd::eRefused : EEnd::eOther;
    } catch (...) {
        return EEnd::eOther;
    }
    return ClFailAllocation::Happened() ? EEnd::eSwallowed : EEnd::eUnharmed;
}

/// Runs `work` with its first, second, third ... allocation failing until none fails, and hands
/// each number with its end to `judge`, which answers whether the end is the right one.
template <class Work, class Judge>
void JudgeEachFailure(Work& work, Judge judge) {
    for (long nAfter = 0; nAfter < 10000; ++nAfter) {
        const EEnd eEnd = EndOfFailing(nAfter, work);
        if (eEnd == EEnd::eUnharmed) {
            EXPECT_GT(nAfter, 0) << "the work allocates nothing, so that nothing was tested";
            return;
        }
        if (!judge(nAfter, eEnd))
            return;
    }
    FAIL() << "the work never got by without a failing allocation";
}

/// Each run of `work` in which an allocation fails ends with a `ClExBadAlloc`, number -102.
template <class Work>
void FailEachAllocation(Work work) {
    JudgeEachFailure(work, [](long nAfter, EEnd eEnd) {
        EXPECT_NE(eEnd, EEnd::eSwallowed)
            << "allocation " << nAfter << " failed, and nobody says so";
        EXPECT_NE(eEnd, EEnd::eOther)
            << "allocation " << nAfter << " failed, and what came is no ClExBadAlloc of -102";
        return eEnd == EEnd::eRefused;
    });
}

/// For work that does without what it could not allocate: each run ends without an exception, so
/// that `work` itself has to say what it expects.
template <class Work>
void SwallowEachAllocationFailure(Work work) {
    JudgeEachFailure(work, [](long nAfter, EEnd eEnd) {
        EXPECT_EQ(eEnd, EEnd::eSwallowed) << "allocation " << nAfter << " failed, and it was told";
        return eEnd == EEnd::eSwallowed;
    });
}

} // namespace TestSupport
