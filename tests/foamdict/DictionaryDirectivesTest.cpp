// SPDX-License-Identifier: MIT
#include "foamdict/DictionaryText.h"

#include <gtest/gtest.h>

TEST(DictionaryDirectives, InputModesDecideAboutSecondEntries)
{
    expectRead({
        {"a 1; b { c 1; } #inputMode protect\na 2; b { d 2; } e 3;", "a 1; b { c 1; } e 3;"},
        {"a 1; b { c 1; } #inputMode overwrite\na 2; b { d 2; }", "a 2; b { d 2; }"},
        {"b { c 1; } #inputMode overwrite\n#inputMode merge\nb { d 2; }", "b { c 1; d 2; }"},
        {"b { c 1; } #inputMode default\nb { d 2; }", "b { c 1; d 2; }"},
        {"a 1; #inputMode warn\na 2; b 3;", "a 1; b 3;"},
        {"a 1; #inputMode error\nb 2; a 3; c 4;", "a 1; b 2; -> case/system/dict, line 2: a second entry \"a\""},
        {"a 1; #default a 2; #default b 3; a 4;", "a 4; b 3;"},
        {"a { x 1; } #overwrite a { y 2; } #merge a { z 3; }", "a { y 2; z 3; }"},
    });
}

TEST(DictionaryDirectives, RemoveTakesNamesAndExpressions)
{
    expectRead({
        {"a 1; bb 2; bc 3; d { x 1; } #remove a\n#remove (\"b.\" d)\ne 1;", "e 1;"},
        {"a 1; b { a 2; #remove a\nc 3; }", "a 1; b { c 3; }"},
        {"a 1; #remove ; b 2;", "a 1; -> case/system/dict, line 1: #remove without names"},
    });
}

TEST(DictionaryDirectives, ConditionsChooseEntries)
{
    expectRead({
        {"x on; #if $x\na 1;\n#else\na 2;\n#endif\nb 3;", "x on; a 1; b 3;"},
        {"#if off\na { b 1;\n#else\na 2;\n#endif\nb 3;", "a 2; b 3;"},
        {"#if 0\n#if 1\na 1;\n#else\na 2;\n#endif\n#ifeq 1 1\n#else\nd 4;\n#endif\n#else\na 3;\n#if 2\nb "
         "4;\n#endif\n#endif\nc 5;",
         "a 3; b 4; c 5;"},
        {"x (on); #if $x\na 1;\n#else\na 2;\n#endif", "x ( on ); a 2;"},
        {"x \"a b\"; #ifeq $x \"a b\"\na 1;\n#endif\n#ifeq 1 1.0\nb 1;\n#endif\n#ifeq \"${x}\" $x\nc 1;\n#endif",
         "x \"a b\"; a 1; b 1; c 1;"},
        {"#ifeq $none 1\na 1;\n#endif\n#ifeq 1 one\nb 1;\n#endif\nc 1;", "c 1;"},
        {"#if 1\na 1;", "a 1; -> case/system/dict, line 2: an #endif is missing"},
        {"#if 0\na 1;", " -> case/system/dict, line 2: an #endif is missing"},
    });
}

TEST(DictionaryDirectives, ComputedValuesAreSkippedWhole)
{
    expectRead({
        {"a #calc \"1; + }\"; b (#eval{ 2*(3+$x) } 4); c #codeStream { code #{ } ; #}; d { } }; e #calc #{ 5; #}; f 6;",
         "a #calc; b ( #eval 4 ); c #codeStream; e #calc; f 6;"},
        {"#calc \"x\"\na 1; #other b { 2;\nc 3; #includeEtc \"x\" d 4; e { #includeFunc f(p,U) }",
         "a 1; c 3; d 4; e { }"},
        {"a #other; b 1;", "a #other; b 1;"},
    });
}

namespace {

class DictionaryIncludes : public testing::Test
{
protected:
    std::string read(std::string_view text) { return textOf(parseText(text, client).entries); }

    TextClient client;
};

} // namespace

TEST_F(DictionaryIncludes, AddEntriesWhereTheyStand)
{
    client.files = {{"case/system/one", "FoamFile { class x; } i 5; j { k $n; } #inputMode overwrite\n"},
                    {"case/system/sub/two", "#include \"three\"\nl $m;"},
                    {"case/system/sub/three", "m 7;"}};
    EXPECT_EQ(read("n 1; b { #include \"one\"\nv $i; } j { } #include \"sub/two\"\nw $l;"),
              "n 1; b { i 5; j { k 1; } v 5; } j { } m 7; l 7; w 7;");
    EXPECT_TRUE(client.headers.empty());
    EXPECT_TRUE(client.reports.empty());
}

TEST_F(DictionaryIncludes, MayBeValues)
{
    client.files = {{"case/system/list", "( 1 2 )"}, {"case/system/more", "3 4; 5 6;"}};
    EXPECT_EQ(read("a uniform #include \"list\"\n; b #include \"more\" 7; c ( #include \"list\" );"),
              "a uniform ( 1 2 ); b 3 4 7; c ( ( 1 2 ) );");
}

TEST_F(DictionaryIncludes, NameFilesRelativeToTheFileOrTheCase)
{
    read("d sub; f { g file; } #include \"a\"\n#include \"../b\"\n#include \"/c/./d\"\n#include \"$FOAM_CASE/e\"\n"
         "#include \"${FOAM_CASE}/f\"\n#include \"<case>/g\"\n#include \"<system>/h\"\n#include \"<constant>/i\"\n"
         "#include \"$d/${d}_j/$f.g\"\n#includeIfPresent \"k\"\n#sinclude \"l\"\n#include \"$none/m\"\n"
         "#include \"<etc>/n\"\n#include \"~/o\"\n");
    const std::vector<std::string> expected = {"case/system/a", "case/b",          "/c/d",
                                               "case/e",        "case/f",          "case/g",
                                               "case/system/h", "case/constant/i", "case/system/sub/sub_j/file",
                                               "case/system/k", "case/system/l"};
    EXPECT_EQ(client.opened, expected);
    // Only the two that may be missing are not reported.
    EXPECT_EQ(client.reports.size(), 12U);
    EXPECT_EQ(client.reports.front(), "case/system/dict, line 1: cannot open case/system/a");
}

TEST_F(DictionaryIncludes, ThatIncludeThemselvesAreLeftOut)
{
    client.files = {{"case/system/a", "x 1; #include \"b\"\n"},
                    {"case/system/b", "#include \"./a\"\n#include \"../system/dict\"\ny 2;"}};
    EXPECT_EQ(read("#include \"a\"\nz 3;"), "x 1; y 2; z 3;");
    const std::vector<std::string> expected = {"case/system/b, line 1: a file includes itself: ./a",
                                               "case/system/b, line 2: a file includes itself: ../system/dict"};
    EXPECT_EQ(client.reports, expected);
}

TEST_F(DictionaryIncludes, StopTheWholeReadingWhenDamaged)
{
    client.files = {{"case/system/a", "x 1;\ny (2;"}};
    const foamdict::Content content = parseText("b { #include \"a\"\nc 3; }", client);
    EXPECT_EQ(textOf(content.entries), "b { x 1; }");
    EXPECT_EQ(content.problem, "case/system/a, line 2: a bracket is not closed");
}

TEST_F(DictionaryIncludes, HandTheirOwnCharactersToTheReaderOfAList)
{
    struct ListClient : TextClient
    {
        std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
        {
            while (place.chars.peek() != ';') {
                text += static_cast<char>(place.chars.take());
            }
            return 1;
        }
        std::string text;
    };
    ListClient lists;
    lists.files = {{"case/system/a", "f List<scalar> 2(3 4); g 5;"}};
    EXPECT_EQ(textOf(parseText("#include \"a\"\nh 6;", lists).entries), "f <list 1>; g 5; h 6;");
    EXPECT_EQ(lists.text, "(3 4)");
}
