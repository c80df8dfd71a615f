#pragma once

/// What operators owe where memory is missing: the exception and everything as it was, or the whole
/// work.

#include "support/AllocationFailures.h"
#include "support/Images.h"
#include "support/Throws.h"

namespace TestSupport {

/// While it lives, no allocation fails.
class ClSafeAllocations {
public:
    ClSafeAllocations() : m_nPaused(PauseFailures()) {}
    ClSafeAllocations(const ClSafeAllocations&) = delete;
    ClSafeAllocations& operator=(const ClSafeAllocations&) = delete;
    ~ClSafeAllocations() { ResumeFailures(m_nPaused); }

private:
    long m_nPaused;
};

/// Runs `work` with each allocation failing in turn. After a run that throws, `expectKept` looks at
/// what has to be as before; after one that gets by, though an allocation may have failed,
/// `expectDone` looks at the result. Some run has to throw.
template <class Work, class ExpectKept, class ExpectDone>
void ExpectAllOrNothing(Work work, ExpectKept expectKept, ExpectDone expectDone) {
    int nThrown = 0;
    FailEachAllocation([&] {
        try {
            work();
        } catch (const ClExBadAlloc& e) {
            const ClSafeAllocations safe;
            EXPECT_EQ(Words(e), "Memory allocation failed");
            expectKept();
            ++nThrown;
            throw;
        }
        const ClSafeAllocations safe;
        expectDone();
    });
    EXPECT_GT(nThrown, 0);
}

/// The same for `run(In, Out)` of an operator, which gives 0, on two images and on one.
template <class Run>
void ExpectImagesOrNothing(const ClImage& In, Run run) {
    ClTestImage in(In);
    ClTestImage expected;
    ASSERT_EQ(run(in, expected), 0);
    ExpectSameImage(in, In);
    for (const bool bInPlace : {false, true}) {
        ClTestImage out;
        ClImage& rOut = bInPlace ? in : out;
        const auto startAgain = [&] {
            in = In;
            out.Delete();
        };
        ExpectAllOrNothing([&] { EXPECT_EQ(run(in, rOut), 0); },
                           [&] {
                               ExpectSameImage(in, In);
                               startAgain();
                           },
                           [&] {
                               ExpectSameImage(rOut, expected);
                               startAgain();
                           });
    }
}

} // namespace TestSupport
