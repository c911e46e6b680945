// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

/// One line as it reached the host: its level, and the text "group : message".
using LogLine = std::pair<int, std::string>;

/// Collects what the plug-in logs on any thread during its own lifetime. Only one may exist at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All lines so far, in order of arrival.
    std::vector<LogLine> lines() const;
    /// The texts of the lines of one level.
    std::vector<std::string> texts(int level) const;
    std::vector<std::string> errors() const { return texts(1); }
    std::vector<std::string> infos() const { return texts(3); }
    void clear();
};
