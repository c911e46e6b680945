// SPDX-License-Identifier: MIT
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

/// One line as it reached the host: its level and the group, " : " and the message in one text.
struct LogLine
{
    int level = 0;
    std::string text;

    friend bool operator==(const LogLine& a, const LogLine& b) { return a.level == b.level && a.text == b.text; }
};

/// Shows in the messages of failed expectations.
std::ostream& operator<<(std::ostream& stream, const LogLine& line);

/// Collects what the plug-in logs, from any thread, while it lives.
///
/// An inner capture hides an outer one, which goes on behind it. When the outermost ends, the logger drops its lines.
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

private:
    static void receive(int level, const char* text);

    LogCapture* m_outer;
    std::vector<LogLine> m_lines;
};
