// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

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
    /// All lines of a file by one of the operations, as they come.
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

private:
    TempFolder m_folder;
    OFFile m_file{false};
};

std::string numberedLines(std::size_t count)
{
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text.append("line ").append(std::to_string(i)).append("\n");
    }
    return text;
}

} // namespace

INSTANTIATE_TEST_SUITE_P(PlainAndGzip, OFFileLines, testing::Bool());

TEST_P(OFFileLines, TheStreamKeepsLineFeedsAndTheChunkDropsThem)
{
    EXPECT_EQ(all("a\r\n\n b\nlast", &OFFile::getNextLine), (Lines{"a\r\n", "\n", " b\n", "last"}));
    EXPECT_EQ(all("\n\r\na\r\n\n\r\r b\n\nlast", &OFFile::getNextLineUsingChunk), (Lines{"a", " b"}))
        << "a cut off value is no whole one";
    const std::string text(5000, 'a');
    const Lines pieces = {text.substr(0, 4095), text.substr(0, 905)};
    EXPECT_EQ(all(text + "\nb\n", &OFFile::getNextLineUsingChunk), (Lines{pieces[0], pieces[1], "b"}));
    EXPECT_EQ(all(text + "\n", &OFFile::getNextLine), (Lines{pieces[0], pieces[1] + "\n"}));
}

TEST_P(OFFileLines, NoLineIsLostAtAChunkBorder)
{
    const std::string body = numberedLines(30000);
    for (std::size_t shift = 1; shift < 14; ++shift) {
        const std::string text = std::string(shift, 'x') + "\n" + body;
        std::string joined;
        for (const std::string& line : all(text, &OFFile::getNextLineUsingChunk)) {
            // Behind a chunk that is used up one line comes from the stream, and keeps its line feed.
            joined.append(line, 0, line.find('\n')).append("\n");
        }
        ASSERT_EQ(joined, text) << shift;
    }
}

TEST_P(OFFileLines, AChunkEndsAtALineEndAndTellsItsLastIndex)
{
    const std::string most(OFFile::CHUNK_SIZE, 'a');
    // The last line ends with the chunk, fits the margin of the buffer, fits it no more; the file ends without one.
    for (const std::size_t more : {std::size_t(0), OFFile::LINE_BUFFER_SIZE - 2, OFFile::LINE_BUFFER_SIZE - 1}) {
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

TEST_P(OFFileLines, ThePendingRestComesBeforeTheStream)
{
    const std::string body = numberedLines(60000);
    OFFile& file = opened(body + "(x);\n\n\ny{z\n");
    char* line = buffer.data();
    EXPECT_FALSE(file.getNonTreatedLine(&line)) << "nothing pending, and the stream must not be touched";
    EXPECT_TRUE(file.getNextLineUsingChunk(&line) && file.getNonTreatedLine(&line));
    EXPECT_STREQ(line, "line 1");
    char* chunk = nullptr;
    std::size_t last = 5;
    ASSERT_TRUE(file.getNextChunkOfLines(&chunk, &last));
    EXPECT_EQ(last, 5 + std::strlen(chunk)) << "lands on the NUL for a caller that starts from zero";
    EXPECT_TRUE(chunk == body.substr(std::strlen("line 0\nline 1"), std::strlen(chunk)));
    EXPECT_TRUE(file.getNextLineUsingChunk(&line));
    EXPECT_TRUE(file.skipAfterNext('(')) << "over the end of the pending chunk, into the stream";
    EXPECT_TRUE(file.skipAfterNext(';') && file.skipEmptyLines() && file.getNextLine(&line));
    EXPECT_STREQ(line, "y{z\n");
    EXPECT_TRUE(file.skipEmptyLines()) << "the end of the file counts as something that is no line feed";
    EXPECT_FALSE(file.skipAfterNext('('));
}

TEST_P(OFFileLines, ALineIsFoundByItsStartHoweverLongItIs)
{
    const std::string sought = "internalField " + std::string(9000, '1') + "\n";
    OFFile& file = opened(" internalField no\n" + std::string(4095, 'x') + "internalField no\n" + sought + "end");
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith("internalField", line));
    EXPECT_EQ(line, sought);
    EXPECT_FALSE(file.getNextLineStartingWith("internalField", line));
    EXPECT_TRUE(opened(std::string("a\n\0b\nc d\n", 9)).getNextLineStartingWith("c", line)) << "behind a raw list";
}
