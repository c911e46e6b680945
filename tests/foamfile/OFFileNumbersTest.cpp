// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

/// A file without header that holds just these bytes.
class OFFileNumbers : public testing::Test
{
protected:
    OFFile& opened(const std::string& bytes)
    {
        m_folder.write("numbers", bytes);
        EXPECT_TRUE(m_file.open(m_folder.str("numbers")));
        return m_file;
    }
    std::string nextLine()
    {
        std::string buffer(OFFile::LINE_BUFFER_SIZE, '\0');
        char* line = buffer.data();
        return m_file.getNextLine(&line) ? line : "";
    }

private:
    TempFolder m_folder;
    OFFile m_file{false};
};

/// A text, a delimiter, what is read up to it (none: `NOTHING`), and how far the cursor moves.
struct BufferCase
{
    std::string text;
    char delimiter;
    double value;
    std::size_t moved;
    bool stopAtLineEnd = false;
};

constexpr double NOTHING = -1.0;

} // namespace

TEST_F(OFFileNumbers, ACountLeavesItsBracketAndNothingElse)
{
    struct Case
    {
        const char* bytes;
        int value;
        const char* rest;
    };
    const Case cases[] = {{"12(7", 12, "(7"}, {"12\r\n7", 12, "\n"},  {"12\n(", 12, "("}, {"(7", -1, "7"},
                          {"12 7", -1, "7"},  {"-3", -1, "3"},        {"\n5", -1, "5"},   {"12", -1, ""},
                          {"", -1, ""},       {"4294967303\n", 7, ""}};
    for (const Case& c : cases) {
        int value = -1;
        EXPECT_EQ(opened(c.bytes).readNextInt(&value, '\n'), c.value >= 0) << c.bytes;
        EXPECT_EQ(value, c.value) << c.bytes;
        EXPECT_EQ(nextLine(), c.rest) << c.bytes;
    }
}

TEST_F(OFFileNumbers, TheCountOfAListIsFoundBehindComments)
{
    int value = 0;
    EXPECT_TRUE(opened("// * 2 cells * //\n\n7 8\n31(").readNextIntLine(&value));
    EXPECT_EQ(value, 8) << "a number in front of a blank is none, the one in front of the line end is";
    EXPECT_FALSE(opened("no number 12").readNextIntLine(&value));
    EXPECT_FALSE(opened(std::string(4096, '1') + " \n").readNextIntLine(&value)) << "longer than any number";
}

TEST_F(OFFileNumbers, ACountOnALineOfItsOwnMustStartThatLine)
{
    int value = 0;
    OFFile& file = opened("type 3;\n 4\n5x\n\n" + std::string(5000, 'a') + " 1\n6 apples\n7");
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 6);
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value)) << "the stream delivers a last line without line feed";
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(file.readNextIntLineFromCurrentChunk(&value));
}

TEST_F(OFFileNumbers, ADoubleIsTheWholeTextUpToItsDelimiter)
{
    double value = -1.0;
    OFFile& file = opened("2.5 1.5x " + std::string(5000, '0') + " 3");
    EXPECT_TRUE(file.readNextDouble(&value, ' '));
    EXPECT_EQ(value, 2.5);
    EXPECT_FALSE(file.readNextDouble(&value, ' '));
    EXPECT_FALSE(file.readNextDouble(&value, ' ')) << "longer than any number";
    EXPECT_FALSE(file.readNextDouble(&value, ' ')) << "no delimiter before the end of the file";
}

TEST_F(OFFileNumbers, BufferScannersMoveBehindWhatEndedTheNumberButNeverBehindTheNul)
{
    const BufferCase ints[] = {{"12 7", ' ', 12, 3},        {"12(7", '(', 12, 3},     {"12\n\n(7", '(', 12, 5},
                               {"12\n7", '(', NOTHING, 0},  {"12x", ' ', NOTHING, 0}, {"-1 ", ' ', NOTHING, 0},
                               {" 1", ' ', NOTHING, 0},     {"12", ' ', 12, 2},       {"12\n3", '\n', 12, 3},
                               {"12\n(7", '(', 12, 3, true}};
    const BufferCase doubles[] = {{"1.5 7", ' ', 1.5, 4},      {"1.5)7", ' ', 1.5, 4}, {"1.5\n2 7", ' ', 1.5, 6},
                                  {"1.5\n7", ' ', NOTHING, 0}, {"x7 7", ' ', 0, 3},    {"1.5", ' ', 1.5, 3},
                                  {" 7", ' ', NOTHING, 0}};
    OFFile& file = opened("");
    for (BufferCase c : ints) {
        char* cursor = c.text.data();
        int value = static_cast<int>(NOTHING);
        EXPECT_EQ(file.readNextBufInt(&cursor, &value, c.delimiter, c.stopAtLineEnd), c.value != NOTHING) << c.text;
        EXPECT_EQ(value, static_cast<int>(c.value)) << c.text;
        EXPECT_EQ(static_cast<std::size_t>(cursor - c.text.data()), c.moved) << c.text;
    }
    for (BufferCase c : doubles) {
        char* cursor = c.text.data();
        double value = NOTHING;
        EXPECT_EQ(file.readNextBufDouble(&cursor, &value, c.delimiter), c.value > 0) << c.text;
        EXPECT_EQ(value, c.value) << c.text;
        EXPECT_EQ(static_cast<std::size_t>(cursor - c.text.data()), c.moved) << c.text;
    }
}
