// SPDX-License-Identifier: MIT
#include "DvnCore/Str.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

using dvn::Str;

TEST(StrArg, TheLowestPlaceholderIsFilledWhereverItStands)
{
    EXPECT_EQ(Str("%2 and %1").arg("a").arg("b"), "b and a");
    EXPECT_EQ(Str("%1 %1 %2").arg("x"), "x x %2");
    EXPECT_EQ(Str("%10 %9").arg("nine").arg("ten"), "ten nine") << "two digits are one number";
    EXPECT_EQ(Str("%100").arg("x"), "x0");
    EXPECT_EQ(Str("%0%1").arg("a").arg("b"), "ab");
    EXPECT_EQ(Str("%01%1").arg("x"), "xx");
    for (const char* text : {"", "none", "100%", "%", "% 1", "%%", "%x"}) {
        EXPECT_EQ(Str(text).arg("lost"), text);
    }
    EXPECT_EQ(Str("%%1").arg("x"), "%x");
}

// A path that holds a percent sign and a digit takes the next argument of its message.
TEST(StrArg, InsertedTextIsLookedAtByTheNextCallOnly)
{
    EXPECT_EQ(Str("%1").arg("%1"), "%1");
    EXPECT_EQ(Str("%1 %2").arg("<%1>").arg("a").arg("b"), "<a> b");
    EXPECT_EQ(Str("%1 in %2").arg("50%3").arg("f"), "50%3 in f");
}

TEST(StrArg, PaddingGoesInFrontOrBehind)
{
    EXPECT_EQ(Str("[%1]").arg(42, 5, '0'), "[00042]");
    EXPECT_EQ(Str("[%1]").arg(42, -5, '0'), "[42000]");
    EXPECT_EQ(Str("[%1]").arg("abc", 3), "[abc]");
    EXPECT_EQ(Str("[%1]").arg("abc", 2), "[abc]");
    EXPECT_EQ(Str("[%1]").arg('x', 3), "[  x]");
    EXPECT_EQ(Str("[%1]").arg(-1.5, -6), "[-1.5  ]");
    EXPECT_EQ(Str("%1").arg(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
}

TEST(StrNumber, TimesHaveSixSignificantDigits)
{
    EXPECT_EQ(Str::number(0.12345678), "0.123457");
    EXPECT_EQ(Str::number(1.5e-5), "1.5e-05");
    EXPECT_EQ(Str::number(1234567.0), "1.23457e+06");
    EXPECT_EQ(Str::number(2.0F), "2");
    EXPECT_EQ(Str::number(0.12345678, 'e', 2), "1.23e-01");
    EXPECT_EQ(Str::number(0.12345678, 'E', 2), "1.23E-01");
    EXPECT_EQ(Str::number(2.5, 'f', 3), "2.500");
    EXPECT_EQ(Str::number(1e-10, 'G', 3), "1E-10");
    EXPECT_EQ(Str::number(1234567.5, 'F', 1), "1234567.5");
    EXPECT_EQ(Str::number(-7), "-7");
    EXPECT_EQ(Str::number(4294967295U), "4294967295");
}

TEST(StrNumber, ParsingReportsAndDefaultsAsCallersCount)
{
    bool isNumber = false;
    EXPECT_EQ(Str(" 12abc").toInt(&isNumber), 12);
    EXPECT_TRUE(isNumber);
    EXPECT_EQ(Str("abc").toInt(7), 7);
    EXPECT_EQ(Str("abc").toDouble(&isNumber), 0.0);
    EXPECT_FALSE(isNumber);
    EXPECT_EQ(Str("4294967295").toUInt(), 4294967295U);
    for (const char* text : {"4294967296", "-1", "x", "99999999999999999999"}) {
        EXPECT_EQ(Str(text).toUInt(&isNumber), 0U) << text;
        EXPECT_FALSE(isNumber) << text;
        EXPECT_EQ(Str(text).toUInt(5U), 5U) << text;
    }
}

TEST(StrText, PiecesAreCutAtAnyDelimiterAndEmptyOnesDropped)
{
    EXPECT_EQ(Str("a,,b").split(","), (std::vector<Str>{"a", "b"}));
    EXPECT_EQ(Str("/a\\b/").split("/\\"), (std::vector<Str>{"a", "b"}));
    EXPECT_EQ(Str(",,,").split(","), std::vector<Str>());
    EXPECT_EQ(Str("").split(","), std::vector<Str>());
    EXPECT_EQ(Str("a b").split(""), (std::vector<Str>{"a b"}));
}

TEST(StrText, ReplacementIsNeverSearchedAgain)
{
    const auto replaced = [](Str text, const char* from, const char* to) {
        text.replace(from, to);
        return text;
    };
    EXPECT_EQ(replaced("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replaced("aaaa", "aa", "a"), "aa");
    EXPECT_EQ(replaced("abc", "", "x"), "abc");
    EXPECT_EQ(replaced("abc", "c", ""), "ab");
    EXPECT_EQ(replaced("abc", "d", "x"), "abc");
}

TEST(StrText, WhiteSpaceIsSixCharacters)
{
    EXPECT_EQ(Str(" \t\n\v\f\ra b \t").trimmed(), "a b");
    EXPECT_EQ(Str("  a ").trimmedLeft(), "a ");
    EXPECT_EQ(Str("  a ").trimmedRight(), "  a");
    EXPECT_EQ(Str(" \n ").trimmed(), "");
    EXPECT_EQ(Str(" a \n\t b  ").simplified(), "a b");
    EXPECT_EQ(Str(std::wstring(L"\x00a0x")).trimmed().size(), 2U) << "a no-break space is none";
}

// Paths and names come as bytes of any encoding and must reach the file system as the same bytes.
TEST(StrBytes, BytesBeyondAsciiComeBackAsUtf8AndShowAsQuestionMarks)
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    const Str text(all);
    EXPECT_EQ(text.toUtf8(), all);
    EXPECT_EQ(Str(all.c_str()), text);
    EXPECT_EQ(text.toStdString(), all.substr(0, 127) + std::string(128, '?'));
    EXPECT_EQ(Str("w\xc3\xa4nde").toStdString(), "w??nde");
    const Str wide(std::wstring{254, 255, 0x7ff, 0x800, 0xffff, 0x10000, 0x10ffff});
    EXPECT_EQ(wide.toStdString(), "\xfe??????");
    EXPECT_EQ(wide.toUtf8(), "\xc3\xbe\xc3\xbf\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf");
}

TEST(StrOrder, PrefixesComeFirstAndBytesBeyondAsciiBeforeAll)
{
    EXPECT_LT(Str("a"), Str("ab"));
    EXPECT_LT(Str("B"), Str("a"));
    EXPECT_LT(Str("\xc3"), Str("A")) << "units of such bytes are negative";
    EXPECT_FALSE(Str("a") < Str("a"));
    EXPECT_NE(Str("a"), Str("a "));
}

TEST(StrText, PartsAreFoundFromAPosition)
{
    EXPECT_EQ(Str("abcabc").find("bc"), 1U);
    EXPECT_EQ(Str("abcabc").find("bc", 2), 4U);
    EXPECT_EQ(Str("abc").find("x"), static_cast<std::size_t>(-1));
    EXPECT_TRUE(Str("abc").startsWith("ab") && Str("abc").startsWith(""));
    EXPECT_FALSE(Str("abc").startsWith("bc"));
    EXPECT_EQ(Str("abc").subStr(1, 99), "bc");
    EXPECT_EQ("x" + Str("y") + "z", "xyz");
    EXPECT_EQ(Str("aZ\xc4").toLower().toUtf8(), "az\xc4");
    EXPECT_EQ(Str("aZ\xe4").toUpper().toUtf8(), "AZ\xe4");
}

TEST(StrStorage, CopiesAreTheirOwnAndAMovedFromTextIsEmpty)
{
    Str first("one");
    Str copy = first;
    first += " more";
    EXPECT_EQ(copy, "one");
    const Str taken = std::move(copy);
    EXPECT_EQ(taken, "one");
    EXPECT_EQ(copy.size(), 0U); // NOLINT(bugprone-use-after-move): that it reads as empty is the point
    copy = first;
    copy.swap(first);
    const Str& itself = first;
    first = itself;
    EXPECT_EQ(first, "one more");
}
