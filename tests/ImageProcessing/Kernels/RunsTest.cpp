#include "ImageProcessing/Kernels/Runs.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace {

using Runs = std::vector<std::pair<long, long>>;

/// Lines of every length up to 40 with runs of two values, in buffers of exactly that length, so
/// that a sanitizer sees a step too far.
template <class T, class Check>
void ForManyLines(Check check) {
    std::mt19937 random(1);
    for (std::size_t nLength = 0; nLength <= 40; ++nLength)
        for (unsigned nChange : {1U, 2U, 5U, 13U, 100U}) {
            std::vector<T> aLine(nLength);
            T value = T(7);
            for (T& rSample : aLine) {
                if (random() % nChange == 0)
                    value = value == T(7) ? T(200) : T(7);
                rSample = value;
            }
            check(aLine);
        }
}

template <class T>
Runs PlainRuns(const std::vector<T>& aLine, long nFrom, long nEnd, T value) {
    Runs aRuns;
    for (long x = nFrom; x < nEnd; ++x) {
        if (aLine[static_cast<std::size_t>(x)] != value)
            continue;
        if (!aRuns.empty() && aRuns.back().second == x)
            ++aRuns.back().second;
        else
            aRuns.emplace_back(x, x + 1);
    }
    return aRuns;
}

template <class T>
void ExpectRuns(const std::vector<T>& aLine) {
    const long nLength = static_cast<long>(aLine.size());
    for (T value : {T(7), T(200), T(9)})
        for (long nFrom = 0; nFrom <= nLength; ++nFrom)
            for (long nEnd : {nFrom, (nFrom + nLength + 1) / 2, nLength}) {
                Runs aRuns;
                Kernels::ForEachRun(aLine.data(), nFrom, nEnd, value, [&](Kernels::StRun Run) {
                    aRuns.emplace_back(Run.m_nBegin, Run.m_nEnd);
                });
                EXPECT_EQ(aRuns, PlainRuns(aLine, nFrom, nEnd, value));
            }
}

TEST(RunsKernel, FindsTheRunsOfBytes) {
    ForManyLines<unsigned char>(ExpectRuns<unsigned char>);
}

TEST(RunsKernel, FindsTheRunsOfOtherSamples) {
    ForManyLines<std::int16_t>(ExpectRuns<std::int16_t>);
    ForManyLines<double>(ExpectRuns<double>);
}

TEST(RunsKernel, FindsWhereTheRunAroundAPlaceBegins) {
    ForManyLines<unsigned char>([](const std::vector<unsigned char>& aLine) {
        for (long x = 0; x < static_cast<long>(aLine.size()); ++x) {
            const unsigned char nValue = aLine[static_cast<std::size_t>(x)];
            const Runs aRuns = PlainRuns(aLine, 0, x + 1, nValue);
            EXPECT_EQ(Kernels::FindRunBegin(aLine.data(), x, nValue), aRuns.back().first);
        }
    });
}

TEST(RunsKernel, ReadsNothingOfAnEmptyLine) {
    const unsigned char* pNothing = nullptr;
    EXPECT_EQ(Kernels::FindValue(pNothing, 0, 0, 1), 0);
    EXPECT_EQ(Kernels::FindOther(pNothing, 0, 0, 1), 0);
    EXPECT_EQ(Kernels::FindRunBegin(pNothing, 0, 1), 0);
}

} // namespace
