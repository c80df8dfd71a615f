// Who links a dot, and the room that knowing it takes.

#include "Calibrate/DotHolders.h"

#include "Calibrate/DotGrids.h"
#include "support/AllocationCount.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace TestSupport;

namespace {

/// Three dots: the first one links both others, the second one the third.
struct StLinked {
    StLinked() : m_Grid({{10, 10}, {20, 10}, {30, 10}}) {
        m_Grid(0).m_aNeighbours.Append(&m_Grid(1));
        m_Grid(0).m_aNeighbours.Append(&m_Grid(2));
        m_Grid(1).m_aNeighbours.Append(&m_Grid(2));
    }

    ClTestGrid m_Grid;
};

} // namespace

TEST(DotHolders, TakesADotOutOfAllThatLinkIt) {
    StLinked Linked;
    const ClDotHolders Holders(Linked.m_Grid);
    std::vector<int> anVisited;
    Holders.TakeOut(Linked.m_Grid(2), [&](ClDot& rDot) { anVisited.push_back(rDot.m_nIndex); });
    std::sort(anVisited.begin(), anVisited.end());
    EXPECT_EQ(anVisited, (std::vector<int>{0, 1}));
    EXPECT_EQ(Neighbours(Linked.m_Grid(0)), std::vector<int>{1});
    EXPECT_EQ(Neighbours(Linked.m_Grid(1)), std::vector<int>());
    EXPECT_FALSE(Linked.m_Grid(2).m_bValid);
}

/// Room for fewer would be written behind, which no value shows.
TEST(DotHolders, TakesRoomForTheLinksThatThereAre) {
    const StLinked Linked;
    const ClCountAllocations Count;
    const ClDotHolders Holders(Linked.m_Grid);
    EXPECT_EQ(Count.SoFar().m_nCount, 1);
    EXPECT_EQ(Count.SoFar().m_nLargest, 3 * 2 * sizeof(void*)); // the dot and its holder
}
