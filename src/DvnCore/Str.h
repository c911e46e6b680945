// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace dvf {
class String;
}

namespace dvn {

/// The string of all internal interfaces: a handle over a wide text of its own.
///
/// Copies never share storage, so different objects may be used on different threads, and one object may be read by
/// many. Text from `char` arrays is kept byte by byte (`dvf::String`): `toUtf8` gives it back as it came and is the
/// road to files, to the host and to comparisons of names; `toStdString` answers "?" beyond ASCII and is the road to
/// the log.
class Str
{
public:
    Str();
    Str(const char* text);
    Str(const wchar_t* text);
    Str(const std::string& text);
    Str(const std::wstring& text);
    Str(char character);
    Str(const Str& other);
    Str(Str&& other) noexcept;
    ~Str();
    Str& operator=(const Str& other);
    Str& operator=(Str&& other) noexcept;

    void swap(Str& other) noexcept;

    /// Number of code units.
    std::size_t size() const;
    bool isEmpty() const;
    const wchar_t* c_str() const;
    const std::wstring& toStdWString() const;
    /// Bytes with "?" for everything beyond ASCII.
    std::string toStdString() const;
    /// UTF-8; bytes beyond ASCII come back as they went in.
    std::string toUtf8() const;

    Str toLower() const;
    Str toUpper() const;
    Str trimmed() const;
    Str trimmedLeft() const;
    Str trimmedRight() const;
    /// Trimmed, with each inner run of white space made one blank.
    Str simplified() const;

    /// Pieces between the characters of `delimiters`; empty pieces are dropped, and so is all behind the first `most`
    /// ones. A line of a file may be a gigabyte of words.
    std::vector<Str> split(const Str& delimiters, std::size_t most = static_cast<std::size_t>(-1)) const;
    /// Position of the first occurrence at or behind `start`; all bits set if there is none.
    std::size_t find(const Str& text, std::size_t start = 0) const;
    bool startsWith(const Str& text) const;
    /// Up to `length` units from `start`, which must lie before the end.
    Str subStr(std::size_t start, std::size_t length) const;
    /// Replaces every occurrence, from left to right, never looking at inserted text again.
    void replace(const Str& from, const Str& to);

    /// The text with its lowest placeholder (%0 to %99) filled in, in every place where it stands.
    ///
    /// The text is scanned as it is now, so a chain of calls fills %1, then %2, whatever their order, and a percent
    /// sign that an earlier call inserted counts as well. A positive `fieldWidth` pads in front, a negative one behind.
    Str arg(const Str& text, int fieldWidth = 0, char fill = ' ') const;
    Str arg(char character, int fieldWidth = 0, char fill = ' ') const;
    Str arg(int value, int fieldWidth = 0, char fill = ' ') const;
    Str arg(long long value, int fieldWidth = 0, char fill = ' ') const;
    Str arg(unsigned int value, int fieldWidth = 0, char fill = ' ') const;
    Str arg(unsigned long value, int fieldWidth = 0, char fill = ' ') const;
    Str arg(unsigned long long value, int fieldWidth = 0, char fill = ' ') const;
    Str arg(float value, int fieldWidth = 0, char format = 'g', int precision = -1, char fill = ' ') const;
    Str arg(double value, int fieldWidth = 0, char format = 'g', int precision = -1, char fill = ' ') const;

    static Str number(int value);
    static Str number(unsigned int value);
    /// Formats e, E, f, F, g, G; a negative precision gives six digits.
    static Str number(float value, char format = 'g', int precision = -1);
    static Str number(double value, char format = 'g', int precision = -1);

    /// The leading number; blanks in front are skipped, what follows is ignored, the host's locale plays no part.
    /// `isNumber`, if not null, tells whether there was one.
    double toDouble(bool* isNumber = nullptr) const;
    float toFloat(bool* isNumber = nullptr) const;
    int toInt(bool* isNumber = nullptr) const;
    /// 0 and not a number for anything outside 0 to 4294967295.
    unsigned int toUInt(bool* isNumber = nullptr) const;
    /// The same with a value for texts without a number.
    double toDouble(double defaultValue) const;
    float toFloat(float defaultValue) const;
    int toInt(int defaultValue) const;
    unsigned int toUInt(unsigned int defaultValue) const;

    Str& operator+=(const Str& other);

private:
    explicit Str(dvf::String text);
    const dvf::String& text() const;

    /// Null only in an object that was moved from, which reads as empty.
    std::unique_ptr<dvf::String> m_text;
};

bool operator==(const Str& a, const Str& b);
bool operator!=(const Str& a, const Str& b);
/// By code units, a prefix before the longer text. Units of bytes beyond ASCII are negative and so sort first.
bool operator<(const Str& a, const Str& b);
Str operator+(const Str& a, const Str& b);
Str operator+(const char* a, const Str& b);

} // namespace dvn
