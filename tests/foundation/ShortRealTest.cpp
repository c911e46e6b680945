// SPDX-License-Identifier: MIT
#include "LibCore/ShortReal.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

namespace {

constexpr int TOKENS = 1000000;

std::string printed(const char* format, double value)
{
    std::string text(64, '\0');
    text.resize(static_cast<std::size_t>(std::snprintf(text.data(), text.size(), format, value)));
    return text;
}

/// A random token: a number as a solver writes it, any double, or characters of numbers in any order.
std::string randomToken(std::mt19937_64& random)
{
    static const std::string CHARACTERS = "00123456789012345678.e-+E)";
    const auto bits = random();
    switch (random() % 4) {
    case 0: // between about 1e-19 and 1e19
        return printed("%.6g", std::bit_cast<double>((bits & 0x800FFFFFFFFFFFFFU) | (960 + random() % 127) << 52U));
    case 1:
        return printed("%.17g", std::bit_cast<double>(bits));
    default:
        std::string text(bits % 2, '-');
        for (std::uint64_t i = random() % 24, kinds = random() % 2 == 0 ? 21 : CHARACTERS.size(); i != 0; --i) {
            text += CHARACTERS[random() % kinds];
        }
        return text;
    }
}

} // namespace

// The fast conversion may decline, but where it takes a token, a different last bit would show in no plot and in every
// comparison of two runs.
TEST(ShortReal, EqualsTheGeneralConversionBitForBit)
{
    std::mt19937_64 random(20);
    int taken = 0;
    for (int i = 0; i < TOKENS; ++i) {
        const std::string token = randomToken(random);
        // Digits right after the token must not count; without them the text is too short to be taken in one piece.
        const std::string text = i % 2 == 0 ? token : token + '\0' + "31415926535897932384";
        double fast = 7.0;
        const char* const stop = dvf::scanShortReal(text.c_str(), text.c_str() + text.size(), &fast);
        if (stop == nullptr) {
            ASSERT_EQ(fast, 7.0) << token;
            continue;
        }
        ++taken;
        double general = 0.0;
        const std::from_chars_result result = std::from_chars(token.data(), token.data() + token.size(), general);
        ASSERT_EQ(result.ec, std::errc()) << token;
        ASSERT_EQ(stop - text.c_str(), result.ptr - token.data()) << token;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(fast), std::bit_cast<std::uint64_t>(general)) << token;
    }
    // The comparison is worth something only if the fast conversion takes its share.
    EXPECT_GT(taken, TOKENS / 3);
}
