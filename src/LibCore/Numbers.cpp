// SPDX-License-Identifier: MIT
#include "LibCore/Numbers.h"

#include "LibCore/Limits.h"

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <string>
#include <system_error>

namespace dvf {
namespace {

/// The "C" locale as an object, so that conversions ignore what the host has set with `setlocale`.
/// Null if it cannot be created; numbers that only `strtod` takes then stay unconverted.
class ClassicLocale
{
public:
    ClassicLocale() : m_locale(newlocale(LC_ALL_MASK, "C", nullptr)) {}
    ~ClassicLocale()
    {
        if (m_locale != nullptr) {
            freelocale(m_locale);
        }
    }
    ClassicLocale(const ClassicLocale&) = delete;
    ClassicLocale& operator=(const ClassicLocale&) = delete;

    static locale_t get()
    {
        static const ClassicLocale classic;
        return classic.m_locale;
    }

private:
    locale_t m_locale;
};

double stringToReal(const char* text, char** end, double)
{
    return strtod_l(text, end, ClassicLocale::get());
}

float stringToReal(const char* text, char** end, float)
{
    return strtof_l(text, end, ClassicLocale::get());
}

/// `strtod` on a copy, because the token is part of a larger text and has no terminator.
template <typename Real>
bool tokenToRealByLibrary(std::string_view token, Real* value)
{
    // guard: number-length
    if (token.size() > limits::NUMBER_LENGTH || ClassicLocale::get() == nullptr) {
        *value = 0;
        return false;
    }
    const std::string copy(token);
    char* end = nullptr;
    *value = stringToReal(copy.c_str(), &end, Real());
    return end == copy.c_str() + copy.size() && !token.empty();
}

template <typename Real>
bool tokenToReal(std::string_view token, Real* value)
{
    const char* const last = token.data() + token.size();
    const std::from_chars_result result = std::from_chars(token.data(), last, *value);
    const bool whole = result.ec == std::errc() && result.ptr == last && token.size() <= limits::NUMBER_LENGTH;
    return whole || tokenToRealByLibrary(token, value);
}

bool isBlank(wchar_t unit)
{
    return unit == L' ' || (unit >= L'\t' && unit <= L'\r');
}

bool isDigit(wchar_t unit)
{
    return unit >= L'0' && unit <= L'9';
}

std::size_t skipBlanks(std::wstring_view text)
{
    std::size_t i = 0;
    while (i < text.size() && isBlank(text[i])) {
        ++i;
    }
    return i;
}

/// Collects the characters that stream extraction takes: a sign, digits with one point, and an exponent with its sign.
/// The collected text need not be a number: "1e" is collected whole and then fails, as it does in a stream.
std::string collectReal(std::wstring_view text)
{
    std::string token;
    bool hasPoint = false;
    bool hasExponent = false;
    bool hasDigit = false;
    for (std::size_t i = skipBlanks(text); i < text.size() && token.size() <= limits::NUMBER_LENGTH; ++i) {
        const wchar_t unit = text[i];
        const bool afterExponent = !token.empty() && token.back() == 'e';
        const bool isSign = (unit == L'+' || unit == L'-') && (token.empty() || afterExponent);
        const bool isPoint = unit == L'.' && !hasPoint && !hasExponent;
        const bool isExponent = (unit == L'e' || unit == L'E') && !hasExponent && hasDigit;
        if (!isDigit(unit) && !isSign && !isPoint && !isExponent) {
            break;
        }
        hasDigit = hasDigit || isDigit(unit);
        hasPoint = hasPoint || isPoint;
        hasExponent = hasExponent || isExponent;
        token.push_back(isExponent ? 'e' : static_cast<char>(unit));
    }
    return token;
}

template <typename Real>
bool extractReal(std::wstring_view text, Real* value)
{
    const std::string token = collectReal(text);
    if (!tokenToReal<Real>(token, value)) {
        *value = 0;
        return false;
    }
    if (std::isinf(*value)) {
        *value = std::copysign(std::numeric_limits<Real>::max(), *value);
        return false;
    }
    return true;
}

template <typename Integer>
bool extractInteger(std::wstring_view text, Integer* value)
{
    std::size_t i = skipBlanks(text);
    const bool negative = i < text.size() && text[i] == L'-';
    if (i < text.size() && (text[i] == L'-' || text[i] == L'+')) {
        ++i;
    }
    std::string digits(negative ? "-" : "");
    const std::size_t firstDigit = i;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        digits.push_back(static_cast<char>(text[i]));
    }
    *value = 0;
    if (i == firstDigit) {
        return false;
    }
    const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), *value);
    if (result.ec == std::errc::result_out_of_range) {
        *value = negative ? std::numeric_limits<Integer>::min() : std::numeric_limits<Integer>::max();
    }
    return result.ec == std::errc();
}

} // namespace

bool tokenToDouble(std::string_view token, double* value)
{
    return tokenToReal(token, value);
}

bool extractDouble(std::wstring_view text, double* value)
{
    return extractReal(text, value);
}

bool extractFloat(std::wstring_view text, float* value)
{
    return extractReal(text, value);
}

bool extractInt(std::wstring_view text, int* value)
{
    return extractInteger(text, value);
}

bool extractInt64(std::wstring_view text, long long* value)
{
    return extractInteger(text, value);
}

} // namespace dvf
