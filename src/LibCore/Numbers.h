// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace dvf {

/// Converts a whole token as `strtod` does in the "C" locale, whatever locale the host has set.
///
/// `std::from_chars`, several times as fast, comes first. Where it does not take the whole token (a plus sign, leading
/// blanks, hexadecimal, a value beyond the range of double) `strtod` decides. A token of more than
/// `limits::NUMBER_LENGTH` characters is not a number.
///
/// @param[out] value that of the longest number at the start of the token, 0.0 if there is none
/// @return true if the token is one number from its first to its last character
bool tokenToDouble(std::string_view token, double* value);

/// Reads one double as extraction from a wide stream in the classic locale does: leading blanks are skipped, text after
/// the number is ignored.
///
/// Written out because a stream for each value of a list costs more than all the rest of reading it.
///
/// @param[out] value the number; 0.0 if there is none, the largest finite value of its sign if it is out of range
/// @return false where the stream would fail
bool extractDouble(std::wstring_view text, double* value);

/// The same for float.
bool extractFloat(std::wstring_view text, float* value);

/// The same for a decimal integer of 32 bits; out of range gives the nearest limit and false.
bool extractInt(std::wstring_view text, int* value);

/// The same for 64 bits.
bool extractInt64(std::wstring_view text, long long* value);

} // namespace dvf
