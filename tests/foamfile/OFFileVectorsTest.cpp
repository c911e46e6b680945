// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace foamtext;

namespace {

class OFFileVectors : public testing::Test
{
protected:
    bool readPoints(const std::string& bytes)
    {
        folder.write("points", bytes);
        values.clear();
        return OFFile(true).readVectorField(folder.str("points"), "points", &values);
    }
    static std::string pointsHeader(const std::string& format = "ascii") { return header("vectorField", "points", format); }
    /// Reads a list without count by the parallel and by the sequential door.
    void readByBothDoors(const std::string& items, std::size_t doubles)
    {
        folder.write("items", items);
        OFFile parallel(false);
        OFFile sequential(false);
        EXPECT_TRUE(parallel.open(folder.str("items")) && sequential.open(folder.str("items")));
        values.assign(doubles, 0.0);
        other.assign(doubles, 0.0);
        EXPECT_TRUE(parallel.readNextVectorFieldAsciiPar(&values));
        isWholeBySequence = sequential.readNextVectorFieldAscii(&other);
    }

    TempFolder folder;
    std::vector<double> values;
    std::vector<double> other;
    bool isWholeBySequence = false;
};

} // namespace

TEST_F(OFFileVectors, AsciiBinaryAndGzipGiveTheSame)
{
    // Some six chunks, so that the four workers take a second pass.
    const std::vector<double> expected = someVectors(30000);
    const std::string ascii = pointsHeader() + list(30000, vectors(expected));
    const std::string binary = pointsHeader("binary") + rawList(expected, 3) + "\n";
    ASSERT_GT(ascii.size(), 5 * OFFile::CHUNK_SIZE);
    for (const std::string& text : {ascii, binary, gzipped(ascii), gzipped(binary)}) {
        const LogCapture log;
        EXPECT_TRUE(readPoints(text));
        EXPECT_EQ(values, expected);
        EXPECT_EQ(log.lines(), std::vector<LogLine>());
    }
    folder.write("surface", "\n30000\n(\n" + vectors(expected) + ")\n");
    values.clear();
    EXPECT_TRUE(OFFile(false).readVectorField(folder.str("surface"), "points", &values));
    EXPECT_EQ(values, expected);
}

TEST_F(OFFileVectors, NoVectorIsLostAtAChunkBorder)
{
    std::vector<double> expected = someVectors(9000);
    for (std::size_t shift = 0; shift < 60; shift += shift < 30 ? 1 : 7) {
        expected[0] = 1.0;
        const std::string items = "(" + std::string(shift, '0') + "1" + vectors(expected).substr(2);
        readByBothDoors(items + ")\n;\n", expected.size());
        ASSERT_EQ(values, expected) << shift;
        ASSERT_EQ(other, expected) << shift;
        ASSERT_TRUE(isWholeBySequence);
    }
}

TEST_F(OFFileVectors, AListOnOneLineOfAnyLengthIsRead)
{
    const std::vector<double> expected = someVectors(9000);
    std::string items = vectors(expected);
    std::replace(items.begin(), items.end(), '\n', ' ');
    EXPECT_TRUE(readPoints(pointsHeader() + "9000(" + items + ")\n"));
    EXPECT_EQ(values, expected);
}

// The doors differ where a file is not written as it should be: the parallel one takes it as damage.
TEST_F(OFFileVectors, EachDoorHasItsRulesForOddText)
{
    struct Case
    {
        const char* items;
        std::vector<double> parallel;
        std::vector<double> sequential;
        bool isWhole;
    };
    const Case cases[] = {
        {"(1 2 3)\n(4 5 6)\n);\n", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, true},
        {"x(1 2 3) y (4 5 6);", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3)\n( 4 5 6)\n;\n", {1, 2, 3, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3 )(4 5 6);\n", {0, 0, 0, 0, 0, 0}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3)\n(4\n 5 6)\n;", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3)\r\n(4 5 6)\r\n;\r\n", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3)\n(4  5 6)\n", {1, 2, 3, 0, 0, 0}, {1, 2, 3, 4, 0, 0}, false},
        {"(1 2 3)\n(4 five 6)\n", {1, 2, 3, 0, 0, 0}, {1, 2, 3, 4, 0, 0}, false},
        {"(1e400 -inf 0x10)(+1 1e-400 .5)\n;", {HUGE_VAL, -HUGE_VAL, 16, 1, 0, .5}, {HUGE_VAL, -HUGE_VAL, 16, 1, 0, .5},
         true},
        {"(1 2 3)(4 5 6", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, true},
        {"(1 2 3)(4 5", {1, 2, 3, 0, 0, 0}, {1, 2, 3, 4, 5, 0}, false},
    };
    const LogCapture log;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.items);
        readByBothDoors(c.items, 6);
        EXPECT_EQ(values, c.parallel);
        EXPECT_EQ(other, c.sequential);
        EXPECT_EQ(isWholeBySequence, c.isWhole);
    }
    EXPECT_EQ(log.errors(), std::vector<std::string>());
}

TEST_F(OFFileVectors, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const LogCapture log;
    EXPECT_TRUE(readPoints(pointsHeader() + "1\n(\n(1 2 3)\n(4 5 6)\n)\n"));
    EXPECT_EQ(values, (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    const std::string told = "OFFile : List is shorter than its count: 2 items promised, 1 found. File is " +
                             folder.str("points").toStdString();
    EXPECT_TRUE(readPoints(pointsHeader() + "2\n(\n(1 2 3)\n)\n")) << "an ascii list answers true all the same";
    EXPECT_EQ(values, (std::vector<double>{1, 2, 3, 0, 0, 0}));
    EXPECT_FALSE(readPoints(pointsHeader("binary") + "2\n(" + raw(std::vector<double>{1, 2, 3})));
    EXPECT_EQ(values, (std::vector<double>{1, 2, 3, 0, 0, 0}));
    EXPECT_EQ(log.lines(), (std::vector<LogLine>{{3, told}, {3, told}}));
}

TEST_F(OFFileVectors, ManyMoreVectorsThanPromisedStayWithinTheTarget)
{
    const std::vector<double> many = someVectors(30000);
    EXPECT_TRUE(readPoints(pointsHeader() + list(20, vectors(many))));
    EXPECT_EQ(values, std::vector<double>(many.begin(), many.begin() + 60));
}

TEST_F(OFFileVectors, TheSequentialDoorTellsItsChunksAndItsShortage)
{
    const std::vector<double> expected = someVectors(9000);
    const LogCapture log;
    readByBothDoors(vectors(expected) + ")\n;\nrest\n", expected.size());
    EXPECT_EQ(log.lines(), (std::vector<LogLine>{{4, "OFFile : treated 2 chunks for reading 27000 doubles"}}));
    readByBothDoors("(1 2 3)\n)\n", 6);
    EXPECT_FALSE(isWholeBySequence);
    EXPECT_EQ(log.lines().back(), (LogLine{1, "OFFile : Failed to read values from file. Read 3 values from 6"}));
}
