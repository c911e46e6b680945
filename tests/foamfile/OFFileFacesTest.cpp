// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace foamtext;

namespace {

class OFFileFaces : public testing::Test
{
protected:
    bool readFaces(const std::string& bytes)
    {
        folder.write("faces", bytes);
        data = FacesData();
        return OFFile(true).readFaceList(folder.str("faces"), "faces", &data);
    }
    static std::string facesHeader(const std::string& className = "faceList", const std::string& format = "ascii")
    {
        return header(className, "faces", format);
    }
    /// Reads faces without count by one of the named doors.
    bool readBy(bool (OFFile::*door)(FacesData*), const std::string& items, std::size_t count)
    {
        folder.write("items", items);
        OFFile file(false);
        EXPECT_TRUE(file.open(folder.str("items")));
        data = FacesData();
        data.nodeCounts.resize(count);
        data.nodeOffsets.resize(count);
        return (file.*door)(&data);
    }
    std::size_t nodesUsed() const
    {
        return std::accumulate(data.nodeCounts.begin(), data.nodeCounts.end(), std::size_t(0));
    }

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
    const std::string ascii = facesHeader() + list(expected.size(), text);
    const std::string compactAscii = facesHeader("faceCompactList") + list(expected.size() + 1, text);
    const std::string compactBinary = facesHeader("faceCompactList", "binary") + compactFaces(expected);
    for (const std::string& bytes : {ascii, gzipped(ascii), compactAscii, compactBinary, gzipped(compactBinary)}) {
        const LogCapture log;
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(unpacked(data), expected);
        EXPECT_EQ(log.lines(), std::vector<LogLine>());
    }
    EXPECT_TRUE(readBy(&OFFile::readNextFaceListAscii, text, expected.size()));
    EXPECT_EQ(unpacked(data), expected);
    EXPECT_EQ(data.nodes.size(), nodesUsed());
    folder.write("surface", "\n" + list(expected.size(), text));
    EXPECT_TRUE(OFFile(false).readFaceList(folder.str("surface"), "faces", &data));
    EXPECT_EQ(unpacked(data), expected);
}

TEST_F(OFFileFaces, OnlyTheReadersThatSaySoLeaveSlack)
{
    const Faces expected = someFaces(30000, 0);
    const std::size_t used = 3 * 15000 + 4 * 15000;
    EXPECT_TRUE(readFaces(facesHeader() + list(expected.size(), faces(expected))));
    EXPECT_EQ(data.nodes.size(), used);
    EXPECT_TRUE(readFaces(facesHeader("faceCompactList") + list(expected.size() + 1, faces(expected))));
    EXPECT_EQ(data.nodes.size(), 160000U);
    EXPECT_TRUE(readFaces(facesHeader("faceCompactList", "binary") + compactFaces(expected)));
    EXPECT_EQ(data.nodes.size(), 160000U);
    EXPECT_TRUE(std::all_of(data.nodes.begin() + used, data.nodes.end(), [](int node) { return node == 0; }));
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
        EXPECT_TRUE(readBy(&OFFile::readNextFaceListAsciiPar, items, expected.size()));
        ASSERT_EQ(unpacked(data), expected) << shift;
        EXPECT_TRUE(readBy(&OFFile::readNextFaceListAscii, items, expected.size()));
        ASSERT_EQ(unpacked(data), expected) << shift;
        EXPECT_TRUE(readBy(&OFFile::readNextFaceCompactListAscii, items, expected.size()));
        ASSERT_EQ(unpacked(data), expected) << shift;
    }
}

TEST_F(OFFileFaces, AFaceLargerThanAnyBufferIsRead)
{
    // More labels than one step of growth, over more than two chunks.
    Faces expected = {{1, 2, 3}, someLabels(90000), {4, 5, 6, 7}};
    expected.push_back(someLabels(300));
    const std::string text = faces(expected);
    for (const std::string& bytes :
         {facesHeader() + list(4, text), facesHeader("faceCompactList") + list(5, text),
          facesHeader("faceCompactList", "binary") + compactFaces(expected)}) {
        EXPECT_TRUE(readFaces(bytes));
        EXPECT_EQ(data.nodeOffsets, (std::vector<int>{0, 3, 90003, 90007}));
        EXPECT_EQ(data.nodeCounts, (std::vector<std::uint8_t>{3, 90000 % 256, 4, 44}));
        ASSERT_GE(data.nodes.size(), 90307U);
        EXPECT_TRUE(std::equal(expected[1].begin(), expected[1].end(), data.nodes.begin() + 3));
        EXPECT_TRUE(std::equal(expected[3].begin(), expected[3].end(), data.nodes.begin() + 90007));
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
    const Case cases[] = {
        {"3(1 2 3)\n3(4 5 6)\n)\n", 2, 2, true},
        {"\n3(1 2 3)3(4 5 6)", 2, 2, true},
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
        {"(1 2 3)\n", 0, 0, false},
        {"3(1 2 3)\n3(4 5 6)\n3(7 8 9)\n", 2, 2, true},
    };
    const Faces both = {{1, 2, 3}, {4, 5, 6}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.items);
        const auto expectFaces = [&](std::size_t count) {
            Faces expected(both.begin(), both.begin() + static_cast<std::ptrdiff_t>(count));
            expected.resize(2);
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
    EXPECT_TRUE(readFaces(facesHeader() + list(2, faces(three))));
    EXPECT_EQ(unpacked(data), (Faces{three[0], three[1]}));
    EXPECT_EQ(data.nodes.size(), 6U);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
    EXPECT_TRUE(readFaces(facesHeader() + list(5, faces(three))));
    EXPECT_EQ(unpacked(data), (Faces{three[0], three[1], three[2], {}, {}}));
    EXPECT_EQ(log.lines(),
              (std::vector<LogLine>{{3, "OFFile : List is shorter than its count: 5 items promised, 3 found. File is " +
                                            folder.str("faces").toStdString()}}));
}

TEST_F(OFFileFaces, RawOffsetsThatCannotBeRightLeaveWholeFaces)
{
    struct Case
    {
        std::vector<int> offsets;
        std::size_t labels;
        Faces expected;
    };
    const Faces faces = {{0, 1, 2}, {3, 4, 5}, {6, 7, 8, 9}};
    const Case cases[] = {{{0, 3, 6, 10}, 10, faces},
                          {{5, 8, 11, 15}, 10, faces},
                          {{0, 3, 3, 10}, 10, {{0, 1, 2}, {}, {3, 4, 5, 6, 7, 8, 9}}},
                          {{0, 3, 1, 10}, 10, {{0, 1, 2}, {}, {}}},
                          {{0, 3, 6, 2000000000}, 10, {{0, 1, 2}, {3, 4, 5}, {}}},
                          {{-2000000000, 2000000000, 6, 10}, 10, {{}, {}, {}}},
                          {{0, 3, 6, 10}, 8, {{0, 1, 2}, {3, 4, 5}, {}}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.offsets));
        const std::string labels = rawList(someLabels(c.labels));
        const bool isGood = c.expected[2].size() > 0;
        const std::string end = isGood ? "\n" : "";
        // Without the ")" a list that lacks labels does not take it for one.
        EXPECT_EQ(readFaces(facesHeader("faceCompactList", "binary") + rawList(c.offsets) + "\n" +
                            labels.substr(0, labels.size() - 1) + end),
                  isGood);
        EXPECT_EQ(unpacked(data), c.expected);
    }
    // One offset and no face; and offsets without the bracket that ends them.
    EXPECT_TRUE(readFaces(facesHeader("faceCompactList", "binary") + rawList(std::vector<int>{0}) + "\n1\n(abcd)"));
    EXPECT_EQ(data.faceCount(), 0U);
    EXPECT_FALSE(readFaces(facesHeader("faceCompactList", "binary") + "2\n(" + raw(std::vector<int>{0, 3}) + "x\n3\n(" + raw(std::vector<int>{0, 1, 2})));
}

TEST_F(OFFileFaces, ABinaryFaceListIsRefusedInSilence)
{
    const LogCapture log;
    EXPECT_FALSE(readFaces(facesHeader("faceList", "binary") + list(1, "3(1 2 3)\n")));
    EXPECT_FALSE(OFFile(true).readNextFaceListBinary(&data));
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}
