// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// Levels of the library's log lines; smaller is more severe.
inline constexpr std::int32_t LOG_ERROR = 1;
inline constexpr std::int32_t LOG_INFO = 3;
inline constexpr std::int32_t LOG_DEBUG = 4;

/// One line that the library logged.
struct HostLogLine
{
    std::int32_t level;     ///< one of the numbers above
    std::string text;       ///< as it came, without a line feed
    std::thread::id thread; ///< the thread that logged it
};

/// Receives the library's log lines, keeps them and shows the severe ones on stderr.
///
/// The interface's callback is a plain function without an object, so there is one log per process. Worker threads log
/// concurrently; every member may be called from any thread.
///
/// The library tells a cause at every use of the file. Errors are therefore collected, and `showErrors` tells each once
/// with its count. Whoever asks for more than errors wants to follow the work and gets every line when it comes.
class HostLog
{
public:
    /// The one log of the process.
    static HostLog& get();

    /// The function to put into the init record.
    static void receive(std::int32_t level, const char* text);

    /// Shows lines of this level and more severe ones; by default, errors. 0 shows nothing, for tests.
    void setShownLevel(std::int32_t level);

    /// Shows the errors that were collected since the last call, each once, in order of first arrival.
    void showErrors();

    /// Drops a collected error that the caller tells in its own words.
    void markTold(const std::string& text);

    /// All lines since the last `clear`, in order of arrival.
    std::vector<HostLogLine> lines() const;

    /// Forgets all lines and what was told; the shown level stays as it is.
    void clear();

    /// The first collected errors, as they would be shown: what a crash handler can still write, because this neither
    /// locks nor allocates.
    static std::string_view pendingText();

private:
    void add(std::int32_t level, const char* text);
    void collect(const std::string& text);

    mutable std::mutex m_mutex;
    std::vector<HostLogLine> m_lines;
    std::int32_t m_shownLevel = LOG_ERROR;
    std::vector<std::string> m_errors; ///< collected and not yet shown, each once
    std::unordered_map<std::string, std::size_t> m_errorCounts;
    std::unordered_set<std::string> m_told; ///< errors that were shown
};
