// SPDX-License-Identifier: MIT
#include "LibCore/Numbers.h"
#include "DvnCore/Str.h"
#include "LibCore/Limits.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <locale>
#include <random>
#include <sstream>

namespace {

/// Extraction from a real stream, which defines what the conversions must give.
template <typename Number>
std::pair<bool, Number> fromStream(const std::wstring& text)
{
    std::wistringstream stream(text);
    stream.imbue(std::locale::classic());
    Number value = 0;
    stream >> value;
    return {!stream.fail(), value};
}

template <typename Number>
void expectLikeStream(const std::string& text, bool (*extract)(std::wstring_view, Number*))
{
    const std::wstring wide(text.begin(), text.end());
    const auto [isNumber, expected] = fromStream<Number>(wide);
    Number value = 17;
    EXPECT_EQ(extract(wide, &value), isNumber) << text;
    // Bit by bit: a negative zero is one.
    EXPECT_EQ(std::memcmp(&value, &expected, sizeof(value)), 0) << text << ": " << value << " for " << expected;
}

} // namespace

TEST(Numbers, ConvertTextLikeStreamExtraction)
{
    std::vector<std::string> texts = {""};
    for (const dvn::Str& text :
         dvn::Str(
             " |0|-0|-0.0|+1|12abc| \t\n\v\f\r42 7|1.5.2|.|-|+|-.5|5.|1e|1e+|1e-2|1E5x|e5|1e5e5|inf|nan|0x10|1,5|--1|"
             "+-1|1e400|-1e400|1e-400|4.9e-324|2147483647|2147483648|-2147483648|-2147483649|9223372036854775807|"
             "9223372036854775808|-9223372036854775808|-9223372036854775809|99999999999999999999999|3.5e38|"
             "3.4028235e38|0.1|123456789012345678901234567890|1.7976931348623157e308|1.7976931348623159e308|00012|"
             "1'000|1 2|0e|0e0|1.e3|.e3")
             .split("|")) {
        texts.push_back(text.toUtf8());
    }
    std::mt19937 random(3);
    const std::string alphabet = "0123456789012345678..+-eE x";
    for (std::size_t round = 0; round < 20000; ++round) {
        std::string text;
        for (std::size_t k = round % 15; k > 0; --k) {
            text.push_back(alphabet[random() % alphabet.size()]);
        }
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        expectLikeStream<double>(text, dvf::extractDouble);
        expectLikeStream<float>(text, dvf::extractFloat);
        expectLikeStream<int>(text, dvf::extractInt);
        expectLikeStream<long long>(text, dvf::extractInt64);
    }
}

TEST(Numbers, ConvertWholeTokensLikeTheCLibrary)
{
    const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    for (const dvn::Str& piece :
         dvn::Str("1|+1| 1|1 |-1.5e3|1e400|-1e400|1e-400|0x1p4|0x|inf|-INF|nan|nan(12)|infinity|1.5x|x|"
                  "1e|1e5 |.|-|1,5")
             .split("|")) {
        const std::string text = piece.toUtf8();
        char* end = nullptr;
        const double expected = strtod_l(text.c_str(), &end, plain);
        double value = 17.0;
        EXPECT_EQ(dvf::tokenToDouble(text, &value), *end == '\0') << text;
        EXPECT_TRUE(value == expected || (value != value && expected != expected)) << text << ": " << value;
    }
    freelocale(plain);
    double value = 17.0;
    EXPECT_FALSE(dvf::tokenToDouble("", &value));
    EXPECT_FALSE(dvf::tokenToDouble(std::string(dvf::limits::NUMBER_LENGTH + 1, '1'), &value));
    EXPECT_EQ(value, 0.0);
}
