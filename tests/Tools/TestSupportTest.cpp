// The expectations that many tests lean on fail where they should.

#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest-spi.h>

#include <new>

using namespace TestSupport;

namespace {

/// Memory that is asked for and given back.
void Allocate() {
    ::operator delete(::operator new(1));
}

void AllocateOrSayNothing() {
    try {
        Allocate();
    } catch (const std::bad_alloc&) { // on purpose
    }
}

void AllocateOrRefuse() {
    try {
        Allocate();
    } catch (const std::bad_alloc&) {
        throw ClExBadAlloc("Memory allocation failed", -102, false, "Unknown", -1);
    }
}

TEST(FailEachAllocation, TakesARefusalOfEachFailure) {
    int nRuns = 0;
    FailEachAllocation([&] {
        ++nRuns;
        AllocateOrRefuse();
        AllocateOrRefuse();
    });
    EXPECT_EQ(nRuns, 3);
}

TEST(FailEachAllocation, RefusesAFailureThatNobodyTells) {
    EXPECT_NONFATAL_FAILURE(FailEachAllocation(AllocateOrSayNothing), "nobody says so");
}

TEST(FailEachAllocation, RefusesAnotherException) {
    EXPECT_NONFATAL_FAILURE(FailEachAllocation(Allocate), "no ClExBadAlloc");
    EXPECT_NONFATAL_FAILURE(FailEachAllocation([] { throw ClExTessarin(-35, "a", 1); }),
                            "no ClExBadAlloc");
}

TEST(FailEachAllocation, RefusesWorkThatAllocatesNothing) {
    EXPECT_NONFATAL_FAILURE(FailEachAllocation([] {}), "nothing was tested");
}

TEST(SwallowEachAllocationFailure, TakesSilenceAndRefusesToBeTold) {
    SwallowEachAllocationFailure(AllocateOrSayNothing);
    EXPECT_NONFATAL_FAILURE(SwallowEachAllocationFailure(AllocateOrRefuse), "it was told");
}

TEST(ExpectThrows, ComparesTheExactClass) {
    const auto throwDerived = [] { throw ClExTessarin(-35, "a", 1); };
    EXPECT_TESSARIN(throwDerived(), -35);
    EXPECT_NONFATAL_FAILURE(
        EXPECT_THROWS(throwDerived(), ClException, -35, GetErrorDescriptionIntern(-35)),
        "is no ClException");
}

TEST(ExpectThrows, ComparesNumberAndWords) {
    const auto throwWords = [] { throw ClException("words", -35, true, "a", 1); };
    EXPECT_THROWS(throwWords(), ClException, -35, "words");
    EXPECT_NONFATAL_FAILURE(EXPECT_THROWS(throwWords(), ClException, -36, "words"), "-36");
    EXPECT_NONFATAL_FAILURE(EXPECT_THROWS(throwWords(), ClException, -35, "other"), "other");
    EXPECT_NONFATAL_FAILURE(EXPECT_THROWS(static_cast<void>(0), ClException, -35, "words"),
                            "nothing was thrown");
}

} // namespace
