// SPDX-License-Identifier: MIT
#include "foamfile/TokenScanner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

using namespace TokenScanner;

namespace {

/// The rules of a component written down plainly, with the C library for the number (the tests run in the "C" locale).
template <ComponentEnd END>
bool plainComponent(const std::string& text, char delimiter, std::size_t* moved, double* value)
{
    std::string stops = std::string("\n") + delimiter;
    stops += END == ComponentEnd::DelimiterBlankOrBracket ? " )" : "";
    const std::size_t stop = std::min(text.find_first_of(stops), text.size());
    *moved = std::min(stop + 1, text.size());
    if (stop < text.size() && text[stop] == '\n') {
        const std::size_t next = text.find(delimiter, stop);
        if (next == std::string::npos) {
            return false;
        }
        *moved = next + 1;
    }
    const std::string token = text.substr(0, stop);
    char* end = nullptr;
    *value = std::strtod(token.c_str(), &end);
    return !token.empty() && *end == '\0';
}

template <ComponentEnd END>
void expectLikePlain(const std::string& text, char delimiter)
{
    SCOPED_TRACE(text + " up to " + delimiter);
    std::size_t moved = 0;
    double expected = 0.0;
    const bool isNumber = plainComponent<END>(text, delimiter, &moved, &expected);
    const char* cursor = text.c_str();
    double value = 0.0;
    ASSERT_EQ(scanComponent<END>(cursor, text.c_str() + text.size(), delimiter, &value), isNumber);
    EXPECT_EQ(static_cast<std::size_t>(cursor - text.c_str()), isNumber ? moved : 0);
    if (isNumber && std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(value));
    } else if (isNumber) {
        // Bit by bit, so that a negative zero and the last place count.
        EXPECT_EQ(std::memcmp(&value, &expected, sizeof(value)), 0) << value << " for " << expected;
    }
}

} // namespace

// Conversion in place may run past a delimiter or stop in front of one that strtod would have reached; every such text
// would show as a shifted or lost coordinate.
TEST(TokenScanner, ComponentsEndAndConvertAsPlainlyWrittenRulesSay)
{
    std::mt19937 random(7);
    const std::string alphabet = "0123456789.-+eEinfaxp() \n";
    std::uniform_int_distribution<std::size_t> letter(0, alphabet.size() - 1);
    std::uniform_int_distribution<std::size_t> length(0, 9);
    const std::string starts[] = {"", "1", "-2.5", "1e3", "inf", "nan(1", "0x1p3", "1e400", "4.9e-324", "nan", "+7"};
    for (int round = 0; round < 40000; ++round) {
        std::string text = starts[static_cast<std::size_t>(round) % std::size(starts)];
        for (std::size_t k = length(random); k > 0; --k) {
            text.push_back(alphabet[letter(random)]);
        }
        for (const char delimiter : {' ', ')'}) {
            expectLikePlain<ComponentEnd::Delimiter>(text, delimiter);
            expectLikePlain<ComponentEnd::DelimiterBlankOrBracket>(text, delimiter);
        }
    }
}

TEST(TokenScanner, ATokenLongerThanAnyNumberFails)
{
    for (const std::size_t digits : {dvf::MAX_NUMBER_LENGTH, dvf::MAX_NUMBER_LENGTH + 1}) {
        const bool isNumber = digits == dvf::MAX_NUMBER_LENGTH;
        const std::string text = std::string(digits - 1, '0') + "7 ";
        const char* const end = text.c_str() + text.size();
        const char* cursor = text.c_str();
        int label = 0;
        EXPECT_EQ(scanLabel(cursor, &label), isNumber);
        EXPECT_EQ(label, isNumber ? 7 : 0);
        double value = 0.0;
        cursor = text.c_str();
        EXPECT_EQ(scanComponent<ComponentEnd::Delimiter>(cursor, end, ' ', &value), isNumber);
        cursor = text.c_str();
        EXPECT_EQ(scanScalar(cursor, end, &value), isNumber);
    }
}

TEST(TokenScanner, NoScannerStepsOverTheEndOfTheText)
{
    // The exact copy on the heap lets the sanitizer see one byte too many.
    for (const std::string text : {"", "12", "12\n", "1 2", "4(", "4(1 2 3 4", "4\n(\n1\n2", "3(1 2 3)", "(1 2 3", "-"}) {
        for (std::size_t length = 0; length <= text.size(); ++length) {
            std::vector<char> exact(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
            exact.push_back('\0');
            const char* const end = exact.data() + length;
            int count = 0;
            double value = 0.0;
            std::vector<int> room(8);
            const char* p = exact.data();
            scanFaceSize<FaceTokenEnd::DelimiterBlankOrNul>(p, &count);
            scanFaceLabels<FaceTokenEnd::DelimiterBlankOrNul>(p, 4, room.data());
            EXPECT_LE(p, end);
            p = exact.data();
            scanFaceSize<FaceTokenEnd::Delimiter>(p, &count);
            scanFaceLabels<FaceTokenEnd::Delimiter>(p, 4, room.data());
            EXPECT_LE(p, end);
            p = exact.data();
            while (scanComponent<ComponentEnd::DelimiterBlankOrBracket>(p, end, ')', &value)) {
            }
            EXPECT_LE(p, end);
        }
    }
}
