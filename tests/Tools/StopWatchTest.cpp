#include "Tools/StopWatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

TEST(StopWatch, AddsSecondsAndMicroseconds) {
    EXPECT_DOUBLE_EQ(Vek::CXStopWatch::Seconds({10, 250000}, {12, 750000}), 2.5);
    EXPECT_EQ(Vek::CXStopWatch::Seconds({10, 5}, {10, 5}), 0.0);
}

TEST(StopWatch, BorrowsASecondForNegativeMicroseconds) {
    EXPECT_DOUBLE_EQ(Vek::CXStopWatch::Seconds({10, 999999}, {11, 0}), 1e-6);
    EXPECT_DOUBLE_EQ(Vek::CXStopWatch::Seconds({10, 750000}, {13, 250000}), 2.5);
}

TEST(StopWatch, MeasuresFromItsLastStart) {
    using namespace std::chrono_literals;
    timeval begin;
    timeval end;
    gettimeofday(&begin, nullptr);
    Vek::CXStopWatch watch;
    std::this_thread::sleep_for(20ms);
    watch.Start();
    std::this_thread::sleep_for(2ms);
    const double dSeconds = watch.Seconds();
    gettimeofday(&end, nullptr);
    EXPECT_GE(dSeconds, 0.002);
    EXPECT_LE(dSeconds + 0.020, Vek::CXStopWatch::Seconds(begin, end));
}

} // namespace
