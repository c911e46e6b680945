// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <cmath>

using namespace foamtext;

namespace {

using Values = std::vector<double>;
using FaceReader = bool (OFFile::*)(FacesData*);

class OFFileFaces : public testing::Test
{
protected:
    bool readFaces(const std::string& bytes)
    {
        folder.write("faces", bytes);
        data = FacesData();
        return OFFile(true).readFaceList(folder.str("faces"), "faces", &data);
    }
    /// Reads faces without a count.
    bool readBy(FaceReader reader, const std::string& items, std::size_t count)
    {
        folder.write("items", items);
        OFFile file(false);
        EXPECT_TRUE(file.open(folder.str("items")));
        data = FacesData();
        data.nodeCounts.resize(count);
        data.nodeOffsets.resize(count);
        return (file.*reader)(&data);
    }

    const std::string ascii = header("faceList", "faces");
    const std::string compact = header("faceCompactList", "faces");
    const std::string binary = header("faceCompactList", "faces", "binary");
    TempFolder folder;
    FacesData data;
};

class OFFileVectors : public testing::Test
{
protected:
    /// Reads a list without a count with the parallel and with the sequential reader.
    void readByBoth(const std::string& items, std::size_t doubles)
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

// A face of many nodes is written on several lines, and a chunk can end at any of them.
TEST_F(OFFileFaces, NoFaceIsLostOrShiftedAtAChunkBorder)
{
    Faces expected(12000, {100, 200, 300, 400});
    for (std::size_t i = 5; i < expected.size(); i += 3) {
        expected[i].resize(12, 77);
    }
    const std::string text = faces(expected);
    ASSERT_GT(text.size(), OFFile::CHUNK_SIZE);
    for (std::size_t shift = 0; shift < 70; ++shift) {
        const std::string items = "4(" + std::string(shift, '0') + text.substr(2) + ")\n";
        for (const FaceReader reader : {&OFFile::readNextFaceListAsciiPar, &OFFile::readNextFaceListAscii,
                                        &OFFile::readNextFaceCompactListAscii}) {
            EXPECT_TRUE(readBy(reader, items, expected.size()));
            ASSERT_EQ(unpacked(data), expected) << shift;
        }
    }
}

TEST_F(OFFileFaces, ReadsFacesLargerThanAnyBuffer)
{
    // One face has more labels than any reader makes room for at once, and more text than a chunk. Its count wraps to a
    // byte.
    constexpr int MANY = 700000;
    const Faces expected = {{1, 2, 3}, someLabels(MANY), {4, 5, 6, 7}, someLabels(300)};
    const std::string footer = "\n\n// ************************************************************************* //\n";
    for (const std::string& bytes : {ascii + list(4, faces(expected)), compact + list(5, faces(expected)),
                                     binary + compactFaces(expected) + footer}) {
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(data.nodeOffsets, (std::vector<int>{0, 3, MANY + 3, MANY + 7}));
        EXPECT_EQ(data.nodeCounts, (std::vector<std::uint8_t>{3, MANY % 256, 4, 44}));
        ASSERT_GE(data.nodes.size(), MANY + 307U);
        EXPECT_TRUE(std::equal(expected[1].begin(), expected[1].end(), data.faceNodes(1)));
        EXPECT_TRUE(std::equal(expected[3].begin(), expected[3].end(), data.faceNodes(3)));
        // Hosts get the slack of a surface, so it must not hold bytes of the footer.
        EXPECT_TRUE(
            std::all_of(data.nodes.begin() + MANY + 307, data.nodes.end(), [](int label) { return label == 0; }));
    }
}

TEST_F(OFFileFaces, WrongRawOffsetsLeaveTheWholeFaces)
{
    struct Case
    {
        std::vector<int> offsets;
        std::size_t labels;
        Faces expected;
        bool isGood;
    };
    const Case cases[] = {{{5, 8, 11, 15}, 10, {{0, 1, 2}, {3, 4, 5}, {6, 7, 8, 9}}, true},
                          {{0, 3, 3, 10}, 10, {{0, 1, 2}, {}, {3, 4, 5, 6, 7, 8, 9}}, true},
                          {{0, 3, 1, 10}, 10, {{0, 1, 2}, {}, {}}, false},
                          {{0, 3, 6, 2000000000}, 10, {{0, 1, 2}, {3, 4, 5}, {}}, false},
                          {{-2000000000, 2000000000, 6, 10}, 10, {{}, {}, {}}, false},
                          {{0, 3, 6, 10}, 8, {{0, 1, 2}, {3, 4, 5}, {}}, false}};
    for (const Case& c : cases) {
        const std::string labels = std::to_string(c.labels) + "\n(" + raw(someLabels(c.labels));
        EXPECT_EQ(readFaces(binary + rawList(c.offsets) + "\n" + labels), c.isGood);
        EXPECT_EQ(unpacked(data), c.expected);
    }
    EXPECT_TRUE(readFaces(binary + rawList(std::vector<int>{0}) + "\n1\n(abcd)")) << "one offset, no face";
    EXPECT_FALSE(readFaces(binary + "2\n(" + raw(std::vector<int>{0, 3}) + "x\n3\n(" + raw(someLabels(3))));
}

// The second list is found only if the stream continues where the parallel read has ended.
TEST_F(OFFileFaces, LongRawListsReadAlikeWithOneAndManyThreads)
{
    constexpr std::size_t FACES = 1200000;
    std::vector<int> offsets(FACES + 1);
    std::ranges::generate(offsets, [offset = -3]() mutable { return offset += 3; });
    const std::string whole = binary + rawList(offsets) + "\n" + rawList(someLabels(3 * FACES));
    for (const std::size_t length :
         {whole.size(), whole.size() - 5000001, std::size_t{4700000}, std::size_t{1000000}}) {
        bool isRead = false;
        tbb::task_arena(1).execute([&] { isRead = readFaces(whole.substr(0, length)); });
        EXPECT_EQ(isRead, length == whole.size());
        const FacesData expected = std::move(data);
        tbb::task_arena(4).execute([&] { EXPECT_EQ(readFaces(whole.substr(0, length)), isRead); });
        EXPECT_TRUE(data.nodes == expected.nodes && data.nodeCounts == expected.nodeCounts) << length;
        EXPECT_TRUE(data.nodeOffsets == expected.nodeOffsets) << length;
    }
}

TEST_F(OFFileVectors, NoVectorIsLostAtAChunkBorder)
{
    Values expected = someVectors(9000);
    expected[0] = 1.0;
    for (std::size_t shift = 0; shift < 60; ++shift) {
        readByBoth("(" + std::string(shift, '0') + vectors(expected).substr(1) + ")\n;\n", expected.size());
        ASSERT_EQ(values, expected) << shift;
        ASSERT_EQ(other, expected) << shift;
        ASSERT_TRUE(isWhole);
    }
}

// The readers differ on odd text: the parallel one treats it as damage.
TEST_F(OFFileVectors, ParallelAndSequentialReadersKeepTheirRulesForOddText)
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
        readByBoth(c.items, 6);
        EXPECT_EQ(values, c.parallel) << c.items;
        EXPECT_EQ(other, c.sequential) << c.items;
        EXPECT_EQ(isWhole, c.isWhole) << c.items;
    }
}
