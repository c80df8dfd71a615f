// Lists that fail, made short.

#include "calls/Shrinking.h"

#include <gtest/gtest.h>

#include <numeric>

using Calls::Shrunk;

namespace {

using List = std::vector<long>;

List UpTo(long nEnd) {
    List anList(static_cast<std::size_t>(nEnd));
    std::iota(anList.begin(), anList.end(), 0L);
    return anList;
}

bool Has(const List& anList, long n) {
    return std::find(anList.begin(), anList.end(), n) != anList.end();
}

} // namespace

TEST(Shrinking, FindsTheOneElementThatFails) {
    for (const long n : {0L, 1L, 500L, 998L, 999L})
        EXPECT_EQ(Shrunk(UpTo(1000), [=](const List& an) { return Has(an, n); }), List({n}));
}

TEST(Shrinking, KeepsThoseThatFailTogetherInTheirOrder) {
    const auto fails = [](const List& an) { return Has(an, 3) && Has(an, 77) && Has(an, 901); };
    EXPECT_EQ(Shrunk(UpTo(1000), fails), List({3, 77, 901}));
}

// As a call that fails once something was set up, and once something else was not taken back.
TEST(Shrinking, GoesOnWhereOneElementMakesAnotherDispensable) {
    const auto fails = [](const List& an) { return Has(an, 9) && (!Has(an, 4) || Has(an, 6)); };
    ASSERT_TRUE(fails(UpTo(10)));
    EXPECT_EQ(Shrunk(UpTo(10), fails), List({9}));
}

TEST(Shrinking, LeavesWhatNoElementCanBeTakenFrom) {
    const auto fails = [](const List& an) { return an.size() == 5; };
    EXPECT_EQ(Shrunk(UpTo(5), fails), UpTo(5));
}

TEST(Shrinking, TakesFewTriesForAFewOfMany) {
    int nTries = 0;
    Shrunk(UpTo(25000), [&](const List& an) {
        ++nTries;
        return Has(an, 11111) && Has(an, 24999);
    });
    EXPECT_LT(nTries, 100);
}
