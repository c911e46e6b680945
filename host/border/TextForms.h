// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

// Not std::tolower and its like, which depend on the locale.

/// The text with its letters from a to z in capitals.
inline std::string upperCase(std::string text)
{
    std::ranges::for_each(text, [](char& c) { c = c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c; });
    return text;
}

/// The text with its letters from A to Z in lower case.
inline std::string lowerCase(std::string text)
{
    std::ranges::for_each(text, [](char& c) { c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
    return text;
}

/// The text without blanks and line feeds at its end.
inline std::string withoutTrailingBlanks(const std::string& text)
{
    return text.substr(0, text.find_last_not_of(" \n") + 1);
}

/// "1 file", "2 files".
inline std::string counted(std::size_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}
