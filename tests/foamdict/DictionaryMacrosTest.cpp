// SPDX-License-Identifier: MIT
#include "foamdict/DictionaryText.h"

#include <gtest/gtest.h>

TEST(DictionaryMacros, LookInTheOwnBlockThenOutward)
{
    expectRead({
        {"a 1; b { c $a; a 2; d $a; e { f $a; } }", "a 1; b { c 1; a 2; d 2; e { f 2; } }"},
        {"a $b; b 1;", "a $b; b 1;"},
        // A second block of the same name is read before it is merged with the first.
        {"b { c 2; } b { d $c; e $:b.c; }", "b { c 2; d $c; e 2; }"},
        {"a 1; b { ..a $.a; c $..a; d $...a; a 3; e $.a; }", "a 1; b { ..a $.a; c 1; d $...a; a 3; e 3; }"},
    });
}

TEST(DictionaryMacros, NamesMayBeScopedByDotsColonsAndPaths)
{
    expectRead({
        {"b { d { e 1; } } x $b.d.e; c { y $b.d.e; z $:b.d.e; w $^b.d.e; }",
         "b { d { e 1; } } x 1; c { y $b.d.e; z 1; w 1; }"},
        {"a.b 1; x $a.b; c.d { e 2; } y $c.d.e; f.g 3; f.g.h 4; z $f.g.h;",
         "a.b 1; x 1; c.d { e 2; } y 2; f.g 3; f.g.h 4; z 4;"},
        {"a 1; a.b 2; x $a.b;", "a 1; a.b 2; x 1;"},
        {"a 1; b { c 2; d { p $/a; q $../c; r ${../../a}; s $/b; t $../../../a; } } u $b/c; v $b/../a;",
         "a 1; b { c 2; d { p 1; q 2; r 1; s $/b; t $../../../a; } } u 2; v 1;"},
        {"b one; one 5; x ${b}; y ${${b}}; z ${${none}}; w ${one}2;", "b one; one 5; x one; y 5; z ${${none}}; w 5 2;"},
    });
}

TEST(DictionaryMacros, ValuesAreReplacedAtAnyDepth)
{
    expectRead({
        {"a 1 (2); v ($a ($a) [$a] {$a;});", "a 1 ( 2 ); v ( 1 ( 2 ) ( 1 ( 2 ) ) [ 1 ( 2 ) ] { 1 ( 2 ) ; } );"},
        {"a \"$b\"; b $a;", "a \"$b\"; b \"$b\";"},
        {"a; v 1 $a 2;", "a; v 1 2;"},
        {"b { c 1; d { e 2; } } v (3 $b);", "b { c 1; d { e 2; } } v ( 3 c 1 ; d { e 2 ; } );"},
    });
}

TEST(DictionaryMacros, BlocksAreCopied)
{
    expectRead({
        {"b { c 1; d { e 2; } } f $b; g { h $..b }",
         "b { c 1; d { e 2; } } f { c 1; d { e 2; } } g { h { c 1; d { e 2; } } }"},
        {"b { c 1; d { e 2; } } f { $b; c 3; d { g 4; } }", "b { c 1; d { e 2; } } f { c 3; d { e 2; g 4; } }"},
        // The block holds an entry of its own name, which replaces it while it is copied.
        {"b { a 1; b 2; c 3; } $b;", "b 2; a 1; c 3;"},
        {"\"p.*\" { c 1; } q { $px; } r $px;", "\"p.*\" { c 1; } q { c 1; } r $px;"},
        {"k in; $k { x 1; } s \"w.*\"; $s { y 2; } $t { z 3; } n 4; $n;",
         "k in; in { x 1; } s \"w.*\"; \"w.*\" { y 2; } \"$t\" { z 3; } n 4;"},
    });
}

TEST(DictionaryMacros, UnknownNamesAreTokensAndReportedOnce)
{
    TextClient client;
    const foamdict::Content content = parseText("a $x; \nb ($x $x)\n; $y; c $HOME;", client);
    EXPECT_EQ(textOf(content.entries), "a $x; b ( $x $x ); c $HOME;");
    EXPECT_EQ(content.entries.find("a")->tokens.front().kind, foamdict::Token::Kind::Unresolved);
    EXPECT_TRUE(content.isComplete);
    const std::vector<std::string> expected = {
        "case/system/dict, line 1: nothing is named $x", "case/system/dict, line 2: nothing is named $x",
        "case/system/dict, line 3: nothing is named $y", "case/system/dict, line 3: nothing is named $HOME"};
    EXPECT_EQ(client.reports, expected);
}

TEST(DictionaryMacros, CopyTheHandleOfAList)
{
    struct ListClient : TextClient
    {
        std::optional<std::size_t> readList(const foamdict::ListPlace& place) override
        {
            while (place.chars.take() != ')') {
            }
            return 42;
        }
    };
    ListClient client;
    EXPECT_EQ(textOf(parseText("a nonuniform List<scalar> 2(1 2); b $a; c { d uniform $a; }", client).entries),
              "a nonuniform <list 42>; b nonuniform <list 42>; c { d uniform nonuniform <list 42>; }");
}
