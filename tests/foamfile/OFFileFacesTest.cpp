// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace foamtext;

namespace {

using Door = bool (OFFile::*)(FacesData*);

class OFFileFaces : public testing::Test
{
protected:
    bool readFaces(const std::string& bytes, bool hasHeader = true)
    {
        folder.write("faces", bytes);
        data = FacesData();
        return OFFile(hasHeader).readFaceList(folder.str("faces"), "faces", &data);
    }
    /// Reads faces without count by one of the named doors.
    bool readBy(Door door, const std::string& items, std::size_t count)
    {
        folder.write("items", items);
        OFFile file(false);
        EXPECT_TRUE(file.open(folder.str("items")));
        data = FacesData();
        data.nodeCounts.resize(count);
        data.nodeOffsets.resize(count);
        return (file.*door)(&data);
    }

    const std::string ascii = header("faceList", "faces");
    const std::string compact = header("faceCompactList", "faces");
    const std::string binary = header("faceCompactList", "faces", "binary");
    TempFolder folder;
    FacesData data;
};

} // namespace

TEST_F(OFFileFaces, AllFormsGiveTheSame)
{
    // More than six chunks, so that the workers take a second pass.
    const Faces expected = someFaces(110000, 50);
    const std::string text = faces(expected);
    ASSERT_GT(text.size(), 7 * OFFile::CHUNK_SIZE);
    const std::string raw = binary + compactFaces(expected);
    const LogCapture log;
    for (const std::string& bytes : {ascii + list(110000, text), gzipped(ascii + list(110000, text)),
                                     compact + list(110001, text), raw, gzipped(raw)}) {
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(unpacked(data), expected);
    }
    EXPECT_TRUE(readFaces("\n" + list(110000, text), false));
    EXPECT_EQ(unpacked(data), expected);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

TEST_F(OFFileFaces, OnlyCompactListsLeaveSlackInSteps)
{
    const Faces expected = someFaces(30000, 40000);
    EXPECT_TRUE(readFaces(ascii + list(30000, faces(expected))));
    EXPECT_EQ(data.nodes.size(), 105000U);
    EXPECT_TRUE(readBy(&OFFile::readNextFaceListAscii, faces(expected), 30000));
    EXPECT_EQ(data.nodes.size(), 105000U);
    for (const std::string& bytes : {compact + list(30001, faces(expected)), binary + compactFaces(expected)}) {
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(data.nodes.size(), 160000U);
        EXPECT_EQ(std::count(data.nodes.begin() + 105000, data.nodes.end(), 0), 55000);
    }
}

// A face of many nodes stands over several lines, and a chunk ends at any of them.
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
        for (const Door door : {&OFFile::readNextFaceListAsciiPar, &OFFile::readNextFaceListAscii,
                                &OFFile::readNextFaceCompactListAscii}) {
            EXPECT_TRUE(readBy(door, items, expected.size()));
            ASSERT_EQ(unpacked(data), expected) << shift;
        }
    }
}

TEST_F(OFFileFaces, AFaceLargerThanAnyBufferIsRead)
{
    // More labels than one step of growth, over more than one chunk; its count is cut to a byte.
    const Faces expected = {{1, 2, 3}, someLabels(90000), {4, 5, 6, 7}, someLabels(300)};
    for (const std::string& bytes :
         {ascii + list(4, faces(expected)), compact + list(5, faces(expected)), binary + compactFaces(expected)}) {
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(data.nodeOffsets, (std::vector<int>{0, 3, 90003, 90007}));
        EXPECT_EQ(data.nodeCounts, (std::vector<std::uint8_t>{3, 90000 % 256, 4, 44}));
        ASSERT_GE(data.nodes.size(), 90307U);
        EXPECT_TRUE(std::equal(expected[1].begin(), expected[1].end(), data.faceNodes(1)));
        EXPECT_TRUE(std::equal(expected[3].begin(), expected[3].end(), data.faceNodes(3)));
    }
}

TEST_F(OFFileFaces, OddTextEndsTheWorkerAndFailsTheSequence)
{
    struct Case
    {
        const char* items;
        std::size_t parallel;
        std::size_t sequential;
        bool isGood;
    };
    const Case cases[] = {{"\n3(1 2 3)3(4 5 6)", 2, 2, true},
                          {"3\n\n(\n1\n2\n3\n)\n\n3(4 5 6)\n", 2, 2, true},
                          {"3(1 2 3)\n)\n", 1, 1, false},
                          {"3(1 2 3)\n", 1, 1, true},
                          {"3(1 2 3)\n0()\n", 1, 1, false},
                          {"3(1 2 3)\n3(4 -5 6)\n", 1, 1, false},
                          {"3(1 2 3)\n3(4 5 6\n", 1, 1, false},
                          {"3(1 2 3)\n3(4 5 6", 1, 2, true},
                          {"3(1 2 3)\n3(4 5 6 )\n", 1, 2, true},
                          {"3(1 2 3)\n3 (4 5 6)\n", 1, 1, false},
                          {"3(1 2 3)\n4294967299(4 5 6)\n", 2, 2, true},
                          {"3(1 2 3)\n2147483647(4 5 6)\n", 1, 1, false},
                          {"(1 2 3)\n", 0, 0, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.items);
        const auto expectFaces = [&](std::size_t count) {
            Faces expected = {{1, 2, 3}, {4, 5, 6}};
            std::fill(expected.begin() + static_cast<std::ptrdiff_t>(count), expected.end(), std::vector<int>());
            EXPECT_EQ(unpacked(data), expected);
            EXPECT_EQ(data.nodes.size(), 3 * count);
        };
        EXPECT_TRUE(readBy(&OFFile::readNextFaceListAsciiPar, c.items, 2));
        expectFaces(c.parallel);
        EXPECT_EQ(readBy(&OFFile::readNextFaceListAscii, c.items, 2), c.isGood);
        expectFaces(c.sequential);
    }
}

TEST_F(OFFileFaces, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const Faces three = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9, 10}};
    const LogCapture log;
    EXPECT_TRUE(readFaces(ascii + list(2, faces(three))));
    EXPECT_EQ(unpacked(data), (Faces{three[0], three[1]}));
    EXPECT_EQ(data.nodes.size(), 6U);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    EXPECT_TRUE(readFaces(ascii + list(5, faces(three))));
    EXPECT_EQ(unpacked(data), (Faces{three[0], three[1], three[2], {}, {}}));
    const std::string told = "OFFile : List is shorter than its count: 5 items promised, 3 found. File is ";
    EXPECT_EQ(log.lines(), (std::vector<LogLine>{{3, told + folder.str("faces").toStdString()}}));
}

TEST_F(OFFileFaces, RawOffsetsThatCannotBeRightLeaveWholeFaces)
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
    EXPECT_TRUE(readFaces(binary + rawList(std::vector<int>{0}) + "\n1\n(abcd)")) << "one offset and no face";
    EXPECT_FALSE(readFaces(binary + "2\n(" + raw(std::vector<int>{0, 3}) + "x\n3\n(" + raw(someLabels(3))));
}

TEST_F(OFFileFaces, ABinaryFaceListIsRefusedInSilence)
{
    const LogCapture log;
    EXPECT_FALSE(readFaces(header("faceList", "faces", "binary") + list(1, "3(1 2 3)\n")));
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}
