#include "sim/Random.h"

#include <gtest/gtest.h>

#include <cmath>

using sim::ClNoiseField;
using sim::ClRandom;

// The sequence that is published for SplitMix64 and the seed 1234567.
TEST(SimRandom, GivesThePublishedSequence) {
    ClRandom Random(1234567);

    EXPECT_EQ(Random.Next(), 6457827717110365317U);
    EXPECT_EQ(Random.Next(), 3203168211198807973U);
    EXPECT_EQ(Random.Next(), 9817491932198370423U);
    EXPECT_EQ(Random.Next(), 4593380528125082431U);
    EXPECT_EQ(Random.Next(), 16408922859458223821U);
}

TEST(SimRandom, LooksUpTheSameNumbersThatItDrawsInSequence) {
    ClRandom Random(42);

    for (std::uint64_t n = 0; n < 100; ++n)
        EXPECT_EQ(ClRandom::Lookup(42, n), Random.Next());
}

TEST(SimRandom, GivesSubjectsOfOneSeedDifferentSequences) {
    ClRandom First(7, 1);
    ClRandom Second(7, 2);
    ClRandom OtherSeed(8, 1);

    const std::uint64_t nFirst = First.Next();

    EXPECT_NE(nFirst, Second.Next());
    EXPECT_NE(nFirst, OtherSeed.Next());
}

TEST(SimRandom, MapsAllBitsSetToTheNumberBelowOne) {
    EXPECT_EQ(ClRandom::ToUniform(0), 0.0);
    EXPECT_EQ(ClRandom::ToUniform(~std::uint64_t{0}), 1.0 - std::ldexp(1.0, -53));
    EXPECT_EQ(ClRandom::ToUniform(std::uint64_t{1} << 63), 0.5);
}

TEST(SimRandom, DrawsIntegersFromBothEndsOfTheRange) {
    ClRandom Random(3);
    int aCounts[5] = {};

    for (int n = 0; n < 5000; ++n) {
        const int nValue = Random.Integer(-2, 2);
        ASSERT_GE(nValue, -2);
        ASSERT_LE(nValue, 2);
        ++aCounts[nValue + 2];
    }

    // 1000 expected, sigma 28.
    for (const int nCount : aCounts)
        EXPECT_NEAR(nCount, 1000, 150);
}

TEST(SimRandom, SumsFourLanesToNormalNumbersOfUnitVariance) {
    // All lanes 0: -131070 / sqrt(4 (65536^2 - 1) / 12).
    EXPECT_NEAR(ClRandom::ToNormal(0), -std::sqrt(12.0), 1e-4);
    EXPECT_NEAR(ClRandom::ToNormal(~std::uint64_t{0}), std::sqrt(12.0), 1e-4);

    ClRandom Random(11);
    constexpr int nCount = 100000;
    double dSum = 0.0;
    double dSquares = 0.0;
    for (int n = 0; n < nCount; ++n) {
        const double d = Random.Normal();
        dSum += d;
        dSquares += d * d;
    }

    // Standard errors are 0.0032 and 0.0041.
    EXPECT_NEAR(dSum / nCount, 0.0, 0.016);
    EXPECT_NEAR(dSquares / nCount, 1.0, 0.02);
}

TEST(SimNoiseField, IsContinuousAcrossTheCellsOfItsGrid) {
    const ClNoiseField Field(5, 2.0);

    for (int n = -3; n <= 3; ++n) {
        const double dEdge = 2.0 * n;
        EXPECT_NEAR(Field.At(dEdge - 1e-9, 0.7), Field.At(dEdge + 1e-9, 0.7), 1e-7);
        EXPECT_NEAR(Field.At(0.7, dEdge - 1e-9), Field.At(0.7, dEdge + 1e-9), 1e-7);
    }
}

TEST(SimNoiseField, StaysWithinOneAndVaries) {
    const ClNoiseField Field(6, 1.0);
    double dLowest = 1.0;
    double dHighest = -1.0;

    for (int y = -40; y < 40; ++y) {
        for (int x = -40; x < 40; ++x) {
            const double d = Field.At(0.37 * x, 0.41 * y);
            dLowest = std::fmin(dLowest, d);
            dHighest = std::fmax(dHighest, d);
        }
    }

    EXPECT_GE(dLowest, -1.0);
    EXPECT_LE(dHighest, 1.0);
    EXPECT_LT(dLowest, -0.8);
    EXPECT_GT(dHighest, 0.8);
}

// Half way between two knots of a row the cubic gives their mean.
TEST(SimNoiseField, InterpolatesBetweenItsKnots) {
    const ClNoiseField Field(9, 1.0);

    EXPECT_NEAR(Field.At(2.5, 3.0), 0.5 * (Field.At(2.0, 3.0) + Field.At(3.0, 3.0)), 1e-12);
    EXPECT_NEAR(Field.At(-2.0, -0.5), 0.5 * (Field.At(-2.0, -1.0) + Field.At(-2.0, 0.0)), 1e-12);
}
