// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

/// When output is coloured.
enum class ColorMode
{
    Auto, ///< on a terminal, unless the environment has NO_COLOR
    Always,
    Never
};

/// Emphasises text for stdout, or leaves it as it is if colour is not wanted. Control characters in it are escaped.
class TextStyle
{
public:
    /// Examines terminal and environment once, here.
    explicit TextStyle(ColorMode mode);

    /// For headings.
    std::string strong(const std::string& text) const { return wrapped("1", text); }
    /// For less important text.
    std::string faint(const std::string& text) const { return wrapped("2", text); }

private:
    std::string wrapped(const char* code, const std::string& text) const;

    bool m_enabled;
};

/// True for a terminal that knows neither colours nor a cursor, as editors say that show a shell.
bool isDumbTerminal();

/// The columns of the terminal that stdout is connected to; 0 if it is not a terminal.
std::size_t terminalWidth();

/// Writes data to stdout and makes sure that it arrives.
/// @throws HostError of `CannotWrite`, as for a full disk or a closed pipe
void writeToStdout(const std::string& text);
