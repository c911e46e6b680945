// SPDX-License-Identifier: MIT
#include "LibCore/String.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <ios>
#include <locale>
#include <sstream>

namespace dvf {
namespace {

/// Units of sign-extended bytes, 128 to 255, as unsigned.
constexpr std::uint32_t FIRST_BYTE_UNIT = 0xFFFFFF80U;
/// The last unit that `toStdString` gives as a byte; 255 and everything above become "?".
constexpr std::uint32_t LAST_PLAIN_UNIT = 254;

constexpr const wchar_t* BLANKS = L" \t\n\v\f\r";

std::wstring widen(const char* bytes, std::size_t count)
{
    std::wstring units(count, L'\0');
    std::transform(bytes, bytes + count, units.begin(),
                   [](char byte) { return static_cast<wchar_t>(static_cast<signed char>(byte)); });
    return units;
}

void appendContinuation(std::string& text, std::uint32_t unit, int count)
{
    for (int i = count - 1; i >= 0; --i) {
        text.push_back(static_cast<char>(0x80U | ((unit >> (6 * i)) & 0x3FU)));
    }
}

void appendUtf8(std::string& text, std::uint32_t unit)
{
    if (unit < 0x80U) {
        text.push_back(static_cast<char>(unit));
    } else if (unit < 0x800U) {
        text.push_back(static_cast<char>(0xC0U | (unit >> 6)));
        appendContinuation(text, unit, 1);
    } else if (unit < 0x10000U) {
        text.push_back(static_cast<char>(0xE0U | (unit >> 12)));
        appendContinuation(text, unit, 2);
    } else if (unit < 0x200000U) {
        text.push_back(static_cast<char>(0xF0U | (unit >> 18)));
        appendContinuation(text, unit, 3);
    } else if (unit < 0x4000000U) {
        text.push_back(static_cast<char>(0xF8U | (unit >> 24)));
        appendContinuation(text, unit, 4);
    } else if (unit >= FIRST_BYTE_UNIT) {
        text.push_back(static_cast<char>(unit & 0xFFU));
    } else {
        text.push_back('?');
    }
}

std::wstring mapUnits(std::wstring units, wchar_t first, wchar_t last, int shift)
{
    for (wchar_t& unit : units) {
        if (unit >= first && unit <= last) {
            unit = static_cast<wchar_t>(unit + shift);
        }
    }
    return units;
}

void applyFormat(std::wostringstream& stream, char format, int precision)
{
    if (format == 'e' || format == 'E') {
        stream.setf(std::ios::scientific, std::ios::floatfield);
    } else if (format == 'f' || format == 'F') {
        stream.setf(std::ios::fixed, std::ios::floatfield);
    }
    if (format == 'E' || format == 'F' || format == 'G') {
        stream.setf(std::ios::uppercase);
    }
    if (precision >= 0) {
        stream.precision(precision);
    }
}

} // namespace

String::String(const char* bytes) : m_units(bytes == nullptr ? std::wstring() : widen(bytes, std::strlen(bytes))) {}

String::String(const std::string& bytes) : m_units(widen(bytes.data(), bytes.size())) {}

std::string String::toStdString() const
{
    std::string text(m_units.size(), '?');
    std::transform(m_units.begin(), m_units.end(), text.begin(), [](wchar_t unit) {
        return static_cast<std::uint32_t>(unit) <= LAST_PLAIN_UNIT ? static_cast<char>(unit) : '?';
    });
    return text;
}

std::string String::toUtf8() const
{
    std::string text;
    text.reserve(m_units.size());
    for (const wchar_t unit : m_units) {
        appendUtf8(text, static_cast<std::uint32_t>(unit));
    }
    return text;
}

String String::toLower() const
{
    return String(mapUnits(m_units, L'A', L'Z', L'a' - L'A'));
}

String String::toUpper() const
{
    return String(mapUnits(m_units, L'a', L'z', L'A' - L'a'));
}

String String::trimmedLeft() const
{
    const std::size_t first = m_units.find_first_not_of(BLANKS);
    return first == std::wstring::npos ? String() : String(m_units.substr(first));
}

String String::trimmedRight() const
{
    const std::size_t last = m_units.find_last_not_of(BLANKS);
    return last == std::wstring::npos ? String() : String(m_units.substr(0, last + 1));
}

String String::trimmed() const
{
    return trimmedLeft().trimmedRight();
}

String String::simplified() const
{
    std::wstring result;
    for (const String& word : split(String(std::wstring(BLANKS)))) {
        if (!result.empty()) {
            result.push_back(L' ');
        }
        result += word.m_units;
    }
    return String(std::move(result));
}

std::vector<String> String::split(const String& delimiters, std::size_t most) const
{
    std::vector<String> pieces;
    std::size_t first = m_units.find_first_not_of(delimiters.m_units);
    while (first != std::wstring::npos && pieces.size() < most) {
        const std::size_t end = std::min(m_units.find_first_of(delimiters.m_units, first), m_units.size());
        pieces.emplace_back(m_units.substr(first, end - first));
        first = m_units.find_first_not_of(delimiters.m_units, end);
    }
    return pieces;
}

std::size_t String::find(const String& text, std::size_t start) const
{
    return m_units.find(text.m_units, start);
}

String String::subString(std::size_t pos, std::size_t length) const
{
    assert(pos < m_units.size() && "pos < size()");
    return pos < m_units.size() ? String(m_units.substr(pos, length)) : String();
}

void String::replace(const String& from, const String& to)
{
    if (from.m_units.empty()) {
        return;
    }
    // Built in one pass: replacing in place would move the rest of the text once per occurrence.
    std::wstring result;
    std::size_t done = 0;
    for (std::size_t hit = m_units.find(from.m_units); hit != std::wstring::npos;
         hit = m_units.find(from.m_units, done)) {
        result.append(m_units, done, hit - done).append(to.m_units);
        done = hit + from.m_units.size();
    }
    if (done != 0) {
        m_units = std::move(result.append(m_units, done));
    }
}

String String::number(double value, char format, int precision)
{
    std::wostringstream stream;
    stream.imbue(std::locale::classic());
    applyFormat(stream, format, precision);
    stream << value;
    return String(stream.str());
}

} // namespace dvf
