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

using Values = std::vector<double>;

class OFFileVectors : public testing::Test
{
protected:
    bool readPoints(const std::string& bytes, bool hasHeader = true)
    {
        folder.write("points", bytes);
        values.clear();
        return OFFile(hasHeader).readVectorField(folder.str("points"), "points", &values);
    }
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
        isWhole = sequential.readNextVectorFieldAscii(&other);
    }

    const std::string ascii = header("vectorField", "points");
    const std::string binary = header("vectorField", "points", "binary");
    TempFolder folder;
    Values values;
    Values other;
    bool isWhole = false;
};

} // namespace

TEST_F(OFFileVectors, AllFormsGiveTheSame)
{
    // Some six chunks, so that the four workers take a second pass.
    const Values expected = someVectors(30000);
    const std::string text = list(30000, vectors(expected));
    std::string onOneLine = vectors(expected);
    std::replace(onOneLine.begin(), onOneLine.end(), '\n', ' ');
    const std::string raw = binary + rawList(expected, 3) + "\n";
    ASSERT_GT(text.size(), 5 * OFFile::CHUNK_SIZE);
    const LogCapture log;
    for (const std::string& bytes :
         {ascii + text, raw, gzipped(ascii + text), gzipped(raw), ascii + "30000(" + onOneLine + ")\n"}) {
        EXPECT_TRUE(readPoints(bytes));
        EXPECT_EQ(values, expected);
    }
    EXPECT_TRUE(readPoints("\n" + text, false));
    EXPECT_EQ(values, expected);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

TEST_F(OFFileVectors, NoVectorIsLostAtAChunkBorder)
{
    Values expected = someVectors(9000);
    expected[0] = 1.0;
    for (std::size_t shift = 0; shift < 60; ++shift) {
        readByBothDoors("(" + std::string(shift, '0') + vectors(expected).substr(1) + ")\n;\n", expected.size());
        ASSERT_EQ(values, expected) << shift;
        ASSERT_EQ(other, expected) << shift;
        ASSERT_TRUE(isWhole);
    }
}

// The doors differ where a file is not written as it should be: the parallel one takes it as damage.
TEST_F(OFFileVectors, EachDoorHasItsRulesForOddText)
{
    struct Case
    {
        const char* items;
        Values parallel;
        Values sequential;
        bool isWhole;
    };
    const Values both = {1, 2, 3, 4, 5, 6};
    const Values first = {1, 2, 3, 0, 0, 0};
    const Values none(6, 0.0);
    const Values odd = {HUGE_VAL, -HUGE_VAL, 16, 1, 0, .5};
    const Case cases[] = {{"x(1 2 3) y\r\n\n(4 5 6);", both, both, true},
                          {"(1 2 3)\n(4\n 5 6)\n;", both, both, true},
                          {"(1 2 3)\n( 4 5 6)\n;\n", first, both, true},
                          {"(1 2 3 )(4 5 6);\n", none, both, true},
                          {"(1 2 3)\n(4  5 6)\n", first, {1, 2, 3, 4, 0, 0}, false},
                          {"(1 2 3)\n(4 five 6)\n", first, {1, 2, 3, 4, 0, 0}, false},
                          {"(1e400 -inf 0x10)(+1 1e-400 .5)\n;", odd, odd, true},
                          {"(1 2 3)(4 5 6", both, both, true},
                          {"(1 2 3)(4 5", first, {1, 2, 3, 4, 5, 0}, false}};
    for (const Case& c : cases) {
        readByBothDoors(c.items, 6);
        EXPECT_EQ(values, c.parallel) << c.items;
        EXPECT_EQ(other, c.sequential) << c.items;
        EXPECT_EQ(isWhole, c.isWhole) << c.items;
    }
}

TEST_F(OFFileVectors, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const Values many = someVectors(30000);
    const LogCapture log;
    EXPECT_TRUE(readPoints(ascii + list(20, vectors(many))));
    EXPECT_EQ(values, Values(many.begin(), many.begin() + 60));
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    EXPECT_TRUE(readPoints(ascii + "2\n(\n(1 2 3)\n)\n")) << "an ascii list answers true all the same";
    EXPECT_EQ(values, (Values{1, 2, 3, 0, 0, 0}));
    EXPECT_FALSE(readPoints(binary + "2\n(" + raw(Values{1, 2, 3})));
    EXPECT_EQ(values, (Values{1, 2, 3, 0, 0, 0}));
    const std::string told = "OFFile : List is shorter than its count: 2 items promised, 1 found. File is ";
    EXPECT_EQ(log.lines(), std::vector<LogLine>(2, {3, told + folder.str("points").toStdString()}));
}

TEST_F(OFFileVectors, TheSequentialDoorTellsItsChunksAndItsShortage)
{
    const LogCapture log;
    readByBothDoors(vectors(someVectors(9000)) + ")\n;\nrest\n", 27000);
    readByBothDoors("(1 2 3)\n)\n", 6);
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{{4, "OFFile : treated 2 chunks for reading 27000 doubles"},
                                    {1, "OFFile : Failed to read values from file. Read 3 values from 6"}}));
}
