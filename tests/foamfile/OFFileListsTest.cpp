// SPDX-License-Identifier: MIT
#include "foamfile/FoamText.h"
#include "foamfile/OFFile.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace foamtext;

namespace {

bool readWholeFile(const std::string& className, const dvn::Str& path)
{
    std::vector<int> labels;
    std::vector<double> values;
    FacesData faces;
    int cells = 0;
    OFFile file(true);
    return className == "labelList"     ? file.readLabelList(path, "thing", &labels, &cells)
           : className == "vectorField" ? file.readVectorField(path, "thing", &values)
                                        : file.readFaceList(path, "thing", &faces);
}

class OFFileLabels : public testing::Test
{
protected:
    bool readOwner(const std::string& bytes)
    {
        folder.write("owner", bytes);
        return OFFile(true).readLabelList(folder.str("owner"), "owner", &labels, &cells);
    }
    std::string path() const { return folder.str("owner").toStdString(); }

    const std::string ascii = header("labelList", "owner", "ascii", note(42));
    const std::string binary = header("labelList", "owner", "binary", note(42));
    TempFolder folder;
    std::vector<int> labels;
    int cells = 0;
};

} // namespace

TEST(OFFileWholeFiles, EachReaderReportsInItsOwnWordsAndOnce)
{
    TempFolder folder;
    // A percent sign in the path must not take part in the message.
    const dvn::Str path = folder.str("100%1");
    const std::pair<std::string, std::string> readers[] = {
        {"labelList", "labels file"}, {"vectorField", "vector field file"}, {"faceList", "face list file"}};
    for (const auto& [className, kind] : readers) {
        const std::string good = header(className, "thing", "ascii", note(1));
        const std::pair<std::string, std::string> cases[] = {
            {"", "Failed to open "},
            {header(className, "other"), "Unexpected object in "},
            {header("other", "thing"), "Unexpected class in "},
            {good + "no count 3", "Failed to read number of items in "},
            {good + "3000000000\n(\n)\n", "Invalid number of items in "},
            {good + "2147483647\n(\n)\n", "Invalid number of items in "},
            {good + "2000000000\n(\n)\n", "Invalid number of items in "}};
        for (const auto& [text, message] : cases) {
            folder.write("100%1", text);
            const LogCapture log;
            EXPECT_FALSE(readWholeFile(className, path));
            const std::string line = "OFFile : " + message + kind + ". File basename is " + path.toStdString();
            EXPECT_EQ(log.lines(), (std::vector<LogLine>{{1, line}}));
        }
        for (const std::string missing : {"object", "class"}) {
            folder.write("100%1", std::string(good).replace(good.find(missing), 1, "x"));
            try {
                readWholeFile(className, path);
                ADD_FAILURE() << "no exception for a missing " << missing;
            } catch (const std::out_of_range& e) {
                EXPECT_STREQ(e.what(), "map::at:  key not found");
            }
        }
        folder.write("100%1", good + "0()\n");
        EXPECT_TRUE(readWholeFile(className, path));
    }
}

TEST_F(OFFileLabels, AsciiBinaryAndGzipGiveTheSame)
{
    const std::vector<int> expected = someLabels(60000);
    const std::string text = ascii + list(expected.size(), foamtext::labels(expected));
    const std::string raw = binary + rawList(expected) + "\n";
    ASSERT_GT(text.size(), OFFile::CHUNK_SIZE);
    for (const std::string& bytes : {text, raw, gzipped(text), gzipped(raw)}) {
        cells = 0;
        EXPECT_TRUE(readOwner(bytes));
        EXPECT_EQ(labels, expected);
        EXPECT_EQ(cells, 42);
    }
}

TEST_F(OFFileLabels, CellsAreCountedByTheNoteAlone)
{
    const auto readNote = [&](const std::string& text) {
        return readOwner(header("labelList", "owner", "ascii", "    note " + text + ";\n") + "1\n(\n0\n)\n");
    };
    EXPECT_TRUE(readNote("\"nCells:  17nFaces:3\""));
    EXPECT_EQ(cells, 17);
    EXPECT_TRUE(readNote("\"nCells:none nFaces:3\""));
    EXPECT_EQ(cells, 0);
    EXPECT_TRUE(readNote("\"nCells:3\""));
    EXPECT_EQ(cells, 3);
    const LogCapture log;
    EXPECT_FALSE(readNote("\"nFaces:3 nCells:17\"") || readNote("\"nPoints:3\""));
    EXPECT_EQ(log.errors(),
              std::vector<std::string>(2, "OFFile : Failed to read number of cells in file. This info should be "
                                          "available as 'note' in the header of File: " +
                                              path()));
    EXPECT_THROW(readOwner(header("labelList", "owner") + "1\n(\n0\n)\n"), std::out_of_range);
}

// A count that lies must neither write beyond the target nor pass in silence.
TEST_F(OFFileLabels, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const LogCapture log;
    EXPECT_TRUE(readOwner(ascii + "2\n(\n1\n2\n3\n)\n"));
    EXPECT_EQ(labels, (std::vector<int>{1, 2}));
    for (const std::string& text :
         {ascii + "4\n(\n1\n2\n)\n", ascii + "4\n(\n1\n2\n-3\n4\n)\n", ascii + "4\n(\n1\n2\r\n3\n4\n)\n",
          ascii + "4\n(\n1\n2\n", binary + "4\n(" + raw(std::vector<int>{1, 2})}) {
        labels.clear();
        EXPECT_FALSE(readOwner(text));
        const bool hasReturn = text.find('\r') != std::string::npos;
        EXPECT_EQ(labels, (std::vector<int>{1, hasReturn ? 0 : 2, 0, 0}));
        EXPECT_EQ(log.lines().back(),
                  (LogLine{3, "OFFile : List is shorter than its count: 4 items promised, " +
                                  std::string(hasReturn ? "1" : "2") + " found. File is " + path()}));
    }
    EXPECT_EQ(log.lines().size(), 5U);
}

TEST_F(OFFileLabels, ACountBeyondTheFileSizesNothing)
{
    // A compressed file can hold a thousand times its size, so its count is believed for longer.
    for (const std::string& bytes : {ascii + "100000\n(\n1\n)\n", gzipped(ascii + "1000000000\n(\n1\n)\n")}) {
        labels = {7};
        EXPECT_FALSE(readOwner(bytes));
        EXPECT_EQ(labels, std::vector<int>{7});
    }
    EXPECT_FALSE(readOwner(gzipped(ascii + "100000\n(\n1\n)\n")));
    EXPECT_EQ(labels.size(), 100000U);
}

TEST_F(OFFileLabels, ALineFeedAsFirstRawByteIsLost)
{
    const std::vector<int> written = {10, 1};
    EXPECT_TRUE(readOwner(binary + rawList(written))) << "the bracket that ends the list makes up for it";
    EXPECT_EQ(raw(labels), (raw(written) + ")").substr(1));
}

TEST_F(OFFileLabels, NoLabelIsLostAtAChunkBorder)
{
    for (std::size_t shift = 0; shift < 10; ++shift) {
        for (const std::string separator : {"\n", " ", "\n\n\n"}) {
            std::string text = ascii + "38000(" + std::string(shift, '0') + "7" + separator;
            for (std::size_t i = 1; i < 38000; ++i) {
                text.append("123456").append(separator);
            }
            ASSERT_TRUE(readOwner(text + ")\n")) << shift << "'" << separator << "'";
            std::vector<int> expected(38000, 123456);
            expected[0] = 7;
            ASSERT_EQ(labels, expected);
        }
    }
}
