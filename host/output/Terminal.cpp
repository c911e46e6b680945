// SPDX-License-Identifier: MIT
#include "output/Terminal.h"

#include "border/EscapedText.h"
#include "border/HostError.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace {

/// Looks only at stdout, since stderr has no coloured text.
bool wantsColor(ColorMode mode)
{
    if (mode != ColorMode::Auto) {
        return mode == ColorMode::Always;
    }
    // By convention NO_COLOR counts only if it is not empty.
    const char* const noColor = std::getenv("NO_COLOR");
    return (noColor == nullptr || *noColor == '\0') && isatty(STDOUT_FILENO) != 0 && !isDumbTerminal();
}

} // namespace

TextStyle::TextStyle(ColorMode mode) : m_enabled(wantsColor(mode)) {}

std::string TextStyle::wrapped(const char* code, const std::string& text) const
{
    const std::string shown = escapedLines(text);
    return m_enabled ? "\033[" + std::string(code) + "m" + shown + "\033[0m" : shown;
}

bool isDumbTerminal()
{
    const char* const terminal = std::getenv("TERM");
    return terminal != nullptr && std::string_view(terminal) == "dumb";
}

std::size_t terminalWidth()
{
    winsize size = {};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

void writeToStdout(const std::string& text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (std::fflush(stdout) != 0 || !written) {
        throw HostError(ExitCode::CannotWrite, "cannot write to stdout");
    }
}
