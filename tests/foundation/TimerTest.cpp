// SPDX-License-Identifier: MIT
#include "DvnCore/Timer.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

/// Keeps the processor busy for so many seconds of a clock that the timer does not use.
void spend(double seconds)
{
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() < seconds) {
    }
}

} // namespace

TEST(Timer, TimeAndLapRunApart)
{
    dvn::Timer timer;
    spend(0.02);
    const double first = timer.time();
    EXPECT_GE(first, 0.02);
    EXPECT_LT(first, 20.0) << "seconds, and nothing else";
    const double lap = timer.lapTime();
    EXPECT_GE(lap, first) << "reading the time does not end a lap";
    spend(0.005);
    const double second = timer.lapTime();
    EXPECT_GE(second, 0.005);
    EXPECT_GE(timer.time(), lap + second) << "a lap does not restart the time";
    timer.restart();
    EXPECT_LT(timer.time(), first + second);
}
