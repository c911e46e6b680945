// SPDX-License-Identifier: MIT
#include "border/EscapedText.h"

#include <fmt/format.h>

#include <cstddef>

namespace {

/// The length of the UTF-8 character at the start of the text; 0 if the bytes are not one or are a control character.
std::size_t printableLength(std::string_view text)
{
    const auto byteAt = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const unsigned first = byteAt(0);
    if (first < 0x80) {
        return first >= 0x20 && first != 0x7F ? 1 : 0;
    }
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    // The control characters from U+0080 to U+009F: some terminals obey them like their 7-bit forms.
    return first == 0xC2 && byteAt(1) < 0xA0 ? 0 : length;
}

std::string escaped(std::string_view text, bool keepsLineFeeds)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        if (const std::size_t length = printableLength(text); length != 0) {
            result += text.substr(0, length);
            text.remove_prefix(length);
            continue;
        }
        const char c = text.front();
        if (c == '\n') {
            result += keepsLineFeeds ? "\n" : "\\n";
        } else if (c == '\t') {
            result += "\\t";
        } else if (c == '\r') {
            result += "\\r";
        } else {
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(c));
        }
        text.remove_prefix(1);
    }
    return result;
}

} // namespace

std::string escapedControls(std::string_view text)
{
    return escaped(text, false);
}

std::string escapedLines(std::string_view text)
{
    return escaped(text, true);
}
