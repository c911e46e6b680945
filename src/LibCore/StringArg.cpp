// SPDX-License-Identifier: MIT
#include "LibCore/String.h"

#include <cstdlib>

namespace dvf {
namespace {

/// One placeholder in a text: a percent sign and one or two digits. `number` is -1 if there is none.
struct Placeholder
{
    int number = -1;
    std::size_t length = 0;
};

bool isDigitAt(const std::wstring& text, std::size_t pos)
{
    return pos < text.size() && text[pos] >= L'0' && text[pos] <= L'9';
}

/// Two digits are one number: "%10" is placeholder 10, never placeholder 1 followed by a zero.
Placeholder placeholderAt(const std::wstring& text, std::size_t pos)
{
    Placeholder found;
    if (text[pos] != L'%' || !isDigitAt(text, pos + 1)) {
        return found;
    }
    found.number = static_cast<int>(text[pos + 1] - L'0');
    found.length = 2;
    if (isDigitAt(text, pos + 2)) {
        found.number = found.number * 10 + static_cast<int>(text[pos + 2] - L'0');
        found.length = 3;
    }
    return found;
}

int lowestPlaceholder(const std::wstring& text)
{
    int lowest = -1;
    for (std::size_t pos = text.find(L'%'); pos != std::wstring::npos; pos = text.find(L'%', pos + 1)) {
        const int number = placeholderAt(text, pos).number;
        if (number >= 0 && (lowest < 0 || number < lowest)) {
            lowest = number;
        }
    }
    return lowest;
}

std::wstring padded(const std::wstring& text, int fieldWidth, wchar_t fill)
{
    const auto width = static_cast<std::size_t>(std::llabs(fieldWidth));
    if (width <= text.size()) {
        return text;
    }
    const std::wstring padding(width - text.size(), fill);
    return fieldWidth > 0 ? padding + text : text + padding;
}

} // namespace

String String::arg(const String& text, int fieldWidth, wchar_t fill) const
{
    const int lowest = lowestPlaceholder(m_units);
    if (lowest < 0) {
        return *this;
    }
    const std::wstring insertion = padded(text.m_units, fieldWidth, fill);
    std::wstring result;
    std::size_t pos = 0;
    while (pos < m_units.size()) {
        const Placeholder found = placeholderAt(m_units, pos);
        if (found.number == lowest) {
            result += insertion;
            pos += found.length;
        } else {
            result.push_back(m_units[pos++]);
        }
    }
    return String(std::move(result));
}

} // namespace dvf
