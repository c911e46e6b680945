// SPDX-License-Identifier: MIT
#include "foamfile/TokenScanner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

using namespace TokenScanner;

namespace {

/// The rules of a component written down plainly, with the C library for the number (tests run in the "C" locale).
bool plainComponent(const std::string& text, const std::string& stops, char delimiter, std::size_t* moved,
                    double* value)
{
    const std::size_t stop = std::min(text.find_first_of(stops), text.size());
    *moved = std::min(stop + 1, text.size());
    if (stop < text.size() && text[stop] == '\n') {
        *moved = text.find(delimiter, stop) + 1;
    }
    const std::string token = text.substr(0, stop);
    char* end = nullptr;
    *value = std::strtod(token.c_str(), &end);
    return *moved != 0 && !token.empty() && *end == '\0';
}

template <ComponentEnd END>
void expectLikePlain(const std::string& text, const std::string& stops, char delimiter)
{
    std::size_t moved = 0;
    double expected = 0.0;
    const bool isNumber = plainComponent(text, stops, delimiter, &moved, &expected);
    const char* cursor = text.c_str();
    double value = 0.0;
    ASSERT_EQ(scanComponent<END>(cursor, text.c_str() + text.size(), delimiter, &value), isNumber) << text;
    EXPECT_EQ(static_cast<std::size_t>(cursor - text.c_str()), isNumber ? moved : 0) << text;
    // Bit by bit, so that a negative zero and the last place count.
    const bool isSame = std::memcmp(&value, &expected, sizeof(value)) == 0;
    EXPECT_TRUE(!isNumber || isSame || (std::isnan(value) && std::isnan(expected))) << text << ": " << value;
}

} // namespace

// Conversion in place may run past a delimiter or stop in front of one that strtod would have reached; every such text
// would show as a shifted or lost coordinate.
TEST(TokenScanner, ComponentsEndAndConvertAsPlainlyWrittenRulesSay)
{
    std::mt19937 random(7);
    const std::string alphabet = "0123456789.-+eEinfaxp() \n";
    std::uniform_int_distribution<std::size_t> letter(0, alphabet.size() - 1);
    const std::string starts[] = {"", "1", "-2.5", "1e3", "inf", "nan(1", "0x1p3", "1e400", "4.9e-324", "nan", "+7"};
    for (std::size_t round = 0; round < 40000; ++round) {
        std::string text = starts[round % std::size(starts)];
        for (std::size_t k = round / 11 % 10; k > 0; --k) {
            text.push_back(alphabet[letter(random)]);
        }
        expectLikePlain<ComponentEnd::Delimiter>(text, " \n", ' ');
        expectLikePlain<ComponentEnd::Delimiter>(text, ")\n", ')');
        expectLikePlain<ComponentEnd::DelimiterBlankOrBracket>(text, " )\n", ' ');
        expectLikePlain<ComponentEnd::DelimiterBlankOrBracket>(text, " )\n", ')');
    }
}
