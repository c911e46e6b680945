// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace dvf {

/// A text of 32-bit code units; `dvn::Str` is a handle to one.
///
/// Text from a `char` array is not decoded: each byte becomes one code unit by sign extension, so a byte of 128 or more
/// is a negative unit. `toUtf8` gives those bytes back, so paths and names beyond ASCII come out as they went in.
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

    /// Units 0 to 254 as bytes, any other as "?". This is the text of log lines (docs/compatibility.md, "question marks
    /// in the log"); use `toUtf8` to keep text beyond ASCII.
    std::string toStdString() const;
    /// UTF-8; a unit that came from a byte of 128 or more becomes that byte again.
    std::string toUtf8() const;

    /// Maps the case of ASCII letters, as the C library does in the "C" locale; other units stay as they are.
    String toLower() const;
    String toUpper() const;

    /// Without the blanks, tabs, line feeds, vertical tabs, form feeds and carriage returns at the start, the end or
    /// both.
    String trimmedLeft() const;
    String trimmedRight() const;
    String trimmed() const;
    /// Trimmed, with each inner run of white space replaced by one blank.
    String simplified() const;

    /// The pieces between units that are in `delimiters`. Empty ones are dropped, and so is everything after the first
    /// `most` pieces.
    std::vector<String> split(const String& delimiters, std::size_t most = NOT_FOUND) const;
    /// Position of the first occurrence at or after `start`, or `NOT_FOUND`.
    std::size_t find(const String& text, std::size_t start) const;
    /// Up to `length` units from `pos`. A `pos` at or beyond the end is a caller's mistake: it asserts in debug builds
    /// and gives the empty text otherwise.
    String subString(std::size_t pos, std::size_t length) const;
    /// Replaces every occurrence from left to right; inserted text is not searched again. An empty `from` does nothing.
    void replace(const String& from, const String& to);

    /// Replaces all occurrences of the lowest placeholder (%0 to %99) by `text`, padded with `fill` to the absolute
    /// value of `fieldWidth`: on the left if it is positive, on the right if it is negative. Without a placeholder the
    /// text stays as it is.
    String arg(const String& text, int fieldWidth, wchar_t fill) const;

    /// The number in the format e, E, f, F, g or G; any other format counts as g. A negative precision gives 6 digits.
    static String number(double value, char format, int precision);

private:
    std::wstring m_units;
};

} // namespace dvf
