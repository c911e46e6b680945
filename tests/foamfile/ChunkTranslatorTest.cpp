// SPDX-License-Identifier: MIT
#include "foamfile/ChunkTranslator.h"
#include "foamfile/OFFile.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

std::vector<int> lineStarts(std::string text, std::size_t lastIndex)
{
    tbb::concurrent_vector<int> offsets;
    EXPECT_TRUE(ChunkTranslator().split('\n', text.data(), lastIndex, &offsets));
    return {offsets.begin(), offsets.end()};
}

class TwoPasses : public testing::Test
{
protected:
    bool read(const std::string& bytes, std::size_t doubles, int components)
    {
        folder.write("list", bytes);
        EXPECT_TRUE(file.open(folder.str("list")));
        values.assign(doubles, -1.0);
        return file.markChunkThenReadChunkStrategy(&values, components);
    }
    std::string nextLine()
    {
        std::string buffer(OFFile::LINE_BUFFER_SIZE, '\0');
        char* line = buffer.data();
        return file.getNextLine(&line) ? line : "nothing";
    }

    TempFolder folder;
    OFFile file{false};
    std::vector<double> values;
};

} // namespace

TEST(ChunkTranslator, LinesOfAChunkAreMarkedUpToItsLastTwoBytes)
{
    EXPECT_EQ(lineStarts("1.0\n2.0\n", 7), (std::vector<int>{0, 4}));
    EXPECT_EQ(lineStarts("1\n\n", 2), (std::vector<int>{0}));
    EXPECT_EQ(lineStarts("", 0), (std::vector<int>{0})) << "the range must not run past an empty text";
    const std::pair<const char*, double> cases[] = {{" 1.5)x", 1.5}, {"2.5x", 2.5}, {"0x10 ", 16.0}, {"x", 0.0}};
    for (const auto& [text, value] : cases) {
        const char* cursor = text;
        EXPECT_EQ(ChunkTranslator().readAsDouble(cursor, ' '), value) << text;
        EXPECT_EQ(cursor, text);
    }
}

// Against the values that were written, over many chunks whose lines are marked in any order.
TEST_F(TwoPasses, AListOverManyChunksIsReadAndItsRestStaysPending)
{
    std::string items;
    std::vector<double> expected;
    for (int i = 0; i < 60000; ++i) {
        expected.push_back(i / 8.0);
        items.append(std::to_string(i / 8.0)).append("\n");
    }
    ASSERT_GT(items.size(), OFFile::CHUNK_SIZE);
    EXPECT_TRUE(read(items + ")\n;\nbehind\n", expected.size(), 1));
    EXPECT_EQ(values, expected);
    EXPECT_EQ(nextLine(), "behind");
    EXPECT_TRUE(read("(1 2 3)\n(4 5 6)\n)\n;\n", 7, 3));
    EXPECT_EQ(values, (std::vector<double>{1, 1, 1, 4, 4, 4, -1})) << "all components take the first number";
    EXPECT_FALSE(read("1 2\n", 2, 2)) << "no such number of components";
}

TEST_F(TwoPasses, EndsOfFilesAndChunksEndTheRunAsWell)
{
    EXPECT_FALSE(read("1\n2\n", 3, 1)) << "the file ends in the middle of the list";
    EXPECT_EQ(values, (std::vector<double>{1, 2, -1}));
    EXPECT_TRUE(read(std::string(OFFile::CHUNK_SIZE - 1, ' ') + "\n)\n;\nnext\n", 1, 1));
    EXPECT_EQ(nextLine(), ")\n") << "the last line of the list is the last of the chunk: nothing stays pending";
    folder.write("list", "5\n");
    std::vector<int> label(1);
    EXPECT_TRUE(file.open(folder.str("list")) && file.readNextLabelListAscii(&label));
    EXPECT_FALSE(file.markChunkThenReadChunkStrategy(&values, 1)) << "an empty rest is no line";
}
