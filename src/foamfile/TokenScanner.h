// SPDX-License-Identifier: MIT
#pragma once

#include "LibCore/Limits.h"
#include "LibCore/Numbers.h"
#include "LibCore/ShortReal.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

/// Scanners of single tokens in text that ends with a NUL, or with a line before more text. No scanner advances past
/// that NUL, so a loop that tests for it never leaves the text. A failed scan leaves the cursor where it was unless its
/// comment says otherwise.
namespace TokenScanner {

inline bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

inline void skipLineFeeds(const char*& cursor)
{
    while (*cursor == '\n') {
        ++cursor;
    }
}

/// The same, up to `limit`.
inline void skipLineFeeds(const char*& cursor, const char* limit)
{
    while (cursor < limit && *cursor == '\n') {
        ++cursor;
    }
}

/// Advances past the next `sought`; at the NUL if there is none, and false.
inline bool skipPast(const char*& cursor, char sought)
{
    // guard: text-end
    for (; *cursor != '\0'; ++cursor) {
        if (*cursor == sought) {
            ++cursor;
            return true;
        }
    }
    return false;
}

/// Advances past the character that ended a token, unless it is the end of the text.
inline void skipStop(const char*& cursor)
{
    cursor += *cursor != '\0' ? 1 : 0;
}

/// Reads one unsigned label and leaves `cursor` on the character that ended it.
/// A sign is refused: no label list of a mesh carries one.
inline bool scanLabel(const char*& cursor, int* label)
{
    const char* const first = cursor;
    const char* p = first;
    std::uint32_t value = 0;
    for (; isDigit(*p); ++p) {
        value = value * 10 + static_cast<std::uint32_t>(*p - '0');
    }
    // guard: label-length
    if (p == first || static_cast<std::size_t>(p - first) > dvf::limits::NUMBER_LENGTH) {
        return false;
    }
    // Compatibility (docs/compatibility.md, "wrapping labels and counts"): only the caller knows the size of the list,
    // so only it can refuse a label as too large.
    *label = static_cast<int>(value);
    cursor = p;
    return true;
}

/// True for what may follow an item of a list of labels or scalars.
inline bool endsListItem(char c)
{
    return c == '\n' || c == ' ' || c == ')' || c == '\0';
}

/// Reads the finite number at the start of the text and returns where it ends; null if there is none.
///
/// Fast path. If it stops at a delimiter, the token is complete. If not, nothing is decided: the token may still be a
/// number for `strtod`, and the caller applies its own rules. Infinite values and NaN are left to the caller too,
/// because the conversion reads on past a delimiter in texts such as "nan(1)".
/// @param end of the text: its NUL, or the start of a line
inline const char* scanPlainReal(const char* first, const char* end, double* value)
{
    if (const char* const stop = dvf::scanShortReal(first, end, value)) {
        return stop;
    }
    const std::from_chars_result result = std::from_chars(first, end, *value);
    const bool isPlain = result.ec == std::errc() && std::isfinite(*value) &&
                         static_cast<std::size_t>(result.ptr - first) <= dvf::limits::NUMBER_LENGTH;
    return isPlain ? result.ptr : nullptr;
}

/// Which characters end a component of a vector.
enum class ComponentEnd
{
    /// Its delimiter. For `points`, where a blank in the wrong place is damage.
    Delimiter,
    /// Its delimiter, a blank or ")". For field values.
    DelimiterBlankOrBracket,
    /// The same, but a line feed is damage. For field values read ahead of the walk that decides.
    DelimiterBlankOrBracketOfTheLine
};

template <ComponentEnd END>
bool endsComponent(char c, char delimiter)
{
    const bool isEnd = c == delimiter || c == '\n' || c == '\0';
    return isEnd || (END != ComponentEnd::Delimiter && (c == ' ' || c == ')'));
}

/// `scanComponent` where `scanPlainReal` does not settle it. A token that is not a number costs no search for its
/// delimiter.
template <ComponentEnd END>
bool scanUnusualComponent(const char*& cursor, char delimiter, double* value)
{
    const char* const first = cursor;
    const char* p = first;
    while (!endsComponent<END>(*p, delimiter)) {
        ++p;
    }
    const std::string_view token(first, static_cast<std::size_t>(p - first));
    if (token.empty()) {
        return false;
    }
    double number = 0.0;
    const bool isNumber = dvf::tokenToDouble(token, &number);
    if (*p == '\n') {
        if (!isNumber || END == ComponentEnd::DelimiterBlankOrBracketOfTheLine) {
            return false;
        }
        const bool isEnded = skipPast(p, delimiter);
        cursor = p;
        *value = isEnded ? number : *value;
        return isEnded;
    }
    *value = number;
    skipStop(p);
    cursor = isNumber ? p : cursor;
    return isNumber;
}

/// Reads one component of a vector and advances past the character that ended it.
///
/// A line feed ends the token too, and the text between it and the next delimiter is skipped. Where there is no
/// delimiter, the scan fails with the cursor at the end of the text, which nobody has to search again.
/// @param end of the text: its NUL, or the start of a line
template <ComponentEnd END>
bool scanComponent(const char*& cursor, const char* end, char delimiter, double* value)
{
    const char* const stop = scanPlainReal(cursor, end, value);
    if (stop != nullptr && *stop == delimiter) {
        cursor = stop + 1;
        return true;
    }
    return scanUnusualComponent<END>(cursor, delimiter, value);
}

/// Reads the components of a vector, up to `limit` of them, and returns how many are numbers.
template <ComponentEnd END>
std::size_t scanVector(const char*& cursor, const char* end, std::size_t limit, double* xyz)
{
    static constexpr std::array<char, 3> DELIMITERS = {' ', ' ', ')'};
    std::size_t done = 0;
    while (done < limit && scanComponent<END>(cursor, end, DELIMITERS[done], xyz + done)) {
        ++done;
    }
    return done;
}

/// Reads one number of a scalar list and stops at the character that ended it: line feed, blank, ")" or NUL.
///
/// A token that merely begins with a number is refused, but the value is stored.
/// @param end of the text: its NUL, or the start of a line
inline bool scanScalar(const char*& cursor, const char* end, double* value)
{
    const char* const stop = scanPlainReal(cursor, end, value);
    if (stop != nullptr && endsListItem(*stop)) {
        cursor = stop;
        return true;
    }
    const char* p = cursor;
    while (!endsListItem(*p)) {
        ++p;
    }
    const std::string_view token(cursor, static_cast<std::size_t>(p - cursor));
    if (token.empty() || !dvf::tokenToDouble(token, value)) {
        return false;
    }
    cursor = p;
    return true;
}

/// Which characters, besides its own delimiter, may end a number of a face.
enum class FaceTokenEnd
{
    /// None: a malformed face ends the chunk.
    Delimiter,
    /// A blank or the end of the text. For the sequential readers.
    DelimiterBlankOrNul
};

template <FaceTokenEnd END>
bool endsFaceToken(char c, char delimiter)
{
    return c == delimiter || (END == FaceTokenEnd::DelimiterBlankOrNul && (c == ' ' || c == '\0'));
}

/// Reads the node count before a face and advances past the "(".
///
/// A face of more than ten nodes takes several lines, with the count on the first and "(" on the second: a line feed
/// ends the count, and the text between it and the "(" is skipped.
template <FaceTokenEnd END>
bool scanFaceSize(const char*& cursor, int* count)
{
    const char* p = cursor;
    if (!scanLabel(p, count)) {
        return false;
    }
    if (*p == '\n') {
        if (!skipPast(p, '(')) {
            return false;
        }
    } else if (endsFaceToken<END>(*p, '(')) {
        skipStop(p);
    } else {
        return false;
    }
    skipLineFeeds(p);
    cursor = p;
    return true;
}

/// Reads one node label of a face and advances past what ended it and the line feeds there.
template <FaceTokenEnd END>
bool scanFaceLabel(const char*& cursor, char delimiter, int* label)
{
    const char* p = cursor;
    if (!scanLabel(p, label)) {
        return false;
    }
    if (*p == '\n') {
        // One label per line: the bracket that closes the face is on the next line.
        if (delimiter == ')' && !skipPast(p, ')')) {
            return false;
        }
    } else if (endsFaceToken<END>(*p, delimiter)) {
        skipStop(p);
    } else {
        return false;
    }
    skipLineFeeds(p);
    cursor = p;
    return true;
}

/// Reads the labels of one face into `labels`, which has room for `count`.
template <FaceTokenEnd END>
bool scanFaceLabels(const char*& cursor, std::size_t count, int* labels)
{
    const char* p = cursor;
    for (std::size_t i = 0; i + 1 < count; ++i) {
        if (!scanFaceLabel<END>(p, ' ', labels + i)) {
            return false;
        }
    }
    if (!scanFaceLabel<END>(p, ')', labels + count - 1)) {
        return false;
    }
    cursor = p;
    return true;
}

} // namespace TokenScanner
