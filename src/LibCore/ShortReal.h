// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cfloat>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace dvf {

/// Steps of `scanShortReal`.
namespace shortreal {

/// Digits that fit 64 bits whatever they are.
inline constexpr std::ptrdiff_t MOST_DIGITS = 19;

/// The digits of a number as an integer, the power of ten that it is to be multiplied by, and where the digits end.
struct Digits
{
    std::uint64_t value = 0;
    int power = 0;
    const char* end = nullptr; ///< null if there are no digits, or more than can be taken
};

inline unsigned digitOf(char c)
{
    return static_cast<unsigned>(static_cast<unsigned char>(c)) - unsigned{'0'};
}

/// Reads digits with at most one point among them, one by one.
inline Digits readDigits(const char* first)
{
    Digits digits;
    const char* p = first;
    // Wraps for more than 19 digits, which are refused below.
    for (unsigned digit = digitOf(*p); digit < 10; digit = digitOf(*++p)) {
        digits.value = digits.value * 10 + digit;
    }
    std::ptrdiff_t count = p - first;
    if (*p == '.') {
        const char* const fraction = ++p;
        for (unsigned digit = digitOf(*p); digit < 10; digit = digitOf(*++p)) {
            digits.value = digits.value * 10 + digit;
        }
        count += p - fraction;
        digits.power = p - fraction > MOST_DIGITS ? 0 : -static_cast<int>(p - fraction);
    }
    digits.end = count == 0 || count > MOST_DIGITS ? nullptr : p;
    return digits;
}

#if defined(__SSE2__)
/// Bytes that `readDigitsAtOnce` looks at.
inline constexpr std::ptrdiff_t WIDTH = 16;

__extension__ using Wide = unsigned __int128;

/// The integer of eight digits, one per byte, the first in the lowest byte.
inline std::uint64_t eightDigits(std::uint64_t digits)
{
    // Pairs, then fours and eight of them, each by one multiplication that shifts one half up and adds the other.
    digits = digits * 10 + (digits >> 8U);
    const std::uint64_t even = (digits & 0x000000FF000000FFU) * 0x000F424000000064U;
    const std::uint64_t odd = ((digits >> 16U) & 0x000000FF000000FFU) * 0x0000271000000001U;
    return (even + odd) >> 32U;
}

/// The same for digits that end within the next 16 bytes, without a branch per digit: how many there are changes from
/// number to number, and each wrong guess of the processor costs as much as ten of them.
inline Digits readDigitsAtOnce(const char* first)
{
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(first));
    const __m128i values = _mm_sub_epi8(text, _mm_set1_epi8('0'));
    const __m128i isDigit = _mm_cmpeq_epi8(_mm_subs_epu8(values, _mm_set1_epi8(9)), _mm_setzero_si128());
    // A bit for each byte that is not a digit, and one past the last.
    const unsigned others = (~static_cast<unsigned>(_mm_movemask_epi8(isDigit)) & 0xFFFFU) | 0x10000U;
    const int integerCount = __builtin_ctz(others);
    Wide packed = 0;
    std::memcpy(&packed, &values, sizeof(packed));
    int end = integerCount;
    int count = integerCount;
    Digits digits;
    if (integerCount < WIDTH && first[integerCount] == '.') {
        end = __builtin_ctz((others & (others - 1U)) | 0x10000U);
        count = end - 1;
        digits.power = integerCount - count;
        // Closes the gap of the point.
        const Wide before = (Wide{1} << static_cast<unsigned>(8 * integerCount)) - 1U;
        packed = (packed & before) | ((packed >> 8U) & ~before);
    }
    if (count == 0 || end == WIDTH) {
        return digits;
    }
    // To the upper end, so that zeros come before the digits and what follows them is gone.
    packed <<= static_cast<unsigned>(8 * (WIDTH - count));
    digits.value = eightDigits(static_cast<std::uint64_t>(packed)) * 100000000U +
                   eightDigits(static_cast<std::uint64_t>(packed >> 64U));
    digits.end = first + end;
    return digits;
}
#endif

/// Reads "e", a sign and digits, adds them to the power and advances past them; without digits nothing is read.
/// @return false if there are more digits than any number needs
inline bool readExponent(const char*& p, int* power)
{
    constexpr std::ptrdiff_t MOST_EXPONENT_DIGITS = 4;
    const char* q = p + 1;
    const bool isDivision = *q == '-';
    q += isDivision || *q == '+' ? 1 : 0;
    const char* const first = q;
    int size = 0;
    for (unsigned digit = digitOf(*q); digit < 10; digit = digitOf(*++q)) {
        if (q - first == MOST_EXPONENT_DIGITS) {
            return false;
        }
        size = size * 10 + static_cast<int>(digit);
    }
    if (q != first) {
        *power += isDivision ? -size : size;
        p = q;
    }
    return true;
}

} // namespace shortreal

/// Converts the number at the start of a text if that takes no more than one exact multiplication or division: digits
/// that make an integer of up to 2^53, and a power of ten of up to 22. Numbers as solvers write them are of this kind,
/// and it is faster than the general conversion.
///
/// Both operands are exact doubles then, so the one rounding of the operation gives the double that is nearest to the
/// text (W. D. Clinger, "How to read floating point numbers accurately", 1990). The grammar is that of
/// `std::from_chars`: no plus sign and no leading blank, "e" only if digits follow.
///
/// @param first text that ends with something that is not a digit, at the latest with its NUL
/// @param end   of the text: its NUL, or the start of a line; memory up to there is read
/// @return where the number ends, or null with `*value` untouched if the general conversion must decide
inline const char* scanShortReal(const char* first, const char* end, double* value)
{
    static_assert(DBL_MANT_DIG == 53 && FLT_EVAL_METHOD == 0, "the operation must round once, to double");
    constexpr std::uint64_t LARGEST_EXACT = std::uint64_t{1} << 53U;
    constexpr int LARGEST_POWER = 22;
    constexpr std::array<double, LARGEST_POWER + 1> POWERS_OF_TEN = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

    const bool isNegative = *first == '-';
    const char* p = first + (isNegative ? 1 : 0);
    shortreal::Digits digits;
#if defined(__SSE2__)
    if (end - p >= shortreal::WIDTH) {
        digits = shortreal::readDigitsAtOnce(p);
    }
#endif
    if (digits.end == nullptr) {
        digits = shortreal::readDigits(p);
    }
    if (digits.end == nullptr || digits.value > LARGEST_EXACT) {
        return nullptr;
    }
    p = digits.end;
    if ((*p == 'e' || *p == 'E') && !shortreal::readExponent(p, &digits.power)) {
        return nullptr;
    }
    if (digits.power < -LARGEST_POWER || digits.power > LARGEST_POWER) {
        return nullptr;
    }
    const auto whole = static_cast<double>(digits.value);
    const double size = digits.power < 0 ? whole / POWERS_OF_TEN[static_cast<std::size_t>(-digits.power)]
                                         : whole * POWERS_OF_TEN[static_cast<std::size_t>(digits.power)];
    *value = isNegative ? -size : size;
    return p;
}

} // namespace dvf
