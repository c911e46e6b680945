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

    TempFolder folder;
    OFFile file{false};
};

} // namespace

TEST_F(OFFileNumbers, ACountLeavesItsBracketAndNothingElse)
{
    const std::pair<const char*, const char*> cases[] = {{"12(7", "12|(7"}, {"12\r\n7", "12|\n"},  {"12\n(", "12|("},
                                                         {"(7", "none|7"},  {"12 7", "none|7"},    {"-3", "none|3"},
                                                         {"12", "none|"},   {"4294967303\n", "7|"}};
    for (const auto& [text, expected] : cases) {
        int value = 0;
        const bool isRead = opened(text).readNextInt(&value, '\n');
        std::string buffer(OFFile::LINE_BUFFER_SIZE, '\0');
        char* line = buffer.data();
        const std::string rest = file.getNextLine(&line) ? line : "";
        EXPECT_EQ((isRead ? std::to_string(value) : "none") + "|" + rest, expected);
    }
}

TEST_F(OFFileNumbers, TheCountOfAListIsFoundBehindComments)
{
    int value = 0;
    EXPECT_TRUE(opened("// * 2 cells * //\n\n7 8\n31(").readNextIntLine(&value));
    EXPECT_EQ(value, 8) << "a number in front of a blank is none, the one in front of the line end is";
    EXPECT_FALSE(opened("no number 12").readNextIntLine(&value));
    opened("type 3;\n 4\n5x\n\n" + std::string(5000, 'a') + " 1\n6 apples\n7");
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 6) << "here it stands at the start of a line";
    double number = -1.0;
    EXPECT_TRUE(opened("2.5 1.5x 3").readNextDouble(&number, ' '));
    EXPECT_EQ(number, 2.5);
    EXPECT_FALSE(file.readNextDouble(&number, ' ')) << "not all of it is a number";
}

TEST_F(OFFileNumbers, BufferScannersMoveBehindWhatEndedTheNumberButNeverBehindTheNul)
{
    struct Case
    {
        std::string text;
        char delimiter;
        bool stopAtLineEnd;
        const char* expected;
    };
    for (Case c : {Case{"12\n\n(7", '(', false, "12|7"},
                   {"12\n(7", '(', true, "12|(7"},
                   {"12\n7", '(', false, "none|12\n7"},
                   {"12x", ' ', false, "none|12x"},
                   {"12", ' ', false, "12|"}}) {
        char* cursor = c.text.data();
        int value = 0;
        const bool isRead = file.readNextBufInt(&cursor, &value, c.delimiter, c.stopAtLineEnd);
        EXPECT_EQ((isRead ? std::to_string(value) : "none") + "|" + cursor, c.expected);
    }
}
