// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

class OFFileNumbers : public testing::Test
{
protected:
    OFFile& opened(const std::string& bytes)
    {
        folder.write("numbers", bytes);
        EXPECT_TRUE(file.open(folder.str("numbers")));
        return file;
    }
    /// What is read as a count, or "none", and the bytes that stay.
    std::string countAndRest(const std::string& bytes)
    {
        int value = 0;
        const bool isRead = opened(bytes).readNextInt(&value, '\n');
        std::string buffer(OFFile::LINE_BUFFER_SIZE, '\0');
        char* line = buffer.data();
        return (isRead ? std::to_string(value) : "none") + "|" + (file.getNextLine(&line) ? line : "");
    }
    /// What the scanners of buffers read, or "none", and what the cursor stands on.
    std::string intAndRest(std::string text, char delimiter, bool stopAtLineEnd = false)
    {
        char* cursor = text.data();
        int value = 0;
        const bool isRead = file.readNextBufInt(&cursor, &value, delimiter, stopAtLineEnd);
        return (isRead ? std::to_string(value) : "none") + "|" + cursor;
    }
    std::string doubleAndRest(std::string text, char delimiter)
    {
        char* cursor = text.data();
        double value = 0.0;
        const bool isRead = file.readNextBufDouble(&cursor, &value, delimiter);
        return (isRead ? dvn::Str::number(value).toUtf8() : "none") + "|" + cursor;
    }

    TempFolder folder;
    OFFile file{false};
};

} // namespace

TEST_F(OFFileNumbers, ACountLeavesItsBracketAndNothingElse)
{
    EXPECT_EQ(countAndRest("12(7"), "12|(7");
    EXPECT_EQ(countAndRest("12\r\n7"), "12|\n");
    EXPECT_EQ(countAndRest("12\n("), "12|(");
    EXPECT_EQ(countAndRest("(7"), "none|7");
    EXPECT_EQ(countAndRest("12 7"), "none|7");
    EXPECT_EQ(countAndRest("-3"), "none|3");
    EXPECT_EQ(countAndRest("12"), "none|");
    EXPECT_EQ(countAndRest("4294967303\n"), "7|");
}

TEST_F(OFFileNumbers, TheCountOfAListIsFoundBehindComments)
{
    int value = 0;
    EXPECT_TRUE(opened("// * 2 cells * //\n\n7 8\n31(").readNextIntLine(&value));
    EXPECT_EQ(value, 8) << "a number in front of a blank is none, the one in front of the line end is";
    EXPECT_FALSE(opened("no number 12").readNextIntLine(&value));
    EXPECT_FALSE(opened(std::string(4096, '1') + " \n").readNextIntLine(&value)) << "longer than any number";
    opened("type 3;\n 4\n5x\n\n" + std::string(5000, 'a') + " 1\n6 apples\n7");
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 6) << "here it stands at the start of a line";
}

TEST_F(OFFileNumbers, ADoubleIsTheWholeTextUpToItsDelimiter)
{
    double value = -1.0;
    opened("2.5 1.5x " + std::string(5000, '0') + " 3");
    EXPECT_TRUE(file.readNextDouble(&value, ' '));
    EXPECT_EQ(value, 2.5);
    EXPECT_FALSE(file.readNextDouble(&value, ' '));
    EXPECT_FALSE(file.readNextDouble(&value, ' ')) << "longer than any number";
    EXPECT_FALSE(file.readNextDouble(&value, ' ')) << "no delimiter before the end of the file";
}

TEST_F(OFFileNumbers, BufferScannersMoveBehindWhatEndedTheNumberButNeverBehindTheNul)
{
    EXPECT_EQ(intAndRest("12 7", ' '), "12|7");
    EXPECT_EQ(intAndRest("12\n\n(7", '('), "12|7");
    EXPECT_EQ(intAndRest("12\n(7", '(', true), "12|(7");
    EXPECT_EQ(intAndRest("12\n7", '('), "none|12\n7");
    EXPECT_EQ(intAndRest("12x", ' '), "none|12x");
    EXPECT_EQ(intAndRest(" 1", ' '), "none| 1");
    EXPECT_EQ(intAndRest("12", ' '), "12|");
    EXPECT_EQ(doubleAndRest("1.5 7", ' '), "1.5|7");
    EXPECT_EQ(doubleAndRest("1.5)7", ' '), "1.5|7");
    EXPECT_EQ(doubleAndRest("1.5\n2 7", ' '), "1.5|7");
    EXPECT_EQ(doubleAndRest("1.5\n7", ' '), "none|1.5\n7");
    EXPECT_EQ(doubleAndRest("x7 7", ' '), "none|7");
    EXPECT_EQ(doubleAndRest("1.5", ' '), "1.5|");
}
