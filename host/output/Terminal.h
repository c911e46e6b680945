// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// When output is coloured.
enum class ColorMode
{
    Auto, ///< on a terminal, unless the environment has NO_COLOR
    Always,
    Never
};

/// Emphasises text for stdout, or leaves it as it is if colour is not wanted.
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

/// Writes data to stdout and makes sure that it arrives.
/// @throws HostError of `CannotWrite`, as for a full disk or a closed pipe
void writeToStdout(const std::string& text);
