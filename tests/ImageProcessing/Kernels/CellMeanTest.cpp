#include "ImageProcessing/Kernels/CellMean.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

using Kernels::MakeCell;
using Kernels::StCell;

template <class T>
std::vector<T> RandomSamples(std::size_t nCount) {
    std::mt19937 random(1);
    std::vector<T> aSamples(nCount);
    for (T& sample : aSamples)
        sample = static_cast<T>(random());
    return aSamples;
}

/// Unit by unit.
template <class T>
T MeanOfSpan(const T* pIn, long nStride, long long nFrom, long long nTo, long long nUnit) {
    long long nSum = 0;
    for (long long n = nFrom; n < nTo; ++n)
        nSum += pIn[n / nUnit * nStride];
    return static_cast<T>(nSum / (nTo - nFrom));
}

TEST(CellMean, FindsTheSamplesThatACellCovers) {
    const StCell inside = MakeCell(17, 19, 8);
    EXPECT_EQ(inside.m_nFirst, 2);
    EXPECT_EQ(inside.m_nLast, 2);
    EXPECT_EQ(inside.m_nFirstWeight, 2);
    EXPECT_EQ(inside.m_nLastWeight, 0);
    EXPECT_EQ(inside.m_nLength, 2);
    const StCell across = MakeCell(15, 33, 8);
    EXPECT_EQ(across.m_nFirst, 1);
    EXPECT_EQ(across.m_nLast, 4);
    EXPECT_EQ(across.m_nFirstWeight, 1);
    EXPECT_EQ(across.m_nLastWeight, 1);
    EXPECT_EQ(across.m_nLength, 18);
    const StCell whole = MakeCell(8, 24, 8); // ends with a sample, does not reach the next
    EXPECT_EQ(whole.m_nFirst, 1);
    EXPECT_EQ(whole.m_nLast, 2);
    EXPECT_EQ(whole.m_nFirstWeight, 8);
    EXPECT_EQ(whole.m_nLastWeight, 8);
}

template <class T>
void ExpectNaiveMeans() {
    constexpr long cnStride = 600;
    const std::vector<T> aIn = RandomSamples<T>(5 * cnStride);
    for (long long nUnit : {1, 3, 8})
        for (long long nFrom = 0; nFrom < 5 * nUnit; ++nFrom)
            for (long long nTo = nFrom + 1; nTo <= 5 * nUnit; ++nTo) {
                const StCell Cell = MakeCell(nFrom, nTo, nUnit);
                T mean = 0;
                Kernels::MeanOfCells(aIn.data(), &Cell, 1, nUnit, &mean);
                EXPECT_EQ(mean, MeanOfSpan(aIn.data(), 1, nFrom, nTo, nUnit));
                std::vector<T> aOut(515, T(77));
                Kernels::MeanOfLines(aIn.data(), cnStride, Cell, nUnit, 514, aOut.data());
                for (long x : {0L, 1L, 511L, 512L, 513L})
                    EXPECT_EQ(aOut[static_cast<std::size_t>(x)],
                              MeanOfSpan(aIn.data() + x, cnStride, nFrom, nTo, nUnit));
                EXPECT_EQ(aOut[514], T(77)) << "written behind the end";
            }
}

TEST(CellMean, EqualsTheMeanUnitByUnit) {
    ExpectNaiveMeans<unsigned char>();
    ExpectNaiveMeans<signed char>();
}

TEST(CellMean, KeepsTheExtremesOfTheType) {
    const std::vector<signed char> aIn(3, std::numeric_limits<signed char>::min());
    const StCell Cell = MakeCell(5, 23, 8);
    signed char mean = 0;
    Kernels::MeanOfCells(aIn.data(), &Cell, 1, 8, &mean);
    EXPECT_EQ(mean, -128);
}

} // namespace
