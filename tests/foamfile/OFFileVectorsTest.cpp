// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace foamtext;

namespace {

using Values = std::vector<double>;

class OFFileVectors : public testing::Test
{
protected:
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

    TempFolder folder;
    Values values;
    Values other;
    bool isWhole = false;
};

} // namespace

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
    const Values odd = {HUGE_VAL, -HUGE_VAL, 16, 1, 0, .5};
    const Case cases[] = {{"x(1 2 3) y\r\n\n(4 5 6);", both, both, true},
                          {"(1 2 3)\n(4\n 5 6)\n;", both, both, true},
                          {"(1 2 3)\n( 4 5 6)\n;\n", first, both, true},
                          {"(1 2 3)\n(4 five 6)\n", first, {1, 2, 3, 4, 0, 0}, false},
                          {"(1e400 -inf 0x10)(+1 1e-400 .5)\n;", odd, odd, true},
                          {"(1 2 3)(4 5", first, {1, 2, 3, 4, 5, 0}, false}};
    for (const Case& c : cases) {
        readByBothDoors(c.items, 6);
        EXPECT_EQ(values, c.parallel) << c.items;
        EXPECT_EQ(other, c.sequential) << c.items;
        EXPECT_EQ(isWhole, c.isWhole) << c.items;
    }
}
