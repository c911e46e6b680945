// SPDX-License-Identifier: MIT
#include "foamfile/TextSource.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

/// Lines of many lengths, over several chunks; one ends exactly with the bytes of the first chunk.
std::string manyLines()
{
    std::string text(TextSource::CHUNK_SIZE - 1, 'x');
    text += '\n';
    for (std::size_t i = 0; text.size() < 4 * TextSource::CHUNK_SIZE; ++i) {
        text += std::string(i % 977, 'y') + '\n';
    }
    return text;
}

std::vector<std::string> chunksOf(TextSource& text)
{
    std::vector<std::string> chunks;
    for (TextSource::Chunk chunk; text.nextChunk(&chunk);) {
        chunks.emplace_back(chunk.begin, chunk.end);
    }
    return chunks;
}

} // namespace

// Readers that look ahead must leave the stream as if chunk after chunk had been taken: log lines count the chunks, and
// the rest of the last one decides what is read from where.
TEST(TextSource, LookingAheadTakesTheSameChunks)
{
    const TempFolder folder;
    const std::string all = manyLines();
    folder.write("text", all);
    TextSource text;
    ASSERT_TRUE(text.open(folder.str("text")));
    const std::vector<std::string> chunks = chunksOf(text);
    ASSERT_GT(chunks.size(), 3U);
    for (std::size_t size = 1000; size < all.size() + 5000; size += 99991) {
        ASSERT_TRUE(text.open(folder.str("text")));
        const std::string_view lines = text.peekLines(size);
        EXPECT_EQ(lines, all.substr(0, lines.size()));
        EXPECT_TRUE(lines.empty() || lines.back() == '\n');
        text.stage(size / 2);
        std::size_t bytes = 0;
        const int taken = text.takeChunks(lines, lines.size(), &bytes);
        std::string rest;
        const std::vector<std::string> others = chunksOf(text);
        for (const std::string& chunk : others) {
            rest += chunk;
        }
        EXPECT_EQ(bytes + rest.size(), all.size()) << size;
        EXPECT_EQ(others, std::vector<std::string>(chunks.begin() + taken, chunks.end())) << size;
    }
}

TEST(TextSource, SingleReadsGoThroughTextThatWasLookedAt)
{
    const TempFolder folder;
    folder.write("text", "12(ab\n\n7 // seven\ncd)ef\nlast\n");
    TextSource text;
    ASSERT_TRUE(text.open(folder.str("text")));
    EXPECT_EQ(text.peekLines(8), "12(ab\n\n");
    text.stage(4);
    int number = 0;
    EXPECT_TRUE(text.readCount(&number));
    EXPECT_EQ(number, 12);
    EXPECT_TRUE(text.skipPast('b'));
    EXPECT_TRUE(text.readCount(&number));
    EXPECT_EQ(number, 7);
    std::string raw(2, ' ');
    EXPECT_EQ(text.readRaw(raw.data(), 1, 2), 2U);
    EXPECT_EQ(raw, "cd");
    EXPECT_TRUE(text.takeByte(')'));
    EXPECT_FALSE(text.takeByte('x'));
    std::string_view line;
    EXPECT_TRUE(text.takeLine(&line));
    EXPECT_EQ(line, "ef\n");
    EXPECT_TRUE(text.skipPast('t'));
    EXPECT_FALSE(text.skipPast('t'));
}
