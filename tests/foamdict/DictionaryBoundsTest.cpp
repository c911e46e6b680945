// SPDX-License-Identifier: MIT
#include "LibCore/Limits.h"
#include "foamdict/DictionaryText.h"

#include <gtest/gtest.h>

namespace limits = dvf::limits;
using foamdict::Content;

namespace {

std::string repeated(std::string_view text, std::size_t count)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

/// Lines of which each uses the one before it `uses` times.
std::string chain(std::size_t length, const std::string& uses)
{
    std::string text = "b0 { x 1; }\n";
    for (std::size_t i = 1; i <= length; ++i) {
        text += "b" + std::to_string(i) + " { ";
        for (const char c : uses) {
            text += std::string(1, c) + " $..b" + std::to_string(i - 1) + "; ";
        }
        text += "}\n";
    }
    return text;
}

/// Reads a text that must be too much; the entry before it must be kept.
void expectStop(const std::string& text, const std::string& reason, TextClient* client)
{
    const Content content = parseText("kept 1;\n" + text, *client);
    EXPECT_FALSE(content.isComplete) << reason;
    EXPECT_NE(content.problem.find(reason), std::string::npos) << content.problem;
    ASSERT_NE(content.entries.find("kept"), nullptr);
}

void expectStop(const std::string& text, const std::string& reason)
{
    TextClient client;
    expectStop(text, reason, &client);
}

} // namespace

TEST(DictionaryBounds, BlocksMayNotBeNestedTooDeep)
{
    EXPECT_TRUE(reread(repeated("a{", limits::DICTIONARY_DEPTH - 1) + repeated("}", limits::DICTIONARY_DEPTH - 1))
                    .ends_with("{ } }" + repeated(" }", limits::DICTIONARY_DEPTH - 3)));
    expectStop(repeated("a{", 100000), "nested too deep");
    // Copies nest as well.
    expectStop(chain(100, "a"), "nested too deep");
    expectStop("c { " + chain(60, "a") + " } " + repeated("a{", 20) + "e $:c;", "nested too deep");
}

TEST(DictionaryBounds, BracketsOfAValueMayBeNested)
{
    EXPECT_FALSE(reread("a " + repeated("({", 100000)).empty());
    EXPECT_EQ(reread("a " + repeated("(", 1000) + repeated(")", 1000) + ";").find("->"), std::string::npos);
}

TEST(DictionaryBounds, MacrosMayNotMultiply)
{
    expectStop(chain(60, "ab"), "macros copy too much");
    std::string values = "v0 1 1 1 1 1 1 1 1;\n";
    for (int i = 1; i < 40; ++i) {
        values += "v" + std::to_string(i) + " $v" + std::to_string(i - 1) + " $v" + std::to_string(i - 1) + ";\n";
    }
    expectStop(values, "macros copy too much");
    expectStop("s \"" + std::string(100000, 'x') + "\";\n v" + repeated(" $s", 1000) + ";", "macros copy too much");
    // Any number of patches may share one block.
    const std::string block = "b { x0 (1 2 3); x1 4; x2 5; x3 6; x4 7; x5 8; x6 9; x7 10; x8 11; x9 12; } ";
    EXPECT_EQ(reread(block + "c { " + repeated("p { $..b; } ", 50000) + " }").find("->"), std::string::npos);
}

TEST(DictionaryBounds, SearchesMayNotTakeTooLong)
{
    // Each statement is compared with all expressions, and none matches before its end.
    std::string patterns;
    for (int i = 0; i < 100; ++i) {
        patterns += "\".*.*.*.*" + std::to_string(i) + "x\" { } ";
    }
    expectStop(patterns + repeated("$" + std::string(1000, 'y') + ";\n", 1000), "too much work to find macros");
    expectStop(repeated("a { } ", 1) + patterns + repeated("#remove \".*z{200}.*\"\n", 100000),
               "too much work to remove");
    EXPECT_EQ(reread("x $" + std::string(limits::MACRO_NAME + 1, 'a') + ";").find("->"), std::string::npos);
}

// A mesh tool may remove patches one by one, so a removal may not take time in proportion to all entries.
TEST(DictionaryBounds, ManyEntriesMayBeRemovedFromALargeBlock)
{
    constexpr int COUNT = 20000;
    constexpr int REMOVED = 6000;
    std::string text = "b { ";
    for (int i = 0; i < COUNT; ++i) {
        text += "k" + std::to_string(i) + " { } ";
    }
    for (int i = 0; i < REMOVED; ++i) {
        text += "#remove k" + std::to_string(i * 3) + "\n";
    }
    TextClient client;
    const Content content = parseText(text + "#remove \"k.*[05]\"\n k3 1; }", client);
    EXPECT_EQ(content.problem, "");
    std::vector<std::string> expected;
    for (int i = 0; i < COUNT; ++i) {
        if (i % 5 != 0 && (i % 3 != 0 || i >= REMOVED * 3)) {
            expected.push_back("k" + std::to_string(i));
        }
    }
    expected.emplace_back("k3");
    std::vector<std::string> kept;
    for (const foamdict::Entry& entry : content.entries.block("b")->entries()) {
        kept.push_back(entry.keyword);
        EXPECT_EQ(content.entries.block("b")->find(entry.keyword), &entry) << entry.keyword;
    }
    EXPECT_EQ(kept, expected);
}

TEST(DictionaryBounds, TextMayNotBeTooLong)
{
    expectStop("a " + std::string(limits::TOKEN_LENGTH + 1, 'b') + ";", "a word is too long");
    expectStop("a \"" + std::string(limits::TOKEN_LENGTH + 1, 'b') + "\";", "a word is too long");
    expectStop("a (" + repeated("1 ", limits::DICTIONARY_TOKENS + 1) + ");", "too many values");
    expectStop(repeated("a;", limits::DICTIONARY_ENTRIES + 1), "too many entries");
}

TEST(DictionaryBounds, IncludesAreLimitedInDepthNumberAndSize)
{
    TextClient client;
    for (int i = 0; i < 40; ++i) {
        client.files["case/system/f" + std::to_string(i)] = "#include \"f" + std::to_string(i + 1) + "\"\n";
    }
    expectStop("#include \"f0\"\n", "too many files are included", &client);
    EXPECT_EQ(client.opened.size(), limits::INCLUDE_DEPTH);

    // Each file includes the next one twice.
    TextClient doubling;
    for (int i = 0; i < 15; ++i) {
        doubling.files["case/system/f" + std::to_string(i)] =
            repeated("#include \"f" + std::to_string(i + 1) + "\"\n", 2);
    }
    expectStop("#include \"f0\"\n", "too many files are included", &doubling);
    EXPECT_EQ(doubling.opened.size(), limits::INCLUDE_COUNT);

    TextClient large;
    large.files["case/system/blank"] = std::string(limits::INCLUDE_BYTES / 4, '\n');
    expectStop(repeated("#include \"blank\"\n", 5), "too much text is included", &large);
}

TEST(DictionaryBounds, ExpressionsAndReportsAreLimitedInNumber)
{
    std::string text;
    for (std::size_t i = 0; i < limits::DICTIONARY_REPORTS * 2; ++i) {
        text += "\"x{100}" + std::to_string(i) + "\" 1; a" + std::to_string(i) + " $b" + std::to_string(i) + ";\n";
    }
    TextClient client;
    const Content content = parseText(text, client);
    EXPECT_TRUE(content.isComplete);
    EXPECT_LE(content.entries.patternStates(), limits::DICTIONARY_PATTERN_STATES + 200);
    EXPECT_EQ(client.reports.size(), limits::DICTIONARY_REPORTS);
    EXPECT_NE(content.entries.findPattern(std::string(100, 'x') + "0"), nullptr);
    EXPECT_EQ(content.entries.findPattern(std::string(100, 'x') + "199"), nullptr);
}
