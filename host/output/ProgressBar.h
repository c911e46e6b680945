// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A progress bar on stderr with percentage, rate and time left.
///
/// A bar that is not shown costs nothing and prints nothing. It redraws at most a few times a second, and its
/// destructor clears its line, so that nothing is left in the terminal.
class ProgressBar
{
public:
    /// @param unit what is counted, such as "groups"; an empty one stands for bytes
    ProgressBar(bool shown, std::string label, std::string unit, std::uint64_t total);
    ~ProgressBar();

    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Counts this many units as done.
    void advance(std::uint64_t amount = 1);

private:
    using Clock = std::chrono::steady_clock;

    void draw(Clock::time_point now);

    bool m_shown;
    std::string m_label;
    std::string m_unit;
    std::uint64_t m_total;
    std::uint64_t m_done = 0;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_drawn = {};
};
