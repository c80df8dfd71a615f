#include "Tools/Exception.h"

#include "Tools/Allocate.h"
#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

using namespace TestSupport;

namespace {

constexpr const char* cszStandardComment =
    "Memory allocation failed or given mem-block too small.\nMemory allocation failed";

/// Runs `work` with its first allocation failing; what comes must be the library's answer to it.
template <class Work>
void ExpectBadAlloc(Work work) {
    try {
        ClFailAllocation fail(0);
        work();
    } catch (const ClExBadAlloc& e) {
        EXPECT_EQ(e.Number(), -102);
        EXPECT_STREQ(e.What(), cszStandardComment);
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
        return;
    }
    ADD_FAILURE() << "nothing was thrown";
}

ClException WithWords() {
    return {"words", -35, true, "Tools/Somewhere", 42};
}

} // namespace

// An exception that cannot allocate its comment is replaced

TEST(ExceptionMemory, ReplacesAnExceptionWithoutRoomForItsComment) {
    ExpectBadAlloc([] { ClException("words", -35, true, "a", 1); });
    ExpectBadAlloc([] { ClException(-35, true, "a", 1); });
    ExpectBadAlloc([] { ClExTessarin(-35, "a", 1); });
    ExpectBadAlloc([] { ClExStreamOpen("words", -204, true, "a", 1); });
    ExpectBadAlloc([] { ClExSystem("words", "a", 1); });
    const ClException e = WithWords();
    ExpectBadAlloc([&] { ClException copy(e); });
    ExpectBadAlloc([&] { ClExRange copy(e); });
}

TEST(ExceptionMemory, NeedsNoMemoryForATextThatIsNotItsOwn) {
    ClFailAllocation fail(0);
    ClException e(-35, false, "a", 1);
    const ClException copy(e);
    e = copy;
    e.SetComment("other");
    EXPECT_FALSE(ClFailAllocation::Happened());
}

TEST(ExceptionMemory, LeaksNothingAtAnyPoint) {
    FailEachAllocation([] { ClException("words", -35, true, "a", 1); });
    FailEachAllocation([] { ClException(-35, true, "a", 1); });
    FailEachAllocation([] { ClExTessarin(-35, "a", 1); });
    FailEachAllocation([] { ClExSystem("words", "a", 1); });
    FailEachAllocation([] { ClExFilesystem("words", -200, "a", 1); });
    SwallowEachAllocationFailure([] { ClExBadAlloc("words", -102, true, "a", 1); });
    const ClExBadAlloc e("words", -102, true, "a", 1);
    SwallowEachAllocationFailure([&] {
        ClExBadAlloc copy(e);
        copy = e;
    });
}

TEST(ExceptionMemory, KeepsItsCommentWhenANewOneCannotBeMade) {
    ClException e = WithWords();
    const char* const pComment = e.What();
    const ClException other("other", -37, true, "a", 1);
    ExpectBadAlloc([&] { e = other; });
    ExpectBadAlloc([&] { e.SetComment("other"); });
    ExpectBadAlloc([&] { e.SetCommentV("%s", "other"); });
    EXPECT_EQ(e.What(), pComment);
    EXPECT_STREQ(e.What(), "One of the parameters is out of range.\nwords");
    EXPECT_EQ(e.Number(), -35);
    EXPECT_STREQ(e.File(), "Tools/Somewhere");
    EXPECT_EQ(e.Line(), 42);
}

// The exception for missing memory needs none

namespace {

/// Made while its comment cannot be allocated.
ClExBadAlloc MadeWithoutMemory() {
    ClFailAllocation fail(0);
    return {"Memory allocation failed", -102, false, "Unknown", -1};
}

} // namespace

TEST(ExBadAlloc, IsMadeWithoutMemory) {
    const ClExBadAlloc e = MadeWithoutMemory();
    EXPECT_STREQ(e.What(), cszStandardComment);
    EXPECT_EQ(e.Number(), -102);
}

TEST(ExBadAlloc, SaysTheSameWithAndWithoutMemory) {
    const ClExBadAlloc rich("Memory allocation failed", -102, false, "Unknown", -1);
    EXPECT_STREQ(rich.What(), MadeWithoutMemory().What());
}

TEST(ExBadAlloc, SharesItsStaticText) {
    const ClExBadAlloc e = MadeWithoutMemory();
    const ClExBadAlloc copy(e);
    const ClException common(e);
    EXPECT_EQ(copy.What(), e.What());
    EXPECT_EQ(common.What(), e.What());
}

TEST(ExBadAlloc, IsThrownWithoutMemory) {
    try {
        ClFailAllocation fail(0);
        Vek::ThrowBadAlloc();
    } catch (const ClExBadAlloc& e) {
        EXPECT_STREQ(e.What(), MadeWithoutMemory().What());
        EXPECT_EQ(e.Number(), -102);
        EXPECT_STREQ(e.File(), "Unknown");
        EXPECT_EQ(e.Line(), -1);
    }
}

TEST(ExBadAlloc, IsCopiedWithoutMemory) {
    const ClExBadAlloc e("words", -102, true, "Tools/Somewhere", 42);
    const ClExBadAlloc poor = [&] {
        ClFailAllocation fail(0);
        return ClExBadAlloc(e);
    }();
    EXPECT_STREQ(poor.What(), cszStandardComment);
    EXPECT_STREQ(poor.File(), "Tools/Somewhere");
    EXPECT_EQ(poor.Line(), 42);
}

TEST(ExBadAlloc, IsAssignedWithoutMemory) {
    const ClExBadAlloc e("words", -35, true, "Tools/Somewhere", 42);
    ClExBadAlloc assigned("other", -102, true, "a", 1);
    {
        ClFailAllocation fail(0);
        assigned = e;
    }
    EXPECT_STREQ(assigned.What(), cszStandardComment);
    EXPECT_EQ(assigned.Number(), -35);
    EXPECT_EQ(assigned.Line(), 42);
}

TEST(ExBadAlloc, IsMadeFromAnotherClassWithoutMemory) {
    const ClException e = WithWords();
    ClFailAllocation fail(0);
    const ClExBadAlloc poor(e);
    EXPECT_STREQ(poor.What(), cszStandardComment);
    EXPECT_EQ(poor.Number(), -35);
}

// Allocation

TEST(Allocate, MakesArraysAndObjects) {
    const std::unique_ptr<int[]> pArray = Vek::NewArrayPtr<int>(3);
    pArray[2] = 7;
    const std::unique_ptr<std::string> pText(Vek::NewObject<std::string>(3, 'x'));
    EXPECT_EQ(*pText, "xxx");
    EXPECT_NE(Vek::NewArrayPtr<int>(0), nullptr);
}

TEST(Allocate, AnswersMissingMemoryInTheLibrarysWay) {
    ExpectBadAlloc([] { Vek::NewArrayPtr<int>(3); });
    ExpectBadAlloc([] { std::unique_ptr<int>(Vek::NewObject<int>(3)); });
}

TEST(Allocate, RefusesCountsWhoseBytesCannotBeCounted) {
    constexpr std::size_t nMost = std::numeric_limits<std::size_t>::max();
    for (std::size_t nCount : {nMost, nMost / 2, nMost / 8, nMost / 16 + 1})
        EXPECT_THROWS(Vek::NewArrayPtr<double>(nCount), ClExBadAlloc, -102,
                      "Memory allocation failed");
}
