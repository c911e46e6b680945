// SPDX-License-Identifier: MIT
#include "help/ShellLine.h"

namespace {

constexpr std::string_view BLANKS = " \t\n";

// What a backslash takes its meaning from inside double quotes; an exclamation mark is no help there.
constexpr std::string_view SPECIAL_IN_DOUBLE_QUOTES = "\\\"$`";

/// True for a character that means nothing to a shell anywhere in a word.
bool isPlain(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c & '\x80') != 0 ||
           std::string_view("_./,:=@%+-").find(c) != std::string_view::npos;
}

} // namespace

ShellLine splitShellLine(std::string_view line, std::string_view breaks)
{
    ShellLine result;
    std::string word;
    bool started = false;
    const auto endWord = [&] {
        if (started) {
            result.words.push_back(word);
        }
        word.clear();
        started = false;
        result.kept = 0;
    };
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool hasNext = i + 1 < line.size();
        if (result.quote != 0 && c == result.quote) {
            result.quote = 0;
        } else if (result.quote == '\'' ||
                   (result.quote == '"' &&
                    (c != '\\' || !hasNext || SPECIAL_IN_DOUBLE_QUOTES.find(line[i + 1]) == std::string_view::npos))) {
            word += c;
        } else if (c == '\\') {
            started = true;
            word += hasNext ? std::string(1, line[++i]) : std::string();
        } else if (c == '\'' || c == '"') {
            started = true;
            result.quote = c;
            result.kept = word.size();
        } else if (BLANKS.find(c) != std::string_view::npos) {
            endWord();
        } else {
            started = true;
            word += c;
            result.kept = breaks.find(c) == std::string_view::npos ? result.kept : word.size();
        }
    }
    result.words.push_back(word);
    return result;
}

std::string quotedForShell(std::string_view text, char quote)
{
    std::string quoted;
    for (const char c : text) {
        if (quote == '\'') {
            quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
        } else {
            const bool isSpecial =
                quote == '"' ? SPECIAL_IN_DOUBLE_QUOTES.find(c) != std::string_view::npos : !isPlain(c);
            quoted += (isSpecial ? "\\" : "") + std::string(1, c);
        }
    }
    const bool looksClosed = quote != 0 && text.ends_with(quote);
    return looksClosed ? quoted + quote : quoted;
}
