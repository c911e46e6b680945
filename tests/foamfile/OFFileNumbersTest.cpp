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
    /// The bytes that have not been read.
    std::string rest()
    {
        std::string bytes;
        for (std::vector<char> line(OFFile::LINE_BUFFER_SIZE);;) {
            char* p = line.data();
            if (!m_file.getNextLine(&p)) {
                return bytes;
            }
            bytes += p;
        }
    }

private:
    TempFolder m_folder;
    OFFile m_file{false};
};

struct BufCase
{
    const char* text;
    char delimiter;
    bool stopAtLineEnd;
    bool isRead;
    double value;
    std::size_t moved;
};

} // namespace

TEST_F(OFFileNumbers, ACountLeavesItsBracketAndNothingElse)
{
    struct Case
    {
        const char* bytes;
        bool isRead;
        int value;
        const char* rest;
    };
    const Case cases[] = {{"12(7", true, 12, "(7"}, {"12\r\n", true, 12, "\n"},  {"12\n(", true, 12, "("},
                          {"(7", false, 0, "7"},    {"12 \n", false, 0, "\n"},   {"-3\n", false, 0, "3\n"},
                          {"\n5\n", false, 0, "5\n"}, {"12", false, 0, ""},       {"", false, 0, ""},
                          {"4294967295\n", true, -1, ""}, {"4294967301\n", true, 5, ""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        int value = 0;
        EXPECT_EQ(opened(c.bytes).readNextInt(&value, '\n'), c.isRead);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(rest(), c.rest);
    }
}

TEST_F(OFFileNumbers, TheCountOfAListIsFoundBehindComments)
{
    int value = 0;
    EXPECT_TRUE(opened("// * 2 cells * //\n\n7 8\n31(").readNextIntLine(&value));
    EXPECT_EQ(value, 8) << "a number in front of a blank is none, the one in front of the line end is";
    EXPECT_TRUE(opened("// 3 of 4\n").readNextIntLine(&value));
    EXPECT_EQ(value, 4);
    EXPECT_FALSE(opened("no number 12").readNextIntLine(&value));
    // A digit run longer than any number is taken as none, and what is left of it may be one.
    EXPECT_FALSE(opened(std::string(4096, '1') + " \n").readNextIntLine(&value));
}

TEST_F(OFFileNumbers, ACountOnALineOfItsOwnMustStartThatLine)
{
    int value = 0;
    OFFile& file = opened("type 3;\n 4\n5x\n\n" + std::string(5000, 'a') + " 1\n6 apples\n7\n8");
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 6);
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 7);
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&value)) << "the stream delivers a last line without line feed";
    EXPECT_EQ(value, 8);
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
    EXPECT_EQ(value, 0.0);
    EXPECT_FALSE(file.readNextDouble(&value, ' ')) << "no delimiter before the end of the file";
}

TEST_F(OFFileNumbers, BufferScannersMoveBehindWhatEndedTheNumber)
{
    const BufCase ints[] = {{"12 7", ' ', false, true, 12, 3},      {"12(7", '(', false, true, 12, 3},
                            {"12\n\n(7", '(', false, true, 12, 5},  {"12\n(7", '(', true, true, 12, 3},
                            {"12\n7", '(', false, false, 0, 0},     {"12x", ' ', false, false, 0, 0},
                            {"-1 ", ' ', false, false, 0, 0},       {" 1", ' ', false, false, 0, 0},
                            {"12", ' ', false, true, 12, 2},        {"12\n3", '\n', false, true, 12, 3}};
    const BufCase doubles[] = {{"1.5 7", ' ', false, true, 1.5, 4},  {"1.5)7", ' ', false, true, 1.5, 4},
                               {"1.5\n2 7", ' ', true, true, 1.5, 6}, {"1.5\n7", ' ', false, false, 0, 0},
                               {"abc 7", ' ', false, false, 0, 4},    {"1.5", ' ', false, true, 1.5, 3},
                               {" 7", ' ', false, false, 0, 0}};
    OFFile& file = opened("");
    for (const BufCase& c : ints) {
        SCOPED_TRACE(c.text);
        std::string text = c.text;
        char* cursor = text.data();
        int value = 0;
        EXPECT_EQ(file.readNextBufInt(&cursor, &value, c.delimiter, c.stopAtLineEnd), c.isRead);
        EXPECT_EQ(value, static_cast<int>(c.value));
        EXPECT_EQ(static_cast<std::size_t>(cursor - text.data()), c.moved);
    }
    for (const BufCase& c : doubles) {
        SCOPED_TRACE(c.text);
        std::string text = c.text;
        char* cursor = text.data();
        double value = 0.0;
        EXPECT_EQ(file.readNextBufDouble(&cursor, &value, c.delimiter), c.isRead);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(static_cast<std::size_t>(cursor - text.data()), c.moved);
    }
}
