#include "ImageProcessing/Kernels/PairedTaps.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using Kernels::ClPairedTaps;
using EKind = ClPairedTaps::EKind;

ClPairedTaps PairedTapsOf(const std::vector<long>& aTaps) {
    return {aTaps.data(), static_cast<long>(aTaps.size())};
}

EKind KindOf(const std::vector<long>& aTaps) {
    return PairedTapsOf(aTaps).Kind();
}

TEST(PairedTaps, TellsEvenOnesFromOddOnes) {
    EXPECT_EQ(KindOf({1, 2, 1}), EKind::eEven);
    EXPECT_EQ(KindOf({1, 0, -1}), EKind::eOdd);
    EXPECT_EQ(KindOf({1, 1, -1}), EKind::eNone) << "a middle";
    EXPECT_EQ(KindOf({1, 2, 3}), EKind::eNone) << "no pair";
    EXPECT_EQ(KindOf({-1, 2, -1}), EKind::eNone) << "below 0";
    EXPECT_EQ(KindOf({1, 1}), EKind::eNone) << "no middle";
}

TEST(PairedTaps, AddUpToOneAtMost) {
    EXPECT_EQ(KindOf({4096}), EKind::eEven);
    EXPECT_EQ(KindOf({4097}), EKind::eNone);
    EXPECT_EQ(KindOf({2048, 0, 2048}), EKind::eEven);
    EXPECT_EQ(KindOf({2048, 1, 2048}), EKind::eNone);
    EXPECT_EQ(KindOf({-2048, 0, 2048}), EKind::eOdd);
    EXPECT_EQ(KindOf({-2049, 0, 2049}), EKind::eNone);
}

TEST(PairedTaps, ReachEightToEitherSideBesideNothing) {
    std::vector<long> aTaps(17, 1);
    EXPECT_EQ(PairedTapsOf(aTaps).Half(), 8);
    aTaps.insert(aTaps.begin(), 0);
    aTaps.push_back(0);
    EXPECT_EQ(PairedTapsOf(aTaps).Half(), 8);
    aTaps.front() = aTaps.back() = 1;
    EXPECT_EQ(KindOf(aTaps), EKind::eNone);
}

/// The taps from the middle to the left, of a filter that is even.
void ExpectTakenApart(const std::vector<long>& aHalf) {
    std::vector<long> aTaps(aHalf.rbegin(), aHalf.rend());
    aTaps.insert(aTaps.end(), aHalf.begin() + 1, aHalf.end());
    const ClPairedTaps Taps = PairedTapsOf(aTaps);
    ASSERT_EQ(Taps.Kind(), EKind::eEven);
    long nParts = 0;
    for (std::size_t k = 0; k < aHalf.size(); ++k) {
        EXPECT_EQ(16 * Taps.m_aWhole[k] + Taps.m_aPart[k], aHalf[k]);
        EXPECT_EQ(Taps.m_aTaps[k], aHalf[k]);
        EXPECT_TRUE(static_cast<int>(k) < Taps.Wholes() || Taps.m_aWhole[k] == 0);
        nParts += (k == 0 ? 1 : 2) * Taps.m_aPart[k];
    }
    EXPECT_LE(nParts, 256) << "and 16 bits would not hold the sum of the parts";
}

TEST(PairedTaps, ArePartsAsAWholeWhereTheseLeaveRoom) {
    EXPECT_EQ(PairedTapsOf({256}).Wholes(), 0);
    EXPECT_EQ(PairedTapsOf({257}).Wholes(), 1);
    EXPECT_EQ(PairedTapsOf({64, 128, 64}).Wholes(), 0);
    EXPECT_EQ(PairedTapsOf({64, 129, 64}).Wholes(), 1);
    EXPECT_EQ(PairedTapsOf({129, 0, 129}).Wholes(), 2);
}

TEST(PairedTaps, ArePartsAndSixteenWholes) {
    std::mt19937 random(5);
    for (int i = 0; i < 1000; ++i) {
        std::vector<long> aHalf(1 + random() % 9);
        long nRest = 4096;
        for (long& rTap : aHalf) {
            rTap = static_cast<long>(random() % static_cast<unsigned long>(nRest / 2 + 1));
            nRest -= 2 * rTap;
        }
        ExpectTakenApart(aHalf);
    }
}

} // namespace
