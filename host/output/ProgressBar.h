// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// A bar on stderr with share, rate and time left.
///
/// A bar that is not shown costs nothing and prints nothing. It redraws a few times a second at most, and takes its
/// line away when it goes, so that nothing of it stays in the terminal.
class ProgressBar
{
public:
    /// @param unit what is counted, as in "groups"
    ProgressBar(bool shown, std::string label, std::string unit, std::uint64_t total);
    ~ProgressBar();

    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Counts so much as done.
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
