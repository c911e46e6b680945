// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/// A text of one line for a terminal: control characters and bytes that are not UTF-8 become escapes such as `\n` and
/// `\x1b`, since names and paths from files may hold anything, even commands to the terminal.
std::string escapedControls(std::string_view text);

/// The same for a text of several lines, which keeps its line feeds.
std::string escapedLines(std::string_view text);
