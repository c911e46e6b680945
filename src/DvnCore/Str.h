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

/// The string type of all internal interfaces: a handle that owns a wide text.
///
/// Copies never share storage, so different objects may be used on different threads, and many threads may read one.
/// Text from `char` arrays is kept byte by byte (`dvf::String`). Use `toUtf8`, which gives the bytes back, for paths,
/// for the host and to compare names; use `toStdString`, which shows "?" beyond ASCII, for the log.
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
    /// Trimmed, with each inner run of white space replaced by one blank.
    Str simplified() const;

    /// The pieces between characters of `delimiters`. Empty ones are dropped, and so is everything after the first
    /// `most` pieces: a line of a file may be a gigabyte of words.
    std::vector<Str> split(const Str& delimiters, std::size_t most = static_cast<std::size_t>(-1)) const;
    /// Position of the first occurrence at or after `start`; all bits set if there is none.
    std::size_t find(const Str& text, std::size_t start = 0) const;
    bool startsWith(const Str& text) const;
    /// Up to `length` units from `start`, which must be before the end.
    Str subStr(std::size_t start, std::size_t length) const;
    /// Replaces every occurrence from left to right; inserted text is not searched again.
    void replace(const Str& from, const Str& to);

    /// The text with its lowest placeholder (%0 to %99) filled in wherever it occurs.
    ///
    /// The text is scanned as it is now, so a chain of calls fills %1, then %2, whatever their order, and a percent
    /// sign that an earlier call inserted counts too. A positive `fieldWidth` pads on the left, a negative one on the
    /// right.
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

    /// The number at the start. Leading blanks are skipped, anything after it is ignored, and the host's locale has no
    /// effect. `isNumber`, if not null, says whether there was one.
    double toDouble(bool* isNumber = nullptr) const;
    float toFloat(bool* isNumber = nullptr) const;
    int toInt(bool* isNumber = nullptr) const;
    /// Anything outside 0 to 4294967295 gives 0 and is not a number.
    unsigned int toUInt(bool* isNumber = nullptr) const;
    /// The same, with a value to return if there is no number.
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
/// Compares code units; a prefix sorts before the longer text. Bytes beyond ASCII are negative units and sort first.
bool operator<(const Str& a, const Str& b);
Str operator+(const Str& a, const Str& b);
Str operator+(const char* a, const Str& b);

} // namespace dvn
