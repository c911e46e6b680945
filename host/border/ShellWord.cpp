// SPDX-License-Identifier: MIT
#include "border/ShellWord.h"

#include "border/EscapedText.h"

#include <algorithm>

std::string shellWord(const std::string& word)
{
    const auto plain = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
               std::string("_./-+=:,@%").find(c) != std::string::npos;
    };
    if (!word.empty() && std::ranges::all_of(word, plain)) {
        return word;
    }
    if (escapedControls(word) != word) {
        // The shell turns the escapes back, so the word can be shown and copied all the same.
        std::string text;
        for (const char c : word) {
            text += c == '\'' || c == '\\' ? std::string("\\") + c : std::string(1, c);
        }
        return "$'" + escapedControls(text) + "'";
    }
    std::string quoted = "'";
    for (const char c : word) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}
