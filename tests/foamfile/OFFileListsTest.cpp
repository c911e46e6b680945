// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using namespace foamtext;

namespace {

/// A whole-file reader with what it says.
struct Reader
{
    std::string className;
    std::string kind;
    std::function<bool(const dvn::Str&)> read;
};

std::vector<Reader> wholeFileReaders()
{
    return {{"labelList", "labels file",
             [](const dvn::Str& path) {
                 std::vector<int> labels;
                 int cells = 0;
                 return OFFile(true).readLabelList(path, "thing", &labels, &cells);
             }},
            {"vectorField", "vector field file",
             [](const dvn::Str& path) {
                 std::vector<double> values;
                 return OFFile(true).readVectorField(path, "thing", &values);
             }},
            {"faceList", "face list file", [](const dvn::Str& path) {
                 FacesData faces;
                 return OFFile(true).readFaceList(path, "thing", &faces);
             }}};
}

class OFFileLabels : public testing::Test
{
protected:
    bool readOwner(const std::string& bytes)
    {
        folder.write("owner", bytes);
        return OFFile(true).readLabelList(folder.str("owner"), "owner", &labels, &cells);
    }
    static std::string ownerHeader(const std::string& format = "ascii")
    {
        return header("labelList", "owner", format, note(42));
    }

    TempFolder folder;
    std::vector<int> labels;
    int cells = 0;
};

} // namespace

TEST(OFFileWholeFiles, EachReaderReportsInItsOwnWordsAndOnce)
{
    TempFolder folder;
    for (const Reader& reader : wholeFileReaders()) {
        struct Case
        {
            std::string text;
            std::string message;
        };
        const std::string good = header(reader.className, "thing", "ascii", note(1));
        const Case cases[] = {
            {"", "Failed to open " + reader.kind},
            {header(reader.className, "other"), "Unexpected object in " + reader.kind},
            {header("other", "thing"), "Unexpected class in " + reader.kind},
            {good + "no count 3", "Failed to read number of items in " + reader.kind},
            {good + "3000000000\n(\n)\n", "Invalid number of items in " + reader.kind},
            {good + "2147483647\n(\n)\n", "Invalid number of items in " + reader.kind},
            {good + "2000000000\n(\n)\n", "Invalid number of items in " + reader.kind},
        };
        for (const Case& c : cases) {
            SCOPED_TRACE(c.message);
            folder.write("100%1", c.text);
            const LogCapture log;
            EXPECT_FALSE(reader.read(folder.str("100%1")));
            const std::string path = folder.str("100%1").toStdString();
            EXPECT_EQ(log.lines(), (std::vector<LogLine>{{1, "OFFile : " + c.message + ". File basename is " + path}}));
        }
        for (const std::string missing : {"object", "class"}) {
            std::string text = good;
            text.replace(text.find(missing), missing.size(), "nothing");
            folder.write("file", text);
            try {
                reader.read(folder.str("file"));
                ADD_FAILURE() << "no exception for a missing " << missing;
            } catch (const std::out_of_range& e) {
                EXPECT_STREQ(e.what(), "map::at:  key not found");
            }
        }
        folder.write("empty", good + "0()\n");
        EXPECT_TRUE(reader.read(folder.str("empty")));
    }
}

TEST_F(OFFileLabels, AsciiBinaryAndGzipGiveTheSame)
{
    // More than one chunk, and no label whose first byte is a line feed.
    std::vector<int> expected = someLabels(60000);
    const std::string ascii = ownerHeader() + list(expected.size(), foamtext::labels(expected));
    const std::string binary = ownerHeader("binary") + rawList(expected) + "\n";
    for (const std::string& text : {ascii, binary, gzipped(ascii), gzipped(binary)}) {
        labels = {7};
        cells = 0;
        EXPECT_TRUE(readOwner(text));
        EXPECT_EQ(labels, expected);
        EXPECT_EQ(cells, 42);
    }
    EXPECT_TRUE(readOwner(ownerHeader() + "3(4 5 6)\n"));
    EXPECT_EQ(labels, (std::vector<int>{4, 5, 6}));
}

TEST_F(OFFileLabels, CellsAreCountedByTheNoteAlone)
{
    const auto withNote = [](const std::string& text) {
        return header("labelList", "owner", "ascii", "    note " + text + ";\n") + "1\n(\n0\n)\n";
    };
    EXPECT_TRUE(readOwner(withNote("\"nCells:  17nFaces:3\"")));
    EXPECT_EQ(cells, 17);
    EXPECT_TRUE(readOwner(withNote("\"nCells:none nFaces:3\"")));
    EXPECT_EQ(cells, 0);
    const LogCapture log;
    EXPECT_FALSE(readOwner(withNote("\"nFaces:3 nCells:17\"")));
    EXPECT_FALSE(readOwner(withNote("\"nPoints:3\"")));
    EXPECT_FALSE(readOwner(withNote("\"nCells:3\"")));
    EXPECT_EQ(log.errors(),
              std::vector<std::string>(3, "OFFile : Failed to read number of cells in file. This info should be "
                                          "available as 'note' in the header of File: " +
                                              folder.str("owner").toStdString()));
    EXPECT_THROW(readOwner(header("labelList", "owner") + "1\n(\n0\n)\n"), std::out_of_range);
}

// A count that lies must neither write beyond the target nor pass in silence.
TEST_F(OFFileLabels, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const LogCapture log;
    EXPECT_TRUE(readOwner(ownerHeader() + "2\n(\n1\n2\n3\n)\n"));
    EXPECT_EQ(labels, (std::vector<int>{1, 2}));
    EXPECT_EQ(log.infos(), std::vector<std::string>());
    for (const std::string& text : {ownerHeader() + "4\n(\n1\n2\n)\n", ownerHeader() + "4\n(\n1\n2\n-3\n4\n)\n",
                                   ownerHeader() + "4\n(\n1\r\n2\n3\n4\n)\n", ownerHeader() + "4\n(\n1\n2\n",
                                   ownerHeader("binary") + "4\n(" + raw(std::vector<int>{1, 2})}) {
        labels.clear();
        EXPECT_FALSE(readOwner(text));
        const std::size_t found = text.find('\r') != std::string::npos ? 0 : 2;
        EXPECT_EQ(labels, (found == 2 ? std::vector<int>{1, 2, 0, 0} : std::vector<int>{0, 0, 0, 0}));
        EXPECT_EQ(log.infos().back(), "OFFile : List is shorter than its count: 4 items promised, " +
                                          std::to_string(found) + " found. File is " + folder.str("owner").toStdString());
    }
    EXPECT_EQ(log.lines().size(), 5U);
}

TEST_F(OFFileLabels, ACountBeyondTheFileSizesNothing)
{
    // The compressed file can hold a thousand times its size, so its count is believed for longer.
    const std::string text = ownerHeader() + "100000\n(\n1\n)\n";
    labels = {7};
    EXPECT_FALSE(readOwner(text));
    EXPECT_EQ(labels, std::vector<int>{7});
    EXPECT_FALSE(readOwner(gzipped(text)));
    EXPECT_EQ(labels.size(), 100000U);
    labels = {7};
    EXPECT_FALSE(readOwner(gzipped(ownerHeader() + "1000000000\n(\n1\n)\n")));
    EXPECT_EQ(labels, std::vector<int>{7});
}

TEST_F(OFFileLabels, ALineFeedAsFirstRawByteIsLost)
{
    // The bracket that ends the list makes up for it.
    EXPECT_TRUE(readOwner(ownerHeader("binary") + rawList(std::vector<int>{10, 1})));
    EXPECT_EQ(raw(labels), (raw(std::vector<int>{10, 1}) + ")").substr(1));
    EXPECT_TRUE(readOwner(ownerHeader("binary") + rawList(std::vector<int>{1, 10})));
    EXPECT_EQ(labels, (std::vector<int>{1, 10}));
}

TEST_F(OFFileLabels, NoLabelIsLostAtAChunkBorder)
{
    std::vector<int> expected(38000, 123456);
    expected.front() = 7;
    expected.back() = 8;
    for (std::size_t shift = 0; shift < 10; ++shift) {
        const std::string first = std::string(shift, '0') + "7\n";
        for (const std::string separator : {"\n", " ", "\n\n\n"}) {
            std::string text = ownerHeader() + "38000(" + first;
            for (std::size_t i = 1; i + 1 < expected.size(); ++i) {
                text += "123456" + separator;
            }
            ASSERT_TRUE(readOwner(text + "8)\n")) << shift << "'" << separator << "'";
            ASSERT_EQ(labels, expected);
        }
    }
}

TEST_F(OFFileLabels, WhatFollowsAListStaysToBeRead)
{
    folder.write("lists", header("labelList", "lists") + "3(1 2 3);\nmore\n2\n(\n4\n5\n)\n;end\n");
    OFFile file(true);
    EXPECT_TRUE(file.open(folder.str("lists")));
    labels.resize(3);
    EXPECT_TRUE(file.readNextLabelList(&labels));
    int count = 0;
    EXPECT_TRUE(file.readNextIntLineFromCurrentChunk(&count));
    EXPECT_EQ(count, 2);
    labels.resize(2);
    EXPECT_TRUE(file.readNextLabelList(&labels));
    EXPECT_EQ(labels, (std::vector<int>{4, 5}));
    EXPECT_TRUE(file.skipAfterNext(';'));
    std::string line;
    EXPECT_TRUE(file.getNextLineStartingWith("end", line));
}
