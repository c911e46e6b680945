// SPDX-License-Identifier: MIT
#include "foamfile/ChunkTranslator.h"
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace {

using Lines = std::vector<std::string>;

/// Runs with a plain file and with a compressed one.
class OFFileLines : public testing::TestWithParam<bool>
{
protected:
    OFFile& opened(const std::string& bytes)
    {
        GetParam() ? m_folder.writeGz("text.gz", bytes) : m_folder.write("text", bytes);
        EXPECT_TRUE(m_file.open(m_folder.str("text")));
        return m_file;
    }
    /// All lines of a file, taken with one of the operations.
    Lines all(const std::string& bytes, bool (OFFile::*take)(char**) const)
    {
        OFFile& file = opened(bytes);
        Lines lines;
        for (char* line = buffer.data(); (file.*take)(&line); line = buffer.data()) {
            lines.emplace_back(line);
        }
        return lines;
    }

    std::vector<char> buffer = std::vector<char>(OFFile::CHUNK_BUFFER_SIZE);
    TempFolder m_folder;
    OFFile m_file{false};
};

} // namespace

INSTANTIATE_TEST_SUITE_P(PlainAndGzip, OFFileLines, testing::Bool());

TEST_P(OFFileLines, StreamLinesKeepLineFeedsAndChunkLinesDropThem)
{
    EXPECT_EQ(all("a\r\n\n b\nlast", &OFFile::getNextLine), (Lines{"a\r\n", "\n", " b\n", "last"}));
    EXPECT_EQ(all("\n\r\na\r\n\n\r\r b\n\nlast", &OFFile::getNextLineUsingChunk), (Lines{"a", " b"}))
        << "a last line without line feed is dropped";
    const std::string text(5000, 'a');
    const Lines pieces = {text.substr(0, 4095), text.substr(0, 905)};
    EXPECT_EQ(all(text + "\nb\n", &OFFile::getNextLineUsingChunk), (Lines{pieces[0], pieces[1], "b"}));
    EXPECT_EQ(all(text + "\n", &OFFile::getNextLine), (Lines{pieces[0], pieces[1] + "\n"}));
}

TEST_P(OFFileLines, ChunksEndAtALineEndAndReportTheirLastIndex)
{
    const std::string most(OFFile::CHUNK_SIZE, 'a');
    // The last line ends with the chunk, just fits the margin of the buffer, or exceeds it. The file ends without one.
    for (const std::size_t more : {std::size_t(0), OFFile::LINE_BUFFER_SIZE - 1, OFFile::LINE_BUFFER_SIZE}) {
        const std::string first = (most + std::string(more, 'b')).replace(most.size() + more - 1, 1, "\n");
        OFFile& file = opened(first + "next");
        char* chunk = buffer.data();
        std::size_t last = 0;
        ASSERT_TRUE(file.getNextChunkOfLines(&chunk, &last));
        EXPECT_EQ(last, first.size() - 1);
        EXPECT_TRUE(chunk == first) << more;
        EXPECT_EQ(chunk == buffer.data(), first.size() < OFFile::CHUNK_BUFFER_SIZE) << more;
        chunk = buffer.data();
        ASSERT_TRUE(file.getNextChunkOfLines(&chunk, &last));
        EXPECT_STREQ(chunk, "next");
        EXPECT_EQ(last, 3U);
        EXPECT_FALSE(file.getNextChunkOfLines(&chunk, &last));
        EXPECT_STREQ(chunk, "");
    }
}

TEST_P(OFFileLines, FindsALineByItsStartWhateverItsLength)
{
    const std::string sought = "internalField " + std::string(9000, '1') + "\n";
    OFFile& file = opened(" internalField no\n" + std::string(4095, 'x') + "internalField no\n" + sought + "end");
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith("internalField", line));
    EXPECT_EQ(line, sought);
    EXPECT_FALSE(file.getNextLineStartingWith("internalField", line));
    EXPECT_TRUE(opened(std::string("a\n\0b\nc d\n", 9)).getNextLineStartingWith("c", line))
        << "past the bytes of a raw list";
}

TEST_P(OFFileLines, ReadingACountLeavesItsBracket)
{
    const std::pair<const char*, const char*> cases[] = {{"12(7", "12|(7"}, {"12\r\n7", "12|\n"},  {"12\n(", "12|("},
                                                         {"(7", "none|7"},  {"12 7", "none|7"},    {"-3", "none|3"},
                                                         {"12", "none|"},   {"4294967303\n", "7|"}};
    for (const auto& [text, expected] : cases) {
        int value = 0;
        const bool isRead = opened(text).readNextInt(&value, '\n');
        char* line = buffer.data();
        const std::string rest = m_file.getNextLine(&line) ? line : "";
        EXPECT_EQ((isRead ? std::to_string(value) : "none") + "|" + rest, expected);
    }
}

TEST_P(OFFileLines, FindsTheNextLineWithACount)
{
    int value = 0;
    EXPECT_TRUE(opened("// * 2 cells * //\n\n7 8\n31(").readNextIntLine(&value));
    EXPECT_EQ(value, 8) << "only a number at the end of a line is a count";
    EXPECT_FALSE(opened("no number 12").readNextIntLine(&value));
    opened("type 3;\n 4\n5x\n\n" + std::string(5000, 'a') + " 1\n6 apples\n7");
    EXPECT_TRUE(m_file.readNextIntLineFromCurrentChunk(&value));
    EXPECT_EQ(value, 6) << "in a chunk the count is at the start of a line";
}

TEST_P(OFFileLines, HandsOutThePendingRestOnce)
{
    opened("a\nb\nc\n");
    char* line = buffer.data();
    EXPECT_FALSE(m_file.getNonTreatedLine(&line)) << "nothing is pending yet";
    EXPECT_TRUE(m_file.getNextLineUsingChunk(&line) && m_file.getNonTreatedLine(&line));
    EXPECT_STREQ(line, "b");
    char* chunk = buffer.data();
    std::size_t last = 5;
    EXPECT_TRUE(m_file.getNextChunkOfLines(&chunk, &last));
    EXPECT_STREQ(chunk, "\nc\n") << "from the end of the line taken last";
    EXPECT_EQ(last, 8U) << "one past the last byte";
    chunk = buffer.data();
    EXPECT_TRUE(m_file.getNonTreatedChunk(&chunk, &last));
    EXPECT_STREQ(chunk, "");
    EXPECT_FALSE(m_file.getNextChunkOfLines(&chunk, &last));
}

TEST_P(OFFileLines, RefusesStreamNumbersThatAreMalformedOrTooLong)
{
    const std::string digits(5000, '1');
    opened("1.5;x;;1e400;" + digits + ";2");
    double real = -1;
    std::vector<double> stream;
    for (int i = 0; i < 6; ++i) {
        stream.push_back(m_file.readNextDouble(&real, ';') ? real : -1);
    }
    EXPECT_EQ(stream, (std::vector<double>{1.5, -1, 0, HUGE_VAL, -1, -1}));
}

// Whatever ends a number, the cursor must not pass the end of the text. "|" marks the cursor.
TEST_P(OFFileLines, ReadingANumberMovesTheCursorPastItsDelimiter)
{
    double real = -1;
    struct Case
    {
        const char* text;
        const char* asLabel;
        const char* asLabelUpToLineEnd;
        const char* asReal;
    };
    const Case cases[] = {{"12)x", "12|x", "12|x", "12|x"},
                          {"12 x", "12|x", "12|x", "12|x"},
                          {"12\n5)x", "12|x", "12|5)x", "12|x"},
                          {"12", "12|", "12|", "12|"},
                          {"12\n5", "none|12\n5", "12|5", "none|12\n5"},
                          {"x)5", "none|x)5", "none|x)5", "none|5"},
                          {"1.5)7", "none|1.5)7", "none|1.5)7", "1|7"},
                          {")7", "none|)7", "none|)7", "none|)7"}};
    for (const Case& c : cases) {
        const auto read = [&](auto take) {
            std::string copy = c.text;
            char* cursor = copy.data();
            const bool isRead = take(&cursor);
            return (isRead ? std::to_string(static_cast<int>(real)) : "none") + "|" + cursor;
        };
        const auto label = [&](bool stopAtLineEnd) {
            return read([&](char** cursor) {
                int value = 0;
                const bool isRead = m_file.readNextBufInt(cursor, &value, ')', stopAtLineEnd);
                real = value;
                return isRead;
            });
        };
        EXPECT_EQ(label(false), c.asLabel);
        EXPECT_EQ(label(true), c.asLabelUpToLineEnd);
        EXPECT_EQ(read([&](char** cursor) { return m_file.readNextBufDouble(cursor, &real, ')'); }), c.asReal);
    }
}

TEST(ChunkTranslator, MarksLinesUpToTheLastTwoBytesOfAChunk)
{
    const std::tuple<std::string, std::size_t, std::vector<int>> cases[] = {
        {"1.0\n2.0\n", 7, {0, 4}}, {"1\n\n", 2, {0}}, {"", 0, {0}}};
    for (auto [text, lastIndex, expected] : cases) {
        tbb::concurrent_vector<int> offsets;
        EXPECT_TRUE(ChunkTranslator().split('\n', text.data(), lastIndex, &offsets));
        EXPECT_EQ(std::vector<int>(offsets.begin(), offsets.end()), expected);
    }
    const std::pair<const char*, double> numbers[] = {{" 1.5)x", 1.5}, {"2.5x", 2.5}, {"0x10 ", 16.0}, {"x", 0.0}};
    for (auto [text, value] : numbers) {
        EXPECT_EQ(ChunkTranslator().readAsDouble(text, ' '), value) << text;
    }
}

// The lines of each chunk are marked first and then translated all at once.
TEST_P(OFFileLines, ReadsAListOverManyChunksInTwoPasses)
{
    std::string items;
    std::vector<double> expected;
    for (int i = 0; i < 60000; ++i) {
        expected.push_back(i + 0.125);
        items.append(std::to_string(i)).append(".125\n");
    }
    ASSERT_GT(items.size(), OFFile::CHUNK_SIZE);
    std::vector<double> values(expected.size());
    EXPECT_TRUE(opened(items + ")\n;\nafter\n").markChunkThenReadChunkStrategy(&values, 1));
    EXPECT_EQ(values, expected);
    char* line = buffer.data();
    EXPECT_TRUE(m_file.getNextLine(&line));
    EXPECT_STREQ(line, "after") << "the rest stays pending";
    values.assign(7, -1);
    EXPECT_TRUE(opened("(1 2 3)\n(4 5 6)\n)\n;\n").markChunkThenReadChunkStrategy(&values, 3));
    EXPECT_EQ(values, (std::vector<double>{1, 1, 1, 4, 4, 4, -1})) << "all components take the first number";
    EXPECT_FALSE(opened("1 2\n").markChunkThenReadChunkStrategy(&values, 2)) << "no such number of components";
    EXPECT_FALSE(opened("8\n9\n").markChunkThenReadChunkStrategy(&values, 1)) << "the file ends within the list";
    EXPECT_EQ(values, (std::vector<double>{8, 9, 1, 4, 4, 4, -1}));
}
