// SPDX-License-Identifier: MIT
#include "DvnCore/Str.h"

#include <gtest/gtest.h>

#include <limits>

using dvn::Str;

// A percent sign and a digit in a path use up the next argument of the message.
TEST(Str, ArgumentsFillTheLowestPlaceholderOfTheCurrentText)
{
    EXPECT_EQ(Str("%2 and %1 %1").arg("a").arg("b"), "b and a a");
    EXPECT_EQ(Str("%0 %1").arg("first").arg("second"), "first second");
    EXPECT_EQ(Str("%10 %9").arg("nine").arg("ten"), "ten nine");
    EXPECT_EQ(Str("%100").arg("x") + Str("%01%1").arg("x"), "x0xx");
    EXPECT_EQ(Str("100% % 1 %% %x %").arg("lost"), "100% % 1 %% %x %");
    EXPECT_EQ(Str("%1 %2").arg("<%1>").arg("a").arg("b"), "<a> b");
    EXPECT_EQ(Str("[%1]").arg(42, 5, '0'), "[00042]");
    EXPECT_EQ(Str("[%1]").arg(-1.5, -6), "[-1.5  ]");
}

TEST(Str, NumbersHaveSixSignificantDigitsByDefault)
{
    EXPECT_EQ(Str::number(0.12345678), "0.123457");
    EXPECT_EQ(Str::number(1234567.0), "1.23457e+06");
    EXPECT_EQ(Str::number(2.5, 'f', 3), "2.500");
    EXPECT_EQ(Str("%1").arg(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(Str("%1 %2 %3 %4 %5").arg(-1LL).arg(2U).arg(3UL).arg('c').arg(0.5F, 0, 'e', 1), "-1 2 3 c 5.0e-01");
    EXPECT_EQ(Str::number(-7) + Str::number(7U) + Str::number(0.25F), Str(L"-770.25"));
    EXPECT_EQ(Str("0.5x").toFloat(2.0F) + Str("x").toFloat(2.0F), 2.5F);
    EXPECT_NE(Str('a'), Str("b"));
}

TEST(Str, ParsingReportsFailureAndReturnsTheDefault)
{
    bool isNumber = false;
    EXPECT_EQ(Str(" 12abc").toInt(&isNumber), 12);
    EXPECT_TRUE(isNumber);
    EXPECT_EQ(Str("abc").toInt(7), 7);
    EXPECT_EQ(Str("abc").toDouble(&isNumber), 0.0);
    EXPECT_FALSE(isNumber);
    EXPECT_EQ(Str("4294967295").toUInt(), 4294967295U);
    for (const char* text : {"4294967296", "-1", "x"}) {
        EXPECT_EQ(Str(text).toUInt(5U), 5U) << text;
    }
}

TEST(Str, SplitsAndReplacesInOnePass)
{
    EXPECT_EQ(Str("/a\\\\b/").split("/\\"), (std::vector<Str>{"a", "b"})) << "at any delimiter, without empty pieces";
    EXPECT_EQ(Str("a b").split(""), std::vector<Str>{"a b"});
    Str text("aaaa");
    text.replace("aa", "a");
    EXPECT_EQ(text, "aa") << "inserted text is not searched again";
    text.replace("", "x");
    text.replace("a", "aa");
    EXPECT_EQ(text, "aaaa");
    EXPECT_EQ(Str("abcabc").find("bc", 2), 4U);
    EXPECT_TRUE(Str("abc").startsWith("ab") && Str("abc").startsWith("") && !Str("abc").startsWith("bc"));
    EXPECT_EQ(Str("abc").subStr(1, 99), "bc");
}

TEST(Str, WhiteSpaceIsSixCharacters)
{
    EXPECT_EQ(Str(" \t\n\v\f\ra b \t").trimmed(), "a b");
    EXPECT_EQ("|" + Str("  a ").trimmedLeft() + "|" + Str("  a ").trimmedRight() + "|", "|a |  a|");
    EXPECT_EQ(Str(" a \n\t b  ").simplified() + Str(" \n ").trimmed(), "a b");
}

// Paths and names are bytes in any encoding and must reach the file system unchanged.
TEST(Str, NonAsciiBytesSurviveUtf8AndPrintAsQuestionMarks)
{
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    const Str text(all);
    EXPECT_EQ(text.toUtf8(), all);
    EXPECT_EQ(text.toStdString(), all.substr(0, 127) + std::string(128, '?'));
    const Str wide(std::wstring{254, 255, 0x7ff, 0x800, 0xffff, 0x10000, 0x10ffff});
    EXPECT_EQ(wide.toStdString(), "\xfe??????");
    EXPECT_EQ(wide.toUtf8(), "\xc3\xbe\xc3\xbf\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf");
    EXPECT_EQ(Str("aZ\xc4").toLower().toUtf8() + Str("aZ\xe4").toUpper().toUtf8(), "az\xc4"
                                                                                   "AZ\xe4");
}

TEST(Str, PrefixesSortFirstAndNonAsciiBytesBeforeAll)
{
    EXPECT_LT(Str("a"), Str("ab"));
    EXPECT_LT(Str("B"), Str("a"));
    EXPECT_LT(Str("\xc3"), Str("A")) << "such bytes become negative units";
    EXPECT_FALSE(Str("a") < Str("a"));
}
