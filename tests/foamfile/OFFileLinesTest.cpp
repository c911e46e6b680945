// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using Lines = std::vector<std::string>;

class OFFileLines : public testing::TestWithParam<bool>
{
protected:
    OFFile& opened(const std::string& bytes)
    {
        GetParam() ? m_folder.writeGz("text.gz", bytes) : m_folder.write("text", bytes);
        EXPECT_TRUE(m_file.open(m_folder.str("text")));
        return m_file;
    }
    /// All lines by `take`, as they come.
    template <typename Take>
    static Lines all(const Take& take)
    {
        std::vector<char> buffer(OFFile::LINE_BUFFER_SIZE);
        Lines lines;
        for (char* line = buffer.data(); take(&line); line = buffer.data()) {
            lines.emplace_back(line);
        }
        return lines;
    }
    Lines chunkLines()
    {
        return all([&](char** line) { return m_file.getNextLineUsingChunk(line); });
    }

private:
    TempFolder m_folder;
    OFFile m_file{false};
};

std::string numberedLines(std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "line " + std::to_string(i) + "\n";
    }
    return text;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(PlainAndGzip, OFFileLines, testing::Bool(),
                         [](const auto& info) { return info.param ? "gzip" : "plain"; });

TEST_P(OFFileLines, TheStreamKeepsLineFeedsAndTheChunkDropsThem)
{
    OFFile& file = opened("a\r\n\n b\nlast");
    EXPECT_EQ(all([&](char** line) { return file.getNextLine(line); }), (Lines{"a\r\n", "\n", " b\n", "last"}));
    opened("\n\r\na\r\n\n\r\r b\n\n");
    EXPECT_EQ(chunkLines(), (Lines{"a", " b"}));
    opened("a\nlast");
    EXPECT_EQ(chunkLines(), (Lines{"a"})) << "a cut off value must not pass for a whole one";
}

// Lines that a chunk border separates must come out as if there were none.
TEST_P(OFFileLines, NoLineIsLostAtAChunkBorder)
{
    const std::string body = numberedLines(30000);
    Lines expected;
    for (std::size_t i = 0; i < 30000; ++i) {
        expected.push_back("line " + std::to_string(i));
    }
    for (std::size_t shift = 1; shift < 14; ++shift) {
        OFFile& file = opened(std::string(shift, 'x') + "\n" + body);
        Lines lines = all([&](char** line) {
            const bool isTaken = file.getNextLineUsingChunk(line);
            // Behind a chunk that is used up one line comes from the stream, and keeps its line feed.
            (*line)[std::strcspn(*line, "\n")] = '\0';
            return isTaken;
        });
        ASSERT_EQ(lines.front(), std::string(shift, 'x'));
        lines.erase(lines.begin());
        ASSERT_EQ(lines, expected) << "shift " << shift;
    }
}

TEST_P(OFFileLines, ALineLongerThanTheBufferComesInPieces)
{
    const std::string text(10000, 'a');
    const Lines pieces = {text.substr(0, 4095), text.substr(0, 4095), text.substr(0, 1810)};
    opened(text + "\nb\n");
    EXPECT_EQ(chunkLines(), (Lines{pieces[0], pieces[1], pieces[2], "b"}));
    OFFile& file = opened(text + "\n");
    EXPECT_EQ(all([&](char** line) { return file.getNextLine(line); }), (Lines{pieces[0], pieces[1], pieces[2] + "\n"}));
}

TEST_P(OFFileLines, AChunkEndsAtALineEndAndTellsItsLastIndex)
{
    std::vector<char> buffer(OFFile::CHUNK_BUFFER_SIZE);
    const std::string exact(OFFile::CHUNK_SIZE - 1, 'a');
    const std::string marginLine(OFFile::LINE_BUFFER_SIZE - 2, 'b');
    const std::string longLine(OFFile::LINE_BUFFER_SIZE - 1, 'c');
    struct Case
    {
        std::string text;
        std::size_t length;
    };
    const Case cases[] = {{"1.0\n2.0\n", 8},
                          {"1.0\n2", 5},
                          {exact + "\nnext\n", exact.size() + 1},
                          {exact + "ab\nnext\n", exact.size() + 3},
                          {exact + "a" + marginLine + "\nnext\n", exact.size() + 2 + marginLine.size()},
                          {exact + "a" + longLine + "\nnext\n", exact.size() + 2 + longLine.size()}};
    for (const Case& c : cases) {
        OFFile& file = opened(c.text);
        char* chunk = buffer.data();
        std::size_t last = 0;
        ASSERT_TRUE(file.getNextChunkOfLines(&chunk, &last));
        EXPECT_EQ(last, c.length - 1);
        EXPECT_EQ(std::string(chunk), c.text.substr(0, c.length)) << c.length;
        EXPECT_EQ(chunk == buffer.data(), c.length <= OFFile::CHUNK_BUFFER_SIZE - 1);
        chunk = buffer.data();
        ASSERT_EQ(file.getNextChunkOfLines(&chunk, &last), c.length < c.text.size());
        EXPECT_EQ(std::string(chunk), c.text.substr(c.length));
    }
}

TEST_P(OFFileLines, ThePendingRestComesBeforeTheStream)
{
    const std::string body = numberedLines(40000);
    OFFile& file = opened(body + "(x);\n\n\ny{z\n");
    std::vector<char> buffer(OFFile::LINE_BUFFER_SIZE);
    char* line = buffer.data();
    EXPECT_FALSE(file.getNonTreatedLine(&line)) << "nothing pending, and the stream must not be touched";
    EXPECT_TRUE(file.getNextLineUsingChunk(&line));
    EXPECT_TRUE(file.getNonTreatedLine(&line));
    EXPECT_STREQ(line, "line 1");

    char* chunk = nullptr;
    std::size_t last = 5;
    ASSERT_TRUE(file.getNextChunkOfLines(&chunk, &last));
    EXPECT_EQ(last, 5 + std::strlen(chunk)) << "lands on the NUL for a caller that starts from zero";
    EXPECT_EQ(std::string(chunk), body.substr(std::strlen("line 0\nline 1"), std::strlen(chunk)));
    chunk = line;
    EXPECT_TRUE(file.getNonTreatedChunk(&chunk, &last));
    EXPECT_STREQ(chunk, "");

    EXPECT_TRUE(file.getNextLineUsingChunk(&line));
    EXPECT_TRUE(file.skipAfterNext('(')) << "over the end of the pending chunk, into the stream";
    EXPECT_TRUE(file.skipAfterNext(';'));
    EXPECT_TRUE(file.skipEmptyLines());
    EXPECT_TRUE(file.getNextLine(&line));
    EXPECT_STREQ(line, "y{z\n");
    EXPECT_TRUE(file.skipEmptyLines()) << "the end of the file counts as something that is no line feed";
    EXPECT_FALSE(file.skipAfterNext('('));
}

TEST_P(OFFileLines, LineFeedsAreSkippedInAChunkAsInTheStream)
{
    std::vector<char> buffer(OFFile::LINE_BUFFER_SIZE);
    char* line = buffer.data();
    OFFile& file = opened("a\n\n\n\rb\n\n\n");
    EXPECT_TRUE(file.skipAfterNext('a') && file.skipEmptyLines() && file.getNextLine(&line));
    EXPECT_STREQ(line, "\rb\n") << "only line feeds are skipped";
    EXPECT_FALSE(file.skipEmptyLines()) << "the file ends behind line feeds";
    opened("a\n\n\nb c\n\n\n");
    EXPECT_TRUE(file.getNextLineUsingChunk(&line) && file.skipEmptyLines() && file.skipAfterNext('b'));
    EXPECT_TRUE(file.getNonTreatedLine(&line));
    EXPECT_STREQ(line, " c");
}

TEST_P(OFFileLines, ALineIsFoundByItsStartHoweverLongItIs)
{
    const std::string longLine = "internalField " + std::string(9000, '1') + "\n";
    OFFile& file = opened(" internalField no\n" + std::string(4095, 'x') + "internalField no\n" + longLine + "end");
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith("internalField", line));
    EXPECT_EQ(line, longLine);
    EXPECT_FALSE(file.getNextLineStartingWith("internalField", line));
}
