// SPDX-License-Identifier: MIT
#include "DvnCore/Timer.h"

#include <gtest/gtest.h>

#include <chrono>

TEST(Timer, TimeAndLapRunApartInSeconds)
{
    // A clock that the timer does not use.
    const auto start = std::chrono::steady_clock::now();
    dvn::Timer timer;
    while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(20)) {
    }
    const double first = timer.time();
    EXPECT_GE(first, 0.015);
    EXPECT_LT(first, 20.0);
    const double lap = timer.lapTime();
    EXPECT_GE(lap, first) << "reading the time does not end a lap";
    const double second = timer.lapTime();
    EXPECT_GE(timer.time(), lap + second) << "a lap does not restart the time";
    timer.restart();
    EXPECT_LT(timer.time(), first);
}
