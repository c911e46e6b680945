// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

/// One line as it reached the host: its level and the group, " : " and the message in one text.
using LogLine = std::pair<int, std::string>;

/// Collects what the plug-in logs, from any thread, while it lives. One at a time.
class LogCapture
{
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// All lines so far, in the order of their arrival.
    std::vector<LogLine> lines() const;
    /// The texts of the lines of one level.
    std::vector<std::string> texts(int level) const;
    std::vector<std::string> errors() const { return texts(1); }
    std::vector<std::string> infos() const { return texts(3); }
    void clear();
};
