// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dvf {

/// A text of 32-bit code units, the work behind `dvn::Str`.
///
/// Text from a `char` array is not decoded: each byte becomes one code unit by sign extension, so a byte of 128 or more
/// is a negative unit. `toUtf8` gives those bytes back, so paths and names beyond ASCII survive the way in and out.
class String
{
public:
    static constexpr std::size_t NOT_FOUND = static_cast<std::size_t>(-1);

    String() = default;
    explicit String(const char* bytes);
    explicit String(const std::string& bytes);
    explicit String(std::wstring units) : m_units(std::move(units)) {}

    /// The code units.
    const std::wstring& units() const { return m_units; }
    std::wstring& units() { return m_units; }

    /// Units 0 to 254 as bytes, any other as "?": text beyond ASCII is meant not to survive here, only in `toUtf8`.
    std::string toStdString() const;
    /// UTF-8; a unit that came from a byte of 128 or more becomes that byte again.
    std::string toUtf8() const;

    /// ASCII case mapping, which is the C library's in the "C" locale; other units stay.
    String toLower() const;
    String toUpper() const;

    /// Removes blank, tab, line feed, vertical tab, form feed and carriage return at the start, the end or both.
    String trimmedLeft() const;
    String trimmedRight() const;
    String trimmed() const;
    /// Trims and makes each inner run of white space one blank.
    String simplified() const;

    /// Cuts at each unit that is in `delimiters`; empty pieces are dropped, and so is all behind the first `most` ones.
    std::vector<String> split(const String& delimiters, std::size_t most = NOT_FOUND) const;
    /// Position of the first occurrence at or behind `start`, or `NOT_FOUND`.
    std::size_t find(const String& text, std::size_t start) const;
    /// Up to `length` units from `pos`. A `pos` at or beyond the end is a caller's mistake: it asserts in debug builds
    /// and gives the empty text otherwise.
    String subString(std::size_t pos, std::size_t length) const;
    /// Replaces every occurrence from left to right; inserted text is not searched again. An empty `from` does nothing.
    void replace(const String& from, const String& to);

    /// Replaces all occurrences of the lowest placeholder (%0 to %99) by `text`, padded with `fill` to the absolute
    /// value of `fieldWidth`: in front if it is positive, behind if it is negative. Without placeholder nothing
    /// changes.
    String arg(const String& text, int fieldWidth, wchar_t fill) const;

    /// The number in the format e, E, f, F, g or G; any other format counts as g. A negative precision gives 6 digits.
    static String number(double value, char format, int precision);

private:
    std::wstring m_units;
};

} // namespace dvf
