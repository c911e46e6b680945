// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cfloat>
#include <cstddef>
#include <cstdint>

namespace dvf {

/// Converts the number at the start of a text if that takes no more than one exact multiplication or division: at most
/// 19 digits that make an integer of up to 2^53, and a power of ten of up to 22. Numbers as solvers write them are of
/// this kind, and it is several times as fast as the general conversion.
///
/// Both operands are exact doubles then, so the one rounding of the operation gives the double that is nearest to the
/// text (W. D. Clinger, "How to read floating point numbers accurately", 1990). The grammar is that of
/// `std::from_chars`: no plus sign and no blank in front, "e" only if digits follow.
///
/// @param first text that ends with something that is not a digit, at the latest with its NUL
/// @return where the number ends, or null with `*value` untouched if the general conversion must decide
inline const char* scanShortReal(const char* first, double* value)
{
    static_assert(DBL_MANT_DIG == 53 && FLT_EVAL_METHOD == 0, "the operation must round once, to double");
    constexpr std::ptrdiff_t MOST_DIGITS = 19;
    constexpr std::uint64_t LARGEST_EXACT = std::uint64_t{1} << 53U;
    constexpr int LARGEST_POWER = 22;
    constexpr std::array<double, LARGEST_POWER + 1> POWERS_OF_TEN = {
        1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    const auto digitOf = [](char c) { return static_cast<unsigned>(static_cast<unsigned char>(c)) - unsigned{'0'}; };

    const char* p = first;
    const bool isNegative = *p == '-';
    p += isNegative ? 1 : 0;
    // Wraps for more than 19 digits, which are refused below.
    std::uint64_t digits = 0;
    const char* const integer = p;
    for (unsigned digit = digitOf(*p); digit < 10; digit = digitOf(*++p)) {
        digits = digits * 10 + digit;
    }
    std::ptrdiff_t digitCount = p - integer;
    int power = 0;
    if (*p == '.') {
        const char* const fraction = ++p;
        for (unsigned digit = digitOf(*p); digit < 10; digit = digitOf(*++p)) {
            digits = digits * 10 + digit;
        }
        digitCount += p - fraction;
        power = p - fraction > MOST_DIGITS ? 0 : -static_cast<int>(p - fraction);
    }
    if (digitCount == 0 || digitCount > MOST_DIGITS || digits > LARGEST_EXACT) {
        return nullptr;
    }
    if (*p == 'e' || *p == 'E') {
        const char* q = p + 1;
        const bool isDivision = *q == '-';
        q += isDivision || *q == '+' ? 1 : 0;
        const char* const exponent = q;
        int size = 0;
        for (unsigned digit = digitOf(*q); digit < 10; digit = digitOf(*++q)) {
            if (q - exponent == 4) {
                return nullptr;
            }
            size = size * 10 + static_cast<int>(digit);
        }
        if (q != exponent) {
            power += isDivision ? -size : size;
            p = q;
        }
    }
    if (power < -LARGEST_POWER || power > LARGEST_POWER) {
        return nullptr;
    }
    const auto whole = static_cast<double>(digits);
    const double size = power < 0 ? whole / POWERS_OF_TEN[static_cast<std::size_t>(-power)]
                                  : whole * POWERS_OF_TEN[static_cast<std::size_t>(power)];
    *value = isNegative ? -size : size;
    return p;
}

} // namespace dvf
