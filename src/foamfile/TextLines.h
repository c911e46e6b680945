// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The text without its trailing carriage returns and line feeds.
inline std::string_view withoutLineEnd(std::string_view line)
{
    const std::size_t last = line.find_last_not_of("\r\n");
    return line.substr(0, last + 1);
}

/// The text without white space at its ends.
inline std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view BLANKS = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(BLANKS) + 1 - first);
}

/// The text from its first character that is not a space.
inline std::string_view fromFirstWord(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

/// The text without the spaces after "(" and before ")", so that "( 1 0 0 )" splits into as many words as "(1 0 0)".
inline std::string withoutBlanksInBrackets(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (c == ')') {
            result.resize(result.find_last_not_of(' ') + 1);
        }
        if (c != ' ' || result.empty() || result.back() != '(') {
            result += c;
        }
    }
    return result;
}

/// An entry such as "    format      ascii".
struct KeyAndValue
{
    std::string_view key;
    std::string_view value;
};

/// Cuts an entry after its first word; only the space ends a word.
///
/// A key counts only if a space follows it: "foo " has the key "foo" with an empty value, "foo" has the empty key.
inline KeyAndValue splitKeyAndValue(std::string_view entry)
{
    const std::string_view words = fromFirstWord(entry);
    const std::size_t keyEnd = words.find(' ');
    if (keyEnd == std::string_view::npos) {
        return {};
    }
    return {words.substr(0, keyEnd), fromFirstWord(words.substr(keyEnd))};
}
