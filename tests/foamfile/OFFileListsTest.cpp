// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"
#include "support/FoamText.h"
#include "support/LogCapture.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

using namespace foamtext;

namespace {

using Numbers = std::vector<double>;

std::string fileOf(const std::string& className, const std::string& format, const std::string& body)
{
    return header(className, "thing", format, note(42)) + body;
}

template <typename T>
Numbers numbersOf(const std::vector<T>& values)
{
    return {values.begin(), values.end()};
}

/// The number of nodes of each face and those nodes.
Numbers numbersOf(const Faces& faces)
{
    Numbers numbers;
    for (const std::vector<int>& nodes : faces) {
        numbers.push_back(static_cast<double>(nodes.size()));
        numbers.insert(numbers.end(), nodes.begin(), nodes.end());
    }
    return numbers;
}

/// The three kinds of lists that are files of their own.
class OFFileLists : public testing::Test
{
protected:
    /// Reads a file by the reader of its class, and makes one row of numbers of what came.
    bool read(const std::string& className, const std::string& bytes)
    {
        folder.write("100%1", bytes);
        OFFile file(true);
        if (className == "labelList") {
            const bool isRead = file.readLabelList(path, "thing", &labelsRead, &cells);
            numbers = numbersOf(labelsRead);
            return isRead;
        }
        if (className == "vectorField") {
            numbers.clear();
            return file.readVectorField(path, "thing", &numbers);
        }
        FacesData data;
        const bool isRead = file.readFaceList(path, "thing", &data);
        numbers = numbersOf(unpacked(data));
        return isRead;
    }

    TempFolder folder;
    /// The percent sign must not take part in messages.
    const dvn::Str path = folder.str("100%1");
    std::vector<int> labelsRead;
    Numbers numbers;
    int cells = 0;
};

} // namespace

TEST_F(OFFileLists, EachReaderReportsInItsOwnWordsAndOnce)
{
    const std::pair<std::string, std::string> readers[] = {
        {"labelList", "labels file"}, {"vectorField", "vector field file"}, {"faceList", "face list file"}};
    for (const auto& [className, kind] : readers) {
        const std::string good = fileOf(className, "ascii", "");
        const std::pair<std::string, std::string> cases[] = {
            {"", "Failed to open "},
            {header(className, "other"), "Unexpected object in "},
            {header("other", "thing"), "Unexpected class in "},
            {good + "no count 3", "Failed to read number of items in "},
            {good + "3000000000\n(\n)\n", "Invalid number of items in "},
            {good + "2000000000\n(\n)\n", "Invalid number of items in "}};
        for (const auto& [text, message] : cases) {
            const LogCapture log;
            EXPECT_FALSE(read(className, text));
            const std::string line = "OFFile : " + message + kind + ". File basename is " + path.toStdString();
            EXPECT_EQ(log.lines(), (std::vector<LogLine>{{1, line}}));
        }
        for (const std::string missing : {"object", "class"}) {
            try {
                read(className, std::string(good).replace(good.find(missing), 1, "x"));
                ADD_FAILURE() << "no exception for a missing " << missing;
            } catch (const std::out_of_range& e) {
                EXPECT_STREQ(e.what(), "map::at:  key not found");
            }
        }
        EXPECT_TRUE(read(className, good + "0()\n"));
    }
    const LogCapture log;
    EXPECT_FALSE(read("faceList", fileOf("faceList", "binary", list(1, "3(1 2 3)\n"))));
    EXPECT_EQ(log.lines(), std::vector<LogLine>()) << "refused in silence";
}

TEST_F(OFFileLists, AsciiBinaryAndGzipGiveTheSame)
{
    // Several chunks each, so that the four or six workers take a second pass.
    const std::vector<int> someOwners = someLabels(60000);
    const Numbers somePoints = someVectors(30000);
    const Faces faceSet = someFaces(110000, 50);
    std::string onOneLine = vectors(somePoints);
    std::replace(onOneLine.begin(), onOneLine.end(), '\n', ' ');
    struct Case
    {
        const char* className;
        const char* format;
        std::string body;
        Numbers expected;
    };
    const Case cases[] = {
        {"labelList", "ascii", list(60000, labels(someOwners)), numbersOf(someOwners)},
        {"labelList", "binary", rawList(someOwners) + "\n", numbersOf(someOwners)},
        {"vectorField", "ascii", list(30000, vectors(somePoints)), somePoints},
        {"vectorField", "ascii", "30000(" + onOneLine + ")\n", somePoints},
        {"vectorField", "binary", rawList(somePoints, 3) + "\n", somePoints},
        {"faceList", "ascii", list(110000, faces(faceSet)), numbersOf(faceSet)},
        {"faceCompactList", "ascii", list(110001, faces(faceSet)), numbersOf(faceSet)},
        {"faceCompactList", "binary", compactFaces(faceSet), numbersOf(faceSet)},
    };
    ASSERT_GT(faces(faceSet).size(), 7 * OFFile::CHUNK_SIZE);
    const LogCapture log;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.className) + " " + c.format);
        const std::string bytes = fileOf(c.className, c.format, c.body);
        EXPECT_TRUE(read(c.className, bytes));
        EXPECT_TRUE(numbers == c.expected);
        EXPECT_TRUE(read(c.className, gzipped(bytes)));
        EXPECT_TRUE(numbers == c.expected);
    }
    EXPECT_EQ(cells, 42);
    EXPECT_EQ(log.lines(), std::vector<LogLine>());
}

// A count that lies must neither write beyond the target nor pass in silence.
TEST_F(OFFileLists, AListThatDiffersFromItsCountKeepsWhatCame)
{
    const Faces three = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9, 10}};
    const Numbers many = someVectors(30000);
    struct Case
    {
        const char* className;
        const char* format;
        std::string body;
        bool isRead;
        Numbers expected;
        std::string told;
    };
    const std::string two = "4 items promised, 2 found";
    const std::string one = "2 items promised, 1 found";
    const Case cases[] = {
        {"labelList", "ascii", "2\n(\n1\n2\n3\n)\n", true, {1, 2}, ""},
        {"labelList", "ascii", "4\n(\n1\n2\n)\n", false, {1, 2, 0, 0}, two},
        {"labelList", "ascii", "4\n(\n1\n2\r\n3\n4\n)\n", false, {1, 0, 0, 0}, "4 items promised, 1 found"},
        {"labelList", "binary", "4\n(" + raw(std::vector<int>{1, 2}), false, {1, 2, 0, 0}, two},
        {"vectorField", "ascii", list(20, vectors(many)), true, {many.begin(), many.begin() + 60}, ""},
        {"vectorField", "ascii", "2\n(\n(1 2 3)\n)\n", true, {1, 2, 3, 0, 0, 0}, one},
        {"vectorField", "binary", "2\n(" + raw(Numbers{1, 2, 3}), false, {1, 2, 3, 0, 0, 0}, one},
        {"faceList", "ascii", list(2, faces(three)), true, {3, 1, 2, 3, 3, 4, 5, 6}, ""},
        {"faceList", "ascii", list(4, "3(1 2 3)\n3(4 5 6)\n"), true, {3, 1, 2, 3, 3, 4, 5, 6, 0, 0}, two},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.body.substr(0, 40));
        const LogCapture log;
        labelsRead.clear();
        EXPECT_EQ(read(c.className, fileOf(c.className, c.format, c.body)), c.isRead);
        EXPECT_EQ(numbers, c.expected);
        const std::string line =
            "OFFile : List is shorter than its count: " + c.told + ". File is " + path.toStdString();
        EXPECT_EQ(log.infos(), c.told.empty() ? std::vector<std::string>() : std::vector<std::string>{line});
    }
}

TEST_F(OFFileLists, ACountBeyondTheFileSizesNothing)
{
    // A compressed file can hold a thousand times its size, so its count is believed for longer.
    const std::string good = fileOf("labelList", "ascii", "100000\n(\n1\n)\n");
    std::string huge = good;
    huge.insert(huge.rfind("\n("), "0000");
    const std::pair<std::string, std::size_t> cases[] = {{good, 1}, {gzipped(huge), 1}, {gzipped(good), 100000}};
    for (const auto& [bytes, size] : cases) {
        labelsRead = {7};
        EXPECT_FALSE(read("labelList", bytes));
        EXPECT_EQ(labelsRead.size(), size);
    }
}

TEST_F(OFFileLists, CellsAreCountedByTheNoteAlone)
{
    const std::string missing = "OFFile : Failed to read number of cells in file. This info should be available as "
                                "'note' in the header of File: ";
    const std::pair<const char*, int> notes[] = {{"nCells:  17nFaces:3", 17},
                                                 {"nCells:none nFaces:3", 0},
                                                 {"nCells:3", 3},
                                                 {"nFaces:3 nCells:17", -1},
                                                 {"nPoints:3", -1}};
    for (const auto& [text, count] : notes) {
        const LogCapture log;
        const std::string noteLine = std::string("    note \"") + text + "\";\n";
        const bool isRead = read("labelList", header("labelList", "thing", "ascii", noteLine) + "1\n(\n0\n)\n");
        EXPECT_EQ(isRead ? cells : -1, count) << text;
        EXPECT_TRUE(isRead || log.errors() == std::vector<std::string>{missing + path.toStdString()});
    }
    EXPECT_THROW(read("labelList", header("labelList", "thing") + "1\n(\n0\n)\n"), std::out_of_range);
}

TEST_F(OFFileLists, ALineFeedAsFirstRawByteIsLost)
{
    const std::vector<int> written = {10, 1};
    EXPECT_TRUE(read("labelList", fileOf("labelList", "binary", rawList(written))));
    EXPECT_EQ(raw(labelsRead), (raw(written) + ")").substr(1)) << "the bracket that ends the list makes up for it";
}

TEST_F(OFFileLists, NoLabelIsLostAtAChunkBorder)
{
    std::vector<int> expected(38000, 123456);
    expected[0] = 7;
    for (const std::string separator : {"\n", " ", "\n\n\n"}) {
        std::string rest = "7" + separator;
        for (std::size_t i = 1; i < expected.size(); ++i) {
            rest.append("123456").append(separator);
        }
        for (std::size_t shift = 0; shift < 10; ++shift) {
            const std::string body = "38000(" + std::string(shift, '0') + rest + ")\n";
            ASSERT_TRUE(read("labelList", fileOf("labelList", "ascii", body))) << shift << "'" << separator << "'";
            ASSERT_EQ(labelsRead, expected);
        }
    }
}
