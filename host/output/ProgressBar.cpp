// SPDX-License-Identifier: MIT
#include "output/ProgressBar.h"

#include "output/ByteText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr std::chrono::milliseconds REDRAW_INTERVAL(100);
constexpr std::size_t BAR_WIDTH = 30;

/// Minutes and seconds; hours are shown as minutes, which is enough for a progress bar.
std::string timeText(double seconds)
{
    const long whole = std::lround(seconds);
    return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

} // namespace

ProgressBar::ProgressBar(bool shown, std::string label, std::string unit, std::uint64_t total)
    : m_shown(shown && total != 0), m_label(std::move(label)), m_unit(std::move(unit)), m_total(total)
{}

ProgressBar::~ProgressBar()
{
    if (m_shown && m_drawn != Clock::time_point()) {
        static_cast<void>(std::fputs("\r\033[K", stderr));
    }
}

void ProgressBar::advance(std::uint64_t amount)
{
    m_done = std::min(m_done + amount, m_total);
    const Clock::time_point now = Clock::now();
    if (m_shown && now - m_drawn >= REDRAW_INTERVAL) {
        draw(now);
        m_drawn = now;
    }
}

void ProgressBar::draw(Clock::time_point now)
{
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    const double share = static_cast<double>(m_done) / static_cast<double>(m_total);
    const double rate = seconds > 0 ? static_cast<double>(m_done) / seconds : 0;
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(BAR_WIDTH));
    const std::string left = rate > 0 ? timeText(static_cast<double>(m_total - m_done) / rate) : "-:--";
    const std::string speed = m_unit.empty() ? byteText(rate) : fmt::format("{:.1f} {}", rate, m_unit);
    const std::string line = fmt::format("\r{} [{}{}] {:3.0f} % {}/s, {} left\033[K", m_label, std::string(filled, '#'),
                                         std::string(BAR_WIDTH - filled, '.'), share * 100, speed, left);
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}
