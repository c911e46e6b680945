// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

namespace dvf {

/// The longest text that is taken for one number; a longer token is no number.
/// It is the size of the line buffer of a case file less its terminator, so no honest file comes near it.
inline constexpr std::size_t MAX_NUMBER_LENGTH = 4095;

/// Converts a whole token as `strtod` does in the "C" locale, whatever locale the host has set.
///
/// `std::from_chars` is tried first, several times as fast; where it does not take the whole token (a plus sign, blanks
/// in front, hexadecimal, a value beyond the range of double) `strtod` decides.
///
/// @param[out] value what the longest number at the start of the token says, 0.0 if there is none
/// @return true if the token is one number from its first to its last character
bool tokenToDouble(std::string_view token, double* value);

/// Reads one double as extraction from a wide stream in the classic locale does: blanks in front are skipped, what
/// stands behind the number is left alone.
///
/// Written out because a stream for each value of a list costs more than the rest of reading it.
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
