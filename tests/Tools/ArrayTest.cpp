#include "Tools/Array.h"

#include "support/AllocationFailures.h"
#include "support/Throws.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

using namespace TestSupport;

namespace {

/// An element that counts the living ones and starts as 7.
struct StCounted {
    StCounted() { ++s_nAlive; }
    explicit StCounted(int n) : m_n(n) { ++s_nAlive; }
    StCounted(const StCounted& other) : m_n(other.m_n) { ++s_nAlive; }
    StCounted& operator=(const StCounted&) = default;
    ~StCounted() { --s_nAlive; }

    int m_n = 7;
    static int s_nAlive;
};

int StCounted::s_nAlive = 0;

/// An element whose assignment fails on demand.
struct StFragile {
    StFragile() = default;
    explicit StFragile(int n) : m_n(n) {}
    StFragile(const StFragile&) = default;
    StFragile& operator=(const StFragile& other) {
        if (s_nGoodCopies-- == 0)
            throw ClExRange("fragile", -35, true, VEK_HERE);
        m_n = other.m_n;
        return *this;
    }

    int m_n = 0;
    static int s_nGoodCopies;
};

int StFragile::s_nGoodCopies = 0;

template <class Array>
std::vector<int> Values(const Array& array) {
    return std::vector<int>(array.Data(), array.Data() + array.Entries());
}

template <class Array>
void FillWithIndices(Array& array) {
    for (unsigned long i = 0; i < array.Entries(); ++i)
        array[i] = static_cast<int>(i);
}

TpArrayDynamic<int, 10> Counting(int nCount) {
    TpArrayDynamic<int, 10> array;
    for (int i = 0; i < nCount; ++i)
        array.Append(i);
    return array;
}

} // namespace

// Static form

TEST(ArrayStatic, StartsEmpty) {
    const TpArrayStatic<int> array;
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Data(), nullptr);
}

TEST(ArrayStatic, MakesDefaultConstructedElements) {
    TpArrayStatic<StCounted> array;
    array.New(3);
    EXPECT_EQ(array.Entries(), 3u);
    for (unsigned long i = 0; i < 3; ++i)
        EXPECT_EQ(array[i].m_n, 7);
}

TEST(ArrayStatic, LosesItsContentInNew) {
    TpArrayStatic<StCounted> array;
    array.New(3);
    array[0].m_n = 1;
    array.New(2);
    EXPECT_EQ(array.Entries(), 2u);
    EXPECT_EQ(array[0].m_n, 7);
    EXPECT_EQ(StCounted::s_nAlive, 2);
}

TEST(ArrayStatic, IsFreedByNewOfNothing) {
    TpArrayStatic<StCounted> array;
    array.New(3);
    array.New(0);
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Data(), nullptr);
    EXPECT_EQ(StCounted::s_nAlive, 0);
}

TEST(ArrayStatic, DestroysItsElementsInClear) {
    TpArrayStatic<StCounted> array;
    array.New(3);
    array.Clear();
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Data(), nullptr);
    EXPECT_EQ(StCounted::s_nAlive, 0);
}

TEST(ArrayStatic, DestroysItsElementsAtItsEnd) {
    {
        TpArrayStatic<StCounted> array;
        array.New(3);
        EXPECT_EQ(StCounted::s_nAlive, 3);
    }
    EXPECT_EQ(StCounted::s_nAlive, 0);
}

TEST(ArrayStatic, IsDestroyedThroughItsBase) {
    TpArrayStatic<StCounted>* pArray = new TpArrayDynamic<StCounted, 10>();
    pArray->New(3);
    delete pArray;
    EXPECT_EQ(StCounted::s_nAlive, 0);
    static_assert(std::has_virtual_destructor_v<TpArrayStatic<int>>);
}

TEST(ArrayStatic, CopiesDeeply) {
    TpArrayStatic<int> array;
    array.New(3);
    FillWithIndices(array);
    const TpArrayStatic<int> copy(array);
    TpArrayStatic<int> assigned;
    assigned.New(5);
    assigned = array;
    array[1] = 9;
    EXPECT_EQ(Values(copy), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Values(assigned), (std::vector<int>{0, 1, 2}));
    EXPECT_NE(copy.Data(), array.Data());
}

TEST(ArrayStatic, CopiesEmptyArrays) {
    const TpArrayStatic<int> empty;
    const TpArrayStatic<int> copy(empty);
    TpArrayStatic<int> assigned;
    assigned.New(5);
    assigned = empty;
    EXPECT_EQ(copy.Data(), nullptr);
    EXPECT_EQ(assigned.Entries(), 0u);
    EXPECT_EQ(assigned.Data(), nullptr);
}

TEST(ArrayStatic, ChangesNothingWhenAssignedToItself) {
    TpArrayStatic<int> array;
    array.New(3);
    FillWithIndices(array);
    const int* const pData = array.Data();
    const TpArrayStatic<int>& same = array;
    array = same;
    EXPECT_EQ(array.Data(), pData);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2}));
}

TEST(ArrayStatic, CopiesTheUsedPartOfADynamicArray) {
    const TpArrayDynamic<int, 10> dynamic = Counting(3);
    const TpArrayStatic<int> copy(dynamic);
    TpArrayStatic<int> assigned;
    assigned = dynamic;
    EXPECT_EQ(Values(copy), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Values(assigned), (std::vector<int>{0, 1, 2}));
}

TEST(ArrayStatic, IsEmptyAfterNewWithoutMemory) {
    TpArrayStatic<int> array;
    array.New(3);
    try {
        ClFailAllocation fail(0);
        array.New(5);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const ClExBadAlloc& e) {
        EXPECT_EQ(e.Number(), -102);
        EXPECT_EQ(Words(e), "Memory allocation failed");
    }
    EXPECT_EQ(array.Data(), nullptr);
    EXPECT_EQ(array.Entries(), 0u);
}

TEST(ArrayStatic, RefusesCountsBeyondAllMemory) {
    TpArrayStatic<double> array;
    for (unsigned long nCount : {std::numeric_limits<unsigned long>::max(), 1UL << 61, 1UL << 60})
        EXPECT_THROWS(array.New(nCount), ClExBadAlloc, -102, "Memory allocation failed");
    EXPECT_EQ(array.Data(), nullptr);
    EXPECT_EQ(array.Entries(), 0u);
}

TEST(ArrayStatic, KeepsItsContentWhenACopyFails) {
    const TpArrayStatic<int> source = Counting(4);
    TpArrayStatic<int> array = Counting(2);
    const int* const pData = array.Data();
    FailEachAllocation([&] {
        try {
            array = source;
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(array.Data(), pData);
            EXPECT_EQ(Values(array), (std::vector<int>{0, 1}));
            throw;
        }
    });
    FailEachAllocation([&] { const TpArrayStatic<int> copy(source); });
}

// Dynamic form

TEST(ArrayDynamic, StartsEmptyAndWithoutStorage) {
    const TpArrayDynamic<int, 10> array;
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Capacity(), 0u);
    EXPECT_EQ(array.Data(), nullptr);
}

TEST(ArrayDynamic, AnswersTheIndexOfWhatItAppends) {
    TpArrayDynamic<int, 10> array;
    EXPECT_EQ(array.Append(5), 0u);
    EXPECT_EQ(array.Append(6), 1u);
    EXPECT_EQ(Values(array), (std::vector<int>{5, 6}));
}

TEST(ArrayDynamic, GrowsByItsStep) {
    TpArrayDynamic<int, 10> array = Counting(10);
    const int* const pData = array.Data();
    EXPECT_EQ(array.Capacity(), 10u);
    array.Append(10); // the eleventh
    EXPECT_EQ(array.Capacity(), 20u);
    EXPECT_NE(array.Data(), pData);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(ArrayDynamic, GrowsLinearly) {
    TpArrayDynamic<int, 8> array;
    for (int i = 0; i < 100; ++i) {
        array.Append(i);
        EXPECT_EQ(array.Entries(), static_cast<unsigned long>(i) + 1);
        EXPECT_EQ(array.Capacity(), static_cast<unsigned long>(i) / 8 * 8 + 8);
    }
}

TEST(ArrayDynamic, AppendsItsOwnElements) {
    TpArrayDynamic<int, 10> array = Counting(10);
    array.Append(array[3]); // while it moves
    array.Append(array[4]);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 3, 4}));
}

TEST(ArrayDynamic, KeepsItsCapacityInClear) {
    TpArrayDynamic<int, 10> array = Counting(10);
    const int* const pData = array.Data();
    array.Clear();
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Capacity(), 10u);
    {
        ClFailAllocation fail(0);
        array.Append(5);
        EXPECT_FALSE(ClFailAllocation::Happened());
    }
    EXPECT_EQ(array.Data(), pData);
    EXPECT_EQ(Values(array), std::vector<int>{5});
}

TEST(ArrayDynamic, IsFullAfterNew) {
    TpArrayDynamic<StCounted, 10> array;
    array.Append(StCounted(1));
    array.New(3);
    EXPECT_EQ(array.Entries(), 3u);
    EXPECT_EQ(array.Capacity(), 3u);
    EXPECT_EQ(array[0].m_n, 7);
    array.Append(StCounted(2));
    EXPECT_EQ(array.Capacity(), 13u);
    array.New(0);
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Capacity(), 0u);
    EXPECT_EQ(StCounted::s_nAlive, 0);
}

TEST(ArrayDynamic, AnswersItsUsedEntriesThroughTheBase) {
    TpArrayDynamic<int, 10> array = Counting(3);
    TpArrayStatic<int>& base = array;
    EXPECT_EQ(base.Entries(), 3u);
    base.Clear();
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Capacity(), 10u);
    base.New(4);
    EXPECT_EQ(array.Entries(), 4u);
}

TEST(ArrayDynamic, CopiesDeeply) {
    TpArrayDynamic<int, 10> array = Counting(3);
    const TpArrayDynamic<int, 10> copy(array);
    TpArrayDynamic<int, 10> assigned = Counting(15);
    assigned = array;
    array[1] = 9;
    EXPECT_EQ(Values(copy), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(Values(assigned), (std::vector<int>{0, 1, 2}));
    assigned.Append(3);
    EXPECT_EQ(Values(assigned), (std::vector<int>{0, 1, 2, 3}));
}

TEST(ArrayDynamic, ChangesNothingWhenAssignedToItself) {
    TpArrayDynamic<int, 10> array = Counting(3);
    const TpArrayDynamic<int, 10>& same = array;
    array = same;
    EXPECT_EQ(array.Capacity(), 10u);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2}));
}

TEST(ArrayDynamic, ReservesInSteps) {
    TpArrayDynamic<int, 10> array = Counting(3);
    array.Reserve(10);
    EXPECT_EQ(array.Capacity(), 10u);
    array.Reserve(11);
    EXPECT_EQ(array.Capacity(), 20u);
    array.Reserve(41);
    EXPECT_EQ(array.Capacity(), 50u);
    array.Reserve(0);
    EXPECT_EQ(array.Capacity(), 50u);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2}));
}

TEST(ArrayDynamic, TakesALength) {
    TpArrayDynamic<StCounted, 10> array;
    array.SetEntries(12);
    EXPECT_EQ(array.Entries(), 12u);
    EXPECT_EQ(array.Capacity(), 20u);
    EXPECT_EQ(array[11].m_n, 7);
    array.SetEntries(1);
    EXPECT_EQ(array.Entries(), 1u);
    EXPECT_EQ(array.Capacity(), 20u);
}

TEST(ArrayDynamic, RefusesLengthsBeyondAllMemory) {
    TpArrayDynamic<double, 10> array;
    array.Append(1.0);
    constexpr unsigned long nMost = std::numeric_limits<unsigned long>::max();
    for (unsigned long nCount : {nMost, nMost - 3, 1UL << 61, 1UL << 60}) {
        EXPECT_THROWS(array.SetEntries(nCount), ClExBadAlloc, -102, "Memory allocation failed");
        EXPECT_EQ(array.Entries(), 1u);
        EXPECT_EQ(array.Capacity(), 10u);
    }
}

TEST(ArrayDynamic, RemovesInOrder) {
    TpArrayDynamic<int, 10> array = Counting(5);
    array.Remove(0);
    array.Remove(3);
    array.Remove(1);
    EXPECT_EQ(Values(array), (std::vector<int>{1, 3}));
    EXPECT_EQ(array.Capacity(), 10u);
}

TEST(ArrayDynamic, ChangesNothingWhenItCannotGrow) {
    TpArrayDynamic<int, 10> array = Counting(10);
    const int* const pData = array.Data();
    const auto ExpectUnchanged = [&] {
        EXPECT_EQ(array.Data(), pData);
        EXPECT_EQ(array.Entries(), 10u);
        EXPECT_EQ(array.Capacity(), 10u);
    };
    FailEachAllocation([&] {
        try {
            array.Append(10);
        } catch (const ClExBadAlloc& e) {
            EXPECT_EQ(Words(e), "Memory allocation failed");
            ExpectUnchanged();
            throw;
        }
    });
    EXPECT_EQ(array.Entries(), 11u);
}

TEST(ArrayDynamic, ChangesNothingWhenAnElementCannotBeCopied) {
    TpArrayDynamic<StFragile, 2> array;
    StFragile::s_nGoodCopies = 2;
    array.Append(StFragile(1));
    array.Append(StFragile(2));
    for (int nGood : {0, 1, 2}) {
        StFragile::s_nGoodCopies = nGood;
        EXPECT_THROWS(array.Append(StFragile(3)), ClExRange, -35, "fragile");
        EXPECT_EQ(array.Entries(), 2u);
        EXPECT_EQ(array.Capacity(), 2u);
        EXPECT_EQ(array[1].m_n, 2);
    }
}

TEST(ArrayDynamic, IsAssignedWholeThroughItsBase) {
    const TpArrayDynamic<int, 10> source = Counting(5);
    TpArrayDynamic<int, 10> array = Counting(12);
    TpArrayStatic<int>& rBase = array;
    rBase = source;
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(array.Capacity(), 5u);
    array.Append(5);
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 3, 4, 5}));
    rBase = TpArrayStatic<int>();
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Data(), nullptr);
    array.Append(7);
    EXPECT_EQ(Values(array), (std::vector<int>{7}));
    rBase = rBase;
    EXPECT_EQ(Values(array), (std::vector<int>{7}));
}

TEST(ArrayDynamic, KeepsItsContentWhenAnAssignmentThroughItsBaseFails) {
    const TpArrayDynamic<int, 10> source = Counting(4);
    TpArrayDynamic<int, 10> array = Counting(2);
    FailEachAllocation([&] {
        try {
            static_cast<TpArrayStatic<int>&>(array) = source;
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(Values(array), (std::vector<int>{0, 1}));
            throw;
        }
    });
    EXPECT_EQ(Values(array), (std::vector<int>{0, 1, 2, 3}));
}

TEST(ArrayDynamic, IsEmptyAfterNewWithoutMemory) {
    TpArrayDynamic<int, 10> array = Counting(3);
    {
        ClFailAllocation fail(0);
        EXPECT_THROW(array.New(5), ClExBadAlloc);
    }
    EXPECT_EQ(array.Data(), nullptr);
    EXPECT_EQ(array.Entries(), 0u);
    EXPECT_EQ(array.Capacity(), 0u);
    array.Append(1);
    EXPECT_EQ(array.Capacity(), 10u);
}

TEST(ArrayDynamic, KeepsItsContentWhenACopyFails) {
    const TpArrayDynamic<int, 10> source = Counting(4);
    TpArrayDynamic<int, 10> array = Counting(2);
    FailEachAllocation([&] {
        try {
            array = source;
        } catch (const ClExBadAlloc&) {
            EXPECT_EQ(Values(array), (std::vector<int>{0, 1}));
            throw;
        }
    });
    FailEachAllocation([&] { const TpArrayDynamic<int, 10> copy(source); });
}
