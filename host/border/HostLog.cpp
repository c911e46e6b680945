// SPDX-License-Identifier: MIT
#include "border/HostLog.h"

#include "border/BorderGuard.h"
#include "border/EscapedText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>

namespace {

// Thousands of files may each be broken in a way of their own; nobody reads more of them than a screen.
constexpr std::size_t MOST_ERRORS_SHOWN = 20;

std::array<char, 8192> pendingErrors;
std::atomic<std::size_t> pendingErrorsSize = 0;

/// The prefix of a shown line; unknown levels show as plain "log".
const char* levelName(std::int32_t level)
{
    switch (level) {
    case LOG_ERROR:
        return "error";
    case LOG_INFO:
        return "info";
    case LOG_DEBUG:
        return "debug";
    default:
        return "log";
    }
}

/// One write per line, so that lines of several threads do not mix with each other or with the progress bar.
void show(const std::string& line)
{
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
}

} // namespace

HostLog& HostLog::get()
{
    // Never destroyed: the thread of the signals outlives `main`.
    static auto* const log = new HostLog;
    return *log;
}

void HostLog::receive(std::int32_t level, const char* text)
{
    if (text == nullptr) {
        BorderFaults::get().add("a log line without text");
        return;
    }
    get().add(level, text);
}

void HostLog::add(std::int32_t level, const char* text)
{
    const std::lock_guard lock(m_mutex);
    m_lines.push_back({level, text, std::this_thread::get_id()});
    if (level > m_shownLevel) {
        return;
    }
    if (m_shownLevel == LOG_ERROR) {
        collect(text);
    } else {
        show(fmt::format("{}: {}\n", levelName(level), escapedControls(text)));
    }
}

void HostLog::collect(const std::string& text)
{
    if (++m_errorCounts[text] != 1) {
        return;
    }
    m_errors.push_back(text);
    const std::string line = fmt::format("error: {}\n", escapedControls(text));
    if (const std::size_t size = pendingErrorsSize; size + line.size() <= pendingErrors.size()) {
        std::ranges::copy(line, pendingErrors.begin() + static_cast<std::ptrdiff_t>(size));
        pendingErrorsSize = size + line.size();
    }
}

void HostLog::showErrors()
{
    const std::lock_guard lock(m_mutex);
    // What was told by an earlier call is not told again, such as a folder that every poll misses.
    std::erase_if(m_errors, [this](const std::string& text) { return !m_told.insert(text).second; });
    for (std::size_t i = 0; i < std::min(m_errors.size(), MOST_ERRORS_SHOWN); ++i) {
        const std::size_t count = m_errorCounts[m_errors[i]];
        show(fmt::format("error: {}{}\n", escapedControls(m_errors[i]),
                         count == 1 ? std::string() : fmt::format(" ({} times)", count)));
    }
    if (m_errors.size() > MOST_ERRORS_SHOWN) {
        show(fmt::format("error: and {} more like these; -v shows all\n", m_errors.size() - MOST_ERRORS_SHOWN));
    }
    m_errors.clear();
    m_errorCounts.clear();
    pendingErrorsSize = 0;
}

void HostLog::setShownLevel(std::int32_t level)
{
    const std::lock_guard lock(m_mutex);
    m_shownLevel = level;
}

void HostLog::markTold(const std::string& text)
{
    const std::lock_guard lock(m_mutex);
    std::erase(m_errors, text);
}

std::vector<HostLogLine> HostLog::lines() const
{
    const std::lock_guard lock(m_mutex);
    return m_lines;
}

void HostLog::clear()
{
    const std::lock_guard lock(m_mutex);
    m_lines.clear();
    m_told.clear();
}

std::string_view HostLog::pendingText()
{
    return {pendingErrors.data(), pendingErrorsSize};
}
