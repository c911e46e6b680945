// SPDX-License-Identifier: MIT
#include "foamdict/DictionaryText.h"

#include <gtest/gtest.h>

#include <functional>

using foamdict::Content;
using foamdict::Token;

namespace {

std::string kindsOf(const std::vector<Token>& tokens)
{
    std::string kinds;
    for (const Token& token : tokens) {
        kinds += "WSNPLU"[static_cast<std::size_t>(token.kind)];
    }
    return kinds;
}

} // namespace

TEST(DictionaryGrammar, ReadsEntriesAndBlocksInAnyLayout)
{
    expectRead({
        {"a 1;b 2 ; c;", "a 1; b 2; c;"},
        {"a{b{c 1;}}d{};e 2;;f 3;", "a { b { c 1; } } d { } e 2; f 3;"},
        {"a\r\n\t1\r\n;", "a 1;"},
        {"a { x 1 } b { y } c 3", "a { x 1; } b { y; } c 3;"},
        {"{ a 1; }", "a 1;"},
        {"", ""},
    });
}

TEST(DictionaryGrammar, CommentsSeparateWordsAndHideNothingElse)
{
    expectRead({
        {"a/* ; */1/**/2;", "a 1 2;"},
        {"a 1; /*/ b 2; */ c 3; // d 4;\ne 5; /***/ f 6;", "a 1; c 3; e 5; f 6;"},
        {"a \"x//y /* z\"; // last line", "a \"x//y /* z\";"},
        {"a b/c / d;", "a b / c / d;"},
    });
}

TEST(DictionaryGrammar, WordsKeepBalancedBracketsAndWhatFollowsANumber)
{
    expectRead({
        {"div(phi,U) Gauss; div((nuEff*dev2(T(grad(U))))) x;", "div(phi,U) Gauss; div((nuEff*dev2(T(grad(U))))) x;"},
        {"thermo:rho 1; alpha.water 2; T<a,b> 3;", "thermo:rho 1; alpha.water 2; T<a,b> 3;"},
        {"inGroups 2(wall sides);", "inGroups 2 ( wall sides );"},
        {"a (b(c)d (e)f);", "a ( b(c)d ( e ) f );"},
        {"2nd 0.orig; 3 x;", "2nd 0.orig; 3 x;"},
        {"d [0 1 -1 0 0 0 0];", "d [ 0 1 -1 0 0 0 0 ];"},
        {"v (a{b 1;} ; 2);", "v ( a { b 1 ; } ; 2 );"},
    });
}

TEST(DictionaryGrammar, NumbersAreWholeTokens)
{
    TextClient client;
    const Content content = parseText("v 1 -2.5e-3 .5 +4. 1e400 3abc 1.2.3 nan - e5 0.orig;", client);
    const std::vector<Token>& tokens = content.entries.find("v")->tokens;
    EXPECT_EQ(kindsOf(tokens), "NNNNNWWWPWW");
    EXPECT_EQ(tokens[1].number, -2.5e-3);
    EXPECT_EQ(tokens[1].text, "-2.5e-3");
    EXPECT_EQ(tokens[2].number, 0.5);
    EXPECT_EQ(tokens[3].number, 4.0);
}

TEST(DictionaryGrammar, StringsUndoEscapesOfQuotesAndLineEndsOnly)
{
    TextClient client;
    const Content content = parseText(R"x(a "p\"q\\"; b "r\.s"; c "t\
u"; d #{ v; "w" # } #};)x",
                                      client);
    const auto text = [&](const char* keyword) { return content.entries.find(keyword)->tokens.front().text; };
    EXPECT_EQ(text("a"), "p\"q\\\\");
    EXPECT_EQ(text("b"), "r\\.s");
    EXPECT_EQ(text("c"), "t\nu");
    EXPECT_EQ(text("d"), " v; \"w\" # } ");
}

TEST(DictionaryGrammar, LaterEntriesReplaceAndBlocksMerge)
{
    expectRead({
        {"a 1; b 2; a 3;", "a 3; b 2;"},
        {"b { c 1; d { e 1; } } b { c 2; d { f 2; } }", "b { c 2; d { e 1; f 2; } }"},
        {"a 1; a { x 1; } b { x 1; } b 2;", "a { x 1; } b 2;"},
        // Quotes alone do not make an expression, and an expression is not the name that it looks like.
        {"a 1; \"a\" 2; \"a.*\" 3; \"a.*\" 4;", "a 2; \"a.*\" 4;"},
    });
}

// From the ninth entry on a dictionary has an index, which every kind of change must keep right.
TEST(DictionaryGrammar, FindsEntriesOfLongDictionariesAfterChanges)
{
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += "k" + std::to_string(i) + " " + std::to_string(i) + "; \"p" + std::to_string(i) + ".*\" 1; ";
    }
    text += "k7 seven; #remove (\"k1.\" k50 \"p2[.][*]\") k12 twelve; ";
    TextClient client;
    const Content content = parseText(text, client);
    const auto value = [&](const std::string& keyword) {
        const foamdict::Entry* const entry = content.entries.find(keyword);
        return entry == nullptr ? std::string() : textOf(entry->tokens);
    };
    EXPECT_EQ(value("k7"), "seven");
    EXPECT_EQ(value("k12"), "twelve");
    EXPECT_EQ(value("k13"), "");
    EXPECT_EQ(value("k50"), "");
    EXPECT_EQ(value("k99"), "99");
    EXPECT_EQ(value("p3.*"), "");
    EXPECT_EQ(content.entries.findPattern("p2x"), nullptr);
    EXPECT_EQ(content.entries.findPattern("p3x")->keyword, "p3.*");
    EXPECT_EQ(content.entries.entries().size(), 100U - 11 + 1 + 99);
}

TEST(DictionaryGrammar, TheLastMatchingExpressionCounts)
{
    TextClient client;
    const Content content = parseText("\"in.*\" 1; inlet 2; \"(inlet|out)\" 3; \"in(\" 4; \"walls?\" 5;", client);
    const auto keyword = [&](const char* name) {
        const foamdict::Entry* const entry = content.entries.findPattern(name);
        return entry == nullptr ? std::string() : entry->keyword;
    };
    EXPECT_EQ(keyword("inlet"), "(inlet|out)");
    EXPECT_EQ(keyword("inner"), "in.*");
    EXPECT_EQ(keyword("walls2"), "");
    EXPECT_EQ(content.entries.find("in.*"), nullptr);
    EXPECT_EQ(client.reports, std::vector<std::string>{"case/system/dict, line 1: not a regular expression: \"in(\""});
}

TEST(DictionaryGrammar, AListOfEntriesKeepsOrderAndEqualNames)
{
    expectRead({
        {"2 ( inlet { type patch; } outlet { type wall; } )", "( inlet { type patch; } outlet { type wall; } )"},
        {"FoamFile { class x; } // c\n\n( b { x 1; } a { } b { y 2; } )", "( b { x 1; } a { } b { y 2; } )"},
        {"( a { } b { } c { } b { } d { } e { } f { } g { } b { x 1; } h { } #remove (b \"[e-g]\") b { } )",
         "( a { } c { } d { } h { } b { } )"},
        {"0()", "(  )"},
        {"( )", "(  )"},
        {"1 ( a { n 5; v $n; } ) rest", "( a { n 5; v 5; } )"},
        {"1 ( a { n 5; }", "( a { n 5; } ) -> case/system/dict, line 1: a \")\" is missing"},
        {"2 ( 0 1 )", "(  ) -> case/system/dict, line 1: a number in a list of entries"},
    });
    TextClient client;
    EXPECT_EQ(parseText("FoamFile{}7(a{})", client).statedCount, 7U);
    EXPECT_EQ(parseText("(a{})", client).statedCount, std::nullopt);
    EXPECT_FALSE(parseText("4 a;", client).items.has_value());
}

TEST(DictionaryGrammar, TheHeaderIsHandedOverRightAfterItsBrace)
{
    struct HeaderClient : TextClient
    {
        void onHeader(const foamdict::Dictionary& header) override
        {
            TextClient::onHeader(header);
            next = static_cast<char>(chars->peek());
        }
        foamdict::CharSource* chars = nullptr;
        char next = '\0';
    };
    HeaderClient client;
    foamdict::TextChars chars("\n// c\nFoamFile\n{ object p; /* } */ class \"q\"; }!a 1; FoamFile { object z; }");
    client.chars = &chars;
    const Content content = foamdict::parse(chars, {}, client);
    EXPECT_EQ(client.headers, std::vector<std::string>{"object p; class \"q\";"});
    EXPECT_EQ(client.next, '!');
    EXPECT_EQ(textOf(content.header), "object p; class \"q\";");
    EXPECT_EQ(textOf(content.entries), "!a 1;");
}

namespace {

/// Reads lists through their last bracket, or up to it, or with the ";" after it.
struct ListClient : TextClient
{
    std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
    {
        std::string path;
        for (const std::string& keyword : place.path) {
            path += "/" + keyword;
        }
        places.push_back(path + " " + std::string(place.type) + " " + std::to_string(place.count) + place.bracket +
                         static_cast<char>(place.chars.peek()));
        if (place.count == 0 || place.type == "label") {
            return std::nullopt;
        }
        int depth = 0;
        do {
            const int c = place.chars.peek();
            depth += c == '(' || c == '{' ? 1 : 0;
            depth -= c == ')' || c == '}' ? 1 : 0;
            if (depth > 0 || !leavesBracket) {
                place.chars.take();
            }
        } while (depth > 0);
        if (takesSemicolon) {
            place.chars.take();
        }
        return places.size();
    }
    bool leavesBracket = false;
    bool takesSemicolon = false;
    std::vector<std::string> places;
};

} // namespace

TEST(DictionaryGrammar, ListsGoToTheClientWhereverItStops)
{
    const char* const text = "f nonuniform List<vector>\n2 // c\n((1 2 3)(4 5 6));\n"
                             "b { in { v List<scalar> 3{7}; w 1; l List<label> 2(8 9); } } s 4(a b c d); e 0();\n"
                             "m (2 (a b)); n 2 3;";
    for (int i = 0; i < 3; ++i) {
        ListClient client;
        client.leavesBracket = i == 1;
        client.takesSemicolon = i == 2;
        // A bracket that is left is that of "( )" only; that of "{ }" would end the block.
        const std::string brace = i == 1 ? "(7)" : "{7}";
        std::string given = text;
        given.replace(given.find("{7}"), 3, brace);
        const Content content = parseText(given, client);
        EXPECT_EQ(textOf(content.entries),
                  "f nonuniform <list 1>; b { in { v <list 2>; w 1; l List<label> 2 ( 8 9 ); } } "
                  "s <list 4>; e 0 ( ); m ( 2 ( a b ) ); n 2 3;");
        const std::vector<std::string> expected = {"/f vector 2((",
                                                   std::string("/b/in/v scalar 3") + brace[0] + brace[0],
                                                   "/b/in/l label 2((", "/s  4((", "/e  0(("};
        EXPECT_EQ(client.places, expected);
        const Token& token = content.entries.find("f")->tokens.back();
        EXPECT_EQ(token.text, "vector");
        EXPECT_EQ(token.number, 2);
    }
}

TEST(DictionaryGrammar, StopsAtDamageAndKeepsWhatIsWhole)
{
    expectRead({
        {"a 1;\nb { c 2; d (3", "a 1; b { c 2; } -> case/system/dict, line 2: a bracket is not closed"},
        {"a 1; b { c 2; ", "a 1; b { c 2; } -> case/system/dict, line 1: a \"}\" is missing"},
        {"a 1;\n}\nb 2;", "a 1; -> case/system/dict, line 2: \"}\" where a keyword is expected"},
        {"a 1; b (2}; c 3;", "a 1; -> case/system/dict, line 1: \"}\" closes no bracket"},
        {"a 1; b 2); c 3;", "a 1; -> case/system/dict, line 1: \")\" closes no bracket"},
        {"a 1; b \"x;\n", "a 1; -> case/system/dict, line 2: a string does not end"},
        {"a 1; /* b 2;", "a 1; -> case/system/dict, line 1: a comment does not end"},
        {"a 1; b #{ c", "a 1; -> case/system/dict, line 1: a block of code does not end"},
        {"a 1; b ${c", "a 1; -> case/system/dict, line 1: a macro does not end"},
    });
}
