// SPDX-License-Identifier: MIT
#include "border/HostLog.h"

#include "border/BorderGuard.h"

#include <fmt/format.h>

#include <cstdio>

namespace {

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

} // namespace

HostLog& HostLog::get()
{
    static HostLog log;
    return log;
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
    if (level <= m_shownLevel) {
        // One write per line, so that lines of several threads do not mix with each other or with the progress bar.
        const std::string line = fmt::format("{}: {}\n", levelName(level), text);
        static_cast<void>(std::fwrite(line.data(), 1, line.size(), stderr));
    }
}

void HostLog::setShownLevel(std::int32_t level)
{
    const std::lock_guard lock(m_mutex);
    m_shownLevel = level;
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
}
