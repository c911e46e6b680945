// SPDX-License-Identifier: MIT
#include "foamdict/Pattern.h"

#include "LibCore/Limits.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using foamdict::Pattern;

namespace {

struct Row
{
    const char* pattern;
    std::vector<const char*> matches;
    std::vector<const char*> others;
};

} // namespace

TEST(Pattern, MatchesWholeNames)
{
    const std::vector<Row> rows = {
        {"wall", {"wall"}, {"walls", "awall", "wal", ""}},
        {".*", {"", "a", "inlet_1"}, {}},
        {"(inlet|outlet).*", {"inlet", "outlet2"}, {"let", "in"}},
        {"((a|)(b|))+x", {"x", "abx", "aabbx"}, {"ac"}},
        {"(a*)*b", {"b", "aaab"}, {"aaa"}},
        {"[]a]", {"]", "a"}, {"b"}},
        {"[[:alpha:]_]+[[:digit:]]", {"in_1", "x2"}, {"1", "a-1"}},
        {"\\w+\\W\\w", {"a_b-c"}, {"abc"}},
        {"^a$|^b", {"a", "b"}, {"ab", "^a$"}},
        {"a^b|a$b", {}, {"ab", "a^b", "a$b"}},
        {"(?i)Wall[x-z]", {"wallX", "WALLy"}, {"wal"}},
        {"(?i)[^a]", {"b"}, {"a", "A"}},
        // The end of the longer one is not the end of all names.
        {"walls?", {"wall", "walls"}, {"wals"}},
        {"a(b|xyb)", {"ab", "axyb"}, {"axb"}},
        {"(x|^y|$z)w", {"xw", "yw"}, {"zw", "w"}},
        {"w\xc3\xa4.de", {"w\xc3\xa4nde"}, {"wande"}},
    };
    for (const Row& row : rows) {
        const Pattern pattern(row.pattern);
        EXPECT_TRUE(pattern.isValid()) << row.pattern;
        for (const char* const name : row.matches) {
            EXPECT_TRUE(pattern.matches(name)) << row.pattern << " " << name;
        }
        for (const char* const name : row.others) {
            EXPECT_FALSE(pattern.matches(name)) << row.pattern << " " << name;
        }
    }
}

TEST(Pattern, WhatIsNoExpressionMatchesNothing)
{
    for (const char* const text :
         {"(a",   "a)",     "[a",    "[]",         "[a-",     "*a",  "a|*",    "(+)",  "a{", "a{1",  "a{2,1}",
          "a{x}", "a{256}", "[b-a]", "[[:none:]]", "[[.a.]]", "a\\", "(a)\\1", "\\bx", "^*", "a|$+", "{1}"}) {
        const Pattern pattern(text);
        EXPECT_FALSE(pattern.isValid()) << text;
        EXPECT_FALSE(pattern.matches(text)) << text;
    }
}

// Each of these takes exponential time or space in a matcher that tries one way after the other.
TEST(Pattern, TakesTimeInProportionToTheName)
{
    const std::string name(5000, 'a');
    EXPECT_FALSE(Pattern("(a*)*(a*)*(a|aa)+b").matches(name));
    EXPECT_TRUE(Pattern("(a?){200}a{200}").matches(std::string(200, 'a')));
    for (const char* const text :
         {"((((a{99}){99}){99}){99}){99}", "((((){255}){255}){255}){255}", "(((.?){60}){60}){60}"}) {
        EXPECT_FALSE(Pattern(text).isValid()) << text;
    }
    EXPECT_FALSE(Pattern(std::string(dvf::limits::PATTERN_LENGTH + 1, 'a')).isValid());
    EXPECT_FALSE(Pattern(std::string(500, '(') + "a" + std::string(500, ')')).isValid());
}
