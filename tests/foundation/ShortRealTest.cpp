// SPDX-License-Identifier: MIT
#include "LibCore/ShortReal.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace {

constexpr int TOKENS = 1000000;

/// Random tokens: numbers of few and of many digits as solvers write them, any double, digits with a point and an
/// exponent anywhere, and runs of characters that are nearly numbers.
class TokenMaker
{
public:
    std::string next()
    {
        switch (upTo(4)) {
        case 0:
            return printed("%.6g", std::bit_cast<double>(moderateBits()));
        case 1:
            return printed("%.17g", std::bit_cast<double>(m_random()));
        case 2:
            return digits() + (upTo(1) != 0 ? "e" + sign() + std::to_string(upTo(30)) : "");
        case 3:
            return digits();
        default:
            return scrap();
        }
    }

private:
    std::uint64_t upTo(std::uint64_t largest) { return m_random() % (largest + 1); }
    std::string sign() { return upTo(1) != 0 ? "-" : ""; }

    /// A double between about 1e-19 and 1e19.
    std::uint64_t moderateBits()
    {
        const std::uint64_t exponent = 960 + upTo(126);
        return (m_random() & 0x800FFFFFFFFFFFFFU) | exponent << 52U;
    }

    static std::string printed(const char* format, double value)
    {
        std::string text(64, '\0');
        text.resize(static_cast<std::size_t>(std::snprintf(text.data(), text.size(), format, value)));
        return text;
    }

    std::string digits()
    {
        std::string text = sign();
        const std::size_t first = text.size();
        for (std::uint64_t i = upTo(21); i != 0; --i) {
            text += static_cast<char>('0' + upTo(9));
        }
        text.insert(first + upTo(text.size() - first), upTo(2) != 0 ? "." : "");
        return text;
    }

    std::string scrap()
    {
        static const std::string CHARACTERS = "0123456789.eE+-n )x";
        std::string text;
        for (std::uint64_t i = upTo(9); i != 0; --i) {
            text += CHARACTERS[upTo(CHARACTERS.size() - 1)];
        }
        return text;
    }

    std::mt19937_64 m_random{20};
};

} // namespace

// The fast conversion may decline, but where it takes a token, a different last bit would show in no plot and in every
// comparison of two runs.
TEST(ShortReal, EqualsTheGeneralConversionBitForBit)
{
    TokenMaker tokens;
    int taken = 0;
    for (int i = 0; i < TOKENS; ++i) {
        const std::string token = tokens.next();
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
